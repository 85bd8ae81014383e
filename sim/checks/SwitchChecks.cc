#include "NevQos/sim/checks/SwitchChecks.h"

#include <map>
#include <set>

#include "NevQos/sim/chip/ChipText.h"

namespace Sim {

namespace {

struct ServicePolicyView {
   Qos::MapType type;
   std::set< std::string > interfaces;
};

// The service policies of the configuration by their map's text, with the interfaces the switch
// has: a LAG member or an Ethernet port counts while its port is present.
std::map< std::string, ServicePolicyView > servicePolicies( Sim::SimSwitch const& sw ) {
   std::map< std::string, ServicePolicyView > out;
   auto const& present = sw.model().interfaces();
   for( auto const& [ key, sp ] : sw.model().servicePolicies() ) {
      ServicePolicyView& view =
            out[ pmapText( key.type(), key.direction(), key.pmapName().str().stdString() ) ];
      view.type = key.type();
      for( Qos::IntfPairKey const& intf : sp.interfaces ) {
         if( intf.intfId().isEthernet() && !present.contains( intf.intfId() ) ) continue;
         view.interfaces.insert( Sim::intfText( intf ) );
      }
   }
   // The system's own service policies (the default PDP policy) stand in the status only.
   for( auto it = sw.qosStatus().servicePolicyStatus().iter(); it; ++it ) {
      Qos::ServicePolicyKey const& key = it.key();
      if( sw.model().servicePolicies().contains( key ) ) continue;
      ServicePolicyView& view =
            out[ pmapText( key.type(), key.direction(), key.pmapName().str().stdString() ) ];
      view.type = key.type();
      for( auto intf = it.value()->intfIds().iter(); intf; ++intf )
         view.interfaces.insert( Sim::intfText( intf.key() ) );
   }
   return out;
}

// The ACL groups a service policy's interfaces fall in. The groups share the map's one status,
// so a failure of one leaves the others' ACLs installed under a failed status.
std::size_t groupsOf( Sim::SimSwitch const& sw, ServicePolicyView const& sp ) {
   auto const& groups = sw.chip().config().aclGroups;
   std::set< std::string > out;
   for( std::string const& intf : sp.interfaces ) {
      auto const group = groups.find( intf );
      out.insert( group == groups.end() ? "" : group->second );
   }
   return out.size();
}

}  // namespace

std::map< std::string, MapStatus > mapStatuses( Sim::SimSwitch const& sw ) {
   std::map< std::string, MapStatus > out;
   for( auto t = sw.aclSliceHwStatus().pmapType().iter(); t; ++t ) {
      for( auto p = t.value()->pmap().iter(); p; ++p ) {
         out[ pmapText( t.key(), p.key().direction(), p.key().name().str().stdString() ) ] =
               MapStatus{ p.value()->prgmStatus(), p.value()->prgmStatusErrMessage().stdString() };
      }
   }
   return out;
}

std::string pmapText( Qos::MapType type, Qos::Direction direction, std::string const& name ) {
   return name + "(" + Sim::mapTypeText( type ) + "," + Sim::textOf( direction ) + ")";
}

std::string pmapOfAcl( std::string const& aclId ) {
   std::string pmap = aclId.substr( 0, aclId.find( ')' ) + 1 );
   // A map of an ACL group other than the default carries the group third; its status and its
   // service policy are the map's.
   std::size_t const first = pmap.find( ',' );
   std::size_t const group = pmap.find( ',', first + 1 );
   if( first != std::string::npos && group != std::string::npos )
      pmap.erase( group, pmap.size() - 1 - group );
   return pmap;
}

std::vector< std::string > tcamMismatches( Sim::SimSwitch const& sw ) {
   std::vector< std::string > out;
   auto const statuses = mapStatuses( sw );
   auto const sps = servicePolicies( sw );
   bool const systemCopp = !sw.chip().config().intfCoppSupported;
   // The interfaces each map's ACLs are bound to.
   std::map< std::string, std::set< std::string > > bound;
   for( auto const& [ id, acl ] : sw.chip().tcam().acls() ) {
      std::string const pmap = pmapOfAcl( id );
      auto const sp = sps.find( pmap );
      if( sp == sps.end() ) {
         out.push_back( "ACL " + id + " is of no service policy" );
         continue;
      }
      auto const status = statuses.find( pmap );
      if( status == statuses.end() ) {
         // A system-wide control-plane policy keeps no status entry.
         if( !( systemCopp && sp->second.type == Qos::mapControlPlane_ ) ) {
            out.push_back( "ACL " + id + " is of a policy map without status" );
         }
         continue;
      }
      if( status->second.status == Qos::hwPrgmStatusFail_ && groupsOf( sw, sp->second ) == 1 ) {
         out.push_back( "ACL " + id + " is installed for a failed policy map (" +
                        status->second.message + ")" );
      }
      auto const ports = sw.chip().aclPorts().find( id );
      auto& intfs = bound[ pmap ];
      if( ports != sw.chip().aclPorts().end() )
         intfs.insert( ports->second.begin(), ports->second.end() );
   }
   for( auto const& [ pmap, status ] : statuses ) {
      if( status.status != Qos::hwPrgmStatusSuccess_ ) continue;
      auto const sp = sps.find( pmap );
      auto const acls = bound.find( pmap );
      if( sp == sps.end() || acls == bound.end() ) continue;
      for( std::string const& intf : sp->second.interfaces ) {
         if( !acls->second.contains( intf ) ) {
            out.push_back( pmap + " is programmed, and none of its ACLs is bound to " + intf );
         }
      }
   }
   return out;
}

std::vector< std::string > cbfMismatches( Sim::SimSwitch const& sw ) {
   std::vector< std::string > out;
   auto const& overrides = sw.model().fecOverrides();
   auto const& service = sw.model().fecService();
   auto hwFecOf = [ & ]( Glarn::Fib::FecId fec ) -> std::uint64_t const* {
      auto const it = service.find( fec );
      return it == service.end() ? nullptr : &it->second.hwFecId;
   };
   std::map< Qos::Glarn::OverrideKey, Qos::Glarn::FecOverrideStatusEntry > status;
   for( auto it = sw.fecOverrideStatus().iter(); it; ++it )
      status[ it.key() ] = it.value();
   auto const& rules = sw.cbfChip().rules();
   // A key waiting for review is still being worked on: its next review settles it.
   auto const& review = sw.cbfEngine().policyOverrideReviewQueue();
   for( auto const& [ key, rule ] : rules ) {
      if( review.has( key ) ) continue;
      std::string const k = Sim::textOf( key );
      auto const o = overrides.find( key );
      if( o == overrides.end() ) {
         out.push_back( "CBF rule " + std::to_string( rule.id ) + " for " + k +
                        ", which is not configured" );
         continue;
      }
      auto const* hw = hwFecOf( key.fecId );
      auto const* overriding = hwFecOf( o->second.overridingFec );
      if( !hw || !overriding || *hw != rule.hwFecId || *overriding != rule.overridingHwFecId ) {
         out.push_back( "CBF rule " + std::to_string( rule.id ) + " of " + k + " maps " +
                        std::to_string( rule.hwFecId ) + " to " +
                        std::to_string( rule.overridingHwFecId ) +
                        ", not what the FEC service gives" );
      }
   }
   for( auto const& [ key, entry ] : status ) {
      if( review.has( key ) ) continue;
      std::string const k = Sim::textOf( key );
      if( !overrides.contains( key ) ) {
         out.push_back( "CBF status of " + k + ", which is not configured" );
         continue;
      }
      if( entry.status != Qos::Glarn::fecOverrideProgrammed ) continue;
      auto const rule = rules.find( key );
      if( rule == rules.end() || rule->second.id != entry.hwRuleId ) {
         out.push_back( "CBF override " + k + " is programmed without its rule" );
      }
   }
   for( auto const& [ key, def ] : overrides ) {
      if( review.has( key ) ) continue;
      std::string const k = Sim::textOf( key );
      bool const known = hwFecOf( key.fecId ) && hwFecOf( def.overridingFec );
      auto const s = status.find( key );
      if( s == status.end() ) {
         if( known ) out.push_back( "CBF override " + k + " has both FECs and no status" );
         continue;
      }
      bool const waiting = s->second.status == Qos::Glarn::fecOverrideWaitingForHwFecId;
      if( known == waiting ) {
         out.push_back(
               "CBF override " + k +
               ( known ? " waits with both FECs known" : " has a status while a FEC is unknown" ) );
      }
   }
   return out;
}

}  // namespace Sim
