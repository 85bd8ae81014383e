// A policy map that does not fit, by its class budget or by the TCAM, on both TCAM modes: its
// failure stands through every later change until a version that fits, verification agrees with
// it at every turn, and a result the chip has still to give is not a mismatch.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "reliability/ReliabilityTest.h"
#include "reliability/VerifiedRun.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;

// Two classes of two lists: A takes two TCAM entries (a port rule and its fragment entry), B
// one. `classes` is the class list of the policy map as written at the start.
std::string const lists = R"(
interfaces: [ Ethernet1, Ethernet2, Ethernet3 ]
acls:
  - { name: A, rules: [ { proto: tcp, dstPort: { eq: 22 } } ] }
  - { name: B, rules: [ { proto: udp } ] }
classMaps: [ { name: c1, match: { ipv4: A } }, { name: c2, match: { ipv4: B } } ]
)";
std::string const bothClasses =
      "[ { class: c1, set: { dscp: cs2 } }, { class: c2, set: { dscp: cs3 } } ]";

Lines const failed{ "input/p: hwPrgmStatusFail (Insufficient hardware resources)" };
Lines const succeeded{ "input/p: hwPrgmStatusSuccess (Insufficient hardware resources)" };

class FailedPolicyMapTest : public ::testing::TestWithParam< Sim::TcamMode > {
 protected:
   Sim::Scenario scenario( std::string const& yaml ) const {
      Sim::Scenario s = scenarioOf( yaml );
      s.chip.tcamMode = GetParam();
      if( GetParam() == Sim::TcamMode::asynchronous ) s.chip.asyncDelay = 0.5;
      return s;
   }
   // The chip of a switch started afresh with `yaml`, once everything has settled.
   TcamImage freshImage( std::string const& yaml ) const {
      Sim::SimSwitch sw( scenario( yaml ) );
      sw.runUntil( 10.0 );
      return tcamImageOf( sw );
   }
};

TEST_P( FailedPolicyMapTest, AMapOverItsClassBudgetStaysFailedUntilAVersionThatFits ) {
   std::string const chip = "chip: { maxClassesPerPolicyMap: 2 }\n";
   std::string const yaml =
         chip + lists + "policyMaps: [ { name: p, classes: " + bothClasses + " } ]\n" +
         R"(servicePolicies: [ { policyMap: p, interfaces: [ Ethernet1, Ethernet2 ] } ]
steps:
  - { at: 1, changes: [ { attach: { policyMap: p, interfaces: [ Ethernet3 ] } } ] }
  - { at: 2, changes: [ { detach: { policyMap: p, interfaces: [ Ethernet1 ] } } ] }
  - at: 3
    changes:
      - policyMap: { name: p, classes: [ { class: c1, set: { dscp: cs4 } }, { class: c2 } ] }
  - { at: 4, changes: [ { policyMap: { name: p, classes: [ { class: c1 } ] } } ] }
)";
   Sim::Scenario const s = scenario( yaml );
   Sim::SimSwitch sw( s );
   Zub::Seconds const fits = s.steps.back().time;
   auto const stillFailed = [ & ] {
      if( sw.now() >= fits ) return;
      ASSERT_EQ( policyMapStatusOf( sw ), failed ) << "at " << sw.now();
      ASSERT_EQ( aclsOfPolicyMap( tcamImageOf( sw ), "p" ), Lines{} ) << "at " << sw.now();
   };
   Lines findings;
   for( Sim::Step const& step : s.steps ) {
      for( std::string& f : stepVerified( sw, step, stillFailed ) )
         findings.push_back( std::move( f ) );
   }
   for( std::string& f : runVerified( sw, fits + 2.0 ) )
      findings.push_back( std::move( f ) );
   EXPECT_EQ( findings, Lines{} );
   EXPECT_EQ( policyMapStatusOf( sw ), succeeded );
   EXPECT_EQ( logLinesOf( sw ), Lines{} ) << "a class budget is never logged, nor its end";
   std::string const fitting =
         chip + lists + R"(policyMaps: [ { name: p, classes: [ { class: c1 } ] } ]
servicePolicies: [ { policyMap: p, interfaces: [ Ethernet2, Ethernet3 ] } ]
)";
   EXPECT_EQ( tcamImageOf( sw ), freshImage( fitting ) );
}

TEST_P( FailedPolicyMapTest, AMapOutOfTcamIsNeverAMismatchWhileItsResultsAreStillToCome ) {
   std::string const chip = "chip: { tcamSliceEntries: 2 }\n";
   std::string const yaml =
         chip + lists + "policyMaps: [ { name: p, classes: " + bothClasses + " } ]\n" +
         R"(servicePolicies: [ { policyMap: p, interfaces: [ Ethernet1, Ethernet2 ] } ]
steps:
  - { at: 5, changes: [ { policyMap: { name: p, classes: [ { class: c2 } ] } } ] }
)";
   Sim::Scenario const s = scenario( yaml );
   Sim::SimSwitch sw( s );
   bool failedOnce = false;
   auto const neverSucceeds = [ & ] {
      if( sw.now() >= s.steps.back().time ) return;
      Lines const status = policyMapStatusOf( sw );
      ASSERT_NE( status, succeeded ) << "at " << sw.now();
      if( failedOnce ) {
         ASSERT_EQ( status, failed ) << "at " << sw.now() << ": a failure stands";
      }
      failedOnce = status == failed;
   };
   EXPECT_EQ( stepVerified( sw, s.steps.back(), neverSucceeds ), Lines{} );
   EXPECT_TRUE( failedOnce );
   EXPECT_EQ( runVerified( sw, 10.0 ), Lines{} );
   EXPECT_EQ( policyMapStatusOf( sw ), succeeded );
   EXPECT_EQ( logLinesOf( sw ),
              ( Lines{ "QOS_POLICY_HW_RESOURCE_FULL: Insufficient hardware resources to program "
                       "the input policy-map p.",
                       "QOS_POLICY_HW_RESOURCE_NORMAL: Programmed input policy-map p in "
                       "hardware." } ) );
   std::string const fitting =
         chip + lists + R"(policyMaps: [ { name: p, classes: [ { class: c2 } ] } ]
servicePolicies: [ { policyMap: p, interfaces: [ Ethernet1, Ethernet2 ] } ]
)";
   EXPECT_EQ( tcamImageOf( sw ), freshImage( fitting ) );
}

INSTANTIATE_TEST_SUITE_P( TcamModes, FailedPolicyMapTest,
                          ::testing::Values( Sim::TcamMode::synchronous,
                                             Sim::TcamMode::asynchronous ),
                          tcamModeName );

}  // namespace
}  // namespace NevQosTest
