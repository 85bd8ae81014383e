// The merged QoS status of the system, as the configuration agents publish it.
#pragma once

#include "NevQos/platform/entities/ClassMapStatus.h"
#include "NevQos/platform/entities/IntfStatus.h"
#include "NevQos/platform/entities/NamedPolicerStatus.h"
#include "NevQos/platform/entities/PolicyMapStatus.h"
#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/entities/ServicePolicyStatus.h"
#include "NevQos/platform/zub/Entity.h"

namespace Qos {

// The global maps are keyed by the number they map from. A slot without an entry reads as the
// sentinel of its value type, which means "not configured: use the chip's default".
// clang-format off
#define QOS_STATUS_ATTRS( X )                                                                  \
   X( child, PmapType, pmapType, Qos::MapType, Qos::PolicyMapTypeStatus )                      \
   X( child, CmapType, cmapType, Qos::MapType, Qos::ClassMapTypeStatus )                       \
   X( child, ServicePolicyStatus, servicePolicyStatus, Qos::ServicePolicyKey,                  \
      Qos::ServicePolicyStatus )                                                               \
   X( value, ConfigVersionUpdateTime, configVersionUpdateTime, Zub::Seconds, 0.0 )             \
   X( value, ClearHwStatusErrorRequestTime, clearHwStatusErrorRequestTime, Zub::Seconds, 0.0 ) \
   X( value, RoutedPortSubIntfQosAclSharing, routedPortSubIntfQosAclSharing, bool, false )     \
   X( child, NamedPolicer, namedPolicer, Zub::Name, Qos::NamedPolicerStatus )                  \
   X( keyed, CosToTcMap, cosToTcMap, Qos::Cos, Qos::TrafficClass )                             \
   X( keyed, DscpToTcMap, dscpToTcMap, Qos::Dscp, Qos::TrafficClass )                          \
   X( keyed, DscpToDpMap, dscpToDpMap, Qos::Dscp, Qos::DropPrecedence )                        \
   X( keyed, ExpToTcMap, expToTcMap, Qos::Exp, Qos::TrafficClass )                             \
   X( keyed, TcToCosMap, tcToCosMap, Qos::TrafficClass, Qos::Cos )                             \
   X( keyed, TcToDscpMap, tcToDscpMap, Qos::TrafficClass, Qos::Dscp )                          \
   X( keyed, TcToExpMap, tcToExpMap, Qos::TrafficClass, Qos::Exp )                             \
   /* Unicast queue of each traffic class. */                                                  \
   X( keyed, TcToTxQueueMap, tcToTxQueueMap, Qos::TrafficClass, Qos::TxQueueId )               \
   /* Multicast queue of each traffic class, on chips with a map of their own. */              \
   X( keyed, TcToMcTxQueueMap, tcToMcTxQueueMap, Qos::TrafficClass, Qos::TxQueueId )           \
   /* Rewrite the COS, and the DSCP, of packets from their traffic class on the way out. */    \
   X( value, CosRewriteEnabled, cosRewriteEnabled, bool, false )                               \
   X( value, DscpRewriteEnabled, dscpRewriteEnabled, bool, false )                             \
   /* Basic QoS of each interface and its queues. */                                          \
   X( child, IntfStatus, intfStatus, Mirel::IntfId, Qos::IntfStatus )                          \
   X( child, DscpRewriteMap, dscpRewriteMap, Zub::Name, Qos::DscpRewriteMap )                  \
   X( child, CosToTcProfile, cosToTcProfile, Zub::Name, Qos::CosToTcProfile )                  \
   /* Service policies programmed on the second datapath of the chip, for the driver. */       \
   X( keyed, ServicePolicyDP1Status, servicePolicyDP1Status, Qos::ServicePolicyKey, bool )     \
   /* The delay threshold every queue uses when its delayEcnEnabled is set. */                 \
   X( value, EcnDelayThreshold, ecnDelayThreshold, Qos::EcnDelayThreshold,                     \
      Qos::EcnDelayThreshold() )                                                               \
   /* ECN marking of the whole switch, beside that of each queue. */                           \
   X( value, GlobalEcnStatus, globalEcnStatus, Qos::EcnStatus, Qos::EcnStatus() )
// clang-format on

ZUB_ENTITY( Status, Zub::Name, QOS_STATUS_ATTRS );

}  // namespace Qos
