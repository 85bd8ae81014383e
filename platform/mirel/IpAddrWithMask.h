// An IPv4 address with a prefix length, as an ACL rule matches it.
#pragma once

#include <compare>
#include <cstdint>
#include <iosfwd>

#include "NevQos/platform/zub/String.h"

namespace Mirel {

class IpAddrWithMask {
 public:
   static constexpr unsigned maxLen = 32;

   IpAddrWithMask() noexcept = default;
   // `addr` in host order. Throws Zub::RangeException for a length above 32. Host bits are kept
   // as given: verification compares what was configured.
   IpAddrWithMask( std::uint32_t addr, unsigned len );

   std::uint32_t addr() const noexcept { return addr_; }
   unsigned len() const noexcept { return len_; }
   // `len` leading one bits.
   std::uint32_t mask() const noexcept {
      return len_ == 0 ? 0u : ~std::uint32_t( 0 ) << ( maxLen - len_ );
   }

   bool operator==( IpAddrWithMask const& ) const noexcept = default;
   std::strong_ordering operator<=>( IpAddrWithMask const& ) const noexcept = default;
   // The empty value 0.0.0.0/0 matches any address.
   bool operator!() const noexcept { return *this == IpAddrWithMask(); }

 private:
   std::uint32_t addr_ = 0;
   std::uint8_t len_ = 0;
};

// "10.1.0.0/16".
Zub::String stringValue( IpAddrWithMask const& a );
std::ostream& operator<<( std::ostream& os, IpAddrWithMask const& a );

}  // namespace Mirel
