// Scenario inputs that reach the less travelled paths of basic QoS and class-based forwarding:
// the review task's work quantum, removals the engine never saw, damaged shared tables and failing
// rule-table operations; and the report keys that show them. (The DLP flow, trust modes given as
// numbers and the second datapath have stories under tests/stories.)
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "NevQos/sim/runner/Report.h"
#include "NevQos/sim/runner/SimSwitch.h"
#include "NevQos/sim/scenario/ScenarioLoader.h"

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
   auto const counts = sw.calls().counts();
   auto const it = counts.find( op );
   return it == counts.end() ? 0 : static_cast< std::size_t >( it->second );
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
}

}  // namespace
}  // namespace NevQosTest
