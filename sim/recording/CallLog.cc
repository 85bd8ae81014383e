#include "NevQos/sim/recording/CallLog.h"

#include <utility>

namespace Sim {

namespace {

bool sameCall( ChipCall const& a, ChipCall const& b ) {
   return a.op == b.op && a.helper == b.helper && a.args == b.args;
}

}  // namespace

std::optional< Zub::Seconds > CallRun::timeOf( std::uint64_t k ) const {
   if( k < firstCount ) return call.t;
   if( k >= untilFrom ) return until;
   if( timesKept && k < times.size() ) return times[ k ];
   return std::nullopt;
}

CallLog::CallLog( std::size_t keepFirst, std::size_t keepLast, std::size_t keepTimes )
    : keepFirst_( keepFirst )
    ,
    // The run being added to is always kept.
    keepLast_( keepLast == 0 ? 1 : keepLast )
    , keepTimes_( keepTimes ) {}

void CallLog::clear() {
   timesHeld_ = 0;
   total_ = 0;
   counts_.clear();
   first_.clear();
   gap_.reset();
   last_.clear();
}

void CallLog::append( ChipCall call ) {
   ++counts_[ call.op ];
   CallRun* const current =
         !last_.empty() ? &last_.back() : ( !first_.empty() ? &first_.back() : nullptr );
   if( current && sameCall( current->call, call ) ) {
      timesAppend( *current, call.t );
      if( current->firstCount == current->count && sameInstant( call.t, current->call.t ) ) {
         ++current->firstCount;
      }
      if( !sameInstant( call.t, current->until ) ) current->untilFrom = current->count;
      ++current->count;
      current->until = call.t;
   } else {
      newRun( std::move( call ) );
   }
   ++total_;
}

CallRun& CallLog::newRun( ChipCall&& call ) {
   CallRun run;
   run.until = call.t;
   run.callsBefore = total_;
   run.call = std::move( call );
   if( first_.size() < keepFirst_ && last_.empty() && !gap_ ) {
      first_.push_back( std::move( run ) );
      return first_.back();
   }
   last_.push_back( std::move( run ) );
   if( last_.size() > keepLast_ ) {
      leaveOut( last_.front() );
      last_.pop_front();
   }
   return last_.back();
}

void CallLog::timesAppend( CallRun& run, Zub::Seconds t ) {
   if( !run.timesKept ) return;
   // The run's first time joins its list with the second.
   std::size_t const wanted = run.times.empty() ? 2 : 1;
   if( timesHeld_ + wanted > keepTimes_ ) {
      timesHeld_ -= run.times.size();
      run.times = {};
      run.timesKept = false;
      return;
   }
   if( run.times.empty() ) run.times.push_back( run.call.t );
   run.times.push_back( t );
   timesHeld_ += wanted;
}

void CallLog::leaveOut( CallRun const& run ) {
   timesHeld_ -= run.times.size();
   if( !gap_ ) {
      gap_.emplace();
      gap_->from = run.call.t;
      gap_->callsBefore = run.callsBefore;
   }
   gap_->calls += run.count;
   ++gap_->runs;
   gap_->until = run.until;
   gap_->counts[ run.call.op ] += run.count;
}

std::vector< ChipCall > CallLog::kept() const {
   std::vector< ChipCall > out;
   auto const add = [ &out ]( CallRun const& run ) {
      for( std::uint64_t k = 0; k < run.count; ++k ) {
         out.push_back( run.call );
         out.back().t = run.timeOf( k ).value_or( run.call.t );
      }
   };
   for( CallRun const& run : first_ )
      add( run );
   for( CallRun const& run : last_ )
      add( run );
   return out;
}

}  // namespace Sim
