// The agent's restart in the simulated switch: requests made while the engines were down are
// served once, and operations in flight end with the old engine. (What the new start-up sweeps
// and keeps, the restart-reconciliation example's expected report holds.)
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "NevQos/sim/runner/SimSwitch.h"
#include "NevQos/sim/scenario/ScenarioLoader.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;

Zub::Ptr< Qos::PolicyMapHwStatus > pmapHwStatus( Sim::SimSwitch const& sw, char const* name,
                                                 Qos::Direction direction = Qos::directionInput_ ) {
   auto const type = sw.aclSliceHwStatus().pmapType( Qos::mapQos_ );
   if( !type ) return nullptr;
   return type->pmap( Qos::PolicyMapHwStatusKey( direction, Zub::Name( name ) ) );
}

std::size_t callCount( Sim::SimSwitch const& sw, std::string const& op ) {
   std::size_t n = 0;
   for( Sim::ChipCall const& c : sw.calls().kept() )
      n += c.op == op;
   return n;
}

Lines logsOf( Sim::SimSwitch const& sw ) {
   Lines logs;
   for( Sim::LogLine const& l : sw.logs() ) {
      std::ostringstream line;
      line << l.t << " " << l.handle;
      logs.push_back( line.str() );
   }
   return logs;
}

// A counter request and an error clear made while the engines are down are served by the new
// ones' start-up, and a request served before a restart is not served again after it: the clear
// is made before the new start-up programs anything, so what fails from then on stays reported.
TEST( SimSwitchRestartTest, RequestsMadeWhileDownAreServedOnceByTheNewEngines ) {
   Sim::Scenario const s = Sim::loadScenarioText( R"(
chip: { ecnProfiles: 1 }
interfaces: [ Ethernet1, Ethernet2 ]
acls: [ { name: A, rules: [ { proto: udp } ] } ]
classMaps: [ { name: c, match: { ipv4: A } } ]
policyMaps: [ { name: p, classes: [ { class: c, set: { dscp: cs2 }, count: true } ] } ]
servicePolicies: [ { policyMap: p, interfaces: [ Ethernet1 ] } ]
interfaceQos:
  - { interface: Ethernet1, queues: [ { queue: 1, ecn: { min: 10000, max: 20000 } } ] }
  - { interface: Ethernet2, queues: [ { queue: 1, ecn: { min: 30000, max: 40000 } } ] }
steps:
  - at: 1
    changes:
      - traffic: { policyMap: p, class: c, interface: Ethernet1, packets: 7, bytes: 700 }
      - requestCounters: snmp
  - at: 2
    changes:
      - restart: true
      - removeInterfaceQos: Ethernet2
      - clearErrors: true
      - requestCounters: snmp
  - at: 3
    changes:
      - interfaceQos: { interface: Ethernet2, queues: [ { queue: 1, ecn: { min: 30000, max: 40000 } } ] }
  - at: 4
    changes:
      - restart: true
      - removeInterfaceQos: Ethernet2
)",
                                                  "requests.yaml" );
   Sim::SimSwitch sw( s );
   auto const failed = [ &sw ] { return sw.sliceHwStatus().status() == Qos::hwProgrammingFailed_; };
   ASSERT_TRUE( failed() ) << "Ethernet2 finds no ECN profile";
   sw.stepIs( s.steps[ 0 ] );
   auto const cmap = pmapHwStatus( sw, "p" )->cmap( Zub::Name( "c" ) );
   ASSERT_EQ( cmap->outCount(), 7u );

   sw.stepIs( s.steps[ 1 ] );
   EXPECT_FALSE( failed() );
   EXPECT_EQ( sw.aclSliceHwStatus().pmapCounterUpdateTime(), 2.0 );
   EXPECT_EQ( cmap->outCount(), 0u );

   sw.stepIs( s.steps[ 2 ] );
   ASSERT_TRUE( failed() );
   std::size_t const counterCalls = callCount( sw, "counterUpdateRequest" );
   sw.stepIs( s.steps[ 3 ] );
   EXPECT_TRUE( failed() ) << "the clear of 2 was served already";
   EXPECT_EQ( sw.aclSliceHwStatus().pmapCounterUpdateTime(), 2.0 );
   EXPECT_EQ( callCount( sw, "counterUpdateRequest" ), counterCalls );
   EXPECT_EQ( sw.verify(), Lines{} );
   EXPECT_EQ( logsOf( sw ), ( Lines{ "0.001 QOS_ECN_QUEUE_HW_FULL", "3 QOS_ECN_QUEUE_HW_FULL" } ) );
}

// A restart while the chip still has operations in flight, the first of which it would leave
// pending for ever: they end with the old engine, and the new engine's own operations complete.
TEST( SimSwitchRestartTest, OperationsInFlightEndWithTheOldEngine ) {
   Sim::Scenario const s = Sim::loadScenarioText( R"(
chip:
  tcamMode: asynchronous
  asyncDelay: 0.5
  faults: [ { kind: asyncPending, nth: 1 } ]
interfaces: [ Ethernet1 ]
acls: [ { name: A, rules: [ { proto: tcp, dstPort: { eq: 22 } } ] } ]
classMaps: [ { name: c, match: { ipv4: A } } ]
policyMaps: [ { name: p, classes: [ { class: c, set: { dscp: cs2 } } ] } ]
servicePolicies: [ { policyMap: p, interfaces: [ Ethernet1 ] } ]
)",
                                                  "inflight.yaml" );
   Sim::SimSwitch sw( s );
   sw.runUntil( 0.2 );
   ASSERT_GT( sw.chip().pendingOperations(), 0u );
   sw.restart();
   sw.runUntil( 30.0 );
   EXPECT_EQ( sw.chip().pendingOperations(), 0u );
   auto const status = pmapHwStatus( sw, "p" );
   ASSERT_TRUE( status );
   EXPECT_EQ( status->prgmStatus(), Qos::hwPrgmStatusSuccess_ );
   EXPECT_EQ( sw.chip().tcam().acls().size(), 1u );
   EXPECT_EQ( sw.verify(), Lines{} );
   EXPECT_TRUE( sw.logs().empty() ) << sw.logs().front().text;
}

}  // namespace
}  // namespace NevQosTest
