#include "NevQos/policy/QosPolicyMapSm.h"
#include "NevQos/policy/QosPolicyUpdateRequest.h"

#include <gtest/gtest.h>

namespace {

using Nev::QosPolicyUpdateRequest;

TEST( QosPolicyUpdateRequestTest, OrdersFieldByField ) {
   using R = QosPolicyUpdateRequest;
   EXPECT_LT( R( Nev::updateReasonAclChange, "z", true ),
              R( Nev::updateReasonIntfChange, "a", false ) );
   EXPECT_LT( R( Nev::updateReasonAclChange, "a", true ),
              R( Nev::updateReasonAclChange, "b", false ) );
   EXPECT_LT( R( Nev::updateReasonAclChange, "a", false ),
              R( Nev::updateReasonAclChange, "a", true ) );

   // policyData compares by identity, before pmapKey and intfPair.
   auto d1 = Zub::make< Nev::QosPolicyMapClassData >( nullptr, nullptr, nullptr );
   auto d2 = Zub::make< Nev::QosPolicyMapClassData >( nullptr, nullptr, nullptr );
   R a( Nev::updateReasonAclChange, "k", false ), b( a );
   a.policyDataIs( d1 );
   b.policyDataIs( d2 );
   b.pmapKeyIs( Nev::QosPolicyMapKey( "", Qos::mapControlPlane_, Qos::directionInput_, "" ) );
   EXPECT_NE( a, b );
   EXPECT_EQ( a < b, d1.ptr() < d2.ptr() );
   b.policyDataIs( d1 );
   EXPECT_LT( b, a );  // "" group before "Default"
   b.pmapKeyIs( a.pmapKey() );
   EXPECT_EQ( a, b );
   b.intfPairIs( Qos::IntfPairKey( Mirel::IntfId( "Ethernet1" ) ) );
   EXPECT_LT( a, b );
}

TEST( QosPolicyUpdateRequestTest, ValueFormRoundTrips ) {
   QosPolicyUpdateRequest r( Nev::updateReasonIntfChange, "pmapSmDel", true );
   r.pmapKeyIs( Nev::QosPolicyMapKey( "p", Qos::mapPdp_, Qos::directionOutput_ ) );
   r.intfPairIs( Qos::IntfPairKey( Mirel::IntfId( "Ethernet7" ) ) );
   Zub::String text = valueToStrep( r );
   EXPECT_EQ( text,
              "Value('Nev::QosPolicyUpdateRequest', ** {'reasonType': 'updateReasonIntfChange', "
              "'reasonKey': 'pmapSmDel', 'remove': True, 'policyData': None, 'pmapKey': "
              "Value('Nev::QosPolicyMapKey', ** {'pmapName': 'p', 'pmapType': 'mapPdp', "
              "'direction': 'output', 'aclGroup': 'Default'}), 'intfPair': "
              "Value('Qos::IntfPairKey', ** {'intfId': 'Ethernet7', 'lagIntfId': ''})})" );
   EXPECT_EQ( QosPolicyUpdateRequest( text.begin(), text.end() ), r );
}

}  // namespace
