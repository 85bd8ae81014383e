// What the routing agent publishes of next-hop groups reaches the engine: it notes each change in
// its trace, and a step that writes what stands tells it nothing. (The subinterfaces the interface
// agent publishes have a story of their own under tests/stories.)
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/SimProgram.h"

namespace NevQosTest {
namespace {

using Json = nlohmann::json;

TEST( OtherAgentsInputsTest, EachChangeOfANexthopGroupIsTraced ) {
   std::string const path = scenarioFile( "nexthop.yaml", R"(
nexthopGroups:
  - { name: g1, index: 7 }
trace: [ NevQos/3 ]
steps:
  - at: 1
    changes:
      - nexthopGroup: { name: g1, index: 7 }
      - nexthopGroup: { name: g2, index: 9 }
  - at: 2
    changes:
      - nexthopGroup: { name: g2, index: 10 }
      - removeNexthopGroup: g1
)" );
   SimRun const run = runSim( { path, "--json" } );
   ASSERT_EQ( run.exitCode, 0 ) << run.err;
   Json const report = run.report();
   std::vector< std::string > seen;
   for( Json const& line : report[ "trace" ] ) {
      if( line[ "function" ] != "handleNexthopGroupIndex" ) continue;
      seen.push_back( std::to_string( int( line[ "t" ].get< double >() ) ) + " " +
                      line[ "text" ].get< std::string >() );
   }
   EXPECT_EQ( seen, ( std::vector< std::string >{ "1 handleNexthopGroupIndex g2",
                                                  "2 handleNexthopGroupIndex g1",
                                                  "2 handleNexthopGroupIndex g2" } ) );
}

}  // namespace
}  // namespace NevQosTest
