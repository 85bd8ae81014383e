// The words a scenario file uses for the kinds of things it names, one table each, shared by the
// loader that reads them and by the messages that quote them back.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "NevQos/platform/entities/AclRuleConfig.h"
#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/sim/chip/ChipText.h"
#include "NevQos/sim/scenario/Scenario.h"

namespace Sim {

template< class E >
using NameTable = std::span< std::pair< std::string_view, E > const >;

NameTable< AclFamily > aclFamilyNames();         // ipv4, ipv6, mac
NameTable< Qos::MapType > mapTypeNames();        // qos, pdp, control-plane
NameTable< Qos::Direction > directionNames();    // input, output
NameTable< Acl::Ecn > ecnNames();                // dontCare, ectCe, nonEct, ce, ect
NameTable< Qos::RateUnit > rateUnitNames();      // pps, bps, kbps, mbps
NameTable< Qos::BurstUnit > burstUnitNames();    // bytes, kbytes, mbytes, packets
NameTable< Qos::ClassMapCpType > cpTypeNames();  // static, dynamic
// saturated, unsaturated, none
NameTable< Nev::KernelCoppQueueState > kernelCoppStateNames();

// The name of a member; "?" for one outside the table.
template< class E >
std::string_view nameOf( NameTable< E > table, E value ) {
   for( auto const& [ name, v ] : table )
      if( v == value ) return name;
   return "?";
}

// How messages name the things of a configuration: "access list ipv4 VOICE", "class map qos
// voice", "policy map qos edge", "named policer np1", "service policy qos input edge".
std::string aclText( AclFamily family, std::string const& name );
std::string classMapText( Qos::MapType type, std::string const& name );
std::string policyMapText( Qos::MapType type, std::string const& name );
std::string namedPolicerText( std::string const& name );
std::string servicePolicyText( Qos::ServicePolicyKey const& key );
// Seconds as messages quote them: "1", "0.25".
std::string secondsText( Zub::Seconds seconds );

}  // namespace Sim
