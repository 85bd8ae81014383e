// The one-screen overview of a run (nevqos-sim --summary): the policy maps and their status, the
// TCAM's use per slice, the log lines by handle, and what verification and the expectations
// found. Made from parts of the report document, so it says nothing the report does not.
#pragma once

#include <iosfwd>
#include <string>

#include <nlohmann/json.hpp>

#include "NevQos/sim/runner/SimSwitch.h"
#include "NevQos/sim/scenario/Scenario.h"

namespace Sim {

// The parts of the report the summary reads, with those of `more` the runner adds (verify,
// expect); the TCAM without its lists, and "calls" as the number of helper calls.
nlohmann::ordered_json summaryOf( Scenario const& scenario, SimSwitch const& sw,
                                  nlohmann::ordered_json const& more );

// `reportPath` names the file the report went to, if any.
void printSummary( std::ostream& os, nlohmann::ordered_json const& summary,
                   std::string const& reportPath );

}  // namespace Sim
