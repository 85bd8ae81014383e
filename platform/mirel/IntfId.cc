#include "NevQos/platform/mirel/IntfId.h"

#include <optional>
#include <ostream>
#include <string>

#include "NevQos/platform/zub/Exception.h"
#include "NevQos/platform/zub/Format.h"

namespace Mirel {

namespace {

struct KindName {
   IntfId::Kind kind;
   std::string_view prefix;
};

// "Vlan" and "Vxlan" share no prefix with each other, so the first match is the only one.
constexpr KindName kindNames[] = {
   { IntfId::kindEthernet, "Ethernet" }, { IntfId::kindPortChannel, "Port-Channel" },
   { IntfId::kindVlan, "Vlan" },         { IntfId::kindVxlan, "Vxlan" },
   { IntfId::kindFabric, "Fabric" },
};

struct Parts {
   IntfId::Kind kind = IntfId::kindNone;
   std::uint32_t number = 0;
   std::uint32_t second = 0;
   std::uint32_t third = 0;
   std::uint32_t sub = 0;
};

// The value of `p`, or nothing when a number is outside what its kind allows. Numbers start at 1:
// a zero marks an absent part.
std::optional< std::uint64_t > encode( Parts const& p ) {
   std::uint32_t maxFirst = p.kind == IntfId::kindVlan ? IntfId::maxVlan : IntfId::maxNumber;
   if( p.kind == IntfId::kindNone || p.number == 0 || p.number > maxFirst ) return std::nullopt;
   bool slashed = p.second != 0 || p.third != 0;
   if( slashed && p.kind != IntfId::kindEthernet ) return std::nullopt;
   if( p.third != 0 && p.second == 0 ) return std::nullopt;
   if( p.second > IntfId::maxSubNumber || p.third > IntfId::maxSubNumber ) return std::nullopt;
   bool subAllowed = p.kind == IntfId::kindEthernet || p.kind == IntfId::kindPortChannel;
   if( p.sub != 0 && !subAllowed ) return std::nullopt;
   if( p.sub > IntfId::maxSubIntfNumber ) return std::nullopt;
   return ( std::uint64_t( p.kind ) << 56 ) | ( std::uint64_t( p.number ) << 40 ) |
          ( std::uint64_t( p.second ) << 32 ) | ( std::uint64_t( p.third ) << 24 ) | p.sub;
}

IntfId build( Parts const& p ) {
   auto v = encode( p );
   if( !v ) {
      Zub::throwRangeException( Zub::format( "IntfId: numbers %u/%u/%u.%u out of range for kind %u",
                                             p.number, p.second, p.third, p.sub,
                                             unsigned( p.kind ) ) );
   }
   return IntfId::fromValue( *v );
}

// Reads a decimal number without sign or leading zero; false when there is none.
bool readNumber( std::string_view& rest, std::uint32_t& out ) {
   std::size_t n = 0;
   std::uint64_t v = 0;
   while( n < rest.size() && rest[ n ] >= '0' && rest[ n ] <= '9' ) {
      v = v * 10 + static_cast< std::uint64_t >( rest[ n ] - '0' );
      if( v > 0xffffffffu ) return false;
      ++n;
   }
   if( n == 0 || rest[ 0 ] == '0' ) return false;
   out = static_cast< std::uint32_t >( v );
   rest.remove_prefix( n );
   return true;
}

std::optional< Parts > parse( std::string_view text ) {
   Parts p;
   for( auto const& k : kindNames ) {
      if( text.starts_with( k.prefix ) ) {
         p.kind = k.kind;
         text.remove_prefix( k.prefix.size() );
         break;
      }
   }
   if( p.kind == IntfId::kindNone || !readNumber( text, p.number ) ) return std::nullopt;
   if( text.starts_with( '/' ) ) {
      text.remove_prefix( 1 );
      if( !readNumber( text, p.second ) ) return std::nullopt;
      if( text.starts_with( '/' ) ) {
         text.remove_prefix( 1 );
         if( !readNumber( text, p.third ) ) return std::nullopt;
      }
   }
   if( text.starts_with( '.' ) ) {
      text.remove_prefix( 1 );
      if( !readNumber( text, p.sub ) ) return std::nullopt;
   }
   if( !text.empty() ) return std::nullopt;
   return p;
}

}  // namespace

IntfId::IntfId( std::string_view text ) {
   if( text.empty() ) return;
   auto p = parse( text );
   auto v = p ? encode( *p ) : std::nullopt;
   if( !v ) {
      Zub::throwParseException( Zub::String( "IntfId: '" ) + Zub::String( text ) +
                                "' is not an interface name" );
   }
   value_ = *v;
}

IntfId IntfId::ethernet( std::uint32_t port, std::uint32_t second, std::uint32_t third ) {
   return build( { kindEthernet, port, second, third, 0 } );
}

IntfId IntfId::portChannel( std::uint32_t number ) {
   return build( { kindPortChannel, number, 0, 0, 0 } );
}

IntfId IntfId::vlan( std::uint32_t vlanId ) {
   return build( { kindVlan, vlanId, 0, 0, 0 } );
}

IntfId IntfId::vxlan( std::uint32_t number ) {
   return build( { kindVxlan, number, 0, 0, 0 } );
}

IntfId fabricIntfId() {
   return build( { IntfId::kindFabric, 1, 0, 0, 0 } );
}

IntfId IntfId::subIntf( IntfId parent, std::uint32_t number ) {
   if( number == 0 || parent.isSubIntf() ) {
      Zub::throwRangeException( Zub::format( "IntfId: subinterface %u of '%s' not allowed", number,
                                             parent.stringValue().charPtr() ) );
   }
   return build( { parent.kind(), parent.number(),
                   static_cast< std::uint32_t >( parent.value_ >> 32 ) & 0xff,
                   static_cast< std::uint32_t >( parent.value_ >> 24 ) & 0xff, number } );
}

Zub::String IntfId::stringValue() const {
   if( empty() ) return Zub::String();
   std::string out;
   for( auto const& k : kindNames ) {
      if( k.kind == kind() ) out = k.prefix;
   }
   if( out.empty() ) return Zub::format( "IntfId(0x%llx)", (unsigned long long)value_ );
   out += std::to_string( number() );
   std::uint32_t second = static_cast< std::uint32_t >( value_ >> 32 ) & 0xff;
   std::uint32_t third = static_cast< std::uint32_t >( value_ >> 24 ) & 0xff;
   if( second ) out += '/' + std::to_string( second );
   if( third ) out += '/' + std::to_string( third );
   if( isSubIntf() ) out += '.' + std::to_string( subIntfNumber() );
   return Zub::String( out );
}

std::uint32_t IntfId::hash() const noexcept {
   return Zub::ByteHash().addLe( value_, 8 ).result();
}

Zub::String valueToStrep( IntfId id ) {
   return Zub::valueToStrep( id.stringValue() );
}

std::ostream& operator<<( std::ostream& os, IntfId id ) {
   return os << id.stringValue();
}

void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, IntfId& out ) {
   Zub::String text;
   Zub::deserializeAttr( it, end, text );
   out = IntfId( text );
}

}  // namespace Mirel
