#include "NevQos/types/QosPolicyMapKey.h"

#include <ostream>

#include "NevQos/log/TraceHandles.h"
#include "NevQos/platform/zub/Trace.h"

namespace Nev {

Zub::Name const& QosPolicyMapKey::defaultAclGroup() {
   static Zub::Name const group( "Default" );
   return group;
}

QosPolicyMapKey::QosPolicyMapKey( char const* begin, char const* end ) : QosPolicyMapKey() {
   Zub::StrepIter it = begin;
   deserializeAttr( it, end, *this );
   ValueText::needEnd( it, end );
}

std::strong_ordering QosPolicyMapKey::operator<=>( QosPolicyMapKey const& o ) const noexcept {
   if( auto c = pmapName_ <=> o.pmapName_; c != 0 ) return c;
   if( auto c = ValueText::compareEnum( pmapType_, o.pmapType_ ); c != 0 ) return c;
   if( auto c = ValueText::compareEnum( direction_, o.direction_ ); c != 0 ) return c;
   return aclGroup_ <=> o.aclGroup_;
}

Zub::String QosPolicyMapKey::valueToString() const {
   ZUB_TRACE( nevQosTrace, 8, "QosPolicyMapKey::valueToString" );
   return pmapName_.str() + "!" + Qos::stringValue( pmapType_ ) + "!" +
          Qos::stringValue( direction_ ) + "!" + aclGroup_.str();
}

QosPolicyMapKey QosPolicyMapKey::stringToValue( Zub::String const& strVal ) {
   ZUB_TRACE( nevQosTrace, 8, "QosPolicyMapKey::stringToValue( strVal= " << strVal << " )" );
   // Each field ends at the next '!'; a missing '!' leaves the later fields empty.
   std::string_view rest = strVal.view();
   auto next = [ &rest ]() {
      auto p = rest.find( '!' );
      std::string_view field = rest.substr( 0, p );
      rest = p == std::string_view::npos ? std::string_view() : rest.substr( p + 1 );
      return field;
   };
   Zub::Name pmapName( next() );
   Qos::MapType pmapType = Qos::MapTypeInstance( next() );
   Qos::Direction direction = Qos::DirectionInstance( next() );
   return QosPolicyMapKey( pmapName, pmapType, direction, Zub::Name( rest ) );
}

Zub::String valueToStrep( QosPolicyMapKey const& k ) {
   return Zub::String( "Value('Nev::QosPolicyMapKey', ** {'pmapName': " ) +
          Zub::valueToStrep( k.pmapName() ) + ", 'pmapType': " + valueToStrep( k.pmapType() ) +
          ", 'direction': " + valueToStrep( k.direction() ) +
          ", 'aclGroup': " + Zub::valueToStrep( k.aclGroup() ) + "})";
}

std::ostream& operator<<( std::ostream& os, QosPolicyMapKey const& k ) {
   return os << valueToStrep( k );
}

void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, QosPolicyMapKey& out ) {
   Zub::Name pmapName, aclGroup;
   Qos::MapType pmapType = Qos::mapControlPlane_;
   Qos::Direction direction = Qos::directionInput_;
   Zub::needString( it, end, "Value('Nev::QosPolicyMapKey', ** {" );
   Zub::deserializeField( it, end, "pmapName", pmapName, true );
   Zub::deserializeField( it, end, "pmapType", pmapType, false );
   Zub::deserializeField( it, end, "direction", direction, false );
   Zub::deserializeField( it, end, "aclGroup", aclGroup, false );
   Zub::needString( it, end, "})" );
   out = QosPolicyMapKey( pmapName, pmapType, direction, aclGroup );
}

}  // namespace Nev
