#include "NevQos/platform/mirel/AddressFamily.h"

namespace Mirel {

namespace {

constexpr ValueText::Member addressFamilyNames[] = {
   { ipunknown, "ipunknown" },
   { ipv4, "ipv4" },
   { ipv6, "ipv6" },
};

}  // namespace

ENUM_TEXT_DEFINE( AddressFamily, "Mirel::AddressFamily", addressFamilyNames )

}  // namespace Mirel
