#include "NevQos/sim/runner/BasicReport.h"

#include <cstdint>
#include <ostream>
#include <string>

#include "NevQos/platform/entities/QueueSettings.h"
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

// ECN or WRED thresholds: null when off.
Json thresholdsOf( Qos::QueueThresholds const& t ) {
   if( !t.enabled ) return nullptr;
   return Json{ { "minThreshold", t.minThreshold },
                { "maxThreshold", t.maxThreshold },
                { "maxProbability", t.maxProbability } };
}

// A default COS or DSCP: null for the chip's own.
template< class Value >
Json defaultOf( Value const& v ) {
   return v.isValid() ? Json( unsigned( v ) ) : Json( nullptr );
}

// A rate as the number `key` and its unit `key`Unit.
template< class Rate >
void addRate( Json& out, std::string const& key, Rate const& r ) {
   out[ key ] = r.rate;
   out[ key + "Unit" ] = textOf( r.unit );
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
                { "globalEcn", thresholdsOf( g.ecn ) } };
}

Json portsOf( SimQosBasicHelper const& chip ) {
   Json out = Json::array();
   for( auto const& [ intf, p ] : chip.ports() ) {
      Json port{ { "interface", intfName( intf ) },
                 { "trustMode", textOf( p.trustMode ) },
                 { "defaultCos", defaultOf( p.defaultCos ) },
                 { "defaultDscp", defaultOf( p.defaultDscp ) } };
      addRate( port, "shapeRate", p.shapeRate );
      port[ "dscpRewriteMap" ] = p.dscpRewriteMap.charPtr();
      port[ "cosToTcProfile" ] = p.cosToTcProfile.charPtr();
      out.push_back( std::move( port ) );
   }
   return out;
}

Json queuesOf( SimQosBasicHelper const& chip ) {
   Json out = Json::array();
   for( auto const& [ key, q ] : chip.queues() ) {
      Json thresholds = Json::object();
      for( auto const& [ dp, bytes ] : q.dropThresholds )
         thresholds[ std::to_string( dp ) ] = bytes;
      Json queue{ { "queue", SimQosBasicHelper::queueName( key.intf, key.queue ) },
                  { "priority", textOf( q.priority ) } };
      addRate( queue, "shapeRate", q.shapeRate );
      if( q.guaranteedBw.rate != Qos::GuaranteedBw::invalidRate ) {
         addRate( queue, "guaranteedBw", q.guaranteedBw );
      } else {
         queue[ "guaranteedBw" ] = nullptr;
         queue[ "guaranteedBwUnit" ] = nullptr;
      }
      queue[ "guaranteedRate" ] = q.guaranteedRate;
      queue[ "unitMismatch" ] = q.guaranteedBwUnitMismatch;
      queue[ "ecn" ] = thresholdsOf( q.ecn );
      queue[ "nonEct" ] = q.nonEct.enabled ? Json( q.nonEct.threshold ) : Json( nullptr );
      queue[ "delayEcn" ] = q.delayEcnEnabled;
      queue[ "ecnDelayThreshold" ] = q.ecnDelayThreshold.microseconds;
      queue[ "wred" ] = thresholdsOf( q.wred );
      queue[ "dropThresholds" ] = thresholds;
      out.push_back( std::move( queue ) );
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
      counters.push_back( Json{ { "interface", intfName( intf ) }, { "queue", queue } } );
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

namespace {

// The text of thresholds as the chip's records print them: "off" or "1000-2000 bytes, 100%".
std::string thresholdsText( Json const& t ) {
   if( t.is_null() ) return textOf( Qos::QueueThresholds{} );
   return textOf(
         Qos::QueueThresholds{ .enabled = true,
                               .minThreshold = t[ "minThreshold" ].get< std::uint32_t >(),
                               .maxThreshold = t[ "maxThreshold" ].get< std::uint32_t >(),
                               .maxProbability = t[ "maxProbability" ].get< std::uint32_t >() } );
}

// A default COS or DSCP: "default" for the chip's own.
std::string defaultText( Json const& v ) {
   return v.is_null() ? "default" : std::to_string( v.get< unsigned >() );
}

// The rate `key` with its unit: "5000 kbps", or "none" for none.
std::string rateText( Json const& in, std::string const& key ) {
   if( in[ key ].is_null() ) return "none";
   return std::to_string( in[ key ].get< unsigned >() ) + " " + printable( in[ key + "Unit" ] );
}

}  // namespace

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
      if( table.is_object() && name != "globalEcn" ) slots += table.size();
   }
   os << "  global maps: " << slots << " slots programmed; COS rewrite "
      << ( g[ "cosRewrite" ].get< bool >() ? "on" : "off" ) << ", DSCP rewrite "
      << ( g[ "dscpRewrite" ].get< bool >() ? "on" : "off" ) << ", global ECN "
      << thresholdsText( g[ "globalEcn" ] ) << "\n";
   for( Json const& p : basic[ "ports" ] ) {
      os << "  port " << printable( p[ "interface" ] ) << ": trust "
         << printable( p[ "trustMode" ] ) << ", default COS " << defaultText( p[ "defaultCos" ] )
         << ", default DSCP " << defaultText( p[ "defaultDscp" ] ) << ", shape "
         << rateText( p, "shapeRate" ) << "\n";
   }
   for( Json const& q : basic[ "queues" ] ) {
      os << "  queue " << printable( q[ "queue" ] ) << ": " << printable( q[ "priority" ] )
         << ", shape " << rateText( q, "shapeRate" ) << ", guaranteed "
         << rateText( q, "guaranteedBw" )
         << ( q[ "unitMismatch" ].get< bool >() ? " (held back: units differ)" : "" ) << ", ECN "
         << thresholdsText( q[ "ecn" ] ) << ", WRED " << thresholdsText( q[ "wred" ] ) << "\n";
   }
   for( auto const& [ name, pool ] : basic[ "profiles" ].items() ) {
      os << "  " << name << " profiles: " << poolText( pool ) << "\n";
   }
   os << "  ECN counters: " << poolText( basic[ "ecnCounters" ] ) << "\n";
}

}  // namespace Sim
