// A class that matches a MAC list whose rule the chip refuses: on both TCAM modes the map fails
// and logs it, as for any other list, and nothing of it stays in the chip, whether the map was
// compiled at start-up or when an interface joined it.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "reliability/ReliabilityTest.h"
#include "reliability/VerifiedRun.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;

// p matches M1 (two entries); q, on Ethernet1, takes one entry of its own.
std::string const configuration = R"(
interfaces: [ Ethernet1, Ethernet2 ]
acls:
  - { name: M1, type: mac, rules: [ { seq: 20, etherType: 0x86dd }, { seq: 30, etherType: 0x800 } ] }
  - { name: B, rules: [ { proto: udp } ] }
classMaps: [ { name: c3, match: { mac: M1 } }, { name: c2, match: { ipv4: B } } ]
policyMaps:
  - { name: p, classes: [ { class: c3, set: { dscp: 10 } } ] }
  - { name: q, classes: [ { class: c2, set: { dscp: 12 } } ] }
)";

struct Refusal {
   char const* what;
   char const* chip;
   char const* servicePolicies;
   // The step at 1 s, if any.
   char const* change;
};

std::vector< Refusal > const refusals{
   { "the slice cannot take the second rule at start-up", "chip: { tcamSliceEntries: 1 }\n",
     "servicePolicies: [ { policyMap: p, interfaces: [ Ethernet2 ] } ]\n", nullptr },
   { "the slice is full when an interface joins", "chip: { tcamSliceEntries: 2 }\n",
     "servicePolicies: [ { policyMap: q, interfaces: [ Ethernet1 ] },"
     " { policyMap: p, interfaces: [ Ethernet9 ] } ]\n",
     "{ attach: { policyMap: p, interfaces: [ Ethernet2 ] } }" },
   { "the chip answers out of TCAM",
     "chip: { faults: [ { kind: operationError, op: createMacAclRule, nth: 2 } ] }\n",
     "servicePolicies: [ { policyMap: p, interfaces: [ Ethernet2 ] } ]\n", nullptr },
};

class MacListRefusedRuleTest : public ::testing::TestWithParam< Sim::TcamMode > {};

TEST_P( MacListRefusedRuleTest, TheMapFailsAndLeavesNothingInTheChip ) {
   for( Refusal const& r : refusals ) {
      std::string yaml = r.chip + configuration + r.servicePolicies;
      if( r.change ) yaml += std::string( "steps: [ { at: 1, changes: [ " ) + r.change + " ] } ]\n";
      Sim::Scenario s = scenarioOf( yaml );
      s.chip.tcamMode = GetParam();
      if( GetParam() == Sim::TcamMode::asynchronous ) s.chip.asyncDelay = 0.5;
      Sim::SimSwitch sw( s );
      EXPECT_EQ( stepsVerified( sw, s.steps, 5.0 ), Lines{} ) << r.what;
      Lines status = policyMapStatusOf( sw );
      std::erase( status, "input/q: hwPrgmStatusSuccess ()" );
      EXPECT_EQ( status, Lines{ "input/p: hwPrgmStatusFail (Insufficient hardware resources)" } )
            << r.what;
      EXPECT_EQ( aclsOfPolicyMap( tcamImageOf( sw ), "p" ), Lines{} ) << r.what;
      EXPECT_EQ( logLinesOf( sw ),
                 Lines{ "QOS_POLICY_HW_RESOURCE_FULL: Insufficient hardware resources to program "
                        "the input policy-map p." } )
            << r.what;
   }
}

INSTANTIATE_TEST_SUITE_P( TcamModes, MacListRefusedRuleTest,
                          ::testing::Values( Sim::TcamMode::synchronous,
                                             Sim::TcamMode::asynchronous ),
                          tcamModeName );

}  // namespace
}  // namespace NevQosTest
