#include "NevQos/sim/runner/Fit.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
#include <ostream>
#include <set>
#include <string>

#include "NevQos/classes/QosPolicerSm.h"
#include "NevQos/classes/QosPolicyClassSm.h"
#include "NevQos/sim/chip/ChipText.h"
#include "NevQos/sim/runner/TextFormat.h"

namespace Sim {

namespace {

using Json = nlohmann::ordered_json;
using Counts = std::map< std::string, std::uint64_t >;  // by slice

// What a policy map holds of the chip, and what each interface more would add.
struct MapUse {
   Counts entries;
   Counts entriesPerInterface;
   std::uint64_t policers = 0;
   std::uint64_t policersPerInterface = 0;
   std::set< std::string > interfaces;
};

// The interface an ACL is bound on: a port-channel once for its members ("member@channel").
std::string interfaceOf( std::string const& port ) {
   auto const at = port.find( '@' );
   return at == std::string::npos ? port : port.substr( at + 1 );
}

// The entries by slice of the ACLs whose ids start with `prefix`, and the interfaces they are
// bound on.
Counts entriesOf( SimQosAclHelper const& chip, std::string const& prefix,
                  std::set< std::string >* interfaces = nullptr ) {
   Counts out;
   auto const& acls = chip.tcam().acls();
   for( auto it = acls.lower_bound( prefix ); it != acls.end() && it->first.starts_with( prefix );
        ++it ) {
      out[ it->second.slice ] += it->second.entries.size();
      if( !interfaces ) continue;
      if( auto const ports = chip.aclPorts().find( it->first ); ports != chip.aclPorts().end() ) {
         for( std::string const& port : ports->second )
            interfaces->insert( interfaceOf( port ) );
      }
   }
   return out;
}

bool policedPerInterface( Nev::QosPolicyClassBaseSm const& copy ) {
   auto const data = copy.classData();
   return data && data->policerData() && !data->policerData()->named();
}

bool holdsPolicer( Nev::QosPolicyClassBaseSm const& copy ) {
   auto const data = copy.classData();
   return data && data->policerData() && data->policerData()->createdInHw();
}

// A class policed per interface adds the entries of one copy (the largest, should they differ)
// and one policer with every interface.
void classUseIs( SimQosAclHelper const& chip, Nev::QosPolicyClassSm const& cls, MapUse& use ) {
   if( holdsPolicer( cls ) ) ++use.policers;
   Counts perCopy;
   bool perInterface = false;
   for( auto p = cls.policerSm().iter(); p; ++p ) {
      Nev::QosPolicerSm const& copy = *p.value();
      if( holdsPolicer( copy ) ) ++use.policers;
      if( !policedPerInterface( copy ) ) continue;
      perInterface = true;
      std::string const id = SimQosAclHelper::classKeyOf( *copy.classData() ) + " ";
      for( auto const& [ slice, n ] : entriesOf( chip, id ) )
         perCopy[ slice ] = std::max( perCopy[ slice ], n );
   }
   if( !perInterface ) return;
   ++use.policersPerInterface;
   for( auto const& [ slice, n ] : perCopy )
      use.entriesPerInterface[ slice ] += n;
}

MapUse mapUseOf( SimQosAclHelper const& chip, Nev::QosPolicyMapSm const& pmap ) {
   MapUse use;
   use.entries = entriesOf( chip, pmapText( pmap.key() ) + "/", &use.interfaces );
   for( auto it = pmap.policyClassSm().iter(); it; ++it )
      classUseIs( chip, *it.value(), use );
   return use;
}

Json poolFit( std::string const& name, std::uint64_t used, std::uint64_t free,
              std::uint64_t perInterface ) {
   Json more = perInterface == 0 ? Json() : Json( free / perInterface );
   return Json{ { "pool", name },
                { "used", used },
                { "free", free },
                { "perInterface", perInterface },
                { "moreInterfaces", std::move( more ) } };
}

Json mapFit( SimQosAclHelper const& chip, std::string const& name, MapUse const& use ) {
   Json pools = Json::array();
   for( auto const& [ slice, size ] : chip.tcam().slices() ) {
      auto const used = use.entries.find( slice );
      auto const per = use.entriesPerInterface.find( slice );
      if( used == use.entries.end() && per == use.entriesPerInterface.end() ) continue;
      pools.push_back( poolFit( slice, used == use.entries.end() ? 0 : used->second,
                                size.size - std::min( size.size, size.used ),
                                per == use.entriesPerInterface.end() ? 0 : per->second ) );
   }
   if( use.policers != 0 || use.policersPerInterface != 0 ) {
      std::uint64_t const size = chip.config().policers;
      pools.push_back( poolFit( "policers", use.policers,
                                size - std::min< std::uint64_t >( size, chip.policersUsed() ),
                                use.policersPerInterface ) );
   }
   Json more;
   Json limitedBy;
   for( Json const& pool : pools ) {
      if( pool[ "moreInterfaces" ].is_null() ) continue;
      if( more.is_null() || pool[ "moreInterfaces" ] < more ) {
         more = pool[ "moreInterfaces" ];
         limitedBy = pool[ "pool" ];
      }
   }
   return Json{ { "policyMap", name },
                { "interfaces", use.interfaces.size() },
                { "pools", std::move( pools ) },
                { "moreInterfaces", std::move( more ) },
                { "limitedBy", std::move( limitedBy ) } };
}

}  // namespace

Json fitOf( SimSwitch const& sw ) {
   Json out = Json::array();
   for( auto sp = sw.engine().servicePolicySm().iter(); sp; ++sp ) {
      for( auto it = sp.value()->pmapSm().iter(); it; ++it ) {
         MapUse const use = mapUseOf( sw.chip(), *it.value() );
         // A map with nothing in the chip (failed, or not programmed yet) has nothing to measure.
         if( use.entries.empty() && use.policers == 0 ) continue;
         out.push_back( mapFit( sw.chip(), pmapText( it.value()->key() ), use ) );
      }
   }
   return out;
}

void printFit( std::ostream& os, Json const& fit ) {
   if( fit.empty() ) return;
   os << "\nRoom for more interfaces (what one more interface takes of each pool):\n";
   for( Json const& map : fit ) {
      os << "  " << printable( map[ "policyMap" ] ) << " on " << map[ "interfaces" ]
         << " interfaces: ";
      if( map[ "moreInterfaces" ].is_null() ) {
         os << "nothing grows with the interfaces\n";
      } else {
         os << map[ "moreInterfaces" ] << " more (limited by " << printable( map[ "limitedBy" ] )
            << ")\n";
      }
      for( Json const& pool : map[ "pools" ] ) {
         os << "    " << printable( pool[ "pool" ] ) << ": " << pool[ "used" ] << " used, "
            << pool[ "perInterface" ] << " per interface, " << pool[ "free" ] << " free";
         if( !pool[ "moreInterfaces" ].is_null() ) os << ": room for " << pool[ "moreInterfaces" ];
         os << "\n";
      }
   }
}

}  // namespace Sim
