// Runs the nevqos-sim program of this build, as a user runs it.
#pragma once

#include <gtest/gtest.h>

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

// The JSON report of a scenario written as `scenarioFile` writes it; the test fails, and the
// report is empty, when the run does not end with exit code 0.
nlohmann::json scenarioReport( std::string const& name, std::string const& text );

// The names of the scenarios (`*.yaml`) of a folder, without the extension, in order.
std::vector< std::string > scenarioNamesIn( std::string const& folder );

// A scenario's name as a test name: '-' is not allowed there.
std::string testNameOf( ::testing::TestParamInfo< std::string > const& param );

// One class of an IPv4 list marking DSCP 10, its map applied to Ethernet1; Ethernet2 is present
// and has no map. The text starts with an empty line, so the first key is on line 2.
std::string oneClassOnEthernet1();

}  // namespace NevQosTest
