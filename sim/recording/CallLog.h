// The runner's record of helper calls, bounded so that a run that retries for hours of virtual
// time keeps its memory flat. Consecutive identical calls (same helper, operation and arguments)
// are one run with a count; the first runs and the last runs are kept, and what falls between
// them is one gap that only counts. The number of calls, in all and by operation, stays exact.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "NevQos/sim/recording/ChipCall.h"

namespace Sim {

// `count` identical calls in a row, the first at call.t and the last at `until`.
struct CallRun {
   ChipCall call;
   std::uint64_t count = 1;
   Zub::Seconds until = 0.0;
   // Calls of the whole record before this run's first.
   std::uint64_t callsBefore = 0;
   // The calls [0, firstCount) came at the first time, [untilFrom, count) at the last: their
   // times are known without the list, and the calls between came strictly between.
   std::uint64_t firstCount = 1;
   std::uint64_t untilFrom = 0;
   // The time of each call of a run of more than one while the log's budget of times allows;
   // empty for a single call, or when the times were given up.
   std::vector< Zub::Seconds > times;
   bool timesKept = true;

   // The time of call `k` of the run (0 the first), when known.
   std::optional< Zub::Seconds > timeOf( std::uint64_t k ) const;
};

// Two times of one instant, apart by no more than the rounding of virtual time.
inline bool sameInstant( Zub::Seconds a, Zub::Seconds b ) {
   return a - b <= 1e-9 && b - a <= 1e-9;
}

// The runs left out between the first and the last kept.
struct CallGap {
   std::uint64_t calls = 0;
   std::uint64_t runs = 0;
   Zub::Seconds from = 0.0;   // the first call left out
   Zub::Seconds until = 0.0;  // the last
   std::uint64_t callsBefore = 0;
   std::map< std::string, std::uint64_t > counts;  // by operation
};

class CallLog {
 public:
   static constexpr std::size_t defaultKeep = 10000;
   // Times of calls inside runs kept at most, over all runs kept: 8 MB.
   static constexpr std::size_t defaultTimes = 1000000;

   explicit CallLog( std::size_t keepFirst = defaultKeep, std::size_t keepLast = defaultKeep,
                     std::size_t keepTimes = defaultTimes );

   void append( ChipCall call );
   void clear();

   // Every call appended since the last clear, kept or not.
   std::uint64_t size() const { return total_; }
   bool empty() const { return total_ == 0; }
   std::map< std::string, std::uint64_t > const& counts() const { return counts_; }

   // The record in order: the first runs, the gap if any, the last runs.
   std::vector< CallRun > const& first() const { return first_; }
   std::optional< CallGap > const& gap() const { return gap_; }
   std::deque< CallRun > const& last() const { return last_; }
   std::size_t runs() const { return first_.size() + last_.size(); }

   // The calls kept, one by one, each at its time (a run's first time where its times were given
   // up): for the small records of tests.
   std::vector< ChipCall > kept() const;

 private:
   CallRun& newRun( ChipCall&& call );
   void timesAppend( CallRun& run, Zub::Seconds t );
   void leaveOut( CallRun const& run );

   std::size_t keepFirst_;
   std::size_t keepLast_;
   std::size_t keepTimes_;
   std::size_t timesHeld_ = 0;
   std::uint64_t total_ = 0;
   std::map< std::string, std::uint64_t > counts_;
   std::vector< CallRun > first_;
   std::optional< CallGap > gap_;
   std::deque< CallRun > last_;
};

}  // namespace Sim
