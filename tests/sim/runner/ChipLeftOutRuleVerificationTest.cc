// What verification expects of the entries of IP rules that the chip shaped itself: subrules and
// fragment entries it left out by answering "rule ignored" or "ignored", which the engine goes
// on without, and the fragment entry of an ICMP rule, which matches no ICMP header.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "NevQos/sim/runner/SimSwitch.h"
#include "NevQos/sim/scenario/ScenarioLoader.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;

struct LeftOutCase {
   char const* name;
   char const* fault;    // the chip's refusal
   char const* rule0;    // the first rule of the list; the second is a UDP rule for port 53
   char const* chip;     // more chip settings
   char const* damaged;  // an entry that stands, damaged to see it still verified
   char const* finding;  // what the damage is found as
};

// The scenario of a case; its step, if any, sets the protocol of an entry that stands to 1.
std::string scenarioOf( LeftOutCase const& c ) {
   std::string yaml = std::string( "chip: { tcamMode: synchronous" ) + c.chip +
                      ", faults: [ { name: refused, kind: operationError, " + c.fault + " } ] }\n" +
                      R"(interfaces: [ Ethernet1 ]
acls:
  - name: A1
    rules:
      - )" + c.rule0 + R"(
      - { seq: 20, proto: udp, dstPort: { eq: 53 } }
classMaps: [ { name: c1, match: { ipv4: A1 } } ]
policyMaps: [ { name: p1, classes: [ { class: c1, set: { trafficClass: 5 } } ] } ]
servicePolicies: [ { policyMap: p1, interfaces: [ Ethernet1 ] } ]
)";
   if( *c.damaged ) {
      yaml += std::string( "steps:\n  - at: 1\n    changes:\n      - corruptTcam: { acl: A1, " ) +
              c.damaged + ", field: proto, value: \"1\" }\n";
   }
   return yaml;
}

// The engine leaves out what the chip refused with these answers and reports no failure, so
// verification expects nothing of it: no missing subrule, no missing fragment entry, while what
// the chip took is compared as ever.
TEST( ChipLeftOutRuleVerificationTest, WhatTheChipLeftOutIsExpectedNowhereAndTheRestAsEver ) {
   char const* const tcp80 = "{ seq: 10, proto: tcp, dstPort: { eq: 80 } }";
   std::vector< LeftOutCase > const cases = {
      { "the first rule's subrule", "op: createIpAclSubrule, nth: 1, error: ruleIgnored", tcp80, "",
        "rule: 1, subrule: 0", "ACL A1 sequence 20 rule 1 subrule 0 proto is 1, expected 17" },
      { "every subrule", "op: createIpAclSubrule, nth: 0, error: ruleIgnored", tcp80, "", "", "" },
      { "the first rule's fragment entry", "op: createIpFragRule, nth: 1, error: ruleIgnored",
        tcp80, "", "rule: 0, subrule: 0",
        "ACL A1 sequence 10 rule 0 subrule 0 proto is 1, expected 6" },
      // 80-90 is three blocks without a checker: the first stands, the second is refused.
      { "a block of an expanded range", "op: createIpAclSubrule, nth: 3, error: ruleIgnored",
        "{ seq: 10, proto: tcp, dstPort: { range: [ 80, 90 ] } }", ", rangeCheckers: 0",
        "rule: 0, subrule: 0", "ACL A1 sequence 10 rule 0 subrule 0 proto is 1, expected 6" },
      // "Ignored" ends the walk: the second rule is never compiled.
      { "the fragment entry, walk ended", "op: createIpFragRule, nth: 1, error: ignored", tcp80, "",
        "rule: 0, subrule: 0", "ACL A1 sequence 10 rule 0 subrule 0 proto is 1, expected 6" },
      { "the first subrule, walk ended", "op: createIpAclSubrule, nth: 1, error: ignored", tcp80,
        "", "", "" },
   };
   for( LeftOutCase const& c : cases ) {
      SCOPED_TRACE( c.name );
      Sim::Scenario const s = Sim::loadScenarioText( scenarioOf( c ), "test.yaml" );
      Sim::SimSwitch sw( s );
      sw.runUntil( 0.5 );
      EXPECT_EQ( sw.verify(), Lines{} );
      if( s.steps.empty() ) continue;
      sw.stepIs( s.steps[ 0 ] );
      EXPECT_EQ( sw.verify(), Lines{ c.finding } );
   }
}

class IcmpFragmentEntryTest : public ::testing::TestWithParam< Sim::TcamMode > {};

INSTANTIATE_TEST_SUITE_P( Modes, IcmpFragmentEntryTest,
                          ::testing::Values( Sim::TcamMode::synchronous,
                                             Sim::TcamMode::asynchronous ),
                          []( auto const& mode ) {
                             return mode.param == Sim::TcamMode::synchronous ? "synchronous"
                                                                             : "asynchronous";
                          } );

// The rule's subrule matches the type and code; its fragment entry, after it, matches neither,
// and a subrule that lost its type is found.
TEST_P( IcmpFragmentEntryTest, OnlyTheSubruleMatchesTheIcmpTypeAndCode ) {
   Sim::Scenario s = Sim::loadScenarioText( R"(
interfaces: [ Ethernet1 ]
acls:
  - { name: A3, rules: [ { seq: 150, proto: icmp, icmpType: 8, icmpCode: 0 } ] }
classMaps:
  - { name: c1, type: qos, match: { ipv4: A3 } }
policyMaps:
  - { name: p1, type: qos, classes: [ { class: c1, set: { trafficClass: 5 } } ] }
servicePolicies:
  - { policyMap: p1, type: qos, direction: input, interfaces: [ Ethernet1 ] }
steps:
  - at: 1
    changes:
      - corruptTcam: { acl: A3, rule: 0, subrule: 0, field: icmpType, value: "0" }
)",
                                            "test.yaml" );
   s.chip.tcamMode = GetParam();
   Sim::SimSwitch sw( s );
   sw.runUntil( 0.5 );
   EXPECT_EQ( sw.verify(), Lines{} );
   sw.stepIs( s.steps[ 0 ] );
   EXPECT_EQ( sw.verify(),
              Lines{ "ACL A3 sequence 150 rule 0 subrule 0 icmpType is 0, expected 8" } );
}

}  // namespace
}  // namespace NevQosTest
