// Configurations at the edge of what the engine compiles, run end to end: a class map with an
// empty MPLS traffic-class list gets its list without a rule (and verification agrees), a class
// map naming a list not configured yet gets no list until it is, and a service policy with a
// VXLAN member recompiles its map whenever an interface joins.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "support/SimProgram.h"

namespace NevQosTest {
namespace {

using Json = nlohmann::json;

std::string scenarioWith( std::string const& trafficClasses, std::string const& members ) {
   return R"(
interfaces: [ Ethernet1, Ethernet2, Vxlan1 ]
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
  - { policyMap: p, interfaces: )" +
          members + R"( }
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
      std::string const path =
            scenarioFile( "mpls.yaml", scenarioWith( c.trafficClasses, "[ Ethernet1 ]" ) );
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

TEST( MatchAndMemberEdgesTest, AClassOfAListNotConfiguredYetGetsItsListWhenItIs ) {
   std::string const path = scenarioFile( "unconfigured.yaml", R"(
interfaces: [ Ethernet1 ]
acls:
  - name: A
    rules: [ { proto: udp } ]
  - { name: B, configured: false }
classMaps:
  - { name: c, match: { ipv4: A } }
  - { name: d, match: { ipv4: B } }
policyMaps:
  - name: p
    classes:
      - { class: c, set: { dscp: 10 } }
      - { class: d, set: { dscp: 12 } }
servicePolicies:
  - { policyMap: p, interfaces: [ Ethernet1 ] }
steps:
  - at: 2
    changes:
      - acl: { name: B, rules: [ { proto: tcp } ] }
)" );
   SimRun const run = runSim( { path, "--json", "--verify=always" } );
   ASSERT_EQ( run.exitCode, 0 ) << run.err;
   Json const report = run.report();
   EXPECT_EQ( report[ "verify" ][ "findings" ].size(), 0u );
   auto const precreatedAt = [ & ]( std::string const& acl ) {
      std::vector< double > times;
      for( Json const& c : report[ "calls" ] ) {
         if( c[ "op" ] == "precreateAcl" &&
             c[ "args" ][ "aclKey" ].get< std::string >() == acl + "(ip)" ) {
            times.push_back( c[ "t" ].get< double >() );
         }
      }
      return times;
   };
   EXPECT_EQ( precreatedAt( "B" ), std::vector< double >{ 2.0 } )
         << "nothing for the class until its list is configured";
   EXPECT_EQ( precreatedAt( "A" ), ( std::vector< double >{ 0.001, 2.0 } ) );
   bool bInstalled = false;
   for( Json const& acl : report[ "tcam" ][ "acls" ] )
      bInstalled |= acl[ "id" ].get< std::string >().find( "/d/" ) != std::string::npos;
   EXPECT_TRUE( bInstalled );
}

TEST( MatchAndMemberEdgesTest, AVxlanMemberMakesEveryJoinRecompileTheMap ) {
   auto const destroysAtTwo = []( char const* members ) {
      std::string const path = scenarioFile( "vxlan.yaml", scenarioWith( "[ 3 ]", members ) );
      SimRun const run = runSim( { path, "--json" } );
      EXPECT_EQ( run.exitCode, 0 ) << run.err;
      Json const report = run.report();
      return std::count_if( report[ "calls" ].begin(), report[ "calls" ].end(),
                            []( Json const& c ) {
                               return c[ "t" ].get< double >() == 2.0 && c[ "op" ] == "destroyAcl";
                            } );
   };
   EXPECT_EQ( destroysAtTwo( "[ Ethernet1 ]" ), 0 ) << "a join only binds the new port";
   EXPECT_EQ( destroysAtTwo( "[ Ethernet1, Vxlan1 ]" ), 2 ) << "both lists compiled again";
}

}  // namespace
}  // namespace NevQosTest
