// The class action of a class: the set of actions the configuration gives it, turned into one
// action machine per action the chip takes. Built once from a class action; a change of the
// configuration arrives as a new machine. The colour variants (QosColourClassActionSm.h) serve
// the actions of a policer. The machines are the class's and hold nothing of one copy of it:
// each copy's class data is given to them, so that all the copies of a class share them.
#pragma once

#include "NevQos/classes/QosActionSm.h"
#include "NevQos/platform/zub/Assert.h"
#include "NevQos/platform/zub/Attribute.h"

namespace Nev {

class QosClassActionBaseSm : public Zub::PtrInterface {
 public:
   QosClassActionBaseSm( QosClassMapKey const& key, QosAclSm* qosAclSm, QosPolicyMapSm* pmapSm,
                         Zub::Ptr< Qos::ClassAction const > const& policyClassAction );
   ~QosClassActionBaseSm() override;
   Zub::FwkType fwkType() const override { return Zub::FwkType::stateMachine; }

   QosClassMapKey const& key() const { return key_; }
   Zub::Name const& cmapName() const { return key_.cmapName(); }
   Qos::MapType cmapType() const { return key_.cmapType(); }
   QosAclSm* qosAclSm() const { return qosAclSm_; }
   QosPolicyMapSm* pmapSm() const { return pmapSm_; }
   Zub::Ptr< Qos::ClassAction const > const& policyClassAction() const {
      return policyClassAction_;
   }
   ZUB_SM_CHILDREN( actionSm, Qos::ActionType, QosActionBaseSm )

   // Virtual operations, in slot order. Each but the last takes the class data of one copy.
   virtual void applyTo( QosClassData& classData ) = 0;
   virtual void handleVerify( QosClassData const& classData ) = 0;
   // The actions leave the copy's class data, by action type.
   virtual void removeFrom( QosClassData& classData );
   // The action machines go, with the class.
   virtual void doPrepareToDie();

 protected:
   // The machine of an action, made when the first copy takes it, and applied to `classData`.
   template< class ActionSm >
   void actionApplyTo( Zub::Ptr< Qos::Action const > const& action, QosClassData& classData );
   // Each action of `actions` has its machine, which checks itself on `classData`.
   template< class Actions >
   void verifyActions( Actions const& actions, QosClassData const& classData );

 private:
   QosClassMapKey key_;
   QosAclSm* qosAclSm_;
   QosPolicyMapSm* pmapSm_;
   Zub::Ptr< Qos::ClassAction const > policyClassAction_;
};

// The actions of the class itself. A control-plane class takes no action here but, when the
// operator made it, a CPU queue of its own, held until the class action goes.
class QosClassActionSm final : public QosClassActionBaseSm {
 public:
   QosClassActionSm( QosClassMapKey const& key, QosAclSm* qosAclSm, QosPolicyMapSm* pmapSm,
                     Zub::Ptr< Qos::ClassAction const > const& policyClassAction );

   void applyTo( QosClassData& classData ) override;
   void handleVerify( QosClassData const& classData ) override;
   void removeFrom( QosClassData& classData ) override;

 private:
   void allocateCpuQueue( QosClassData& classData );
   void selectActions( QosClassData& classData );
   // On a chip that takes one action per class: set DSCP, else set COS, else set traffic class,
   // else the first of the set (a drop, a drop precedence).
   Zub::Ptr< Qos::Action > singleAction() const;
};

template< class ActionSm >
void QosClassActionBaseSm::actionApplyTo( Zub::Ptr< Qos::Action const > const& action,
                                          QosClassData& classData ) {
   auto sm = actionSm( action->actionType() );
   if( !sm ) {
      sm = actionSmIsOf< ActionSm >( action->actionType(), key(), qosAclSm(), pmapSm(), this,
                                     action );
   }
   sm->applyTo( classData );
}

template< class Actions >
void QosClassActionBaseSm::verifyActions( Actions const& actions, QosClassData const& classData ) {
   for( auto it = actions.iter(); it; ++it ) {
      ZUB_ASSERT_TEXT( actionSmHas( it.key() ), "actionSmHas( action->actionType() )" );
      actionSm( it.key() )->handleVerify( classData );
   }
}

}  // namespace Nev
