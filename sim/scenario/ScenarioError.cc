#include "NevQos/sim/scenario/ScenarioError.h"

namespace Sim {

namespace {

std::string located( std::string const& file, Where where, std::string const& problem ) {
   if( where.line == 0 ) return file + ": " + problem;
   return file + ":" + std::to_string( where.line ) + ":" + std::to_string( where.column ) + ": " +
          problem;
}

}  // namespace

ScenarioError::ScenarioError( std::string const& file, Where where, std::string const& problem )
    : std::runtime_error( located( file, where, problem ) ) {}

}  // namespace Sim
