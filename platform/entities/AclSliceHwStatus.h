// The hardware status of policy maps, written by the policy engine and read by the command line:
// per map type, per policy map, the programming result.
#pragma once

#include "entities/QosTypes.h"
#include "zub/Entity.h"
#include "zub/String.h"

namespace Qos {

#define QOS_POLICY_MAP_HW_STATUS_ATTRS( X )                                                     \
   X( value, PrgmStatus, prgmStatus, Qos::PolicyMapHwPrgmStatus, Qos::hwPrgmStatusInProgress_ ) \
   X( value, PrgmStatusErrMessage, prgmStatusErrMessage, Zub::String, Zub::String() )           \
   X( value, Version, version, unsigned int, 0u )

ZUB_ENTITY( PolicyMapHwStatus, PolicyMapHwStatusKey, QOS_POLICY_MAP_HW_STATUS_ATTRS );

#define QOS_POLICY_MAP_TYPE_HW_STATUS_ATTRS( X ) \
   X( child, Pmap, pmap, Qos::PolicyMapHwStatusKey, Qos::PolicyMapHwStatus )

ZUB_ENTITY( PolicyMapTypeHwStatus, MapType, QOS_POLICY_MAP_TYPE_HW_STATUS_ATTRS );

#define QOS_ACL_SLICE_HW_STATUS_ATTRS( X )                                            \
   X( child, PmapType, pmapType, Qos::MapType, Qos::PolicyMapTypeHwStatus )           \
   X( value, ConfigVersionUpdateTime, configVersionUpdateTime, Zub::Seconds, 0.0 )    \
   X( value, Status, status, Qos::HwProgrammingStatus, Qos::hwProgrammingSucceeded_ ) \
   X( value, PmapCounterUpdateTime, pmapCounterUpdateTime, Zub::Seconds, 0.0 )

ZUB_ENTITY( AclSliceHwStatus, Zub::Name, QOS_ACL_SLICE_HW_STATUS_ATTRS );

}  // namespace Qos
