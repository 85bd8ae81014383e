// Keys of CPU queues as the chip numbers them: a queue of one port of one module
// (Nev::ModIdPortQueueKey, from the common layer), and a queue of one module whatever the port.
#pragma once

#include <compare>
#include <cstdint>
#include <iosfwd>

#include "NevQos/platform/nev/ModIdPortQueueKey.h"
#include "NevQos/platform/zub/Format.h"
#include "NevQos/platform/zub/String.h"

namespace Nev {

class ModIdQueueKey {
 public:
   constexpr ModIdQueueKey() noexcept = default;
   constexpr ModIdQueueKey( std::uint32_t modId, std::uint32_t queue ) noexcept
       : modId_( modId ), queue_( queue ) {}

   constexpr std::uint32_t modId() const noexcept { return modId_; }
   constexpr std::uint32_t queue() const noexcept { return queue_; }

   // The byte-wise hash over modId and queue, four bytes each, least significant first.
   constexpr std::uint32_t hash() const noexcept {
      return Zub::ByteHash().addLe( modId_, 4 ).addLe( queue_, 4 ).result();
   }

   constexpr bool operator==( ModIdQueueKey const& ) const noexcept = default;
   constexpr std::strong_ordering operator<=>( ModIdQueueKey const& ) const noexcept = default;
   constexpr bool operator!() const noexcept { return *this == ModIdQueueKey(); }

 private:
   std::uint32_t modId_ = 0;
   std::uint32_t queue_ = 0;
};

Zub::String valueToStrep( ModIdQueueKey const& k );
std::ostream& operator<<( std::ostream& os, ModIdQueueKey const& k );

}  // namespace Nev
