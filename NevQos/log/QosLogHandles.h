// The operator messages of the QoS layer. Each is a global handle built at load time; raise one
// with `Zub::log( handle, args... )`, arguments in the order of the handle's format.
//
// Some are raised by the engine itself; the others are declared here for the chip drivers built
// on this library, which raise them when the chip reports a failure. A _NORMAL handle is the
// partner of the _FULL handle of the same stem: it goes out when an object that ran out of
// resources is later programmed whole.
#pragma once

#include "NevQos/platform/zub/Log.h"

namespace Nev {

// Raised by chip drivers.
extern Zub::LogHandle QOS_SCH_SHP_UNIT_MISMATCH;
extern Zub::LogHandle QOS_HW_RESOURCE_FULL;
extern Zub::LogHandle QOS_HW_RESOURCE_NORMAL;
extern Zub::LogHandle QOS_ECN_QUEUE_HW_FULL;
extern Zub::LogHandle QOS_ECN_QUEUE_COUNTER_HW_FULL;
extern Zub::LogHandle QOS_WRED_QUEUE_HW_FULL;
extern Zub::LogHandle QOS_DP_THRESHOLDS_HW_FULL;

// Control-plane policy maps, system-wide or dynamic per port.
extern Zub::LogHandle QOS_COPP_HW_RESOURCE_FULL;
extern Zub::LogHandle QOS_COPP_HW_RESOURCE_NORMAL;

// Policy maps on data-plane interfaces.
extern Zub::LogHandle QOS_POLICY_HW_RESOURCE_FULL;
extern Zub::LogHandle QOS_POLICY_HW_RESOURCE_NORMAL;
// Raised by chip drivers.
extern Zub::LogHandle QOS_POLICY_COUNTER_HW_RESOURCE_FULL;

// PDP policy maps.
extern Zub::LogHandle PDP_POLICY_HW_RESOURCE_FULL;
extern Zub::LogHandle PDP_POLICY_HW_RESOURCE_NORMAL;

// Arguments: class-map name, policy-map name.
extern Zub::LogHandle QOS_POLICY_MULTIPLE_ACTIONS;
// Arguments: class-map name, policy-map name, "interface", the policer copy's name.
extern Zub::LogHandle QOS_POLICY_POLICER_RESOURCE_FULL;

// Configuration the chip can only partly program (warnings).
extern Zub::LogHandle QOS_VLAN_ACL_RULE_SVI_MISMATCH;
extern Zub::LogHandle QOS_EGRESS_PMAP_ACTION_UNSUPPORTED;  // raised by chip drivers
extern Zub::LogHandle QOS_MAC_ACL_RULE_IPV6_MISMATCH;
// An ACL matches on fields that QoS service policies cannot classify on.
extern Zub::LogHandle QOS_PMAP_FIELD_NOT_SUPPORTED;

// Class-based-forwarding FEC override mappings.
extern Zub::LogHandle ROUTING_CBF_HW_RESOURCE_FULL;
extern Zub::LogHandle ROUTING_CBF_HW_RESOURCE_NORMAL;

}  // namespace Nev
