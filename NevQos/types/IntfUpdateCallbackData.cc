#include "NevQos/types/IntfUpdateCallbackData.h"

#include <ostream>

namespace Nev {

IntfUpdateCallbackData::IntfUpdateCallbackData( char const* begin, char const* end ) {
   Zub::StrepIter it = begin;
   deserializeAttr( it, end, *this );
   ValueText::needEnd( it, end );
}

Zub::String valueToStrep( IntfUpdateCallbackData const& d ) {
   return Zub::String( "Value('Nev::IntfUpdateCallbackData', ** {'intfPair': " ) +
          valueToStrep( d.intfPair() ) + ", 'direction': " + valueToStrep( d.direction() ) + "})";
}

std::ostream& operator<<( std::ostream& os, IntfUpdateCallbackData const& d ) {
   return os << valueToStrep( d );
}

void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, IntfUpdateCallbackData& out ) {
   Qos::IntfPairKey intfPair;
   Qos::Direction direction = Qos::directionInput_;
   Zub::needString( it, end, "Value('Nev::IntfUpdateCallbackData', ** {" );
   Zub::deserializeField( it, end, "intfPair", intfPair, true );
   Zub::deserializeField( it, end, "direction", direction, false );
   Zub::needString( it, end, "})" );
   out = IntfUpdateCallbackData( intfPair, direction );
}

}  // namespace Nev
