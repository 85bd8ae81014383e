// The compiled data of one class of one policy map, shared by reference between the class's
// state machines and the helper. The helper's rule operations take only this record, the match
// option and the ACL key; the compiler writes the values of a rule into it just before a call.
#pragma once

#include <cstdint>

#include "NevQos/platform/entities/ClassMapMatchValues.h"
#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/mirel/IntfId.h"
#include "NevQos/platform/zub/Entity.h"
#include "NevQos/types/ClassMapMatchL2Params.h"
#include "NevQos/types/QosClassActionData.h"
#include "NevQos/types/QosClassDataKey.h"
#include "NevQos/types/QosClassMatchData.h"
#include "NevQos/types/QosPolicerData.h"

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
   X( child, MatchData, matchData, Qos::ClassMapMatchOption, Nev::QosClassMatchData ) \
   X( keyed, ActionData, actionData, Qos::ActionType, QosClassActionDataPtr )         \
   X( value, PolicerData, policerData, Zub::Ptr< Nev::QosPolicerData >,               \
      Zub::Ptr< Nev::QosPolicerData >() )                                             \
   X( keyed, IntfId, intfId, Qos::IntfPairKey, bool )

// There is a class data per class copy, and a copy per class and interface, so the record is
// kept small: its marks are bits of the object's flag word, and the working copies of match
// values, which only a compile of a VLAN, COS, DSCP/ECN, traffic-class, MAC or built-in match
// writes, sit in a block of their own made with the first of them. Nothing watches these, so
// they are plain accessors rather than attributes.
class QosClassData : public Zub::Entity {
 public:
   using Key = QosClassDataKey;
   explicit QosClassData( Key const& key ) : key_( key ) {}
   Key const& key() const { return key_; }
   // The per-copy machines rename the policer in the key once they know their copy's name.
   void policerNameIs( Zub::Name const& name );
   // The policer of the class, or of one copy, with its validated parameters.
   Zub::Ptr< QosPolicerData > policerDataIs( Zub::Name const& name, std::uint64_t cir,
                                             std::uint32_t bc, std::uint64_t pir,
                                             std::uint32_t be ) {
      policerDataIs( Zub::make< QosPolicerData >( name, cir, bc, pir, be ) );
      return policerData();
   }
   void policerDataDel() { policerDataIs( Zub::Ptr< QosPolicerData >() ); }

   bool classDefault() const { return ownFlag( classDefaultFlag ); }
   void classDefaultIs( bool classDefault ) { ownFlagIs( classDefaultFlag, classDefault ); }
   bool count() const { return ownFlag( countFlag ); }
   void countIs( bool count ) { ownFlagIs( countFlag, count ); }

   L2ParamsValuePtr const& l2ParamsValue() const { return valueOf( &MatchValues::l2Params ); }
   void l2ParamsValueIs( L2ParamsValuePtr const& v ) { valueIs( &MatchValues::l2Params, v ); }
   DscpEcnValuePtr const& dscpEcnValue() const { return valueOf( &MatchValues::dscpEcn ); }
   void dscpEcnValueIs( DscpEcnValuePtr const& v ) { valueIs( &MatchValues::dscpEcn, v ); }
   MplsTrafficClassValPtr const& mplsTrafficClassVal() const {
      return valueOf( &MatchValues::mplsTrafficClassVal );
   }
   void mplsTrafficClassValIs( MplsTrafficClassValPtr const& v ) {
      valueIs( &MatchValues::mplsTrafficClassVal, v );
   }
   MplsTrafficClassTuplePtr const& mplsTrafficClassTuple() const {
      return valueOf( &MatchValues::mplsTrafficClassTuple );
   }
   void mplsTrafficClassTupleIs( MplsTrafficClassTuplePtr const& v ) {
      valueIs( &MatchValues::mplsTrafficClassTuple, v );
   }
   BuiltInClassMatch const& builtInClassMatchValue() const {
      return valueOf( &MatchValues::builtIn );
   }
   void builtInClassMatchValueIs( BuiltInClassMatch const& v ) {
      valueIs( &MatchValues::builtIn, v );
   }
   MacValuePtr const& macValue() const { return valueOf( &MatchValues::mac ); }
   void macValueIs( MacValuePtr const& v ) { valueIs( &MatchValues::mac, v ); }

   ZUB_ENTITY_BODY( QosClassData, Zub::Entity, NEV_QOS_CLASS_DATA_ATTRS )

 protected:
   // Named after the key it was created under, whatever policer the key has named since.
   Zub::String nameFromKey() const override;

 private:
   struct MatchValues : Zub::PtrInterface {
      L2ParamsValuePtr l2Params;
      DscpEcnValuePtr dscpEcn;
      MplsTrafficClassValPtr mplsTrafficClassVal;
      MplsTrafficClassTuplePtr mplsTrafficClassTuple;
      BuiltInClassMatch builtIn;
      MacValuePtr mac;
   };
   template< class T >
   T const& valueOf( T MatchValues::*field ) const {
      static T const none{};
      return values_ ? values_.ptr()->*field : none;
   }
   template< class T >
   void valueIs( T MatchValues::*field, T const& v ) {
      if( !values_ ) {
         if( v == T() ) return;
         values_ = Zub::make< MatchValues >();
      }
      values_.ptr()->*field = v;
   }

   // Bit 1 of the flag word is the entity's own.
   static constexpr std::uint32_t classDefaultFlag = 2u;
   static constexpr std::uint32_t countFlag = 4u;
   // The key's policer is no longer the one the record was created under, which was the
   // engine's placeholder "Default" unless the name was built before the renaming.
   static constexpr std::uint32_t renamedFlag = 8u;

   Key key_;
   Zub::Ptr< MatchValues > values_;
};

}  // namespace Nev
