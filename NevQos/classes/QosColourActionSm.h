// The actions of a policer, by the colour of the traffic they act on: green (conforming) goes to
// the class's own action data, yellow (exceeding) and red (violating) to the policer data. Each
// marks its action in the policer's status entry of the class.
#pragma once

#include "NevQos/classes/QosActionSm.h"

namespace Nev {

enum class PolicerColour { green, yellow, red };

class QosColourActionSm : public QosActionBaseSm {
 public:
   QosColourActionSm( PolicerColour colour, Qos::ActionType actionType,
                      QosClassMapKey const& cmapKey, QosAclSm* qosAclSm, QosPolicyMapSm* pmapSm,
                      Zub::Ptr< QosClassData > const& classData,
                      QosClassActionBaseSm* classActionSm,
                      Zub::Ptr< Qos::Action const > const& policyAction );

   PolicerColour colour() const { return colour_; }
   // The policer's entry in the class-map status, null before the action took.
   Zub::Ptr< Qos::PolicerHwStatus > const& policerHwStatus() const { return policerHwStatus_; }

   void handleVerify() override;
   void doPrepareToDie() override;

 protected:
   void handleInitialized();

 private:
   // Where the colour's action data lives: the class data for green, the policer data else.
   Zub::Ptr< QosClassActionData > actionData() const;
   void actionDataIs();
   void actionDataDel();
   void actionStatusIs();
   void actionStatusDel();
   bool actionStatusHas() const;
   void findPolicerHwStatus();

   PolicerColour colour_;
   Zub::Ptr< Qos::PolicerHwStatus > policerHwStatus_;
};

class QosGreenActionSm final : public QosColourActionSm {
 public:
   QosGreenActionSm( Qos::ActionType actionType, QosClassMapKey const& cmapKey, QosAclSm* qosAclSm,
                     QosPolicyMapSm* pmapSm, Zub::Ptr< QosClassData > const& classData,
                     QosClassActionBaseSm* classActionSm,
                     Zub::Ptr< Qos::Action const > const& policyAction );
};

class QosYellowActionSm final : public QosColourActionSm {
 public:
   QosYellowActionSm( Qos::ActionType actionType, QosClassMapKey const& cmapKey, QosAclSm* qosAclSm,
                      QosPolicyMapSm* pmapSm, Zub::Ptr< QosClassData > const& classData,
                      QosClassActionBaseSm* classActionSm,
                      Zub::Ptr< Qos::Action const > const& policyAction );
};

class QosRedActionSm final : public QosColourActionSm {
 public:
   QosRedActionSm( Qos::ActionType actionType, QosClassMapKey const& cmapKey, QosAclSm* qosAclSm,
                   QosPolicyMapSm* pmapSm, Zub::Ptr< QosClassData > const& classData,
                   QosClassActionBaseSm* classActionSm,
                   Zub::Ptr< Qos::Action const > const& policyAction );
};

}  // namespace Nev
