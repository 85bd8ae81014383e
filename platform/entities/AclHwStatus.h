// What the chip's ACL hardware can do, published by the chip's driver and read by the policy
// engine: feature capabilities and the limits that policer parameters are clamped to.
#pragma once

#include <cstdint>

#include "NevQos/platform/entities/NamedPolicerStatus.h"
#include "NevQos/platform/zub/Entity.h"
#include "NevQos/platform/zub/String.h"

namespace Qos {

// clang-format off
#define QOS_ACL_HW_STATUS_ATTRS( X )                                                             \
   /* Policer limits in byte mode (rates in kbps, bursts in bytes) and packet mode. */          \
   X( value, PoliceByteModeMinRateKbps, policeByteModeMinRateKbps, std::uint32_t, 0 )           \
   X( value, PoliceByteModeMaxRateKbps, policeByteModeMaxRateKbps, std::uint32_t, 0 )           \
   X( value, PoliceByteModeMinBurstBytes, policeByteModeMinBurstBytes, std::uint32_t, 0 )       \
   X( value, PoliceByteModeMaxBurstBytes, policeByteModeMaxBurstBytes, std::uint32_t, 0 )       \
   X( value, PolicePacketModeMinRatePps, policePacketModeMinRatePps, std::uint32_t, 0 )         \
   X( value, PolicePacketModeMaxRatePps, policePacketModeMaxRatePps, std::uint32_t, 0 )         \
   X( value, PolicePacketModeMinBurstPackets, policePacketModeMinBurstPackets, std::uint32_t, 0 ) \
   X( value, PolicePacketModeMaxBurstPackets, policePacketModeMaxBurstPackets, std::uint32_t, 0 ) \
   /* Control-plane policing: system-wide, with dynamic classes, or per interface. */           \
   X( value, CoppSupported, coppSupported, bool, false )                                        \
   X( value, CoppDynamicClassSupported, coppDynamicClassSupported, bool, false )                \
   X( value, IntfCoppSupported, intfCoppSupported, bool, false )                                \
   /* QoS policy maps on data-plane interfaces. */                                              \
   X( value, PolicyQosSupported, policyQosSupported, bool, false )                              \
   /* The driver moves the policy-map programming status itself. */                             \
   X( value, SelfReportedPrgmStatus, selfReportedPrgmStatus, bool, false )                      \
   /* Hardware priority of the first class of a policy map; later classes count down. */       \
   X( value, PolicyClassMaxPrio, policyClassMaxPrio, std::uint16_t, 0 )                         \
   /* An IPv4 and an IPv6 ACL of one class match share one counter. */                          \
   X( value, SharedQosAclTypesCounterSupported, sharedQosAclTypesCounterSupported, bool, false ) \
   /* Class-map match options the hardware can classify on. */                                  \
   X( value, VlanClassMatchSupported, vlanClassMatchSupported, bool, false )                    \
   X( value, CosClassMatchSupported, cosClassMatchSupported, bool, false )                      \
   X( value, DscpEcnClassMatchSupported, dscpEcnClassMatchSupported, bool, false )              \
   /* Policer and counter live with the class, not with a copy per interface. */                \
   X( value, PerClassPolicerSupported, perClassPolicerSupported, bool, false )                  \
   /* The named policers the chip defines for the default PDP policy, by name. */               \
   X( child, NamedPolicerStatus, namedPolicerStatus, Zub::Name, Qos::NamedPolicerStatus )
// clang-format on

ZUB_ENTITY( AclHwStatus, Zub::Name, QOS_ACL_HW_STATUS_ATTRS );

}  // namespace Qos
