#include "NevQos/basic/QosIntfSm.h"

#include "NevQos/basic/QosBasicSm.h"
#include "NevQos/log/TraceHandles.h"
#include "NevQos/platform/zub/Assert.h"
#include "NevQos/platform/zub/Fleelog.h"

namespace Nev {

QosIntfSm::QosIntfSm( Mirel::IntfId const& intfId, QosBasicSm* qosSm,
                      Zub::Ptr< Qos::IntfStatus const > const& intfStatus,
                      Zub::Ptr< Interface::EthPhyIntfStatus const > const& ethPhyIntfStatus )
    : intfId_( intfId ), qosSm_( qosSm ) {
   intfStatus_.is( intfStatus, this, false );
   ethPhyIntfStatus_.is( ethPhyIntfStatus, this, false );
   handleInitialized();
}

QosIntfSm::~QosIntfSm() = default;

void QosIntfSm::handleInitialized( bool reinitPath ) {
   ZUB_TRACE( nevQosTrace, 2, "handleInitialized " << intfId() << ", reinitPath: " << reinitPath );
   handleIntfTrustMode();
   handleIntfDefaultCos();
   handleIntfDefaultDscp();
   handleIntfShapeRate();
   Qos::HwStatus const& hw = *qosSm()->qosHwStatus();
   if( hw.dscpRewritePerInterfaceSupported() ) handleIntfDscpRewriteMap();
   if( hw.cosToTcPerInterfaceSupported() ) handleIntfCosToTcProfile();
   for( auto it = intfStatus()->txQueueStatus().iter(); it; ++it ) {
      if( reinitPath ) {
         handleIntfTxQueueStatusReinit( it.key() );
      } else {
         handleIntfTxQueueStatus( it.key() );
      }
   }
   initializedIs( true );
   qosSm()->scheduleQosVerify();
}

void QosIntfSm::handleIntfTrustMode() {
   NevHelper::QosBasicHelper& helper = *qosSm()->qosHelper();
   Qos::IntfStatus const& status = *intfStatus();
   Qos::TrustMode const mode = helper.trustMode( &status );
   ZUB_TRACE( nevQosTrace, 2, "handleIntfTrustMode " << intfId() << "( TrustMode:" << mode );
   qosSm()->programFeature( Qos::featureTrustMode_, "Out of TCAM entries", [ & ] {
      switch( mode ) {
         case Qos::trustDscp_:
            helper.programIntfTrustModeDscp( status );
            break;
         case Qos::untrusted_:
            helper.programIntfTrustModeUntrusted( status );
            break;
         case Qos::trustCos_:
         case Qos::trustModeInvalid_:
            // A port without a settled mode classifies by COS, as a trusted-COS port does.
            helper.programIntfTrustModeCos( status );
            break;
         default:
            // A mode this library does not know: the driver is not asked, the record stands.
            break;
      }
   } );
}

void QosIntfSm::handleIntfDefaultCos() {
   ZUB_TRACE( nevQosTrace, 2, "handleIntfDefaultCos " << intfId() );
   qosSm()->programFeature( Qos::featureDefaultCos_, nullptr, [ this ] {
      qosSm()->qosHelper()->programIntfDefaultCos( *intfStatus() );
   } );
}

void QosIntfSm::handleIntfDefaultDscp() {
   ZUB_TRACE( nevQosTrace, 2, "handleIntfDefaultDscp " << intfId() );
   qosSm()->programFeature( Qos::featureDefaultDscp_, nullptr, [ this ] {
      qosSm()->qosHelper()->programIntfDefaultDscp( *intfStatus() );
   } );
}

void QosIntfSm::handleIntfShapeRate() {
   ZUB_TRACE( nevQosTrace, 2, "handleIntfShapeRate " << intfId() );
   qosSm()->qosHelper()->programIntfShapeRate( *intfStatus() );
   qosSm()->scheduleQosVerify();
}

void QosIntfSm::handleIntfDscpRewriteMap() {
   ZUB_TRACE( nevQosTrace, 2, "handleIntfDscpRewriteMap " << intfId() );
   if( qosSm()->qosHwStatus()->dscpRewritePerInterfaceSupported() ) {
      qosSm()->qosHelper()->programIntfToDscpRewriteMap( *intfStatus() );
   }
}

void QosIntfSm::handleIntfCosToTcProfile() {
   PAIRLOG( nevQosTrace, 2, "QosSm::", "handleIntfCosToTcProfile", " intfId:", intfId() );
   if( qosSm()->qosHwStatus()->cosToTcPerInterfaceSupported() ) {
      // A new assignment, not the restoration after a restart.
      qosSm()->qosHelper()->handleIntfToCosToTcProfile( intfId(), false );
   }
}

void QosIntfSm::handleIntfTxQueueStatus( Qos::TxQueue const& txQueue ) {
   ZUB_TRACE( nevQosTrace, 2, "handleIntfTxQueueStatus " << intfId() << "( txQ:" << txQueue );
   if( Zub::Ptr< Qos::TxQueueStatus const > const status =
             intfStatus()->txQueueStatus( txQueue ) ) {
      qosIntfTxQueueSmIs( txQueue, status, qosSm()->qosHwStatus(), this );
      return;
   }
   if( auto sm = qosIntfTxQueueSm( txQueue ) ) sm->doPrepareToDie();
   qosIntfTxQueueSmDel( txQueue );
}

void QosIntfSm::handleIntfTxQueueStatusReinit( Qos::TxQueue const& txQueue ) {
   ZUB_TRACE( nevQosTrace, 2, "handleIntfTxQueueStatusReinit " << intfId() << "( txQ:" << txQueue );
   Zub::Ptr< Qos::TxQueueStatus const > const status = intfStatus()->txQueueStatus( txQueue );
   if( !status ) return;
   Zub::Ptr< QosIntfTxQueueSm > const sm = qosIntfTxQueueSm( txQueue );
   ZUB_TRACE( nevQosTrace, 3, "txQSmExists:" << bool( sm ) );
   if( sm ) {
      sm->handleInitialized();
   } else {
      qosIntfTxQueueSmIs( txQueue, status, qosSm()->qosHwStatus(), this );
   }
}

// Shape rates are absolute; only a bandwidth guaranteed as a percent of the link follows the
// speed. The driver reads the speed itself.
void QosIntfSm::handleSpeed() {
   ZUB_TRACE( nevQosTrace, 8, "handleSpeed" );
   ZUB_ASSERT( ethPhyIntfStatus() );
   ZUB_ASSERT( qosSm()->qosHwStatus()->guaranteedBwSupported() );
   ZUB_TRACE( nevQosTrace, 8,
              " IntfId = " << intfId() << "; speed = " << ethPhyIntfStatus()->speed() );
   for( auto it = intfStatus()->txQueueStatus().iter(); it; ++it ) {
      Qos::GuaranteedBw const& guaranteedBw = it.value()->guaranteedBw();
      if( guaranteedBw.unit != Qos::guaranteedBwUnitPercent_ ) continue;
      if( guaranteedBw.rate == Qos::GuaranteedBw::invalidRate ) continue;
      qosSm()->qosHelper()->programIntfTxQueueGuaranteedBw( *intfStatus(), *it.value() );
   }
}

// The interface's defaults go first: the queues are reset on a port that no longer carries
// this configuration.
void QosIntfSm::doPrepareToDie() {
   ZUB_TRACE( nevQosTrace, 2, "QosIntfSm::doPrepareToDie " << intfId() );
   qosSm()->qosHelper()->programIntfDefaults( *intfStatus() );
   for( auto it = qosIntfTxQueueSm().iter(); it; ++it ) {
      it.value()->doPrepareToDie();
      qosIntfTxQueueSmDel( it.key() );
   }
   qosSm()->scheduleQosVerify();
}

void QosIntfSm::zubDoZombieReactors( bool zombie ) {
   if( this->zombie() == zombie ) return;
   zombieIs( zombie );
   intfStatus_.zombieIs( zombie );
   ethPhyIntfStatus_.zombieIs( zombie );
   for( auto it = qosIntfTxQueueSm().iter(); it; ++it )
      it.value()->zubDoZombieReactors( zombie );
}

}  // namespace Nev
