// What the kernel reports of the CPU-bound queues of each port: whether a queue is saturated,
// so that a control-plane policer is put on it, or no longer, so that it goes again.
#pragma once

#include <cstdint>

#include "NevQos/platform/nev/ModIdPortQueueKey.h"
#include "NevQos/platform/zub/Entity.h"

namespace Nev {

// Any other value is no report, and is not acted on.
enum KernelCoppQueueState : std::uint32_t {
   kernelCoppQueueNoReport = 0,
   kernelCoppQueueUnsaturated = 1,
   kernelCoppQueueSaturated = 2,
};

#define NEV_KERNEL_COPP_STATUS_ATTRS( X ) \
   X( keyed, State, state, Nev::ModIdPortQueueKey, Nev::KernelCoppQueueState )

ZUB_ENTITY( KernelCoPPStatus, Zub::Name, NEV_KERNEL_COPP_STATUS_ATTRS );

}  // namespace Nev
