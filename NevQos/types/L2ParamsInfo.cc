#include "NevQos/types/L2ParamsInfo.h"

#include <ostream>

#include "NevQos/platform/zub/ValueText.h"

namespace Nev {

L2ParamsInfo::L2ParamsInfo( char const* begin, char const* end ) {
   Zub::StrepIter it = begin;
   deserializeAttr( it, end, *this );
   ValueText::needEnd( it, end );
}

Zub::String valueToStrep( L2ParamsInfo const& p ) {
   return Zub::String( "Value('Nev::L2ParamsInfo', ** {'vlan': " ) + Zub::valueToStrep( p.vlan() ) +
          ", 'vlanMask': " + Zub::valueToStrep( p.vlanMask() ) +
          ", 'cos': " + Zub::valueToStrep( p.cos() ) +
          ", 'cosMask': " + Zub::valueToStrep( p.cosMask() ) + "})";
}

std::ostream& operator<<( std::ostream& os, L2ParamsInfo const& p ) {
   return os << valueToStrep( p );
}

void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, L2ParamsInfo& out ) {
   std::uint16_t vlan = 0, vlanMask = 0;
   std::uint8_t cos = 0, cosMask = 0;
   Zub::needString( it, end, "Value('Nev::L2ParamsInfo', ** {" );
   Zub::deserializeField( it, end, "vlan", vlan, true );
   Zub::deserializeField( it, end, "vlanMask", vlanMask, false );
   Zub::deserializeField( it, end, "cos", cos, false );
   Zub::deserializeField( it, end, "cosMask", cosMask, false );
   Zub::needString( it, end, "})" );
   out = L2ParamsInfo( vlan, vlanMask, cos, cosMask );
}

}  // namespace Nev
