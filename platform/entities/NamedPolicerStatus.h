// A named policer: one set of policer parameters that several classes use by name. A change of
// the parameters is applied in place, without rebuilding the classes that use it.
#pragma once

#include <cstdint>

#include "NevQos/platform/entities/QosUnits.h"
#include "NevQos/platform/zub/Entity.h"

namespace Qos {

// clang-format off
#define QOS_NAMED_POLICER_STATUS_ATTRS( X )                                                  \
   /* Moves when the parameters below change; the engine then updates the chip's policer. */ \
   X( value, ParamChangeVersion, paramChangeVersion, unsigned int, 0u )                      \
   /* One policer in hardware for every interface that uses it, not one per interface. */    \
   X( value, Shared, shared, bool, false )                                                   \
   X( value, Cir, cir, std::uint64_t, 0u )                                                   \
   X( value, CirUnit, cirUnit, Qos::RateUnit, Qos::rateUnitKbps_ )                           \
   X( value, Bc, bc, std::uint32_t, 0u )                                                     \
   X( value, BcUnit, bcUnit, Qos::BurstUnit, Qos::burstUnitBytes_ )                          \
   /* Peak rate; 0 makes a single-rate policer. */                                           \
   X( value, Pir, pir, std::uint64_t, 0u )                                                   \
   X( value, PirUnit, pirUnit, Qos::RateUnit, Qos::rateUnitKbps_ )                           \
   X( value, Be, be, std::uint32_t, 0u )                                                     \
   X( value, BeUnit, beUnit, Qos::BurstUnit, Qos::burstUnitBytes_ )
// clang-format on

ZUB_ENTITY( NamedPolicerStatus, Zub::Name, QOS_NAMED_POLICER_STATUS_ATTRS );

}  // namespace Qos
