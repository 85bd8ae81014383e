// More FEC overrides than one run of the review task handles, most of them refused for want of
// rule slots, on the simulated switch: every review tries each waiting override once, the
// reviews come a second apart, and the shortage ends when the overrides no longer need slots.
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <string>
#include <vector>

#include "sim/runner/SimSwitch.h"
#include "sim/scenario/ScenarioLoader.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;

// `count` overrides of DSCP 0 to 63 over FECs 100, 101, ..., all taken over by FEC 20, with every
// FEC answered by the FEC service; the service forgets FEC 20 at 5.5 s.
std::string manyOverrides( unsigned count ) {
   std::string text = "fecOverrides:\n";
   for( unsigned i = 0; i < count; ++i ) {
      text += "  - { dscp: " + std::to_string( i % 64 ) +
              ", fec: " + std::to_string( 100 + i / 64 ) + ", overridingFec: 20 }\n";
   }
   text += "fecService:\n  - { fec: 20, hwFecId: 5020 }\n";
   for( unsigned fec = 100; fec <= 100 + ( count - 1 ) / 64; ++fec )
      text += "  - { fec: " + std::to_string( fec ) + ", hwFecId: " + std::to_string( 5000 + fec ) +
              " }\n";
   text += "steps:\n  - at: 5.5\n    changes:\n      - removeFecService: 20\n";
   return text;
}

// The rule programming calls, counted by the millisecond they were made in.
std::map< long, std::size_t > createsByTime( Sim::SimSwitch const& sw ) {
   std::map< long, std::size_t > out;
   for( Sim::ChipCall const& c : sw.calls() ) {
      if( c.op == "createOrUpdateMapping" ) ++out[ std::lround( c.t * 1000 ) ];
   }
   return out;
}

Lines logsOf( Sim::SimSwitch const& sw ) {
   Lines out;
   for( Sim::LogLine const& l : sw.logs() )
      out.push_back( l.handle );
   return out;
}

TEST( CbfFecMappingSmReviewTest, RefusedOverridesBeyondOneRunAreRetriedOnceASecondUntilSettled ) {
   // 165 overrides, 64 slots (the default chip), 100 keys to a run of the review task.
   Sim::Scenario const s = Sim::loadScenarioText( manyOverrides( 165 ), "many.yaml" );
   Sim::SimSwitch sw( s );
   EXPECT_EQ( sw.cbfChip().rules().size(), 64u );
   EXPECT_EQ( sw.cbfEngine().policyOverrideReviewQueue().size(), 101u );
   EXPECT_TRUE( sw.cbfEngine().resourceFull() );

   sw.runUntil( 5.0 );
   std::map< long, std::size_t > const expected{
      { 1, 165 }, { 1001, 101 }, { 2001, 101 }, { 3001, 101 }, { 4001, 101 }
   };
   EXPECT_EQ( createsByTime( sw ), expected );
   EXPECT_EQ( logsOf( sw ), Lines{ "ROUTING_CBF_HW_RESOURCE_FULL" } );

   // Without the overriding FEC every override waits outside the queue, and the shortage ends.
   sw.stepIs( s.steps.at( 0 ) );
   EXPECT_TRUE( sw.cbfChip().rules().empty() );
   EXPECT_TRUE( sw.cbfEngine().policyOverrideReviewQueue().empty() );
   EXPECT_FALSE( sw.cbfEngine().resourceFull() );
   EXPECT_FALSE( sw.cbfEngine().policyOverrideTask()->taskScheduled() );
   EXPECT_EQ( logsOf( sw ),
              ( Lines{ "ROUTING_CBF_HW_RESOURCE_FULL", "ROUTING_CBF_HW_RESOURCE_NORMAL" } ) );
   EXPECT_EQ( sw.verify(), Lines{} );
}

}  // namespace
}  // namespace NevQosTest
