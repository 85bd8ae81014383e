// The recording class-based-forwarding helper: a decorator that stands between the FEC override
// machine and any such helper (by default the reference chip's rule table), forwards every
// operation to it, and records the programming calls (createOrUpdateMapping, syncMapping,
// deleteMapping) as Sim::ChipCall of helper "cbf"; the handle and verification questions are
// forwarded unrecorded. See CallRecorder.h for the record's text, the counting mode and the
// scripted answers, and RecordingQosAclHelper.h for the family.
//
// Base-class state. This helper has none that the machine writes or a chip sets: nothing is
// shared beyond the forwarded calls.
#pragma once

#include "NevQos/helpers/CbfFecMappingHelper.h"
#include "NevQos/platform/kesh/TimerWheel.h"
#include "NevQos/sim/recording/CallRecorder.h"

namespace Sim {

class RecordingCbfFecMappingHelper : public NevHelper::CbfFecMappingHelper, public CallRecorder {
 public:
   // `clock` stamps the calls; null stamps 0.
   RecordingCbfFecMappingHelper( Zub::Ptr< NevHelper::CbfFecMappingHelper > inner,
                                 Zub::Ptr< Kesh::TimerWheel > clock );
   ~RecordingCbfFecMappingHelper() override;

   NevHelper::CbfFecMappingHelper& inner() const { return *inner_; }

   // ---- The helper contract, forwarded
   bool hasBackupSupport() const override;
   NevHelper::CbfFecMappingUpdateStatus createOrUpdateMapping(
         Nev::CbfFecMapRule const& rule ) override;
   NevHelper::CbfFecMappingUpdateStatus syncMapping(
         Nev::CbfFecMapRule const& rule, Qos::Hardware::FecOverrideRuleId hwRuleId ) override;
   void deleteMapping( Qos::Glarn::OverrideKey const& ruleKey ) override;
   Qos::Hardware::FecOverrideRuleId hwFecOverrideRuleId(
         Qos::Glarn::OverrideKey const& ruleKey ) override;
   std::vector< NevHelper::CbfFecMapHwRule > hwFecOverrideRules() override;

 private:
   Zub::Ptr< NevHelper::CbfFecMappingHelper > inner_;
};

}  // namespace Sim
