// The trace sources of the library. Each is a global object built at load, off until enabled.
#pragma once

#include "NevQos/platform/zub/Trace.h"

namespace Nev {

// The default handle: the policy, basic and kernel state machines and the value helpers.
extern Zub::TraceHandle nevQosTrace;
// The dynamic per-port control-plane policing machine.
extern Zub::TraceHandle nevDynamicPerPortCoppTrace;
// The class-based-forwarding FEC override machine.
extern Zub::TraceHandle nevCbfFecMappingSmTrace;

}  // namespace Nev
