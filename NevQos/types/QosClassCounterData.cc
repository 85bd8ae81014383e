#include "NevQos/types/QosClassCounterData.h"

#include <ostream>

#include "NevQos/platform/zub/Assert.h"
#include "NevQos/platform/zub/Strep.h"

namespace Nev {

QosClassCounterData::QosClassCounterData( char const*, char const* ) {
   ZUB_ASSERT( !"No String constructor for QosClassCounterData - has collection" );
}

std::uint64_t QosClassCounterData::dropCountIntfSharedPolicer( Mirel::IntfId intf ) const {
   auto it = dropCountIntfSharedPolicer_.find( intf );
   return it == dropCountIntfSharedPolicer_.end() ? 0 : it->second;
}

QosClassCounterData& QosClassCounterData::operator+=( QosClassCounterData const& o ) {
   pktHits_ += o.pktHits_;
   pktDrops_ += o.pktDrops_;
   byteHits_ += o.byteHits_;
   byteDrops_ += o.byteDrops_;
   yellowPktHits_ += o.yellowPktHits_;
   yellowByteHits_ += o.yellowByteHits_;
   for( auto const& [ intf, drops ] : o.dropCountIntfSharedPolicer_ ) {
      dropCountIntfSharedPolicer_[ intf ] += drops;
   }
   return *this;
}

QosClassCounterData QosClassCounterData::operator+( QosClassCounterData const& o ) const {
   QosClassCounterData sum( *this );
   sum += o;
   return sum;
}

QosClassCounterData QosClassCounterData::operator-( QosClassCounterData const& o ) const {
   QosClassCounterData diff( *this );
   diff.pktHits_ -= o.pktHits_;
   diff.pktDrops_ -= o.pktDrops_;
   diff.byteHits_ -= o.byteHits_;
   diff.byteDrops_ -= o.byteDrops_;
   diff.yellowPktHits_ -= o.yellowPktHits_;
   diff.yellowByteHits_ -= o.yellowByteHits_;
   for( auto const& [ intf, drops ] : o.dropCountIntfSharedPolicer_ ) {
      diff.dropCountIntfSharedPolicer_[ intf ] -= drops;
   }
   return diff;
}

bool QosClassCounterData::operator==( QosClassCounterData const& o ) const {
   if( this == &o ) return true;
   return pktHits_ == o.pktHits_ && pktDrops_ == o.pktDrops_ && byteHits_ == o.byteHits_ &&
          byteDrops_ == o.byteDrops_ && yellowPktHits_ == o.yellowPktHits_ &&
          yellowByteHits_ == o.yellowByteHits_ &&
          dropCountIntfSharedPolicer_ == o.dropCountIntfSharedPolicer_;
}

std::strong_ordering QosClassCounterData::operator<=>( QosClassCounterData const& o ) const {
   if( this == &o ) return std::strong_ordering::equal;
   if( auto c = pktHits_ <=> o.pktHits_; c != 0 ) return c;
   if( auto c = pktDrops_ <=> o.pktDrops_; c != 0 ) return c;
   if( auto c = byteHits_ <=> o.byteHits_; c != 0 ) return c;
   if( auto c = byteDrops_ <=> o.byteDrops_; c != 0 ) return c;
   if( auto c = yellowPktHits_ <=> o.yellowPktHits_; c != 0 ) return c;
   if( auto c = yellowByteHits_ <=> o.yellowByteHits_; c != 0 ) return c;
   return dropCountIntfSharedPolicer_ <=> o.dropCountIntfSharedPolicer_;
}

Zub::String valueToStrep( QosClassCounterData const& d ) {
   return Zub::String( "Value('Nev::QosClassCounterData', ** {'pktHits': " ) +
          Zub::valueToStrep( d.pktHits() ) + ", 'pktDrops': " + Zub::valueToStrep( d.pktDrops() ) +
          ", 'byteHits': " + Zub::valueToStrep( d.byteHits() ) +
          ", 'byteDrops': " + Zub::valueToStrep( d.byteDrops() ) +
          ", 'yellowPktHits': " + Zub::valueToStrep( d.yellowPktHits() ) +
          ", 'yellowByteHits': " + Zub::valueToStrep( d.yellowByteHits() ) +
          ", 'dropCountIntfSharedPolicer': None})";
}

std::ostream& operator<<( std::ostream& os, QosClassCounterData const& d ) {
   return os << valueToStrep( d );
}

}  // namespace Nev
