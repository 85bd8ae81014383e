// The hardware epoch of the switch: modes fixed for the life of the forwarding agent.
#pragma once

#include "NevQos/platform/zub/Entity.h"

namespace HwEpoch {

// clang-format off
#define HW_EPOCH_STATUS_ATTRS( X )                                                            \
   /* The chip runs with PDP policy maps; every Ethernet port gets the default PDP policy. */ \
   X( value, PdpModeEnabled, pdpModeEnabled, bool, false )
// clang-format on

ZUB_ENTITY( Status, Zub::Name, HW_EPOCH_STATUS_ATTRS );

}  // namespace HwEpoch
