// The JSON report as the runner writes it, part by part, against the whole document dumped at
// once: the same text for every example, with members of every shape after the report's own.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include "NevQos/sim/runner/Report.h"
#include "NevQos/sim/runner/SimSwitch.h"
#include "NevQos/sim/scenario/ScenarioLoader.h"
#include "support/SimProgram.h"

namespace NevQosTest {
namespace {

using Json = nlohmann::ordered_json;

class StreamedReportTest : public ::testing::TestWithParam< std::string > {};

TEST_P( StreamedReportTest, IsTheTextOfTheWholeDocument ) {
   Sim::Scenario const scenario = Sim::loadScenario( example( GetParam() + ".yaml" ) );
   Sim::SimSwitch sw( scenario );
   for( Sim::Step const& step : scenario.steps )
      sw.stepIs( step );
   sw.runUntil( sw.now() + 60.0 );
   Json const more = Json::parse( R"({ "verify": { "runs": 2, "findings": [],
                                                   "nested": [ { "a": {} }, [ 1, "x\ny" ] ] },
                                       "expect": { "met": true } })" );
   std::ostringstream streamed;
   Sim::writeJsonReport( streamed, scenario, sw, more );
   Json whole = Sim::reportOf( scenario, sw );
   whole.update( more );
   ASSERT_FALSE( whole[ "calls" ].empty() ) << "an example that calls nothing tells little";
   EXPECT_TRUE( streamed.str() == whole.dump( 2 ) )
         << "the streamed report differs from the document; streamed:\n"
         << streamed.str().substr( 0, 2000 );
}

INSTANTIATE_TEST_SUITE_P( Examples, StreamedReportTest,
                          ::testing::ValuesIn( scenarioNamesIn( NEVQOS_EXAMPLES_DIR ) ),
                          testNameOf );

}  // namespace
}  // namespace NevQosTest
