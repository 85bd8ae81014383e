#include "NevQos/types/QosClassDataKey.h"

#include <gtest/gtest.h>

#include "NevQos/platform/zub/Exception.h"

namespace {

using Nev::QosClassDataKey;
using Nev::QosPolicyMapKey;

QosPolicyMapKey const pmap( "pmap", Qos::mapQos_, Qos::directionInput_, "grp" );

TEST( QosClassDataKeyTest, HashLeavesThePolicerOut ) {
   QosClassDataKey a( pmap, "cmap", Qos::mapQos_, "polA" );
   QosClassDataKey b( pmap, "cmap", Qos::mapQos_, "polB" );
   EXPECT_EQ( a.hash(), b.hash() );
   EXPECT_NE( a, b );
   EXPECT_LT( a, b );
   EXPECT_FALSE( b < a );
}

TEST( QosClassDataKeyTest, OrdersByPolicyMapKeyFirst ) {
   QosPolicyMapKey later( "pmap", Qos::mapQos_, Qos::directionInput_, "zzz" );
   EXPECT_LT( QosClassDataKey( pmap, "z", Qos::mapPdp_, "z" ),
              QosClassDataKey( later, "a", Qos::mapControlPlane_, "a" ) );
   EXPECT_LT( QosClassDataKey( pmap, "a", Qos::mapPdp_, "a" ),
              QosClassDataKey( pmap, "b", Qos::mapControlPlane_, "a" ) );
   EXPECT_LT( QosClassDataKey( pmap, "a", Qos::mapQos_, "z" ),
              QosClassDataKey( pmap, "a", Qos::mapPdp_, "a" ) );
}

TEST( QosClassDataKeyTest, BangFormRoundTrips ) {
   QosClassDataKey k( pmap, "cmap", Qos::mapPdp_, "pol" );
   Zub::String text = k.valueToString();
   EXPECT_EQ( text, "pmap!mapQos!input!grp!cmap!mapPdp!pol" );
   EXPECT_EQ( QosClassDataKey::stringToValue( text ), k );
   EXPECT_EQ( QosClassDataKey::stringToValue( QosClassDataKey().valueToString() ),
              QosClassDataKey() );
   // A '!' in the group survives: the class fields are taken from the right.
   QosClassDataKey bangGroup( QosPolicyMapKey( "p", Qos::mapQos_, Qos::directionOutput_, "g!h" ),
                              "c", Qos::mapQos_, "pol" );
   EXPECT_EQ( QosClassDataKey::stringToValue( bangGroup.valueToString() ), bangGroup );
}

TEST( QosClassDataKeyTest, BangInThePolicerNameDoesNotSurvive ) {
   // "a!b" as policer: "b" becomes the policer and "a" the class-map type text.
   QosClassDataKey k( pmap, "cmap", Qos::mapQos_, "a!b" );
   EXPECT_THROW( QosClassDataKey::stringToValue( k.valueToString() ), Zub::RangeException );
   // With a type name before the '!', every field shifts one place to the left.
   QosClassDataKey shifted( pmap, "cmap", Qos::mapQos_, "mapPdp!b" );
   QosClassDataKey parsed = QosClassDataKey::stringToValue( shifted.valueToString() );
   EXPECT_NE( parsed, shifted );
   EXPECT_EQ( parsed.policerName(), Zub::Name( "b" ) );
   EXPECT_EQ( parsed.cmapType(), Qos::mapPdp_ );
   EXPECT_EQ( parsed.cmapName(), Zub::Name( "mapQos" ) );
   EXPECT_EQ( parsed.pmapKey().aclGroup(), Zub::Name( "grp!cmap" ) );
}

TEST( QosClassDataKeyTest, ValueFormNestsThePolicyMapKey ) {
   QosClassDataKey k( pmap, "c'm", Qos::mapPdp_, "pol" );
   Zub::String text = valueToStrep( k );
   EXPECT_EQ( text,
              "Value('Nev::QosClassDataKey', ** {'pmapKey': Value('Nev::QosPolicyMapKey', ** "
              "{'pmapName': 'pmap', 'pmapType': 'mapQos', 'direction': 'input', 'aclGroup': "
              "'grp'}), 'cmapName': 'c\\'m', 'cmapType': 'mapPdp', 'policerName': 'pol'})" );
   EXPECT_EQ( QosClassDataKey( text.begin(), text.end() ), k );
   Zub::String cut = text.substr( 0, 40 );
   EXPECT_THROW( QosClassDataKey( cut.begin(), cut.end() ), Zub::ParseException );
}

}  // namespace
