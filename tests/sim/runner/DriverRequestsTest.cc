// A counter client that goes takes its counter machine with it, and may come back. (The driver's
// interface-update callback has a story of its own under tests/stories.)
#include <gtest/gtest.h>

#include <string>

#include "support/SimProgram.h"

namespace NevQosTest {
namespace {

using Json = nlohmann::json;

TEST( DriverRequestsTest, ACounterClientThatGoesTakesItsCounterMachine ) {
   auto const clientsAfter = []( std::string const& changes ) {
      std::string const path =
            scenarioFile( "clients.yaml", oneClassOnEthernet1() + "steps:\n" + changes );
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
