// What a settled switch must hold whatever its chip and history, checked from the outside: the
// chip's TCAM against the policy maps' status and the configuration, and the class-based
// forwarding rule table against the override status. The generators run these after every step
// beside the engine's own verification, which sees only what the engine thinks it programmed.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "NevQos/sim/runner/SimSwitch.h"

namespace Sim {

struct MapStatus {
   Qos::PolicyMapHwPrgmStatus status = Qos::hwPrgmStatusInProgress_;
   std::string message;
};

// The policy maps' status entries by "name(type,direction)".
std::map< std::string, MapStatus > mapStatuses( Sim::SimSwitch const& sw );

// "name(type,direction)", as the chip writes a policy map in the ids of its ACLs.
std::string pmapText( Qos::MapType type, Qos::Direction direction, std::string const& name );

// The policy map part of a chip ACL id, "name(type,direction)", without an ACL group.
std::string pmapOfAcl( std::string const& aclId );

// One line per disagreement between the chip's TCAM and the policy maps' status:
// - an installed ACL of a policy map no service policy names, of a map reported failed, or of a
//   map with no status entry where one is kept;
// - a map reported programmed whose ACLs are bound to none of the interfaces of its service
//   policy that the switch has, while it holds ACLs at all.
// Maps still being programmed are left out.
std::vector< std::string > tcamMismatches( Sim::SimSwitch const& sw );

// One line per disagreement between the class-based forwarding rule table, the override status
// and the configuration: a rule for no override or with other hardware FECs than the FEC
// service gives; a programmed override without its rule; a status entry for no override; an
// override whose FECs are both known and that has no status, or one still waiting although both
// are known, or one with a status other than waiting while a FEC is unknown. Overrides waiting
// for the engine's review are left out: the review settles them, a second later at most.
std::vector< std::string > cbfMismatches( Sim::SimSwitch const& sw );

}  // namespace Sim
