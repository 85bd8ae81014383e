#include "NevQos/policy/QosPolicyMapTypeSm.h"

#include "NevQos/log/TraceHandles.h"
#include "NevQos/platform/zub/Assert.h"
#include "NevQos/policy/QosAclSm.h"
#include "NevQos/policy/QosPolicyMapSm.h"
#include "NevQos/policy/QosServicePolicySm.h"

namespace Nev {

QosPolicyMapTypeSm::QosPolicyMapTypeSm(
      Qos::MapType type, QosAclSm* qosAclSm,
      Zub::Ptr< Qos::PolicyMapTypeStatus const > const& pmapTypeStatus )
    : type_( type ), qosAclSm_( qosAclSm ), pmapTypeStatus_( pmapTypeStatus ) {
   handleInitialized();
}

QosPolicyMapTypeSm::~QosPolicyMapTypeSm() = default;

void QosPolicyMapTypeSm::handleInitialized() {
   qosAclSm()->qosAclSliceHwStatus()->pmapTypeIs( pmapType() );
   initialized_ = true;
}

void QosPolicyMapTypeSm::doPrepareToDie() {
   ZUB_TRACE( nevQosTrace, 3, "QosPolicyMapTypeSm::doPrepareToDie " << pmapType() );
}

void QosPolicyMapTypeSm::handleVerify() {
   ZUB_TRACE( nevQosTrace, 5, "QosPolicyMapTypeSm::handleVerify " << pmapType() );
   ZUB_ASSERT_TEXT( qosAclSm()->qosAclSliceHwStatus()->pmapType( pmapType() ),
                    "pmapSliceHwStatusType" );
}

void QosPolicyMapTypeSm::showAcls( std::uint32_t socket, std::uint32_t unit, bool detail ) {
   for( auto sp = qosAclSm()->servicePolicySm().iter(); sp; ++sp ) {
      if( sp.key().type() != pmapType() ) continue;
      for( auto pmap = sp.value()->pmapSm().iter(); pmap; ++pmap )
         pmap.value()->showAcls( socket, unit, detail );
   }
}

}  // namespace Nev
