// Policy maps and named policers in a scenario: classes in priority order with their actions,
// counters and policers, and the rates and bursts of a policer in the operator's units.
#pragma once

#include "NevQos/sim/scenario/YamlReader.h"

namespace Sim {

class PolicyReader {
 public:
   explicit PolicyReader( YamlReader const& yaml ) : yaml_( yaml ) {}

   PolicyMapDef policyMap( YAML::Node const& node ) const;
   NamedPolicerDef namedPolicer( YAML::Node const& node ) const;

 private:
   ClassDef classOf( YAML::Node const& node ) const;
   // The `set` and `drop` keys of a class or of a policer's colour.
   Actions actions( YAML::Node const& node ) const;
   PoliceDef police( YAML::Node const& node ) const;
   Actions colour( YAML::Node const& node, std::string const& what ) const;
   // The rate and burst keys of `node`, whose modes must agree.
   PolicerRates rates( YAML::Node const& node ) const;

   YamlReader const& yaml_;
};

}  // namespace Sim
