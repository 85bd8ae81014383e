// A sum of class counters: hits and drops of packets and bytes, and the drops of a policer shared
// by several interfaces, per interface.
#pragma once

#include <compare>
#include <cstdint>
#include <iosfwd>
#include <map>

#include "NevQos/platform/mirel/IntfId.h"
#include "NevQos/platform/zub/String.h"

namespace Nev {

class QosClassCounterData {
 public:
   using DropCountMap = std::map< Mirel::IntfId, std::uint64_t >;

   QosClassCounterData() noexcept = default;
   // There is no text form to read back: the per-interface map is never rendered. Fails an
   // assertion.
   QosClassCounterData( char const* begin, char const* end );

   std::uint64_t pktHits() const noexcept { return pktHits_; }
   void pktHitsIs( std::uint64_t v ) noexcept { pktHits_ = v; }
   std::uint64_t pktDrops() const noexcept { return pktDrops_; }
   void pktDropsIs( std::uint64_t v ) noexcept { pktDrops_ = v; }
   std::uint64_t byteHits() const noexcept { return byteHits_; }
   void byteHitsIs( std::uint64_t v ) noexcept { byteHits_ = v; }
   std::uint64_t byteDrops() const noexcept { return byteDrops_; }
   void byteDropsIs( std::uint64_t v ) noexcept { byteDrops_ = v; }
   std::uint64_t yellowPktHits() const noexcept { return yellowPktHits_; }
   void yellowPktHitsIs( std::uint64_t v ) noexcept { yellowPktHits_ = v; }
   std::uint64_t yellowByteHits() const noexcept { return yellowByteHits_; }
   void yellowByteHitsIs( std::uint64_t v ) noexcept { yellowByteHits_ = v; }

   DropCountMap const& dropCountIntfSharedPolicer() const noexcept {
      return dropCountIntfSharedPolicer_;
   }
   // The drops counted on `intf`, 0 without an entry.
   std::uint64_t dropCountIntfSharedPolicer( Mirel::IntfId intf ) const;
   bool dropCountIntfSharedPolicerHas( Mirel::IntfId intf ) const {
      return dropCountIntfSharedPolicer_.contains( intf );
   }
   void dropCountIntfSharedPolicerIs( Mirel::IntfId intf, std::uint64_t v ) {
      dropCountIntfSharedPolicer_[ intf ] = v;
   }
   void dropCountIntfSharedPolicerDel( Mirel::IntfId intf ) {
      dropCountIntfSharedPolicer_.erase( intf );
   }
   void dropCountIntfSharedPolicerDelAll() noexcept { dropCountIntfSharedPolicer_.clear(); }

   // Field by field, wrapping like any unsigned number. For the map, the result starts from the
   // left operand and every interface of the right one is added to (or subtracted from) the
   // left's count, 0 where the left has none.
   QosClassCounterData& operator+=( QosClassCounterData const& o );
   QosClassCounterData operator+( QosClassCounterData const& o ) const;
   QosClassCounterData operator-( QosClassCounterData const& o ) const;

   bool operator==( QosClassCounterData const& o ) const;
   std::strong_ordering operator<=>( QosClassCounterData const& o ) const;
   bool operator!() const { return *this == QosClassCounterData(); }

 private:
   std::uint64_t pktHits_ = 0;
   std::uint64_t pktDrops_ = 0;
   std::uint64_t byteHits_ = 0;
   std::uint64_t byteDrops_ = 0;
   std::uint64_t yellowPktHits_ = 0;
   std::uint64_t yellowByteHits_ = 0;
   DropCountMap dropCountIntfSharedPolicer_;
};

// The map always shows as None.
Zub::String valueToStrep( QosClassCounterData const& d );
std::ostream& operator<<( std::ostream& os, QosClassCounterData const& d );

}  // namespace Nev
