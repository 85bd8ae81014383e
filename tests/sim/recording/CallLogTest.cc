// The runner's bounded record of helper calls: identical calls in a row make one run, the first
// and the last runs are kept around one gap that only counts, and the number of calls, in all
// and by operation, stays exact however many are left out.
#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "NevQos/sim/recording/CallLog.h"

namespace NevQosTest {
namespace {

using Counts = std::map< std::string, std::uint64_t >;

Sim::ChipCall call( double t, std::string const& op, std::string const& key = "a",
                    std::string const& helper = "cbf" ) {
   return Sim::ChipCall{ t, op, { { "key", key } }, helper };
}

std::vector< std::string > opsOf( auto const& runs ) {
   std::vector< std::string > out;
   for( Sim::CallRun const& run : runs )
      out.push_back( run.call.op + "x" + std::to_string( run.count ) );
   return out;
}

TEST( CallLogTest, IdenticalCallsInARowAreOneRunWithEveryTime ) {
   Sim::CallLog log;
   log.append( call( 1.0, "map" ) );
   log.append( call( 1.5, "map" ) );
   log.append( call( 2.0, "map" ) );
   // Another argument, another helper, or the same call after another: new runs.
   log.append( call( 2.0, "map", "b" ) );
   log.append( call( 2.0, "map", "b", "acl" ) );
   log.append( call( 3.0, "map" ) );
   EXPECT_EQ( log.size(), 6u );
   EXPECT_EQ( log.counts(), ( Counts{ { "map", 6 } } ) );
   ASSERT_EQ( log.first().size(), 4u );
   EXPECT_FALSE( log.gap() );
   Sim::CallRun const& run = log.first()[ 0 ];
   EXPECT_EQ( run.count, 3u );
   EXPECT_EQ( run.call.t, 1.0 );
   EXPECT_EQ( run.until, 2.0 );
   EXPECT_EQ( run.timeOf( 1 ), 1.5 );
   EXPECT_EQ( log.first()[ 3 ].callsBefore, 5u );
   EXPECT_EQ( log.first()[ 3 ].count, 1u );
   // Spelled out again, each call at its own time.
   std::vector< double > times;
   for( Sim::ChipCall const& c : log.kept() )
      times.push_back( c.t );
   EXPECT_EQ( times, ( std::vector< double >{ 1.0, 1.5, 2.0, 2.0, 2.0, 3.0 } ) );

   log.clear();
   EXPECT_TRUE( log.empty() );
   EXPECT_TRUE( log.counts().empty() );
   log.append( call( 4.0, "map" ) );
   EXPECT_EQ( log.first()[ 0 ].callsBefore, 0u ) << "a cleared log starts over";
}

TEST( CallLogTest, RunsBetweenTheFirstAndTheLastKeptAreCountedInOneGap ) {
   Sim::CallLog log( 2, 2 );
   // Runs of 1, 2, 3, ... calls of operations a, b, c, ... at times 10, 20, 30, ...
   std::uint64_t total = 0;
   for( int r = 0; r < 7; ++r ) {
      for( int k = 0; k <= r; ++k )
         log.append( call( 10.0 * ( r + 1 ) + k, std::string( 1, char( 'a' + r ) ) ) );
      total += r + 1;
   }
   EXPECT_EQ( log.size(), total );
   EXPECT_EQ( opsOf( log.first() ), ( std::vector< std::string >{ "ax1", "bx2" } ) );
   EXPECT_EQ( opsOf( log.last() ), ( std::vector< std::string >{ "fx6", "gx7" } ) );
   ASSERT_TRUE( log.gap() );
   Sim::CallGap const& gap = *log.gap();
   EXPECT_EQ( gap.runs, 3u );
   EXPECT_EQ( gap.calls, 3u + 4u + 5u );
   EXPECT_EQ( gap.from, 30.0 );
   EXPECT_EQ( gap.until, 54.0 );
   EXPECT_EQ( gap.callsBefore, 3u );
   EXPECT_EQ( gap.counts, ( Counts{ { "c", 3 }, { "d", 4 }, { "e", 5 } } ) );
   EXPECT_EQ( log.last()[ 0 ].callsBefore, 15u );
   EXPECT_EQ( log.counts().at( "g" ), 7u );

   // The last run still grows: only a new run pushes one out.
   log.append( call( 80.0, "g" ) );
   EXPECT_EQ( log.last().back().count, 8u );
   EXPECT_EQ( log.gap()->runs, 3u );
   log.append( call( 90.0, "h" ) );
   EXPECT_EQ( opsOf( log.last() ), ( std::vector< std::string >{ "gx8", "hx1" } ) );
   EXPECT_EQ( log.gap()->calls, 12u + 6u );
   EXPECT_EQ( log.gap()->until, 65.0 );
}

TEST( CallLogTest, TimesInsideRunsAreGivenUpPastTheirBudget ) {
   // Room for the three times of the first run and one more.
   Sim::CallLog log( 10, 10, 4 );
   for( double t : { 1.0, 2.0, 3.0 } )
      log.append( call( t, "a" ) );
   log.append( call( 4.0, "b" ) );
   for( double t : { 5.0, 6.0, 7.0, 8.0 } )
      log.append( call( t, "c" ) );
   Sim::CallRun const& kept = log.first()[ 0 ];
   Sim::CallRun const& lost = log.first()[ 2 ];
   EXPECT_TRUE( kept.timesKept );
   EXPECT_EQ( kept.timeOf( 1 ), 2.0 );
   EXPECT_FALSE( lost.timesKept );
   EXPECT_TRUE( lost.times.empty() );
   EXPECT_EQ( lost.timeOf( 0 ), 5.0 ) << "the ends of a run are always known";
   EXPECT_EQ( lost.timeOf( 3 ), 8.0 );
   EXPECT_FALSE( lost.timeOf( 1 ) );
   EXPECT_EQ( lost.count, 4u );

   // Calls at the same instant as the run's first or last are known without the list too.
   Sim::CallLog none( 10, 10, 0 );
   for( double t : { 5.0, 5.0, 6.0, 7.0, 7.0 } )
      none.append( call( t, "a" ) );
   Sim::CallRun const& plateaus = none.first()[ 0 ];
   EXPECT_EQ( plateaus.timeOf( 1 ), 5.0 );
   EXPECT_FALSE( plateaus.timeOf( 2 ) );
   EXPECT_EQ( plateaus.timeOf( 3 ), 7.0 );

   // Runs that fall into the gap give their times back.
   Sim::CallLog bounded( 0, 1, 3 );
   for( double t : { 1.0, 2.0, 3.0 } )
      bounded.append( call( t, "a" ) );
   bounded.append( call( 4.0, "b" ) );
   for( double t : { 5.0, 6.0, 7.0 } )
      bounded.append( call( t, "c" ) );
   EXPECT_TRUE( bounded.last().back().timesKept );
   EXPECT_EQ( bounded.last().back().timeOf( 1 ), 6.0 );
}

}  // namespace
}  // namespace NevQosTest
