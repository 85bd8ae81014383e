// The QoS settings of one interface and of each of its transmit queues, as the configuration
// agents publish them in Qos::Status; the named DSCP rewrite maps and COS-to-TC profiles an
// interface may name.
#pragma once

#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/entities/QueueSettings.h"
#include "NevQos/platform/mirel/IntfId.h"
#include "NevQos/platform/zub/Entity.h"

namespace Qos {

// clang-format off
#define QOS_TX_QUEUE_STATUS_ATTRS( X )                                                    \
   X( value, Priority, priority, Qos::TxQueuePriority, Qos::txQueuePriorityRoundRobin_ ) \
   X( value, ShapeRate, shapeRate, Qos::ShapeRate, Qos::ShapeRate() )                    \
   X( value, GuaranteedBw, guaranteedBw, Qos::GuaranteedBw, Qos::GuaranteedBw() )        \
   X( value, EcnStatus, ecnStatus, Qos::EcnStatus, Qos::EcnStatus() )                    \
   X( value, NonEctStatus, nonEctStatus, Qos::NonEctStatus, Qos::NonEctStatus() )        \
   /* The delay threshold is programmed when this switch is written. */                  \
   X( value, DelayEcnEnabled, delayEcnEnabled, bool, false )                             \
   X( value, EcnDelayThreshold, ecnDelayThreshold, Qos::EcnDelayThreshold,               \
      Qos::EcnDelayThreshold() )                                                         \
   X( value, WredStatus, wredStatus, Qos::WredStatus, Qos::WredStatus() )                \
   /* Tail-drop threshold in bytes by drop precedence; absent is the chip's default. */  \
   X( keyed, DropThresholds, dropThresholds, Qos::DropPrecedence, std::uint32_t )
// clang-format on

ZUB_ENTITY( TxQueueStatus, Qos::TxQueue, QOS_TX_QUEUE_STATUS_ATTRS );

// clang-format off
#define QOS_INTF_STATUS_ATTRS( X )                                                     \
   X( value, TrustMode, trustMode, Qos::TrustMode, Qos::trustCos_ )                    \
   /* The sentinels (8, 64) mean the chip's default. */                                \
   X( value, DefaultCos, defaultCos, Qos::Cos, Qos::Cos() )                            \
   X( value, DefaultDscp, defaultDscp, Qos::Dscp, Qos::Dscp() )                        \
   /* Names of a Qos::DscpRewriteMap and a Qos::CosToTcProfile; empty for none. */     \
   X( value, DscpRewriteMapName, dscpRewriteMapName, Zub::Name, Zub::Name() )          \
   X( value, CosToTcProfileName, cosToTcProfileName, Zub::Name, Zub::Name() )          \
   X( value, ShapeRate, shapeRate, Qos::ShapeRate, Qos::ShapeRate() )                  \
   X( child, TxQueueStatus, txQueueStatus, Qos::TxQueue, Qos::TxQueueStatus )
// clang-format on

ZUB_ENTITY( IntfStatus, Mirel::IntfId, QOS_INTF_STATUS_ATTRS );

// A named map of the DSCP written into packets of each traffic class, for the interfaces that
// name it.
#define QOS_DSCP_REWRITE_MAP_ATTRS( X ) \
   X( keyed, TcToDscpMap, tcToDscpMap, Qos::TrafficClass, Qos::Dscp )

ZUB_ENTITY( DscpRewriteMap, Zub::Name, QOS_DSCP_REWRITE_MAP_ATTRS );

// A named map of the traffic class of each COS, for the interfaces that name it.
#define QOS_COS_TO_TC_PROFILE_ATTRS( X ) \
   X( keyed, CosToTcMap, cosToTcMap, Qos::Cos, Qos::TrafficClass )

ZUB_ENTITY( CosToTcProfile, Zub::Name, QOS_COS_TO_TC_PROFILE_ATTRS );

}  // namespace Qos
