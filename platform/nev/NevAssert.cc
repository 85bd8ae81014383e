#include "NevQos/platform/nev/NevAssert.h"

#include <cstdio>
#include <cstdlib>

#include "NevQos/platform/zub/Assert.h"

namespace Nev {

void nevAssert( Zub::String const& error ) {
   std::fprintf( stderr, "%s\n", error.charPtr() );
   std::fflush( stderr );
   Zub::assertFail( "0", __FILE__, __LINE__, __func__ );
}

bool noopAgent() {
   return std::getenv( "NEV_NOOP_AGENT" ) != nullptr;
}

}  // namespace Nev
