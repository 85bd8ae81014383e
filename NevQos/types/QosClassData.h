// The compiled data of one class of one policy map, shared by reference between the class's
// state machines and the helper. The helper's rule operations take only this record, the match
// option and the ACL key; the compiler writes the values of a rule into it just before a call.
#pragma once

#include <cstdint>

#include "NevQos/types/ClassMapMatchL2Params.h"
#include "NevQos/types/QosClassActionData.h"
#include "NevQos/types/QosClassDataKey.h"
#include "NevQos/types/QosClassMatchData.h"
#include "NevQos/types/QosPolicerData.h"
#include "entities/ClassMapMatchValues.h"
#include "entities/QosTypes.h"
#include "mirel/IntfId.h"
#include "zub/Entity.h"

namespace Nev {

// The working copies of a match's values, which the compiler rewrites rule by rule for the
// helper to read during its call; null while the class has no match of that kind.
using L2ParamsValuePtr = Zub::Ptr< ClassMapMatchL2Params >;
using DscpEcnValuePtr = Zub::Ptr< Qos::ClassMapMatchDscpEcn >;
using MplsTrafficClassValPtr = Zub::Ptr< Qos::ClassMapMatchMplsTrafficClass >;
using MplsTrafficClassTuplePtr = Zub::Ptr< Qos::MplsTrafficClassTuple >;
using MacValuePtr = Zub::Ptr< Qos::ClassMapMatchMac >;
using BuiltInClassMatch = Qos::ClassMapMatchBuiltIn;
// An action's record belongs to the action's machine, and every copy of the class points at it.
using QosClassActionDataPtr = Zub::Ptr< QosClassActionData >;

#define NEV_QOS_CLASS_DATA_ATTRS( X )                                                 \
   /* The small values first, which pack together. */                                 \
   X( value, Priority, priority, std::uint32_t, 0u )                                  \
   X( value, CpuQId, cpuQId, std::int32_t, -1 )                                       \
   X( value, ClassDefault, classDefault, bool, false )                                \
   X( value, Count, count, bool, false )                                              \
   X( child, MatchData, matchData, Qos::ClassMapMatchOption, Nev::QosClassMatchData ) \
   X( keyed, ActionData, actionData, Qos::ActionType, QosClassActionDataPtr )         \
   X( value, PolicerData, policerData, Zub::Ptr< Nev::QosPolicerData >,               \
      Zub::Ptr< Nev::QosPolicerData >() )                                             \
   X( keyed, IntfId, intfId, Qos::IntfPairKey, bool )                                 \
   X( value, L2ParamsValue, l2ParamsValue, L2ParamsValuePtr, L2ParamsValuePtr() )     \
   X( value, DscpEcnValue, dscpEcnValue, DscpEcnValuePtr, DscpEcnValuePtr() )         \
   X( value, MplsTrafficClassVal, mplsTrafficClassVal, MplsTrafficClassValPtr,        \
      MplsTrafficClassValPtr() )                                                      \
   X( value, MplsTrafficClassTuple, mplsTrafficClassTuple, MplsTrafficClassTuplePtr,  \
      MplsTrafficClassTuplePtr() )                                                    \
   X( value, BuiltInClassMatchValue, builtInClassMatchValue, BuiltInClassMatch,       \
      BuiltInClassMatch() )                                                           \
   X( value, MacValue, macValue, MacValuePtr, MacValuePtr() )

class QosClassData : public Zub::Entity {
 public:
   using Key = QosClassDataKey;
   explicit QosClassData( Key const& key ) : key_( key ), createdPolicer_( key.policerName() ) {}
   Key const& key() const { return key_; }
   // The per-copy machines rename the policer in the key once they know their copy's name.
   void policerNameIs( Zub::Name const& name ) {
      key_ = Key( key_.pmapKey(), key_.cmapName(), key_.cmapType(), name );
   }
   // The policer of the class, or of one copy, with its validated parameters.
   Zub::Ptr< QosPolicerData > policerDataIs( Zub::Name const& name, std::uint64_t cir,
                                             std::uint32_t bc, std::uint64_t pir,
                                             std::uint32_t be ) {
      policerDataIs( Zub::make< QosPolicerData >( name, cir, bc, pir, be ) );
      return policerData();
   }
   void policerDataDel() { policerDataIs( Zub::Ptr< QosPolicerData >() ); }
   ZUB_ENTITY_BODY( QosClassData, Zub::Entity, NEV_QOS_CLASS_DATA_ATTRS )

 protected:
   // Named after the key it was created under, whatever policer the key has named since.
   Zub::String nameFromKey() const override {
      return Zub::entityNameOf(
            Key( key_.pmapKey(), key_.cmapName(), key_.cmapType(), createdPolicer_ ) );
   }

 private:
   Key key_;
   Zub::Name const createdPolicer_;
};

}  // namespace Nev
