#include "NevQos/sim/runner/BasicReport.h"

#include <ostream>
#include <string>

#include "NevQos/sim/chip/ChipText.h"
#include "NevQos/sim/runner/Report.h"
#include "NevQos/sim/runner/TextFormat.h"

namespace Sim {

namespace {

using Json = nlohmann::ordered_json;

// The programmed slots of a table, "from": to.
template< class Table >
Json tableOf( Table const& table ) {
   Json out = Json::object();
   for( std::size_t i = 0; i < table.size(); ++i ) {
      if( table[ i ].isValid() ) out[ std::to_string( i ) ] = unsigned( table[ i ] );
   }
   return out;
}

Json globalsOf( BasicGlobalTables const& g ) {
   return Json{ { "cosToTc", tableOf( g.cosToTc ) },
                { "dscpToTc", tableOf( g.dscpToTc ) },
                { "dscpToDp", tableOf( g.dscpToDp ) },
                { "expToTc", tableOf( g.expToTc ) },
                { "tcToCos", tableOf( g.tcToCos ) },
                { "tcToDscp", tableOf( g.tcToDscp ) },
                { "tcToExp", tableOf( g.tcToExp ) },
                { "tcToTxQueue", tableOf( g.tcToUcTxQueue ) },
                { "tcToMcTxQueue", tableOf( g.tcToMcTxQueue ) },
                { "cosRewrite", g.cosRewriteEnabled },
                { "dscpRewrite", g.dscpRewriteEnabled },
                { "globalEcn", textOf( g.ecn ) } };
}

std::string sentinelText( unsigned value, bool valid ) {
   return valid ? std::to_string( value ) : "default";
}

Json portsOf( SimQosBasicHelper const& chip ) {
   Json out = Json::array();
   for( auto const& [ intf, p ] : chip.ports() ) {
      out.push_back(
            Json{ { "interface", intfName( intf ) },
                  { "trustMode", textOf( p.trustMode ) },
                  { "defaultCos", sentinelText( p.defaultCos, p.defaultCos.isValid() ) },
                  { "defaultDscp", sentinelText( p.defaultDscp, p.defaultDscp.isValid() ) },
                  { "shapeRate", textOf( p.shapeRate ) },
                  { "dscpRewriteMap", p.dscpRewriteMap.charPtr() },
                  { "cosToTcProfile", p.cosToTcProfile.charPtr() } } );
   }
   return out;
}

Json queuesOf( SimQosBasicHelper const& chip ) {
   Json out = Json::array();
   for( auto const& [ key, q ] : chip.queues() ) {
      Json thresholds = Json::object();
      for( auto const& [ dp, bytes ] : q.dropThresholds )
         thresholds[ std::to_string( dp ) ] = bytes;
      bool const guaranteed = q.guaranteedBw.rate != Qos::GuaranteedBw::invalidRate;
      out.push_back( Json{ { "queue", SimQosBasicHelper::queueName( key.intf, key.queue ) },
                           { "priority", textOf( q.priority ) },
                           { "shapeRate", textOf( q.shapeRate ) },
                           { "guaranteedBw", guaranteed ? textOf( q.guaranteedBw ) : "none" },
                           { "guaranteedRate", q.guaranteedRate },
                           { "unitMismatch", q.guaranteedBwUnitMismatch },
                           { "ecn", textOf( q.ecn ) },
                           { "nonEct", textOf( q.nonEct ) },
                           { "delayEcn", q.delayEcnEnabled },
                           { "ecnDelayThreshold", textOf( q.ecnDelayThreshold ) },
                           { "wred", textOf( q.wred ) },
                           { "dropThresholds", thresholds } } );
   }
   return out;
}

Json profilesOf( ProfilePool const& pool ) {
   Json profiles = Json::array();
   for( auto const& [ id, p ] : pool.profiles() ) {
      Json users = Json::array();
      for( std::string const& u : p.users )
         users.push_back( u );
      profiles.push_back( Json{ { "id", id }, { "settings", p.settings }, { "queues", users } } );
   }
   Json out = poolOf( pool.size(), pool.used() );
   out[ "profiles" ] = std::move( profiles );
   return out;
}

}  // namespace

void addFeatures( Json& status, Qos::SliceHwStatus const& slice ) {
   Json features = Json::array();
   for( auto it = slice.hwProgrammingVersionAndStatus().iter(); it; ++it ) {
      auto const& r = *it.value();
      features.push_back( Json{ { "feature", unsigned( it.key() ) },
                                { "name", textOf( it.key() ) },
                                { "status", textOf( r.hwProgrammingStatus() ) },
                                { "errMessage", r.errMessage().stdString() },
                                { "version", r.version() } } );
   }
   status[ "basicStatus" ] = textOf( slice.status() );
   status[ "features" ] = features;
   status[ "basicConfigVersionUpdateTime" ] = slice.configVersionUpdateTime();
   Json profiles = Json::object();
   for( auto it = slice.intfToCosToTcProfile().iter(); it; ++it )
      profiles[ intfName( it.key() ) ] = it.value().charPtr();
   status[ "intfToCosToTcProfile" ] = std::move( profiles );
}

Json basicOf( SimQosBasicHelper const& chip ) {
   Json counters = Json::array();
   for( auto const& [ intf, queue ] : chip.ecnCounters() )
      counters.push_back( intfName( intf ) + " " + std::to_string( queue ) );
   Json ecnCounters = poolOf( chip.config().ecnQueueCounters, chip.ecnCounters().size() );
   ecnCounters[ "queues" ] = std::move( counters );
   return Json{ { "globalMaps", globalsOf( chip.globals() ) },
                { "ports", portsOf( chip ) },
                { "queues", queuesOf( chip ) },
                { "profiles",
                  Json{ { "ecn", profilesOf( chip.ecnProfiles() ) },
                        { "wred", profilesOf( chip.wredProfiles() ) },
                        { "dropThresholds", profilesOf( chip.dropThresholdProfiles() ) } } },
                { "ecnCounters", std::move( ecnCounters ) } };
}

void printFeatures( std::ostream& os, Json const& status ) {
   os << "\nBasic QoS features, slice status " << printable( status[ "basicStatus" ] )
      << ", configuration " << status[ "basicConfigVersionUpdateTime" ] << " applied:\n";
   for( Json const& f : status[ "features" ] ) {
      os << "  " << f[ "feature" ] << " " << printable( f[ "name" ] ) << ": "
         << printable( f[ "status" ] ) << ", version " << f[ "version" ];
      if( !printable( f[ "errMessage" ] ).empty() ) {
         os << ", last error \"" << printable( f[ "errMessage" ] ) << "\"";
      }
      os << "\n";
   }
   for( auto const& [ intf, profile ] : status[ "intfToCosToTcProfile" ].items() ) {
      os << "  COS-to-TC profile " << printable( profile ) << " programmed on "
         << printableText( intf ) << "\n";
   }
}

void printBasic( std::ostream& os, Json const& basic ) {
   os << "\nBasic QoS in the chip:\n";
   Json const& g = basic[ "globalMaps" ];
   std::size_t slots = 0;
   for( auto const& [ name, table ] : g.items() ) {
      if( table.is_object() ) slots += table.size();
   }
   os << "  global maps: " << slots << " slots programmed; COS rewrite "
      << ( g[ "cosRewrite" ].get< bool >() ? "on" : "off" ) << ", DSCP rewrite "
      << ( g[ "dscpRewrite" ].get< bool >() ? "on" : "off" ) << ", global ECN "
      << printable( g[ "globalEcn" ] ) << "\n";
   for( Json const& p : basic[ "ports" ] ) {
      os << "  port " << printable( p[ "interface" ] ) << ": trust "
         << printable( p[ "trustMode" ] ) << ", default COS " << printable( p[ "defaultCos" ] )
         << ", default DSCP " << printable( p[ "defaultDscp" ] ) << ", shape "
         << printable( p[ "shapeRate" ] ) << "\n";
   }
   for( Json const& q : basic[ "queues" ] ) {
      os << "  queue " << printable( q[ "queue" ] ) << ": " << printable( q[ "priority" ] )
         << ", shape " << printable( q[ "shapeRate" ] ) << ", guaranteed "
         << printable( q[ "guaranteedBw" ] )
         << ( q[ "unitMismatch" ].get< bool >() ? " (held back: units differ)" : "" ) << ", ECN "
         << printable( q[ "ecn" ] ) << ", WRED " << printable( q[ "wred" ] ) << "\n";
   }
   for( auto const& [ name, pool ] : basic[ "profiles" ].items() ) {
      os << "  " << name << " profiles: " << poolText( pool ) << "\n";
   }
   os << "  ECN counters: " << poolText( basic[ "ecnCounters" ] ) << "\n";
}

}  // namespace Sim
