// The subinterfaces of the switch, as the interface agent publishes them.
#pragma once

#include <cstdint>

#include "NevQos/platform/mirel/IntfId.h"
#include "NevQos/platform/zub/Entity.h"
#include "NevQos/platform/zub/ValueText.h"

namespace Interface {

// How a subinterface forwards: as a routed port or as part of a bridge.
enum ForwardingModel : std::uint32_t {
   forwardingModelUnknown = 0,
   forwardingModelRouted = 1,
   forwardingModelBridged = 2,
};
ENUM_TEXT_DECLARE( ForwardingModel );

#define INTERFACE_SUB_INTF_STATUS_ATTRS( X )                               \
   X( value, ForwardingModel, forwardingModel, Interface::ForwardingModel, \
      Interface::forwardingModelUnknown )

ZUB_ENTITY( SubIntfStatus, Mirel::IntfId, INTERFACE_SUB_INTF_STATUS_ATTRS );

#define INTERFACE_SUB_INTF_STATUS_DIR_ATTRS( X ) \
   X( child, IntfStatus, intfStatus, Mirel::IntfId, Interface::SubIntfStatus )

ZUB_ENTITY( SubIntfStatusDir, Zub::Name, INTERFACE_SUB_INTF_STATUS_DIR_ATTRS );

}  // namespace Interface
