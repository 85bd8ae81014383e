#include "NevQos/platform/nev/AclFragMap.h"

#include <ostream>

namespace Nev {

namespace {

void printAddr( std::ostream& os, std::uint32_t v ) {
   os << ( v >> 24 ) << '.' << ( ( v >> 16 ) & 0xff ) << '.' << ( ( v >> 8 ) & 0xff ) << '.'
      << ( v & 0xff );
}

}  // namespace

std::ostream& operator<<( std::ostream& os, AclFragInfo const& i ) {
   printAddr( os, i.srcAddr() );
   os << '/';
   printAddr( os, i.srcMask() );
   os << " -> ";
   printAddr( os, i.dstAddr() );
   os << '/';
   printAddr( os, i.dstMask() );
   return os << " ecn " << i.ecn();
}

}  // namespace Nev
