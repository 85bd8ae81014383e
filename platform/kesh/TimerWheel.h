// The agent's shared timer wheel. State machines hold it as their `clock` attribute and watch
// it with a reactor (`Kesh::TimerWheel::NotifieeConst`) whose `timeMinIs( t )` schedules its
// one `onTime()`; the rules are those of every Zub::Clock.
#pragma once

#include "NevQos/platform/zub/ActivityManager.h"
#include "NevQos/platform/zub/Clock.h"

namespace Kesh {

class TimerWheel : public Zub::Clock {
 public:
   // A wheel on `loop`, by default the loop of this thread.
   explicit TimerWheel( Zub::ActivityManager* loop = Zub::activityManager() )
       : Zub::Clock( loop ) {}
};

}  // namespace Kesh
