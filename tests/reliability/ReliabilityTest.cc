#include "reliability/ReliabilityTest.h"

#include "NevQos/sim/scenario/ScenarioError.h"
#include "NevQos/sim/scenario/ScenarioLoader.h"

namespace NevQosTest {

std::string tcamModeName( ::testing::TestParamInfo< Sim::TcamMode > const& mode ) {
   return mode.param == Sim::TcamMode::synchronous ? "synchronous" : "asynchronous";
}

Sim::Scenario scenarioOf( std::string const& yaml ) {
   try {
      return Sim::loadScenarioText( yaml, "test.yaml" );
   } catch( Sim::ScenarioError const& e ) {
      ADD_FAILURE() << e.what() << "\n" << yaml;
      return {};
   }
}

}  // namespace NevQosTest
