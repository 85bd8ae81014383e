#include "NevQos/sim/runner/TextFormat.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <optional>

#include "NevQos/sim/scenario/TextRules.h"

namespace Sim {

std::string printableText( std::string_view text ) {
   std::string out;
   out.reserve( text.size() );
   for( std::size_t i = 0; i < text.size(); ) {
      std::size_t const n = utf8SequenceAt( text, i );
      // A byte that is not UTF-8 cannot come from a scenario; shown as a byte all the same.
      auto const control =
            n == 0 ? std::optional< unsigned >( static_cast< unsigned char >( text[ i ] ) )
                   : controlCharAt( text, i, n );
      char buf[ 8 ];
      if( !control ) {
         out.append( text.substr( i, n ) );
      } else if( *control == '\n' || *control == '\t' || *control == '\r' ) {
         out += *control == '\n' ? "\\n" : *control == '\t' ? "\\t" : "\\r";
      } else if( n == 2 ) {
         std::snprintf( buf, sizeof buf, "\\u%04x", *control );
         out += buf;
      } else {
         std::snprintf( buf, sizeof buf, "\\x%02x", *control );
         out += buf;
      }
      i += n == 0 ? 1 : n;
   }
   return out;
}

std::string printable( nlohmann::ordered_json const& text ) {
   return printableText( text.get_ref< std::string const& >() );
}

std::string timeText( double t ) {
   char buf[ 400 ];
   std::snprintf( buf, sizeof buf, "%.3f", t );
   if( std::strtod( buf, nullptr ) == t ) return buf;
   // The shortest fixed-point text that reads back as `t`.
   auto const end = std::to_chars( buf, buf + sizeof buf, t, std::chars_format::fixed ).ptr;
   return std::string( buf, end );
}

std::string timeColumn( double t ) {
   std::string const text = timeText( t );
   return text.size() >= 9 ? text : std::string( 9 - text.size(), ' ' ) + text;
}

}  // namespace Sim
