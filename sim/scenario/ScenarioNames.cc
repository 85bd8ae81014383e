#include "NevQos/sim/scenario/ScenarioNames.h"

#include <charconv>

namespace Sim {

namespace {

constexpr std::pair< std::string_view, AclFamily > aclFamilies[] = {
   { "ipv4", AclFamily::ipv4 },
   { "ipv6", AclFamily::ipv6 },
   { "mac", AclFamily::mac },
};

constexpr std::pair< std::string_view, Qos::MapType > mapTypes[] = {
   { "qos", Qos::mapQos_ },
   { "pdp", Qos::mapPdp_ },
   { "control-plane", Qos::mapControlPlane_ },
};

constexpr std::pair< std::string_view, Qos::Direction > directions[] = {
   { "input", Qos::directionInput_ },
   { "output", Qos::directionOutput_ },
};

constexpr std::pair< std::string_view, Acl::Ecn > ecns[] = {
   { "dontCare", Acl::ecnDontCare }, { "ectCe", Acl::ecnEctCe },
   { "nonEct", Acl::ecnNonEct },     { "ce", Acl::ecnCe },
   { "ect", Acl::ecnEct },
};

constexpr std::pair< std::string_view, Qos::RateUnit > rateUnits[] = {
   { "pps", Qos::rateUnitPps_ },
   { "bps", Qos::rateUnitBps_ },
   { "kbps", Qos::rateUnitKbps_ },
   { "mbps", Qos::rateUnitMbps_ },
};

constexpr std::pair< std::string_view, Qos::BurstUnit > burstUnits[] = {
   { "bytes", Qos::burstUnitBytes_ },
   { "kbytes", Qos::burstUnitKbytes_ },
   { "mbytes", Qos::burstUnitMbytes_ },
   { "packets", Qos::burstUnitPackets_ },
};

constexpr std::pair< std::string_view, Qos::ClassMapCpType > cpTypes[] = {
   { "static", Qos::cmapCpStatic_ },
   { "dynamic", Qos::cmapCpDynamic_ },
};

constexpr std::pair< std::string_view, Nev::KernelCoppQueueState > kernelCoppStates[] = {
   { "saturated", Nev::kernelCoppQueueSaturated },
   { "unsaturated", Nev::kernelCoppQueueUnsaturated },
   { "none", Nev::kernelCoppQueueNoReport },
};

}  // namespace

NameTable< AclFamily > aclFamilyNames() {
   return aclFamilies;
}
NameTable< Qos::MapType > mapTypeNames() {
   return mapTypes;
}
NameTable< Qos::Direction > directionNames() {
   return directions;
}
NameTable< Acl::Ecn > ecnNames() {
   return ecns;
}
NameTable< Qos::RateUnit > rateUnitNames() {
   return rateUnits;
}
NameTable< Qos::BurstUnit > burstUnitNames() {
   return burstUnits;
}
NameTable< Nev::KernelCoppQueueState > kernelCoppStateNames() {
   return kernelCoppStates;
}
NameTable< Qos::ClassMapCpType > cpTypeNames() {
   return cpTypes;
}

std::string aclText( AclFamily family, std::string const& name ) {
   return "access list " + std::string( nameOf( aclFamilyNames(), family ) ) + " " + name;
}

std::string classMapText( Qos::MapType type, std::string const& name ) {
   return "class map " + std::string( nameOf( mapTypeNames(), type ) ) + " " + name;
}

std::string policyMapText( Qos::MapType type, std::string const& name ) {
   return "policy map " + std::string( nameOf( mapTypeNames(), type ) ) + " " + name;
}

std::string namedPolicerText( std::string const& name ) {
   return "named policer " + name;
}

std::string servicePolicyText( Qos::ServicePolicyKey const& key ) {
   return "service policy " + std::string( nameOf( mapTypeNames(), key.type() ) ) + " " +
          std::string( nameOf( directionNames(), key.direction() ) ) + " " +
          key.pmapName().str().stdString();
}

std::string secondsText( Zub::Seconds seconds ) {
   // The shortest text that reads back as the same time, never rounded.
   char buf[ 32 ];
   return std::string( buf, std::to_chars( buf, buf + sizeof buf, seconds ).ptr );
}

}  // namespace Sim
