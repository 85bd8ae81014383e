#include "NevQos/classes/QosColourClassActionSm.h"

#include "NevQos/platform/zub/Assert.h"
#include "NevQos/policy/QosAclSm.h"

namespace Nev {

QosColourClassActionSm::QosColourClassActionSm(
      PolicerColour colour, QosClassMapKey const& key, QosAclSm* qosAclSm, QosPolicyMapSm* pmapSm,
      Zub::Ptr< Qos::ClassAction const > const& policyClassAction )
    : QosClassActionBaseSm( key, qosAclSm, pmapSm, policyClassAction ), colour_( colour ) {}

void QosColourClassActionSm::applyTo( QosClassData& classData ) {
   if( colour() != PolicerColour::green ) {
      applyYellowOrRed( classData );
      return;
   }
   for( auto it = policyClassAction()->action().iter(); it; ++it ) {
      actionApplyTo< QosGreenActionSm >( Zub::Ptr< Qos::Action const >( it.value() ), classData );
   }
}

void QosColourClassActionSm::assertPolicerMapType() const {
   ZUB_ASSERT_TEXT(
         cmapType() == Qos::mapQos_ || cmapType() == Qos::mapPdp_ ||
               ( cmapType() == Qos::mapControlPlane_ &&
                 qosAclSm()->qosAclHwStatus()->intfCoppSupported() ),
         "cmapType() == Qos::mapQos_ || cmapType() == Qos::mapPdp_ || ( cmapType() == "
         "Qos::mapControlPlane_ && qosAclSm()->qosAclHwStatus()->intfCoppSupported() )" );
}

void QosColourClassActionSm::applyYellowOrRed( QosClassData& classData ) {
   auto const policerCfg = policyClassAction()->policer();
   if( !policerCfg ) return;
   assertPolicerMapType();
   if( colour() == PolicerColour::yellow ) {
      for( auto it = policerCfg->yellowAction().iter(); it; ++it ) {
         actionApplyTo< QosYellowActionSm >( Zub::Ptr< Qos::Action const >( it.value() ),
                                             classData );
      }
      return;
   }
   // An unnamed policer comes with exactly one violate action.
   ZUB_ASSERT_TEXT( policerCfg->named() || policerCfg->redActionSize() == 1,
                    "policerCfg->named() || policerCfg->redActionss() == 1" );
   for( auto it = policerCfg->redAction().iter(); it; ++it ) {
      actionApplyTo< QosRedActionSm >( Zub::Ptr< Qos::Action const >( it.value() ), classData );
   }
}

void QosColourClassActionSm::handleVerify( QosClassData const& classData ) {
   switch( colour() ) {
      case PolicerColour::green:
         verifyActions( policyClassAction()->action(), classData );
         break;
      case PolicerColour::yellow:
         if( auto const policerCfg = policyClassAction()->policer() ) {
            verifyActions( policerCfg->yellowAction(), classData );
         }
         break;
      case PolicerColour::red:
         if( auto const policerCfg = policyClassAction()->policer() ) {
            verifyActions( policerCfg->redAction(), classData );
         }
         break;
   }
}

QosGreenClassActionSm::QosGreenClassActionSm(
      QosClassMapKey const& key, QosAclSm* qosAclSm, QosPolicyMapSm* pmapSm,
      Zub::Ptr< Qos::ClassAction const > const& policyClassAction )
    : QosColourClassActionSm( PolicerColour::green, key, qosAclSm, pmapSm, policyClassAction ) {}

QosYellowClassActionSm::QosYellowClassActionSm(
      QosClassMapKey const& key, QosAclSm* qosAclSm, QosPolicyMapSm* pmapSm,
      Zub::Ptr< Qos::ClassAction const > const& policyClassAction )
    : QosColourClassActionSm( PolicerColour::yellow, key, qosAclSm, pmapSm, policyClassAction ) {}

QosRedClassActionSm::QosRedClassActionSm(
      QosClassMapKey const& key, QosAclSm* qosAclSm, QosPolicyMapSm* pmapSm,
      Zub::Ptr< Qos::ClassAction const > const& policyClassAction )
    : QosColourClassActionSm( PolicerColour::red, key, qosAclSm, pmapSm, policyClassAction ) {}

}  // namespace Nev
