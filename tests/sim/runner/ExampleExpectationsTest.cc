// Each example's report against the expected report kept beside it
// (examples/<example>.expected.json): the log, the status, the pools, the TCAM's lists with where
// they are bound and how many entries they hold, and how many times each operation was called.
// Every scenario of the folder is an example; a new one without its expected report fails until
// the report is written. A difference is shown as the JSON patch that turns the expected report
// into the one seen.
//
// After a change that is meant to alter a report, scripts/regen-scenario-expectations writes
// the files anew (it runs this test with NEVQOS_REGEN_EXPECTATIONS=1); review the difference
// before committing it.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <string>

#include "support/SimProgram.h"

namespace NevQosTest {
namespace {

using Json = nlohmann::ordered_json;

// What of a report is kept: everything but the calls themselves, which are counted, and the
// entries, which are counted per list.
Json expectedPartOf( Json const& report ) {
   // A run of identical calls stands for `count` of them, the gap for those it left out.
   std::map< std::string, unsigned > counts;
   for( Json const& c : report[ "calls" ] ) {
      if( c.contains( "gap" ) ) {
         for( auto const& [ op, n ] : c[ "gap" ][ "counts" ].items() )
            counts[ op ] += n.get< unsigned >();
         continue;
      }
      counts[ c[ "op" ].get< std::string >() ] += c.value( "count", 1u );
   }
   Json acls = Json::array();
   for( Json const& a : report[ "tcam" ][ "acls" ] ) {
      acls.push_back( Json{ { "id", a[ "id" ] },
                            { "committed", a[ "committed" ] },
                            { "interfaces", a[ "interfaces" ] },
                            { "rangeCheckers", a[ "rangeCheckers" ].size() },
                            { "entries", a[ "entries" ].size() } } );
   }
   // The kernel packet driver's calls are counted like the helpers'; their order has tests of
   // its own.
   Json controlPlane = report[ "controlPlane" ];
   std::map< std::string, unsigned > driverCounts;
   for( Json const& c : controlPlane[ "kernel" ][ "calls" ] )
      ++driverCounts[ c[ "op" ].get< std::string >() ];
   controlPlane[ "kernel" ][ "calls" ] = driverCounts;
   Json kept{ { "callCounts", counts },
              { "logs", report[ "logs" ] },
              { "status", report[ "status" ] },
              { "tcam", Json{ { "slices", report[ "tcam" ][ "slices" ] },
                              { "rangeCheckers", report[ "tcam" ][ "rangeCheckers" ] },
                              { "acls", acls } } },
              { "resources", report[ "resources" ] },
              { "basic", report[ "basic" ] },
              { "controlPlane", controlPlane },
              { "cbf", report[ "cbf" ] },
              { "engine", report[ "engine" ] } };
   // An example that asks for trace lines tells its story through them.
   if( report.contains( "trace" ) ) kept[ "trace" ] = report[ "trace" ];
   return kept;
}

class ExampleExpectationsTest : public ::testing::TestWithParam< std::string > {};

TEST_P( ExampleExpectationsTest, TheReportIsAsExpected ) {
   std::string const name = GetParam();
   SimRun const run = runSim( { example( name + ".yaml" ), "--json" } );
   ASSERT_EQ( run.exitCode, 0 ) << run.err;
   Json const seen = expectedPartOf( Json::parse( run.out ) );
   std::string const file = std::string( NEVQOS_EXAMPLES_DIR ) + "/" + name + ".expected.json";
   if( std::getenv( "NEVQOS_REGEN_EXPECTATIONS" ) ) {
      std::ofstream( file ) << seen.dump( 2 ) << "\n";
      return;
   }
   std::ifstream in( file );
   ASSERT_TRUE( in ) << "no expected report " << file
                     << "; scripts/regen-scenario-expectations writes it";
   Json const expected = Json::parse( in );
   EXPECT_TRUE( expected == seen )
         << "the report differs from " << file << "; the patch from expected to seen:\n"
         << Json::diff( expected, seen ).dump( 2 );
}

INSTANTIATE_TEST_SUITE_P( Examples, ExampleExpectationsTest,
                          ::testing::ValuesIn( scenarioNamesIn( NEVQOS_EXAMPLES_DIR ) ),
                          testNameOf );

}  // namespace
}  // namespace NevQosTest
