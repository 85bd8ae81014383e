// The scenario's `expect` list: the helper calls and log lines its story is about, in order.
#pragma once

#include <vector>

#include <yaml-cpp/yaml.h>

#include "NevQos/sim/scenario/Scenario.h"
#include "NevQos/sim/scenario/YamlReader.h"

namespace Sim {

std::vector< ExpectItem > expectationsOf( YAML::Node const& list, YamlReader const& yaml );

}  // namespace Sim
