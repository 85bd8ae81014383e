// The entity shared by all state machines of one agent: which interfaces exist, whether the
// interface list is complete, the switch's role, and the verify data.
#pragma once

#include "NevQos/platform/mirel/IntfId.h"
#include "NevQos/platform/nev/VerifyData.h"
#include "NevQos/platform/zub/Entity.h"

namespace Nev {

// clang-format off
#define NEV_COMMON_SM_DATA_ATTRS( X )                                         \
   X( keyed, Intf, intf, Mirel::IntfId, bool )                                \
   X( value, IntfsReady, intfsReady, bool, false )                            \
   X( value, IsFabricSlice, isFabricSlice, bool, false )                      \
   X( value, DlpEnabled, dlpEnabled, bool, false )                            \
   /* Shared with the verify agent; null where the agent runs without one. */ \
   X( value, VerifyData, verifyData, Zub::Ptr< Nev::VerifyData >, Zub::Ptr< Nev::VerifyData >() )
// clang-format on

ZUB_ENTITY( NevCommonSmData, Zub::Name, NEV_COMMON_SM_DATA_ATTRS );

}  // namespace Nev
