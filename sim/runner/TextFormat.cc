#include "sim/runner/TextFormat.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>

#include "sim/scenario/TextRules.h"

namespace Sim {

std::string printableText( std::string_view text ) {
   std::string out;
   out.reserve( text.size() );
   for( std::size_t i = 0; i < text.size(); ) {
      auto const lead = static_cast< unsigned char >( text[ i ] );
      std::size_t const n = utf8SequenceAt( text, i );
      unsigned const c1 =
            lead == 0xc2 && n == 2 ? static_cast< unsigned char >( text[ i + 1 ] ) : 0;
      char buf[ 8 ];
      if( lead == '\n' ) {
         out += "\\n";
      } else if( lead == '\t' ) {
         out += "\\t";
      } else if( lead == '\r' ) {
         out += "\\r";
      } else if( lead < 0x20 || lead == 0x7f || n == 0 ) {
         // A byte that is not UTF-8 cannot come from a scenario; shown as a byte all the same.
         std::snprintf( buf, sizeof buf, "\\x%02x", unsigned( lead ) );
         out += buf;
      } else if( c1 >= 0x80 && c1 <= 0x9f ) {
         std::snprintf( buf, sizeof buf, "\\u%04x", c1 );
         out += buf;
      } else {
         out.append( text.substr( i, n ) );
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
