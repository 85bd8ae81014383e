// The policer of one hardware copy of a class, with its parameters already clamped to what the
// chip supports, and the actions on exceeding (yellow) and violating (red) traffic.
#pragma once

#include <cstdint>
#include <utility>

#include "NevQos/types/QosClassActionData.h"
#include "entities/NamedPolicerStatus.h"
#include "entities/QosUnits.h"
#include "zub/Entity.h"
#include "zub/String.h"

namespace Nev {

// clang-format off
#define NEV_QOS_POLICER_DATA_ATTRS( X )                                                      \
   /* The configuration's policer is a named one; its status then stands below. */          \
   X( value, Named, named, bool, false )                                                     \
   /* The chip accepted the policer; only then is it destroyed in the chip. */               \
   X( value, CreatedInHw, createdInHw, bool, false )                                         \
   X( value, NamedPolicerStatus, namedPolicerStatus, Zub::Ptr< Qos::NamedPolicerStatus const >, \
      Zub::Ptr< Qos::NamedPolicerStatus const >() )                                          \
   X( value, CirUnit, cirUnit, Qos::RateUnit, Qos::rateUnitKbps_ )                           \
   X( value, PirUnit, pirUnit, Qos::RateUnit, Qos::rateUnitKbps_ )                           \
   X( value, BcUnit, bcUnit, Qos::BurstUnit, Qos::burstUnitBytes_ )                          \
   X( value, BeUnit, beUnit, Qos::BurstUnit, Qos::burstUnitBytes_ )                          \
   /* The records of the actions, which the class's action machines own. */                \
   X( keyed, RedActionData, redActionData, Qos::ActionType, Zub::Ptr< Nev::QosClassActionData > ) \
   X( keyed, YellowActionData, yellowActionData, Qos::ActionType,                           \
      Zub::Ptr< Nev::QosClassActionData > )
// clang-format on

class QosPolicerData : public Zub::Entity {
 public:
   using Key = Zub::Name;
   // A pir of 0 makes a single-rate policer.
   QosPolicerData( Zub::Name name, std::uint64_t cir, std::uint32_t bc, std::uint64_t pir,
                   std::uint32_t be )
       : Zub::Entity( Zub::entityNameOf( name ) )
       , name_( std::move( name ) )
       , cir_( cir )
       , pir_( pir )
       , bc_( bc )
       , be_( be ) {}
   Zub::Name const& key() const { return name_; }
   Zub::Name const& name() const { return name_; }
   std::uint64_t cir() const { return cir_; }
   std::uint32_t bc() const { return bc_; }
   std::uint64_t pir() const { return pir_; }
   std::uint32_t be() const { return be_; }
   ZUB_ENTITY_BODY( QosPolicerData, Zub::Entity, NEV_QOS_POLICER_DATA_ATTRS )

 private:
   Zub::Name name_;
   std::uint64_t cir_;
   std::uint64_t pir_;
   std::uint32_t bc_;
   std::uint32_t be_;
};

}  // namespace Nev
