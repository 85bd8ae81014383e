#include "NevQos/controlplane/QosKernelStatusSm.h"

#include "NevQos/log/TraceHandles.h"
#include "NevQos/platform/nev/NevCommonSmData.h"

namespace Nev {

// The key types hold nothing beyond the sentinel's slot, so every key is inside the arrays.
using Qos::orDefault;

QosKernelStatusSm::QosKernelStatusSm( Zub::Ptr< PktDrvInterface > const& pktDrv,
                                      Zub::Ptr< Qos::Status const > const& qosStatus,
                                      Zub::Ptr< Qos::HwStatus const > const& qosHwStatus )
    : NevBaseSm( nullptr ), pktDrv_( pktDrv ) {
   // The full pass of handleQosHwInitialized() is the catch-up.
   constexpr bool catchUp = false;
   qosStatus_.is( qosStatus, this, catchUp );
   qosHwStatus_.is( qosHwStatus, this, catchUp );
}

QosKernelStatusSm::~QosKernelStatusSm() = default;

Qos::TxQueueId QosKernelStatusSm::tcToUcTxQueue( Qos::TrafficClass tc ) const {
   return orDefault( qosStatus()->tcToTxQueueMap( tc ),
                     [ & ] { return qosHwStatus()->defaultTcToTxQueueMap( tc ); } );
}

Qos::TxQueueId QosKernelStatusSm::tcToMcTxQueue( Qos::TrafficClass tc ) const {
   return orDefault( qosStatus()->tcToMcTxQueueMap( tc ),
                     [ & ] { return qosHwStatus()->defaultTcToMcTxQueueMap( tc ); } );
}

Qos::TxQueueId QosKernelStatusSm::getTcToMcTxQueue( Qos::TrafficClass tc ) const {
   return qosHwStatus()->mcTxQueueMapSupported() ? tcToMcTxQueue( tc ) : tcToUcTxQueue( tc );
}

void QosKernelStatusSm::handleInitialized() {
   handleQosHwInitialized();
}

void QosKernelStatusSm::handleQosHwInitialized() {
   if( !qosHwStatus()->hwInitialized() ) {
      ZUB_TRACE( nevQosTrace, 3, "QosHwStatus::hwInitialized is false! Returning." );
      return;
   }
   initializedIs( true );
   handleCosToTcMap();
   handleDscpToTcMap();
   handleTcToTxQMaps();
}

void QosKernelStatusSm::handleCosToTcMap( Qos::Cos cos ) {
   if( !initialized() ) return;
   ZUB_TRACE( nevQosTrace, 3,
              "handleCosToTcMap"
                    << "( Cos:" << cos << ")" );
   Qos::TrafficClass const tc = orDefault( qosStatus()->cosToTcMap( cos ), [ & ] {
      return qosHwStatus()->defaultCosToTcMap( cos );
   } );
   if( pktDrv() ) pktDrv()->cosToTcIs( cos, tc );
}

void QosKernelStatusSm::handleCosToTcMap() {
   for( unsigned cos = Qos::Cos::min; cos <= Qos::Cos::max; ++cos )
      handleCosToTcMap( cos );
}

void QosKernelStatusSm::handleDscpToTcMap( Qos::Dscp dscp ) {
   if( !initialized() ) return;
   ZUB_TRACE( nevQosTrace, 3,
              "handleDscpToTcMap"
                    << "( Dscp:" << dscp << ")" );
   Qos::TrafficClass const tc = orDefault( qosStatus()->dscpToTcMap( dscp ), [ & ] {
      return qosHwStatus()->defaultDscpToTcMap( dscp );
   } );
   if( pktDrv() ) pktDrv()->dscpToTcIs( dscp, tc );
}

void QosKernelStatusSm::handleDscpToTcMap() {
   for( unsigned dscp = Qos::Dscp::min; dscp <= Qos::Dscp::max; ++dscp )
      handleDscpToTcMap( dscp );
}

void QosKernelStatusSm::handleTcToUcTxQueueMap( Qos::TrafficClass tc ) {
   if( !initialized() ) return;
   Qos::TxQueueId const txQueue = tcToUcTxQueue( tc );
   ZUB_TRACE( nevQosTrace, 3,
              "QosKernelStatusSm::"
                    << "handleTcToUcTxQueueMap"
                    << "( Tc:" << tc << ", TxQId:" << txQueue << ")" );
   if( !pktDrv() ) return;
   pktDrv()->tcToUcTxQueueIs( tc, txQueue );
   // A chip without a multicast map of its own sends multicast by the unicast map.
   if( !qosHwStatus()->mcTxQueueMapSupported() ) pktDrv()->tcToMcTxQueueIs( tc, txQueue );
}

void QosKernelStatusSm::handleTcToMcTxQueueMap( Qos::TrafficClass tc ) {
   if( !initialized() ) return;
   Qos::TxQueueId const txQueue = getTcToMcTxQueue( tc );
   ZUB_TRACE( nevQosTrace, 3,
              "QosKernelStatusSm::"
                    << "handleTcToMcTxQueueMap"
                    << "( Tc:" << tc << ", TxQId:" << txQueue << ")" );
   if( pktDrv() ) pktDrv()->tcToMcTxQueueIs( tc, txQueue );
}

void QosKernelStatusSm::handleTcToTxQMaps() {
   if( !initialized() ) return;
   // The sentinel class gets its pass too: the driver receives it like any other.
   for( unsigned tc = Qos::TrafficClass::min; tc <= Qos::TrafficClass::invalid; ++tc ) {
      handleTcToUcTxQueueMap( tc );
      handleTcToMcTxQueueMap( tc );
   }
}

void QosKernelStatusSm::zubDoZombieReactors( bool zombie ) {
   if( this->zombie() == zombie ) return;
   NevBaseSm::zubDoZombieReactors( zombie );
   qosStatus_.zombieIs( zombie );
   qosHwStatus_.zombieIs( zombie );
}

Zub::Ptr< QosKernelStatusSm > qosKernelStatusSmFactory(
      Zub::Ptr< PktDrvInterface > const& pktDrv, Zub::Ptr< Qos::Status const > const& qosStatus,
      Zub::Ptr< Qos::HwStatus const > const& qosHwStatus ) {
   auto sm = Zub::make< QosKernelStatusSm >( pktDrv, qosStatus, qosHwStatus );
   sm->hasNotificationActiveIs( true );
   return sm;
}

}  // namespace Nev
