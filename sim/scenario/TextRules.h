// The rules every text and every time of a scenario follows, shared by the YAML reader and the
// runner's command line: what the reports can write back as it was read.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace Sim {

// Length of the well-formed UTF-8 sequence that starts at `i`, or 0: no overlong form, no
// surrogate, nothing past U+10FFFF.
std::size_t utf8SequenceAt( std::string_view text, std::size_t i );

// The code point of the control character (C0, DEL or C1) that the well-formed UTF-8 sequence of
// `n` bytes at `i` is, or nothing.
std::optional< unsigned > controlCharAt( std::string_view text, std::size_t i, std::size_t n );

// What keeps `text` from being a name or a text of a scenario, or nothing: it must be UTF-8
// without control characters (C0, DEL and C1), so that each report writes it back as one piece.
std::optional< std::string > textProblem( std::string_view text );

// The longest time a scenario may give: the virtual clock counts seconds in a double, which up
// to here still tells microseconds apart.
inline constexpr double maxSeconds = 1e9;

// A number of seconds written in decimal (with a fraction and an exponent if need be) that the
// clock holds exactly as written, from 0 to maxSeconds; or the problem.
struct SecondsText {
   double value = 0.0;
   std::string problem;  // empty when the text is good
};
SecondsText secondsOf( std::string_view text );

}  // namespace Sim
