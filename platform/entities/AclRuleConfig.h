// Rules of IP and MAC access lists as the ACL agent publishes them. A rule is a plain value: the
// filter (what a packet must look like) beside the action. The compiler takes a copy of a rule,
// narrows it to what the chip supports, and hands it to the driver.
#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <initializer_list>
#include <iosfwd>
#include <utility>

#include "NevQos/platform/mirel/Ip6AddrWithMask.h"
#include "NevQos/platform/mirel/IpAddrWithMask.h"
#include "NevQos/platform/zub/String.h"
#include "NevQos/platform/zub/ValueText.h"

namespace Acl {

// The identity of one configured rule, stable across edits of the list it belongs to.
class UniqueId {
 public:
   constexpr UniqueId() noexcept = default;
   constexpr explicit UniqueId( std::uint64_t value ) noexcept : value_( value ) {}

   constexpr std::uint64_t value() const noexcept { return value_; }
   std::uint32_t hash() const noexcept;

   constexpr bool operator==( UniqueId const& ) const noexcept = default;
   constexpr std::strong_ordering operator<=>( UniqueId const& ) const noexcept = default;
   constexpr bool operator!() const noexcept { return value_ == 0; }

 private:
   std::uint64_t value_ = 0;
};

Zub::String valueToStrep( UniqueId id );
std::ostream& operator<<( std::ostream& os, UniqueId id );

// What a rule does with a matching packet. Only permit rules reach QoS hardware.
enum Action : std::uint32_t {
   actionPermit = 0,
   actionDeny = 1,
};
ENUM_TEXT_DECLARE( Action );

// The ECN condition on the two low bits of the TOS byte.
enum Ecn : std::uint8_t {
   ecnDontCare = 0,
   ecnEctCe = 1,   // any ECN-capable packet, congestion experienced or not
   ecnNonEct = 2,  // not ECN-capable
   ecnCe = 3,      // congestion experienced
   ecnEct = 4,     // ECN-capable, no congestion
};
ENUM_TEXT_DECLARE( Ecn );

// The TCP flags a rule requires, the nine header bits from FIN up to NS.
class TcpFlag {
 public:
   static constexpr std::uint32_t fin_ = 0x01;
   static constexpr std::uint32_t syn_ = 0x02;
   static constexpr std::uint32_t rst_ = 0x04;
   static constexpr std::uint32_t psh_ = 0x08;
   static constexpr std::uint32_t ack_ = 0x10;
   static constexpr std::uint32_t urg_ = 0x20;
   static constexpr std::uint32_t maxValue = 0x1ff;

   constexpr TcpFlag() noexcept = default;
   // Throws Zub::RangeException for a value above 0x1ff.
   explicit TcpFlag( std::uint32_t value ) { valueIs( value ); }
   std::uint32_t value() const noexcept { return value_; }
   void valueIs( std::uint32_t v );
   bool operator==( TcpFlag const& ) const noexcept = default;

 private:
   std::uint32_t value_ = 0;
};

std::ostream& operator<<( std::ostream& os, TcpFlag f );

// A condition on a 16-bit field (a layer-4 port or the IP length): any value, equal to one of up
// to ten values, none of them, above or below one value, or inside a range.
class PortCondition {
 public:
   enum Oper : std::uint8_t { any = 0, eq, neq, gt, lt, range };
   static constexpr unsigned maxValues = 10;

   constexpr PortCondition() noexcept = default;
   // Throws Zub::RangeException for more than ten values, or a range or gt/lt without its
   // values.
   PortCondition( Oper oper, std::initializer_list< std::uint16_t > values );
   static PortCondition eqOf( std::uint16_t v ) { return PortCondition( eq, { v } ); }
   static PortCondition rangeOf( std::uint16_t low, std::uint16_t high ) {
      return PortCondition( range, { low, high } );
   }

   Oper oper() const noexcept { return oper_; }
   unsigned count() const noexcept { return count_; }
   std::uint16_t value( unsigned i ) const noexcept { return values_[ i ]; }
   bool isAny() const noexcept { return oper_ == any; }
   // The condition as ascending, disjoint ranges of low and high; `out` has room for eleven.
   // Returns the number written; 0 when nothing can match (gt 65535, say).
   unsigned ranges( std::array< std::pair< std::uint16_t, std::uint16_t >, 11 >& out ) const;

   bool operator==( PortCondition const& ) const noexcept = default;

 private:
   Oper oper_ = any;
   std::uint8_t count_ = 0;
   std::array< std::uint16_t, maxValues > values_{};
};

// "any", "eq 80 443", "range 1000 2000", ...
std::ostream& operator<<( std::ostream& os, PortCondition const& p );

// What IPv4 and IPv6 filters share.
class IpFilterBase {
 public:
   std::uint16_t vlan = 0;
   std::uint16_t vlanMask = 0;  // non-zero: the rule matches on the VLAN
   std::uint8_t proto = 0;      // 0: any protocol
   TcpFlag tcpFlag;             // flags that must be set
   bool established = false;    // TCP ACK or RST set
   Ecn ecn = ecnDontCare;
   bool fragments = false;  // non-first fragments only
   std::uint8_t dscp = 0;
   bool dscpValid = false;
   std::uint8_t icmpType = 0;
   bool icmpTypeValid = false;
   std::uint8_t icmpCode = 0;
   bool icmpCodeValid = false;
   PortCondition srcPort;
   PortCondition dstPort;
   PortCondition ipLen;

   bool operator==( IpFilterBase const& ) const noexcept = default;
};

class IpFilter : public IpFilterBase {
 public:
   Mirel::IpAddrWithMask source;
   Mirel::IpAddrWithMask destination;
   bool operator==( IpFilter const& ) const noexcept = default;
};

class Ip6Filter : public IpFilterBase {
 public:
   Mirel::Ip6AddrWithMask source;
   Mirel::Ip6AddrWithMask destination;
   bool operator==( Ip6Filter const& ) const noexcept = default;
};

// What every rule has beside its filter.
class RuleConfig {
 public:
   Action action = actionPermit;
   bool operator==( RuleConfig const& ) const noexcept = default;
};

class IpRuleConfig : public RuleConfig {
 public:
   IpFilter filter;
   bool operator==( IpRuleConfig const& ) const noexcept = default;
};

class Ip6RuleConfig : public RuleConfig {
 public:
   Ip6Filter filter;
   bool operator==( Ip6RuleConfig const& ) const noexcept = default;
};

// The filter of a MAC access-list rule: the Ethernet type and, for MPLS packets, the outer and
// inner labels, 20-bit numbers.
class MacFilter {
 public:
   static constexpr std::uint32_t maxMplsLabel = 0xfffff;

   std::uint16_t etherType = 0;

   std::uint32_t mplsLabel() const noexcept { return mplsLabel_; }
   // Throws Zub::RangeException for a label outside 0..0xFFFFF.
   void mplsLabelIs( std::int64_t v );
   std::uint32_t mplsInnerLabel() const noexcept { return mplsInnerLabel_; }
   // Throws Zub::RangeException for a label outside 0..0xFFFFF.
   void mplsInnerLabelIs( std::int64_t v );

   bool operator==( MacFilter const& ) const noexcept = default;

 private:
   std::uint32_t mplsLabel_ = 0;
   std::uint32_t mplsInnerLabel_ = 0;
};

class MacRuleConfig : public RuleConfig {
 public:
   MacFilter filter;
   bool operator==( MacRuleConfig const& ) const noexcept = default;
};

// One line in the usual access-list form: "permit tcp 10.0.0.0/8 any eq 80".
std::ostream& operator<<( std::ostream& os, IpRuleConfig const& r );
std::ostream& operator<<( std::ostream& os, Ip6RuleConfig const& r );

}  // namespace Acl
