// The policer of one hardware copy of a class, with its parameters already clamped to what the
// chip supports, and the actions on exceeding (yellow) and violating (red) traffic.
#pragma once

#include <cstdint>
#include <utility>

#include "NevQos/platform/entities/NamedPolicerStatus.h"
#include "NevQos/platform/entities/QosUnits.h"
#include "NevQos/platform/zub/Entity.h"
#include "NevQos/platform/zub/String.h"
#include "NevQos/types/QosClassActionData.h"

namespace Nev {

// clang-format off
#define NEV_QOS_POLICER_DATA_ATTRS( X )                                                      \
   /* The status of a named policer, which the configuration's policer then is. */          \
   X( value, NamedPolicerStatus, namedPolicerStatus, Zub::Ptr< Qos::NamedPolicerStatus const >, \
      Zub::Ptr< Qos::NamedPolicerStatus const >() )                                          \
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
       : name_( std::move( name ) ), cir_( cir ), pir_( pir ), bc_( bc ), be_( be ) {}
   Zub::Name const& key() const { return name_; }
   Zub::Name const& name() const { return name_; }
   std::uint64_t cir() const { return cir_; }
   std::uint32_t bc() const { return bc_; }
   std::uint64_t pir() const { return pir_; }
   std::uint32_t be() const { return be_; }
   Qos::RateUnit cirUnit() const { return static_cast< Qos::RateUnit >( cirUnit_ ); }
   Qos::RateUnit pirUnit() const { return static_cast< Qos::RateUnit >( pirUnit_ ); }
   Qos::BurstUnit bcUnit() const { return static_cast< Qos::BurstUnit >( bcUnit_ ); }
   Qos::BurstUnit beUnit() const { return static_cast< Qos::BurstUnit >( beUnit_ ); }
   void cirUnitIs( Qos::RateUnit unit ) { cirUnit_ = static_cast< std::uint8_t >( unit ); }
   void pirUnitIs( Qos::RateUnit unit ) { pirUnit_ = static_cast< std::uint8_t >( unit ); }
   void bcUnitIs( Qos::BurstUnit unit ) { bcUnit_ = static_cast< std::uint8_t >( unit ); }
   void beUnitIs( Qos::BurstUnit unit ) { beUnit_ = static_cast< std::uint8_t >( unit ); }
   // The configuration's policer is a named one; its status then stands above.
   bool named() const { return named_; }
   void namedIs( bool named ) { named_ = named; }
   // The chip accepted the policer; only then is it destroyed in the chip.
   bool createdInHw() const { return createdInHw_; }
   void createdInHwIs( bool created ) { createdInHw_ = created; }
   ZUB_ENTITY_BODY( QosPolicerData, Zub::Entity, NEV_QOS_POLICER_DATA_ATTRS )

 protected:
   Zub::String nameFromKey() const override { return Zub::entityNameOf( name_ ); }

 private:
   Zub::Name name_;
   std::uint64_t cir_;
   std::uint64_t pir_;
   std::uint32_t bc_;
   std::uint32_t be_;
   // The units and marks share one word: there is a policer record per class copy. Nothing
   // watches them, so they are plain members rather than attributes.
   std::uint8_t cirUnit_ = Qos::rateUnitKbps_;
   std::uint8_t pirUnit_ = Qos::rateUnitKbps_;
   std::uint8_t bcUnit_ = Qos::burstUnitBytes_;
   std::uint8_t beUnit_ = Qos::burstUnitBytes_;
   bool named_ = false;
   bool createdInHw_ = false;
};

}  // namespace Nev
