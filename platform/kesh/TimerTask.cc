#include "NevQos/platform/kesh/TimerTask.h"

#include <algorithm>

namespace Kesh {

TaskScheduler::TaskScheduler( Zub::ActivityManager* loop )
    : clock_( Zub::make< Zub::Clock >( loop ) ) {}

class Task::RunClock : public Zub::Clock::NotifieeConst {
 public:
   explicit RunClock( Task* task ) : task_( task ) {}
   void onTime() override { task_->run(); }
   Zub::String timerName() const override { return Zub::String( "task " ) + task_->name(); }

 private:
   Task* task_;
};

Task::Task( Zub::Ptr< TaskScheduler > const& scheduler, TaskPriority priority,
            Zub::String const& name )
    : Zub::Entity( name ), scheduler_( scheduler ), priority_( priority ) {
   runClock_ = Zub::make< RunClock >( this );
   runClock_->notifierIs( scheduler_->clock() );
}

Task::~Task() {
   runClock_->timeMinIs( Zub::never );
}

void Task::scheduleTask() {
   Zub::Seconds now = scheduler_->clock()->now();
   if( runClock_->timeMin() <= now ) return;
   runClock_->timeMinIs( now );
}

void Task::scheduleTaskDelay( Zub::Seconds delay ) {
   runClock_->timeMinIs( scheduler_->clock()->now() + std::max( delay, 0.0 ) );
}

bool Task::taskScheduled() const {
   return runClock_->timeMin() != Zub::never;
}

Zub::Seconds Task::taskScheduledTime() const {
   return runClock_->timeMin();
}

void Task::run() {
   workCount_ = 0;
   ++runs_;
   zubNotify< Notifiee >( []( Notifiee& n ) { n.onTaskRun(); } );
}

}  // namespace Kesh
