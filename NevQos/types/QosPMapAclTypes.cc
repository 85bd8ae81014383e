#include "NevQos/types/QosPMapAclTypes.h"

namespace Nev {

namespace {

constexpr ValueText::Member qosPMapAclTypesNames[] = {
   { ipv4Only, "ipv4Only" },
   { ipv6Only, "ipv6Only" },
   { ipv4v6Both, "ipv4v6Both" },
};

}  // namespace

ENUM_TEXT_DEFINE( QosPMapAclTypes, "Nev::QosPMapAclTypes", qosPMapAclTypesNames )

}  // namespace Nev
