#include "NevQos/basic/QosEcnIntfCounterConfigSm.h"

#include <cstdint>

#include "NevQos/basic/QosBasicSm.h"
#include "NevQos/log/TraceHandles.h"
#include "NevQos/platform/zub/Assert.h"
#include "NevQos/platform/zub/Fleelog.h"

namespace Nev {

QosEcnIntfCounterConfigSm::QosEcnIntfCounterConfigSm(
      Mirel::IntfId const& intfId, QosBasicSm* qosSm,
      Zub::Ptr< Qos::SliceHwStatus > const& qosSliceHwStatus,
      Zub::Ptr< Qos::EcnIntfCounterConfig const > const& ecnIntfCounterConfig,
      Zub::Ptr< Interface::EthPhyIntfStatus const > const& ethPhyIntfStatus )
    : intfId_( intfId ), qosSm_( qosSm ), qosSliceHwStatus_( qosSliceHwStatus ) {
   ecnIntfCounterConfig_.is( ecnIntfCounterConfig, this, false );
   ethPhyIntfStatus_.is( ethPhyIntfStatus, this, false );
   handleInitialized();
}

QosEcnIntfCounterConfigSm::~QosEcnIntfCounterConfigSm() = default;

void QosEcnIntfCounterConfigSm::handleInitialized() {
   ZUB_TRACE( nevQosTrace, 2, "QosEcnIntfCounterConfigSm::handleInitialized " << intfId() );
   FLEELOG( "QosSm::", __PRETTY_FUNCTION__, " intfId:", intfId() );
   ZUB_ASSERT( !initialized() );
   initializedIs( true );
   handleEcnTxQueueCounterConfig();
}

void QosEcnIntfCounterConfigSm::handleEcnTxQueueCounterConfig() {
   ZUB_TRACE( nevQosTrace, 3, "handleEcnTxQueueCounterConfig " << intfId() );
   for( auto it = ecnIntfCounterConfig()->ecnTxQueueCounterConfig().iter(); it; ++it )
      handleEcnTxQueueCounterConfig( it.key() );
}

void QosEcnIntfCounterConfigSm::handleEcnTxQueueCounterConfig( Qos::TxQueueId txQueueId ) {
   ZUB_TRACE( nevQosTrace, 3, "handleEcnTxQueueCounterConfig " << intfId() << " " << txQueueId );
   FLEELOG( "QosSm::", __PRETTY_FUNCTION__, " intfId:", intfId(), " txQueueId:", txQueueId );
   bool const enabled = ecnIntfCounterConfig()->ecnTxQueueCounterConfigHas( txQueueId );
   if( !qosSm()->ncsd()->dlpEnabled() ) {
      configureEcnTxQueueCounter( txQueueId, enabled );
      return;
   }
   // Under DLP an inactive port keeps its counters off until it comes up.
   if( ethPhyIntfStatus() ) {
      configureEcnTxQueueCounter( txQueueId, enabled && ethPhyIntfStatus()->active() );
      return;
   }
   ZUB_TRACE( nevQosTrace, 5, "Intf does not belong to this slice" );
}

// Walks the configured queues only: a port going inactive turns their counters off through
// `enabled && active`, and the others are off already.
void QosEcnIntfCounterConfigSm::handleIntfActive() {
   bool const supportsDlp = qosSm()->ncsd()->dlpEnabled();
   ZUB_TRACE( nevQosTrace, 3,
              "handleIntfActive"
                    << " supportsDlp: " << supportsDlp );
   if( supportsDlp ) handleEcnTxQueueCounterConfig();
}

// The driver reports running out of counters by its result, so the record is lowered here.
// Nothing retries: a later change of the queue's membership, or of the port's state under
// DLP, tries again.
void QosEcnIntfCounterConfigSm::configureEcnTxQueueCounter( Qos::TxQueueId txQueueId,
                                                            bool enable ) {
   ZUB_TRACE( nevQosTrace, 3,
              "configureEcnTxQueueCounter " << intfId() << " " << txQueueId << " " << enable );
   FLEELOG( "QosSm::", __PRETTY_FUNCTION__, " intfId:", intfId(), " txQueueId:", txQueueId,
            " enable:", enable );
   NevHelper::QosBasicHelper& helper = *qosSm()->qosHelper();
   runProgrammingStep( *qosSliceHwStatus(), *helper.qosStatus(), Qos::featureEcnQueueCounters_,
                       "Ecn queue counter resource exhausted", [ & ] {
                          return helper.programIntfTxQueueEcnCount( intfId(), txQueueId, enable );
                       } );
}

void QosEcnIntfCounterConfigSm::doPrepareToDie() {
   ZUB_TRACE( nevQosTrace, 2, "QosEcnIntfCounterConfigSm::doPrepareToDie " << intfId() );
   FLEELOG( "QosSm::", __PRETTY_FUNCTION__, " intfId:", intfId() );
   // The counter is a queue id itself: a chip claiming more queues than one can name stops
   // with the range error.
   std::uint32_t const numTxQueues = qosSm()->qosHwStatus()->numTxQueueSupported();
   for( Qos::TxQueueId txQueueId( 0 ); std::uint32_t( txQueueId.value() ) < numTxQueues;
        txQueueId = Qos::TxQueueId( txQueueId + 1 ) ) {
      configureEcnTxQueueCounter( txQueueId, false );
   }
}

void QosEcnIntfCounterConfigSm::zubDoZombieReactors( bool zombie ) {
   if( this->zombie() == zombie ) return;
   zombieIs( zombie );
   ecnIntfCounterConfig_.zombieIs( zombie );
   ethPhyIntfStatus_.zombieIs( zombie );
}

}  // namespace Nev
