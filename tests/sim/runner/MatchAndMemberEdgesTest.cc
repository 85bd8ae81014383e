// A configuration at the edge of what the engine compiles, run end to end: a class map with an
// empty MPLS traffic-class list gets its list without a rule, and verification agrees. (The
// stories under tests/stories tell of a list configured late and of a VXLAN member.)
#include <gtest/gtest.h>

#include <string>

#include "support/SimProgram.h"

namespace NevQosTest {
namespace {

using Json = nlohmann::json;

std::string scenarioWith( std::string const& trafficClasses ) {
   return R"(
interfaces: [ Ethernet1, Ethernet2 ]
acls:
  - name: A
    rules: [ { proto: udp } ]
classMaps:
  - { name: c, match: { ipv4: A } }
  - { name: m, match: { mplsTrafficClass: )" +
          trafficClasses + R"( } }
policyMaps:
  - name: p
    classes:
      - { class: c, set: { dscp: 10 } }
      - { class: m, set: { dscp: 12 } }
servicePolicies:
  - { policyMap: p, interfaces: [ Ethernet1 ] }
steps:
  - at: 2
    changes:
      - attach: { policyMap: p, interfaces: [ Ethernet2 ] }
)";
}

Json const* mplsList( Json const& report ) {
   for( Json const& acl : report[ "tcam" ][ "acls" ] ) {
      if( acl[ "id" ].get< std::string >().find( "mpls-traffic-class" ) != std::string::npos )
         return &acl;
   }
   return nullptr;
}

TEST( MatchAndMemberEdgesTest, AnEmptyMplsTrafficClassListGetsAListWithoutARule ) {
   struct Case {
      char const* trafficClasses;
      std::size_t entries;
   };
   for( Case const c : { Case{ "[]", 0 }, Case{ "[ 1-2 ]", 2 }, Case{ "[ 0-7 ]", 1 } } ) {
      SCOPED_TRACE( c.trafficClasses );
      std::string const path = scenarioFile( "mpls.yaml", scenarioWith( c.trafficClasses ) );
      SimRun const run = runSim( { path, "--json", "--verify=always" } );
      ASSERT_EQ( run.exitCode, 0 ) << run.err << run.out.substr( 0, 2000 );
      Json const report = run.report();
      EXPECT_EQ( report[ "verify" ][ "findings" ].size(), 0u );
      Json const* list = mplsList( report );
      ASSERT_NE( list, nullptr );
      EXPECT_EQ( ( *list )[ "entries" ].size(), c.entries );
      EXPECT_TRUE( ( *list )[ "committed" ].get< bool >() );
   }
}

}  // namespace
}  // namespace NevQosTest
