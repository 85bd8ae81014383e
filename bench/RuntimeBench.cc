// The cost of the runtime's basic operations, each beside the plain operation it wraps:
// an attribute write against a virtual call, keyed collections against the bare std::map,
// a clock firing through the event loop against a direct virtual call.
#include <benchmark/benchmark.h>

#include <map>
#include <vector>

#include "NevQos/platform/zub/ActivityManager.h"
#include "NevQos/platform/zub/Entity.h"

namespace {

#define BENCH_ENTITY_ATTRS( X )                \
   X( value, Count, count, std::uint64_t, 0u ) \
   X( keyed, Member, member, std::uint32_t, std::uint64_t )

ZUB_ENTITY( BenchEntity, Zub::Name, BENCH_ENTITY_ATTRS );

class CountingReactor : public BenchEntity::Notifiee {
 public:
   void onCount() override { ++calls; }
   void onMember( std::uint32_t const& ) override { ++calls; }
   std::uint64_t calls = 0;
};

// Baseline: what a hand-written observer costs, one virtual call per observer. Kept out of line
// so that the compiler cannot turn the call into nothing.
struct PlainObserver {
   virtual ~PlainObserver() = default;
   virtual void changed() = 0;
};
struct CountingObserver : PlainObserver {
   __attribute__( ( noinline ) ) void changed() override { ++calls; }
   std::uint64_t calls = 0;
};

void BM_AttributeWrite( benchmark::State& state ) {
   auto entity = Zub::make< BenchEntity >( Zub::Name( "bench" ) );
   std::vector< Zub::Ptr< CountingReactor > > reactors;
   for( int i = 0; i < state.range( 0 ); ++i ) {
      reactors.push_back( Zub::make< CountingReactor >() );
      reactors.back()->notifierIsWithoutCatchUp( entity );
   }
   std::uint64_t v = 0;
   for( auto _ : state ) {
      entity->countIs( ++v );
      benchmark::DoNotOptimize( entity->count() );
   }
   state.SetItemsProcessed( state.iterations() );
}
BENCHMARK( BM_AttributeWrite )->Arg( 0 )->Arg( 1 )->Arg( 4 );

void BM_AttributeWriteBaseline( benchmark::State& state ) {
   std::vector< CountingObserver > observers( static_cast< std::size_t >( state.range( 0 ) ) );
   std::vector< PlainObserver* > list;
   for( auto& o : observers )
      list.push_back( &o );
   std::uint64_t value = 0;
   std::uint64_t v = 0;
   for( auto _ : state ) {
      std::uint64_t next = ++v;
      if( value != next ) {
         value = next;
         for( PlainObserver* o : list )
            o->changed();
      }
      benchmark::DoNotOptimize( value );
   }
   state.SetItemsProcessed( state.iterations() );
}
BENCHMARK( BM_AttributeWriteBaseline )->Arg( 0 )->Arg( 1 )->Arg( 4 );

// One round: insert n members, iterate them all, erase them all.
void BM_KeyedCollection( benchmark::State& state ) {
   auto entity = Zub::make< BenchEntity >( Zub::Name( "bench" ) );
   auto reactor = Zub::make< CountingReactor >();
   reactor->notifierIsWithoutCatchUp( entity );
   auto const n = static_cast< std::uint32_t >( state.range( 0 ) );
   for( auto _ : state ) {
      for( std::uint32_t k = 0; k < n; ++k )
         entity->memberIs( k * 7919u, k );
      std::uint64_t sum = 0;
      for( auto it = entity->member().iter(); it; ++it )
         sum += it.value();
      benchmark::DoNotOptimize( sum );
      for( std::uint32_t k = 0; k < n; ++k )
         entity->memberDel( k * 7919u );
   }
   state.SetItemsProcessed( state.iterations() * n );
}
BENCHMARK( BM_KeyedCollection )->Arg( 1000 )->Arg( 100000 );

void BM_KeyedCollectionBaseline( benchmark::State& state ) {
   std::map< std::uint32_t, std::uint64_t > map;
   auto const n = static_cast< std::uint32_t >( state.range( 0 ) );
   for( auto _ : state ) {
      for( std::uint32_t k = 0; k < n; ++k )
         map[ k * 7919u ] = k;
      std::uint64_t sum = 0;
      for( auto const& [ k, v ] : map )
         sum += v;
      benchmark::DoNotOptimize( sum );
      for( std::uint32_t k = 0; k < n; ++k )
         map.erase( k * 7919u );
   }
   state.SetItemsProcessed( state.iterations() * n );
}
BENCHMARK( BM_KeyedCollectionBaseline )->Arg( 1000 )->Arg( 100000 );

class TickReactor : public Zub::Clock::NotifieeConst {
 public:
   void onTime() override { ++calls; }
   std::uint64_t calls = 0;
};

// A clock set to now and fired by one turn of a simulated-time loop.
void BM_ClockFiring( benchmark::State& state ) {
   auto loop = Zub::ActivityManager::create( Zub::ActivityManager::TimeSource::simulated );
   auto reactor = Zub::make< TickReactor >();
   reactor->notifierIs( loop->clock() );
   for( auto _ : state ) {
      reactor->timeMinIs( loop->now() );
      loop->runOnce();
   }
   if( reactor->calls != static_cast< std::uint64_t >( state.iterations() ) ) {
      state.SkipWithError( "a clock did not fire" );
   }
   state.SetItemsProcessed( state.iterations() );
}
BENCHMARK( BM_ClockFiring );

void BM_ClockFiringBaseline( benchmark::State& state ) {
   CountingObserver observer;
   PlainObserver* target = &observer;
   benchmark::DoNotOptimize( target );
   for( auto _ : state ) {
      target->changed();
      benchmark::ClobberMemory();
   }
   state.SetItemsProcessed( state.iterations() );
}
BENCHMARK( BM_ClockFiringBaseline );

}  // namespace
