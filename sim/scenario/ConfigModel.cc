#include "NevQos/sim/scenario/ConfigModel.h"

#include <algorithm>
#include <optional>

#include "NevQos/sim/scenario/ScenarioNames.h"

namespace Sim {

namespace {

[[noreturn]] void refuse( std::string const& problem ) {
   throw ConfigModel::Refusal( problem );
}

bool isPacketRate( Qos::RateUnit unit ) {
   return unit == Qos::rateUnitPps_;
}

bool isPacketBurst( Qos::BurstUnit unit ) {
   return unit == Qos::burstUnitPackets_;
}

// The family of the access list an access-group match names; none for other options.
std::optional< AclFamily > aclFamilyOf( Qos::ClassMapMatchOption option ) {
   switch( option ) {
      case Qos::matchOptionIpAcl:
         return AclFamily::ipv4;
      case Qos::matchOptionIpv6Acl:
         return AclFamily::ipv6;
      case Qos::matchOptionMac:
         return AclFamily::mac;
      default:
         return std::nullopt;
   }
}

template< class Rules >
bool sequencesAscend( Rules const& rules ) {
   return std::adjacent_find( rules.begin(), rules.end(), []( auto const& a, auto const& b ) {
             return a.sequence >= b.sequence;
          } ) == rules.end();
}

template< class T >
bool hasRepeats( std::vector< T > const& values ) {
   for( std::size_t i = 0; i < values.size(); ++i ) {
      if( std::find( values.begin() + std::ptrdiff_t( i + 1 ), values.end(), values[ i ] ) !=
          values.end() ) {
         return true;
      }
   }
   return false;
}

// The classes of a map that name a class map, the default class included.
template< class Visit >
void forEachClass( PolicyMapDef const& pmap, Visit const& visit ) {
   for( ClassDef const& cls : pmap.classes )
      visit( cls );
   if( pmap.classDefault ) visit( *pmap.classDefault );
}

void checkNewName( std::string const& name, char const* what ) {
   if( name.empty() ) refuse( std::string( what ) + " without a name" );
}

}  // namespace

std::string policerRatesProblem( PolicerRates const& r ) {
   if( r.cir == 0 ) return "a policer needs a committed rate above 0";
   bool const packets = isPacketRate( r.cirUnit );
   if( packets != isPacketBurst( r.bcUnit ) ) {
      return "the committed burst must be in packets exactly when the rate is in pps";
   }
   if( r.pir == 0 ) return "";
   if( packets != isPacketRate( r.pirUnit ) || packets != isPacketBurst( r.beUnit ) ) {
      return "the peak rate and excess burst must be in the committed rate's mode (pps and "
             "packets, or bits and bytes)";
   }
   return "";
}

void ConfigModel::apply( ChangeValue const& change ) {
   std::visit( [ this ]( auto const& c ) { put( c ); }, change );
}

// ---- Who uses what

std::vector< ConfigModel::MapKey > ConfigModel::classMapsUsing( AclKey const& acl ) const {
   std::vector< MapKey > users;
   for( auto const& [ key, cmap ] : classMaps_ ) {
      for( MatchDef const& match : cmap.matches ) {
         if( aclFamilyOf( match.option ) == acl.first && match.acl == acl.second ) {
            users.push_back( key );
            break;
         }
      }
   }
   return users;
}

std::vector< ConfigModel::MapKey > ConfigModel::policyMapsUsingClassMap(
      MapKey const& cmap ) const {
   std::vector< MapKey > users;
   for( auto const& [ key, pmap ] : policyMaps_ ) {
      if( key.first != cmap.first ) continue;
      bool uses = false;
      forEachClass( pmap, [ & ]( ClassDef const& cls ) { uses |= cls.classMap == cmap.second; } );
      if( uses ) users.push_back( key );
   }
   return users;
}

std::vector< ConfigModel::MapKey > ConfigModel::policyMapsUsingPolicer(
      std::string const& named ) const {
   std::vector< MapKey > users;
   for( auto const& [ key, pmap ] : policyMaps_ ) {
      // The default PDP policy uses the chip's named policers, not the configuration's.
      if( key == defaultPdpPolicy() ) continue;
      bool uses = false;
      forEachClass( pmap, [ & ]( ClassDef const& cls ) {
         uses |= cls.police && cls.police->named == named;
      } );
      if( uses ) users.push_back( key );
   }
   return users;
}

// ---- The default PDP policy

void ConfigModel::pdpIs( bool pdpMode, std::vector< NamedPolicerDef > const& policers ) {
   pdpMode_ = pdpMode;
   hwNamedPolicers_.clear();
   for( NamedPolicerDef const& p : policers )
      hwNamedPolicers_[ p.name ] = p;
}

ConfigModel::MapKey ConfigModel::defaultPdpPolicy() {
   return { Qos::mapPdp_, "default-pdp-policy" };
}

Qos::ServicePolicyKey ConfigModel::defaultPdpServicePolicy() {
   return Qos::ServicePolicyKey( Qos::mapPdp_, Qos::directionInput_,
                                 Zub::Name( defaultPdpPolicy().second ) );
}

PolicerRates const* ConfigModel::namedPolicerRates( MapKey const& pmap,
                                                    std::string const& name ) const {
   auto const& policers = pmap == defaultPdpPolicy() ? hwNamedPolicers_ : namedPolicers_;
   auto const it = policers.find( name );
   return it == policers.end() ? nullptr : &it->second.rates;
}

std::vector< Qos::ServicePolicyKey > ConfigModel::servicePoliciesOf( MapKey const& pmap ) const {
   std::vector< Qos::ServicePolicyKey > users;
   for( auto const& [ key, sp ] : servicePolicies_ ) {
      if( key.type() == pmap.first && key.pmapName().view() == pmap.second ) users.push_back( key );
   }
   return users;
}

// ---- Access lists

void ConfigModel::put( AclDef const& acl ) {
   checkNewName( acl.name, "an access list" );
   bool const ascending = sequencesAscend( acl.ipv4Rules ) && sequencesAscend( acl.ipv6Rules ) &&
                          sequencesAscend( acl.macRules );
   if( !ascending ) refuse( aclText( acl.family, acl.name ) + ": sequence numbers must ascend" );
   AclKey const key{ acl.family, acl.name };
   auto const standing = acls_.find( key );
   if( !acl.configured && standing != acls_.end() && standing->second.configured ) {
      // Taking a used list away is a removal, which the configuration never makes of a used one.
      auto const users = classMapsUsing( key );
      if( !users.empty() ) {
         refuse( aclText( acl.family, acl.name ) + " is still used by " +
                 classMapText( users[ 0 ].first, users[ 0 ].second ) );
      }
   }
   acls_[ key ] = acl;
}

void ConfigModel::put( AclRemoval const& removal ) {
   AclKey const key{ removal.family, removal.name };
   std::string const what = aclText( removal.family, removal.name );
   if( !acls_.contains( key ) ) refuse( "no " + what + " to remove" );
   auto const users = classMapsUsing( key );
   if( !users.empty() ) {
      refuse( what + " is still used by " + classMapText( users[ 0 ].first, users[ 0 ].second ) );
   }
   acls_.erase( key );
}

// ---- Class maps

void ConfigModel::checkMatch( ClassMapDef const& cmap, MatchDef const& match ) const {
   std::string const what = classMapText( cmap.type, cmap.name );
   if( match.option == Qos::matchOptionNone ) {
      refuse( what + ": a match of no kind belongs to " + classDefaultName + " alone" );
   }
   auto const family = aclFamilyOf( match.option );
   if( !family ) return;
   if( !acls_.contains( { *family, match.acl } ) ) {
      refuse( what + " matches " + aclText( *family, match.acl ) + ", which does not exist" );
   }
}

void ConfigModel::put( ClassMapDef const& cmap ) {
   checkNewName( cmap.name, "a class map" );
   std::string const what = classMapText( cmap.type, cmap.name );
   if( cmap.name == classDefaultName ) {
      refuse( what + ": the name " + classDefaultName + " is the system's" );
   }
   std::vector< Qos::ClassMapMatchOption > options;
   for( MatchDef const& match : cmap.matches ) {
      checkMatch( cmap, match );
      options.push_back( match.option );
   }
   if( hasRepeats( options ) ) refuse( what + " has two matches of one kind" );
   classMaps_[ { cmap.type, cmap.name } ] = cmap;
}

void ConfigModel::put( ClassMapRemoval const& removal ) {
   MapKey const key{ removal.type, removal.name };
   std::string const what = classMapText( removal.type, removal.name );
   if( !classMaps_.contains( key ) ) refuse( "no " + what + " to remove" );
   auto const users = policyMapsUsingClassMap( key );
   if( !users.empty() ) {
      refuse( what + " is still used by " + policyMapText( users[ 0 ].first, users[ 0 ].second ) );
   }
   classMaps_.erase( key );
}

// ---- Named policers

void ConfigModel::put( NamedPolicerDef const& policer ) {
   checkNewName( policer.name, "a named policer" );
   std::string const problem = policerRatesProblem( policer.rates );
   if( !problem.empty() ) refuse( namedPolicerText( policer.name ) + ": " + problem );
   namedPolicers_[ policer.name ] = policer;
}

void ConfigModel::put( NamedPolicerRemoval const& removal ) {
   std::string const what = namedPolicerText( removal.name );
   if( !namedPolicers_.contains( removal.name ) ) refuse( "no " + what + " to remove" );
   auto const users = policyMapsUsingPolicer( removal.name );
   if( !users.empty() ) {
      refuse( what + " is still used by " + policyMapText( users[ 0 ].first, users[ 0 ].second ) );
   }
   namedPolicers_.erase( removal.name );
}

// ---- Policy maps

void ConfigModel::checkClass( PolicyMapDef const& pmap, ClassDef const& cls ) const {
   std::string const what = policyMapText( pmap.type, pmap.name ) + " class " + cls.classMap;
   if( !cls.police ) return;
   if( cls.police->named.empty() ) {
      std::string const problem = policerRatesProblem( cls.police->rates );
      if( !problem.empty() ) refuse( what + ": " + problem );
      return;
   }
   // The engine stops on a named policer in a control-plane map.
   if( pmap.type == Qos::mapControlPlane_ ) {
      refuse( what + ": a control-plane policy map can't use a named policer" );
   }
   // The engine stops where the default PDP policy names a policer the chip does not define.
   if( MapKey{ pmap.type, pmap.name } == defaultPdpPolicy() ) {
      if( !hwNamedPolicers_.contains( cls.police->named ) ) {
         refuse( what + " uses " + namedPolicerText( cls.police->named ) +
                 ", which the chip's namedPolicers do not define" );
      }
      return;
   }
   if( !namedPolicers_.contains( cls.police->named ) ) {
      refuse( what + " uses " + namedPolicerText( cls.police->named ) + ", which does not exist" );
   }
}

void ConfigModel::put( PolicyMapDef const& pmap ) {
   checkNewName( pmap.name, "a policy map" );
   std::string const what = policyMapText( pmap.type, pmap.name );
   std::vector< std::string > names;
   for( ClassDef const& cls : pmap.classes ) {
      if( cls.classMap == classDefaultName ) {
         refuse( what + ": " + classDefaultName + " can only be the last class" );
      }
      if( !classMaps_.contains( { pmap.type, cls.classMap } ) ) {
         refuse( what + " uses " + classMapText( pmap.type, cls.classMap ) +
                 ", which does not exist" );
      }
      checkClass( pmap, cls );
      names.push_back( cls.classMap );
   }
   if( hasRepeats( names ) ) refuse( what + " has a class twice" );
   if( pmap.classDefault ) {
      if( pmap.classDefault->classMap != classDefaultName ) {
         refuse( what + ": the default class must be " + classDefaultName );
      }
      checkClass( pmap, *pmap.classDefault );
   }
   policyMaps_[ { pmap.type, pmap.name } ] = pmap;
}

void ConfigModel::put( PolicyMapRemoval const& removal ) {
   MapKey const key{ removal.type, removal.name };
   std::string const what = policyMapText( removal.type, removal.name );
   if( !policyMaps_.contains( key ) ) refuse( "no " + what + " to remove" );
   auto const users = servicePoliciesOf( key );
   if( !users.empty() ) refuse( what + " is still used by " + servicePolicyText( users[ 0 ] ) );
   if( pdpMode_ && key == defaultPdpPolicy() ) {
      refuse( what + " is still used by the default PDP service policy of PDP mode" );
   }
   policyMaps_.erase( key );
}

// ---- Service policies and interfaces

void ConfigModel::put( ServicePolicyDef const& sp ) {
   std::string const what = servicePolicyText( sp.key );
   checkNewName( sp.key.pmapName().str().stdString(), "a service policy" );
   if( !policyMaps_.contains( { sp.key.type(), sp.key.pmapName().str().stdString() } ) ) {
      refuse( what + ": " + policyMapText( sp.key.type(), sp.key.pmapName().str().stdString() ) +
              " does not exist" );
   }
   if( hasRepeats( sp.interfaces ) ) refuse( what + " names an interface twice" );
   // In PDP mode the engine configures this one itself, on every Ethernet port.
   if( pdpMode_ && sp.key == defaultPdpServicePolicy() ) {
      refuse( what + " is the system's in PDP mode: the engine applies it to every Ethernet port" );
   }
   servicePolicies_[ sp.key ] = sp;
}

void ConfigModel::put( ServicePolicyRemoval const& removal ) {
   if( !servicePolicies_.contains( removal.key ) ) {
      refuse( "no " + servicePolicyText( removal.key ) + " to remove" );
   }
   servicePolicies_.erase( removal.key );
}

ServicePolicyDef& ConfigModel::servicePolicy( Qos::ServicePolicyKey const& key ) {
   auto it = servicePolicies_.find( key );
   if( it == servicePolicies_.end() ) refuse( "no " + servicePolicyText( key ) );
   return it->second;
}

void ConfigModel::put( Attachment const& attachment ) {
   ServicePolicyDef& sp = servicePolicy( attachment.key );
   if( hasRepeats( attachment.interfaces ) ) refuse( "an interface is named twice" );
   auto& intfs = sp.interfaces;
   for( Qos::IntfPairKey const& intf : attachment.interfaces ) {
      bool const there = std::find( intfs.begin(), intfs.end(), intf ) != intfs.end();
      if( there == attachment.attach ) {
         refuse( intfText( intf ) + ( there ? " is already in " : " is not in " ) +
                 servicePolicyText( attachment.key ) );
      }
   }
   for( Qos::IntfPairKey const& intf : attachment.interfaces ) {
      if( attachment.attach ) {
         intfs.push_back( intf );
      } else {
         intfs.erase( std::find( intfs.begin(), intfs.end(), intf ) );
      }
   }
}

void ConfigModel::put( InterfacePresence const& presence ) {
   if( hasRepeats( presence.interfaces ) ) refuse( "an interface is named twice" );
   for( Mirel::IntfId intf : presence.interfaces ) {
      if( interfaces_.contains( intf ) != presence.present ) continue;
      refuse( "interface " + intfName( intf ) +
              ( presence.present ? " is already present" : " is not present" ) );
   }
   for( Mirel::IntfId intf : presence.interfaces ) {
      if( presence.present ) {
         interfaces_.insert( intf );
      } else {
         interfaces_.erase( intf );
      }
   }
}

// ---- Requests for the engine and the chip

void ConfigModel::put( CounterRequest const& request ) {
   if( request.client.empty() ) refuse( "a counter request names no client" );
   counterClients_.insert( request.client );
}

void ConfigModel::put( CounterClientRemoval const& removal ) {
   if( counterClients_.erase( removal.client ) == 0 ) {
      refuse( "removeCounterClient: no counter client '" + removal.client +
              "' has asked for counters" );
   }
}

void ConfigModel::put( TrafficInjection const& traffic ) {
   Qos::MapType const type = traffic.servicePolicy.type();
   std::string const name = traffic.servicePolicy.pmapName().str().stdString();
   auto const it = policyMaps_.find( { type, name } );
   if( it == policyMaps_.end() )
      refuse( "traffic for " + policyMapText( type, name ) + ", which does not exist" );
   ClassDef const* cls = nullptr;
   forEachClass( it->second, [ & ]( ClassDef const& c ) {
      if( c.classMap == traffic.classMap ) cls = &c;
   } );
   if( !cls ) {
      refuse( "traffic for class " + traffic.classMap + ", which " + policyMapText( type, name ) +
              " does not have" );
   }
   // Only a policer drops a share of the traffic or marks it yellow.
   bool const coloured = traffic.droppedPackets || traffic.droppedBytes || traffic.yellowPackets ||
                         traffic.yellowBytes;
   if( coloured && !cls->police ) {
      refuse( "traffic dropped or yellow in class " + traffic.classMap +
              ", which has no policer in " + policyMapText( type, name ) );
   }
}

void ConfigModel::put( FaultSwitch const& fault ) {
   if( fault.fault >= faults_ ) {
      refuse( "fault " + std::to_string( fault.fault ) + " does not exist; the chip has " +
              std::to_string( faults_ ) );
   }
}

void ConfigModel::put( TcamCorruption const& corruption ) {
   for( auto const& [ key, acl ] : acls_ ) {
      if( key.second == corruption.acl ) return;
   }
   refuse( "corruptTcam: there is no access list " + corruption.acl );
}

// ---- Control plane

// A queue the kernel stops reporting on leaves its entry.
void ConfigModel::put( KernelCoppReport const& report ) {
   if( report.state == Nev::kernelCoppQueueNoReport ) {
      kernelCopp_.erase( report.key );
   } else {
      kernelCopp_[ report.key ] = report.state;
   }
}

// ---- Class-based forwarding

// The routing side may remove an override the engine never saw (written and removed between two
// of its reads): the removal still reaches the engine.
void ConfigModel::put( FecOverrideRemoval const& removal ) {
   fecOverrides_.erase( removal.key );
}

// Only a record that stands can be damaged.
void ConfigModel::put( FecTableDamage const& damage ) {
   if( damage.service && !fecService_.contains( damage.fec ) ) {
      refuse( "corruptFecService: the FEC service has no answer for FEC " +
              std::to_string( damage.fec ) + " to damage" );
   }
   if( !damage.service && !fecOverrides_.contains( damage.key ) ) {
      refuse( "corruptFecOverride: there is no FEC override " + textOf( damage.key ) +
              " to damage" );
   }
}

void ConfigModel::put( FecServiceRemoval const& removal ) {
   if( !fecService_.erase( removal.fec ) ) {
      refuse( "the FEC service has no answer for FEC " + std::to_string( removal.fec ) +
              " to take back" );
   }
}

// ---- Subinterfaces and next-hop groups

void ConfigModel::put( SubIntfRemoval const& removal ) {
   if( !subInterfaces_.erase( removal.intf ) ) {
      refuse( "no subinterface " + intfName( removal.intf ) + " to remove" );
   }
}

void ConfigModel::put( NexthopGroupRemoval const& removal ) {
   if( !nexthopGroups_.erase( removal.name ) ) {
      refuse( "no next-hop group " + removal.name + " to remove" );
   }
}

// ---- The second datapath

void ConfigModel::put( Dp1Policy const& dp1 ) {
   if( dp1.on ) {
      servicePolicyDP1_.insert( dp1.key );
   } else if( !servicePolicyDP1_.erase( dp1.key ) ) {
      refuse( "the second datapath does not hold " + servicePolicyText( dp1.key ) +
              " to switch off" );
   }
}

}  // namespace Sim
