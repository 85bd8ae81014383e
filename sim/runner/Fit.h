// The report's "fit": per policy map of a service policy, what one more interface would take of
// each pool of the chip and how many more interfaces the pools leave room for. A class policed per
// interface gets a copy of its ACLs and a policer for every interface the map is attached to; the
// other classes share theirs, so only the copies grow with the interfaces.
#pragma once

#include <iosfwd>

#include <nlohmann/json.hpp>

#include "NevQos/sim/runner/SimSwitch.h"

namespace Sim {

nlohmann::ordered_json fitOf( SimSwitch const& sw );

void printFit( std::ostream& os, nlohmann::ordered_json const& fit );

}  // namespace Sim
