// The state of one compiled policy map that the engine and the chip driver share. The ACL helper
// owns it, so it outlives the state machines that program the map and is there again when the
// map comes back.
#pragma once

#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/zub/Entity.h"
#include "NevQos/types/QosPMapAclTypes.h"
#include "NevQos/types/QosPolicyMapKey.h"

namespace Nev {

// dirty: programming ran out of hardware resources; the policy map machine reacts to it.
// canUseVfp: for the driver's own use.
// readyToVerify: the map is stable and may be compared with the hardware.
// shared: whether the map was shared between interfaces when it was last built.
// activeIntf: the interfaces the map is applied to.
// version: the policy map version last compiled.
// doVersionUpdate: an interface change must recompile the map, not only move ports; a class with
//    a policer of its own per interface needs it.
// classBudgetExceeded: the last compile found more classes than the chip takes, and programmed
//    nothing; the map stays failed until a compile that fits.
// pendingRequests: the map's requests in the update queue or in flight; its outcome is known only
//    when none is left.
#define NEV_QOS_POLICY_MAP_STATE_ATTRS( X )                                    \
   X( value, Dirty, dirty, bool, false )                                       \
   X( value, CanUseVfp, canUseVfp, bool, false )                               \
   X( value, ReadyToVerify, readyToVerify, bool, false )                       \
   X( value, Shared, shared, bool, false )                                     \
   X( keyed, ActiveIntf, activeIntf, Qos::IntfPairKey, bool )                  \
   X( value, PmapAclTypes, pmapAclTypes, Nev::QosPMapAclTypes, Nev::ipv4Only ) \
   X( value, Version, version, unsigned int, 0u )                              \
   X( value, DoVersionUpdate, doVersionUpdate, bool, false )                   \
   X( value, ClassBudgetExceeded, classBudgetExceeded, bool, false )           \
   X( value, PendingRequests, pendingRequests, unsigned int, 0u )

ZUB_ENTITY( QosPolicyMapState, Nev::QosPolicyMapKey, NEV_QOS_POLICY_MAP_STATE_ATTRS );

}  // namespace Nev
