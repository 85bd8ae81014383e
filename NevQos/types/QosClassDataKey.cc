#include "NevQos/types/QosClassDataKey.h"

#include <ostream>

#include "NevQos/log/TraceHandles.h"
#include "NevQos/platform/zub/Trace.h"

namespace Nev {

Zub::Name const& QosClassDataKey::defaultPolicerName() {
   static Zub::Name const name( "Default" );
   return name;
}

QosClassDataKey::QosClassDataKey( char const* begin, char const* end ) : QosClassDataKey() {
   Zub::StrepIter it = begin;
   deserializeAttr( it, end, *this );
   ValueText::needEnd( it, end );
}

std::strong_ordering QosClassDataKey::operator<=>( QosClassDataKey const& o ) const noexcept {
   if( auto c = pmapKey_ <=> o.pmapKey_; c != 0 ) return c;
   if( auto c = cmapName_ <=> o.cmapName_; c != 0 ) return c;
   if( auto c = ValueText::compareEnum( cmapType_, o.cmapType_ ); c != 0 ) return c;
   return policerName_ <=> o.policerName_;
}

Zub::String QosClassDataKey::valueToString() const {
   ZUB_TRACE( nevQosTrace, 8, "QosClassDataKey::valueToString" );
   return pmapKey_.valueToString() + "!" + cmapName_.str() + "!" + Qos::stringValue( cmapType_ ) +
          "!" + policerName_.str();
}

QosClassDataKey QosClassDataKey::stringToValue( Zub::String const& strVal ) {
   ZUB_TRACE( nevQosTrace, 8, "QosClassDataKey::stringToValue( strVal= " << strVal << " )" );
   // Each field starts after the last '!' of what is left; a missing '!' takes all that is left.
   std::string_view rest = strVal.view();
   auto last = [ &rest ]() {
      auto p = rest.rfind( '!' );
      if( p == std::string_view::npos ) return std::exchange( rest, std::string_view() );
      std::string_view field = rest.substr( p + 1 );
      rest = rest.substr( 0, p );
      return field;
   };
   Zub::Name policerName( last() );
   Qos::MapType cmapType = Qos::MapTypeInstance( last() );
   Zub::Name cmapName( last() );
   QosPolicyMapKey pmapKey = QosPolicyMapKey::stringToValue( Zub::String( rest ) );
   return QosClassDataKey( pmapKey, cmapName, cmapType, policerName );
}

Zub::String valueToStrep( QosClassDataKey const& k ) {
   return Zub::String( "Value('Nev::QosClassDataKey', ** {'pmapKey': " ) +
          valueToStrep( k.pmapKey() ) + ", 'cmapName': " + Zub::valueToStrep( k.cmapName() ) +
          ", 'cmapType': " + valueToStrep( k.cmapType() ) +
          ", 'policerName': " + Zub::valueToStrep( k.policerName() ) + "})";
}

std::ostream& operator<<( std::ostream& os, QosClassDataKey const& k ) {
   return os << valueToStrep( k );
}

void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, QosClassDataKey& out ) {
   QosPolicyMapKey pmapKey;
   Zub::Name cmapName, policerName;
   Qos::MapType cmapType = Qos::mapControlPlane_;
   Zub::needString( it, end, "Value('Nev::QosClassDataKey', ** {" );
   Zub::deserializeField( it, end, "pmapKey", pmapKey, true );
   Zub::deserializeField( it, end, "cmapName", cmapName, false );
   Zub::deserializeField( it, end, "cmapType", cmapType, false );
   Zub::deserializeField( it, end, "policerName", policerName, false );
   Zub::needString( it, end, "})" );
   out = QosClassDataKey( pmapKey, cmapName, cmapType, policerName );
}

}  // namespace Nev
