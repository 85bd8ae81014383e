// The next-hop groups of the switch, as the routing agent publishes them.
#pragma once

#include <cstdint>

#include "NevQos/platform/zub/Entity.h"

namespace Nev {

// clang-format off
#define NEV_NEXTHOP_GROUP_STATUS_ATTRS( X )               \
   /* The hardware index of each group, by group name. */ \
   X( keyed, NexthopIndex, nexthopIndex, Zub::Name, std::uint32_t )
// clang-format on

ZUB_ENTITY( NexthopGroupStatus, Zub::Name, NEV_NEXTHOP_GROUP_STATUS_ATTRS );

}  // namespace Nev
