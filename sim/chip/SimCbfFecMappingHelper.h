// The reference chip's class-based-forwarding rule table: a finite number of rule slots, each
// rule keyed by its override and holding the two hardware FEC ids; its handle is the slot. It
// answers "not ready" while a cbfNotReady fault holds, and "failed" when no slot is free. Like
// every table of the reference chip it comes up empty when the driver starts (rulesDelAll).
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "NevQos/helpers/CbfFecMappingHelper.h"
#include "NevQos/sim/chip/ChipConfig.h"
#include "NevQos/sim/chip/ChipFaults.h"
#include "NevQos/sim/chip/SimQosAclHelper.h"

namespace Sim {

struct CbfRule {
   Qos::Hardware::FecOverrideRuleId id = 0;
   std::uint64_t hwFecId = 0;
   std::uint64_t overridingHwFecId = 0;
};

class SimCbfFecMappingHelper : public NevHelper::CbfFecMappingHelper {
 public:
   using NotReady = std::function< bool() >;
   // `notReady` tells whether the table is not ready now.
   SimCbfFecMappingHelper( std::uint32_t slots, NotReady notReady );

   std::uint32_t slots() const { return slots_; }
   std::map< Qos::Glarn::OverrideKey, CbfRule > const& rules() const { return rules_; }
   // The driver's start-up: the table comes up empty. The engine has no start-up call for this
   // helper, so the simulated switch makes it where it starts the driver.
   void rulesDelAll() { rules_.clear(); }
   // A rule the table holds without the engine having asked: one an earlier life of the agent
   // left, or one a fault of the hardware changed.
   void ruleIs( Qos::Glarn::OverrideKey const& key, CbfRule const& rule ) { rules_[ key ] = rule; }
   void ruleDel( Qos::Glarn::OverrideKey const& key ) { rules_.erase( key ); }
   // The chip's faults, shared with its other helpers; an operationError fails an operation
   // (cbfFaultOperations) as a driver in trouble would: createOrUpdateMapping answers "failed"
   // and programs nothing, deleteMapping leaves the rule, hwFecOverrideRuleId answers no rule.
   void faultsIs( std::shared_ptr< ChipFaults > faults ) { faults_ = std::move( faults ); }

   NevHelper::CbfFecMappingUpdateStatus createOrUpdateMapping(
         Nev::CbfFecMapRule const& rule ) override;
   NevHelper::CbfFecMappingUpdateStatus syncMapping(
         Nev::CbfFecMapRule const& rule, Qos::Hardware::FecOverrideRuleId hwRuleId ) override;
   void deleteMapping( Qos::Glarn::OverrideKey const& ruleKey ) override;
   Qos::Hardware::FecOverrideRuleId hwFecOverrideRuleId(
         Qos::Glarn::OverrideKey const& ruleKey ) override;
   std::vector< NevHelper::CbfFecMapHwRule > hwFecOverrideRules() override;

 private:
   // The lowest free slot, or none.
   bool freeSlot( Qos::Hardware::FecOverrideRuleId& id ) const;
   // Whether an operationError fault fails this call of `op`; counts the call.
   bool faulted( std::string const& op );

   std::uint32_t slots_;
   NotReady notReady_;
   std::map< Qos::Glarn::OverrideKey, CbfRule > rules_;
   std::shared_ptr< ChipFaults > faults_;
};

}  // namespace Sim
