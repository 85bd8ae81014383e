// One configured thing written into the engine's input entities the way the configuration
// agents publish it. These functions write what they are given and check nothing: the
// publisher calls them only with a configuration that ConfigModel has accepted, and in an order
// in which every name a write uses already stands.
#pragma once

#include <string>

#include "NevQos/platform/entities/AclConfig.h"
#include "NevQos/platform/entities/AclHwStatus.h"
#include "NevQos/platform/entities/HwStatus.h"
#include "NevQos/platform/entities/QosStatus.h"
#include "NevQos/sim/scenario/ConfigModel.h"

namespace Sim {

// The chip's capability flags and police limits, as its driver publishes them. The flags the
// engine asks the helper instead (multiple actions, policer exhaustion, MAC rules, ECN,
// "established", TCP flags) are the chip's own business.
void capabilitiesIs( Qos::AclHwStatus& aclHw, Qos::HwStatus& hw, ChipConfig const& chip );
// The basic QoS capabilities, limits and default maps (part of the above).
void basicCapabilitiesIs( Qos::HwStatus& hw, ChipConfig const& chip );

// A new version of the list's rules: sequence numbers as configured, ids 1, 2, 3, ... in
// sequence order.
void aclIs( Acl::Config& config, AclDef const& acl );
void aclDel( Acl::Config& config, AclFamily family, std::string const& name );

// The class map with its matches rewritten; a static control-plane class map is also entered as
// the system's in its map type.
void classMapIs( Qos::Status& status, ClassMapDef const& cmap );
void classMapDel( Qos::Status& status, Qos::MapType type, std::string const& name );
// The class map of the default class of a type's policy maps: one match of no kind.
void classDefaultMapIs( Qos::Status& status, Qos::MapType type );

// Parameters and sharing; `moveVersion` moves paramChangeVersion, which makes the engine update
// the policer in place.
void namedPolicerIs( Qos::Status& status, NamedPolicerDef const& policer, bool moveVersion );

// The classes, actions and policers of the map rewritten, its version left as it was. A class
// that uses a named policer carries that policer's current parameters, as found in `config`.
// Classes of a static control-plane class map go to the static class order.
void policyMapIs( Qos::Status& status, PolicyMapDef const& pmap, ConfigModel const& config );

}  // namespace Sim
