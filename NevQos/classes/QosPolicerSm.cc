#include "NevQos/classes/QosPolicerSm.h"

#include <iostream>

#include "NevQos/helpers/QosAclHelper.h"
#include "NevQos/log/QosLogHandles.h"
#include "NevQos/log/TraceHandles.h"
#include "NevQos/platform/nev/AclData.h"
#include "NevQos/platform/zub/Assert.h"
#include "NevQos/platform/zub/Log.h"
#include "NevQos/policy/QosAclSm.h"
#include "NevQos/policy/QosPolicyMapSm.h"
#include "NevQos/types/Rates.h"

namespace Nev {

namespace {

// The policy map whose named policers the chip defines itself.
Zub::Name const& defaultPdpPolicyName() {
   static Zub::Name const name( "default-pdp-policy" );
   return name;
}

}  // namespace

QosPolicerSm::QosPolicerSm( Zub::Name const& name, Zub::Ptr< QosClassConfig const > const& config,
                            Qos::IntfPairKey const& intfPair, QosPolicerActionSms const* actionSms )
    : QosPolicyClassBaseSm( config )
    , intfPair_( intfPair )
    , name_( name )
    , actionSms_( actionSms ) {
   ZUB_ASSERT( actionSms_ );
   handleInitialized();
}

void QosPolicerSm::handleInitialized() {
   createSm();
   ownFlagIs( initializedFlag, true );
}

Zub::Ptr< Qos::NamedPolicerStatus const > QosPolicerSm::namedPolicerStatus() const {
   auto const policerCfg = caction() ? caction()->policer() : nullptr;
   if( !policerCfg ) std::cerr << "Policer not configured as a class action" << std::endl;
   ZUB_ASSERT_TEXT( policerCfg, "!\"policerCfg\"" );
   if( !policerCfg->named() ) return nullptr;
   Zub::Name const& policerName = policerCfg->key();
   switch( pmapSm()->pmapType() ) {
      case Qos::mapQos_:
         return qosAclSm()->qosStatus()->namedPolicer( policerName );
      case Qos::mapControlPlane_:
         std::cerr << "Control plane policies cannot use named policers" << std::endl;
         ZUB_ASSERT_TEXT( false, "Control plane policies cannot use named policers" );
         return nullptr;
      case Qos::mapPdp_: {
         if( pmapSm()->pmapName() != defaultPdpPolicyName() ) {
            return qosAclSm()->qosStatus()->namedPolicer( policerName );
         }
         // The chip defines the default PDP policy's policers.
         auto const status = qosAclSm()->qosAclHwStatus()->namedPolicerStatus( policerName );
         if( !status ) std::cerr << "Default named policer status not present" << std::endl;
         ZUB_ASSERT_TEXT( status, "Default named policer status not present" );
         return status;
      }
      default:
         return nullptr;
   }
}

void QosPolicerSm::createSm() {
   createSmCommon();
   if( !classData() ) return;  // the policy map has gone
   classData()->intfIdIs( intfPair(), true );
   setPmapHwStatus();
   // The status entry stands even when no policer is configured.
   if( auto const status = pmapSliceHwStatus()->cmap( cmapName() ) ) {
      status->policerHwStatusIs( name() );
   }
   if( !caction() || !caction()->policer() ) return;
   createPolicerData( name() );
   auto const policerData = classData()->policerData();
   policerData->namedIs( caction()->policer()->named() );
   policerData->namedPolicerStatusIs( namedPolicerStatus() );
   classDataPolicerNameIs( name() );
   applyActions();
   createClassMatchSm();
   // A map that failed is rebuilt as a whole: its copies reach the chip then.
   if( pmapSm()->pmapState()->dirty() ) return;
   createAndAttachPolicer();
}

void QosPolicerSm::createAndAttachPolicer() {
   bool const created = qosAclSm()->qosHelper()->createAndAttachPolicer( *classData() );
   classData()->policerData()->createdInHwIs( created );
   auto const status = pmapSliceHwStatus()->cmap( cmapName() );
   if( status ) status->policerHwStatusIs( name() )->policerPrgmdIs( created );
   if( created ) return;
   Zub::log( QOS_POLICY_POLICER_RESOURCE_FULL, cmapName(), pmapSm()->pmapName(),
             Zub::String( "interface" ), name() );
   // Without the error the policy stands, without its police action.
   if( qosAclSm()->qosHelper()->errorOnPolicerExhaustion() ) {
      qosAclSm()->updatePolicyMapErrorState( aclCreateErrorPolicerExhausted, pmapSm()->key(),
                                             Zub::make< AclData >( AclKey() ) );
   }
}

bool QosPolicerSm::shared() const {
   return pmapSm()->sharedPolicyMap() || namedSharedPolicer();
}

void QosPolicerSm::handleIntf( Qos::IntfPairKey const& intfId, bool add ) {
   if( !classData() ) return;
   if( add ) {
      classData()->intfIdIs( intfId, true );
   } else {
      classData()->intfIdDel( intfId );
   }
   // A copy for one plain interface holds that interface from its creation.
   if( !intfId.lagIntfId() && !shared() ) return;
   for( auto it = classMatchSm().iter(); it; ++it )
      it.value()->intfUpdated( intfId, add );
}

// The class action first, then yellow and red: as if each copy had machines of its own.
void QosPolicerSm::applyActions() {
   actionSms_->classActionSm->applyTo( *classData() );
   actionSms_->yellowClassActionSm->applyTo( *classData() );
   actionSms_->redClassActionSm->applyTo( *classData() );
   ownFlagIs( actionsAppliedFlag, true );
}

// Red, yellow, then the class action.
void QosPolicerSm::removeActions() {
   if( !actionsApplied() || !classData() ) return;
   ownFlagIs( actionsAppliedFlag, false );
   actionSms_->redClassActionSm->removeFrom( *classData() );
   actionSms_->yellowClassActionSm->removeFrom( *classData() );
   actionSms_->classActionSm->removeFrom( *classData() );
}

QosClassActionSm* QosPolicerSm::appliedClassActionSm() const {
   return actionsApplied() ? actionSms_->classActionSm.ptr() : nullptr;
}

void QosPolicerSm::deleteSm() {
   if( classData() ) {
      auto const policerData = classData()->policerData();
      if( policerData && policerData->createdInHw() ) {
         qosAclSm()->qosHelper()->destroyPolicer( *classData() );
      }
   }
   deleteClassMatchSm();
   removeActions();
   if( classData() ) classData()->policerDataDel();
   if( pmapSliceHwStatus() ) {
      if( auto const status = pmapSliceHwStatus()->cmap( cmapName() ) ) {
         status->policerHwStatusDel( name() );
      }
   }
   QosPolicyClassBaseSm::deleteSm();
}

QosClassCounterData QosPolicerSm::policerCounters() const {
   QosClassCounterData sum;
   switch( cmapType() ) {
      case Qos::mapQos_:
      case Qos::mapPdp_:
         for( auto it = classMatchSm().iter(); it; ++it )
            sum += it.value()->counterUpdateRequest();
         break;
      case Qos::mapControlPlane_: {
         ZUB_ASSERT_TEXT( qosAclSm()->qosAclHwStatus()->intfCoppSupported(),
                          "qosAclSm()->qosAclHwStatus()->intfCoppSupported()" );
         AclKey const key( Zub::Name( "copp" ), Acl::ip(), Zub::Name( "Default" ) );
         sum += qosAclSm()->qosHelper()->counterUpdateRequest( *classData(), key );
         break;
      }
      default:
         break;
   }
   return sum;
}

void QosPolicerSm::counterUpdateRequest() {
   auto const cmapSliceHwStatus = pmapSliceHwStatus()->cmap( cmapName() );
   ZUB_ASSERT_TEXT( cmapSliceHwStatus, "cmapSliceHwStatus" );
   auto const policerHwStatus = cmapSliceHwStatus->policerHwStatus( name() );
   ZUB_ASSERT_TEXT( policerHwStatus, "policerHwStatus" );
   // The status was cleared before the request.
   QosClassCounterData sum;
   sum.pktHitsIs( policerHwStatus->pktInCount() );
   sum.byteHitsIs( policerHwStatus->byteInCount() );
   sum.pktDropsIs( policerHwStatus->pktDropCount() );
   sum.byteDropsIs( policerHwStatus->byteDropCount() );
   sum.yellowPktHitsIs( policerHwStatus->yellowPktInCount() );
   sum.yellowByteHitsIs( policerHwStatus->yellowByteInCount() );
   sum += policerCounters();
   policerHwStatus->pktInCountIs( sum.pktHits() );
   policerHwStatus->byteInCountIs( sum.byteHits() );
   policerHwStatus->pktDropCountIs( sum.pktDrops() );
   policerHwStatus->byteDropCountIs( sum.byteDrops() );
   policerHwStatus->yellowPktInCountIs( sum.yellowPktHits() );
   policerHwStatus->yellowByteInCountIs( sum.yellowByteHits() );
}

void QosPolicerSm::verifyPolicerParameters() const {
   auto const policerData = classData()->policerData();
   ZUB_ASSERT_TEXT( policerData, "policerData" );
   PolicerParams const p =
         validatedPolicerParams( qosAclSm()->qosAclHwStatus(), *caction()->policer() );
   ZUB_ASSERT_TEXT( p.cirUnit == policerData->cirUnit(), "cirUnit == policerData->cirUnit()" );
   ZUB_ASSERT_TEXT( p.cir == policerData->cir(), "cir == policerData->cir()" );
   ZUB_ASSERT_TEXT( p.bcUnit == policerData->bcUnit(), "bcUnit == policerData->bcUnit()" );
   ZUB_ASSERT_TEXT( p.bc == policerData->bc(), "bc == policerData->bc()" );
}

void QosPolicerSm::verifyCpuQueue() const {
   std::int32_t const cpuQId = classData()->cpuQId();
   ZUB_TRACE( nevQosTrace, 5, "handleVerify " << classData()->key() << " " << cpuQId );
   ZUB_ASSERT_TEXT( ( cpuQId == -1 ) || ( cmap()->cpType() == Qos::cmapCpDynamic_ ),
                    "( cpuQId == -1 ) || ( cmap()->cpType() == Qos::cmapCpDynamic_ )" );
   ZUB_ASSERT_TEXT( ( cmap()->cpType() != Qos::cmapCpDynamic_ ) || ( cpuQId >= 0 ),
                    "( cmap()->cpType() != Qos::cmapCpDynamic_ ) || ( cpuQId >= 0 )" );
}

void QosPolicerSm::handleVerify() {
   if( !classData() ) return;
   if( caction() && caction()->policer() ) verifyPolicerParameters();
   QosPolicyClassBaseSm::handleVerify();
   if( actionsApplied() ) {
      actionSms_->yellowClassActionSm->handleVerify( *classData() );
      actionSms_->redClassActionSm->handleVerify( *classData() );
   }
   qosAclSm()->qosHelper()->verifyPolicer( *classData() );
   if( cmapType() == Qos::mapControlPlane_ && qosAclSm()->qosAclHwStatus()->intfCoppSupported() ) {
      verifyCpuQueue();
   }
}

}  // namespace Nev
