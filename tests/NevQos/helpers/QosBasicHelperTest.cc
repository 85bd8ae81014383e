// The basic helper's read side (configuration merged with the chip's defaults, units, limits)
// and the default bodies of its programming operations.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "NevQos/helpers/QosBasicHelper.h"

namespace {

using NevHelper::QosBasicHelper;
using testing::HasSubstr;

// Each test starts without NEV_NOOP_AGENT and leaves the environment as it found it.
class QosBasicHelperTest : public ::testing::Test {
 protected:
   void SetUp() override {
      if( char const* v = std::getenv( "NEV_NOOP_AGENT" ) ) saved_ = v;
      unsetenv( "NEV_NOOP_AGENT" );
   }
   void TearDown() override {
      if( saved_ ) {
         setenv( "NEV_NOOP_AGENT", saved_->c_str(), 1 );
      } else {
         unsetenv( "NEV_NOOP_AGENT" );
      }
   }

   Zub::Ptr< Qos::Status > status = Zub::make< Qos::Status >( Zub::Name( "status" ) );
   Zub::Ptr< Qos::HwStatus > hw = Zub::make< Qos::HwStatus >( Zub::Name( "hw" ) );
   Zub::Ptr< QosBasicHelper > helper = Zub::make< QosBasicHelper >(
         status, hw, Zub::make< Qos::SliceHwStatus >( Zub::Name( "slice" ) ) );
   Zub::Ptr< Qos::IntfStatus > intf = status->intfStatusIs( Mirel::IntfId( "Ethernet1" ) );
   Zub::Ptr< Qos::TxQueueStatus > queue =
         intf->txQueueStatusIs( Qos::TxQueue( Qos::TxQueueId( 1 ), Qos::unicastQueue_ ) );

 private:
   std::optional< std::string > saved_;
};

using QosBasicHelperDeathTest = QosBasicHelperTest;

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

TEST_F( QosBasicHelperDeathTest, TheFourthTrustModeHasNoDefaultTrafficClass ) {
   intf->trustModeIs( Qos::trustModeInvalid_ );
   EXPECT_DEATH( helper->defaultTc( intf.ptr() ), HasSubstr( "Assertion `false' failed" ) );
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

struct StopCase {
   char const* op;
   std::function< void() > call;
   std::string message;
};

TEST_F( QosBasicHelperDeathTest, UnimplementedOperationsStopWithTheirOwnText ) {
   Qos::TxQueue const q( Qos::TxQueueId( 1 ), Qos::unicastQueue_ );
   std::vector< StopCase > const cases = {
      { "hwInit", [ this ] { helper->hwInit(); }, "Unimplemented function QosHelper::hwInit()" },
      { "programCosToTcMap", [ this ] { helper->programCosToTcMap( Qos::Cos( 1 ) ); },
        "Unimplemented function QosHelper::programCosToTcMap()" },
      // Texts that do not name their own operation.
      { "programTcToUcTxQueueMap",
        [ this ] { helper->programTcToUcTxQueueMap( Qos::TrafficClass( 1 ) ); },
        "Unimplemented function QosHelper::programTcToTxQueueMap()" },
      { "programIntfTrustModeDscp", [ this ] { helper->programIntfTrustModeDscp( *intf ); },
        "Unimplemented function QosHelper::programIntfTrusModeDscp()" },
      { "programIntfTxQueueDropThresholdForDp",
        [ this ] {
           helper->programIntfTxQueueDropThresholdForDp( *intf, *queue, Qos::DropPrecedence( 0 ) );
        },
        "Unimplemented function QosHelper::programIntfTxQueueDropThreshold()" },
      { "addCosToTcProfile", [ this ] { helper->addCosToTcProfile( Zub::Name( "p" ) ); },
        "Unimplemented function QosHelper::programCosToTcProfile()" },
      { "handleIntfToCosToTcProfile",
        [ this ] { helper->handleIntfToCosToTcProfile( Mirel::IntfId( "Ethernet1" ), true ); },
        "Unimplemented function QosHelper::programIntfToCosToTcProfile()" },
      // The text with a line break and twelve blanks inside.
      { "programIntfTxQueueDropThresholdDefaults",
        [ this ] { helper->programIntfTxQueueDropThresholdDefaults( *intf, *queue ); },
        "Unimplemented function QosHelper::\n            "
        "programIntfTxQueueDropThresholdDefaults()" },
      { "programIntfTxQueueEcnDelayThreshold",
        [ this, q ] {
           helper->programIntfTxQueueEcnDelayThreshold( *intf, q, true, Qos::EcnDelayThreshold() );
        },
        "Unimplemented function QosHelper::programIntfTxQueueEcnDelayThreshold()" },
      { "programIntfTxQueueEcnCount",
        [ this ] {
           helper->programIntfTxQueueEcnCount( Mirel::IntfId( "Ethernet1" ), Qos::TxQueueId( 0 ),
                                               true );
        },
        "Unimplemented function QosHelper::programIntfTxQueueEcnCount()" },
   };
   for( auto const& c : cases ) {
      SCOPED_TRACE( c.op );
      EXPECT_DEATH( c.call(), HasSubstr( c.message + "\n" ) );
   }
}

TEST_F( QosBasicHelperTest, SomeDefaultsDoNothingAndAnEmptyNoOpSwitchSilencesTheRest ) {
   // Never a stop, with or without the switch.
   helper->programDscpToDpMap( Qos::Dscp( 1 ) );
   helper->programExpToTcMap( Qos::Exp( 1 ) );
   helper->programTcToExpMap( Qos::TrafficClass( 1 ) );
   helper->initializationComplete();
   helper->handleEthPhyIntfStatusActive( Mirel::IntfId( "Ethernet1" ) );
   helper->handleServicePolicyDP1Status();

   setenv( "NEV_NOOP_AGENT", "", 1 );
   helper->hwInit();
   helper->programIntfDefaults( *intf );
   helper->programIntfTxQueueDefaults( *intf, *queue );
   helper->programIntfTxQueueDropThresholdDefaults( *intf, *queue );
   helper->deleteDscpMap( Zub::Name( "m" ) );
   EXPECT_FALSE( helper->programIntfTxQueueEcnCount( Mirel::IntfId( "Ethernet1" ),
                                                     Qos::TxQueueId( 0 ), true ) )
         << "no counter on a no-op agent";
}

}  // namespace
