// How the text report writes what it takes from the report document: names and texts with their
// control characters escaped, so that no name breaks a line, and times in full.
#pragma once

#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

namespace Sim {

// `text` with each control character written as an escape (\n, \t, \r, \x01, \x7f, \u0085).
std::string printableText( std::string_view text );
// A string member of the report, printable.
std::string printable( nlohmann::ordered_json const& text );

// Seconds with three decimals, or as many more as the time has: never rounded.
std::string timeText( double t );
// The same, right-aligned in a column nine wide.
std::string timeColumn( double t );

}  // namespace Sim
