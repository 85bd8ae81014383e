// One transmit queue: start-up by the chip's capabilities, changes on every chip, profile
// exhaustion filed under its feature, and the three-step reset.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "support/QosBasicSmFixture.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;

class QosIntfTxQueueSmTest : public QosBasicSmFixture {
 protected:
   void everyQueueFeatureIs() {
      qosHwStatus->ecnSupportedIs( true );
      qosHwStatus->nonEctThdSupportedIs( true );
      qosHwStatus->ecnDelaySupportedIs( true );
      qosHwStatus->wredSupportedIs( true );
      qosHwStatus->dropPrecedenceThresholdSupportedIs( true );
      qosHwStatus->guaranteedBwSupportedIs( true );
   }
   // Ethernet1 with queue 1, added to a running machine; the calls of its start-up are taken.
   Zub::Ptr< Qos::TxQueueStatus > queueIs() {
      start();
      auto intf = intfIs( "Ethernet1" );
      takeCalls();
      auto q = intf->txQueueStatusIs( uc( 1 ) );
      return q;
   }
};

TEST_F( QosIntfTxQueueSmTest, StartUpProgramsWhatTheChipHas ) {
   everyQueueFeatureIs();
   portIs( "Ethernet1" );
   auto q = queueIs();
   q->ecnDelayThresholdIs( Qos::EcnDelayThreshold{ 0 } );
   EXPECT_EQ( takeCalls(),
              ( Lines{ "basic programIntfTxQueuePriority intfStatus=Ethernet1 txQueueStatus=UC1",
                       "basic programIntfTxQueueShapeRate intfStatus=Ethernet1 txQueueStatus=UC1",
                       "basic programIntfTxQueueEcn intfStatus=Ethernet1 txQueueStatus=UC1",
                       "basic programIntfTxQueueNonEct intfStatus=Ethernet1 txQueueStatus=UC1",
                       "basic programIntfTxQueueEcnDelayThreshold intfStatus=Ethernet1 "
                       "txQueueId=UC1 "
                       "delayEcnEnabled=false ecnDelayThreshold=0 us",
                       "basic programIntfTxQueueWred intfStatus=Ethernet1 txQueueStatus=UC1",
                       "basic programIntfTxQueueDropThresholdForDp intfStatus=Ethernet1 "
                       "txQueueStatus=UC1 dp=0",
                       "basic programIntfTxQueueDropThresholdForDp intfStatus=Ethernet1 "
                       "txQueueStatus=UC1 dp=1",
                       "basic programIntfTxQueueDropThresholdForDp intfStatus=Ethernet1 "
                       "txQueueStatus=UC1 dp=2",
                       "basic programIntfTxQueueDropThresholdForDp intfStatus=Ethernet1 "
                       "txQueueStatus=UC1 dp=3",
                       "basic programIntfTxQueueGuaranteedBw intfStatus=Ethernet1 "
                       "txQueueStatus=UC1" } ) );
}

// Capabilities are asked at start-up only; a change reaches the driver on any chip. The delay
// threshold takes effect when its switch is written.
TEST_F( QosIntfTxQueueSmTest, ChangesReachTheDriverOnEveryChip ) {
   auto q = queueIs();
   EXPECT_EQ( takeCalls(), ( Lines{ "basic programIntfTxQueuePriority intfStatus=Ethernet1 "
                                    "txQueueStatus=UC1",
                                    "basic programIntfTxQueueShapeRate intfStatus=Ethernet1 "
                                    "txQueueStatus=UC1" } ) );
   q->ecnStatusIs( Qos::EcnStatus{ true, 1000, 2000, 10 } );
   q->wredStatusIs( Qos::WredStatus{ true, 1000, 2000, 10 } );
   q->dropThresholdsIs( Qos::DropPrecedence( 2 ), 4096 );
   q->guaranteedBwIs( Qos::GuaranteedBw{ 10, Qos::guaranteedBwUnitPercent_ } );
   q->ecnDelayThresholdIs( Qos::EcnDelayThreshold{ 250 } );
   EXPECT_EQ( takeCalls(),
              ( Lines{ "basic programIntfTxQueueEcn intfStatus=Ethernet1 txQueueStatus=UC1",
                       "basic programIntfTxQueueWred intfStatus=Ethernet1 txQueueStatus=UC1",
                       "basic programIntfTxQueueDropThresholdForDp intfStatus=Ethernet1 "
                       "txQueueStatus=UC1 dp=2",
                       "basic programIntfTxQueueGuaranteedBw intfStatus=Ethernet1 "
                       "txQueueStatus=UC1" } ) );
   q->delayEcnEnabledIs( true );
   EXPECT_EQ( takeCalls(), Lines{ "basic programIntfTxQueueEcnDelayThreshold intfStatus=Ethernet1 "
                                  "txQueueId=UC1 delayEcnEnabled=true ecnDelayThreshold=250 us" } );
}

TEST_F( QosIntfTxQueueSmTest, ExhaustedProfilesAreFiledUnderTheirFeature ) {
   auto q = queueIs();
   struct Case {
      char const* op;
      Qos::FeatureName feature;
      char const* text;
      std::function< void( unsigned ) > change;
   };
   Case const cases[] = {
      { "programIntfTxQueueEcn", Qos::featureEcnStatus_, "ECN profiles exhausted",
        [ & ]( unsigned n ) {
           q->ecnStatusIs( Qos::EcnStatus{ true, n } );
        } },
      { "programIntfTxQueueNonEct", Qos::featureEcnStatus_, "ECN profiles exhausted",
        [ & ]( unsigned n ) {
           q->nonEctStatusIs( Qos::NonEctStatus{ true, n } );
        } },
      { "programIntfTxQueueWred", Qos::featureWred_, "WRED profiles exhausted",
        [ & ]( unsigned n ) {
           q->wredStatusIs( Qos::WredStatus{ true, n } );
        } },
      { "programIntfTxQueueDropThresholdForDp", Qos::featureDropThresholds_,
        "DropThresholds Rate Classes exhausted",
        [ & ]( unsigned n ) { q->dropThresholdsIs( Qos::DropPrecedence( 1 ), n ); } },
      { "programIntfTxQueueEcnDelayThreshold", Qos::featureEcnDelayThreshold_, "",
        [ & ]( unsigned n ) { q->delayEcnEnabledIs( n % 2 ); } },
   };
   unsigned n = 1;
   for( Case const& c : cases ) {
      SCOPED_TRACE( c.op );
      qosStatus->clearHwStatusErrorRequestTimeIs( n );
      qosStatus->configVersionUpdateTimeIs( n );
      auto const rec = record( c.feature );
      rec->errMessageIs( "" );
      failIs( c.op, c.feature );
      c.change( n++ );
      EXPECT_EQ( rec->hwProgrammingStatus(), Qos::hwProgrammingFailed_ );
      EXPECT_EQ( rec->errMessage(), c.text );
      EXPECT_EQ( rec->version(), n - 1 );
      EXPECT_TRUE( sliceFailed() );
      // The next change of the same setting tries again.
      failDel( c.op );
      c.change( n++ );
      EXPECT_EQ( rec->hwProgrammingStatus(), Qos::hwProgrammingSucceeded_ );
   }
}

}  // namespace
}  // namespace NevQosTest
