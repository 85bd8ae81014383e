// What changed between two configurations, as the publisher must write it: what is new or
// different, what is gone, and which policy maps need a new version because they, or something
// they use, changed.
#pragma once

#include <string>
#include <vector>

#include "NevQos/sim/scenario/ConfigModel.h"

namespace Sim {

struct ConfigDiff {
   // New or different, in key order.
   std::vector< ConfigModel::AclKey > acls;
   std::vector< ConfigModel::MapKey > classMaps;
   std::vector< std::string > namedPolicers;
   // New, different, or using a class map, access list or named policer sharing that changed.
   std::vector< ConfigModel::MapKey > policyMaps;
   // Named policers that stood before and whose rates changed: applied in place.
   std::vector< std::string > policerParamsMoved;

   // Interfaces that appear in the switch's list, and those that vanish from it.
   std::vector< Mirel::IntfId > interfacesAdded;
   std::vector< Mirel::IntfId > interfacesRemoved;

   // Gone.
   std::vector< ConfigModel::AclKey > aclsRemoved;
   std::vector< ConfigModel::MapKey > classMapsRemoved;
   std::vector< std::string > namedPolicersRemoved;
   std::vector< ConfigModel::MapKey > policyMapsRemoved;
   std::vector< Qos::ServicePolicyKey > servicePoliciesRemoved;
};

ConfigDiff diffOf( ConfigModel const& before, ConfigModel const& after );

}  // namespace Sim
