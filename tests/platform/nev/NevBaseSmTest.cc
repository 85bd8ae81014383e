#include <gtest/gtest.h>

#include "NevQos/platform/nev/NevBaseSm.h"
#include "NevQos/platform/nev/NevCommonSmData.h"
#include "NevQos/platform/zub/ActivityManager.h"

namespace {

using Zub::ActivityManager;

class NevBaseSmTest : public ::testing::Test {
 protected:
   void SetUp() override {
      loop = ActivityManager::create( ActivityManager::TimeSource::simulated );
      Zub::activityManagerIs( loop );
   }
   void TearDown() override { Zub::activityManagerIs( nullptr ); }

   Zub::Ptr< ActivityManager > loop;
   Zub::Ptr< Nev::NevCommonSmData > ncsd = Zub::make< Nev::NevCommonSmData >( Zub::Name( "ncsd" ) );
};

class CountingSm : public Nev::NevAsyncBaseSm {
 public:
   explicit CountingSm( Zub::Ptr< Nev::NevCommonSmData const > const& ncsd )
       : Nev::NevAsyncBaseSm( ncsd ) {}
   void handleInitialized() override {
      ++starts;
      tcamRequestClockIs( Zub::activityManager()->clock() );
      pendingOperationTimeoutClockIs( Zub::activityManager()->clock() );
      initializedIs( true );
   }
   void processTcamRequestQueue() override { ++drains; }
   void handlePendingOperationTimeout() override { ++timeouts; }
   int starts = 0, drains = 0, timeouts = 0;
};

TEST_F( NevBaseSmTest, StartUpRunsOnceOnTheFirstTurnAfterConstruction ) {
   auto sm = Zub::make< CountingSm >( ncsd );
   EXPECT_EQ( sm->starts, 0 ) << "no work in the constructor";
   EXPECT_FALSE( sm->initialized() );
   EXPECT_EQ( sm->ncsd(), ncsd );
   loop->runUntilIdle();
   EXPECT_EQ( sm->starts, 1 );
   EXPECT_TRUE( sm->initialized() );
   EXPECT_EQ( sm->asyncState(), Nev::asyncNone );
}

TEST_F( NevBaseSmTest, AsyncClocksCallTheirHandlersOnLaterTurns ) {
   auto sm = Zub::make< CountingSm >( ncsd );
   loop->runOnce();
   sm->tcamRequestClock()->timeMinIs( loop->now() );
   sm->tcamRequestClock()->timeMinIs( loop->now() );
   sm->pendingOperationTimeoutIs( 5.0 );
   sm->pendingOperationTimeoutClock()->timeMinIs( loop->now() + sm->pendingOperationTimeout() );
   EXPECT_EQ( sm->drains, 0 );
   loop->runOnce();
   EXPECT_EQ( sm->drains, 1 );
   EXPECT_EQ( sm->timeouts, 0 );
   loop->runUntilIdle();
   EXPECT_EQ( sm->timeouts, 1 );
   EXPECT_DOUBLE_EQ( loop->now(), 6.0 );
}

TEST_F( NevBaseSmTest, AZombieMachineHearsNoClock ) {
   auto sm = Zub::make< CountingSm >( ncsd );
   loop->runOnce();
   sm->tcamRequestClock()->timeMinIs( loop->now() );
   sm->zubDoZombieReactors( true );
   loop->runUntilIdle();
   EXPECT_EQ( sm->drains, 0 );
   EXPECT_TRUE( sm->zombie() );
   // A machine dropped before its start-up never starts.
   auto early = Zub::make< CountingSm >( ncsd );
   early = nullptr;
   loop->runUntilIdle();
   EXPECT_TRUE( loop->idle() );
}

}  // namespace
