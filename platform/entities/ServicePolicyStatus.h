// One service policy as configuration publishes it: a policy map attached, in one direction,
// to a set of interfaces. A new `version` means the policy map changed.
#pragma once

#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/zub/Entity.h"

namespace Qos {

#define QOS_SERVICE_POLICY_STATUS_ATTRS( X )      \
   X( value, Version, version, unsigned int, 0u ) \
   X( keyed, IntfIds, intfIds, Qos::IntfPairKey, bool )

ZUB_ENTITY( ServicePolicyStatus, ServicePolicyKey, QOS_SERVICE_POLICY_STATUS_ATTRS );

}  // namespace Qos
