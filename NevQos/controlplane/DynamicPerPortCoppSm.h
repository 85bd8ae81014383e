// Control-plane policers put on a port's CPU-bound queue while the kernel reports that queue
// saturated, and taken off when it reports it no longer is. A policer the chip has no room for
// is not forgotten: its key waits in a queue, tried again in order every minute, and the
// operator hears once of each failure and once of each recovery.
#pragma once

#include <cstdint>

#include "NevQos/helpers/QosAclHelper.h"
#include "NevQos/platform/kesh/TimerWheel.h"
#include "NevQos/platform/nev/KernelCoPPStatus.h"
#include "NevQos/platform/nev/ModIdPortQueueKey.h"
#include "NevQos/platform/nev/NevBaseSm.h"
#include "NevQos/platform/zub/Attribute.h"
#include "NevQos/platform/zub/LinkQueue.h"

namespace Nev {

class DynamicPerPortCoppSm : public NevBaseSm {
 public:
   static constexpr Zub::Seconds retryInterval = 60.0;
   using PendingHwCopp = Zub::LinkQueue< ModIdPortQueueKey, std::uint32_t >;
   // Where the waiting queue stands: its head and next index, and how many keys have left it
   // and how many wait.
   struct PendingHwCoppMetadata {
      std::uint32_t headIndex = 0;
      std::uint32_t nextIndex = 0;
      std::uint64_t dequeued = 0;
      std::uint64_t waiting = 0;
   };

   // ---- reactors ----
   class ZubClock : public Kesh::TimerWheel::NotifieeConst {
    public:
      explicit ZubClock( DynamicPerPortCoppSm* sm ) : sm_( sm ) {}
      void onTime() override {
         if( !zombie() ) sm_->handleTimeout();
      }

    private:
      DynamicPerPortCoppSm* sm_;
   };
   class ZubKernelCoppStatus : public KernelCoPPStatus::Notifiee {
    public:
      explicit ZubKernelCoppStatus( DynamicPerPortCoppSm* sm ) : sm_( sm ) {}
      void onState( ModIdPortQueueKey const& key ) override {
         if( !zombie() ) sm_->handleKernelCopp( key );
      }
      void onStatezubImmediate() override {
         if( !zombie() ) sm_->handleKernelCopp();
      }

    private:
      DynamicPerPortCoppSm* sm_;
   };

   DynamicPerPortCoppSm( Zub::Ptr< Kesh::TimerWheel > const& clock,
                         Zub::Ptr< KernelCoPPStatus const > const& kernelCoppStatus,
                         Zub::Ptr< NevHelper::QosAclHelper > const& qosAclHelper );
   ~DynamicPerPortCoppSm() override;

   Zub::Ptr< Kesh::TimerWheel > const& clock() const { return clock_.get(); }
   Zub::Ptr< KernelCoPPStatus const > const& kernelCoppStatus() const {
      return kernelCoppStatus_.get();
   }
   Zub::Ptr< NevHelper::QosAclHelper > const& qosAclHelper() const { return qosAclHelper_; }
   PendingHwCopp const& pendingHwCopp() const { return pendingHwCopp_; }
   PendingHwCoppMetadata pendingHwCoppMetadata() const;
   // When the retry timer fires next; Zub::never while disarmed.
   Zub::Seconds retryTime() const { return clock_.reactor()->timeMin(); }

   void handleInitialized() override;
   void handleTimeout();
   void handleKernelCopp( ModIdPortQueueKey const& key );
   void handleKernelCopp();
   void zubDoZombieReactors( bool zombie ) override;

 private:
   void armTimer();
   void disarmTimer();
   void doSaturatedCopp( ModIdPortQueueKey const& key );
   void doUnsaturatedCopp( ModIdPortQueueKey const& key );
   bool createSaturatedCopp( ModIdPortQueueKey const& key );
   bool createPendingCopp( ModIdPortQueueKey const& key );
   void checkPendingCopp();
   void dequeueHead();

   Zub::Input< Kesh::TimerWheel, ZubClock > clock_;
   Zub::Input< KernelCoPPStatus const, ZubKernelCoppStatus > kernelCoppStatus_;
   Zub::Ptr< NevHelper::QosAclHelper > qosAclHelper_;
   PendingHwCopp pendingHwCopp_;
   std::uint64_t dequeued_ = 0;
};

// The agent's entry point: builds the machine with notification on. It starts on the next turn
// of the event loop.
Zub::Ptr< DynamicPerPortCoppSm > dynamicPerPortCoppSmFactory(
      Zub::Ptr< Kesh::TimerWheel > const& clock,
      Zub::Ptr< KernelCoPPStatus const > const& kernelCoppStatus,
      Zub::Ptr< NevHelper::QosAclHelper > const& qosAclHelper );

}  // namespace Nev
