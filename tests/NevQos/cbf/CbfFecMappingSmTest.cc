#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "NevQos/cbf/CbfFecMappingSm.h"
#include "zub/ActivityManager.h"
#include "zub/Log.h"
#include "zub/Trace.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;
using NevHelper::CbfFecMappingUpdateStatus;
using Qos::Glarn::OverrideKey;

// A driver that records each call as a line and answers what the test queued (success once
// the queue is empty); rule handles are 100. Like a driver that keeps its rules across a
// restart, it holds what it installed until told to delete it.
class RecordingCbfHelper : public NevHelper::CbfFecMappingHelper {
 public:
   RecordingCbfHelper() : CbfFecMappingHelper( Zub::Name( "cbf" ) ) {}
   CbfFecMappingUpdateStatus createOrUpdateMapping( Nev::CbfFecMapRule const& rule ) override {
      std::ostringstream os;
      os << "create " << rule.key() << " hw " << rule.hwFecId() << "->" << rule.overridingHwFecId();
      calls.push_back( os.str() );
      CbfFecMappingUpdateStatus a = NevHelper::cbfMapUpdateSuccess;
      if( !answers.empty() ) {
         a = answers.front();
         answers.pop_front();
      }
      if( a == NevHelper::cbfMapUpdateSuccess ) {
         held[ rule.key() ] = { rule.key(), 100, rule.hwFecId(), rule.overridingHwFecId() };
      }
      return a;
   }
   void deleteMapping( OverrideKey const& key ) override {
      std::ostringstream os;
      os << "delete " << key;
      calls.push_back( os.str() );
      held.erase( key );
   }
   Qos::Hardware::FecOverrideRuleId hwFecOverrideRuleId( OverrideKey const& ) override {
      return 100;
   }
   std::vector< NevHelper::CbfFecMapHwRule > hwFecOverrideRules() override {
      std::vector< NevHelper::CbfFecMapHwRule > out;
      for( auto const& [ k, rule ] : held )
         out.push_back( rule );
      return out;
   }
   Lines take() { return std::exchange( calls, {} ); }
   Lines calls;
   std::deque< CbfFecMappingUpdateStatus > answers;
   std::map< OverrideKey, NevHelper::CbfFecMapHwRule > held;
};

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
      helper = Zub::make< RecordingCbfHelper >();
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
   Zub::Ptr< RecordingCbfHelper > helper;
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
   EXPECT_EQ( sm->fecIdToOverrideKey().find( 5 )->ptr()->mapping().size(), 1u );

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

TEST_F( CbfFecMappingSmTest, KeysAreProgrammedOnceBothFecsAreKnownAndUnprogrammedWhenOneGoes ) {
   start();
   want( key( 10, 1 ), 2 );
   review();
   // Neither FEC known: waiting, and the driver hears nothing.
   EXPECT_EQ( statusOf( key( 10, 1 ) ), 3u );
   EXPECT_EQ( helper->take(), Lines{} );
   EXPECT_TRUE( sm->policyOverrideReviewQueue().empty() );

   known( 1 );
   known( 2 );
   review();
   EXPECT_EQ( helper->take(), Lines{ "create ipv4/10/1 hw 1001->1002" } );
   EXPECT_EQ( statusOf( key( 10, 1 ) ), 1u );

   // The overriding FEC vanishes: the rule goes, the key waits again.
   responses->hwFecIdDel( 2 );
   review();
   EXPECT_EQ( helper->take(), Lines{ "delete ipv4/10/1" } );
   EXPECT_EQ( statusOf( key( 10, 1 ) ), 3u );

   // Removed while not programmed: its status goes, the driver hears nothing.
   config->overrideDel( key( 10, 1 ) );
   review();
   EXPECT_EQ( helper->take(), Lines{} );
   EXPECT_EQ( statusOf( key( 10, 1 ) ), 0u );
}

TEST_F( CbfFecMappingSmTest, ADeletionWithoutACachedCopyUsesTheDefaultEntry ) {
   start();
   want( key( 10, 1 ), 2 );
   sm->handlePolicyOverrideConfig( key( 11, 3 ) );  // never configured
   EXPECT_EQ( requested(), ( Fecs{ 1, 2 } ) ) << "the real key's FECs are untouched";
   EXPECT_TRUE( sm->policyOverrideReviewQueue().has( key( 11, 3 ) ) );
   review();
   EXPECT_EQ( helper->take(), Lines{} );
}

TEST_F( CbfFecMappingSmTest, RetriesComeSlowlyOnlyWhileFullAndTheLastKeyFailed ) {
   known( 1 );
   known( 2 );
   start();
   // Not ready, not full: the next review 0.01 s later.
   helper->answers = { NevHelper::cbfMapUpdateNotReady };
   want( key( 10, 1 ), 2 );
   review();
   EXPECT_EQ( statusOf( key( 10, 1 ) ), 4u );
   EXPECT_NEAR( sm->policyOverrideTask()->taskScheduledTime() - loop->now(), 0.01, 1e-9 );

   // Out of room, twice: one FULL log, and reviews a second apart.
   helper->answers = { NevHelper::cbfMapUpdateFailed, NevHelper::cbfMapUpdateFailed };
   loop->runUntil( loop->now() + 0.01 );
   EXPECT_EQ( statusOf( key( 10, 1 ) ), 2u );
   EXPECT_TRUE( sm->resourceFull() );
   EXPECT_NEAR( sm->policyOverrideTask()->taskScheduledTime() - loop->now(), 1.0, 1e-9 );
   loop->runUntil( loop->now() + 1.0 );
   EXPECT_EQ( takeLogs(), Lines{ "ROUTING_CBF_HW_RESOURCE_FULL" } );

   // Still full, but the last key of the walk succeeds while an earlier one fails: 0.01 s.
   want( key( 20, 1 ), 2 );
   helper->answers = { NevHelper::cbfMapUpdateFailed, NevHelper::cbfMapUpdateSuccess };
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
         out.push_back( "create ipv4/" + std::to_string( d ) + "/1 hw 1001->1002" );
      return out;
   };
   scheduler->workQuantumIs( 2 );
   known( 1 );
   known( 2 );
   start();
   for( unsigned d : { 0, 10, 20, 30, 40 } )
      want( key( d, 1 ), 2 );
   helper->answers = { cbfMapUpdateFailed, cbfMapUpdateSuccess, cbfMapUpdateFailed,
                       cbfMapUpdateFailed, cbfMapUpdateFailed,  cbfMapUpdateFailed };
   loop->runOnce();
   EXPECT_EQ( helper->take(), creates( { 0, 10 } ) );
   want( key( 25, 1 ), 2 );
   want( key( 5, 1 ), 2 );
   loop->runOnce();
   EXPECT_EQ( helper->take(), creates( { 20, 25 } ) );
   loop->runOnce();
   EXPECT_EQ( helper->take(), creates( { 30, 40 } ) );
   EXPECT_EQ( sm->policyOverrideTask()->taskScheduledTime(), loop->now() );

   helper->answers = { cbfMapUpdateFailed, cbfMapUpdateSuccess, cbfMapUpdateFailed,
                       cbfMapUpdateFailed, cbfMapUpdateFailed,  cbfMapUpdateFailed };
   for( int run = 0; run < 3; ++run )
      loop->runOnce();
   EXPECT_EQ( helper->take(), creates( { 0, 5, 20, 25, 30, 40 } ) );
   EXPECT_NEAR( sm->policyOverrideTask()->taskScheduledTime() - loop->now(), 1.0, 1e-9 );
   std::uint64_t const runs = sm->policyOverrideTask()->taskRuns();
   review();
   EXPECT_EQ( sm->policyOverrideTask()->taskRuns(), runs ) << "idle until the next review";
   EXPECT_EQ( takeLogs(), Lines{ "ROUTING_CBF_HW_RESOURCE_FULL" } );

   // All settle in the next review, over three runs; the shortage ends once, at its end.
   loop->runOnce();
   EXPECT_EQ( helper->take().size(), 2u );
   EXPECT_TRUE( sm->resourceFull() );
   review();
   EXPECT_EQ( helper->take().size(), 3u );
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
   helper->held[ key( 10, 1 ) ] = { key( 10, 1 ), 7, 1001, 1002 };
   helper->held[ key( 20, 1 ) ] = { key( 20, 1 ), 8, 1001, 1002 };
   want( key( 10, 1 ), 2 );
   known( 1 );
   known( 2 );
   start();
   Zub::traceSinkIs( {} );
   Zub::traceDisableAll();
   EXPECT_EQ( helper->take(), Lines{ "delete ipv4/20/1" } );
   EXPECT_EQ( trace, ( Lines{ " deleting stale fecOverrideStatus ipv4/20/1",
                              " deleting stale fecOverrideStatus ipv4/30/1",
                              " deleting stale fecOverrideStatus ipv4/40/1" } ) );
   EXPECT_EQ( statusOf( key( 10, 1 ) ), 1u );
   for( unsigned d : { 20, 30, 40 } )
      EXPECT_EQ( statusOf( key( d, 1 ) ), 0u ) << d;
   EXPECT_TRUE( sm->resourceFull() );

   review();
   EXPECT_EQ( helper->take(), Lines{ "create ipv4/10/1 hw 1001->1002" } );
   EXPECT_FALSE( sm->resourceFull() );
   EXPECT_EQ( takeLogs(), Lines{ "ROUTING_CBF_HW_RESOURCE_NORMAL" } );
   EXPECT_EQ( verify(), Lines{} );

   // With nothing configured at all, a shortage left behind still ends.
   sm = nullptr;
   config->overrideDel( key( 10, 1 ) );
   statusIs( key( 40, 1 ), fecOverrideOutOfResource, Qos::Hardware::invalidFecOverrideRuleId );
   start();
   review();
   EXPECT_EQ( helper->take(), Lines{ "delete ipv4/10/1" } );
   EXPECT_FALSE( sm->resourceFull() );
   EXPECT_EQ( takeLogs(), Lines{ "ROUTING_CBF_HW_RESOURCE_NORMAL" } );
}

// Each way the hardware can differ from the status, and a key under review, which may hold a
// rule whatever its status says.
TEST_F( CbfFecMappingSmTest, VerificationComparesTheStatusWithTheRulesTheHardwareHolds ) {
   known( 1 );
   known( 2 );
   start();
   helper->answers = { NevHelper::cbfMapUpdateSuccess, NevHelper::cbfMapUpdateSuccess,
                       NevHelper::cbfMapUpdateNotReady };
   for( unsigned d : { 10, 20, 30 } )
      want( key( d, 1 ), 2 );
   review();
   ASSERT_EQ( statusOf( key( 30, 1 ) ), 4u );
   helper->held[ key( 30, 1 ) ] = { key( 30, 1 ), 100, 1001, 1002 };
   auto const baseline = helper->held;

   using Held = std::map< OverrideKey, NevHelper::CbfFecMapHwRule >;
   struct Case {
      char const* what;
      std::function< void( Held& ) > damage;
      Lines findings;
   };
   std::string const ten = "FEC override ipv4/10/1 is programmed as rule 100 but ";
   std::vector< Case > const cases = {
      { "as programmed", []( Held& ) {}, {} },
      { "rule lost",
        []( Held& h ) { h.erase( key( 10, 1 ) ); },
        { ten + "the hardware holds no rule for it" } },
      { "other handle",
        []( Held& h ) { h[ key( 10, 1 ) ].hwRuleId = 5; },
        { ten + "the hardware holds it as rule 5" } },
      { "other FEC",
        []( Held& h ) { h[ key( 20, 1 ) ].overridingHwFecId = 9; },
        { "FEC override ipv4/20/1 is programmed as rule 100 but the hardware FECs are "
          "1001 -> 9, expected 1001 -> 1002" } },
      { "rule nobody owns",
        []( Held& h ) {
           h[ key( 50, 1 ) ] = { key( 50, 1 ), 3, 1, 2 };
        },
        { "FEC override ipv4/50/1 has rule 3 in the hardware but is not programmed" } },
   };
   for( Case const& c : cases ) {
      SCOPED_TRACE( c.what );
      helper->held = baseline;
      c.damage( helper->held );
      EXPECT_EQ( verify(), c.findings );
   }
   // Once that key is settled (its override removed), a rule the hardware holds for it is found.
   helper->held = baseline;
   config->overrideDel( key( 30, 1 ) );
   loop->runUntil( loop->now() + sm->defaultDelay() );
   ASSERT_EQ( statusOf( key( 30, 1 ) ), 0u );
   EXPECT_EQ( verify(), Lines{ "FEC override ipv4/30/1 has rule 100 in the hardware but is not "
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
