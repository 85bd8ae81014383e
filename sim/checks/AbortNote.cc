#include "NevQos/sim/checks/AbortNote.h"

#include <unistd.h>

#include <csignal>
#include <utility>

namespace Sim {

namespace {

AbortNote* innermost = nullptr;
// The text of the innermost note, kept where the signal handler may read it without allocating.
std::string const* noteText = nullptr;

extern "C" void onAbort( int signal ) {
   if( noteText ) {
      constexpr char prefix[] = "\n*** the process aborted in: ";
      [[maybe_unused]] auto n = write( STDERR_FILENO, prefix, sizeof prefix - 1 );
      n = write( STDERR_FILENO, noteText->data(), noteText->size() );
      n = write( STDERR_FILENO, "\n", 1 );
   }
   std::signal( signal, SIG_DFL );
   std::raise( signal );
}

}  // namespace

AbortNote::AbortNote( std::string text ) : text_( std::move( text ) ), outer_( innermost ) {
   if( !outer_ ) std::signal( SIGABRT, onAbort );
   innermost = this;
   noteText = &text_;
}

AbortNote::~AbortNote() {
   innermost = outer_;
   noteText = outer_ ? &outer_->text_ : nullptr;
   if( !outer_ ) std::signal( SIGABRT, SIG_DFL );
}

}  // namespace Sim
