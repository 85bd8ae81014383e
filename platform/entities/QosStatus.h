// The merged QoS status of the system, as the configuration agents publish it.
#pragma once

#include "entities/QosTypes.h"
#include "entities/ServicePolicyStatus.h"
#include "zub/Entity.h"

namespace Qos {

#define QOS_STATUS_ATTRS( X )                                                                  \
   X( child, ServicePolicyStatus, servicePolicyStatus, Qos::ServicePolicyKey,                  \
      Qos::ServicePolicyStatus )                                                               \
   X( value, ConfigVersionUpdateTime, configVersionUpdateTime, Zub::Seconds, 0.0 )             \
   X( value, ClearHwStatusErrorRequestTime, clearHwStatusErrorRequestTime, Zub::Seconds, 0.0 ) \
   X( value, RoutedPortSubIntfQosAclSharing, routedPortSubIntfQosAclSharing, bool, false )

ZUB_ENTITY( Status, Zub::Name, QOS_STATUS_ATTRS );

}  // namespace Qos
