// The process's own memory figures, read from /proc/self/status.
#pragma once

#include <string>

namespace Bench {

// A line of /proc/self/status such as "VmHWM:  1234 kB", in bytes.
double statusBytes( std::string const& field );
// Starts a new peak (VmHWM) at the present resident set; false where the kernel does not allow it.
bool peakResetIs();
// The peak resident set since the last reset, or the present one where no peak can be reset.
double peakResidentBytes( bool peakReset );

}  // namespace Bench
