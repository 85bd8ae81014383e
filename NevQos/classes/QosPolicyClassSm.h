// One class of a policy map. It decides, once, how many hardware copies the class has: with a
// policer or a PDP counter on a chip that keeps them per interface, one copy per interface (or
// LAG, shared named policer, shared map), each a machine of its own; otherwise the class itself is
// the one copy.
#pragma once

#include <cstdint>

#include "NevQos/classes/QosCountActionSm.h"
#include "NevQos/classes/QosPolicerSm.h"
#include "NevQos/classes/QosPolicyClassBaseSm.h"

namespace Nev {

class QosPolicyClassSm final : public QosPolicyClassBaseSm {
 public:
   QosPolicyClassSm( QosClassMapKey const& cmapKey, QosAclSm* qosAclSm, QosPolicyMapSm* pmapSm,
                     Zub::Ptr< Qos::ClassMapStatus const > const& cmap, unsigned cmapPrio,
                     Zub::Ptr< Qos::ClassAction const > const& caction, bool classDefault );

   ZUB_SM_CHILDREN( policerSm, Zub::Name, QosPolicerSm )
   ZUB_SM_CHILDREN( countActionSm, Zub::Name, QosCountActionSm )
   bool policerSmNeeded() const { return policerSmNeeded_; }
   bool countActionSmNeeded() const { return countActionSmNeeded_; }
   bool initialized() const { return initialized_; }

   void deleteSm() override;
   void intfUpdated( Qos::IntfPairKey const& intfPair, bool add ) override;
   void counterUpdateRequest() override;
   void showAcl( std::uint32_t socket, std::uint32_t unit, bool detail ) override;
   void handleVerify() override;

   void createSm();
   void handlePolicerIntf( Qos::IntfPairKey const& intfPair, bool add );
   void handleCountActionIntf( Qos::IntfPairKey const& intfPair, bool add );

 private:
   void handleInitialized();
   bool copies() const { return policerSmNeeded_ || countActionSmNeeded_; }
   // The name of the copy that serves an interface.
   Zub::Name copyName( Qos::IntfPairKey const& intfPair, bool policer ) const;
   void verifyCpuQueue() const;
   void createPolicerActionSms();
   void deletePolicerActionSms();

   // Made with the class when it has policer copies, which share them.
   QosPolicerActionSms policerActionSms_;
   bool policerSmNeeded_ = false;
   bool countActionSmNeeded_ = false;
   bool initialized_ = false;
};

}  // namespace Nev
