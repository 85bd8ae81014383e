// The class match dispatcher: which ACL children a match gets and what they are called, how the
// children leave, and how their counters add up.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/QosAclSmFixture.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;

class QosClassMatchSmTest : public QosAclSmFixture {
 protected:
   Zub::Ptr< Nev::QosPolicyClassSm > classSm( char const* cmapName ) {
      auto spSm = sm->servicePolicySm( spKey( "gold" ) );
      if( !spSm ) return nullptr;
      auto pmapSm = spSm->pmapSm( pmapKey( "gold" ) );
      return pmapSm ? pmapSm->policyClassSm(
                            Nev::QosClassMapKey( Zub::Name( cmapName ), Qos::mapQos_ ) )
                    : nullptr;
   }
   template< class Children >
   static Lines childNames( Children const& children ) {
      Lines out;
      for( auto it = children.iter(); it; ++it ) {
         out.push_back( it.key().aclName().str().stdString() );
      }
      return out;
   }
};

TEST_F( QosClassMatchSmTest, TheDefaultClassCoversTheFamiliesOfTheMapsAccessGroups ) {
   start();
   ip6AclIs( "v6", {} );
   classMapIs( "c6", { { Qos::matchOptionIpv6Acl, "v6" } } );
   classIs( "gold", "c6" );
   classDefaultIs( "gold" );
   applyIs( "gold", { intf( "Ethernet1" ) } );
   auto match = classSm( "class-default" )->classMatchSm( Qos::matchOptionNone );
   ASSERT_TRUE( match );
   EXPECT_EQ( childNames( match->classDefaultSm() ), Lines{ "acl-default-ipv6" } )
         << "only IPv6 access groups: only the IPv6 rule";
   EXPECT_EQ( match->classDefaultSm().iter().value()->matchOption(), Qos::matchOptionIpv6Acl );

   // Without any access group the map has the IPv4 default alone.
   classMapIs( "c6", {} )->matchDel( Qos::matchOptionIpv6Acl );
   policyMap( "gold" )->versionIs( 2 );
   qosStatus->servicePolicyStatus( spKey( "gold" ) )->versionIs( 2 );
   match = classSm( "class-default" )->classMatchSm( Qos::matchOptionNone );
   EXPECT_EQ( childNames( match->classDefaultSm() ), Lines{ "acl-default" } );
}

TEST_F( QosClassMatchSmTest, OptionMatchesAreNamedPerFamilyAndTheLastFamilyOutCleansUp ) {
   start();
   ipAclIs( "v4", {} );
   ip6AclIs( "v6", {} );
   classMapIs( "both", { { Qos::matchOptionIpAcl, "v4" }, { Qos::matchOptionIpv6Acl, "v6" } } );
   classMapIs( "vlan", { { Qos::matchOptionVlan, "" } } );
   classMapIs( "builtin", { { Qos::matchOptionBuiltIn, "" } } );
   classIs( "gold", "both" );
   classIs( "gold", "vlan" );
   classIs( "gold", "builtin" );
   applyIs( "gold", { intf( "Ethernet1" ) } );

   auto both = classSm( "both" );
   EXPECT_EQ( both->classData()->matchData( Qos::matchOptionIpAcl )->priority(), 7u );
   EXPECT_EQ( both->classData()->matchData( Qos::matchOptionIpv6Acl )->priority(), 6u );
   auto vlan = classSm( "vlan" )->classMatchSm( Qos::matchOptionVlan );
   EXPECT_EQ( childNames( vlan->matchOptionSm() ), ( Lines{ "vlan-acl-7", "vlan-acl-ipv6-7" } ) );
   auto builtin = classSm( "builtin" )->classMatchSm( Qos::matchOptionBuiltIn );
   EXPECT_EQ( childNames( builtin->matchOptionSm() ), ( Lines{ "-7", "-7" } ) )
         << "the built-in option has no base name";
   EXPECT_EQ( helper->pmapState( pmapKey( "gold" ) )->pmapAclTypes(), Nev::ipv4v6Both );

   helper->callsForget();
   qosStatus->servicePolicyStatusDel( spKey( "gold" ) );
   Lines destroys;
   for( Sim::ChipCall const& call : helper->calls() ) {
      if( call.op == "destroyAcl" || call.op == "cleanupAcl" ) {
         destroys.push_back( Sim::callText( call ) );
      }
   }
   // Classes leave in key order; in each, access groups, then options, then defaults.
   EXPECT_EQ( destroys,
              ( Lines{ "destroyAcl classData=gold(qos,input)/both/Default aclKey=v4(ip)",
                       "cleanupAcl classData=gold(qos,input)/both/Default aclKey=v4(ip)",
                       "destroyAcl classData=gold(qos,input)/both/Default aclKey=v6(ipv6)",
                       "cleanupAcl classData=gold(qos,input)/both/Default aclKey=v6(ipv6)",
                       "destroyAcl classData=gold(qos,input)/builtin/Default aclKey=-7(ip)",
                       "destroyAcl classData=gold(qos,input)/builtin/Default aclKey=-7(ipv6)",
                       "cleanupAcl classData=gold(qos,input)/builtin/Default aclKey=-7(ipv6)",
                       "destroyAcl classData=gold(qos,input)/vlan/Default aclKey=vlan-acl-7(ip)",
                       "destroyAcl classData=gold(qos,input)/vlan/Default "
                       "aclKey=vlan-acl-ipv6-7(ipv6)",
                       "cleanupAcl classData=gold(qos,input)/vlan/Default "
                       "aclKey=vlan-acl-ipv6-7(ipv6)" } ) );
}

TEST_F( QosClassMatchSmTest, ASharedCounterIsReadFromTheFirstFamilyOnly ) {
   start();
   ipAclIs( "v4", {} );
   ip6AclIs( "v6", {} );
   classMapIs( "both", { { Qos::matchOptionIpAcl, "v4" }, { Qos::matchOptionIpv6Acl, "v6" } } );
   classMapIs( "vlan", { { Qos::matchOptionVlan, "" } } );
   classIs( "gold", "both" );
   classIs( "gold", "vlan" );
   applyIs( "gold", { intf( "Ethernet1" ) } );
   // Each family's list answers its own count, so that the sum tells which lists were read.
   Nev::QosClassCounterData v4;
   v4.pktHitsIs( 5 );
   Nev::QosClassCounterData v6;
   v6.pktHitsIs( 7 );
   auto vlan = classSm( "vlan" )->classMatchSm( Qos::matchOptionVlan );
   helper->callsForget();
   helper->answerEnq( "counterUpdateRequest", v4 );
   helper->answerEnq( "counterUpdateRequest", v6 );
   EXPECT_EQ( vlan->counterUpdateRequest().pktHits(), 12u ) << "both families add up";
   EXPECT_EQ( helper->callsMatching( "counterUpdateRequest" ),
              ( Lines{ "counterUpdateRequest classData=gold(qos,input)/vlan/Default "
                       "aclKey=vlan-acl-7(ip)",
                       "counterUpdateRequest classData=gold(qos,input)/vlan/Default "
                       "aclKey=vlan-acl-ipv6-7(ipv6)" } ) );
   helper->callsForget();
   qosAclHwStatus->sharedQosAclTypesCounterSupportedIs( true );
   helper->answerEnq( "counterUpdateRequest", v4 );
   helper->answerEnq( "counterUpdateRequest", v6 );
   EXPECT_EQ( vlan->counterUpdateRequest().pktHits(), 5u ) << "one counter for both families";
   EXPECT_EQ( helper->callsMatching( "counterUpdateRequest" ),
              Lines{ "counterUpdateRequest classData=gold(qos,input)/vlan/Default "
                     "aclKey=vlan-acl-7(ip)" } );
   helper->answerDel( "counterUpdateRequest" );
}

}  // namespace
}  // namespace NevQosTest
