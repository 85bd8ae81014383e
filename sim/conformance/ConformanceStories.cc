#include "NevQos/sim/conformance/ConformanceStories.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "NevQos/sim/random/RandomConfig.h"
#include "NevQos/sim/scenario/ScenarioLoader.h"

namespace Conformance {

namespace fs = std::filesystem;

std::vector< std::string > exampleStories( std::string const& dir ) {
   std::vector< std::string > out;
   for( auto const& entry : fs::directory_iterator( dir ) ) {
      if( entry.path().extension() == ".yaml" ) out.push_back( entry.path().string() );
   }
   std::sort( out.begin(), out.end() );
   return out;
}

std::string generatedStoryText( Sim::TcamMode mode, std::uint64_t seed, std::size_t steps ) {
   Sim::RandomConfig config( seed, mode );
   std::string text = config.scenarioText( config.chip().text( false ) ) + "steps:\n";
   // Each step after the last one's asynchronous operations have had their time.
   double const gap = std::ceil( config.chip().settleTime() ) + 1.0;
   double t = 1.0;
   for( std::size_t i = 0; i < steps; ++i, t += gap ) {
      std::string summary;
      std::string changes;
      do {
         changes = config.nextChanges( summary );
      } while( summary.starts_with( "fault " ) );
      text += "  - at: " + std::to_string( std::int64_t( t ) ) + "\n    changes:\n" + changes;
   }
   return text;
}

Sim::Scenario generatedStory( Sim::TcamMode mode, std::uint64_t seed, std::size_t steps ) {
   std::string const name =
         std::string( "generated-" ) +
         ( mode == Sim::TcamMode::synchronous ? "synchronous" : "asynchronous" ) + "-seed-" +
         std::to_string( seed ) + ".yaml";
   return Sim::loadScenarioText( generatedStoryText( mode, seed, steps ), name );
}

}  // namespace Conformance
