#include "NevQos/sim/checks/SwitchImage.h"

#include <sstream>

#include "NevQos/sim/chip/ChipText.h"

namespace Sim {

namespace {

std::string entryText( TcamEntry const& e ) {
   std::string out =
         e.kind + " " + std::to_string( e.ruleNum ) + "." + std::to_string( e.subruleNum );
   for( auto const& [ name, value ] : e.fields ) {
      out += " ";
      out += name;
      out += "=";
      out += value;
   }
   return out;
}

}  // namespace

TcamImage tcamImageOf( SimSwitch const& sw ) {
   TcamImage image;
   auto const& ports = sw.chip().aclPorts();
   for( auto const& [ id, acl ] : sw.chip().tcam().acls() ) {
      AclImage& out = image[ id ];
      out.slice = acl.slice;
      out.committed = acl.committed;
      for( TcamEntry const& e : acl.entries )
         out.entries.push_back( entryText( e ) );
      if( auto const it = ports.find( id ); it != ports.end() ) out.ports = it->second;
   }
   return image;
}

std::vector< std::string > aclsOfPolicyMap( TcamImage const& image, std::string const& pmapName ) {
   std::vector< std::string > out;
   for( auto const& [ id, acl ] : image ) {
      if( id.starts_with( pmapName + "(" ) ) out.push_back( id );
   }
   return out;
}

std::map< std::string, std::uint64_t > aclResourcesInUse( SimQosAclHelper const& chip ) {
   std::map< std::string, std::uint64_t > out;
   for( auto const& [ name, slice ] : chip.tcam().slices() )
      out[ "tcam " + name ] = slice.used;
   out[ "range checkers" ] = chip.tcam().rangeCheckersUsed();
   out[ "policers" ] = chip.policersUsed();
   out[ "counters" ] = chip.countersUsed();
   out[ "cpu queues" ] = chip.cpuQueuesUsed();
   out[ "port cpu queue policers" ] = chip.portCpuQueuePolicers().size();
   out[ "pending operations" ] = chip.pendingOperations();
   return out;
}

std::map< std::string, std::uint64_t > resourcesInUse( SimSwitch const& sw ) {
   std::map< std::string, std::uint64_t > out = aclResourcesInUse( sw.chip() );
   SimQosBasicHelper const& basic = sw.basicChip();
   out[ "ecn profiles" ] = basic.ecnProfiles().used();
   out[ "wred profiles" ] = basic.wredProfiles().used();
   out[ "drop threshold profiles" ] = basic.dropThresholdProfiles().used();
   out[ "ecn counters" ] = basic.ecnCounters().size();
   out[ "cbf rules" ] = sw.cbfChip().rules().size();
   return out;
}

std::vector< std::string > logLinesOf( SimSwitch const& sw, std::size_t from ) {
   std::vector< std::string > out;
   auto const& logs = sw.logs();
   for( std::size_t i = from; i < logs.size(); ++i )
      out.push_back( logs[ i ].handle + ": " + logs[ i ].text );
   return out;
}

std::vector< std::string > policyMapStatusOf( SimSwitch const& sw ) {
   std::vector< std::string > out;
   for( auto t = sw.aclSliceHwStatus().pmapType().iter(); t; ++t ) {
      for( auto p = t.value()->pmap().iter(); p; ++p ) {
         std::string line = textOf( p.key().direction() );
         line += "/";
         line += p.key().name().str().stdString();
         line += ": ";
         line += textOf( p.value()->prgmStatus() );
         line += " (";
         line += p.value()->prgmStatusErrMessage().stdString();
         line += ")";
         out.push_back( std::move( line ) );
      }
   }
   return out;
}

std::string textOf( TcamImage const& image ) {
   std::ostringstream os;
   for( auto const& [ id, acl ] : image ) {
      os << id << " [" << acl.slice << ( acl.committed ? "" : ", uncommitted" ) << "] on";
      for( std::string const& p : acl.ports )
         os << " " << p;
      os << "\n";
      for( std::string const& e : acl.entries )
         os << "   " << e << "\n";
   }
   return os.str();
}

}  // namespace Sim
