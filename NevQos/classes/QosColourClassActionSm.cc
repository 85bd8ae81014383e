#include "NevQos/classes/QosColourClassActionSm.h"

#include "NevQos/policy/QosAclSm.h"
#include "zub/Assert.h"

namespace Nev {

QosColourClassActionSm::QosColourClassActionSm(
      PolicerColour colour, QosClassMapKey const& key, QosAclSm* qosAclSm, QosPolicyMapSm* pmapSm,
      Zub::Ptr< QosClassData > const& classData,
      Zub::Ptr< Qos::ClassAction const > const& policyClassAction )
    : QosClassActionBaseSm( key, qosAclSm, pmapSm, classData, policyClassAction )
    , colour_( colour ) {}

void QosColourClassActionSm::handleInitialized() {
   createSm();
   initializedIs();
}

void QosColourClassActionSm::createSm() {
   if( colour() != PolicerColour::green ) {
      createYellowOrRed();
      return;
   }
   for( auto it = policyClassAction()->action().iter(); it; ++it ) {
      actionSmIsOf< QosGreenActionSm >( it.key(), key(), qosAclSm(), pmapSm(), classData(), this,
                                        Zub::Ptr< Qos::Action const >( it.value() ) );
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

void QosColourClassActionSm::createYellowOrRed() {
   auto const policerCfg = policyClassAction()->policer();
   if( !policerCfg ) return;
   assertPolicerMapType();
   if( colour() == PolicerColour::yellow ) {
      for( auto it = policerCfg->yellowAction().iter(); it; ++it ) {
         actionSmIsOf< QosYellowActionSm >( it.key(), key(), qosAclSm(), pmapSm(), classData(),
                                            this, Zub::Ptr< Qos::Action const >( it.value() ) );
      }
      return;
   }
   // An unnamed policer comes with exactly one violate action.
   ZUB_ASSERT_TEXT( policerCfg->named() || policerCfg->redActionSize() == 1,
                    "policerCfg->named() || policerCfg->redActionss() == 1" );
   for( auto it = policerCfg->redAction().iter(); it; ++it ) {
      actionSmIsOf< QosRedActionSm >( it.key(), key(), qosAclSm(), pmapSm(), classData(), this,
                                      Zub::Ptr< Qos::Action const >( it.value() ) );
   }
}

void QosColourClassActionSm::handleVerify() {
   switch( colour() ) {
      case PolicerColour::green:
         verifyActions( policyClassAction()->action() );
         break;
      case PolicerColour::yellow:
         if( auto const policerCfg = policyClassAction()->policer() ) {
            verifyActions( policerCfg->yellowAction() );
         }
         break;
      case PolicerColour::red:
         if( auto const policerCfg = policyClassAction()->policer() ) {
            verifyActions( policerCfg->redAction() );
         }
         break;
   }
}

QosGreenClassActionSm::QosGreenClassActionSm(
      QosClassMapKey const& key, QosAclSm* qosAclSm, QosPolicyMapSm* pmapSm,
      Zub::Ptr< QosClassData > const& classData,
      Zub::Ptr< Qos::ClassAction const > const& policyClassAction )
    : QosColourClassActionSm( PolicerColour::green, key, qosAclSm, pmapSm, classData,
                              policyClassAction ) {
   handleInitialized();
}

QosYellowClassActionSm::QosYellowClassActionSm(
      QosClassMapKey const& key, QosAclSm* qosAclSm, QosPolicyMapSm* pmapSm,
      Zub::Ptr< QosClassData > const& classData,
      Zub::Ptr< Qos::ClassAction const > const& policyClassAction )
    : QosColourClassActionSm( PolicerColour::yellow, key, qosAclSm, pmapSm, classData,
                              policyClassAction ) {
   handleInitialized();
}

QosRedClassActionSm::QosRedClassActionSm(
      QosClassMapKey const& key, QosAclSm* qosAclSm, QosPolicyMapSm* pmapSm,
      Zub::Ptr< QosClassData > const& classData,
      Zub::Ptr< Qos::ClassAction const > const& policyClassAction )
    : QosColourClassActionSm( PolicerColour::red, key, qosAclSm, pmapSm, classData,
                              policyClassAction ) {
   handleInitialized();
}

}  // namespace Nev
