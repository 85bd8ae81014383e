// A scenario run as `nevqos-sim --verify=always` runs it, with the outside checks of SwitchChecks.h
// after the start, after every step and after the settling time, collecting whatever is wrong
// instead of stopping at it: a verification finding the scenario did not ask for (damage done by
// corruptTcam asks for findings until the end), a disagreement between the chip and the status,
// a run that never settles. An engine assertion still ends the process. No test framework in
// it: the engine fuzz target runs it too.
#pragma once

#include <string>
#include <vector>

#include "NevQos/sim/runner/SimSwitch.h"
#include "NevQos/sim/scenario/Scenario.h"

namespace Sim {

struct CheckedRunLimits {
   Zub::Seconds settle = 60.0;
   std::size_t runawayTurns = Sim::SimSwitch::defaultRunawayTurns;
   // Whether to build the JSON report at the end, as the program would print it.
   bool report = false;
};

struct CheckedRun {
   // "t=<time>: <problem>", in the order found.
   std::vector< std::string > problems;
   // Steps run; a step whose damage found no entry to damage ends the run before it.
   std::size_t steps = 0;
   bool damaged = false;
   // The JSON report, when asked for and the run ended.
   std::string report;
};

CheckedRun checkedRun( Sim::Scenario const& scenario, CheckedRunLimits const& limits = {} );

}  // namespace Sim
