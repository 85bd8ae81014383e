#include "reliability/KnownDefects.h"

#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>

namespace NevQosTest {

namespace {

constexpr KnownDefect list[] = {
   { "refused-policer-finding",
     "a policer refused for want of policers (errorOnPolicerExhaustion false) is a verification "
     "finding" },
   { "expanded-ip-length",
     "an IP-length range expanded for want of range checkers is reported as a mismatch" },
   { "unsupported-class-match-verified",
     "a VLAN, COS or DSCP match the chip cannot classify on is compiled to nothing, yet "
     "verification asks for its entry (/work/findings/unsupported-class-match-verified.yaml)" },
   { "empty-service-policy-status",
     "a service policy that names no interface leaves its map in progress for ever when it starts "
     "so, and reports success when its last interface leaves "
     "(/work/findings/empty-service-policy-status.yaml)" },
   { "failed-map-keeps-mpls-tc-acl",
     "a policy map that fails leaves the ACL of its MPLS traffic-class match in the TCAM "
     "(/work/findings/failed-map-keeps-mpls-tc-acl.yaml)" },
   { "async-interface-copp-not-programmed",
     "on the asynchronous road a control-plane map served per interface (intfCoppSupported) is "
     "never programmed and gets no status "
     "(/work/findings/async-interface-copp-not-programmed.yaml)" },
   { "icmp-type-verified-absent",
     "an ICMP rule with a type or code is a verification finding "
     "(/work/findings/icmp-type-verified-absent.yaml)" },
   { "mac-acl-empty-after-attach",
     "a MAC-list class whose map gains an interface can be left installed with no entry while "
     "the map reports success (/work/findings/mac-acl-empty-after-attach.yaml, not yet "
     "minimised)" },
   { "refused-counter-finding",
     "a PDP counter the chip cannot give is a verification finding "
     "(/work/findings/refused-counter-finding.yaml, not yet minimised)" },
   { "async-map-fails-on-roomy-chip",
     "on the asynchronous road a PDP or QoS map beside others can fail for want of resources on a "
     "roomy chip (/work/findings/async-map-fails-on-roomy-chip.yaml, not yet minimised)" },
   { "subrules-missing-short-of-policers",
     "on a chip short of policers a QoS map whose classes change can report success with "
     "subrules of its ACLs missing (/work/findings/subrules-missing-short-of-policers.yaml, not "
     "yet minimised)" },
   { "refused-rule-fragment-verify",
     "on the synchronous road, verification asserts (verifyIpFragRule) on an IPv4 layer-4 permit "
     "rule whose subrule or fragment entry the chip answered \"ruleIgnored\" or \"ignored\" "
     "(/work/findings/verify-frag-rule-asserts.yaml)" },
   { "vlan-rule-compile-order",
     "a VLAN rule of a QoS map on a VLAN interface is programmed or left out by whether its list "
     "was compiled before or after the interface became active, so a switch started afresh holds "
     "another TCAM (/work/findings/vlan-rule-compile-order.yaml)" },
   { "async-system-copp-not-programmed",
     "on the asynchronous road the system-wide control-plane map of a chip without per-interface "
     "CoPP is never programmed (/work/findings/async-system-copp-not-programmed.yaml)" },
   { "report-invalid-utf8",
     "a scenario description that is not UTF-8 loads and runs, and then the JSON report throws "
     "(/work/findings/report-invalid-utf8.yaml)" },
};

template< class T >
void eachDefinition( Sim::Scenario const& s, std::function< void( T const& ) > const& f ) {
   auto visit = [ & ]( Sim::Change const& c ) {
      if( auto const* v = std::get_if< T >( &c.value ) ) f( *v );
   };
   for( Sim::Change const& c : s.initial )
      visit( c );
   for( Sim::Step const& step : s.steps ) {
      for( Sim::Change const& c : step.changes )
         visit( c );
   }
}

template< class T >
bool anyDefinition( Sim::Scenario const& s, std::function< bool( T const& ) > const& f ) {
   bool found = false;
   eachDefinition< T >( s, [ & ]( T const& v ) { found = found || f( v ); } );
   return found;
}

bool servicePolicyOfType( Sim::Scenario const& s, Qos::MapType type ) {
   return anyDefinition< Sim::ServicePolicyDef >(
         s, [ & ]( Sim::ServicePolicyDef const& sp ) { return sp.key.type() == type; } );
}

// A length condition other than one value needs a range checker.
bool lengthRangeShortOfCheckers( Sim::Scenario const& s ) {
   bool checkersRunOut = s.chip.rangeCheckers < 16;
   for( Sim::FaultConfig const& f : s.chip.faults )
      checkersRunOut = checkersRunOut || f.kind == Sim::FaultConfig::Kind::outOfRangeCheckers;
   if( !checkersRunOut ) return false;
   auto ranged = []( auto const& rules ) {
      for( auto const& r : rules ) {
         auto const oper = r.rule.filter.ipLen.oper();
         if( oper != Acl::PortCondition::any && oper != Acl::PortCondition::eq ) return true;
      }
      return false;
   };
   return anyDefinition< Sim::AclDef >( s, [ & ]( Sim::AclDef const& a ) {
      return ranged( a.ipv4Rules ) || ranged( a.ipv6Rules );
   } );
}

bool unsupportedClassMatch( Sim::Scenario const& s ) {
   auto const& chip = s.chip;
   return anyDefinition< Sim::ClassMapDef >( s, [ & ]( Sim::ClassMapDef const& c ) {
      for( Sim::MatchDef const& m : c.matches ) {
         bool const vlan = m.option == Qos::matchOptionVlan || m.option == Qos::matchOptionVlanCos;
         bool const cos = m.option == Qos::matchOptionCos || m.option == Qos::matchOptionVlanCos;
         if( ( vlan && !chip.vlanClassMatchSupported ) || ( cos && !chip.cosClassMatchSupported ) ||
             ( m.option == Qos::matchOptionDscpEcn && !chip.dscpEcnClassMatchSupported ) ) {
            return true;
         }
      }
      return false;
   } );
}

bool emptyServicePolicy( Sim::Scenario const& s ) {
   return anyDefinition< Sim::ServicePolicyDef >(
         s, []( Sim::ServicePolicyDef const& sp ) { return sp.interfaces.empty(); } );
}

bool mplsTrafficClassMatch( Sim::Scenario const& s ) {
   return anyDefinition< Sim::ClassMapDef >( s, []( Sim::ClassMapDef const& c ) {
      for( Sim::MatchDef const& m : c.matches ) {
         if( m.option == Qos::matchOptionMplsTrafficClass ) return true;
      }
      return false;
   } );
}

bool icmpTypeOrCode( Sim::Scenario const& s ) {
   auto asks = []( auto const& rules ) {
      for( auto const& r : rules ) {
         if( r.rule.filter.icmpTypeValid || r.rule.filter.icmpCodeValid ) return true;
      }
      return false;
   };
   return anyDefinition< Sim::AclDef >(
         s, [ & ]( Sim::AclDef const& a ) { return asks( a.ipv4Rules ) || asks( a.ipv6Rules ); } );
}

bool ruleLeftOutByChip( Sim::Scenario const& s ) {
   if( s.chip.tcamMode != Sim::TcamMode::synchronous ) return false;
   for( Sim::FaultConfig const& f : s.chip.faults ) {
      if( f.kind == Sim::FaultConfig::Kind::operationError &&
          ( f.op == "createIpAclSubrule" || f.op == "createIpFragRule" ) &&
          ( f.error == Nev::aclCreateErrorRuleIgnored || f.error == Nev::aclCreateErrorIgnored ) ) {
         return true;
      }
   }
   return false;
}

// Well-formed UTF-8, as the report's writer reads it: no overlong form, surrogate or code point
// above U+10FFFF.
bool utf8( std::string_view text ) {
   auto byte = [ & ]( std::size_t i ) { return static_cast< unsigned char >( text[ i ] ); };
   for( std::size_t i = 0; i < text.size(); ) {
      unsigned char const lead = byte( i++ );
      if( lead < 0x80 ) continue;
      std::size_t const more = lead >= 0xc2 && lead < 0xe0   ? 1
                               : lead >= 0xe0 && lead < 0xf0 ? 2
                               : lead >= 0xf0 && lead < 0xf5 ? 3
                                                             : 0;
      if( more == 0 || i + more > text.size() ) return false;
      // The second byte's range narrows after the leads that could start an overlong form, a
      // surrogate or a code point past the last.
      unsigned char low = 0x80;
      unsigned char high = 0xbf;
      if( lead == 0xe0 ) low = 0xa0;
      if( lead == 0xed ) high = 0x9f;
      if( lead == 0xf0 ) low = 0x90;
      if( lead == 0xf4 ) high = 0x8f;
      if( byte( i ) < low || byte( i ) > high ) return false;
      for( std::size_t k = 1; k < more; ++k ) {
         if( ( byte( i + k ) & 0xc0 ) != 0x80 ) return false;
      }
      i += more;
   }
   return true;
}

}  // namespace

std::span< KnownDefect const > knownDefects() {
   return list;
}

bool avoided( std::string_view name ) {
   bool listed = false;
   for( KnownDefect const& d : list )
      listed = listed || d.name == name;
   if( !listed ) throw std::logic_error( "no known defect " + std::string( name ) );
   char const* mode = std::getenv( "NEVQOS_KNOWN_DEFECTS" );
   if( !mode ) return true;
   std::string_view const reach( mode );
   if( reach == "reach" ) return false;
   // "reach:a,b" turns off the entries named.
   if( !reach.starts_with( "reach:" ) ) return true;
   std::string_view names = reach.substr( 6 );
   while( !names.empty() ) {
      std::size_t const comma = names.find( ',' );
      if( names.substr( 0, comma ) == name ) return false;
      names = comma == std::string_view::npos ? std::string_view() : names.substr( comma + 1 );
   }
   return true;
}

std::string_view knownConditionOf( Sim::Scenario const& s ) {
   std::pair< std::string_view, bool > const conditions[] = {
      { "expanded-ip-length", lengthRangeShortOfCheckers( s ) },
      { "unsupported-class-match-verified", unsupportedClassMatch( s ) },
      { "empty-service-policy-status", emptyServicePolicy( s ) },
      { "failed-map-keeps-mpls-tc-acl", mplsTrafficClassMatch( s ) },
      { "async-interface-copp-not-programmed",
        s.chip.tcamMode == Sim::TcamMode::asynchronous && s.chip.intfCoppSupported &&
              servicePolicyOfType( s, Qos::mapControlPlane_ ) },
      { "icmp-type-verified-absent", icmpTypeOrCode( s ) },
      { "refused-rule-fragment-verify", ruleLeftOutByChip( s ) },
      { "async-system-copp-not-programmed",
        "on the asynchronous road the system-wide control-plane map of a chip without "
        "per-interface "
        "CoPP is never programmed (/work/findings/async-system-copp-not-programmed.yaml)" },
      { "report-invalid-utf8", !utf8( s.description ) },
   };
   for( auto const& [ name, stands ] : conditions ) {
      if( stands && avoided( name ) ) return name;
   }
   return {};
}

}  // namespace NevQosTest
