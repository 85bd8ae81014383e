// Scenarios that can't be used: each fails with the file, the line and column of the fault, and
// the problem.
#include <gtest/gtest.h>

#include <string>

#include "NevQos/sim/scenario/ScenarioLoader.h"
#include "support/ScenarioErrorOf.h"

namespace {

using NevQosTest::errorOf;

struct Case {
   std::string yaml;
   std::string error;
};

// What the scenario's top level and its chip section accept.
std::string const topKeys =
      "description, chip, interfaces, acls, classMaps, namedPolicers, policyMaps, "
      "servicePolicies, globalMaps, dscpRewriteMaps, cosToTcProfiles, interfaceQos, ecnCounters, "
      "links, kernelCopp, fecOverrides, fecService, steps, trace, kernelCoppConfig, "
      "interfacesReady, subInterfaces, routedPortSubIntfQosAclSharing, nexthopGroups, expect";

std::string const laterStep = R"(
interfaces: [ Ethernet1 ]
acls: [ { name: A } ]
classMaps: [ { name: c, match: { ipv4: A } } ]
policyMaps: [ { name: p, classes: [ { class: c } ] } ]
servicePolicies: [ { policyMap: p, interfaces: [ Ethernet1 ] } ]
chip: { faults: [ { kind: policerExhaustion } ] }
steps:
  - at: 1
    changes:
)";

std::string const traffic = R"(
interfaces: [ Ethernet1 ]
acls: [ { name: A, rules: [ { proto: tcp } ] } ]
classMaps: [ { name: c, match: { ipv4: A } } ]
policyMaps:
  - name: p
    classes: [ { class: c, police: { cir: 10, bc: 100 } }, { class: class-default } ]
servicePolicies: [ { policyMap: p, interfaces: [ Ethernet1 ] } ]
steps:
  - at: 1
    changes:
      - traffic: { policyMap: p, class: c, interface: Ethernet1, packets: 10, bytes: 1000, )";
// The same up to its step's changes.
std::string const trafficStep = traffic.substr( 0, traffic.rfind( "      - traffic" ) );

std::string const pdpChip =
      "chip: { pdpSupported: true, pdpMode: true,\n"
      "        namedPolicers: [ { name: hw, cir: 10, bc: 1000 } ] }\n"
      "acls: [ { name: A, rules: [ { proto: udp } ] } ]\n"
      "classMaps: [ { name: c, type: pdp, match: { ipv4: A } } ]\n"
      "namedPolicers: [ { name: cfg, cir: 10, bc: 1000 } ]\n";
std::string const defaultPolicy =
      "policyMaps: [ { name: default-pdp-policy, type: pdp, classes: [ { class: c, police: { "
      "named: hw } } ] } ]\n";

// Each refused text and the located message it is refused with, by what is refused.
Case const refusals[] = {
   // Text that is not one YAML mapping.
   { "chip: { tcamMode: synchronous\n", "bad.yaml:2:1: end of map flow not found" },
   { "chip:\n\t- 1\n", "bad.yaml:2:2: illegal block entry" },
   { "", "bad.yaml:1:1: the scenario is empty" },
   { "# only a comment\n", "bad.yaml:1:1: the scenario is empty" },
   { "chip: {}\n---\nchip: {}\n", "bad.yaml:3:1: one YAML document per scenario" },
   // The YAML library would start empty documents at the comma forever.
   { "{ chip: {} },\n", "bad.yaml:1:13: unexpected ','" },
   { "- chip\n", "bad.yaml:1:1: scenario: expected a mapping, found a sequence" },
   // The JSON report holds UTF-8 only: a stray byte, a truncated sequence at the end, an
   // overlong form and a surrogate are refused where they stand.
   { "chip: {}\ndescription: \"a\xec"
     "b\"\n",
     "bad.yaml:2:16: the text is not UTF-8 (byte 0xec)" },
   { "description: x\xc3", "bad.yaml:1:15: the text is not UTF-8 (byte 0xc3)" },
   { "description: \xc0\xaf\n", "bad.yaml:1:14: the text is not UTF-8 (byte 0xc0)" },
   { "description: \xed\xa0\x80\n", "bad.yaml:1:14: the text is not UTF-8 (byte 0xed)" },
   // Escapes give what the file does not hold: a surrogate, control characters (C0, DEL, C1),
   // which would break a line of the text report, in values and in keys.
   { "description: \"\\ud800\"\n", "bad.yaml:1:21: invalid unicode: 55296" },
   { "description: \"a\\x01b\"\n",
     "bad.yaml:1:14: a name or text holds a control character (U+0001 at byte 2); names and "
     "texts are printable UTF-8 on one line" },
   { "acls: [ { name: \"A\\nB\" } ]\n",
     "bad.yaml:1:17: a name or text holds a control character (U+000A at byte 2); names and "
     "texts are printable UTF-8 on one line" },
   { "description: \"\\x7f\"\n",
     "bad.yaml:1:14: a name or text holds a control character (U+007F at byte 1); names and "
     "texts are printable UTF-8 on one line" },
   { "description: \"\\u0085\"\n",
     "bad.yaml:1:14: a name or text holds a control character (U+0085 at byte 1); names and "
     "texts are printable UTF-8 on one line" },
   { "{ \"chip\\t\": {} }\n",
     "bad.yaml:1:3: a name or text holds a control character (U+0009 at byte 5); names and "
     "texts are printable UTF-8 on one line" },
   // yaml-cpp's own word for it is "bad file".
   { std::string( 3000, '[' ),
     "bad.yaml: collections are nested 500 deep or more; the YAML reader follows 499 levels at "
     "most" },

   // Unknown and repeated keys.
   { "chips: {}\n", ( "bad.yaml:1:1: scenario: unknown key 'chips' (known: " + topKeys + ")" ) },
   { "chip: { policers: 1, policers: 2 }\n", "bad.yaml:1:22: chip: key 'policers' given twice" },
   { "acls: [ { name: A, rules: [ { port: 80 } ] } ]\n",
     "bad.yaml:1:31: rule: unknown key 'port' (known: seq, action, proto, src, dst, srcPort, "
     "dstPort, ipLength, dscp, ecn, tcpFlags, established, fragments, icmpType, icmpCode, "
     "vlan)" },
   { "chip: { faults: [ { kind: outOfTcam, op: x } ] }\n",
     "bad.yaml:1:38: fault: unknown key 'op' (known: name, kind, from, until, family, "
     "atEntries)" },
   { "steps: [ { at: 1, changes: [ { bounce: Ethernet1 } ] } ]\n",
     "bad.yaml:1:32: change: unknown key 'bounce' (known: acl, removeAcl, classMap, "
     "removeClassMap, namedPolicer, removeNamedPolicer, policyMap, removePolicyMap, "
     "servicePolicy, removeServicePolicy, attach, detach, addInterfaces, "
     "removeInterfaces, requestCounters, traffic, clearErrors, fault, globalMaps, "
     "dscpRewriteMap, "
     "removeDscpRewriteMap, cosToTcProfile, removeCosToTcProfile, interfaceQos, "
     "removeInterfaceQos, ecnCounters, removeEcnCounters, link, kernelCopp, hwInitialized, "
     "fecOverride, removeFecOverride, fecService, removeFecService, corruptTcam, restart, "
     "removeCounterClient, intfUpdateCallback, servicePolicyDP1, corruptFecOverride, "
     "corruptFecService, interfacesReady, cliWaiting, reprogramAllPolicyMaps, subInterface, "
     "removeSubInterface, "
     "routedPortSubIntfQosAclSharing, nexthopGroup, removeNexthopGroup)" },
   { "steps: [ { at: 1, changes: [ { clearErrors: true, requestCounters: a } ] } ]\n",
     "bad.yaml:1:30: change: one kind of change per list item" },

   // An operation fault names an operation of a helper that fails on request; a basic QoS operation
   // fails as its feature does and takes no ACL error.
   { "chip: { faults: [ { kind: operationError, op: createAcl } ] }\n",
     "bad.yaml:1:47: op: 'createAcl' is no operation of the ACL, basic QoS or "
     "class-based-forwarding helper that a fault can fail" },
   { "chip:\n  faults:\n    - { kind: operationError, op: hwInit }\n",
     "bad.yaml:3:35: op: 'hwInit' is no operation of the ACL, basic QoS or "
     "class-based-forwarding helper that a fault can fail" },
   { "chip: { faults: [ { kind: operationError, op: programIntfTxQueueWred, error: "
     "outOfTcam } ] }\n",
     "bad.yaml:1:78: error: does not apply to basic QoS operation programIntfTxQueueWred, "
     "which fails as its feature does" },
   { "chip: { faults: [ { kind: operationError, op: programIntfTrustModeDscp, family: "
     "ipv4 } ] }\n",
     "bad.yaml:1:73: fault: unknown key 'family' (known: name, kind, from, until, op, nth, "
     "error, inCall)" },
   { "chip: { faults: [ { kind: operationError, op: programIntfTxQueueWred, inCall: true "
     "} ] }\n",
     "bad.yaml:1:79: inCall: does not apply to basic QoS operation programIntfTxQueueWred" },

   // The ACL helper's answers and the driver's inputs: each refused where it stands.
   { "chip: { unsupportedMacEtherTypes: [ 0x800, 0x10000 ] }\n",
     "bad.yaml:1:44: unsupportedMacEtherTypes: 0x10000 is out of range 0..65535" },
   { "chip: { managedPrioritySupported: qos }\n",
     "bad.yaml:1:35: managedPrioritySupported: expected a sequence, found 'qos'" },
   { "chip: { managedPrioritySupported: [ qos, cbf ] }\n",
     "bad.yaml:1:42: managedPrioritySupported: 'cbf' is not one of qos, pdp, control-plane" },
   { "chip: { aclGroups: [ Ethernet1 ] }\n",
     "bad.yaml:1:20: aclGroups: expected a mapping, found a sequence" },
   { "chip: { aclGroups: { Eth1: a } }\n",
     "bad.yaml:1:22: aclGroups: 'Eth1' is not an interface name" },
   { "chip: { aclGroups: { Ethernet1: a, Ethernet1: b } }\n",
     "bad.yaml:1:36: aclGroups: Ethernet1 is given twice" },
   { "chip: { aclGroups: { Ethernet1: \"\" } }\n",
     "bad.yaml:1:33: aclGroups: expected a name, found an empty text" },
   { "chip: { aclNames: { ipAclName: x } }\n",
     "bad.yaml:1:21: aclNames: unknown key 'ipAclName' (known: defaultAclName, "
     "defaultIpv6AclName, vlanAclName, vlanIpv6AclName, cosAclName, cosIpv6AclName, "
     "vlanCosAclName, vlanCosIpv6AclName, mplsTrafficClassAclName, "
     "mplsTrafficClassIpv6AclName, builtInClassAclName, macAclName, macIpv6AclName)" },
   { "chip: { aclNames: { cosAclName: vlan-acl } }\n",
     "bad.yaml:1:33: cosAclName: 'vlan-acl' is the base name of vlanAclName" },
   { "chip: { aclNames: { macAclName: dscpecn-acl } }\n",
     "bad.yaml:1:33: macAclName: 'dscpecn-acl' is the base name of the DSCP and ECN lists" },
   { "chip: { aclNames: { vlanAclName: \"\" } }\n",
     "bad.yaml:1:34: vlanAclName: expected a name, found an empty text" },
   { "interfacesReady: later\n",
     "bad.yaml:1:18: interfacesReady: expected true or false, found 'later'" },
   { "steps: [ { at: 1, changes: [ { cliWaiting: 1 } ] } ]\n",
     "bad.yaml:1:44: cliWaiting: expected true or false, found '1'" },
   { "steps: [ { at: 1, changes: [ { reprogramAllPolicyMaps: false } ] } ]\n",
     "bad.yaml:1:56: reprogramAllPolicyMaps: write true, or leave it out" },

   // What other agents publish: subinterfaces, the routed port's sharing, next-hop groups.
   { "routedPortSubIntfQosAclSharing: shared\n",
     "bad.yaml:1:33: routedPortSubIntfQosAclSharing: expected true or false, found "
     "'shared'" },
   { "subInterfaces: [ { interface: Ethernet1, forwardingModel: routed } ]\n",
     "bad.yaml:1:31: interface: 'Ethernet1' is not a subinterface, as in Ethernet1.100" },
   { "subInterfaces: [ { interface: Ethernet1.1, forwardingModel: routed, vlan: 1 } ]\n",
     "bad.yaml:1:69: subinterface: unknown key 'vlan' (known: interface, forwardingModel)" },
   { "subInterfaces:\n  - { interface: Ethernet1.1, forwardingModel: routed }\n"
     "  - { interface: Ethernet1.1, forwardingModel: bridged }\n",
     "bad.yaml:3:5: subInterfaces: Ethernet1.1 given twice" },
   { "nexthopGroups: [ { name: g, index: 1 }, { name: g, index: 2 } ]\n",
     "bad.yaml:1:41: nexthopGroups: g given twice" },
   { "nexthopGroups: [ { name: g } ]\n", "bad.yaml:1:18: missing key 'index'" },

   // Values of the wrong type or out of range.
   { "chip:\n  rangeCheckers: [ 1 ]\n",
     "bad.yaml:2:18: rangeCheckers: expected a whole number, found a sequence" },
   { "chip: { pdpSupported: yes }\n",
     "bad.yaml:1:23: pdpSupported: expected true or false, found 'yes'" },
   { "chip: { tcamSliceEntries: 0 }\n",
     "bad.yaml:1:27: tcamSliceEntries: 0 is out of range 1..4294967295" },
   { "chip: { policers: 1.5 }\n", "bad.yaml:1:19: policers: '1.5' is not a whole number" },
   // The chip's helper holds the six flags of a QoS rule, no more.
   { "chip:\n  supportedTcpFlags: 0x40\n",
     "bad.yaml:2:22: supportedTcpFlags: 0x40 is out of range 0..63" },
   { "chip: { tcamMode: lazy }\n",
     "bad.yaml:1:19: tcamMode: 'lazy' is not one of synchronous, asynchronous" },
   { "chip: { policeByteModeMinRateKbps: 10, policeByteModeMaxRateKbps: 5 }\n",
     "bad.yaml:1:7: chip: policeByteModeMinRateKbps is above policeByteModeMaxRateKbps" },
   { "interfaces: Ethernet1\n",
     "bad.yaml:1:13: interfaces: expected a sequence, found 'Ethernet1'" },
   { "interfaces: [ Ethernet1, Eth1 ]\n",
     "bad.yaml:1:26: interfaces: 'Eth1' is not an interface name" },
   { "classMaps: [ { name: c, match: { cos: 8 } } ]\n",
     "bad.yaml:1:39: cos: 8 is out of range 0..7" },
   { "classMaps: [ { name: c, match: { vlan: 300-200 } } ]\n",
     "bad.yaml:1:40: vlan: range 300-200 is not within 1..4094 with low <= high" },
   { "classMaps: [ { name: c, match: { dscp: fast } } ]\n",
     "bad.yaml:1:40: dscp: 'fast' is neither a number 0..63 nor a DSCP name (default, ef, "
     "cs0..cs7, af11..af43)" },
   { "classMaps: [ { name: c, cpType: static } ]\n",
     "bad.yaml:1:33: cpType: only a control-plane class map has one" },
   { "steps: [ { at: 1 }, { at: 1 } ]\n",
     "bad.yaml:1:27: at: steps come in increasing time after the start at 0.001 s; this "
     "one is not after 1" },
   { "steps: [ { at: -1 } ]\n", "bad.yaml:1:16: at: '-1' takes no sign: a time is never below 0" },
   // Times the virtual clock holds exactly as written, up to where it tells microseconds apart.
   { "steps: [ { at: -0 } ]\n", "bad.yaml:1:16: at: '-0' takes no sign: a time is never below 0" },
   { "steps: [ { at: nan } ]\n", "bad.yaml:1:16: at: 'nan' is not a number of seconds" },
   { "steps: [ { at: 1.5s } ]\n", "bad.yaml:1:16: at: '1.5s' is not a number of seconds" },
   { "steps: [ { at: 1e10 } ]\n",
     "bad.yaml:1:16: at: '1e10' is above 1e9 s, beyond which the virtual clock no longer tells "
     "microseconds apart" },
   { "steps: [ { at: 0.10000000000000001 } ]\n",
     "bad.yaml:1:16: at: '0.10000000000000001' has more digits than the virtual clock holds (it "
     "holds 0.1)" },
   { "chip: { asyncDelay: 1e-400 }\n",
     "bad.yaml:1:21: asyncDelay: '1e-400' is not a number of seconds" },
   { "fecOverrides: [ { af: mpls, dscp: ef, fec: 1, overridingFec: 2 } ]\n",
     "bad.yaml:1:23: af: 'mpls' is not one of ipv4, ipv6" },
   { "fecService: [ { fec: 1 } ]\n", "bad.yaml:1:15: missing key 'hwFecId'" },
   { "kernelCopp: [ { port: 3, queue: 4, state: boiling } ]\n",
     "bad.yaml:1:43: state: 'boiling' is not one of saturated, unsaturated, none" },
   { "steps: [ { at: 1, changes: [ { kernelCopp: { port: 3, state: none } } ] } ]\n",
     "bad.yaml:1:44: missing key 'queue'" },
   { "steps: [ { at: 0 } ]\n",
     "bad.yaml:1:16: at: steps come in increasing time after the start at 0.001 s; this "
     "one is not after 0.001" },
   { "steps: [ { at: 1, changes: [ removeCounterClient: snmp ] } ]\n",
     "bad.yaml:1:30: removeCounterClient: no counter client 'snmp' has asked for counters" },
   { "steps: [ { at: 1, changes: [ intfUpdateCallback: { interface: Ethernet1, "
     "direction: up } ] } ]\n",
     "bad.yaml:1:85: direction: 'up' is not one of input, output" },
   { "trace: NevQos/0\n", "bad.yaml:1:8: trace: expected a sequence, found 'NevQos/0'" },
   { "trace: [ NevQos/0, NevQos/x ]\n",
     "bad.yaml:1:20: trace: 'NevQos/x' is not a trace list (HANDLE/LEVELS, such as "
     "NevQos/0-3 or */0)" },

   // Rules that can't match.
   { "acls: [ { name: A, rules: [ { src: 10.0.0.0/33 } ] } ]\n",
     "bad.yaml:1:36: src: IPv4 '10.0.0.0/33' has no prefix length 0..32 after the '/'" },
   { "acls: [ { name: A, type: ipv6, rules: [ { dst: 10.0.0.0/8 } ] } ]\n",
     "bad.yaml:1:48: dst: IPv6 '10.0.0.0/8' is not an address or prefix" },
   // A prefix length is plain decimal digits; an address has no bit set past it.
   { "acls: [ { name: A, rules: [ { src: 10.0.0.0/+8 } ] } ]\n",
     "bad.yaml:1:36: src: IPv4 '10.0.0.0/+8' has no prefix length 0..32 after the '/'" },
   { "acls: [ { name: A, rules: [ { src: 10.0.0.0/ 8 } ] } ]\n",
     "bad.yaml:1:36: src: IPv4 '10.0.0.0/ 8' has no prefix length 0..32 after the '/'" },
   { "acls: [ { name: A, rules: [ { src: 0.0.0.0/-0 } ] } ]\n",
     "bad.yaml:1:36: src: IPv4 '0.0.0.0/-0' has no prefix length 0..32 after the '/'" },
   { "acls: [ { name: A, rules: [ { src: 10.1.2.3/16 } ] } ]\n",
     "bad.yaml:1:36: src: IPv4 '10.1.2.3/16' has bits set past its length: the prefix is "
     "10.1.0.0/16" },
   { "acls: [ { name: A, type: ipv6, rules: [ { dst: 2001:db8::1/32 } ] } ]\n",
     "bad.yaml:1:48: dst: IPv6 '2001:db8::1/32' has bits set past its length: the prefix is "
     "2001:db8::/32" },
   // A sign belongs to decimal numbers.
   { "globalMaps: { cosToTc: { 1: -0x0 } }\n",
     "bad.yaml:1:29: cosToTc: '-0x0': a hexadecimal number takes no sign" },
   { "acls: [ { name: A, rules: [ { dstPort: { eq: 80 } } ] } ]\n",
     "bad.yaml:1:29: rule: port conditions need proto tcp, udp or sctp" },
   { "acls: [ { name: A, rules: [ { proto: tcp, dstPort: { range: [ 90, 80 ] } } ] } ]\n",
     "bad.yaml:1:61: dstPort: a range goes from low to high" },
   { "acls: [ { name: A, rules: [ { proto: tcp, dstPort: { eq: 1, gt: 2 } } ] } ]\n",
     "bad.yaml:1:52: dstPort: give exactly one of eq, neq, gt, lt, range" },
   { "acls: [ { name: A, rules: [ { proto: udp, tcpFlags: syn } ] } ]\n",
     "bad.yaml:1:29: rule: TCP flags need proto tcp" },
   { "acls: [ { name: A, rules: [ { proto: tcp, srcPort: { gt: 1 }, fragments: true } ] } "
     "]\n",
     "bad.yaml:1:29: rule: non-first fragments carry no layer-4 header to match" },
   { "acls: [ { name: A, rules: [ { seq: 20 }, { seq: 20 } ] } ]\n",
     "bad.yaml:1:49: seq: 20 does not follow 20; sequence numbers ascend" },
   { "acls: [ { name: A, rules: [], classbench: { file: acl1_1k } } ]\n",
     "bad.yaml:1:43: give rules or classbench, not both" },
   { "acls: [ { name: A, classbench: { file: nothing_here } } ]\n",
     "bad.yaml:1:40: file: 'nothing_here' is neither beside the scenario nor in " +
           std::string( NEVQOS_CLASSBENCH_DIR ) },

   // Policers that mix modes or can't be used.
   { "namedPolicers: [ { name: p, cir: 10, cirUnit: pps, bc: 10, bcUnit: bytes } ]\n",
     "bad.yaml:1:18: policer: the committed burst must be in packets exactly when the rate "
     "is in pps" },
   { "namedPolicers: [ { name: p, cir: 0, bc: 10 } ]\n",
     "bad.yaml:1:18: policer: a policer needs a committed rate above 0" },
   { "namedPolicers: [ { name: p, bc: 10 } ]\n", "bad.yaml:1:18: missing key 'cir'" },
   { R"(
namedPolicers: [ { name: np, cir: 10, bc: 1000 } ]
classMaps: [ { name: c, type: control-plane } ]
policyMaps:
  - { name: copp, type: control-plane, classes: [ { class: c, police: { named: np } } ] }
)",
     "bad.yaml:5:5: policy map control-plane copp class c: a control-plane policy map "
     "can't use a named policer" },
   { R"(
classMaps: [ { name: c } ]
policyMaps:
  - { name: p, classes: [ { class: class-default }, { class: c } ] }
)",
     "bad.yaml:4:53: classes: class-default must be the last class" },

   // Names given twice or naming nothing.
   { "acls:\n  - { name: A }\n  - { name: A }\n",
     "bad.yaml:3:5: acls: access list ipv4 A given twice" },
   { "chip: { faults: [ { name: f, kind: policerExhaustion }, { name: f, kind: "
     "asyncPending } ] }\n",
     "bad.yaml:1:65: name: a second fault called 'f'" },
   { "classMaps: [ { name: c, match: { ipv4: NOPE } } ]\n",
     "bad.yaml:1:14: class map qos c matches access list ipv4 NOPE, which does not exist" },
   { "acls: [ { name: A, type: ipv6 } ]\nclassMaps: [ { name: c, match: { ipv4: A } } ]\n",
     "bad.yaml:2:14: class map qos c matches access list ipv4 A, which does not exist" },
   { "acls: [ { name: A, configured: false, rules: [ { proto: udp } ] } ]\n",
     "bad.yaml:1:46: an access list that is not configured has no rules" },
   { "acls: [ { name: A, configured: no } ]\n",
     "bad.yaml:1:32: configured: expected true or false, found 'no'" },
   { "policyMaps: [ { name: p, classes: [ { class: c } ] } ]\n",
     "bad.yaml:1:15: policy map qos p uses class map qos c, which does not exist" },
   { "classMaps: [ { name: c, type: pdp } ]\npolicyMaps: [ { name: p, classes: [ { class: "
     "c } ] } ]\n",
     "bad.yaml:2:15: policy map qos p uses class map qos c, which does not exist" },
   { "servicePolicies: [ { policyMap: p } ]\n",
     "bad.yaml:1:20: service policy qos input p: policy map qos p does not exist" },
   { "classMaps: [ { name: class-default } ]\n",
     "bad.yaml:1:14: class map qos class-default: the name class-default is the system's" },
   { "kernelCopp:\n  - { port: 3, queue: 4, state: none }\n  - { modId: 0, port: 3, "
     "queue: 4, state: saturated }\n",
     "bad.yaml:3:5: kernelCopp: queue 0/3/4 given twice" },
   { "policyMaps: [ { name: p } ]\nservicePolicies: [ { policyMap: p, interfaces: [ "
     "Ethernet1, Ethernet1 ] } ]\n",
     "bad.yaml:2:20: service policy qos input p names an interface twice" },
   { "policyMaps: [ { name: p } ]\nservicePolicies: [ { policyMap: p, interfaces: [ "
     "Port-Channel10@Ethernet1 ] } ]\n",
     "bad.yaml:2:50: interfaces: 'Port-Channel10@Ethernet1' is not an Ethernet port and its "
     "port-channel, as in Ethernet1@Port-Channel10" },

   // References are checked in time order: a change may only use what stands at its time.
   { ( laterStep + "      - removeAcl: A\n" ),
     "bad.yaml:11:9: access list ipv4 A is still used by class map qos c" },
   { ( laterStep + "      - acl: { name: A, configured: false }\n" ),
     "bad.yaml:11:9: access list ipv4 A is still used by class map qos c" },
   { ( laterStep + "      - removeClassMap: c\n" ),
     "bad.yaml:11:9: class map qos c is still used by policy map qos p" },
   { ( laterStep + "      - removePolicyMap: p\n" ),
     "bad.yaml:11:9: policy map qos p is still used by service policy qos input p" },
   { ( laterStep + "      - removeServicePolicy: p\n      - removePolicyMap: p\n"
                   "      - removeClassMap: c\n      - removeAcl: A\n      - removeAcl: A\n" ),
     "bad.yaml:15:9: no access list ipv4 A to remove" },
   { ( laterStep + "      - policyMap: { name: p, classes: [ { class: d } ] }\n" ),
     "bad.yaml:11:9: policy map qos p uses class map qos d, which does not exist" },
   { ( laterStep + "      - attach: { policyMap: p, interfaces: [ Ethernet1 ] }\n" ),
     "bad.yaml:11:9: Ethernet1 is already in service policy qos input p" },
   { ( laterStep + "      - detach: { policyMap: p, direction: output, interfaces: [ Ethernet1 "
                   "] }\n" ),
     "bad.yaml:11:9: no service policy qos output p" },
   { ( laterStep + "      - removeInterfaces: [ Ethernet2 ]\n" ),
     "bad.yaml:11:9: interface Ethernet2 is not present" },
   { ( laterStep + "      - traffic: { policyMap: p, class: d, interface: Ethernet1, packets: 1, "
                   "bytes: 64 }\n" ),
     "bad.yaml:11:9: traffic for class d, which policy map qos p does not have" },
   { ( laterStep + "      - fault: { index: 1, on: true }\n" ),
     "bad.yaml:11:9: fault 1 does not exist; the chip has 1" },
   { ( laterStep + "      - fault: { name: off, on: true }\n" ),
     "bad.yaml:11:24: name: the chip has no fault 'off'" },
   { ( laterStep + "      - addInterfaces: [ Ethernet1 ]\n" ),
     "bad.yaml:11:9: interface Ethernet1 is already present" },
   { ( laterStep + "      - corruptFecOverride: { af: ipv6, dscp: 46, fec: 3 }\n" ),
     "bad.yaml:11:9: corruptFecOverride: there is no FEC override ipv6/46/3 to damage" },
   { ( laterStep + "      - corruptFecService: 3\n" ),
     "bad.yaml:11:9: corruptFecService: the FEC service has no answer for FEC 3 to "
     "damage" },
   { ( laterStep + "      - removeFecService: 3\n" ),
     "bad.yaml:11:9: the FEC service has no answer for FEC 3 to take back" },
   { ( laterStep + "      - removeSubInterface: Ethernet1.5\n" ),
     "bad.yaml:11:9: no subinterface Ethernet1.5 to remove" },
   { ( laterStep + "      - removeSubInterface: Ethernet1\n" ),
     "bad.yaml:11:29: removeSubInterface: 'Ethernet1' is not a subinterface, as in "
     "Ethernet1.100" },
   { ( laterStep + "      - subInterface: { interface: Ethernet1.5, forwardingModel: vxlan }\n" ),
     "bad.yaml:11:66: forwardingModel: 'vxlan' is not one of routed, bridged, unknown" },
   { ( laterStep + "      - subInterface: { interface: Ethernet1.5 }\n" ),
     "bad.yaml:11:23: missing key 'forwardingModel'" },
   { ( laterStep + "      - removeNexthopGroup: g1\n" ),
     "bad.yaml:11:9: no next-hop group g1 to remove" },
   { ( laterStep + "      - nexthopGroup: { name: g1, index: -1 }\n" ),
     "bad.yaml:11:42: index: -1 is out of range 0..4294967295" },
   { ( laterStep + "      - corruptTcam: { acl: B }\n" ),
     "bad.yaml:11:9: corruptTcam: there is no access list B" },
   { ( laterStep + "      - restart: false\n" ),
     "bad.yaml:11:18: restart: write true, or leave it out" },
   { ( laterStep + "      - restart: { now: true }\n" ),
     "bad.yaml:11:18: restart: expected true or false, found a mapping" },
   { ( laterStep + "      - restart: true\n      - removeServicePolicy: p\n"
                   "      - restart: true\n" ),
     "bad.yaml:13:9: restart: one per step" },
   { ( laterStep + "      - corruptTcam: { acl: A, field: proto }\n" ),
     "bad.yaml:11:22: corruptTcam: give field and value together, or neither to lose the "
     "entry" },

   // Valid at step 1, broken by what step 1 removed when step 2 uses it.
   { laterStep + "      - removeServicePolicy: p\n      - removePolicyMap: p\n"
                 "  - at: 2\n    changes:\n"
                 "      - servicePolicy: { policyMap: p }\n",
     "bad.yaml:15:9: service policy qos input p: policy map qos p does not exist" },
   // The shares of a traffic change (dropped, yellow) and the entry corruptTcam adds: each refusal
   // stands where the fault is written.
   { traffic + "droppedPackets: 11 }\n",
     "bad.yaml:12:108: droppedPackets: 11 is more than the 10 packets of the traffic" },
   { traffic + "droppedBytes: 1001 }\n",
     "bad.yaml:12:106: droppedBytes: 1001 is more than the 1000 bytes of the traffic" },
   { traffic + "yellowPackets: 11 }\n",
     "bad.yaml:12:107: yellowPackets: 11 is more than the 10 packets of the traffic" },
   { traffic + "yellowBytes: 2000 }\n",
     "bad.yaml:12:105: yellowBytes: 2000 is more than the 1000 bytes of the traffic" },
   { traffic + "yellowBytes: -1 }\n", "bad.yaml:12:105: yellowBytes: '-1' is not a whole number" },
   { traffic + "droppedPackets: 2.5 }\n",
     "bad.yaml:12:108: droppedPackets: '2.5' is not a whole number" },
   { traffic + "red: 1 }\n",
     "bad.yaml:12:92: traffic: unknown key 'red' (known: policyMap, type, direction, class, "
     "interface, packets, bytes, droppedPackets, droppedBytes, yellowPackets, "
     "yellowBytes)" },
   // Only a policer drops or colours: class-default has none.
   { trafficStep + "      - traffic: { policyMap: p, class: class-default, interface: Ethernet1, "
                   "packets: 5, bytes: 500, yellowPackets: 1 }\n",
     "bad.yaml:12:9: traffic dropped or yellow in class class-default, which has no "
     "policer in policy map qos p" },
   { trafficStep + "      - corruptTcam: { acl: A, add: true, field: proto, value: \"6\" }\n",
     "bad.yaml:12:50: corruptTcam: an added entry takes its fields from fields, not field "
     "and value" },
   { trafficStep + "      - corruptTcam: { acl: A, fields: { proto: \"6\" } }\n",
     "bad.yaml:12:40: corruptTcam: fields are for an added entry (add: true)" },
   { trafficStep + "      - corruptTcam: { acl: A, add: yes please }\n",
     "bad.yaml:12:37: add: expected true or false, found 'yes please'" },
   { trafficStep + "      - corruptTcam: { acl: A, add: true, fields: [ proto ] }\n",
     "bad.yaml:12:51: fields: expected a mapping, found a sequence" },
   { trafficStep + "      - corruptTcam: { acl: A, add: true, fields: { proto: \"6\", proto: "
                   "\"17\" } }\n",
     "bad.yaml:12:65: fields: proto is given twice" },
   { trafficStep + "      - corruptTcam: { acl: B, add: true }\n",
     "bad.yaml:12:9: corruptTcam: there is no access list B" },

   // PDP mode, the chip's named policers of the default PDP policy, and the kernel's CoPP
   // configuration: each wrong value where it stands, and each configuration the engine would stop
   // on.
   { "chip: { pdpMode: 1 }\n", "bad.yaml:1:18: pdpMode: expected true or false, found '1'" },
   { "chip: { namedPolicers: { name: p } }\n",
     "bad.yaml:1:24: namedPolicers: expected a sequence, found a mapping" },
   { "chip: { namedPolicers: [ { name: p, cir: 1, bc: 1, burst: 2 } ] }\n",
     "bad.yaml:1:52: named policer: unknown key 'burst' (known: name, shared, cir, "
     "cirUnit, bc, bcUnit, pir, pirUnit, be, beUnit)" },
   { "chip: { namedPolicers: [ { name: p, cir: 1, cirUnit: pps, bc: 1, bcUnit: bytes } ] }\n",
     "bad.yaml:1:26: policer: the committed burst must be in packets exactly when the rate "
     "is in pps" },
   { "chip: { namedPolicers: [ { name: p, cir: 1, bc: 1 }, { name: p, cir: 2, bc: 1 } ] }\n",
     "bad.yaml:1:54: namedPolicers: named policer p given twice" },
   // The engine stops on a PDP service policy whose map type has no map.
   { pdpChip,
     "bad.yaml:1:38: pdpMode: the starting policyMaps need the default PDP "
     "policy's map (name: default-pdp-policy, type: pdp)" },
   // The default policy's named policers are the chip's, not the configuration's.
   { pdpChip + "policyMaps: [ { name: default-pdp-policy, type: pdp, classes: [ { class: c, "
               "police: { named: cfg } } ] } ]\n",
     "bad.yaml:6:15: policy map pdp default-pdp-policy class c uses named policer cfg, "
     "which the chip's namedPolicers do not define" },
   // So in any mode, and in a step too.
   { "chip: { pdpSupported: true }\n"
     "acls: [ { name: A, rules: [ { proto: udp } ] } ]\n"
     "classMaps: [ { name: c, type: pdp, match: { ipv4: A } } ]\n"
     "steps: [ { at: 1, changes: [ { policyMap: { name: default-pdp-policy, type: pdp, "
     "classes: [ { class: c, police: { named: hw } } ] } } ] } ]\n",
     "bad.yaml:4:30: policy map pdp default-pdp-policy class c uses named policer hw, "
     "which the chip's namedPolicers do not define" },
   { pdpChip + defaultPolicy +
           "servicePolicies: [ { policyMap: default-pdp-policy, type: pdp, interfaces: [ "
           "Ethernet1 ] } ]\n",
     "bad.yaml:7:20: service policy pdp input default-pdp-policy is the system's in PDP "
     "mode: the engine applies it to every Ethernet port" },
   { pdpChip + defaultPolicy +
           "steps: [ { at: 1, changes: [ { removePolicyMap: { name: default-pdp-policy, "
           "type: pdp } } ] } ]\n",
     "bad.yaml:7:30: policy map pdp default-pdp-policy is still used by the default PDP "
     "service policy of PDP mode" },
   { "kernelCoppConfig: [ true ]\n",
     "bad.yaml:1:19: kernelCoppConfig: expected true or false, found a sequence" },

   // Basic QoS settings.
   { "globalMaps: { cosToTc: { 8: 1 } }\n", "bad.yaml:1:26: cosToTc: 8 is out of range 0..7" },
   { "interfaceQos: [ { interface: Ethernet1, cosToTcProfile: p } ]\n",
     "bad.yaml:1:17: interface Ethernet1 names COS-to-TC profile p, which does not exist" },
   { "dscpRewriteMaps: [ { name: m } ]\n"
     "interfaceQos: [ { interface: Ethernet1, dscpRewriteMap: m } ]\n"
     "steps: [ { at: 1, changes: [ { removeDscpRewriteMap: m } ] } ]\n",
     "bad.yaml:3:30: DSCP rewrite map m is used by interface Ethernet1" },
   { "interfaceQos: [ { interface: Ethernet1, queues: [ { queue: 1, ecn: { min: 9, max: 3 } } ] } "
     "]\n",
     "bad.yaml:1:68: ecn: min is above max" },
   // Basic QoS inputs: a trust mode neither a name nor a 32-bit number, the second datapath's
   // service policies, the review's quantum.
   { "interfaces: [ Ethernet1 ]\ninterfaceQos:\n  - { interface: Ethernet1, trust: 4294967296 }\n",
     "bad.yaml:3:36: trust: 4294967296 is out of range 0..4294967295" },
   { "interfaces: [ Ethernet1 ]\ninterfaceQos:\n  - { interface: Ethernet1, trust: cost }\n",
     "bad.yaml:3:36: trust: 'cost' is not one of cos, dscp, untrusted" },
   { "steps:\n  - at: 1\n    changes:\n      - servicePolicyDP1: { policyMap: core }\n"
     "      - servicePolicyDP1: { policyMap: edge, on: false }\n",
     "bad.yaml:5:9: the second datapath does not hold service policy qos input edge to switch "
     "off" },
   { "steps: [ { at: 1, changes: [ { servicePolicyDP1: { policyMap: a, on: maybe } } ] } ]\n",
     "bad.yaml:1:70: on: expected true or false, found 'maybe'" },
   { "chip: { cbfReviewQuantum: 0 }\n",
     "bad.yaml:1:27: cbfReviewQuantum: 0 is out of range 1..4294967295" },
   { "chip: { faults: [ { kind: operationError, op: deleteMapping, error: outOfTcam } ] }\n",
     "bad.yaml:1:69: error: does not apply to class-based-forwarding operation deleteMapping, "
     "which fails as its driver does" },
   { "chip: { faults: [ { kind: operationError, op: syncMapping } ] }\n",
     "bad.yaml:1:47: op: 'syncMapping' is no operation of the ACL, basic QoS or "
     "class-based-forwarding helper that a fault can fail" },
   // Expectations that say nothing clear.
   { "expect: { call: hwInit }\n", "bad.yaml:1:9: expect: expected a sequence, found a mapping" },
   { "expect: [ { helper: acl } ]\n", "bad.yaml:1:11: expect item: give call or log, one of them" },
   { "expect: [ { call: hwInit, log: QOS_X } ]\n",
     "bad.yaml:1:11: expect item: give call or log, one of them" },
   { "expect: [ { call: hwInit, helper: chip } ]\n",
     "bad.yaml:1:35: helper: 'chip' is not one of acl, basic, cbf" },
   { "expect: [ { log: QOS_X, helper: acl } ]\n", "bad.yaml:1:33: helper: a log line has none" },
   { "expect: [ { log: QOS_X, args: { a: 1 } } ]\n",
     "bad.yaml:1:31: args: a log line has none; give text" },
   { "expect: [ { call: hwInit, args: [ a ] } ]\n",
     "bad.yaml:1:33: args: expected a mapping of argument names to texts" },
   { "expect: [ { call: hwInit, text: x } ]\n", "bad.yaml:1:33: text: a call has none; give args" },
   { "expect: [ { call: hwInit, when: 1 } ]\n",
     "bad.yaml:1:27: expect item: unknown key 'when' (known: call, log, helper, args, "
     "text, at)" },
   { "expect: [ { not: { call: hwInit }, call: x } ]\n",
     "bad.yaml:1:36: expect item: unknown key 'call' (known: not)" },
};

TEST( ScenarioErrorsTest, EachRefusalNamesItsPlaceAndProblem ) {
   for( Case const& c : refusals ) {
      SCOPED_TRACE( c.yaml );
      EXPECT_EQ( errorOf( c.yaml ), c.error );
   }
}

// Beside the refusals, what stands close to them loads.
TEST( ScenarioErrorsTest, TheTextsBesideTheRefusalsLoad ) {
   // Well-formed text of two, three and four bytes loads.
   EXPECT_EQ( Sim::loadScenarioText( "description: \"\xc3\xa9 \xe2\x82\xac \xf0\x9f\x93\xa1\"\n",
                                     "good.yaml" )
                    .description,
              "\xc3\xa9 \xe2\x82\xac \xf0\x9f\x93\xa1" );
   EXPECT_EQ( Sim::ScenarioError( "x.yaml", Sim::Where{}, "gone" ).what(),
              std::string( "x.yaml: gone" ) );
   // What the engine handles loads: the chip's policer in the default policy, and the
   // configuration's policer of the same name elsewhere unaffected by it.
   Sim::Scenario const ok = Sim::loadScenarioText(
         pdpChip + defaultPolicy +
               "steps: [ { at: 1, changes: [ { removeNamedPolicer: cfg } ] } ]\n"
               "kernelCoppConfig: true\n",
         "good.yaml" );
   EXPECT_TRUE( ok.chip.pdpMode );
   ASSERT_EQ( ok.chip.namedPolicers.size(), 1u );
   EXPECT_EQ( ok.chip.namedPolicers[ 0 ].rates.cir, 10u );
   EXPECT_TRUE( ok.kernelCoppConfig );
}

TEST( ScenarioErrorsTest, AFileThatCantBeRead ) {
   try {
      Sim::loadScenario( "/nonexistent/none.yaml" );
      ADD_FAILURE() << "no error";
   } catch( Sim::ScenarioError const& e ) {
      EXPECT_EQ( std::string( e.what() ),
                 "/nonexistent/none.yaml: cannot read: No such file or directory" );
   }
}

}  // namespace
