// The configuration as it stands after the changes applied so far, and the rules every change
// must keep: whatever it names exists, whatever it removes is no longer used, and nothing in it
// would stop the engine (mixed policer modes, a named policer in a control-plane map). The
// loader runs a scenario through one to find the first change that breaks a rule; the publisher
// runs each step through a copy before it writes a single entity.
#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "sim/scenario/Scenario.h"

namespace Sim {

// Why a policer's rates can't be used, or empty: packet mode (pps, packets) and byte mode must
// not mix, and a policer needs a committed rate.
std::string policerRatesProblem( PolicerRates const& rates );

class ConfigModel {
 public:
   // A change that breaks a rule; what() is the problem.
   class Refusal : public std::runtime_error {
    public:
      using std::runtime_error::runtime_error;
   };
   using AclKey = std::pair< AclFamily, std::string >;
   using MapKey = std::pair< Qos::MapType, std::string >;

   // `faults` is the number of the chip's faults a fault switch may name.
   explicit ConfigModel( std::size_t faults = 0 ) : faults_( faults ) {}
   void faultsIs( std::size_t faults ) { faults_ = faults; }

   // Applies one change, or throws Refusal and leaves the model as it was.
   void apply( ChangeValue const& change );

   std::map< AclKey, AclSpec > const& acls() const { return acls_; }
   std::map< MapKey, ClassMapSpec > const& classMaps() const { return classMaps_; }
   std::map< std::string, NamedPolicerSpec > const& namedPolicers() const { return namedPolicers_; }
   std::map< MapKey, PolicyMapSpec > const& policyMaps() const { return policyMaps_; }
   std::map< Qos::ServicePolicyKey, ServicePolicySpec > const& servicePolicies() const {
      return servicePolicies_;
   }
   std::set< Mirel::IntfId > const& interfaces() const { return interfaces_; }

   // Who uses what, in key order.
   std::vector< MapKey > classMapsUsing( AclKey const& acl ) const;
   std::vector< MapKey > policyMapsUsingClassMap( MapKey const& cmap ) const;
   std::vector< MapKey > policyMapsUsingPolicer( std::string const& named ) const;
   std::vector< Qos::ServicePolicyKey > servicePoliciesOf( MapKey const& pmap ) const;

 private:
   void put( AclSpec const& acl );
   void put( AclRemoval const& removal );
   void put( ClassMapSpec const& cmap );
   void put( ClassMapRemoval const& removal );
   void put( NamedPolicerSpec const& policer );
   void put( NamedPolicerRemoval const& removal );
   void put( PolicyMapSpec const& pmap );
   void put( PolicyMapRemoval const& removal );
   void put( ServicePolicySpec const& sp );
   void put( ServicePolicyRemoval const& removal );
   void put( Attachment const& attachment );
   void put( InterfacePresence const& presence );
   void put( CounterRequest const& request );
   void put( TrafficSpec const& traffic );
   void put( ClearRequest const& ) {}
   void put( FaultSwitch const& fault );

   void checkMatch( ClassMapSpec const& cmap, MatchSpec const& match ) const;
   void checkClass( PolicyMapSpec const& pmap, ClassSpec const& cls ) const;
   ServicePolicySpec& servicePolicy( Qos::ServicePolicyKey const& key );

   std::size_t faults_;
   std::map< AclKey, AclSpec > acls_;
   std::map< MapKey, ClassMapSpec > classMaps_;
   std::map< std::string, NamedPolicerSpec > namedPolicers_;
   std::map< MapKey, PolicyMapSpec > policyMaps_;
   std::map< Qos::ServicePolicyKey, ServicePolicySpec > servicePolicies_;
   std::set< Mirel::IntfId > interfaces_;
};

}  // namespace Sim
