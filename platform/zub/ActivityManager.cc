#include "NevQos/platform/zub/ActivityManager.h"

#include <cxxabi.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <thread>
#include <typeinfo>

#include "NevQos/platform/zub/Assert.h"
#include "NevQos/platform/zub/Format.h"

namespace Zub {

// ---- Clock ----

Clock::Clock( ActivityManager* loop ) : loop_( loop ) {
   if( loop_ ) loop_->clocks_.push_back( this );
}

Clock::~Clock() {
   if( loop_ ) std::erase( loop_->clocks_, this );
}

Seconds Clock::now() const {
   return loop_ ? loop_->now() : 0.0;
}

Clock::NotifieeConst::~NotifieeConst() {
   if( sequence_ ) {
      if( auto c = notifier(); c && c->loop_ ) c->loop_->cancel( this );
   }
}

void Clock::NotifieeConst::notifierIs( Ptr< Clock const > const& c ) {
   if( c.ptr() == zubNotifier() ) return;
   Seconds pending = timeMin_;
   timeMinIs( never );
   zubNotifierIs( c.ptr(), 0, false );
   timeMinIs( pending );
}

String Clock::NotifieeConst::timerName() const {
   char const* mangled = typeid( *this ).name();
   int status = 0;
   std::unique_ptr< char, decltype( &std::free ) > const name(
         abi::__cxa_demangle( mangled, nullptr, nullptr, &status ), &std::free );
   return String( status == 0 && name ? name.get() : mangled );
}

void Clock::NotifieeConst::timeMinIs( Seconds t ) {
   auto c = notifier();
   ActivityManager* loop = c ? c->loop_ : nullptr;
   if( sequence_ && loop ) loop->cancel( this );
   timeMin_ = t;
   if( loop && t != never ) loop->schedule( this, t );
}

// ---- ActivityManager ----

RunawayException::RunawayException( std::size_t turns, Seconds time, String const& timer )
    : Exception( format( "still running after %zu turns at virtual time %.12g: %s kept firing",
                         turns, time, timer.charPtr() ) )
    , turns_( turns )
    , time_( time )
    , timer_( timer ) {}

namespace {

Seconds realNow() {
   using namespace std::chrono;
   return duration< double >( system_clock::now().time_since_epoch() ).count();
}

Ptr< ActivityManager >& currentLoop() {
   thread_local Ptr< ActivityManager > loop;
   return loop;
}

}  // namespace

Ptr< ActivityManager > ActivityManager::create( TimeSource source, Seconds start ) {
   return Ptr< ActivityManager >( new ActivityManager( source, start ) );
}

ActivityManager::ActivityManager( TimeSource source, Seconds start )
    : source_( source ), simulatedNow_( start ) {
   clock_ = make< Clock >( this );
}

ActivityManager::~ActivityManager() {
   for( auto& [ key, n ] : timers_ )
      n->sequence_ = 0;
   timers_.clear();
   for( Clock* c : clocks_ )
      c->loop_ = nullptr;
}

Seconds ActivityManager::now() const {
   return source_ == TimeSource::simulated ? simulatedNow_ : realNow();
}

void ActivityManager::timeIs( Seconds t ) {
   ZUB_ASSERT( source_ == TimeSource::simulated );
   simulatedNow_ = std::max( simulatedNow_, t );
}

Seconds ActivityManager::nextTime() const {
   return timers_.empty() ? never : timers_.begin()->first.first;
}

void ActivityManager::schedule( Clock::NotifieeConst* n, Seconds t ) {
   std::uint64_t seq = nextSequence_++;
   timers_.emplace( TimerKey( t, seq ), n );
   n->sequence_ = seq;
}

void ActivityManager::cancel( Clock::NotifieeConst* n ) {
   timers_.erase( TimerKey( n->timeMin_, n->sequence_ ) );
   n->sequence_ = 0;
}

std::size_t ActivityManager::runOnce() {
   if( timers_.empty() ) return 0;
   Seconds first = nextTime();
   if( first > now() ) {
      if( source_ == TimeSource::simulated ) {
         simulatedNow_ = first;
      } else {
         std::this_thread::sleep_for( std::chrono::duration< double >( first - now() ) );
      }
   }
   Seconds const turnTime = now();
   // The scratch list is borrowed, so a turn allocates nothing once the loop has warmed up.
   std::vector< TimerKey > due;
   due.swap( dueScratch_ );
   for( auto const& [ key, n ] : timers_ ) {
      if( key.first > turnTime ) break;
      due.push_back( key );
   }
   fireDue( due );
   std::size_t const fired = due.size();
   due.clear();
   due.swap( dueScratch_ );
   if( runawayLimit_ ) runawayCheck( turnTime );
   return fired;
}

void ActivityManager::runawayLimitIs( std::size_t turns ) {
   runawayLimit_ = turns;
   windowStart_ = -never;
   windowTurns_ = 0;
   diagnosing_ = false;
   firedBy_.clear();
}

// Turns are counted in windows of one second of the loop's time; a window that fills up is
// watched a while longer, so that the report names what kept firing rather than what fired
// last.
void ActivityManager::runawayCheck( Seconds turnTime ) {
   if( turnTime >= windowStart_ + 1.0 ) {
      windowStart_ = turnTime;
      windowTurns_ = 0;
      diagnosing_ = false;
      firedBy_.clear();
   }
   ++windowTurns_;
   if( windowTurns_ < runawayLimit_ ) return;
   diagnosing_ = true;
   if( windowTurns_ < runawayLimit_ + std::max< std::size_t >( runawayLimit_ / 10, 1 ) ) return;
   auto most = firedBy_.begin();
   for( auto it = firedBy_.begin(); it != firedBy_.end(); ++it ) {
      if( it->second > most->second ) most = it;
   }
   String const timer = most == firedBy_.end() ? String( "nothing" ) : most->first;
   std::size_t const turns = windowTurns_;
   runawayLimitIs( runawayLimit_ );
   throw RunawayException( turns, turnTime, timer );
}

void ActivityManager::fireDue( std::vector< TimerKey > const& due ) {
   for( TimerKey const& key : due ) {
      // An earlier callback of this turn may have cancelled or moved this timer.
      auto it = timers_.find( key );
      if( it == timers_.end() ) continue;
      Clock::NotifieeConst* n = it->second;
      timers_.erase( it );
      n->sequence_ = 0;
      n->timeMin_ = never;
      if( n->zombie() || !n->hasNotificationActive() ) continue;
      Ptr< NotifieeBase > keep( n->references() ? n : nullptr );
      if( diagnosing_ ) ++firedBy_[ n->timerName() ];
      n->onTime();
   }
}

void ActivityManager::runUntil( Seconds t ) {
   while( !timers_.empty() && nextTime() <= t )
      runOnce();
   if( source_ == TimeSource::simulated ) simulatedNow_ = std::max( simulatedNow_, t );
}

std::size_t ActivityManager::runUntilIdle( std::size_t maxTurns ) {
   std::size_t turns = 0;
   while( !timers_.empty() && turns < maxTurns ) {
      runOnce();
      ++turns;
   }
   return turns;
}

ActivityManager* activityManager() {
   Ptr< ActivityManager >& loop = currentLoop();
   if( !loop ) loop = ActivityManager::create( ActivityManager::TimeSource::real );
   return loop.ptr();
}

void activityManagerIs( Ptr< ActivityManager > const& loop ) {
   currentLoop() = loop;
}

Seconds System::currentTime() {
   return activityManager()->now();
}

}  // namespace Zub
