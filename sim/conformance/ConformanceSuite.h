// The conformance kit as a GoogleTest suite, for a driver project's tests:
//
//   Conformance::DriverUnderTest myDriver();  // the factories of the driver's helpers
//   NEVQOS_CONFORMANCE_SUITE( MyChip, myDriver )
//
// makes the tests MyChipConformance.EveryExample, .GeneratedSynchronous, .GeneratedAsynchronous
// and .VerificationFindsWhatIsMissing. Every finding fails its test with its message; the notes
// (checks not made, changes left out, and why) are printed. The examples are those of the
// package (NEVQOS_CONFORMANCE_EXAMPLES, which the NevQos::conformance target defines). The
// generated stories are NEVQOS_CONFORMANCE_SEEDS seeds (default 16) of NEVQOS_CONFORMANCE_STEPS
// steps (default 25) per TCAM mode, as the environment says; NEVQOS_CONFORMANCE_FIRST_SEED (1)
// moves them. Each generated story is written to the temporary folder (its name is the file's)
// for nevqos-sim to replay; a line "[  REPLAY  ]" names those with findings.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include "NevQos/sim/conformance/ConformanceRun.h"
#include "NevQos/sim/conformance/ConformanceStories.h"
#include "NevQos/sim/scenario/ScenarioError.h"
#include "NevQos/sim/scenario/ScenarioLoader.h"

namespace Conformance::Suite {

inline std::uint64_t fromEnvironment( char const* name, std::uint64_t otherwise ) {
   char const* const text = std::getenv( name );
   return text != nullptr && *text != '\0' ? std::strtoull( text, nullptr, 10 ) : otherwise;
}

// Fails the test with each finding; prints the notes.
inline void reported( ConformanceResult const& result ) {
   for( std::string const& finding : result.findings )
      ADD_FAILURE() << finding;
   for( std::string const& note : result.notes )
      std::cout << "[   NOTE   ] " << note << "\n";
}

inline void everyExample( DriverUnderTest const& driver, std::string const& dir ) {
   std::size_t ran = 0;
   for( std::string const& path : exampleStories( dir ) ) {
      // One that needs what this machine lacks (a ClassBench filter set) is skipped, and said.
      Sim::Scenario scenario;
      try {
         scenario = Sim::loadScenario( path );
      } catch( Sim::ScenarioError const& e ) {
         std::cout << "[   SKIP   ] " << e.what() << "\n";
         continue;
      }
      reported( runConformance( scenario, driver ) );
      ++ran;
   }
   EXPECT_GT( ran, 0u ) << "no example of " << dir << " ran";
}

inline void generated( DriverUnderTest const& driver, Sim::TcamMode mode ) {
   std::uint64_t const first = fromEnvironment( "NEVQOS_CONFORMANCE_FIRST_SEED", 1 );
   std::uint64_t const seeds = fromEnvironment( "NEVQOS_CONFORMANCE_SEEDS", 16 );
   std::uint64_t const steps = fromEnvironment( "NEVQOS_CONFORMANCE_STEPS", 25 );
   std::size_t played = 0;
   for( std::uint64_t seed = first; seed < first + seeds; ++seed ) {
      Sim::Scenario const scenario = generatedStory( mode, seed, steps );
      // Written first, so that a story that stops the process can be replayed too.
      std::string const path = ( std::filesystem::temp_directory_path() / scenario.file ).string();
      std::ofstream( path ) << generatedStoryText( mode, seed, steps );
      ConformanceResult const result = runConformance( scenario, driver );
      reported( result );
      if( !result.findings.empty() ) std::cout << "[  REPLAY  ] nevqos-sim " << path << "\n";
      played += result.steps;
   }
   std::cout << "[   INFO   ] " << played << " generated steps played\n";
   EXPECT_EQ( played, seeds * steps );
}

inline void verificationFindsWhatIsMissing( DriverUnderTest const& driver,
                                            std::string const& dir ) {
   Sim::Scenario const scenario = Sim::loadScenario( dir + "/edge-policy.yaml" );
   reported( runWithheldSubrule( scenario, driver ) );
}

}  // namespace Conformance::Suite

#define NEVQOS_CONFORMANCE_SUITE( Name, makeDriver )                                       \
   TEST( Name##Conformance, EveryExample ) {                                               \
      ::Conformance::Suite::everyExample( makeDriver(), NEVQOS_CONFORMANCE_EXAMPLES );     \
   }                                                                                       \
   TEST( Name##Conformance, GeneratedSynchronous ) {                                       \
      ::Conformance::Suite::generated( makeDriver(), ::Sim::TcamMode::synchronous );       \
   }                                                                                       \
   TEST( Name##Conformance, GeneratedAsynchronous ) {                                      \
      ::Conformance::Suite::generated( makeDriver(), ::Sim::TcamMode::asynchronous );      \
   }                                                                                       \
   TEST( Name##Conformance, VerificationFindsWhatIsMissing ) {                             \
      ::Conformance::Suite::verificationFindsWhatIsMissing( makeDriver(),                  \
                                                            NEVQOS_CONFORMANCE_EXAMPLES ); \
   }
