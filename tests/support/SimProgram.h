// Runs the nevqos-sim program of this build, as a user runs it.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace NevQosTest {

struct SimRun {
   int exitCode = -1;
   std::string out;
   std::string err;
   nlohmann::json report() const { return nlohmann::json::parse( out ); }
};

SimRun runSim( std::vector< std::string > const& args );

// The path of a bundled example.
std::string example( std::string const& name );

// A scenario written to a file of its own in the test's temporary folder; its path.
std::string scenarioFile( std::string const& name, std::string const& text );

}  // namespace NevQosTest
