#include "NevQos/sim/scenario/BasicQosReader.h"

#include <cctype>
#include <cstdint>
#include <string_view>
#include <utility>

namespace Sim {

namespace {

constexpr std::pair< std::string_view, Qos::TrustMode > trustModes[] = {
   { "cos", Qos::trustCos_ },
   { "dscp", Qos::trustDscp_ },
   { "untrusted", Qos::untrusted_ },
};

constexpr std::pair< std::string_view, Qos::TxQueuePriority > priorities[] = {
   { "strict", Qos::txQueuePriorityStrict_ },
   { "roundRobin", Qos::txQueuePriorityRoundRobin_ },
};

constexpr std::pair< std::string_view, Qos::TxQueueType > queueTypes[] = {
   { "unicast", Qos::unicastQueue_ },
   { "multicast", Qos::multicastQueue_ },
};

constexpr std::pair< std::string_view, Qos::ShapeRateUnit > shapeUnits[] = {
   { "kbps", Qos::shapeRateUnitKbps_ },
   { "pps", Qos::shapeRateUnitPps_ },
};

constexpr std::pair< std::string_view, Qos::GuaranteedBwUnit > bandwidthUnits[] = {
   { "kbps", Qos::guaranteedBwUnitKbps_ },
   { "pps", Qos::guaranteedBwUnitPps_ },
   { "percent", Qos::guaranteedBwUnitPercent_ },
};

}  // namespace

std::map< unsigned, unsigned > BasicQosReader::numberMap( YAML::Node const& node,
                                                          std::string const& what, unsigned keyMax,
                                                          unsigned valueMax,
                                                          bool dscpValues ) const {
   if( !node.IsMap() ) yaml_.fail( node, what + ": expected a mapping, found " + kindOf( node ) );
   std::map< unsigned, unsigned > out;
   for( auto const& entry : node ) {
      auto const key = unsigned( yaml_.integer( entry.first, what, 0, keyMax ) );
      if( out.contains( key ) ) {
         yaml_.fail( entry.first, what + ": " + std::to_string( key ) + " given twice" );
      }
      // The sentinel 64 is no DSCP: it gives a global slot back to the chip.
      bool const dscpValued = dscpValues && entry.second.IsScalar() &&
                              entry.second.Scalar() != std::to_string( valueMax );
      out[ key ] = dscpValued ? yaml_.dscp( entry.second, what )
                              : unsigned( yaml_.integer( entry.second, what, 0, valueMax ) );
   }
   return out;
}

GlobalMapsDef BasicQosReader::globalMaps( YAML::Node const& node ) const {
   std::vector< std::string_view > keys{ "cosRewrite", "dscpRewrite", "globalEcn",
                                         "ecnDelayThreshold" };
   for( auto const& f : globalMapFields )
      keys.push_back( f.key );
   yaml_.checkMapping( node, "globalMaps", keys );
   GlobalMapsDef maps;
   for( auto const& f : globalMapFields ) {
      std::string const key( f.key );
      if( auto const m = node[ key ] )
         maps.*f.member = numberMap( m, key, f.keyMax, f.valueMax, f.dscpValues );
   }
   if( auto const c = node[ "cosRewrite" ] ) maps.cosRewrite = yaml_.flag( c, "cosRewrite" );
   if( auto const d = node[ "dscpRewrite" ] ) maps.dscpRewrite = yaml_.flag( d, "dscpRewrite" );
   if( auto const e = node[ "globalEcn" ] ) maps.globalEcn = thresholds( e, "globalEcn" );
   if( auto const t = node[ "ecnDelayThreshold" ] ) {
      maps.ecnDelayThreshold = Qos::EcnDelayThreshold{ std::uint32_t(
            yaml_.integer( t, "ecnDelayThreshold", 0, UINT32_MAX ) ) };
   }
   return maps;
}

DscpRewriteMapDef BasicQosReader::dscpRewriteMap( YAML::Node const& node ) const {
   yaml_.checkMapping( node, "DSCP rewrite map", { "name", "tcToDscp" } );
   DscpRewriteMapDef map;
   map.name = yaml_.text( yaml_.required( node, "name" ), "name" );
   if( auto const m = node[ "tcToDscp" ] ) map.tcToDscp = numberMap( m, "tcToDscp", 15, 63, true );
   return map;
}

CosToTcProfileDef BasicQosReader::cosToTcProfile( YAML::Node const& node ) const {
   yaml_.checkMapping( node, "COS-to-TC profile", { "name", "cosToTc" } );
   CosToTcProfileDef profile;
   profile.name = yaml_.text( yaml_.required( node, "name" ), "name" );
   if( auto const m = node[ "cosToTc" ] ) profile.cosToTc = numberMap( m, "cosToTc", 7, 15 );
   return profile;
}

IntfQosDef BasicQosReader::intfQos( YAML::Node const& node ) const {
   yaml_.checkMapping( node, "interface QoS",
                       { "interface", "trust", "defaultCos", "defaultDscp", "shapeRate",
                         "dscpRewriteMap", "cosToTcProfile", "queues" } );
   IntfQosDef q;
   q.intf = interfaces_.intfIdOf( yaml_.required( node, "interface" ), "interface" );
   if( auto const t = node[ "trust" ] ) q.trust = trustMode( t );
   if( auto const c = node[ "defaultCos" ] ) {
      q.defaultCos = Qos::Cos( yaml_.integer( c, "defaultCos", 0, 7 ) );
   }
   if( auto const d = node[ "defaultDscp" ] )
      q.defaultDscp = Qos::Dscp( yaml_.dscp( d, "defaultDscp" ) );
   if( auto const s = node[ "shapeRate" ] ) q.shapeRate = shapeRate( s, "shapeRate" );
   if( auto const m = node[ "dscpRewriteMap" ] )
      q.dscpRewriteMap = yaml_.text( m, "dscpRewriteMap" );
   if( auto const p = node[ "cosToTcProfile" ] )
      q.cosToTcProfile = yaml_.text( p, "cosToTcProfile" );
   if( auto const queues = node[ "queues" ] ) {
      yaml_.checkSequence( queues, "queues" );
      for( YAML::Node const& item : queues ) {
         QueueDef queueDef = queue( item );
         for( QueueDef const& other : q.queues ) {
            if( other.queue == queueDef.queue )
               yaml_.fail( item, "queues: this queue is given twice" );
         }
         q.queues.push_back( std::move( queueDef ) );
      }
   }
   return q;
}

QueueDef BasicQosReader::queue( YAML::Node const& node ) const {
   yaml_.checkMapping( node, "queue",
                       { "queue", "type", "priority", "shapeRate", "guaranteedBw", "ecn", "nonEct",
                         "delayEcn", "ecnDelayThreshold", "wred", "dropThresholds" } );
   QueueDef q;
   auto const id =
         Qos::TxQueueId( yaml_.integer( yaml_.required( node, "queue" ), "queue", 0, 15 ) );
   Qos::TxQueueType type = Qos::unicastQueue_;
   if( auto const t = node[ "type" ] ) {
      type = yaml_.choice( t, "type", NameTable< Qos::TxQueueType >( queueTypes ) );
   }
   q.queue = Qos::TxQueue( id, type );
   if( auto const p = node[ "priority" ] ) {
      q.priority = yaml_.choice( p, "priority", NameTable< Qos::TxQueuePriority >( priorities ) );
   }
   if( auto const s = node[ "shapeRate" ] ) q.shapeRate = shapeRate( s, "shapeRate" );
   if( auto const g = node[ "guaranteedBw" ] ) q.guaranteedBw = guaranteedBw( g );
   if( auto const e = node[ "ecn" ] ) q.ecn = thresholds( e, "ecn" );
   if( auto const n = node[ "nonEct" ] ) q.nonEct = Qos::NonEctStatus{ true, bytes( n, "nonEct" ) };
   if( auto const d = node[ "delayEcn" ] ) q.delayEcn = yaml_.flag( d, "delayEcn" );
   if( auto const t = node[ "ecnDelayThreshold" ] ) {
      q.ecnDelayThreshold = Qos::EcnDelayThreshold{ std::uint32_t(
            yaml_.integer( t, "ecnDelayThreshold", 0, UINT32_MAX ) ) };
   }
   if( auto const w = node[ "wred" ] ) q.wred = thresholds( w, "wred" );
   if( auto const d = node[ "dropThresholds" ] ) {
      for( auto const& [ dp, limit ] : numberMap( d, "dropThresholds", 3, UINT32_MAX >> 1 ) )
         q.dropThresholds[ dp ] = limit;
   }
   return q;
}

// A name, or the number a configuration agent may publish beside them: 3 stands for a port
// without a settled mode, and the engine leaves a mode it does not know to the driver's record.
Qos::TrustMode BasicQosReader::trustMode( YAML::Node const& node ) const {
   std::string const value = yaml_.text( node, "trust" );
   if( !std::isdigit( static_cast< unsigned char >( value.front() ) ) ) {
      return yaml_.choice( node, "trust", NameTable< Qos::TrustMode >( trustModes ) );
   }
   return Qos::TrustMode( yaml_.integer( node, "trust", 0, UINT32_MAX ) );
}

Qos::ShapeRate BasicQosReader::shapeRate( YAML::Node const& node, std::string const& what ) const {
   yaml_.checkMapping( node, what, { "rate", "unit" } );
   Qos::ShapeRate r;
   r.rate = std::uint32_t( yaml_.integer( yaml_.required( node, "rate" ), "rate", 0, UINT32_MAX ) );
   if( auto const u = node[ "unit" ] ) {
      r.unit = yaml_.choice( u, "unit", NameTable< Qos::ShapeRateUnit >( shapeUnits ) );
   }
   return r;
}

Qos::GuaranteedBw BasicQosReader::guaranteedBw( YAML::Node const& node ) const {
   yaml_.checkMapping( node, "guaranteedBw", { "rate", "unit" } );
   Qos::GuaranteedBw b;
   b.rate = std::uint32_t( yaml_.integer( yaml_.required( node, "rate" ), "rate", 0,
                                          Qos::GuaranteedBw::invalidRate - 1 ) );
   if( auto const u = node[ "unit" ] ) {
      b.unit = yaml_.choice( u, "unit", NameTable< Qos::GuaranteedBwUnit >( bandwidthUnits ) );
   }
   return b;
}

Qos::QueueThresholds BasicQosReader::thresholds( YAML::Node const& node,
                                                 std::string const& what ) const {
   yaml_.checkMapping( node, what, { "min", "max", "probability" } );
   Qos::QueueThresholds t;
   t.enabled = true;
   t.minThreshold = bytes( yaml_.required( node, "min" ), "min" );
   t.maxThreshold = bytes( yaml_.required( node, "max" ), "max" );
   if( t.minThreshold > t.maxThreshold ) yaml_.fail( node, what + ": min is above max" );
   if( auto const p = node[ "probability" ] ) {
      t.maxProbability = std::uint32_t( yaml_.integer( p, "probability", 1, 100 ) );
   }
   return t;
}

std::uint32_t BasicQosReader::bytes( YAML::Node const& node, std::string const& what ) const {
   return std::uint32_t( yaml_.integer( node, what, 0, UINT32_MAX ) );
}

EcnCountersDef BasicQosReader::ecnCounters( YAML::Node const& node ) const {
   yaml_.checkMapping( node, "ECN counters", { "interface", "queues" } );
   EcnCountersDef c;
   c.intf = interfaces_.intfIdOf( yaml_.required( node, "interface" ), "interface" );
   for( Span const& s : yaml_.spans( yaml_.required( node, "queues" ), "queues", 0, 15 ) ) {
      for( unsigned q = s.low; q <= s.high; ++q )
         c.queues.insert( q );
   }
   return c;
}

LinkDef BasicQosReader::link( YAML::Node const& node ) const {
   yaml_.checkMapping( node, "link", { "interface", "speed", "active" } );
   LinkDef l;
   l.intf = interfaces_.intfIdOf( yaml_.required( node, "interface" ), "interface" );
   if( !l.intf.isEthernet() )
      yaml_.fail( node[ "interface" ], "interface: a link is an Ethernet port's" );
   if( auto const s = node[ "speed" ] ) {
      l.speedMbps = yaml_.unsignedInteger( s, "speed", 1600000 );
   }
   if( auto const a = node[ "active" ] ) l.active = yaml_.flag( a, "active" );
   return l;
}

}  // namespace Sim
