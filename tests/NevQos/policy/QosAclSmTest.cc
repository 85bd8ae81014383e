// The policy engine driven through its inputs, checked by the helper's call stream, the status
// entities and the system log.
#include "support/QosAclSmFixture.h"

#include <algorithm>

#include "NevQos/platform/nev/AclData.h"
#include "NevQos/policy/QosPolicyMapSm.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;

class QosAclSmTest : public QosAclSmFixture {
 protected:
   // Every recorded call as its line.
   Lines calls() const {
      Lines lines;
      for( Sim::ChipCall const& call : helper->calls() )
         lines.push_back( Sim::callText( call ) );
      return lines;
   }
   // The chip puts every interface in the default ACL group; the second interface a service
   // policy asks about goes to `group` instead.
   void secondIntfGroupIs( char const* group ) {
      helper->forwardEnq( "aclGroup" );
      helper->answerEnq( "aclGroup", Zub::Name( group ) );
   }
};

// ---- start-up ----

TEST_F( QosAclSmTest, StartUpInitialisesTheChipSweepsStaleStatusAndStatesTheVersion ) {
   // A hardware status left by an earlier life of the agent: one entry still configured, one
   // not.
   servicePolicyIs( "gold", 1, { "Ethernet1" } );
   auto typeStatus = qosAclSliceHwStatus->pmapTypeIs( Qos::mapQos_ );
   auto stale = Qos::PolicyMapHwStatusKey( Qos::directionInput_, Zub::Name( "old" ) );
   typeStatus->pmapIs( stale );
   typeStatus->pmapIs( Qos::PolicyMapHwStatusKey( Qos::directionInput_, Zub::Name( "gold" ) ) )
         ->prgmStatusIs( Qos::hwPrgmStatusSuccess_ );
   qosStatus->configVersionUpdateTimeIs( 42.0 );

   start();
   ASSERT_FALSE( calls().empty() );
   EXPECT_EQ( calls().front(), "hwInit" );
   EXPECT_FALSE( typeStatus->pmapHas( stale ) );
   ASSERT_TRUE( hwStatus( "gold" ) );
   EXPECT_EQ( hwStatus( "gold" )->prgmStatus(), Qos::hwPrgmStatusSuccess_ );
   EXPECT_TRUE( sm->servicePolicySm( spKey( "gold" ) ) );
   EXPECT_TRUE( sm->aclTypeConfigSm( Acl::AclType( 0 ) ) );
   EXPECT_TRUE( sm->aclTypeConfigSm( Acl::AclType( 1 ) ) );
   EXPECT_DOUBLE_EQ( qosAclSliceHwStatus->configVersionUpdateTime(), 42.0 );
   EXPECT_TRUE( sm->verifyPolicy() );
}

TEST_F( QosAclSmTest, WithoutQosFeaturesOnlyTheChipIsInitialised ) {
   qosAclHwStatus->policyQosSupportedIs( false );
   servicePolicyIs( "gold", 1, { "Ethernet1" } );
   start();
   EXPECT_EQ( calls(), Lines{ "hwInit" } );
   EXPECT_FALSE( sm->servicePolicySm( spKey( "gold" ) ) );
   EXPECT_FALSE( sm->verifyPolicy() );
}

TEST_F( QosAclSmTest, PdpModeAttachesEveryEthernetToTheDefaultPolicy ) {
   hwEpochStatus->pdpModeEnabledIs( true );
   start();
   auto config = sm->pdpDfltSPConfig();
   ASSERT_TRUE( config );
   EXPECT_EQ( config->key(), Qos::ServicePolicyKey( Qos::mapPdp_, Qos::Direction( 0 ),
                                                    Zub::Name( "default-pdp-policy" ) ) );
   EXPECT_EQ( pdpHwCfg->configPriority(), 90u );
   EXPECT_EQ( config->intfIdsSize(), 2u );
   ncsd->intfIs( Mirel::IntfId( "Ethernet3" ), true );
   ncsd->intfIs( Mirel::IntfId( "Ethernet1.10" ), true );  // subinterfaces stay out
   ncsd->intfDel( Mirel::IntfId( "Ethernet1" ) );
   EXPECT_TRUE( config->intfIdsHas( Mirel::IntfId( "Ethernet3" ) ) );
   EXPECT_FALSE( config->intfIdsHas( Mirel::IntfId( "Ethernet1.10" ) ) );
   EXPECT_FALSE( config->intfIdsHas( Mirel::IntfId( "Ethernet1" ) ) );
}

TEST_F( QosAclSmTest, CopySystemPolicyIsNotSupportedWithPerInterfaceCopp ) {
   qosAclHwStatus->intfCoppSupportedIs( true );
   start();
   EXPECT_FALSE(
         sm->policyMapSupported( Qos::mapControlPlane_, Zub::Name( "copp-system-policy" ) ) );
   EXPECT_TRUE( sm->policyMapSupported( Qos::mapControlPlane_, Zub::Name( "other" ) ) );
   helper->asyncTcamOperationsSupportedIs( true );
   EXPECT_FALSE( sm->policyMapSupported( Qos::mapControlPlane_, Zub::Name( "other" ) ) );
}

// ---- synchronous road: service policies and policy maps ----

TEST_F( QosAclSmTest, AServicePolicyCompilesOneMapPerAclGroupAndReportsSuccess ) {
   start();
   secondIntfGroupIs( "grp2" );
   helper->callsForget();
   servicePolicyIs( "gold", 2, { "Ethernet1", "Ethernet2" } );
   auto spSm = sm->servicePolicySm( spKey( "gold" ) );
   ASSERT_TRUE( spSm );
   EXPECT_EQ( spSm->pmapSmSize(), 2u );
   EXPECT_TRUE( spSm->pmapSm( pmapKey( "gold", "grp2" ) ) );
   EXPECT_EQ( hwStatus( "gold" )->prgmStatus(), Qos::hwPrgmStatusSuccess_ );
   EXPECT_FALSE( helper->callsMatching( "batchCommitAcls" ).empty() );
   EXPECT_TRUE( helper->pmapState( pmapKey( "gold" ) )->readyToVerify() );
}

TEST_F( QosAclSmTest, RemovingTheLastInterfaceOfAGroupRetiresItsMap ) {
   start();
   secondIntfGroupIs( "grp2" );
   helper->answerIs( "managedPrioritySupported", true );
   auto status = servicePolicyIs( "gold", 1, { "Ethernet1", "Ethernet2" } );
   auto spSm = sm->servicePolicySm( spKey( "gold" ) );
   ASSERT_EQ( spSm->pmapSmSize(), 2u );
   helper->callsForget();
   status->intfIdsDel( intf( "Ethernet2" ) );
   EXPECT_FALSE( spSm->pmapSm( pmapKey( "gold", "grp2" ) ) );
   EXPECT_FALSE( helper->pmapState( pmapKey( "gold", "grp2" ) ) );
   EXPECT_TRUE( spSm->pmapSm( pmapKey( "gold" ) ) );
   // The record names the map with its group, other than the default one.
   EXPECT_TRUE( helper->pmapState( pmapKey( "gold" ) ) );
   EXPECT_EQ( helper->callsMatching( "cleanupForPMap" ),
              Lines{ "cleanupForPMap pmapKey=gold(qos,input,grp2)" } );
   EXPECT_TRUE( helper->callsMatching( "batchCommitAclsIntf" ).empty() )
         << "the child was deleted, not told of the interface";
}

// Records every programming status a policy map's hardware status goes through.
class PrgmStatusRecorder : public Qos::PolicyMapHwStatus::Notifiee {
 public:
   void onPrgmStatus() override { seen.push_back( notifier()->prgmStatus() ); }
   std::vector< Qos::PolicyMapHwPrgmStatus > seen;
};

TEST_F( QosAclSmTest, TooManyClassesFailWithoutALogOrDirtyMark ) {
   sliceHwStatus->maxClassesPerPolicyMapIs( 3 );
   start();
   servicePolicyIs( "fits", 2, { "Ethernet1" } );  // 2 classes + class-default = 3
   EXPECT_EQ( hwStatus( "fits" )->prgmStatus(), Qos::hwPrgmStatusSuccess_ );

   auto recorder = Zub::make< PrgmStatusRecorder >();
   recorder->notifierIs(
         qosAclSliceHwStatus->pmapTypeIs( Qos::mapQos_ )
               ->pmapIs( Qos::PolicyMapHwStatusKey( Qos::directionInput_, Zub::Name( "big" ) ) ) );
   recorder->seen.clear();
   helper->callsForget();
   auto status = servicePolicyIs( "big", 3, { "Ethernet1" } );
   status->intfIdsIs( intf( "Ethernet2" ), true );
   status->intfIdsDel( intf( "Ethernet1" ) );
   // Until its first interface the policy has nothing to program; from the compile on, the
   // failure stands, and no interface update after it writes success over it.
   auto const& seen = recorder->seen;
   auto const failed = std::find( seen.begin(), seen.end(), Qos::hwPrgmStatusFail_ );
   ASSERT_NE( failed, seen.end() );
   EXPECT_EQ( std::count( seen.begin(), failed, Qos::hwPrgmStatusFail_ ), 0 );
   EXPECT_EQ( std::count( failed, seen.end(), Qos::hwPrgmStatusSuccess_ ), 0 );
   EXPECT_EQ( hwStatus( "big" )->prgmStatus(), Qos::hwPrgmStatusFail_ );
   EXPECT_EQ( hwStatus( "big" )->prgmStatusErrMessage(), "Insufficient hardware resources" );
   EXPECT_FALSE( helper->pmapState( pmapKey( "big" ) )->dirty() );
   EXPECT_TRUE( helper->callsMatching( "batchCommitAclsIntf" ).empty() ) << "nothing to move";

   // A budget that allows the map is taken at the next change.
   sliceHwStatus->maxClassesPerPolicyMapIs( 4 );
   status->intfIdsIs( intf( "Ethernet1" ), true );
   EXPECT_EQ( hwStatus( "big" )->prgmStatus(), Qos::hwPrgmStatusSuccess_ );
   EXPECT_EQ(
         sm->servicePolicySm( spKey( "big" ) )->pmapSm( pmapKey( "big" ) )->policyClassSmSize(),
         3u );
}

TEST_F( QosAclSmTest, AFailedMapOfASelfReportingChipIsVerifiedWithoutTheStatusItOwns ) {
   qosAclHwStatus->selfReportedPrgmStatusIs( true );
   start();
   ipAclIs( "v4", { Acl::IpRuleConfig() } );
   classMapIs( "c1", { { Qos::matchOptionIpAcl, "v4" } } );
   classIs( "gold", "c1" );
   auto status = applyIs( "gold", { intf( "Ethernet1" ) } );
   loop->runUntilIdle();
   // A new version that the chip can't take, with no interface change after it: the engine
   // leaves the status to the chip, which has said nothing yet.
   helper->answerIs( "commitAcl", Nev::aclCreateErrorOutOfTcam );
   policyMap( "gold" )->versionIs( 2 );
   status->versionIs( 2 );
   loop->runUntilIdle();
   takeLogs();
   ASSERT_EQ( hwStatus( "gold" )->prgmStatus(), Qos::hwPrgmStatusInProgress_ );
   ASSERT_TRUE( helper->pmapState( pmapKey( "gold" ) )->readyToVerify() );
   sm->schedulePolicyVerify();
   sm->handleVerify();
   EXPECT_FALSE( sm->verifyPolicy() ) << "the run went through";
}

TEST_F( QosAclSmTest, ExhaustionLogsFullOnceRemovesTheMapAndRecoveryLogsNormalOnce ) {
   start();
   servicePolicyIs( "gold", 1, { "Ethernet1" } );
   auto pmapSm = sm->servicePolicySm( spKey( "gold" ) )->pmapSm( pmapKey( "gold" ) );
   helper->callsForget();

   // A compile step runs out of TCAM.
   EXPECT_TRUE( sm->updatePolicyMapErrorState( Nev::aclCreateErrorOutOfTcam, pmapKey( "gold" ),
                                               nullptr ) );
   EXPECT_TRUE( helper->dirty() );
   EXPECT_EQ( takeLogs(), Lines{ "QOS_POLICY_HW_RESOURCE_FULL: Insufficient hardware resources to "
                                 "program the input policy-map gold." } );
   EXPECT_TRUE( helper->unableToProgram( spKey( "gold" ) ) );
   EXPECT_EQ( qosAclSliceHwStatus->status(), Qos::HwProgrammingStatus( 0 ) );
   EXPECT_TRUE( calls().empty() ) << "the cleanup waits for the next turn";
   loop->runOnce();
   EXPECT_EQ( helper->callsMatching( "cleanupForPMap" ),
              Lines{ "cleanupForPMap pmapKey=gold(qos,input)" } );
   sm->setPolicyMapHwPrgmStatus( pmapKey( "gold" ) );
   EXPECT_EQ( hwStatus( "gold" )->prgmStatus(), Qos::hwPrgmStatusFail_ );

   // A new version compiles cleanly: one NORMAL, and the mark is gone.
   policyMap( "gold" )->versionIs( 2 );
   qosStatus->servicePolicyStatus( spKey( "gold" ) )->versionIs( 2 );
   EXPECT_EQ( hwStatus( "gold" )->prgmStatus(), Qos::hwPrgmStatusSuccess_ );
   EXPECT_EQ( hwStatus( "gold" )->prgmStatusErrMessage(), "Insufficient hardware resources" );
   EXPECT_EQ( hwStatus( "gold" )->version(), 2u );
   EXPECT_EQ( takeLogs(), Lines{ "QOS_POLICY_HW_RESOURCE_NORMAL: Programmed input policy-map "
                                 "gold in hardware." } );
   EXPECT_FALSE( helper->unableToProgramHas( spKey( "gold" ) ) );
   sm->setPolicyMapHwPrgmStatus( pmapKey( "gold" ) );
   EXPECT_TRUE( takeLogs().empty() );
   EXPECT_EQ( pmapSm, sm->servicePolicySm( spKey( "gold" ) )->pmapSm( pmapKey( "gold" ) ) );
}

TEST_F( QosAclSmTest, DeferredDeletionDoesNothingOnceTheMapIsClean ) {
   start();
   servicePolicyIs( "gold", 1, { "Ethernet1" } );
   sm->updatePolicyMapErrorState( Nev::aclCreateErrorOutOfTcam, pmapKey( "gold" ), nullptr );
   takeLogs();
   helper->pmapState( pmapKey( "gold" ) )->dirtyIs( false );  // a rebuild came first
   helper->callsForget();
   loop->runUntilIdle();
   EXPECT_TRUE( calls().empty() );
}

TEST_F( QosAclSmTest, IgnoredErrorsAreNotFailures ) {
   start();
   servicePolicyIs( "gold", 1, { "Ethernet1" } );
   auto aclData = Zub::make< Nev::AclData >( Nev::AclKey( Zub::Name( "a" ), Acl::ip() ) );
   aclData->dirtyIs( true );
   EXPECT_FALSE( sm->updatePolicyMapErrorState( Nev::aclCreateErrorRuleIgnored, pmapKey( "gold" ),
                                                aclData ) );
   EXPECT_FALSE( aclData->dirty() );
   // An error for a map without state: the helper is dirty, the result true, nothing fires.
   EXPECT_TRUE( sm->updatePolicyMapErrorState( Nev::aclCreateErrorOutOfTcam, pmapKey( "none" ),
                                               aclData ) );
   EXPECT_TRUE( aclData->dirty() );
   EXPECT_TRUE( helper->dirty() );
}

TEST_F( QosAclSmTest, TwoGroupsOneDirtyFailsTheServicePolicyButTheCleanOneIsVerifiable ) {
   start();
   secondIntfGroupIs( "grp2" );
   servicePolicyIs( "gold", 1, { "Ethernet1", "Ethernet2" } );
   helper->pmapState( pmapKey( "gold", "grp2" ) )->dirtyIs( true );
   takeLogs();
   helper->pmapState( pmapKey( "gold" ) )->readyToVerifyIs( false );
   sm->setPolicyMapHwPrgmStatus( pmapKey( "gold" ) );
   EXPECT_EQ( hwStatus( "gold" )->prgmStatus(), Qos::hwPrgmStatusFail_ );
   EXPECT_TRUE( helper->pmapState( pmapKey( "gold" ) )->readyToVerify() );
}

TEST_F( QosAclSmTest, AParkedSviIsReleasedByTheFirstInterfaceToArrive ) {
   ncsd->intfsReadyIs( false );
   helper->answerIs( "delaySviPmapSmCreation", true );
   start();
   servicePolicyIs( "gold", 1, { "Vlan10" } );
   EXPECT_TRUE( sm->delayedSviIntfId().has( intf( "Vlan10" ) ) );
   auto spSm = sm->servicePolicySm( spKey( "gold" ) );
   EXPECT_EQ( spSm->pmapSmSize(), 0u );
   ncsd->intfDel( Mirel::IntfId( "Ethernet2" ) );  // a removal releases nothing
   EXPECT_TRUE( sm->delayedSviIntfId().has( intf( "Vlan10" ) ) );
   ncsd->intfIs( Mirel::IntfId( "Ethernet7" ), true );
   EXPECT_TRUE( sm->delayedSviIntfId().empty() );
   EXPECT_EQ( spSm->pmapSmSize(), 1u );
}

TEST_F( QosAclSmTest, RemovingTheServicePolicyDeletesItsMachineAndStatus ) {
   start();
   servicePolicyIs( "gold", 1, { "Ethernet1" } );
   qosStatus->servicePolicyStatusDel( spKey( "gold" ) );
   EXPECT_FALSE( sm->servicePolicySm( spKey( "gold" ) ) );
   EXPECT_FALSE( hwStatus( "gold" ) );
   EXPECT_FALSE( helper->pmapState( pmapKey( "gold" ) ) );
}

TEST_F( QosAclSmTest, ACounterRequestStartsFromClearedClassCounters ) {
   start();
   servicePolicyIs( "gold", 1, { "Ethernet1" } );
   auto cmap = hwStatus( "gold" )->cmapIs( Zub::Name( "gold-class0" ) );
   auto policer = cmap->policerHwStatusIs( Zub::Name( "p" ) );
   cmap->outCountIs( 5 );
   cmap->dropBytesIs( 6 );
   policer->pktInCountIs( 7 );
   policer->yellowByteInCountIs( 8 );
   sm->servicePolicySm( spKey( "gold" ) )->counterUpdateRequest();
   EXPECT_EQ( cmap->outCount() + cmap->dropBytes(), 0u );
   EXPECT_EQ( policer->pktInCount() + policer->yellowByteInCount(), 0u );
}

// ---- asynchronous road: the update queue ----

class QosAclSmAsyncTest : public QosAclSmTest {
 protected:
   // A chip that completes each TCAM operation `delay` seconds after the call.
   void startAsync( Zub::Seconds delay = 0.5, std::vector< Sim::FaultConfig > faults = {} ) {
      Sim::ChipConfig config;
      config.tcamMode = Sim::TcamMode::asynchronous;
      config.asyncDelay = delay;
      config.faults = std::move( faults );
      chipIs( config );
      start();
      servicePolicyIs( "gold", 1, { "Ethernet1" } );
      loop->runUntilIdle();
      helper->callsForget();
   }
};

TEST_F( QosAclSmAsyncTest, IdenticalRequestsInARowEnterOnce ) {
   startAsync();
   auto a = aclRequest( Nev::updateReasonAclChange, "acl-a", false );
   auto b = aclRequest( Nev::updateReasonAclChange, "acl-b", false );
   sm->enqueueRequestIs( a );
   sm->enqueueRequestIs( a );
   EXPECT_EQ( sm->pendingPolicyUpdate().size(), 1u );
   sm->enqueueRequestIs( b );
   sm->enqueueRequestIs( a );
   EXPECT_EQ( sm->pendingPolicyUpdate().size(), 3u );
}

TEST_F( QosAclSmAsyncTest, OneOperationInFlightAndTheResultWakesTheQueue ) {
   startAsync( 20.0 );  // longer than the wait below
   sm->pendingOperationTimeoutIs( 30.0 );
   sm->enqueueRequestIs( aclRequest( Nev::updateReasonAclChange, "acl-a", false ) );
   EXPECT_TRUE( calls().empty() ) << "served on a later turn";
   loop->runOnce();
   EXPECT_EQ(
         calls(),
         ( Lines{ "precreateAcl classData=gold(qos,input)/gold-class0/Default aclKey=acl-a(ip) "
                  "matchOption=matchOptionIpAcl",
                  "commitAcl classData=gold(qos,input)/gold-class0/Default aclKey=acl-a(ip)" } ) );
   EXPECT_EQ( sm->asyncState(), Nev::asyncInProgress );
   sm->enqueueRequestIs(
         aclRequest( Nev::updateReasonIntfChange, "acl-a", false, intf( "Ethernet2" ) ) );
   helper->callsForget();
   loop->runUntil( loop->now() + 10.0 );
   EXPECT_TRUE( calls().empty() ) << "the second request waits for the result";

   helper->asyncOperationResultIs( Nev::AsyncOperationResult( "", 0.0 ) );  // no result
   EXPECT_EQ( sm->asyncState(), Nev::asyncInProgress );
   loop->runOnce();  // the next timer: the chip's result, 20 s after the commit
   EXPECT_EQ( sm->asyncState(), Nev::asyncNone );
   EXPECT_EQ( sm->error(), "" ) << "the chip's result reports success";
   EXPECT_EQ( helper->asyncOperationResult().time(), 0.0 ) << "cleared for the next result";
   EXPECT_EQ( hwStatus( "gold" )->prgmStatus(), Qos::hwPrgmStatusSuccess_ );
   loop->runOnce();
   EXPECT_EQ( calls(), ( Lines{ "updatePortForAcl classData=gold(qos,input)/gold-class0/Default "
                                "aclKey=acl-a(ip) intfPair=Ethernet2 add=true" } ) );
}

TEST_F( QosAclSmAsyncTest, AFailedOperationsResultBecomesTheEngineError ) {
   // The chip's successful results carry no message: a refused commit shows that the engine
   // takes the result's message as its error.
   Sim::FaultConfig refusal;
   refusal.op = "commitAcl";
   refusal.nth = 1;
   startAsync( 20.0, { refusal } );
   sm->enqueueRequestIs( aclRequest( Nev::updateReasonAclChange, "acl-a", false ) );
   loop->runOnce();
   ASSERT_EQ( helper->callsMatching( "commitAcl" ).size(), 1u );
   EXPECT_EQ( sm->error(), "" ) << "nothing heard yet";
   loop->runUntil( loop->now() + 20.0 );  // the chip's result
   EXPECT_EQ( sm->asyncState(), Nev::asyncNone );
   EXPECT_EQ( sm->error(), Nev::aclCreateErrorText( Nev::aclCreateErrorOutOfTcam ) );
   // The chip marked the map failed when it took the commit.
   EXPECT_EQ( takeLogs(), Lines{ "QOS_POLICY_HW_RESOURCE_FULL: Insufficient hardware resources "
                                 "to program the input policy-map gold." } );
}

TEST_F( QosAclSmAsyncTest, TheTimeOutActsOnlyOnAPendingOperation ) {
   startAsync( 1000.0 );  // no result within the test
   sm->pendingOperationTimeoutIs( 5.0 );
   sm->enqueueRequestIs( aclRequest( Nev::updateReasonAclChange, "acl-a", false ) );
   loop->runOnce();
   helper->callsForget();
   loop->runUntil( loop->now() + 60.0 );
   EXPECT_EQ( sm->asyncState(), Nev::asyncInProgress ) << "in progress is never abandoned";
   EXPECT_TRUE( calls().empty() );

   sm->asyncStateIs( Nev::asyncPending );
   sm->pendingOperationTimeoutClock()->timeMinIs( loop->now() );
   loop->runOnce();
   EXPECT_EQ( calls(), Lines{ "handlePendingOperationTimeout" } );
   EXPECT_EQ( sm->error(), "Hardware commit timed out" );
   EXPECT_EQ( sm->asyncState(), Nev::asyncNone );
}

TEST_F( QosAclSmAsyncTest, RemovingAnAclThatNeverReachedTheChipSkipsDestroyButCleansUp ) {
   startAsync();
   auto remove = aclRequest( Nev::updateReasonAclChange, "acl-a", true );
   auto matchData = classData->matchData( Qos::matchOptionIpAcl );
   ASSERT_EQ( matchData->aclData( Nev::AclKey( Zub::Name( "acl-a" ), Acl::ip() ) )->aclNumber(),
              -1 );
   sm->enqueueRequestIs( remove );
   loop->runOnce();
   EXPECT_EQ(
         calls(),
         Lines{ "cleanupAcl classData=gold(qos,input)/gold-class0/Default aclKey=acl-a(ip)" } );
   EXPECT_EQ( sm->asyncState(), Nev::asyncNone );
   EXPECT_FALSE( classData->matchDataHas( Qos::matchOptionIpAcl ) );
}

TEST_F( QosAclSmAsyncTest, RemovingAProgrammedAclDestroysItThenCleansUpOnTheResult ) {
   startAsync();
   auto remove = aclRequest( Nev::updateReasonAclChange, "acl-a", true );
   auto aclData = classData->matchData( Qos::matchOptionIpAcl )
                        ->aclData( Nev::AclKey( Zub::Name( "acl-a" ), Acl::ip() ) );
   aclData->aclNumberIs( 0x307 );
   aclData->installedIs( true );
   sm->enqueueRequestIs( remove );
   loop->runOnce();
   EXPECT_EQ(
         calls(),
         Lines{ "destroyAcl classData=gold(qos,input)/gold-class0/Default aclKey=acl-a(ip)" } );
   loop->runUntil( loop->now() + 0.5 );  // the chip's result
   ASSERT_FALSE( calls().empty() );
   EXPECT_EQ( calls().back(),
              "cleanupAcl classData=gold(qos,input)/gold-class0/Default aclKey=acl-a(ip)" );
   EXPECT_EQ( aclData->aclNumber(), -1 );
   EXPECT_TRUE( aclData->dirty() );
   EXPECT_FALSE( aclData->installed() );
   EXPECT_FALSE( classData->matchDataHas( Qos::matchOptionIpAcl ) );
}

TEST_F( QosAclSmAsyncTest, APassYieldsAfterItsBudgetOfSynchronousCompletions ) {
   startAsync();
   // A chip whose cleanups take simulated time, so that a drain pass meets its budget. The lists
   // never reached the chip: its own cleanup would have nothing to free.
   helper->actionIs( "cleanupAcl",
                     [] { Zub::activityManager()->timeIs( Zub::System::currentTime() + 0.3 ); } );
   for( char const* name : { "a1", "a2", "a3", "a4", "a5", "a6" } ) {
      classData = nullptr;  // each removal ends its own class's match data
      sm->enqueueRequestIs( aclRequest( Nev::updateReasonAclChange, name, true ) );
   }
   ASSERT_EQ( sm->pendingPolicyUpdate().size(), 6u );
   loop->runOnce();
   // 0.3 s each: the fourth request starts at 0.9 s, before the 1.0 s deadline, and ends it.
   EXPECT_EQ( helper->callsMatching( "cleanupAcl" ).size(), 4u );
   EXPECT_EQ( sm->pendingPolicyUpdate().size(), 2u );
   EXPECT_TRUE( sm->tcamRequestClock()->timeMin() <= loop->now() ) << "the drain yielded";
   loop->runOnce();
   EXPECT_EQ( sm->pendingPolicyUpdate().size(), 0u );
}

TEST_F( QosAclSmAsyncTest, ConfigVersionIsStatedAfterEverythingQueuedBeforeIt ) {
   startAsync();
   sm->enqueueRequestIs( aclRequest( Nev::updateReasonAclChange, "acl-a", false ) );
   qosStatus->configVersionUpdateTimeIs( 7.0 );
   EXPECT_EQ( sm->pendingPolicyUpdate().size(), 2u );
   loop->runOnce();
   EXPECT_NE( qosAclSliceHwStatus->configVersionUpdateTime(), 7.0 );
   loop->runUntil( loop->now() + 0.5 );  // the chip's result, then the version's turn
   EXPECT_DOUBLE_EQ( qosAclSliceHwStatus->configVersionUpdateTime(), 7.0 );
}

TEST_F( QosAclSmAsyncTest, ADeletedServicePolicyGoesAtOnceAndMayComeBackBeforeTheQueueIsServed ) {
   startAsync();
   auto const old = sm->servicePolicySm( spKey( "gold" ) );
   qosStatus->servicePolicyStatusDel( spKey( "gold" ) );
   EXPECT_FALSE( sm->servicePolicySm( spKey( "gold" ) ) );
   EXPECT_FALSE( hwStatus( "gold" ) );
   EXPECT_EQ( sm->pendingPolicyUpdate().size(), 1u ) << "the map's leaving, still to be served";

   qosStatus->servicePolicyStatusIs( spKey( "gold" ) )->intfIdsIs( intf( "Ethernet1" ), true );
   auto const again = sm->servicePolicySm( spKey( "gold" ) );
   ASSERT_TRUE( again );
   EXPECT_NE( again, old );
   loop->runUntilIdle();
   EXPECT_EQ( sm->asyncState(), Nev::asyncNone );
   EXPECT_TRUE( again->pmapSm( pmapKey( "gold" ) ) ) << "the queue leaves the new map alone";
   EXPECT_EQ( hwStatus( "gold" )->prgmStatus(), Qos::hwPrgmStatusSuccess_ );
}

}  // namespace
}  // namespace NevQosTest
