// Requests for counters: a client asks for the policy-map counters by writing a request time,
// and names the interfaces and queues whose ECN counters it wants.
#pragma once

#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/zub/Entity.h"

namespace Qos {

// The transmit queues of one interface whose ECN counters are wanted.
#define QOS_ECN_INTF_COUNTER_CONFIG_ATTRS( X ) \
   X( keyed, EcnTxQueueCounterConfig, ecnTxQueueCounterConfig, Qos::TxQueueId, bool )

ZUB_ENTITY( EcnIntfCounterConfig, Mirel::IntfId, QOS_ECN_INTF_COUNTER_CONFIG_ATTRS );

// clang-format off
#define QOS_COUNTER_CONFIG_ATTRS( X )                                                        \
   /* A time later than the last one served asks for fresh policy-map counters. */           \
   X( value, PmapCounterUpdateRequestTime, pmapCounterUpdateRequestTime, Zub::Seconds, 0.0 ) \
   X( child, EcnIntfCounterConfig, ecnIntfCounterConfig, Mirel::IntfId,                     \
      Qos::EcnIntfCounterConfig )
// clang-format on

ZUB_ENTITY( CounterConfig, Zub::Name, QOS_COUNTER_CONFIG_ATTRS );

}  // namespace Qos
