// The runner's record of helper calls in a run that retries: identical calls in a row are one
// entry with a count and the time of the last, the runs between the first and the last kept are
// one gap entry, the count of calls stays exact, and expectations are decided on the calls
// inside a run and refused, naming the gap, where they need calls left out.
#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "NevQos/sim/runner/Expectations.h"
#include "NevQos/sim/runner/Report.h"
#include "NevQos/sim/runner/SimSwitch.h"
#include "NevQos/sim/scenario/ScenarioLoader.h"
#include "support/SimProgram.h"

namespace NevQosTest {
namespace {

using Json = nlohmann::json;

// The rule table is not ready until 2 s: the override is tried at 0.001 s and every 0.01 s
// after, 201 identical calls, the last of which at 2.001 s programs it. The first key is on
// line 2, the first expectation (when added) on line 14.
std::string const retrying = R"(
chip:
  faults: [ { kind: cbfNotReady, until: 2 } ]
fecOverrides:
  - { dscp: ef, fec: 10, overridingFec: 20 }
fecService:
  - { fec: 10, hwFecId: 5010 }
  - { fec: 20, hwFecId: 5020 }
steps:
  - at: 2
    changes:
      - requestCounters: snmp
)";

std::string const retryCall =
      "cbf createOrUpdateMapping key=ipv4/46/10 hwFecId=5010 overridingHwFecId=5020";

// The calls the entries stand for: in all and by operation.
struct Totals {
   std::uint64_t calls = 0;
   std::map< std::string, std::uint64_t > byOp;
};

Totals totalsOf( Json const& calls ) {
   Totals out;
   for( Json const& c : calls ) {
      if( c.contains( "gap" ) ) {
         for( auto const& [ op, n ] : c[ "gap" ][ "counts" ].items() )
            out.byOp[ op ] += n.get< std::uint64_t >();
         out.calls += c[ "gap" ][ "calls" ].get< std::uint64_t >();
         continue;
      }
      std::uint64_t const n = c.value( "count", std::uint64_t{ 1 } );
      out.byOp[ c[ "op" ].get< std::string >() ] += n;
      out.calls += n;
   }
   return out;
}

TEST( BoundedRecordTest, ARunIsOneEntryAndTheGapCountsWhatItLeavesOut ) {
   std::string const path = scenarioFile( "retrying.yaml", retrying );
   SimRun const whole = runSim( { path, "--json" } );
   ASSERT_EQ( whole.exitCode, 0 ) << whole.err;
   Json const calls = whole.report()[ "calls" ];
   Totals const all = totalsOf( calls );
   EXPECT_EQ( all.byOp.at( "createOrUpdateMapping" ), 201u );
   unsigned runs = 0;
   for( Json const& c : calls ) {
      ASSERT_FALSE( c.contains( "gap" ) ) << "everything is kept by default";
      if( !c.contains( "count" ) ) {
         EXPECT_FALSE( c.contains( "until" ) ) << c.dump();
         continue;
      }
      ++runs;
      EXPECT_EQ( c[ "op" ], "createOrUpdateMapping" );
      EXPECT_EQ( c[ "count" ], 201 );
      EXPECT_NEAR( c[ "t" ].get< double >(), 0.001, 1e-9 );
      EXPECT_NEAR( c[ "until" ].get< double >(), 2.001, 1e-9 );
   }
   EXPECT_EQ( runs, 1u );

   // Three runs kept at each end.
   SimRun const bounded = runSim( { path, "--json", "--keep-calls", "3" } );
   ASSERT_EQ( bounded.exitCode, 0 ) << bounded.err;
   Json const kept = bounded.report()[ "calls" ];
   ASSERT_EQ( kept.size(), 7u );
   Json const& gap = kept[ 3 ][ "gap" ];
   EXPECT_EQ( gap[ "runs" ].get< std::uint64_t >() + 6, calls.size() );
   EXPECT_EQ( kept[ 2 ], calls[ 2 ] );
   EXPECT_EQ( kept[ 4 ], calls[ calls.size() - 3 ] );
   EXPECT_EQ( kept[ 6 ], calls.back() );
   Totals const counted = totalsOf( kept );
   EXPECT_EQ( counted.calls, all.calls );
   EXPECT_EQ( counted.byOp, all.byOp );

   // The text report counts every call and shows the run and the gap on a line each.
   SimRun const text = runSim( { path, "--keep-calls", "3" } );
   ASSERT_EQ( text.exitCode, 0 ) << text.err;
   EXPECT_NE( text.out.find( "\nHelper calls (" + std::to_string( all.calls ) + "):\n" ),
              std::string::npos )
         << text.out;
   // Times in full: the run's last call came after 200 retries of 0.01 s added up.
   EXPECT_NE( text.out.find( "    0.001  " + retryCall + "  x201 until 2.0010000000000012\n" ),
              std::string::npos )
         << text.out;
   EXPECT_NE( text.out.find( "  ... " + gap[ "calls" ].dump() + " calls in " +
                             gap[ "runs" ].dump() + " runs left out, from 0.001 to 0.001 s\n" ),
              std::string::npos )
         << text.out;
}

struct Case {
   char const* name;
   char const* keepCalls;
   char const* expect;
   // Empty when the list is met.
   std::string failure;
};

TEST( BoundedRecordTest, ExpectationsAreDecidedInsideARunAndNotAcrossAGap ) {
   std::string const gap =
         "the calls it needs were left out of the record: a gap of 113 calls "
         "in 113 runs from 0.001 to 0.001 s (a larger --keep-calls keeps them)";
   Case const cases[] = {
      { "calls inside a run, one after the other", "10000", R"(
  - { call: createOrUpdateMapping, at: 1.001 }
  - { call: createOrUpdateMapping }
  - not: { call: deleteMapping }
  - { call: createOrUpdateMapping, at: 2.001 }
)",
        "" },
      { "a time between two calls of the run", "10000", R"(
  - { call: createOrUpdateMapping, at: 1.005 }
)",
        "line 14: call createOrUpdateMapping at 1.005 never came" },
      { "a not item inside a run", "10000", R"(
  - { call: createOrUpdateMapping, at: 0.501 }
  - not: { call: createOrUpdateMapping, at: 0.601 }
  - { call: createOrUpdateMapping, at: 0.701 }
)",
        "line 15: not call createOrUpdateMapping at 0.601, but 0.6010000000000003 s: " +
              retryCall },
      { "a call left out", "3", R"(
  - { call: programDscpToTcMap, args: { dscp: "5" } }
)",
        "line 14: call programDscpToTcMap dscp=5 cannot be decided: " + gap },
      { "a not item over the gap", "3", R"(
  - not: { call: programTcToCosMap }
  - { call: createOrUpdateMapping }
)",
        "line 14: not call programTcToCosMap cannot be decided: " + gap },
      { "the gap holds no call of the operation", "3", R"(
  - { call: programCosToTcMap, args: { cos: "0" } }
  - not: { call: deleteMapping }
  - { call: createOrUpdateMapping, at: 2.001 }
)",
        "" },
   };
   for( Case const& c : cases ) {
      SCOPED_TRACE( c.name );
      SimRun const run = runSim( { scenarioFile( "expect.yaml", retrying + "expect:" + c.expect ),
                                   "--json", "--keep-calls", c.keepCalls } );
      bool const met = c.failure.empty();
      ASSERT_EQ( run.exitCode, met ? 0 : 1 ) << run.err;
      Json const expect = run.report()[ "expect" ];
      EXPECT_EQ( expect[ "met" ], met );
      if( !met ) {
         EXPECT_EQ( expect[ "failure" ], c.failure );
         continue;
      }
      if( std::string( c.name ) == "calls inside a run, one after the other" ) {
         EXPECT_NEAR( expect[ "items" ][ 0 ][ "t" ].get< double >(), 1.001, 1e-9 );
         EXPECT_NEAR( expect[ "items" ][ 1 ][ "t" ].get< double >(), 1.011, 1e-9 );
         EXPECT_NEAR( expect[ "items" ][ 3 ][ "t" ].get< double >(), 2.001, 1e-9 );
      }
   }
}

TEST( BoundedRecordTest, ARunWhoseTimesWereGivenUpDecidesOnlyAtItsEnds ) {
   auto const decided = []( std::string const& expect ) {
      Sim::Scenario const scenario =
            Sim::loadScenarioText( retrying + "expect:\n" + expect, "times.yaml" );
      Sim::SimSwitch sw( scenario, Sim::SwitchOptions{ .keepCallTimes = 0 } );
      for( Sim::Step const& step : scenario.steps )
         sw.stepIs( step );
      sw.runUntil( sw.now() + 5.0 );
      auto const out = Sim::expectationsMet( scenario, sw );
      return out.value( "failure", std::string( "met" ) );
   };
   std::string const lost = "the times of the run of 201 calls \"" + retryCall +
                            "\" from 0.001 to 2.0010000000000012 s were not kept";
   EXPECT_EQ( decided( "  - { call: createOrUpdateMapping, at: 0.001 }\n"
                       "  - { call: createOrUpdateMapping, at: 2.001 }\n" ),
              "met" );
   EXPECT_EQ( decided( "  - { call: createOrUpdateMapping, at: 1.001 }\n" ),
              "line 14: call createOrUpdateMapping at 1.001 cannot be decided: " + lost );
   EXPECT_EQ( decided( "  - { call: createOrUpdateMapping }\n"
                       "  - { call: createOrUpdateMapping }\n" ),
              "line 15: call createOrUpdateMapping cannot be decided: " + lost );
   EXPECT_EQ( decided( "  - { call: createOrUpdateMapping, at: 3 }\n" ),
              "line 14: call createOrUpdateMapping at 3 never came" )
         << "a time outside the run's span is decided";
}

TEST( BoundedRecordTest, ATableNeverReadyKeepsItsRecordSmallAndCountsEveryRetry ) {
   // Never ready: 1002 s of retries every 0.01 s from 0.001 s.
   std::string never = retrying;
   never.replace( never.find( ", until: 2" ), 10, "" );
   SimRun const run = runSim( { scenarioFile( "never.yaml", never ), "--json", "--keep-calls", "50",
                                "--settle", "1000" } );
   ASSERT_EQ( run.exitCode, 0 ) << run.err;
   Json const calls = run.report()[ "calls" ];
   EXPECT_LE( calls.size(), 101u );
   Totals const totals = totalsOf( calls );
   EXPECT_EQ( totals.byOp.at( "createOrUpdateMapping" ), 100200u );
   Json const& retries = calls.back();
   EXPECT_EQ( retries[ "count" ], 100200 );
   EXPECT_NEAR( retries[ "until" ].get< double >(), 1001.991, 1e-6 );
   SimRun const text = runSim(
         { scenarioFile( "never.yaml", never ), "--keep-calls", "50", "--settle", "1000" } );
   EXPECT_NE( text.out.find( "\nHelper calls (" + std::to_string( totals.calls ) + "):\n" ),
              std::string::npos );
}

// A long settle runs in slices for its progress line: no more than ten thousand of them, the
// same calls at the same times as one run to the end, and an end even where the clock is too
// coarse for a slice.
TEST( BoundedRecordTest, ASettleInSlicesEndsAndRunsWhatOneRunWould ) {
   Sim::Scenario const scenario = Sim::loadScenarioText( retrying, "retrying.yaml" );
   Sim::SimSwitch sliced( scenario );
   Sim::SimSwitch whole( scenario );
   for( Sim::Step const& step : scenario.steps ) {
      sliced.stepIs( step );
      whole.stepIs( step );
   }
   Zub::Seconds const start = sliced.now();
   unsigned slices = 0;
   sliced.runFor( 20000, [ & ] { ++slices; } );
   whole.runUntil( start + 20000 );
   EXPECT_EQ( slices, 10000u ) << "slices of 2 s";
   EXPECT_EQ( sliced.now(), whole.now() );
   EXPECT_EQ( sliced.calls().size(), whole.calls().size() );
   EXPECT_EQ( Sim::reportOf( scenario, sliced )[ "calls" ],
              Sim::reportOf( scenario, whole )[ "calls" ] );

   // Short settles take slices of a second.
   slices = 0;
   sliced.runFor( 3.5, [ & ] { ++slices; } );
   EXPECT_EQ( slices, 4u );

   // At 2^60 s the clock's step is 256 s, above the slice of a second: the settle still ends,
   // in one slice, at the end the clock can hold.
   Sim::Scenario const empty = Sim::loadScenarioText( "description: nothing\n", "empty.yaml" );
   Sim::SimSwitch late( empty );
   Zub::Seconds const far = 1152921504606846976.0;
   late.runUntil( far );
   ASSERT_EQ( late.now(), far );
   slices = 0;
   late.runFor( 1000, [ & ] { ++slices; } );
   EXPECT_EQ( slices, 1u );
   EXPECT_EQ( late.now(), far + 1024 );
}

TEST( BoundedRecordTest, TheTraceKeepsItsFirstAndLastLinesAndCountsTheRest ) {
   Sim::Scenario const scenario =
         Sim::loadScenarioText( retrying + "trace: [ NevCbfFecMappingSm/0-1 ]\n", "trace.yaml" );
   auto const run = [ &scenario ]( std::size_t keep ) {
      auto sw = std::make_unique< Sim::SimSwitch >( scenario,
                                                    Sim::SwitchOptions{ .keepTraceLines = keep } );
      for( Sim::Step const& step : scenario.steps )
         sw->stepIs( step );
      sw->runUntil( sw->now() + 1.0 );
      return sw;
   };
   auto const whole = run( 100000 );
   auto const bounded = run( 5 );
   std::vector< Sim::TraceLine > const all = whole->traces().kept();
   // Three lines a retry: the last lines are not one line repeated.
   ASSERT_GT( all.size(), 600u );
   ASSERT_FALSE( whole->traces().gap() );
   Sim::TraceLog const& kept = bounded->traces();
   EXPECT_EQ( kept.size(), all.size() );
   ASSERT_EQ( kept.first().size(), 5u );
   ASSERT_EQ( kept.last().size(), 5u );
   ASSERT_TRUE( kept.gap() );
   EXPECT_EQ( kept.gap()->lines, all.size() - 10 );
   EXPECT_EQ( kept.gap()->from, all[ 5 ].t );
   EXPECT_EQ( kept.gap()->until, all[ all.size() - 6 ].t );
   for( std::size_t i = 0; i < 5; ++i ) {
      EXPECT_EQ( kept.first()[ i ].text, all[ i ].text );
      EXPECT_EQ( kept.last()[ i ].text, all[ all.size() - 5 + i ].text );
   }
   Json const report = Json::parse( Sim::tracesOf( kept ).dump() );
   ASSERT_EQ( report.size(), 11u );
   EXPECT_EQ( report[ 5 ][ "gap" ][ "lines" ], all.size() - 10 );
}

}  // namespace
}  // namespace NevQosTest
