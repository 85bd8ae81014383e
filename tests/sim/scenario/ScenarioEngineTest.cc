// A published scenario drives the engine: what the publisher writes for each example is what the
// engine needs to program every map at every step.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "NevQos/sim/scenario/ConfigPublisher.h"
#include "NevQos/sim/scenario/ScenarioLoader.h"
#include "support/QosAclSmFixture.h"

namespace NevQosTest {
namespace {

// Every example, published step by step into the engine on a chip that accepts everything,
// programs each of its policy maps.
class ExampleEngineTest : public QosAclSmFixture,
                          public ::testing::WithParamInterface< char const* > {};

TEST_P( ExampleEngineTest, EveryStepLeavesEveryMapProgrammed ) {
   auto const path = std::filesystem::path( NEVQOS_EXAMPLES_DIR ) / GetParam();
   auto const s = Sim::loadScenario( path.string() );
   Sim::ConfigPublisher publisher( Sim::EngineInputs{ qosStatus, mainAclConfig, qosAclHwStatus,
                                                      qosHwStatus, counterConfigDir, ncsd },
                                   s.file );
   publisher.chipIs( s.chip );
   publisher.initialIs( s.initial );
   start();
   for( auto const& step : s.steps ) {
      SCOPED_TRACE( step.time );
      loop->runUntil( step.time );
      publisher.stepIs( step );
      loop->runOnce();
      for( auto const& [ key, sp ] : publisher.model().servicePolicies() ) {
         auto const status = hwStatus( key.pmapName().charPtr() );
         ASSERT_TRUE( status ) << key;
         EXPECT_EQ( status->prgmStatus(), Qos::hwPrgmStatusSuccess_ ) << key;
         EXPECT_EQ( status->version(), policyMap( key.pmapName().charPtr() )->version() ) << key;
      }
   }
   EXPECT_EQ( qosAclSliceHwStatus->configVersionUpdateTime(), s.steps.back().time );
}

INSTANTIATE_TEST_SUITE_P( Examples, ExampleEngineTest,
                          ::testing::Values( "edge-policy.yaml", "tcam-exhaustion.yaml",
                                             "range-checkers.yaml" ) );

}  // namespace
}  // namespace NevQosTest
