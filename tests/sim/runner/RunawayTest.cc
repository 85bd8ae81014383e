// A run whose engines never let the event loop settle is cut, by the program with exit code 3
// and a message naming the time and what kept firing, and by the simulated switch with the
// loop's exception; a loop that is only busy runs to its end.
#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "NevQos/sim/runner/SimSwitch.h"
#include "NevQos/sim/scenario/ScenarioLoader.h"
#include "support/SimProgram.h"

namespace NevQosTest {
namespace {

// A rule table that is never ready: the override is retried every 0.01 s for as long as the run
// lasts, a hundred turns a second.
constexpr char const* neverReady = R"(
chip:
  faults: [ { kind: cbfNotReady } ]
fecOverrides:
  - { dscp: ef, fec: 10, overridingFec: 20 }
fecService:
  - { fec: 10, hwFecId: 5010 }
  - { fec: 20, hwFecId: 5020 }
steps:
  - at: 5
    changes:
      - requestCounters: snmp
)";

TEST( RunawayTest, TheProgramCutsARunPastItsTurnsWithExitThree ) {
   std::string const path = ::testing::TempDir() + "never-ready.yaml";
   std::ofstream( path ) << neverReady;
   SimRun const cut = runSim( { path, "--max-turns", "50" } );
   EXPECT_EQ( cut.exitCode, 3 );
   EXPECT_EQ( cut.out, "" );
   EXPECT_EQ( cut.err, "nevqos-sim: " + path +
                             ": still running after 55 turns at virtual time 0.541: task "
                             "policyOverrideTask kept firing\n" );
   // The default leaves room for the retries of a minute's settling.
   EXPECT_EQ( runSim( { path } ).exitCode, 0 );
   EXPECT_EQ( runSim( { path, "--max-turns", "0" } ).exitCode, 2 ) << "no way to turn it off";
}

TEST( RunawayTest, TheSimulatedSwitchThrowsFromWhateverRunsTheLoop ) {
   Sim::Scenario const s = Sim::loadScenarioText( neverReady, "never-ready.yaml" );
   Sim::SimSwitch sw( s, Sim::SwitchOptions{ .runawayTurns = 50 } );
   try {
      sw.stepIs( s.steps.at( 0 ) );
      ADD_FAILURE() << "the step ran to its end";
   } catch( Zub::RunawayException const& e ) {
      EXPECT_EQ( e.timer(), Zub::String( "task policyOverrideTask" ) );
      EXPECT_EQ( e.turns(), 55u );
      EXPECT_LT( e.time(), 5.0 );
   }
}

}  // namespace
}  // namespace NevQosTest
