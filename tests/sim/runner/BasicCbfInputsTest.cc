// Scenario inputs that reach the less travelled paths of basic QoS and class-based forwarding:
// the DLP flow, trust modes given as numbers, the second datapath's service policies, the review
// task's work quantum, removals the engine never saw, damaged shared tables and failing rule-table
// operations; and the report keys that show them.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "sim/runner/Report.h"
#include "sim/runner/SimSwitch.h"
#include "sim/scenario/ScenarioError.h"
#include "sim/scenario/ScenarioLoader.h"
#include "support/ScenarioErrorOf.h"

namespace NevQosTest {
namespace {

struct Ran {
   Sim::Scenario scenario;
   std::unique_ptr< Sim::SimSwitch > sw;
};

Ran run( std::string const& text ) {
   Ran r{ Sim::loadScenarioText( text, "inputs.yaml" ), nullptr };
   r.sw = std::make_unique< Sim::SimSwitch >( r.scenario );
   for( Sim::Step const& step : r.scenario.steps ) {
      r.sw->runUntil( step.time );
      r.sw->stepIs( step );
   }
   r.sw->runUntil( r.sw->now() + 5.0 );
   return r;
}

std::size_t callsOf( Sim::SimSwitch const& sw, std::string const& op ) {
   return static_cast< std::size_t >(
         std::count_if( sw.calls().begin(), sw.calls().end(),
                        [ &op ]( Sim::ChipCall const& call ) { return call.op == op; } ) );
}

// ---- DLP

// A port that comes up at 1 and goes down at 2, with a queue and an ECN counter.
std::string const portComingUp = R"(
interfaces: [ Ethernet1 ]
links: [ { interface: Ethernet1, speed: 10000 } ]
interfaceQos:
  - { interface: Ethernet1, trust: dscp, queues: [ { queue: 1, priority: strict } ] }
ecnCounters: [ { interface: Ethernet1, queues: 1 } ]
steps:
  - at: 1
    changes: [ { link: { interface: Ethernet1, active: true } } ]
  - at: 2
    changes: [ { link: { interface: Ethernet1, active: false } } ]
)";

TEST( BasicCbfInputsTest, UnderDlpAPortBecomingActiveIsProgrammedAgain ) {
   struct Case {
      char const* chip;
      // Start-up programs the port once; the DLP flow programs it again when it comes up.
      std::size_t trustCalls;
      std::size_t queueCalls;
   } const cases[] = {
      { "chip: { ecnQueueCounterSupported: true }\n", 1, 1 },
      { "chip: { ecnQueueCounterSupported: true, dlpEnabled: true }\n", 2, 2 },
   };
   for( Case const& c : cases ) {
      SCOPED_TRACE( c.chip );
      Ran const r = run( c.chip + portComingUp );
      EXPECT_EQ( callsOf( *r.sw, "programIntfTrustModeDscp" ), c.trustCalls );
      EXPECT_EQ( callsOf( *r.sw, "programIntfTxQueuePriority" ), c.queueCalls );
      // Either way the chip hears of both changes, once each.
      EXPECT_EQ( callsOf( *r.sw, "handleEthPhyIntfStatusActive" ), 2u );
   }
}

TEST( BasicCbfInputsTest, UnderDlpEcnCountersFollowThePortsState ) {
   // The counter of queue 1 after each moment: at the start (the port inactive), once the port
   // is up, and once it is down again.
   struct Case {
      char const* chip;
      bool counting[ 3 ];
   } const cases[] = {
      { "chip: { ecnQueueCounterSupported: true }\n", { true, true, true } },
      { "chip: { ecnQueueCounterSupported: true, dlpEnabled: true }\n", { false, true, false } },
   };
   for( Case const& c : cases ) {
      SCOPED_TRACE( c.chip );
      Sim::Scenario const s = Sim::loadScenarioText( c.chip + portComingUp, "dlp.yaml" );
      Sim::SimSwitch sw( s );
      for( std::size_t moment = 0; moment < 3; ++moment ) {
         if( moment > 0 ) sw.stepIs( s.steps[ moment - 1 ] );
         EXPECT_EQ( sw.basicChip().ecnCounters().size(), c.counting[ moment ] ? 1u : 0u )
               << "moment " << moment;
      }
   }
}

// ---- Trust modes

TEST( BasicCbfInputsTest, ATrustModeMayBeANumberAndTheEngineActsOnItsValue ) {
   struct Case {
      char const* trust;
      // The trust operation the engine calls, or none.
      char const* op;
   } const cases[] = {
      { "1", "programIntfTrustModeDscp" },
      { "2", "programIntfTrustModeUntrusted" },
      // A port without a settled mode classifies by COS.
      { "3", "programIntfTrustModeCos" },
      { "0x10", nullptr },
      { "4294967295", nullptr },
   };
   for( Case const& c : cases ) {
      SCOPED_TRACE( c.trust );
      Ran const r = run( std::string( "interfaces: [ Ethernet1 ]\ninterfaceQos: [ { interface: "
                                      "Ethernet1, trust: " ) +
                         c.trust + " } ]\n" );
      std::size_t trustCalls = 0;
      for( char const* op : { "programIntfTrustModeCos", "programIntfTrustModeDscp",
                              "programIntfTrustModeUntrusted" } ) {
         trustCalls += callsOf( *r.sw, op );
      }
      EXPECT_EQ( trustCalls, c.op ? 1u : 0u );
      if( c.op ) {
         EXPECT_EQ( callsOf( *r.sw, c.op ), 1u );
      }
   }
}

TEST( BasicCbfInputsTest, ATrustModeThatIsNeitherANameNorA32BitNumberIsRefused ) {
   std::string const head =
         "interfaces: [ Ethernet1 ]\ninterfaceQos:\n  - { interface: "
         "Ethernet1, trust: ";
   EXPECT_EQ( errorOf( head + "4294967296 }\n" ),
              "bad.yaml:3:36: trust: 4294967296 is out of range 0..4294967295" );
   EXPECT_EQ( errorOf( head + "cost }\n" ),
              "bad.yaml:3:36: trust: 'cost' is not one of cos, dscp, untrusted" );
}

// ---- The second datapath

std::string const dp1 = R"(
steps:
  - at: 1
    changes:
      - servicePolicyDP1: { policyMap: edge }
      - servicePolicyDP1: { policyMap: core, direction: output }
  - at: 2
    changes:
      - servicePolicyDP1: { policyMap: edge, on: false }
)";

TEST( BasicCbfInputsTest, TheSecondDatapathsServicePoliciesReachTheDriver ) {
   Ran const r = run( dp1 );
   // Each service policy that comes or goes is told.
   std::vector< Zub::Seconds > told;
   for( Sim::ChipCall const& call : r.sw->calls() ) {
      if( call.op == "handleServicePolicyDP1Status" ) told.push_back( call.t );
   }
   EXPECT_EQ( told, ( std::vector< Zub::Seconds >{ 1.0, 1.0, 2.0 } ) );
}

TEST( BasicCbfInputsTest, OnlyAServicePolicyTheSecondDatapathHoldsCanBeSwitchedOff ) {
   EXPECT_EQ( errorOf( dp1 + "      - servicePolicyDP1: { policyMap: edge, on: false }\n" ),
              "bad.yaml:10:9: the second datapath does not hold service policy qos input edge "
              "to switch off" );
   EXPECT_EQ( errorOf( "steps: [ { at: 1, changes: [ { servicePolicyDP1: { policyMap: a, on: "
                       "maybe } } ] } ]\n" ),
              "bad.yaml:1:70: on: expected true or false, found 'maybe'" );
}

// ---- Report keys of the basic slice status

TEST( BasicCbfInputsTest, TheReportShowsWhatTheBasicSliceStatusRecords ) {
   Ran const r = run( R"(
chip: { cosToTcPerInterfaceSupported: true }
interfaces: [ Ethernet1, Ethernet2 ]
cosToTcProfiles: [ { name: low, cosToTc: { 5: 1 } } ]
interfaceQos: [ { interface: Ethernet2, cosToTcProfile: low }, { interface: Ethernet1 } ]
steps:
  - at: 3
    changes: [ { globalMaps: { cosToTc: { 1: 2 } } } ]
)" );
   nlohmann::ordered_json const report = Sim::reportOf( r.scenario, *r.sw );
   EXPECT_EQ( report[ "status" ][ "basicConfigVersionUpdateTime" ], 3.0 );
   EXPECT_EQ( report[ "status" ][ "intfToCosToTcProfile" ],
              nlohmann::ordered_json( { { "Ethernet2", "low" } } ) );
}

// ---- Class-based forwarding

// Overrides of FECs 1 to 5, each to FEC 9, all answered.
std::string overrides( std::string const& chip ) {
   std::string text = "chip: { " + chip + " }\nfecService: [ { fec: 9, hwFecId: 900 }";
   for( int fec = 1; fec <= 5; ++fec )
      text += ", { fec: " + std::to_string( fec ) + ", hwFecId: " + std::to_string( fec ) + "00 }";
   text += " ]\nfecOverrides:\n";
   for( int fec = 1; fec <= 5; ++fec )
      text += "  - { dscp: 46, fec: " + std::to_string( fec ) + ", overridingFec: 9 }\n";
   return text;
}

TEST( BasicCbfInputsTest, TheReviewTakesAsManyKeysARunAsTheQuantumSays ) {
   struct Case {
      char const* chip;
      std::uint64_t runs;
   } const cases[] = { { "", 1 }, { "cbfReviewQuantum: 2", 3 }, { "cbfReviewQuantum: 1", 5 } };
   for( Case const& c : cases ) {
      SCOPED_TRACE( c.chip );
      Ran const r = run( overrides( c.chip ) );
      nlohmann::ordered_json const cbf = Sim::reportOf( r.scenario, *r.sw )[ "cbf" ];
      EXPECT_EQ( cbf[ "reviewRuns" ], c.runs );
      // However cut, the review programs every override.
      EXPECT_EQ( cbf[ "ruleTable" ][ "used" ], 5 );
   }
   EXPECT_EQ( errorOf( "chip: { cbfReviewQuantum: 0 }\n" ),
              "bad.yaml:1:27: cbfReviewQuantum: 0 is out of range 1..4294967295" );
}

TEST( BasicCbfInputsTest, ARemovalOfAnOverrideTheEngineNeverSawIsReviewedAndTouchesNothing ) {
   Ran const r = run( overrides( "" ) + R"(steps:
  - at: 1
    changes: [ { removeFecOverride: { af: ipv6, dscp: 10, fec: 3 } } ]
)" );
   // One review at the start, one for the key.
   EXPECT_EQ( r.sw->cbfEngine().policyOverrideTask()->taskRuns(), 2u );
   EXPECT_EQ( callsOf( *r.sw, "deleteMapping" ), 0u );
   EXPECT_EQ( r.sw->cbfChip().rules().size(), 5u );
   EXPECT_EQ( r.sw->fecOverrideStatus().size(), 5u );
   EXPECT_EQ( r.sw->hwFecIdRequest().size(), 6u );
}

TEST( BasicCbfInputsTest, ADamagedRecordRestartsTheAgentWhenTheEngineReadsIt ) {
   struct Case {
      char const* damage;
      // The change that makes the engine read the record, or none.
      char const* read;
      std::size_t restarts;
      // Hardware FEC ids of FEC 2 and of the overriding FEC 9 in the end.
      std::uint64_t hwFec2;
      std::uint64_t hwFec9;
   } const cases[] = {
      { "corruptFecOverride: { dscp: 46, fec: 2 }", "fecService: { fec: 2, hwFecId: 222 }", 1, 222,
        900 },
      { "corruptFecService: 2", "fecService: { fec: 9, hwFecId: 999 }", 1, 200, 999 },
      // A record nobody reads does no harm.
      { "corruptFecOverride: { dscp: 46, fec: 2 }", nullptr, 0, 200, 900 },
   };
   for( Case const& c : cases ) {
      SCOPED_TRACE( c.damage );
      std::string steps =
            std::string( "steps:\n  - at: 1\n    changes:\n      - " ) + c.damage + "\n";
      if( c.read ) steps += std::string( "      - " ) + c.read + "\n";
      Ran const r = run( overrides( "" ) + steps );
      ASSERT_EQ( r.sw->corruptionRestarts().size(), c.restarts );
      if( c.restarts ) {
         EXPECT_EQ( r.sw->corruptionRestarts()[ 0 ].t, 1.0 );
         EXPECT_NE( r.sw->corruptionRestarts()[ 0 ].text.find( "inconsistent record" ),
                    std::string::npos );
      }
      // Every override ends programmed, with the FEC ids that stand.
      ASSERT_EQ( r.sw->cbfChip().rules().size(), 5u );
      for( auto const& [ key, rule ] : r.sw->cbfChip().rules() ) {
         EXPECT_EQ( rule.overridingHwFecId, c.hwFec9 );
         if( key.fecId == 2 ) {
            EXPECT_EQ( rule.hwFecId, c.hwFec2 );
         }
      }
   }
}

TEST( BasicCbfInputsTest, AFailingRuleTableOperationShowsAsItsDriverWouldFail ) {
   std::string const removeOne =
         "steps:\n  - at: 1\n    changes: [ { removeFecOverride: { dscp: 46, fec: 1 } } ]\n";
   // The first call of `op` fails.
   auto withFault = [ & ]( std::string const& op, std::string const& steps ) {
      return overrides( "faults: [ { kind: operationError, op: " + op + ", nth: 1 } ]" ) + steps;
   };
   {
      SCOPED_TRACE( "createOrUpdateMapping" );
      Ran const r = run( withFault( "createOrUpdateMapping", removeOne ) );
      // The first override fails once, is taken for a full table, and is retried.
      auto const full = std::count_if( r.sw->logs().begin(), r.sw->logs().end(), []( auto& l ) {
         return l.handle == "ROUTING_CBF_HW_RESOURCE_FULL";
      } );
      EXPECT_EQ( full, 1 );
      EXPECT_EQ( r.sw->cbfChip().rules().size(), 4u );
      EXPECT_FALSE( r.sw->cbfEngine().resourceFull() );
   }
   {
      SCOPED_TRACE( "deleteMapping" );
      Ran const r = run( withFault( "deleteMapping", removeOne ) );
      // The removed override's rule stays in the table, owned by nothing.
      EXPECT_EQ( r.sw->cbfChip().rules().size(), 5u );
      EXPECT_EQ( r.sw->fecOverrideStatus().size(), 4u );
   }
   {
      SCOPED_TRACE( "hwFecOverrideRuleId" );
      Ran const r = run( withFault( "hwFecOverrideRuleId", "" ) );
      std::size_t withoutRuleId = 0;
      for( auto it = r.sw->fecOverrideStatus().iter(); it; ++it ) {
         withoutRuleId += it.value().hwRuleId == Qos::Hardware::invalidFecOverrideRuleId;
      }
      EXPECT_EQ( withoutRuleId, 1u );
   }
   EXPECT_EQ( errorOf( "chip: { faults: [ { kind: operationError, op: deleteMapping, error: "
                       "outOfTcam } ] }\n" ),
              "bad.yaml:1:69: error: does not apply to class-based-forwarding operation "
              "deleteMapping, which fails as its driver does" );
   EXPECT_EQ( errorOf( "chip: { faults: [ { kind: operationError, op: syncMapping } ] }\n" ),
              "bad.yaml:1:47: op: 'syncMapping' is no operation of the ACL, basic QoS or "
              "class-based-forwarding helper that a fault can fail" );
}

}  // namespace
}  // namespace NevQosTest
