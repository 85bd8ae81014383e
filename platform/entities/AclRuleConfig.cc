#include "NevQos/platform/entities/AclRuleConfig.h"

#include <algorithm>
#include <ostream>

#include "NevQos/platform/zub/Exception.h"
#include "NevQos/platform/zub/Format.h"

namespace Acl {

std::uint32_t UniqueId::hash() const noexcept {
   return Zub::ByteHash().addLe( value_, 8 ).result();
}

Zub::String valueToStrep( UniqueId id ) {
   return Zub::valueToStrep( id.value() );
}

std::ostream& operator<<( std::ostream& os, UniqueId id ) {
   return os << id.value();
}

namespace {

constexpr ValueText::Member actionNames[] = {
   { actionPermit, "permit" },
   { actionDeny, "deny" },
};

constexpr ValueText::Member ecnNames[] = {
   { ecnDontCare, "ecnDontCare" }, { ecnEctCe, "ecnEctCe" },
   { ecnNonEct, "ecnNonEct" },     { ecnCe, "ecnCe" },
   { ecnEct, "ecnEct" },
};

}  // namespace

ENUM_TEXT_DEFINE( Action, "Acl::Action", actionNames )
ENUM_TEXT_DEFINE( Ecn, "Acl::Ecn", ecnNames )

void TcpFlag::valueIs( std::uint32_t v ) {
   if( v > maxValue ) Zub::throwRangeException( "TcpFlag::value > 0x1ff not allowed" );
   value_ = v;
}

std::ostream& operator<<( std::ostream& os, TcpFlag f ) {
   return os << Zub::format( "0x%x", f.value() );
}

void MacFilter::mplsLabelIs( std::int64_t v ) {
   if( v < 0 || v > maxMplsLabel ) {
      Zub::throwRangeException( "MacFilter::mplsLabel < 0 or > 0xFFFFF not allowed" );
   }
   mplsLabel_ = static_cast< std::uint32_t >( v );
}

void MacFilter::mplsInnerLabelIs( std::int64_t v ) {
   if( v < 0 || v > maxMplsLabel ) {
      Zub::throwRangeException( "MacFilter::mplsInnerLabel < 0 or > 0xFFFFF not allowed" );
   }
   mplsInnerLabel_ = static_cast< std::uint32_t >( v );
}

PortCondition::PortCondition( Oper oper, std::initializer_list< std::uint16_t > values )
    : oper_( oper ) {
   if( values.size() > maxValues ) {
      Zub::throwRangeException( "PortCondition: more than ten values not allowed" );
   }
   bool const fits = oper == any                ? values.size() == 0
                     : oper == range            ? values.size() == 2
                     : oper == gt || oper == lt ? values.size() == 1
                                                : values.size() >= 1;
   if( !fits ) Zub::throwRangeException( "PortCondition: wrong number of values for the operator" );
   for( std::uint16_t v : values )
      values_[ count_++ ] = v;
}

unsigned PortCondition::ranges(
      std::array< std::pair< std::uint16_t, std::uint16_t >, 11 >& out ) const {
   constexpr unsigned top = 0xffff;
   switch( oper_ ) {
      case any:
         out[ 0 ] = { 0, top };
         return 1;
      case gt:
         if( values_[ 0 ] == top ) return 0;
         out[ 0 ] = { static_cast< std::uint16_t >( values_[ 0 ] + 1 ), top };
         return 1;
      case lt:
         if( values_[ 0 ] == 0 ) return 0;
         out[ 0 ] = { 0, static_cast< std::uint16_t >( values_[ 0 ] - 1 ) };
         return 1;
      case range:
         if( values_[ 0 ] > values_[ 1 ] ) return 0;
         out[ 0 ] = { values_[ 0 ], values_[ 1 ] };
         return 1;
      case eq:
      case neq:
         break;
   }
   std::array< std::uint16_t, maxValues > sorted = values_;
   auto const end = sorted.begin() + count_;
   std::sort( sorted.begin(), end );
   auto const last = std::unique( sorted.begin(), end );
   unsigned n = 0;
   if( oper_ == eq ) {
      for( auto it = sorted.begin(); it != last; ++it )
         out[ n++ ] = { *it, *it };
      return n;
   }
   // The gaps between the excluded values.
   unsigned next = 0;
   for( auto it = sorted.begin(); it != last; ++it ) {
      if( *it > next ) {
         out[ n++ ] = { static_cast< std::uint16_t >( next ),
                        static_cast< std::uint16_t >( *it - 1 ) };
      }
      next = *it + 1u;
   }
   if( next <= top ) out[ n++ ] = { static_cast< std::uint16_t >( next ), top };
   return n;
}

std::ostream& operator<<( std::ostream& os, PortCondition const& p ) {
   static char const* const names[] = { "any", "eq", "neq", "gt", "lt", "range" };
   os << names[ p.oper() ];
   for( unsigned i = 0; i < p.count(); ++i )
      os << ' ' << p.value( i );
   return os;
}

namespace {

template< class Filter >
void printRule( std::ostream& os, RuleConfig const& r, Filter const& f ) {
   os << r.action;
   if( f.proto ) {
      os << " proto " << unsigned( f.proto );
   } else {
      os << " ip";
   }
   os << ' ' << ( !f.source ? Zub::String( "any" ) : stringValue( f.source ) );
   if( !f.srcPort.isAny() ) os << ' ' << f.srcPort;
   os << ' ' << ( !f.destination ? Zub::String( "any" ) : stringValue( f.destination ) );
   if( !f.dstPort.isAny() ) os << ' ' << f.dstPort;
   if( !f.ipLen.isAny() ) os << " ip-length " << f.ipLen;
   if( f.tcpFlag.value() ) os << " tcp-flags " << f.tcpFlag;
   if( f.established ) os << " established";
   if( f.icmpTypeValid ) os << " icmp-type " << unsigned( f.icmpType );
   if( f.icmpCodeValid ) os << " icmp-code " << unsigned( f.icmpCode );
   if( f.dscpValid ) os << " dscp " << unsigned( f.dscp );
   if( f.ecn != ecnDontCare ) os << " ecn " << f.ecn;
   if( f.vlanMask ) os << Zub::format( " vlan %u 0x%x", f.vlan, f.vlanMask );
   if( f.fragments ) os << " fragments";
}

}  // namespace

std::ostream& operator<<( std::ostream& os, IpRuleConfig const& r ) {
   printRule( os, r, r.filter );
   return os;
}

std::ostream& operator<<( std::ostream& os, Ip6RuleConfig const& r ) {
   printRule( os, r, r.filter );
   return os;
}

}  // namespace Acl
