#include "NevQos/platform/entities/QosTypes.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "NevQos/platform/entities/AclTypes.h"
#include "NevQos/platform/mirel/AddressFamily.h"
#include "NevQos/platform/zub/Exception.h"

namespace {

// Runs `f` and returns the text of the Zub::RangeException it throws, or "" if none.
std::string rangeErrorText( std::function< void() > const& f ) {
   try {
      f();
   } catch( Zub::RangeException const& e ) {
      return e.what();
   }
   return "";
}

template< class T >
void expectSentinelRange( char const* name, unsigned invalid ) {
   SCOPED_TRACE( name );
   EXPECT_EQ( T().value(), invalid );
   EXPECT_FALSE( T().isValid() );
   EXPECT_EQ( T( invalid ).value(), invalid );
   EXPECT_EQ( unsigned( T::max ), invalid - 1 );
   EXPECT_TRUE( T( T::max ).isValid() );
   EXPECT_TRUE( T( 0 ).isValid() );
   std::string text =
         std::string( name ) + "::value < " + name + "::min or > " + name + "::invalid not allowed";
   EXPECT_EQ( rangeErrorText( [ & ] { T( invalid + 1 ); } ), text );
   EXPECT_EQ( rangeErrorText( [ & ] { T( -1 ); } ), text );
}

TEST( QosTypesTest, SentinelNumbers ) {
   expectSentinelRange< Qos::Cos >( "Cos", 8 );
   expectSentinelRange< Qos::Dscp >( "Dscp", 64 );
   expectSentinelRange< Qos::Exp >( "Exp", 8 );
   expectSentinelRange< Qos::TrafficClass >( "TrafficClass", 16 );
   expectSentinelRange< Qos::DropPrecedence >( "DropPrecedence", 4 );
   expectSentinelRange< Qos::TxQueueId >( "TxQueueId", 16 );
}

// Every member's name leads back to it; unknown names are range errors.
template< class E >
void expectNamesRoundTrip( std::initializer_list< E > members,
                           E ( *instance )( std::string_view ) ) {
   for( E e : members ) {
      Zub::String name = stringValue( e );
      EXPECT_EQ( instance( name.view() ), e ) << name;
      EXPECT_EQ( valueToStrep( e ), Zub::String( "'" ) + name + "'" );
   }
   EXPECT_THROW( instance( "noSuchMember" ), Zub::RangeException );
   EXPECT_THROW( instance( "" ), Zub::RangeException );
}

TEST( QosTypesTest, EnumerationTexts ) {
   using namespace Qos;
   expectNamesRoundTrip( { mapControlPlane_, mapQos_, mapPdp_ }, &MapTypeInstance );
   expectNamesRoundTrip( { directionInput_, directionOutput_ }, &DirectionInstance );
   expectNamesRoundTrip( { matchOptionNone, matchOptionIpAcl, matchOptionVlan, matchOptionBuiltIn,
                           matchOptionVlanCos },
                         &ClassMapMatchOptionInstance );
   expectNamesRoundTrip( { trustCos_, trustDscp_, untrusted_, trustModeInvalid_ },
                         &TrustModeInstance );
   expectNamesRoundTrip( { hwPrgmStatusInProgress_, hwPrgmStatusFail_, hwPrgmStatusSuccess_ },
                         &PolicyMapHwPrgmStatusInstance );
   expectNamesRoundTrip( { featureDscpRewriteEnable_, featureDefaultDscp_, featureEcnQueueCounters_,
                           featureDropThresholds_ },
                         &FeatureNameInstance );
   expectNamesRoundTrip( { actionNone_, actionSetCos_, actionSetTc_, actionSetDropPrecedence_ },
                         &ActionTypeInstance );
   expectNamesRoundTrip( { cmapCpStatic_, cmapCpDynamic_ }, &ClassMapCpTypeInstance );
   expectNamesRoundTrip( { Acl::ip(), Acl::ipv6(), Acl::mac() }, &Acl::AclTypeInstance );
   expectNamesRoundTrip( { Mirel::ipv4, Mirel::ipv6 }, &Mirel::AddressFamilyInstance );
   // Numbers between the members still print, and cannot be read back.
   Zub::String gap = stringValue( static_cast< FeatureName >( 9 ) );
   EXPECT_EQ( gap, "Qos::FeatureName(9)" );
   EXPECT_THROW( FeatureNameInstance( gap ), Zub::RangeException );
}

TEST( QosTypesTest, IntfPairKey ) {
   Mirel::IntfId eth( "Ethernet5" ), lag( "Port-Channel3" );
   Qos::IntfPairKey member( eth, lag ), plain( eth );
   EXPECT_TRUE( !Qos::IntfPairKey() );
   EXPECT_FALSE( !plain );
   EXPECT_LT( plain, member );
   EXPECT_LT( Qos::IntfPairKey( lag ), Qos::IntfPairKey( Mirel::IntfId( "Vlan1" ), eth ) );
   EXPECT_NE( member.hash(), Qos::IntfPairKey( lag, eth ).hash() );

   Zub::String text = valueToStrep( member );
   EXPECT_EQ( Qos::IntfPairKey( text.begin(), text.end() ), member );
   Zub::String empty = valueToStrep( Qos::IntfPairKey() );
   EXPECT_EQ( Qos::IntfPairKey( empty.begin(), empty.end() ), Qos::IntfPairKey() );
}

TEST( QosTypesTest, ServicePolicyAndHwStatusKeys ) {
   Qos::ServicePolicyKey a( Qos::mapQos_, Qos::directionOutput_, "zeta" );
   Qos::ServicePolicyKey b( Qos::mapPdp_, Qos::directionInput_, "alpha" );
   EXPECT_LT( a, b );  // type decides before the name
   EXPECT_LT( Qos::ServicePolicyKey( Qos::mapQos_, Qos::directionInput_, "zeta" ), a );
   EXPECT_TRUE( !Qos::ServicePolicyKey() );
   EXPECT_FALSE( !a );
   Zub::String text = valueToStrep( a );
   EXPECT_EQ( Qos::ServicePolicyKey( text.begin(), text.end() ), a );

   Qos::PolicyMapHwStatusKey h( Qos::directionOutput_, "pm!1" );
   EXPECT_LT( Qos::PolicyMapHwStatusKey( Qos::directionInput_, "z" ), h );
   Zub::String htext = valueToStrep( h );
   EXPECT_EQ( Qos::PolicyMapHwStatusKey( htext.begin(), htext.end() ), h );
   Zub::String truncated = htext.substr( 0, htext.size() - 1 );
   EXPECT_THROW( Qos::PolicyMapHwStatusKey( truncated.begin(), truncated.end() ),
                 Zub::ParseException );
   Zub::String trailing = htext + " ";
   EXPECT_THROW( Qos::PolicyMapHwStatusKey( trailing.begin(), trailing.end() ),
                 Zub::ParseException );
}

}  // namespace
