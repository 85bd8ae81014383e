// Access lists in a scenario: a name, a family, and rules written in a readable form, or the
// rules of a ClassBench filter set.
#pragma once

#include <filesystem>

#include "NevQos/sim/scenario/YamlReader.h"

namespace Sim {

class AclReader {
 public:
   // ClassBench files are looked for beside the scenario (`scenarioDir`), then in the
   // directory that NEVQOS_CLASSBENCH_DIR names in the environment, then in the build's.
   AclReader( YamlReader const& yaml, std::filesystem::path scenarioDir )
       : yaml_( yaml ), scenarioDir_( std::move( scenarioDir ) ) {}

   AclDef acl( YAML::Node const& node ) const;

 private:
   void rulesOf( YAML::Node const& rules, AclDef& acl ) const;
   void classBenchOf( YAML::Node const& node, AclDef& acl ) const;
   std::filesystem::path classBenchPath( YAML::Node const& file ) const;

   Acl::IpRuleConfig ipv4Rule( YAML::Node const& node ) const;
   Acl::Ip6RuleConfig ipv6Rule( YAML::Node const& node ) const;
   Acl::MacRuleConfig macRule( YAML::Node const& node ) const;
   // The conditions both IP families share, the protocol read as `family` names it.
   void filterOf( YAML::Node const& node, AclFamily family, Acl::IpFilterBase& filter ) const;
   void checkLayer4( YAML::Node const& node, AclFamily family,
                     Acl::IpFilterBase const& filter ) const;
   std::uint8_t protocol( YAML::Node const& node, AclFamily family ) const;
   Acl::PortCondition portCondition( YAML::Node const& node, std::string const& what ) const;
   Acl::TcpFlag tcpFlags( YAML::Node const& node ) const;
   Mirel::IpAddrWithMask ipv4Prefix( YAML::Node const& node, std::string const& what ) const;
   Mirel::Ip6AddrWithMask ipv6Prefix( YAML::Node const& node, std::string const& what ) const;

   YamlReader const& yaml_;
   std::filesystem::path scenarioDir_;
};

}  // namespace Sim
