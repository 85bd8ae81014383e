#include "NevQos/policy/QosCounterUpdateSm.h"

#include "NevQos/log/TraceHandles.h"
#include "NevQos/platform/zub/Assert.h"
#include "NevQos/policy/QosAclSm.h"

namespace Nev {

QosCounterUpdateSm::QosCounterUpdateSm(
      Zub::Name const& name, QosAclSm* qosAclSm,
      Zub::Ptr< Qos::AclSliceHwStatus > const& qosAclSliceHwStatus,
      Zub::Ptr< Qos::CounterConfig const > const& counterConfig )
    : qosAclSm_( qosAclSm ), qosAclSliceHwStatus_( qosAclSliceHwStatus ), name_( name ) {
   counterConfig_.is( counterConfig, this, false );
   handleInitialized();
}

QosCounterUpdateSm::~QosCounterUpdateSm() = default;

void QosCounterUpdateSm::handleInitialized() {
   ZUB_ASSERT_TEXT( !initialized(), "!initialized()" );
   initialized_ = true;
   // A request that stands already (one made while the agent was down) is served now; one
   // served before has its time stamped, and is not served again.
   handlePMapCounterUpdateRequest();
}

void QosCounterUpdateSm::handlePMapCounterUpdateRequest() {
   if( !initialized() ) return;
   Zub::Seconds const requestTime = counterConfig()->pmapCounterUpdateRequestTime();
   // One request time is honoured once.
   if( !( requestTime > qosAclSliceHwStatus()->pmapCounterUpdateTime() ) ) return;
   ZUB_TRACE( nevQosTrace, 5, "handlePMapCounterUpdateRequest " << name() << " " << requestTime );
   for( auto it = qosAclSm()->servicePolicySm().iter(); it; ++it )
      it.value()->counterUpdateRequest();
   qosAclSliceHwStatus()->pmapCounterUpdateTimeIs( requestTime );
}

void QosCounterUpdateSm::zubDoZombieReactors( bool zombie ) {
   counterConfig_.zombieIs( zombie );
}

}  // namespace Nev
