// What the reference chip holds after a run, in a form two runs can be compared by: each
// installed ACL with its entries and ports, every finite resource in use, and the system log
// lines as "HANDLE: text". Range checker numbers are left out of the entries, since the order in
// which a pool hands them out depends on the history, not on the configuration.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "NevQos/sim/runner/SimSwitch.h"

namespace Sim {

struct AclImage {
   std::string slice;
   bool committed = false;
   std::vector< std::string > entries;
   std::set< std::string > ports;
   bool operator==( AclImage const& ) const = default;
};
using TcamImage = std::map< std::string, AclImage >;

TcamImage tcamImageOf( SimSwitch const& sw );
// The ACL ids of `image` whose policy map is `pmapName`.
std::vector< std::string > aclsOfPolicyMap( TcamImage const& image, std::string const& pmapName );
// Resource name to units in use: TCAM entries per slice, range checkers, policers, counters, CPU
// queues, port CPU queue policers, queue profiles, ECN counters, CBF rules, pending operations.
std::map< std::string, std::uint64_t > resourcesInUse( SimSwitch const& sw );
// Those of the ACL helper alone: TCAM entries per slice ("tcam ipv4") to pending operations.
std::map< std::string, std::uint64_t > aclResourcesInUse( SimQosAclHelper const& chip );
// The log lines from the `from`th on.
std::vector< std::string > logLinesOf( SimSwitch const& sw, std::size_t from = 0 );
// "direction/name: status (message)" of every policy map in the hardware status.
std::vector< std::string > policyMapStatusOf( SimSwitch const& sw );
// Text of an image, for failure messages.
std::string textOf( TcamImage const& image );

}  // namespace Sim
