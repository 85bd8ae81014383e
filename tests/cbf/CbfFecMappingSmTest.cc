#include <gtest/gtest.h>

#include <deque>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "NevQos/cbf/CbfFecMappingSm.h"
#include "zub/ActivityManager.h"
#include "zub/Log.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;
using NevHelper::CbfFecMappingUpdateStatus;
using Qos::Glarn::OverrideKey;

// A driver that records each call as a line and answers what the test queued (success once
// the queue is empty); rule handles count from 100.
class RecordingCbfHelper : public NevHelper::CbfFecMappingHelper {
 public:
   RecordingCbfHelper() : CbfFecMappingHelper( Zub::Name( "cbf" ) ) {}
   CbfFecMappingUpdateStatus createOrUpdateMapping( Nev::CbfFecMapRule const& rule ) override {
      std::ostringstream os;
      os << "create " << rule.key() << " hw " << rule.hwFecId() << "->" << rule.overridingHwFecId();
      calls.push_back( os.str() );
      if( answers.empty() ) return NevHelper::cbfMapUpdateSuccess;
      CbfFecMappingUpdateStatus const a = answers.front();
      answers.pop_front();
      return a;
   }
   void deleteMapping( OverrideKey const& key ) override {
      std::ostringstream os;
      os << "delete " << key;
      calls.push_back( os.str() );
   }
   Qos::Hardware::FecOverrideRuleId hwFecOverrideRuleId( OverrideKey const& ) override {
      return 100;
   }
   Lines take() { return std::exchange( calls, {} ); }
   Lines calls;
   std::deque< CbfFecMappingUpdateStatus > answers;
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
   std::uint32_t statusOf( OverrideKey const& k ) const {
      bool found = false;
      Qos::Glarn::FecOverrideStatusEntry e;
      status->safeLookup( k, found, e );
      return found ? e.status : 0;
   }
   Lines takeLogs() { return std::exchange( logs_, {} ); }

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
