// A service policy with nothing to program (no interface, or none present): on both TCAM modes it
// reports success for the version configured, whichever way the configuration was reached, holds
// nothing in the chip, and is never left in progress.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "reliability/ReliabilityTest.h"
#include "reliability/VerifiedRun.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;

std::string const configuration = R"(
interfaces: [ Ethernet1, Ethernet2 ]
acls: [ { name: A, rules: [ { proto: tcp, dstPort: { eq: 80 } } ] } ]
classMaps: [ { name: c1, match: { ipv4: A } } ]
policyMaps:
  - { name: p, classes: [ { class: c1, set: { trafficClass: 5 } }, { class: class-default } ] }
)";

struct Reached {
   char const* what;
   char const* interfaces;
   // The steps, a second apart.
   std::vector< char const* > changes;
   unsigned version;
};

std::vector< Reached > const ways{
   { "started with no interface", "", {}, 1 },
   { "started on an interface the switch lacks", "Ethernet9", {}, 1 },
   { "the last interface detached",
     "Ethernet1",
     { "{ detach: { policyMap: p, interfaces: [ Ethernet1 ] } }" },
     1 },
   { "removed and given again with no interface",
     "Ethernet1",
     { "{ removeServicePolicy: p }", "{ servicePolicy: { policyMap: p, interfaces: [ ] } }" },
     1 },
   { "its policy map changed while it has no interface",
     "",
     { "{ policyMap: { name: p, classes: [ { class: c1, set: { trafficClass: 6 } } ] } }" },
     2 },
};

class EmptyServicePolicyTest : public ::testing::TestWithParam< Sim::TcamMode > {};

TEST_P( EmptyServicePolicyTest, ReportsSuccessForTheVersionConfiguredAndHoldsNothing ) {
   for( Reached const& r : ways ) {
      std::string yaml = configuration + "servicePolicies: [ { policyMap: p, interfaces: [ " +
                         r.interfaces + " ] } ]\n";
      if( !r.changes.empty() ) yaml += "steps:\n";
      Zub::Seconds at = 1.0;
      for( char const* change : r.changes ) {
         yaml += "  - { at: " + std::to_string( at ) + ", changes: [ " + change + " ] }\n";
         at += 1.0;
      }
      Sim::Scenario s = scenarioOf( yaml );
      s.chip.tcamMode = GetParam();
      if( GetParam() == Sim::TcamMode::asynchronous ) s.chip.asyncDelay = 0.5;
      Sim::SimSwitch sw( s );
      EXPECT_EQ( stepsVerified( sw, s.steps, at + 10.0 ), Lines{} ) << r.what;
      EXPECT_EQ( policyMapStatusOf( sw ), Lines{ "input/p: hwPrgmStatusSuccess ()" } ) << r.what;
      auto const type = sw.aclSliceHwStatus().pmapType( Qos::mapQos_ );
      auto const pmap =
            type ? type->pmap( Qos::PolicyMapHwStatusKey( Qos::directionInput_, "p" ) ) : nullptr;
      ASSERT_TRUE( pmap ) << r.what;
      EXPECT_EQ( pmap->version(), r.version ) << r.what;
      EXPECT_EQ( tcamImageOf( sw ), TcamImage{} ) << r.what;
      EXPECT_EQ( logLinesOf( sw ), Lines{} ) << r.what;
   }
}

INSTANTIATE_TEST_SUITE_P( TcamModes, EmptyServicePolicyTest,
                          ::testing::Values( Sim::TcamMode::synchronous,
                                             Sim::TcamMode::asynchronous ),
                          tcamModeName );

}  // namespace
}  // namespace NevQosTest
