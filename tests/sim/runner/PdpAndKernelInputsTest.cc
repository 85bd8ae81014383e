// The engine inputs a scenario reaches beside the configuration: PDP mode, whose default PDP
// policy the engine configures itself and the switch merges into the status; and the kernel
// packet driver's calls in order. (The ports the default policy takes, with the chip's policer,
// and the kernel's CoPP configuration, read at each start-up, have stories under tests/stories.)
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "support/SimProgram.h"

namespace NevQosTest {
namespace {

using Json = nlohmann::json;

Json reportOf( std::string const& name, std::string const& text ) {
   SimRun const run = runSim( { scenarioFile( name, text ), "--json" } );
   EXPECT_EQ( run.exitCode, 0 ) << run.err;
   return run.exitCode == 0 ? run.report() : Json::object();
}

std::size_t callsOf( Json const& report, std::string const& op ) {
   std::size_t n = 0;
   for( Json const& c : report[ "calls" ] )
      n += c[ "op" ] == op;
   return n;
}

// The interfaces the chip's lists of the default PDP policy are bound to.
std::set< std::string > defaultPolicyPorts( Json const& report ) {
   std::set< std::string > ports;
   for( Json const& acl : report[ "tcam" ][ "acls" ] ) {
      if( acl[ "id" ].get< std::string >().starts_with( "default-pdp-policy(pdp,input)/" ) ) {
         for( Json const& intf : acl[ "interfaces" ] )
            ports.insert( intf.get< std::string >() );
      }
   }
   return ports;
}

// A configuration named policer of the chip's name, with other rates, is not the one used.
std::string const pdpScenario = R"(
chip:
  pdpSupported: true
  pdpMode: true
  namedPolicers: [ { name: cap, cir: 300, bc: 4000 } ]
interfaces: [ Ethernet1, Ethernet2 ]
acls: [ { name: A, rules: [ { proto: udp } ] } ]
classMaps: [ { name: c, type: pdp, match: { ipv4: A } } ]
namedPolicers: [ { name: cap, cir: 999, bc: 9000 } ]
policyMaps:
  - { name: default-pdp-policy, type: pdp, classes: [ { class: c, police: { named: cap } } ] }
)";

TEST( PdpAndKernelInputsTest, TheDefaultPdpPolicyFollowsItsMapAndSurvivesARestart ) {
   Json const report = reportOf( "pdp-changes", pdpScenario + R"(
steps:
  - at: 1
    changes:
      - policyMap: { name: default-pdp-policy, type: pdp, classes: [ { class: c, count: true } ] }
  - { at: 2, changes: [ { restart: true } ] }
)" );
   ASSERT_EQ( report[ "status" ][ "policyMaps" ].size(), 1u );
   Json const& status = report[ "status" ][ "policyMaps" ][ 0 ];
   EXPECT_EQ( status[ "version" ], 2 ) << "the map's change reaches the merged service policy";
   EXPECT_EQ( status[ "prgmStatus" ], "hwPrgmStatusSuccess" );
   EXPECT_EQ( defaultPolicyPorts( report ),
              ( std::set< std::string >{ "Ethernet1", "Ethernet2" } ) );
   EXPECT_EQ( callsOf( report, "createAndAttachPolicer" ), 2u ) << "the policer went with step 1";
}

TEST( PdpAndKernelInputsTest, ThePacketDriversCallsAreKeptInOrder ) {
   Json const report = reportOf( "kernel-calls", R"(
chip: { hwInitialized: false }
steps:
  - { at: 1, changes: [ { globalMaps: { cosToTc: { 5: 4 } } } ] }
  - { at: 2, changes: [ { hwInitialized: true } ] }
  - { at: 3, changes: [ { globalMaps: { dscpToTc: { 46: 5 } } } ] }
)" );
   Json const& kernel = report[ "controlPlane" ][ "kernel" ];
   Json const& calls = kernel[ "calls" ];
   ASSERT_EQ( calls.size(), kernel[ "operations" ].get< std::size_t >() );
   ASSERT_GT( calls.size(), 2u );
   // Nothing before the driver's start-up; the COS change made before it is told with the rest.
   EXPECT_EQ( calls[ 0 ][ "t" ], 2.0 );
   bool cosFiveToFour = false;
   for( std::size_t i = 0; i + 1 < calls.size(); ++i ) {
      EXPECT_LE( calls[ i ][ "t" ].get< double >(), calls[ i + 1 ][ "t" ].get< double >() );
      cosFiveToFour |= calls[ i ][ "op" ] == "cosToTcIs" &&
                       calls[ i ][ "args" ] == Json{ { "cos", "5" }, { "tc", "4" } };
   }
   EXPECT_TRUE( cosFiveToFour );
   // The step at 3 tells one slot, and last.
   Json const& last = calls.back();
   EXPECT_EQ( last[ "t" ], 3.0 );
   EXPECT_EQ( last[ "op" ], "dscpToTcIs" );
   EXPECT_EQ( last[ "args" ], ( Json{ { "dscp", "46" }, { "tc", "5" } } ) );
   EXPECT_EQ( calls[ calls.size() - 2 ][ "t" ], 2.0 );
}

}  // namespace
}  // namespace NevQosTest
