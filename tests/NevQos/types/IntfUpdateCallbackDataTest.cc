#include "NevQos/types/IntfUpdateCallbackData.h"

#include <gtest/gtest.h>

namespace {

using Nev::IntfUpdateCallbackData;

Qos::IntfPairKey const pair( Mirel::IntfId( "Ethernet2" ), Mirel::IntfId( "Port-Channel4" ) );

TEST( IntfUpdateCallbackDataTest, HashOrderAndDefault ) {
   IntfUpdateCallbackData d( pair, Qos::directionOutput_ );
   EXPECT_EQ( d.hash(), pair.hash() ^ 2u );
   EXPECT_EQ( IntfUpdateCallbackData().hash(), Qos::IntfPairKey().hash() ^ 1u );
   EXPECT_TRUE( !IntfUpdateCallbackData() );
   EXPECT_FALSE( !IntfUpdateCallbackData( Qos::IntfPairKey(), Qos::directionOutput_ ) );
   EXPECT_LT( IntfUpdateCallbackData( pair, Qos::directionInput_ ), d );
   EXPECT_LT( IntfUpdateCallbackData( Qos::IntfPairKey( Mirel::IntfId( "Ethernet1" ) ),
                                      Qos::directionOutput_ ),
              IntfUpdateCallbackData( pair, Qos::directionInput_ ) );
}

TEST( IntfUpdateCallbackDataTest, ValueFormRoundTrips ) {
   IntfUpdateCallbackData d( pair, Qos::directionOutput_ );
   Zub::String text = valueToStrep( d );
   EXPECT_EQ( text,
              "Value('Nev::IntfUpdateCallbackData', ** {'intfPair': Value('Qos::IntfPairKey', "
              "** {'intfId': 'Ethernet2', 'lagIntfId': 'Port-Channel4'}), 'direction': "
              "'output'})" );
   EXPECT_EQ( IntfUpdateCallbackData( text.begin(), text.end() ), d );
}

}  // namespace
