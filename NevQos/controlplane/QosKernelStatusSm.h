// Mirrors four global maps into the kernel's packet driver: COS to traffic class, DSCP to
// traffic class, and traffic class to unicast and to multicast transmit queue. A slot that is
// not configured carries the chip's default. Nothing goes to the driver until the chip's driver
// says the hardware is initialised; the full pass at that moment catches up with every change
// made before it.
#pragma once

#include "NevQos/platform/entities/HwStatus.h"
#include "NevQos/platform/entities/QosStatus.h"
#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/nev/NevBaseSm.h"
#include "NevQos/platform/nev/PktDrvInterface.h"
#include "NevQos/platform/zub/Attribute.h"

namespace Nev {

class QosKernelStatusSm : public NevBaseSm {
 public:
   class ZubQosStatus : public Qos::Status::Notifiee {
    public:
      explicit ZubQosStatus( QosKernelStatusSm* sm ) : sm_( sm ) {}
      void onCosToTcMap( Qos::Cos const& cos ) override {
         if( !zombie() ) sm_->handleCosToTcMap( cos );
      }
      void onDscpToTcMap( Qos::Dscp const& dscp ) override {
         if( !zombie() ) sm_->handleDscpToTcMap( dscp );
      }
      void onTcToTxQueueMap( Qos::TrafficClass const& tc ) override {
         if( !zombie() ) sm_->handleTcToUcTxQueueMap( tc );
      }
      void onTcToMcTxQueueMap( Qos::TrafficClass const& tc ) override {
         if( !zombie() ) sm_->handleTcToMcTxQueueMap( tc );
      }

    private:
      QosKernelStatusSm* sm_;
   };
   class ZubQosHwStatus : public Qos::HwStatus::Notifiee {
    public:
      explicit ZubQosHwStatus( QosKernelStatusSm* sm ) : sm_( sm ) {}
      void onHwInitialized() override {
         if( !zombie() ) sm_->handleQosHwInitialized();
      }

    private:
      QosKernelStatusSm* sm_;
   };

   QosKernelStatusSm( Zub::Ptr< PktDrvInterface > const& pktDrv,
                      Zub::Ptr< Qos::Status const > const& qosStatus,
                      Zub::Ptr< Qos::HwStatus const > const& qosHwStatus );
   ~QosKernelStatusSm() override;

   Zub::Ptr< PktDrvInterface > const& pktDrv() const { return pktDrv_; }
   Zub::Ptr< Qos::Status const > const& qosStatus() const { return qosStatus_.get(); }
   Zub::Ptr< Qos::HwStatus const > const& qosHwStatus() const { return qosHwStatus_.get(); }

   // The queue of a traffic class, the configured one or the chip's default.
   Qos::TxQueueId tcToUcTxQueue( Qos::TrafficClass tc ) const;
   Qos::TxQueueId tcToMcTxQueue( Qos::TrafficClass tc ) const;
   // The multicast queue the driver gets: on a chip without a multicast map of its own,
   // multicast follows the unicast map.
   Qos::TxQueueId getTcToMcTxQueue( Qos::TrafficClass tc ) const;

   void handleInitialized() override;
   void handleQosHwInitialized();
   void handleCosToTcMap( Qos::Cos cos );
   void handleCosToTcMap();
   void handleDscpToTcMap( Qos::Dscp dscp );
   void handleDscpToTcMap();
   void handleTcToUcTxQueueMap( Qos::TrafficClass tc );
   void handleTcToMcTxQueueMap( Qos::TrafficClass tc );
   void handleTcToTxQMaps();
   void zubDoZombieReactors( bool zombie ) override;

 private:
   Zub::Ptr< PktDrvInterface > pktDrv_;
   Zub::Input< Qos::Status const, ZubQosStatus > qosStatus_;
   Zub::Input< Qos::HwStatus const, ZubQosHwStatus > qosHwStatus_;
};

// The agent's entry point: builds the machine with notification on. It starts on the next turn
// of the event loop.
Zub::Ptr< QosKernelStatusSm > qosKernelStatusSmFactory(
      Zub::Ptr< PktDrvInterface > const& pktDrv, Zub::Ptr< Qos::Status const > const& qosStatus,
      Zub::Ptr< Qos::HwStatus const > const& qosHwStatus );

}  // namespace Nev
