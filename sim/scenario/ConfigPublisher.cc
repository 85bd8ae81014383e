#include "NevQos/sim/scenario/ConfigPublisher.h"

#include <algorithm>
#include <utility>

#include "NevQos/platform/entities/CounterConfig.h"
#include "NevQos/platform/zub/Assert.h"
#include "NevQos/sim/scenario/BasicQosWriter.h"
#include "NevQos/sim/scenario/ConfigDiff.h"
#include "NevQos/sim/scenario/EntityWriter.h"
#include "NevQos/sim/scenario/ScenarioError.h"
#include "NevQos/sim/scenario/ScenarioNames.h"

namespace Sim {

namespace {

// Changes that ask for something at a moment rather than configure.
bool isRequest( ChangeValue const& value ) {
   return std::holds_alternative< CounterRequest >( value ) ||
          std::holds_alternative< TrafficInjection >( value ) ||
          std::holds_alternative< ClearRequest >( value ) ||
          std::holds_alternative< FaultSwitch >( value ) ||
          std::holds_alternative< TcamCorruption >( value ) ||
          std::holds_alternative< FecTableDamage >( value ) ||
          std::holds_alternative< AgentRestart >( value ) ||
          std::holds_alternative< CounterClientRemoval >( value ) ||
          std::holds_alternative< IntfUpdateCallback >( value ) ||
          std::holds_alternative< CliWaiting >( value ) ||
          std::holds_alternative< PolicyMapsReprogramRequest >( value );
}

bool contains( std::vector< ConfigModel::MapKey > const& keys, ConfigModel::MapKey const& key ) {
   return std::find( keys.begin(), keys.end(), key ) != keys.end();
}

ConfigModel::MapKey pmapKeyOf( Qos::ServicePolicyKey const& key ) {
   return { key.type(), key.pmapName().str().stdString() };
}

bool has( std::vector< Qos::IntfPairKey > const& intfs, Qos::IntfPairKey const& intf ) {
   return std::find( intfs.begin(), intfs.end(), intf ) != intfs.end();
}

}  // namespace

ConfigPublisher::ConfigPublisher( EngineInputs inputs, std::string file )
    : in_( std::move( inputs ) ), file_( std::move( file ) ) {
   ZUB_ASSERT( in_.qosStatus && in_.aclConfig && in_.aclHwStatus && in_.hwStatus &&
               in_.counterConfigDir && in_.ncsd );
}

void ConfigPublisher::chipIs( ChipConfig const& chip ) {
   capabilitiesIs( *in_.aclHwStatus, *in_.hwStatus, chip );
   in_.ncsd->isFabricSliceIs( chip.isFabricSlice );
   in_.ncsd->dlpEnabledIs( chip.dlpEnabled );
   model_.faultsIs( chip.faults.size() );
   model_.hwInitializedIs( chip.hwInitialized );
   model_.pdpIs( chip.pdpMode, chip.namedPolicers );
}

void ConfigPublisher::initialIs( std::vector< Change > const& changes ) {
   for( Change const& change : changes ) {
      if( isRequest( change.value ) ) {
         throw ScenarioError( file_, change.where,
                              "the starting configuration can't hold a request; put it in a "
                              "step" );
      }
   }
   publish( checked( model_, changes ) );
}

void ConfigPublisher::stepIs( Step const& step, std::function< void() > const& restart ) {
   if( step.time <= lastTime_ ) {
      throw ScenarioError( file_, step.where,
                           "a step at " + secondsText( step.time ) +
                                 " s does not come after the last, at " + secondsText( lastTime_ ) +
                                 " s" );
   }
   auto const mark = std::find_if( step.changes.begin(), step.changes.end(), []( Change const& c ) {
      return std::holds_alternative< AgentRestart >( c.value );
   } );
   std::vector< Change > const running( step.changes.begin(), mark );
   std::vector< Change > const down( mark == step.changes.end() ? mark : mark + 1,
                                     step.changes.end() );
   // Both parts are checked before anything is written.
   ConfigModel beforeRestart = checked( model_, running );
   ConfigModel after = checked( beforeRestart, down );
   lastTime_ = step.time;
   publish( std::move( beforeRestart ) );
   requestsIs( running, step.time );
   if( mark != step.changes.end() ) {
      if( restart ) restart();
      publish( std::move( after ) );
      requestsIs( down, step.time );
   }
   in_.qosStatus->configVersionUpdateTimeIs( step.time );
}

ConfigModel ConfigPublisher::checked( ConfigModel after,
                                      std::vector< Change > const& changes ) const {
   for( Change const& change : changes ) {
      try {
         after.apply( change.value );
      } catch( ConfigModel::Refusal const& r ) {
         throw ScenarioError( file_, change.where, r.what() );
      }
      checkCounterClient( change );
   }
   return after;
}

// A client's counter configuration goes in the directory under its name; another kind of
// entity there under that name is in the way.
void ConfigPublisher::checkCounterClient( Change const& change ) const {
   auto const* request = std::get_if< CounterRequest >( &change.value );
   if( !request ) return;
   auto const entity = in_.counterConfigDir->entityPtr( Zub::Name( request->client ) );
   if( entity && !Zub::dynamicPtrCast< Qos::CounterConfig >( entity ) ) {
      throw ScenarioError(
            file_, change.where,
            "the counter directory holds something else under '" + request->client + "'" );
   }
}

void ConfigPublisher::publish( ConfigModel after ) {
   ConfigDiff const diff = diffOf( model_, after );
   ConfigModel const before = std::exchange( model_, std::move( after ) );
   // First, so that what the step attaches finds the list as the step leaves it.
   in_.ncsd->intfsReadyIs( model_.interfacesReady() );
   for( Mirel::IntfId intf : diff.interfacesAdded )
      in_.ncsd->intfIs( intf, true );
   basicQosIs( before );
   definitionsIs( diff );
   servicePoliciesIs( before, diff.policyMaps );
   removalsIs( diff );
   for( Mirel::IntfId intf : diff.interfacesRemoved )
      in_.ncsd->intfDel( intf );
   controlPlaneIs( before );
   cbfIs( before );
   subInterfacesIs( before );
   nexthopGroupsIs( before );
}

void ConfigPublisher::nexthopGroupsIs( ConfigModel const& before ) {
   auto const status = in_.nexthopGroupStatus;
   if( !status ) return;
   for( auto const& [ name, index ] : before.nexthopGroups() ) {
      if( !model_.nexthopGroups().contains( name ) ) status->nexthopIndexDel( Zub::Name( name ) );
   }
   for( auto const& [ name, index ] : model_.nexthopGroups() )
      status->nexthopIndexIs( Zub::Name( name ), index );
}

void ConfigPublisher::subInterfacesIs( ConfigModel const& before ) {
   // Writing a value that stands, or asking for a child that exists, tells the engine nothing.
   in_.qosStatus->routedPortSubIntfQosAclSharingIs( model_.subIntfAclSharing() );
   auto const dir = in_.subIntfStatusDir;
   if( !dir ) return;
   for( auto const& [ intf, model ] : before.subInterfaces() ) {
      if( !model_.subInterfaces().contains( intf ) ) dir->intfStatusDel( intf );
   }
   for( auto const& [ intf, model ] : model_.subInterfaces() )
      dir->intfStatusIs( intf )->forwardingModelIs( model );
}

// Access lists, class maps, named policers and policy maps that are new or changed; each policy
// map that changed gets a new version.
void ConfigPublisher::definitionsIs( ConfigDiff const& diff ) {
   for( auto const& key : diff.acls ) {
      AclDef const& acl = model_.acls().at( key );
      if( acl.configured ) {
         aclIs( *in_.aclConfig, acl );
      } else {
         aclDel( *in_.aclConfig, acl.family, acl.name );
      }
   }
   for( auto const& key : diff.classMaps )
      classMapIs( *in_.qosStatus, model_.classMaps().at( key ) );
   for( auto const& name : diff.namedPolicers ) {
      auto const& moved = diff.policerParamsMoved;
      bool const paramsMoved = std::find( moved.begin(), moved.end(), name ) != moved.end();
      namedPolicerIs( *in_.qosStatus, model_.namedPolicers().at( name ), paramsMoved );
   }
   for( auto const& key : diff.policyMaps ) {
      policyMapIs( *in_.qosStatus, model_.policyMaps().at( key ), model_ );
      auto const types = in_.qosStatus->pmapType( key.first );
      ZUB_ASSERT( types );
      auto const pmap = types->pmap( Zub::Name( key.second ) );
      ZUB_ASSERT( pmap );
      pmap->versionIs( pmap->version() + 1 );
   }
}

// Service policies that go, those that stay (interfaces out, new version, interfaces in), and
// those that come.
void ConfigPublisher::servicePoliciesIs( ConfigModel const& before,
                                         std::vector< ConfigModel::MapKey > const& changedPmaps ) {
   Qos::Status& status = *in_.qosStatus;
   for( auto const& [ key, sp ] : before.servicePolicies() ) {
      if( !model_.servicePolicies().contains( key ) ) status.servicePolicyStatusDel( key );
   }
   for( auto const& [ key, sp ] : model_.servicePolicies() ) {
      auto const old = before.servicePolicies().find( key );
      auto entity = status.servicePolicyStatusIs( key );
      if( old != before.servicePolicies().end() ) {
         for( auto const& intf : old->second.interfaces ) {
            if( !has( sp.interfaces, intf ) ) entity->intfIdsDel( intf );
         }
         if( contains( changedPmaps, pmapKeyOf( key ) ) )
            entity->versionIs( entity->version() + 1 );
      }
      for( auto const& intf : sp.interfaces )
         entity->intfIdsIs( intf, true );
   }
   // A service policy the system configured itself (the default PDP policy) follows its policy
   // map's changes as the operator's do.
   for( auto it = status.servicePolicyStatus().iter(); it; ++it ) {
      if( model_.servicePolicies().contains( it.key() ) ) continue;
      if( contains( changedPmaps, pmapKeyOf( it.key() ) ) )
         it.value()->versionIs( it.value()->version() + 1 );
   }
}

void ConfigPublisher::basicQosIs( ConfigModel const& before ) {
   Qos::Status& status = *in_.qosStatus;
   globalMapsIs( status, model_.globalMaps() );
   for( auto const& [ name, map ] : model_.dscpRewriteMaps() )
      dscpRewriteMapIs( status, map );
   for( auto const& [ name, profile ] : model_.cosToTcProfiles() )
      cosToTcProfileIs( status, profile );
   for( auto const& [ intf, qos ] : before.intfQos() ) {
      if( !model_.intfQos().contains( intf ) ) status.intfStatusDel( intf );
   }
   for( auto const& [ intf, qos ] : model_.intfQos() )
      intfQosIs( status, qos );
   for( auto const& [ name, map ] : before.dscpRewriteMaps() ) {
      if( !model_.dscpRewriteMaps().contains( name ) )
         status.dscpRewriteMapDel( Zub::Name( name ) );
   }
   for( auto const& [ name, profile ] : before.cosToTcProfiles() ) {
      if( !model_.cosToTcProfiles().contains( name ) ) {
         status.cosToTcProfileDel( Zub::Name( name ) );
      }
   }
   if( auto const config = in_.ecnCounterConfig ) {
      for( auto const& [ intf, counters ] : before.ecnCounters() ) {
         if( !model_.ecnCounters().contains( intf ) ) config->ecnIntfCounterConfigDel( intf );
      }
      for( auto const& [ intf, counters ] : model_.ecnCounters() )
         ecnCountersIs( *config, counters );
   }
   if( auto const dir = in_.ethPhyIntfStatusDir ) {
      for( auto const& [ intf, link ] : model_.links() )
         linkIs( *dir, link );
   }
   for( auto const& key : before.servicePolicyDP1() ) {
      if( !model_.servicePolicyDP1().contains( key ) ) status.servicePolicyDP1StatusDel( key );
   }
   for( auto const& key : model_.servicePolicyDP1() )
      status.servicePolicyDP1StatusIs( key, true );
}

void ConfigPublisher::removalsIs( ConfigDiff const& diff ) {
   for( auto const& [ type, name ] : diff.policyMapsRemoved ) {
      auto const types = in_.qosStatus->pmapType( type );
      ZUB_ASSERT( types );
      types->pmapDel( Zub::Name( name ) );
   }
   for( auto const& name : diff.namedPolicersRemoved )
      in_.qosStatus->namedPolicerDel( Zub::Name( name ) );
   for( auto const& [ type, name ] : diff.classMapsRemoved )
      classMapDel( *in_.qosStatus, type, name );
   for( auto const& [ family, name ] : diff.aclsRemoved )
      aclDel( *in_.aclConfig, family, name );
}

void ConfigPublisher::controlPlaneIs( ConfigModel const& before ) {
   in_.hwStatus->hwInitializedIs( model_.hwInitialized() );
   auto const status = in_.kernelCoppStatus;
   if( !status ) return;
   for( auto const& [ key, state ] : before.kernelCopp() ) {
      if( !model_.kernelCopp().contains( key ) ) status->stateDel( key );
   }
   for( auto const& [ key, state ] : model_.kernelCopp() )
      status->stateIs( key, state );
}

void ConfigPublisher::cbfIs( ConfigModel const& before ) {
   if( auto const config = in_.fecOverrideConfig ) {
      for( auto const& [ key, def ] : before.fecOverrides() ) {
         if( !model_.fecOverrides().contains( key ) ) config->overrideDel( key );
      }
      // A record that stands as it was is left alone, as its writer would: rewriting it would
      // mend damage (corruptFecOverride) that the engine is yet to find.
      for( auto const& [ key, def ] : model_.fecOverrides() ) {
         auto const old = before.fecOverrides().find( key );
         if( old != before.fecOverrides().end() && old->second.overridingFec == def.overridingFec )
            continue;
         config->overrideIs( Qos::Glarn::FecOverrideEntry{ key, def.overridingFec } );
      }
   }
   if( auto const service = in_.fecService ) {
      for( auto const& [ fec, def ] : before.fecService() ) {
         if( !model_.fecService().contains( fec ) ) service->hwFecIdDel( fec );
      }
      for( auto const& [ fec, def ] : model_.fecService() ) {
         auto const old = before.fecService().find( fec );
         if( old != before.fecService().end() && old->second.hwFecId == def.hwFecId ) continue;
         service->hwFecIdIs( Nev::FecToHwFecId{ fec, def.hwFecId } );
      }
   }
}

void ConfigPublisher::requestsIs( std::vector< Change > const& changes, Zub::Seconds time ) {
   for( Change const& change : changes ) {
      if( auto const* request = std::get_if< CounterRequest >( &change.value ) ) {
         Zub::Name const name( request->client );
         auto config =
               Zub::dynamicPtrCast< Qos::CounterConfig >( in_.counterConfigDir->entityPtr( name ) );
         if( !config ) {
            config = Zub::make< Qos::CounterConfig >( name );
            in_.counterConfigDir->entityPtrIs( name, config );
         }
         config->pmapCounterUpdateRequestTimeIs( time );
      } else if( std::holds_alternative< ClearRequest >( change.value ) ) {
         in_.qosStatus->clearHwStatusErrorRequestTimeIs( time );
      } else if( auto const* gone = std::get_if< CounterClientRemoval >( &change.value ) ) {
         in_.counterConfigDir->entityPtrDel( Zub::Name( gone->client ) );
      }
   }
}

}  // namespace Sim
