#include "NevQos/sim/runner/ControlPlaneReport.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <ostream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "NevQos/sim/chip/ChipText.h"
#include "NevQos/sim/runner/Report.h"
#include "NevQos/sim/runner/TextFormat.h"

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
                { "retryAt", retry == Zub::never ? Json() : Json( retry ) },
                { "kernelConfig", sw.kernelCoppConfig() } };
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

// Every call on the driver, in order, its arguments as text as in the helpers' calls.
Json driverCallsOf( SimPktDrv const& drv ) {
   Json calls = Json::array();
   for( SimPktDrv::Call const& call : drv.calls() ) {
      Json args = Json::object();
      for( auto const& [ name, value ] : call.args )
         args[ name ] = value;
      calls.push_back( Json{ { "t", call.t }, { "op", call.op }, { "args", std::move( args ) } } );
   }
   return calls;
}

Json kernelOf( SimSwitch const& sw ) {
   SimPktDrv const& drv = sw.pktDrv();
   return Json{ { "hwInitialized", sw.hwStatus().hwInitialized() },
                { "operations", drv.operations() },
                { "cosToTc", mapOf( drv.cosToTc() ) },
                { "dscpToTc", mapOf( drv.dscpToTc() ) },
                { "tcToTxQueue", mapOf( drv.tcToUcTxQueue() ) },
                { "tcToMcTxQueue", mapOf( drv.tcToMcTxQueue() ) },
                { "calls", driverCallsOf( drv ) } };
}

std::string queueText( Json const& q ) {
   std::ostringstream os;
   os << printable( q[ "interface" ] ) << " class " << printable( q[ "class" ] ) << " ("
      << printable( q[ "queue" ] ) << ")";
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

// The driver's calls, one line per moment and operation, the operations of a moment in the
// order of their first call then: how many calls, and the slots told (the last value of a slot
// told twice). The JSON key keeps every call in order.
void printDriverCalls( std::ostream& os, Json const& calls ) {
   os << "\nKernel packet driver calls (" << calls.size() << "):\n";
   std::size_t i = 0;
   while( i < calls.size() ) {
      Json const t = calls[ i ][ "t" ];
      std::vector< std::pair< std::string, Json > > ops;
      std::map< std::string, std::size_t > counts;
      for( ; i < calls.size() && calls[ i ][ "t" ] == t; ++i ) {
         std::string const op = printable( calls[ i ][ "op" ] );
         auto at = std::find_if( ops.begin(), ops.end(),
                                 [ & ]( auto const& o ) { return o.first == op; } );
         if( at == ops.end() ) at = ops.insert( ops.end(), { op, Json::object() } );
         ++counts[ op ];
         // The arguments are the slot and what it maps to, in that order.
         auto const& args = calls[ i ][ "args" ];
         auto const slot = args.begin();
         at->second[ slot.value().dump() ] = std::next( slot ).value();
      }
      std::string const when = timeColumn( t.get< double >() );
      for( auto const& [ op, slots ] : ops ) {
         os << "  " << when << "  " << op << " (" << counts[ op ] << "): " << slotsText( slots )
            << "\n";
      }
   }
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
   if( copp[ "kernelConfig" ].get< bool >() ) {
      os << "  kernel CoPP configuration present: the chip's default CPU-queue rates are asked "
            "for at start-up\n";
   }

   Json const& kernel = controlPlane[ "kernel" ];
   os << "\nKernel packet driver (hardware "
      << ( kernel[ "hwInitialized" ].get< bool >() ? "initialized" : "not initialized" ) << ", "
      << kernel[ "operations" ] << " operations):\n";
   for( char const* map : { "cosToTc", "dscpToTc", "tcToTxQueue", "tcToMcTxQueue" } )
      os << "  " << map << ": " << slotsText( kernel[ map ] ) << "\n";
   printDriverCalls( os, kernel[ "calls" ] );
}

}  // namespace Sim
