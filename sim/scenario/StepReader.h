// The changes a scenario makes: the timed steps, each a list of single-key mappings whose key
// says what kind of change it is (acl, removeAcl, policyMap, attach, traffic, ...).
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "NevQos/sim/scenario/AclReader.h"
#include "NevQos/sim/scenario/BasicQosReader.h"
#include "NevQos/sim/scenario/ClassMapReader.h"
#include "NevQos/sim/scenario/PolicyReader.h"
#include "NevQos/sim/scenario/ServicePolicyReader.h"

namespace Sim {

class StepReader {
 public:
   // A fault switch names a fault by index or by one of `faultNames`.
   StepReader( YamlReader const& yaml, std::filesystem::path const& scenarioDir,
               std::vector< std::string > const& faultNames );

   // A step later than `after` seconds.
   Step step( YAML::Node const& node, Zub::Seconds after ) const;
   Change change( YAML::Node const& node ) const;

   AclReader const& acls() const { return acls_; }
   ClassMapReader const& classMaps() const { return classMaps_; }
   PolicyReader const& policies() const { return policies_; }
   ServicePolicyReader const& servicePolicies() const { return servicePolicies_; }
   BasicQosReader const& basicQos() const { return basicQos_; }
   // { modId, port, queue, state }; modId 0 when left out.
   KernelCoppReport kernelCoppReport( YAML::Node const& node ) const;
   SubIntfDef subInterface( YAML::Node const& node ) const;
   NexthopGroupDef nexthopGroup( YAML::Node const& node ) const;
   // Class-based forwarding: { af, dscp, fec, overridingFec } and { fec, hwFecId }.
   FecOverrideDef fecOverride( YAML::Node const& node ) const;
   FecServiceDef fecService( YAML::Node const& node ) const;
   // { policyMap, type, direction, on }; on true when left out.
   Dp1Policy servicePolicyDP1( YAML::Node const& node ) const;

 private:
   ChangeValue value( std::string const& kind, YAML::Node const& node ) const;
   ChangeValue removal( std::string const& kind, YAML::Node const& node ) const;
   // The basic QoS kinds; nothing for another kind.
   std::optional< ChangeValue > basicQosValue( std::string const& kind,
                                               YAML::Node const& node ) const;
   Attachment attachment( YAML::Node const& node, bool attach ) const;
   TrafficInjection traffic( YAML::Node const& node ) const;
   IntfUpdateCallback intfUpdateCallback( YAML::Node const& node ) const;
   Mirel::IntfId subIntfIdOf( YAML::Node const& node, std::string const& what ) const;
   // Optional key `key` of a traffic mapping: a whole number not above `total`.
   std::uint64_t partOf( YAML::Node const& node, char const* key, std::uint64_t total,
                         char const* totalKey ) const;
   FaultSwitch faultSwitch( YAML::Node const& node ) const;
   TcamCorruption tcamCorruption( YAML::Node const& node ) const;
   std::vector< std::pair< std::string, std::string > > entryFields( YAML::Node const& node ) const;
   // The key of an override: { af, dscp, fec }, af ipv4 when left out.
   Qos::Glarn::OverrideKey overrideKey( YAML::Node const& node, std::string const& what,
                                        std::vector< std::string_view > const& keys ) const;

   YamlReader const& yaml_;
   AclReader acls_;
   ClassMapReader classMaps_;
   PolicyReader policies_;
   ServicePolicyReader servicePolicies_;
   BasicQosReader basicQos_;
   std::vector< std::string > const& faultNames_;
};

}  // namespace Sim
