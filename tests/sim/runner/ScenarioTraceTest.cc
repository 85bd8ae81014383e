// A scenario's own `trace` lists: the switch keeps their lines, beside those asked for on the
// command line, and switches them off again when it goes, so that they do not reach a later run.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <set>
#include <string>

#include "NevQos/log/TraceHandles.h"
#include "NevQos/sim/runner/SimSwitch.h"
#include "NevQos/sim/scenario/ScenarioLoader.h"
#include "support/SimProgram.h"

namespace NevQosTest {
namespace {

using Json = nlohmann::ordered_json;

TEST( ScenarioTraceTest, TheScenariosListsAreKeptForItsRunOnly ) {
   Sim::Scenario const s = Sim::loadScenario( example( "traces.yaml" ) );
   ASSERT_EQ( s.traces, std::vector< std::string >{ "NevCbfFecMappingSm/0" } );
   {
      Sim::SimSwitch sw( s );
      for( Sim::Step const& step : s.steps )
         sw.stepIs( step );
      std::set< std::string > seen;
      for( Sim::TraceLine const& l : sw.traces().kept() )
         seen.insert( l.handle + "/" + std::to_string( l.level ) );
      EXPECT_EQ( seen, std::set< std::string >{ "NevCbfFecMappingSm/0" } );
      EXPECT_TRUE( Nev::nevCbfFecMappingSmTrace.enabled( 0 ) );
   }
   EXPECT_FALSE( Nev::nevCbfFecMappingSmTrace.enabled( 0 ) ) << "left on after the run";
}

TEST( ScenarioTraceTest, TheCommandLineAddsToTheScenariosLists ) {
   SimRun const run = runSim( { example( "traces.yaml" ), "--json", "--trace", "NevQos/0-3" } );
   ASSERT_EQ( run.exitCode, 0 ) << run.err;
   Json const report = Json::parse( run.out );
   std::set< std::string > handles;
   for( Json const& l : report[ "trace" ] )
      handles.insert( l[ "handle" ].get< std::string >() );
   EXPECT_EQ( handles, ( std::set< std::string >{ "NevCbfFecMappingSm", "NevQos" } ) );
}

}  // namespace
}  // namespace NevQosTest
