// The state of an asynchronous hardware operation, and the result a driver reports for it.
#pragma once

#include <cstdint>
#include <iosfwd>

#include "NevQos/platform/zub/Entity.h"
#include "NevQos/platform/zub/String.h"

namespace Nev {

enum class AsyncOperationState : std::uint32_t {
   asyncNone = 0,        // nothing in flight
   asyncPending = 1,     // set by the platform layer; never written by the QoS logic
   asyncInProgress = 2,  // handed to the driver; its result is awaited
};
inline constexpr AsyncOperationState asyncNone = AsyncOperationState::asyncNone;
inline constexpr AsyncOperationState asyncPending = AsyncOperationState::asyncPending;
inline constexpr AsyncOperationState asyncInProgress = AsyncOperationState::asyncInProgress;

char const* stringValue( AsyncOperationState s );
std::ostream& operator<<( std::ostream& os, AsyncOperationState s );

// A driver reports the end of an operation by writing a result with a non-zero time; a time of
// 0.0 means there is no result.
class AsyncOperationResult {
 public:
   AsyncOperationResult() = default;
   AsyncOperationResult( Zub::String const& message, Zub::Seconds time )
       : message_( message ), time_( time ) {}
   Zub::String const& message() const { return message_; }
   Zub::Seconds time() const { return time_; }
   bool operator==( AsyncOperationResult const& o ) const {
      return time_ == o.time_ && message_ == o.message_;
   }

 private:
   Zub::String message_;
   Zub::Seconds time_ = 0.0;
};

std::ostream& operator<<( std::ostream& os, AsyncOperationResult const& r );

}  // namespace Nev
