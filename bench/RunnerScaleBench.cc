// The scenario runner at scale, run as a user runs it: `nevqos-sim --json --verify` on one access
// list of N rules made by concatenating the bundled ClassBench sets (acl1, fw1, ipc1, over and
// over), as one class of a map on two interfaces of a chip with no range checkers, so that port
// ranges expand. The figures are the child process's peak resident memory per TCAM entry
// installed, and its time per entry; the report compares the time per entry at 80k rules with
// that at 10k.
#include <benchmark/benchmark.h>

#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <string>

#include "bench/support/BenchAgent.h"
#include "bench/support/ChildRun.h"

namespace {

namespace fs = std::filesystem;

// A fresh directory holding the N-rule set and the scenario that uses it.
fs::path scenarioOf( std::size_t rules ) {
   fs::path const dir = Bench::temporaryDirectory( "nevqos-runner-scale" );
   std::ofstream set( dir / "rules" );
   std::size_t written = 0;
   while( written < rules ) {
      std::size_t const before = written;
      for( char const* name : { "acl1_10k", "fw1_10k", "ipc1_10k" } ) {
         std::ifstream in( fs::path( NEVQOS_CLASSBENCH_DIR ) / name );
         std::string line;
         while( written < rules && std::getline( in, line ) ) {
            if( line.empty() ) continue;
            set << line << '\n';
            ++written;
         }
      }
      if( written == before ) Bench::fail( "no ClassBench rules in " NEVQOS_CLASSBENCH_DIR );
   }
   std::ofstream( dir / "scenario.yaml" ) << R"(description: runner scale
chip:
  tcamSliceEntries: 4194304
  rangeCheckers: 0
interfaces: [ Ethernet1, Ethernet2 ]
acls:
  - name: BIG
    classbench: { file: rules }
classMaps:
  - name: big
    match: { ipv4: BIG }
policyMaps:
  - name: big-in
    classes:
      - class: big
        set: { dscp: af11 }
      - class: class-default
servicePolicies:
  - policyMap: big-in
    interfaces: [ Ethernet1, Ethernet2 ]
)";
   return dir;
}

// Runs the runner on the scenario, its report into `report`; aborts unless it ends with 0.
Bench::ChildRun runnerOn( fs::path const& scenario, fs::path const& report ) {
   return Bench::childRun( NEVQOS_SIM_BINARY, { "--json", "--verify", scenario.string() }, report );
}

// The TCAM entries the report says are installed, over all slices; aborts on a finding.
double installedEntries( fs::path const& report ) {
   std::ifstream in( report );
   nlohmann::json const json = nlohmann::json::parse( in );
   if( !json.at( "verify" ).at( "findings" ).empty() )
      Bench::fail( "the verification found faults" );
   double entries = 0.0;
   for( auto const& slice : json.at( "tcam" ).at( "slices" ) )
      entries += slice.at( "used" ).get< double >();
   return entries;
}

void BM_RunnerScale( benchmark::State& state ) {
   auto const rules = static_cast< std::size_t >( state.range( 0 ) );
   fs::path const dir = scenarioOf( rules );
   double entries = 0.0;
   Bench::ChildRun run;
   for( auto _ : state ) {
      run = runnerOn( dir / "scenario.yaml", dir / "report.json" );
      state.SetIterationTime( run.seconds );
      entries = installedEntries( dir / "report.json" );
   }
   fs::remove_all( dir );
   if( entries == 0.0 ) Bench::fail( "the runner installed nothing" );
   state.SetItemsProcessed( static_cast< std::int64_t >( entries ) );
   state.counters[ "entries" ] = entries;
   state.counters[ "peak_rss_bytes" ] = run.peakBytes;
   state.counters[ "peak_bytes_per_entry" ] = run.peakBytes / entries;
}
BENCHMARK( BM_RunnerScale )
      ->Arg( 10000 )
      ->Arg( 80000 )
      ->Iterations( 1 )
      ->UseManualTime()
      ->Unit( benchmark::kSecond );

}  // namespace
