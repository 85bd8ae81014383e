// Memory. Resident memory per installed subrule in the scenario runner with the ClassBench set
// acl1_10k (examples/classbench-10k.yaml): the growth of the peak resident set from before the
// switch is built (the scenario already read) to the end of its settling, over the TCAM entries
// installed. And bytes per class: the growth of the heap in use (the allocator's count, which
// memory freed earlier in the process does not hide) when a policy map of 1024 classes, each
// matching a DSCP, is applied to one interface of the engine with the counting chip, over the
// classes. Figures, not timings: each runs once.
#include <benchmark/benchmark.h>

#include <malloc.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <string>

#include "NevQos/platform/zub/PoolUsage.h"
#include "NevQos/sim/runner/SimSwitch.h"
#include "NevQos/sim/scenario/ScenarioLoader.h"
#include "bench/support/BenchAgent.h"
#include "bench/support/ProcessMemory.h"

namespace {

// Every allocation of the program passes here, so that a figure can give the blocks a piece of
// work leaves live as well as their bytes.
std::atomic< std::int64_t > liveBlocks{ 0 };

void* counted( std::size_t size ) {
   void* const p = std::malloc( size ? size : 1 );
   if( !p ) throw std::bad_alloc();
   liveBlocks.fetch_add( 1, std::memory_order_relaxed );
   return p;
}

void released( void* p ) noexcept {
   if( !p ) return;
   liveBlocks.fetch_sub( 1, std::memory_order_relaxed );
   std::free( p );
}

// The heap in use: the allocator's count, with the runtime's free lists counted by the blocks
// they have handed out rather than by the chunks they hold (free blocks of a chunk are memory
// kept for later, not memory in use).
double heapInUse() {
   Zub::Pool::Usage const pool = Zub::Pool::usage();
   return static_cast< double >( mallinfo2().uordblks ) - static_cast< double >( pool.chunkBytes ) +
          static_cast< double >( pool.blockBytes );
}

void BM_RunnerMemory( benchmark::State& state ) {
   for( auto _ : state ) {
      Sim::Scenario const scenario =
            Sim::loadScenario( NEVQOS_EXAMPLES_DIR "/classbench-10k.yaml" );
      bool const peakReset = Bench::peakResetIs();
      double const before = Bench::statusBytes( "VmRSS" );
      double peak = 0.0;
      double entries = 0.0;
      {
         Sim::SimSwitch sw( scenario );
         for( Sim::Step const& step : scenario.steps )
            sw.stepIs( step );
         sw.runUntil( sw.now() + 60.0 );
         for( auto const& [ name, slice ] : sw.chip().tcam().slices() )
            entries += slice.used;
         peak = Bench::peakResidentBytes( peakReset );
      }
      if( entries == 0.0 ) Bench::fail( "the runner installed nothing" );
      state.counters[ "subrules" ] = entries;
      state.counters[ "figure_bytes" ] = ( peak - before ) / entries;
   }
}
BENCHMARK( BM_RunnerMemory )->Iterations( 1 )->Unit( benchmark::kMillisecond );

void BM_ClassMemory( benchmark::State& state ) {
   constexpr unsigned classes = 1024;
   for( auto _ : state ) {
      Bench::Agent agent( Bench::AgentOptions{ .maxClassesPerPolicyMap = classes + 16 } );
      for( unsigned i = 0; i < classes; ++i ) {
         std::string const name = Bench::named( "c", i );
         Bench::dscpMatchIs( *agent.classMapIs( name ), i % 64 );
         agent.classIs( "wide", name );
      }
      double const before = heapInUse();
      agent.intfIs( "wide", Bench::Agent::ethernet( 1 ), true );
      agent.settle();
      agent.checkProgrammed( "wide" );
      state.counters[ "figure_bytes" ] = ( heapInUse() - before ) / classes;
   }
}
BENCHMARK( BM_ClassMemory )->Iterations( 1 )->Unit( benchmark::kMillisecond );

// The copies of the interface churn's classes that one more interface adds: with the map on
// the first interface, it goes on 16 more, and the heap in use and the live blocks grow by
// what their 16 x 63 per-interface class copies and the interfaces' own entries hold.
void BM_ClassCopyMemory( benchmark::State& state ) {
   constexpr unsigned interfaces = 17;
   for( auto _ : state ) {
      Bench::Agent agent(
            Bench::AgentOptions{ .interfaces = interfaces, .maxClassesPerPolicyMap = 128 } );
      Bench::policedMapIs( agent, "churn" );
      agent.intfIs( "churn", Bench::Agent::ethernet( 1 ), true );
      agent.settle();
      double const bytesBefore = heapInUse();
      auto const blocksBefore = liveBlocks.load();
      auto const pooledBefore = Zub::Pool::usage().blocks;
      for( unsigned i = 2; i <= interfaces; ++i ) {
         agent.intfIs( "churn", Bench::Agent::ethernet( i ), true );
         agent.settle();
      }
      agent.checkProgrammed( "churn" );
      double const copies = ( interfaces - 1 ) * Bench::policedClasses;
      if( agent.chip().counts().policers != interfaces * Bench::policedClasses )
         Bench::fail( "class copies: wrong policer count" );
      state.counters[ "figure_bytes" ] = ( heapInUse() - bytesBefore ) / copies;
      // Allocations are the general allocator's; the blocks of the free lists are given beside.
      state.counters[ "blocks" ] =
            static_cast< double >( liveBlocks.load() - blocksBefore ) / copies;
      state.counters[ "pooled_blocks" ] =
            static_cast< double >( Zub::Pool::usage().blocks - pooledBefore ) / copies;
   }
}
BENCHMARK( BM_ClassCopyMemory )->Iterations( 1 )->Unit( benchmark::kMillisecond );

}  // namespace

void* operator new( std::size_t size ) {
   return counted( size );
}
void* operator new[]( std::size_t size ) {
   return counted( size );
}
void* operator new( std::size_t size, std::nothrow_t const& ) noexcept {
   try {
      return counted( size );
   } catch( std::bad_alloc const& ) {
      return nullptr;
   }
}
void* operator new[]( std::size_t size, std::nothrow_t const& ) noexcept {
   try {
      return counted( size );
   } catch( std::bad_alloc const& ) {
      return nullptr;
   }
}
void operator delete( void* p ) noexcept {
   released( p );
}
void operator delete[]( void* p ) noexcept {
   released( p );
}
void operator delete( void* p, std::size_t ) noexcept {
   released( p );
}
void operator delete[]( void* p, std::size_t ) noexcept {
   released( p );
}
