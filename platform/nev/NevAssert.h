// The common layer's assertion for broken invariants of a machine or a helper.
#pragma once

#include "NevQos/platform/zub/String.h"

namespace Nev {

// Writes `error` and a line end to standard error, then fails an assertion. Never returns.
[[noreturn]] void nevAssert( Zub::String const& error );

// Whether a driver operation that a chip does not implement should return a neutral value
// instead of stopping the process: true while the environment variable NEV_NOOP_AGENT exists,
// whatever its value. Read on every call, never cached.
bool noopAgent();

}  // namespace Nev
