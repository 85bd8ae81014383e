#include "sim/runner/ControlPlaneReport.h"

#include <ostream>
#include <sstream>
#include <string>

#include "sim/chip/ChipText.h"
#include "sim/runner/Report.h"

namespace Sim {

namespace {

using Json = nlohmann::ordered_json;

Json portQueueOf( SimQosAclHelper const& chip, Nev::ModIdPortQueueKey const& key ) {
   return Json{ { "queue", portQueueText( key ) },
                { "interface", chip.portName( key.modId(), key.port() ) },
                { "class", chip.cpuQueueClassName( key.queue() ) } };
}

Json coppOf( SimSwitch const& sw ) {
   SimQosAclHelper const& chip = sw.chip();
   Json programmed = Json::array();
   for( Nev::ModIdPortQueueKey const& key : chip.portCpuQueuePolicers() )
      programmed.push_back( portQueueOf( chip, key ) );
   Json policers = poolOf( chip.config().portCpuQueuePolicers, chip.portCpuQueuePolicers().size() );
   policers[ "queues" ] = std::move( programmed );

   Nev::DynamicPerPortCoppSm const& sm = sw.coppEngine();
   Json pending = Json::array();
   for( auto const& member : sm.pendingHwCopp() ) {
      Json entry = portQueueOf( chip, member.value );
      entry[ "index" ] = member.index;
      pending.push_back( std::move( entry ) );
   }
   Zub::Seconds const retry = sm.retryTime();
   return Json{ { "policers", std::move( policers ) },
                { "pending", std::move( pending ) },
                { "dequeued", sm.pendingHwCoppMetadata().dequeued },
                { "retryAt", retry == Zub::never ? Json() : Json( retry ) } };
}

// The slots the driver was told, "from": to.
template< class Map >
Json mapOf( Map const& map ) {
   Json out = Json::object();
   for( std::size_t i = 0; i < map.size(); ++i ) {
      if( map[ i ] ) out[ std::to_string( i ) ] = *map[ i ];
   }
   return out;
}

Json kernelOf( SimSwitch const& sw ) {
   SimPktDrv const& drv = sw.pktDrv();
   return Json{ { "hwInitialized", sw.hwStatus().hwInitialized() },
                { "operations", drv.operations() },
                { "cosToTc", mapOf( drv.cosToTc() ) },
                { "dscpToTc", mapOf( drv.dscpToTc() ) },
                { "tcToTxQueue", mapOf( drv.tcToUcTxQueue() ) },
                { "tcToMcTxQueue", mapOf( drv.tcToMcTxQueue() ) } };
}

std::string queueText( Json const& q ) {
   std::ostringstream os;
   os << q[ "interface" ].get< std::string >() << " class " << q[ "class" ].get< std::string >()
      << " (" << q[ "queue" ].get< std::string >() << ")";
   return os.str();
}

// A map's slots as "from:to", with neighbouring slots that map alike as one range: "0-7:0".
// Written through a stream: the optimiser misreads string appends here.
std::string slotsText( Json const& map ) {
   std::ostringstream os;
   bool any = false;
   auto const flush = [ & ]( int first, int last, Json const& to ) {
      os << ( any ? " " : "" ) << first;
      if( last != first ) os << "-" << last;
      os << ":" << to.dump();
      any = true;
   };
   int first = -1, last = -1;
   Json value;
   for( auto const& [ from, to ] : map.items() ) {
      int const slot = std::stoi( from );
      if( first >= 0 && slot == last + 1 && to == value ) {
         last = slot;
         continue;
      }
      if( first >= 0 ) flush( first, last, value );
      first = last = slot;
      value = to;
   }
   if( first >= 0 ) flush( first, last, value );
   return any ? os.str() : "nothing";
}

}  // namespace

Json controlPlaneOf( SimSwitch const& sw ) {
   return Json{ { "copp", coppOf( sw ) }, { "kernel", kernelOf( sw ) } };
}

void printControlPlane( std::ostream& os, Json const& controlPlane ) {
   Json const& copp = controlPlane[ "copp" ];
   os << "\nPer-port CoPP policers: " << poolText( copp[ "policers" ] ) << "\n";
   for( Json const& q : copp[ "policers" ][ "queues" ] )
      os << "  " << queueText( q ) << "\n";
   os << "  waiting for a retry: " << copp[ "pending" ].size();
   if( !copp[ "retryAt" ].is_null() ) os << ", next retry at " << copp[ "retryAt" ] << " s";
   os << "\n";
   for( Json const& q : copp[ "pending" ] )
      os << "    #" << q[ "index" ] << " " << queueText( q ) << "\n";

   Json const& kernel = controlPlane[ "kernel" ];
   os << "\nKernel packet driver (hardware "
      << ( kernel[ "hwInitialized" ].get< bool >() ? "initialized" : "not initialized" ) << ", "
      << kernel[ "operations" ] << " operations):\n";
   for( char const* map : { "cosToTc", "dscpToTc", "tcToTxQueue", "tcToMcTxQueue" } )
      os << "  " << map << ": " << slotsText( kernel[ map ] ) << "\n";
}

}  // namespace Sim
