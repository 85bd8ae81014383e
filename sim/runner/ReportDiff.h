// nevqos-sim diff: what differs between two JSON reports of the runner. The TCAM is compared as
// sets (an ACL's entries in any order, by what they match and do), the status as values by name,
// the log and the helper calls as sequences; times only when asked, so that two runs of one
// configuration on different TCAM modes or timings compare by what they did.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <set>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace Sim {

struct DiffOptions {
   // Compare the times of calls, log lines and status too.
   bool times = false;
   // Compare the subrule numbers of TCAM entries too. They count the pieces a rule was compiled
   // into, which the engine's expansion of a range numbers one by one and a chip that expands a
   // range itself leaves at the rule's one subrule: the same entries, numbered differently.
   bool subrules = false;
   // The parts to compare: "tcam", "status", "logs", "calls"; all when empty.
   std::set< std::string > parts = {};
   // The differences listed per part at most; the rest are counted.
   std::size_t limit = 20;
};

// One compared part: a line of what it holds, and the differences.
struct PartDiff {
   std::string part;
   std::string summary;
   std::vector< std::string > differences;
};

inline constexpr char const* diffParts[] = { "tcam", "status", "logs", "calls" };

// Why `report` is not a report whose parts can be compared, or empty.
std::string notAReport( nlohmann::ordered_json const& report );

// Both reports must pass notAReport. A part whose members are not of the report's shape throws
// nlohmann's exception, naming what it found.
std::vector< PartDiff > diffReports( nlohmann::ordered_json const& a,
                                     nlohmann::ordered_json const& b, DiffOptions const& options );

// Prints each part as "same" or its differences; returns whether any part differs.
bool printDiff( std::ostream& os, std::vector< PartDiff > const& diff, DiffOptions const& options );

}  // namespace Sim
