// nevqos-sim: runs a scenario (docs/scenario.md) end to end on the reference chip and reports
// every helper call, the system log, the hardware status and the TCAM.
#include <CLI/CLI.hpp>

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "NevQos/platform/zub/Trace.h"
#include "NevQos/sim/runner/Expectations.h"
#include "NevQos/sim/runner/Progress.h"
#include "NevQos/sim/runner/Report.h"
#include "NevQos/sim/runner/ReportDiff.h"
#include "NevQos/sim/runner/ReportPage.h"
#include "NevQos/sim/runner/SimSwitch.h"
#include "NevQos/sim/runner/Summary.h"
#include "NevQos/sim/runner/Timeline.h"
#include "NevQos/sim/runner/Version.h"
#include "NevQos/sim/scenario/ScenarioError.h"
#include "NevQos/sim/scenario/ScenarioLoader.h"
#include "NevQos/sim/scenario/TextRules.h"

namespace {

using Json = nlohmann::ordered_json;

// Exit codes.
constexpr int mismatch = 1;
constexpr int badInput = 2;
constexpr int failed = 3;  // a run cut short, or a report that could not be written

// The map types --show takes, by the names scenarios use.
std::map< std::string, Qos::MapType > const showTypes{ { "qos", Qos::mapQos_ },
                                                       { "control-plane", Qos::mapControlPlane_ },
                                                       { "pdp", Qos::mapPdp_ } };

// With --verify: compares the switch with its chip at each check point and keeps what was found.
// By default only where an engine has asked for a run since the last check, as the platform's
// verify agent runs; with --verify=always at every check point, over everything programmed.
struct Verification {
   std::string mode;  // empty: off; "requested" or "always"
   Json findings = Json::array();
   // Each run: the check point (0 the start, then the steps, then the settle time), its time and
   // what it found.
   Json checks = Json::array();

   bool on() const { return !mode.empty(); }
   void run( Sim::SimSwitch& sw, std::size_t checkPoint ) {
      if( !on() ) return;
      bool const always = mode == "always";
      if( !always && !sw.verifyRequested() ) return;
      std::vector< std::string > const found = always ? sw.verify() : sw.requestedVerify();
      for( std::string const& text : found )
         findings.push_back( { { "t", sw.now() }, { "text", text } } );
      checks.push_back(
            { { "step", checkPoint }, { "t", sw.now() }, { "findings", found.size() } } );
   }
   Json json( Sim::SimSwitch const& sw ) const {
      return { { "mode", mode },
               { "runs", checks.size() },
               { "subruleQueries", sw.chip().subruleQueries() },
               { "findings", findings },
               { "checks", checks } };
   }
};

struct Options {
   std::string path;
   bool json = false;
   std::string settleText = "60";
   double settle = 60.0;
   std::size_t limit = 200;
   std::string tcamMode;
   Verification verification;
   bool show = false;
   std::string showType;
   bool brief = false;
   std::size_t maxTurns = Sim::SimSwitch::defaultRunawayTurns;
   std::vector< std::string > traces;
   std::size_t keepCalls = Sim::CallLog::defaultKeep;
   std::string output;  // -o: empty for standard output
   bool summary = false;
   std::string html;  // --html: the page's file, or empty
};

// Where the report goes: standard output, or the file of -o, opened once the scenario has loaded
// so that a scenario refused leaves the file as it was. A failed write (a full disk, a closed
// pipe) shows when the stream is flushed.
class ReportOutput {
 public:
   explicit ReportOutput( std::string path ) : path_( std::move( path ) ) {}
   std::string open() {
      if( path_.empty() ) return {};
      file_.open( path_, std::ios::binary | std::ios::trunc );
      return file_ ? std::string() : problem( "cannot open " + path_ );
   }
   std::ostream& stream() { return path_.empty() ? std::cout : file_; }
   // The problem of the writes so far, or empty.
   std::string finish() {
      std::string const failure =
            "cannot write the report to " + ( path_.empty() ? "standard output" : path_ );
      if( path_.empty() ) return std::cout.flush() ? std::string() : problem( failure );
      file_.close();
      return file_ ? std::string() : problem( failure );
   }

 private:
   static std::string problem( std::string what ) {
      if( errno != 0 ) what += std::string( ": " ) + std::strerror( errno );
      return what;
   }
   std::string path_;
   std::ofstream file_;
};

// Prints the show output of `type`, or of every type the engine has when it is empty, after the
// report. It goes through a scratch file into the report's stream, so that it lands where the
// report does and a failed write is found as the report's is.
void show( Sim::SimSwitch& sw, std::string const& type, bool detail, std::ostream& os ) {
   std::FILE* const scratch = std::tmpfile();
   if( !scratch ) {
      throw std::runtime_error( std::string( "--show: no scratch file: " ) +
                                std::strerror( errno ) );
   }
   for( Qos::MapType const t : sw.mapTypes() ) {
      if( !type.empty() && showTypes.at( type ) != t ) continue;
      sw.show( fileno( scratch ), t, detail );
   }
   std::rewind( scratch );
   char buf[ 1 << 16 ];
   for( std::size_t n; ( n = std::fread( buf, 1, sizeof buf, scratch ) ) > 0; )
      os.write( buf, std::streamsize( n ) );
   std::fclose( scratch );
}

// The flags of `o`; the --verify and --show options, whose value may be left out.
std::pair< CLI::Option*, CLI::Option* > addOptions( CLI::App& app, Options& o ) {
   app.set_version_flag( "--version", std::string( "nevqos-sim " ) + Sim::projectVersion(),
                         "Print the version and exit" );
   app.add_option( "scenario", o.path, "The scenario file (YAML)" )->required();
   auto* const jsonFlag = app.add_flag( "--json", o.json, "Print the report as JSON" );
   app.add_option( "-o,--output", o.output, "Write the report to FILE instead of standard output" )
         ->type_name( "FILE" );
   app.add_flag( "--summary", o.summary,
                 "Print a one-screen overview on standard output (policy maps and their status, "
                 "TCAM use per slice, log lines by handle, verification) instead of the report, "
                 "which goes to -o FILE if one is given" );
   app.add_option( "--html", o.html,
                   "Also write the report as one self-contained HTML page to FILE (charts of the "
                   "TCAM and the chip's pools step by step, costs per class, the fit of each "
                   "service policy, status, calls and log lines)" )
         ->type_name( "FILE" );
   app.add_option( "--settle", o.settleText,
                   "Virtual seconds to run after the last step, so that asynchronous operations "
                   "and time-outs finish" )
         ->capture_default_str();
   app.add_option( "--limit", o.limit,
                   "Text report: list at most this many helper calls (else a count per "
                   "operation) and entries per ACL; 0 lists all" )
         ->capture_default_str();
   app.add_option( "--tcam-mode", o.tcamMode,
                   "Run on a chip of this TCAM mode, whatever the scenario says" )
         ->check( CLI::IsMember( { "synchronous", "asynchronous" } ) );
   auto* const verify =
         app.add_option(
                  "--verify", o.verification.mode,
                  "Compare the engine's view with the chip at the start, after each step and at "
                  "the end: where an engine asked for it (requested, the default), or every "
                  "time over everything (always); exit with 1 if anything differs" )
               ->expected( 0, 1 )
               ->check( CLI::IsMember( { "requested", "always" } ) );
   auto* const show =
         app.add_option( "--show", o.showType,
                         "After the report, print what the chip holds for the policy maps of "
                         "TYPE (qos, control-plane, pdp), or of every type without one" )
               ->expected( 0, 1 )
               ->check( CLI::IsMember( showTypes ) )
               ->excludes( jsonFlag );  // its lines would break the JSON document
   app.add_flag( "--brief", o.brief, "With --show: the headers only, no rules" );
   app.add_option( "--max-turns", o.maxTurns,
                   "Cut the run (exit 3) once the event loop takes this many turns within one "
                   "second of virtual time: a timer or task that never lets it settle" )
         ->capture_default_str()
         ->check( CLI::PositiveNumber );
   app.add_option( "--trace", o.traces,
                   "Keep the engines' trace lines of HANDLE at LEVELS in the report, in order "
                   "(NevQos/0-3, NevCbfFecMappingSm/*, */0); may be given again" )
         ->type_name( "HANDLE/LEVELS" )
         ->multi_option_policy( CLI::MultiOptionPolicy::TakeAll );
   app.add_option( "--keep-calls", o.keepCalls,
                   "Keep the first and the last this many runs of identical helper calls in the "
                   "record; the runs between them are only counted" )
         ->capture_default_str()
         ->check( CLI::PositiveNumber );
   return { verify, show };
}

// The problem with flags that parse but do not go together or cannot be used, or empty.
std::string problemOf( Options& o ) {
   // Read as a scenario's times are, so that a run's end is a time the clock holds as written.
   Sim::SecondsText const settle = Sim::secondsOf( o.settleText );
   if( !settle.problem.empty() ) return "--settle " + o.settleText + ": " + settle.problem;
   o.settle = settle.value;
   for( std::string const& list : o.traces ) {
      if( !Zub::traceEnable( list ) ) {
         return "--trace " + list + ": not a trace list (HANDLE/LEVELS, such as NevQos/0-3 or */0)";
      }
   }
   // The summary takes standard output: the report needs a file of its own.
   if( o.summary && o.output.empty() && ( o.json || o.show ) ) {
      return std::string( o.json ? "--json" : "--show" ) +
             " with --summary needs -o FILE: the summary takes standard output";
   }
   return {};
}

// Runs the scenario's steps and the settle time, verifying and sampling the chip at each check
// point.
void runSteps( Sim::Scenario const& scenario, Sim::SimSwitch& sw, Sim::Timeline& timeline,
               Options& o ) {
   Sim::Progress progress( std::cerr, isatty( STDERR_FILENO ) != 0, scenario.steps.size() );
   o.verification.run( sw, 0 );
   timeline.startIs( sw );
   std::size_t stepsDone = 0;
   for( Sim::Step const& step : scenario.steps ) {
      sw.stepIs( step );
      o.verification.run( sw, ++stepsDone );
      timeline.stepIs( sw, stepsDone );
      progress.update( sw.now(), stepsDone, sw.calls().size() );
   }
   sw.runFor( o.settle, [ & ] { progress.update( sw.now(), stepsDone, sw.calls().size() ); } );
   o.verification.run( sw, stepsDone + 1 );
   timeline.settledIs( sw );
   progress.finish();
}

// The report, as JSON or as text, then the show output.
void writeReport( std::ostream& os, Sim::Scenario const& scenario, Sim::SimSwitch& sw,
                  Json const& more, Options const& o ) {
   if( o.json ) {
      // Written part by part: a large run's report need not be held whole.
      Sim::writeJsonReport( os, scenario, sw, more );
      os << "\n";
   } else {
      Json report = Sim::reportOf( scenario, sw );
      report.update( more );
      Sim::printTextReport( os, report, o.limit );
      if( more.contains( "expect" ) ) Sim::printExpectations( os, report[ "expect" ] );
   }
   if( o.show ) show( sw, o.showType, !o.brief, os );
}

// The report as an HTML page, into `page`; the problem of the write, or empty.
std::string writePage( ReportOutput& page, Sim::Scenario const& scenario, Sim::SimSwitch& sw,
                       Json const& more ) {
   std::ostringstream json;
   Sim::writeJsonReport( json, scenario, sw, more );
   errno = 0;
   Sim::writeReportPage( page.stream(), json.view() );
   return page.finish();
}

int run( Options& o ) {
   Sim::Scenario scenario = Sim::loadScenario( o.path );
   if( o.tcamMode == "synchronous" ) scenario.chip.tcamMode = Sim::TcamMode::synchronous;
   if( o.tcamMode == "asynchronous" ) scenario.chip.tcamMode = Sim::TcamMode::asynchronous;
   // With --summary and no -o the overview is all there is to print.
   bool const reportWanted = !o.summary || !o.output.empty();
   ReportOutput output( o.output );
   ReportOutput page( o.html );
   for( ReportOutput* out : { &output, &page } ) {
      if( std::string const problem = out->open(); !problem.empty() ) {
         std::cerr << "nevqos-sim: " << problem << "\n";
         return failed;
      }
   }
   Sim::SimSwitch sw( scenario, Sim::SwitchOptions{ .runawayTurns = o.maxTurns,
                                                    .verifyOnRequest = o.verification.on(),
                                                    .keepTraces = !o.traces.empty(),
                                                    .keepCalls = o.keepCalls } );
   Sim::Timeline timeline( scenario );
   runSteps( scenario, sw, timeline, o );
   // What the runner adds to the switch's report.
   Json more = Json::object();
   more[ "steps" ] = timeline.json();
   if( o.verification.on() ) more[ "verify" ] = o.verification.json( sw );
   if( !o.traces.empty() || !scenario.traces.empty() )
      more[ "trace" ] = Sim::tracesOf( sw.traces() );
   bool const expects = !scenario.expect.empty();
   if( expects ) more[ "expect" ] = Sim::expectationsMet( scenario, sw );
   // A failed write leaves its reason in errno; the run before may have left another.
   errno = 0;
   if( reportWanted ) writeReport( output.stream(), scenario, sw, more, o );
   std::string problem = reportWanted ? output.finish() : std::string();
   if( !o.html.empty() && problem.empty() ) problem = writePage( page, scenario, sw, more );
   if( o.summary && problem.empty() ) {
      errno = 0;
      Sim::printSummary( std::cout, Sim::summaryOf( scenario, sw, more ), o.output );
      if( !std::cout.flush() ) {
         problem = "cannot write the summary to standard output";
         if( errno != 0 ) problem += std::string( ": " ) + std::strerror( errno );
      }
   }
   if( !problem.empty() ) {
      std::cerr << "nevqos-sim: " << problem << "\n";
      return failed;
   }
   if( !o.verification.findings.empty() ) return mismatch;
   if( expects && !more[ "expect" ][ "met" ].get< bool >() ) return mismatch;
   return 0;
}

// A report read from `path`; empty, with the problem in `problem`, when it cannot be read or is
// not a report.
Json reportFrom( std::string const& path, std::string& problem ) {
   errno = 0;
   std::ifstream in( path, std::ios::binary );
   if( !in ) {
      problem = path + ": cannot open it";
      if( errno != 0 ) problem += std::string( ": " ) + std::strerror( errno );
      return {};
   }
   Json report;
   try {
      report = Json::parse( in );
   } catch( Json::parse_error const& e ) {
      problem = path + ": not JSON: " + e.what();
      return {};
   }
   if( std::string const why = Sim::notAReport( report ); !why.empty() ) {
      problem = path + ": " + why;
      return {};
   }
   return report;
}

// nevqos-sim diff A.json B.json: exit 0 when the parts compared are the same, 1 when they differ.
int diffMain( int argc, char** argv ) {
   CLI::App app{
      "Compares two JSON reports of nevqos-sim (--json): the TCAM as sets, the status "
      "by name, the log lines and the helper calls in order; times only with "
      "--times. Exits with 1 when they differ."
   };
   std::string paths[ 2 ];
   Sim::DiffOptions options;
   std::vector< std::string > parts;
   app.add_option( "A", paths[ 0 ], "The first report" )->required();
   app.add_option( "B", paths[ 1 ], "The second report" )->required();
   app.add_flag( "--times", options.times,
                 "Compare the times of the calls, the log lines and the status too" );
   app.add_flag( "--subrules", options.subrules,
                 "Compare the subrule numbers of TCAM entries too (an expansion of a range by the "
                 "engine numbers its blocks, one by the chip does not)" );
   app.add_option( "--only", parts, "Compare only these parts: tcam, status, logs, calls" )
         ->delimiter( ',' )
         ->check( CLI::IsMember( std::vector< std::string >( std::begin( Sim::diffParts ),
                                                             std::end( Sim::diffParts ) ) ) );
   app.add_option( "--limit", options.limit,
                   "List at most this many differences per part (then a count); 0 lists all" )
         ->capture_default_str();
   try {
      app.parse( argc, argv );
   } catch( CLI::ParseError const& e ) {
      return app.exit( e ) == 0 ? 0 : badInput;
   }
   options.parts.insert( parts.begin(), parts.end() );
   Json reports[ 2 ];
   for( int i = 0; i < 2; ++i ) {
      std::string problem;
      reports[ i ] = reportFrom( paths[ i ], problem );
      if( !problem.empty() ) {
         std::cerr << "nevqos-sim diff: " << problem << "\n";
         return badInput;
      }
   }
   std::vector< Sim::PartDiff > diff;
   try {
      diff = Sim::diffReports( reports[ 0 ], reports[ 1 ], options );
   } catch( Json::exception const& e ) {
      std::cerr << "nevqos-sim diff: " << paths[ 0 ] << ", " << paths[ 1 ]
                << ": a part is not of a report's shape: " << e.what() << "\n";
      return badInput;
   }
   std::cout << "A: " << paths[ 0 ] << "\nB: " << paths[ 1 ] << "\n";
   bool const differ = Sim::printDiff( std::cout, diff, options );
   if( !std::cout.flush() ) {
      std::cerr << "nevqos-sim diff: cannot write to standard output\n";
      return failed;
   }
   return differ ? mismatch : 0;
}

}  // namespace

int main( int argc, char** argv ) {
   // A closed pipe is a failed write to report, not a signal that ends the process unheard.
   std::signal( SIGPIPE, SIG_IGN );
   if( argc > 1 && std::string_view( argv[ 1 ] ) == "diff" ) return diffMain( argc - 1, argv + 1 );
   CLI::App app{
      "Runs a QoS scenario on the reference chip and reports what reached the "
      "hardware, what the switch logged and the status it wrote."
   };
   app.footer(
         "nevqos-sim diff A.json B.json compares two JSON reports; see nevqos-sim diff "
         "--help." );
   Options o;
   auto const [ verifyOption, showOption ] = addOptions( app, o );
   try {
      app.parse( argc, argv );
   } catch( CLI::ParseError const& e ) {
      // --help is a parse "error" that exits 0.
      return app.exit( e ) == 0 ? 0 : badInput;
   }
   if( verifyOption->count() != 0 && o.verification.mode.empty() )
      o.verification.mode = "requested";
   o.show = showOption->count() != 0;
   if( std::string const problem = problemOf( o ); !problem.empty() ) {
      std::cerr << "nevqos-sim: " << problem << "\n";
      return badInput;
   }
   try {
      return run( o );
   } catch( Sim::ScenarioError const& e ) {
      std::cerr << "nevqos-sim: " << e.what() << "\n";
      return badInput;
   } catch( std::exception const& e ) {
      std::cerr << "nevqos-sim: " << o.path << ": " << e.what() << "\n";
      return failed;
   }
}
