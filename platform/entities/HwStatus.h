// What the chip's QoS hardware can do and how it behaves when nothing is configured, published
// by the chip's driver: capability flags, sizes, limits, and the default of every global map.
#pragma once

#include <cstdint>

#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/zub/Entity.h"

namespace Qos {

// clang-format off
#define QOS_HW_STATUS_ATTRS( X )                                                                 \
   /* The driver has finished its own start-up; until then nothing is mirrored to the kernel. */ \
   X( value, HwInitialized, hwInitialized, bool, false )                                         \
   /* Policy maps of the PDP map type. */                                                        \
   X( value, PdpSupported, pdpSupported, bool, false )                                           \
   /* Multicast traffic has a queue map of its own; else it follows the unicast map. */          \
   X( value, McTxQueueMapSupported, mcTxQueueMapSupported, bool, false )                         \
   /* Sizes: traffic classes, multicast queues and transmit queues per port. */                  \
   X( value, NumTcSupported, numTcSupported, std::uint32_t, 0u )                                 \
   X( value, NumMulticastQueueSupported, numMulticastQueueSupported, std::uint32_t, 0u )         \
   X( value, NumTxQueueSupported, numTxQueueSupported, std::uint32_t, 0u )                       \
   /* Features of basic QoS. */                                                                  \
   X( value, DscpRewriteSupported, dscpRewriteSupported, bool, false )                           \
   X( value, DscpToDpMapSupported, dscpToDpMapSupported, bool, false )                           \
   X( value, DscpRewritePerInterfaceSupported, dscpRewritePerInterfaceSupported, bool, false )   \
   X( value, CosToTcPerInterfaceSupported, cosToTcPerInterfaceSupported, bool, false )           \
   X( value, EcnSupported, ecnSupported, bool, false )                                           \
   X( value, EcnQueueCounterSupported, ecnQueueCounterSupported, bool, false )                   \
   X( value, EcnDelaySupported, ecnDelaySupported, bool, false )                                 \
   X( value, NonEctThdSupported, nonEctThdSupported, bool, false )                               \
   X( value, WredSupported, wredSupported, bool, false )                                         \
   X( value, DropPrecedenceThresholdSupported, dropPrecedenceThresholdSupported, bool, false )   \
   X( value, GuaranteedBwSupported, guaranteedBwSupported, bool, false )                         \
   /* Limits of shape rates (kbps or pps as the unit says) and of guaranteed bandwidth. */       \
   X( value, MinPortShapeRate, minPortShapeRate, std::uint32_t, 0u )                             \
   X( value, MinTxQueueShapeRate, minTxQueueShapeRate, std::uint32_t, 0u )                       \
   X( value, MaxShapeRateKbps, maxShapeRateKbps, std::uint32_t, 0u )                             \
   X( value, MaxShapeRatePps, maxShapeRatePps, std::uint32_t, 0u )                               \
   X( value, MinGuaranteedBwKbps, minGuaranteedBwKbps, std::uint32_t, 0u )                       \
   X( value, MaxGuaranteedBwKbps, maxGuaranteedBwKbps, std::uint32_t, 0u )                       \
   X( value, MinGuaranteedBwPps, minGuaranteedBwPps, std::uint32_t, 0u )                         \
   X( value, MaxGuaranteedBwPps, maxGuaranteedBwPps, std::uint32_t, 0u )                         \
   /* Per-port defaults of a port without configuration. */                                      \
   X( value, DefaultTrustMode, defaultTrustMode, Qos::TrustMode, Qos::trustCos_ )                \
   X( value, DefaultCos, defaultCos, Qos::Cos, Qos::Cos( 0 ) )                                   \
   X( value, DefaultDscp, defaultDscp, Qos::Dscp, Qos::Dscp( 0 ) )                               \
   /* Drop precedence of every DSCP that has none configured. */                                 \
   X( value, DefaultDropPrecedence, defaultDropPrecedence, Qos::DropPrecedence,                  \
      Qos::DropPrecedence( 0 ) )                                                                 \
   /* The chip's default of each global map, used for a slot that isn't configured. */           \
   X( keyed, DefaultCosToTcMap, defaultCosToTcMap, Qos::Cos, Qos::TrafficClass )                 \
   X( keyed, DefaultDscpToTcMap, defaultDscpToTcMap, Qos::Dscp, Qos::TrafficClass )              \
   X( keyed, DefaultExpToTcMap, defaultExpToTcMap, Qos::Exp, Qos::TrafficClass )                 \
   X( keyed, DefaultTcToCosMap, defaultTcToCosMap, Qos::TrafficClass, Qos::Cos )                 \
   X( keyed, DefaultTcToDscpMap, defaultTcToDscpMap, Qos::TrafficClass, Qos::Dscp )              \
   X( keyed, DefaultTcToExpMap, defaultTcToExpMap, Qos::TrafficClass, Qos::Exp )                 \
   X( keyed, DefaultTcToTxQueueMap, defaultTcToTxQueueMap, Qos::TrafficClass, Qos::TxQueueId )   \
   X( keyed, DefaultTcToMcTxQueueMap, defaultTcToMcTxQueueMap, Qos::TrafficClass, Qos::TxQueueId )
// clang-format on

ZUB_ENTITY( HwStatus, Zub::Name, QOS_HW_STATUS_ATTRS );

}  // namespace Qos
