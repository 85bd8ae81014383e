// The agent's restart in the simulated switch: the new engines' start-up drops the hardware status
// of a service policy and of a FEC override removed while the engines were down and keeps the
// rest, the chip (its rule table included) comes up empty and is programmed anew, requests made
// while the engines were down are served once, and nothing is left for verification to find.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "sim/chip/ChipText.h"
#include "sim/runner/SimSwitch.h"
#include "sim/scenario/ScenarioLoader.h"
#include "support/SimProgram.h"
#include "zub/Trace.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;

Zub::Ptr< Qos::PolicyMapHwStatus > pmapHwStatus( Sim::SimSwitch const& sw, char const* name,
                                                 Qos::Direction direction = Qos::directionInput_ ) {
   auto const type = sw.aclSliceHwStatus().pmapType( Qos::mapQos_ );
   if( !type ) return nullptr;
   return type->pmap( Qos::PolicyMapHwStatusKey( direction, Zub::Name( name ) ) );
}

// The chip's installed ACLs whose id starts with `prefix`.
Lines aclsOf( Sim::SimSwitch const& sw, std::string const& prefix ) {
   Lines ids;
   for( auto const& [ id, acl ] : sw.chip().tcam().acls() ) {
      if( id.rfind( prefix, 0 ) == 0 ) ids.push_back( id );
   }
   return ids;
}

std::size_t callCount( Sim::SimSwitch const& sw, std::string const& op ) {
   std::size_t n = 0;
   for( Sim::ChipCall const& c : sw.calls() )
      n += c.op == op;
   return n;
}

// The engines' trace lines at level 2 and below, kept while it lives.
class TraceLines {
 public:
   TraceLines() {
      Zub::traceEnable( "NevQos/0-2,NevCbfFecMappingSm/0-2" );
      Zub::traceSinkIs(
            [ this ]( Zub::TraceRecord const& r ) { lines_.push_back( r.message.stdString() ); } );
   }
   ~TraceLines() {
      Zub::traceSinkIs( {} );
      Zub::traceDisableAll();
   }
   // The lines that hold `text`.
   Lines with( std::string const& text ) const {
      Lines out;
      for( std::string const& l : lines_ ) {
         if( l.find( text ) != std::string::npos ) out.push_back( l );
      }
      return out;
   }

 private:
   Lines lines_;
};

std::uint32_t cbfStatusOf( Sim::SimSwitch const& sw, std::string const& key ) {
   for( auto it = sw.fecOverrideStatus().iter(); it; ++it ) {
      if( Sim::textOf( it.key() ) == key ) return it.value().status;
   }
   return 0;
}

Lines cbfRulesOf( Sim::SimSwitch const& sw ) {
   Lines out;
   for( auto const& [ key, rule ] : sw.cbfChip().rules() ) {
      out.push_back( Sim::textOf( key ) + " #" + std::to_string( rule.id ) + " " +
                     std::to_string( rule.hwFecId ) + "->" +
                     std::to_string( rule.overridingHwFecId ) );
   }
   return out;
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

TEST( SimSwitchRestartTest, StaleStatusIsSweptTheRestKeptAndTheChipProgrammedAnew ) {
   Sim::Scenario const s = Sim::loadScenario( example( "restart-reconciliation.yaml" ) );
   ASSERT_EQ( s.steps.size(), 3u );
   Sim::SimSwitch sw( s );
   sw.stepIs( s.steps[ 0 ] );
   auto const voice = pmapHwStatus( sw, "voice-in" );
   auto const bulk = pmapHwStatus( sw, "bulk-out", Qos::directionOutput_ );
   ASSERT_TRUE( voice && bulk && pmapHwStatus( sw, "web-in" ) );
   ASSERT_FALSE( aclsOf( sw, "web-in(" ).empty() );
   ASSERT_EQ( sw.chip().policersUsed(), 1u );
   unsigned const voiceVersion = voice->version();
   ASSERT_EQ( voice->cmap( Zub::Name( "voice" ) )->outCount(), 100u );
   // One rule slot: AF41 has it, EF is refused.
   ASSERT_EQ( cbfRulesOf( sw ), Lines{ "ipv4/34/10 #0 5010->5021" } );
   ASSERT_EQ( cbfStatusOf( sw, "ipv4/46/10" ), 2u );

   TraceLines trace;
   sw.stepIs( s.steps[ 1 ] );  // the restart; web-in and AF41 removed while the engines are down
   std::ostringstream webKey;
   webKey << Qos::PolicyMapHwStatusKey( Qos::directionInput_, Zub::Name( "web-in" ) );
   EXPECT_EQ( trace.with( "stale" ),
              ( Lines{ " deleting stale fecOverrideStatus ipv4/34/10",
                       " deleting stale Qos policyMapHwStatus " + webKey.str() } ) );
   EXPECT_FALSE( pmapHwStatus( sw, "web-in" ) );
   // The very entries of before, with their status.
   EXPECT_EQ( pmapHwStatus( sw, "voice-in" ).ptr(), voice.ptr() );
   EXPECT_EQ( pmapHwStatus( sw, "bulk-out", Qos::directionOutput_ ).ptr(), bulk.ptr() );
   EXPECT_EQ( voice->prgmStatus(), Qos::hwPrgmStatusSuccess_ );
   EXPECT_EQ( bulk->prgmStatus(), Qos::hwPrgmStatusSuccess_ );
   EXPECT_EQ( voice->version(), voiceVersion );
   // Each chip started up again, and nothing of web-in or AF41 came back.
   EXPECT_EQ( callCount( sw, "hwInit" ), 4u ) << "policy and basic engines, twice";
   EXPECT_EQ( aclsOf( sw, "web-in(" ), Lines{} );
   EXPECT_EQ( sw.chip().policersUsed(), 0u );
   EXPECT_FALSE( aclsOf( sw, "voice-in(" ).empty() );
   EXPECT_FALSE( aclsOf( sw, "bulk-out(" ).empty() );
   EXPECT_EQ( cbfRulesOf( sw ), Lines{ "ipv4/46/10 #0 5010->5020" } );
   EXPECT_EQ( cbfStatusOf( sw, "ipv4/34/10" ), 0u );
   EXPECT_EQ( cbfStatusOf( sw, "ipv4/46/10" ), 1u );
   // The counter request made while the engines were down, served by the new ones from a chip
   // whose counters started again.
   EXPECT_EQ( sw.aclSliceHwStatus().pmapCounterUpdateTime(), 2.0 );
   EXPECT_EQ( voice->cmap( Zub::Name( "voice" ) )->outCount(), 0u );
   EXPECT_EQ( sw.verify(), Lines{} );

   sw.stepIs( s.steps[ 2 ] );
   EXPECT_EQ( sw.verify(), Lines{} );
   EXPECT_EQ( voice->cmap( Zub::Name( "voice" ) )->outCount(), 40u );
   // The shortage that stood at the restart ends once EF fits.
   EXPECT_EQ( logsOf( sw ), ( Lines{ "0.001 ROUTING_CBF_HW_RESOURCE_FULL",
                                     "2 ROUTING_CBF_HW_RESOURCE_NORMAL" } ) );
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
   EXPECT_EQ( aclsOf( sw, "p(" ).size(), 1u );
   EXPECT_EQ( sw.verify(), Lines{} );
   EXPECT_TRUE( sw.logs().empty() ) << sw.logs().front().text;
}

}  // namespace
}  // namespace NevQosTest
