// A scenario's `expect` list, checked by the runner: each item must come after the one before
// it, a `not` item must not come between its neighbours, and a list not met is a mismatch
// (exit 1) whose report says which item failed and why. The scenarios under tests/stories/ tell
// their story through such a list; each must be met, and verify clean at every check point.
#include <gtest/gtest.h>

#include <string>

#include "support/SimProgram.h"

namespace NevQosTest {
namespace {

using Json = nlohmann::json;

// Ethernet1 has the map from the start and Ethernet2 joins at 2 s.
std::string const story = oneClassOnEthernet1() + R"(steps:
  - at: 2
    changes:
      - attach: { policyMap: p, interfaces: [ Ethernet2 ] }
)";

struct Case {
   char const* name;
   char const* expect;
   // Empty when the list is met.
   char const* failure;
};

TEST( ScenarioExpectTest, ItemsComeInOrderAndNotItemsStayAway ) {
   Case const cases[] = {
      { "met", R"(
  - { call: hwInit, helper: acl }
  - { call: precreateAcl, args: { aclKey: A(ip) } }
  - { call: updatePortForAcl, args: { intfPair: Ethernet1, add: "true" } }
  - not: { call: precreateAcl }
  - { call: updatePortForAcl, args: { intfPair: Ethernet2 }, at: 2 }
  - not: { call: updatePortForAcl }
)",
        "" },
      { "out of order", R"(
  - { call: updatePortForAcl, args: { intfPair: Ethernet2 } }
  - { call: updatePortForAcl, args: { intfPair: Ethernet1 } }
)",
        "line 20: call updatePortForAcl intfPair=Ethernet1 never came after the item before it" },
      { "an argument that differs", R"(
  - { call: updatePortForAcl, args: { intfPair: Ethernet1, add: "false" } }
)",
        "line 19: call updatePortForAcl intfPair=Ethernet1 add=false never came" },
      { "another helper", R"(
  - { call: updatePortForAcl, helper: basic }
)",
        "line 19: call basic updatePortForAcl never came" },
      { "another time", R"(
  - { call: updatePortForAcl, args: { intfPair: Ethernet2 }, at: 3 }
)",
        "line 19: call updatePortForAcl intfPair=Ethernet2 at 3 never came" },
      { "a not item that came", R"(
  - { call: commitAcl }
  - not: { call: updatePortForAcl, args: { intfPair: Ethernet1 } }
  - { call: updatePortForAcl, args: { intfPair: Ethernet2 } }
)",
        "line 20: not call updatePortForAcl intfPair=Ethernet1, but 0.001 s: updatePortForAcl "
        "classData=p(qos,input)/c/Default aclKey=A(ip) intfPair=Ethernet1 add=true" },
      { "a closing not item that came", R"(
  - { call: updatePortForAcl, args: { intfPair: Ethernet1 } }
  - not: { call: batchCommitAclsIntf, helper: acl }
)",
        "line 20: not call acl batchCommitAclsIntf, but 0.001 s: batchCommitAclsIntf "
        "pmapState=p(qos,input) intfPair=Ethernet1 add=true" },
      { "a leading not item that came", R"(
  - not: { call: prepareToCommit }
  - { call: commitAcl }
)",
        "line 19: not call prepareToCommit, but 0.001 s: prepareToCommit" },
      { "a log line that never came", R"(
  - { log: QOS_POLICY_MAP_FAILED }
)",
        "line 19: log QOS_POLICY_MAP_FAILED never came" },
   };
   for( Case const& c : cases ) {
      SCOPED_TRACE( c.name );
      SimRun const run =
            runSim( { scenarioFile( "story.yaml", story + "expect:" + c.expect ), "--json" } );
      bool const met = std::string( c.failure ).empty();
      ASSERT_EQ( run.exitCode, met ? 0 : 1 ) << run.err;
      Json const report = run.report();
      EXPECT_EQ( report[ "expect" ][ "met" ], met );
      if( met ) {
         EXPECT_FALSE( report[ "expect" ].contains( "failure" ) );
         EXPECT_EQ( report[ "expect" ][ "items" ][ 4 ][ "t" ], 2.0 );
      } else {
         EXPECT_EQ( report[ "expect" ][ "failure" ], std::string( c.failure ) );
      }
   }
}

TEST( ScenarioExpectTest, TheTextReportSaysWhetherTheListWasMet ) {
   SimRun const met = runSim( { scenarioFile( "met.yaml", story + R"(expect:
  - { call: hwInit, helper: basic }
)" ) } );
   SimRun const unmet = runSim( { scenarioFile( "unmet.yaml", story + R"(expect:
  - { call: hwInit }
  - { log: QOS_STARTED }
)" ) } );
   EXPECT_EQ( met.exitCode, 0 );
   EXPECT_NE( met.out.find( "\nExpectations (1): met\n" ), std::string::npos ) << met.out;
   EXPECT_EQ( unmet.exitCode, 1 );
   EXPECT_NE( unmet.out.find( "Expectations (2): NOT met\n"
                              "  line 20: log QOS_STARTED never came after the item before it\n" ),
              std::string::npos )
         << unmet.out;
}

class StoryTest : public ::testing::TestWithParam< std::string > {};

TEST_P( StoryTest, ItsExpectationsAreMet ) {
   SimRun const run = runSim( { std::string( NEVQOS_STORIES_DIR ) + "/" + GetParam() + ".yaml",
                                "--json", "--verify=always" } );
   ASSERT_EQ( run.exitCode, 0 ) << run.err << run.out.substr( 0, 2000 );
   Json const report = run.report();
   ASSERT_TRUE( report.contains( "expect" ) ) << "a story without an expect list";
   EXPECT_TRUE( report[ "expect" ][ "met" ].get< bool >() );
   EXPECT_EQ( report[ "verify" ][ "findings" ], Json::array() );
}

INSTANTIATE_TEST_SUITE_P( Stories, StoryTest,
                          ::testing::ValuesIn( scenarioNamesIn( NEVQOS_STORIES_DIR ) ),
                          testNameOf );

}  // namespace
}  // namespace NevQosTest
