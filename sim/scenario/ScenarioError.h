// What a scenario runner says about a scenario it can't use: the file, where in it, and the
// problem, in the form "<file>:<line>:<column>: <problem>" that editors jump to.
#pragma once

#include <stdexcept>
#include <string>

#include "NevQos/sim/scenario/Scenario.h"

namespace Sim {

class ScenarioError : public std::runtime_error {
 public:
   // Without a line (where.line 0) the text is "<file>: <problem>".
   ScenarioError( std::string const& file, Where where, std::string const& problem );
   explicit ScenarioError( std::string const& what ) : std::runtime_error( what ) {}
};

}  // namespace Sim
