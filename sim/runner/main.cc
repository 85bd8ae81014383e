// nevqos-sim: runs a scenario (docs/scenario.md) end to end on the reference chip and reports
// every helper call, the system log, the hardware status and the TCAM.
#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>
#include <iostream>

#include "sim/runner/Report.h"
#include "sim/runner/SimSwitch.h"
#include "sim/scenario/ScenarioError.h"
#include "sim/scenario/ScenarioLoader.h"

namespace {

// Exit codes.
constexpr int badInput = 2;
constexpr int failed = 3;

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
   app.add_option( "scenario", path, "The scenario file (YAML)" )->required();
   app.add_flag( "--json", json, "Print the report as JSON" );
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
   try {
      app.parse( argc, argv );
   } catch( CLI::ParseError const& e ) {
      // --help is a parse "error" that exits 0.
      return app.exit( e ) == 0 ? 0 : badInput;
   }

   try {
      Sim::Scenario scenario = Sim::loadScenario( path );
      if( tcamMode == "synchronous" ) scenario.chip.tcamMode = Sim::TcamMode::synchronous;
      if( tcamMode == "asynchronous" ) scenario.chip.tcamMode = Sim::TcamMode::asynchronous;
      Sim::SimSwitch sw( scenario );
      for( Sim::Step const& step : scenario.steps )
         sw.stepIs( step );
      sw.runUntil( sw.now() + settle );
      auto const report = Sim::reportOf( scenario, sw );
      if( json ) {
         std::cout << report.dump( 2 ) << "\n";
      } else {
         Sim::printTextReport( std::cout, report, limit );
      }
   } catch( Sim::ScenarioError const& e ) {
      std::cerr << "nevqos-sim: " << e.what() << "\n";
      return badInput;
   } catch( std::exception const& e ) {
      std::cerr << "nevqos-sim: " << path << ": " << e.what() << "\n";
      return failed;
   }
   return 0;
}
