// Scenario files: any text either loads or throws Sim::ScenarioError, the one error the loader
// documents. Anything else escaping, or a crash, is a finding.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "NevQos/sim/scenario/ScenarioLoader.h"

extern "C" int LLVMFuzzerTestOneInput( std::uint8_t const* data, std::size_t size ) {
   std::string const text( reinterpret_cast< char const* >( data ), size );
   // A ClassBench set may be named by absolute path; device and process files would make the
   // run read forever or depend on the machine, and test nothing of the loader.
   for( std::string_view const systemDir : { "/dev/", "/proc/", "/sys/" } ) {
      if( text.find( systemDir ) != std::string::npos ) return -1;
   }
   try {
      // A directory that does not exist: relative file names find nothing beside the scenario.
      Sim::loadScenarioText( text, "/nonexistent/fuzz/scenario.yaml" );
   } catch( Sim::ScenarioError const& ) {
   }
   return 0;
}
