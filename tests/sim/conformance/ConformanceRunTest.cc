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

// Answers every third IP subrule a success without writing it.
class SubruleDropper : public Sim::RecordingQosAclHelper {
 public:
   using RecordingQosAclHelper::RecordingQosAclHelper;
   Nev::AclCreateError createIpAclSubrule(
         Acl::AclType aclType, Acl::RuleConfig const& rule, Acl::UniqueId const& aclId,
         Nev::QosPolicyMapState const& pmapState, Nev::QosClassData const& classData,
         Nev::AclKey const& aclKey, std::uint32_t ruleNum, std::uint32_t subruleNum,
         std::uint16_t srcL4Port, std::uint16_t srcL4PortMask, std::uint16_t dstL4Port,
         std::uint16_t dstL4PortMask, std::uint16_t srcPortLow, std::uint16_t srcPortHigh,
         std::uint16_t dstPortLow, std::uint16_t dstPortHigh, std::uint16_t ipLen,
         std::uint16_t ipLenMask, std::uint16_t ipLenLow, std::uint16_t ipLenHigh,
         std::uint8_t tcpFlags, bool l4Rule, std::uint8_t ecnData, std::uint8_t ecnMask ) override {
      if( ++subrules_ % 3 == 0 ) return Nev::aclCreateErrorNone;
      return RecordingQosAclHelper::createIpAclSubrule(
            aclType, rule, aclId, pmapState, classData, aclKey, ruleNum, subruleNum, srcL4Port,
            srcL4PortMask, dstL4Port, dstL4PortMask, srcPortLow, srcPortHigh, dstPortLow,
            dstPortHigh, ipLen, ipLenMask, ipLenLow, ipLenHigh, tcpFlags, l4Rule, ecnData,
            ecnMask );
   }

 private:
   unsigned subrules_ = 0;
};

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
   driver.helpers.acl = []( Zub::Ptr< Sim::SimQosAclHelper > const& reference,
                            Sim::DriverInputs const& in ) {
      return Zub::Ptr< NevHelper::QosAclHelper >(
            Zub::make< SubruleDropper >( reference, in.clock ) );
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
