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

#include "NevQos/sim/scenario/Scenario.h"

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
   // Whether the chip's driver has finished its start-up, as the chip starts.
   void hwInitializedIs( bool initialized ) { hwInitialized_ = initialized; }
   // The chip's PDP mode and the named policers its driver defines for the default PDP policy.
   void pdpIs( bool pdpMode, std::vector< NamedPolicerDef > const& policers );

   // Applies one change, or throws Refusal and leaves the model as it was.
   void apply( ChangeValue const& change );

   std::map< AclKey, AclDef > const& acls() const { return acls_; }
   std::map< MapKey, ClassMapDef > const& classMaps() const { return classMaps_; }
   std::map< std::string, NamedPolicerDef > const& namedPolicers() const { return namedPolicers_; }
   std::map< MapKey, PolicyMapDef > const& policyMaps() const { return policyMaps_; }
   std::map< Qos::ServicePolicyKey, ServicePolicyDef > const& servicePolicies() const {
      return servicePolicies_;
   }
   std::set< Mirel::IntfId > const& interfaces() const { return interfaces_; }

   // Basic QoS: the global maps as set so far, named maps and profiles, per interface.
   GlobalMapsDef const& globalMaps() const { return globalMaps_; }
   std::map< std::string, DscpRewriteMapDef > const& dscpRewriteMaps() const {
      return dscpRewriteMaps_;
   }
   std::map< std::string, CosToTcProfileDef > const& cosToTcProfiles() const {
      return cosToTcProfiles_;
   }
   std::map< Mirel::IntfId, IntfQosDef > const& intfQos() const { return intfQos_; }
   std::map< Mirel::IntfId, EcnCountersDef > const& ecnCounters() const { return ecnCounters_; }
   std::map< Mirel::IntfId, LinkDef > const& links() const { return links_; }

   // The control plane: what the kernel reports of each CPU queue it has reported on, and
   // whether the chip's driver has finished its start-up.
   std::map< Nev::ModIdPortQueueKey, Nev::KernelCoppQueueState > const& kernelCopp() const {
      return kernelCopp_;
   }
   bool hwInitialized() const { return hwInitialized_; }
   // Whether the interface list is complete.
   bool interfacesReady() const { return interfacesReady_; }
   // The subinterfaces the interface agent publishes, and whether a routed port's
   // subinterfaces share its QoS ACLs.
   std::map< Mirel::IntfId, Interface::ForwardingModel > const& subInterfaces() const {
      return subInterfaces_;
   }
   bool subIntfAclSharing() const { return subIntfAclSharing_; }
   // The next-hop groups' hardware indexes, by group name.
   std::map< std::string, std::uint32_t > const& nexthopGroups() const { return nexthopGroups_; }

   // Class-based forwarding: the overrides wanted, and the FEC service's answers.
   std::map< Qos::Glarn::OverrideKey, FecOverrideDef > const& fecOverrides() const {
      return fecOverrides_;
   }
   std::map< Glarn::Fib::FecId, FecServiceDef > const& fecService() const { return fecService_; }

   // The service policies the chip's second datapath holds.
   std::set< Qos::ServicePolicyKey > const& servicePolicyDP1() const { return servicePolicyDP1_; }

   // Who uses what, in key order.
   std::vector< MapKey > classMapsUsing( AclKey const& acl ) const;
   std::vector< MapKey > policyMapsUsingClassMap( MapKey const& cmap ) const;
   std::vector< MapKey > policyMapsUsingPolicer( std::string const& named ) const;
   std::vector< Qos::ServicePolicyKey > servicePoliciesOf( MapKey const& pmap ) const;

   // The default PDP policy: the policy map the engine applies itself in PDP mode, whose named
   // policers are the chip's.
   static MapKey defaultPdpPolicy();
   static Qos::ServicePolicyKey defaultPdpServicePolicy();
   bool pdpMode() const { return pdpMode_; }
   // The rates a class's named policer takes: the chip's for the default PDP policy, else the
   // configuration's; null for a policer that does not exist.
   PolicerRates const* namedPolicerRates( MapKey const& pmap, std::string const& name ) const;

 private:
   void put( AclDef const& acl );
   void put( AclRemoval const& removal );
   void put( ClassMapDef const& cmap );
   void put( ClassMapRemoval const& removal );
   void put( NamedPolicerDef const& policer );
   void put( NamedPolicerRemoval const& removal );
   void put( PolicyMapDef const& pmap );
   void put( PolicyMapRemoval const& removal );
   void put( ServicePolicyDef const& sp );
   void put( ServicePolicyRemoval const& removal );
   void put( Attachment const& attachment );
   void put( InterfacePresence const& presence );
   void put( CounterRequest const& request );
   void put( CounterClientRemoval const& removal );
   void put( IntfUpdateCallback const& ) {}
   void put( TrafficInjection const& traffic );
   void put( ClearRequest const& ) {}
   void put( FaultSwitch const& fault );
   void put( TcamCorruption const& corruption );
   void put( GlobalMapsDef const& maps );
   void put( DscpRewriteMapDef const& map );
   void put( DscpRewriteMapRemoval const& removal );
   void put( CosToTcProfileDef const& profile );
   void put( CosToTcProfileRemoval const& removal );
   void put( IntfQosDef const& qos );
   void put( IntfQosRemoval const& removal );
   void put( EcnCountersDef const& counters );
   void put( EcnCountersRemoval const& removal );
   void put( LinkDef const& link );
   void put( KernelCoppReport const& report );
   void put( FecOverrideDef const& def ) { fecOverrides_[ def.key ] = def; }
   void put( FecOverrideRemoval const& removal );
   void put( FecServiceDef const& def ) { fecService_[ def.fec ] = def; }
   void put( FecServiceRemoval const& removal );
   // A restart changes no configuration.
   void put( AgentRestart const& ) {}
   void put( HwInitialization const& initialization ) {
      hwInitialized_ = initialization.initialized;
   }
   void put( Dp1Policy const& dp1 );
   void put( FecTableDamage const& damage );
   void put( InterfacesReadiness const& readiness ) { interfacesReady_ = readiness.ready; }
   void put( SubIntfDef const& def ) { subInterfaces_[ def.intf ] = def.forwardingModel; }
   void put( SubIntfRemoval const& removal );
   void put( SubIntfAclSharing const& sharing ) { subIntfAclSharing_ = sharing.shared; }
   void put( NexthopGroupDef const& def ) { nexthopGroups_[ def.name ] = def.index; }
   void put( NexthopGroupRemoval const& removal );
   // The driver's inputs change no configuration.
   void put( CliWaiting const& ) {}
   void put( PolicyMapsReprogramRequest const& ) {}

   void checkMatch( ClassMapDef const& cmap, MatchDef const& match ) const;
   void checkClass( PolicyMapDef const& pmap, ClassDef const& cls ) const;
   ServicePolicyDef& servicePolicy( Qos::ServicePolicyKey const& key );

   std::size_t faults_;
   std::map< AclKey, AclDef > acls_;
   std::map< MapKey, ClassMapDef > classMaps_;
   std::map< std::string, NamedPolicerDef > namedPolicers_;
   std::map< MapKey, PolicyMapDef > policyMaps_;
   std::map< Qos::ServicePolicyKey, ServicePolicyDef > servicePolicies_;
   std::set< Mirel::IntfId > interfaces_;
   // The clients that have asked for counters and not gone since.
   std::set< std::string > counterClients_;
   GlobalMapsDef globalMaps_;
   std::map< std::string, DscpRewriteMapDef > dscpRewriteMaps_;
   std::map< std::string, CosToTcProfileDef > cosToTcProfiles_;
   std::map< Mirel::IntfId, IntfQosDef > intfQos_;
   std::map< Mirel::IntfId, EcnCountersDef > ecnCounters_;
   std::map< Mirel::IntfId, LinkDef > links_;
   std::map< Nev::ModIdPortQueueKey, Nev::KernelCoppQueueState > kernelCopp_;
   bool hwInitialized_ = true;
   bool interfacesReady_ = true;
   std::map< Mirel::IntfId, Interface::ForwardingModel > subInterfaces_;
   bool subIntfAclSharing_ = false;
   std::map< std::string, std::uint32_t > nexthopGroups_;
   std::map< Qos::Glarn::OverrideKey, FecOverrideDef > fecOverrides_;
   std::map< Glarn::Fib::FecId, FecServiceDef > fecService_;
   std::set< Qos::ServicePolicyKey > servicePolicyDP1_;
   bool pdpMode_ = false;
   std::map< std::string, NamedPolicerDef > hwNamedPolicers_;
};

}  // namespace Sim
