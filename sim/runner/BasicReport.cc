#include "sim/runner/BasicReport.h"

#include <ostream>
#include <sstream>
#include <string>

namespace Sim {

namespace {

using Json = nlohmann::ordered_json;

template< class T >
std::string text( T const& v ) {
   std::ostringstream os;
   os << v;
   return os.str();
}

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
                { "globalEcn", text( g.ecn ) } };
}

std::string sentinelText( unsigned value, bool valid ) {
   return valid ? std::to_string( value ) : "default";
}

Json portsOf( SimQosBasicHelper const& chip ) {
   Json out = Json::array();
   for( auto const& [ intf, p ] : chip.ports() ) {
      out.push_back(
            Json{ { "interface", intf.stringValue().stdString() },
                  { "trustMode", text( p.trustMode ) },
                  { "defaultCos", sentinelText( p.defaultCos, p.defaultCos.isValid() ) },
                  { "defaultDscp", sentinelText( p.defaultDscp, p.defaultDscp.isValid() ) },
                  { "shapeRate", text( p.shapeRate ) },
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
                           { "priority", text( q.priority ) },
                           { "shapeRate", text( q.shapeRate ) },
                           { "guaranteedBw", guaranteed ? text( q.guaranteedBw ) : "none" },
                           { "guaranteedRate", q.guaranteedRate },
                           { "unitMismatch", q.guaranteedBwUnitMismatch },
                           { "ecn", text( q.ecn ) },
                           { "nonEct", text( q.nonEct ) },
                           { "delayEcn", q.delayEcnEnabled },
                           { "ecnDelayThreshold", text( q.ecnDelayThreshold ) },
                           { "wred", text( q.wred ) },
                           { "dropThresholds", thresholds } } );
   }
   return out;
}

Json poolOf( ProfilePool const& pool ) {
   Json profiles = Json::array();
   for( auto const& [ id, p ] : pool.profiles() ) {
      Json users = Json::array();
      for( std::string const& u : p.users )
         users.push_back( u );
      profiles.push_back( Json{ { "id", id }, { "settings", p.settings }, { "queues", users } } );
   }
   return Json{ { "size", pool.size() },
                { "used", pool.used() },
                { "free", pool.size() - pool.used() },
                { "profiles", profiles } };
}

}  // namespace

void addFeatures( Json& status, Qos::SliceHwStatus const& slice ) {
   Json features = Json::array();
   for( auto it = slice.hwProgrammingVersionAndStatus().iter(); it; ++it ) {
      auto const& r = *it.value();
      features.push_back( Json{ { "feature", unsigned( it.key() ) },
                                { "name", text( it.key() ) },
                                { "status", text( r.hwProgrammingStatus() ) },
                                { "errMessage", r.errMessage().stdString() },
                                { "version", r.version() } } );
   }
   status[ "basicStatus" ] = text( slice.status() );
   status[ "features" ] = features;
}

Json basicOf( SimQosBasicHelper const& chip ) {
   Json counters = Json::array();
   for( auto const& [ intf, queue ] : chip.ecnCounters() )
      counters.push_back( intf.stringValue().stdString() + " " + std::to_string( queue ) );
   std::uint32_t const size = chip.config().ecnQueueCounters;
   auto const used = static_cast< std::uint32_t >( chip.ecnCounters().size() );
   return Json{ { "globalMaps", globalsOf( chip.globals() ) },
                { "ports", portsOf( chip ) },
                { "queues", queuesOf( chip ) },
                { "profiles",
                  Json{ { "ecn", poolOf( chip.ecnProfiles() ) },
                        { "wred", poolOf( chip.wredProfiles() ) },
                        { "dropThresholds", poolOf( chip.dropThresholdProfiles() ) } } },
                { "ecnCounters", Json{ { "size", size },
                                       { "used", used },
                                       { "free", size - used },
                                       { "queues", counters } } } };
}

void printFeatures( std::ostream& os, Json const& status ) {
   os << "\nBasic QoS features, slice status " << status[ "basicStatus" ].get< std::string >()
      << ":\n";
   for( Json const& f : status[ "features" ] ) {
      os << "  " << f[ "feature" ] << " " << f[ "name" ].get< std::string >() << ": "
         << f[ "status" ].get< std::string >() << ", version " << f[ "version" ];
      if( !f[ "errMessage" ].get< std::string >().empty() ) {
         os << ", last error \"" << f[ "errMessage" ].get< std::string >() << "\"";
      }
      os << "\n";
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
      << g[ "globalEcn" ].get< std::string >() << "\n";
   for( Json const& p : basic[ "ports" ] ) {
      os << "  port " << p[ "interface" ].get< std::string >() << ": trust "
         << p[ "trustMode" ].get< std::string >() << ", default COS "
         << p[ "defaultCos" ].get< std::string >() << ", default DSCP "
         << p[ "defaultDscp" ].get< std::string >() << ", shape "
         << p[ "shapeRate" ].get< std::string >() << "\n";
   }
   for( Json const& q : basic[ "queues" ] ) {
      os << "  queue " << q[ "queue" ].get< std::string >() << ": "
         << q[ "priority" ].get< std::string >() << ", shape "
         << q[ "shapeRate" ].get< std::string >() << ", guaranteed "
         << q[ "guaranteedBw" ].get< std::string >()
         << ( q[ "unitMismatch" ].get< bool >() ? " (held back: units differ)" : "" ) << ", ECN "
         << q[ "ecn" ].get< std::string >() << ", WRED " << q[ "wred" ].get< std::string >()
         << "\n";
   }
   for( auto const& [ name, pool ] : basic[ "profiles" ].items() ) {
      os << "  " << name << " profiles: " << pool[ "used" ] << " used, " << pool[ "free" ]
         << " free of " << pool[ "size" ] << "\n";
   }
   Json const& c = basic[ "ecnCounters" ];
   os << "  ECN counters: " << c[ "used" ] << " used, " << c[ "free" ] << " free of " << c[ "size" ]
      << "\n";
}

}  // namespace Sim
