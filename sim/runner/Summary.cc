#include "NevQos/sim/runner/Summary.h"

#include <algorithm>
#include <map>
#include <ostream>
#include <utility>
#include <vector>

#include "NevQos/sim/runner/Report.h"
#include "NevQos/sim/runner/TextFormat.h"

namespace Sim {

namespace {

using Json = nlohmann::ordered_json;

// Lines of a list the summary shows before it counts the rest, so that it stays one screen.
constexpr std::size_t shown = 8;

void printHead( std::ostream& os, Json const& s, std::string const& reportPath ) {
   os << "nevqos-sim " << printable( s[ "version" ] ) << "  "
      << printable( s[ "scenario" ][ "file" ] );
   if( !s[ "scenario" ][ "description" ].get_ref< std::string const& >().empty() ) {
      os << ": " << printable( s[ "scenario" ][ "description" ] );
   }
   os << "\nRan to " << timeText( s[ "time" ].get< double >() ) << " s: " << s[ "calls" ]
      << " helper calls, " << s[ "logs" ].size() << " log lines";
   if( !reportPath.empty() ) os << "; the report is in " << printableText( reportPath );
   os << "\n";
}

void printPolicyMaps( std::ostream& os, Json const& policyMaps ) {
   std::map< std::string, std::size_t > byStatus;
   for( Json const& p : policyMaps )
      ++byStatus[ p[ "prgmStatus" ].get< std::string >() ];
   os << "Policy maps (" << policyMaps.size() << ")";
   char const* sep = ": ";
   for( auto const& [ status, n ] : byStatus ) {
      os << sep << n << " " << status;
      sep = ", ";
   }
   os << "\n";
   std::size_t i = 0;
   for( Json const& p : policyMaps ) {
      if( i++ == shown ) {
         os << "  ... " << policyMaps.size() - shown << " more\n";
         break;
      }
      os << "  " << printable( p[ "type" ] ) << " " << printable( p[ "direction" ] ) << " "
         << printable( p[ "name" ] ) << "  version " << p[ "version" ] << "  "
         << printable( p[ "prgmStatus" ] );
      if( !p[ "errMessage" ].get_ref< std::string const& >().empty() ) {
         os << " \"" << printable( p[ "errMessage" ] ) << "\"";
      }
      os << "\n";
   }
}

std::string usage( Json const& pool ) {
   return pool[ "used" ].dump() + "/" + pool[ "size" ].dump();
}

void printPools( std::ostream& os, Json const& tcam, Json const& resources ) {
   os << "TCAM:";
   char const* sep = " ";
   for( Json const& slice : tcam[ "slices" ] ) {
      os << sep << printable( slice[ "name" ] ) << " " << usage( slice );
      sep = ", ";
   }
   os << "; range checkers " << usage( tcam[ "rangeCheckers" ] ) << "\n";
   os << "Pools: policers " << usage( resources[ "policers" ] ) << ", counters "
      << usage( resources[ "counters" ] ) << ", CPU queues " << usage( resources[ "cpuQueues" ] )
      << "\n";
}

// The handles most logged first, then by name.
void printLogHandles( std::ostream& os, Json const& logs ) {
   std::map< std::string, std::size_t > counts;
   for( Json const& l : logs )
      ++counts[ l[ "handle" ].get< std::string >() ];
   std::vector< std::pair< std::string, std::size_t > > byCount( counts.begin(), counts.end() );
   std::stable_sort( byCount.begin(), byCount.end(),
                     []( auto const& a, auto const& b ) { return a.second > b.second; } );
   os << "Log lines by handle (" << logs.size() << ")" << ( logs.empty() ? "\n" : ":\n" );
   for( std::size_t i = 0; i < byCount.size(); ++i ) {
      if( i == shown ) {
         os << "  ... " << byCount.size() - shown << " more handles\n";
         break;
      }
      os << "  " << byCount[ i ].second << "  " << printableText( byCount[ i ].first ) << "\n";
   }
}

void printChecks( std::ostream& os, Json const& s ) {
   os << "Verification: ";
   if( !s.contains( "verify" ) ) {
      os << "not run (--verify)\n";
   } else {
      Json const& v = s[ "verify" ];
      os << v[ "runs" ] << " runs, ";
      if( v[ "findings" ].empty() ) {
         os << "the chip holds what the engine programmed\n";
      } else {
         os << v[ "findings" ].size() << " mismatches, the first at "
            << timeText( v[ "findings" ][ 0 ][ "t" ].get< double >() )
            << " s: " << printable( v[ "findings" ][ 0 ][ "text" ] ) << "\n";
      }
   }
   if( !s.contains( "expect" ) ) return;
   Json const& e = s[ "expect" ];
   os << "Expectations (" << e[ "items" ].size() << "): ";
   if( e[ "met" ].get< bool >() ) {
      os << "met\n";
   } else {
      os << "NOT met: " << printable( e[ "failure" ] ) << "\n";
   }
}

}  // namespace

Json summaryOf( Scenario const& scenario, SimSwitch const& sw, Json const& more ) {
   Json out = reportPartsOf( scenario, sw,
                             { "version", "scenario", "time", "logs", "status", "resources" } );
   out[ "calls" ] = sw.calls().size();
   out[ "tcam" ] = tcamPoolsOf( sw.chip().tcam() );
   for( char const* key : { "verify", "expect" } ) {
      if( more.contains( key ) ) out[ key ] = more[ key ];
   }
   return out;
}

void printSummary( std::ostream& os, Json const& summary, std::string const& reportPath ) {
   printHead( os, summary, reportPath );
   printPolicyMaps( os, summary[ "status" ][ "policyMaps" ] );
   printPools( os, summary[ "tcam" ], summary[ "resources" ] );
   printLogHandles( os, summary[ "logs" ] );
   printChecks( os, summary );
}

}  // namespace Sim
