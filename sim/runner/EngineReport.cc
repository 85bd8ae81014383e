#include "NevQos/sim/runner/EngineReport.h"

#include <ostream>
#include <string>

#include "NevQos/classes/QosPolicerSm.h"
#include "NevQos/classes/QosPolicyClassSm.h"
#include "NevQos/match/QosClassMatchAclSm.h"
#include "NevQos/match/QosClassMatchDefaultSm.h"
#include "NevQos/match/QosClassMatchMplsTrafficClassSm.h"
#include "NevQos/match/QosClassMatchOptionSm.h"
#include "NevQos/match/QosClassMatchSm.h"
#include "NevQos/policy/QosPolicyMapSm.h"
#include "NevQos/policy/QosServicePolicySm.h"
#include "NevQos/sim/chip/ChipText.h"
#include "NevQos/sim/chip/SimQosAclHelper.h"
#include "NevQos/sim/runner/TextFormat.h"

namespace Sim {

namespace {

using Json = nlohmann::ordered_json;

Json aclOf( Nev::QosClassMatchChildSm const& child ) {
   Json out{ { "key", aclKeyText( child.key() ) },
             { "matchOption", textOf( child.matchOption() ) } };
   auto const data = child.aclData();
   if( !data ) return out;
   out[ "aclNumber" ] = data->aclNumber();
   out[ "installed" ] = data->installed();
   out[ "dirty" ] = data->dirty();
   return out;
}

template< class Children >
void addAcls( Json& acls, Children const& children ) {
   for( auto it = children.iter(); it; ++it )
      acls.push_back( aclOf( *it.value() ) );
}

Json policerDataOf( Nev::QosPolicerData const& p ) {
   return Json{ { "name", textOf( p.name() ) },
                { "named", p.named() },
                { "cir", p.cir() },
                { "cirUnit", textOf( p.cirUnit() ) },
                { "bc", p.bc() },
                { "bcUnit", textOf( p.bcUnit() ) },
                { "pir", p.pir() },
                { "pirUnit", textOf( p.pirUnit() ) },
                { "be", p.be() },
                { "beUnit", textOf( p.beUnit() ) },
                { "createdInHw", p.createdInHw() } };
}

// One hardware copy of a class: the class itself or one of its per-interface policer copies.
Json classCopyOf( Nev::QosPolicyClassBaseSm const& copy, Nev::QosClassData const& data ) {
   Json acls = Json::array();
   for( auto it = copy.classMatchSm().iter(); it; ++it ) {
      Nev::QosClassMatchSm const& match = *it.value();
      addAcls( acls, match.aclSm() );
      addAcls( acls, match.mplsTrafficClassSm() );
      addAcls( acls, match.matchOptionSm() );
      addAcls( acls, match.classDefaultSm() );
   }
   Json out{ { "id", SimQosAclHelper::classKeyOf( data ) }, { "priority", data.priority() } };
   out[ "policer" ] = data.policerData() ? policerDataOf( *data.policerData() ) : Json();
   out[ "acls" ] = std::move( acls );
   return out;
}

// A class whose copies are all per interface keeps no data of its own.
void addClassCopy( Json& classes, Nev::QosPolicyClassBaseSm const& copy ) {
   if( copy.classData() ) classes.push_back( classCopyOf( copy, *copy.classData() ) );
}

Json policyMapOf( Nev::QosPolicyMapSm const& pmap ) {
   Json classes = Json::array();
   for( auto it = pmap.policyClassSm().iter(); it; ++it ) {
      Nev::QosPolicyClassSm const& cls = *it.value();
      addClassCopy( classes, cls );
      for( auto p = cls.policerSm().iter(); p; ++p )
         addClassCopy( classes, *p.value() );
   }
   return Json{ { "id", pmapText( pmap.key() ) },
                { "latency", Json{ { "total", pmap.totalProcessTime() },
                                   { "last", pmap.lastLatency() },
                                   { "max", pmap.maxLatency() },
                                   { "startup", pmap.startupLatency() } } },
                { "classes", std::move( classes ) } };
}

}  // namespace

Json engineOf( Nev::QosAclSm const& engine ) {
   Json pmaps = Json::array();
   for( auto sp = engine.servicePolicySm().iter(); sp; ++sp ) {
      for( auto it = sp.value()->pmapSm().iter(); it; ++it )
         pmaps.push_back( policyMapOf( *it.value() ) );
   }
   Json clients = Json::array();
   for( auto it = engine.counterUpdateSm().iter(); it; ++it )
      clients.push_back( it.key().str().stdString() );
   return Json{ { "error", engine.error().stdString() },
                { "asyncState", textOf( engine.asyncState() ) },
                { "counterClients", std::move( clients ) },
                { "policyMaps", std::move( pmaps ) } };
}

void printEngine( std::ostream& os, Json const& engine ) {
   os << "\nThe policy engine: asyncState " << printable( engine[ "asyncState" ] );
   if( !printable( engine[ "error" ] ).empty() )
      os << ", error \"" << printable( engine[ "error" ] ) << "\"";
   if( !engine[ "counterClients" ].empty() ) {
      os << ", counter clients";
      for( Json const& c : engine[ "counterClients" ] )
         os << " " << printable( c );
   }
   os << "\n";
   for( Json const& pmap : engine[ "policyMaps" ] ) {
      Json const& lat = pmap[ "latency" ];
      os << "  " << printable( pmap[ "id" ] ) << ": latency last " << lat[ "last" ] << " s, max "
         << lat[ "max" ] << " s, startup " << lat[ "startup" ] << " s\n";
      for( Json const& cls : pmap[ "classes" ] ) {
         os << "    " << printable( cls[ "id" ] ) << " priority " << cls[ "priority" ];
         if( Json const& p = cls[ "policer" ]; !p.is_null() ) {
            os << "; policer " << printable( p[ "name" ] ) << " cir " << p[ "cir" ] << " "
               << printable( p[ "cirUnit" ] ) << " bc " << p[ "bc" ] << " "
               << printable( p[ "bcUnit" ] ) << " pir " << p[ "pir" ] << " "
               << printable( p[ "pirUnit" ] ) << " be " << p[ "be" ] << " "
               << printable( p[ "beUnit" ] );
         }
         os << "\n";
         for( Json const& acl : cls[ "acls" ] ) {
            os << "      " << printable( acl[ "key" ] );
            if( acl.contains( "aclNumber" ) ) {
               os << " number " << acl[ "aclNumber" ] << ( acl[ "installed" ] ? " installed" : "" )
                  << ( acl[ "dirty" ] ? " dirty" : "" );
            }
            os << "\n";
         }
      }
   }
}

}  // namespace Sim
