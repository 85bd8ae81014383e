// The configuration model refuses a change whole: a refused change leaves nothing of itself.
#include "NevQos/sim/scenario/ConfigModel.h"

#include <gtest/gtest.h>

namespace {

Qos::ServicePolicyKey spKey( char const* pmap ) {
   return Qos::ServicePolicyKey( Qos::mapQos_, Qos::directionInput_, Zub::Name( pmap ) );
}

Qos::IntfPairKey intf( char const* name ) {
   return Qos::IntfPairKey( Mirel::IntfId( name ) );
}

class ConfigModelTest : public ::testing::Test {
 protected:
   void SetUp() override {
      model.apply( Sim::AclDef{ Sim::AclFamily::ipv4, "A", {}, {}, {} } );
      Sim::ClassMapDef cmap;
      cmap.name = "c";
      Sim::MatchDef match;
      match.option = Qos::matchOptionIpAcl;
      match.acl = "A";
      cmap.matches.push_back( match );
      model.apply( cmap );
      Sim::PolicyMapDef pmap;
      pmap.name = "p";
      pmap.classes.push_back( Sim::ClassDef{ "c", {}, {}, false } );
      model.apply( pmap );
      model.apply( Sim::ServicePolicyDef{ spKey( "p" ), { intf( "Ethernet1" ) } } );
   }
   Sim::ConfigModel model;
};

TEST_F( ConfigModelTest, ARefusedAttachmentAddsNoneOfItsInterfaces ) {
   Sim::Attachment attach{ spKey( "p" ), { intf( "Ethernet2" ), intf( "Ethernet1" ) }, true };
   EXPECT_THROW( model.apply( attach ), Sim::ConfigModel::Refusal );
   EXPECT_EQ( model.servicePolicies().at( spKey( "p" ) ).interfaces,
              std::vector< Qos::IntfPairKey >{ intf( "Ethernet1" ) } );

   Sim::InterfacePresence presence{ { Mirel::IntfId( "Ethernet2" ), Mirel::IntfId( "Ethernet2" ) },
                                    true };
   EXPECT_THROW( model.apply( presence ), Sim::ConfigModel::Refusal );
   EXPECT_TRUE( model.interfaces().empty() );
}

TEST_F( ConfigModelTest, ARefusedDefinitionLeavesTheOldOneStanding ) {
   Sim::ClassMapDef broken;
   broken.name = "c";
   Sim::MatchDef match;
   match.option = Qos::matchOptionIpv6Acl;
   match.acl = "A";
   broken.matches.push_back( match );
   EXPECT_THROW( model.apply( broken ), Sim::ConfigModel::Refusal ) << "no IPv6 list A";
   auto const& kept = model.classMaps().at( { Qos::mapQos_, "c" } );
   ASSERT_EQ( kept.matches.size(), 1u );
   EXPECT_EQ( kept.matches[ 0 ].option, Qos::matchOptionIpAcl );
   EXPECT_EQ( model.classMapsUsing( { Sim::AclFamily::ipv4, "A" } ),
              ( std::vector< Sim::ConfigModel::MapKey >{ { Qos::mapQos_, "c" } } ) );
   EXPECT_TRUE( model.classMapsUsing( { Sim::AclFamily::ipv6, "A" } ).empty() );
}

TEST( PolicerRatesTest, ModesMustNotMix ) {
   Sim::PolicerRates r;
   r.cir = 10;
   EXPECT_EQ( Sim::policerRatesProblem( r ), "" );
   r.pir = 20;
   r.beUnit = Qos::burstUnitPackets_;
   EXPECT_NE( Sim::policerRatesProblem( r ), "" ) << "byte-mode peak rate, packet excess burst";
   r.beUnit = Qos::burstUnitKbytes_;
   r.pirUnit = Qos::rateUnitPps_;
   EXPECT_NE( Sim::policerRatesProblem( r ), "" ) << "packet-mode peak over a byte-mode rate";
   r.pir = 0;
   EXPECT_EQ( Sim::policerRatesProblem( r ), "" ) << "a single-rate policer has no peak to mix";
}

}  // namespace
