#include "support/SimProgram.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace NevQosTest {

namespace {

std::string quoted( std::string const& s ) {
   return "'" + s + "'";
}

}  // namespace

SimRun runSim( std::vector< std::string > const& args ) {
   // One file per run: ctest runs the tests in parallel processes, which share the directory.
   static int runs = 0;
   std::string const errFile = ::testing::TempDir() + "nevqos-sim-" + std::to_string( getpid() ) +
                               "-" + std::to_string( ++runs ) + ".err";
   std::string command = quoted( NEVQOS_SIM_PROGRAM );
   for( std::string const& a : args )
      command += " " + quoted( a );
   command += " 2>" + quoted( errFile );
   SimRun run;
   FILE* pipe = popen( command.c_str(), "r" );
   if( !pipe ) return run;
   char buf[ 4096 ];
   for( std::size_t n; ( n = fread( buf, 1, sizeof buf, pipe ) ) > 0; )
      run.out.append( buf, n );
   int const status = pclose( pipe );
   run.exitCode = WIFEXITED( status ) ? WEXITSTATUS( status ) : -1;
   std::ifstream in( errFile );
   std::ostringstream err;
   err << in.rdbuf();
   run.err = err.str();
   std::remove( errFile.c_str() );
   return run;
}

std::string example( std::string const& name ) {
   return std::string( NEVQOS_EXAMPLES_DIR ) + "/" + name;
}

std::string scenarioFile( std::string const& name, std::string const& text ) {
   std::string const path = ::testing::TempDir() + name;
   std::ofstream( path ) << text;
   return path;
}

nlohmann::json scenarioReport( std::string const& name, std::string const& text ) {
   SimRun const run = runSim( { scenarioFile( name, text ), "--json" } );
   EXPECT_EQ( run.exitCode, 0 ) << run.err;
   return run.exitCode == 0 ? run.report() : nlohmann::json::object();
}

std::vector< std::string > scenarioNamesIn( std::string const& folder ) {
   std::vector< std::string > names;
   for( auto const& entry : std::filesystem::directory_iterator( folder ) ) {
      if( entry.path().extension() == ".yaml" ) names.push_back( entry.path().stem().string() );
   }
   std::sort( names.begin(), names.end() );
   return names;
}

std::string testNameOf( ::testing::TestParamInfo< std::string > const& param ) {
   std::string name = param.param;
   std::replace( name.begin(), name.end(), '-', '_' );
   return name;
}

std::string oneClassOnEthernet1() {
   return R"(
interfaces: [ Ethernet1, Ethernet2 ]
acls:
  - name: A
    rules: [ { proto: udp } ]
classMaps:
  - { name: c, match: { ipv4: A } }
policyMaps:
  - name: p
    classes:
      - { class: c, set: { dscp: 10 } }
servicePolicies:
  - { policyMap: p, interfaces: [ Ethernet1 ] }
)";
}

}  // namespace NevQosTest
