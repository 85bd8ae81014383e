// The control-plane part of the runner's report: the per-port CoPP policers the chip holds and
// the keys waiting for a retry, and the maps the kernel's packet driver was told. Keys in
// docs/scenario.md.
#pragma once

#include <iosfwd>

#include <nlohmann/json.hpp>

#include "NevQos/sim/runner/SimSwitch.h"

namespace Sim {

// The "controlPlane" key.
nlohmann::ordered_json controlPlaneOf( SimSwitch const& sw );

void printControlPlane( std::ostream& os, nlohmann::ordered_json const& controlPlane );

}  // namespace Sim
