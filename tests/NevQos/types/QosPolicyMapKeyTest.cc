#include "NevQos/types/QosPolicyMapKey.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "zub/Exception.h"
#include "zub/Trace.h"

namespace {

using Nev::QosPolicyMapKey;

TEST( QosPolicyMapKeyTest, DefaultKeyHasTheDefaultGroup ) {
   QosPolicyMapKey dflt;
   EXPECT_EQ( dflt.aclGroup(), Zub::Name( "Default" ) );
   EXPECT_TRUE( !dflt );
   QosPolicyMapKey allEmpty( "", Qos::mapControlPlane_, Qos::directionInput_, "" );
   EXPECT_FALSE( !allEmpty );
   EXPECT_NE( dflt, allEmpty );
   EXPECT_NE( dflt.hash(), allEmpty.hash() );
   EXPECT_EQ( QosPolicyMapKey( "p", Qos::mapQos_, Qos::directionOutput_ ).aclGroup(),
              dflt.aclGroup() );
}

TEST( QosPolicyMapKeyTest, HashXorsNameHashesAndEnumsPlusOne ) {
   QosPolicyMapKey k( "pmap1", Qos::mapPdp_, Qos::directionOutput_, "grp" );
   std::uint32_t expected =
         Zub::stringHash( "pmap1" ) ^ ( 2u + 1 ) ^ ( 1u + 1 ) ^ Zub::stringHash( "grp" );
   EXPECT_EQ( k.hash(), expected );
   EXPECT_EQ( QosPolicyMapKey( "", Qos::mapControlPlane_, Qos::directionInput_, "" ).hash(),
              1u ^ 1u );
}

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

TEST( QosPolicyMapKeyTest, ConversionsTraceAtLevel8 ) {
   std::vector< std::string > lines;
   Zub::traceDisableAll();
   ASSERT_TRUE( Zub::traceEnable( "NevQos/8" ) );
   Zub::traceSinkIs( [ &lines ]( Zub::TraceRecord const& r ) {
      if( r.handle == "NevQos" && r.level == 8 ) lines.push_back( r.message.stdString() );
   } );
   QosPolicyMapKey::stringToValue(
         QosPolicyMapKey( "p", Qos::mapQos_, Qos::directionInput_ ).valueToString() );
   Zub::traceSinkIs( {} );
   Zub::traceDisableAll();
   EXPECT_EQ( lines, ( std::vector< std::string >{
                           "QosPolicyMapKey::valueToString",
                           "QosPolicyMapKey::stringToValue( strVal= p!mapQos!input!Default )" } ) );
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
