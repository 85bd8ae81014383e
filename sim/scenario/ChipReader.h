// The chip section of a scenario: capabilities, resource sizes, TCAM mode and faults, read into
// the ChipConfig the reference chip is built from.
#pragma once

#include <string>
#include <vector>

#include "NevQos/sim/chip/ChipConfig.h"
#include "NevQos/sim/scenario/YamlReader.h"

namespace Sim {

class ChipReader {
 public:
   explicit ChipReader( YamlReader const& yaml ) : yaml_( yaml ) {}

   // Fills `chip` from the section; `faultNames` gets the name of each fault, empty for an
   // unnamed one.
   void chip( YAML::Node const& node, ChipConfig& chip,
              std::vector< std::string >& faultNames ) const;

 private:
   // PDP mode and the driver's named policers of the default PDP policy.
   void pdp( YAML::Node const& node, ChipConfig& chip ) const;
   FaultConfig fault( YAML::Node const& node, std::string& name ) const;
   void faultDetails( YAML::Node const& node, FaultConfig& fault ) const;
   void operation( YAML::Node const& node, FaultConfig& fault ) const;
   void helperAnswers( YAML::Node const& node, ChipConfig& chip ) const;
   void aclGroups( YAML::Node const& node, ChipConfig& chip ) const;
   void aclNames( YAML::Node const& node, ChipConfig& chip ) const;

   YamlReader const& yaml_;
};

}  // namespace Sim
