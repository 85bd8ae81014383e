// A scenario for the simulated switch: the chip, the configuration the switch starts with, and a
// timed list of steps that change it. Plain values: ScenarioLoader reads them from a YAML file
// (docs/scenario.md), ConfigModel checks that each change makes sense where it stands, and
// ConfigPublisher writes the configuration into the engine's input entities.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "NevQos/platform/entities/AclRuleConfig.h"
#include "NevQos/platform/entities/ClassMapStatus.h"
#include "NevQos/platform/entities/FecOverride.h"
#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/entities/SubIntfStatus.h"
#include "NevQos/platform/mirel/IntfId.h"
#include "NevQos/platform/nev/KernelCoPPStatus.h"
#include "NevQos/platform/nev/ModIdPortQueueKey.h"
#include "NevQos/platform/zub/Entity.h"
#include "NevQos/sim/chip/ChipConfig.h"
#include "NevQos/sim/scenario/BasicQosDefs.h"

namespace Sim {

// Where something was written in the scenario file, 1-based; line 0 when it was not read from a
// file (a scenario built in code).
struct Where {
   int line = 0;
   int column = 0;
};

// ---- Access lists

enum class AclFamily { ipv4, ipv6, mac };

template< class Rule >
struct SequencedRule {
   std::uint32_t sequence = 0;
   Rule rule;
   bool operator==( SequencedRule const& ) const = default;
};

// One access list; only the rules of its family are used. Rules are kept in ascending sequence
// order.
struct AclDef {
   AclFamily family = AclFamily::ipv4;
   std::string name;
   std::vector< SequencedRule< Acl::IpRuleConfig > > ipv4Rules;
   std::vector< SequencedRule< Acl::Ip6RuleConfig > > ipv6Rules;
   std::vector< SequencedRule< Acl::MacRuleConfig > > macRules;
   // False for a name that class maps may use before the list is configured: nothing is written.
   bool configured = true;
   bool operator==( AclDef const& ) const = default;
};

// ---- Class maps

// Numbers from low to high, both included.
struct Span {
   unsigned low = 0;
   unsigned high = 0;
   bool operator==( Span const& ) const = default;
};

// One match of a class map. Which fields count depends on the option.
struct MatchDef {
   Qos::ClassMapMatchOption option = Qos::matchOptionNone;
   // matchOptionIpAcl, matchOptionIpv6Acl, matchOptionMac: the access list's name.
   std::string acl;
   // matchOptionVlan, matchOptionVlanCos: one value and mask taken as they stand, or ranges.
   bool vlanMasked = false;
   std::uint16_t vlan = 0;
   std::uint16_t vlanMask = 0;
   std::vector< Span > vlans;
   // matchOptionCos, matchOptionVlanCos.
   std::vector< Span > coses;
   // matchOptionDscpEcn: one DSCP (64 for none) or ranges, and the ECN condition.
   unsigned dscp = 64;
   bool dscpByName = false;
   std::vector< Span > dscps;
   Acl::Ecn ecn = Acl::ecnDontCare;
   // matchOptionMplsTrafficClass.
   std::vector< Span > trafficClasses;
   // matchOptionBuiltIn.
   std::string builtIn;
   bool operator==( MatchDef const& ) const = default;
};

struct ClassMapDef {
   Qos::MapType type = Qos::mapQos_;
   std::string name;
   // At most one match per option.
   std::vector< MatchDef > matches;
   // Control-plane class maps: a static one comes with the system, a dynamic one is the
   // operator's.
   Qos::ClassMapCpType cpType = Qos::cmapCpDynamic_;
   bool operator==( ClassMapDef const& ) const = default;
};

// The name of the class that takes what no other class of a policy map matched.
inline constexpr char const* classDefaultName = "class-default";

// ---- Policers and policy maps

// What a class, or a policer's yellow or red colour, does: the action and its value (0 for
// drop).
using Actions = std::map< Qos::ActionType, unsigned >;

// The policer of a class: a named policer, whose rates it takes, or rates of its own.
struct PoliceDef {
   std::string named;
   PolicerRates rates;
   Actions yellow;
   Actions red;
   bool operator==( PoliceDef const& ) const = default;
};

struct ClassDef {
   std::string classMap;
   Actions actions;
   std::optional< PoliceDef > police;
   bool count = false;
   bool operator==( ClassDef const& ) const = default;
};

struct PolicyMapDef {
   Qos::MapType type = Qos::mapQos_;
   std::string name;
   // One policer and counter for all interfaces of the map.
   bool shared = false;
   // In priority order, the first the highest.
   std::vector< ClassDef > classes;
   // Its classMap is classDefaultName.
   std::optional< ClassDef > classDefault;
   bool operator==( PolicyMapDef const& ) const = default;
};

// ---- Service policies

// A policy map applied in a direction to interfaces; a LAG member is the pair of the Ethernet
// interface and its port-channel.
struct ServicePolicyDef {
   Qos::ServicePolicyKey key;
   std::vector< Qos::IntfPairKey > interfaces;
   bool operator==( ServicePolicyDef const& ) const = default;
};

// ---- Changes

struct AclRemoval {
   AclFamily family = AclFamily::ipv4;
   std::string name;
};
struct ClassMapRemoval {
   Qos::MapType type = Qos::mapQos_;
   std::string name;
};
struct NamedPolicerRemoval {
   std::string name;
};
struct PolicyMapRemoval {
   Qos::MapType type = Qos::mapQos_;
   std::string name;
};
struct ServicePolicyRemoval {
   Qos::ServicePolicyKey key;
};
// Interfaces joining (attach) or leaving a service policy.
struct Attachment {
   Qos::ServicePolicyKey key;
   std::vector< Qos::IntfPairKey > interfaces;
   bool attach = true;
};
// Interfaces appearing in, or vanishing from, the switch's list of interfaces.
struct InterfacePresence {
   std::vector< Mirel::IntfId > interfaces;
   bool present = true;
};
// A counter client asks for fresh policy-map counters.
struct CounterRequest {
   std::string client;
};
// Packets that reach one class of a policy map on one interface; for the chip's counters. Of
// them, those the class's policer dropped and those it marked yellow (a packet may be both, where
// the yellow action drops).
struct TrafficInjection {
   Qos::ServicePolicyKey servicePolicy;
   std::string classMap;
   Qos::IntfPairKey intf;
   std::uint64_t packets = 0;
   std::uint64_t bytes = 0;
   std::uint64_t droppedPackets = 0;
   std::uint64_t droppedBytes = 0;
   std::uint64_t yellowPackets = 0;
   std::uint64_t yellowBytes = 0;
};
// A counter client goes: its entry leaves the counter directory.
struct CounterClientRemoval {
   std::string client;
};
// The chip's driver tells the engine that an interface's policy maps are to be programmed anew
// in one direction (the helper's intfUpdateCallback).
struct IntfUpdateCallback {
   Qos::IntfPairKey intf;
   Qos::Direction direction = Qos::directionInput_;
};
// The operator clears the hardware error status.
struct ClearRequest {};
// One of the chip's faults switched on or off; for the chip.
struct FaultSwitch {
   std::size_t fault = 0;
   bool on = true;
};

// The chip's TCAM damaged behind the engine's back, as a fault of the hardware would: entry
// (rule, subrule) of every installed ACL named `acl` gets `field` = `value`, or is lost when no
// field is named; with `add`, an entry of those numbers and `fields` appears where there was
// none.
struct TcamCorruption {
   std::string acl;
   std::uint32_t rule = 0;
   std::uint32_t subrule = 0;
   std::string field;
   std::string value;
   bool add = false;
   std::vector< std::pair< std::string, std::string > > fields;
};

// What the kernel reports of one CPU queue of one port: saturated, no longer saturated, or
// nothing (its entry goes).
struct KernelCoppReport {
   Nev::ModIdPortQueueKey key;
   Nev::KernelCoppQueueState state = Nev::kernelCoppQueueNoReport;
   bool operator==( KernelCoppReport const& ) const = default;
};
// The chip's driver says whether it has finished its start-up.
struct HwInitialization {
   bool initialized = true;
};

// Whether the interface list is complete (intfsReady), as the interfaces' agent says.
struct InterfacesReadiness {
   bool ready = true;
};
// A subinterface as the interface agent publishes it: how it forwards. A removal takes it away.
struct SubIntfDef {
   Mirel::IntfId intf;
   Interface::ForwardingModel forwardingModel = Interface::forwardingModelUnknown;
   bool operator==( SubIntfDef const& ) const = default;
};
struct SubIntfRemoval {
   Mirel::IntfId intf;
};
// A next-hop group's hardware index, as the routing agent publishes it; a removal takes it away.
struct NexthopGroupDef {
   std::string name;
   std::uint32_t index = 0;
   bool operator==( NexthopGroupDef const& ) const = default;
};
struct NexthopGroupRemoval {
   std::string name;
};
// Whether a routed port's subinterfaces share its QoS ACLs (routedPortSubIntfQosAclSharing).
struct SubIntfAclSharing {
   bool shared = false;
};
// Inputs a chip's driver writes on the ACL helper: the operator's command line waits for the
// hardware to catch up (cliWaiting), and a request to program every policy map anew
// (reprogramAllPMapsRequestTime, stamped with the step's time).
struct CliWaiting {
   bool waiting = false;
};
struct PolicyMapsReprogramRequest {};

// Class-based forwarding: an override the routing side wants (traffic of the key's address
// family and DSCP that would use the key's FEC uses `overridingFec` instead), and the FEC
// service's answer for one FEC, its hardware id.
struct FecOverrideDef {
   Qos::Glarn::OverrideKey key;
   Glarn::Fib::FecId overridingFec = 0;
};
struct FecOverrideRemoval {
   Qos::Glarn::OverrideKey key;
};
struct FecServiceDef {
   Glarn::Fib::FecId fec = 0;
   std::uint64_t hwFecId = 0;
};
struct FecServiceRemoval {
   Glarn::Fib::FecId fec = 0;
};

// The switch's agent restarts: its engines stop without touching the chip, and new ones start
// over the same entities and chip. The changes of the step written after it are made while the
// engines are down.
struct AgentRestart {};

// The chip's second datapath holds a service policy, or no longer does, as the agent that
// programs it publishes (servicePolicyDP1Status); the engine tells the basic QoS driver.
struct Dp1Policy {
   Qos::ServicePolicyKey key;
   bool on = true;
};

// A record of a shared table of class-based forwarding damaged, as a torn write would leave it:
// the routing side's record of an override, or (`service`) the FEC service's answer for `fec`.
// The engine's next read of it detects the damage.
struct FecTableDamage {
   bool service = false;
   Qos::Glarn::OverrideKey key;
   Glarn::Fib::FecId fec = 0;
};

// A definition adds what it names or replaces it; a removal removes it.
using ChangeValue = std::variant<
      AclDef, AclRemoval, ClassMapDef, ClassMapRemoval, NamedPolicerDef, NamedPolicerRemoval,
      PolicyMapDef, PolicyMapRemoval, ServicePolicyDef, ServicePolicyRemoval, Attachment,
      InterfacePresence, CounterRequest, TrafficInjection, ClearRequest, FaultSwitch, GlobalMapsDef,
      DscpRewriteMapDef, DscpRewriteMapRemoval, CosToTcProfileDef, CosToTcProfileRemoval,
      IntfQosDef, IntfQosRemoval, EcnCountersDef, EcnCountersRemoval, LinkDef, KernelCoppReport,
      HwInitialization, FecOverrideDef, FecOverrideRemoval, FecServiceDef, FecServiceRemoval,
      TcamCorruption, AgentRestart, Dp1Policy, FecTableDamage, CounterClientRemoval,
      IntfUpdateCallback, InterfacesReadiness, CliWaiting, PolicyMapsReprogramRequest, SubIntfDef,
      SubIntfRemoval, SubIntfAclSharing, NexthopGroupDef, NexthopGroupRemoval >;

struct Change {
   Where where;
   ChangeValue value;
   // The key it was written under ("acl", "attach", ...); empty for a change built in code.
   std::string kind = {};
};

// The virtual time at which the switch starts; the engine reads a time of 0 as unset.
inline constexpr Zub::Seconds switchStartTime = 0.001;

// The changes of one moment, in the order written. Times are seconds, after switchStartTime
// and increasing from step to step.
struct Step {
   Zub::Seconds time = 0.0;
   Where where;
   std::vector< Change > changes;
};

// One item of the scenario's expectations: a helper call or a log line that must come, in the
// order of the list, or, `absent`, one that must not come between its neighbours' matches.
struct ExpectItem {
   Where where;
   bool absent = false;
   bool isCall = true;
   // The operation or the log handle.
   std::string name;
   // A call: its helper ("acl", "basic", "cbf"; empty for any) and the arguments it must have,
   // by name, as their text in the report. A log line: text it must contain.
   std::string helper;
   std::vector< std::pair< std::string, std::string > > args;
   std::string text;
   // The virtual time the event must have, when given.
   std::optional< double > at;
};

struct Scenario {
   // The file as the loader was given it, for messages.
   std::string file;
   std::string description;
   ChipConfig chip;
   // The name of each of chip.faults, empty for an unnamed one.
   std::vector< std::string > faultNames;
   // The configuration the switch starts with, as the changes that build it: interfaces,
   // access lists, class maps, named policers, policy maps, service policies.
   std::vector< Change > initial;
   std::vector< Step > steps;
   // Trace lists (HANDLE/LEVELS) whose lines the report keeps, beside those of --trace.
   std::vector< std::string > traces;
   // Whether the kernel's CoPP configuration (Nev::KernelCoPPConfig) exists when the agent
   // starts; with it the engine asks the chip for its default CPU-queue rates at start-up.
   bool kernelCoppConfig = false;
   // What must come, in order, among the helper calls and log lines (the runner checks it).
   std::vector< ExpectItem > expect;
};

}  // namespace Sim
