// The ECN counters of an interface: membership turns them on and off, DLP keeps the counters of
// an inactive port off and leaves ports of other slices alone, and a chip out of counters shows
// in the status.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/QosBasicSmFixture.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;
using Qos::TxQueueId;

class QosEcnIntfCounterConfigSmTest : public QosBasicSmFixture {
 protected:
   void SetUp() override {
      QosBasicSmFixture::SetUp();
      qosHwStatus->ecnQueueCounterSupportedIs( true );
   }
   Zub::Ptr< Qos::EcnIntfCounterConfig > configIs( char const* intf ) {
      return counterConfig->ecnIntfCounterConfigIs( Mirel::IntfId( intf ) );
   }
   static std::string count( unsigned queue, bool enable ) {
      return "basic programIntfTxQueueEcnCount intfId=Ethernet1 txQueueId=" +
             std::to_string( queue ) + " enable=" + ( enable ? "true" : "false" );
   }
};

TEST_F( QosEcnIntfCounterConfigSmTest, MembershipTurnsCountersOnAndOff ) {
   auto config = configIs( "Ethernet1" );
   config->ecnTxQueueCounterConfigIs( TxQueueId( 3 ), true );
   config->ecnTxQueueCounterConfigIs( TxQueueId( 1 ), true );
   start();
   EXPECT_EQ( helper->callsMatching( "programIntfTxQueueEcnCount" ),
              ( Lines{ count( 1, true ), count( 3, true ) } ) );
   auto const ecnSm = sm->ecnIntfCounterConfigSm( Mirel::IntfId( "Ethernet1" ) );
   takeCalls();
   config->ecnTxQueueCounterConfigIs( TxQueueId( 5 ), true );
   config->ecnTxQueueCounterConfigDel( TxQueueId( 3 ) );
   EXPECT_EQ( takeCalls(), ( Lines{ count( 5, true ), count( 3, false ) } ) );
   // A second notice of a configured interface changes nothing.
   sm->handleEcnIntfCounterConfig( Mirel::IntfId( "Ethernet1" ) );
   EXPECT_EQ( sm->ecnIntfCounterConfigSm( Mirel::IntfId( "Ethernet1" ) ), ecnSm );
   EXPECT_EQ( takeCalls(), Lines{} );

   // Removal turns off every queue of the chip, configured or not.
   counterConfig->ecnIntfCounterConfigDel( Mirel::IntfId( "Ethernet1" ) );
   Lines offs;
   for( unsigned q = 0; q < 8; ++q )
      offs.push_back( count( q, false ) );
   EXPECT_EQ( takeCalls(), offs );
   EXPECT_FALSE( sm->ecnIntfCounterConfigSmHas( Mirel::IntfId( "Ethernet1" ) ) );
}

TEST_F( QosEcnIntfCounterConfigSmTest, UnderDlpAnInactivePortKeepsItsCountersOff ) {
   ncsd->dlpEnabledIs( true );
   auto port = portIs( "Ethernet1", false );
   auto config = configIs( "Ethernet1" );
   config->ecnTxQueueCounterConfigIs( TxQueueId( 1 ), true );
   start();
   EXPECT_EQ( helper->callsMatching( "programIntfTxQueueEcnCount" ), Lines{ count( 1, false ) } );
   takeCalls();
   config->ecnTxQueueCounterConfigIs( TxQueueId( 2 ), true );
   port->activeIs( true );
   port->activeIs( false );
   EXPECT_EQ( takeCalls(), ( Lines{ count( 2, false ), count( 1, true ), count( 2, true ),
                                    count( 1, false ), count( 2, false ) } ) );
}

TEST_F( QosEcnIntfCounterConfigSmTest, APortOfAnotherSliceIsLeftAloneUnderDlp ) {
   ncsd->dlpEnabledIs( true );
   auto config = configIs( "Ethernet1" );
   config->ecnTxQueueCounterConfigIs( TxQueueId( 1 ), true );
   start();
   config->ecnTxQueueCounterConfigIs( TxQueueId( 2 ), true );
   EXPECT_EQ( helper->callsMatching( "programIntfTxQueueEcnCount" ), Lines{} );
}

TEST_F( QosEcnIntfCounterConfigSmTest, WithoutDlpThePortsStateDoesNotMatter ) {
   auto port = portIs( "Ethernet1", false );
   configIs( "Ethernet1" )->ecnTxQueueCounterConfigIs( TxQueueId( 1 ), true );
   start();
   EXPECT_EQ( helper->callsMatching( "programIntfTxQueueEcnCount" ), Lines{ count( 1, true ) } );
   port->activeIs( true );
   EXPECT_EQ( helper->callsMatching( "programIntfTxQueueEcnCount" ), Lines{ count( 1, true ) } );
}

// The driver answers by its result; the record and the slice show it, and no verification is
// asked for.
TEST_F( QosEcnIntfCounterConfigSmTest, AChipOutOfCountersShowsInTheStatus ) {
   verifyData->verifyRequiredIs( true );
   auto config = configIs( "Ethernet1" );
   start();
   verifyData->doVerify();
   qosStatus->configVersionUpdateTimeIs( 3.0 );
   verifyData->doVerify();
   helper->answerIs( "programIntfTxQueueEcnCount", false );
   config->ecnTxQueueCounterConfigIs( TxQueueId( 4 ), true );
   auto const rec = record( Qos::featureEcnQueueCounters_ );
   EXPECT_EQ( rec->hwProgrammingStatus(), Qos::hwProgrammingFailed_ );
   EXPECT_EQ( rec->errMessage(), "Ecn queue counter resource exhausted" );
   EXPECT_EQ( rec->version(), 3.0 );
   EXPECT_TRUE( sliceFailed() );
   EXPECT_FALSE( verifyData->verifyRequested() );

   helper->answerIs( "programIntfTxQueueEcnCount", true );
   config->ecnTxQueueCounterConfigIs( TxQueueId( 5 ), true );
   EXPECT_EQ( rec->hwProgrammingStatus(), Qos::hwProgrammingSucceeded_ );
   EXPECT_EQ( rec->errMessage(), "Ecn queue counter resource exhausted" );
   EXPECT_TRUE( sliceFailed() );
}

}  // namespace
}  // namespace NevQosTest
