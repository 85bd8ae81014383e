// The scenario runner on a rule table that is never ready for 1e5 virtual seconds: the engine
// retries its one override every 0.01 s, about ten million helper calls, which the runner's
// record must hold in bounded memory. Runs `nevqos-sim --json` as a child process and reports
// its peak resident memory, the calls its report counts and the time they took.
#include <benchmark/benchmark.h>

#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <string>

#include "bench/support/BenchAgent.h"
#include "bench/support/ChildRun.h"

namespace {

namespace fs = std::filesystem;

constexpr char const* settle = "100000";

fs::path scenarioDir() {
   fs::path const dir = Bench::temporaryDirectory( "nevqos-bounded-recording" );
   std::ofstream( dir / "scenario.yaml" ) << R"(description: a rule table never ready
chip:
  faults: [ { kind: cbfNotReady } ]
fecOverrides:
  - { dscp: ef, fec: 10, overridingFec: 20 }
fecService:
  - { fec: 10, hwFecId: 5010 }
  - { fec: 20, hwFecId: 5020 }
)";
   return dir;
}

// Runs the runner on the scenario, its report into `report`; aborts unless it ends with 0.
Bench::ChildRun runnerOn( fs::path const& scenario, fs::path const& report ) {
   return Bench::childRun( NEVQOS_SIM_BINARY, { "--json", "--settle", settle, scenario.string() },
                           report );
}

// The calls the report's entries stand for, and the entries.
std::pair< double, double > callsOf( fs::path const& report ) {
   std::ifstream in( report );
   nlohmann::json const json = nlohmann::json::parse( in );
   double calls = 0.0;
   for( auto const& c : json.at( "calls" ) ) {
      calls += c.contains( "gap" ) ? c.at( "gap" ).at( "calls" ).get< double >()
                                   : c.value( "count", 1.0 );
   }
   return { calls, static_cast< double >( json.at( "calls" ).size() ) };
}

void BM_BoundedRecording( benchmark::State& state ) {
   fs::path const dir = scenarioDir();
   Bench::ChildRun run;
   std::pair< double, double > calls;
   for( auto _ : state ) {
      run = runnerOn( dir / "scenario.yaml", dir / "report.json" );
      state.SetIterationTime( run.seconds );
      calls = callsOf( dir / "report.json" );
   }
   fs::remove_all( dir );
   // A hundred retries a virtual second.
   if( calls.first < 1e7 ) Bench::fail( "the runner made fewer calls than the retries" );
   state.SetItemsProcessed( static_cast< std::int64_t >( calls.first ) );
   state.counters[ "calls" ] = calls.first;
   state.counters[ "entries" ] = calls.second;
   state.counters[ "peak_rss_bytes" ] = run.peakBytes;
}
BENCHMARK( BM_BoundedRecording )->Iterations( 1 )->UseManualTime()->Unit( benchmark::kSecond );

}  // namespace
