// Service policies that the system's own agents configure, as opposed to the operator: each
// source writes its own Qos::Input::Config, and the merge into the status picks by priority.
#pragma once

#include <cstdint>

#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/zub/Entity.h"

namespace Qos {

// One configured service policy: the interfaces it is applied to.
#define QOS_SERVICE_POLICY_CONFIG_ATTRS( X ) X( keyed, IntfIds, intfIds, Mirel::IntfId, bool )

ZUB_ENTITY( ServicePolicyConfig, ServicePolicyKey, QOS_SERVICE_POLICY_CONFIG_ATTRS );

namespace Input {

// clang-format off
#define QOS_INPUT_CONFIG_ATTRS( X )                                               \
   /* Weight of this source against others when the configurations are merged. */ \
   X( value, ConfigPriority, configPriority, std::uint32_t, 0u )                  \
   /* The same, for what this source sets per interface. */                       \
   X( value, IntfConfigPriority, intfConfigPriority, std::uint32_t, 0u )          \
   X( child, ServicePolicyConfig, servicePolicyConfig, Qos::ServicePolicyKey,     \
      Qos::ServicePolicyConfig )
// clang-format on

ZUB_ENTITY( Config, Zub::Name, QOS_INPUT_CONFIG_ATTRS );

}  // namespace Input
}  // namespace Qos
