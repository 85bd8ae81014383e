// The front-panel Ethernet ports of the switch, as the interface agent publishes them.
#pragma once

#include <cstdint>

#include "NevQos/platform/mirel/IntfId.h"
#include "NevQos/platform/zub/Entity.h"

namespace Interface {

// clang-format off
#define INTERFACE_ETH_PHY_INTF_STATUS_ATTRS( X )                        \
   /* The port may pass traffic; a port of an inactive slice is not. */ \
   X( value, Active, active, bool, false )                              \
   /* Link speed in megabits per second; 0 while unknown. */            \
   X( value, Speed, speed, std::uint64_t, 0u )
// clang-format on

ZUB_ENTITY( EthPhyIntfStatus, Mirel::IntfId, INTERFACE_ETH_PHY_INTF_STATUS_ATTRS );

#define INTERFACE_ALL_ETH_PHY_INTF_STATUS_DIR_ATTRS( X ) \
   X( child, IntfStatus, intfStatus, Mirel::IntfId, Interface::EthPhyIntfStatus )

ZUB_ENTITY( AllEthPhyIntfStatusDir, Zub::Name, INTERFACE_ALL_ETH_PHY_INTF_STATUS_DIR_ATTRS );

}  // namespace Interface
