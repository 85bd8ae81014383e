#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "NevQos/controlplane/QosKernelStatusSm.h"
#include "NevQos/platform/zub/ActivityManager.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;

// A packet driver that writes each operation as one line.
class RecordingPktDrv : public Nev::PktDrvInterface {
 public:
   void cosToTcIs( Qos::Cos cos, Qos::TrafficClass tc ) override { add( "cosToTc", cos, tc ); }
   void dscpToTcIs( Qos::Dscp dscp, Qos::TrafficClass tc ) override { add( "dscpToTc", dscp, tc ); }
   void tcToUcTxQueueIs( Qos::TrafficClass tc, Qos::TxQueueId txQueue ) override {
      add( "tcToUcTxQueue", tc, txQueue );
   }
   void tcToMcTxQueueIs( Qos::TrafficClass tc, Qos::TxQueueId txQueue ) override {
      add( "tcToMcTxQueue", tc, txQueue );
   }
   Lines take() { return std::exchange( calls_, {} ); }

 private:
   template< class From, class To >
   void add( char const* op, From from, To to ) {
      std::ostringstream line;
      line << op << " " << from << "->" << to;
      calls_.push_back( line.str() );
   }
   Lines calls_;
};

class QosKernelStatusSmTest : public ::testing::Test {
 protected:
   void SetUp() override {
      loop = Zub::ActivityManager::create( Zub::ActivityManager::TimeSource::simulated, 100.0 );
      Zub::activityManagerIs( loop );
      qosStatus = Zub::make< Qos::Status >( Zub::Name( "qos" ) );
      qosHwStatus = Zub::make< Qos::HwStatus >( Zub::Name( "hw" ) );
      for( unsigned tc = 0; tc < 8; ++tc ) {
         qosHwStatus->defaultTcToTxQueueMapIs( tc, tc );
         qosHwStatus->defaultTcToMcTxQueueMapIs( tc, 8 + tc / 2 );
         qosHwStatus->defaultCosToTcMapIs( tc, tc );
      }
      pktDrv = Zub::make< RecordingPktDrv >();
   }
   void TearDown() override {
      if( sm ) sm->zubDoZombieReactors( true );
      sm = nullptr;
      Zub::activityManagerIs( nullptr );
   }
   void start() {
      qosHwStatus->hwInitializedIs( true );
      sm = Nev::qosKernelStatusSmFactory( pktDrv, qosStatus, qosHwStatus );
      loop->runOnce();
   }

   Zub::Ptr< Zub::ActivityManager > loop;
   Zub::Ptr< Qos::Status > qosStatus;
   Zub::Ptr< Qos::HwStatus > qosHwStatus;
   Zub::Ptr< RecordingPktDrv > pktDrv;
   Zub::Ptr< Nev::QosKernelStatusSm > sm;
};

TEST_F( QosKernelStatusSmTest, WithoutAMulticastMapMulticastFollowsTheUnicastQueue ) {
   start();
   pktDrv->take();
   qosStatus->tcToTxQueueMapIs( 1, 7 );
   EXPECT_EQ( pktDrv->take(), ( Lines{ "tcToUcTxQueue 1->7", "tcToMcTxQueue 1->7" } ) );
   qosStatus->tcToMcTxQueueMapIs( 1, 11 );
   EXPECT_EQ( pktDrv->take(), Lines{ "tcToMcTxQueue 1->7" } );
   // Back to unconfigured: the chip's default goes to the driver.
   qosStatus->tcToTxQueueMapDel( 1 );
   qosStatus->cosToTcMapIs( 5, 0 );
   qosStatus->cosToTcMapDel( 5 );
   EXPECT_EQ( pktDrv->take(), ( Lines{ "tcToUcTxQueue 1->1", "tcToMcTxQueue 1->1", "cosToTc 5->0",
                                       "cosToTc 5->5" } ) );
}

TEST_F( QosKernelStatusSmTest, WithAMulticastMapEachChangeMakesOneCall ) {
   qosHwStatus->mcTxQueueMapSupportedIs( true );
   start();
   Lines const firstPass = pktDrv->take();
   EXPECT_EQ( firstPass.size(), 8u + 64u + 17u * 2u );
   EXPECT_EQ( firstPass[ 72 + 2 * 3 + 1 ], "tcToMcTxQueue 3->9" );

   qosStatus->tcToTxQueueMapIs( 3, 0 );
   qosStatus->tcToMcTxQueueMapIs( 3, 12 );
   qosStatus->dscpToTcMapIs( 46, 5 );
   EXPECT_EQ( pktDrv->take(),
              ( Lines{ "tcToUcTxQueue 3->0", "tcToMcTxQueue 3->12", "dscpToTc 46->5" } ) );
}

}  // namespace
}  // namespace NevQosTest
