// Scenarios run through the engine: any text that loads is run as `nevqos-sim --verify=always
// --json` runs it (sim/checks/CheckedRun.h), with the outside checks after the start, after
// every step and after the settling time, and its JSON report built. A text that does not load, or
// whose configuration the publisher refuses, is no input. An engine assertion, an escaped
// exception, a run that never settles, a verification finding, a map whose status the chip's
// TCAM contradicts, or a hang is a finding.
//
// Bounded so that one input runs in well under a second: at most `maxSteps` steps, the last at
// most `maxTime` seconds in, asynchronous delays and time-outs of at most `maxDelay`, at most
// `maxRules` rules in all.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <variant>

#include "NevQos/sim/checks/CheckedRun.h"
#include "NevQos/sim/scenario/ScenarioError.h"
#include "NevQos/sim/scenario/ScenarioLoader.h"

namespace {

constexpr std::size_t maxSteps = 40;
constexpr Zub::Seconds maxTime = 600.0;
constexpr Zub::Seconds maxDelay = 30.0;
constexpr std::size_t maxRules = 400;

std::size_t rulesOf( Sim::Scenario const& s ) {
   std::size_t rules = 0;
   auto count = [ & ]( Sim::Change const& c ) {
      if( auto const* acl = std::get_if< Sim::AclDef >( &c.value ) ) {
         rules += acl->ipv4Rules.size() + acl->ipv6Rules.size() + acl->macRules.size();
      }
   };
   for( Sim::Change const& c : s.initial )
      count( c );
   for( Sim::Step const& step : s.steps ) {
      for( Sim::Change const& c : step.changes )
         count( c );
   }
   return rules;
}

bool withinBounds( Sim::Scenario const& s ) {
   if( s.steps.size() > maxSteps || rulesOf( s ) > maxRules ) return false;
   if( !s.steps.empty() && s.steps.back().time > maxTime ) return false;
   return s.chip.asyncDelay <= maxDelay && s.chip.asyncTimeout <= maxDelay;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput( std::uint8_t const* data, std::size_t size ) {
   std::string const text( reinterpret_cast< char const* >( data ), size );
   // As the reader's target: no device or process files named as ClassBench sets.
   for( std::string_view const systemDir : { "/dev/", "/proc/", "/sys/" } ) {
      if( text.find( systemDir ) != std::string::npos ) return -1;
   }
   Sim::Scenario scenario;
   try {
      scenario = Sim::loadScenarioText( text, "/nonexistent/fuzz/scenario.yaml" );
   } catch( Sim::ScenarioError const& ) {
      return -1;
   }
   if( !withinBounds( scenario ) ) return -1;
   // A chip answering an error inside an asynchronous call breaks the helper's contract, and the
   // engine stops on it by design: no input.
   for( Sim::FaultConfig const& f : scenario.chip.faults ) {
      if( f.inCall ) return -1;
   }
   Sim::CheckedRunLimits limits;
   limits.report = true;
   Sim::CheckedRun run;
   try {
      run = Sim::checkedRun( scenario, limits );
   } catch( Sim::ScenarioError const& ) {
      // A configuration the publisher refuses, at the start or in a step.
      return -1;
   }
   if( run.problems.empty() ) return 0;
   for( std::string const& p : run.problems )
      std::fprintf( stderr, "engine fuzz: %s\n", p.c_str() );
   std::abort();
}
