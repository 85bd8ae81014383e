// The basic QoS rules of the configuration: the maps and profiles an interface names exist, and
// one still named is not removed.
#include <string>

#include "NevQos/sim/chip/ChipText.h"
#include "NevQos/sim/scenario/ConfigModel.h"

namespace Sim {

namespace {

[[noreturn]] void refuse( std::string const& problem ) {
   throw ConfigModel::Refusal( problem );
}

template< class Map >
void merge( Map& into, Map const& from ) {
   for( auto const& [ key, value ] : from )
      into[ key ] = value;
}

}  // namespace

void ConfigModel::put( GlobalMapsDef const& maps ) {
   for( GlobalMap const& map : globalMapFields )
      merge( globalMaps_.*map.member, maps.*map.member );
   if( maps.cosRewrite ) globalMaps_.cosRewrite = maps.cosRewrite;
   if( maps.dscpRewrite ) globalMaps_.dscpRewrite = maps.dscpRewrite;
   if( maps.globalEcn ) globalMaps_.globalEcn = maps.globalEcn;
   if( maps.ecnDelayThreshold ) globalMaps_.ecnDelayThreshold = maps.ecnDelayThreshold;
}

void ConfigModel::put( DscpRewriteMapDef const& map ) {
   dscpRewriteMaps_[ map.name ] = map;
}

void ConfigModel::put( DscpRewriteMapRemoval const& removal ) {
   if( !dscpRewriteMaps_.contains( removal.name ) ) {
      refuse( "DSCP rewrite map " + removal.name + " does not exist" );
   }
   for( auto const& [ intf, qos ] : intfQos_ ) {
      if( qos.dscpRewriteMap == removal.name ) {
         refuse( "DSCP rewrite map " + removal.name + " is used by interface " + intfName( intf ) );
      }
   }
   dscpRewriteMaps_.erase( removal.name );
}

void ConfigModel::put( CosToTcProfileDef const& profile ) {
   cosToTcProfiles_[ profile.name ] = profile;
}

void ConfigModel::put( CosToTcProfileRemoval const& removal ) {
   if( !cosToTcProfiles_.contains( removal.name ) ) {
      refuse( "COS-to-TC profile " + removal.name + " does not exist" );
   }
   for( auto const& [ intf, qos ] : intfQos_ ) {
      if( qos.cosToTcProfile == removal.name ) {
         refuse( "COS-to-TC profile " + removal.name + " is used by interface " +
                 intfName( intf ) );
      }
   }
   cosToTcProfiles_.erase( removal.name );
}

void ConfigModel::put( IntfQosDef const& qos ) {
   if( !qos.dscpRewriteMap.empty() && !dscpRewriteMaps_.contains( qos.dscpRewriteMap ) ) {
      refuse( "interface " + intfName( qos.intf ) + " names DSCP rewrite map " +
              qos.dscpRewriteMap + ", which does not exist" );
   }
   if( !qos.cosToTcProfile.empty() && !cosToTcProfiles_.contains( qos.cosToTcProfile ) ) {
      refuse( "interface " + intfName( qos.intf ) + " names COS-to-TC profile " +
              qos.cosToTcProfile + ", which does not exist" );
   }
   intfQos_[ qos.intf ] = qos;
}

void ConfigModel::put( IntfQosRemoval const& removal ) {
   if( !intfQos_.erase( removal.intf ) ) {
      refuse( "interface " + intfName( removal.intf ) + " has no QoS to remove" );
   }
}

void ConfigModel::put( EcnCountersDef const& counters ) {
   ecnCounters_[ counters.intf ] = counters;
}

void ConfigModel::put( EcnCountersRemoval const& removal ) {
   if( !ecnCounters_.erase( removal.intf ) ) {
      refuse( "interface " + intfName( removal.intf ) + " has no ECN counters to remove" );
   }
}

void ConfigModel::put( LinkDef const& link ) {
   LinkDef& stands = links_[ link.intf ];
   stands.intf = link.intf;
   if( link.speedMbps ) stands.speedMbps = link.speedMbps;
   if( link.active ) stands.active = link.active;
}

}  // namespace Sim
