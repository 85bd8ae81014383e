// The hardware status of policy maps, written by the policy engine and read by the command line:
// per map type, per policy map, the programming result, and per class its actions and counters.
#pragma once

#include <cstdint>

#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/zub/Entity.h"
#include "NevQos/platform/zub/String.h"

namespace Qos {

// One policer of a class in hardware: per interface, LAG, shared policer or class action, as
// the class keeps its copies. The counters are absolute sums, rewritten on each counter request.
// clang-format off
#define QOS_POLICER_HW_STATUS_ATTRS( X )                                     \
   /* The chip accepted the policer. */                                      \
   X( value, PolicerPrgmd, policerPrgmd, bool, false )                       \
   /* Actions taken on conforming, exceeding and violating traffic. */       \
   X( keyed, GreenActionStatus, greenActionStatus, Qos::ActionType, bool )   \
   X( keyed, YellowActionStatus, yellowActionStatus, Qos::ActionType, bool ) \
   X( keyed, RedActionStatus, redActionStatus, Qos::ActionType, bool )       \
   X( value, PktInCount, pktInCount, std::uint64_t, 0u )                     \
   X( value, ByteInCount, byteInCount, std::uint64_t, 0u )                   \
   X( value, PktDropCount, pktDropCount, std::uint64_t, 0u )                 \
   X( value, ByteDropCount, byteDropCount, std::uint64_t, 0u )               \
   X( value, YellowPktInCount, yellowPktInCount, std::uint64_t, 0u )         \
   X( value, YellowByteInCount, yellowByteInCount, std::uint64_t, 0u )
// clang-format on

ZUB_ENTITY( PolicerHwStatus, Zub::Name, QOS_POLICER_HW_STATUS_ATTRS );

// One class of a policy map in hardware: which actions were programmed, and its counters.
// clang-format off
#define QOS_CLASS_MAP_HW_STATUS_ATTRS( X )                                  \
   X( value, CosPrgmd, cosPrgmd, bool, false )                              \
   X( value, DscpPrgmd, dscpPrgmd, bool, false )                            \
   X( value, TcPrgmd, tcPrgmd, bool, false )                                \
   X( value, DropPrgmd, dropPrgmd, bool, false )                            \
   X( value, DropPrecedencePrgmd, dropPrecedencePrgmd, bool, false )        \
   /* Packets and bytes that left the class, and that the class dropped. */ \
   X( value, OutCount, outCount, std::uint64_t, 0u )                        \
   X( value, OutBytes, outBytes, std::uint64_t, 0u )                        \
   X( value, DropCount, dropCount, std::uint64_t, 0u )                      \
   X( value, DropBytes, dropBytes, std::uint64_t, 0u )                      \
   X( child, PolicerHwStatus, policerHwStatus, Zub::Name, Qos::PolicerHwStatus )
// clang-format on

ZUB_ENTITY( ClassMapHwStatus, Zub::Name, QOS_CLASS_MAP_HW_STATUS_ATTRS );

#define QOS_POLICY_MAP_HW_STATUS_ATTRS( X )                                                     \
   X( value, PrgmStatus, prgmStatus, Qos::PolicyMapHwPrgmStatus, Qos::hwPrgmStatusInProgress_ ) \
   X( value, PrgmStatusErrMessage, prgmStatusErrMessage, Zub::String, Zub::String() )           \
   X( value, Version, version, unsigned int, 0u )                                               \
   X( child, Cmap, cmap, Zub::Name, Qos::ClassMapHwStatus )

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
