// The key of one compiled policy map: a service policy's map in one ACL group.
#pragma once

#include <compare>
#include <cstdint>
#include <iosfwd>
#include <utility>

#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/zub/Strep.h"
#include "NevQos/platform/zub/String.h"

namespace Nev {

class QosPolicyMapKey {
 public:
   // The default key is not all-empty: its group is "Default", like every key built without one.
   QosPolicyMapKey()
       : QosPolicyMapKey( Zub::Name(), Qos::mapControlPlane_, Qos::directionInput_ ) {}
   QosPolicyMapKey( Zub::Name pmapName, Qos::MapType pmapType, Qos::Direction direction )
       : QosPolicyMapKey( std::move( pmapName ), pmapType, direction, defaultAclGroup() ) {}
   QosPolicyMapKey( Zub::Name pmapName, Qos::MapType pmapType, Qos::Direction direction,
                    Zub::Name aclGroup ) noexcept
       : pmapName_( std::move( pmapName ) )
       , pmapType_( pmapType )
       , direction_( direction )
       , aclGroup_( std::move( aclGroup ) ) {}
   // Reads the `Value(...)` form.
   QosPolicyMapKey( char const* begin, char const* end );

   static Zub::Name const& defaultAclGroup();

   Zub::Name const& pmapName() const noexcept { return pmapName_; }
   Qos::MapType pmapType() const noexcept { return pmapType_; }
   Qos::Direction direction() const noexcept { return direction_; }
   Zub::Name const& aclGroup() const noexcept { return aclGroup_; }

   std::uint32_t hash() const noexcept {
      return pmapName_.hash() ^ ( std::uint32_t( pmapType_ ) + 1 ) ^
             ( std::uint32_t( direction_ ) + 1 ) ^ aclGroup_.hash();
   }

   // The compact form "pmapName!mapType!direction!aclGroup", used as a string key in status
   // entities. stringToValue splits from the left, so a '!' in the group survives.
   Zub::String valueToString() const;
   static QosPolicyMapKey stringToValue( Zub::String const& strVal );

   bool operator==( QosPolicyMapKey const& ) const noexcept = default;
   std::strong_ordering operator<=>( QosPolicyMapKey const& o ) const noexcept;
   bool operator!() const { return *this == QosPolicyMapKey(); }

 private:
   Zub::Name pmapName_;
   Qos::MapType pmapType_;
   Qos::Direction direction_;
   Zub::Name aclGroup_;
};

Zub::String valueToStrep( QosPolicyMapKey const& k );
std::ostream& operator<<( std::ostream& os, QosPolicyMapKey const& k );
void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, QosPolicyMapKey& out );

}  // namespace Nev
