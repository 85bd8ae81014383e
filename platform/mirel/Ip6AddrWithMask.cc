#include "NevQos/platform/mirel/Ip6AddrWithMask.h"

#include <ostream>
#include <string>

#include "NevQos/platform/zub/Exception.h"
#include "NevQos/platform/zub/Format.h"
#include "NevQos/platform/zub/Strep.h"

namespace Mirel {

Ip6AddrWithMask::Ip6AddrWithMask( Bytes const& addr, unsigned len ) : addr_( addr ) {
   if( len > maxLen ) {
      Zub::throwRangeException( "Ip6AddrWithMask::len > 128 not allowed" );
   }
   len_ = static_cast< std::uint8_t >( len );
}

Ip6AddrWithMask::Bytes Ip6AddrWithMask::mask() const noexcept {
   Bytes m{};
   for( unsigned i = 0; i < m.size(); ++i ) {
      unsigned const bits = len_ > 8 * i ? len_ - 8 * i : 0;
      m[ i ] = bits >= 8 ? 0xff : static_cast< std::uint8_t >( 0xff00u >> bits );
   }
   return m;
}

Zub::String stringValue( Ip6AddrWithMask const& a ) {
   unsigned groups[ 8 ];
   for( unsigned i = 0; i < 8; ++i ) {
      groups[ i ] = unsigned( a.addr()[ 2 * i ] ) << 8 | a.addr()[ 2 * i + 1 ];
   }
   // The longest run of zero groups; a single zero group stays as "0".
   int bestAt = -1, bestLen = 1;
   for( int i = 0; i < 8; ) {
      if( groups[ i ] != 0 ) {
         ++i;
         continue;
      }
      int j = i;
      while( j < 8 && groups[ j ] == 0 )
         ++j;
      if( j - i > bestLen ) {
         bestAt = i;
         bestLen = j - i;
      }
      i = j;
   }
   std::string text;
   for( int i = 0; i < 8; ++i ) {
      if( i == bestAt ) {
         text += "::";
         i += bestLen - 1;
         continue;
      }
      if( !text.empty() && text.back() != ':' ) text += ':';
      text += Zub::format( "%x", groups[ i ] ).view();
   }
   text += Zub::format( "/%u", a.len() ).view();
   return Zub::String( text );
}

Zub::String valueToStrep( Ip6AddrWithMask const& a ) {
   return Zub::valueToStrep( stringValue( a ) );
}

std::ostream& operator<<( std::ostream& os, Ip6AddrWithMask const& a ) {
   return os << stringValue( a );
}

}  // namespace Mirel
