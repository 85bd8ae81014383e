// The basic helper's read side (configuration merged with the chip's defaults, units, limits).
#include <gtest/gtest.h>

#include "NevQos/helpers/QosBasicHelper.h"

namespace {

using NevHelper::QosBasicHelper;

class QosBasicHelperTest : public ::testing::Test {
 protected:
   Zub::Ptr< Qos::Status > status = Zub::make< Qos::Status >( Zub::Name( "status" ) );
   Zub::Ptr< Qos::HwStatus > hw = Zub::make< Qos::HwStatus >( Zub::Name( "hw" ) );
   Zub::Ptr< QosBasicHelper > helper = Zub::make< QosBasicHelper >(
         status, hw, Zub::make< Qos::SliceHwStatus >( Zub::Name( "slice" ) ) );
   Zub::Ptr< Qos::IntfStatus > intf = status->intfStatusIs( Mirel::IntfId( "Ethernet1" ) );
};

TEST_F( QosBasicHelperTest, UnconfiguredSlotsReadTheChipsDefaults ) {
   hw->defaultCosToTcMapIs( Qos::Cos( 3 ), Qos::TrafficClass( 2 ) );
   hw->defaultTcToMcTxQueueMapIs( Qos::TrafficClass( 5 ), Qos::TxQueueId( 9 ) );
   hw->defaultDropPrecedenceIs( Qos::DropPrecedence( 1 ) );
   status->dscpToDpMapIs( Qos::Dscp( 10 ), Qos::DropPrecedence( 2 ) );
   EXPECT_EQ( helper->cosToTc( Qos::Cos( 3 ) ), 2 );
   status->cosToTcMapIs( Qos::Cos( 3 ), Qos::TrafficClass( 6 ) );
   EXPECT_EQ( helper->cosToTc( Qos::Cos( 3 ) ), 6 );
   EXPECT_EQ( helper->tcToMcTxQueue( Qos::TrafficClass( 5 ) ), 9 );
   // One default precedence for every DSCP without its own.
   EXPECT_EQ( helper->dscpToDp( Qos::Dscp( 10 ) ), 2 );
   EXPECT_EQ( helper->dscpToDp( Qos::Dscp( 11 ) ), 1 );
   EXPECT_EQ( helper->dscpToDp( Qos::Dscp( 63 ) ), 1 );
}

TEST_F( QosBasicHelperTest, TheDefaultTrafficClassFollowsTheTrustMode ) {
   hw->defaultCosIs( Qos::Cos( 1 ) );
   hw->defaultDscpIs( Qos::Dscp( 46 ) );
   hw->defaultCosToTcMapIs( Qos::Cos( 1 ), Qos::TrafficClass( 1 ) );
   hw->defaultCosToTcMapIs( Qos::Cos( 4 ), Qos::TrafficClass( 4 ) );
   hw->defaultDscpToTcMapIs( Qos::Dscp( 46 ), Qos::TrafficClass( 5 ) );
   hw->defaultTrustModeIs( Qos::trustDscp_ );
   EXPECT_EQ( helper->defaultTc( nullptr ), 5 ) << "no interface: the chip's trust mode";

   intf->trustModeIs( Qos::trustCos_ );
   EXPECT_EQ( helper->defaultTc( intf.ptr() ), 1 ) << "the port's COS is the sentinel";
   intf->defaultCosIs( Qos::Cos( 4 ) );
   EXPECT_EQ( helper->defaultTc( intf.ptr() ), 4 );
   intf->trustModeIs( Qos::untrusted_ );
   EXPECT_EQ( helper->defaultTc( intf.ptr() ), 4 ) << "an untrusted port goes by its COS";
   intf->trustModeIs( Qos::trustDscp_ );
   EXPECT_EQ( helper->defaultTc( intf.ptr() ), 5 );
   EXPECT_EQ( helper->defaultDscpToTc( intf.ptr() ), 5 );
   EXPECT_EQ( helper->defaultCosToTc( intf.ptr() ), 4 );
}

TEST_F( QosBasicHelperTest, UnitNamesAndLimits ) {
   EXPECT_EQ( QosBasicHelper::guaranteedBwUnitToStr( Qos::guaranteedBwUnitPercent_ ), "percent" );
   EXPECT_EQ( QosBasicHelper::shapeRateUnitToStr( Qos::ShapeRateUnit( 2 ) ), "unknown unit" );
   EXPECT_EQ( QosBasicHelper::shapeRateUnitToStr( Qos::shapeRateUnitPps_ ), "pps" );

   auto const percent = []( std::uint32_t rate ) {
      return Qos::GuaranteedBw{ rate, Qos::guaranteedBwUnitPercent_ };
   };
   EXPECT_FALSE( helper->guaranteedBwIsValid( percent( 0 ) ) );
   EXPECT_TRUE( helper->guaranteedBwIsValid( percent( 100 ) ) );
   EXPECT_FALSE( helper->guaranteedBwIsValid( percent( 101 ) ) );
   hw->maxGuaranteedBwKbpsIs( 1000 );
   EXPECT_TRUE( helper->guaranteedBwIsValid( { 1000, Qos::guaranteedBwUnitKbps_ } ) );
   EXPECT_FALSE( helper->guaranteedBwIsValid( { 1001, Qos::guaranteedBwUnitKbps_ } ) );

   hw->minPortShapeRateIs( 10 );
   hw->minTxQueueShapeRateIs( 50 );
   hw->maxShapeRateKbpsIs( 100000 );
   hw->maxShapeRatePpsIs( 1000 );
   EXPECT_FALSE( helper->shapeRateIsValid( { 40, Qos::shapeRateUnitKbps_ } ) )
         << "under the queue's least rate, whatever the unit";
   EXPECT_TRUE( helper->shapeRateIsValid( { 5000, Qos::shapeRateUnitKbps_ } ) );
   EXPECT_FALSE( helper->shapeRateIsValid( { 5000, Qos::shapeRateUnitPps_ } ) );
   EXPECT_FALSE( helper->shapeRateIsValid( { 500, Qos::ShapeRateUnit( 2 ) } ) );
}

}  // namespace
