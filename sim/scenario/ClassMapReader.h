// Class maps in a scenario: a name, a map type, and a mapping of matches by kind (ipv4, ipv6 and
// mac access groups, vlan, cos, vlanCos, dscp, mplsTrafficClass, builtIn).
#pragma once

#include "sim/scenario/YamlReader.h"

namespace Sim {

class ClassMapReader {
 public:
   explicit ClassMapReader( YamlReader const& yaml ) : yaml_( yaml ) {}

   ClassMapSpec classMap( YAML::Node const& node ) const;

 private:
   MatchSpec match( YAML::Node const& kind, YAML::Node const& value ) const;
   void vlanOf( YAML::Node const& node, std::string const& what, MatchSpec& match ) const;
   void dscpOf( YAML::Node const& node, MatchSpec& match ) const;

   YamlReader const& yaml_;
};

}  // namespace Sim
