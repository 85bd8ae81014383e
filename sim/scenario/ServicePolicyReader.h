// Service policies and interfaces in a scenario. An interface is written by its name
// ("Ethernet1"); a LAG member as the member and its port-channel, "Ethernet1@Port-Channel10".
#pragma once

#include "NevQos/sim/scenario/YamlReader.h"

namespace Sim {

class ServicePolicyReader {
 public:
   explicit ServicePolicyReader( YamlReader const& yaml ) : yaml_( yaml ) {}

   ServicePolicyDef servicePolicy( YAML::Node const& node ) const;
   // The policyMap, type (default qos) and direction (default input) keys of a checked mapping.
   Qos::ServicePolicyKey key( YAML::Node const& node ) const;

   // A sequence of interface names; `pairs` allows LAG members.
   std::vector< Mirel::IntfId > intfIds( YAML::Node const& node, std::string const& what ) const;
   std::vector< Qos::IntfPairKey > intfPairs( YAML::Node const& node,
                                              std::string const& what ) const;
   Qos::IntfPairKey intfPair( YAML::Node const& node, std::string const& what ) const;
   // One interface name.
   Mirel::IntfId intfIdOf( YAML::Node const& node, std::string const& what ) const {
      return intfId( node, what, yaml_.text( node, what ) );
   }

 private:
   Mirel::IntfId intfId( YAML::Node const& node, std::string const& what,
                         std::string const& text ) const;

   YamlReader const& yaml_;
};

}  // namespace Sim
