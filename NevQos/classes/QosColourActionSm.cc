#include "NevQos/classes/QosColourActionSm.h"

#include "NevQos/classes/QosClassActionSm.h"
#include "NevQos/platform/zub/Assert.h"

namespace Nev {

QosColourActionSm::QosColourActionSm( PolicerColour colour, Qos::ActionType actionType,
                                      QosClassMapKey const& cmapKey, QosAclSm* qosAclSm,
                                      QosPolicyMapSm* pmapSm, QosClassActionBaseSm* classActionSm,
                                      Zub::Ptr< Qos::Action const > const& policyAction )
    : QosActionBaseSm( actionType, cmapKey, qosAclSm, pmapSm, classActionSm, policyAction )
    , colour_( colour ) {
   data()->valIs( policyAction->value() );
}

bool QosColourActionSm::takes() const {
   return colour() != PolicerColour::green || classActionSm()->policyClassAction()->policer();
}

namespace {

// What sets the colours apart in the policer's status entry, and the texts of their checks.
struct Colour {
   void ( Qos::PolicerHwStatus::*statusIs )( Qos::ActionType const&, bool const& );
   void ( Qos::PolicerHwStatus::*statusDel )( Qos::ActionType const& );
   bool ( Qos::PolicerHwStatus::*statusHas )( Qos::ActionType const& ) const;
   char const* dataHasText;
   char const* statusHasText;
   char const* valText;
};

Colour const& colourOf( PolicerColour colour ) {
   static Colour const green{
      &Qos::PolicerHwStatus::greenActionStatusIs,
      &Qos::PolicerHwStatus::greenActionStatusDel,
      &Qos::PolicerHwStatus::greenActionStatusHas,
      "classData()->actionDataHas( actionType() )",
      "policerHwStatus->greenActionStatusHas( actionType() )",
      "classData()->actionData( actionType() )->val() == policyAction()->value()"
   };
   static Colour const yellow{
      &Qos::PolicerHwStatus::yellowActionStatusIs,
      &Qos::PolicerHwStatus::yellowActionStatusDel,
      &Qos::PolicerHwStatus::yellowActionStatusHas,
      "policerData->yellowActionDataHas( actionType() )",
      "policerHwStatus->yellowActionStatusHas( actionType() )",
      "policerData->yellowActionData( actionType() )->val() == policyAction()->value()"
   };
   static Colour const red{
      &Qos::PolicerHwStatus::redActionStatusIs,
      &Qos::PolicerHwStatus::redActionStatusDel,
      &Qos::PolicerHwStatus::redActionStatusHas,
      "policerData->redActionDataHas( actionType() )",
      "policerHwStatus->redActionStatusHas( actionType() )",
      "policerData->redActionData( actionType() )->val() == policyAction()->value()"
   };
   switch( colour ) {
      case PolicerColour::green:
         return green;
      case PolicerColour::yellow:
         return yellow;
      case PolicerColour::red:
         break;
   }
   return red;
}

}  // namespace

void QosColourActionSm::applyTo( QosClassData& classData ) {
   if( !takes() ) return;
   bool const green = colour() == PolicerColour::green;
   if( green ) actionDataIs( classData );
   setCmapHwStatus();
   auto const status = policerHwStatus( classData );
   ZUB_ASSERT_TEXT( status, "policerHwStatus" );
   ( status.ptr()->*colourOf( colour() ).statusIs )( actionType(), true );
   if( !green ) actionDataIs( classData );
}

Zub::Ptr< Qos::PolicerHwStatus > QosColourActionSm::policerHwStatus(
      QosClassData const& classData ) const {
   auto const policerData = classData.policerData();
   ZUB_ASSERT_TEXT( policerData, "policerData" );
   return cmapHwStatus() ? cmapHwStatus()->policerHwStatus( policerData->name() ) : nullptr;
}

Zub::Ptr< QosClassActionData > QosColourActionSm::actionData(
      QosClassData const& classData ) const {
   switch( colour() ) {
      case PolicerColour::green:
         return classData.actionData( actionType() );
      case PolicerColour::yellow:
         return classData.policerData()->yellowActionData( actionType() );
      case PolicerColour::red:
         break;
   }
   return classData.policerData()->redActionData( actionType() );
}

void QosColourActionSm::actionDataIs( QosClassData& classData ) {
   switch( colour() ) {
      case PolicerColour::green:
         classData.actionDataIs( actionType(), data() );
         break;
      case PolicerColour::yellow:
         classData.policerData()->yellowActionDataIs( actionType(), data() );
         break;
      case PolicerColour::red:
         classData.policerData()->redActionDataIs( actionType(), data() );
         break;
   }
}

void QosColourActionSm::actionDataDel( QosClassData& classData ) {
   if( colour() == PolicerColour::green ) {
      classData.actionDataDel( actionType() );
      return;
   }
   auto const policerData = classData.policerData();
   if( !policerData ) return;
   if( colour() == PolicerColour::yellow ) {
      policerData->yellowActionDataDel( actionType() );
   } else {
      policerData->redActionDataDel( actionType() );
   }
}

void QosColourActionSm::actionStatusDel( QosClassData const& classData ) {
   if( !classData.policerData() ) return;
   auto const status = policerHwStatus( classData );
   if( !status ) return;
   ( status.ptr()->*colourOf( colour() ).statusDel )( actionType() );
}

bool QosColourActionSm::actionStatusHas( QosClassData const& classData ) const {
   return ( policerHwStatus( classData ).ptr()->*colourOf( colour() ).statusHas )( actionType() );
}

void QosColourActionSm::removeFrom( QosClassData& classData ) {
   if( !takes() ) return;
   actionDataDel( classData );
   actionStatusDel( classData );
}

void QosColourActionSm::handleVerify( QosClassData const& classData ) {
   Colour const& texts = colourOf( colour() );
   auto const data = actionData( classData );
   ZUB_ASSERT_TEXT( data, texts.dataHasText );
   if( colour() == PolicerColour::green ) {
      // Conforming traffic's value is checked first: it lives in the class's own action data.
      ZUB_ASSERT_TEXT( data->val() == policyAction()->value(), texts.valText );
   }
   ZUB_ASSERT_TEXT( policerHwStatus( classData ), "policerHwStatus" );
   ZUB_ASSERT_TEXT( actionStatusHas( classData ), texts.statusHasText );
   if( colour() != PolicerColour::green ) {
      ZUB_ASSERT_TEXT( data->val() == policyAction()->value(), texts.valText );
   }
}

QosGreenActionSm::QosGreenActionSm( Qos::ActionType actionType, QosClassMapKey const& cmapKey,
                                    QosAclSm* qosAclSm, QosPolicyMapSm* pmapSm,
                                    QosClassActionBaseSm* classActionSm,
                                    Zub::Ptr< Qos::Action const > const& policyAction )
    : QosColourActionSm( PolicerColour::green, actionType, cmapKey, qosAclSm, pmapSm, classActionSm,
                         policyAction ) {}

QosYellowActionSm::QosYellowActionSm( Qos::ActionType actionType, QosClassMapKey const& cmapKey,
                                      QosAclSm* qosAclSm, QosPolicyMapSm* pmapSm,
                                      QosClassActionBaseSm* classActionSm,
                                      Zub::Ptr< Qos::Action const > const& policyAction )
    : QosColourActionSm( PolicerColour::yellow, actionType, cmapKey, qosAclSm, pmapSm,
                         classActionSm, policyAction ) {}

QosRedActionSm::QosRedActionSm( Qos::ActionType actionType, QosClassMapKey const& cmapKey,
                                QosAclSm* qosAclSm, QosPolicyMapSm* pmapSm,
                                QosClassActionBaseSm* classActionSm,
                                Zub::Ptr< Qos::Action const > const& policyAction )
    : QosColourActionSm( PolicerColour::red, actionType, cmapKey, qosAclSm, pmapSm, classActionSm,
                         policyAction ) {}

}  // namespace Nev
