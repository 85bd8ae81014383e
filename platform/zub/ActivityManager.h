// The event loop. Everything runs in callbacks of one loop on one thread: timers (clock
// reactors), task slices, and whatever the hosting program injects.
//
// One turn fires, in order of time and then of scheduling, the timers that were due when the
// turn began; a timer set during a turn, even to a time already passed, waits for the next
// turn. Time comes from one source per loop: real time in an agent, virtual time in tests and
// in the simulator, where a turn with nothing due jumps straight to the next timer, so a
// 60-second retry costs no wall time.
#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <utility>
#include <vector>

#include "NevQos/platform/zub/Clock.h"
#include "NevQos/platform/zub/Exception.h"

namespace Zub {

// A loop that kept firing far past any settled run: more turns than the loop's limit within one
// second of its time. `what()` names the turns, the time and the timer that fired most.
class RunawayException : public Exception {
 public:
   RunawayException( std::size_t turns, Seconds time, String const& timer );
   std::size_t turns() const { return turns_; }
   Seconds time() const { return time_; }
   String const& timer() const { return timer_; }

 private:
   std::size_t turns_;
   Seconds time_;
   String timer_;
};

// Read-side of the loop as the state machines see it: the loop's own clock.
class ActivityManagerConfig {
 public:
   virtual ~ActivityManagerConfig() = default;
   virtual Ptr< Clock > clock() const = 0;
};

class ActivityManager : public PtrInterface, public ActivityManagerConfig {
 public:
   enum class TimeSource { real, simulated };

   // Virtual time starts at `start` seconds; 0.0 would read as "not set".
   static Ptr< ActivityManager > create( TimeSource source, Seconds start = 1.0 );
   ~ActivityManager() override;

   TimeSource timeSource() const { return source_; }
   Seconds now() const;
   Ptr< Clock > clock() const override { return clock_; }

   // One turn. With nothing due, simulated time jumps to the next timer and real time sleeps
   // until it. Returns the number of callbacks fired.
   std::size_t runOnce();
   // Turns until nothing is due at or before `t`; simulated time then stands at `t`.
   void runUntil( Seconds t );
   // Turns until no timer is scheduled, at most `maxTurns`. Returns the turns taken.
   std::size_t runUntilIdle( std::size_t maxTurns = std::numeric_limits< std::size_t >::max() );

   bool idle() const { return timers_.empty(); }
   std::size_t scheduled() const { return timers_.size(); }
   // Time of the earliest timer, or never.
   Seconds nextTime() const;
   // Simulated time only: move the time forward without firing anything.
   void timeIs( Seconds t );

   // A guard for hosts that must never hang, such as the simulator: once `turns` turns are taken
   // within one second of the loop's time (a timer or task that keeps firing at one instant, or
   // in ever smaller steps), the loop notes which timers fire over `turns / 10` turns more and
   // then throws RunawayException from the turn, between callbacks. A run that settles or moves
   // on meanwhile goes on. 0, the default, sets no limit.
   void runawayLimitIs( std::size_t turns );
   std::size_t runawayLimit() const { return runawayLimit_; }

 private:
   friend class Clock;
   friend class Clock::NotifieeConst;
   using TimerKey = std::pair< Seconds, std::uint64_t >;

   ActivityManager( TimeSource source, Seconds start );
   void schedule( Clock::NotifieeConst* n, Seconds t );
   void cancel( Clock::NotifieeConst* n );
   void fireDue( std::vector< TimerKey > const& due );
   void runawayCheck( Seconds turnTime );

   TimeSource source_;
   Seconds simulatedNow_;
   std::uint64_t nextSequence_ = 1;
   std::map< TimerKey, Clock::NotifieeConst* > timers_;
   std::vector< Clock* > clocks_;
   std::vector< TimerKey > dueScratch_;
   Ptr< Clock > clock_;
   // The runaway guard: the turns since the window began, and while they are past the limit, the
   // callbacks fired by timer name.
   std::size_t runawayLimit_ = 0;
   Seconds windowStart_ = -never;
   std::size_t windowTurns_ = 0;
   bool diagnosing_ = false;
   std::map< String, std::size_t > firedBy_;
};

// The loop of this thread. A real-time loop is made on first use unless one was installed.
ActivityManager* activityManager();
void activityManagerIs( Ptr< ActivityManager > const& loop );

namespace System {
// The current time of the loop of this thread.
Seconds currentTime();
}  // namespace System

}  // namespace Zub
