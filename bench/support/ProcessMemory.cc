#include "bench/support/ProcessMemory.h"

#include <fstream>

#include "bench/support/BenchAgent.h"

namespace Bench {

double statusBytes( std::string const& field ) {
   std::ifstream status( "/proc/self/status" );
   std::string line;
   while( std::getline( status, line ) ) {
      if( line.rfind( field + ":", 0 ) == 0 )
         return 1024.0 * std::stod( line.substr( field.size() + 1 ) );
   }
   fail( "no " + field + " in /proc/self/status" );
}

bool peakResetIs() {
   std::ofstream clear( "/proc/self/clear_refs" );
   clear << "5";
   clear.flush();
   return clear.good();
}

double peakResidentBytes( bool peakReset ) {
   return statusBytes( peakReset ? "VmHWM" : "VmRSS" );
}

}  // namespace Bench
