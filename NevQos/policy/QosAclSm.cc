#include "NevQos/policy/QosAclSm.h"

#include <cstdio>

#include "NevQos/log/QosLogHandles.h"
#include "NevQos/log/TraceHandles.h"
#include "NevQos/platform/nev/AclData.h"
#include "NevQos/platform/zub/Assert.h"
#include "NevQos/platform/zub/Fleelog.h"
#include "NevQos/platform/zub/Log.h"
#include "NevQos/policy/QosPolicyMapClassData.h"
#include "NevQos/policy/QosPolicyMapSm.h"

namespace Nev {

// ---- reactors ----

void QosAclSm::ZubNamedPolicerStatus::onParamChangeVersion() {
   sm_->qosHelper()->updatePolicer( Zub::Name( notifier()->name() ) );
}

void QosAclSm::ZubSubIntfStatus::onForwardingModel() {
   sm_->qosHelper()->handleSubIntfForwardingModel( intfId_ );
}

// ---- construction ----

QosAclSm::QosAclSm( Zub::Ptr< NevCommonSmData const > const& ncsd,
                    Zub::Ptr< Qos::CounterConfig const > const& cliCounterConfig,
                    Zub::Ptr< Zub::Dir const > const& counterConfigDir,
                    Zub::Ptr< Qos::Status const > const& qosStatus,
                    Zub::Ptr< Qos::HwStatus const > const& qosHwStatus,
                    Zub::Ptr< Zub::Dir const > const& qosSliceHwStatusDir,
                    Zub::Ptr< Qos::AclHwStatus const > const& qosAclHwStatus,
                    Zub::Ptr< Qos::AclSliceHwStatus > const& qosAclSliceHwStatus,
                    Zub::Ptr< Interface::SubIntfStatusDir const > const& subIntfStatusDir,
                    Zub::Ptr< Qos::Input::Config > const& pdpHwCfg,
                    Zub::Ptr< HwEpoch::Status const > const& hwEpochStatus,
                    Zub::Ptr< Acl::Config const > const& mainAclConfig,
                    Zub::Ptr< NevHelper::QosAclHelper > const& qosHelper,
                    Zub::Ptr< Kesh::TimerWheel > const& clock,
                    Zub::Ptr< KernelCoPPStatus const > const& kernelCoppStatus,
                    Zub::Ptr< KernelCoPPConfig const > const& kernelCoppConfig,
                    Zub::Ptr< NexthopGroupStatus const > const& nexthopGroupStatus )
    : NevAsyncBaseSm( ncsd )
    , qosHwStatus_( qosHwStatus )
    , qosSliceHwStatusDir_( qosSliceHwStatusDir )
    , qosAclHwStatus_( qosAclHwStatus )
    , qosAclSliceHwStatus_( qosAclSliceHwStatus )
    , pdpHwCfg_( pdpHwCfg )
    , hwEpochStatus_( hwEpochStatus )
    , mainAclConfig_( mainAclConfig )
    , clock_( clock )
    , kernelCoppStatus_( kernelCoppStatus )
    , kernelCoppConfig_( kernelCoppConfig ) {
   // Reactors attach without catch-up: handleInitialized() walks the inputs in its own order.
   constexpr bool catchUp = false;
   cliCounterConfig_.is( cliCounterConfig, this, catchUp );
   counterConfigDir_.is( counterConfigDir, this, catchUp );
   qosStatus_.is( qosStatus, this, catchUp );
   subIntfStatusDir_.is( subIntfStatusDir, this, catchUp );
   qosHelper_.is( qosHelper, this, catchUp );
   nexthopGroupStatus_.is( nexthopGroupStatus, this, catchUp );
   if( ncsd ) {
      verifyData_.is( ncsd->verifyData(), this, catchUp );
      reactNcsd_.is( ncsd, this, catchUp );
   }
   if( qosStatus ) {
      for( auto it = qosStatus->namedPolicer().iter(); it; ++it )
         handleNamedPolicer( it.key() );
   }
   if( subIntfStatusDir ) {
      for( auto it = subIntfStatusDir->intfStatus().iter(); it; ++it ) {
         handleSubIntfStatus( it.key() );
      }
   }
}

QosAclSm::~QosAclSm() = default;

bool QosAclSm::pdpModeEnabled() const {
   return hwEpochStatus_ && hwEpochStatus_->pdpModeEnabled();
}

// ---- start-up ----

void QosAclSm::handleInitialized() {
   ZUB_TRACE( nevQosTrace, 2,
              "QosAclSm::"
                    << "handleInitialized" );
   if( pdpModeEnabled() ) {
      ZUB_TRACE( nevQosTrace, 0, " creating service policy config for default-pdp-policy" );
      ZUB_ASSERT( pdpHwCfg() );
      pdpHwCfg()->configPriorityIs( 90 );
      pdpHwCfg()->intfConfigPriorityIs( 90 );
      auto config = pdpHwCfg()->servicePolicyConfigIs( Qos::ServicePolicyKey(
            Qos::mapPdp_, Qos::Direction( 0 ), Zub::Name( "default-pdp-policy" ) ) );
      for( auto it = reactNcsd()->intf().iter(); it; ++it )
         config->intfIdsIs( it.key(), true );
      pdpDfltSPConfigIs( config );
   }
   ZUB_ASSERT( qosHelper() );
   qosHelper()->hwInit();
   ZUB_ASSERT( clock() );
   if( qosHelper()->asyncTcamOperationsSupported() ) {
      asyncStateIs( asyncNone );
      tcamRequestClockIs( Zub::activityManager()->clock() );
      pendingOperationTimeoutClockIs( Zub::activityManager()->clock() );
   }
   if( policiesServed() ) {
      if( kernelCoppStatus() && kernelCoppConfig() ) kernelCoppSetInitialConfig();
      stalePolicyMapHwStatusSweep( Qos::mapQos_, " deleting stale Qos policyMapHwStatus " );
      aclTypeConfigSmIs( Acl::AclType( 0 ), this );
      aclTypeConfigSmIs( Acl::AclType( 1 ), this );
      for( auto it = qosStatus()->pmapType().iter(); it; ++it ) {
         ZUB_TRACE( nevQosTrace, 2, "( PolicyMapTypeSm:" << it.key() );
         handlePolicyMapType( it.key() );
      }
      if( qosHwStatus()->pdpSupported() ) {
         stalePolicyMapHwStatusSweep( Qos::mapPdp_, " deleting stale PDP policyMapHwStatus " );
      }
      for( auto it = qosStatus()->servicePolicyStatus().iter(); it; ++it ) {
         ZUB_TRACE( nevQosTrace, 2, "( ServicePolicySm:" << it.key() );
         handleServicePolicy( it.key() );
      }
      handleCounterConfig();
   }
   handleConfigVersionUpdateTime();
   initializedIs( true );
   if( qosAclHwStatus()->coppSupported() || qosAclHwStatus()->intfCoppSupported() ||
       qosAclHwStatus()->policyQosSupported() || qosHwStatus()->pdpSupported() ) {
      schedulePolicyVerify();
   }
}

// Drops hardware status entries of an earlier agent life whose service policy is gone; entries
// that still match a service policy keep their status.
void QosAclSm::stalePolicyMapHwStatusSweep( Qos::MapType type, char const* what ) {
   auto typeStatus = qosAclSliceHwStatus()->pmapType( type );
   if( !typeStatus ) return;
   for( auto it = typeStatus->pmap().iter(); it; ++it ) {
      Qos::PolicyMapHwStatusKey const& hwKey = it.key();
      Qos::ServicePolicyKey spKey( type, hwKey.direction(), hwKey.name() );
      if( qosStatus()->servicePolicyStatusHas( spKey ) ) continue;
      ZUB_TRACE( nevQosTrace, 2, what << hwKey );
      typeStatus->pmapDel( hwKey );
   }
}

void QosAclSm::kernelCoppSetInitialConfig() {
   qosHelper()->createDefaultCoppRates();
}

bool QosAclSm::policiesServed() const {
   return qosAclHwStatus()->coppDynamicClassSupported() || qosAclHwStatus()->intfCoppSupported() ||
          qosAclHwStatus()->policyQosSupported() || qosHwStatus()->pdpSupported();
}

bool QosAclSm::mapTypeServed( Qos::MapType type ) const {
   switch( type ) {
      case Qos::mapQos_:
      case Qos::mapPdp_:
      case Qos::mapControlPlane_:
         // The type's own answer: the empty name is none that a type sets apart.
         return policyMapServed( type, Zub::Name() );
      default:
         return false;
   }
}

bool QosAclSm::policyMapServed( Qos::MapType type, Zub::Name const& pmapName ) const {
   return policiesServed() && policyMapSupported( type, pmapName );
}

bool QosAclSm::policyMapSupported( Qos::MapType type, Zub::Name const& pmapName ) const {
   switch( type ) {
      case Qos::mapQos_:
         return qosAclHwStatus()->policyQosSupported();
      case Qos::mapPdp_:
         return qosHwStatus()->pdpSupported();
      case Qos::mapControlPlane_:
         if( qosHelper()->asyncTcamOperationsSupported() ) return false;
         if( qosAclHwStatus()->intfCoppSupported() && pmapName == "copp-system-policy" ) {
            return false;
         }
         return qosAclHwStatus()->coppSupported() || qosAclHwStatus()->intfCoppSupported();
      default:
         return false;
   }
}

void QosAclSm::handleServicePolicy( Qos::ServicePolicyKey const& key ) {
   auto const& hw = *qosAclHwStatus();
   ZUB_TRACE( nevQosTrace, 2,
              "handleServicePolicy" << key << " coppDynamicClassSupported "
                                    << hw.coppDynamicClassSupported() << " intfCoppSupported "
                                    << hw.intfCoppSupported() << " policyQosSupported "
                                    << hw.policyQosSupported() << " pdpSupported "
                                    << qosHwStatus()->pdpSupported() );
   if( !policyMapServed( key.type(), key.pmapName() ) ) return;
   if( auto status = qosStatus()->servicePolicyStatus( key ) ) {
      servicePolicySmIs( key, this, status, clock() );
   } else {
      // On the asynchronous road the maps' removals stay queued, holding the maps, and the
      // machine goes now, so that the service policy given again gets a machine of its own.
      if( auto const sm = servicePolicySm( key ) ) sm->doPrepareToDie();
      servicePolicySmDel( key );
   }
   schedulePolicyVerify();
}

void QosAclSm::handleServicePolicy() {
   ZUB_TRACE( nevQosTrace, 3, "handleServicePolicy" );
}

void QosAclSm::handlePolicyMapType( Qos::MapType type ) {
   if( auto status = qosStatus()->pmapType( type ) ) {
      pmapTypeSmIs( type, this, status );
      schedulePolicyVerify();
      return;
   }
   if( type == Qos::mapControlPlane_ ) {
      std::fprintf( stderr, "Failed(false) Can't delete control-plane policy-map type\n" );
      std::fflush( stderr );
      Zub::assertFail( "false", __FILE__, __LINE__, __func__ );
   }
   // Other map types keep their machine to the end.
}

void QosAclSm::handlePolicyMapType() {
   ZUB_TRACE( nevQosTrace, 3, "handlePolicyMapType" );
}

void QosAclSm::handleConfigVersionUpdateTime() {
   ZUB_TRACE( nevQosTrace, 2, "handleConfigVersionUpdateTime" );
   if( qosHelper()->asyncTcamOperationsSupported() ) {
      ZUB_TRACE( nevQosTrace, 2, " Enqueuing configVersionUpdateTime request " );
      enqueueRequestIs( QosPolicyUpdateRequest( updateReasonConfigVersionUpdateTime,
                                                "ConfigVersionUpdateTime", false ) );
      return;
   }
   Zub::Seconds version = qosHelper()->qosStatus()->configVersionUpdateTime();
   qosHelper()->qosAclSliceHwStatus()->configVersionUpdateTimeIs( version );
   PAIRLOG( nevQosTrace, 2, "handleConfigVersionUpdateTime", " Config Version:", version,
            " applied." );
}

void QosAclSm::handleCliWaiting() {
   handleConfigVersionUpdateTime();
}

void QosAclSm::handleNexthopGroupIndex( Zub::Name const& nexthopGroup ) {
   ZUB_TRACE( nevQosTrace, 3, "handleNexthopGroupIndex " << nexthopGroup );
}

void QosAclSm::handleClearHwStatusErrorRequestTime() {
   ZUB_TRACE( nevQosTrace, 3, "handleClearHwStatusErrorRequestTime" );
   FLEELOG( "handleClearHwStatusErrorRequestTime" );
   qosAclSliceHwStatus()->statusIs( Qos::HwProgrammingStatus( 1 ) );
}

void QosAclSm::handleRoutedPortSubIntfAclSharing() {
   qosHelper()->handleRoutedPortSubIntfAclSharing();
}

void QosAclSm::handleNamedPolicer( Zub::Name const& name ) {
   auto policer = qosStatus()->namedPolicer( name );
   if( !policer ) {
      namedPolicerStatus_.del( name );
      return;
   }
   auto reactor = namedPolicerStatus_.get( name );
   if( !reactor ) {
      reactor = Zub::make< ZubNamedPolicerStatus >( this );
      namedPolicerStatus_.is( name, reactor );
   }
   reactor->notifierIsWithoutCatchUp( policer );
}

void QosAclSm::handleSubIntfStatus( Mirel::IntfId const& intfId ) {
   auto status = subIntfStatusDir()->intfStatus( intfId );
   if( !status ) {
      // A subinterface that goes takes its per-interface hardware state with it.
      if( subIntfStatus_.has( intfId ) ) {
         subIntfStatus_.del( intfId );
         qosHelper()->handleSubIntfDeletion( intfId );
      }
      return;
   }
   if( subIntfStatus_.has( intfId ) ) return;
   auto reactor = Zub::make< ZubSubIntfStatus >( this, intfId );
   reactor->notifierIsWithoutCatchUp( status );
   subIntfStatus_.is( intfId, reactor );
   reactor->handleInitialized();
}

void QosAclSm::handleIntfUpdate( Mirel::IntfId const& intfId ) {
   ZUB_TRACE( nevQosTrace, 3, "handleIntfUpdate " << intfId );
   if( !initialized() ) return;
   bool const present = reactNcsd()->intf( intfId );
   updateIntfPdpDfltSp( intfId, present );
   for( auto it = qosStatus()->servicePolicyStatus().iter(); it; ++it ) {
      Qos::ServicePolicyKey const& key = it.key();
      if( !policyMapSupported( key.type(), key.pmapName() ) ) continue;
      auto sm = servicePolicySm( key );
      if( !sm ) continue;
      for( auto pit = sm->servicePolicyStatus()->intfIds().iter(); pit; ++pit ) {
         if( pit.key().intfId() == intfId ) sm->intfUpdated( pit.key(), present );
      }
   }
   if( !delayedSviIntfId_.empty() && present ) createPMapSmForDelayedSviIntfIds();
}

void QosAclSm::createPMapSmForDelayedSviIntfIds() {
   for( auto it = delayedSviIntfId_.iter(); it; ++it )
      it.value()->intfUpdated( it.key(), true );
   delayedSviIntfIdDelAll();
}

void QosAclSm::delayedSviIntfIdDelAll() {
   while( Qos::IntfPairKey const* first = delayedSviIntfId_.firstKey() ) {
      Qos::IntfPairKey k = *first;
      delayedSviIntfId_.erase( k );
   }
}

void QosAclSm::updateIntfPdpDfltSp( Mirel::IntfId const& intfId, bool add ) {
   if( !intfId.isEthernet() || intfId.isSubIntf() || !pdpModeEnabled() ) return;
   ZUB_ASSERT( pdpDfltSPConfig() );
   if( add ) {
      pdpDfltSPConfig()->intfIdsIs( intfId, true );
      ZUB_TRACE( nevQosTrace, 0, intfId << " to default-pdp-policy" );
   } else {
      pdpDfltSPConfig()->intfIdsDel( intfId );
      ZUB_TRACE( nevQosTrace, 0, intfId << " from default-pdp-policy" );
   }
}

void QosAclSm::handleIntfUpdateCallback( IntfUpdateCallbackData const& data ) {
   ZUB_TRACE( nevQosTrace, 3, "handleIntfUpdateCallback " << data );
   if( !initialized() ) return;
   if( !qosHelper()->intfUpdateCallbackData( data ) ) return;
   for( auto it = qosStatus()->servicePolicyStatus().iter(); it; ++it ) {
      Qos::ServicePolicyKey const& key = it.key();
      if( key.direction() != data.direction() ) continue;
      if( !it.value()->intfIds( data.intfPair() ) ) continue;
      if( auto sm = servicePolicySm( key ) ) sm->reprogramPMapForIntf( data.intfPair() );
   }
}

void QosAclSm::reprogramAllPMaps() {
   ZUB_TRACE( nevQosTrace, 3, "reprogramAllPMaps" );
   if( !initialized() ) return;
   for( auto it = servicePolicySm().iter(); it; ++it ) {
      it.value()->doPrepareToDie();
      servicePolicySmDel( it.key() );
   }
   for( auto it = qosStatus()->servicePolicyStatus().iter(); it; ++it ) {
      Qos::ServicePolicyKey const& key = it.key();
      if( !policyMapServed( key.type(), key.pmapName() ) ) continue;
      if( !servicePolicySm( key ) ) servicePolicySmIs( key, this, it.value(), clock() );
   }
   schedulePolicyVerify();
}

void QosAclSm::schedulePolicyVerify() {
   if( !initialized() ) return;
   verifyPolicyIs( true );
   if( auto verify = ncsd() ? ncsd()->verifyData() : nullptr ) {
      if( verify->verifyRequired() ) verify->doRequestVerify();
   }
}

void QosAclSm::handleCounterConfig() {
   if( !counterConfigDir() ) return;
   for( auto it = counterConfigDir()->entityPtr().iter(); it; ++it )
      handleCounterConfig( it.key() );
}

void QosAclSm::handleCounterConfig( Zub::Name const& name ) {
   ZUB_TRACE( nevQosTrace, 3, "handleCounterConfig " << name );
   auto const entity = counterConfigDir() ? counterConfigDir()->entityPtr( name ) : nullptr;
   auto const counterConfig = Zub::dynamicPtrCast< Qos::CounterConfig const >( entity );
   if( counterConfig ) {
      counterUpdateSmIs( name, this, qosHelper()->qosAclSliceHwStatus(), counterConfig );
   } else if( counterUpdateSmHas( name ) ) {
      counterUpdateSmDel( name );
   }
}

void QosAclSm::handleCliPMapCounterUpdateRequest() {
   ZUB_TRACE( nevQosTrace, 3, "handleCliPMapCounterUpdateRequest" );
}

void QosAclSm::handleVerify() {
   ZUB_TRACE( nevQosTrace, 3, "handleVerify" );
   if( verifyPolicy() ) handlePolicyVerify();
}

void QosAclSm::handlePolicyVerify() {
   if( !verifyPolicy() ) return;
   ZUB_TRACE( nevQosTrace, 3, "handlePolicyVerify" );
   for( Acl::AclType const type : { Acl::ip(), Acl::ipv6() } ) {
      if( auto const sm = aclTypeConfigSm( type ) ) sm->handleVerify();
   }
   // Only what the platform serves has machines to compare.
   for( auto i = qosStatus()->pmapType().iter(); i; ++i ) {
      if( !mapTypeServed( i.key() ) ) continue;
      ZUB_ASSERT_TEXT( pmapTypeSmHas( i.key() ), "pmapTypeSmHas( i.key() )" );
      pmapTypeSm( i.key() )->handleVerify();
   }
   for( auto i = qosStatus()->servicePolicyStatus().iter(); i; ++i ) {
      if( !policyMapServed( i.key().type(), i.key().pmapName() ) ) continue;
      ZUB_ASSERT_TEXT( servicePolicySmHas( i.key() ), "servicePolicySmHas( i.key() )" );
      servicePolicySm( i.key() )->handleVerify();
   }
   verifyPolicyIs( false );
}

VerifyData* QosAclSm::verifyReport() const {
   return ncsd() ? ncsd()->verifyData().ptr() : nullptr;
}

void QosAclSm::showAcls( std::uint32_t socket, std::uint32_t unit, bool detail,
                         Qos::MapType mapType ) {
   auto const sm = pmapTypeSm( mapType );
   ZUB_ASSERT( sm );
   sm->showAcls( socket, unit, detail );
}

void QosAclSm::zubDoZombieReactors( bool zombie ) {
   if( this->zombie() == zombie ) return;
   NevAsyncBaseSm::zubDoZombieReactors( zombie );
   cliCounterConfig_.zombieIs( zombie );
   counterConfigDir_.zombieIs( zombie );
   qosStatus_.zombieIs( zombie );
   subIntfStatusDir_.zombieIs( zombie );
   qosHelper_.zombieIs( zombie );
   nexthopGroupStatus_.zombieIs( zombie );
   verifyData_.zombieIs( zombie );
   reactNcsd_.zombieIs( zombie );
   for( auto it = namedPolicerStatus_.iter(); it; ++it )
      it.value()->zombieIs( zombie );
   for( auto it = subIntfStatus_.iter(); it; ++it )
      it.value()->zombieIs( zombie );
   for( auto it = servicePolicySm().iter(); it; ++it )
      it.value()->zubDoZombieReactors( zombie );
   for( auto it = counterUpdateSm().iter(); it; ++it )
      it.value()->zubDoZombieReactors( zombie );
}

}  // namespace Nev
