// Class maps as configuration publishes them: per map type, the class maps by name, and for
// each class map its matches, one per match option.
#pragma once

#include "NevQos/platform/entities/ClassMapMatchValues.h"
#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/zub/Entity.h"
#include "NevQos/platform/zub/String.h"

namespace Qos {

// One match of a class map: the ACL name of an access-group match, or the value of its kind;
// a value that the match's kind does not use stays null.
// clang-format off
#define QOS_CLASS_MAP_MATCH_ATTRS( X )                                                 \
   /* The ACL name of an IPv4 (1), IPv6 (2) or MAC (6) access-group match. */          \
   X( value, StrValue, strValue, Zub::String, Zub::String() )                          \
   /* VLAN (3) and VLAN and COS (9). */                                                \
   X( value, VlanValue, vlanValue, Zub::Ptr< Qos::ClassMapMatchVlan const >,           \
      Zub::Ptr< Qos::ClassMapMatchVlan const >() )                                     \
   /* COS (8) and VLAN and COS (9). */                                                 \
   X( value, CosValue, cosValue, Zub::Ptr< Qos::ClassMapMatchCos const >,              \
      Zub::Ptr< Qos::ClassMapMatchCos const >() )                                      \
   /* DSCP and ECN (4). */                                                             \
   X( value, DscpEcnValue, dscpEcnValue, Zub::Ptr< Qos::ClassMapMatchDscpEcn const >,  \
      Zub::Ptr< Qos::ClassMapMatchDscpEcn const >() )                                  \
   /* MPLS traffic class (5). */                                                       \
   X( value, MplsTrafficClassValue, mplsTrafficClassValue,                             \
      Zub::Ptr< Qos::ClassMapMatchMplsTrafficClass const >,                            \
      Zub::Ptr< Qos::ClassMapMatchMplsTrafficClass const >() )                         \
   /* Built-in class (7). */                                                           \
   X( value, BuiltInValue, builtInValue, Qos::ClassMapMatchBuiltIn,                    \
      Qos::ClassMapMatchBuiltIn() )
// clang-format on

class ClassMapMatch : public Zub::Entity {
 public:
   using Key = ClassMapMatchOption;
   explicit ClassMapMatch( ClassMapMatchOption option )
       : Zub::Entity( Zub::entityNameOf( option ) ), option_( option ) {}
   ClassMapMatchOption const& key() const { return option_; }
   ClassMapMatchOption option() const { return option_; }
   ZUB_ENTITY_BODY( ClassMapMatch, Zub::Entity, QOS_CLASS_MAP_MATCH_ATTRS )

 private:
   ClassMapMatchOption option_;
};

// clang-format off
#define QOS_CLASS_MAP_STATUS_ATTRS( X )                                             \
   /* The matches, walked in ascending option order. */                             \
   X( child, Match, match, Qos::ClassMapMatchOption, Qos::ClassMapMatch )           \
   /* Control-plane class maps only: whether the system or the operator made it. */ \
   X( value, CpType, cpType, Qos::ClassMapCpType, Qos::cmapCpStatic_ )
// clang-format on

ZUB_ENTITY( ClassMapStatus, Zub::Name, QOS_CLASS_MAP_STATUS_ATTRS );

// clang-format off
#define QOS_CLASS_MAP_TYPE_STATUS_ATTRS( X )                                             \
   X( child, Cmap, cmap, Zub::Name, Qos::ClassMapStatus )                                \
   /* The control-plane classes the system defines, by name; a class without an entry */ \
   /* here, or with a dynamic one, is one the operator made. */                          \
   X( keyed, CpType, cpType, Zub::Name, Qos::ClassMapCpType )
// clang-format on

ZUB_ENTITY( ClassMapTypeStatus, MapType, QOS_CLASS_MAP_TYPE_STATUS_ATTRS );

}  // namespace Qos
