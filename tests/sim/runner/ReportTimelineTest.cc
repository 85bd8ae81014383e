// The report's step-by-step samples and its HTML page: what the charts of the page draw must add
// up to the run's own record, and the page must carry the report whole, whatever its texts hold.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>
#include <string>

#include "support/SimProgram.h"

namespace NevQosTest {
namespace {

using Json = nlohmann::json;

// The calls of the report's record by operation, runs and gaps counted whole.
std::map< std::string, std::uint64_t > callsByOperation( Json const& calls ) {
   std::map< std::string, std::uint64_t > out;
   for( Json const& entry : calls ) {
      if( entry.contains( "gap" ) ) {
         for( auto const& [ op, n ] : entry[ "gap" ][ "counts" ].items() )
            out[ op ] += n.get< std::uint64_t >();
      } else {
         out[ entry[ "op" ] ] += entry.value( "count", std::uint64_t( 1 ) );
      }
   }
   return out;
}

TEST( ReportTimelineTest, TheSamplesAddUpToTheRun ) {
   // A fault fills the slice until step 2 switches it off; the gap keeps the record short.
   SimRun const run = runSim(
         { example( "tcam-exhaustion.yaml" ), "--json", "--verify=always", "--keep-calls=5" } );
   ASSERT_EQ( run.exitCode, 0 ) << run.err;
   Json const report = run.report();
   Json const& steps = report[ "steps" ];
   ASSERT_EQ( steps.size(), 4u );  // the start, two steps, the settle time
   EXPECT_EQ( steps[ 0 ][ "label" ], "start" );
   EXPECT_EQ( steps[ 2 ][ "label" ], "step 2" );
   EXPECT_EQ( steps[ 3 ][ "label" ], "settle" );
   EXPECT_EQ( steps[ 3 ][ "t" ], report[ "time" ] );

   EXPECT_EQ( steps[ 1 ][ "faults" ], Json::array( { "slice-full" } ) );
   EXPECT_EQ( steps[ 2 ][ "faults" ], Json::array() );
   EXPECT_EQ( steps[ 2 ][ "changes" ], Json::array( { "fault slice-full off", "classMap bulk" } ) );
   // The end's sample is the end's TCAM.
   for( std::size_t i = 0; i < report[ "tcam" ][ "slices" ].size(); ++i ) {
      EXPECT_EQ( steps[ 3 ][ "tcam" ][ "slices" ][ i ][ "used" ],
                 report[ "tcam" ][ "slices" ][ i ][ "used" ] );
   }
   EXPECT_EQ( steps[ 3 ][ "pools" ][ "policers" ][ "used" ],
              report[ "resources" ][ "policers" ][ "used" ] );

   std::map< std::string, std::uint64_t > sampled;
   std::size_t logs = 0;
   for( Json const& step : steps ) {
      for( auto const& [ op, n ] : step[ "calls" ].items() )
         sampled[ op ] += n.get< std::uint64_t >();
      logs += step[ "logs" ].get< std::size_t >();
   }
   EXPECT_EQ( sampled, callsByOperation( report[ "calls" ] ) );
   EXPECT_EQ( logs, report[ "logs" ].size() );

   // --verify=always checks at the start, after each step and at the end.
   Json const& checks = report[ "verify" ][ "checks" ];
   ASSERT_EQ( checks.size(), steps.size() );
   for( std::size_t i = 0; i < checks.size(); ++i ) {
      EXPECT_EQ( checks[ i ][ "step" ], steps[ i ][ "step" ] );
      EXPECT_EQ( checks[ i ][ "findings" ], 0 );
   }
}

// The page carries the report as --json writes it, even where a text of the scenario would end
// the page's script element, or keep its end from ending it.
TEST( ReportTimelineTest, ThePageCarriesTheWholeReport ) {
   std::string const scenario = scenarioFile(
         "page.yaml", "description: 'a <!--<script> </script><b>bold</b> description'\n" +
                            oneClassOnEthernet1() );
   std::string const page = ::testing::TempDir() + "page.html";
   SimRun const run = runSim( { scenario, "--json", "--html", page } );
   ASSERT_EQ( run.exitCode, 0 ) << run.err;

   std::stringstream text;
   text << std::ifstream( page ).rdbuf();
   std::string const html = text.str();
   std::string const open = "<script id=\"report-data\" type=\"application/json\">";
   auto const from = html.find( open );
   ASSERT_NE( from, std::string::npos );
   auto const to = html.find( "</script>", from );
   ASSERT_NE( to, std::string::npos );
   Json const carried = Json::parse( html.substr( from + open.size(), to - from - open.size() ) );
   EXPECT_EQ( carried, run.report() );
   EXPECT_EQ( carried[ "scenario" ][ "description" ],
              "a <!--<script> </script><b>bold</b> description" );
   EXPECT_EQ( html.find( "<!--<script>" ), std::string::npos );
}

TEST( ReportTimelineTest, APageThatCannotBeWrittenIsAFailedRun ) {
   SimRun const run =
         runSim( { example( "edge-policy.yaml" ), "--html", "/nonexistent/page.html" } );
   EXPECT_EQ( run.exitCode, 3 );
   EXPECT_NE( run.err.find( "/nonexistent/page.html" ), std::string::npos ) << run.err;
}

}  // namespace
}  // namespace NevQosTest
