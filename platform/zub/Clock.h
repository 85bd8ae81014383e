// Clocks. A clock is a source of time driven by an event loop (zub/ActivityManager.h); a
// reactor on it (`Clock::NotifieeConst`) carries a `timeMin` and hears `onTime()` once the loop
// reaches it.
//
// - `timeMinIs( t )` schedules the reactor's one callback at `t`, replacing any earlier setting:
//   two settings before the firing give one firing.
// - A `t` in the past or equal to now fires on the next turn of the loop, never inside the
//   setter. This is how a handler yields: it sets a clock to now and returns.
// - `timeMinIs( Zub::never )` cancels. After a firing `timeMin` is `never` again.
#pragma once

#include <cstdint>

#include "NevQos/platform/zub/Entity.h"

namespace Zub {

class ActivityManager;

class Clock : public Notifier {
 public:
   class NotifieeConst : public NotifieeBase {
    public:
      ~NotifieeConst() override;
      Ptr< Clock const > notifier() const { return static_cast< Clock const* >( zubNotifier() ); }
      // Attaches to `c`; a pending `timeMin` moves with the reactor to the new clock.
      void notifierIs( Ptr< Clock const > const& c );
      void notifierIsWithoutCatchUp( Ptr< Clock const > const& c ) { notifierIs( c ); }

      Seconds timeMin() const { return timeMin_; }
      void timeMinIs( Seconds t );
      virtual void onTime() {}
      // How the loop names this timer when it reports a run that never settles: the reactor's
      // class unless a subclass knows better.
      virtual String timerName() const;

    private:
      friend class ActivityManager;
      Seconds timeMin_ = never;
      std::uint64_t sequence_ = 0;  // the loop's entry while scheduled, 0 when not
   };

   explicit Clock( ActivityManager* loop );
   ~Clock() override;
   // The loop's current time.
   Seconds now() const;
   ActivityManager* activityManager() const { return loop_; }

 private:
   friend class ActivityManager;
   ActivityManager* loop_;
};

}  // namespace Zub
