// Cooperative tasks. A task's reactor hears `onTaskRun()`; the callback does a slice of work,
// counts it with `taskWorkCountInc( n )`, asks `taskShouldYield()` and, if told to, calls
// `scheduleTask()` to continue on a later turn of the loop, so that other work runs between
// slices.
//
// Yielding is decided by work done, not by time taken: a slice ends once it has counted the
// scheduler's work quantum. So the same input cuts into the same slices on every run.
#pragma once

#include <cstdint>

#include "NevQos/platform/zub/ActivityManager.h"
#include "NevQos/platform/zub/Entity.h"

namespace Kesh {

// Relative urgency of a task. Tasks due at the same time run in scheduling order; the priority
// is kept for diagnostics.
enum class TaskPriority : std::uint8_t { low = 0, normal = 1, high = 2, critical = 3 };

class TaskScheduler : public Zub::PtrInterface {
 public:
   static constexpr std::uint64_t defaultWorkQuantum = 100;

   explicit TaskScheduler( Zub::ActivityManager* loop = Zub::activityManager() );
   Zub::Ptr< Zub::Clock > const& clock() const { return clock_; }
   // Units of work one slice may count before `taskShouldYield()` says yes.
   std::uint64_t workQuantum() const { return workQuantum_; }
   void workQuantumIs( std::uint64_t units ) { workQuantum_ = units ? units : 1; }

 private:
   Zub::Ptr< Zub::Clock > clock_;
   std::uint64_t workQuantum_ = defaultWorkQuantum;
};

// The base of tasks: a notifier whose reactors hear onTaskRun().
class Task : public Zub::Entity {
 public:
   class Notifiee : public Zub::Entity::Notifiee {
    public:
      static constexpr std::uint8_t zubDepth = 1;
      Zub::Ptr< Task const > notifier() const {
         return static_cast< Task const* >( this->zubNotifier() );
      }
      void notifierIs( Zub::Ptr< Task const > const& t ) {
         zubNotifierIs( t.ptr(), zubDepth, true );
      }
      void notifierIsWithoutCatchUp( Zub::Ptr< Task const > const& t ) {
         zubNotifierIs( t.ptr(), zubDepth, false );
      }
      virtual void onTaskRun() {}
   };

   Task( Zub::Ptr< TaskScheduler > const& scheduler, TaskPriority priority,
         Zub::String const& name );
   ~Task() override;

   TaskPriority priority() const { return priority_; }
   Zub::Ptr< TaskScheduler > const& scheduler() const { return scheduler_; }

   // Runs the task on the next turn of the loop. A run already scheduled sooner stays.
   void scheduleTask();
   // Runs the task `delay` seconds from now, replacing any scheduled run.
   void scheduleTaskDelay( Zub::Seconds delay );
   bool taskScheduled() const;
   Zub::Seconds taskScheduledTime() const;

   void taskWorkCountInc( std::uint64_t n ) { workCount_ += n; }
   std::uint64_t taskWorkCount() const { return workCount_; }
   bool taskShouldYield() const { return workCount_ >= scheduler_->workQuantum(); }
   // Runs started so far.
   std::uint64_t taskRuns() const { return runs_; }

 private:
   class RunClock;
   void run();

   Zub::Ptr< TaskScheduler > scheduler_;
   TaskPriority priority_;
   Zub::Ptr< RunClock > runClock_;
   std::uint64_t workCount_ = 0;
   std::uint64_t runs_ = 0;
};

// A task run by the loop's timers; the kind the state machines create.
class TimerTask : public Task {
 public:
   TimerTask( Zub::Ptr< TaskScheduler > const& scheduler, TaskPriority priority,
              Zub::String const& name )
       : Task( scheduler, priority, name ) {}
};

}  // namespace Kesh
