#include "reliability/RandomConfig.h"

#include <iterator>

namespace NevQosTest {

namespace {

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
};
std::vector< std::string > const ipv6Rules{
   "proto: tcp, dstPort: { eq: 443 }",
   "src: \"2001:db8::/32\"",
   "proto: udp, dstPort: { range: [ 3000, 3099 ] }",
   "action: deny, proto: icmp",
};

bool isIpv6( std::string const& acl ) {
   return acl.starts_with( "B" );
}

// The matches each class map takes in turn.
std::map< std::string, std::vector< std::string > > const matchChoices{
   { "c1", { "ipv4: A1", "ipv4: A3" } },
   { "c2", { "ipv4: A2" } },
   { "c3", { "ipv6: B1" } },
   { "c4", { "dscp: 10", "dscp: [ 10, 12 ]", "dscp: [ 20-30 ]" } },
   { "c5", { "cos: 1", "cos: 1-3", "cos: [ 5, 7 ]" } },
   { "c6", { "vlan: 100", "vlan: 100-110" } },
};

// The interfaces each service policy draws from; LAG members are written with their
// port-channel.
std::map< std::string, std::vector< std::string > > const interfacePools{
   { "p1", { "Ethernet1", "Ethernet2", "Ethernet5@Port-Channel1", "Ethernet6@Port-Channel1" } },
   { "p2", { "Ethernet3", "Ethernet4" } },
};

std::string joined( std::vector< std::string > const& items ) {
   std::string out = "[ ";
   for( std::size_t i = 0; i < items.size(); ++i ) {
      if( i ) out += ", ";
      out += items[ i ];
   }
   return out + " ]";
}

}  // namespace

std::vector< std::string > const& RandomConfig::faultNames() {
   static std::vector< std::string > const names{ "tcam-full", "commit-fails", "no-policers" };
   return names;
}

RandomConfig::RandomConfig( std::uint64_t seed )
    : random_( seed ), faultOn_( faultNames().size(), false ) {
   for( std::string const acl : { "A1", "A2", "A3", "B1" } ) {
      unsigned const pool = unsigned( isIpv6( acl ) ? ipv6Rules.size() : ipv4Rules.size() );
      while( aclRules_[ acl ].size() < 2 )
         aclRules_[ acl ].insert( pick( pool ) );
   }
   for( auto const& [ name, choices ] : matchChoices )
      classMatch_[ name ] = choices[ pick( unsigned( choices.size() ) ) ];
   for( std::string const pmap : { "p1", "p2" } ) {
      auto& classes = policyMaps_[ pmap ];
      while( classes.size() < 2 ) {
         std::string const cmap = "c" + std::to_string( 1 + pick( 6 ) );
         bool used = false;
         for( PolicyClass const& c : classes )
            used = used || c.classMap == cmap;
         if( !used ) classes.push_back( PolicyClass{ cmap, pick( 64 ), chance( 50 ) } );
      }
      auto const& pool = interfacePools.at( pmap );
      servicePolicies_[ pmap ].insert( pool[ pick( unsigned( pool.size() ) ) ] );
   }
}

unsigned RandomConfig::pick( unsigned n ) {
   return unsigned( std::uniform_int_distribution< unsigned >( 0, n - 1 )( random_ ) );
}

bool RandomConfig::chance( unsigned percent ) {
   return pick( 100 ) < percent;
}

bool RandomConfig::anyFaultOn() const {
   for( bool on : faultOn_ ) {
      if( on ) return true;
   }
   return false;
}

std::string RandomConfig::aclText( std::string const& name ) const {
   auto const& pool = isIpv6( name ) ? ipv6Rules : ipv4Rules;
   std::vector< std::string > rules;
   for( unsigned i : aclRules_.at( name ) )
      rules.push_back( "{ seq: " + std::to_string( 10 * ( i + 1 ) ) + ", " + pool[ i ] + " }" );
   return "{ name: " + name + ( isIpv6( name ) ? ", type: ipv6" : "" ) +
          ", rules: " + joined( rules ) + " }";
}

std::string RandomConfig::classMapText( std::string const& name ) const {
   return "{ name: " + name + ", match: { " + classMatch_.at( name ) + " } }";
}

std::string RandomConfig::policyMapText( std::string const& name ) const {
   std::vector< std::string > classes;
   for( PolicyClass const& c : policyMaps_.at( name ) ) {
      classes.push_back( "{ class: " + c.classMap + ", set: { dscp: " + std::to_string( c.dscp ) +
                         " }" + ( c.police ? ", police: { cir: 1000, bc: 10000 }" : "" ) + " }" );
   }
   classes.push_back( "{ class: class-default, set: { dscp: 0 } }" );
   return "{ name: " + name + ", classes: " + joined( classes ) + " }";
}

std::string RandomConfig::servicePolicyText( std::string const& name ) const {
   auto const& intfs = servicePolicies_.at( name );
   return "{ policyMap: " + name +
          ", interfaces: " + joined( std::vector< std::string >( intfs.begin(), intfs.end() ) ) +
          " }";
}

std::string RandomConfig::scenarioText( std::string const& chipSettings ) const {
   std::string out = "chip: " + chipSettings + "\n";
   out += "interfaces: [ Ethernet1, Ethernet2, Ethernet3, Ethernet4, Ethernet5, Ethernet6, "
          "Port-Channel1 ]\n";
   out += "acls:\n";
   for( auto const& [ name, rules ] : aclRules_ )
      out += "  - " + aclText( name ) + "\n";
   out += "classMaps:\n";
   for( auto const& [ name, match ] : classMatch_ )
      out += "  - " + classMapText( name ) + "\n";
   out += "policyMaps:\n";
   for( auto const& [ name, classes ] : policyMaps_ )
      out += "  - " + policyMapText( name ) + "\n";
   if( !servicePolicies_.empty() ) {
      out += "servicePolicies:\n";
      for( auto const& [ name, intfs ] : servicePolicies_ )
         out += "  - " + servicePolicyText( name ) + "\n";
   }
   return out;
}

std::string RandomConfig::nextChanges( std::string& summary ) {
   unsigned const roll = pick( 100 );
   std::string change;
   if( roll < 25 ) {
      change = changeAclRules( summary );
   } else if( roll < 35 ) {
      change = changeClassMatch( summary );
   } else if( roll < 60 ) {
      change = changePolicyMap( summary );
   } else if( roll < 80 ) {
      change = changeAttachment( summary );
   } else if( roll < 90 ) {
      change = changeServicePolicy( summary );
   } else {
      change = switchFault( summary );
   }
   return "      - " + change + "\n";
}

std::string RandomConfig::changeAclRules( std::string& summary ) {
   auto it = std::next( aclRules_.begin(), long( pick( unsigned( aclRules_.size() ) ) ) );
   auto& rules = it->second;
   unsigned const pool = unsigned( isIpv6( it->first ) ? ipv6Rules.size() : ipv4Rules.size() );
   if( rules.size() > 1 && ( chance( 50 ) || rules.size() == pool ) ) {
      auto const gone = std::next( rules.begin(), long( pick( unsigned( rules.size() ) ) ) );
      summary = "rule " + std::to_string( *gone ) + " leaves " + it->first;
      rules.erase( gone );
   } else {
      unsigned rule = pick( pool );
      while( rules.contains( rule ) )
         rule = ( rule + 1 ) % pool;
      summary = "rule " + std::to_string( rule ) + " joins " + it->first;
      rules.insert( rule );
   }
   return "acl: " + aclText( it->first );
}

std::string RandomConfig::changeClassMatch( std::string& summary ) {
   std::string const name = std::vector< std::string >{ "c1", "c4", "c5", "c6" }[ pick( 4 ) ];
   auto const& choices = matchChoices.at( name );
   std::string& match = classMatch_[ name ];
   std::string next = match;
   while( next == match )
      next = choices[ pick( unsigned( choices.size() ) ) ];
   match = next;
   summary = name + " matches " + match;
   return "classMap: " + classMapText( name );
}

std::string RandomConfig::changePolicyMap( std::string& summary ) {
   std::string const name = pick( 2 ) ? "p2" : "p1";
   auto& classes = policyMaps_[ name ];
   unsigned const what = pick( 4 );
   if( what == 0 && classes.size() < 4 ) {
      std::string cmap;
      do {
         cmap = "c" + std::to_string( 1 + pick( 6 ) );
         for( PolicyClass const& c : classes ) {
            if( c.classMap == cmap ) cmap.clear();
         }
      } while( cmap.empty() );
      classes.insert( std::next( classes.begin(), long( pick( unsigned( classes.size() ) + 1 ) ) ),
                      PolicyClass{ cmap, pick( 64 ), chance( 50 ) } );
      summary = cmap + " joins " + name;
   } else if( what == 1 && classes.size() > 1 ) {
      auto const gone = std::next( classes.begin(), long( pick( unsigned( classes.size() ) ) ) );
      summary = gone->classMap + " leaves " + name;
      classes.erase( gone );
   } else if( what == 2 ) {
      PolicyClass& c = classes[ pick( unsigned( classes.size() ) ) ];
      c.police = !c.police;
      summary = c.classMap + " of " + name + ( c.police ? " polices" : " stops policing" );
   } else {
      PolicyClass& c = classes[ pick( unsigned( classes.size() ) ) ];
      c.dscp = ( c.dscp + 1 + pick( 63 ) ) % 64;
      summary = c.classMap + " of " + name + " marks " + std::to_string( c.dscp );
   }
   return "policyMap: " + policyMapText( name );
}

std::string RandomConfig::changeAttachment( std::string& summary ) {
   std::string const name = pick( 2 ) ? "p2" : "p1";
   auto const sp = servicePolicies_.find( name );
   if( sp == servicePolicies_.end() ) return changeServicePolicy( summary );
   auto const& pool = interfacePools.at( name );
   std::string const intf = pool[ pick( unsigned( pool.size() ) ) ];
   bool const attach = !sp->second.contains( intf );
   if( attach ) {
      sp->second.insert( intf );
   } else {
      sp->second.erase( intf );
   }
   summary = intf + ( attach ? " joins " : " leaves " ) + name;
   return std::string( attach ? "attach" : "detach" ) + ": { policyMap: " + name +
          ", interfaces: [ " + intf + " ] }";
}

std::string RandomConfig::changeServicePolicy( std::string& summary ) {
   std::string const name = pick( 2 ) ? "p2" : "p1";
   if( servicePolicies_.erase( name ) ) {
      summary = "service policy " + name + " removed";
      return "removeServicePolicy: " + name;
   }
   auto const& pool = interfacePools.at( name );
   auto& intfs = servicePolicies_[ name ];
   for( std::string const& intf : pool ) {
      if( chance( 50 ) ) intfs.insert( intf );
   }
   summary = "service policy " + name + " given again";
   return "servicePolicy: " + servicePolicyText( name );
}

std::string RandomConfig::switchFault( std::string& summary ) {
   unsigned const f = pick( unsigned( faultOn_.size() ) );
   faultOn_[ f ] = !faultOn_[ f ];
   summary = "fault " + faultNames()[ f ] + ( faultOn_[ f ] ? " on" : " off" );
   return "fault: { name: " + faultNames()[ f ] + ", on: " + ( faultOn_[ f ] ? "true" : "false" ) +
          " }";
}

}  // namespace NevQosTest
