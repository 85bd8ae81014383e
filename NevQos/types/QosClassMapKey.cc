#include "NevQos/types/QosClassMapKey.h"

#include <ostream>

namespace Nev {

QosClassMapKey::QosClassMapKey( char const* begin, char const* end ) {
   Zub::StrepIter it = begin;
   deserializeAttr( it, end, *this );
   ValueText::needEnd( it, end );
}

std::strong_ordering QosClassMapKey::operator<=>( QosClassMapKey const& o ) const noexcept {
   if( auto c = cmapName_ <=> o.cmapName_; c != 0 ) return c;
   return ValueText::compareEnum( cmapType_, o.cmapType_ );
}

Zub::String valueToStrep( QosClassMapKey const& k ) {
   return Zub::String( "Value('Nev::QosClassMapKey', ** {'cmapName': " ) +
          Zub::valueToStrep( k.cmapName() ) + ", 'cmapType': " + valueToStrep( k.cmapType() ) +
          "})";
}

std::ostream& operator<<( std::ostream& os, QosClassMapKey const& k ) {
   return os << valueToStrep( k );
}

void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, QosClassMapKey& out ) {
   Zub::Name cmapName;
   Qos::MapType cmapType = Qos::mapControlPlane_;
   Zub::needString( it, end, "Value('Nev::QosClassMapKey', ** {" );
   Zub::deserializeField( it, end, "cmapName", cmapName, true );
   Zub::deserializeField( it, end, "cmapType", cmapType, false );
   Zub::needString( it, end, "})" );
   out = QosClassMapKey( cmapName, cmapType );
}

}  // namespace Nev
