#include "NevQos/platform/zub/Format.h"

#include <cstdarg>
#include <cstdio>
#include <vector>

namespace Zub {

String format( char const* fmt, ... ) {
   va_list args;
   va_start( args, fmt );
   va_list again;
   va_copy( again, args );
   int len = std::vsnprintf( nullptr, 0, fmt, args );
   va_end( args );
   if( len <= 0 ) {
      va_end( again );
      return String();
   }
   std::vector< char > buf( static_cast< std::size_t >( len ) + 1 );
   std::vsnprintf( buf.data(), buf.size(), fmt, again );
   va_end( again );
   return String( buf.data(), static_cast< std::size_t >( len ) );
}

}  // namespace Zub
