// The one record of a helper call, shared by the recording decorators, the scenario runner's
// report and the tests: the operation, its arguments as name=value texts in argument order (each
// with the kind the JSON report writes it as), the
// helper that took it and the virtual time. Its line of text is what the runner prints for it,
// less the time.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "NevQos/platform/zub/Entity.h"
#include "NevQos/sim/chip/ChipText.h"

namespace Sim {

struct ChipCall {
   Zub::Seconds t = 0.0;
   std::string op;
   std::vector< std::pair< std::string, TypedText > > args;
   // Which helper took the call: "acl", "basic" or "cbf".
   std::string helper = "acl";
};

// "[<helper> ]<op> name=value ...", the helper left out for the ACL helper.
std::string callText( ChipCall const& call );

}  // namespace Sim
