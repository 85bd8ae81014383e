#include "NevQos/sim/scenario/PolicyReader.h"

#include <utility>

#include "NevQos/sim/scenario/ConfigModel.h"

namespace Sim {

namespace {

// What `set` takes: the action and the largest value it takes.
struct SetAction {
   std::string_view key;
   Qos::ActionType type;
   unsigned most;
};

constexpr SetAction setActions[] = {
   { "dscp", Qos::actionSetDscp_, 63 },
   { "cos", Qos::actionSetCos_, 7 },
   { "trafficClass", Qos::actionSetTc_, 15 },
   { "dropPrecedence", Qos::actionSetDropPrecedence_, 3 },
};

std::vector< std::string_view > rateKeys( std::vector< std::string_view > keys ) {
   keys.insert( keys.end(),
                { "cir", "cirUnit", "bc", "bcUnit", "pir", "pirUnit", "be", "beUnit" } );
   return keys;
}

}  // namespace

PolicyMapDef PolicyReader::policyMap( YAML::Node const& node ) const {
   yaml_.checkMapping( node, "policy map", { "name", "type", "shared", "classes" } );
   PolicyMapDef pmap;
   pmap.name = yaml_.text( yaml_.required( node, "name" ), "name" );
   if( auto const t = node[ "type" ] ) pmap.type = yaml_.choice( t, "type", mapTypeNames() );
   if( auto const s = node[ "shared" ] ) pmap.shared = yaml_.flag( s, "shared" );
   auto const classes = node[ "classes" ];
   if( !classes ) return pmap;
   yaml_.checkSequence( classes, "classes" );
   for( YAML::Node const& c : classes ) {
      if( pmap.classDefault ) {
         yaml_.fail( c, std::string( "classes: " ) + classDefaultName + " must be the last class" );
      }
      ClassDef cls = classOf( c );
      if( cls.classMap == classDefaultName ) {
         pmap.classDefault = std::move( cls );
      } else {
         pmap.classes.push_back( std::move( cls ) );
      }
   }
   return pmap;
}

ClassDef PolicyReader::classOf( YAML::Node const& node ) const {
   yaml_.checkMapping( node, "class", { "class", "set", "drop", "police", "count" } );
   ClassDef cls;
   cls.classMap = yaml_.text( yaml_.required( node, "class" ), "class" );
   cls.actions = actions( node );
   if( auto const p = node[ "police" ] ) cls.police = police( p );
   if( auto const c = node[ "count" ] ) cls.count = yaml_.flag( c, "count" );
   return cls;
}

Actions PolicyReader::actions( YAML::Node const& node ) const {
   Actions out;
   if( auto const set = node[ "set" ] ) {
      yaml_.checkMapping( set, "set", { "dscp", "cos", "trafficClass", "dropPrecedence" } );
      for( SetAction const& a : setActions ) {
         auto const v = set[ std::string( a.key ) ];
         if( !v ) continue;
         out[ a.type ] = a.type == Qos::actionSetDscp_
                               ? yaml_.dscp( v, "dscp" )
                               : unsigned( yaml_.integer( v, std::string( a.key ), 0, a.most ) );
      }
   }
   if( auto const drop = node[ "drop" ]; drop && yaml_.flag( drop, "drop" ) ) {
      out[ Qos::actionDrop_ ] = 0;
   }
   return out;
}

Actions PolicyReader::colour( YAML::Node const& node, std::string const& what ) const {
   yaml_.checkMapping( node, what, { "set", "drop" } );
   return actions( node );
}

PoliceDef PolicyReader::police( YAML::Node const& node ) const {
   yaml_.checkMapping( node, "police", rateKeys( { "named", "yellow", "red" } ) );
   PoliceDef police;
   if( auto const n = node[ "named" ] ) {
      police.named = yaml_.text( n, "named" );
      if( node[ "cir" ] ) yaml_.fail( node[ "cir" ], "police: give named or rates, not both" );
   } else {
      police.rates = rates( node );
   }
   if( auto const y = node[ "yellow" ] ) police.yellow = colour( y, "yellow" );
   if( auto const r = node[ "red" ] ) {
      police.red = colour( r, "red" );
      // The switch's own policer has exactly one violate action.
      if( police.named.empty() && police.red.size() != 1 ) {
         yaml_.fail( r, "red: a policer of the class's own takes exactly one action" );
      }
   } else if( police.named.empty() ) {
      police.red[ Qos::actionDrop_ ] = 0;
   }
   return police;
}

NamedPolicerDef PolicyReader::namedPolicer( YAML::Node const& node ) const {
   yaml_.checkMapping( node, "named policer", rateKeys( { "name", "shared" } ) );
   NamedPolicerDef policer;
   policer.name = yaml_.text( yaml_.required( node, "name" ), "name" );
   if( auto const s = node[ "shared" ] ) policer.shared = yaml_.flag( s, "shared" );
   policer.rates = rates( node );
   return policer;
}

// Units default to kbps and bytes, or to bursts in packets for a rate in pps; the peak rate
// and excess burst take the committed ones' units, and the excess burst the committed size.
PolicerRates PolicyReader::rates( YAML::Node const& node ) const {
   PolicerRates r;
   r.cir = yaml_.unsignedInteger( yaml_.required( node, "cir" ), "cir", UINT64_MAX );
   if( auto const u = node[ "cirUnit" ] ) r.cirUnit = yaml_.choice( u, "cirUnit", rateUnitNames() );
   r.bc = std::uint32_t( yaml_.unsignedInteger( yaml_.required( node, "bc" ), "bc", UINT32_MAX ) );
   r.bcUnit = r.cirUnit == Qos::rateUnitPps_ ? Qos::burstUnitPackets_ : Qos::burstUnitBytes_;
   if( auto const u = node[ "bcUnit" ] ) r.bcUnit = yaml_.choice( u, "bcUnit", burstUnitNames() );
   if( auto const p = node[ "pir" ] ) r.pir = yaml_.unsignedInteger( p, "pir", UINT64_MAX );
   r.pirUnit = r.cirUnit;
   if( auto const u = node[ "pirUnit" ] ) r.pirUnit = yaml_.choice( u, "pirUnit", rateUnitNames() );
   r.be = r.bc;
   if( auto const b = node[ "be" ] ) {
      r.be = std::uint32_t( yaml_.unsignedInteger( b, "be", UINT32_MAX ) );
   }
   r.beUnit = r.bcUnit;
   if( auto const u = node[ "beUnit" ] ) r.beUnit = yaml_.choice( u, "beUnit", burstUnitNames() );
   std::string const problem = policerRatesProblem( r );
   if( !problem.empty() ) yaml_.fail( node, "policer: " + problem );
   return r;
}

}  // namespace Sim
