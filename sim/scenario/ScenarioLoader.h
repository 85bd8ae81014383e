// Reads a scenario file (docs/scenario.md) into a Scenario. A file that can't be used throws
// ScenarioError naming the file, the line and column, and the problem: bad YAML, an unknown key,
// a value of the wrong type or out of range, a name given twice, or a change that names what
// doesn't exist at its time or removes what is still used. Nothing is returned half read.
#pragma once

#include <string>

#include "NevQos/sim/scenario/Scenario.h"
#include "NevQos/sim/scenario/ScenarioError.h"

namespace Sim {

Scenario loadScenario( std::string const& path );
// The same for a text; `pretendPath` names it in messages, and files it refers to are looked
// for beside it.
Scenario loadScenarioText( std::string const& text, std::string const& pretendPath );

}  // namespace Sim
