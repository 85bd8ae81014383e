// The review of class-based-forwarding overrides: 100k override keys, every FEC known to the FEC
// service and a chip that accepts every rule, from the machine's start until the review queue is
// empty. The baseline is the bare work per key: the two hardware-id lookups and the driver call.
#include <benchmark/benchmark.h>

#include <map>
#include <vector>

#include "NevQos/cbf/CbfFecMappingSm.h"
#include "zub/ActivityManager.h"

namespace {

using Qos::Glarn::OverrideKey;

class AcceptingHelper : public NevHelper::CbfFecMappingHelper {
 public:
   AcceptingHelper() : CbfFecMappingHelper( Zub::Name( "cbf" ) ) {}
   NevHelper::CbfFecMappingUpdateStatus createOrUpdateMapping(
         Nev::CbfFecMapRule const& rule ) override {
      benchmark::DoNotOptimize( rule.overridingHwFecId() );
      return NevHelper::cbfMapUpdateSuccess;
   }
   Qos::Hardware::FecOverrideRuleId hwFecOverrideRuleId( OverrideKey const& ) override {
      return ++rules;
   }
   std::uint32_t rules = 0;
};

// Key i: DSCP i mod 64 of FEC i / 64 + 1, taken over by a FEC of its own range.
OverrideKey keyOf( std::uint64_t i ) {
   return OverrideKey{ Mirel::ipv4, Qos::Dscp( static_cast< long long >( i % 64 ) ), i / 64 + 1 };
}
Glarn::Fib::FecId overridingOf( std::uint64_t i ) {
   return 1000000 + i / 64;
}

void BM_CbfReview( benchmark::State& state ) {
   auto const keys = static_cast< std::uint64_t >( state.range( 0 ) );
   for( auto _ : state ) {
      state.PauseTiming();
      auto loop = Zub::ActivityManager::create( Zub::ActivityManager::TimeSource::simulated );
      Zub::activityManagerIs( loop );
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
      auto configView = Zub::make< Qos::Glarn::FecOverrideConfig >( configStore, Access::readOnly );
      auto responseView =
            Zub::make< Nev::FecIdToHwFecIdResponse >( responseStore, Access::readOnly );
      auto status = Zub::make< Qos::Glarn::FecOverrideStatus >(
            Zub::make< Qos::Glarn::FecOverrideStatus::Store >( Zub::String( "s" ) ),
            Access::writer );
      auto requests = Zub::make< Nev::FecIdToHwFecIdRequest >(
            Zub::make< Nev::FecIdToHwFecIdRequest::Store >( Zub::String( "q" ) ), Access::writer );
      auto helper = Zub::make< AcceptingHelper >();
      state.ResumeTiming();

      auto sm = Nev::cbfFecMappingSmFactory( 1, configView, status, requests, responseView,
                                             Zub::make< Kesh::TaskScheduler >(), helper );
      loop->runUntilIdle();

      state.PauseTiming();
      if( helper->rules != keys || !sm->policyOverrideReviewQueue().empty() ) {
         state.SkipWithError( "not every key was programmed" );
      }
      sm = nullptr;
      Zub::activityManagerIs( nullptr );
      state.ResumeTiming();
   }
   state.SetItemsProcessed( static_cast< std::int64_t >( state.iterations() * keys ) );
   state.counters[ "keys_per_second" ] = benchmark::Counter(
         static_cast< double >( state.iterations() * keys ), benchmark::Counter::kIsRate );
}
BENCHMARK( BM_CbfReview )->Arg( 100000 )->Unit( benchmark::kMillisecond );

void BM_CbfReviewBaseline( benchmark::State& state ) {
   auto const keys = static_cast< std::uint64_t >( state.range( 0 ) );
   std::map< OverrideKey, Glarn::Fib::FecId > config;
   std::map< Glarn::Fib::FecId, std::uint64_t > hwIds;
   for( std::uint64_t i = 0; i < keys; ++i ) {
      config[ keyOf( i ) ] = overridingOf( i );
      hwIds[ keyOf( i ).fecId ] = i;
      hwIds[ overridingOf( i ) ] = i;
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
   state.SetItemsProcessed( static_cast< std::int64_t >( state.iterations() * keys ) );
   state.counters[ "keys_per_second" ] = benchmark::Counter(
         static_cast< double >( state.iterations() * keys ), benchmark::Counter::kIsRate );
}
BENCHMARK( BM_CbfReviewBaseline )->Arg( 100000 )->Unit( benchmark::kMillisecond );

}  // namespace
