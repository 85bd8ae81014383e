// The address family of an address or an access list.
#pragma once

#include <cstdint>

#include "NevQos/platform/zub/ValueText.h"

namespace Mirel {

enum AddressFamily : std::uint32_t {
   ipunknown = 0,
   ipv4 = 1,
   ipv6 = 2,
};

ENUM_TEXT_DECLARE( AddressFamily );

}  // namespace Mirel
