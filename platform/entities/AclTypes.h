// The scalar types of the Acl namespace that the QoS logic uses.
#pragma once

#include <cstdint>

#include "NevQos/platform/zub/ValueText.h"

namespace Acl {

// The kind of an access list; the value doubles as the address family of IP lists.
enum AclType : std::uint32_t {
   aclTypeIp = 0,
   aclTypeIpv6 = 1,
   aclTypeMac = 2,
};
ENUM_TEXT_DECLARE( AclType );

constexpr AclType ip() noexcept {
   return aclTypeIp;
}
constexpr AclType ipv6() noexcept {
   return aclTypeIpv6;
}
constexpr AclType mac() noexcept {
   return aclTypeMac;
}

}  // namespace Acl
