#include "NevQos/sim/runner/Version.h"

namespace Sim {

// Given by the build from the project's version, to this file alone, so that a new version
// compiles one file again.
char const* projectVersion() {
   return NEVQOS_VERSION;
}

}  // namespace Sim
