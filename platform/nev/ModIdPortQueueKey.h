// A CPU-bound queue of one port: the chip module, the port on it, and the CPU queue.
#pragma once

#include <compare>
#include <cstdint>
#include <iosfwd>

#include "NevQos/platform/zub/Format.h"
#include "NevQos/platform/zub/String.h"

namespace Nev {

class ModIdPortQueueKey {
 public:
   constexpr ModIdPortQueueKey() noexcept = default;
   constexpr ModIdPortQueueKey( std::uint32_t modId, std::uint32_t port,
                                std::uint32_t queue ) noexcept
       : modId_( modId ), port_( port ), queue_( queue ) {}

   constexpr std::uint32_t modId() const noexcept { return modId_; }
   constexpr std::uint32_t port() const noexcept { return port_; }
   constexpr std::uint32_t queue() const noexcept { return queue_; }

   // The byte-wise hash over modId, port and queue, four bytes each, least significant first.
   constexpr std::uint32_t hash() const noexcept {
      return Zub::ByteHash().addLe( modId_, 4 ).addLe( port_, 4 ).addLe( queue_, 4 ).result();
   }

   constexpr bool operator==( ModIdPortQueueKey const& ) const noexcept = default;
   constexpr std::strong_ordering operator<=>( ModIdPortQueueKey const& ) const noexcept = default;
   constexpr bool operator!() const noexcept { return *this == ModIdPortQueueKey(); }

 private:
   std::uint32_t modId_ = 0;
   std::uint32_t port_ = 0;
   std::uint32_t queue_ = 0;
};

Zub::String valueToStrep( ModIdPortQueueKey const& k );
std::ostream& operator<<( std::ostream& os, ModIdPortQueueKey const& k );

}  // namespace Nev
