// The key of a class inside a policy map.
#pragma once

#include <compare>
#include <cstdint>
#include <iosfwd>
#include <utility>

#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/zub/Strep.h"
#include "NevQos/platform/zub/String.h"

namespace Nev {

class QosClassMapKey {
 public:
   QosClassMapKey() noexcept = default;
   QosClassMapKey( Zub::Name cmapName, Qos::MapType cmapType ) noexcept
       : cmapName_( std::move( cmapName ) ), cmapType_( cmapType ) {}
   // Reads the `Value(...)` form.
   QosClassMapKey( char const* begin, char const* end );

   Zub::Name const& cmapName() const noexcept { return cmapName_; }
   Qos::MapType cmapType() const noexcept { return cmapType_; }

   std::uint32_t hash() const noexcept {
      return cmapName_.hash() ^ ( std::uint32_t( cmapType_ ) + 1 );
   }

   bool operator==( QosClassMapKey const& ) const noexcept = default;
   std::strong_ordering operator<=>( QosClassMapKey const& o ) const noexcept;
   bool operator!() const noexcept { return *this == QosClassMapKey(); }

 private:
   Zub::Name cmapName_;
   Qos::MapType cmapType_ = Qos::mapControlPlane_;
};

Zub::String valueToStrep( QosClassMapKey const& k );
std::ostream& operator<<( std::ostream& os, QosClassMapKey const& k );
void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, QosClassMapKey& out );

}  // namespace Nev
