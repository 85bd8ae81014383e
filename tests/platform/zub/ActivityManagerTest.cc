// The event loop in simulated time: when clock reactors fire, and in which order.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "NevQos/platform/zub/ActivityManager.h"

namespace {

using Zub::make;
using Zub::Ptr;
using Zub::Seconds;

class Timer : public Zub::Clock::NotifieeConst {
 public:
   Timer( std::vector< std::string >* journal, std::string tag )
       : journal_( journal ), tag_( std::move( tag ) ) {}
   void onTime() override {
      journal_->push_back( tag_ + "@" +
                           std::to_string( static_cast< int >( Zub::System::currentTime() ) ) );
      if( action ) action();
   }
   std::function< void() > action;

 private:
   std::vector< std::string >* journal_;
   std::string tag_;
};

class ActivityManagerTest : public ::testing::Test {
 protected:
   void SetUp() override {
      previous_ = Zub::activityManager();
      Zub::activityManagerIs( loop );
   }
   void TearDown() override { Zub::activityManagerIs( previous_ ); }

   Ptr< Timer > timer( std::string const& tag ) {
      auto t = make< Timer >( &journal, tag );
      t->notifierIs( loop->clock() );
      return t;
   }

   Ptr< Zub::ActivityManager > loop =
         Zub::ActivityManager::create( Zub::ActivityManager::TimeSource::simulated, 1.0 );
   std::vector< std::string > journal;

 private:
   Ptr< Zub::ActivityManager > previous_;
};

TEST_F( ActivityManagerTest, ClockSetToNowFromHandlerFiresOnALaterTurn ) {
   auto a = timer( "a" ), b = timer( "b" );
   bool first = true;
   a->action = [ & ] {
      if( !first ) return;
      first = false;
      b->timeMinIs( loop->now() );
      b->timeMinIs( loop->now() );  // set twice: still one firing
      a->timeMinIs( loop->now() );  // a yields to itself
      journal.push_back( "a returns" );
   };
   a->timeMinIs( loop->now() );
   EXPECT_TRUE( journal.empty() );  // never inside the setter

   EXPECT_EQ( loop->runOnce(), 1u );
   EXPECT_EQ( journal, ( std::vector< std::string >{ "a@1", "a returns" } ) );
   EXPECT_EQ( loop->runOnce(), 2u );
   EXPECT_EQ( loop->runOnce(), 0u );
   EXPECT_EQ( journal, ( std::vector< std::string >{ "a@1", "a returns", "b@1", "a@1" } ) );
   EXPECT_EQ( loop->now(), 1.0 );
   EXPECT_EQ( a->timeMin(), Zub::never );
}

TEST_F( ActivityManagerTest, LaterSettingReplacesEarlierAndNeverCancels ) {
   auto a = timer( "a" ), b = timer( "b" );
   a->timeMinIs( 50.0 );
   a->timeMinIs( 20.0 );
   b->timeMinIs( 5.0 );
   b->timeMinIs( Zub::never );
   EXPECT_EQ( loop->scheduled(), 1u );
   EXPECT_EQ( loop->runUntilIdle(), 1u );
   EXPECT_EQ( journal, ( std::vector< std::string >{ "a@20" } ) );
}

TEST_F( ActivityManagerTest, SimulatedTimeJumpsToTheNextTimer ) {
   auto a = timer( "a" );
   int retries = 0;
   a->action = [ & ] {
      if( ++retries < 3 ) a->timeMinIs( loop->now() + 60.0 );
   };
   a->timeMinIs( loop->now() + 60.0 );
   loop->runUntilIdle();
   EXPECT_EQ( journal, ( std::vector< std::string >{ "a@61", "a@121", "a@181" } ) );
   EXPECT_EQ( Zub::System::currentTime(), 181.0 );
}

TEST_F( ActivityManagerTest, FiresByTimeThenBySchedulingOrder ) {
   auto a = timer( "a" ), b = timer( "b" ), c = timer( "c" ), d = timer( "d" );
   b->timeMinIs( 5.0 );
   c->timeMinIs( 3.0 );
   a->timeMinIs( 5.0 );
   d->timeMinIs( 9.0 );
   d->timeMinIs( 5.0 );  // rescheduled: after a
   EXPECT_EQ( loop->runOnce(), 1u );
   EXPECT_EQ( loop->runOnce(), 3u );
   EXPECT_EQ( journal, ( std::vector< std::string >{ "c@3", "b@5", "a@5", "d@5" } ) );
}

TEST_F( ActivityManagerTest, DestroyedOrSilencedReactorsNeverFire ) {
   auto a = timer( "a" ), b = timer( "b" ), c = timer( "c" ), d = timer( "d" );
   a->timeMinIs( 2.0 );
   b->timeMinIs( 2.0 );  // destroyed by a, in the same turn
   c->timeMinIs( 4.0 );  // destroyed before its turn
   d->timeMinIs( 4.0 );  // zombie
   a->action = [ & ] { b = nullptr; };
   c = nullptr;
   d->zombieIs( true );
   loop->runUntilIdle();
   EXPECT_EQ( journal, ( std::vector< std::string >{ "a@2" } ) );
   EXPECT_TRUE( loop->idle() );
}

TEST_F( ActivityManagerTest, RunUntilStopsAtTheGivenTime ) {
   auto a = timer( "a" ), b = timer( "b" );
   a->timeMinIs( 5.0 );
   b->timeMinIs( 20.0 );
   loop->runUntil( 10.0 );
   EXPECT_EQ( journal, ( std::vector< std::string >{ "a@5" } ) );
   EXPECT_EQ( loop->now(), 10.0 );
   EXPECT_EQ( loop->nextTime(), 20.0 );
   loop->runUntil( 30.0 );
   EXPECT_EQ( journal.back(), "b@20" );
   EXPECT_EQ( loop->now(), 30.0 );
}

}  // namespace

// The runaway guard: a timer that never lets the loop settle is cut, and named; a busy but
// settling loop is not.
class Rearming : public Zub::Clock::NotifieeConst {
 public:
   // Re-arms `step` seconds later, `left` times; forever with a negative count.
   Rearming( Seconds step, long left ) : step_( step ), left_( left ) {}
   void onTime() override {
      ++fired;
      if( left_ == 0 ) return;
      if( left_ > 0 ) --left_;
      timeMinIs( Zub::System::currentTime() + step_ );
   }
   Zub::String timerName() const override { return "rearming"; }
   long fired = 0;

 private:
   Seconds step_;
   long left_;
};

TEST_F( ActivityManagerTest, ARunawayIsCutAndNamedWhateverItsStep ) {
   struct Case {
      Seconds step;
      char const* where;
   };
   for( Case const c : { Case{ 0.0, "at one instant" }, Case{ 1e-9, "in ever smaller steps" } } ) {
      SCOPED_TRACE( c.where );
      auto const r = make< Rearming >( c.step, -1 );
      r->notifierIs( loop->clock() );
      loop->runawayLimitIs( 1000 );
      r->timeMinIs( 2.0 );
      try {
         loop->runUntil( 100.0 );
         ADD_FAILURE() << "the loop ran to its end";
      } catch( Zub::RunawayException const& e ) {
         EXPECT_EQ( e.timer(), Zub::String( "rearming" ) );
         EXPECT_EQ( e.turns(), 1100u );
         EXPECT_LT( e.time(), 3.0 );
         EXPECT_EQ( std::string( e.what() ).substr( 0, 44 ),
                    "still running after 1100 turns at virtual ti" );
      }
      r->timeMinIs( Zub::never );
   }
}

TEST_F( ActivityManagerTest, ABusyLoopThatSettlesOrMovesOnIsNoRunaway ) {
   loop->runawayLimitIs( 1000 );
   // A retry every 0.01 s for a long while: 100 turns a second.
   auto const periodic = make< Rearming >( 0.01, 20000 );
   periodic->notifierIs( loop->clock() );
   periodic->timeMinIs( 2.0 );
   // A burst past the limit at one instant that ends while it is being watched.
   auto const burst = make< Rearming >( 0.0, 1050 );
   burst->notifierIs( loop->clock() );
   burst->timeMinIs( 300.0 );
   EXPECT_NO_THROW( loop->runUntil( 400.0 ) );
   EXPECT_EQ( periodic->fired, 20001 );
   EXPECT_EQ( burst->fired, 1051 );
}
