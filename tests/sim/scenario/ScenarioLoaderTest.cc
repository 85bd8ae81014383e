// Reading scenarios: the example files, the readable rule form, the chip section and the changes
// of a step come out as the values they stand for.
#include "NevQos/sim/scenario/ScenarioLoader.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "NevQos/sim/classbench/ClassBench.h"

namespace {

std::filesystem::path const examplesDir = NEVQOS_EXAMPLES_DIR;

template< class Value >
std::string textOf( Value const& v ) {
   std::ostringstream os;
   os << v;
   return os.str();
}

Sim::Scenario loaded( std::string const& text ) {
   return Sim::loadScenarioText( text, "test.yaml" );
}

template< class T >
T const& valueOf( Sim::Change const& change ) {
   auto const* value = std::get_if< T >( &change.value );
   EXPECT_TRUE( value ) << "change of another kind";
   static T const none{};
   return value ? *value : none;
}

// The example of the format's documentation is a scenario that loads.
TEST( ScenarioLoaderTest, TheDocumentedExampleLoads ) {
   std::ifstream in( examplesDir / ".." / "docs" / "scenario.md" );
   std::stringstream doc;
   doc << in.rdbuf();
   std::string const text = doc.str();
   std::size_t const begin = text.find( "```yaml\n" );
   ASSERT_NE( begin, std::string::npos );
   std::size_t const end = text.find( "```\n", begin + 8 );
   ASSERT_NE( end, std::string::npos );
   auto const s = loaded( text.substr( begin + 8, end - begin - 8 ) );
   EXPECT_EQ( s.description, "Voice marking at the edge" );
   EXPECT_EQ( valueOf< Sim::NamedPolicerDef >( s.initial.at( 3 ) ).rates.bcUnit,
              Qos::burstUnitKbytes_ );
   EXPECT_EQ( s.chip.faults.at( 0 ).from, 3.0 );
   EXPECT_EQ( s.steps.size(), 3u );
}

// Each rule of the readable form as the access-list line it stands for.
TEST( ScenarioLoaderTest, RulesReadAsTheirAccessListLines ) {
   struct Case {
      char const* yaml;
      char const* line;
   } const cases[] = {
      { "{}", "permit ip any any" },
      { "{ action: deny, src: 10.1.2.3 }", "deny ip 10.1.2.3/32 any" },
      { "{ proto: tcp, dst: 192.168.0.0/16, dstPort: { eq: [ 80, 443 ] } }",
        "permit proto 6 any 192.168.0.0/16 eq 80 443" },
      { "{ proto: udp, srcPort: { gt: 1023 }, dstPort: { lt: 1024 } }",
        "permit proto 17 any gt 1023 any lt 1024" },
      { "{ proto: 132, srcPort: { neq: 7 } }", "permit proto 132 any neq 7 any" },
      { "{ proto: tcp, tcpFlags: [ syn, ack ], established: true }",
        "permit proto 6 any any tcp-flags 0x12 established" },
      { "{ proto: icmp, icmpType: 8, icmpCode: 0 }",
        "permit proto 1 any any icmp-type 8 icmp-code 0" },
      { "{ dscp: af41, ecn: ce, ipLength: { range: [ 64, 128 ] } }",
        "permit ip any any ip-length range 64 128 dscp 34 ecn ecnCe" },
      { "{ vlan: { value: 100 }, fragments: true }", "permit ip any any vlan 100 0xfff fragments" },
   };
   for( auto const& c : cases ) {
      SCOPED_TRACE( c.yaml );
      auto const s = loaded( std::string( "acls: [ { name: A, rules: [ " ) + c.yaml + " ] } ]" );
      EXPECT_EQ( textOf( valueOf< Sim::AclDef >( s.initial.at( 0 ) ).ipv4Rules.at( 0 ).rule ),
                 c.line );
   }
}

TEST( ScenarioLoaderTest, SequenceNumbersFollowTheLastGiven ) {
   auto const s = loaded(
         "acls: [ { name: A, rules: [ {}, { seq: 15 }, {} ] },\n"
         "        { name: M, type: mac,\n"
         "          rules: [ { etherType: 0x8847, mplsLabel: 0xfffff } ] } ]" );
   auto const& a = valueOf< Sim::AclDef >( s.initial.at( 0 ) );
   ASSERT_EQ( a.ipv4Rules.size(), 3u );
   EXPECT_EQ( a.ipv4Rules[ 1 ].sequence, 15u );
   EXPECT_EQ( a.ipv4Rules[ 2 ].sequence, 25u );
   auto const& mac = valueOf< Sim::AclDef >( s.initial.at( 1 ) );
   ASSERT_EQ( mac.macRules.size(), 1u );
   EXPECT_EQ( mac.macRules[ 0 ].rule.filter.etherType, 0x8847 );
   EXPECT_EQ( mac.macRules[ 0 ].rule.filter.mplsLabel(), 0xfffffu );
}

TEST( ScenarioLoaderTest, MatchKindsReadIntoTheirFields ) {
   auto const s = loaded( R"(
acls: [ { name: M, type: mac } ]
classMaps:
  - name: c
    match:
      mac: M
      vlanCos: { vlan: { value: 0x100, mask: 0xf00 }, cos: [ 1, 3-5 ] }
      dscp: { ranges: [ 10-20, 46 ], ecn: ect }
      mplsTrafficClass: 2-3
      builtIn: lldp
  - name: d
    match: { vlan: [ 10, 20-30 ], cos: 7, dscp: ef }
)" );
   auto const& c = valueOf< Sim::ClassMapDef >( s.initial.at( 1 ) );
   ASSERT_EQ( c.matches.size(), 5u );
   EXPECT_EQ( c.matches[ 0 ].option, Qos::matchOptionMac );
   EXPECT_EQ( c.matches[ 0 ].acl, "M" );
   EXPECT_TRUE( c.matches[ 1 ].vlanMasked );
   EXPECT_EQ( c.matches[ 1 ].vlan, 0x100 );
   EXPECT_EQ( c.matches[ 1 ].vlanMask, 0xf00 );
   EXPECT_EQ( c.matches[ 1 ].coses, ( std::vector< Sim::Span >{ { 1, 1 }, { 3, 5 } } ) );
   EXPECT_EQ( c.matches[ 2 ].dscp, 64u ) << "no single DSCP beside ranges";
   EXPECT_EQ( c.matches[ 2 ].dscps, ( std::vector< Sim::Span >{ { 10, 20 }, { 46, 46 } } ) );
   EXPECT_EQ( c.matches[ 2 ].ecn, Acl::ecnEct );
   EXPECT_EQ( c.matches[ 3 ].trafficClasses, ( std::vector< Sim::Span >{ { 2, 3 } } ) );
   EXPECT_EQ( c.matches[ 4 ].builtIn, "lldp" );
   auto const& d = valueOf< Sim::ClassMapDef >( s.initial.at( 2 ) );
   EXPECT_FALSE( d.matches.at( 0 ).vlanMasked );
   EXPECT_EQ( d.matches[ 0 ].vlans, ( std::vector< Sim::Span >{ { 10, 10 }, { 20, 30 } } ) );
   EXPECT_EQ( d.matches.at( 2 ).dscp, 46u );
   EXPECT_TRUE( d.matches[ 2 ].dscpByName );
}

TEST( ScenarioLoaderTest, PolicerUnitsFollowTheModeOfTheRate ) {
   auto const s = loaded( R"(
namedPolicers:
  - { name: pkt, cir: 100, cirUnit: pps, bc: 10, pir: 200 }
  - { name: byte, cir: 2, cirUnit: mbps, bc: 3, bcUnit: kbytes, pir: 4, be: 5 }
)" );
   auto const& pkt = valueOf< Sim::NamedPolicerDef >( s.initial.at( 0 ) ).rates;
   EXPECT_EQ( pkt.bcUnit, Qos::burstUnitPackets_ );
   EXPECT_EQ( pkt.pirUnit, Qos::rateUnitPps_ );
   EXPECT_EQ( pkt.be, 10u ) << "the excess burst defaults to the committed one";
   EXPECT_EQ( pkt.beUnit, Qos::burstUnitPackets_ );
   auto const& byte = valueOf< Sim::NamedPolicerDef >( s.initial.at( 1 ) ).rates;
   EXPECT_EQ( byte.pirUnit, Qos::rateUnitMbps_ );
   EXPECT_EQ( byte.beUnit, Qos::burstUnitKbytes_ );
   EXPECT_EQ( byte.be, 5u );
}

TEST( ScenarioLoaderTest, RemovalsTakeANameForTheDefaultTypeOrAMapping ) {
   auto const s = loaded( R"(
acls: [ { name: A }, { name: B, type: ipv6 } ]
classMaps: [ { name: c, type: pdp } ]
policyMaps: [ { name: p }, { name: q } ]
servicePolicies: [ { policyMap: p }, { policyMap: q, direction: output } ]
steps:
  - at: 0.5
    changes:
      - removeServicePolicy: p
      - removeServicePolicy: { policyMap: q, direction: output }
      - removeClassMap: { name: c, type: pdp }
      - removeAcl: A
      - removeAcl: { name: B, type: ipv6 }
      - removePolicyMap: q
)" );
   auto const& changes = s.steps.at( 0 ).changes;
   ASSERT_EQ( changes.size(), 6u );
   EXPECT_EQ( valueOf< Sim::ServicePolicyRemoval >( changes[ 0 ] ).key,
              Qos::ServicePolicyKey( Qos::mapQos_, Qos::directionInput_, "p" ) );
   EXPECT_EQ( valueOf< Sim::ServicePolicyRemoval >( changes[ 1 ] ).key,
              Qos::ServicePolicyKey( Qos::mapQos_, Qos::directionOutput_, "q" ) );
   EXPECT_EQ( valueOf< Sim::ClassMapRemoval >( changes[ 2 ] ).type, Qos::mapPdp_ );
   EXPECT_EQ( valueOf< Sim::AclRemoval >( changes[ 3 ] ).family, Sim::AclFamily::ipv4 );
   EXPECT_EQ( valueOf< Sim::AclRemoval >( changes[ 4 ] ).family, Sim::AclFamily::ipv6 );
   EXPECT_EQ( valueOf< Sim::PolicyMapRemoval >( changes[ 5 ] ).name, "q" );
   EXPECT_EQ( changes[ 5 ].where.line, 14 ) << "each change knows its line";
}

}  // namespace
