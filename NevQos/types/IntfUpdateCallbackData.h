// What a chip driver posts to ask for an interface pair to be reprogrammed in one direction.
#pragma once

#include <compare>
#include <cstdint>
#include <iosfwd>

#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/zub/Strep.h"
#include "NevQos/platform/zub/String.h"

namespace Nev {

class IntfUpdateCallbackData {
 public:
   IntfUpdateCallbackData() noexcept = default;
   IntfUpdateCallbackData( Qos::IntfPairKey intfPair, Qos::Direction direction ) noexcept
       : intfPair_( intfPair ), direction_( direction ) {}
   // Reads the `Value(...)` form.
   IntfUpdateCallbackData( char const* begin, char const* end );

   Qos::IntfPairKey const& intfPair() const noexcept { return intfPair_; }
   Qos::Direction direction() const noexcept { return direction_; }

   std::uint32_t hash() const noexcept {
      return intfPair_.hash() ^ ( std::uint32_t( direction_ ) + 1 );
   }

   bool operator==( IntfUpdateCallbackData const& ) const noexcept = default;
   std::strong_ordering operator<=>( IntfUpdateCallbackData const& o ) const noexcept {
      if( auto c = intfPair_ <=> o.intfPair_; c != 0 ) return c;
      return ValueText::compareEnum( direction_, o.direction_ );
   }
   bool operator!() const noexcept { return *this == IntfUpdateCallbackData(); }

 private:
   Qos::IntfPairKey intfPair_;
   Qos::Direction direction_ = Qos::directionInput_;
};

Zub::String valueToStrep( IntfUpdateCallbackData const& d );
std::ostream& operator<<( std::ostream& os, IntfUpdateCallbackData const& d );
void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, IntfUpdateCallbackData& out );

}  // namespace Nev
