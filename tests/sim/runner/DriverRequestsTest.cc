// What a chip's driver and a counter client ask of the engine from a scenario: the driver's
// interface-update callback reprograms the policy maps of that interface and direction only,
// and a counter client that goes takes its counter machine with it.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "support/SimProgram.h"

namespace NevQosTest {
namespace {

using Json = nlohmann::json;

std::string const configuration = R"(
interfaces: [ Ethernet1, Ethernet2 ]
acls:
  - name: A
    rules: [ { proto: udp } ]
classMaps:
  - { name: c, match: { ipv4: A } }
policyMaps:
  - name: p
    classes:
      - { class: c, set: { dscp: 10 } }
servicePolicies:
  - { policyMap: p, interfaces: [ Ethernet1 ] }
)";

// The helper calls made at time `t`.
std::vector< std::string > callsAt( Json const& report, double t ) {
   std::vector< std::string > ops;
   for( Json const& c : report[ "calls" ] ) {
      if( c[ "t" ].get< double >() == t ) ops.push_back( c[ "op" ].get< std::string >() );
   }
   return ops;
}

TEST( DriverRequestsTest, TheInterfaceUpdateCallbackReprogramsThatInterfaceAndDirection ) {
   struct Case {
      char const* callback;
      bool reprogrammed;
   };
   for( Case const c : { Case{ "{ interface: Ethernet1 }", true },
                         Case{ "{ interface: Ethernet1, direction: output }", false },
                         Case{ "{ interface: Ethernet2 }", false } } ) {
      SCOPED_TRACE( c.callback );
      std::string const path =
            scenarioFile( "callback.yaml", configuration +
                                                 "steps:\n  - at: 2\n    changes:\n"
                                                 "      - intfUpdateCallback: " +
                                                 c.callback + "\n" );
      SimRun const run = runSim( { path, "--json" } );
      ASSERT_EQ( run.exitCode, 0 ) << run.err;
      std::vector< std::string > const ops = callsAt( run.report(), 2.0 );
      if( !c.reprogrammed ) {
         EXPECT_TRUE( ops.empty() ) << ops.size() << " calls, first " << ops.front();
         continue;
      }
      // The interface's map is taken down and compiled and bound again.
      auto const has = [ & ]( char const* op ) {
         return std::find( ops.begin(), ops.end(), op ) != ops.end();
      };
      EXPECT_TRUE( has( "destroyAcl" ) && has( "commitAcl" ) && has( "updatePortForAcl" ) )
            << ops.size() << " calls";
   }
}

TEST( DriverRequestsTest, ACounterClientThatGoesTakesItsCounterMachine ) {
   auto const clientsAfter = []( std::string const& changes ) {
      std::string const path = scenarioFile( "clients.yaml", configuration + "steps:\n" + changes );
      SimRun const run = runSim( { path, "--json" } );
      EXPECT_EQ( run.exitCode, 0 ) << run.err;
      return run.exitCode == 0 ? run.report()[ "engine" ][ "counterClients" ] : Json();
   };
   EXPECT_EQ( clientsAfter(
                    "  - { at: 1, changes: [ requestCounters: snmp, requestCounters: cli ] }\n" ),
              Json::parse( R"(["cli","snmp"])" ) );
   EXPECT_EQ(
         clientsAfter( "  - { at: 1, changes: [ requestCounters: snmp, requestCounters: cli ] }\n"
                       "  - { at: 2, changes: [ removeCounterClient: snmp ] }\n" ),
         Json::parse( R"(["cli"])" ) );
   // A client may come back after it went.
   EXPECT_EQ( clientsAfter( "  - { at: 1, changes: [ requestCounters: snmp ] }\n"
                            "  - { at: 2, changes: [ removeCounterClient: snmp ] }\n"
                            "  - { at: 3, changes: [ requestCounters: snmp ] }\n" ),
              Json::parse( R"(["snmp"])" ) );
}

}  // namespace
}  // namespace NevQosTest
