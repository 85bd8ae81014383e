// A program run as a child process, as a user runs it: its time and its peak resident memory.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace Bench {

struct ChildRun {
   double seconds = 0.0;
   double peakBytes = 0.0;
};

// Runs `program` with `args`, its standard output into `output`; aborts unless it ends with 0.
ChildRun childRun( std::string const& program, std::vector< std::string > const& args,
                   std::filesystem::path const& output );

// A fresh directory under the temporary one, named after `prefix`.
std::filesystem::path temporaryDirectory( std::string const& prefix );

}  // namespace Bench
