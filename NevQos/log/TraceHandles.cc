#include "NevQos/log/TraceHandles.h"

namespace Nev {

Zub::TraceHandle nevQosTrace( "NevQos" );
Zub::TraceHandle nevDynamicPerPortCoppTrace( "NevDynamicPerPortCopp" );
Zub::TraceHandle nevCbfFecMappingSmTrace( "NevCbfFecMappingSm" );

}  // namespace Nev
