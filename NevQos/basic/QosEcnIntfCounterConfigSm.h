// The ECN counters of one interface: the transmit queues whose counters the user wants are
// turned on in hardware, the others off.
//
// Under the platform's DLP mode a port of this slice can be inactive, and its counters must stay
// off until it comes up; that is why the machine also watches the port's status. A port that
// this agent has no status for is not on this slice, and its counters are left alone.
#pragma once

#include <tuple>

#include "NevQos/platform/entities/CounterConfig.h"
#include "NevQos/platform/entities/EthPhyIntfStatus.h"
#include "NevQos/platform/entities/SliceHwStatus.h"
#include "NevQos/platform/zub/Attribute.h"

namespace Nev {

class QosBasicSm;

class QosEcnIntfCounterConfigSm : public Zub::PtrInterface {
 public:
   class ZubEcnIntfCounterConfig : public Qos::EcnIntfCounterConfig::Notifiee {
    public:
      explicit ZubEcnIntfCounterConfig( QosEcnIntfCounterConfigSm* sm ) : sm_( sm ) {}
      void onEcnTxQueueCounterConfig( Qos::TxQueueId const& txQueueId ) override {
         sm_->handleEcnTxQueueCounterConfig( txQueueId );
      }
      void onEcnTxQueueCounterConfigzubImmediate() override {
         sm_->handleEcnTxQueueCounterConfig();
      }

    private:
      QosEcnIntfCounterConfigSm* sm_;
   };
   class ZubEthPhyIntfStatus : public Interface::EthPhyIntfStatus::Notifiee {
    public:
      explicit ZubEthPhyIntfStatus( QosEcnIntfCounterConfigSm* sm ) : sm_( sm ) {}
      void onActive() override { sm_->handleIntfActive(); }

    private:
      QosEcnIntfCounterConfigSm* sm_;
   };

   // `ethPhyIntfStatus` is null when the port is not on this agent's slice.
   QosEcnIntfCounterConfigSm(
         Mirel::IntfId const& intfId, QosBasicSm* qosSm,
         Zub::Ptr< Qos::SliceHwStatus > const& qosSliceHwStatus,
         Zub::Ptr< Qos::EcnIntfCounterConfig const > const& ecnIntfCounterConfig,
         Zub::Ptr< Interface::EthPhyIntfStatus const > const& ethPhyIntfStatus );
   ~QosEcnIntfCounterConfigSm() override;
   Zub::FwkType fwkType() const override { return Zub::FwkType::stateMachine; }

   QosBasicSm* qosSm() const { return qosSm_; }
   Zub::Ptr< Qos::SliceHwStatus > const& qosSliceHwStatus() const { return qosSliceHwStatus_; }
   Zub::Ptr< Qos::EcnIntfCounterConfig const > const& ecnIntfCounterConfig() const {
      return ecnIntfCounterConfig_.get();
   }
   Zub::Ptr< Interface::EthPhyIntfStatus const > const& ethPhyIntfStatus() const {
      return ethPhyIntfStatus_.get();
   }
   Mirel::IntfId const& intfId() const { return intfId_; }
   ZUB_SM_FIELD( initialized, bool, false )
   auto zubCtorParams() const {
      return std::make_tuple( Zub::ctorParam( "intfId", intfId_ ),
                              Zub::ctorParam( "qosSm", qosSm_ ),
                              Zub::ctorParam( "qosSliceHwStatus", qosSliceHwStatus_ ),
                              Zub::ctorParam( "ecnIntfCounterConfig", ecnIntfCounterConfig() ),
                              Zub::ctorParam( "ethPhyIntfStatus", ethPhyIntfStatus() ) );
   }

   void handleEcnTxQueueCounterConfig( Qos::TxQueueId txQueueId );
   void handleIntfActive();
   void configureEcnTxQueueCounter( Qos::TxQueueId txQueueId, bool enable );
   // Turns off the counter of every queue of the chip, configured or not; the owner removes the
   // machine after.
   void doPrepareToDie();
   void handleInitialized();
   // Every configured queue.
   void handleEcnTxQueueCounterConfig();

   void zubDoZombieReactors( bool zombie );

 private:
   Mirel::IntfId intfId_;
   QosBasicSm* qosSm_;
   Zub::Ptr< Qos::SliceHwStatus > qosSliceHwStatus_;
   Zub::Input< Qos::EcnIntfCounterConfig const, ZubEcnIntfCounterConfig > ecnIntfCounterConfig_;
   Zub::Input< Interface::EthPhyIntfStatus const, ZubEthPhyIntfStatus > ethPhyIntfStatus_;
};

}  // namespace Nev
