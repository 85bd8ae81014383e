#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "NevQos/types/QosClassData.h"
#include "support/RecordingQosAclHelper.h"
#include "zub/ActivityManager.h"

namespace {

using Lines = std::vector< std::string >;
using Nev::QosPolicyMapKey;
using NevQosTest::RecordingQosAclHelper;

class RecordingQosAclHelperTest : public ::testing::Test {
 protected:
   void SetUp() override {
      loop = Zub::ActivityManager::create( Zub::ActivityManager::TimeSource::simulated );
      Zub::activityManagerIs( loop );
   }
   void TearDown() override { Zub::activityManagerIs( nullptr ); }

   Zub::Ptr< Zub::ActivityManager > loop;
   Zub::Ptr< RecordingQosAclHelper > chip = Zub::make< RecordingQosAclHelper >();
   Zub::Ptr< Nev::QosClassData > const classData =
         Zub::make< Nev::QosClassData >( Nev::QosClassDataKey(
               QosPolicyMapKey{ Zub::Name( "gold" ), Qos::mapQos_, Qos::directionInput_ },
               Zub::Name( "c1" ), Qos::mapQos_, Zub::Name( "Default" ) ) );
   Nev::QosClassData const& cd = *classData;
   Zub::Ptr< Nev::QosPolicyMapState > gold = chip->pmapStateIs(
         QosPolicyMapKey( Zub::Name( "gold" ), Qos::mapQos_, Qos::directionInput_ ) );
   Nev::AclKey const acl1{ Zub::Name( "acl-1" ), Acl::ip() };
};

TEST_F( RecordingQosAclHelperTest, LinesFollowTheDocumentedFormat ) {
   auto copp = chip->pmapStateIs( QosPolicyMapKey( Zub::Name( "copp-system-policy" ),
                                                   Qos::mapControlPlane_, Qos::directionOutput_,
                                                   Zub::Name( "grp1" ) ) );
   Qos::IntfPairKey const member( Mirel::IntfId( "Ethernet3/1" ),
                                  Mirel::IntfId( "Port-Channel10" ) );
   chip->precreateAcl( *gold, cd, Qos::matchOptionIpAcl, acl1 );
   chip->batchCommitAclsIntfAloneIs( true );
   chip->batchCommitAclsIntf( *copp, member, false );
   chip->commitAcl( cd, Qos::matchOptionVlan,
                    Nev::AclKey( Zub::Name( "vlan-acl-ipv6-3" ), Acl::ipv6(), Zub::Name( "g" ) ) );
   chip->createCoppPolicerByPortQueue( Nev::ModIdPortQueueKey( 1, 2, 3 ) );
   chip->showAclPolicyHeader( 5, 0, *gold, copp->key() );
   chip->verifyIpRuleSrcIp6( cd, acl1, Acl::UniqueId( 9 ), 1, 2, 30,
                             Mirel::Ip6AddrWithMask( { 0x20, 0x01, 0x0d, 0xb8 }, 32 ), true );
   chip->classDataTextIs( []( Nev::QosClassData const& ) { return std::string( "class-a" ); } );
   chip->destroyPolicer( cd );
   EXPECT_EQ( chip->calls(),
              ( Lines{
                    "precreateAcl pmap=gold option=matchOptionIpAcl aclKey=acl-1",
                    "batchCommitAclsIntf pmap=copp-system-policy:mapControlPlane:output@grp1 "
                    "intf=Ethernet3/1(Port-Channel10) add=false",
                    "commitAcl option=matchOptionVlan aclKey=vlan-acl-ipv6-3:ipv6@g",
                    "createCoppPolicerByPortQueue key=1/2/3",
                    "showAclPolicyHeader socket=5 unit=0 pmap=gold "
                    "pmapKey=copp-system-policy:mapControlPlane:output@grp1",
                    "verifyIpRuleSrcIp6 aclKey=acl-1 aclId=9 ruleNum=1 subruleNum=2 sequence=30 "
                    "expectedDstAddr=2001:db8::/32 valid=true",
                    "destroyPolicer class=class-a",
              } ) )
         << chip->callsText();
}

TEST_F( RecordingQosAclHelperTest, AnswersComeFromTheQueueThenTheStandingAnswerThenTheDefault ) {
   chip->aclCreateErrorEnq( "precreateAcl", Nev::aclCreateErrorOutOfTcam );
   chip->aclCreateErrorIs( "precreateAcl", Nev::aclCreateErrorTooManyAcls );
   EXPECT_EQ( chip->precreateAcl( *gold, cd, Qos::matchOptionIpAcl, acl1 ),
              Nev::aclCreateErrorOutOfTcam );
   EXPECT_EQ( chip->precreateAcl( *gold, cd, Qos::matchOptionIpAcl, acl1 ),
              Nev::aclCreateErrorTooManyAcls );
   EXPECT_EQ( chip->precreateAcl( *gold, cd, Qos::matchOptionIpAcl, acl1 ),
              Nev::aclCreateErrorTooManyAcls );
   // Untold operations: the base's answer, or success where the base would stop.
   EXPECT_EQ( chip->createDefaultRule( *gold, cd, Qos::matchOptionIpAcl, acl1 ),
              Nev::aclCreateErrorNone );
   EXPECT_TRUE( chip->createSmForPMap( *gold ) );
   EXPECT_TRUE( chip->createAndAttachPolicer( cd ) );
   EXPECT_FALSE( chip->checkKernelCoppEntryExists( Nev::ModIdPortQueueKey( 1, 2, 3 ) ) );
   chip->boolAnswerEnq( "createAndAttachPolicer", false );
   chip->boolAnswerIs( "createSmForPMap", false );
   EXPECT_FALSE( chip->createAndAttachPolicer( cd ) );
   EXPECT_TRUE( chip->createAndAttachPolicer( cd ) );
   EXPECT_FALSE( chip->createSmForPMap( *gold ) );
   // CPU queues are handed out in turn unless told.
   EXPECT_EQ( chip->coppAllocateCpuQ( cd ), 0 );
   EXPECT_EQ( chip->coppAllocateCpuQ( cd ), 1 );
   chip->cpuQueueEnq( -1 );
   EXPECT_EQ( chip->coppAllocateCpuQ( cd ), -1 );
   EXPECT_EQ( chip->coppAllocateCpuQ( cd ), 2 );
   // A name that gives no such answer is refused at once.
   EXPECT_THROW( chip->aclCreateErrorIs( "createSmForPMap", Nev::aclCreateErrorNone ),
                 std::invalid_argument );
   EXPECT_THROW( chip->boolAnswerIs( "createSmForPmap", true ), std::invalid_argument );
}

TEST_F( RecordingQosAclHelperTest, GroupsNamesCountersAndAsyncResults ) {
   Qos::IntfPairKey const eth1( Mirel::IntfId( "Ethernet1" ) ),
         eth2( Mirel::IntfId( "Ethernet2" ) );
   Qos::ServicePolicyKey const sp( Qos::mapQos_, Qos::directionOutput_, Zub::Name( "gold" ) );
   chip->aclGroupIs( eth2, Zub::Name( "grp2" ) );
   EXPECT_EQ( chip->aclGroup( eth1, sp ), Zub::Name( "Default" ) );
   EXPECT_EQ( chip->aclGroup( eth2, sp ), Zub::Name( "grp2" ) );
   EXPECT_EQ( chip->calls()[ 0 ], "aclGroup intf=Ethernet1 spKey=gold:output" );

   chip->intfNameIs( 0, 7, "Ethernet7" );
   EXPECT_EQ( chip->portToIntfName( 0, 7 ), "Ethernet7" );
   EXPECT_EQ( chip->portToIntfName( 1, 7 ), "port-1/7" );
   EXPECT_EQ( chip->cpuQIdToClassMapName( 4 ), "cpu-queue-4" );

   Nev::QosClassCounterData hits;
   hits.pktHitsIs( 12 );
   chip->counterDataIs( acl1, hits );
   EXPECT_EQ( chip->counterUpdateRequest( cd, acl1 ), hits );
   EXPECT_EQ( chip->counterUpdateRequest( cd, Nev::AclKey( Zub::Name( "other" ), Acl::ip() ) ),
              Nev::QosClassCounterData() );

   loop->timeIs( 4.5 );
   chip->completeAsync( "done" );
   EXPECT_EQ( chip->asyncOperationResult(), Nev::AsyncOperationResult( "done", 4.5 ) );
}

TEST_F( RecordingQosAclHelperTest, APerInterfaceBatchAlsoShowsThePlainBatchItBecomes ) {
   Qos::IntfPairKey const eth1( Mirel::IntfId( "Ethernet1" ) );
   chip->batchCommitAclsIntf( *gold, eth1, true );
   chip->batchCommitAclsIntfAloneIs( true );
   chip->batchCommitAclsIntf( *gold, eth1, false );
   EXPECT_EQ( chip->calls(),
              ( Lines{ "batchCommitAclsIntf pmap=gold intf=Ethernet1 add=true",
                       "batchCommitAcls pmap=gold",
                       "batchCommitAclsIntf pmap=gold intf=Ethernet1 add=false" } ) );
}

TEST_F( RecordingQosAclHelperTest, MatchingByABareNameSkipsLongerNames ) {
   chip->createAndAttachCoppPolicer( cd );
   chip->destroyCoppPolicer( cd );
   chip->destroyCoppPolicerByPortQueue( Nev::ModIdPortQueueKey( 1, 2, 3 ) );
   chip->hwInit();
   EXPECT_EQ( chip->callsMatching( "destroyCoppPolicer" ), Lines{ "destroyCoppPolicer" } );
   EXPECT_EQ( chip->callsMatching( "destroyCoppPolicerBy" ), Lines{} );
   EXPECT_EQ( chip->callsMatching( "destroyCoppPolicerByPortQueue key=1/" ),
              Lines{ "destroyCoppPolicerByPortQueue key=1/2/3" } );
   EXPECT_EQ( chip->calls().size(), 4u );
   chip->clearCalls();
   EXPECT_TRUE( chip->calls().empty() );
}

}  // namespace
