// The policy engine's own view in the runner's report: per policy map its latency figures, per
// class copy its hardware priority and clamped policer, and per ACL the number and flags the
// engine keeps. What the chip was told is in the calls and the TCAM; this is what the engine
// believes it told, so a list the engine committed and the chip never held shows here only.
// Keys in docs/scenario.md.
#pragma once

#include <iosfwd>

#include <nlohmann/json.hpp>

#include "NevQos/policy/QosAclSm.h"

namespace Sim {

// The "engine" key.
nlohmann::ordered_json engineOf( Nev::QosAclSm const& engine );

void printEngine( std::ostream& os, nlohmann::ordered_json const& engine );

}  // namespace Sim
