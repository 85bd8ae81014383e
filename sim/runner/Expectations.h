// Checks a scenario's `expect` list against what the switch did: the helper calls and the log
// lines merged in the order they happened, each item matched at its first occurrence after the
// previous item's match; a `not` item holds from the previous match to the next (from the start,
// to the end, when it leads or closes the list).
#pragma once

#include <nlohmann/json.hpp>
#include <ostream>

#include "NevQos/sim/runner/SimSwitch.h"
#include "NevQos/sim/scenario/Scenario.h"

namespace Sim {

// { "met": bool, "items": [ { "line", "expect", "t" } ... ], "failure": text when not met }.
nlohmann::ordered_json expectationsMet( Scenario const& scenario, SimSwitch const& sw );

void printExpectations( std::ostream& os, nlohmann::ordered_json const& expectations );

}  // namespace Sim
