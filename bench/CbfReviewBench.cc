// The review of class-based-forwarding overrides: 100k override keys, every FEC known to the FEC
// service and a chip that accepts every rule, from the machine's start until the review queue is
// empty. The baseline is the bare work per key: the two hardware-id lookups and the driver call.
//
// And a review pass of the keys a full chip refuses: the chip refuses every key of an odd DSCP,
// half of them, which stay queued and are tried again once a second; one pass of the 50k is
// timed beside the bare work for those keys.
#include <benchmark/benchmark.h>

#include <map>
#include <memory>
#include <vector>

#include "NevQos/cbf/CbfFecMappingSm.h"
#include "NevQos/platform/zub/ActivityManager.h"
#include "NevQos/platform/zub/Log.h"
#include "NevQos/platform/zub/Pool.h"

namespace {

using Qos::Glarn::OverrideKey;

// Accepts every rule, or refuses those of an odd DSCP as a full chip does.
class AcceptingHelper : public NevHelper::CbfFecMappingHelper {
 public:
   explicit AcceptingHelper( bool refuseOdd = false )
       : CbfFecMappingHelper( Zub::Name( "cbf" ) ), refuseOdd_( refuseOdd ) {}
   NevHelper::CbfFecMappingUpdateStatus createOrUpdateMapping(
         Nev::CbfFecMapRule const& rule ) override {
      benchmark::DoNotOptimize( rule.overridingHwFecId() );
      if( refuseOdd_ && refused( rule.key() ) ) {
         ++refusals;
         return NevHelper::cbfMapUpdateFailed;
      }
      return NevHelper::cbfMapUpdateSuccess;
   }
   static bool refused( OverrideKey const& key ) { return key.dscp.value() % 2 != 0; }
   Qos::Hardware::FecOverrideRuleId hwFecOverrideRuleId( OverrideKey const& ) override {
      return ++rules;
   }
   std::uint32_t rules = 0;
   std::uint64_t refusals = 0;

 private:
   bool refuseOdd_;
};

// Key i: DSCP i mod 64 of FEC i / 64 + 1, taken over by a FEC of its own range.
OverrideKey keyOf( std::uint64_t i ) {
   return OverrideKey{ Mirel::ipv4, Qos::Dscp( static_cast< long long >( i % 64 ) ), i / 64 + 1 };
}
Glarn::Fib::FecId overridingOf( std::uint64_t i ) {
   return 1000000 + i / 64;
}

// The machine's inputs with `keys` overrides, their FECs all known, and its outputs; the machine
// itself is made by start().
struct Review {
   Review( std::uint64_t keys, bool refuseOdd )
       : loop( Zub::ActivityManager::create( Zub::ActivityManager::TimeSource::simulated ) ) {
      Zub::activityManagerIs( loop );
      // The refusing chip's shortage is logged once; the figures have no use for it.
      Zub::logSinkIs( []( Zub::LogRecord const& ) {} );
      using Access = Qos::Glarn::FecOverrideConfig::Access;
      auto configStore = Zub::make< Qos::Glarn::FecOverrideConfig::Store >( Zub::String( "c" ) );
      auto config = Zub::make< Qos::Glarn::FecOverrideConfig >( configStore, Access::writer );
      auto responseStore = Zub::make< Nev::FecIdToHwFecIdResponse::Store >( Zub::String( "r" ) );
      auto responses = Zub::make< Nev::FecIdToHwFecIdResponse >( responseStore, Access::writer );
      for( std::uint64_t i = 0; i < keys; ++i ) {
         config->overrideIs( Qos::Glarn::FecOverrideEntry{ keyOf( i ), overridingOf( i ) } );
         responses->hwFecIdIs( Nev::FecToHwFecId{ keyOf( i ).fecId, i } );
         responses->hwFecIdIs( Nev::FecToHwFecId{ overridingOf( i ), i } );
      }
      configView = Zub::make< Qos::Glarn::FecOverrideConfig >( configStore, Access::readOnly );
      responseView = Zub::make< Nev::FecIdToHwFecIdResponse >( responseStore, Access::readOnly );
      status = Zub::make< Qos::Glarn::FecOverrideStatus >(
            Zub::make< Qos::Glarn::FecOverrideStatus::Store >( Zub::String( "s" ) ),
            Access::writer );
      requests = Zub::make< Nev::FecIdToHwFecIdRequest >(
            Zub::make< Nev::FecIdToHwFecIdRequest::Store >( Zub::String( "q" ) ), Access::writer );
      helper = Zub::make< AcceptingHelper >( refuseOdd );
   }
   ~Review() {
      sm = nullptr;
      Zub::logSinkIs( nullptr );
      Zub::activityManagerIs( nullptr );
   }
   void start() {
      sm = Nev::cbfFecMappingSmFactory( 1, configView, status, requests, responseView,
                                        Zub::make< Kesh::TaskScheduler >(), helper );
   }

   Zub::Ptr< Zub::ActivityManager > loop;
   Zub::Ptr< Qos::Glarn::FecOverrideConfig > configView;
   Zub::Ptr< Nev::FecIdToHwFecIdResponse > responseView;
   Zub::Ptr< Qos::Glarn::FecOverrideStatus > status;
   Zub::Ptr< Nev::FecIdToHwFecIdRequest > requests;
   Zub::Ptr< AcceptingHelper > helper;
   Zub::Ptr< Nev::CbfFecMappingSm > sm;
};

void keysCounted( benchmark::State& state, std::uint64_t keys ) {
   state.SetItemsProcessed( static_cast< std::int64_t >( state.iterations() * keys ) );
}

void BM_CbfReview( benchmark::State& state ) {
   auto const keys = static_cast< std::uint64_t >( state.range( 0 ) );
   for( auto _ : state ) {
      state.PauseTiming();
      auto review = std::make_unique< Review >( keys, false );
      state.ResumeTiming();

      review->start();
      review->loop->runUntilIdle();

      state.PauseTiming();
      if( review->helper->rules != keys || !review->sm->policyOverrideReviewQueue().empty() ) {
         state.SkipWithError( "not every key was programmed" );
      }
      review = nullptr;
      state.ResumeTiming();
   }
   keysCounted( state, keys );
}
BENCHMARK( BM_CbfReview )->Arg( 100000 )->Unit( benchmark::kMillisecond );

// One pass over the keys a full chip refuses, once the first review has settled the others.
void BM_CbfReviewRefused( benchmark::State& state ) {
   auto const keys = static_cast< std::uint64_t >( state.range( 0 ) );
   Review review( keys, true );
   review.start();
   review.loop->runUntil( review.loop->now() );
   std::uint64_t const refused = review.sm->policyOverrideReviewQueue().size();
   if( refused != keys / 2 || review.helper->refusals != refused )
      state.SkipWithError( "the chip did not refuse half the keys" );
   Zub::Seconds const pass = review.sm->longDelay();
   for( auto _ : state ) {
      std::uint64_t const before = review.helper->refusals;
      review.loop->runUntil( review.loop->now() + pass );
      if( review.helper->refusals != before + refused )
         state.SkipWithError( "a pass did not try every refused key once" );
   }
   keysCounted( state, refused );
}
BENCHMARK( BM_CbfReviewRefused )->Arg( 100000 )->Unit( benchmark::kMillisecond );

template< class K, class V >
using PooledMap = std::map< K, V, std::less< K >, Zub::Pool::Allocator< std::pair< K const, V > > >;

// The bare work for the keys of `keys` that `wanted` picks: two hardware-id lookups and the
// driver call per key.
void bareReview( benchmark::State& state, bool ( *wanted )( OverrideKey const& ) ) {
   auto const keys = static_cast< std::uint64_t >( state.range( 0 ) );
   // The nodes come from the runtime's free lists, as the engine's do: with the general
   // allocator, where the nodes of 300k insertions land varied from run to run of the program,
   // and the baseline's time by a factor of three with it.
   PooledMap< OverrideKey, Glarn::Fib::FecId > config;
   PooledMap< Glarn::Fib::FecId, std::uint64_t > hwIds;
   for( std::uint64_t i = 0; i < keys; ++i ) {
      hwIds[ keyOf( i ).fecId ] = i;
      hwIds[ overridingOf( i ) ] = i;
      if( wanted( keyOf( i ) ) ) config[ keyOf( i ) ] = overridingOf( i );
   }
   auto helper = Zub::make< AcceptingHelper >();
   NevHelper::CbfFecMappingHelper& driver = *helper;
   for( auto _ : state ) {
      for( auto const& [ key, overriding ] : config ) {
         Nev::CbfFecMapRule rule( key );
         rule.hwFecIdIs( hwIds.at( key.fecId ) );
         rule.overridingHwFecIdIs( hwIds.at( overriding ) );
         benchmark::DoNotOptimize( driver.createOrUpdateMapping( rule ) );
      }
   }
   keysCounted( state, config.size() );
}

bool everyKey( OverrideKey const& ) {
   return true;
}

void BM_CbfReviewBaseline( benchmark::State& state ) {
   bareReview( state, everyKey );
}
BENCHMARK( BM_CbfReviewBaseline )->Arg( 100000 )->Unit( benchmark::kMillisecond );

void BM_CbfReviewRefusedBaseline( benchmark::State& state ) {
   bareReview( state, AcceptingHelper::refused );
}
BENCHMARK( BM_CbfReviewRefusedBaseline )->Arg( 100000 )->Unit( benchmark::kMillisecond );

}  // namespace
