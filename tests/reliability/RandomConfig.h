// A seeded generator of configuration changes for the simulated switch: access list rules added
// and removed, class map matches changed, classes added, removed and re-marked, policers switched,
// interfaces (LAG members among them) joining and leaving, service policies removed and given
// again, and chip faults switched on and off. It keeps the configuration it has built, and writes
// it as scenario text: the whole of it as a starting configuration, or one step of changes.
#pragma once

#include <cstdint>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace NevQosTest {

class RandomConfig {
 public:
   // Fault names the chip declares, in order; all start switched off.
   static std::vector< std::string > const& faultNames();

   explicit RandomConfig( std::uint64_t seed );

   // The chip section and the configuration as it stands, as a scenario with no steps.
   std::string scenarioText( std::string const& chipSettings ) const;
   // Changes the configuration and returns the step's changes as scenario text (the `changes`
   // sequence of one step, indented as under `steps`), with a one-line summary for messages.
   std::string nextChanges( std::string& summary );
   // Whether a fault is switched on now.
   bool anyFaultOn() const;

 private:
   struct PolicyClass {
      std::string classMap;
      unsigned dscp = 0;
      bool police = false;
   };
   unsigned pick( unsigned n );
   bool chance( unsigned percent );

   std::string aclText( std::string const& name ) const;
   std::string classMapText( std::string const& name ) const;
   std::string policyMapText( std::string const& name ) const;
   std::string servicePolicyText( std::string const& name ) const;

   std::string changeAclRules( std::string& summary );
   std::string changeClassMatch( std::string& summary );
   std::string changePolicyMap( std::string& summary );
   std::string changeAttachment( std::string& summary );
   std::string changeServicePolicy( std::string& summary );
   std::string switchFault( std::string& summary );

   std::mt19937_64 random_;
   // Access list name to the indexes of the rules it holds, from its family's rule pool.
   std::map< std::string, std::set< unsigned > > aclRules_;
   // Class map name to its match, as text.
   std::map< std::string, std::string > classMatch_;
   std::map< std::string, std::vector< PolicyClass > > policyMaps_;
   // Policy map name to the interfaces of its service policy, when it has one.
   std::map< std::string, std::set< std::string > > servicePolicies_;
   std::vector< bool > faultOn_;
};

}  // namespace NevQosTest
