// What the chip answers and the switch-wide settings beside it, given as chip keys of a scenario,
// change what the engine does: each key against its default, on the same configuration.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "sim/runner/SimSwitch.h"
#include "sim/scenario/ScenarioLoader.h"

namespace NevQosTest {
namespace {

std::string const policyOnOnePort = R"(
interfaces: [ Ethernet1 ]
acls: [ { name: WEB, rules: [ { proto: tcp, dstPort: { eq: 80 } } ] } ]
classMaps: [ { name: web, match: { ipv4: WEB } } ]
policyMaps: [ { name: gold, classes: [ { class: web, set: { dscp: 10 } } ] } ]
servicePolicies: [ { policyMap: gold, interfaces: [ Ethernet1 ] } ]
steps:
  - at: 1
    changes:
      - detach: { policyMap: gold, interfaces: [ Ethernet1 ] }
)";

std::string const queuesOnTwoPorts = R"(
interfaces: [ Ethernet1, Ethernet2 ]
links:
  - { interface: Ethernet1, speed: 10000, active: true }
  - { interface: Ethernet2, speed: 10000, active: true }
interfaceQos:
  - { interface: Ethernet1, trust: dscp }
  - { interface: Ethernet2, trust: dscp }
)";

// The calls of `op` (by its operation name, on any helper) in a run of `text` on a chip of
// `chipKeys`.
std::size_t run( std::string const& chipKeys, std::string const& text, std::string const& op ) {
   Sim::Scenario const s =
         Sim::loadScenarioText( "chip: { " + chipKeys + " }\n" + text, "answers.yaml" );
   Sim::SimSwitch sw( s );
   for( Sim::Step const& step : s.steps ) {
      sw.runUntil( step.time );
      sw.stepIs( step );
   }
   sw.runUntil( sw.now() + 5.0 );
   return static_cast< std::size_t >(
         std::count_if( sw.calls().begin(), sw.calls().end(),
                        [ &op ]( Sim::ChipCall const& call ) { return call.op == op; } ) );
}

TEST( ChipAnswersTest, EachKeyChangesWhatTheEngineDoes ) {
   struct Case {
      char const* key;
      std::string const& scenario;
      // The operation whose calls the key changes.
      char const* op;
      std::size_t byDefault;
      std::size_t withKey;
   } const cases[] = {
      // A chip that wants a map compiled only once it has an interface gets the interface
      // bound by the compile itself; by default the map is compiled first and the interface
      // joins it after.
      { "createSmForPMap: false", policyOnOnePort, "updatePortForAcl", 1, 0 },
      // A fabric slice's basic QoS serves the fabric interface only.
      { "isFabricSlice: true", queuesOnTwoPorts, "programIntfTrustModeDscp", 2, 0 },
   };
   for( Case const& c : cases ) {
      SCOPED_TRACE( c.key );
      EXPECT_EQ( run( "", c.scenario, c.op ), c.byDefault );
      EXPECT_EQ( run( c.key, c.scenario, c.op ), c.withKey );
   }
}

TEST( ChipAnswersTest, AMapCompiledOnceItHasAnInterfaceEndsAsTheDefaultOne ) {
   // Either way the list stands on the chip bound to the port, and the engine finds nothing
   // amiss in it.
   for( char const* keys : { "", "createSmForPMap: false" } ) {
      SCOPED_TRACE( keys );
      Sim::Scenario const s = Sim::loadScenarioText(
            std::string( "chip: { " ) + keys + " }\n" + policyOnOnePort, "answers.yaml" );
      Sim::SimSwitch sw( s );
      sw.runUntil( 0.5 );
      std::string const web = "gold(qos,input)/web/Default WEB(ip)";
      ASSERT_TRUE( sw.chip().tcam().acls().contains( web ) );
      auto const& ports = sw.chip().aclPorts();
      ASSERT_TRUE( ports.contains( web ) );
      EXPECT_TRUE( ports.at( web ).contains( "Ethernet1" ) );
      EXPECT_EQ( sw.verify(), std::vector< std::string >{} );
   }
}

}  // namespace
}  // namespace NevQosTest
