#include "NevQos/sim/scenario/BasicQosWriter.h"

#include <vector>

namespace Sim {

namespace {

// Makes a keyed attribute hold `wanted`: entries not wanted deleted, then the wanted written.
template< class Key, class Value, class Collection, class Set, class Del >
void keyedIs( Collection const& current, std::map< unsigned, unsigned > const& wanted, Set set,
              Del del ) {
   std::vector< Key > gone;
   for( auto it = current.iter(); it; ++it ) {
      if( !wanted.contains( unsigned( it.key() ) ) ) gone.push_back( it.key() );
   }
   for( Key const& k : gone )
      del( k );
   for( auto const& [ k, v ] : wanted )
      set( Key( k ), Value( v ) );
}

// keyedIs for attribute `name` of `entity`.
#define NEVQOS_KEYED_IS( entity, name, Key, Value, wanted )                         \
   keyedIs< Key, Value >( ( entity ).name(), wanted,                                \
                          [ & ]( Key k, Value v ) { ( entity ).name##Is( k, v ); }, \
                          [ & ]( Key k ) { ( entity ).name##Del( k ); } )

}  // namespace

void globalMapsIs( Qos::Status& status, GlobalMapsDef const& maps ) {
   NEVQOS_KEYED_IS( status, cosToTcMap, Qos::Cos, Qos::TrafficClass, maps.cosToTc );
   NEVQOS_KEYED_IS( status, dscpToTcMap, Qos::Dscp, Qos::TrafficClass, maps.dscpToTc );
   NEVQOS_KEYED_IS( status, dscpToDpMap, Qos::Dscp, Qos::DropPrecedence, maps.dscpToDp );
   NEVQOS_KEYED_IS( status, expToTcMap, Qos::Exp, Qos::TrafficClass, maps.expToTc );
   NEVQOS_KEYED_IS( status, tcToCosMap, Qos::TrafficClass, Qos::Cos, maps.tcToCos );
   NEVQOS_KEYED_IS( status, tcToDscpMap, Qos::TrafficClass, Qos::Dscp, maps.tcToDscp );
   NEVQOS_KEYED_IS( status, tcToExpMap, Qos::TrafficClass, Qos::Exp, maps.tcToExp );
   NEVQOS_KEYED_IS( status, tcToTxQueueMap, Qos::TrafficClass, Qos::TxQueueId, maps.tcToTxQueue );
   NEVQOS_KEYED_IS( status, tcToMcTxQueueMap, Qos::TrafficClass, Qos::TxQueueId,
                    maps.tcToMcTxQueue );
   if( maps.cosRewrite ) status.cosRewriteEnabledIs( *maps.cosRewrite );
   if( maps.dscpRewrite ) status.dscpRewriteEnabledIs( *maps.dscpRewrite );
   if( maps.globalEcn ) status.globalEcnStatusIs( *maps.globalEcn );
   if( maps.ecnDelayThreshold ) status.ecnDelayThresholdIs( *maps.ecnDelayThreshold );
}

void dscpRewriteMapIs( Qos::Status& status, DscpRewriteMapDef const& map ) {
   auto const entity = status.dscpRewriteMapIs( Zub::Name( map.name ) );
   NEVQOS_KEYED_IS( *entity, tcToDscpMap, Qos::TrafficClass, Qos::Dscp, map.tcToDscp );
}

void cosToTcProfileIs( Qos::Status& status, CosToTcProfileDef const& profile ) {
   auto const entity = status.cosToTcProfileIs( Zub::Name( profile.name ) );
   NEVQOS_KEYED_IS( *entity, cosToTcMap, Qos::Cos, Qos::TrafficClass, profile.cosToTc );
}

namespace {

void queueIs( Qos::TxQueueStatus& q, QueueDef const& def ) {
   q.priorityIs( def.priority );
   q.shapeRateIs( def.shapeRate );
   q.guaranteedBwIs( def.guaranteedBw );
   q.ecnStatusIs( def.ecn );
   q.nonEctStatusIs( def.nonEct );
   // The threshold first: the switch is what the engine follows.
   q.ecnDelayThresholdIs( def.ecnDelayThreshold );
   q.delayEcnEnabledIs( def.delayEcn );
   q.wredStatusIs( def.wred );
   std::map< unsigned, unsigned > thresholds;
   for( auto const& [ dp, bytes ] : def.dropThresholds )
      thresholds[ dp ] = bytes;
   NEVQOS_KEYED_IS( q, dropThresholds, Qos::DropPrecedence, std::uint32_t, thresholds );
}

}  // namespace

void intfQosIs( Qos::Status& status, IntfQosDef const& qos ) {
   auto const intf = status.intfStatusIs( qos.intf );
   intf->trustModeIs( qos.trust );
   intf->defaultCosIs( qos.defaultCos );
   intf->defaultDscpIs( qos.defaultDscp );
   intf->shapeRateIs( qos.shapeRate );
   intf->dscpRewriteMapNameIs( Zub::Name( qos.dscpRewriteMap ) );
   intf->cosToTcProfileNameIs( Zub::Name( qos.cosToTcProfile ) );
   std::vector< Qos::TxQueue > gone;
   for( auto it = intf->txQueueStatus().iter(); it; ++it ) {
      bool wanted = false;
      for( QueueDef const& q : qos.queues )
         wanted |= q.queue == it.key();
      if( !wanted ) gone.push_back( it.key() );
   }
   for( Qos::TxQueue const& q : gone )
      intf->txQueueStatusDel( q );
   for( QueueDef const& q : qos.queues )
      queueIs( *intf->txQueueStatusIs( q.queue ), q );
}

void ecnCountersIs( Qos::CounterConfig& config, EcnCountersDef const& counters ) {
   auto const entity = config.ecnIntfCounterConfigIs( counters.intf );
   std::vector< Qos::TxQueueId > gone;
   for( auto it = entity->ecnTxQueueCounterConfig().iter(); it; ++it ) {
      if( !counters.queues.contains( unsigned( it.key() ) ) ) gone.push_back( it.key() );
   }
   for( Qos::TxQueueId q : gone )
      entity->ecnTxQueueCounterConfigDel( q );
   for( unsigned q : counters.queues )
      entity->ecnTxQueueCounterConfigIs( Qos::TxQueueId( q ), true );
}

void linkIs( Interface::AllEthPhyIntfStatusDir& dir, LinkDef const& link ) {
   auto const status = dir.intfStatusIs( link.intf );
   if( link.speedMbps ) status->speedIs( *link.speedMbps );
   if( link.active ) status->activeIs( *link.active );
}

}  // namespace Sim
