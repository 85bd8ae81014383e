#include "NevQos/sim/random/RandomConfig.h"

#include <algorithm>
#include <iterator>

#include "NevQos/sim/checks/KnownDefects.h"

namespace Sim {

namespace {

// The classes a policy map takes at most, its class-default aside: a QoS map may go over the
// chip's class budget.
std::size_t const maxClassesDrawn = 4;

// The rules an access list of each family may hold; rule i has sequence number 10 (i + 1), so
// that a rule keeps its number while others come and go.
std::vector< std::string > const ipv4Rules{
   "proto: tcp, dstPort: { eq: 80 }",
   "proto: tcp, dst: 10.1.0.0/16, dstPort: { range: [ 8000, 8099 ] }",
   "proto: udp, srcPort: { range: [ 1000, 1999 ] }, dstPort: { range: [ 5000, 5099 ] }",
   "src: 192.168.0.0/16",
   "action: deny, proto: icmp",
   "proto: udp, dstPort: { eq: [ 53, 123 ] }",
   "proto: tcp, tcpFlags: syn",
   "dscp: 46",
   "proto: tcp, dstPort: { gt: 1023 }",
   "fragments: true",
   "ipLength: { range: [ 100, 200 ] }",
   "proto: udp, dst: 10.2.0.0/16, ecn: ce",
   "proto: tcp, tcpFlags: [ ack, ece ]",
   "proto: tcp, established: true",
   "proto: icmp, icmpType: 8, icmpCode: 0",
   "vlan: { value: 100 }",
   "proto: tcp, srcPort: { neq: [ 22, 23 ] }",
   "ipLength: { lt: 64 }",
   "proto: udp, dstPort: { lt: 1024 }, ipLength: { gt: 1000 }",
   "action: deny, proto: tcp, dstPort: { eq: 25 }",
   "ipLength: { eq: 1500 }",
};
std::vector< std::string > const ipv6Rules{
   "proto: tcp, dstPort: { eq: 443 }",
   "src: \"2001:db8::/32\"",
   "proto: udp, dstPort: { range: [ 3000, 3099 ] }",
   "action: deny, proto: icmp",
   "proto: tcp, tcpFlags: [ syn, fin ]",
   "dscp: 10, ecn: ect",
   "ipLength: { range: [ 60, 90 ] }",
   "proto: udp, srcPort: { gt: 50000 }",
};
std::vector< std::string > const macRules{
   "etherType: 0x800",
   "etherType: 0x86dd",
   "mplsLabel: 100",
   "mplsLabel: 200, mplsInnerLabel: 300",
   "action: deny, etherType: 0x806",
};

std::string familyOf( std::string const& acl ) {
   if( acl.starts_with( "B" ) ) return "ipv6";
   if( acl.starts_with( "M" ) ) return "mac";
   return "ipv4";
}

std::vector< std::string > const& rulePool( std::string const& family ) {
   if( family == "ipv6" ) return ipv6Rules;
   if( family == "mac" ) return macRules;
   return ipv4Rules;
}

// The class maps of each type, and the matches each takes in turn.
struct ClassMapChoice {
   std::string type;
   std::vector< std::string > matches;
};
std::map< std::string, ClassMapChoice > const classMaps{
   { "c1", { "qos", { "ipv4: A1", "ipv4: A3", "ipv4: A1, ipv6: B1" } } },
   { "c2", { "qos", { "ipv4: A2", "ipv4: A2, cos: 3" } } },
   { "c3", { "qos", { "ipv6: B1", "mac: M1" } } },
   { "c4",
     { "qos",
       { "dscp: 10", "dscp: [ 10, 12 ]", "dscp: [ 20-30 ]", "dscp: { value: ef, ecn: ce }",
         "dscp: { ranges: [ 1-3 ], ecn: ect }" } } },
   { "c5", { "qos", { "cos: 1", "cos: 1-3", "cos: [ 5, 7 ]" } } },
   { "c6", { "qos", { "vlan: 100", "vlan: 100-110", "vlan: { value: 0x64, mask: 0xff0 }" } } },
   { "c7",
     { "qos",
       { "vlanCos: { vlan: 200, cos: 3 }", "vlanCos: { vlan: [ 200-203 ], cos: [ 1, 2 ] }" } } },
   { "c8",
     { "qos", { "mplsTrafficClass: 3", "mplsTrafficClass: [ 1-2, 5 ]", "mplsTrafficClass: []" } } },
   { "c9", { "qos", { "mac: M1" } } },
   { "d1", { "pdp", { "ipv4: A1", "ipv4: A2" } } },
   { "d2", { "pdp", { "ipv6: B1", "dscp: 12" } } },
   { "k1", { "control-plane", { "ipv4: A3", "ipv4: A1" } } },
};
// A control-plane class the system defines: no match of its own.
constexpr char const* staticCoppClass = "copp-bgp";

// The policy maps: their type, direction, the class maps they draw from and the interfaces
// their service policies draw from. LAG members are written with their port-channel.
struct PolicyMapChoice {
   std::string type;
   std::string direction;
   std::vector< std::string > classes;
   std::vector< std::string > interfaces;
};
std::map< std::string, PolicyMapChoice > const policyMapChoices{
   { "p1",
     { "qos",
       "input",
       { "c1", "c2", "c3", "c4", "c5", "c6", "c7", "c8", "c9" },
       { "Ethernet1", "Ethernet2", "Ethernet5@Port-Channel1", "Ethernet6@Port-Channel1",
         "Vlan100" } } },
   { "p2",
     { "qos",
       "input",
       { "c1", "c2", "c3", "c4", "c5", "c6", "c7", "c8", "c9" },
       { "Ethernet3", "Ethernet4", "Ethernet7" } } },
   { "p3", { "qos", "output", { "c1", "c2", "c4" }, { "Ethernet1", "Ethernet3" } } },
   { "pd", { "pdp", "input", { "d1", "d2" }, { "Ethernet2", "Ethernet4" } } },
   // Without interface CoPP the control-plane policy is the system's, by this name; with it,
   // that name is not the chip's, and the other map is per interface.
   { "copp-system-policy",
     { "control-plane", "input", { "k1", staticCoppClass }, { "Ethernet1" } } },
   { "cp-edge",
     { "control-plane", "input", { "k1", staticCoppClass }, { "Ethernet1", "Ethernet2" } } },
};

std::vector< std::string > const qosActions{
   "set: { dscp: 18 }",
   "set: { cos: 3 }",
   "set: { trafficClass: 5 }",
   "set: { dscp: 46, trafficClass: 5 }",
   "set: { dropPrecedence: 1 }",
   "drop: true",
   "count: true",
   "set: { dscp: 10 }, count: true",
   "police: { cir: 1000, bc: 10000 }",
   "set: { cos: 2 }, police: { cir: 2000, bc: 16000, pir: 4000, be: 32000, yellow: { set: { "
   "dscp: 10 } }, red: { drop: true } }",
   "police: { cir: 100, cirUnit: pps, bc: 10 }",
   "police: { named: np1 }",
   "police: { named: np2, yellow: { set: { dscp: 12 } } }",
   "",
};
std::vector< std::string > const pdpActions{ "count: true", "drop: true", "count: true, drop: true",
                                             "" };
std::vector< std::string > const coppActions{ "police: { cir: 200, cirUnit: pps, bc: 20 }",
                                              "police: { cir: 1000, bc: 10000 }", "" };
std::vector< std::string > const defaultActions{ "set: { dscp: 0 }", "",
                                                 "police: { cir: 5000, bc: 20000 }",
                                                 "count: true" };
std::vector< std::string > const namedPolicerRates{
   "cir: 2000, bc: 16000",
   "cir: 40000, bc: 64000, pir: 80000, be: 128000",
   "cir: 300, cirUnit: pps, bc: 30",
};

std::vector< std::string > const fecKeys{ "ipv4/10/10", "ipv4/46/10", "ipv4/34/11",
                                          "ipv6/46/10", "ipv6/10/11", "ipv4/46/11" };

std::vector< std::string > const intfQosChoices{
   "trust: dscp, queues: [ { queue: 1, ecn: { min: 10000, max: 20000 } } ]",
   "trust: dscp, queues: [ { queue: 1, ecn: { min: 30000, max: 40000 } } ]",
   "queues: [ { queue: 2, wred: { min: 3000, max: 4000, probability: 50 } } ]",
   "queues: [ { queue: 3, dropThresholds: { 0: 5000, 1: 6000 } } ]",
   "shapeRate: { rate: 1000000, unit: kbps }, queues: [ { queue: 0, priority: strict, "
   "guaranteedBw: { rate: 10, unit: percent }, shapeRate: { rate: 5000, unit: pps } } ]",
   "trust: untrusted, defaultCos: 3, queues: [ { queue: 1, ecn: { min: 1000, max: 2000 }, "
   "nonEct: 5000, delayEcn: true, ecnDelayThreshold: 100 } ]",
};
std::vector< std::string > const globalMapChoices{
   "{ cosToTc: { 5: 4 } }",   "{ dscpToTc: { 46: 5 } }",     "{ tcToTxQueue: { 4: 6 } }",
   "{ dscpToDp: { 10: 1 } }", "{ tcToMcTxQueue: { 2: 3 } }", "{ cosRewrite: true }",
   "{ tcToDscp: { 5: ef } }",
};

std::string joined( std::vector< std::string > const& items ) {
   std::string out = "[ ";
   for( std::size_t i = 0; i < items.size(); ++i ) {
      if( i ) out += ", ";
      out += items[ i ];
   }
   return out + " ]";
}

// The TCP flags a rule of the pools asks for.
std::uint64_t tcpFlagsOf( std::string const& family, unsigned rule ) {
   std::string const& text = rulePool( family )[ rule ];
   std::uint64_t flags = 0;
   std::pair< char const*, std::uint64_t > const names[] = {
      { "fin", 0x01 }, { "syn", 0x02 }, { "ack", 0x10 }, { "ece", 0x40 }
   };
   auto const at = text.find( "tcpFlags" );
   if( at == std::string::npos ) return 0;
   for( auto const& [ name, bit ] : names ) {
      if( text.find( name, at ) != std::string::npos ) flags |= bit;
   }
   return flags;
}

std::string fecOverrideText( std::string const& key, unsigned overriding ) {
   auto const slash = key.find( '/' );
   auto const second = key.find( '/', slash + 1 );
   return "{ af: " + key.substr( 0, slash ) +
          ", dscp: " + key.substr( slash + 1, second - slash - 1 ) +
          ", fec: " + key.substr( second + 1 ) +
          ( overriding ? ", overridingFec: " + std::to_string( overriding ) : "" ) + " }";
}

}  // namespace

RandomConfig::RandomConfig( std::uint64_t seed, TcamMode mode )
    : random_( seed ), chip_( random_, mode ), faultOn_( RandomChip::faultNames().size(), false ) {
   for( std::string const acl : { "A1", "A2", "A3", "B1", "M1" } ) {
      auto const& pool = rulePool( familyOf( acl ) );
      for( unsigned tries = 0; aclRules_[ acl ].size() < 2 && tries < 100; ++tries ) {
         unsigned const rule = unsigned( pick( pool.size() ) );
         if( ruleAllowed( familyOf( acl ), rule ) ) aclRules_[ acl ].insert( rule );
      }
   }
   for( auto const& [ name, choice ] : classMaps )
      classMatch_[ name ] = drawMatch( name );
   for( auto const& [ name, choice ] : policyMapChoices ) {
      PolicyMap& pmap = policyMaps_[ name ];
      pmap.type = choice.type;
      pmap.shared = choice.type == "qos" && chance( 20 );
      std::size_t const wanted =
            std::min( { std::size_t( 1 + pick( 3 ) ), maxClassesDrawn, choice.classes.size() } );
      while( pmap.classes.size() < wanted ) {
         std::string const cmap = any( choice.classes );
         bool used = false;
         for( PolicyClass const& c : pmap.classes )
            used = used || c.classMap == cmap;
         if( !used ) pmap.classes.push_back( PolicyClass{ cmap, drawActions( name ) } );
      }
      if( choice.type == "qos" ) pmap.defaultActions = any( defaultActions );
      if( chance( 80 ) ) {
         servicePolicies_[ name ].insert( any( choice.interfaces ) );
      }
   }
   namedPolicers_[ "np1" ] = namedPolicerRates[ 0 ];
   namedPolicers_[ "np2" ] = namedPolicerRates[ pick( namedPolicerRates.size() ) ];
   for( unsigned i = 0; i < 3; ++i )
      fecOverrides_[ any( fecKeys ) ] = 20 + unsigned( pick( 2 ) );
   for( unsigned fec : { 10u, 11u, 20u } ) {
      if( chance( 70 ) ) fecService_[ fec ] = 5000 + fec;
   }
   // Drawn last so that the draws above stay as they were.
   if( chance( 15 ) ) unconfiguredAcls_.insert( chance( 50 ) ? "A3" : "B1" );
}

std::size_t RandomConfig::pick( std::size_t n ) {
   return std::size_t( std::uniform_int_distribution< std::size_t >( 0, n - 1 )( random_ ) );
}

bool RandomConfig::chance( unsigned percent ) {
   return pick( 100 ) < percent;
}

bool RandomConfig::anyFaultOn() const {
   return std::find( faultOn_.begin(), faultOn_.end(), true ) != faultOn_.end();
}

bool RandomConfig::faultOn( std::string const& name ) const {
   auto const& names = RandomChip::faultNames();
   return faultOn_[ std::size_t( std::find( names.begin(), names.end(), name ) - names.begin() ) ];
}

// Known defect vlan-rule-compile-order: no VLAN rule.
bool RandomConfig::ruleAllowed( std::string const& family, unsigned rule ) const {
   return !rulePool( family )[ rule ].starts_with( "vlan:" ) ||
          !avoided( "vlan-rule-compile-order" );
}

std::string RandomConfig::drawMatch( std::string const& cmap ) {
   // Known defect mpls-tc-list-binding: no MPLS traffic-class match.
   std::vector< std::string > allowed;
   for( std::string const& m : classMaps.at( cmap ).matches ) {
      if( !m.starts_with( "mplsTrafficClass" ) || !avoided( "mpls-tc-list-binding" ) ) {
         allowed.push_back( m );
      }
   }
   return allowed.empty() ? "ipv4: A2" : any( allowed );
}

std::string RandomConfig::drawActions( std::string const& pmap ) {
   std::string const& type = policyMapChoices.at( pmap ).type;
   if( type == "pdp" ) return any( pdpActions );
   if( type == "control-plane" ) return any( coppActions );
   return any( qosActions );
}

std::string RandomConfig::aclText( std::string const& name ) const {
   std::string const family = familyOf( name );
   std::string const type = family == "ipv4" ? "" : ", type: " + family;
   if( unconfiguredAcls_.contains( name ) )
      return "{ name: " + name + type + ", configured: false }";
   auto const& pool = rulePool( family );
   std::vector< std::string > rules;
   for( unsigned i : aclRules_.at( name ) )
      rules.push_back( "{ seq: " + std::to_string( 10 * ( i + 1 ) ) + ", " + pool[ i ] + " }" );
   return "{ name: " + name + type + ", rules: " + joined( rules ) + " }";
}

std::string RandomConfig::classMapText( std::string const& name ) const {
   return "{ name: " + name + ", type: " + classMaps.at( name ).type + ", match: { " +
          classMatch_.at( name ) + " } }";
}

std::string RandomConfig::policyMapText( std::string const& name ) const {
   PolicyMap const& pmap = policyMaps_.at( name );
   std::vector< std::string > classes;
   auto classText = []( std::string const& cmap, std::string const& actions ) {
      return "{ class: " + cmap + ( actions.empty() ? "" : ", " + actions ) + " }";
   };
   for( PolicyClass const& c : pmap.classes )
      classes.push_back( classText( c.classMap, c.actions ) );
   if( pmap.type == "qos" ) classes.push_back( classText( "class-default", pmap.defaultActions ) );
   return "{ name: " + name + ", type: " + pmap.type + ( pmap.shared ? ", shared: true" : "" ) +
          ", classes: " + joined( classes ) + " }";
}

std::string RandomConfig::servicePolicyKey( std::string const& name ) const {
   PolicyMapChoice const& choice = policyMapChoices.at( name );
   return "policyMap: " + name + ", type: " + choice.type + ", direction: " + choice.direction;
}

std::string RandomConfig::servicePolicyText( std::string const& name ) const {
   auto const& intfs = servicePolicies_.at( name );
   return "{ " + servicePolicyKey( name ) +
          ", interfaces: " + joined( std::vector< std::string >( intfs.begin(), intfs.end() ) ) +
          " }";
}

std::string RandomConfig::scenarioText( std::string const& chipText ) const {
   std::string out = "chip: " + chipText + "\n";
   out += "interfaces: [ Ethernet1, Ethernet2, Ethernet3, Ethernet4, Ethernet5, Ethernet6, "
          "Port-Channel1, Vlan100" +
          std::string( ethernet7_ ? ", Ethernet7" : "" ) + " ]\n";
   out += "links:\n  - { interface: Ethernet1, speed: 10000, active: true }\n";
   out += "acls:\n";
   for( auto const& [ name, rules ] : aclRules_ )
      out += "  - " + aclText( name ) + "\n";
   out += "classMaps:\n  - { name: " + std::string( staticCoppClass ) +
          ", type: control-plane, cpType: static }\n";
   for( auto const& [ name, match ] : classMatch_ )
      out += "  - " + classMapText( name ) + "\n";
   out += "namedPolicers:\n";
   for( auto const& [ name, rates ] : namedPolicers_ ) {
      out += "  - { name: " + name + ( name == "np1" ? ", shared: true" : "" ) + ", " + rates +
             " }\n";
   }
   out += "policyMaps:\n";
   for( auto const& [ name, pmap ] : policyMaps_ )
      out += "  - " + policyMapText( name ) + "\n";
   if( !servicePolicies_.empty() ) {
      out += "servicePolicies:\n";
      for( auto const& [ name, intfs ] : servicePolicies_ )
         out += "  - " + servicePolicyText( name ) + "\n";
   }
   if( !fecOverrides_.empty() ) {
      out += "fecOverrides:\n";
      for( auto const& [ key, fec ] : fecOverrides_ )
         out += "  - " + fecOverrideText( key, fec ) + "\n";
   }
   if( !fecService_.empty() ) {
      out += "fecService:\n";
      for( auto const& [ fec, hw ] : fecService_ ) {
         out += "  - { fec: " + std::to_string( fec ) + ", hwFecId: " + std::to_string( hw ) +
                " }\n";
      }
   }
   if( !kernelCopp_.empty() ) {
      out += "kernelCopp:\n";
      for( auto const& [ key, report ] : kernelCopp_ )
         out += "  - " + report + "\n";
   }
   if( !intfQos_.empty() ) {
      out += "interfaceQos:\n";
      for( auto const& [ intf, qos ] : intfQos_ )
         out += "  - { interface: " + intf + ", " + qos + " }\n";
   }
   return out;
}

std::string RandomConfig::nextChanges( std::string& summary ) {
   std::size_t const roll = pick( 100 );
   std::string change;
   if( roll < 20 ) {
      change = changeAclRules( summary );
   } else if( roll < 28 ) {
      change = changeClassMatch( summary );
   } else if( roll < 48 ) {
      change = changePolicyMap( summary );
   } else if( roll < 60 ) {
      change = changeAttachment( summary );
   } else if( roll < 66 ) {
      change = changeServicePolicy( summary );
   } else if( roll < 69 ) {
      change = changeNamedPolicer( summary );
   } else if( roll < 77 ) {
      change = switchFault( summary );
   } else if( roll < 84 ) {
      change = changeFec( summary );
   } else if( roll < 87 ) {
      change = changeKernelCopp( summary );
   } else if( roll < 94 ) {
      change = changeBasicQos( summary );
   } else {
      change = otherRequest( summary );
   }
   return "      - " + change + "\n";
}

std::string RandomConfig::changeAclRules( std::string& summary ) {
   auto it = std::next( aclRules_.begin(), long( pick( aclRules_.size() ) ) );
   auto& rules = it->second;
   std::string const family = familyOf( it->first );
   unsigned const pool = unsigned( rulePool( family ).size() );
   if( rules.size() > 1 && ( chance( 50 ) || rules.size() == pool ) ) {
      auto const gone = std::next( rules.begin(), long( pick( rules.size() ) ) );
      summary = "rule " + std::to_string( *gone ) + " leaves " + it->first;
      rules.erase( gone );
   } else {
      unsigned rule = unsigned( pick( pool ) );
      for( unsigned tries = 0;
           tries < pool && ( rules.contains( rule ) || !ruleAllowed( family, rule ) ); ++tries )
         rule = ( rule + 1 ) % pool;
      if( !rules.contains( rule ) && ruleAllowed( family, rule ) ) rules.insert( rule );
      summary = "rule " + std::to_string( rule ) + " joins " + it->first;
   }
   unconfiguredAcls_.erase( it->first );
   return "acl: " + aclText( it->first );
}

std::string RandomConfig::changeClassMatch( std::string& summary ) {
   auto const it = std::next( classMaps.begin(), long( pick( classMaps.size() ) ) );
   std::string const& name = it->first;
   classMatch_[ name ] = drawMatch( name );
   summary = name + " matches " + classMatch_[ name ];
   return "classMap: " + classMapText( name );
}

std::string RandomConfig::changePolicyMap( std::string& summary ) {
   auto const it = std::next( policyMaps_.begin(), long( pick( policyMaps_.size() ) ) );
   std::string const& name = it->first;
   PolicyMap& pmap = it->second;
   auto const& choice = policyMapChoices.at( name );
   std::size_t const what = pick( 5 );
   if( what == 0 && pmap.classes.size() < maxClassesDrawn &&
       pmap.classes.size() < choice.classes.size() ) {
      std::string cmap;
      do {
         cmap = any( choice.classes );
         for( PolicyClass const& c : pmap.classes ) {
            if( c.classMap == cmap ) cmap.clear();
         }
      } while( cmap.empty() );
      pmap.classes.insert(
            std::next( pmap.classes.begin(), long( pick( pmap.classes.size() + 1 ) ) ),
            PolicyClass{ cmap, drawActions( name ) } );
      summary = cmap + " joins " + name;
   } else if( what == 1 && !pmap.classes.empty() ) {
      auto const gone = std::next( pmap.classes.begin(), long( pick( pmap.classes.size() ) ) );
      summary = gone->classMap + " leaves " + name;
      pmap.classes.erase( gone );
   } else if( what == 2 && pmap.type == "qos" ) {
      pmap.shared = !pmap.shared;
      summary = name + ( pmap.shared ? " is shared" : " is per interface" );
   } else if( what == 3 && pmap.type == "qos" ) {
      pmap.defaultActions = any( defaultActions );
      summary = "class-default of " + name + " does " + pmap.defaultActions;
   } else if( !pmap.classes.empty() ) {
      PolicyClass& c = pmap.classes[ pick( pmap.classes.size() ) ];
      c.actions = drawActions( name );
      summary = c.classMap + " of " + name + " does " + c.actions;
   } else {
      summary = name + " given again as it stands";
   }
   return "policyMap: " + policyMapText( name );
}

std::string RandomConfig::changeAttachment( std::string& summary ) {
   auto const it = std::next( policyMapChoices.begin(), long( pick( policyMapChoices.size() ) ) );
   std::string const& name = it->first;
   auto const sp = servicePolicies_.find( name );
   if( sp == servicePolicies_.end() ) return changeServicePolicy( summary );
   std::string const intf = any( it->second.interfaces );
   bool const attach = !sp->second.contains( intf );
   if( attach ) {
      sp->second.insert( intf );
   } else {
      sp->second.erase( intf );
   }
   summary = intf + ( attach ? " joins " : " leaves " ) + name;
   return std::string( attach ? "attach" : "detach" ) + ": { " + servicePolicyKey( name ) +
          ", interfaces: [ " + intf + " ] }";
}

std::string RandomConfig::changeServicePolicy( std::string& summary ) {
   auto const it = std::next( policyMapChoices.begin(), long( pick( policyMapChoices.size() ) ) );
   return changeServicePolicy( summary, it->first );
}

std::string RandomConfig::changeServicePolicy( std::string& summary, std::string const& name ) {
   if( servicePolicies_.erase( name ) ) {
      summary = "service policy " + name + " removed";
      return "removeServicePolicy: { " + servicePolicyKey( name ) + " }";
   }
   auto const& pool = policyMapChoices.at( name ).interfaces;
   auto& intfs = servicePolicies_[ name ];
   for( std::string const& intf : pool ) {
      if( chance( 50 ) ) intfs.insert( intf );
   }
   summary = "service policy " + name + " given again";
   return "servicePolicy: " + servicePolicyText( name );
}

std::string RandomConfig::changeNamedPolicer( std::string& summary ) {
   std::string const name = chance( 50 ) ? "np1" : "np2";
   namedPolicers_[ name ] = any( namedPolicerRates );
   summary = "named policer " + name + " at " + namedPolicers_[ name ];
   return "namedPolicer: { name: " + name + ( name == "np1" ? ", shared: true" : "" ) + ", " +
          namedPolicers_[ name ] + " }";
}

std::string RandomConfig::switchFault( std::string& summary ) {
   auto const& names = RandomChip::faultNames();
   std::size_t const f = pick( names.size() );
   bool const on = !faultOn_[ f ];
   faultOn_[ f ] = on;
   faultEver_ = faultEver_ || on;
   summary = "fault " + names[ f ] + ( on ? " on" : " off" );
   return "fault: { name: " + names[ f ] + ", on: " + ( on ? "true" : "false" ) + " }";
}

std::string RandomConfig::changeFec( std::string& summary ) {
   if( chance( 60 ) ) {
      std::string const key = any( fecKeys );
      if( fecOverrides_.contains( key ) && chance( 50 ) ) {
         fecOverrides_.erase( key );
         summary = "FEC override " + key + " removed";
         return "removeFecOverride: " + fecOverrideText( key, 0 );
      }
      fecOverrides_[ key ] = 20 + unsigned( pick( 2 ) );
      summary = "FEC override " + key + " to " + std::to_string( fecOverrides_[ key ] );
      return "fecOverride: " + fecOverrideText( key, fecOverrides_[ key ] );
   }
   unsigned const fec = std::vector< unsigned >{ 10, 11, 20, 21 }[ pick( 4 ) ];
   if( fecService_.contains( fec ) && chance( 40 ) ) {
      fecService_.erase( fec );
      summary = "FEC service forgets " + std::to_string( fec );
      return "removeFecService: " + std::to_string( fec );
   }
   fecService_[ fec ] = 5000 + fec + 1000 * unsigned( pick( 2 ) );
   summary = "FEC service answers " + std::to_string( fec );
   return "fecService: { fec: " + std::to_string( fec ) +
          ", hwFecId: " + std::to_string( fecService_[ fec ] ) + " }";
}

std::string RandomConfig::changeKernelCopp( std::string& summary ) {
   std::string const port = std::to_string( 1 + pick( 4 ) );
   std::string const queue = chance( 50 ) ? "4" : "7";
   std::string const key = port + "/" + queue;
   std::string const state =
         any( std::vector< std::string >{ "saturated", "unsaturated", "none" } );
   std::string const report = "{ port: " + port + ", queue: " + queue + ", state: " + state + " }";
   kernelCopp_[ key ] = report;
   summary = "kernel reports " + key + " " + state;
   return "kernelCopp: " + report;
}

std::string RandomConfig::changeBasicQos( std::string& summary ) {
   std::size_t const what = pick( 4 );
   std::string const intf = "Ethernet" + std::to_string( 1 + pick( 3 ) );
   if( what == 0 ) {
      std::string const maps = any( globalMapChoices );
      summary = "global maps " + maps;
      return "globalMaps: " + maps;
   }
   if( what == 1 && intfQos_.erase( intf ) ) {
      summary = "QoS of " + intf + " removed";
      return "removeInterfaceQos: " + intf;
   }
   if( what == 2 ) {
      summary = "ECN counters of " + intf;
      return "ecnCounters: { interface: " + intf + ", queues: [ 1, 2 ] }";
   }
   intfQos_[ intf ] = any( intfQosChoices );
   summary = "QoS of " + intf + ": " + intfQos_[ intf ];
   return "interfaceQos: { interface: " + intf + ", " + intfQos_[ intf ] + " }";
}

std::string RandomConfig::otherRequest( std::string& summary ) {
   switch( pick( 6 ) ) {
      case 0:
         summary = "counters asked for";
         return "requestCounters: snmp";
      case 1:
         summary = "errors cleared";
         return "clearErrors: true";
      case 2:
         summary = "restart";
         return "restart: true";
      case 3: {
         bool const on = chance( 70 );
         summary = std::string( "hardware " ) + ( on ? "initialised" : "not initialised" );
         return std::string( "hwInitialized: " ) + ( on ? "true" : "false" );
      }
      default:
         // Ethernet7 comes and goes under a service policy that may name it.
         ethernet7_ = !ethernet7_;
         summary = ethernet7_ ? "Ethernet7 appears" : "Ethernet7 vanishes";
         return std::string( ethernet7_ ? "addInterfaces" : "removeInterfaces" ) +
                ": [ Ethernet7 ]";
   }
}

std::set< std::string > RandomConfig::configuredLogHandles() const {
   std::set< std::string > out;
   if( !chip_.flag( "multipleActionsSupported" ) ) out.insert( "QOS_POLICY_MULTIPLE_ACTIONS" );
   if( !chip_.flag( "macAclRuleSupportedPlatform" ) )
      out.insert( "QOS_MAC_ACL_RULE_IPV6_MISMATCH" );
   auto const supported = chip_.number( "supportedTcpFlags" );
   for( auto const& [ acl, rules ] : aclRules_ ) {
      for( unsigned r : rules ) {
         auto const flags = tcpFlagsOf( familyOf( acl ), r );
         if( ( flags & supported ) != flags ) out.insert( "QOS_PMAP_FIELD_NOT_SUPPORTED" );
         if( familyOf( acl ) == "ipv4" && ipv4Rules[ r ].starts_with( "vlan:" ) ) {
            out.insert( "QOS_VLAN_ACL_RULE_SVI_MISMATCH" );
         }
      }
   }
   for( auto const& [ intf, qos ] : intfQos_ ) {
      if( qos.find( "unit: percent" ) != std::string::npos )
         out.insert( "QOS_SCH_SHP_UNIT_MISMATCH" );
   }
   return out;
}

}  // namespace Sim
