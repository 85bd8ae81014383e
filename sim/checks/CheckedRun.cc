#include "NevQos/sim/checks/CheckedRun.h"

#include <sstream>
#include <variant>

#include "NevQos/sim/checks/KnownDefects.h"
#include "NevQos/sim/checks/SwitchChecks.h"
#include "NevQos/sim/runner/Report.h"
#include "NevQos/sim/scenario/ScenarioError.h"

namespace Sim {

namespace {

std::string timeText( Zub::Seconds t ) {
   std::ostringstream os;
   os << "t=" << t << ": ";
   return os.str();
}

bool damages( Sim::Step const& step ) {
   for( Sim::Change const& c : step.changes ) {
      if( std::holds_alternative< Sim::TcamCorruption >( c.value ) ) return true;
   }
   return false;
}

void check( Sim::SimSwitch& sw, CheckedRun& run ) {
   std::string const at = timeText( sw.now() );
   if( !run.damaged ) {
      for( std::string const& finding : sw.verify() ) {
         run.problems.push_back( at + "verification: " + finding );
      }
   }
   for( std::string const& m : tcamMismatches( sw ) )
      run.problems.push_back( at + m );
   for( std::string const& m : cbfMismatches( sw ) )
      run.problems.push_back( at + m );
}

}  // namespace

CheckedRun checkedRun( Sim::Scenario const& scenario, CheckedRunLimits const& limits ) {
   CheckedRun run;
   try {
      Sim::SimSwitch sw( scenario, Sim::SwitchOptions{ .runawayTurns = limits.runawayTurns } );
      check( sw, run );
      for( Sim::Step const& step : scenario.steps ) {
         try {
            sw.stepIs( step );
         } catch( Sim::ScenarioError const& ) {
            // Damage that finds no installed entry: the chip under test holds less than the
            // scenario's author expected, which ends the scenario here.
            if( !damages( step ) ) throw;
            break;
         }
         ++run.steps;
         run.damaged = run.damaged || damages( step );
         check( sw, run );
      }
      sw.runUntil( sw.now() + limits.settle );
      check( sw, run );
      if( limits.report ) run.report = Sim::reportOf( scenario, sw ).dump( 2 );
   } catch( Zub::RunawayException const& e ) {
      run.problems.push_back( timeText( e.time() ) + e.what() );
   }
   return run;
}

}  // namespace Sim
