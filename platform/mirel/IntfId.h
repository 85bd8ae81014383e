// Interface identifiers: a 64-bit value with a text form such as "Ethernet3/1", "Ethernet1.100",
// "Port-Channel10", "Vlan100", "Vxlan1" or "Fabric1". The empty id (all zero, text "") names no
// interface.
#pragma once

#include <compare>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <string_view>

#include "NevQos/platform/mirel/AddressFamily.h"
#include "NevQos/platform/zub/Strep.h"
#include "NevQos/platform/zub/String.h"

namespace Mirel {

// Layout of the value, most significant first, so that ids order by kind and then numerically:
//   bits 63..56  kind
//   bits 55..40  first number: the port, channel, VLAN or VXLAN number (1..65535)
//   bits 39..32  second number of an Ethernet name "EthernetA/B" (1..255), 0 when absent
//   bits 31..24  third number of an Ethernet name "EthernetA/B/C" (1..255), 0 when absent
//   bits 23..0   subinterface number of an Ethernet or Port-Channel subinterface, 0 when absent
class IntfId {
 public:
   enum Kind : std::uint8_t {
      kindNone = 0,
      kindEthernet = 1,
      kindPortChannel = 2,
      kindVlan = 3,
      kindVxlan = 4,
      // The internal link of a fabric slice to the line cards; not a front-panel port.
      kindFabric = 5,
   };
   static constexpr std::uint32_t maxNumber = 0xffff;
   static constexpr std::uint32_t maxSubNumber = 0xff;
   static constexpr std::uint32_t maxSubIntfNumber = 0xffffff;
   static constexpr std::uint32_t maxVlan = 4094;

   constexpr IntfId() noexcept = default;
   // Parses the text form; throws Zub::ParseException on a text that names no interface.
   explicit IntfId( std::string_view text );
   explicit IntfId( char const* text ) : IntfId( std::string_view( text ) ) {}
   explicit IntfId( Zub::String const& text ) : IntfId( text.view() ) {}

   // Builders; a number out of range throws Zub::RangeException.
   static constexpr IntfId fromValue( std::uint64_t v ) noexcept { return IntfId( v, 0 ); }
   static IntfId ethernet( std::uint32_t port, std::uint32_t second = 0, std::uint32_t third = 0 );
   static IntfId portChannel( std::uint32_t number );
   static IntfId vlan( std::uint32_t vlanId );
   static IntfId vxlan( std::uint32_t number );
   // The subinterface `number` of an Ethernet or Port-Channel interface.
   static IntfId subIntf( IntfId parent, std::uint32_t number );

   constexpr std::uint64_t value() const noexcept { return value_; }
   constexpr Kind kind() const noexcept { return static_cast< Kind >( value_ >> 56 ); }
   constexpr bool empty() const noexcept { return value_ == 0; }
   constexpr bool operator!() const noexcept { return empty(); }

   // An Ethernet port or one of its subinterfaces.
   constexpr bool isEthernet() const noexcept { return kind() == kindEthernet; }
   // A port-channel (LAG) or one of its subinterfaces.
   constexpr bool isLag() const noexcept { return kind() == kindPortChannel; }
   constexpr bool isVlan() const noexcept { return kind() == kindVlan; }
   // A VXLAN tunnel interface.
   constexpr bool isVxlan() const noexcept { return kind() == kindVxlan; }
   constexpr bool isFabric() const noexcept { return kind() == kindFabric; }
   constexpr bool isSubIntf() const noexcept { return subIntfNumber() != 0; }

   // The port, channel, VLAN or VXLAN number.
   constexpr std::uint32_t number() const noexcept {
      return static_cast< std::uint32_t >( value_ >> 40 ) & 0xffff;
   }
   constexpr std::uint32_t subIntfNumber() const noexcept {
      return static_cast< std::uint32_t >( value_ ) & maxSubIntfNumber;
   }
   // The interface of a subinterface; any other id is its own parent.
   constexpr IntfId parent() const noexcept {
      return IntfId( value_ & ~std::uint64_t( maxSubIntfNumber ), 0 );
   }

   Zub::String stringValue() const;
   // The byte-wise hash of the eight bytes, least significant first.
   std::uint32_t hash() const noexcept;

   constexpr bool operator==( IntfId const& ) const noexcept = default;
   constexpr std::strong_ordering operator<=>( IntfId const& ) const noexcept = default;

 private:
   constexpr IntfId( std::uint64_t v, int ) noexcept : value_( v ) {}
   std::uint64_t value_ = 0;
};

// The one interface a fabric slice programs QoS on, "Fabric1".
IntfId fabricIntfId();

// True for a fabric interface: it has no front-panel status, so no link speed of its own.
constexpr bool isFabricInterface( IntfId id ) noexcept {
   return id.isFabric();
}

// True for a VLAN (SVI) interface.
constexpr bool isVlanIntfId( IntfId id ) noexcept {
   return id.isVlan();
}

// The quoted text form, as in a `Value(...)` text.
Zub::String valueToStrep( IntfId id );
std::ostream& operator<<( std::ostream& os, IntfId id );
void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, IntfId& out );

}  // namespace Mirel

template<>
struct std::hash< Mirel::IntfId > {
   std::size_t operator()( Mirel::IntfId id ) const noexcept { return id.hash(); }
};
