#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "NevQos/helpers/QosAclHelper.h"
#include "NevQos/types/QosClassData.h"

namespace {

using Nev::QosPolicyMapKey;
using NevHelper::QosAclHelper;

Qos::IntfPairKey intf( char const* name ) {
   return Qos::IntfPairKey( Mirel::IntfId( name ) );
}

class QosAclHelperTest : public ::testing::Test {
 protected:
   Zub::Ptr< Qos::AclSliceHwStatus > sliceHw =
         Zub::make< Qos::AclSliceHwStatus >( Zub::Name( "slice" ) );
   Zub::Ptr< QosAclHelper > helper =
         Zub::make< QosAclHelper >( Zub::make< Qos::Status >( Zub::Name( "status" ) ), sliceHw,
                                    Zub::make< Acl::Config >( Zub::Name( "acl" ) ) );
   QosPolicyMapKey const gold{ Zub::Name( "gold" ), Qos::mapQos_, Qos::directionInput_ };
   Zub::Ptr< Nev::QosPolicyMapState > ps = helper->pmapStateIs( gold );
};

TEST_F( QosAclHelperTest, AclNamesComeFromTheTypeTheMatchOptionAndThePriority ) {
   EXPECT_EQ( helper->createAclName( Acl::ip(), Qos::matchOptionVlan, 10 ), "vlan-acl-10" );
   EXPECT_EQ( helper->createAclName( Acl::ipv6(), Qos::matchOptionDscpEcn, 7 ),
              "dscpecn-acl-ipv6-7" );
   EXPECT_EQ( helper->createAclName( Acl::ip(), Qos::matchOptionCos, 1 ), "cos-acl-1" );
   EXPECT_EQ( helper->createAclName( Acl::ipv6(), Qos::matchOptionVlanCos, 2 ),
              "vlan-cos-acl-ipv6-2" );
   EXPECT_EQ( helper->createAclName( Acl::ipv6(), Qos::matchOptionMac, 4294967295u ),
              "mac-acl-ipv6-4294967295" );
   // No base name of its own: the name begins with the hyphen.
   EXPECT_EQ( helper->createAclName( Acl::ip(), Qos::matchOptionIpAcl, 5 ), "-5" );
   EXPECT_EQ( helper->createAclName( Acl::ipv6(), Qos::matchOptionMplsTrafficClass, 0 ), "-0" );
   // A driver's renaming is used; the DSCP and ECN names cannot be renamed.
   helper->vlanAclNameIs( Zub::Name( "v4" ) );
   helper->macIpv6AclNameIs( Zub::Name( "m6" ) );
   EXPECT_EQ( helper->createAclName( Acl::ip(), Qos::matchOptionVlan, 10 ), "v4-10" );
   EXPECT_EQ( helper->createAclName( Acl::ipv6(), Qos::matchOptionMac, 3 ), "m6-3" );
   EXPECT_EQ( helper->createAclName( Acl::ipv6(), Qos::matchOptionVlan, 3 ), "vlan-acl-ipv6-3" );
   EXPECT_EQ( helper->createAclName( Acl::ip(), Qos::matchOptionDscpEcn, 3 ), "dscpecn-acl-3" );
}

// Hears the interface requests of a driver, and whether the entry was there when it heard.
class IntfRequestReactor : public QosAclHelper::Notifiee {
 public:
   void onIntfUpdateCallbackData( Nev::IntfUpdateCallbackData const& d ) override {
      heard.emplace_back( d, notifier()->intfUpdateCallbackData( d ) );
   }
   std::vector< std::pair< Nev::IntfUpdateCallbackData, bool > > heard;
};

TEST_F( QosAclHelperTest, AnInterfaceRequestFiresTheReactorAndLeavesNothingBehind ) {
   auto reactor = Zub::make< IntfRequestReactor >();
   reactor->notifierIs( helper );
   helper->intfUpdateCallback( intf( "Ethernet3" ), Qos::directionOutput_ );
   Nev::IntfUpdateCallbackData const expected( intf( "Ethernet3" ), Qos::directionOutput_ );
   ASSERT_EQ( reactor->heard.size(), 2u ) << "one for the write, one for the removal";
   EXPECT_EQ( reactor->heard[ 0 ], std::make_pair( expected, true ) );
   EXPECT_EQ( reactor->heard[ 1 ], std::make_pair( expected, false ) );
   EXPECT_EQ( helper->intfUpdateCallbackDataSize(), 0u );
   // The same request again is heard again.
   helper->intfUpdateCallback( intf( "Ethernet3" ), Qos::directionOutput_ );
   EXPECT_EQ( reactor->heard.size(), 4u );
}

TEST_F( QosAclHelperTest, AStatusReportWritesTheProgrammingStatusOnly ) {
   Qos::PolicyMapHwStatusKey const hwKey( Qos::directionInput_, Zub::Name( "gold" ) );
   auto hw = sliceHw->pmapTypeIs( Qos::mapQos_ )->pmapIs( hwKey );
   hw->prgmStatusErrMessageIs( "Insufficient hardware resources" );
   hw->versionIs( 3 );
   Qos::ServicePolicyKey const sp( Qos::mapQos_, Qos::directionInput_, Zub::Name( "gold" ) );
   helper->unableToProgramIs( sp, true );

   // Any ACL group of the map reports into the one status of its service policy.
   helper->qosAclStatusUpdateCallback( QosPolicyMapKey( Zub::Name( "gold" ), Qos::mapQos_,
                                                        Qos::directionInput_, Zub::Name( "grp2" ) ),
                                       Qos::hwPrgmStatusSuccess_ );
   EXPECT_EQ( hw->prgmStatus(), Qos::hwPrgmStatusSuccess_ );
   EXPECT_EQ( hw->prgmStatusErrMessage(), "Insufficient hardware resources" );
   EXPECT_EQ( hw->version(), 3u );
   EXPECT_TRUE( helper->unableToProgram( sp ) );
   EXPECT_FALSE( ps->readyToVerify() );
   EXPECT_FALSE( helper->dirty() );
}

}  // namespace
