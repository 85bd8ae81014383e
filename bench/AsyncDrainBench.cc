// The asynchronous road: a policy map of 10 classes, each matching an access list of 4 rules,
// applied to 1000 interfaces at once, which queues 11,011 requests (the creation of each of the
// 11 lists, class-default's included, and a port update per list and interface); a chip that
// completes each operation on the next turn of the loop; the loop in real time, so that the
// engine's 1.0-second pass budget is real. Timed: from the service policy's write until the queue
// is empty and no operation is in flight.
//
// The figure beside the drain rate is the longest turn of the loop, which holds at most one pass
// over the queue, against the budget. A pass looks at the clock before each request, so it may
// overrun the budget by one request; a longest turn within the budget leaves no doubt.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include "NevQos/sim/classbench/ClassBench.h"
#include "bench/support/BenchAgent.h"

namespace {

using Bench::Agent;
using Bench::AgentOptions;

constexpr unsigned classes = 10;
constexpr unsigned interfaces = 1000;
constexpr unsigned rulesPerAcl = 4;
constexpr double passBudget = 1.0;  // seconds

void drainMapIs( Agent& agent ) {
   static std::vector< Acl::IpRuleConfig > const rules =
         Sim::readClassBench( NEVQOS_CLASSBENCH_DIR "/acl1_10k" );
   for( unsigned i = 0; i < classes; ++i ) {
      std::string const acl = Bench::named( "acl", i );
      auto const first = rules.begin() + i * rulesPerAcl;
      agent.ipAclIs( acl, { first, first + rulesPerAcl } );
      Bench::aclMatchIs( *agent.classMapIs( Bench::named( "c", i ) ), acl );
      agent.classIs( "drain", Bench::named( "c", i ) );
   }
   agent.classDefaultIs( "drain" );
}

bool drained( Agent& agent ) {
   return agent.engine().pendingPolicyUpdate().empty() &&
          agent.engine().asyncState() == Nev::asyncNone;
}

void BM_AsyncDrain( benchmark::State& state ) {
   using Clock = std::chrono::steady_clock;
   double longestTurn = 0.0;
   std::uint64_t requests = 0;
   for( auto _ : state ) {
      state.PauseTiming();
      Agent agent( AgentOptions{ .async = true, .realTime = true, .interfaces = interfaces } );
      drainMapIs( agent );
      state.ResumeTiming();
      for( unsigned i = 1; i <= interfaces; ++i )
         agent.intfIs( "drain", Agent::ethernet( i ), true );
      do {
         auto const start = Clock::now();
         agent.loop().runOnce();
         longestTurn = std::max( longestTurn,
                                 std::chrono::duration< double >( Clock::now() - start ).count() );
      } while( !drained( agent ) );
      state.PauseTiming();
      agent.settle();
      agent.checkProgrammed( "drain" );
      requests += agent.chip().counts().asyncOperations;
      state.ResumeTiming();
   }
   state.counters[ "figure_s" ] = longestTurn;
   state.counters[ "baseline_s" ] = passBudget;
   state.counters[ "requests" ] =
         static_cast< double >( requests ) / static_cast< double >( state.iterations() );
   state.counters[ "requests_per_second" ] =
         benchmark::Counter( static_cast< double >( requests ), benchmark::Counter::kIsRate );
}
BENCHMARK( BM_AsyncDrain )->Unit( benchmark::kMillisecond )->Iterations( 3 );

}  // namespace
