#include "NevQos/sim/scenario/ClassMapReader.h"

#include <utility>

namespace Sim {

namespace {

constexpr unsigned vlanLeast = 1;
constexpr unsigned vlanMost = 4094;
constexpr unsigned cosMost = 7;
constexpr unsigned dscpMost = 63;
constexpr unsigned trafficClassMost = 7;

constexpr std::pair< std::string_view, Qos::ClassMapMatchOption > matchKinds[] = {
   { "ipv4", Qos::matchOptionIpAcl },      { "ipv6", Qos::matchOptionIpv6Acl },
   { "mac", Qos::matchOptionMac },         { "vlan", Qos::matchOptionVlan },
   { "cos", Qos::matchOptionCos },         { "vlanCos", Qos::matchOptionVlanCos },
   { "dscp", Qos::matchOptionDscpEcn },    { "mplsTrafficClass", Qos::matchOptionMplsTrafficClass },
   { "builtIn", Qos::matchOptionBuiltIn },
};

std::vector< std::string_view > matchKeys() {
   std::vector< std::string_view > keys;
   for( auto const& [ name, option ] : matchKinds )
      keys.push_back( name );
   return keys;
}

}  // namespace

ClassMapDef ClassMapReader::classMap( YAML::Node const& node ) const {
   yaml_.checkMapping( node, "class map", { "name", "type", "cpType", "match" } );
   ClassMapDef cmap;
   cmap.name = yaml_.text( yaml_.required( node, "name" ), "name" );
   if( auto const t = node[ "type" ] ) cmap.type = yaml_.choice( t, "type", mapTypeNames() );
   if( auto const c = node[ "cpType" ] ) {
      if( cmap.type != Qos::mapControlPlane_ ) {
         yaml_.fail( c, "cpType: only a control-plane class map has one" );
      }
      cmap.cpType = yaml_.choice( c, "cpType", cpTypeNames() );
   }
   auto const matches = node[ "match" ];
   if( !matches ) return cmap;
   yaml_.checkMapping( matches, "match", matchKeys() );
   for( auto const& entry : matches )
      cmap.matches.push_back( match( entry.first, entry.second ) );
   return cmap;
}

MatchDef ClassMapReader::match( YAML::Node const& kind, YAML::Node const& value ) const {
   MatchDef match;
   match.option =
         yaml_.choice( kind, "match", NameTable< Qos::ClassMapMatchOption >( matchKinds ) );
   std::string const what = kind.Scalar();
   switch( match.option ) {
      case Qos::matchOptionIpAcl:
      case Qos::matchOptionIpv6Acl:
      case Qos::matchOptionMac:
         match.acl = yaml_.text( value, what );
         break;
      case Qos::matchOptionVlan:
         vlanOf( value, what, match );
         break;
      case Qos::matchOptionCos:
         match.coses = yaml_.spans( value, what, 0, cosMost );
         break;
      case Qos::matchOptionVlanCos:
         yaml_.checkMapping( value, what, { "vlan", "cos" } );
         vlanOf( yaml_.required( value, "vlan" ), "vlan", match );
         match.coses = yaml_.spans( yaml_.required( value, "cos" ), "cos", 0, cosMost );
         break;
      case Qos::matchOptionDscpEcn:
         dscpOf( value, match );
         break;
      case Qos::matchOptionMplsTrafficClass:
         // An empty list is the engine's to handle: the class gets a list with no rule.
         if( value.IsSequence() && value.size() == 0 ) break;
         match.trafficClasses = yaml_.spans( value, what, 0, trafficClassMost );
         break;
      case Qos::matchOptionBuiltIn:
         match.builtIn = yaml_.text( value, what );
         break;
      default:
         break;
   }
   return match;
}

// { value: 100, mask: 0xfff } taken as it stands, or VLAN numbers and ranges.
void ClassMapReader::vlanOf( YAML::Node const& node, std::string const& what,
                             MatchDef& match ) const {
   if( !node.IsMap() ) {
      match.vlans = yaml_.spans( node, what, vlanLeast, vlanMost );
      return;
   }
   yaml_.checkMapping( node, what, { "value", "mask" } );
   match.vlanMasked = true;
   match.vlan =
         std::uint16_t( yaml_.integer( yaml_.required( node, "value" ), "value", 0, 0xfff ) );
   match.vlanMask = 0xfff;
   if( auto const m = node[ "mask" ] ) {
      match.vlanMask = std::uint16_t( yaml_.integer( m, "mask", 0, 0xfff ) );
   }
}

// 46, ef, [ "10-20", 46 ], or { value: ef, ecn: ce }, { ranges: [ ... ], ecn: ect }, { ecn: ce }.
void ClassMapReader::dscpOf( YAML::Node const& node, MatchDef& match ) const {
   if( node.IsScalar() ) {
      match.dscp = yaml_.dscp( node, "dscp", &match.dscpByName );
      return;
   }
   if( node.IsSequence() ) {
      match.dscps = yaml_.spans( node, "dscp", 0, dscpMost );
      return;
   }
   yaml_.checkMapping( node, "dscp", { "value", "ranges", "ecn" } );
   auto const value = node[ "value" ];
   auto const ranges = node[ "ranges" ];
   if( value && ranges ) yaml_.fail( ranges, "dscp: give value or ranges, not both" );
   if( value ) match.dscp = yaml_.dscp( value, "value", &match.dscpByName );
   if( ranges ) match.dscps = yaml_.spans( ranges, "ranges", 0, dscpMost );
   if( auto const e = node[ "ecn" ] ) match.ecn = yaml_.choice( e, "ecn", ecnNames() );
   if( !value && !ranges && match.ecn == Acl::ecnDontCare ) {
      yaml_.fail( node, "dscp: matches nothing; give a value, ranges or an ecn" );
   }
}

}  // namespace Sim
