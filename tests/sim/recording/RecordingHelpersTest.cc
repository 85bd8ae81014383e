// The recording decorators over the reference chip and over helpers of the tests' own: the wrapped
// helper answering unless a scripted answer stands in, asynchronous results through the
// decorator, the engine's per-map state, the counting mode, and the calls of several helpers
// recorded in order with their argument texts.
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "NevQos/sim/chip/ChipText.h"
#include "NevQos/sim/chip/SimCbfFecMappingHelper.h"
#include "NevQos/sim/chip/SimQosBasicHelper.h"
#include "NevQos/sim/recording/RecordingCbfFecMappingHelper.h"
#include "NevQos/sim/recording/RecordingQosAclHelper.h"
#include "NevQos/sim/recording/RecordingQosBasicHelper.h"
#include "NevQos/types/QosClassData.h"
#include "support/QosAclSmFixture.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;

// An ACL helper of the test's own: it answers every question "yes" and reports an asynchronous
// result when the test says so.
class PlainAclHelper : public NevHelper::QosAclHelper {
 public:
   using QosAclHelper::QosAclHelper;
   bool createAndAttachPolicer( Nev::QosClassData const& ) override { return true; }
   int coppAllocateCpuQ( Nev::QosClassData const& ) override { return 7; }
   void coppDeallocateCpuQ( Nev::QosClassData const& ) override { ++deallocated; }
   int deallocated = 0;
   void complete( char const* message, Zub::Seconds t ) {
      asyncOperationResultIs( Nev::AsyncOperationResult( Zub::String( message ), t ) );
   }
};

// Hears every asynchronous result written into the helper it watches.
class ResultLog : public Nev::NevAsyncBaseHelper::Notifiee {
 public:
   void onAsyncOperationResult() override {
      auto const r = notifier()->asyncOperationResult();
      if( r.time() != 0.0 ) heard.push_back( r.message().stdString() );
   }
   Lines heard;
};

class RecordingHelpersTest : public QosAclSmFixture {
 protected:
   // The decorator over a helper of the test's own, and a class to ask it about.
   Zub::Ptr< Sim::RecordingQosAclHelper > plain() {
      classData = Zub::make< Nev::QosClassData >(
            Nev::QosClassDataKey( pmapKey( "gold" ), Zub::Name( "c1" ), Qos::mapQos_,
                                  Nev::QosClassDataKey::defaultPolicerName() ) );
      auto inner = Zub::make< PlainAclHelper >( qosStatus, qosAclSliceHwStatus, mainAclConfig );
      return Zub::make< Sim::RecordingQosAclHelper >( inner, clock );
   }
};

TEST_F( RecordingHelpersTest, QueuedAnswersGoFirstThenTheStandingOneThenTheWrappedHelper ) {
   auto const rec = plain();
   Nev::QosClassData const& data = *classData;
   // In the queue, 0 stands for a turn of the wrapped helper.
   struct Case {
      char const* what;
      std::vector< int > queued;
      std::optional< int > standing;
      std::vector< int > answers;
   };
   for( Case const& c : std::vector< Case >{
              { "the helper alone", {}, std::nullopt, { 7, 7 } },
              { "queued, once each", { 1, 2 }, std::nullopt, { 1, 2, 7 } },
              { "standing", {}, 3, { 3, 3 } },
              { "queued before standing", { 1 }, 3, { 1, 3, 3 } },
              { "a turn of the helper in the queue", { 1, 0, 2 }, 3, { 1, 7, 2, 3 } } } ) {
      rec->answerDel( "coppAllocateCpuQ" );
      for( int q : c.queued ) {
         if( q == 0 ) {
            rec->forwardEnq( "coppAllocateCpuQ" );
         } else {
            rec->answerEnq( "coppAllocateCpuQ", q );
         }
      }
      if( c.standing ) rec->answerIs( "coppAllocateCpuQ", *c.standing );
      std::vector< int > got;
      for( std::size_t i = 0; i < c.answers.size(); ++i )
         got.push_back( rec->coppAllocateCpuQ( data ) );
      EXPECT_EQ( got, c.answers ) << c.what;
   }
}

TEST_F( RecordingHelpersTest, AScriptedActionStandsInForTheHelperWhereNothingIsAnswered ) {
   auto inner = Zub::make< PlainAclHelper >( qosStatus, qosAclSliceHwStatus, mainAclConfig );
   auto const rec = Zub::make< Sim::RecordingQosAclHelper >( inner, clock );
   plain();  // the class to ask about
   int ran = 0;
   rec->actionEnq( "coppDeallocateCpuQ", [ &ran ] { ++ran; } );
   rec->coppDeallocateCpuQ( *classData );
   rec->coppDeallocateCpuQ( *classData );
   EXPECT_EQ( ran, 1 );
   EXPECT_EQ( inner->deallocated, 1 );
   // Both calls are recorded all the same.
   EXPECT_EQ( rec->callsMatching( "coppDeallocateCpuQ" ).size(), 2u );
}

TEST_F( RecordingHelpersTest, AMisspeltOperationOrAnAnswerOfTheWrongTypeThrows ) {
   auto const rec = plain();
   EXPECT_THROW( rec->answerIs( "createIpAclSubRule", Nev::aclCreateErrorNone ),
                 std::invalid_argument );
   EXPECT_THROW( rec->answerEnq( "coppAllocateCpuQ", true ), std::invalid_argument );
   // An operation that answers nothing takes no answer.
   EXPECT_THROW( rec->answerIs( "destroyAcl", true ), std::invalid_argument );
   EXPECT_THROW( rec->answerDel( "noSuchOperation" ), std::invalid_argument );
   EXPECT_THROW( rec->forwardEnq( "noSuchOperation" ), std::invalid_argument );
   EXPECT_THROW( rec->actionIs( "createAndAttachPolicer", [] {} ), std::invalid_argument );
   EXPECT_NO_THROW( rec->answerIs( "createAndAttachPolicer", false ) );
   EXPECT_FALSE( rec->createAndAttachPolicer( *classData ) );
}

TEST_F( RecordingHelpersTest, TheWrappedHelpersAsynchronousResultsReachTheDecoratorEachTime ) {
   auto inner = Zub::make< PlainAclHelper >( qosStatus, qosAclSliceHwStatus, mainAclConfig );
   inner->asyncTcamOperationsSupportedIs( true );
   inner->qosEcnSupportIs( true );
   inner->vlanAclNameIs( Zub::Name( "vlan-x" ) );
   auto const rec = Zub::make< Sim::RecordingQosAclHelper >( inner, clock );
   // The capabilities a driver sets in its constructor are the decorator's too.
   EXPECT_TRUE( rec->asyncTcamOperationsSupported() );
   EXPECT_TRUE( rec->qosEcnSupport() );
   EXPECT_EQ( rec->vlanAclName(), Zub::Name( "vlan-x" ) );
   auto const log = Zub::make< ResultLog >();
   log->notifierIs( Zub::Ptr< Nev::NevAsyncBaseHelper const >( rec ) );
   // Two operations completing in one moment with one message: both are heard.
   inner->complete( "", 1.0 );
   rec->asyncOperationResultIs( Nev::AsyncOperationResult( "", 0.0 ) );
   inner->complete( "", 1.0 );
   inner->complete( "failed", 2.0 );
   EXPECT_EQ( log->heard, ( Lines{ "", "", "failed" } ) );
   EXPECT_EQ( inner->asyncOperationResult(), Nev::AsyncOperationResult() );
}

TEST_F( RecordingHelpersTest, TheChipsStartUpClearsTheEnginesStateInTheDecorator ) {
   helper->pmapStateIs( pmapKey( "gold" ) );
   helper->unableToProgramIs( spKey( "gold" ), true );
   helper->hwInit();
   EXPECT_EQ( helper->pmapStateSize(), 0u );
   EXPECT_EQ( helper->unableToProgramSize(), 0u );
   // Unwrapped again, the chip clears its own.
   helper = nullptr;
   chip->pmapStateIs( pmapKey( "gold" ) );
   chip->hwInit();
   EXPECT_EQ( chip->pmapStateSize(), 0u );
}

TEST_F( RecordingHelpersTest, CountingKeepsCountsByOperationInsteadOfRecords ) {
   auto const rec = plain();
   rec->countingIs( true );
   rec->createAndAttachPolicer( *classData );
   rec->createAndAttachPolicer( *classData );
   // Never recorded, still counted.
   rec->multipleActionsSupported();
   EXPECT_TRUE( rec->calls().empty() );
   EXPECT_EQ( rec->callCount( "createAndAttachPolicer" ), 2u );
   EXPECT_EQ( rec->callCounts(),
              ( std::map< std::string, std::uint64_t >{ { "createAndAttachPolicer", 2 },
                                                        { "multipleActionsSupported", 1 } } ) );
   rec->countingIs( false );
   rec->createAndAttachPolicer( *classData );
   EXPECT_EQ( rec->calls().size(), 1u );
   EXPECT_EQ( rec->callCount( "createAndAttachPolicer" ), 2u );
}

TEST_F( RecordingHelpersTest, DecoratorsSharingOneLogKeepTheOrderOfTheirCalls ) {
   auto const status = Zub::make< Qos::Status >( Zub::Name( "qos" ) );
   auto const hw = Zub::make< Qos::HwStatus >( Zub::Name( "hw" ) );
   auto const slice = Zub::make< Qos::SliceHwStatus >( Zub::Name( "slice" ) );
   auto const basicChip =
         Zub::make< Sim::SimQosBasicHelper >( Sim::ChipConfig(), status, hw, slice, nullptr );
   auto const basic = Zub::make< Sim::RecordingQosBasicHelper >( basicChip, clock );
   auto const table = Zub::make< Sim::SimCbfFecMappingHelper >( 4, nullptr );
   auto const cbf = Zub::make< Sim::RecordingCbfFecMappingHelper >( table, clock );
   auto const acl = plain();
   Sim::CallLog log;
   basic->callLogIs( &log );
   cbf->callLogIs( &log );
   acl->callLogIs( &log );
   basic->hwInit();
   basic->programDscpToTcMap( Qos::Dscp( 46 ) );
   Qos::IntfStatus const& e1 = *status->intfStatusIs( Mirel::IntfId( "Ethernet1" ) );
   basic->programIntfTxQueueEcnDelayThreshold( e1, Qos::TxQueue( 3, Qos::unicastQueue_ ), true,
                                               Qos::EcnDelayThreshold{ 20 } );
   acl->prepareToCommit();
   EXPECT_TRUE( basic->programIntfTxQueueEcnCount( Mirel::IntfId( "Ethernet2" ),
                                                   Qos::TxQueueId( 4 ), false ) );
   Nev::CbfFecMapRule rule{ Qos::Glarn::OverrideKey() };
   rule.hwFecIdIs( 5 );
   EXPECT_EQ( cbf->createOrUpdateMapping( rule ), NevHelper::cbfMapUpdateSuccess );
   // Forwarded, not recorded.
   EXPECT_EQ( cbf->hwFecOverrideRules().size(), 1u );
   basic->handleQosVerify();
   Lines lines;
   for( Sim::ChipCall const& c : log.kept() )
      lines.push_back( Sim::callText( c ) );
   EXPECT_EQ( lines,
              ( Lines{ "basic hwInit", "basic programDscpToTcMap dscp=46",
                       "basic programIntfTxQueueEcnDelayThreshold intfStatus=Ethernet1 "
                       "txQueueId=UC3 delayEcnEnabled=true ecnDelayThreshold=20 us",
                       "prepareToCommit",
                       "basic programIntfTxQueueEcnCount intfId=Ethernet2 txQueueId=4 "
                       "enable=false",
                       "cbf createOrUpdateMapping key=" + Sim::textOf( Qos::Glarn::OverrideKey() ) +
                             " hwFecId=5 overridingHwFecId=0",
                       "basic handleQosVerify" } ) );
   // The chip did the work.
   EXPECT_EQ( basicChip->globals().dscpToTc.at( Qos::Dscp( 46 ) ),
              basicChip->dscpToTc( Qos::Dscp( 46 ) ) );
   EXPECT_EQ( table->rules().size(), 1u );
}

}  // namespace
}  // namespace NevQosTest
