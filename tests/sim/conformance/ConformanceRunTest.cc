// The conformance run passes the reference chip through every example, and fails a driver that
// loses rules, at the step where it shows.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "NevQos/sim/conformance/ConformanceRun.h"
#include "NevQos/sim/recording/RecordingQosAclHelper.h"
#include "NevQos/sim/scenario/ScenarioLoader.h"

namespace NevQosTest {
namespace {

namespace fs = std::filesystem;

// The reference chip behind a decorator that forwards every call: a driver like any other, built
// on the reference chip.
Conformance::DriverUnderTest referenceDriver() {
   Conformance::DriverUnderTest driver{ .name = "reference chip", .onReferenceChip = true };
   driver.helpers.acl = []( Zub::Ptr< Sim::SimQosAclHelper > const& reference,
                            Sim::DriverInputs const& in ) {
      return Zub::Ptr< NevHelper::QosAclHelper >(
            Zub::make< Sim::RecordingQosAclHelper >( reference, in.clock ) );
   };
   return driver;
}

TEST( ConformanceRunTest, TheReferenceChipPassesEveryExample ) {
   std::size_t run = 0;
   for( auto const& entry : fs::directory_iterator( NEVQOS_EXAMPLES_DIR ) ) {
      if( entry.path().extension() != ".yaml" ) continue;
      Sim::Scenario const scenario = Sim::loadScenario( entry.path().string() );
      Conformance::ConformanceResult const result =
            Conformance::runConformance( scenario, referenceDriver() );
      EXPECT_EQ( result.findings, std::vector< std::string >{} ) << entry.path();
      if( result.skipped.empty() ) ++run;
   }
   EXPECT_GE( run, 12u );
}

TEST( ConformanceRunTest, ADriverThatLosesSubrulesFailsVerificationWhereItShows ) {
   Conformance::DriverUnderTest driver = referenceDriver();
   // Every third IP subrule is answered a success without reaching the chip (for a thousand
   // rounds, far more than the scenario makes).
   driver.helpers.acl = []( Zub::Ptr< Sim::SimQosAclHelper > const& reference,
                            Sim::DriverInputs const& in ) {
      auto helper = Zub::make< Sim::RecordingQosAclHelper >( reference, in.clock );
      for( int i = 0; i < 1000; ++i ) {
         helper->forwardEnq( "createIpAclSubrule" );
         helper->forwardEnq( "createIpAclSubrule" );
         helper->answerEnq( "createIpAclSubrule", Nev::aclCreateErrorNone );
      }
      return Zub::Ptr< NevHelper::QosAclHelper >( helper );
   };
   Sim::Scenario const scenario = Sim::loadScenario( NEVQOS_EXAMPLES_DIR "/edge-policy.yaml" );
   Conformance::ConformanceResult const result = Conformance::runConformance( scenario, driver );
   ASSERT_FALSE( result.findings.empty() );
   EXPECT_EQ( result.findings.front().rfind(
                    "edge-policy.yaml: before step 1 (at 1 s): verification: the driver does not "
                    "read back what it was told: ",
                    0 ),
              0u )
         << result.findings.front();
}

TEST( ConformanceRunTest, ScenariosAimedAtTheReferenceChipAreSkippedForAnotherDriver ) {
   Sim::Scenario const faults = Sim::loadScenario( NEVQOS_EXAMPLES_DIR "/basic-faults.yaml" );
   Conformance::DriverUnderTest driver = referenceDriver();
   driver.onReferenceChip = false;
   Conformance::ConformanceResult const result = Conformance::runConformance( faults, driver );
   EXPECT_EQ( result.steps, 0u );
   EXPECT_NE( result.skipped.find( "aimed at the reference chip" ), std::string::npos )
         << result.skipped;
   // Damage to the TCAM is there for verification to find, on any driver.
   Sim::Scenario const damage = Sim::loadScenario( NEVQOS_EXAMPLES_DIR "/tcam-corruption.yaml" );
   EXPECT_EQ( Conformance::runConformance( damage, referenceDriver() ).skipped,
              "damages the TCAM on purpose, for verification to find" );
}

}  // namespace
}  // namespace NevQosTest
