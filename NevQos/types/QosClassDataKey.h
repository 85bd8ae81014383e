// The key of the compiled data of one class of one policy map, per policer.
#pragma once

#include <compare>
#include <cstdint>
#include <iosfwd>
#include <utility>

#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/zub/Strep.h"
#include "NevQos/platform/zub/String.h"
#include "NevQos/types/QosPolicyMapKey.h"

namespace Nev {

class QosClassDataKey {
 public:
   // The default policy-map key, an empty class, policer "Default".
   QosClassDataKey() : QosClassDataKey( QosPolicyMapKey(), Zub::Name(), Qos::mapControlPlane_ ) {}
   QosClassDataKey( QosPolicyMapKey pmapKey, Zub::Name cmapName, Qos::MapType cmapType )
       : QosClassDataKey( std::move( pmapKey ), std::move( cmapName ), cmapType,
                          defaultPolicerName() ) {}
   QosClassDataKey( QosPolicyMapKey pmapKey, Zub::Name cmapName, Qos::MapType cmapType,
                    Zub::Name policerName ) noexcept
       : pmapKey_( std::move( pmapKey ) )
       , cmapName_( std::move( cmapName ) )
       , cmapType_( cmapType )
       , policerName_( std::move( policerName ) ) {}
   // Reads the `Value(...)` form.
   QosClassDataKey( char const* begin, char const* end );

   static Zub::Name const& defaultPolicerName();

   QosPolicyMapKey const& pmapKey() const noexcept { return pmapKey_; }
   Zub::Name const& pmapName() const noexcept { return pmapKey_.pmapName(); }
   Qos::MapType pmapType() const noexcept { return pmapKey_.pmapType(); }
   Qos::Direction direction() const noexcept { return pmapKey_.direction(); }
   Zub::Name const& cmapName() const noexcept { return cmapName_; }
   Qos::MapType cmapType() const noexcept { return cmapType_; }
   Zub::Name const& policerName() const noexcept { return policerName_; }

   // The policer stays out of the hash: the copies of one class share a bucket and are told
   // apart by equality.
   std::uint32_t hash() const noexcept {
      return pmapKey_.hash() ^ cmapName_.hash() ^ ( std::uint32_t( cmapType_ ) + 1 );
   }

   // The compact form: the policy-map key's form, then "!cmapName!cmapType!policerName".
   // stringToValue splits these three from the right, so a '!' in the policer name does not
   // survive, while one in the ACL group does.
   Zub::String valueToString() const;
   static QosClassDataKey stringToValue( Zub::String const& strVal );

   bool operator==( QosClassDataKey const& ) const noexcept = default;
   std::strong_ordering operator<=>( QosClassDataKey const& o ) const noexcept;
   bool operator!() const { return *this == QosClassDataKey(); }

 private:
   QosPolicyMapKey pmapKey_;
   Zub::Name cmapName_;
   Qos::MapType cmapType_;
   Zub::Name policerName_;
};

Zub::String valueToStrep( QosClassDataKey const& k );
std::ostream& operator<<( std::ostream& os, QosClassDataKey const& k );
void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, QosClassDataKey& out );

}  // namespace Nev
