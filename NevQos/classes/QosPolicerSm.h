// One hardware copy of a class with a policer, on a chip that keeps policers outside the class:
// per interface, per LAG, per shared named policer or per shared policy map. It lives from the
// first interface that names it to the last one that leaves it.
#pragma once

#include "NevQos/classes/QosPolicyClassBaseSm.h"

namespace Nev {

class QosPolicerSm final : public QosPolicyClassBaseSm {
 public:
   QosPolicerSm( Zub::Name const& name, QosClassMapKey const& cmapKey, QosAclSm* qosAclSm,
                 QosPolicyMapSm* pmapSm, Zub::Ptr< Qos::ClassMapStatus const > const& cmap,
                 unsigned cmapPrio, Zub::Ptr< Qos::ClassAction const > const& caction,
                 bool classDefault, Qos::IntfPairKey const& intfPair );

   Qos::IntfPairKey const& intfPair() const { return intfPair_; }
   Zub::Name const& name() const { return name_; }
   bool initialized() const { return initialized_; }

   void deleteSm() override;
   void counterUpdateRequest() override;

   void createSm();
   void handleIntf( Qos::IntfPairKey const& intfId, bool add );

 private:
   void handleInitialized();
   // Interfaces other than the first one reach the matches only for a copy that is shared.
   bool shared() const;

   Qos::IntfPairKey intfPair_;
   Zub::Name name_;
   bool initialized_ = false;
};

}  // namespace Nev
