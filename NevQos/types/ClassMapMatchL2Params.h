// The working copy of a VLAN, COS or VLAN-and-COS match in a class's data. The compiler writes
// the VLAN and COS value and mask of each rule into it just before the rule goes to the chip.
#pragma once

#include <cstdint>

#include "NevQos/platform/entities/ClassMapMatchValues.h"
#include "NevQos/platform/zub/Entity.h"
#include "NevQos/platform/zub/String.h"

namespace Nev {

// The COS side: the match's ranges, and the value and mask of the rule being compiled.
// clang-format off
#define NEV_CLASS_MAP_MATCH_COS_ATTRS( X )                 \
   X( keyed, CosColl, cosColl, Qos::CosRange, bool )       \
   X( value, Cos, cos, std::uint8_t, 0 )                   \
   X( value, CosMask, cosMask, std::uint8_t, 0 )
// clang-format on

ZUB_ENTITY( ClassMapMatchCos, Zub::String, NEV_CLASS_MAP_MATCH_COS_ATTRS );

// Either side is null when the match has none.
// clang-format off
#define NEV_CLASS_MAP_MATCH_L2_PARAMS_ATTRS( X )                                          \
   X( value, VlanValue, vlanValue, Zub::Ptr< Qos::ClassMapMatchVlan >,                    \
      Zub::Ptr< Qos::ClassMapMatchVlan >() )                                              \
   X( value, CosValue, cosValue, Zub::Ptr< Nev::ClassMapMatchCos >,                       \
      Zub::Ptr< Nev::ClassMapMatchCos >() )
// clang-format on

ZUB_ENTITY( ClassMapMatchL2Params, Zub::String, NEV_CLASS_MAP_MATCH_L2_PARAMS_ATTRS );

}  // namespace Nev
