#include "NevQos/types/QosPolicyMapKey.h"

#include <gtest/gtest.h>

#include "NevQos/platform/zub/Exception.h"

namespace {

using Nev::QosPolicyMapKey;

TEST( QosPolicyMapKeyTest, OrdersFieldByFieldInDeclaredOrder ) {
   QosPolicyMapKey base( "b", Qos::mapQos_, Qos::directionOutput_, "m" );
   EXPECT_LT( QosPolicyMapKey( "a", Qos::mapPdp_, Qos::directionOutput_, "z" ), base );
   EXPECT_LT( QosPolicyMapKey( "b", Qos::mapControlPlane_, Qos::directionOutput_, "z" ), base );
   EXPECT_LT( QosPolicyMapKey( "b", Qos::mapQos_, Qos::directionInput_, "z" ), base );
   EXPECT_LT( QosPolicyMapKey( "b", Qos::mapQos_, Qos::directionOutput_, "l" ), base );
   EXPECT_FALSE( base < base );
}

TEST( QosPolicyMapKeyTest, BangFormKeepsEveryBangAfterTheThirdInTheGroup ) {
   QosPolicyMapKey k( "pmap", Qos::mapQos_, Qos::directionOutput_, "g!h!i" );
   Zub::String text = k.valueToString();
   EXPECT_EQ( text, "pmap!mapQos!output!g!h!i" );
   EXPECT_EQ( QosPolicyMapKey::stringToValue( text ), k );
   QosPolicyMapKey dflt;
   EXPECT_EQ( QosPolicyMapKey::stringToValue( dflt.valueToString() ), dflt );
   // Too few fields leave the group empty, or fail on the missing enumeration text.
   EXPECT_EQ( QosPolicyMapKey::stringToValue( "p!mapPdp!input" ),
              QosPolicyMapKey( "p", Qos::mapPdp_, Qos::directionInput_, "" ) );
   EXPECT_THROW( QosPolicyMapKey::stringToValue( "p!mapQos" ), Zub::RangeException );
   EXPECT_THROW( QosPolicyMapKey::stringToValue( "p!qos!input!g" ), Zub::RangeException );
}

TEST( QosPolicyMapKeyTest, ValueFormRoundTrips ) {
   QosPolicyMapKey k( "it's", Qos::mapControlPlane_, Qos::directionOutput_, "g" );
   Zub::String text = valueToStrep( k );
   EXPECT_EQ( text,
              "Value('Nev::QosPolicyMapKey', ** {'pmapName': 'it\\'s', 'pmapType': "
              "'mapControlPlane', 'direction': 'output', 'aclGroup': 'g'})" );
   EXPECT_EQ( QosPolicyMapKey( text.begin(), text.end() ), k );
   std::string wrongField =
         "Value('Nev::QosPolicyMapKey', ** {'pmapName': 'p', 'mapType': "
         "'mapQos', 'direction': 'input', 'aclGroup': 'g'})";
   EXPECT_THROW( QosPolicyMapKey( wrongField.data(), wrongField.data() + wrongField.size() ),
                 Zub::ParseException );
}

}  // namespace
