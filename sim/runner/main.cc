// nevqos-sim: runs a scenario (docs/scenario.md) end to end on the reference chip and reports
// every helper call, the system log, the hardware status and the TCAM.
#include <CLI/CLI.hpp>

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <iostream>
#include <map>
#include <string>
#include <vector>

#include "sim/runner/Expectations.h"
#include "sim/runner/Progress.h"
#include "sim/runner/Report.h"
#include "sim/runner/SimSwitch.h"
#include "sim/scenario/ScenarioError.h"
#include "sim/scenario/ScenarioLoader.h"
#include "zub/Trace.h"

namespace {

// Exit codes.
constexpr int mismatch = 1;
constexpr int badInput = 2;
constexpr int failed = 3;  // a run cut short too: it has no report to give

// The map types --show takes, by the names scenarios use.
std::map< std::string, Qos::MapType > const showTypes{ { "qos", Qos::mapQos_ },
                                                       { "control-plane", Qos::mapControlPlane_ },
                                                       { "pdp", Qos::mapPdp_ } };

// With --verify: compares the switch with its chip at each check point and keeps what was found.
// By default only where an engine has asked for a run since the last check, as the platform's
// verify agent runs; with --verify=always at every check point, over everything programmed.
struct Verification {
   std::string mode;  // empty: off; "requested" or "always"
   std::size_t runs = 0;
   nlohmann::ordered_json findings = nlohmann::ordered_json::array();

   bool on() const { return !mode.empty(); }
   void run( Sim::SimSwitch& sw ) {
      if( !on() ) return;
      bool const always = mode == "always";
      if( !always && !sw.verifyRequested() ) return;
      ++runs;
      for( std::string const& text : always ? sw.verify() : sw.requestedVerify() )
         findings.push_back( { { "t", sw.now() }, { "text", text } } );
   }
   nlohmann::ordered_json json( Sim::SimSwitch const& sw ) const {
      return { { "mode", mode },
               { "runs", runs },
               { "subruleQueries", sw.chip().subruleQueries() },
               { "findings", findings } };
   }
};

// Prints the show output of `type`, or of every type the engine has when it is empty, after
// what is already on standard output.
void show( Sim::SimSwitch& sw, std::string const& type, bool detail ) {
   std::cout.flush();
   for( Qos::MapType const t : sw.mapTypes() ) {
      if( !type.empty() && showTypes.at( type ) != t ) continue;
      sw.show( STDOUT_FILENO, t, detail );
   }
}

}  // namespace

int main( int argc, char** argv ) {
   CLI::App app{
      "Runs a QoS scenario on the reference chip and reports what reached the "
      "hardware, what the switch logged and the status it wrote."
   };
   std::string path;
   bool json = false;
   double settle = 60.0;
   std::size_t limit = 200;
   std::string tcamMode;
   Verification verification;
   std::string showType;
   bool brief = false;
   std::size_t maxTurns = Sim::SimSwitch::defaultRunawayTurns;
   std::vector< std::string > traces;
   std::size_t keepCalls = Sim::CallLog::defaultKeep;
   app.add_option( "scenario", path, "The scenario file (YAML)" )->required();
   auto* const jsonFlag = app.add_flag( "--json", json, "Print the report as JSON" );
   app.add_option( "--settle", settle,
                   "Virtual seconds to run after the last step, so that asynchronous operations "
                   "and time-outs finish" )
         ->capture_default_str()
         ->check( CLI::NonNegativeNumber );
   app.add_option( "--limit", limit,
                   "Text report: list at most this many helper calls (else a count per "
                   "operation) and entries per ACL; 0 lists all" )
         ->capture_default_str();
   app.add_option( "--tcam-mode", tcamMode,
                   "Run on a chip of this TCAM mode, whatever the scenario says" )
         ->check( CLI::IsMember( { "synchronous", "asynchronous" } ) );
   auto* const verifyOption =
         app.add_option(
                  "--verify", verification.mode,
                  "Compare the engine's view with the chip at the start, after each step and at "
                  "the end: where an engine asked for it (requested, the default), or every "
                  "time over everything (always); exit with 1 if anything differs" )
               ->expected( 0, 1 )
               ->check( CLI::IsMember( { "requested", "always" } ) );
   auto* const showOption =
         app.add_option( "--show", showType,
                         "After the report, print what the chip holds for the policy maps of "
                         "TYPE (qos, control-plane, pdp), or of every type without one" )
               ->expected( 0, 1 )
               ->check( CLI::IsMember( showTypes ) )
               ->excludes( jsonFlag );  // its lines would break the JSON document
   app.add_flag( "--brief", brief, "With --show: the headers only, no rules" );
   app.add_option( "--max-turns", maxTurns,
                   "Cut the run (exit 4) once the event loop takes this many turns within one "
                   "second of virtual time: a timer or task that never lets it settle" )
         ->capture_default_str()
         ->check( CLI::PositiveNumber );
   app.add_option( "--trace", traces,
                   "Keep the engines' trace lines of HANDLE at LEVELS in the report, in order "
                   "(NevQos/0-3, NevCbfFecMappingSm/*, */0); may be given again" )
         ->type_name( "HANDLE/LEVELS" )
         ->multi_option_policy( CLI::MultiOptionPolicy::TakeAll );
   app.add_option( "--keep-calls", keepCalls,
                   "Keep the first and the last this many runs of identical helper calls in the "
                   "record; the runs between them are only counted" )
         ->capture_default_str()
         ->check( CLI::PositiveNumber );
   try {
      app.parse( argc, argv );
   } catch( CLI::ParseError const& e ) {
      // --help is a parse "error" that exits 0.
      return app.exit( e ) == 0 ? 0 : badInput;
   }
   if( verifyOption->count() != 0 && verification.mode.empty() ) verification.mode = "requested";
   for( std::string const& list : traces ) {
      if( !Zub::traceEnable( list ) ) {
         std::cerr << "nevqos-sim: --trace " << list
                   << ": not a trace list (HANDLE/LEVELS, such as NevQos/0-3 or */0)\n";
         return badInput;
      }
   }

   try {
      Sim::Scenario scenario = Sim::loadScenario( path );
      if( tcamMode == "synchronous" ) scenario.chip.tcamMode = Sim::TcamMode::synchronous;
      if( tcamMode == "asynchronous" ) scenario.chip.tcamMode = Sim::TcamMode::asynchronous;
      Sim::SimSwitch sw( scenario, Sim::SwitchOptions{ .runawayTurns = maxTurns,
                                                       .verifyOnRequest = verification.on(),
                                                       .keepTraces = !traces.empty(),
                                                       .keepCalls = keepCalls } );
      Sim::Progress progress( std::cerr, isatty( STDERR_FILENO ) != 0, scenario.steps.size() );
      verification.run( sw );
      std::size_t stepsDone = 0;
      for( Sim::Step const& step : scenario.steps ) {
         sw.stepIs( step );
         verification.run( sw );
         progress.update( sw.now(), ++stepsDone, sw.calls().size() );
      }
      sw.runFor( settle, [ & ] { progress.update( sw.now(), stepsDone, sw.calls().size() ); } );
      verification.run( sw );
      progress.finish();
      // What the runner adds to the switch's report.
      nlohmann::ordered_json more = nlohmann::ordered_json::object();
      if( verification.on() ) more[ "verify" ] = verification.json( sw );
      if( !traces.empty() || !scenario.traces.empty() ) {
         more[ "trace" ] = Sim::tracesOf( sw.traces() );
      }
      bool const expects = !scenario.expect.empty();
      if( expects ) more[ "expect" ] = Sim::expectationsMet( scenario, sw );
      if( json ) {
         // Written part by part: a large run's report need not be held whole.
         Sim::writeJsonReport( std::cout, scenario, sw, more );
         std::cout << "\n";
      } else {
         auto report = Sim::reportOf( scenario, sw );
         report.update( more );
         Sim::printTextReport( std::cout, report, limit );
         if( expects ) Sim::printExpectations( std::cout, report[ "expect" ] );
      }
      if( showOption->count() != 0 ) show( sw, showType, !brief );
      if( !verification.findings.empty() ) return mismatch;
      if( expects && !more[ "expect" ][ "met" ].get< bool >() ) return mismatch;
   } catch( Sim::ScenarioError const& e ) {
      std::cerr << "nevqos-sim: " << e.what() << "\n";
      return badInput;
   } catch( std::exception const& e ) {
      std::cerr << "nevqos-sim: " << path << ": " << e.what() << "\n";
      return failed;
   }
   return 0;
}
