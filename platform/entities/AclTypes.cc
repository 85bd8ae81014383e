#include "NevQos/platform/entities/AclTypes.h"

namespace Acl {

namespace {

constexpr ValueText::Member aclTypeNames[] = {
   { aclTypeIp, "ip" },
   { aclTypeIpv6, "ipv6" },
   { aclTypeMac, "mac" },
};

}  // namespace

ENUM_TEXT_DEFINE( AclType, "Acl::AclType", aclTypeNames )

}  // namespace Acl
