#include "NevQos/policy/QosPolicyMapTypeSm.h"

#include "NevQos/log/TraceHandles.h"
#include "NevQos/policy/QosAclSm.h"

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

}  // namespace Nev
