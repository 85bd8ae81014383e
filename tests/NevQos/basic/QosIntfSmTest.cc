// One interface's QoS: trust mode, defaults, shaping, the named map and profile it uses, its
// queues as they come and go, the reprogramming of an interface brought up, and bandwidth in
// percent following the link speed.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/QosBasicSmFixture.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;

using QosIntfSmTest = QosBasicSmFixture;

TEST_F( QosIntfSmTest, StartUpProgramsTheInterfaceThenItsQueues ) {
   qosHwStatus->dscpRewritePerInterfaceSupportedIs( true );
   qosHwStatus->cosToTcPerInterfaceSupportedIs( true );
   start();
   takeCalls();
   auto intf = intfIs( "Ethernet1", { 2, 1 } );
   EXPECT_EQ(
         takeCalls(),
         ( Lines{ "basic programIntfTrustModeCos intfStatus=Ethernet1",
                  "basic programIntfDefaultCos intfStatus=Ethernet1",
                  "basic programIntfDefaultDscp intfStatus=Ethernet1",
                  "basic programIntfShapeRate intfStatus=Ethernet1",
                  "basic programIntfToDscpRewriteMap intfStatus=Ethernet1",
                  "basic handleIntfToCosToTcProfile intfId=Ethernet1 restoration=false",
                  "basic programIntfTxQueuePriority intfStatus=Ethernet1 txQueueStatus=UC2",
                  "basic programIntfTxQueueShapeRate intfStatus=Ethernet1 txQueueStatus=UC2",
                  "basic programIntfTxQueuePriority intfStatus=Ethernet1 txQueueStatus=UC1",
                  "basic programIntfTxQueueShapeRate intfStatus=Ethernet1 txQueueStatus=UC1" } ) );
   auto const intfSm = sm->qosIntfSm( Mirel::IntfId( "Ethernet1" ) );
   ASSERT_TRUE( intfSm );
   EXPECT_TRUE( intfSm->initialized() );
   EXPECT_EQ( intfSm->qosIntfTxQueueSmSize(), 2u );

   intf->dscpRewriteMapNameIs( Zub::Name( "m1" ) );
   intf->cosToTcProfileNameIs( Zub::Name( "p1" ) );
   intf->shapeRateIs( Qos::ShapeRate{ 5000, Qos::shapeRateUnitKbps_ } );
   EXPECT_EQ( takeCalls(), ( Lines{ "basic programIntfToDscpRewriteMap intfStatus=Ethernet1",
                                    "basic handleIntfToCosToTcProfile intfId=Ethernet1 "
                                    "restoration=false",
                                    "basic programIntfShapeRate intfStatus=Ethernet1" } ) );
}

TEST_F( QosIntfSmTest, PerInterfaceMapsNeedTheChipsSupportOnChangesToo ) {
   auto intf = intfIs( "Ethernet1" );
   start();
   EXPECT_EQ( helper->callsMatching( "programIntfToDscpRewriteMap" ), Lines{} );
   takeCalls();
   intf->dscpRewriteMapNameIs( Zub::Name( "m1" ) );
   intf->cosToTcProfileNameIs( Zub::Name( "p1" ) );
   EXPECT_EQ( takeCalls(), Lines{} );
}

TEST_F( QosIntfSmTest, TrustModeChoosesTheDriverCallAndFilesItsFailure ) {
   auto intf = intfIs( "Ethernet1" );
   intf->trustModeIs( Qos::trustDscp_ );
   start();
   EXPECT_EQ( helper->callsMatching( "programIntfTrustModeDscp" ),
              Lines{ "basic programIntfTrustModeDscp intfStatus=Ethernet1" } );
   takeCalls();
   intf->trustModeIs( Qos::untrusted_ );
   intf->trustModeIs( Qos::trustModeInvalid_ );
   intf->trustModeIs( Qos::trustCos_ );
   // A mode unknown here calls nothing, and its step still files a success.
   record( Qos::featureTrustMode_ )->hwProgrammingStatusIs( Qos::hwProgrammingFailed_ );
   intf->trustModeIs( Qos::TrustMode( 7 ) );
   EXPECT_EQ( record( Qos::featureTrustMode_ )->hwProgrammingStatus(),
              Qos::hwProgrammingSucceeded_ );
   EXPECT_EQ( takeCalls(), ( Lines{ "basic programIntfTrustModeUntrusted intfStatus=Ethernet1",
                                    "basic programIntfTrustModeCos intfStatus=Ethernet1",
                                    "basic programIntfTrustModeCos intfStatus=Ethernet1" } ) );

   failIs( "programIntfTrustModeDscp", Qos::featureTrustMode_ );
   failIs( "programIntfDefaultCos", Qos::featureDefaultCos_ );
   intf->trustModeIs( Qos::trustDscp_ );
   intf->defaultCosIs( Qos::Cos( 3 ) );
   EXPECT_EQ( record( Qos::featureTrustMode_ )->errMessage(), "Out of TCAM entries" );
   EXPECT_EQ( record( Qos::featureDefaultCos_ )->hwProgrammingStatus(), Qos::hwProgrammingFailed_ );
   EXPECT_EQ( record( Qos::featureDefaultCos_ )->errMessage(), "" );
   EXPECT_TRUE( sliceFailed() );
}

TEST_F( QosIntfSmTest, QueuesAndTheInterfaceAreResetBeforeTheirMachinesGo ) {
   auto intf = intfIs( "Ethernet1", { 1, 2 } );
   start();
   auto const intfSm = sm->qosIntfSm( Mirel::IntfId( "Ethernet1" ) );
   takeCalls();
   intf->txQueueStatusDel( uc( 1 ) );
   EXPECT_EQ( takeCalls(), ( Lines{ "basic programIntfTxQueueDefaults intfStatus=Ethernet1 "
                                    "txQueueStatus=UC1",
                                    "basic programIntfTxQueueDefaults intfStatus=Ethernet1 "
                                    "txQueueStatus=UC1" } ) );
   EXPECT_FALSE( intfSm->qosIntfTxQueueSmHas( uc( 1 ) ) );

   qosStatus->intfStatusDel( Mirel::IntfId( "Ethernet1" ) );
   EXPECT_EQ( takeCalls(), ( Lines{ "basic programIntfDefaults intfStatus=Ethernet1",
                                    "basic programIntfTxQueueDefaults intfStatus=Ethernet1 "
                                    "txQueueStatus=UC2",
                                    "basic programIntfTxQueueDefaults intfStatus=Ethernet1 "
                                    "txQueueStatus=UC2" } ) );
   EXPECT_FALSE( sm->qosIntfSmHas( Mirel::IntfId( "Ethernet1" ) ) );
   EXPECT_EQ( intfSm->qosIntfTxQueueSmSize(), 0u );
}

// The reinit path keeps the machines and programs everything again; a queue whose machine is
// missing gets one.
TEST_F( QosIntfSmTest, ReinitReprogramsTheLiveMachines ) {
   intfIs( "Ethernet1", { 1, 2 } );
   start();
   auto const intfSm = sm->qosIntfSm( Mirel::IntfId( "Ethernet1" ) );
   auto const queue1 = intfSm->qosIntfTxQueueSm( uc( 1 ) );
   intfSm->qosIntfTxQueueSmDel( uc( 2 ) );
   takeCalls();
   intfSm->handleInitialized( true );
   EXPECT_EQ(
         takeCalls(),
         ( Lines{ "basic programIntfTrustModeCos intfStatus=Ethernet1",
                  "basic programIntfDefaultCos intfStatus=Ethernet1",
                  "basic programIntfDefaultDscp intfStatus=Ethernet1",
                  "basic programIntfShapeRate intfStatus=Ethernet1",
                  "basic programIntfTxQueuePriority intfStatus=Ethernet1 txQueueStatus=UC1",
                  "basic programIntfTxQueueShapeRate intfStatus=Ethernet1 txQueueStatus=UC1",
                  "basic programIntfTxQueuePriority intfStatus=Ethernet1 txQueueStatus=UC2",
                  "basic programIntfTxQueueShapeRate intfStatus=Ethernet1 txQueueStatus=UC2" } ) );
   EXPECT_EQ( intfSm->qosIntfTxQueueSm( uc( 1 ) ), queue1 );
   EXPECT_TRUE( intfSm->qosIntfTxQueueSmHas( uc( 2 ) ) );
}

TEST_F( QosIntfSmTest, ASpeedChangeDerivesPercentBandwidthAgain ) {
   qosHwStatus->guaranteedBwSupportedIs( true );
   auto port = portIs( "Ethernet1" );
   intfIs( "Ethernet1", { 1, 2, 3, 4 } );
   // A port whose status this agent doesn't have is not watched for its speed.
   intfIs( "Ethernet2", { 1 } );
   queue( "Ethernet1", 1 )
         ->guaranteedBwIs( Qos::GuaranteedBw{ 30, Qos::guaranteedBwUnitPercent_ } );
   queue( "Ethernet1", 2 )->guaranteedBwIs( Qos::GuaranteedBw{ 1000, Qos::guaranteedBwUnitKbps_ } );
   queue( "Ethernet1", 3 )
         ->guaranteedBwIs(
               Qos::GuaranteedBw{ Qos::GuaranteedBw::invalidRate, Qos::guaranteedBwUnitPercent_ } );
   queue( "Ethernet1", 4 )->guaranteedBwIs( Qos::GuaranteedBw{ 5000, Qos::guaranteedBwUnitPps_ } );
   queue( "Ethernet2", 1 )
         ->guaranteedBwIs( Qos::GuaranteedBw{ 30, Qos::guaranteedBwUnitPercent_ } );
   start();
   EXPECT_FALSE( sm->qosIntfSm( Mirel::IntfId( "Ethernet2" ) )->ethPhyIntfStatus() );
   auto const ethernet2 = portIs( "Ethernet2" );
   takeCalls();
   port->speedIs( 40000 );
   ethernet2->speedIs( 40000 );
   EXPECT_EQ( takeCalls(), Lines{ "basic programIntfTxQueueGuaranteedBw intfStatus=Ethernet1 "
                                  "txQueueStatus=UC1" } );
}

}  // namespace
}  // namespace NevQosTest
