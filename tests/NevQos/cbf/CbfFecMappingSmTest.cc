#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "NevQos/cbf/CbfFecMappingSm.h"
#include "NevQos/platform/zub/ActivityManager.h"
#include "NevQos/platform/zub/Log.h"
#include "NevQos/platform/zub/Trace.h"
#include "NevQos/sim/chip/SimCbfFecMappingHelper.h"
#include "NevQos/sim/recording/RecordingCbfFecMappingHelper.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;
using NevHelper::CbfFecMappingUpdateStatus;
using Qos::Glarn::OverrideKey;

OverrideKey key( unsigned dscp, Glarn::Fib::FecId fecId ) {
   return OverrideKey{ Mirel::ipv4, Qos::Dscp( dscp ), fecId };
}

class CbfFecMappingSmTest : public ::testing::Test {
 protected:
   using Access = Qos::Glarn::FecOverrideConfig::Access;
   void SetUp() override {
      loop = Zub::ActivityManager::create( Zub::ActivityManager::TimeSource::simulated, 100.0 );
      Zub::activityManagerIs( loop );
      Zub::logSinkIs( [ this ]( Zub::LogRecord const& r ) {
         logs_.push_back( r.handle->name().stdString() );
      } );
      auto configStore = Zub::make< Qos::Glarn::FecOverrideConfig::Store >( Zub::String( "cfg" ) );
      config = Zub::make< Qos::Glarn::FecOverrideConfig >( configStore, Access::writer );
      configView = Zub::make< Qos::Glarn::FecOverrideConfig >( configStore, Access::readOnly );
      configStore_ = configStore;
      status = Zub::make< Qos::Glarn::FecOverrideStatus >(
            Zub::make< Qos::Glarn::FecOverrideStatus::Store >( Zub::String( "status" ) ),
            Qos::Glarn::FecOverrideStatus::Access::writer );
      requests = Zub::make< Nev::FecIdToHwFecIdRequest >(
            Zub::make< Nev::FecIdToHwFecIdRequest::Store >( Zub::String( "request" ) ),
            Nev::FecIdToHwFecIdRequest::Access::writer );
      auto responseStore =
            Zub::make< Nev::FecIdToHwFecIdResponse::Store >( Zub::String( "response" ) );
      responses = Zub::make< Nev::FecIdToHwFecIdResponse >(
            responseStore, Nev::FecIdToHwFecIdResponse::Access::writer );
      responseView = Zub::make< Nev::FecIdToHwFecIdResponse >(
            responseStore, Nev::FecIdToHwFecIdResponse::Access::readOnly );
      scheduler = Zub::make< Kesh::TaskScheduler >();
      // The reference chip's rule table behind the recording decorator: the decorator answers
      // what a test scripts, the table the rest.
      table = Zub::make< Sim::SimCbfFecMappingHelper >( 16, nullptr );
      helper = Zub::make< Sim::RecordingCbfFecMappingHelper >( table, nullptr );
   }
   void TearDown() override {
      sm = nullptr;
      EXPECT_EQ( takeLogs(), Lines{} ) << "log lines the test did not expect";
      Zub::logSinkIs( nullptr );
      Zub::activityManagerIs( nullptr );
   }
   void start() {
      sm = Nev::cbfFecMappingSmFactory( 1, configView, status, requests, responseView, scheduler,
                                        helper );
   }
   void want( OverrideKey const& k, Glarn::Fib::FecId overriding ) {
      config->overrideIs( Qos::Glarn::FecOverrideEntry{ k, overriding } );
   }
   void known( Glarn::Fib::FecId fecId ) {
      responses->hwFecIdIs( Nev::FecToHwFecId{ fecId, 1000 + fecId } );
   }
   // Runs the reviews due now.
   void review() { loop->runUntil( loop->now() ); }
   std::vector< Glarn::Fib::FecId > requested() const {
      std::vector< Glarn::Fib::FecId > out;
      for( auto it = requests->iter(); it; ++it )
         out.push_back( it.key() );
      return out;
   }
   void statusIs( OverrideKey const& k, Qos::Glarn::FecOverrideProgramStatus s,
                  Qos::Hardware::FecOverrideRuleId id ) {
      status->overrideIs( Qos::Glarn::FecOverrideStatusEntry{ k, s, id } );
   }
   std::uint32_t statusOf( OverrideKey const& k ) const {
      bool found = false;
      Qos::Glarn::FecOverrideStatusEntry e;
      status->safeLookup( k, found, e );
      return found ? e.status : 0;
   }
   Lines takeLogs() { return std::exchange( logs_, {} ); }
   // The driver calls since the last call of this, as the runner prints them.
   Lines takeCalls() {
      Lines out;
      for( Sim::ChipCall const& call : helper->calls() )
         out.push_back( Sim::callText( call ) );
      helper->callsForget();
      return out;
   }
   // The next answers of createOrUpdateMapping, in order: a success is the table's own.
   void answersAre( std::vector< CbfFecMappingUpdateStatus > const& answers ) {
      helper->answerDel( "createOrUpdateMapping" );
      for( CbfFecMappingUpdateStatus a : answers ) {
         if( a == NevHelper::cbfMapUpdateSuccess ) {
            helper->forwardEnq( "createOrUpdateMapping" );
         } else {
            helper->answerEnq( "createOrUpdateMapping", a );
         }
      }
   }
   // The findings of one verification run.
   Lines verify() {
      if( !sm->verifyData() ) sm->verifyDataIs( verifyData );
      verifyData->cliVerifyOutputDelAll();
      verifyData->doVerify();
      Lines out;
      for( Zub::String const& text : verifyData->cliVerifyOutputTexts() )
         out.push_back( text.stdString() );
      return out;
   }

   Zub::Ptr< Zub::ActivityManager > loop;
   Zub::Ptr< Qos::Glarn::FecOverrideConfig::Store > configStore_;
   Zub::Ptr< Qos::Glarn::FecOverrideConfig > config;
   Zub::Ptr< Qos::Glarn::FecOverrideConfig > configView;
   Zub::Ptr< Qos::Glarn::FecOverrideStatus > status;
   Zub::Ptr< Nev::FecIdToHwFecIdRequest > requests;
   Zub::Ptr< Nev::FecIdToHwFecIdResponse > responses;
   Zub::Ptr< Nev::FecIdToHwFecIdResponse > responseView;
   Zub::Ptr< Kesh::TaskScheduler > scheduler;
   Zub::Ptr< Sim::SimCbfFecMappingHelper > table;
   Zub::Ptr< Sim::RecordingCbfFecMappingHelper > helper;
   Zub::Ptr< Nev::VerifyData > verifyData = Zub::make< Nev::VerifyData >( Zub::Name( "verify" ) );
   Zub::Ptr< Nev::CbfFecMappingSm > sm;

 private:
   Lines logs_;
};

using Fecs = std::vector< Glarn::Fib::FecId >;

TEST_F( CbfFecMappingSmTest, RequestsFollowTheFecsInUse ) {
   want( key( 10, 1 ), 9 );
   start();  // the standing entry is picked up
   want( key( 20, 1 ), 9 );
   want( key( 30, 5 ), 5 );  // both FECs the same: one interest, one request
   EXPECT_EQ( requested(), ( Fecs{ 1, 5, 9 } ) );
   EXPECT_EQ( sm->fecIdToOverrideKey().at( 5 )->mapping().size(), 1u );

   // Two keys on one FEC: the request stays until both have gone.
   config->overrideDel( key( 10, 1 ) );
   EXPECT_EQ( requested(), ( Fecs{ 1, 5, 9 } ) );
   config->overrideDel( key( 20, 1 ) );
   config->overrideDel( key( 30, 5 ) );
   EXPECT_EQ( requested(), Fecs{} );
   EXPECT_TRUE( sm->fecIdToOverrideKey().empty() );

   // Moving the overriding FEC moves the request.
   want( key( 40, 2 ), 7 );
   want( key( 40, 2 ), 8 );
   EXPECT_EQ( requested(), ( Fecs{ 2, 8 } ) );

   // The machine going away withdraws every request.
   sm = nullptr;
   EXPECT_EQ( requested(), Fecs{} );
}

TEST_F( CbfFecMappingSmTest, ADeletionWithoutACachedCopyUsesTheDefaultEntry ) {
   start();
   want( key( 10, 1 ), 2 );
   sm->handlePolicyOverrideConfig( key( 11, 3 ) );  // never configured
   EXPECT_EQ( requested(), ( Fecs{ 1, 2 } ) ) << "the real key's FECs are untouched";
   EXPECT_TRUE( sm->policyOverrideReviewQueue().has( key( 11, 3 ) ) );
   review();
   EXPECT_EQ( takeCalls(), Lines{} );
}

TEST_F( CbfFecMappingSmTest, RetriesComeSlowlyOnlyWhileFullAndTheLastKeyFailed ) {
   known( 1 );
   known( 2 );
   start();
   // Not ready, not full: the next review 0.01 s later.
   answersAre( { NevHelper::cbfMapUpdateNotReady } );
   want( key( 10, 1 ), 2 );
   review();
   EXPECT_EQ( statusOf( key( 10, 1 ) ), 4u );
   EXPECT_NEAR( sm->policyOverrideTask()->taskScheduledTime() - loop->now(), 0.01, 1e-9 );

   // Out of room, twice: one FULL log, and reviews a second apart.
   answersAre( { NevHelper::cbfMapUpdateFailed, NevHelper::cbfMapUpdateFailed } );
   loop->runUntil( loop->now() + 0.01 );
   EXPECT_EQ( statusOf( key( 10, 1 ) ), 2u );
   EXPECT_TRUE( sm->resourceFull() );
   EXPECT_NEAR( sm->policyOverrideTask()->taskScheduledTime() - loop->now(), 1.0, 1e-9 );
   loop->runUntil( loop->now() + 1.0 );
   EXPECT_EQ( takeLogs(), Lines{ "ROUTING_CBF_HW_RESOURCE_FULL" } );

   // Still full, but the last key of the walk succeeds while an earlier one fails: 0.01 s.
   want( key( 20, 1 ), 2 );
   answersAre( { NevHelper::cbfMapUpdateFailed, NevHelper::cbfMapUpdateSuccess } );
   review();
   EXPECT_EQ( statusOf( key( 20, 1 ) ), 1u );
   EXPECT_NEAR( sm->policyOverrideTask()->taskScheduledTime() - loop->now(), 0.01, 1e-9 );

   // Every key settled: the shortage is over.
   loop->runUntil( loop->now() + 0.01 );
   EXPECT_EQ( statusOf( key( 10, 1 ) ), 1u );
   EXPECT_FALSE( sm->resourceFull() );
   EXPECT_EQ( takeLogs(), Lines{ "ROUTING_CBF_HW_RESOURCE_NORMAL" } );
}

// A review cut into runs by the work quantum goes on after the last key it handled (also one
// that left the queue), reaches a key queued ahead of it, and ends once: the key queued behind it
// brings the next review at once; that review's failed last key, a second later.
TEST_F( CbfFecMappingSmTest, AReviewCutIntoRunsTriesEveryKeyOnceAndEndsOnce ) {
   using enum NevHelper::CbfFecMappingUpdateStatus;
   auto const creates = []( std::vector< unsigned > const& dscps ) {
      Lines out;
      for( unsigned d : dscps )
         out.push_back( "cbf createOrUpdateMapping key=ipv4/" + std::to_string( d ) +
                        "/1 hwFecId=1001 overridingHwFecId=1002" );
      return out;
   };
   scheduler->workQuantumIs( 2 );
   known( 1 );
   known( 2 );
   start();
   for( unsigned d : { 0, 10, 20, 30, 40 } )
      want( key( d, 1 ), 2 );
   answersAre( { cbfMapUpdateFailed, cbfMapUpdateSuccess, cbfMapUpdateFailed, cbfMapUpdateFailed,
                 cbfMapUpdateFailed, cbfMapUpdateFailed } );
   loop->runOnce();
   EXPECT_EQ( takeCalls(), creates( { 0, 10 } ) );
   want( key( 25, 1 ), 2 );
   want( key( 5, 1 ), 2 );
   loop->runOnce();
   EXPECT_EQ( takeCalls(), creates( { 20, 25 } ) );
   loop->runOnce();
   EXPECT_EQ( takeCalls(), creates( { 30, 40 } ) );
   EXPECT_EQ( sm->policyOverrideTask()->taskScheduledTime(), loop->now() );

   answersAre( { cbfMapUpdateFailed, cbfMapUpdateSuccess, cbfMapUpdateFailed, cbfMapUpdateFailed,
                 cbfMapUpdateFailed, cbfMapUpdateFailed } );
   for( int run = 0; run < 3; ++run )
      loop->runOnce();
   EXPECT_EQ( takeCalls(), creates( { 0, 5, 20, 25, 30, 40 } ) );
   EXPECT_NEAR( sm->policyOverrideTask()->taskScheduledTime() - loop->now(), 1.0, 1e-9 );
   std::uint64_t const runs = sm->policyOverrideTask()->taskRuns();
   review();
   EXPECT_EQ( sm->policyOverrideTask()->taskRuns(), runs ) << "idle until the next review";
   EXPECT_EQ( takeLogs(), Lines{ "ROUTING_CBF_HW_RESOURCE_FULL" } );

   // All settle in the next review, over three runs; the shortage ends once, at its end.
   loop->runOnce();
   EXPECT_EQ( takeCalls().size(), 2u );
   EXPECT_TRUE( sm->resourceFull() );
   review();
   EXPECT_EQ( takeCalls().size(), 3u );
   EXPECT_TRUE( sm->policyOverrideReviewQueue().empty() );
   EXPECT_FALSE( sm->policyOverrideTask()->taskScheduled() );
   EXPECT_EQ( takeLogs(), Lines{ "ROUTING_CBF_HW_RESOURCE_NORMAL" } );
}

// What an earlier life of the agent left: the status of four overrides, and the rules of the two
// programmed in a driver that kept them. Only the one still configured keeps its status; the
// rule of a stale one that says programmed goes too. The refused one shows a shortage that
// stood, which ends with this life's NORMAL and no second FULL.
TEST_F( CbfFecMappingSmTest, StartUpSweepsTheStatusAndRulesOfOverridesRemovedWhileDown ) {
   using namespace Qos::Glarn;
   Lines trace;
   Zub::traceEnable( "NevCbfFecMappingSm/0-2" );
   Zub::traceSinkIs( [ &trace ]( Zub::TraceRecord const& r ) {
      if( r.message.stdString().find( "stale" ) != std::string::npos )
         trace.push_back( r.message.stdString() );
   } );
   statusIs( key( 10, 1 ), fecOverrideProgrammed, 7 );
   statusIs( key( 20, 1 ), fecOverrideProgrammed, 8 );
   statusIs( key( 30, 1 ), fecOverrideWaitingForHwFecId, Qos::Hardware::invalidFecOverrideRuleId );
   statusIs( key( 40, 1 ), fecOverrideOutOfResource, Qos::Hardware::invalidFecOverrideRuleId );
   table->ruleIs( key( 10, 1 ), Sim::CbfRule{ 7, 1001, 1002 } );
   table->ruleIs( key( 20, 1 ), Sim::CbfRule{ 8, 1001, 1002 } );
   want( key( 10, 1 ), 2 );
   known( 1 );
   known( 2 );
   start();
   Zub::traceSinkIs( {} );
   Zub::traceDisableAll();
   EXPECT_EQ( takeCalls(), Lines{ "cbf deleteMapping key=ipv4/20/1" } );
   EXPECT_EQ( trace, ( Lines{ " deleting stale fecOverrideStatus ipv4/20/1",
                              " deleting stale fecOverrideStatus ipv4/30/1",
                              " deleting stale fecOverrideStatus ipv4/40/1" } ) );
   EXPECT_EQ( statusOf( key( 10, 1 ) ), 1u );
   for( unsigned d : { 20, 30, 40 } )
      EXPECT_EQ( statusOf( key( d, 1 ) ), 0u ) << d;
   EXPECT_TRUE( sm->resourceFull() );

   review();
   EXPECT_EQ( takeCalls(), Lines{ "cbf createOrUpdateMapping key=ipv4/10/1 hwFecId=1001 "
                                  "overridingHwFecId=1002" } );
   EXPECT_FALSE( sm->resourceFull() );
   EXPECT_EQ( takeLogs(), Lines{ "ROUTING_CBF_HW_RESOURCE_NORMAL" } );
   EXPECT_EQ( verify(), Lines{} );

   // With nothing configured at all, a shortage left behind still ends.
   sm = nullptr;
   config->overrideDel( key( 10, 1 ) );
   statusIs( key( 40, 1 ), fecOverrideOutOfResource, Qos::Hardware::invalidFecOverrideRuleId );
   start();
   review();
   EXPECT_EQ( takeCalls(), Lines{ "cbf deleteMapping key=ipv4/10/1" } );
   EXPECT_FALSE( sm->resourceFull() );
   EXPECT_EQ( takeLogs(), Lines{ "ROUTING_CBF_HW_RESOURCE_NORMAL" } );
}

// Each way the hardware can differ from the status, and a key under review, which may hold a
// rule whatever its status says.
TEST_F( CbfFecMappingSmTest, VerificationComparesTheStatusWithTheRulesTheHardwareHolds ) {
   known( 1 );
   known( 2 );
   start();
   answersAre( { NevHelper::cbfMapUpdateSuccess, NevHelper::cbfMapUpdateSuccess,
                 NevHelper::cbfMapUpdateNotReady } );
   for( unsigned d : { 10, 20, 30 } )
      want( key( d, 1 ), 2 );
   review();
   ASSERT_EQ( statusOf( key( 30, 1 ) ), 4u );
   // The table gave the two programmed rules its first slots; the one under review holds one too.
   table->ruleIs( key( 30, 1 ), Sim::CbfRule{ 2, 1001, 1002 } );
   using Held = std::map< OverrideKey, Sim::CbfRule >;
   Held const baseline = table->rules();
   auto const holdOnly = [ this ]( Held const& rules ) {
      table->rulesDelAll();
      for( auto const& [ k, rule ] : rules )
         table->ruleIs( k, rule );
   };
   struct Case {
      char const* what;
      std::function< void( Held& ) > damage;
      Lines findings;
   };
   std::string const ten = "FEC override ipv4/10/1 is programmed as rule 0 but ";
   std::vector< Case > const cases = {
      { "as programmed", []( Held& ) {}, {} },
      { "rule lost",
        []( Held& h ) { h.erase( key( 10, 1 ) ); },
        { ten + "the hardware holds no rule for it" } },
      { "other handle",
        []( Held& h ) { h[ key( 10, 1 ) ].id = 5; },
        { ten + "the hardware holds it as rule 5" } },
      { "other FEC",
        []( Held& h ) { h[ key( 20, 1 ) ].overridingHwFecId = 9; },
        { "FEC override ipv4/20/1 is programmed as rule 1 but the hardware FECs are "
          "1001 -> 9, expected 1001 -> 1002" } },
      { "rule nobody owns",
        []( Held& h ) {
           h[ key( 50, 1 ) ] = { 3, 1, 2 };
        },
        { "FEC override ipv4/50/1 has rule 3 in the hardware but is not programmed" } },
   };
   for( Case const& c : cases ) {
      SCOPED_TRACE( c.what );
      Held damaged = baseline;
      c.damage( damaged );
      holdOnly( damaged );
      EXPECT_EQ( verify(), c.findings );
   }
   // Once that key is settled (its override removed), a rule the hardware holds for it is found.
   holdOnly( baseline );
   config->overrideDel( key( 30, 1 ) );
   loop->runUntil( loop->now() + sm->defaultDelay() );
   ASSERT_EQ( statusOf( key( 30, 1 ) ), 0u );
   EXPECT_EQ( verify(), Lines{ "FEC override ipv4/30/1 has rule 2 in the hardware but is not "
                               "programmed" } );
}

TEST_F( CbfFecMappingSmTest, ACorruptConfigurationEndsInTheRethrownException ) {
   want( key( 10, 1 ), 2 );
   want( key( 20, 1 ), 2 );
   start();
   configStore_->corrupt( key( 20, 1 ) );
   EXPECT_THROW( sm->handlePolicyOverrideConfig(), Pelto::CorruptionDetectedException );
   EXPECT_FALSE( configView->attached() );
   EXPECT_FALSE( configView->collectionReady() );
}

}  // namespace
}  // namespace NevQosTest
