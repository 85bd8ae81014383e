// The QoS of one interface: trust mode, default COS and DSCP, port shape rate, the DSCP rewrite
// map and COS-to-TC profile the interface names, and one QosIntfTxQueueSm per transmit queue.
//
// The port's link status is watched only on a chip with guaranteed bandwidth, and only for its
// speed: a queue's bandwidth given in percent of the link has to be derived again when the
// speed changes. Everything else is absolute and stays as programmed.
#pragma once

#include <tuple>

#include "NevQos/basic/QosIntfTxQueueSm.h"
#include "NevQos/platform/entities/EthPhyIntfStatus.h"
#include "NevQos/platform/entities/IntfStatus.h"
#include "NevQos/platform/zub/Attribute.h"

namespace Nev {

class QosBasicSm;

class QosIntfSm : public Zub::PtrInterface {
 public:
   class ZubIntfStatus : public Qos::IntfStatus::Notifiee {
    public:
      explicit ZubIntfStatus( QosIntfSm* sm ) : sm_( sm ) {}
      void onTrustMode() override { sm_->handleIntfTrustMode(); }
      void onDefaultCos() override { sm_->handleIntfDefaultCos(); }
      void onDefaultDscp() override { sm_->handleIntfDefaultDscp(); }
      void onDscpRewriteMapName() override { sm_->handleIntfDscpRewriteMap(); }
      void onCosToTcProfileName() override { sm_->handleIntfCosToTcProfile(); }
      void onShapeRate() override { sm_->handleIntfShapeRate(); }
      void onTxQueueStatus( Qos::TxQueue const& txQueue ) override {
         sm_->handleIntfTxQueueStatus( txQueue );
      }

    private:
      QosIntfSm* sm_;
   };
   class ZubEthPhyIntfStatus : public Interface::EthPhyIntfStatus::Notifiee {
    public:
      explicit ZubEthPhyIntfStatus( QosIntfSm* sm ) : sm_( sm ) {}
      void onSpeed() override { sm_->handleSpeed(); }

    private:
      QosIntfSm* sm_;
   };

   // `ethPhyIntfStatus` may be null: then the machine never hears of the link speed.
   QosIntfSm( Mirel::IntfId const& intfId, QosBasicSm* qosSm,
              Zub::Ptr< Qos::IntfStatus const > const& intfStatus,
              Zub::Ptr< Interface::EthPhyIntfStatus const > const& ethPhyIntfStatus );
   ~QosIntfSm() override;
   Zub::FwkType fwkType() const override { return Zub::FwkType::stateMachine; }

   QosBasicSm* qosSm() const { return qosSm_; }
   Zub::Ptr< Qos::IntfStatus const > const& intfStatus() const { return intfStatus_.get(); }
   Zub::Ptr< Interface::EthPhyIntfStatus const > const& ethPhyIntfStatus() const {
      return ethPhyIntfStatus_.get();
   }
   Mirel::IntfId const& intfId() const { return intfId_; }
   ZUB_SM_CHILDREN( qosIntfTxQueueSm, Qos::TxQueue, QosIntfTxQueueSm )
   ZUB_SM_FIELD( initialized, bool, false )
   auto zubCtorParams() const {
      return std::make_tuple( Zub::ctorParam( "intfId", intfId_ ),
                              Zub::ctorParam( "qosSm", qosSm_ ),
                              Zub::ctorParam( "intfStatus", intfStatus() ),
                              Zub::ctorParam( "ethPhyIntfStatus", ethPhyIntfStatus() ) );
   }

   void handleIntfTrustMode();
   void handleIntfDefaultCos();
   void handleIntfDefaultDscp();
   void handleIntfDscpRewriteMap();
   void handleIntfCosToTcProfile();
   void handleIntfShapeRate();
   // Resets the interface and its queues in hardware; the owner removes the machine after.
   void doPrepareToDie();
   void handleIntfTxQueueStatusReinit( Qos::TxQueue const& txQueue );
   void handleIntfTxQueueStatus( Qos::TxQueue const& txQueue );
   void handleSpeed();
   // With `reinitPath` the machine is live already and everything is programmed again: the
   // platform's DLP flow brought the port up.
   void handleInitialized( bool reinitPath );
   void handleInitialized() { handleInitialized( false ); }

   void zubDoZombieReactors( bool zombie );

 private:
   Mirel::IntfId intfId_;
   QosBasicSm* qosSm_;
   Zub::Input< Qos::IntfStatus const, ZubIntfStatus > intfStatus_;
   Zub::Input< Interface::EthPhyIntfStatus const, ZubEthPhyIntfStatus > ethPhyIntfStatus_;
};

}  // namespace Nev
