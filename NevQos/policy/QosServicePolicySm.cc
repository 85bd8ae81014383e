#include "NevQos/policy/QosServicePolicySm.h"

#include "NevQos/log/TraceHandles.h"
#include "NevQos/platform/zub/Assert.h"
#include "NevQos/policy/QosAclSm.h"

namespace Nev {

QosServicePolicySm::QosServicePolicySm(
      Qos::ServicePolicyKey const& key, QosAclSm* qosAclSm,
      Zub::Ptr< Qos::ServicePolicyStatus const > const& servicePolicyStatus,
      Zub::Ptr< Kesh::TimerWheel > const& clock )
    : key_( key ), qosAclSm_( qosAclSm ), clock_( clock ) {
   servicePolicyStatus_.is( servicePolicyStatus, this, false );
   handleInitialized();
}

QosServicePolicySm::~QosServicePolicySm() {
   // The class machines' compile arguments hold their policy map; a map torn down with the
   // engine, rather than through doPrepareToDie, lets go of its classes here so that it can go.
   for( auto it = pmapSm().iter(); it; ++it )
      it.value()->policyClassSmDelAll();
}

QosPolicyMapKey QosServicePolicySm::defaultPmapKey() const {
   return QosPolicyMapKey( name(), type(), direction(), QosPolicyMapKey::defaultAclGroup() );
}

bool QosServicePolicySm::hasHwStatus() const {
   return type() != Qos::mapControlPlane_ || qosAclSm()->qosAclHwStatus()->intfCoppSupported();
}

Zub::Ptr< Qos::PolicyMapHwStatus > QosServicePolicySm::pmapSliceHwStatus() const {
   if( !hasHwStatus() ) return nullptr;
   auto pmapSliceHwStatusType = qosAclSm()->qosAclSliceHwStatus()->pmapType( type() );
   ZUB_ASSERT( pmapSliceHwStatusType );
   auto pmapSliceHwStatus = pmapSliceHwStatusType->pmap( hwKey() );
   ZUB_ASSERT( pmapSliceHwStatus );
   return pmapSliceHwStatus;
}

// The system-wide control-plane policy of a chip without per-interface CoPP is programmed
// without a hardware status entry; every reader of the entry does without it.
void QosServicePolicySm::handleInitialized() {
   initializedIs( true );
   if( !hasHwStatus() && !qosAclSm()->qosAclHwStatus()->coppSupported() ) return;
   if( hasHwStatus() ) {
      auto pmapSliceHwStatusType = qosAclSm()->qosAclSliceHwStatus()->pmapType( type() );
      ZUB_ASSERT( pmapSliceHwStatusType );
      pmapSliceHwStatusType->pmapIs( hwKey() );
   }
   createSm();
   for( auto it = servicePolicyStatus()->intfIds().iter(); it; ++it )
      handleIntf( it.key() );
   // No interface, no map: nothing is due in hardware, as after the last interface has left.
   if( pmapSmSize() == 0 ) reportApplied();
}

void QosServicePolicySm::reportApplied() {
   qosAclSm()->setPolicyMapHwPrgmStatus( defaultPmapKey() );
   auto const typeStatus = qosAclSm()->qosStatus()->pmapType( type() );
   auto const pmap = typeStatus ? typeStatus->pmap( name() ) : nullptr;
   ZUB_ASSERT( pmap );
   if( auto hwStatus = pmapSliceHwStatus() ) hwStatus->versionIs( pmap->version() );
}

namespace {

// The VXLAN interfaces sort together, from the first VXLAN number on: a change of one member
// looks at those alone, not at every member of a policy on a thousand ports.
bool vxlanMemberPresent( auto const& members ) {
   Qos::IntfPairKey const first( Mirel::IntfId::vxlan( 1 ), Mirel::IntfId() );
   for( auto it = members.iterFrom( first ); it && it.key().intfId().isVxlan(); ++it ) {
      if( it.value() ) return true;
   }
   return false;
}

}  // namespace

bool QosServicePolicySm::parkSvi( Qos::IntfPairKey const& intfPair ) const {
   return qosAclSm()->qosHelper()->delaySviPmapSmCreation() && intfPair.intfId().isVlan() &&
          !qosAclSm()->ncsd()->intfsReady();
}

bool QosServicePolicySm::ethernetNotPresent( Qos::IntfPairKey const& intfPair ) const {
   return intfPair.intfId().isEthernet() && !qosAclSm()->ncsd()->intf( intfPair.intfId() );
}

void QosServicePolicySm::createSm() {
   auto pmapTypeStatus = qosAclSm()->qosStatus()->pmapType( type() );
   ZUB_ASSERT( pmapTypeStatus );
   auto pmapStatus = pmapTypeStatus->pmap( name() );
   ZUB_ASSERT( pmapStatus );
   auto helper = qosAclSm()->qosHelper();
   helper->prepareToCommit();
   if( type() == Qos::mapControlPlane_ && !qosAclSm()->qosAclHwStatus()->intfCoppSupported() ) {
      // The control-plane policy is system-wide: one map, in the default group.
      QosPolicyMapKey const key = defaultPmapKey();
      auto pmapState = helper->pmapStateIs( key );
      pmapSmIs( key, qosAclSm(), pmapStatus, pmapState, clock() );
      return;
   }
   for( auto it = servicePolicyStatus()->intfIds().iter(); it; ++it ) {
      Qos::IntfPairKey const& intfPair = it.key();
      if( parkSvi( intfPair ) ) {
         qosAclSm()->delayedSviIntfIdIs( intfPair, this );
         continue;
      }
      if( ethernetNotPresent( intfPair ) && type() != Qos::mapControlPlane_ ) continue;
      QosPolicyMapKey const pmapKey( name(), type(), direction(),
                                     helper->aclGroup( intfPair, key() ) );
      auto state = helper->pmapState( pmapKey );
      if( !state ) {
         state = helper->pmapStateIs( pmapKey );
         state->versionIs( pmapStatus->version() );
      }
      if( helper->managedPrioritySupported( type() ) ) state->activeIntfIs( intfPair, true );
   }
   // One child per distinct group, also for groups that earlier runs left behind.
   for( auto it = helper->pmapState().iter(); it; ++it ) {
      QosPolicyMapKey const& pmapKey = it.key();
      if( pmapKey.pmapName() != name() || pmapKey.pmapType() != type() ||
          pmapKey.direction() != direction() || pmapSm( pmapKey ) ) {
         continue;
      }
      pmapSmIs( pmapKey, qosAclSm(), pmapStatus, it.value(), clock() );
   }
}

void QosServicePolicySm::handleVersion() {
   bool const pmapTypeSm = !!qosAclSm()->pmapTypeSm( type() );
   ZUB_ASSERT( pmapTypeSm );
   versionUpdated();
   qosAclSm()->schedulePolicyVerify();
}

void QosServicePolicySm::versionUpdated() {
   auto const typeStatus = qosAclSm()->qosStatus()->pmapType( type() );
   ZUB_ASSERT( typeStatus );
   auto const pmap = typeStatus->pmap( name() );
   ZUB_ASSERT( pmap );
   unsigned int const version = pmap->version();
   auto helper = qosAclSm()->qosHelper();
   // A new version starts with a clean slate, but the attachment stays unprogrammable until
   // the next status check.
   bool const wasUnable = helper->unableToProgram( key() );
   helper->unableToProgramDel( key() );
   for( auto it = pmapSm().iter(); it; ++it ) {
      it.value()->pmapState()->dirtyIs( false );
      it.value()->deleteSm();
      it.value()->pmapState()->versionIs( version );
   }
   helper->prepareToCommit();
   for( auto it = pmapSm().iter(); it; ++it )
      it.value()->createSm();
   if( auto hwStatus = pmapSliceHwStatus() ) hwStatus->versionIs( version );
   if( wasUnable ) helper->unableToProgramIs( key(), true );
   if( !qosAclSm()->qosAclHwStatus()->selfReportedPrgmStatus() &&
       !helper->asyncTcamOperationsSupported() ) {
      qosAclSm()->setPolicyMapHwPrgmStatus( defaultPmapKey() );
   }
}

void QosServicePolicySm::handleIntf( Qos::IntfPairKey const& intfPair ) {
   bool const pmapTypeSm = !!qosAclSm()->pmapTypeSm( type() );
   ZUB_ASSERT( pmapTypeSm );
   bool const add = servicePolicyStatus()->intfIdsHas( intfPair );
   ZUB_TRACE( nevQosTrace, 3, "handleIntf " << intfPair << " " << add );
   bool served = false;
   if( parkSvi( intfPair ) ) {
      if( !qosAclSm()->delayedSviIntfId().has( intfPair ) ) {
         qosAclSm()->delayedSviIntfIdIs( intfPair, this );
      }
   } else if( ethernetNotPresent( intfPair ) && type() != Qos::mapControlPlane_ ) {
      // Not served now: handled below.
   } else {
      intfUpdated( intfPair, add );
      served = true;
   }
   if( !served ) {
      // A missing interface must not keep the policy from being reported as applied.
      ZUB_TRACE( nevQosTrace, 7,
                 "handleIntf"
                       << " handleIntf called with non-existent interface " << intfPair.intfId() );
      reportApplied();
   }
   qosAclSm()->schedulePolicyVerify();
}

void QosServicePolicySm::handleIntf() {
   ZUB_TRACE( nevQosTrace, 3, "handleIntf" );
}

void QosServicePolicySm::intfUpdated( Qos::IntfPairKey const& intfPair, bool add ) {
   ZUB_TRACE( nevQosTrace, 3, "intfUpdated " << intfPair << " " << add );
   if( type() == Qos::mapControlPlane_ && !qosAclSm()->qosAclHwStatus()->intfCoppSupported() ) {
      return;
   }
   auto helper = qosAclSm()->qosHelper();
   helper->prepareToCommit();
   QosPolicyMapKey pmapKey( name(), type(), direction(), helper->aclGroup( intfPair, key() ) );
   if( !add ) {
      Zub::Ptr< QosPolicyMapSm > found;
      for( auto it = pmapSm().iter(); it && !found; ++it ) {
         if( it.value()->pmapState()->activeIntf( intfPair ) ) found = it.value();
      }
      if( found ) {
         pmapKey = found->key();
         // The last interface of the group retires the whole child.
         if( found->pmapState()->activeIntfSize() == 1 ) {
            deleteSm( pmapKey );
         } else {
            found->intfUpdated( intfPair, false );
         }
      }
   } else {
      if( !pmapSm( pmapKey ) ) {
         auto pmapTypeStatus = qosAclSm()->qosStatus()->pmapType( type() );
         ZUB_ASSERT( pmapTypeStatus );
         auto pmapStatus = pmapTypeStatus->pmap( name() );
         ZUB_ASSERT( pmapStatus );
         auto pmapState = helper->pmapStateIs( pmapKey );
         pmapState->versionIs( pmapStatus->version() );
         if( helper->managedPrioritySupported( type() ) ) pmapState->activeIntfIs( intfPair, true );
         pmapSmIs( pmapKey, qosAclSm(), pmapStatus, pmapState, clock() );
      }
      if( auto child = pmapSm( pmapKey ) ) child->intfUpdated( intfPair, true );
   }
   auto pmapState = helper->pmapState( pmapKey );
   if( !pmapState ) return;
   bool const isVxlanIntfPresent =
         intfPair.intfId().isVxlan() || vxlanMemberPresent( servicePolicyStatus()->intfIds() );
   // A change of the interface set that the helper has flagged, or any change with VXLAN
   // members, recompiles the child rather than only changing its ports.
   if( isVxlanIntfPresent ||
       ( pmapState->doVersionUpdate() && helper->managedPrioritySupported( type() ) ) ) {
      ZUB_TRACE(
            nevQosTrace, 3,
            " pmapState->doVersionUpdate : " << pmapState->doVersionUpdate()
                                             << " isVxlanIntfPresent: " << isVxlanIntfPresent );
      if( auto child = pmapSm( pmapKey ) ) child->versionUpdated();
   }
}

void QosServicePolicySm::reprogramPMapForIntf( Qos::IntfPairKey const& intfPair ) {
   bool const pmapTypeSm = !!qosAclSm()->pmapTypeSm( type() );
   ZUB_ASSERT( pmapTypeSm );
   ZUB_TRACE( nevQosTrace, 3, "reprogramPmapForIntf " << intfPair );
   intfUpdated( intfPair, false );
   intfUpdated( intfPair, true );
}

void QosServicePolicySm::deleteSm( QosPolicyMapKey const& pmapKey ) {
   Zub::Ptr< QosPolicyMapSm > const child = pmapSm( pmapKey );
   if( !child ) return;
   auto helper = qosAclSm()->qosHelper();
   helper->pmapStateDel( pmapKey );
   child->doPrepareToDie();
   pmapSmDel( pmapKey );
   if( helper->asyncTcamOperationsSupported() ) {
      // The ACL removals its own teardown has just entered hold the child until the queue has
      // served them; it hears nothing meanwhile. It leaves the collection now, so that the
      // group or the whole service policy can come back at once with a map of its own.
      child->zubDoZombieReactors( true );
      QosPolicyUpdateRequest request( updateReasonPolicyChange, "pmapSmDel", true );
      request.pmapKeyIs( pmapKey );
      qosAclSm()->enqueueRequestIs( request );
   }
}

void QosServicePolicySm::deleteAllSm() {
   for( auto it = pmapSm().iter(); it; ++it )
      deleteSm( it.key() );
}

void QosServicePolicySm::handleVerify() {
   if( hasHwStatus() ) {
      auto const pmapSliceHwStatusType = qosAclSm()->qosAclSliceHwStatus()->pmapType( type() );
      ZUB_ASSERT_TEXT( pmapSliceHwStatusType, "pmapSliceHwStatusType" );
      ZUB_ASSERT_TEXT( pmapSliceHwStatusType->pmap( hwKey() ),
                       "pmapSliceHwStatusType->pmap( pmapHwStatusKey )" );
   }
   auto const helper = qosAclSm()->qosHelper();
   for( auto pmapState = helper->pmapState().iter(); pmapState; ++pmapState ) {
      QosPolicyMapKey const& k = pmapState.key();
      if( k.pmapName() != name() || k.pmapType() != type() || k.direction() != direction() ) {
         continue;
      }
      ZUB_ASSERT_TEXT( pmapSm( pmapState.key() ), "pmapSm( pmapState.key() )" );
      pmapSm( k )->handleVerify();
   }
}

void QosServicePolicySm::doPrepareToDie() {
   deleteAllSm();
   // A machine that goes takes its parked SVIs with it.
   for( auto it = qosAclSm()->delayedSviIntfId().iter(); it; ++it ) {
      if( it.value().ptr() == this ) qosAclSm()->delayedSviIntfIdDel( it.key() );
   }
   if( hasHwStatus() ) {
      auto pmapSliceHwStatusType = qosAclSm()->qosAclSliceHwStatus()->pmapType( type() );
      ZUB_ASSERT( pmapSliceHwStatusType );
      pmapSliceHwStatusType->pmapDel( hwKey() );
   }
   qosAclSm()->qosHelper()->unableToProgramDel( key() );
}

void QosServicePolicySm::clearPMapCounters() {
   auto typeStatus = qosAclSm()->qosAclSliceHwStatus()->pmapType( type() );
   if( !typeStatus ) return;
   for( auto it = pmapSm().iter(); it; ++it ) {
      auto pmapHwStatus = typeStatus->pmap( it.value()->hwKey() );
      if( !pmapHwStatus ) continue;
      for( auto cit = pmapHwStatus->cmap().iter(); cit; ++cit ) {
         Qos::ClassMapHwStatus& cmap = *cit.value();
         cmap.outCountIs( 0 );
         cmap.outBytesIs( 0 );
         cmap.dropCountIs( 0 );
         cmap.dropBytesIs( 0 );
         for( auto pit = cmap.policerHwStatus().iter(); pit; ++pit ) {
            Qos::PolicerHwStatus& policer = *pit.value();
            policer.pktInCountIs( 0 );
            policer.byteInCountIs( 0 );
            policer.pktDropCountIs( 0 );
            policer.byteDropCountIs( 0 );
            policer.yellowPktInCountIs( 0 );
            policer.yellowByteInCountIs( 0 );
         }
      }
   }
}

void QosServicePolicySm::counterUpdateRequest() {
   // Control-plane counters come from elsewhere unless the chip polices per interface.
   if( type() == Qos::mapControlPlane_ && !qosAclSm()->qosAclHwStatus()->intfCoppSupported() ) {
      return;
   }
   clearPMapCounters();
   for( auto it = pmapSm().iter(); it; ++it )
      it.value()->counterUpdateRequest();
}

void QosServicePolicySm::zubDoZombieReactors( bool zombie ) {
   if( this->zombie() == zombie ) return;
   zombieIs( zombie );
   servicePolicyStatus_.zombieIs( zombie );
   for( auto it = pmapSm().iter(); it; ++it )
      it.value()->zubDoZombieReactors( zombie );
}

}  // namespace Nev
