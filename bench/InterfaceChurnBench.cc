// Interface churn: one policy map of 64 classes (access lists, VLANs, DSCPs and class-default,
// each class with a policer of its own on every interface) applied to N interfaces one at a
// time, the loop settling after each, then removed from them one at a time. An item is one
// interface joining or leaving; the report compares the cost of an item at 1024 interfaces with
// its cost at 16, which shows a walk over the interfaces hidden in each step.
//
// The whole churn at 16 interfaces runs again and again over the same few megabytes, which stay
// in the caches; at 1024 each pass touches hundreds. So the second benchmark takes the marginal
// cost: with N - 1 interfaces applied, the Nth joins and leaves. A walk over the interfaces
// would show there as well, and the caches play a smaller part.
//
// The churn also gives the peak resident memory of the process while it ran.
#include <benchmark/benchmark.h>

#include "bench/support/BenchAgent.h"
#include "bench/support/ProcessMemory.h"

namespace {

using Bench::Agent;
using Bench::AgentOptions;

constexpr unsigned operatorClasses = Bench::policedClasses;

void BM_InterfaceChurn( benchmark::State& state ) {
   auto const n = static_cast< unsigned >( state.range( 0 ) );
   bool const peakReset = Bench::peakResetIs();
   Agent agent( AgentOptions{ .interfaces = n, .maxClassesPerPolicyMap = 128 } );
   Bench::policedMapIs( agent, "churn" );
   std::uint64_t policersAtFull = 0;
   auto const churn = [ & ]( bool timed ) {
      for( unsigned i = 1; i <= n; ++i ) {
         agent.intfIs( "churn", Agent::ethernet( i ), true );
         agent.settle();
      }
      if( timed ) state.PauseTiming();
      agent.checkProgrammed( "churn" );
      policersAtFull = agent.chip().counts().policers;
      if( timed ) state.ResumeTiming();
      for( unsigned i = 1; i <= n; ++i ) {
         agent.intfIs( "churn", Agent::ethernet( i ), false );
         agent.settle();
      }
   };
   // One pass before the timing, so that the process has the memory of a full churn: at 1024
   // interfaces the benchmark runs a single iteration, and the kernel's first touch of every
   // page would otherwise be counted against it alone.
   churn( false );
   for( auto _ : state )
      churn( true );
   agent.checkNoLog();
   if( policersAtFull != n * operatorClasses ) {
      Bench::fail( Bench::named( "churn: wrong policer count on interfaces: ", n ) );
   }
   if( agent.chip().counts().policers != 0 ) Bench::fail( "churn: policers left behind" );
   state.SetItemsProcessed( static_cast< std::int64_t >( state.iterations() * 2 * n ) );
   state.counters[ "interfaces" ] = n;
   state.counters[ "peak_rss_bytes" ] = Bench::peakResidentBytes( peakReset );
}
BENCHMARK( BM_InterfaceChurn )
      ->Arg( 1 )
      ->Arg( 16 )
      ->Arg( 128 )
      ->Arg( 1024 )
      ->Unit( benchmark::kMillisecond );

void BM_InterfaceChurnMarginal( benchmark::State& state ) {
   auto const n = static_cast< unsigned >( state.range( 0 ) );
   Agent agent( AgentOptions{ .interfaces = n, .maxClassesPerPolicyMap = 128 } );
   Bench::policedMapIs( agent, "churn" );
   for( unsigned i = 1; i < n; ++i )
      agent.intfIs( "churn", Agent::ethernet( i ), true );
   agent.settle();
   for( auto _ : state ) {
      agent.intfIs( "churn", Agent::ethernet( n ), true );
      agent.settle();
      agent.intfIs( "churn", Agent::ethernet( n ), false );
      agent.settle();
   }
   agent.checkProgrammed( "churn" );
   if( agent.chip().counts().policers != ( n - 1 ) * operatorClasses ) {
      Bench::fail( Bench::named( "churn: wrong policer count on interfaces: ", n - 1 ) );
   }
   state.SetItemsProcessed( static_cast< std::int64_t >( state.iterations() * 2 ) );
}
BENCHMARK( BM_InterfaceChurnMarginal )
      ->Arg( 1 )
      ->Arg( 16 )
      ->Arg( 128 )
      ->Arg( 1024 )
      ->Unit( benchmark::kMicrosecond );

}  // namespace
