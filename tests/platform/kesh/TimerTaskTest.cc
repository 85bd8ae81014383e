#include <gtest/gtest.h>

#include <vector>

#include "NevQos/platform/kesh/TimerTask.h"
#include "NevQos/platform/kesh/TimerWheel.h"
#include "NevQos/platform/zub/ActivityManager.h"

namespace {

using Zub::ActivityManager;

class TimerTaskTest : public ::testing::Test {
 protected:
   void SetUp() override {
      loop = ActivityManager::create( ActivityManager::TimeSource::simulated, 100.0 );
      Zub::activityManagerIs( loop );
      scheduler = Zub::make< Kesh::TaskScheduler >();
      scheduler->workQuantumIs( 3 );
   }
   void TearDown() override { Zub::activityManagerIs( nullptr ); }

   Zub::Ptr< ActivityManager > loop;
   Zub::Ptr< Kesh::TaskScheduler > scheduler;
};

// Works through a list of items a few per slice, as the review tasks of the engine do. Like a
// state machine, it holds the task it drives.
class Worker : public Kesh::TimerTask::Notifiee {
 public:
   Worker( Zub::Ptr< Kesh::Task > t, int items ) : task( t ), left( items ) { notifierIs( t ); }
   void onTaskRun() override {
      runTimes.push_back( task->scheduler()->clock()->now() );
      while( left > 0 ) {
         --left;
         task->taskWorkCountInc( 1 );
         if( left > 0 && task->taskShouldYield() ) {
            task->scheduleTask();
            return;
         }
      }
   }
   Zub::Ptr< Kesh::Task > task;
   int left;
   std::vector< double > runTimes;
};

TEST_F( TimerTaskTest, SlicesAreCutByWorkCountedAndResumeOnLaterTurns ) {
   auto task = Zub::make< Kesh::TimerTask >( scheduler, Kesh::TaskPriority::normal, "review" );
   auto worker = Zub::make< Worker >( task, 7 );
   task->scheduleTask();
   EXPECT_TRUE( worker->runTimes.empty() ) << "a task never runs inside scheduleTask";
   loop->runOnce();
   EXPECT_EQ( worker->left, 4 );
   loop->runUntilIdle();
   EXPECT_EQ( worker->left, 0 );
   EXPECT_EQ( task->taskRuns(), 3u );  // 3 + 3 + 1 items
   EXPECT_FALSE( task->taskScheduled() );
}

TEST_F( TimerTaskTest, DelayedRunsUseSimulatedTimeAndTheLatestSettingWins ) {
   auto task = Zub::make< Kesh::TimerTask >( scheduler, Kesh::TaskPriority::high, "retry" );
   auto worker = Zub::make< Worker >( task, 1 );
   task->scheduleTaskDelay( 60.0 );
   task->scheduleTaskDelay( 1.0 );
   EXPECT_DOUBLE_EQ( task->taskScheduledTime(), 101.0 );
   loop->runUntilIdle();
   ASSERT_EQ( worker->runTimes.size(), 1u );
   EXPECT_DOUBLE_EQ( worker->runTimes[ 0 ], 101.0 );
   // scheduleTask keeps an earlier run and pulls a later one forward.
   task->scheduleTaskDelay( 5.0 );
   task->scheduleTask();
   EXPECT_DOUBLE_EQ( task->taskScheduledTime(), loop->now() );
}

TEST_F( TimerTaskTest, ADestroyedTaskNeverRuns ) {
   Zub::Ptr< Worker > worker;
   {
      auto task = Zub::make< Kesh::TimerTask >( scheduler, Kesh::TaskPriority::low, "gone" );
      worker = Zub::make< Worker >( task, 1 );
      task->scheduleTaskDelay( 1.0 );
      worker->notifierIs( nullptr );
      worker->task = nullptr;
   }
   loop->runUntilIdle();
   EXPECT_TRUE( worker->runTimes.empty() );
   EXPECT_TRUE( loop->idle() );
}

class WheelReactor : public Kesh::TimerWheel::NotifieeConst {
 public:
   void onTime() override { fired.push_back( notifier()->now() ); }
   std::vector< double > fired;
};

TEST_F( TimerTaskTest, TimerWheelReactorsEachKeepTheirOwnTimeMin ) {
   auto wheel = Zub::make< Kesh::TimerWheel >();
   auto a = Zub::make< WheelReactor >(), b = Zub::make< WheelReactor >();
   a->notifierIs( wheel );
   b->notifierIs( wheel );
   a->timeMinIs( 160.0 );
   b->timeMinIs( 130.0 );
   loop->runUntil( 200.0 );
   EXPECT_EQ( a->fired, std::vector< double >{ 160.0 } );
   EXPECT_EQ( b->fired, std::vector< double >{ 130.0 } );
   EXPECT_DOUBLE_EQ( loop->now(), 200.0 );
}

}  // namespace

// A walk that starts over on every slice, as a review that never gets past its first keys.
class Restarter : public Kesh::TimerTask::Notifiee {
 public:
   explicit Restarter( Zub::Ptr< Kesh::Task > t ) : task( t ) { notifierIs( t ); }
   void onTaskRun() override { task->scheduleTask(); }
   Zub::Ptr< Kesh::Task > task;
};

TEST_F( TimerTaskTest, ATaskThatNeverFinishesIsNamedByTheLoopsRunawayGuard ) {
   auto task = Zub::make< Kesh::TimerTask >( scheduler, Kesh::TaskPriority::normal, "review" );
   auto restarter = Zub::make< Restarter >( task );
   loop->runawayLimitIs( 500 );
   task->scheduleTask();
   try {
      loop->runUntil( 200.0 );
      ADD_FAILURE() << "the task ran to its end";
   } catch( Zub::RunawayException const& e ) {
      EXPECT_EQ( e.timer(), Zub::String( "task review" ) );
      EXPECT_EQ( e.time(), 100.0 );
   }
   loop->runawayLimitIs( 0 );
}
