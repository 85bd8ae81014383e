#include "NevQos/platform/zub/Assert.h"

#include <cstdio>
#include <cstdlib>

namespace Zub {

void assertFail( char const* text, char const* file, int line, char const* function ) {
   std::fprintf( stderr, "%s:%d: %s: Assertion `%s' failed.\n", file, line, function, text );
   std::fflush( stderr );
   std::abort();
}

}  // namespace Zub
