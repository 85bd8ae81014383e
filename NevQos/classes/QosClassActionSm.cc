#include "NevQos/classes/QosClassActionSm.h"

#include "NevQos/helpers/QosAclHelper.h"
#include "NevQos/log/QosLogHandles.h"
#include "NevQos/log/TraceHandles.h"
#include "NevQos/platform/zub/Assert.h"
#include "NevQos/platform/zub/Log.h"
#include "NevQos/policy/QosAclSm.h"
#include "NevQos/policy/QosPolicyMapSm.h"

namespace Nev {

QosClassActionBaseSm::QosClassActionBaseSm(
      QosClassMapKey const& key, QosAclSm* qosAclSm, QosPolicyMapSm* pmapSm,
      Zub::Ptr< Qos::ClassAction const > const& policyClassAction )
    : key_( key )
    , qosAclSm_( qosAclSm )
    , pmapSm_( pmapSm )
    , policyClassAction_( policyClassAction ) {}

QosClassActionBaseSm::~QosClassActionBaseSm() = default;

void QosClassActionBaseSm::removeFrom( QosClassData& classData ) {
   for( auto it = actionSm().iter(); it; ++it )
      it.value()->removeFrom( classData );
}

void QosClassActionBaseSm::doPrepareToDie() {
   actionSmDelAll();
}

QosClassActionSm::QosClassActionSm( QosClassMapKey const& key, QosAclSm* qosAclSm,
                                    QosPolicyMapSm* pmapSm,
                                    Zub::Ptr< Qos::ClassAction const > const& policyClassAction )
    : QosClassActionBaseSm( key, qosAclSm, pmapSm, policyClassAction ) {}

void QosClassActionSm::applyTo( QosClassData& classData ) {
   switch( cmapType() ) {
      case Qos::mapControlPlane_:
         allocateCpuQueue( classData );
         break;
      case Qos::mapQos_:
         selectActions( classData );
         break;
      default:
         break;
   }
}

void QosClassActionSm::allocateCpuQueue( QosClassData& classData ) {
   auto const typeStatus = qosAclSm()->qosStatus()->cmapType( cmapType() );
   auto const cmap = typeStatus ? typeStatus->cmap( cmapName() ) : nullptr;
   // System classes have their queue already.
   if( !cmap || cmap->cpType() != Qos::cmapCpDynamic_ || classData.cpuQId() != -1 ) return;
   int const cpuQId = qosAclSm()->qosHelper()->coppAllocateCpuQ( classData );
   ZUB_TRACE( nevQosTrace, 5,
              "createSm"
                    << "(" << cpuQId << ")" );
   if( cpuQId < 0 ) {
      // The chip has no queue left: the map fails whole, as one whose entries do not fit, and
      // the class keeps -1, so that nothing is given back for it.
      qosAclSm()->updatePolicyMapErrorState( aclCreateErrorOutOfTcam, pmapSm()->key(), nullptr );
      return;
   }
   classData.cpuQIdIs( cpuQId );
}

void QosClassActionSm::selectActions( QosClassData& classData ) {
   auto const& actions = policyClassAction()->action();
   if( qosAclSm()->qosHelper()->multipleActionsSupported() ) {
      for( auto it = actions.iter(); it; ++it ) {
         actionApplyTo< QosActionSm >( Zub::Ptr< Qos::Action const >( it.value() ), classData );
      }
      return;
   }
   if( policyClassAction()->actionSize() == 0 ) return;
   actionApplyTo< QosActionSm >( singleAction(), classData );
   if( policyClassAction()->actionSize() > 1 ) {
      Zub::log( QOS_POLICY_MULTIPLE_ACTIONS, cmapName(), pmapSm()->pmapName() );
   }
}

Zub::Ptr< Qos::Action > QosClassActionSm::singleAction() const {
   auto const& cfg = *policyClassAction();
   if( auto const dscp = cfg.action( Qos::actionSetDscp_ ) ) return dscp;
   if( auto const cos = cfg.action( Qos::actionSetCos_ ) ) return cos;
   if( auto const tc = cfg.action( Qos::actionSetTc_ ) ) return tc;
   // A class that only drops, or only sets a drop precedence, is valid configuration: the chip
   // takes that one action.
   auto const action = cfg.action().iter().value();
   ZUB_ASSERT( action );
   return action;
}

void QosClassActionSm::removeFrom( QosClassData& classData ) {
   if( classData.key().cmapType() == Qos::mapControlPlane_ && classData.cpuQId() != -1 ) {
      qosAclSm()->qosHelper()->coppDeallocateCpuQ( classData );
      classData.cpuQIdIs( -1 );
   }
   QosClassActionBaseSm::removeFrom( classData );
}

void QosClassActionSm::handleVerify( QosClassData const& classData ) {
   if( cmapType() != Qos::mapQos_ ) return;
   if( qosAclSm()->qosHelper()->multipleActionsSupported() ) {
      verifyActions( policyClassAction()->action(), classData );
      return;
   }
   if( policyClassAction()->actionSize() == 0 ) return;
   Qos::ActionType const actionType = singleAction()->actionType();
   ZUB_ASSERT_TEXT( actionSmHas( actionType ), "actionSmHas( actionType )" );
   actionSm( actionType )->handleVerify( classData );
}

}  // namespace Nev
