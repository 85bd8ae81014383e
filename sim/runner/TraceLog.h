// The trace lines a switch keeps, bounded as its call record is: the first and the last lines
// kept, those between them only counted in one gap. An engine that retries traces a few lines
// per try (the CBF machine's cycle of review, process and "not ready"), so lines in a row are
// rarely identical and are not counted as runs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "NevQos/platform/zub/Entity.h"

namespace Sim {

// One line of an engine's trace, as the switch's trace handles wrote it.
struct TraceLine {
   Zub::Seconds t = 0.0;
   std::string handle;
   int level = 0;
   std::string function;
   std::string text;
};

struct TraceGap {
   std::uint64_t lines = 0;
   Zub::Seconds from = 0.0;
   Zub::Seconds until = 0.0;
};

class TraceLog {
 public:
   static constexpr std::size_t defaultKeep = 10000;

   explicit TraceLog( std::size_t keepFirst = defaultKeep, std::size_t keepLast = defaultKeep )
       : keepFirst_( keepFirst ), keepLast_( keepLast ) {}

   void append( TraceLine line ) {
      ++total_;
      if( first_.size() < keepFirst_ && !gap_ ) {
         first_.push_back( std::move( line ) );
         return;
      }
      last_.push_back( std::move( line ) );
      if( last_.size() <= keepLast_ ) return;
      TraceLine const& out = last_.front();
      if( !gap_ ) gap_ = TraceGap{ 0, out.t, out.t };
      ++gap_->lines;
      gap_->until = out.t;
      last_.pop_front();
   }

   // Every line written, kept or not.
   std::uint64_t size() const { return total_; }
   std::vector< TraceLine > const& first() const { return first_; }
   std::optional< TraceGap > const& gap() const { return gap_; }
   std::deque< TraceLine > const& last() const { return last_; }
   // The lines kept, in order.
   std::vector< TraceLine > kept() const {
      std::vector< TraceLine > out( first_ );
      out.insert( out.end(), last_.begin(), last_.end() );
      return out;
   }

 private:
   std::size_t keepFirst_;
   std::size_t keepLast_;
   std::uint64_t total_ = 0;
   std::vector< TraceLine > first_;
   std::optional< TraceGap > gap_;
   std::deque< TraceLine > last_;
};

}  // namespace Sim
