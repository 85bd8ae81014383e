// Assertions for broken invariants. They stay on in every build type: a broken invariant is
// fatal for the agent, which the platform restarts.
#pragma once

#include "NevQos/platform/zub/String.h"

namespace Zub {

// Writes "file:line: function: Assertion `text' failed." to standard error and aborts.
[[noreturn]] void assertFail( char const* text, char const* file, int line, char const* function );

}  // namespace Zub

#define ZUB_ASSERT( expr )                   \
   ( static_cast< bool >( expr ) ? void( 0 ) \
                                 : ::Zub::assertFail( #expr, __FILE__, __LINE__, __func__ ) )

// The same with the assertion's text given, for invariants whose report names the condition in
// the words of the code that states it elsewhere.
#define ZUB_ASSERT_TEXT( expr, text )        \
   ( static_cast< bool >( expr ) ? void( 0 ) \
                                 : ::Zub::assertFail( text, __FILE__, __LINE__, __func__ ) )
