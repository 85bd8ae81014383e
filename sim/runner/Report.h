// The runner's report of a scenario that ran: every helper call in order, the system log, the
// hardware status the engine wrote, and the chip's TCAM and resources. It is one JSON document
// (keys in docs/scenario.md); the text report renders the same document for reading.
#pragma once

#include <cstddef>
#include <iosfwd>

#include <nlohmann/json.hpp>

#include "sim/runner/SimSwitch.h"
#include "sim/scenario/Scenario.h"

namespace Sim {

nlohmann::ordered_json reportOf( Scenario const& scenario, SimSwitch const& sw );

// Lists at most `limit` helper calls (then a count per operation instead) and `limit` entries
// per ACL; 0 lists everything.
void printTextReport( std::ostream& os, nlohmann::ordered_json const& report, std::size_t limit );

}  // namespace Sim
