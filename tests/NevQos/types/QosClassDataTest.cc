#include "NevQos/types/QosClassData.h"

#include <gtest/gtest.h>

namespace {

using Nev::QosClassData;
using Nev::QosClassDataKey;

Nev::QosPolicyMapKey const pmap( "pmap", Qos::mapQos_, Qos::directionInput_, "grp" );

QosClassDataKey keyOf( Zub::Name const& policer ) {
   return QosClassDataKey( pmap, "cmap", Qos::mapQos_, policer );
}

Zub::String nameOf( Zub::Name const& policer ) {
   return Zub::entityNameOf( keyOf( policer ) );
}

TEST( QosClassDataTest, KeepsTheNameOfTheKeyItWasCreatedUnder ) {
   Zub::Name const placeholder = QosClassDataKey::defaultPolicerName();
   // Renamed before anyone asked for the name, as the engine's copies are.
   auto const copy = Zub::make< QosClassData >( keyOf( placeholder ) );
   copy->policerNameIs( "Ethernet1" );
   copy->policerNameIs( "Ethernet2" );
   EXPECT_EQ( copy->key(), keyOf( "Ethernet2" ) );
   EXPECT_EQ( copy->name(), nameOf( placeholder ) );

   auto const other = Zub::make< QosClassData >( keyOf( "polA" ) );
   other->policerNameIs( "polB" );
   other->policerNameIs( placeholder );
   EXPECT_EQ( other->name(), nameOf( "polA" ) );

   auto const asked = Zub::make< QosClassData >( keyOf( "polA" ) );
   EXPECT_EQ( asked->name(), nameOf( "polA" ) );
   asked->policerNameIs( "polB" );
   EXPECT_EQ( asked->name(), nameOf( "polA" ) );
}

TEST( QosClassDataTest, MarksAndWorkingCopiesHoldWhatIsWrittenAndNothingElse ) {
   auto const data = Zub::make< QosClassData >( keyOf( "polA" ) );
   EXPECT_FALSE( data->classDefault() );
   EXPECT_FALSE( data->count() );
   data->classDefaultIs( true );
   data->countIs( true );
   // The marks share the word of the entity's own: its name is still built from the key.
   data->policerNameIs( "polB" );
   EXPECT_EQ( data->name(), nameOf( "polA" ) );
   data->classDefaultIs( false );
   EXPECT_FALSE( data->classDefault() );
   EXPECT_TRUE( data->count() );

   EXPECT_FALSE( data->dscpEcnValue() );
   data->macValueIs( nullptr );
   EXPECT_FALSE( data->macValue() );
   auto const dscp = Zub::make< Qos::ClassMapMatchDscpEcn >( Qos::DscpVal( 10 ), Acl::ecnDontCare );
   data->dscpEcnValueIs( dscp );
   data->builtInClassMatchValueIs( Nev::BuiltInClassMatch( Zub::Name( "arp" ) ) );
   EXPECT_EQ( data->dscpEcnValue(), dscp );
   EXPECT_EQ( data->builtInClassMatchValue().builtInClass(), Zub::Name( "arp" ) );
   EXPECT_FALSE( data->l2ParamsValue() );
   EXPECT_FALSE( data->mplsTrafficClassVal() );
   EXPECT_FALSE( data->mplsTrafficClassTuple() );
   EXPECT_FALSE( data->macValue() );
   data->dscpEcnValueIs( nullptr );
   EXPECT_FALSE( data->dscpEcnValue() );
}

}  // namespace
