// The entity shared by all state machines of one agent: which interfaces exist, whether the
// interface list is complete, and the switch's role.
#pragma once

#include "mirel/IntfId.h"
#include "zub/Entity.h"

namespace Nev {

#define NEV_COMMON_SM_DATA_ATTRS( X )                    \
   X( keyed, Intf, intf, Mirel::IntfId, bool )           \
   X( value, IntfsReady, intfsReady, bool, false )       \
   X( value, IsFabricSlice, isFabricSlice, bool, false ) \
   X( value, DlpEnabled, dlpEnabled, bool, false )

ZUB_ENTITY( NevCommonSmData, Zub::Name, NEV_COMMON_SM_DATA_ATTRS );

}  // namespace Nev
