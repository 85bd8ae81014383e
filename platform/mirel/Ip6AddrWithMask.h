// An IPv6 address with a prefix length, as an ACL rule matches it.
#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <iosfwd>

#include "NevQos/platform/zub/String.h"

namespace Mirel {

class Ip6AddrWithMask {
 public:
   // Network byte order.
   using Bytes = std::array< std::uint8_t, 16 >;
   static constexpr unsigned maxLen = 128;

   Ip6AddrWithMask() noexcept = default;
   // Throws Zub::RangeException for a length above 128. The address is kept as given, host bits
   // included: a rule may carry them, and verification compares what was configured.
   Ip6AddrWithMask( Bytes const& addr, unsigned len );

   Bytes const& addr() const noexcept { return addr_; }
   unsigned len() const noexcept { return len_; }
   // `len` leading one bits.
   Bytes mask() const noexcept;

   bool operator==( Ip6AddrWithMask const& ) const noexcept = default;
   std::strong_ordering operator<=>( Ip6AddrWithMask const& ) const noexcept = default;
   // The empty value ::/0 matches any address.
   bool operator!() const noexcept { return *this == Ip6AddrWithMask(); }

 private:
   Bytes addr_{};
   std::uint8_t len_ = 0;
};

// The usual text, "2001:db8::1/64": lower-case groups without leading zeros, the longest run of
// two or more zero groups (the first of equal runs) written as "::".
Zub::String stringValue( Ip6AddrWithMask const& a );
// The quoted text, as in a `Value(...)` text.
Zub::String valueToStrep( Ip6AddrWithMask const& a );
std::ostream& operator<<( std::ostream& os, Ip6AddrWithMask const& a );

}  // namespace Mirel
