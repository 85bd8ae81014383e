// Which address families the ACLs of a policy map need.
#pragma once

#include <cstdint>

#include "NevQos/platform/zub/ValueText.h"

namespace Nev {

enum QosPMapAclTypes : std::uint32_t {
   ipv4Only = 0,
   ipv6Only = 1,
   ipv4v6Both = 2,
};
ENUM_TEXT_DECLARE( QosPMapAclTypes );

}  // namespace Nev
