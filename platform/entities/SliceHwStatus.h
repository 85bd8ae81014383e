// The hardware status of basic QoS on one slice, written by the engine: the outcome of each
// programming step by feature, the slice-wide status, and the chip's class budget.
#pragma once

#include <cstdint>

#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/zub/Entity.h"
#include "NevQos/platform/zub/String.h"

namespace Qos {

// The last programming of one feature: the configuration version it belongs to and whether the
// driver took it. Success is written before the driver call, and the driver lowers it.
// clang-format off
#define QOS_HW_PROGRAMMING_VERSION_AND_STATUS_ATTRS( X )                         \
   X( value, Version, version, Zub::Seconds, 0.0 )                               \
   X( value, HwProgrammingStatus, hwProgrammingStatus, Qos::HwProgrammingStatus, \
      Qos::hwProgrammingSucceeded_ )                                             \
   /* Why the driver failed; kept until the next failure of the feature. */      \
   X( value, ErrMessage, errMessage, Zub::String, Zub::String() )
// clang-format on

ZUB_ENTITY( HwProgrammingVersionAndStatus, FeatureName,
            QOS_HW_PROGRAMMING_VERSION_AND_STATUS_ATTRS );

// clang-format off
#define QOS_SLICE_HW_STATUS_ATTRS( X )                                                       \
   /* hwProgrammingVersionAndStatusIs( feature ) creates the record when missing. */         \
   X( child, HwProgrammingVersionAndStatus, hwProgrammingVersionAndStatus, Qos::FeatureName, \
      Qos::HwProgrammingVersionAndStatus )                                                   \
   /* Lowered by any failed step; raised again only by a clear request. */                   \
   X( value, Status, status, Qos::HwProgrammingStatus, Qos::hwProgrammingSucceeded_ )        \
   /* The time of the last clear request served, so that a restart serves none twice. */     \
   X( value, ClearHwStatusErrorTime, clearHwStatusErrorTime, Zub::Seconds, 0.0 )             \
   /* The configuration version that the slice has applied. */                               \
   X( value, ConfigVersionUpdateTime, configVersionUpdateTime, Zub::Seconds, 0.0 )           \
   /* The COS-to-TC profile programmed on each interface, by profile name. */                \
   X( keyed, IntfToCosToTcProfile, intfToCosToTcProfile, Mirel::IntfId, Zub::Name )          \
   /* The most classes one QoS policy map may have, the default class included. */           \
   X( value, MaxClassesPerPolicyMap, maxClassesPerPolicyMap, std::uint32_t, 0u )
// clang-format on

ZUB_ENTITY( SliceHwStatus, Zub::Name, QOS_SLICE_HW_STATUS_ATTRS );

}  // namespace Qos
