#include "NevQos/platform/mirel/IpAddrWithMask.h"

#include <ostream>

#include "NevQos/platform/zub/Exception.h"
#include "NevQos/platform/zub/Format.h"

namespace Mirel {

IpAddrWithMask::IpAddrWithMask( std::uint32_t addr, unsigned len ) : addr_( addr ) {
   if( len > maxLen ) Zub::throwRangeException( "IpAddrWithMask::len > 32 not allowed" );
   len_ = static_cast< std::uint8_t >( len );
}

Zub::String stringValue( IpAddrWithMask const& a ) {
   std::uint32_t const v = a.addr();
   return Zub::format( "%u.%u.%u.%u/%u", v >> 24, ( v >> 16 ) & 0xff, ( v >> 8 ) & 0xff, v & 0xff,
                       a.len() );
}

std::ostream& operator<<( std::ostream& os, IpAddrWithMask const& a ) {
   return os << stringValue( a );
}

}  // namespace Mirel
