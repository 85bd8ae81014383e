// A seeded generator of configuration changes for the simulated switch, over a configuration
// that reaches what the drawn chip can do: access lists of every family (port and length ranges,
// flags, ECN, ICMP, VLAN, MAC and MPLS rules), class maps of every match kind, QoS, PDP and
// control-plane policy maps with marking, dropping, counting and policing (own and named, shared
// or not), service policies on ports, LAG members, an SVI and output, per-port CoPP reports,
// class-based forwarding overrides and the FEC service, basic QoS, counter and clear requests,
// restarts, and the chip's faults switched on and off. It keeps the configuration it has built
// and writes it as scenario text: the whole of it as a starting configuration, or one step.
//
// Where a known defect (KnownDefects.h) lies on its way it steps around it, as its comments say.
#pragma once

#include <cstdint>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "NevQos/sim/random/RandomChip.h"

namespace Sim {

class RandomConfig {
 public:
   RandomConfig( std::uint64_t seed, TcamMode mode );

   RandomChip const& chip() const { return chip_; }
   // The configuration as it stands, as a scenario with no steps, on `chipText`.
   std::string scenarioText( std::string const& chipText ) const;
   // Changes the configuration and returns the step's changes as scenario text (the `changes`
   // sequence of one step, indented as under `steps`), with a one-line summary for messages.
   std::string nextChanges( std::string& summary );
   // Whether a fault is switched on now, and whether one has been since the start.
   bool anyFaultOn() const;
   bool anyFaultEver() const { return faultEver_; }
   bool faultOn( std::string const& name ) const;
   // What the configuration holds that makes a log line of the engine expected whatever the
   // chip's pools: the texts of the log handles it explains.
   std::set< std::string > configuredLogHandles() const;

 private:
   struct PolicyClass {
      std::string classMap;
      std::string actions;
   };
   struct PolicyMap {
      std::string type;
      bool shared = false;
      std::vector< PolicyClass > classes;
      std::string defaultActions;
   };

   std::size_t pick( std::size_t n );
   bool chance( unsigned percent );
   template< class T >
   T const& any( std::vector< T > const& items ) {
      return items[ pick( items.size() ) ];
   }

   bool ruleAllowed( std::string const& family, unsigned rule ) const;
   std::string drawMatch( std::string const& cmap );
   std::string drawActions( std::string const& pmap );

   std::string aclText( std::string const& name ) const;
   std::string classMapText( std::string const& name ) const;
   std::string policyMapText( std::string const& name ) const;
   std::string servicePolicyText( std::string const& name ) const;
   std::string servicePolicyKey( std::string const& name ) const;

   std::string changeAclRules( std::string& summary );
   std::string changeClassMatch( std::string& summary );
   std::string changePolicyMap( std::string& summary );
   std::string changeAttachment( std::string& summary );
   std::string changeServicePolicy( std::string& summary );
   std::string changeServicePolicy( std::string& summary, std::string const& name );
   std::string changeNamedPolicer( std::string& summary );
   std::string switchFault( std::string& summary );
   std::string changeFec( std::string& summary );
   std::string changeKernelCopp( std::string& summary );
   std::string changeBasicQos( std::string& summary );
   std::string otherRequest( std::string& summary );

   std::mt19937_64 random_;
   RandomChip chip_;
   // Access list name to the indexes of the rules it holds, from its family's rule pool.
   std::map< std::string, std::set< unsigned > > aclRules_;
   // Access lists that class maps name before they are configured; a change of rules configures.
   std::set< std::string > unconfiguredAcls_;
   // Class map name to its match, as text.
   std::map< std::string, std::string > classMatch_;
   std::map< std::string, PolicyMap > policyMaps_;
   // Named policer to its rates, as text.
   std::map< std::string, std::string > namedPolicers_;
   // Policy map name to the interfaces of its service policy, when it has one.
   std::map< std::string, std::set< std::string > > servicePolicies_;
   // Override key text to its overriding FEC, and FEC to its hardware id.
   std::map< std::string, unsigned > fecOverrides_;
   std::map< unsigned, unsigned > fecService_;
   std::map< std::string, std::string > kernelCopp_;
   std::map< std::string, std::string > intfQos_;
   std::vector< bool > faultOn_;
   bool faultEver_ = false;
   bool ethernet7_ = false;
};

}  // namespace Sim
