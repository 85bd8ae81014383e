// The kernel's control-plane policing configuration. The engine only asks whether it exists:
// with it, the chip's default CPU-queue rates are set up at start-up.
#pragma once

#include "NevQos/platform/zub/Entity.h"

namespace Nev {

#define NEV_KERNEL_COPP_CONFIG_ATTRS( X )

ZUB_ENTITY( KernelCoPPConfig, Zub::Name, NEV_KERNEL_COPP_CONFIG_ATTRS );

}  // namespace Nev
