// Identifiers of the forwarding information base.
#pragma once

#include <cstdint>

namespace Glarn::Fib {

// A forwarding equivalence class, as the routing side numbers it.
using FecId = std::uint64_t;

}  // namespace Glarn::Fib
