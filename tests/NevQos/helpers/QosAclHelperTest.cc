#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "NevQos/helpers/QosAclHelper.h"
#include "NevQos/types/QosClassData.h"

namespace {

using Nev::QosPolicyMapKey;
using NevHelper::QosAclHelper;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

Qos::IntfPairKey intf( char const* name ) {
   return Qos::IntfPairKey( Mirel::IntfId( name ) );
}

// Each test starts without NEV_NOOP_AGENT and leaves the environment as it found it.
class QosAclHelperTest : public ::testing::Test {
 protected:
   void SetUp() override {
      if( char const* v = std::getenv( "NEV_NOOP_AGENT" ) ) saved_ = v;
      unsetenv( "NEV_NOOP_AGENT" );
   }
   void TearDown() override {
      if( saved_ ) {
         setenv( "NEV_NOOP_AGENT", saved_->c_str(), 1 );
      } else {
         unsetenv( "NEV_NOOP_AGENT" );
      }
   }

   Zub::Ptr< Qos::AclSliceHwStatus > sliceHw =
         Zub::make< Qos::AclSliceHwStatus >( Zub::Name( "slice" ) );
   Zub::Ptr< QosAclHelper > helper =
         Zub::make< QosAclHelper >( Zub::make< Qos::Status >( Zub::Name( "status" ) ), sliceHw,
                                    Zub::make< Acl::Config >( Zub::Name( "acl" ) ) );
   QosPolicyMapKey const gold{ Zub::Name( "gold" ), Qos::mapQos_, Qos::directionInput_ };
   Zub::Ptr< Nev::QosPolicyMapState > ps = helper->pmapStateIs( gold );
   Zub::Ptr< Nev::QosClassData > const classData = Zub::make< Nev::QosClassData >(
         Nev::QosClassDataKey( QosPolicyMapKey{ Zub::Name( "gold" ), Qos::mapQos_, Qos::directionInput_ },
                               Zub::Name( "c1" ), Qos::mapQos_, Zub::Name( "Default" ) ) );
   Nev::QosClassData const& cd = *classData;
   Nev::AclKey const ak{ Zub::Name( "acl-1" ), Acl::ip() };
   Nev::ModIdPortQueueKey const queue{ 1, 2, 3 };

 private:
   std::optional< std::string > saved_;
};

using QosAclHelperDeathTest = QosAclHelperTest;

struct StopCase {
   char const* op;
   std::function< void() > call;
   std::string message;
};

TEST_F( QosAclHelperDeathTest, UnimplementedOperationsStopWithTheirOwnText ) {
   auto const mo = Qos::matchOptionIpAcl;
   std::vector< StopCase > const cases = {
      { "hwInit", [ this ] { helper->hwInit(); }, "Unimplemented function QosAclHelper::hwInit()" },
      { "createIpAclSubrule",
        [ this ] {
           helper->createIpAclSubrule( Acl::ip(), Acl::RuleConfig(), Acl::UniqueId( 1 ),
                                       *ps, cd, ak, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                                       false, 0, 0 );
        },
        "Call to unimplemented function QosSm::createIpAclSubrule" },
      { "commitAcl", [ this, mo ] { helper->commitAcl( cd, mo, ak ); },
        "Call to unimplemented function QosSm::commitAcl" },
      // The texts that do not name their own operation.
      { "updatePortForAcl",
        [ this, mo ] { helper->updatePortForAcl( *ps, cd, mo, ak, intf( "Ethernet1" ), true ); },
        "Call to unimplemented function QosSm::updatePortFromAcl" },
      { "cleanupAcl", [ this, mo ] { helper->cleanupAcl( *ps, cd, mo, ak ); },
        "Call to unimplemented function QosSm::destroyAcl" },
      { "coppDeallocateCpuQ", [ this ] { helper->coppDeallocateCpuQ( cd ); },
        "Call to unimplemented function QosSm::coppDellocateCpuQ" },
      // The texts with a line break and twelve blanks inside.
      { "checkKernelCoppEntryExists", [ this ] { helper->checkKernelCoppEntryExists( queue ); },
        "Call to unimplemented function \n            QosSm::checkKernelCoppEntryExists" },
      { "createAndAttachCoppPolicer", [ this ] { helper->createAndAttachCoppPolicer( cd ); },
        "Call to unimplemented function \n            QosSm::createAndAttachCoppPolicer" },
      { "destroyCoppPolicerByPortQueue",
        [ this ] { helper->destroyCoppPolicerByPortQueue( queue ); },
        "Call to unimplemented function \n            QosSm::destroyCoppPolicerByPortQueue" },
      { "verifyPolicer", [ this ] { helper->verifyPolicer( cd ); },
        "Unimplemented function QosAclHelper::verifyPolicer()" },
      { "ipLenRangeSubruleExists",
        [ this ] {
           helper->ipLenRangeSubruleExists( cd, ak, Acl::UniqueId( 1 ), 0, 0, 1, 2, true );
        },
        "Unimplemented function QosAclHelper::ipLenRangeSubruleExists()" },
      { "portToIntfName", [ this ] { helper->portToIntfName( 1, 2 ); },
        "Unimplemented function QosAclHelper::portToIntfName" },
   };
   for( auto const& c : cases ) {
      SCOPED_TRACE( c.op );
      // The whole text and its line end, and nothing that names a different operation.
      EXPECT_DEATH( c.call(), AllOf( HasSubstr( c.message + "\n" ),
                                     Not( HasSubstr( "cleanupAcl" ) ), HasSubstr( "Assertion" ) ) );
   }
}

TEST_F( QosAclHelperDeathTest, DdeCoppQueriesAssertEvenOnANoOpAgent ) {
   setenv( "NEV_NOOP_AGENT", "1", 1 );
   EXPECT_DEATH( helper->getDdeCoppModIdPortQueue( cd ),
                 HasSubstr( "Assertion `false && \"Call to unimplemented function "
                            "QosSm::getDdeCoppModIdPortQueue\"' failed" ) );
   EXPECT_DEATH( helper->getDdeCoppModIdQueue( cd ),
                 HasSubstr( "Assertion `false && \"Call to unimplemented function "
                            "QosSm::getDdeCoppModIdQueue\"' failed" ) );
}

TEST_F( QosAclHelperTest, AnEmptyNoOpSwitchCountsAsSetAndGivesTheNeutralAnswers ) {
   setenv( "NEV_NOOP_AGENT", "", 1 );
   auto const mo = Qos::matchOptionVlan;
   EXPECT_EQ( helper->createIpAclSubrule( Acl::ipv6(), Acl::RuleConfig(),
                                          Acl::UniqueId( 1 ), *ps, cd, ak, 0, 0, 0, 0, 0, 0, 0, 0,
                                          0, 0, 0, 0, 0, 0, 0, true, 0, 0 ),
              Nev::aclCreateErrorNone );
   EXPECT_EQ( helper->createIpFragRule( *ps, cd, ak, Acl::IpRuleConfig(),
                                        Acl::UniqueId( 1 ), 0, 0, 0, 0 ),
              Nev::aclCreateErrorNone );
   EXPECT_EQ( helper->createDefaultRule( *ps, cd, mo, ak ), Nev::aclCreateErrorNone );
   EXPECT_EQ( helper->createDscpEcnRule( *ps, cd, mo, ak, 0 ), Nev::aclCreateErrorNone );
   EXPECT_EQ( helper->commitAcl( cd, mo, ak ), Nev::aclCreateErrorNone );
   EXPECT_EQ( helper->coppAllocateCpuQ( cd ), -1 );
   EXPECT_FALSE( helper->createAndAttachPolicer( cd ) );
   EXPECT_FALSE( helper->checkUserCoppEntryExists( queue ) );
   EXPECT_FALSE( helper->createCoppPolicerByPortQueue( queue ) );
   EXPECT_FALSE( helper->ipLenRangeSubruleExists( cd, ak, Acl::UniqueId( 1 ), 0, 0, 1, 2, true ) );
   EXPECT_EQ( helper->cpuQIdToClassMapName( 4 ), "" );
   EXPECT_EQ( helper->portToIntfName( 1, 2 ), "" );
   // The void ones return.
   helper->hwInit();
   helper->createDefaultCoppRates();
   helper->destroyAcl( *ps, cd, mo, ak );
   helper->cleanupAcl( *ps, cd, mo, ak );
   helper->updatePortForAcl( *ps, cd, mo, ak, intf( "Ethernet1" ), false );
   helper->coppDeallocateCpuQ( cd );
   helper->destroyPolicer( cd );
   helper->verifyPolicer( cd );
   EXPECT_FALSE( helper->dirty() ) << "a no-op answer is not a failure";
}

TEST_F( QosAclHelperDeathTest, TheNoOpSwitchIsReadOnEveryCall ) {
   setenv( "NEV_NOOP_AGENT", "0", 1 );
   EXPECT_EQ( helper->coppAllocateCpuQ( cd ), -1 );
   unsetenv( "NEV_NOOP_AGENT" );
   EXPECT_DEATH( helper->coppAllocateCpuQ( cd ),
                 HasSubstr( "Call to unimplemented function QosSm::coppAllocateCpuQ\n" ) );
}

TEST_F( QosAclHelperTest, DefaultsOfAChipThatOverridesNothing ) {
   auto const mo = Qos::matchOptionMac;
   Qos::ServicePolicyKey const sp( Qos::mapQos_, Qos::directionInput_, Zub::Name( "gold" ) );
   EXPECT_EQ( helper->aclGroup( intf( "Ethernet1" ), sp ), Zub::Name( "Default" ) );
   EXPECT_EQ( helper->defaultAclGroup(), Zub::Name( "Default" ) );
   // Success without doing anything; the MAC platform answer keeps MAC rules out.
   EXPECT_EQ( helper->precreateAcl( *ps, cd, mo, ak ), Nev::aclCreateErrorNone );
   EXPECT_EQ( helper->createMacAclRule( *ps, cd, mo, ak, 0 ), Nev::aclCreateErrorNone );
   EXPECT_EQ( helper->createBuiltInClassMatchRule( *ps, cd, mo, 0 ), Nev::aclCreateErrorNone );
   EXPECT_FALSE( helper->isMacAclRuleSupportedPlatform() );
   EXPECT_FALSE( helper->isSupportedMacAclRule( Acl::MacRuleConfig() ) );
   EXPECT_TRUE( helper->createSmForPMap( *ps ) );
   EXPECT_FALSE( helper->managedPrioritySupported( Qos::mapQos_ ) );
   EXPECT_TRUE( helper->multipleActionsSupported() );
   EXPECT_FALSE( helper->errorOnPolicerExhaustion() );
   EXPECT_TRUE( helper->policiesInStableState() );
   EXPECT_FALSE( helper->delaySviPmapSmCreation() );
   EXPECT_FALSE( helper->ipSubruleExists( cd, ak, Acl::UniqueId( 1 ), 0, 0 ) );
   EXPECT_EQ( helper->counterUpdateRequest( cd, ak ), Nev::QosClassCounterData() );
   // Capabilities and the base names of generated ACLs.
   EXPECT_FALSE( helper->asyncTcamOperationsSupported() );
   EXPECT_FALSE( helper->qosEcnSupport() );
   EXPECT_FALSE( helper->establishedSupported() );
   EXPECT_EQ( helper->supportedTcpFlags().value(), 0x3fu );
   EXPECT_EQ( helper->allTcpFlags().value(), 0x3fu );
   EXPECT_EQ( helper->defaultAclName(), Zub::Name( "acl-default" ) );
   EXPECT_EQ( helper->defaultIpv6AclName(), Zub::Name( "acl-default-ipv6" ) );
   EXPECT_EQ( helper->mplsTrafficClassAclName(), Zub::Name( "mpls-traffic-class-acl" ) );
   EXPECT_EQ( helper->mplsTrafficClassIpv6AclName(), Zub::Name( "mpls-traffic-class-acl-ipv6" ) );
   EXPECT_EQ( helper->builtInClassAclName(), Zub::Name( "built-in-class-acl" ) );
   EXPECT_EQ( helper->reprogramAllPMapsRequestTime(), 0.0 );
}

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

TEST_F( QosAclHelperDeathTest, AclNamesExistForIpTypesOnly ) {
   EXPECT_DEATH( helper->createAclName( Acl::mac(), Qos::matchOptionMac, 1 ),
                 HasSubstr( "Assertion" ) );
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

// A chip that batches per policy map only.
class MapBatchingHelper : public QosAclHelper {
 public:
   using QosAclHelper::QosAclHelper;
   void batchCommitAcls( Nev::QosPolicyMapState const& pmapState ) override {
      batched.push_back( pmapState.key() );
   }
   std::vector< QosPolicyMapKey > batched;
};

TEST_F( QosAclHelperTest, APerInterfaceBatchIsAPlainBatchByDefault ) {
   auto chip =
         Zub::make< MapBatchingHelper >( helper->qosStatus(), sliceHw, helper->mainAclConfig() );
   auto state = chip->pmapStateIs( gold );
   chip->batchCommitAclsIntf( *state, intf( "Ethernet1" ), true );
   chip->batchCommitAclsIntf( *state, intf( "Ethernet2" ), false );
   EXPECT_EQ( chip->batched, ( std::vector< QosPolicyMapKey >{ gold, gold } ) );
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

TEST_F( QosAclHelperDeathTest, AStatusReportNeedsTheStatusToExist ) {
   EXPECT_DEATH( helper->qosAclStatusUpdateCallback( gold, Qos::hwPrgmStatusFail_ ),
                 HasSubstr( "Assertion `pmapHwStatusType' failed" ) );
   sliceHw->pmapTypeIs( Qos::mapQos_ );
   EXPECT_DEATH( helper->qosAclStatusUpdateCallback( gold, Qos::hwPrgmStatusFail_ ),
                 HasSubstr( "Assertion `pmapHwStatus' failed" ) );
}

TEST_F( QosAclHelperTest, PolicyMapStateIsKeptByTheHelper ) {
   EXPECT_EQ( ps->key(), gold );
   EXPECT_EQ( ps->pmapAclTypes(), Nev::ipv4Only );
   ps->versionIs( 7 );
   // Asking again gives the same state, with what the engine left in it.
   EXPECT_EQ( helper->pmapStateIs( gold ), ps );
   EXPECT_EQ( helper->pmapState( gold )->version(), 7u );
   helper->pmapStateDel( gold );
   EXPECT_EQ( helper->pmapState( gold ), nullptr );
}

TEST_F( QosAclHelperTest, RateAndBurstConversionsAreTheLibrarys ) {
   EXPECT_EQ( helper->getRateParamInKbps( Qos::rateUnitMbps_, 3 ), 3000u );
   EXPECT_EQ( helper->getBurstParamInKbits( Qos::burstUnitKbytes_, 3 ), 24u );
   EXPECT_EQ( helper->getBurstParamInBytes( Qos::burstUnitKbytes_, 9 ), 9000u );
}

}  // namespace
