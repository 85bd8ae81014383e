// One action of a class as the rule programming sees it: what to set, and the value.
#pragma once

#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/zub/Entity.h"

namespace Nev {

// clang-format off
#define NEV_QOS_CLASS_ACTION_DATA_ATTRS( X )                                   \
   /* The COS, DSCP, traffic class or drop precedence; a drop keeps 0. */      \
   X( value, Val, val, unsigned int, 0u )
// clang-format on

class QosClassActionData : public Zub::Entity {
 public:
   using Key = Qos::ActionType;
   explicit QosClassActionData( Qos::ActionType actionType ) : actionType_( actionType ) {}
   Qos::ActionType const& key() const { return actionType_; }
   Qos::ActionType actionType() const { return actionType_; }
   ZUB_ENTITY_BODY( QosClassActionData, Zub::Entity, NEV_QOS_CLASS_ACTION_DATA_ATTRS )

 protected:
   // Built when first asked for: every class copy has a few of these, and few are ever named.
   Zub::String nameFromKey() const override { return Zub::entityNameOf( actionType_ ); }

 private:
   Qos::ActionType actionType_;
};

}  // namespace Nev
