// The project's version as the runner gives it (nevqos-sim --version, the report's "version"),
// and the version of the JSON report's shape, which changes only when a reader of the report must.
#pragma once

namespace Sim {

// The project's semantic version, "MAJOR.MINOR.PATCH".
char const* projectVersion();

// Raised when a key of the report changes its meaning or its type or goes away; new keys alone
// leave it as it is.
constexpr int reportFormatVersion = 2;

}  // namespace Sim
