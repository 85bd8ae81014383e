#include "NevQos/sim/runner/Progress.h"

#include <cstdio>

namespace Sim {

Progress::Progress( std::ostream& out, bool terminal, std::size_t steps )
    : out_( out ), terminal_( terminal ), steps_( steps ) {}

void Progress::update( double t, std::size_t stepsDone, std::uint64_t calls ) {
   if( !terminal_ ) return;
   auto const now = std::chrono::steady_clock::now();
   if( shown_ && now - last_ < std::chrono::milliseconds( 250 ) ) return;
   last_ = now;
   shown_ = true;
   char line[ 128 ];
   std::snprintf( line, sizeof line, "\r\033[Kt=%.3f step %zu/%zu calls %llu", t, stepsDone, steps_,
                  static_cast< unsigned long long >( calls ) );
   out_ << line << std::flush;
}

void Progress::finish() {
   if( !shown_ ) return;
   out_ << "\r\033[K" << std::flush;
   shown_ = false;
}

}  // namespace Sim
