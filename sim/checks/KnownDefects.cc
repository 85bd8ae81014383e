#include "NevQos/sim/checks/KnownDefects.h"

#include <cstdlib>
#include <stdexcept>
#include <string>

namespace Sim {

namespace {

constexpr KnownDefect list[] = {
   { "mpls-tc-list-binding",
     "the list of an MPLS traffic-class match is bound to the interfaces of its map or to none, by "
     "whether it was compiled before or after they came (synchronous seed 14, step 15)" },
   { "async-map-fails-on-roomy-chip",
     "on the asynchronous road a map can fail for want of resources on a roomy chip when a fault "
     "was on while its requests waited in the queue, and the sequences cannot yet tell which "
     "step's fault failed it (the start of asynchronous seed 1014)" },
   { "vlan-rule-compile-order",
     "a VLAN rule of a QoS map on a VLAN interface is programmed or left out by whether its list "
     "was compiled before or after the interface became active, so a switch started afresh holds "
     "another TCAM (asynchronous seed 1038)" },
   { "policer-status-shared-by-acl-groups",
     "the groups of a service policy's ACL groups share the map's status, in which a policer's "
     "record is named by the policer alone: when one group's copy goes it takes the record of "
     "another group's copy with it, and verifying that copy stops the engine on its assertion "
     "\"policerHwStatus\" (the conformance kit's generated synchronous seed 294, step 24)" },
};

}  // namespace

std::span< KnownDefect const > knownDefects() {
   return list;
}

bool avoided( std::string_view name ) {
   bool listed = false;
   for( KnownDefect const& d : list )
      listed = listed || d.name == name;
   if( !listed ) throw std::logic_error( "no known defect " + std::string( name ) );
   char const* mode = std::getenv( "NEVQOS_KNOWN_DEFECTS" );
   if( !mode ) return true;
   std::string_view const reach( mode );
   if( reach == "reach" ) return false;
   // "reach:a,b" turns off the entries named.
   if( !reach.starts_with( "reach:" ) ) return true;
   std::string_view names = reach.substr( 6 );
   while( !names.empty() ) {
      std::size_t const comma = names.find( ',' );
      if( names.substr( 0, comma ) == name ) return false;
      names = comma == std::string_view::npos ? std::string_view() : names.substr( comma + 1 );
   }
   return true;
}

}  // namespace Sim
