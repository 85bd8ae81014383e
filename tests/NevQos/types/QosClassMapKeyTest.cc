#include "NevQos/types/QosClassMapKey.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace {

using Nev::QosClassMapKey;

TEST( QosClassMapKeyTest, HashOrderAndDefault ) {
   QosClassMapKey k( "cmap", Qos::mapPdp_ );
   EXPECT_EQ( k.hash(), Zub::stringHash( "cmap" ) ^ 3u );
   EXPECT_EQ( QosClassMapKey().hash(), 1u );
   EXPECT_TRUE( !QosClassMapKey() );
   EXPECT_FALSE( !QosClassMapKey( "", Qos::mapQos_ ) );
   EXPECT_LT( QosClassMapKey( "a", Qos::mapPdp_ ), QosClassMapKey( "b", Qos::mapControlPlane_ ) );
   EXPECT_LT( QosClassMapKey( "a", Qos::mapQos_ ), QosClassMapKey( "a", Qos::mapPdp_ ) );
}

TEST( QosClassMapKeyTest, ValueFormRoundTrips ) {
   QosClassMapKey k( "cmap", Qos::mapQos_ );
   std::ostringstream os;
   os << k;
   std::string const text = os.str();
   EXPECT_EQ( text, "Value('Nev::QosClassMapKey', ** {'cmapName': 'cmap', 'cmapType': 'mapQos'})" );
   EXPECT_EQ( QosClassMapKey( text.data(), text.data() + text.size() ), k );
}

}  // namespace
