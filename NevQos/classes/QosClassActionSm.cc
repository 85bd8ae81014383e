#include "NevQos/classes/QosClassActionSm.h"

#include "NevQos/helpers/QosAclHelper.h"
#include "NevQos/log/QosLogHandles.h"
#include "NevQos/log/TraceHandles.h"
#include "NevQos/policy/QosAclSm.h"
#include "NevQos/policy/QosPolicyMapSm.h"
#include "zub/Assert.h"
#include "zub/Log.h"

namespace Nev {

QosClassActionBaseSm::QosClassActionBaseSm(
      QosClassMapKey const& key, QosAclSm* qosAclSm, QosPolicyMapSm* pmapSm,
      Zub::Ptr< QosClassData > const& classData,
      Zub::Ptr< Qos::ClassAction const > const& policyClassAction )
    : key_( key )
    , qosAclSm_( qosAclSm )
    , pmapSm_( pmapSm )
    , classData_( classData )
    , policyClassAction_( policyClassAction ) {}

QosClassActionBaseSm::~QosClassActionBaseSm() = default;

void QosClassActionBaseSm::deleteSm() {
   while( auto const first = actionSm().iter() ) {
      Qos::ActionType const type = first.key();
      first.value()->doPrepareToDie();
      actionSmDel( type );
   }
}

void QosClassActionBaseSm::doPrepareToDie() {
   deleteSm();
}

QosClassActionSm::QosClassActionSm( QosClassMapKey const& key, QosAclSm* qosAclSm,
                                    QosPolicyMapSm* pmapSm,
                                    Zub::Ptr< QosClassData > const& classData,
                                    Zub::Ptr< Qos::ClassAction const > const& policyClassAction )
    : QosClassActionBaseSm( key, qosAclSm, pmapSm, classData, policyClassAction ) {
   handleInitialized();
}

void QosClassActionSm::handleInitialized() {
   createSm();
   initializedIs();
}

void QosClassActionSm::createSm() {
   switch( cmapType() ) {
      case Qos::mapControlPlane_:
         allocateCpuQueue();
         break;
      case Qos::mapQos_:
         selectActions();
         break;
      default:
         break;
   }
}

void QosClassActionSm::allocateCpuQueue() {
   auto const typeStatus = qosAclSm()->qosStatus()->cmapType( cmapType() );
   auto const cmap = typeStatus ? typeStatus->cmap( cmapName() ) : nullptr;
   // System classes have their queue already.
   if( !cmap || cmap->cpType() != Qos::cmapCpDynamic_ || classData()->cpuQId() != -1 ) return;
   int const cpuQId = qosAclSm()->qosHelper()->coppAllocateCpuQ( *classData() );
   ZUB_TRACE( nevQosTrace, 5,
              "createSm"
                    << "(" << cpuQId << ")" );
   if( cpuQId < 0 ) {
      // The chip has no queue left: the map fails whole, as one whose entries do not fit, and
      // the class keeps -1, so that nothing is given back for it.
      qosAclSm()->updatePolicyMapErrorState( aclCreateErrorOutOfTcam, pmapSm()->key(), nullptr );
      return;
   }
   classData()->cpuQIdIs( cpuQId );
}

void QosClassActionSm::selectActions() {
   auto const& actions = policyClassAction()->action();
   if( qosAclSm()->qosHelper()->multipleActionsSupported() ) {
      for( auto it = actions.iter(); it; ++it ) {
         actionSmIsOf< QosActionSm >( it.key(), key(), qosAclSm(), pmapSm(), classData(), this,
                                      Zub::Ptr< Qos::Action const >( it.value() ) );
      }
      return;
   }
   if( policyClassAction()->actionSize() == 0 ) return;
   auto const action = singleAction();
   actionSmIsOf< QosActionSm >( action->actionType(), key(), qosAclSm(), pmapSm(), classData(),
                                this, Zub::Ptr< Qos::Action const >( action ) );
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

void QosClassActionSm::deleteSm() {
   if( classData()->key().cmapType() == Qos::mapControlPlane_ && classData()->cpuQId() != -1 ) {
      qosAclSm()->qosHelper()->coppDeallocateCpuQ( *classData() );
      classData()->cpuQIdIs( -1 );
   }
   QosClassActionBaseSm::deleteSm();
}

void QosClassActionSm::handleVerify() {
   if( cmapType() != Qos::mapQos_ ) return;
   if( qosAclSm()->qosHelper()->multipleActionsSupported() ) {
      verifyActions( policyClassAction()->action() );
      return;
   }
   if( policyClassAction()->actionSize() == 0 ) return;
   Qos::ActionType const actionType = singleAction()->actionType();
   ZUB_ASSERT_TEXT( actionSmHas( actionType ), "actionSmHas( actionType )" );
   actionSm( actionType )->handleVerify();
}

}  // namespace Nev
