// What a chip driver implements so that class-based-forwarding overrides reach its hardware:
// install or update a rule, bind one that a restart left in hardware, remove one, and name the
// handle of an installed one. A bare interface: the default bodies stop the process, except on
// an agent without hardware (NEV_NOOP_AGENT), where programming counts as failed.
//
// What the machine expects of a driver:
// - createOrUpdateMapping is idempotent for an unchanged rule: it comes again whenever a FEC of
//   the key changes and on every retry;
// - cbfMapUpdateNotReady for a state that passes by itself (retried soon), cbfMapUpdateFailed
//   only for lack of room (retried slowly, and logged);
// - after cbfMapUpdateSuccess, hwFecOverrideRuleId( key ) gives the rule's handle;
// - deleteMapping comes only for a key whose status says programmed.
// For verification a driver lists the rules its hardware holds (hwFecOverrideRules).
#pragma once

#include <cstdint>
#include <vector>

#include "NevQos/platform/entities/FecOverride.h"
#include "NevQos/platform/nev/NevBaseHelper.h"
#include "NevQos/types/CbfFecMap.h"
#include "NevQos/types/CbfFecMappingUpdateStatus.h"

namespace NevHelper {

// One rule as the hardware holds it.
struct CbfFecMapHwRule {
   Qos::Glarn::OverrideKey key;
   Qos::Hardware::FecOverrideRuleId hwRuleId = Qos::Hardware::invalidFecOverrideRuleId;
   std::uint64_t hwFecId = 0;
   std::uint64_t overridingHwFecId = 0;
};

class CbfFecMappingHelper : public Nev::NevBaseHelper {
 public:
   explicit CbfFecMappingHelper( Zub::Name const& name ) : Nev::NevBaseHelper( name ) {}
   // No backup of the rules is kept.
   virtual bool hasBackupSupport() const { return false; }

   virtual CbfFecMappingUpdateStatus createOrUpdateMapping( Nev::CbfFecMapRule const& rule );
   // Binds a rule to a handle that already exists in hardware; the machine never calls it.
   virtual CbfFecMappingUpdateStatus syncMapping( Nev::CbfFecMapRule const& rule,
                                                  Qos::Hardware::FecOverrideRuleId hwRuleId );
   virtual void deleteMapping( Qos::Glarn::OverrideKey const& ruleKey );
   virtual Qos::Hardware::FecOverrideRuleId hwFecOverrideRuleId(
         Qos::Glarn::OverrideKey const& ruleKey );
   // Every rule the hardware holds, read from the hardware, for verification; none on an agent
   // without hardware.
   virtual std::vector< CbfFecMapHwRule > hwFecOverrideRules();

 private:
   // Stops the process, unless the agent runs without hardware.
   void unimplemented() const;
};

}  // namespace NevHelper
