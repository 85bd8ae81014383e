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
                      QosClassActionBaseSm* classActionSm,
                      Zub::Ptr< Qos::Action const > const& policyAction );

   PolicerColour colour() const { return colour_; }
   // The entry of a copy's policer in the class-map status; null before the action took.
   Zub::Ptr< Qos::PolicerHwStatus > policerHwStatus( QosClassData const& classData ) const;

   void applyTo( QosClassData& classData ) override;
   void handleVerify( QosClassData const& classData ) override;
   void removeFrom( QosClassData& classData ) override;

 private:
   // Conforming traffic has an action of its own only under a policer.
   bool takes() const;
   // Where the colour's action data lives: the class data for green, the policer data else.
   Zub::Ptr< QosClassActionData > actionData( QosClassData const& classData ) const;
   void actionDataIs( QosClassData& classData );
   void actionDataDel( QosClassData& classData );
   void actionStatusDel( QosClassData const& classData );
   bool actionStatusHas( QosClassData const& classData ) const;

   PolicerColour colour_;
};

class QosGreenActionSm final : public QosColourActionSm {
 public:
   QosGreenActionSm( Qos::ActionType actionType, QosClassMapKey const& cmapKey, QosAclSm* qosAclSm,
                     QosPolicyMapSm* pmapSm, QosClassActionBaseSm* classActionSm,
                     Zub::Ptr< Qos::Action const > const& policyAction );
};

class QosYellowActionSm final : public QosColourActionSm {
 public:
   QosYellowActionSm( Qos::ActionType actionType, QosClassMapKey const& cmapKey, QosAclSm* qosAclSm,
                      QosPolicyMapSm* pmapSm, QosClassActionBaseSm* classActionSm,
                      Zub::Ptr< Qos::Action const > const& policyAction );
};

class QosRedActionSm final : public QosColourActionSm {
 public:
   QosRedActionSm( Qos::ActionType actionType, QosClassMapKey const& cmapKey, QosAclSm* qosAclSm,
                   QosPolicyMapSm* pmapSm, QosClassActionBaseSm* classActionSm,
                   Zub::Ptr< Qos::Action const > const& policyAction );
};

}  // namespace Nev
