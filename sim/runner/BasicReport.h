// The basic QoS part of the runner's report: the slice's feature records and what the chip holds
// (global tables, ports, queues, shared profiles, ECN counters). Keys in docs/scenario.md.
#pragma once

#include <iosfwd>

#include <nlohmann/json.hpp>

#include "NevQos/sim/runner/SimSwitch.h"

namespace Sim {

// status.features and status.basicStatus.
void addFeatures( nlohmann::ordered_json& status, Qos::SliceHwStatus const& slice );
// The "basic" key.
nlohmann::ordered_json basicOf( SimQosBasicHelper const& chip );

void printFeatures( std::ostream& os, nlohmann::ordered_json const& status );
void printBasic( std::ostream& os, nlohmann::ordered_json const& basic );

}  // namespace Sim
