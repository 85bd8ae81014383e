// The line that tells a person watching a long run how far it is: virtual time, steps done of
// all, helper calls so far. Only on a terminal, so that logs and pipes never see it, and at most
// a few times a wall second, so that it costs the run nothing.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <ostream>

namespace Sim {

class Progress {
 public:
   Progress( std::ostream& out, bool terminal, std::size_t steps );
   // Shows where the run is, unless a line went out less than a quarter second ago.
   void update( double t, std::size_t stepsDone, std::uint64_t calls );
   // Clears the line, if one was shown, so that what follows starts on a clean one.
   void finish();

 private:
   std::ostream& out_;
   bool terminal_;
   std::size_t steps_;
   bool shown_ = false;
   std::chrono::steady_clock::time_point last_{};
};

}  // namespace Sim
