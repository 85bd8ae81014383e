// The list of a class that matches on the MPLS traffic class is in the chip like any other: on
// both TCAM modes it leaves with its class, whether the map fails, the service policy goes, the
// class leaves the map or its class map stops matching on the traffic class.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "reliability/ReliabilityTest.h"
#include "reliability/VerifiedRun.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;

// c8 matches the traffic class, c2 an access list of three rules (six entries).
std::string const configuration = R"(
interfaces: [ Ethernet1 ]
acls:
  - name: A2
    rules:
      - { seq: 10, proto: tcp, dstPort: { eq: 80 } }
      - { seq: 20, proto: udp, dstPort: { eq: 53 } }
      - { seq: 30, proto: udp, dstPort: { eq: 123 } }
classMaps:
  - { name: c8, match: { mplsTrafficClass: 3 } }
  - { name: c2, match: { ipv4: A2 } }
policyMaps:
  - { name: p, classes: [ { class: c8, drop: true }, { class: c2, set: { dscp: 10 } } ] }
servicePolicies: [ { policyMap: p, interfaces: [ Ethernet1 ] } ]
)";

struct Teardown {
   char const* what;
   char const* chip;
   // The step at 1 s; none for a map that fails from the start.
   char const* change;
   Lines status;
};

Lines const failed{ "input/p: hwPrgmStatusFail (Insufficient hardware resources)" };
Lines const succeeded{ "input/p: hwPrgmStatusSuccess ()" };

std::vector< Teardown > const teardowns{
   { "the map fails for want of TCAM entries", "chip: { tcamSliceEntries: 2 }\n", nullptr, failed },
   { "the service policy goes", "", "{ removeServicePolicy: p }", {} },
   { "the class leaves the map", "",
     "{ policyMap: { name: p, classes: [ { class: c2, set: { dscp: 10 } } ] } }", succeeded },
   { "its class map matches a DSCP instead", "", "{ classMap: { name: c8, match: { dscp: 12 } } }",
     succeeded },
};

class MplsTrafficClassTeardownTest : public ::testing::TestWithParam< Sim::TcamMode > {};

TEST_P( MplsTrafficClassTeardownTest, TheTrafficClassListLeavesTheChipWithItsClass ) {
   for( Teardown const& t : teardowns ) {
      std::string yaml = t.chip + configuration;
      if( t.change ) yaml += std::string( "steps: [ { at: 1, changes: [ " ) + t.change + " ] } ]\n";
      Sim::Scenario s = scenarioOf( yaml );
      s.chip.tcamMode = GetParam();
      if( GetParam() == Sim::TcamMode::asynchronous ) s.chip.asyncDelay = 0.5;
      Sim::SimSwitch sw( s );
      EXPECT_EQ( stepsVerified( sw, s.steps, 5.0 ), Lines{} ) << t.what;
      EXPECT_EQ( policyMapStatusOf( sw ), t.status ) << t.what;
      TcamImage const tcam = tcamImageOf( sw );
      for( auto const& [ id, acl ] : tcam )
         EXPECT_EQ( id.find( "mpls-traffic-class" ), std::string::npos ) << t.what << ": " << id;
      if( t.status == failed ) {
         EXPECT_EQ( aclsOfPolicyMap( tcam, "p" ), Lines{} ) << t.what;
      }
   }
}

INSTANTIATE_TEST_SUITE_P( TcamModes, MplsTrafficClassTeardownTest,
                          ::testing::Values( Sim::TcamMode::synchronous,
                                             Sim::TcamMode::asynchronous ),
                          tcamModeName );

}  // namespace
}  // namespace NevQosTest
