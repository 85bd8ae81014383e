// One hardware copy of a class with a policer, on a chip that keeps policers outside the class:
// per interface, per LAG, per shared named policer or per shared policy map. It lives from the
// first interface that names it to the last one that leaves it, builds its policer data with
// the parameters clamped to the chip, applies the class's action machines to its class data (the
// class action, the policer's yellow and red actions), and asks the chip for the policer.
#pragma once

#include "NevQos/classes/QosColourClassActionSm.h"
#include "NevQos/classes/QosPolicyClassBaseSm.h"

namespace Nev {

// The machines of a class's actions, which each of its policer copies applies to its own class
// data: the class action, and the yellow and red actions of the policer.
struct QosPolicerActionSms {
   Zub::Ptr< QosClassActionSm > classActionSm;
   Zub::Ptr< QosYellowClassActionSm > yellowClassActionSm;
   Zub::Ptr< QosRedClassActionSm > redClassActionSm;
};

class QosPolicerSm final : public QosPolicyClassBaseSm {
 public:
   // `config` and `actionSms` are the class's.
   QosPolicerSm( Zub::Name const& name, Zub::Ptr< QosClassConfig const > const& config,
                 Qos::IntfPairKey const& intfPair, QosPolicerActionSms const* actionSms );

   Qos::IntfPairKey const& intfPair() const { return intfPair_; }
   Zub::Name const& name() const { return name_; }
   // The status of the named policer the class uses, by map type; null for an unnamed one.
   Zub::Ptr< Qos::NamedPolicerStatus const > namedPolicerStatus() const;
   bool initialized() const { return ownFlag( initializedFlag ); }

   void deleteSm() override;
   void counterUpdateRequest() override;
   void handleVerify() override;
   QosClassActionSm* appliedClassActionSm() const override;

   void createSm();
   void handleIntf( Qos::IntfPairKey const& intfId, bool add );

 private:
   void handleInitialized();
   // Interfaces other than the first one reach the matches only for a copy that is shared.
   bool shared() const;
   void createAndAttachPolicer();
   void applyActions();
   void removeActions();
   void verifyPolicerParameters() const;
   void verifyCpuQueue() const;
   // The sum of the copy's counters: its matches, or the chip's CPU-queue policer.
   QosClassCounterData policerCounters() const;

   Qos::IntfPairKey intfPair_;
   Zub::Name name_;
   // The class's, which outlives its copies.
   QosPolicerActionSms const* actionSms_;
   // The copy's two marks sit in the object's flag word: there is a copy per class and interface.
   static constexpr std::uint32_t initializedFlag = 1u;
   static constexpr std::uint32_t actionsAppliedFlag = 2u;
   bool actionsApplied() const { return ownFlag( actionsAppliedFlag ); }
};

}  // namespace Nev
