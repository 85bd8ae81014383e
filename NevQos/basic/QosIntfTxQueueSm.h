// The QoS of one transmit queue of an interface: scheduling priority, shape rate, guaranteed
// bandwidth, ECN, non-ECT handling, the ECN delay threshold, WRED and the drop threshold of each
// drop precedence.
//
// The ECN, WRED and threshold settings live in profiles that the chip shares between queues, so
// programming them can fail for want of a free profile. Such a failure is filed in the slice's
// hardware status under its feature and never stops the machine: the next change of the same
// setting tries again.
#pragma once

#include <tuple>

#include "NevQos/platform/entities/HwStatus.h"
#include "NevQos/platform/entities/IntfStatus.h"
#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/zub/Attribute.h"

namespace Nev {

class QosIntfSm;

class QosIntfTxQueueSm : public Zub::PtrInterface {
 public:
   // Capabilities are asked at start-up only: a change reaches the driver on every chip.
   class ZubTxQueueStatus : public Qos::TxQueueStatus::Notifiee {
    public:
      explicit ZubTxQueueStatus( QosIntfTxQueueSm* sm ) : sm_( sm ) {}
      void onPriority() override { sm_->handleIntfTxQueuePriority(); }
      void onShapeRate() override { sm_->handleIntfTxQueueShapeRate(); }
      void onGuaranteedBw() override { sm_->handleIntfTxQueueGuaranteedBw(); }
      void onEcnStatus() override { sm_->handleEcnStatus(); }
      void onNonEctStatus() override { sm_->handleNonEctStatus(); }
      // A new threshold takes effect when the switch is written, not on its own.
      void onDelayEcnEnabled() override { sm_->handleEcnDelayThreshold(); }
      void onWredStatus() override { sm_->handleWredStatus(); }
      void onDropThresholds( Qos::DropPrecedence const& dp ) override {
         sm_->handleDropThreshold( dp );
      }

    private:
      QosIntfTxQueueSm* sm_;
   };

   QosIntfTxQueueSm( Qos::TxQueue const& txQueue,
                     Zub::Ptr< Qos::TxQueueStatus const > const& txQueueStatus,
                     Zub::Ptr< Qos::HwStatus const > const& hwStatus, QosIntfSm* qosIntfSm );
   ~QosIntfTxQueueSm() override;
   Zub::FwkType fwkType() const override { return Zub::FwkType::stateMachine; }

   Zub::Ptr< Qos::TxQueueStatus const > const& txQueueStatus() const {
      return txQueueStatus_.get();
   }
   Zub::Ptr< Qos::HwStatus const > const& hwStatus() const { return hwStatus_; }
   QosIntfSm* qosIntfSm() const { return qosIntfSm_; }
   Qos::TxQueue const& txQueue() const { return txQueue_; }
   ZUB_SM_FIELD( initialized, bool, false )
   auto zubCtorParams() const {
      return std::make_tuple( Zub::ctorParam( "txQueue", txQueue_ ),
                              Zub::ctorParam( "txQueueStatus", txQueueStatus() ),
                              Zub::ctorParam( "hwStatus", hwStatus_ ),
                              Zub::ctorParam( "qosIntfSm", qosIntfSm_ ) );
   }

   void handleIntfTxQueuePriority();
   void handleIntfTxQueueShapeRate();
   void handleIntfTxQueueGuaranteedBw();
   void handleEcnStatus();
   void handleNonEctStatus();
   void handleEcnDelayThreshold();
   void handleWredStatus();
   void handleDropThreshold( Qos::DropPrecedence dp );
   // Resets the queue in hardware; the owner removes the machine after.
   void doPrepareToDie();
   // Programs the whole queue; runs again on a live machine when its interface is reprogrammed.
   void handleInitialized();

   void zubDoZombieReactors( bool zombie );

 private:
   Qos::TxQueue txQueue_;
   Zub::Input< Qos::TxQueueStatus const, ZubTxQueueStatus > txQueueStatus_;
   Zub::Ptr< Qos::HwStatus const > hwStatus_;
   QosIntfSm* qosIntfSm_;
};

}  // namespace Nev
