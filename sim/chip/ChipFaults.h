// The faults a scenario sets on the chip, held once for all of the chip's helpers: whether each
// holds now (its time window, and its switch), and how often each operation has been called, which
// an operationError's `nth` counts. The counts and switches belong to the scenario: they carry on
// when the driver starts again.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "NevQos/platform/kesh/TimerWheel.h"
#include "NevQos/sim/chip/ChipConfig.h"

namespace Sim {

// The operations of the ACL helper that an operationError fault can fail.
inline constexpr std::array< std::string_view, 10 > aclFaultOperations{
   "precreateAcl",      "createIpAclSubrule", "createIpFragRule",
   "createDefaultRule", "createL2ParamsRule", "createMplsTrafficClassRule",
   "createDscpEcnRule", "createMacAclRule",   "createBuiltInClassMatchRule",
   "commitAcl",
};

// The programming operations of the basic QoS helper that an operationError fault can fail.
inline constexpr std::array< std::string_view, 38 > basicFaultOperations{
   "programCosToTcMap",
   "programDscpToTcMap",
   "programDscpToDpMap",
   "programExpToTcMap",
   "programTcToCosMap",
   "programTcToDscpMap",
   "programTcToExpMap",
   "programCosRewriteEnabled",
   "programDscpRewriteEnabled",
   "programTcToUcTxQueueMap",
   "programTcToMcTxQueueMap",
   "programGlobalEcn",
   "programIntfTrustModeCos",
   "programIntfTrustModeDscp",
   "programIntfTrustModeUntrusted",
   "programIntfDefaultCos",
   "programIntfDefaultDscp",
   "programIntfShapeRate",
   "programIntfDefaults",
   "programIntfTxQueuePriority",
   "programIntfTxQueueShapeRate",
   "programIntfTxQueueGuaranteedBw",
   "programIntfTxQueueEcn",
   "programIntfTxQueueNonEct",
   "programIntfTxQueueEcnDelayThreshold",
   "programIntfTxQueueEcnCount",
   "programIntfTxQueueWred",
   "programIntfTxQueueDropThresholdForDp",
   "programIntfTxQueueDropThresholdDefaults",
   "programIntfTxQueueDefaults",
   "programDscpMap",
   "deleteDscpMap",
   "programIntfToDscpRewriteMap",
   "updateTcToDscpMapping",
   "addCosToTcProfile",
   "removeCosToTcProfile",
   "handleIntfToCosToTcProfile",
   "updateCosToTcProfileMapping",
};

// The operations of the class-based-forwarding rule table that an operationError fault can fail.
inline constexpr std::array< std::string_view, 3 > cbfFaultOperations{
   "createOrUpdateMapping",
   "deleteMapping",
   "hwFecOverrideRuleId",
};

bool isAclFaultOperation( std::string_view op );
bool isBasicFaultOperation( std::string_view op );
bool isCbfFaultOperation( std::string_view op );

class ChipFaults {
 public:
   // Without a clock every step time is 0.
   ChipFaults( std::vector< FaultConfig > faults, Zub::Ptr< Kesh::TimerWheel > clock );

   std::vector< FaultConfig > const& faults() const { return faults_; }
   // Switches fault `index` off or on; it still holds only in its time window.
   void switchIs( std::size_t index, bool on );
   // Whether fault `index` holds now.
   bool holds( std::size_t index ) const;
   // Whether a fault of `kind` holds now.
   bool on( FaultConfig::Kind kind ) const;
   // Counts this call of `op`, and returns the operationError fault that fails it, or null.
   FaultConfig const* failingCall( std::string const& op );

 private:
   std::vector< FaultConfig > faults_;
   Zub::Ptr< Kesh::TimerWheel > clock_;
   std::vector< bool > switchedOff_;
   std::map< std::string, std::uint32_t > calls_;
};

}  // namespace Sim
