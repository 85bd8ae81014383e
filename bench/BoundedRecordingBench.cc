// The scenario runner on a rule table that is never ready for 1e5 virtual seconds: the engine
// retries its one override every 0.01 s, about ten million helper calls, which the runner's
// record must hold in bounded memory. Runs `nevqos-sim --json` as a child process and reports
// its peak resident memory, the calls its report counts and the time they took.
#include <benchmark/benchmark.h>

#include <nlohmann/json.hpp>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "bench/support/BenchAgent.h"

namespace {

namespace fs = std::filesystem;

constexpr char const* settle = "100000";

fs::path scenarioDir() {
   std::string tmpl = ( fs::temp_directory_path() / "nevqos-bounded-recording-XXXXXX" ).string();
   if( !mkdtemp( tmpl.data() ) ) Bench::fail( "cannot make a temporary directory" );
   fs::path const dir( tmpl );
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

struct ChildRun {
   double seconds = 0.0;
   double peakBytes = 0.0;
};

ChildRun runnerOn( fs::path const& scenario, fs::path const& report ) {
   auto const start = std::chrono::steady_clock::now();
   pid_t const pid = fork();
   if( pid < 0 ) Bench::fail( "fork failed" );
   if( pid == 0 ) {
      if( !std::freopen( report.c_str(), "w", stdout ) ) std::_Exit( 126 );
      execl( NEVQOS_SIM_BINARY, "nevqos-sim", "--json", "--settle", settle, scenario.c_str(),
             nullptr );
      std::_Exit( 127 );
   }
   int status = 0;
   rusage usage{};
   if( wait4( pid, &status, 0, &usage ) != pid ) Bench::fail( "wait4 failed" );
   std::chrono::duration< double > const took = std::chrono::steady_clock::now() - start;
   if( !WIFEXITED( status ) || WEXITSTATUS( status ) != 0 ) {
      Bench::fail( "nevqos-sim did not end with 0 on " + scenario.string() );
   }
   // ru_maxrss is in kilobytes on Linux.
   return ChildRun{ took.count(), 1024.0 * static_cast< double >( usage.ru_maxrss ) };
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
   ChildRun run;
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
