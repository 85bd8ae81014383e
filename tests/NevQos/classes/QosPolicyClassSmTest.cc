// How many hardware copies a class has, and what each is called: per interface, per LAG, per
// shared named policer, per shared policy map; and a counting class in a PDP map.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/QosAclSmFixture.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;

class QosPolicyClassSmTest : public QosAclSmFixture {
 protected:
   // "gold" with class c1 policing through `policer`, matching the IPv4 list v4.
   Zub::Ptr< Qos::ClassAction > policedClassIs( char const* policer,
                                                Qos::MapType type = Qos::mapQos_ ) {
      ipAclIs( "v4", {} );
      classMapIs( "c1", { { Qos::matchOptionIpAcl, "v4" } }, type );
      auto action = classIs( "gold", "c1", type );
      action->policerIs( policerOf( policer ) );
      return action;
   }
   Zub::Ptr< Nev::QosPolicyClassSm > classSm( Qos::MapType type = Qos::mapQos_ ) {
      auto spSm = sm->servicePolicySm( spKey( "gold", type ) );
      auto pmapSm = spSm ? spSm->pmapSm( pmapKey( "gold", "Default", type ) ) : nullptr;
      return pmapSm ? pmapSm->policyClassSm( Nev::QosClassMapKey( Zub::Name( "c1" ), type ) )
                    : nullptr;
   }
   static Qos::IntfPairKey member( char const* intfName, char const* lag ) {
      return Qos::IntfPairKey( Mirel::IntfId( intfName ), Mirel::IntfId( lag ) );
   }
   template< class Copies >
   static Lines copyNames( Copies const& copies ) {
      Lines out;
      for( auto it = copies.iter(); it; ++it ) {
         auto const classData = it.value()->classData();
         out.push_back( it.key().str().stdString() + "/" +
                        std::to_string( classData ? classData->intfIdSize() : 0 ) );
      }
      return out;
   }
};

TEST_F( QosPolicyClassSmTest, MembersOfALagShareOneCopyUntilTheLastLeaves ) {
   start();
   policedClassIs( "p1" );
   auto status = applyIs( "gold", { member( "Ethernet1", "Port-Channel10" ),
                                    member( "Ethernet2", "Port-Channel10" ) } );
   ASSERT_TRUE( classSm() );
   EXPECT_TRUE( classSm()->policerSmNeeded() );
   EXPECT_FALSE( classSm()->classData() ) << "the copies hold the class data";
   EXPECT_EQ( copyNames( classSm()->policerSm() ), Lines{ "Port-Channel10/2" } );
   auto copy = classSm()->policerSm( Zub::Name( "Port-Channel10" ) );
   EXPECT_EQ( copy->classData()->key().policerName(), Zub::Name( "Port-Channel10" ) );
   EXPECT_TRUE( hwStatus( "gold" )
                      ->cmap( Zub::Name( "c1" ) )
                      ->policerHwStatusHas( Zub::Name( "Port-Channel10" ) ) );

   status->intfIdsDel( member( "Ethernet1", "Port-Channel10" ) );
   EXPECT_EQ( copyNames( classSm()->policerSm() ), Lines{ "Port-Channel10/1" } );
   status->intfIdsDel( member( "Ethernet2", "Port-Channel10" ) );
   EXPECT_FALSE( classSm() && classSm()->policerSmSize() ) << "gone with the last member";
}

TEST_F( QosPolicyClassSmTest, PlainInterfacesHaveACopyEach ) {
   start();
   policedClassIs( "p1" );
   applyIs( "gold", { intf( "Ethernet1" ), intf( "Ethernet2" ) } );
   EXPECT_EQ( copyNames( classSm()->policerSm() ), ( Lines{ "Ethernet1/1", "Ethernet2/1" } ) );
   auto copy = classSm()->policerSm( Zub::Name( "Ethernet2" ) );
   EXPECT_EQ( copy->classMatchSm( Qos::matchOptionIpAcl )->aclSmSize(), 1u );
}

TEST_F( QosPolicyClassSmTest, ASharedPolicyMapHasOneCopyNamedAfterTheClassAction ) {
   start();
   policedClassIs( "p1" );
   policyMap( "gold" )->sharedIs( true );
   auto status = applyIs( "gold", { intf( "Ethernet1" ), intf( "Ethernet2" ) } );
   EXPECT_EQ( copyNames( classSm()->policerSm() ), Lines{ "c1/2" } );
   status->intfIdsDel( intf( "Ethernet1" ) );
   EXPECT_EQ( copyNames( classSm()->policerSm() ), Lines{ "c1/1" } );
}

TEST_F( QosPolicyClassSmTest, ASharedNamedPolicerHasOneCopyNamedAfterIt ) {
   start();
   qosStatus->namedPolicerIs( Zub::Name( "np" ) )->sharedIs( true );
   policedClassIs( "np" )->policer()->namedIs( true );
   applyIs( "gold", { intf( "Ethernet1" ), intf( "Ethernet2" ) } );
   EXPECT_EQ( copyNames( classSm()->policerSm() ), Lines{ "np/2" } );

   // Without the shared flag each interface has its own.
   qosStatus->namedPolicer( Zub::Name( "np" ) )->sharedIs( false );
   policyMap( "gold" )->versionIs( 2 );
   qosStatus->servicePolicyStatus( spKey( "gold" ) )->versionIs( 2 );
   EXPECT_EQ( copyNames( classSm()->policerSm() ), ( Lines{ "Ethernet1/1", "Ethernet2/1" } ) );
}

TEST_F( QosPolicyClassSmTest, AChipWithPerClassPolicersKeepsOneCopy ) {
   qosAclHwStatus->perClassPolicerSupportedIs( true );
   start();
   policedClassIs( "p1" );
   applyIs( "gold", { intf( "Ethernet1" ), intf( "Ethernet2" ) } );
   EXPECT_FALSE( classSm()->policerSmNeeded() );
   EXPECT_EQ( classSm()->policerSmSize(), 0u );
   EXPECT_EQ( classSm()->classData()->intfIdSize(), 2u );
   EXPECT_EQ( classSm()->classData()->key().policerName(), Zub::Name( "Default" ) );
}

TEST_F( QosPolicyClassSmTest, APdpCounterCopiesPerInterfaceUnlessThePolicerWins ) {
   qosHwStatus->pdpSupportedIs( true );
   start();
   ipAclIs( "v4", {} );
   classMapIs( "c1", { { Qos::matchOptionIpAcl, "v4" } }, Qos::mapPdp_ );
   auto action = classIs( "gold", "c1", Qos::mapPdp_ );
   action->countIs( true );
   applyIs( "gold", { member( "Ethernet1", "Port-Channel10" ), intf( "Ethernet2" ) },
            Qos::mapPdp_ );
   ASSERT_TRUE( classSm( Qos::mapPdp_ ) );
   EXPECT_EQ( copyNames( classSm( Qos::mapPdp_ )->countActionSm() ),
              ( Lines{ "Ethernet1/1", "Ethernet2/1" } ) )
         << "a counter copy is per interface even on a LAG";
   EXPECT_EQ( helper->callsMatching( "createAndAttachCounter" ).size(), 2u );

   // With a policer as well, the policer copies alone are made.
   action->policerIs( policerOf( "p1" ) );
   policyMap( "gold", Qos::mapPdp_ )->versionIs( 2 );
   helper->callsForget();
   qosStatus->servicePolicyStatus( spKey( "gold", Qos::mapPdp_ ) )->versionIs( 2 );
   EXPECT_EQ( helper->callsMatching( "destroyCounter" ).size(), 2u );
   EXPECT_EQ( classSm( Qos::mapPdp_ )->countActionSmSize(), 0u );
   EXPECT_EQ( copyNames( classSm( Qos::mapPdp_ )->policerSm() ),
              ( Lines{ "Ethernet2/1", "Port-Channel10/1" } ) );
}

TEST_F( QosPolicyClassSmTest, AnInterfaceReachesEveryAclOfTheClass ) {
   start();
   ipAclIs( "v4", {} );
   classMapIs( "c1", { { Qos::matchOptionIpAcl, "v4" } } );
   classIs( "gold", "c1" );
   auto status = applyIs( "gold", { intf( "Ethernet1" ) } );
   helper->callsForget();
   status->intfIdsIs( intf( "Ethernet2" ), true );
   EXPECT_EQ( helper->callsMatching( "updatePortForAcl" ),
              Lines{ "updatePortForAcl classData=gold(qos,input)/c1/Default aclKey=v4(ip) "
                     "intfPair=Ethernet2 add=true" } );
   EXPECT_TRUE( classSm()->classData()->intfIdHas( intf( "Ethernet2" ) ) );
   helper->callsForget();
   status->intfIdsDel( intf( "Ethernet1" ) );
   EXPECT_EQ( helper->callsMatching( "updatePortForAcl" ),
              Lines{ "updatePortForAcl classData=gold(qos,input)/c1/Default aclKey=v4(ip) "
                     "intfPair=Ethernet1 add=false" } );
   EXPECT_FALSE( classSm()->classData()->intfIdHas( intf( "Ethernet1" ) ) );
}

}  // namespace
}  // namespace NevQosTest
