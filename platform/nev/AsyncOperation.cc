#include "NevQos/platform/nev/AsyncOperation.h"

#include <ostream>

namespace Nev {

char const* stringValue( AsyncOperationState s ) {
   switch( s ) {
      case AsyncOperationState::asyncNone:
         return "asyncNone";
      case AsyncOperationState::asyncPending:
         return "asyncPending";
      case AsyncOperationState::asyncInProgress:
         return "asyncInProgress";
   }
   return "unknown";
}

std::ostream& operator<<( std::ostream& os, AsyncOperationState s ) {
   return os << stringValue( s );
}

std::ostream& operator<<( std::ostream& os, AsyncOperationResult const& r ) {
   return os << "AsyncOperationResult(" << r.message() << ", " << r.time() << ")";
}

}  // namespace Nev
