#include "NevQos/platform/entities/SubIntfStatus.h"

#include <ostream>

namespace Interface {

namespace {

constexpr ValueText::Member forwardingModelNames[] = {
   { forwardingModelUnknown, "forwardingModelUnknown" },
   { forwardingModelRouted, "forwardingModelRouted" },
   { forwardingModelBridged, "forwardingModelBridged" },
};

}  // namespace

ENUM_TEXT_DEFINE( ForwardingModel, "Interface::ForwardingModel", forwardingModelNames )

}  // namespace Interface
