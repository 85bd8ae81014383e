// A control-plane policy map's class budget: its default class counts against it beside every
// class of a dynamic class map, so 47 such classes fit and 48 do not; a map over its budget
// compiles nothing.
#include <gtest/gtest.h>

#include <string>

#include "support/SimProgram.h"

namespace NevQosTest {
namespace {

std::string coppMapOf( unsigned classes ) {
   std::string classMaps, classList;
   for( unsigned i = 0; i < classes; ++i ) {
      std::string const name = "c" + std::to_string( i );
      classMaps += "  - { name: " + name + ", type: control-plane, match: { ipv4: A } }\n";
      classList += ( i ? ", { class: " : "{ class: " ) + name + " }";
   }
   return "chip: { coppSupported: true, cpuQueues: 64 }\n"
          "interfaces: [ Ethernet1 ]\n"
          "acls: [ { name: A, rules: [ { proto: udp } ] } ]\n"
          "classMaps:\n" +
          classMaps + "policyMaps: [ { name: copp-system-policy, type: control-plane, classes: [ " +
          classList +
          " ] } ]\n"
          "servicePolicies: [ { policyMap: copp-system-policy, type: control-plane, "
          "interfaces: [ Ethernet1 ] } ]\n";
}

TEST( ClassBudgetTest, AControlPlaneMapCountsItsDefaultClass ) {
   for( unsigned const classes : { 47u, 48u } ) {
      SCOPED_TRACE( classes );
      SimRun const run = runSim( { scenarioFile( "copp.yaml", coppMapOf( classes ) ), "--json" } );
      ASSERT_EQ( run.exitCode, 0 ) << run.err;
      nlohmann::json const report = run.report();
      unsigned lists = 0;
      for( nlohmann::json const& call : report[ "calls" ] )
         lists += call[ "op" ] == "precreateAcl";
      EXPECT_EQ( lists, classes == 47 ? 47u : 0u );
      EXPECT_EQ( report[ "logs" ], nlohmann::json::array() );
   }
}

}  // namespace
}  // namespace NevQosTest
