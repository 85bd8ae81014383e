#include "NevQos/actions/QosColourActionSm.h"

#include "NevQos/actions/QosClassActionSm.h"
#include "zub/Assert.h"

namespace Nev {

QosColourActionSm::QosColourActionSm( PolicerColour colour, Qos::ActionType actionType,
                                      QosClassMapKey const& cmapKey, QosAclSm* qosAclSm,
                                      QosPolicyMapSm* pmapSm,
                                      Zub::Ptr< QosClassData > const& classData,
                                      QosClassActionBaseSm* classActionSm,
                                      Zub::Ptr< Qos::Action const > const& policyAction )
    : QosActionBaseSm( actionType, cmapKey, qosAclSm, pmapSm, classData, classActionSm,
                       policyAction )
    , colour_( colour ) {}

void QosColourActionSm::handleInitialized() {
   if( colour() == PolicerColour::green ) {
      // Conforming traffic has an action of its own only under a policer.
      if( !classActionSm()->policyClassAction()->policer() ) return;
      actionDataIs();
      setCmapHwStatus();
      findPolicerHwStatus();
      actionStatusIs();
   } else {
      setCmapHwStatus();
      findPolicerHwStatus();
      actionStatusIs();
      actionDataIs();
   }
   initializedIs();
}

void QosColourActionSm::findPolicerHwStatus() {
   auto const policerData = classData()->policerData();
   ZUB_ASSERT_TEXT( policerData, "policerData" );
   policerHwStatus_ = cmapHwStatus()->policerHwStatus( policerData->name() );
   ZUB_ASSERT_TEXT( policerHwStatus_, "policerHwStatus" );
}

Zub::Ptr< QosClassActionData > QosColourActionSm::actionData() const {
   switch( colour() ) {
      case PolicerColour::green:
         return classData()->actionData( actionType() );
      case PolicerColour::yellow:
         return classData()->policerData()->yellowActionData( actionType() );
      case PolicerColour::red:
         return classData()->policerData()->redActionData( actionType() );
   }
   return nullptr;
}

void QosColourActionSm::actionDataIs() {
   Zub::Ptr< QosClassActionData > data;
   switch( colour() ) {
      case PolicerColour::green:
         data = classData()->actionDataIs( actionType() );
         break;
      case PolicerColour::yellow:
         data = classData()->policerData()->yellowActionDataIs( actionType() );
         break;
      case PolicerColour::red:
         data = classData()->policerData()->redActionDataIs( actionType() );
         break;
   }
   ZUB_ASSERT( data );
   data->valIs( policyAction()->value() );
}

void QosColourActionSm::actionDataDel() {
   switch( colour() ) {
      case PolicerColour::green:
         classData()->actionDataDel( actionType() );
         break;
      case PolicerColour::yellow:
         if( auto const policerData = classData()->policerData() ) {
            policerData->yellowActionDataDel( actionType() );
         }
         break;
      case PolicerColour::red:
         if( auto const policerData = classData()->policerData() ) {
            policerData->redActionDataDel( actionType() );
         }
         break;
   }
}

void QosColourActionSm::actionStatusIs() {
   switch( colour() ) {
      case PolicerColour::green:
         policerHwStatus()->greenActionStatusIs( actionType(), true );
         break;
      case PolicerColour::yellow:
         policerHwStatus()->yellowActionStatusIs( actionType(), true );
         break;
      case PolicerColour::red:
         policerHwStatus()->redActionStatusIs( actionType(), true );
         break;
   }
}

void QosColourActionSm::actionStatusDel() {
   if( !policerHwStatus() ) return;
   switch( colour() ) {
      case PolicerColour::green:
         policerHwStatus()->greenActionStatusDel( actionType() );
         break;
      case PolicerColour::yellow:
         policerHwStatus()->yellowActionStatusDel( actionType() );
         break;
      case PolicerColour::red:
         policerHwStatus()->redActionStatusDel( actionType() );
         break;
   }
}

bool QosColourActionSm::actionStatusHas() const {
   switch( colour() ) {
      case PolicerColour::green:
         return policerHwStatus()->greenActionStatusHas( actionType() );
      case PolicerColour::yellow:
         return policerHwStatus()->yellowActionStatusHas( actionType() );
      case PolicerColour::red:
         return policerHwStatus()->redActionStatusHas( actionType() );
   }
   return false;
}

void QosColourActionSm::doPrepareToDie() {
   if( !initialized() ) return;
   actionDataDel();
   actionStatusDel();
}

void QosColourActionSm::handleVerify() {
   auto const data = actionData();
   switch( colour() ) {
      case PolicerColour::green:
         ZUB_ASSERT_TEXT( data, "classData()->actionDataHas( actionType() )" );
         ZUB_ASSERT_TEXT(
               data->val() == policyAction()->value(),
               "classData()->actionData( actionType() )->val() == policyAction()->value()" );
         ZUB_ASSERT_TEXT( policerHwStatus(), "policerHwStatus" );
         ZUB_ASSERT_TEXT( actionStatusHas(),
                          "policerHwStatus->greenActionStatusHas( actionType() )" );
         break;
      case PolicerColour::yellow:
         ZUB_ASSERT_TEXT( data, "policerData->yellowActionDataHas( actionType() )" );
         ZUB_ASSERT_TEXT( policerHwStatus(), "policerHwStatus" );
         ZUB_ASSERT_TEXT( actionStatusHas(),
                          "policerHwStatus->yellowActionStatusHas( actionType() )" );
         ZUB_ASSERT_TEXT(
               data->val() == policyAction()->value(),
               "policerData->yellowActionData( actionType() )->val() == policyAction()->value()" );
         break;
      case PolicerColour::red:
         ZUB_ASSERT_TEXT( data, "policerData->redActionDataHas( actionType() )" );
         ZUB_ASSERT_TEXT( policerHwStatus(), "policerHwStatus" );
         ZUB_ASSERT_TEXT( actionStatusHas(),
                          "policerHwStatus->redActionStatusHas( actionType() )" );
         ZUB_ASSERT_TEXT(
               data->val() == policyAction()->value(),
               "policerData->redActionData( actionType() )->val() == policyAction()->value()" );
         break;
   }
}

QosGreenActionSm::QosGreenActionSm( Qos::ActionType actionType, QosClassMapKey const& cmapKey,
                                    QosAclSm* qosAclSm, QosPolicyMapSm* pmapSm,
                                    Zub::Ptr< QosClassData > const& classData,
                                    QosClassActionBaseSm* classActionSm,
                                    Zub::Ptr< Qos::Action const > const& policyAction )
    : QosColourActionSm( PolicerColour::green, actionType, cmapKey, qosAclSm, pmapSm, classData,
                         classActionSm, policyAction ) {
   handleInitialized();
}

QosYellowActionSm::QosYellowActionSm( Qos::ActionType actionType, QosClassMapKey const& cmapKey,
                                      QosAclSm* qosAclSm, QosPolicyMapSm* pmapSm,
                                      Zub::Ptr< QosClassData > const& classData,
                                      QosClassActionBaseSm* classActionSm,
                                      Zub::Ptr< Qos::Action const > const& policyAction )
    : QosColourActionSm( PolicerColour::yellow, actionType, cmapKey, qosAclSm, pmapSm, classData,
                         classActionSm, policyAction ) {
   handleInitialized();
}

QosRedActionSm::QosRedActionSm( Qos::ActionType actionType, QosClassMapKey const& cmapKey,
                                QosAclSm* qosAclSm, QosPolicyMapSm* pmapSm,
                                Zub::Ptr< QosClassData > const& classData,
                                QosClassActionBaseSm* classActionSm,
                                Zub::Ptr< Qos::Action const > const& policyAction )
    : QosColourActionSm( PolicerColour::red, actionType, cmapKey, qosAclSm, pmapSm, classData,
                         classActionSm, policyAction ) {
   handleInitialized();
}

}  // namespace Nev
