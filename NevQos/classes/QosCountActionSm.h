// One hardware copy of a counting class in a PDP policy map, on a chip that keeps counters
// outside the class: per interface, or per shared policy map. It has no class action.
#pragma once

#include "NevQos/classes/QosPolicyClassBaseSm.h"

namespace Nev {

class QosCountActionSm final : public QosPolicyClassBaseSm {
 public:
   // `config` is the class's.
   QosCountActionSm( Zub::Name const& name, Zub::Ptr< QosClassConfig const > const& config,
                     Qos::IntfPairKey const& intfPair );

   Qos::IntfPairKey const& intfPair() const { return intfPair_; }
   Zub::Name const& name() const { return name_; }
   bool initialized() const { return initialized_; }

   void deleteSm() override;
   void counterUpdateRequest() override;
   void handleVerify() override;

   void createSm();
   void handleIntf( Qos::IntfPairKey const& intfId, bool add );

 private:
   void handleInitialized();

   Qos::IntfPairKey intfPair_;
   Zub::Name name_;
   // Whether the chip was asked for the counter, which it always gives: only then is it given
   // back.
   bool counterCreated_ = false;
   bool initialized_ = false;
};

}  // namespace Nev
