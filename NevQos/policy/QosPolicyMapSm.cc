#include "NevQos/policy/QosPolicyMapSm.h"

#include <cstdio>

#include "NevQos/log/QosLogHandles.h"
#include "NevQos/log/TraceHandles.h"
#include "NevQos/platform/zub/Assert.h"
#include "NevQos/platform/zub/Format.h"
#include "NevQos/platform/zub/Log.h"
#include "NevQos/policy/QosAclSm.h"

namespace Nev {

namespace {

Zub::Seconds now() {
   return Zub::System::currentTime();
}

// Dynamic control-plane classes a map may hold, the class-default included.
constexpr unsigned maxCoppClasses = 48;

}  // namespace

QosPolicyMapSm::QosPolicyMapSm( QosPolicyMapKey const& key, QosAclSm* qosAclSm,
                                Zub::Ptr< Qos::PolicyMapStatus const > const& pmap,
                                Zub::Ptr< QosPolicyMapState > const& pmapState,
                                Zub::Ptr< Kesh::TimerWheel > const& clock )
    : key_( key ), qosAclSm_( qosAclSm ), pmap_( pmap ) {
   pmapState_.is( pmapState, this, false );
   clock_.is( clock, this, false );
   // A state kept from an earlier engine counts requests of a queue that has gone with it.
   pmapState->pendingRequestsIs( 0 );
   handleInitialized();
}

QosPolicyMapSm::~QosPolicyMapSm() = default;

void QosPolicyMapSm::handleInitialized() {
   // A helper may want the map compiled only while it has interfaces.
   if( qosAclSm()->qosHelper()->createSmForPMap( *pmapState() ) ) versionUpdated();
   ZUB_ASSERT( clock() );
   initialized_ = true;
}

bool QosPolicyMapSm::hasHwStatus() const {
   return pmapType() != Qos::mapControlPlane_ || qosAclSm()->qosAclHwStatus()->intfCoppSupported();
}

Zub::Ptr< Qos::PolicyMapHwStatus > QosPolicyMapSm::pmapSliceHwStatus() const {
   if( !hasHwStatus() ) return nullptr;
   auto pmapSliceHwStatusType = qosAclSm()->qosAclSliceHwStatus()->pmapType( pmapType() );
   ZUB_ASSERT( pmapSliceHwStatusType );
   auto pmapSliceHwStatus = pmapSliceHwStatusType->pmap( hwKey() );
   ZUB_ASSERT( pmapSliceHwStatus );
   return pmapSliceHwStatus;
}

void QosPolicyMapSm::versionUpdated() {
   ZUB_TRACE( nevQosTrace, 3, "versionUpdated " << pmapState()->dirty() );
   pmapState()->dirtyIs( false );  // a recompile starts with a clean slate
   Zub::Seconds const start = now();
   deleteSm();
   auto typeStatus = qosAclSm()->qosStatus()->pmapType( pmapType() );
   auto pmapStatus = typeStatus ? typeStatus->pmap( pmapName() ) : nullptr;
   if( pmapStatus ) pmapState()->versionIs( pmapStatus->version() );
   qosAclSm()->qosHelper()->prepareToCommit();
   createSm();
   doRecordLatency( start );
   if( auto hwStatus = pmapSliceHwStatus() ) hwStatus->versionIs( pmapState()->version() );
}

void QosPolicyMapSm::deleteSm() {
   qosAclSm()->qosHelper()->cleanupForPMap( key() );
   for( auto it = policyClassSm().iter(); it; ++it ) {
      it.value()->doPrepareToDie();
      policyClassSmDel( it.key() );
   }
   ipv4AccessGroupCount_ = 0;
   ipv6AccessGroupCount_ = 0;
   macAccessRuleCount_ = 0;
   qosAclSm()->qosHelper()->batchCommitAcls( *pmapState() );
}

void QosPolicyMapSm::createSm() {
   auto qosStatus = qosAclSm()->qosStatus();
   ZUB_ASSERT( qosStatus && "qosStatus" );
   auto typeStatus = qosStatus->pmapType( pmapType() );
   auto pmapStatus = typeStatus ? typeStatus->pmap( pmapName() ) : nullptr;
   if( !pmapStatus ) return;  // the map may vanish while a rebuild is scheduled
   ZUB_ASSERT( pmapState() );
   pmapState()->sharedIs( sharedPolicyMap() );
   ZUB_TRACE( nevQosTrace, 3,
              "createSm"
                    << " shared " << pmapState()->shared() );
   if( auto hwStatus = pmapSliceHwStatus() ) hwStatus->prgmStatusIs( Qos::hwPrgmStatusInProgress_ );
   pmapState()->readyToVerifyIs( false );
   pmapState()->classBudgetExceededIs( !verifyNumOfClasses() );
   if( pmapState()->classBudgetExceeded() ) {
      // Nothing is programmed for a map with too many classes, and nothing is logged. The
      // status says so on every chip, and keeps saying so until a compile that fits.
      qosAclSm()->setPolicyMapHwPrgmStatus( key() );
      return;
   }
   ZUB_TRACE( nevQosTrace, 3, " updateIpAccessGroupCounts" );
   for( auto it = pmapStatus->classPrio().iter(); it; ++it ) {
      updateIpAccessGroupCounts( classMap( it.value().cmapName() ) );
   }
   ZUB_TRACE( nevQosTrace, 3, " create PolicyClassSm" );
   std::uint16_t cmapPrio = qosAclSm()->qosAclHwStatus()->policyClassMaxPrio();
   for( auto it = pmapStatus->classPrio().iter(); it; ++it ) {
      Zub::Name const cmapName = it.value().cmapName();
      auto caction = pmapStatus->classAction( cmapName );
      createPolicyClassSm( cmapName, classMap( cmapName ), caction, cmapPrio, false );
      --cmapPrio;
      if( !sharedPolicyMap() && caction && caction->policer() ) {
         // A per-interface policer makes the compiled form depend on the interface set.
         pmapState()->doVersionUpdateIs( true );
      }
   }
   if( staticCoppClassesCompiled() ) {
      for( auto it = pmapStatus->coppStaticClassPrio().iter(); it; ++it ) {
         Zub::Name const cmapName = it.value().cmapName();
         auto cmap = classMap( cmapName );
         auto caction = pmapStatus->classAction( cmapName );
         if( !cmap || !caction ) continue;
         createPolicyClassSm( cmapName, cmap, caction, cmapPrio, false );
      }
   }
   if( classDefaultCompiled() ) {
      ZUB_TRACE( nevQosTrace, 3, " program defaultClass" );
      if( pmapStatus->classDefault() && pmapStatus->classActionDefault() ) {
         createPolicyClassSm( pmapStatus->classDefault()->key(), pmapStatus->classDefault(),
                              pmapStatus->classActionDefault(), cmapPrio, true );
      }
   }
   qosAclSm()->qosHelper()->batchCommitAcls( *pmapState() );
   compileEnded();
}

// On the asynchronous road the status waits for the last of the map's requests, which moves it;
// a compile that queued none has its outcome now.
void QosPolicyMapSm::compileEnded() {
   if( qosAclSm()->qosAclHwStatus()->selfReportedPrgmStatus() ) return;
   if( qosAclSm()->qosHelper()->asyncTcamOperationsSupported() &&
       pmapState()->pendingRequests() != 0 ) {
      return;
   }
   qosAclSm()->setPolicyMapHwPrgmStatus( key() );
}

void QosPolicyMapSm::requestEntered() {
   pmapState()->pendingRequestsIs( pmapState()->pendingRequests() + 1 );
}

// A driver that finishes a request twice (a result and a time-out of one operation it left
// pending) does not take the count below what is queued.
void QosPolicyMapSm::requestFinished() {
   if( pmapState()->pendingRequests() == 0 ) return;
   pmapState()->pendingRequestsIs( pmapState()->pendingRequests() - 1 );
}

bool QosPolicyMapSm::retired() const {
   return qosAclSm()->qosHelper()->pmapState( key() ) != pmapState();
}

void QosPolicyMapSm::createPolicyClassSm( Zub::Name const& cmapName,
                                          Zub::Ptr< Qos::ClassMapStatus const > const& cmap,
                                          Zub::Ptr< Qos::ClassAction const > const& caction,
                                          std::uint16_t cmapPrio, bool classDefault ) {
   ZUB_TRACE( nevQosTrace, 5,
              "createPolicyClassSm " << cmapName << " prio " << cmapPrio << " default "
                                     << classDefault << ( cmap ? "" : " (no class map)" ) );
   if( !cmap ) return;  // a class whose map is not published yet has nothing to match
   policyClassSmIs( QosClassMapKey( cmapName, pmapType() ), qosAclSm(), this, cmap, cmapPrio,
                    caction, classDefault );
}

bool QosPolicyMapSm::staticCoppClassesCompiled() const {
   bool const intfCopp = qosAclSm()->qosAclHwStatus()->intfCoppSupported();
   return pmapName() == coppPolicyMapName() || ( intfCopp && pmapType() == Qos::mapControlPlane_ );
}

// The system-wide control-plane policy has no class-default of its own.
bool QosPolicyMapSm::classDefaultCompiled() const {
   bool const intfCopp = qosAclSm()->qosAclHwStatus()->intfCoppSupported();
   return !( pmapType() == Qos::mapControlPlane_ &&
             ( pmapName() == coppPolicyMapName() || !intfCopp ) );
}

Zub::Ptr< Qos::ClassMapStatus const > QosPolicyMapSm::classMap( Zub::Name const& cmapName ) const {
   auto cmaps = qosAclSm()->qosStatus()->cmapType( pmapType() );
   return cmaps ? cmaps->cmap( cmapName ) : nullptr;
}

bool QosPolicyMapSm::sharedPolicyMap() const {
   auto typeStatus = qosAclSm()->qosStatus()->pmapType( pmapType() );
   auto pmapStatus = typeStatus ? typeStatus->pmap( pmapName() ) : nullptr;
   return pmapStatus && pmapStatus->shared();
}

bool QosPolicyMapSm::verifyNumOfClasses() const {
   auto dir = qosAclSm()->qosSliceHwStatusDir();
   if( !dir ) return true;
   Zub::Ptr< Qos::SliceHwStatus const > slice;
   for( auto it = dir->entityPtr().iter(); it && !slice; ++it ) {
      slice = Zub::dynamicPtrCast< Qos::SliceHwStatus const >( it.value() );
   }
   if( !slice ) return true;
   auto typeStatus = qosAclSm()->qosStatus()->pmapType( pmapType() );
   auto pmapStatus = typeStatus ? typeStatus->pmap( pmapName() ) : nullptr;
   if( !pmapStatus ) return true;
   unsigned count = 0;
   unsigned limit = 0;
   switch( pmapType() ) {
      case Qos::mapQos_:
         count = static_cast< unsigned >( pmapStatus->classPrio().size() ) + 1;
         limit = slice->maxClassesPerPolicyMap();
         ZUB_TRACE( nevQosTrace, 3, "verifyNumOfClasses " << count );
         break;
      case Qos::mapControlPlane_: {
         count = 1;
         auto cmaps = qosAclSm()->qosStatus()->cmapType( pmapType() );
         for( auto it = pmapStatus->classPrio().iter(); it; ++it ) {
            Zub::Name const cmapName = it.value().cmapName();
            bool const isStatic = cmaps && cmaps->cpTypeHas( cmapName ) &&
                                  cmaps->cpType( cmapName ) == Qos::cmapCpStatic_;
            if( !isStatic ) ++count;
         }
         limit = maxCoppClasses;
         break;
      }
      default:
         return true;
   }
   if( count > limit ) {
      ZUB_TRACE( nevQosTrace, 3,
                 "verifyNumOfClasses" << count << ", Max class " << limit << " reached )" );
      return false;
   }
   return true;
}

void QosPolicyMapSm::updateIpAccessGroupCounts(
      Zub::Ptr< Qos::ClassMapStatus const > const& cmap ) {
   if( !cmap ) return;
   auto acls = qosAclSm()->mainAclConfig();
   for( auto it = cmap->match().iter(); it; ++it ) {
      Qos::ClassMapMatchOption const option = it.key();
      Zub::Name const aclName( it.value()->strValue() );
      auto configured = [ & ]( Acl::AclType type ) {
         auto typeConfig = acls ? acls->config( type ) : nullptr;
         return typeConfig && typeConfig->aclHas( aclName );
      };
      switch( option ) {
         case Qos::matchOptionIpAcl:
            if( configured( Acl::ip() ) ) ++ipv4AccessGroupCount_;
            break;
         case Qos::matchOptionIpv6Acl:
            if( configured( Acl::ipv6() ) ) ++ipv6AccessGroupCount_;
            break;
         case Qos::matchOptionMac:
            if( configured( Acl::mac() ) ) ++macAccessRuleCount_;
            break;
         default:
            break;
      }
   }
}

void QosPolicyMapSm::intfUpdated( Qos::IntfPairKey const& intfPair, bool add ) {
   ZUB_TRACE( nevQosTrace, 3,
              "intfUpdated " << intfPair << " add " << add << " dirty " << pmapState()->dirty() );
   if( auto hwStatus = pmapSliceHwStatus() ) hwStatus->prgmStatusIs( Qos::hwPrgmStatusInProgress_ );
   pmapState()->readyToVerifyIs( false );
   if( add ) {
      pmapState()->activeIntfIs( intfPair, true );
   } else {
      pmapState()->activeIntfDel( intfPair );
   }
   auto helper = qosAclSm()->qosHelper();
   if( !helper->createSmForPMap( *pmapState() ) ) {
      if( pmapState()->activeIntfSize() != 0 ) {
         versionUpdated();
      } else {
         deleteSm();
      }
      qosAclSm()->setPolicyMapHwPrgmStatus( key() );
      return;
   }
   if( pmapState()->classBudgetExceeded() ) {
      // Nothing stands to move; a recompile, cheap for a map that has nothing, takes a budget
      // that has grown meanwhile.
      versionUpdated();
      qosAclSm()->setPolicyMapHwPrgmStatus( key() );
      return;
   }
   if( pmapState()->dirty() ) {
      // Dropping an interface may free enough to succeed; adding one cannot.
      if( !add ) versionUpdated();
      qosAclSm()->setPolicyMapHwPrgmStatus( key() );
      return;
   }
   for( auto it = policyClassSm().iter(); it; ++it )
      it.value()->intfUpdated( intfPair, add );
   helper->batchCommitAclsIntf( *pmapState(), intfPair, add );
   compileEnded();
}

void QosPolicyMapSm::doRecordLatency( Zub::Seconds startTime ) {
   Zub::Seconds const latency = now() - startTime;
   totalProcessTime_ += latency;
   lastLatency_ = latency;
   if( latency > maxLatency_ ) maxLatency_ = latency;
   ZUB_TRACE( nevQosTrace, 3, "Latency: " << latency << ", total time " << totalProcessTime_ );
}

void QosPolicyMapSm::handleDirty() {
   ZUB_TRACE( nevQosTrace, 3, "handleDirty " << key() );
   if( !pmapState()->dirty() ) return;
   ZUB_ASSERT( clock() );
   // The cleanup waits for the next turn, so that a failure in the middle of a compile does not
   // tear down the structures in use.
   clock_.reactor()->timeMinIs( now() );
   switch( pmapType() ) {
      case Qos::mapControlPlane_:
         Zub::log( QOS_COPP_HW_RESOURCE_FULL, "TCAM",
                   Zub::format( "policy map %s", pmapName().charPtr() ) );
         break;
      case Qos::mapQos_:
         Zub::log( QOS_POLICY_HW_RESOURCE_FULL, direction(), pmapName() );
         break;
      case Qos::mapPdp_:
         Zub::log( PDP_POLICY_HW_RESOURCE_FULL, direction(), pmapName() );
         break;
      default:
         break;
   }
   qosAclSm()->qosHelper()->qosAclSliceHwStatus()->statusIs( Qos::HwProgrammingStatus( 0 ) );
   pmapState()->readyToVerifyIs( false );
   qosAclSm()->qosHelper()->unableToProgramIs( spKey(), true );
}

void QosPolicyMapSm::handleDeferredDeletion() {
   ZUB_TRACE( nevQosTrace, 3, "handleDeferredDeletion " << key() );
   if( !pmapState()->dirty() ) return;  // a rebuild has cleared it meanwhile
   // The programmed part of a map that did not fit is removed whole.
   deleteSm();
   pmapState()->readyToVerifyIs( true );
   qosAclSm()->schedulePolicyVerify();
}

void QosPolicyMapSm::doPrepareToDie() {
   pmapState()->dirtyIs( false );
   pmapState()->readyToVerifyIs( false );
   deleteSm();
   qosAclSm()->setPolicyMapHwPrgmStatus( key() );
}

void QosPolicyMapSm::counterUpdateRequest() {
   for( auto it = policyClassSm().iter(); it; ++it )
      it.value()->counterUpdateRequest();
}

void QosPolicyMapSm::handleVerify() {
   auto const typeStatus = qosAclSm()->qosStatus()->pmapType( pmapType() );
   auto const pmapStatus = typeStatus ? typeStatus->pmap( pmapName() ) : nullptr;
   ZUB_ASSERT_TEXT( pmapStatus, "pmapStatus" );
   Zub::Ptr< Qos::PolicyMapHwStatus > pmapSliceHwStatus;
   if( hasHwStatus() ) {
      auto const pmapSliceHwStatusType = qosAclSm()->qosAclSliceHwStatus()->pmapType( pmapType() );
      ZUB_ASSERT_TEXT( pmapSliceHwStatusType, "pmapSliceHwStatusType" );
      pmapSliceHwStatus = pmapSliceHwStatusType->pmap( hwKey() );
      ZUB_ASSERT_TEXT( pmapSliceHwStatus, "pmapSliceHwStatusType->pmap( pmapHwStatusKey )" );
   }
   ZUB_TRACE( nevQosTrace, 5, "QosPolicyMapSm::handleVerify " << key() );
   // A map still being compiled, waiting to be torn down after a failure, or with requests
   // whose results are still to come, is not stable.
   if( !pmapState()->readyToVerify() || pmapState()->pendingRequests() != 0 ) return;
   // The class budget as the last compile found it: the one the status reports.
   if( pmapState()->classBudgetExceeded() || pmapState()->dirty() ) {
      verifyFailed( pmapSliceHwStatus );
      return;
   }
   for( auto it = pmapStatus->classPrio().iter(); it; ++it )
      verifyClass( it.value().cmapName(), true );
   for( auto it = pmapStatus->coppStaticClassPrio().iter(); it; ++it ) {
      Zub::Name const cmapName = it.value().cmapName();
      verifyClass( cmapName, staticCoppClassesCompiled() && classMap( cmapName ) &&
                                   pmapStatus->classAction( cmapName ) );
   }
   if( auto const classDefault = pmapStatus->classDefault() ) {
      verifyClass( classDefault->key(),
                   classDefaultCompiled() && pmapStatus->classActionDefault() );
   }
}

void QosPolicyMapSm::verifyFailed( Zub::Ptr< Qos::PolicyMapHwStatus > const& hwStatus ) {
   ZUB_ASSERT_TEXT( policyClassSmSize() == 0, "policyClassSms() == 0" );
   // A driver that reports its own status owns it, but not for a map it never saw.
   bool const engineStatus = pmapState()->classBudgetExceeded() ||
                             !qosAclSm()->qosAclHwStatus()->selfReportedPrgmStatus();
   if( !hwStatus || !engineStatus ) return;
   ZUB_ASSERT_TEXT( hwStatus->prgmStatus() == Qos::hwPrgmStatusFail_,
                    "pmapSliceHwStatus->prgmStatus() == Qos::hwPrgmStatusFail_" );
   ZUB_ASSERT_TEXT(
         hwStatus->prgmStatusErrMessage() == "Insufficient hardware resources",
         "pmapSliceHwStatus->prgmStatusErrMessage() == \"Insufficient hardware resources\"" );
}

void QosPolicyMapSm::verifyClass( Zub::Name const& cmapName, bool present ) {
   QosClassMapKey const cmapKey( cmapName, pmapType() );
   if( !present ) {
      ZUB_ASSERT_TEXT( !policyClassSmHas( cmapKey ), "!policyClassSmHas( cmapKey )" );
      return;
   }
   ZUB_ASSERT_TEXT( classMap( cmapName ), "cmap" );
   auto const sm = policyClassSm( cmapKey );
   ZUB_ASSERT_TEXT( sm, "policyClassSm( cmapKey )" );
   sm->handleVerify();
}

void QosPolicyMapSm::showAcls( std::uint32_t socket, std::uint32_t unit, bool detail ) {
   auto const helper = qosAclSm()->qosHelper();
   helper->showAclPolicyHeader( socket, unit, *pmapState(), key() );
   for( auto it = policyClassSm().iter(); it; ++it ) {
      it.value()->showAcl( socket, unit, detail );
      dprintf( static_cast< int >( socket ), "\n" );
   }
}

void QosPolicyMapSm::zubDoZombieReactors( bool zombie ) {
   if( this->zombie() == zombie ) return;
   zombieIs( zombie );
   pmapState_.zombieIs( zombie );
   clock_.zombieIs( zombie );
}

}  // namespace Nev
