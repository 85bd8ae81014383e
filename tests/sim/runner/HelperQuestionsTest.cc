// The ACL helper's answers that a scenario's chip keys set, and the inputs a chip's driver writes
// on the helper: each changes what the engine does, against the chip's default.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <set>
#include <string>

#include "NevQos/platform/zub/Trace.h"
#include "NevQos/sim/runner/SimSwitch.h"
#include "NevQos/sim/scenario/ScenarioLoader.h"

namespace NevQosTest {
namespace {

// A class of an IPv4 list on Ethernet1 and Ethernet2, doing `classAction`; at 1 s Ethernet3
// joins.
std::string goldOnTwoPorts( std::string const& classAction ) {
   return R"(
interfaces: [ Ethernet1, Ethernet2, Ethernet3 ]
acls: [ { name: WEB, rules: [ { proto: tcp, dstPort: { eq: 80 } } ] } ]
classMaps: [ { name: web, match: { ipv4: WEB } } ]
policyMaps: [ { name: gold, classes: [ { class: web, )" +
          classAction + R"( } ] } ]
servicePolicies: [ { policyMap: gold, interfaces: [ Ethernet1, Ethernet2 ] } ]
steps:
  - at: 1
    changes:
      - attach: { policyMap: gold, interfaces: [ Ethernet3 ] }
)";
}

std::string const webOnTwoPorts = goldOnTwoPorts( "set: { dscp: 10 }" );
// The same with a policer of the class's own, one per interface.
std::string const policedOnTwoPorts = goldOnTwoPorts( "police: { cir: 100, bc: 2000 }" );

struct ChipRun {
   Sim::Scenario scenario;
   std::unique_ptr< Sim::SimSwitch > sw;

   ChipRun( std::string const& chipKeys, std::string const& text,
            Sim::SwitchOptions const& options = {} )
       : scenario( Sim::loadScenarioText( "chip: { " + chipKeys + " }\n" + text, "answers.yaml" ) )
       , sw( std::make_unique< Sim::SimSwitch >( scenario, options ) ) {
      for( Sim::Step const& step : scenario.steps ) {
         sw->runUntil( step.time );
         sw->stepIs( step );
      }
      sw->runUntil( sw->now() + 5.0 );
   }
   std::vector< Sim::ChipCall > calls( std::string const& op ) const {
      std::vector< Sim::ChipCall > out;
      auto const all = sw->calls().kept();
      std::copy_if( all.begin(), all.end(), std::back_inserter( out ),
                    [ &op ]( Sim::ChipCall const& c ) { return c.op == op; } );
      return out;
   }
   std::size_t count( std::string const& op ) const { return calls( op ).size(); }
   std::size_t countAt( std::string const& op, double at ) const {
      auto const all = calls( op );
      return static_cast< std::size_t >( std::count_if(
            all.begin(), all.end(), [ at ]( Sim::ChipCall const& c ) { return c.t == at; } ) );
   }
   Qos::PolicyMapHwStatus const& goldStatus() const {
      return *sw->aclSliceHwStatus()
                    .pmapType( Qos::mapQos_ )
                    ->pmap(
                          Qos::PolicyMapHwStatusKey( Qos::directionInput_, Zub::Name( "gold" ) ) );
   }
};

TEST( HelperQuestionsTest, EachAnswerChangesTheCallsTheEngineMakes ) {
   struct Case {
      char const* keys;
      std::string scenario;
      char const* op;
      // The calls of the step at this time; 0 for the whole run.
      double at;
      std::size_t byDefault;
      std::size_t withKeys;
   } const cases[] = {
      // A map flagged for version updates, of a type whose interfaces the chip manages, is
      // compiled anew when an interface joins: its one list is destroyed and made again.
      { "managedPrioritySupported: [ qos ], doVersionUpdate: true", webOnTwoPorts, "destroyAcl", 1,
        0, 1 },
      // Either alone is not enough: the flag without the type, the type without the flag.
      { "managedPrioritySupported: [ pdp, control-plane ], doVersionUpdate: true", webOnTwoPorts,
        "destroyAcl", 1, 0, 0 },
      { "managedPrioritySupported: [ qos ]", webOnTwoPorts, "destroyAcl", 1, 0, 0 },
      // The engine flags a map with a policer per interface itself: every copy goes, the one
      // the joining interface has just been given too.
      { "managedPrioritySupported: [ qos ]", policedOnTwoPorts, "destroyAcl", 1, 0, 3 },
      // Each group is a map of its own, with its own list.
      { "aclGroups: { Ethernet2: uplinks }", webOnTwoPorts, "precreateAcl", 0, 1, 2 },
      { "aclGroups: { Ethernet3: late }", webOnTwoPorts, "precreateAcl", 1, 0, 1 },
      { "aclGroups: { Ethernet1: a, Ethernet2: a, Ethernet3: a }", webOnTwoPorts, "precreateAcl", 0,
        1, 1 },
   };
   for( Case const& c : cases ) {
      SCOPED_TRACE( c.keys );
      auto const count = [ &c ]( ChipRun const& run ) {
         return c.at == 0 ? run.count( c.op ) : run.countAt( c.op, c.at );
      };
      EXPECT_EQ( count( ChipRun( "", c.scenario ) ), c.byDefault );
      EXPECT_EQ( count( ChipRun( c.keys, c.scenario ) ), c.withKeys );
   }
}

TEST( HelperQuestionsTest, AChipThatReportsItsOwnStatusWritesTheStatusAlone ) {
   std::string const full = "faults: [ { kind: outOfTcam, atEntries: 0 } ]";
   struct Case {
      std::string keys;
      Qos::PolicyMapHwPrgmStatus status;
   } const cases[] = {
      // The engine's compiles leave the status in progress for the chip to write.
      { "", Qos::hwPrgmStatusSuccess_ },
      { "selfReportedPrgmStatus: true", Qos::hwPrgmStatusSuccess_ },
      { full, Qos::hwPrgmStatusFail_ },
      { "selfReportedPrgmStatus: true, " + full, Qos::hwPrgmStatusFail_ },
   };
   for( Case const& c : cases ) {
      SCOPED_TRACE( c.keys );
      ChipRun const run( c.keys, webOnTwoPorts );
      EXPECT_EQ( run.goldStatus().prgmStatus(), c.status );
      EXPECT_EQ( run.sw->aclHwStatus().selfReportedPrgmStatus(),
                 c.keys.starts_with( "selfReported" ) );
   }
}

TEST( HelperQuestionsTest, AnAsynchronousCommitRefusedInTheCallIsNotSeenByTheEngine ) {
   std::string const refused =
         "tcamMode: asynchronous, asyncDelay: 0.01, faults: [ { kind: operationError, op: "
         "commitAcl, nth: 1, inCall: true } ]";
   ChipRun const run( refused, webOnTwoPorts );
   // The engine takes no answer of a commit on this road: the list stays uncommitted on the
   // chip while the map is reported programmed.
   ASSERT_EQ( run.sw->chip().tcam().acls().size(), 1u );
   EXPECT_FALSE( run.sw->chip().tcam().acls().begin()->second.committed );
   EXPECT_EQ( run.goldStatus().prgmStatus(), Qos::hwPrgmStatusSuccess_ );
   // The same fault carried by the operation's result fails the map.
   std::string carried = refused;
   carried.replace( carried.find( ", inCall: true" ), 14, "" );
   EXPECT_EQ( ChipRun( carried, webOnTwoPorts ).goldStatus().prgmStatus(), Qos::hwPrgmStatusFail_ );
}

TEST( HelperQuestionsTest, AnAsynchronousRuleRefusedInTheCallStopsTheEngine ) {
   std::string const refused =
         "tcamMode: asynchronous, faults: [ { kind: operationError, op: createIpAclSubrule, "
         "inCall: true, error: tooManyAcls } ]";
   EXPECT_DEATH( ChipRun( refused, webOnTwoPorts ), "aclCreateErrorNone" );
}

TEST( HelperQuestionsTest, EachChangeOfCliWaitingRestatesTheConfigurationVersion ) {
   // Restating the configuration version: one more "applied" trace per change of cliWaiting.
   auto applied = []( std::string const& changes ) {
      Zub::traceEnable( "NevQos/2" );
      Sim::SwitchOptions options;
      options.keepTraces = true;
      ChipRun const run( "", "steps: [ { at: 1, changes: " + changes + " } ]", options );
      Zub::traceDisableAll();
      auto const traces = run.sw->traces().kept();
      return std::count_if( traces.begin(), traces.end(), []( auto const& t ) {
         return t.text.find( "applied" ) != std::string::npos;
      } );
   };
   auto const base = applied( "[]" );
   EXPECT_EQ( applied( "[ { cliWaiting: true } ]" ), base + 1 );
   EXPECT_EQ( applied( "[ { cliWaiting: false } ]" ), base );
}

}  // namespace
}  // namespace NevQosTest
