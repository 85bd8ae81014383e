#include "NevQos/types/TcpFlag.h"

#include <ostream>

#include "NevQos/platform/zub/Exception.h"
#include "NevQos/platform/zub/ValueText.h"

namespace NevHelper {

TcpFlag::TcpFlag( char const* begin, char const* end ) {
   Zub::StrepIter it = begin;
   deserializeAttr( it, end, *this );
   ValueText::needEnd( it, end );
}

void TcpFlag::valueIs( std::uint32_t v ) {
   if( v > maxValue ) Zub::throwRangeException( "TcpFlag::value > 0x3f not allowed" );
   value_ = v;
}

Zub::String valueToStrep( TcpFlag const& f ) {
   return Zub::String( "Value('NevHelper::QosAclHelper::TcpFlag', ** {'fin': " ) +
          Zub::valueToStrep( f.fin() ) + ", 'syn': " + Zub::valueToStrep( f.syn() ) +
          ", 'rst': " + Zub::valueToStrep( f.rst() ) + ", 'psh': " + Zub::valueToStrep( f.psh() ) +
          ", 'ack': " + Zub::valueToStrep( f.ack() ) + ", 'urg': " + Zub::valueToStrep( f.urg() ) +
          "})";
}

std::ostream& operator<<( std::ostream& os, TcpFlag const& f ) {
   return os << valueToStrep( f );
}

void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, TcpFlag& out ) {
   static constexpr struct {
      char const* name;
      std::uint32_t bit;
   } fields[] = { { "fin", TcpFlag::fin_ }, { "syn", TcpFlag::syn_ }, { "rst", TcpFlag::rst_ },
                  { "psh", TcpFlag::psh_ }, { "ack", TcpFlag::ack_ }, { "urg", TcpFlag::urg_ } };
   Zub::needString( it, end, "Value('NevHelper::QosAclHelper::TcpFlag', ** {" );
   std::uint32_t value = 0;
   bool first = true;
   for( auto const& f : fields ) {
      bool on = false;
      Zub::deserializeField( it, end, f.name, on, first );
      if( on ) value |= f.bit;
      first = false;
   }
   Zub::needString( it, end, "})" );
   out.valueIs( value );
}

}  // namespace NevHelper
