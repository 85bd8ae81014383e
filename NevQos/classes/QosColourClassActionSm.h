// The actions of a policer by colour: the conforming (green), exceeding (yellow) and violating
// (red) sets of a class action's policer, one action machine per member.
#pragma once

#include "NevQos/classes/QosClassActionSm.h"
#include "NevQos/classes/QosColourActionSm.h"

namespace Nev {

class QosColourClassActionSm : public QosClassActionBaseSm {
 public:
   QosColourClassActionSm( PolicerColour colour, QosClassMapKey const& key, QosAclSm* qosAclSm,
                           QosPolicyMapSm* pmapSm,
                           Zub::Ptr< Qos::ClassAction const > const& policyClassAction );

   PolicerColour colour() const { return colour_; }

   void applyTo( QosClassData& classData ) override;
   void handleVerify( QosClassData const& classData ) override;

 private:
   // The policer's actions of one colour: yellow and red need the policer, green takes the class's
   // own set.
   void applyYellowOrRed( QosClassData& classData );
   // The policer actions belong in QoS and PDP maps, and in control-plane maps of chips that
   // police per interface.
   void assertPolicerMapType() const;

   PolicerColour colour_;
};

class QosGreenClassActionSm final : public QosColourClassActionSm {
 public:
   QosGreenClassActionSm( QosClassMapKey const& key, QosAclSm* qosAclSm, QosPolicyMapSm* pmapSm,
                          Zub::Ptr< Qos::ClassAction const > const& policyClassAction );
};

class QosYellowClassActionSm final : public QosColourClassActionSm {
 public:
   QosYellowClassActionSm( QosClassMapKey const& key, QosAclSm* qosAclSm, QosPolicyMapSm* pmapSm,
                           Zub::Ptr< Qos::ClassAction const > const& policyClassAction );
};

class QosRedClassActionSm final : public QosColourClassActionSm {
 public:
   QosRedClassActionSm( QosClassMapKey const& key, QosAclSm* qosAclSm, QosPolicyMapSm* pmapSm,
                        Zub::Ptr< Qos::ClassAction const > const& policyClassAction );
};

}  // namespace Nev
