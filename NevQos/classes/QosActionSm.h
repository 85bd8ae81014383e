// One action of a class: copies the action's value into the class data, where the rule
// programming reads it, and marks in the class-map status what was taken. The colour variants
// (QosColourActionSm.h) do the same for a policer's conforming, exceeding and violating traffic.
// The machine is the class's: it holds nothing of one copy of the class, and applies itself to
// the class data of each copy in turn, so that the copies of a class share it, and share the
// action's record (QosClassActionData), whose value is fixed with the machine.
#pragma once

#include "NevQos/platform/entities/AclSliceHwStatus.h"
#include "NevQos/platform/entities/PolicyMapStatus.h"
#include "NevQos/platform/zub/Ptr.h"
#include "NevQos/types/QosClassData.h"
#include "NevQos/types/QosClassMapKey.h"

namespace Nev {

class QosAclSm;
class QosPolicyMapSm;
class QosClassActionBaseSm;

class QosActionBaseSm : public Zub::PtrInterface {
 public:
   QosActionBaseSm( Qos::ActionType actionType, QosClassMapKey const& cmapKey, QosAclSm* qosAclSm,
                    QosPolicyMapSm* pmapSm, QosClassActionBaseSm* classActionSm,
                    Zub::Ptr< Qos::Action const > const& policyAction );
   ~QosActionBaseSm() override;
   Zub::FwkType fwkType() const override { return Zub::FwkType::stateMachine; }

   Qos::ActionType actionType() const { return actionType_; }
   QosClassMapKey const& cmapKey() const { return cmapKey_; }
   Zub::Name const& cmapName() const { return cmapKey_.cmapName(); }
   Qos::MapType cmapType() const { return cmapKey_.cmapType(); }
   QosAclSm* qosAclSm() const { return qosAclSm_; }
   QosPolicyMapSm* pmapSm() const { return pmapSm_; }
   QosClassActionBaseSm* classActionSm() const { return classActionSm_; }
   Zub::Ptr< Qos::Action const > const& policyAction() const { return policyAction_; }
   Zub::Ptr< Qos::ClassMapHwStatus > const& cmapHwStatus() const { return cmapHwStatus_; }
   // The record each copy's class data points at.
   Zub::Ptr< QosClassActionData > const& data() const { return data_; }

   // Virtual operations, in slot order. Each takes the class data of one copy of the class.
   virtual void applyTo( QosClassData& classData ) = 0;
   virtual void handleVerify( QosClassData const& classData ) = 0;
   virtual void removeFrom( QosClassData& classData ) = 0;

   // The class's entry in the policy map's hardware status; both levels must stand.
   void setCmapHwStatus();

 private:
   Qos::ActionType actionType_;
   QosClassMapKey cmapKey_;
   QosAclSm* qosAclSm_;
   QosPolicyMapSm* pmapSm_;
   QosClassActionBaseSm* classActionSm_;
   Zub::Ptr< Qos::Action const > policyAction_;
   Zub::Ptr< Qos::ClassMapHwStatus > cmapHwStatus_;
   Zub::Ptr< QosClassActionData > data_;
};

// An action of the class itself: set COS, DSCP, traffic class or drop precedence, or drop.
class QosActionSm final : public QosActionBaseSm {
 public:
   QosActionSm( Qos::ActionType actionType, QosClassMapKey const& cmapKey, QosAclSm* qosAclSm,
                QosPolicyMapSm* pmapSm, QosClassActionBaseSm* classActionSm,
                Zub::Ptr< Qos::Action const > const& policyAction );

   void applyTo( QosClassData& classData ) override;
   void handleVerify( QosClassData const& classData ) override;
   // The status flags stay: they go with the class-map status entry.
   void removeFrom( QosClassData& classData ) override;

 private:
   // The status flag by action type; an output policy takes the value of some actions without
   // claiming them in the status.
   void recordAction();
   // The value the rule programming reads: the configured one, but none for a drop.
   static unsigned int valueOf( Qos::Action const& action );
};

}  // namespace Nev
