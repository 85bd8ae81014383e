// What a driver may offer the conformance run so that it can check that what a configuration
// takes comes back when the configuration goes: the resources in use, by a name of the driver's
// choosing ("policers", "TCAM entries ipv4"), read from its hardware tables. A helper the driver's
// factories return may implement it; the run asks every helper that does and skips the check,
// with a note, when none does.
#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace Conformance {

class ResourceUsage {
 public:
   virtual ~ResourceUsage() = default;
   virtual std::map< std::string, std::uint64_t > resourcesInUse() const = 0;
};

}  // namespace Conformance
