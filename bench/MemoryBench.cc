// Memory. Resident memory per installed subrule in the scenario runner with the ClassBench set
// acl1_10k (examples/classbench-10k.yaml): the growth of the peak resident set from before the
// switch is built (the scenario already read) to the end of its settling, over the TCAM entries
// installed. And bytes per class: the growth of the heap in use (the allocator's count, which
// memory freed earlier in the process does not hide) when a policy map of 1024 classes, each
// matching a DSCP, is applied to one interface of the engine with the counting chip, over the
// classes. Figures, not timings: each runs once.
#include <benchmark/benchmark.h>

#include <malloc.h>

#include <fstream>
#include <string>

#include "bench/support/BenchAgent.h"
#include "sim/runner/SimSwitch.h"
#include "sim/scenario/ScenarioLoader.h"

namespace {

// A line of /proc/self/status such as "VmHWM:  1234 kB", in bytes.
double statusBytes( std::string const& field ) {
   std::ifstream status( "/proc/self/status" );
   std::string line;
   while( std::getline( status, line ) ) {
      if( line.rfind( field + ":", 0 ) == 0 )
         return 1024.0 * std::stod( line.substr( field.size() + 1 ) );
   }
   Bench::fail( "no " + field + " in /proc/self/status" );
}

// Starts a new peak at the present resident set; false where the kernel does not allow it.
bool peakResetIs() {
   std::ofstream clear( "/proc/self/clear_refs" );
   clear << "5";
   clear.flush();
   return clear.good();
}

void BM_RunnerMemory( benchmark::State& state ) {
   for( auto _ : state ) {
      Sim::Scenario const scenario =
            Sim::loadScenario( NEVQOS_EXAMPLES_DIR "/classbench-10k.yaml" );
      bool const peakReset = peakResetIs();
      double const before = statusBytes( "VmRSS" );
      double peak = 0.0;
      double entries = 0.0;
      {
         Sim::SimSwitch sw( scenario );
         for( Sim::Step const& step : scenario.steps )
            sw.stepIs( step );
         sw.runUntil( sw.now() + 60.0 );
         for( auto const& [ name, slice ] : sw.chip().tcam().slices() )
            entries += slice.used;
         peak = statusBytes( peakReset ? "VmHWM" : "VmRSS" );
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
      auto const before = mallinfo2().uordblks;
      agent.intfIs( "wide", Bench::Agent::ethernet( 1 ), true );
      agent.settle();
      agent.checkProgrammed( "wide" );
      auto const after = mallinfo2().uordblks;
      state.counters[ "figure_bytes" ] = static_cast< double >( after - before ) / classes;
   }
}
BENCHMARK( BM_ClassMemory )->Iterations( 1 )->Unit( benchmark::kMillisecond );

}  // namespace
