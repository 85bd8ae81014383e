#include "NevQos/classes/QosActionSm.h"

#include "NevQos/platform/zub/Assert.h"
#include "NevQos/policy/QosAclSm.h"
#include "NevQos/policy/QosPolicyMapSm.h"

namespace Nev {

QosActionBaseSm::QosActionBaseSm( Qos::ActionType actionType, QosClassMapKey const& cmapKey,
                                  QosAclSm* qosAclSm, QosPolicyMapSm* pmapSm,
                                  QosClassActionBaseSm* classActionSm,
                                  Zub::Ptr< Qos::Action const > const& policyAction )
    : actionType_( actionType )
    , cmapKey_( cmapKey )
    , qosAclSm_( qosAclSm )
    , pmapSm_( pmapSm )
    , classActionSm_( classActionSm )
    , policyAction_( policyAction )
    , data_( Zub::make< QosClassActionData >( actionType ) ) {}

QosActionBaseSm::~QosActionBaseSm() = default;

void QosActionBaseSm::setCmapHwStatus() {
   auto const typeStatus = qosAclSm()->qosAclSliceHwStatus()->pmapType( pmapSm()->pmapType() );
   auto const pmapSliceHwStatus = typeStatus ? typeStatus->pmap( pmapSm()->hwKey() ) : nullptr;
   ZUB_ASSERT_TEXT( pmapSliceHwStatus, "pmapSliceHwStatus" );
   cmapHwStatus_ = pmapSliceHwStatus->cmap( cmapName() );
   ZUB_ASSERT_TEXT( cmapHwStatus_, "cmapHwStatus_" );
}

QosActionSm::QosActionSm( Qos::ActionType actionType, QosClassMapKey const& cmapKey,
                          QosAclSm* qosAclSm, QosPolicyMapSm* pmapSm,
                          QosClassActionBaseSm* classActionSm,
                          Zub::Ptr< Qos::Action const > const& policyAction )
    : QosActionBaseSm( actionType, cmapKey, qosAclSm, pmapSm, classActionSm, policyAction ) {
   data()->valIs( valueOf( *policyAction ) );
}

unsigned int QosActionSm::valueOf( Qos::Action const& action ) {
   switch( action.actionType() ) {
      case Qos::actionSetCos_:
      case Qos::actionSetDscp_:
      case Qos::actionSetTc_:
      case Qos::actionSetDropPrecedence_:
         return action.value();
      default:
         return 0u;
   }
}

void QosActionSm::applyTo( QosClassData& classData ) {
   classData.actionDataIs( actionType(), data() );
   setCmapHwStatus();
   ZUB_ASSERT_TEXT( cmapHwStatus(), "cmapHwStatus()" );
   recordAction();
}

void QosActionSm::recordAction() {
   Qos::ClassMapHwStatus& status = *cmapHwStatus();
   bool const input = pmapSm()->direction() == Qos::directionInput_;
   switch( actionType() ) {
      case Qos::actionSetCos_:
         status.cosPrgmdIs( true );
         break;
      case Qos::actionSetDscp_:
         status.dscpPrgmdIs( true );
         break;
      case Qos::actionSetTc_:
         if( input ) status.tcPrgmdIs( true );
         break;
      case Qos::actionDrop_:
         if( input ) status.dropPrgmdIs( true );
         break;
      case Qos::actionSetDropPrecedence_:
         if( input ) status.dropPrecedencePrgmdIs( true );
         break;
      default:
         break;
   }
}

void QosActionSm::removeFrom( QosClassData& classData ) {
   classData.actionDataDel( actionType() );
}

void QosActionSm::handleVerify( QosClassData const& classData ) {
   ZUB_ASSERT_TEXT( classData.actionDataHas( actionType() ),
                    "classData()->actionDataHas( actionType() )" );
   auto const data = classData.actionData( actionType() );
   ZUB_ASSERT_TEXT( data->val() == policyAction()->value(),
                    "classData()->actionData( actionType() )->val() == policyAction()->value()" );
   bool const input = pmapSm()->direction() == Qos::directionInput_;
   switch( actionType() ) {
      case Qos::actionSetDscp_:
         ZUB_ASSERT_TEXT( cmapHwStatus()->dscpPrgmd() == true,
                          "cmapHwStatus()->dscpPrgmd() == true" );
         break;
      case Qos::actionSetCos_:
         ZUB_ASSERT_TEXT( cmapHwStatus()->cosPrgmd() == true,
                          "cmapHwStatus()->cosPrgmd() == true" );
         break;
      case Qos::actionSetTc_:
         if( input ) {
            ZUB_ASSERT_TEXT( cmapHwStatus()->tcPrgmd() == true,
                             "cmapHwStatus()->tcPrgmd() == true" );
         }
         break;
      case Qos::actionDrop_:
         if( input ) {
            ZUB_ASSERT_TEXT( cmapHwStatus()->dropPrgmd() == true,
                             "cmapHwStatus()->dropPrgmd() == true" );
         }
         break;
      default:
         // Drop precedence is written at creation and not checked.
         break;
   }
}

}  // namespace Nev
