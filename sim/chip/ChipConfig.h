// What a scenario says about the reference chip: its capabilities, the sizes of its finite
// resources (TCAM and ACL side, and the queue profiles and counters of basic QoS), its TCAM mode,
// and the faults to inject. Plain values, read once when the chip is built; the chip never
// changes them.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/entities/QosUnits.h"
#include "NevQos/platform/zub/Entity.h"
#include "NevQos/types/AclCreateError.h"

namespace Sim {

// How the chip answers TCAM operations.
enum class TcamMode {
   // Every operation completes inside the call.
   synchronous,
   // Each operation completes `asyncDelay` seconds later through the asynchronous result.
   asynchronous,
};

// A fault the scenario switches on.
struct FaultConfig {
   enum class Kind {
      // TCAM full once `atEntries` entries are installed in the slice of `family` (or any).
      outOfTcam,
      // The range-checker pool is empty from the start.
      outOfRangeCheckers,
      // No policer can be allocated.
      policerExhaustion,
      // The `nth` call (1 = first, 0 = every call) of operation `op` fails: an ACL operation
      // answers `error`; a basic QoS operation fails as its feature does (see
      // SimQosBasicHelper). The operations are those of ChipFaults.h.
      operationError,
      // The `nth` asynchronous operation (1 = first) never completes: the chip reports it
      // pending, and the engine times it out.
      asyncPending,
      // The `nth` asynchronous operation (1 = first) answers twice: its result comes again
      // `asyncDelay` later, when the engine waits for nothing or for another operation.
      asyncRepeated,
      // The class-based-forwarding rule table answers "not ready" to every rule.
      cbfNotReady,
   };
   Kind kind = Kind::operationError;
   std::string family;  // "ipv4", "ipv6", "mac"; empty for any
   std::uint32_t atEntries = 0;
   std::string op;
   std::uint32_t nth = 0;
   Nev::AclCreateError error = Nev::aclCreateErrorOutOfTcam;
   // operationError in the asynchronous mode: the call itself answers `error`, rather than the
   // operation's result carrying it.
   bool inCall = false;
   // The step time from which the fault holds, and to which it holds (inclusive); unset means
   // from the start and to the end. A fault switch turns it off and on again within them.
   std::optional< Zub::Seconds > from;
   std::optional< Zub::Seconds > until;
};

// Rates and bursts in the operator's units; 0 for `pir` makes a single-rate policer. Packet and
// byte modes are never mixed.
struct PolicerRates {
   std::uint64_t cir = 0;
   Qos::RateUnit cirUnit = Qos::rateUnitKbps_;
   std::uint32_t bc = 0;
   Qos::BurstUnit bcUnit = Qos::burstUnitBytes_;
   std::uint64_t pir = 0;
   Qos::RateUnit pirUnit = Qos::rateUnitKbps_;
   std::uint32_t be = 0;
   Qos::BurstUnit beUnit = Qos::burstUnitBytes_;
   bool operator==( PolicerRates const& ) const = default;
};

// A named policer of the configuration, or one the chip's driver defines itself and publishes
// in Qos::AclHwStatus (the default PDP policy takes its named policers from those).
struct NamedPolicerDef {
   std::string name;
   // One policer in hardware for all interfaces that use it.
   bool shared = false;
   PolicerRates rates;
   bool operator==( NamedPolicerDef const& ) const = default;
};

struct ChipConfig {
   TcamMode tcamMode = TcamMode::synchronous;
   Zub::Seconds asyncDelay = 0.0;
   // How long the agent lets an operation the chip left pending wait before the engine gives
   // it up.
   Zub::Seconds asyncTimeout = 10.0;

   // Entries per TCAM slice; the chip has one slice per ACL family: "ipv4", "ipv6" and "mac".
   // The VLAN, COS, DSCP/ECN and MPLS matches go to the slice of their list's family.
   std::uint32_t tcamSliceEntries = 4096;
   // L4 port range checkers shared by all slices.
   std::uint32_t rangeCheckers = 16;
   std::uint32_t policers = 1024;
   std::uint32_t counters = 1024;
   std::uint32_t cpuQueues = 32;
   // Control-plane policers the kernel's reports put on one CPU queue of one port while it is
   // saturated.
   std::uint32_t portCpuQueuePolicers = 16;
   // Class-based-forwarding override rules.
   std::uint32_t cbfRules = 64;
   // Classes a QoS policy map may have, class-default included.
   std::uint32_t maxClassesPerPolicyMap = 256;

   // Basic QoS: profiles that transmit queues share when their settings are equal, and ECN
   // counters. A queue that needs a new profile when none is free keeps what it had, and the
   // feature fails.
   // ECN profiles: a queue's marking thresholds, its non-ECT threshold and its delay threshold.
   std::uint32_t ecnProfiles = 16;
   // WRED profiles: a queue's drop thresholds and probability.
   std::uint32_t wredProfiles = 16;
   // Tail-drop profiles: a queue's thresholds by drop precedence.
   std::uint32_t dropThresholdProfiles = 8;
   // Counters of ECN-marked packets, one per counting queue.
   std::uint32_t ecnQueueCounters = 64;

   // Basic QoS capabilities the chip publishes in Qos::HwStatus. Traffic classes and queues
   // number 0 up to 16; the chip's default maps are fixed (COS n and EXP n to traffic class n,
   // DSCP d to d / 8, traffic class t to COS and EXP t (7 above 7), to DSCP 8 t (56 above 7) and
   // to queue t).
   // Whether the chip's driver has finished its start-up when the switch starts; until then
   // nothing is mirrored to the kernel's packet driver. A step may set it later.
   bool hwInitialized = true;
   std::uint32_t numTcSupported = 8;
   std::uint32_t numTxQueueSupported = 8;
   std::uint32_t numMulticastQueueSupported = 0;
   bool mcTxQueueMapSupported = false;
   bool dscpRewriteSupported = true;
   bool dscpToDpMapSupported = false;
   bool dscpRewritePerInterfaceSupported = false;
   bool cosToTcPerInterfaceSupported = false;
   bool ecnSupported = true;
   bool ecnQueueCounterSupported = false;
   bool ecnDelaySupported = false;
   bool nonEctThdSupported = false;
   bool wredSupported = true;
   bool dropPrecedenceThresholdSupported = false;
   bool guaranteedBwSupported = true;
   // Shaping and guaranteed bandwidth limits.
   std::uint32_t minPortShapeRate = 8;
   std::uint32_t minTxQueueShapeRate = 8;
   std::uint32_t maxShapeRateKbps = 400000000;
   std::uint32_t maxShapeRatePps = 100000000;
   std::uint32_t minGuaranteedBwKbps = 8;
   std::uint32_t maxGuaranteedBwKbps = 400000000;
   std::uint32_t minGuaranteedBwPps = 1;
   std::uint32_t maxGuaranteedBwPps = 100000000;

   // Capabilities the chip publishes to the engine.
   bool policyQosSupported = true;
   bool pdpSupported = false;
   bool coppSupported = false;
   bool coppDynamicClassSupported = false;
   bool intfCoppSupported = false;
   bool perClassPolicerSupported = false;
   bool sharedQosAclTypesCounterSupported = false;
   bool vlanClassMatchSupported = true;
   bool cosClassMatchSupported = true;
   bool dscpEcnClassMatchSupported = true;
   bool multipleActionsSupported = true;
   bool errorOnPolicerExhaustion = false;
   // Whether the engine compiles a policy map as soon as it is made (true), or only while it
   // has interfaces (false).
   bool createSmForPMap = true;
   // A switch-wide setting the agent publishes beside the chip: the chip is a fabric slice, whose
   // basic QoS serves the fabric interface only.
   bool isFabricSlice = false;
   bool macAclRuleSupportedPlatform = false;
   bool qosEcnSupport = true;
   bool establishedSupported = false;
   std::uint16_t supportedTcpFlags = 0x3f;
   std::uint16_t policyClassMaxPrio = 0xffff;
   // A switch-wide setting the agent publishes beside the chip (NevCommonSmData): ports of the
   // slice come and go under the platform's DLP flow, which reprograms a port that becomes
   // active, and ECN counters stay off on an inactive port.
   bool dlpEnabled = false;
   // Keys the review task of class-based forwarding takes before it yields to other work: the
   // task scheduler's work quantum.
   std::uint32_t cbfReviewQuantum = 100;

   // Police limits: byte mode in kbps and bytes, packet mode in pps and packets.
   std::uint32_t policeByteModeMinRateKbps = 8;
   std::uint32_t policeByteModeMaxRateKbps = 400000000;
   std::uint32_t policeByteModeMinBurstBytes = 1000;
   std::uint32_t policeByteModeMaxBurstBytes = 128000000;
   std::uint32_t policePacketModeMinRatePps = 1;
   std::uint32_t policePacketModeMaxRatePps = 100000000;
   std::uint32_t policePacketModeMinBurstPackets = 1;
   std::uint32_t policePacketModeMaxBurstPackets = 1000000;

   // The helper's answers that no status carries.
   // Ether types of MAC rules the chip can't match: isSupportedMacAclRule answers false.
   std::set< std::uint16_t > unsupportedMacEtherTypes;
   // Map types for which managedPrioritySupported answers true: the engine keeps each map's
   // interfaces in its state.
   std::set< Qos::MapType > managedPriorityMapTypes;
   // The chip flags every map it commits for a recompile on each interface change.
   bool doVersionUpdate = false;
   // The ACL group of an interface (as "Ethernet4@Port-Channel10" for a member), for every
   // service policy; an interface left out is in the default group.
   std::map< std::string, std::string > aclGroups;
   // A VLAN interface waits for the interface list to be complete.
   bool delaySviPmapSmCreation = false;
   // The chip writes each policy map's programming status itself; published in AclHwStatus.
   bool selfReportedPrgmStatus = false;
   // New base names of generated ACLs, by the helper attribute's name (aclBaseNames).
   std::map< std::string, std::string > aclNames;

   std::vector< FaultConfig > faults;

   // The hardware epoch's PDP mode: the engine puts every Ethernet port under the default PDP
   // policy at start-up. Fixed for the life of the agent.
   bool pdpMode = false;
   // The named policers the driver publishes for the default PDP policy.
   std::vector< NamedPolicerDef > namedPolicers;
};

// The base names of generated ACLs a chip may rename, by the helper's attribute, with their
// defaults; and the two it can't.
struct AclBaseName {
   std::string_view attribute;
   std::string_view defaultName;
};
inline constexpr AclBaseName aclBaseNames[] = {
   { "defaultAclName", "acl-default" },
   { "defaultIpv6AclName", "acl-default-ipv6" },
   { "vlanAclName", "vlan-acl" },
   { "vlanIpv6AclName", "vlan-acl-ipv6" },
   { "cosAclName", "cos-acl" },
   { "cosIpv6AclName", "cos-acl-ipv6" },
   { "vlanCosAclName", "vlan-cos-acl" },
   { "vlanCosIpv6AclName", "vlan-cos-acl-ipv6" },
   { "mplsTrafficClassAclName", "mpls-traffic-class-acl" },
   { "mplsTrafficClassIpv6AclName", "mpls-traffic-class-acl-ipv6" },
   { "builtInClassAclName", "built-in-class-acl" },
   { "macAclName", "mac-acl" },
   { "macIpv6AclName", "mac-acl-ipv6" },
};
inline constexpr std::string_view fixedAclBaseNames[] = { "dscpecn-acl", "dscpecn-acl-ipv6" };

}  // namespace Sim
