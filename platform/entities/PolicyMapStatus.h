// Policy maps as configuration publishes them: per map type, the policy maps by name; in each,
// its classes in priority order and what each class does.
#pragma once

#include <cstdint>
#include <ostream>
#include <utility>

#include "NevQos/platform/entities/ClassMapStatus.h"
#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/entities/QosUnits.h"
#include "NevQos/platform/zub/Entity.h"
#include "NevQos/platform/zub/String.h"

namespace Qos {

// One action of a class action or of a policer's yellow or red set.
// clang-format off
#define QOS_ACTION_ATTRS( X )                                                    \
   /* The COS, DSCP, traffic class or drop precedence to set; unused by drop. */ \
   X( value, Value, value, unsigned int, 0u )
// clang-format on

class Action : public Zub::Entity {
 public:
   using Key = ActionType;
   explicit Action( ActionType actionType )
       : Zub::Entity( Zub::entityNameOf( actionType ) ), actionType_( actionType ) {}
   ActionType const& key() const { return actionType_; }
   ActionType actionType() const { return actionType_; }
   ZUB_ENTITY_BODY( Action, Zub::Entity, QOS_ACTION_ATTRS )

 private:
   ActionType actionType_;
};

// The policer of a class action, keyed by the policer's name. Rates and bursts are in the
// operator's units; the chip's limits are applied when a policer is built from it.
// clang-format off
#define QOS_POLICER_CONFIG_ATTRS( X )                                           \
   /* A named policer, whose status stands in the named-policer collections. */ \
   X( value, Named, named, bool, false )                                        \
   X( value, Cir, cir, std::uint64_t, 0u )                                      \
   X( value, CirUnit, cirUnit, Qos::RateUnit, Qos::rateUnitKbps_ )              \
   X( value, Bc, bc, std::uint32_t, 0u )                                        \
   X( value, BcUnit, bcUnit, Qos::BurstUnit, Qos::burstUnitBytes_ )             \
   /* Peak rate; 0 makes a single-rate policer. */                              \
   X( value, Pir, pir, std::uint64_t, 0u )                                      \
   X( value, PirUnit, pirUnit, Qos::RateUnit, Qos::rateUnitKbps_ )              \
   X( value, Be, be, std::uint32_t, 0u )                                        \
   X( value, BeUnit, beUnit, Qos::BurstUnit, Qos::burstUnitBytes_ )             \
   /* Actions on traffic above the committed rate, and above the peak rate. */  \
   X( child, YellowAction, yellowAction, Qos::ActionType, Qos::Action )         \
   X( child, RedAction, redAction, Qos::ActionType, Qos::Action )
// clang-format on

ZUB_ENTITY( PolicerConfig, Zub::Name, QOS_POLICER_CONFIG_ATTRS );

// What one class of a policy map does, keyed by the class map's name.
// clang-format off
#define QOS_CLASS_ACTION_ATTRS( X )                                                               \
   X( child, Action, action, Qos::ActionType, Qos::Action )                                       \
   /* Null when the class doesn't police. */                                                      \
   X( value, Policer, policer, Zub::Ptr< Qos::PolicerConfig >, Zub::Ptr< Qos::PolicerConfig >() ) \
   /* Count the packets of the class. */                                                          \
   X( value, Count, count, bool, false )
// clang-format on

ZUB_ENTITY( ClassAction, Zub::Name, QOS_CLASS_ACTION_ATTRS );

// One entry of a policy map's class order: the class map at that priority.
class ClassPriority {
 public:
   ClassPriority() = default;
   explicit ClassPriority( Zub::Name cmapName ) : cmapName_( std::move( cmapName ) ) {}
   Zub::Name const& cmapName() const { return cmapName_; }
   bool operator==( ClassPriority const& ) const = default;
   bool operator!() const { return cmapName_.empty(); }

 private:
   Zub::Name cmapName_;
};

inline std::ostream& operator<<( std::ostream& os, ClassPriority const& p ) {
   return os << p.cmapName();
}

// clang-format off
#define QOS_POLICY_MAP_STATUS_ATTRS( X )                                                       \
   /* Moves on each change of the policy map; a new version makes the engine recompile. */     \
   X( value, Version, version, unsigned int, 0u )                                              \
   /* One policer and counter for all interfaces of the map, not one per interface. */         \
   X( value, Shared, shared, bool, false )                                                     \
   /* The operator's classes, first (highest hardware priority) at the lowest key. */          \
   X( keyed, ClassPrio, classPrio, unsigned int, Qos::ClassPriority )                          \
   /* The static control-plane classes of a control-plane map, in the same order. */           \
   X( keyed, CoppStaticClassPrio, coppStaticClassPrio, unsigned int, Qos::ClassPriority )      \
   X( child, ClassAction, classAction, Zub::Name, Qos::ClassAction )                           \
   /* The class that takes what no other class matched, and its action; either may be null. */ \
   X( value, ClassDefault, classDefault, Zub::Ptr< Qos::ClassMapStatus >,                      \
      Zub::Ptr< Qos::ClassMapStatus >() )                                                      \
   X( value, ClassActionDefault, classActionDefault, Zub::Ptr< Qos::ClassAction >,             \
      Zub::Ptr< Qos::ClassAction >() )
// clang-format on

ZUB_ENTITY( PolicyMapStatus, Zub::Name, QOS_POLICY_MAP_STATUS_ATTRS );

#define QOS_POLICY_MAP_TYPE_STATUS_ATTRS( X ) \
   X( child, Pmap, pmap, Zub::Name, Qos::PolicyMapStatus )

ZUB_ENTITY( PolicyMapTypeStatus, MapType, QOS_POLICY_MAP_TYPE_STATUS_ATTRS );

}  // namespace Qos
