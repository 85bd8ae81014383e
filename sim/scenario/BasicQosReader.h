// The basic QoS sections of a scenario (docs/scenario.md): global maps, DSCP rewrite maps,
// COS-to-TC profiles, the QoS of interfaces and their queues, ECN counters and links.
#pragma once

#include "NevQos/sim/scenario/BasicQosDefs.h"
#include "NevQos/sim/scenario/ServicePolicyReader.h"
#include "NevQos/sim/scenario/YamlReader.h"

namespace Sim {

class BasicQosReader {
 public:
   BasicQosReader( YamlReader const& yaml, ServicePolicyReader const& interfaces )
       : yaml_( yaml ), interfaces_( interfaces ) {}

   GlobalMapsDef globalMaps( YAML::Node const& node ) const;
   DscpRewriteMapDef dscpRewriteMap( YAML::Node const& node ) const;
   CosToTcProfileDef cosToTcProfile( YAML::Node const& node ) const;
   IntfQosDef intfQos( YAML::Node const& node ) const;
   EcnCountersDef ecnCounters( YAML::Node const& node ) const;
   LinkDef link( YAML::Node const& node ) const;

 private:
   // A mapping of numbers `0..keyMax` to numbers `0..valueMax`; with `dscpValues` a value may
   // also be a DSCP name.
   std::map< unsigned, unsigned > numberMap( YAML::Node const& node, std::string const& what,
                                             unsigned keyMax, unsigned valueMax,
                                             bool dscpValues = false ) const;
   QueueDef queue( YAML::Node const& node ) const;
   Qos::TrustMode trustMode( YAML::Node const& node ) const;
   Qos::ShapeRate shapeRate( YAML::Node const& node, std::string const& what ) const;
   Qos::GuaranteedBw guaranteedBw( YAML::Node const& node ) const;
   Qos::QueueThresholds thresholds( YAML::Node const& node, std::string const& what ) const;
   std::uint32_t bytes( YAML::Node const& node, std::string const& what ) const;

   YamlReader const& yaml_;
   ServicePolicyReader const& interfaces_;
};

}  // namespace Sim
