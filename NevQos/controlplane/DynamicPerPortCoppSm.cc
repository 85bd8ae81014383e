#include "NevQos/controlplane/DynamicPerPortCoppSm.h"

#include "NevQos/log/QosLogHandles.h"
#include "NevQos/log/TraceHandles.h"
#include "NevQos/platform/nev/NevCommonSmData.h"
#include "NevQos/platform/zub/Assert.h"
#include "NevQos/platform/zub/Format.h"

namespace Nev {

DynamicPerPortCoppSm::DynamicPerPortCoppSm(
      Zub::Ptr< Kesh::TimerWheel > const& clock,
      Zub::Ptr< KernelCoPPStatus const > const& kernelCoppStatus,
      Zub::Ptr< NevHelper::QosAclHelper > const& qosAclHelper )
    : NevBaseSm( nullptr ), qosAclHelper_( qosAclHelper ) {
   // Reports already standing are caught up by handleInitialized().
   constexpr bool catchUp = false;
   clock_.is( clock, this, catchUp );
   kernelCoppStatus_.is( kernelCoppStatus, this, catchUp );
}

DynamicPerPortCoppSm::~DynamicPerPortCoppSm() = default;

DynamicPerPortCoppSm::PendingHwCoppMetadata DynamicPerPortCoppSm::pendingHwCoppMetadata() const {
   return { pendingHwCopp_.headIndex(), pendingHwCopp_.nextIndex(), dequeued_,
            pendingHwCopp_.size() };
}

void DynamicPerPortCoppSm::handleInitialized() {
   ZUB_TRACE( nevDynamicPerPortCoppTrace, 2, "handleInitialized" );
   if( clock_.reactor() ) clock_.reactor()->timeMinIs( Zub::never );
   initializedIs( true );
   handleKernelCopp();
}

void DynamicPerPortCoppSm::handleKernelCopp() {
   if( !initialized() || !kernelCoppStatus() ) return;
   for( auto it = kernelCoppStatus()->state().iter(); it; ++it )
      handleKernelCopp( it.key() );
}

void DynamicPerPortCoppSm::handleKernelCopp( ModIdPortQueueKey const& key ) {
   if( !initialized() ) return;
   KernelCoppQueueState const state = kernelCoppStatus()->state( key );
   ZUB_TRACE( nevDynamicPerPortCoppTrace, 3, "handleKernelCopp " << key << " state " << state );
   if( state == kernelCoppQueueSaturated ) {
      doSaturatedCopp( key );
   } else if( state == kernelCoppQueueUnsaturated ) {
      doUnsaturatedCopp( key );
   }
}

void DynamicPerPortCoppSm::handleTimeout() {
   if( initialized() ) checkPendingCopp();
}

void DynamicPerPortCoppSm::armTimer() {
   ZUB_ASSERT( initialized() );
   clock_.reactor()->timeMinIs( Zub::System::currentTime() + retryInterval );
}

void DynamicPerPortCoppSm::disarmTimer() {
   ZUB_ASSERT( initialized() );
   clock_.reactor()->timeMinIs( Zub::never );
}

void DynamicPerPortCoppSm::doSaturatedCopp( ModIdPortQueueKey const& key ) {
   if( createSaturatedCopp( key ) ) return;
   // Later failures leave an armed timer where it is.
   if( pendingHwCopp_.empty() ) armTimer();
   pendingHwCopp_.enq( key );
}

bool DynamicPerPortCoppSm::createSaturatedCopp( ModIdPortQueueKey const& key ) {
   if( qosAclHelper()->createCoppPolicerByPortQueue( key ) ) return true;
   Zub::String const className = qosAclHelper()->cpuQIdToClassMapName( key.queue() );
   Zub::String const intfName = qosAclHelper()->portToIntfName( key.modId(), key.port() );
   Zub::String const description = Zub::format( "control plane policer for class %s on %s",
                                                className.charPtr(), intfName.charPtr() );
   Zub::log( QOS_COPP_HW_RESOURCE_FULL, "egress TCAM", description );
   return false;
}

bool DynamicPerPortCoppSm::createPendingCopp( ModIdPortQueueKey const& key ) {
   // A retry that fails again was reported when the key first failed.
   if( !qosAclHelper()->createCoppPolicerByPortQueue( key ) ) return false;
   // Capitalised here, unlike the failure's text: it opens the recovery's message.
   Zub::String const className = qosAclHelper()->cpuQIdToClassMapName( key.queue() );
   Zub::String const intfName = qosAclHelper()->portToIntfName( key.modId(), key.port() );
   Zub::String const description = Zub::format( "Control plane policer for class %s on %s",
                                                className.charPtr(), intfName.charPtr() );
   Zub::log( QOS_COPP_HW_RESOURCE_NORMAL, description, "egress TCAM" );
   return true;
}

void DynamicPerPortCoppSm::dequeueHead() {
   pendingHwCopp_.deq();
   ++dequeued_;
}

void DynamicPerPortCoppSm::checkPendingCopp() {
   ZUB_TRACE( nevDynamicPerPortCoppTrace, 3,
              "checkPendingCopp, " << pendingHwCopp_.size() << " waiting" );
   // In order, and no further than the first failure: later keys do not overtake.
   while( ModIdPortQueueKey const* key = pendingHwCopp_.head() ) {
      if( !createPendingCopp( *key ) ) break;
      dequeueHead();
   }
   // Re-armed even with nothing waiting; an idle firing does nothing.
   armTimer();
}

void DynamicPerPortCoppSm::doUnsaturatedCopp( ModIdPortQueueKey const& key ) {
   ZUB_ASSERT( initialized() );
   // A key that still waits was never created; the chip accepts the call all the same.
   qosAclHelper()->destroyCoppPolicerByPortQueue( key );
   for( auto const& member : pendingHwCopp_ ) {
      if( member.value != key ) continue;
      // Only the first entry of the key leaves.
      pendingHwCopp_.del( member.index );
      ++dequeued_;
      if( pendingHwCopp_.empty() ) disarmTimer();
      return;
   }
}

void DynamicPerPortCoppSm::zubDoZombieReactors( bool zombie ) {
   if( this->zombie() == zombie ) return;
   NevBaseSm::zubDoZombieReactors( zombie );
   clock_.zombieIs( zombie );
   kernelCoppStatus_.zombieIs( zombie );
}

Zub::Ptr< DynamicPerPortCoppSm > dynamicPerPortCoppSmFactory(
      Zub::Ptr< Kesh::TimerWheel > const& clock,
      Zub::Ptr< KernelCoPPStatus const > const& kernelCoppStatus,
      Zub::Ptr< NevHelper::QosAclHelper > const& qosAclHelper ) {
   auto sm = Zub::make< DynamicPerPortCoppSm >( clock, kernelCoppStatus, qosAclHelper );
   sm->hasNotificationActiveIs( true );
   return sm;
}

}  // namespace Nev
