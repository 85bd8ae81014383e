#include "NevQos/basic/QosIntfTxQueueSm.h"

#include "NevQos/basic/QosBasicSm.h"
#include "NevQos/basic/QosIntfSm.h"
#include "NevQos/log/TraceHandles.h"

namespace Nev {

// The trace of every handler: the machine, the handler, and the interface and queue.
#define QUEUE_TRACE( handler ) \
   ZUB_TRACE( nevQosTrace, 2,  \
              this << " " handler " ( " << qosIntfSm()->intfId() << "," << txQueue() << " )" )

QosIntfTxQueueSm::QosIntfTxQueueSm( Qos::TxQueue const& txQueue,
                                    Zub::Ptr< Qos::TxQueueStatus const > const& txQueueStatus,
                                    Zub::Ptr< Qos::HwStatus const > const& hwStatus,
                                    QosIntfSm* qosIntfSm )
    : txQueue_( txQueue ), hwStatus_( hwStatus ), qosIntfSm_( qosIntfSm ) {
   txQueueStatus_.is( txQueueStatus, this, false );
   handleInitialized();
}

QosIntfTxQueueSm::~QosIntfTxQueueSm() = default;

// The shape rate goes before the guaranteed bandwidth: the driver compares their units.
void QosIntfTxQueueSm::handleInitialized() {
   QUEUE_TRACE( "handleInitialized" );
   handleIntfTxQueuePriority();
   handleIntfTxQueueShapeRate();
   Qos::HwStatus const& hw = *hwStatus();
   if( hw.ecnSupported() ) handleEcnStatus();
   if( hw.nonEctThdSupported() ) handleNonEctStatus();
   if( hw.ecnDelaySupported() ) handleEcnDelayThreshold();
   if( hw.wredSupported() ) handleWredStatus();
   if( hw.dropPrecedenceThresholdSupported() ) {
      for( Qos::DropPrecedence dp( 0 ); dp.isValid(); dp = Qos::DropPrecedence( dp + 1 ) )
         handleDropThreshold( dp );
   }
   if( hw.guaranteedBwSupported() ) handleIntfTxQueueGuaranteedBw();
   initializedIs( true );
   qosIntfSm()->qosSm()->scheduleQosVerify();
}

void QosIntfTxQueueSm::handleIntfTxQueuePriority() {
   QUEUE_TRACE( "handleIntfTxQueuePriority" );
   QosBasicSm* const qosSm = qosIntfSm()->qosSm();
   qosSm->qosHelper()->programIntfTxQueuePriority( *qosIntfSm()->intfStatus(), *txQueueStatus() );
   qosSm->scheduleQosVerify();
}

void QosIntfTxQueueSm::handleIntfTxQueueShapeRate() {
   QUEUE_TRACE( "handleIntfTxQueueShapeRate" );
   QosBasicSm* const qosSm = qosIntfSm()->qosSm();
   qosSm->qosHelper()->programIntfTxQueueShapeRate( *qosIntfSm()->intfStatus(), *txQueueStatus() );
   qosSm->scheduleQosVerify();
}

void QosIntfTxQueueSm::handleIntfTxQueueGuaranteedBw() {
   QUEUE_TRACE( "handleIntfTxQueueGuaranteedBw" );
   QosBasicSm* const qosSm = qosIntfSm()->qosSm();
   qosSm->qosHelper()->programIntfTxQueueGuaranteedBw( *qosIntfSm()->intfStatus(),
                                                       *txQueueStatus() );
   qosSm->scheduleQosVerify();
}

void QosIntfTxQueueSm::handleEcnStatus() {
   QUEUE_TRACE( "handleEcnStatus" );
   QosBasicSm* const qosSm = qosIntfSm()->qosSm();
   qosSm->programFeature( Qos::featureEcnStatus_, "ECN profiles exhausted", [ & ] {
      qosSm->qosHelper()->programIntfTxQueueEcn( *qosIntfSm()->intfStatus(), *txQueueStatus() );
   } );
}

// Non-ECT shares the ECN record: whichever of the two ran last decides its status.
void QosIntfTxQueueSm::handleNonEctStatus() {
   QUEUE_TRACE( "handleNonEctStatus" );
   QosBasicSm* const qosSm = qosIntfSm()->qosSm();
   qosSm->programFeature( Qos::featureEcnStatus_, "ECN profiles exhausted", [ & ] {
      qosSm->qosHelper()->programIntfTxQueueNonEct( *qosIntfSm()->intfStatus(), *txQueueStatus() );
   } );
}

void QosIntfTxQueueSm::handleEcnDelayThreshold() {
   QUEUE_TRACE( "handleEcnDelayThreshold" );
   QosBasicSm* const qosSm = qosIntfSm()->qosSm();
   Qos::TxQueueStatus const& status = *txQueueStatus();
   qosSm->programFeature( Qos::featureEcnDelayThreshold_, nullptr, [ & ] {
      qosSm->qosHelper()->programIntfTxQueueEcnDelayThreshold( *qosIntfSm()->intfStatus(),
                                                               txQueue(), status.delayEcnEnabled(),
                                                               status.ecnDelayThreshold() );
   } );
}

void QosIntfTxQueueSm::handleWredStatus() {
   QUEUE_TRACE( "handleWredStatus" );
   QosBasicSm* const qosSm = qosIntfSm()->qosSm();
   qosSm->programFeature( Qos::featureWred_, "WRED profiles exhausted", [ & ] {
      qosSm->qosHelper()->programIntfTxQueueWred( *qosIntfSm()->intfStatus(), *txQueueStatus() );
   } );
}

void QosIntfTxQueueSm::handleDropThreshold( Qos::DropPrecedence dp ) {
   QUEUE_TRACE( "handleDropThreshold" );
   QosBasicSm* const qosSm = qosIntfSm()->qosSm();
   qosSm->programFeature( Qos::featureDropThresholds_, "DropThresholds Rate Classes exhausted",
                          [ & ] {
                             qosSm->qosHelper()->programIntfTxQueueDropThresholdForDp(
                                   *qosIntfSm()->intfStatus(), *txQueueStatus(), dp );
                          } );
}

// The defaults call runs twice on purpose, once under the ECN record and once under the WRED
// record, so that a failure is filed under the feature whose profile ran out. Neither is
// guarded by a capability: a chip without ECN or WRED resets the queue all the same.
void QosIntfTxQueueSm::doPrepareToDie() {
   QUEUE_TRACE( "doPrepareToDie" );
   QosBasicSm* const qosSm = qosIntfSm()->qosSm();
   NevHelper::QosBasicHelper& helper = *qosSm->qosHelper();
   Qos::IntfStatus const& intfStatus = *qosIntfSm()->intfStatus();
   Qos::TxQueueStatus const& status = *txQueueStatus();
   qosSm->programFeature( Qos::featureEcnStatus_, "ECN profiles exhausted",
                          [ & ] { helper.programIntfTxQueueDefaults( intfStatus, status ); } );
   qosSm->programFeature( Qos::featureWred_, "WRED profiles exhausted",
                          [ & ] { helper.programIntfTxQueueDefaults( intfStatus, status ); } );
   if( hwStatus()->dropPrecedenceThresholdSupported() ) {
      qosSm->programFeature(
            Qos::featureDropThresholds_,
            "Drop Precedence Tail Drop Thresholds Rate Classes exhausted",
            [ & ] { helper.programIntfTxQueueDropThresholdDefaults( intfStatus, status ); } );
   }
}

void QosIntfTxQueueSm::zubDoZombieReactors( bool zombie ) {
   if( this->zombie() == zombie ) return;
   zombieIs( zombie );
   txQueueStatus_.zombieIs( zombie );
}

#undef QUEUE_TRACE

}  // namespace Nev
