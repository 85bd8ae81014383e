// Class maps in a scenario: a name, a map type, and a mapping of matches by kind (ipv4, ipv6 and
// mac access groups, vlan, cos, vlanCos, dscp, mplsTrafficClass, builtIn).
#pragma once

#include "NevQos/sim/scenario/YamlReader.h"

namespace Sim {

class ClassMapReader {
 public:
   explicit ClassMapReader( YamlReader const& yaml ) : yaml_( yaml ) {}

   ClassMapDef classMap( YAML::Node const& node ) const;

 private:
   MatchDef match( YAML::Node const& kind, YAML::Node const& value ) const;
   void vlanOf( YAML::Node const& node, std::string const& what, MatchDef& match ) const;
   void dscpOf( YAML::Node const& node, MatchDef& match ) const;

   YamlReader const& yaml_;
};

}  // namespace Sim
