// The top machine of basic QoS: start-up order and its capability guards, the global maps and
// switches, the programming step's records, fabric slices, port state, named maps and profiles,
// verification and teardown.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "support/QosBasicSmFixture.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;
using Qos::TrafficClass;

using QosBasicSmTest = QosBasicSmFixture;

TEST_F( QosBasicSmTest, StartUpWalksTheInputsInItsOrder ) {
   qosHwStatus->numTcSupportedIs( 2 );
   qosHwStatus->numMulticastQueueSupportedIs( 4 );
   qosHwStatus->dscpToDpMapSupportedIs( true );
   qosHwStatus->dscpRewriteSupportedIs( true );
   qosHwStatus->ecnSupportedIs( true );
   qosHwStatus->ecnQueueCounterSupportedIs( true );
   qosHwStatus->dscpRewritePerInterfaceSupportedIs( true );
   qosHwStatus->cosToTcPerInterfaceSupportedIs( true );
   qosStatus->configVersionUpdateTimeIs( 5.0 );
   qosStatus->dscpRewriteMapIs( Zub::Name( "m1" ) );
   intfIs( "Ethernet1" );
   counterConfig->ecnIntfCounterConfigIs( Mirel::IntfId( "Ethernet2" ) )
         ->ecnTxQueueCounterConfigIs( Qos::TxQueueId( 1 ), true );
   // Programmed on a port before a restart; the configuration no longer names it.
   sliceHwStatus->intfToCosToTcProfileIs( Mirel::IntfId( "Ethernet3" ), Zub::Name( "p1" ) );
   verifyData->verifyRequiredIs( true );
   start();

   Lines expected = { "basic hwInit" };
   for( unsigned cos = 0; cos < 8; ++cos )
      expected.push_back( "basic programCosToTcMap cos=" + std::to_string( cos ) );
   for( unsigned dscp = 0; dscp < 64; ++dscp ) {
      expected.push_back( "basic programDscpToTcMap dscp=" + std::to_string( dscp ) );
      expected.push_back( "basic programDscpToDpMap dscp=" + std::to_string( dscp ) );
   }
   for( unsigned exp = 0; exp < 8; ++exp )
      expected.push_back( "basic programExpToTcMap exp=" + std::to_string( exp ) );
   for( std::string tc : { "0", "1" } ) {
      for( char const* op :
           { "basic programTcToCosMap", "basic programTcToDscpMap", "basic programTcToExpMap",
             "basic programTcToUcTxQueueMap", "basic programTcToMcTxQueueMap" } ) {
         expected.push_back( op + std::string( " tc=" ) + tc );
      }
   }
   expected.insert( expected.end(),
                    { "basic programCosRewriteEnabled", "basic programDscpRewriteEnabled",
                      "basic programGlobalEcn",
                      "basic programIntfTxQueueEcnCount intfId=Ethernet2 txQueueId=1 enable=true",
                      "basic programDscpMap mapName=m1",
                      "basic handleIntfToCosToTcProfile intfId=Ethernet3 restoration=true",
                      "basic programIntfTrustModeCos intfStatus=Ethernet1",
                      "basic programIntfDefaultCos intfStatus=Ethernet1",
                      "basic programIntfDefaultDscp intfStatus=Ethernet1",
                      "basic programIntfShapeRate intfStatus=Ethernet1",
                      "basic programIntfToDscpRewriteMap intfStatus=Ethernet1",
                      "basic handleIntfToCosToTcProfile intfId=Ethernet1 restoration=false",
                      "basic initializationComplete" } );
   EXPECT_EQ( takeCalls(), expected );
   EXPECT_EQ( sliceHwStatus->configVersionUpdateTime(), 5.0 );
   EXPECT_EQ( record( Qos::featureGlobalMaps_ )->version(), 5.0 );
   EXPECT_FALSE( sliceFailed() );
   // The one verification start-up asks for comes after it.
   EXPECT_TRUE( sm->verifyQos() );
   EXPECT_TRUE( verifyData->verifyRequested() );
}

// The sizes and features of the chip limit the start-up walk; a change that names a slot
// beyond them still reaches the driver, which owns the decision.
TEST_F( QosBasicSmTest, CapabilitiesGuardStartUpAndNotChanges ) {
   start();
   Lines const calls = takeCalls();
   auto count = [ &calls ]( std::string const& op ) {
      std::size_t n = 0;
      for( auto const& c : calls )
         n += c.starts_with( op + " " ) || c == op;
      return n;
   };
   EXPECT_EQ( count( "basic programTcToCosMap" ), 8u );
   EXPECT_EQ( count( "basic programTcToUcTxQueueMap" ), 8u );
   EXPECT_EQ( count( "basic programTcToMcTxQueueMap" ), 0u );
   EXPECT_EQ( count( "basic programDscpToDpMap" ), 0u );
   EXPECT_EQ( count( "basic programCosRewriteEnabled" ), 1u );
   EXPECT_EQ( count( "basic programDscpRewriteEnabled" ), 0u );
   EXPECT_EQ( count( "basic programGlobalEcn" ), 0u );

   record( Qos::featureEcnDelayThreshold_ )->hwProgrammingStatusIs( Qos::hwProgrammingFailed_ );
   qosStatus->tcToMcTxQueueMapIs( TrafficClass( 3 ), Qos::TxQueueId( 1 ) );
   qosStatus->tcToCosMapIs( TrafficClass( 9 ), Qos::Cos( 1 ) );
   qosStatus->dscpToDpMapIs( Qos::Dscp( 10 ), Qos::DropPrecedence( 1 ) );
   qosStatus->globalEcnStatusIs( Qos::EcnStatus{ true, 100, 200, 50 } );
   qosStatus->ecnDelayThresholdIs( Qos::EcnDelayThreshold{ 500 } );
   qosStatus->servicePolicyDP1StatusIs(
         Qos::ServicePolicyKey( Qos::mapQos_, Qos::directionInput_, Zub::Name( "p" ) ), true );
   EXPECT_EQ( takeCalls(),
              ( Lines{ "basic programTcToMcTxQueueMap tc=3", "basic programTcToCosMap tc=9",
                       "basic programGlobalEcn", "basic handleServicePolicyDP1Status" } ) );
   // The delay threshold is the queues' business; its record is only marked good here.
   EXPECT_EQ( record( Qos::featureEcnDelayThreshold_ )->hwProgrammingStatus(),
              Qos::hwProgrammingSucceeded_ );
}

TEST_F( QosBasicSmTest, AFailedStepStaysOnTheSliceUntilAClearRequest ) {
   qosHwStatus->dscpRewriteSupportedIs( true );
   qosHwStatus->ecnSupportedIs( true );
   start();
   struct Case {
      char const* op;
      Qos::FeatureName feature;
      char const* text;
      std::function< void( unsigned ) > change;
   };
   Case const cases[] = {
      { "programCosRewriteEnabled", Qos::featureCosRewriteEnable_, "Out of TCAM entries",
        [ this ]( unsigned n ) { qosStatus->cosRewriteEnabledIs( n % 2 ); } },
      { "programDscpRewriteEnabled", Qos::featureDscpRewriteEnable_, "Out of TCAM entries",
        [ this ]( unsigned n ) { qosStatus->dscpRewriteEnabledIs( n % 2 ); } },
      { "programGlobalEcn", Qos::featureEcnStatus_, "ECN profiles exhausted",
        [ this ]( unsigned n ) {
           qosStatus->globalEcnStatusIs( Qos::EcnStatus{ true, n } );
        } },
      { "programTcToDscpMap", Qos::featureGlobalMaps_, "",
        [ this ]( unsigned n ) { qosStatus->tcToDscpMapIs( TrafficClass( 2 ), Qos::Dscp( n ) ); } },
   };
   unsigned n = 1;
   for( Case const& c : cases ) {
      SCOPED_TRACE( c.op );
      auto const rec = record( c.feature );
      qosStatus->configVersionUpdateTimeIs( 10.0 * n );
      failIs( c.op, c.feature );
      c.change( n++ );
      EXPECT_EQ( rec->hwProgrammingStatus(), Qos::hwProgrammingFailed_ );
      EXPECT_EQ( rec->errMessage(), c.text );
      EXPECT_EQ( rec->version(), 10.0 * ( n - 1 ) );
      EXPECT_TRUE( sliceFailed() );

      // A success lifts the record, with its version, and leaves the text of the failure and
      // the slice's status as they were.
      failDel( c.op );
      qosStatus->configVersionUpdateTimeIs( 10.0 * n );
      c.change( n++ );
      EXPECT_EQ( rec->hwProgrammingStatus(), Qos::hwProgrammingSucceeded_ );
      EXPECT_EQ( rec->errMessage(), c.text );
      EXPECT_EQ( rec->version(), 10.0 * ( n - 1 ) );
      EXPECT_TRUE( sliceFailed() );

      qosStatus->clearHwStatusErrorRequestTimeIs( 10.0 * n );
      EXPECT_FALSE( sliceFailed() );
      EXPECT_EQ( rec->errMessage(), c.text );
   }
   EXPECT_EQ( sliceHwStatus->configVersionUpdateTime(), 80.0 );
}

TEST_F( QosBasicSmTest, AFabricSliceProgramsItsFabricInterfaceOnly ) {
   ncsd->isFabricSliceIs( true );
   qosHwStatus->guaranteedBwSupportedIs( true );
   portIs( "Ethernet1" );
   intfIs( "Ethernet1" );
   qosStatus->intfStatusIs( Mirel::fabricIntfId() );
   start();
   EXPECT_FALSE( sm->qosIntfSmHas( Mirel::IntfId( "Ethernet1" ) ) );
   ASSERT_TRUE( sm->qosIntfSmHas( Mirel::fabricIntfId() ) );
   // A fabric interface has no link speed of its own to watch.
   EXPECT_FALSE( sm->qosIntfSm( Mirel::fabricIntfId() )->ethPhyIntfStatus() );
   EXPECT_EQ( helper->callsMatching( "programIntfTrustModeCos" ),
              Lines{ "basic programIntfTrustModeCos intfStatus=Fabric1" } );

   takeCalls();
   intfIs( "Ethernet2" );
   EXPECT_EQ( takeCalls(), Lines{} );
   // The interfaces it leaves alone are no fault of the verification.
   verifyData->doVerify();
   EXPECT_EQ( takeCalls(), Lines{ "basic handleQosVerify" } );
}

TEST_F( QosBasicSmTest, NamedDscpMapsAndCosToTcProfilesFollowTheConfiguration ) {
   qosHwStatus->dscpRewritePerInterfaceSupportedIs( true );
   qosHwStatus->cosToTcPerInterfaceSupportedIs( true );
   start();
   takeCalls();
   auto map = qosStatus->dscpRewriteMapIs( Zub::Name( "m2" ) );
   map->tcToDscpMapIs( TrafficClass( 3 ), Qos::Dscp( 46 ) );
   auto profile = qosStatus->cosToTcProfileIs( Zub::Name( "p1" ) );
   profile->cosToTcMapIs( Qos::Cos( 5 ), TrafficClass( 4 ) );
   qosStatus->dscpRewriteMapDel( Zub::Name( "m2" ) );
   qosStatus->cosToTcProfileDel( Zub::Name( "p1" ) );
   // Entities that left the configuration are no longer heard.
   map->tcToDscpMapIs( TrafficClass( 4 ), Qos::Dscp( 10 ) );
   profile->cosToTcMapIs( Qos::Cos( 6 ), TrafficClass( 1 ) );
   EXPECT_EQ( takeCalls(), ( Lines{ "basic programDscpMap mapName=m2",
                                    "basic updateTcToDscpMapping mapName=m2 tc=3",
                                    "basic addCosToTcProfile profileName=p1",
                                    "basic updateCosToTcProfileMapping profileName=p1 cos=5",
                                    "basic deleteDscpMap mapName=m2",
                                    "basic removeCosToTcProfile profileName=p1" } ) );
   EXPECT_FALSE( sm->dscpRewriteMap( Zub::Name( "m2" ) ) );
   EXPECT_FALSE( sm->cosToTcProfile( Zub::Name( "p1" ) ) );
}

TEST_F( QosBasicSmTest, PortStateReachesTheDriverAccordingToTheDlpMode ) {
   portIs( "Ethernet1" );
   intfIs( "Ethernet1", { 1 } );
   start();
   takeCalls();
   ethPhyIntfStatusDir->intfStatus( Mirel::IntfId( "Ethernet1" ) )->activeIs( false );
   // A port that appears on a running machine is reported at once.
   portIs( "Ethernet2", false );
   EXPECT_EQ( takeCalls(), ( Lines{ "basic handleEthPhyIntfStatusActive intfId=Ethernet1",
                                    "basic handleEthPhyIntfStatusActive intfId=Ethernet2" } ) );
   ethPhyIntfStatusDir->intfStatusDel( Mirel::IntfId( "Ethernet2" ) );
   EXPECT_FALSE( sm->status( Mirel::IntfId( "Ethernet2" ) ) );

   // Under DLP the platform's flow reports the port, and an active one is programmed again.
   ncsd->dlpEnabledIs( true );
   ethPhyIntfStatusDir->intfStatus( Mirel::IntfId( "Ethernet1" ) )->activeIs( true );
   EXPECT_EQ( takeCalls(), Lines{} );
   auto const reactor = sm->status( Mirel::IntfId( "Ethernet1" ) );
   reactor->handleEthPhyIntfStatusActiveDlp( Mirel::IntfId( "Ethernet1" ), false );
   EXPECT_EQ( takeCalls(), Lines{ "basic handleEthPhyIntfStatusActive intfId=Ethernet1" } );
   reactor->handleEthPhyIntfStatusActiveDlp( Mirel::IntfId( "Ethernet1" ), true );
   EXPECT_EQ(
         takeCalls(),
         ( Lines{ "basic handleEthPhyIntfStatusActive intfId=Ethernet1",
                  "basic programIntfTrustModeCos intfStatus=Ethernet1",
                  "basic programIntfDefaultCos intfStatus=Ethernet1",
                  "basic programIntfDefaultDscp intfStatus=Ethernet1",
                  "basic programIntfShapeRate intfStatus=Ethernet1",
                  "basic programIntfTxQueuePriority intfStatus=Ethernet1 txQueueStatus=UC1",
                  "basic programIntfTxQueueShapeRate intfStatus=Ethernet1 txQueueStatus=UC1" } ) );
}

TEST_F( QosBasicSmTest, VerificationRunsWhenOwedAndAskedFor ) {
   verifyData->verifyRequiredIs( true );
   sm = Nev::qosBasicSmFactory( ncsd, qosStatus, qosHwStatus, sliceHwStatus, helper,
                                ethPhyIntfStatusDir, counterConfig, clock );
   // Before start-up nothing is verified.
   verifyData->doVerify();
   EXPECT_TRUE( helper->calls().empty() );
   loop->runOnce();
   ASSERT_TRUE( verifyData->verifyRequested() );
   takeCalls();
   verifyData->doVerify();
   EXPECT_EQ( takeCalls(), Lines{ "basic handleQosVerify" } );
   EXPECT_FALSE( sm->verifyQos() );
   verifyData->doVerify();
   EXPECT_EQ( takeCalls(), Lines{} );

   qosStatus->cosRewriteEnabledIs( true );
   EXPECT_TRUE( verifyData->verifyRequested() );
   takeCalls();
   verifyData->doVerify();
   EXPECT_EQ( takeCalls(), Lines{ "basic handleQosVerify" } );
}

TEST_F( QosBasicSmTest, TeardownResetsInterfacesAndLeavesEcnCounters ) {
   qosHwStatus->ecnQueueCounterSupportedIs( true );
   intfIs( "Ethernet1", { 1 } );
   counterConfig->ecnIntfCounterConfigIs( Mirel::IntfId( "Ethernet2" ) )
         ->ecnTxQueueCounterConfigIs( Qos::TxQueueId( 1 ), true );
   start();
   takeCalls();
   sm->doPrepareToDie();
   EXPECT_EQ( takeCalls(), ( Lines{ "basic programIntfDefaults intfStatus=Ethernet1",
                                    "basic programIntfTxQueueDefaults intfStatus=Ethernet1 "
                                    "txQueueStatus=UC1",
                                    "basic programIntfTxQueueDefaults intfStatus=Ethernet1 "
                                    "txQueueStatus=UC1" } ) );
   EXPECT_EQ( sm->qosIntfSmSize(), 0u );
   EXPECT_EQ( sm->ecnIntfCounterConfigSmSize(), 1u );
}

}  // namespace
}  // namespace NevQosTest
