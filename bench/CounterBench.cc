// Counters: one request of a client over a policy map of 1024 classes, each class
// matching an access list, a VLAN, a COS and a DSCP (four matches, so four counter reads of the
// chip), served inside the request's setter. The baseline reads the same 4096 counters from the
// same chip in a bare loop and sums them per class into a map, as the class status holds them.
#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

#include "NevQos/sim/classbench/ClassBench.h"
#include "NevQos/types/QosClassData.h"
#include "bench/support/BenchAgent.h"

namespace {

using Bench::Agent;
using Bench::AgentOptions;

constexpr unsigned classes = 1024;
constexpr unsigned matchesPerClass = 4;

void countedMapIs( Agent& agent ) {
   static std::vector< Acl::IpRuleConfig > const rules =
         Sim::readClassBench( NEVQOS_CLASSBENCH_DIR "/acl1_10k" );
   for( unsigned i = 0; i < classes; ++i ) {
      auto cmap = agent.classMapIs( Bench::named( "c", i ) );
      std::string const acl = Bench::named( "acl", i );
      agent.ipAclIs( acl, { rules[ i ] } );
      Bench::aclMatchIs( *cmap, acl );
      Bench::vlanMatchIs( *cmap, static_cast< std::uint16_t >( 1 + i ) );
      Bench::cosMatchIs( *cmap, static_cast< std::uint8_t >( i % 8 ) );
      Bench::dscpMatchIs( *cmap, i % 64 );
      agent.classIs( "counted", Bench::named( "c", i ) )->countIs( true );
   }
}

void BM_CounterRequest( benchmark::State& state ) {
   Agent agent( AgentOptions{ .maxClassesPerPolicyMap = classes + 16 } );
   countedMapIs( agent );
   agent.intfIs( "counted", Agent::ethernet( 1 ), true );
   agent.settle();
   agent.checkProgrammed( "counted" );
   agent.counterRequestIs();  // the client's first request makes its machine
   agent.chip().countsForget();
   for( auto _ : state ) {
      agent.loop().timeIs( agent.loop().now() + 1.0 );
      agent.counterRequestIs();
   }
   auto const reads = agent.chip().counts().counterQueries;
   if( reads != static_cast< std::uint64_t >( state.iterations() ) * classes * matchesPerClass ) {
      Bench::fail( Bench::named( "counters: chip reads per request were not 4 per class: ",
                                 static_cast< unsigned >( reads / state.iterations() ) ) );
   }
   agent.checkNoLog();
   state.counters[ "classes_per_second" ] = benchmark::Counter(
         static_cast< double >( state.iterations() * classes ), benchmark::Counter::kIsRate );
}
BENCHMARK( BM_CounterRequest )->Unit( benchmark::kMillisecond );

void BM_CounterRequestBaseline( benchmark::State& state ) {
   auto chip = Bench::CountingChip::detached( Bench::Mode::accept );
   Nev::QosPolicyMapKey const pmapKey( Zub::Name( "counted" ), Qos::mapQos_, Qos::directionInput_,
                                       NevHelper::QosAclHelper::defaultAclGroup() );
   std::vector< Zub::Ptr< Nev::QosClassData > > classData;
   std::vector< Nev::AclKey > aclKeys;
   for( unsigned i = 0; i < classes; ++i ) {
      classData.push_back( Zub::make< Nev::QosClassData >(
            Nev::QosClassDataKey( pmapKey, Zub::Name( Bench::named( "c", i ) ), Qos::mapQos_ ) ) );
      for( unsigned m = 0; m < matchesPerClass; ++m )
         aclKeys.emplace_back( Zub::Name( Bench::named( "acl", i * matchesPerClass + m ) ),
                               Acl::ip() );
   }
   // A virtual call through the base, as in the engine; const, as in AclCompileBench.
   NevHelper::QosAclHelper* const sink = chip.ptr();
   benchmark::DoNotOptimize( sink );
   std::map< Zub::Name, Nev::QosClassCounterData > status;
   for( auto _ : state ) {
      for( unsigned i = 0; i < classes; ++i ) {
         Nev::QosClassCounterData sum;
         for( unsigned m = 0; m < matchesPerClass; ++m )
            sum +=
                  sink->counterUpdateRequest( *classData[ i ], aclKeys[ i * matchesPerClass + m ] );
         status[ classData[ i ]->key().cmapName() ] = sum;
      }
      benchmark::ClobberMemory();
   }
   state.counters[ "classes_per_second" ] = benchmark::Counter(
         static_cast< double >( state.iterations() * classes ), benchmark::Counter::kIsRate );
}
BENCHMARK( BM_CounterRequestBaseline )->Unit( benchmark::kMillisecond );

}  // namespace
