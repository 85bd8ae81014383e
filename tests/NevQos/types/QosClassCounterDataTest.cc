#include "NevQos/types/QosClassCounterData.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using Nev::QosClassCounterData;

Mirel::IntfId const eth1( "Ethernet1" ), eth2( "Ethernet2" ), eth3( "Ethernet3" );

QosClassCounterData counters( std::uint64_t base ) {
   QosClassCounterData c;
   c.pktHitsIs( base + 1 );
   c.pktDropsIs( base + 2 );
   c.byteHitsIs( base + 3 );
   c.byteDropsIs( base + 4 );
   c.yellowPktHitsIs( base + 5 );
   c.yellowByteHitsIs( base + 6 );
   return c;
}

TEST( QosClassCounterDataTest, ArithmeticMergesThePerInterfaceDrops ) {
   QosClassCounterData left = counters( 100 ), right = counters( 10 );
   left.dropCountIntfSharedPolicerIs( eth1, 50 );
   left.dropCountIntfSharedPolicerIs( eth2, 20 );
   right.dropCountIntfSharedPolicerIs( eth2, 5 );
   right.dropCountIntfSharedPolicerIs( eth3, 7 );

   QosClassCounterData sum = left + right;
   EXPECT_EQ( sum.pktHits(), 112u );
   EXPECT_EQ( sum.yellowByteHits(), 122u );
   EXPECT_EQ( sum.dropCountIntfSharedPolicer( eth1 ), 50u );
   EXPECT_EQ( sum.dropCountIntfSharedPolicer( eth2 ), 25u );
   EXPECT_EQ( sum.dropCountIntfSharedPolicer( eth3 ), 7u );

   QosClassCounterData diff = left - right;
   EXPECT_EQ( diff.byteDrops(), 90u );
   EXPECT_EQ( diff.dropCountIntfSharedPolicer( eth1 ), 50u );  // only the left has it
   EXPECT_EQ( diff.dropCountIntfSharedPolicer( eth2 ), 15u );
   // Only the right has eth3: 0 - 7, wrapped.
   EXPECT_TRUE( diff.dropCountIntfSharedPolicerHas( eth3 ) );
   EXPECT_EQ( diff.dropCountIntfSharedPolicer( eth3 ),
              std::numeric_limits< std::uint64_t >::max() - 6 );
   // The counters wrap too, and adding back restores the left side.
   EXPECT_EQ( ( right - left ).pktHits(), std::numeric_limits< std::uint64_t >::max() - 89 );
   QosClassCounterData restored = diff;
   restored += right;
   restored.dropCountIntfSharedPolicerDel( eth3 );
   EXPECT_EQ( restored, left );
}

}  // namespace
