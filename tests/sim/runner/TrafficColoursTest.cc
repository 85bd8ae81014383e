// Traffic of three colours reaching the counters the engine publishes: each share of a traffic
// change (packets, bytes, dropped, yellow) lands in its status key on a chip of per-class policers
// (the traffic-colours example holds them on a chip of policer copies), a policer shared by several
// ports splits its drops per port, and an entry the engine never asked for, put into the TCAM, is
// found by verification.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "NevQos/sim/chip/Tcam.h"
#include "support/SimProgram.h"

namespace NevQosTest {
namespace {

using Json = nlohmann::json;
using Counters = std::map< std::string, std::uint64_t >;

char const* const classKeys[] = { "outCount", "outBytes", "dropCount", "dropBytes" };
char const* const policerKeys[] = { "pktInCount",    "byteInCount",      "pktDropCount",
                                    "byteDropCount", "yellowPktInCount", "yellowByteInCount" };

// Every counter of the status, as "class.key" and "class/policer.key".
Counters countersOf( Json const& report ) {
   Counters out;
   for( Json const& p : report[ "status" ][ "policyMaps" ] ) {
      for( Json const& c : p[ "classMaps" ] ) {
         std::string const cls = c[ "name" ];
         for( char const* key : classKeys )
            out[ cls + "." + key ] = c[ key ];
         for( Json const& pol : c[ "policers" ] ) {
            for( char const* key : policerKeys ) {
               out[ cls + "/" + pol[ "name" ].get< std::string >() + "." + key ] = pol[ key ];
            }
         }
      }
   }
   return out;
}

// The named counters as given, every other counter of the status zero.
void expectCounters( Counters const& seen, Counters const& expected ) {
   for( auto const& [ key, value ] : expected ) {
      auto const it = seen.find( key );
      if( it == seen.end() ) {
         ADD_FAILURE() << "no counter " << key;
      } else {
         EXPECT_EQ( it->second, value ) << key;
      }
   }
   for( auto const& [ key, value ] : seen ) {
      if( !expected.contains( key ) ) {
         EXPECT_EQ( value, 0u ) << key << " moved";
      }
   }
}

// A class policed by a named policer shared by two ports; `chip` and `attached` vary.
std::string sharedPolicerScenario( std::string const& chip, std::string const& steps ) {
   return "chip: { " + chip + R"( }
interfaces: [ Ethernet1, Ethernet2 ]
acls: [ { name: V, rules: [ { proto: udp } ] } ]
classMaps: [ { name: video, match: { ipv4: V } } ]
namedPolicers:
  - { name: cap, shared: true, cir: 20, cirUnit: mbps, bc: 64, bcUnit: kbytes, pir: 50,
      pirUnit: mbps }
policyMaps:
  - name: p
    classes:
      - { class: video, police: { named: cap, yellow: { set: { dscp: af42 } } } }
servicePolicies: [ { policyMap: p, interfaces: [ Ethernet1 ] } ]
steps:
)" + steps;
}

// Each share with a value of its own on each port, so that a share landing in another's key,
// or one port's traffic missing from a sum, shows.
std::string const colouredTraffic = R"(
  - at: 1
    changes:
      - attach: { policyMap: p, interfaces: [ Ethernet2 ] }
  - at: 2
    changes:
      - traffic: { policyMap: p, class: video, interface: Ethernet1, packets: 100, bytes: 10000,
                   droppedPackets: 3, droppedBytes: 300, yellowPackets: 10, yellowBytes: 1000 }
      - traffic: { policyMap: p, class: video, interface: Ethernet2, packets: 200, bytes: 20000,
                   droppedPackets: 4, droppedBytes: 400, yellowPackets: 20, yellowBytes: 2000 }
      - requestCounters: snmp
)";

struct Landing {
   char const* share;
   std::uint64_t sum;
   char const* onClasses;  // the key on a chip of per-class policers; null where it has none
};

// The shares as the counter machines publish them.
Landing const landings[] = {
   { "packets", 300, "video.outCount" },       { "bytes", 30000, "video.outBytes" },
   { "droppedPackets", 7, "video.dropCount" }, { "droppedBytes", 700, "video.dropBytes" },
   { "yellowPackets", 30, nullptr },           { "yellowBytes", 3000, nullptr },
};

TEST( TrafficColoursTest, EachShareReachesItsCounterOnAChipOfPerClassPolicers ) {
   Json const report = scenarioReport(
         "per-class.yaml",
         sharedPolicerScenario( "perClassPolicerSupported: true", colouredTraffic ) );
   Counters expected;
   for( Landing const& l : landings ) {
      if( l.onClasses ) expected[ l.onClasses ] = l.sum;
   }
   // The class's one policer serves both ports: its drops per port, in a status named after
   // each.
   expected[ "video/Ethernet1.pktDropCount" ] = 3;
   expected[ "video/Ethernet2.pktDropCount" ] = 4;
   expectCounters( countersOf( report ), expected );
}

// The per-port drops come with the second port, cover every port of the policer (0 where none
// dropped) and are running sums like the rest.
TEST( TrafficColoursTest, PerPortDropsOfAPolicerAreKeptOnceItServesSeveralPorts ) {
   std::string const steps = R"(
  - at: 1
    changes:
      - traffic: { policyMap: p, class: video, interface: Ethernet1, packets: 50, bytes: 5000,
                   droppedPackets: 5, droppedBytes: 500 }
      - requestCounters: snmp
)";
   Json const alone = scenarioReport(
         "alone.yaml", sharedPolicerScenario( "perClassPolicerSupported: true", steps ) );
   expectCounters( countersOf( alone ), { { "video.outCount", 50 },
                                          { "video.outBytes", 5000 },
                                          { "video.dropCount", 5 },
                                          { "video.dropBytes", 500 } } );
   Json const shared = scenarioReport(
         "shared.yaml", sharedPolicerScenario( "perClassPolicerSupported: true", steps + R"(
  - at: 2
    changes:
      - attach: { policyMap: p, interfaces: [ Ethernet2 ] }
      - traffic: { policyMap: p, class: video, interface: Ethernet1, packets: 10, bytes: 1000,
                   droppedPackets: 2, droppedBytes: 200 }
      - requestCounters: snmp
  - at: 3
    changes:
      - traffic: { policyMap: p, class: video, interface: Ethernet2, packets: 30, bytes: 3000 }
      - requestCounters: snmp
)" ) );
   expectCounters( countersOf( shared ), { { "video.outCount", 90 },
                                           { "video.outBytes", 9000 },
                                           { "video.dropCount", 7 },
                                           { "video.dropBytes", 700 },
                                           { "video/Ethernet1.pktDropCount", 7 },
                                           { "video/Ethernet2.pktDropCount", 0 } } );
   EXPECT_EQ( countersOf( shared ).count( "video/Ethernet2.pktDropCount" ), 1u );
}

// ---- An entry the engine never asked for

std::string const denyFirst = R"(
interfaces: [ Ethernet1 ]
acls:
  - name: MGMT
    rules:
      - { seq: 10, action: deny, proto: tcp, src: 10.9.0.0/16, dstPort: { eq: 22 } }
      - { seq: 20, proto: tcp, dstPort: { eq: 22 } }
classMaps: [ { name: mgmt, match: { ipv4: MGMT } } ]
policyMaps: [ { name: p, classes: [ { class: mgmt, set: { trafficClass: 6 } } ] } ]
servicePolicies: [ { policyMap: p, interfaces: [ Ethernet1 ] } ]
steps:
  - at: 1
    changes:
)";

// A deny rule takes no entry of its own; one that appears at its number is one verification
// finds, on both TCAM modes, until the map is programmed again.
TEST( TrafficColoursTest, AnAddedEntryOfADenyRuleIsFoundByVerification ) {
   std::string const path = scenarioFile(
         "planted.yaml",
         denyFirst + R"(      - corruptTcam: { acl: MGMT, rule: 0, subrule: 0, add: true,
                       fields: { action: permit, proto: "6", dstPort: 22/0xffff } }
  - at: 2
    changes:
      - policyMap: { name: p, classes: [ { class: mgmt, set: { trafficClass: 5 } } ] }
)" );
   for( char const* mode : { "synchronous", "asynchronous" } ) {
      SCOPED_TRACE( mode );
      SimRun const run = runSim( { path, "--json", "--verify=always", "--tcam-mode", mode } );
      EXPECT_EQ( run.exitCode, 1 ) << run.err;
      if( run.exitCode != 1 ) continue;
      Json const report = run.report();
      std::vector< std::string > findings;
      for( Json const& f : report[ "verify" ][ "findings" ] )
         findings.push_back( f[ "t" ].dump() + " " + f[ "text" ].get< std::string >() );
      // The engine asks about the subrules of the deny rule; on the asynchronous road the chip
      // compares its entries with those the engine's calls wrote, and finds one too many.
      std::string const expected =
            std::string( mode ) == "synchronous"
                  ? "1.0 ACL MGMT sequence 10 rule 0 subrule 0 exist for action 1"
                  : "1.0 ACL MGMT sequence 10 rule 0 subrule 0 should not exist";
      EXPECT_EQ( findings, std::vector< std::string >{ expected } );
   }
   // Without --verify nothing is checked; the entry, of no fields, stands first in the list.
   std::string const upTo = scenarioFile(
         "planted-only.yaml", denyFirst + R"(      - corruptTcam: { acl: MGMT, add: true }
)" );
   SimRun const plain = runSim( { upTo, "--json" } );
   ASSERT_EQ( plain.exitCode, 0 ) << plain.err;
   Json const report = plain.report();
   Json const& acl = report[ "tcam" ][ "acls" ][ 0 ];
   ASSERT_FALSE( acl[ "entries" ].empty() );
   EXPECT_EQ( acl[ "entries" ][ 0 ][ "ruleNum" ], 0 );
   EXPECT_EQ( acl[ "entries" ][ 0 ][ "subruleNum" ], 0 );
}

TEST( TrafficColoursTest, AnEntryCanBeAddedOnlyWhereThereIsNone ) {
   // Rule 1's first entry stands: there is no room for another of its numbers.
   SimRun const run = runSim( { scenarioFile(
         "taken.yaml", denyFirst + R"(      - corruptTcam: { acl: MGMT, rule: 1, add: true }
)" ) } );
   EXPECT_EQ( run.exitCode, 2 );
   EXPECT_NE( run.err.find( ":14:9: corruptTcam: no installed ACL MGMT can take an added entry "
                            "1.0 now (it has one already, or its slice is full)" ),
              std::string::npos )
         << run.err;
   // A full slice has no slot for it.
   SimRun const full = runSim(
         { scenarioFile( "full.yaml", "chip: { tcamSliceEntries: 3 }\n" + denyFirst +
                                            "      - corruptTcam: { acl: MGMT, add: true }\n" ) } );
   EXPECT_EQ( full.exitCode, 2 ) << full.err;
}

// An entry put into an ACL of ordered entries takes the place its numbers give it, so that the
// lookups, which search, still find every entry.
TEST( TrafficColoursTest, APlantedEntryKeepsTheEntriesInOrder ) {
   Sim::Tcam tcam( 8, 0 );
   tcam.open( "a", "ipv4" );
   for( std::uint32_t rule : { 1u, 3u, 5u } )
      ASSERT_TRUE( tcam.add( "a", Sim::TcamEntry{ "ip", rule, 0, {} } ) );
   EXPECT_TRUE( tcam.plant( "a", Sim::TcamEntry{ "ip", 4, 0, { { "proto", "6" } } } ) );
   EXPECT_FALSE( tcam.plant( "a", Sim::TcamEntry{ "ip", 3, 0, {} } ) ) << "taken";
   EXPECT_FALSE( tcam.plant( "b", Sim::TcamEntry{ "ip", 3, 0, {} } ) ) << "no such ACL";
   std::vector< std::uint32_t > rules;
   for( Sim::TcamEntry const& e : tcam.acls().at( "a" ).entries )
      rules.push_back( e.ruleNum );
   EXPECT_EQ( rules, ( std::vector< std::uint32_t >{ 1, 3, 4, 5 } ) );
   for( std::uint32_t rule : { 1u, 3u, 4u, 5u } )
      EXPECT_NE( tcam.entry( "a", rule, 0 ), nullptr ) << rule;
   EXPECT_EQ( tcam.slices().at( "ipv4" ).used, 4u );
   tcam.destroy( "a" );
   EXPECT_EQ( tcam.slices().at( "ipv4" ).used, 0u ) << "the planted entry's slot comes free too";
}

}  // namespace
}  // namespace NevQosTest
