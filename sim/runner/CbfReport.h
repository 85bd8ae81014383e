// The class-based-forwarding part of the runner's report: the chip's rule table, the override
// status table the engine wrote, the FECs it asks the FEC service about, and its review state.
// Keys in docs/scenario.md.
#pragma once

#include <iosfwd>

#include <nlohmann/json.hpp>

#include "NevQos/sim/runner/SimSwitch.h"

namespace Sim {

// The "cbf" key.
nlohmann::ordered_json cbfOf( SimSwitch const& sw );

void printCbf( std::ostream& os, nlohmann::ordered_json const& cbf );

}  // namespace Sim
