#include "NevQos/log/QosLogHandles.h"

namespace Nev {

// No handle sets a minimum interval between emissions or keys the rate limit on arguments.
// clang-format off
Zub::LogHandle QOS_SCH_SHP_UNIT_MISMATCH(
   "QOS_SCH_SHP_UNIT_MISMATCH", Zub::LogSeverity::error,
   "Shape rate is in %s and Bandwidth guaranteed is in %s causing unit mismatch for queue "
   "%s on port %s. Not programming %s ",
   "Both Shape rate and Bandwidth guaranteed have to be in same units to be programmed "
   "properly in hardware.",
   "Reconfigure shape rate units or bandwidth guaranteed units",
   0.0, 1.0, 0 );

Zub::LogHandle QOS_HW_RESOURCE_FULL(
   "QOS_HW_RESOURCE_FULL", Zub::LogSeverity::error,
   "TCAM resources are insufficient to program %s for port %s",
   "The switch is unable to program QoS configuration due to insufficient TCAM resources.",
   "Reconfigure other features that use TCAMs to free up some resources for QoS.",
   0.0, 1.0, 0 );

Zub::LogHandle QOS_HW_RESOURCE_NORMAL(
   "QOS_HW_RESOURCE_NORMAL", Zub::LogSeverity::error,
   "%s is programmed in TCAM for all ports",
   "The switch was able to program entire QoS configuration in the TCAM.",
   Zub::NoActionRequired,
   0.0, 1.0, 0 );

Zub::LogHandle QOS_ECN_QUEUE_HW_FULL(
   "QOS_ECN_QUEUE_HW_FULL", Zub::LogSeverity::error,
   "Hardware resources insufficient to program tx-queue ECN on queue %s for port %s",
   "The switch is unable to program ECN configuration due to insufficient hardware "
   "resources.",
   Zub::NoActionRequired,
   0.0, 1.0, 0 );

Zub::LogHandle QOS_ECN_QUEUE_COUNTER_HW_FULL(
   "QOS_ECN_QUEUE_COUNTER_HW_FULL", Zub::LogSeverity::error,
   "Hardware resources insufficient for ECN queue counters for %s queue %d",
   "The switch is unable to allocate ECN queue counters due to insufficient hardware "
   "resources.",
   Zub::NoActionRequired,
   0.0, 1.0, 0 );

Zub::LogHandle QOS_WRED_QUEUE_HW_FULL(
   "QOS_WRED_QUEUE_HW_FULL", Zub::LogSeverity::error,
   "Hardware resources insufficient to program tx-queue WRED on queue %s for port %s",
   "The switch is unable to program WRED configuration due to insufficient hardware "
   "resources.",
   Zub::NoActionRequired,
   0.0, 1.0, 0 );

Zub::LogHandle QOS_DP_THRESHOLDS_HW_FULL(
   "QOS_DP_THRESHOLDS_HW_FULL", Zub::LogSeverity::error,
   "Hardware resources insufficient to program tx-queue DropThresholds on tc %s for port "
   "%s",
   "The switch is unable to program tail drop threshold configuration due to insufficient "
   "hardware resources.",
   Zub::NoActionRequired,
   0.0, 1.0, 0 );

Zub::LogHandle QOS_COPP_HW_RESOURCE_FULL(
   "QOS_COPP_HW_RESOURCE_FULL", Zub::LogSeverity::error,
   "Insufficient %s resources to program the %s.",
   "The switch is unable to program QoS CoPP configuration due to insufficient TCAM "
   "resources.",
   "Reduce number of ACL rules in policy map classes or reconfigure your ACLs to free "
   "some resources for CoPP",
   0.0, 1.0, 0 );

Zub::LogHandle QOS_COPP_HW_RESOURCE_NORMAL(
   "QOS_COPP_HW_RESOURCE_NORMAL", Zub::LogSeverity::error,
   "%s is programmed in %s.",
   "The switch was able to program entire CoPP configuration in the TCAM.",
   Zub::NoActionRequired,
   0.0, 1.0, 0 );

Zub::LogHandle QOS_POLICY_HW_RESOURCE_FULL(
   "QOS_POLICY_HW_RESOURCE_FULL", Zub::LogSeverity::error,
   "Insufficient hardware resources to program the %s policy-map %s.",
   "The switch is unable to program QoS policy-map configuration due to insufficient "
   "hardware resources.",
   "Reduce number of ACL rules in policy-map classes or reconfigure your ACLs to free "
   "some resources for policy-mapIf there is a policer in one of the classes, detaching "
   "policy-map from one of the interfaces also frees up resourcs",
   0.0, 1.0, 0 );

Zub::LogHandle QOS_POLICY_HW_RESOURCE_NORMAL(
   "QOS_POLICY_HW_RESOURCE_NORMAL", Zub::LogSeverity::error,
   "Programmed %s policy-map %s in hardware.",
   "The switch was able to program entire policy-map configuration in the hardware.",
   Zub::NoActionRequired,
   0.0, 1.0, 0 );

Zub::LogHandle QOS_POLICY_COUNTER_HW_RESOURCE_FULL(
   "QOS_POLICY_COUNTER_HW_RESOURCE_FULL", Zub::LogSeverity::error,
   "Insufficient hardware resources to program the counter for the class-map %s in the "
   "policy-map %s on %s %s.",
   "The switch is unable to program the QoS policy-map counter due to insufficient "
   "hardware resources.",
   "Reduce number of ACL rules in policy-map classes",
   0.0, 1.0, 0 );

Zub::LogHandle PDP_POLICY_HW_RESOURCE_FULL(
   "PDP_POLICY_HW_RESOURCE_FULL", Zub::LogSeverity::error,
   "Insufficient hardware resources to program the %s policy-map %s.",
   "The switch is unable to program PDP policy-map configuration due to insufficient "
   "hardware resources.",
   "Reduce number of ACL rules in policy-map classes or reconfigure your ACLs to free "
   "some resources for policy-map",
   0.0, 1.0, 0 );

Zub::LogHandle PDP_POLICY_HW_RESOURCE_NORMAL(
   "PDP_POLICY_HW_RESOURCE_NORMAL", Zub::LogSeverity::error,
   "Programmed %s policy-map %s in hardware.",
   "The switch was able to program entire policy-map configuration in the hardware.",
   Zub::NoActionRequired,
   0.0, 1.0, 0 );

Zub::LogHandle QOS_POLICY_MULTIPLE_ACTIONS(
   "QOS_POLICY_MULTIPLE_ACTIONS", Zub::LogSeverity::error,
   "Multiple actions are attached to the class-map %s in the policy-map %s.",
   "In case of conflicting actions only a single action is applied. Dscp rewrite is "
   "programmed over any other action, cos rewrite is programmed over traffic-class "
   "selection. ",
   "Reconfigure policy-map and specify only one action per class.",
   0.0, 1.0, 0 );

Zub::LogHandle QOS_POLICY_POLICER_RESOURCE_FULL(
   "QOS_POLICY_POLICER_RESOURCE_FULL", Zub::LogSeverity::error,
   "Insufficient hardware resources to program the police action for the class-map %s in "
   "the policy-map %s on %s %s.",
   "Remove some features using policer banks and reapply the policy-map to the interface "
   "to enable police action.",
   Zub::NoActionRequired,
   0.0, 1.0, 0 );

Zub::LogHandle QOS_VLAN_ACL_RULE_SVI_MISMATCH(
   "QOS_VLAN_ACL_RULE_SVI_MISMATCH", Zub::LogSeverity::warning,
   "ACL %s with VLAN rule associated to class-map %s. ACL rules with VLAN filter will be "
   "ignored for VLAN interfaces.",
   "Either remove VLAN rule from ACL or remove service-policy configuration from the VLAN "
   "interface.",
   Zub::NoActionRequired,
   0.0, 1.0, 0 );

Zub::LogHandle QOS_EGRESS_PMAP_ACTION_UNSUPPORTED(
   "QOS_EGRESS_PMAP_ACTION_UNSUPPORTED", Zub::LogSeverity::warning,
   "%s action is not supported in output service policies on this platform",
   "this action will have no effect in output service policies on this platform",
   Zub::NoActionRequired,
   0.0, 1.0, 0 );

Zub::LogHandle QOS_MAC_ACL_RULE_IPV6_MISMATCH(
   "QOS_MAC_ACL_RULE_IPV6_MISMATCH", Zub::LogSeverity::warning,
   "Policy-map %s is configured with both MAC ACL and IPV6 ACL rule. ACL rules will be "
   "ignored for class-map %s.",
   "Class map with MAC ACL and Class map with IPV6 ACL can not exist in the same "
   "policy-map on this platform. Remove the MAC ACL associated class-map from policy-map",
   Zub::NoActionRequired,
   0.0, 1.0, 0 );

Zub::LogHandle QOS_PMAP_FIELD_NOT_SUPPORTED(
   "QOS_PMAP_FIELD_NOT_SUPPORTED", Zub::LogSeverity::error,
   "Access list matching %s %s associated with QOS service policy class map %s cannot be "
   "fully programmed in the hardware",
   "Matching %s within QOS service policies is not supported. The %s are ignored in "
   "programming the service policy in the hardware. This may result in improper "
   "classification of packets on interfaces using the QOS service policy.",
   Zub::NoActionRequired,
   0.0, 1.0, 0 );

Zub::LogHandle ROUTING_CBF_HW_RESOURCE_FULL(
   "ROUTING_CBF_HW_RESOURCE_FULL", Zub::LogSeverity::error,
   "Hardware resources are insufficient to program all class based forwarding FEC "
   "override mappings.",
   "The switch is unable to program all class based forwarding FEC override mappings due "
   "to insufficient hardware resources.",
   "Reconfigure or remove unused class based forwarding FEC override mappings.",
   0.0, 1.0, 0 );

Zub::LogHandle ROUTING_CBF_HW_RESOURCE_NORMAL(
   "ROUTING_CBF_HW_RESOURCE_NORMAL", Zub::LogSeverity::error,
   "All class based forwarding FEC override mappings are programmed in hardware.",
   "The switch was able to program all class based forwarding FEC override mappings in "
   "the hardware.",
   Zub::NoActionRequired,
   0.0, 1.0, 0 );
// clang-format on

}  // namespace Nev
