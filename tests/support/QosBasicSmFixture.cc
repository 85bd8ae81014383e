#include "support/QosBasicSmFixture.h"

#include <utility>

#include "NevQos/platform/zub/Log.h"

namespace NevQosTest {

void QosBasicSmFixture::SetUp() {
   loop = Zub::ActivityManager::create( Zub::ActivityManager::TimeSource::simulated, 100.0 );
   Zub::activityManagerIs( loop );
   Zub::logSinkIs( [ this ]( Zub::LogRecord const& r ) {
      logs_.push_back( r.handle->name().stdString() + ": " + r.text.stdString() );
   } );
   ncsd = Zub::make< Nev::NevCommonSmData >( Zub::Name( "ncsd" ) );
   verifyData = Zub::make< Nev::VerifyData >( Zub::Name( "verify" ) );
   ncsd->verifyDataIs( verifyData );
   qosStatus = Zub::make< Qos::Status >( Zub::Name( "qos" ) );
   qosHwStatus = Zub::make< Qos::HwStatus >( Zub::Name( "hw" ) );
   qosHwStatus->numTcSupportedIs( 8 );
   qosHwStatus->numTxQueueSupportedIs( 8 );
   sliceHwStatus = Zub::make< Qos::SliceHwStatus >( Zub::Name( "FixedSystem" ) );
   ethPhyIntfStatusDir =
         Zub::make< Interface::AllEthPhyIntfStatusDir >( Zub::Name( "ethPhyIntfStatus" ) );
   counterConfig = Zub::make< Qos::CounterConfig >( Zub::Name( "counterConfig" ) );
   clock = Zub::make< Kesh::TimerWheel >();
   chip = Zub::make< Sim::SimQosBasicHelper >( Sim::ChipConfig(), qosStatus, qosHwStatus,
                                               sliceHwStatus, ethPhyIntfStatusDir );
   helper = Zub::make< Sim::RecordingQosBasicHelper >( chip, clock );
}

void QosBasicSmFixture::TearDown() {
   if( sm ) sm->zubDoZombieReactors( true );
   sm = nullptr;
   EXPECT_EQ( takeLogs(), std::vector< std::string >{} ) << "log lines the test did not expect";
   Zub::logSinkIs( nullptr );
   Zub::activityManagerIs( nullptr );
}

void QosBasicSmFixture::start() {
   sm = Nev::qosBasicSmFactory( ncsd, qosStatus, qosHwStatus, sliceHwStatus, helper,
                                ethPhyIntfStatusDir, counterConfig, clock );
   // Nothing is programmed before the loop turns.
   ASSERT_EQ( takeCalls(), std::vector< std::string >{} );
   loop->runOnce();
   ASSERT_TRUE( sm->initialized() );
}

Zub::Ptr< Qos::IntfStatus > QosBasicSmFixture::intfIs( char const* name,
                                                       std::vector< unsigned > queues ) {
   auto intf = qosStatus->intfStatusIs( Mirel::IntfId( name ) );
   for( unsigned id : queues )
      intf->txQueueStatusIs( uc( id ) );
   return intf;
}

Zub::Ptr< Qos::TxQueueStatus > QosBasicSmFixture::queue( char const* intf, unsigned id ) const {
   return qosStatus->intfStatus( Mirel::IntfId( intf ) )->txQueueStatus( uc( id ) );
}

Zub::Ptr< Interface::EthPhyIntfStatus > QosBasicSmFixture::portIs( char const* name, bool active,
                                                                   std::uint64_t speed ) {
   auto port = ethPhyIntfStatusDir->intfStatusIs( Mirel::IntfId( name ) );
   port->activeIs( active );
   port->speedIs( speed );
   return port;
}

std::vector< std::string > QosBasicSmFixture::takeCalls() {
   std::vector< std::string > calls;
   for( Sim::ChipCall const& call : helper->calls() )
      calls.push_back( Sim::callText( call ) );
   helper->callsForget();
   return calls;
}

void QosBasicSmFixture::failIs( char const* op, Qos::FeatureName feature ) {
   helper->actionIs( op, [ slice = sliceHwStatus, feature ] {
      slice->hwProgrammingVersionAndStatusIs( feature )->hwProgrammingStatusIs(
            Qos::hwProgrammingFailed_ );
   } );
}

std::vector< std::string > QosBasicSmFixture::takeLogs() {
   return std::exchange( logs_, {} );
}

}  // namespace NevQosTest
