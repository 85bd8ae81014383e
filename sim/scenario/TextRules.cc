#include "NevQos/sim/scenario/TextRules.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <utility>

namespace Sim {

std::size_t utf8SequenceAt( std::string_view text, std::size_t i ) {
   auto const byte = [ & ]( std::size_t at ) { return static_cast< unsigned char >( text[ at ] ); };
   unsigned char const lead = byte( i );
   if( lead < 0x80 ) return 1;
   std::size_t const more = lead >= 0xc2 && lead < 0xe0   ? 1
                            : lead >= 0xe0 && lead < 0xf0 ? 2
                            : lead >= 0xf0 && lead < 0xf5 ? 3
                                                          : 0;
   if( more == 0 || i + more >= text.size() ) return 0;
   unsigned char const low = lead == 0xe0 ? 0xa0 : lead == 0xf0 ? 0x90 : 0x80;
   unsigned char const high = lead == 0xed ? 0x9f : lead == 0xf4 ? 0x8f : 0xbf;
   if( byte( i + 1 ) < low || byte( i + 1 ) > high ) return 0;
   for( std::size_t k = 2; k <= more; ++k ) {
      if( ( byte( i + k ) & 0xc0 ) != 0x80 ) return 0;
   }
   return more + 1;
}

std::optional< unsigned > controlCharAt( std::string_view text, std::size_t i, std::size_t n ) {
   auto const lead = static_cast< unsigned char >( text[ i ] );
   if( n == 1 && ( lead < 0x20 || lead == 0x7f ) ) return lead;
   // C1 controls are U+0080 to U+009F: 0xc2 then 0x80 to 0x9f.
   auto const next = n == 2 ? static_cast< unsigned char >( text[ i + 1 ] ) : 0u;
   if( lead == 0xc2 && next >= 0x80 && next <= 0x9f ) return next;
   return std::nullopt;
}

std::optional< std::string > textProblem( std::string_view text ) {
   char buf[ 64 ];
   for( std::size_t i = 0; i < text.size(); ) {
      std::size_t const n = utf8SequenceAt( text, i );
      auto const lead = static_cast< unsigned char >( text[ i ] );
      if( n == 0 ) {
         std::snprintf( buf, sizeof buf, "is not UTF-8 (byte 0x%02x at byte %zu)", unsigned( lead ),
                        i + 1 );
         return buf;
      }
      if( auto const control = controlCharAt( text, i, n ) ) {
         std::snprintf( buf, sizeof buf, "holds a control character (U+%04X at byte %zu)", *control,
                        i + 1 );
         return buf;
      }
      i += n;
   }
   return std::nullopt;
}

namespace {

// A decimal number as its significant digits (no leading or trailing zeros; none for zero) and
// the power of ten of the last of them; none for text that is not one. The sign is left out.
std::optional< std::pair< std::string, long > > decimalOf( std::string_view text ) {
   if( text.starts_with( '-' ) ) text.remove_prefix( 1 );
   std::string digits;
   long exponent = 0;
   bool point = false;
   std::size_t i = 0;
   for( ; i < text.size(); ++i ) {
      char const c = text[ i ];
      if( c >= '0' && c <= '9' ) {
         digits += c;
         if( point ) --exponent;
      } else if( c == '.' && !point ) {
         point = true;
      } else {
         break;
      }
   }
   if( digits.empty() ) return std::nullopt;
   if( i < text.size() && ( text[ i ] == 'e' || text[ i ] == 'E' ) ) {
      std::string_view power = text.substr( i + 1 );
      if( power.starts_with( '+' ) ) power.remove_prefix( 1 );
      long e = 0;
      auto const [ end, ec ] = std::from_chars( power.data(), power.data() + power.size(), e );
      if( power.empty() || ec != std::errc() || end != power.data() + power.size() ) {
         return std::nullopt;
      }
      exponent += e;
      i = text.size();
   }
   if( i != text.size() ) return std::nullopt;
   std::size_t const first = digits.find_first_not_of( '0' );
   if( first == std::string::npos ) return std::pair< std::string, long >{};
   digits.erase( 0, first );
   while( digits.back() == '0' ) {
      digits.pop_back();
      ++exponent;
   }
   return std::pair{ digits, exponent };
}

}  // namespace

SecondsText secondsOf( std::string_view text ) {
   SecondsText out;
   auto const written = decimalOf( text );
   auto const [ end, ec ] = std::from_chars( text.data(), text.data() + text.size(), out.value );
   if( !written || ec != std::errc() || end != text.data() + text.size() ||
       !std::isfinite( out.value ) ) {
      out.problem = "is not a number of seconds";
      return out;
   }
   if( text.starts_with( '-' ) ) {
      out.problem = "takes no sign: a time is never below 0";
      return out;
   }
   if( out.value > maxSeconds ) {
      out.problem =
            "is above 1e9 s, beyond which the virtual clock no longer tells microseconds "
            "apart";
      return out;
   }
   // The shortest text that reads back as the same double: the clock holds the time as written
   // only when its digits are the written ones.
   char held[ 32 ];
   auto const shortest = std::to_chars( held, held + sizeof held, out.value );
   if( decimalOf( std::string_view( held, std::size_t( shortest.ptr - held ) ) ) != written ) {
      out.problem = "has more digits than the virtual clock holds (it holds " +
                    std::string( held, shortest.ptr ) + ")";
   }
   return out;
}

}  // namespace Sim
