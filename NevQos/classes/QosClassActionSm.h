// The class action of a class: the set of actions the configuration gives it, turned into one
// action machine per action the chip takes. Built once from a class action; a change of the
// configuration arrives as a new machine. The colour variants (QosColourClassActionSm.h) serve
// the actions of a policer.
#pragma once

#include "NevQos/classes/QosActionSm.h"
#include "zub/Assert.h"
#include "zub/Attribute.h"

namespace Nev {

class QosClassActionBaseSm : public Zub::PtrInterface {
 public:
   QosClassActionBaseSm( QosClassMapKey const& key, QosAclSm* qosAclSm, QosPolicyMapSm* pmapSm,
                         Zub::Ptr< QosClassData > const& classData,
                         Zub::Ptr< Qos::ClassAction const > const& policyClassAction );
   ~QosClassActionBaseSm() override;
   Zub::FwkType fwkType() const override { return Zub::FwkType::stateMachine; }

   QosClassMapKey const& key() const { return key_; }
   Zub::Name const& cmapName() const { return key_.cmapName(); }
   Qos::MapType cmapType() const { return key_.cmapType(); }
   QosAclSm* qosAclSm() const { return qosAclSm_; }
   QosPolicyMapSm* pmapSm() const { return pmapSm_; }
   Zub::Ptr< QosClassData > const& classData() const { return classData_; }
   Zub::Ptr< Qos::ClassAction const > const& policyClassAction() const {
      return policyClassAction_;
   }
   bool initialized() const { return initialized_; }
   ZUB_SM_CHILDREN( actionSm, Qos::ActionType, QosActionBaseSm )

   // Virtual operations, in slot order.
   virtual void deleteSm();
   virtual void handleVerify() = 0;
   virtual void doPrepareToDie();

 protected:
   void initializedIs() { initialized_ = true; }
   // Each action of `actions` has its machine, which checks itself.
   template< class Actions >
   void verifyActions( Actions const& actions );

 private:
   QosClassMapKey key_;
   QosAclSm* qosAclSm_;
   QosPolicyMapSm* pmapSm_;
   Zub::Ptr< QosClassData > classData_;
   Zub::Ptr< Qos::ClassAction const > policyClassAction_;
   bool initialized_ = false;
};

// The actions of the class itself. A control-plane class takes no action here but, when the
// operator made it, a CPU queue of its own, held until the class action goes.
class QosClassActionSm final : public QosClassActionBaseSm {
 public:
   QosClassActionSm( QosClassMapKey const& key, QosAclSm* qosAclSm, QosPolicyMapSm* pmapSm,
                     Zub::Ptr< QosClassData > const& classData,
                     Zub::Ptr< Qos::ClassAction const > const& policyClassAction );

   void createSm();
   void deleteSm() override;
   void handleVerify() override;

 private:
   void handleInitialized();
   void allocateCpuQueue();
   void selectActions();
   // On a chip that takes one action per class: set DSCP, else set COS, else set traffic class,
   // else the first of the set (a drop, a drop precedence).
   Zub::Ptr< Qos::Action > singleAction() const;
};

template< class Actions >
void QosClassActionBaseSm::verifyActions( Actions const& actions ) {
   for( auto it = actions.iter(); it; ++it ) {
      ZUB_ASSERT_TEXT( actionSmHas( it.key() ), "actionSmHas( action->actionType() )" );
      actionSm( it.key() )->handleVerify();
   }
}

}  // namespace Nev
