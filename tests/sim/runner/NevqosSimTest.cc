// nevqos-sim run as a user runs it: each example's report, the same outcome on both TCAM modes,
// every kind of chip fault, and bad scenarios refused with their place and exit code 2.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "support/SimProgram.h"

namespace NevQosTest {
namespace {

using Json = nlohmann::json;
using Lines = std::vector< std::string >;

// Runs an example with --json; the report, after checking that the run went well.
Json reportOf( char const* name, std::vector< std::string > flags = {} ) {
   flags.insert( flags.begin(), { example( name ), "--json" } );
   SimRun const run = runSim( flags );
   EXPECT_EQ( run.exitCode, 0 ) << run.err;
   return run.exitCode == 0 ? run.report() : Json::object();
}

// An example cut off before the line `marker`, written to a file of its own.
std::string exampleUpTo( std::string const& name, std::string const& marker ) {
   std::ifstream in( example( name ) );
   std::string const text( ( std::istreambuf_iterator< char >( in ) ), {} );
   return scenarioFile( "upto-" + name, text.substr( 0, text.find( marker ) ) );
}

Json const& policyMap( Json const& report, std::string const& name ) {
   for( Json const& p : report[ "status" ][ "policyMaps" ] ) {
      if( p[ "name" ] == name ) return p;
   }
   static Json const none;
   ADD_FAILURE() << "no policy map " << name;
   return none;
}

Json const& classMap( Json const& pmap, std::string const& name ) {
   for( Json const& c : pmap[ "classMaps" ] ) {
      if( c[ "name" ] == name ) return c;
   }
   static Json const none;
   ADD_FAILURE() << "no class map " << name;
   return none;
}

// Policer name to packets in, of one class.
std::map< std::string, unsigned > policerPackets( Json const& cmap ) {
   std::map< std::string, unsigned > out;
   for( Json const& p : cmap[ "policers" ] )
      out[ p[ "name" ] ] = p[ "pktInCount" ];
   return out;
}

// "t HANDLE: text" for each log line.
Lines logsOf( Json const& report ) {
   Lines out;
   for( Json const& l : report[ "logs" ] ) {
      std::ostringstream os;
      os << l[ "t" ].get< double >() << " " << l[ "handle" ].get< std::string >() << ": "
         << l[ "text" ].get< std::string >();
      out.push_back( os.str() );
   }
   return out;
}

std::vector< Json > callsOf( Json const& report, std::string const& op ) {
   std::vector< Json > out;
   for( Json const& c : report[ "calls" ] ) {
      if( c[ "op" ] == op ) out.push_back( c );
   }
   return out;
}

Json const& slice( Json const& report, std::string const& name ) {
   for( Json const& s : report[ "tcam" ][ "slices" ] ) {
      if( s[ "name" ] == name ) return s;
   }
   static Json const none;
   ADD_FAILURE() << "no slice " << name;
   return none;
}

TEST( NevqosSimTest, TheEdgePolicyMarksAndPolicesPerInterface ) {
   Json const r = reportOf( "edge-policy.yaml" );
   Json const& edge = policyMap( r, "edge-in" );
   EXPECT_EQ( edge[ "prgmStatus" ], "hwPrgmStatusSuccess" );
   EXPECT_EQ( edge[ "version" ], 2 );
   Json const& voice = classMap( edge, "voice" );
   EXPECT_TRUE( voice[ "dscpPrgmd" ] && voice[ "tcPrgmd" ] );
   EXPECT_EQ( policerPackets( voice ),
              ( std::map< std::string, unsigned >{
                    { "Ethernet1", 1000 }, { "Ethernet3", 0 }, { "Port-Channel10", 0 } } ) );
   EXPECT_EQ( policerPackets( classMap( edge, "video" ) ),
              ( std::map< std::string, unsigned >{ { "video-cap", 5000 } } ) );
   EXPECT_EQ( logsOf( r ), Lines{} );
   EXPECT_EQ( r[ "resources" ][ "policers" ][ "used" ], 4 );
   // Every call carries its time and arguments by name.
   auto const first = callsOf( r, "createIpAclSubrule" ).at( 0 );
   EXPECT_EQ( first[ "t" ], 0.001 );
   EXPECT_EQ( first[ "args" ][ "classData" ], "edge-in(qos,input)/video/video-cap" );
   EXPECT_EQ( first[ "args" ][ "aclKey" ], "VIDEO(ip)" );
   EXPECT_EQ( first[ "args" ][ "dstL4Port" ], "554" );
   EXPECT_EQ( first[ "args" ][ "dstL4PortMask" ], "0xffff" );
}

TEST( NevqosSimTest, TheTcamFillsAndRecovers ) {
   Json const r = reportOf( "tcam-exhaustion.yaml" );
   EXPECT_EQ( logsOf( r ), ( Lines{ "0.001 QOS_POLICY_HW_RESOURCE_FULL: Insufficient hardware "
                                    "resources to program the input policy-map core-in.",
                                    "2 QOS_POLICY_HW_RESOURCE_NORMAL: Programmed input "
                                    "policy-map core-in in hardware." } ) );
   Json const& core = policyMap( r, "core-in" );
   EXPECT_EQ( core[ "prgmStatus" ], "hwPrgmStatusSuccess" );
   EXPECT_EQ( core[ "errMessage" ], "Insufficient hardware resources" ) << "kept after success";
   EXPECT_EQ( slice( r, "ipv4" )[ "used" ], 40 ) << "the big list fits once the fault is off";
}

TEST( NevqosSimTest, RangesWithoutCheckersAreExpanded ) {
   Json const r = reportOf( "range-checkers.yaml" );
   EXPECT_EQ( r[ "tcam" ][ "rangeCheckers" ][ "free" ], 0 );
   std::map< std::string, Lines > dstPorts;
   for( Json const& acl : r[ "tcam" ][ "acls" ] ) {
      for( Json const& e : acl[ "entries" ] ) {
         if( e[ "kind" ] == "ip" ) dstPorts[ acl[ "id" ] ].push_back( e[ "fields" ][ "dstPort" ] );
      }
   }
   EXPECT_EQ( dstPorts[ "games-in(qos,input)/games/Default GAMES(ip)" ],
              ( Lines{ "range 27000-27050", "range 3074-3079" } ) );
   Lines const& web = dstPorts[ "web-in(qos,input)/web/Default WEB(ip)" ];
   EXPECT_EQ( web.size(), 12u );
   EXPECT_EQ( web.front(), "8000/0xffc0" );
}

TEST( NevqosSimTest, AnOperationLeftPendingTimesOutAndTheQueueGoesOn ) {
   Json const r = reportOf( "async-timeout.yaml" );
   auto const timeouts = callsOf( r, "handlePendingOperationTimeout" );
   ASSERT_EQ( timeouts.size(), 1u );
   EXPECT_DOUBLE_EQ( timeouts[ 0 ][ "t" ].get< double >(), 5.501 )
         << "five seconds after the third operation began";
   EXPECT_EQ( r[ "resources" ][ "pendingOperations" ], 0 )
         << "the chip drops what the engine gave up";
   for( Json const& acl : r[ "tcam" ][ "acls" ] )
      EXPECT_EQ( acl[ "interfaces" ], Json::array( { "Ethernet1", "Ethernet2" } ) ) << acl[ "id" ];
   EXPECT_EQ( policyMap( r, "web-in" )[ "version" ], 2 );
}

TEST( NevqosSimTest, CountersAreRunningSumsOfTheTraffic ) {
   Json const r = reportOf( "counters.yaml" );
   Json const& mgmt = policyMap( r, "mgmt-in" );
   EXPECT_EQ( classMap( mgmt, "ssh" )[ "outCount" ], 230 );
   EXPECT_EQ( classMap( mgmt, "ssh" )[ "outBytes" ], 18400 );
   EXPECT_EQ( policerPackets( classMap( mgmt, "backup" ) ),
              ( std::map< std::string, unsigned >{ { "Ethernet1", 0 }, { "Ethernet2", 5000 } } ) );
   EXPECT_EQ( r[ "status" ][ "pmapCounterUpdateTime" ], 10.0 );
}

TEST( NevqosSimTest, EcnProfilesRunOutAndTheSliceStaysDownUntilCleared ) {
   Json const r = reportOf( "ecn-profiles.yaml" );
   EXPECT_EQ( logsOf( r ), Lines{ "0.001 QOS_ECN_QUEUE_HW_FULL: Hardware resources insufficient "
                                  "to program tx-queue ECN on queue UC1 for port Ethernet3" } );
   Json ecn;
   for( Json const& f : r[ "status" ][ "features" ] ) {
      if( f[ "name" ] == "featureEcnStatus" ) ecn = f;
   }
   EXPECT_EQ( ecn[ "status" ], "hwProgrammingSucceeded" ) << "the third setting fits at 6";
   EXPECT_EQ( ecn[ "errMessage" ], "ECN profiles exhausted" ) << "kept after the success";
   EXPECT_EQ( r[ "status" ][ "basicStatus" ], "hwProgrammingSucceeded" ) << "cleared at 7";
   Json const& pool = r[ "basic" ][ "profiles" ][ "ecn" ];
   EXPECT_EQ( pool[ "free" ], 0 );
   EXPECT_EQ( pool[ "profiles" ][ 1 ][ "queues" ],
              Json::array( { "Ethernet1 UC1", "Ethernet2 UC1" } ) );
   EXPECT_EQ( r[ "basic" ][ "queues" ][ 0 ][ "guaranteedRate" ], 5000000 )
         << "20 percent of the 25000 Mbps link, in kbps";

   // Without the clear request the slice stays down.
   SimRun const uncleared = runSim( { exampleUpTo( "ecn-profiles.yaml", "  - at: 7" ), "--json" } );
   ASSERT_EQ( uncleared.exitCode, 0 ) << uncleared.err;
   EXPECT_EQ( uncleared.report()[ "status" ][ "basicStatus" ], "hwProgrammingFailed" );
}

TEST( NevqosSimTest, PerPortCoppRunsOutIsRetriedEachMinuteAndRecovers ) {
   Json const r = reportOf( "copp-exhaustion.yaml" );
   Lines copp;
   for( Json const& c : r[ "calls" ] ) {
      std::string const op = c[ "op" ];
      if( op.find( "CoppPolicerByPortQueue" ) == std::string::npos ) continue;
      std::ostringstream os;
      os << c[ "t" ].get< double >() << " " << op.substr( 0, 7 ) << " "
         << c[ "args" ][ "key" ].get< std::string >();
      copp.push_back( os.str() );
   }
   EXPECT_EQ( copp, ( Lines{ "0.001 createC 0/1/4", "5 createC 0/2/4", "5 createC 0/3/4",
                             "30 createC 0/3/7", "40 destroy 0/1/4", "65 createC 0/3/4",
                             "65 createC 0/3/7", "100 destroy 0/2/4", "125 createC 0/3/7" } ) );
   std::string const policer = "control plane policer for class cpu-queue-";
   EXPECT_EQ( logsOf( r ),
              ( Lines{ "5 QOS_COPP_HW_RESOURCE_FULL: Insufficient egress TCAM resources to "
                       "program the " +
                             policer + "4 on Ethernet3.",
                       "30 QOS_COPP_HW_RESOURCE_FULL: Insufficient egress TCAM resources to "
                       "program the " +
                             policer + "7 on Ethernet3.",
                       "65 QOS_COPP_HW_RESOURCE_NORMAL: C" + policer.substr( 1 ) +
                             "4 on Ethernet3 is programmed in egress TCAM.",
                       "125 QOS_COPP_HW_RESOURCE_NORMAL: C" + policer.substr( 1 ) +
                             "7 on Ethernet3 is programmed in egress TCAM." } ) );
   Json const& cp = r[ "controlPlane" ];
   EXPECT_EQ( cp[ "copp" ][ "pending" ], Json::array() );
   EXPECT_EQ( cp[ "copp" ][ "retryAt" ], 245.0 )
         << "still firing each minute after the queue emptied";
   // The COS change made before the hardware was initialised reached the driver all the same,
   // and multicast follows the unicast queue.
   Json const& kernel = cp[ "kernel" ];
   EXPECT_EQ( kernel[ "cosToTc" ][ "5" ], 4 );
   EXPECT_EQ( kernel[ "tcToTxQueue" ][ "4" ], 6 );
   EXPECT_EQ( kernel[ "tcToMcTxQueue" ][ "4" ], 6 );

   // Until the driver has started, the kernel is told nothing.
   SimRun const starting =
         runSim( { exampleUpTo( "copp-exhaustion.yaml", "  - at: 2" ), "--json" } );
   ASSERT_EQ( starting.exitCode, 0 ) << starting.err;
   EXPECT_EQ( starting.report()[ "controlPlane" ][ "kernel" ][ "operations" ], 0 );
}

TEST( NevqosSimTest, FecOverridesWaitAreProgrammedRunOutAndRecover ) {
   Json const r = reportOf( "cbf-overrides.yaml" );
   Lines cbf;
   for( Json const& c : r[ "calls" ] ) {
      if( c[ "helper" ] != "cbf" ) continue;
      std::ostringstream os;
      os << c[ "t" ].get< double >() << " " << c[ "op" ].get< std::string >() << " "
         << c[ "args" ][ "key" ].get< std::string >();
      if( c[ "args" ].contains( "overridingHwFecId" ) ) {
         os << " " << c[ "args" ][ "overridingHwFecId" ].get< std::string >();
      }
      cbf.push_back( os.str() );
   }
   // Each override is programmed once both FECs are known; the third is retried each second
   // while the table is full, and programmed once a rule is freed.
   EXPECT_EQ(
         cbf,
         ( Lines{
               "2 createOrUpdateMapping ipv4/46/10 5020", "3 createOrUpdateMapping ipv4/34/10 5021",
               "4 createOrUpdateMapping ipv6/46/11 5020", "5 createOrUpdateMapping ipv6/46/11 5020",
               "6 createOrUpdateMapping ipv6/46/11 5020", "6 deleteMapping ipv4/34/10",
               "6 createOrUpdateMapping ipv6/46/11 5020", "8 createOrUpdateMapping ipv4/46/10 6020",
               "8 createOrUpdateMapping ipv6/46/11 6020", "9 deleteMapping ipv4/46/10",
               "9 deleteMapping ipv6/46/11" } ) );
   EXPECT_EQ( logsOf( r ),
              ( Lines{ "4 ROUTING_CBF_HW_RESOURCE_FULL: Hardware resources are insufficient to "
                       "program all class based forwarding FEC override mappings.",
                       "6 ROUTING_CBF_HW_RESOURCE_NORMAL: All class based forwarding FEC "
                       "override mappings are programmed in hardware." } ) );
   Json const& c = r[ "cbf" ];
   EXPECT_EQ( c[ "ruleTable" ][ "used" ], 0 );
   EXPECT_EQ( c[ "status" ], Json::parse( R"([ { "key": "ipv4/46/10", "status": "waitingForHwFecId",
                                  "hwRuleId": null },
                                { "key": "ipv6/46/11", "status": "waitingForHwFecId",
                                  "hwRuleId": null } ])" ) );
   EXPECT_EQ( c[ "requests" ], Json::array( { 10, 11, 20 } ) ) << "FEC 21 no longer asked for";
   EXPECT_EQ( c[ "resourceFull" ], false );
}

// The outcome of a scenario does not depend on the road: same status, same lists on the same
// interfaces with as many entries, same log.
class BothTcamModesTest : public ::testing::TestWithParam< char const* > {};

TEST_P( BothTcamModesTest, GiveTheSameOutcome ) {
   auto const outcome = []( Json const& r ) {
      Json acls = Json::array();
      for( Json const& a : r[ "tcam" ][ "acls" ] )
         acls.push_back( { a[ "id" ], a[ "interfaces" ], a[ "entries" ].size() } );
      return Json{ r[ "status" ][ "policyMaps" ], acls, r[ "tcam" ][ "slices" ], r[ "logs" ] };
   };
   Json const sync = reportOf( GetParam(), { "--tcam-mode", "synchronous" } );
   Json const async = reportOf( GetParam(), { "--tcam-mode", "asynchronous" } );
   EXPECT_EQ( outcome( sync ), outcome( async ) );
   EXPECT_EQ( callsOf( sync, "handlePendingOperationTimeout" ), std::vector< Json >{} );
}

INSTANTIATE_TEST_SUITE_P( Examples, BothTcamModesTest,
                          ::testing::Values( "tcam-exhaustion.yaml", "range-checkers.yaml",
                                             "counters.yaml", "async-timeout.yaml",
                                             "restart-reconciliation.yaml" ) );

std::string const faultBase = R"(
interfaces: [ Ethernet1 ]
acls: [ { name: WEB, rules: [ { proto: tcp, dstPort: { eq: 80 } } ] } ]
classMaps: [ { name: web, match: { ipv4: WEB } } ]
policyMaps:
  - name: pm
    classes: [ { class: web, set: { dscp: 10 }, police: { cir: 1000, bc: 10000 } } ]
servicePolicies: [ { policyMap: pm, interfaces: [ Ethernet1 ] } ]
steps:
  - { at: 2, changes: [ { fault: { index: 0, on: false } },
                        { acl: { name: WEB, rules: [ { proto: tcp, dstPort: { eq: 81 } } ] } } ] }
)";

TEST( NevqosSimTest, AFailingOperationFailsTheMapUntilTheFaultIsOff ) {
   std::string const path = scenarioFile(
         "op-error.yaml",
         "chip: { faults: [ { kind: operationError, op: commitAcl, error: tooManyAcls } ] }" +
               faultBase );
   Json const r = runSim( { path, "--json" } ).report();
   EXPECT_EQ( logsOf( r ), ( Lines{ "0.001 QOS_POLICY_HW_RESOURCE_FULL: Insufficient hardware "
                                    "resources to program the input policy-map pm.",
                                    "2 QOS_POLICY_HW_RESOURCE_NORMAL: Programmed input "
                                    "policy-map pm in hardware." } ) );
   EXPECT_EQ( policyMap( r, "pm" )[ "prgmStatus" ], "hwPrgmStatusSuccess" );
}

TEST( NevqosSimTest, PolicerExhaustionIsLoggedAndTheRestProgrammed ) {
   std::string const path = scenarioFile(
         "policers.yaml", "chip: { faults: [ { kind: policerExhaustion } ] }" + faultBase );
   Json const r = runSim( { path, "--json" } ).report();
   EXPECT_EQ( logsOf( r ), Lines{ "0.001 QOS_POLICY_POLICER_RESOURCE_FULL: Insufficient hardware "
                                  "resources to program the police action for the class-map "
                                  "web in the policy-map pm on interface Ethernet1." } );
   Json const& web = classMap( policyMap( r, "pm" ), "web" );
   ASSERT_EQ( web[ "policers" ].size(), 1u );
   EXPECT_TRUE( web[ "policers" ][ 0 ][ "policerPrgmd" ] ) << "the new version, fault off";
   EXPECT_EQ( r[ "resources" ][ "policers" ][ "used" ], 1 );
}

TEST( NevqosSimTest, OutOfRangeCheckersExpandsInTheWindowOfTheFault ) {
   std::string const path = scenarioFile( "checkers.yaml", R"(
chip: { faults: [ { kind: outOfRangeCheckers, until: 1 } ] }
interfaces: [ Ethernet1 ]
acls: [ { name: R, rules: [ { proto: udp, dstPort: { range: [ 100, 103 ] } },
                            { proto: udp, dstPort: { range: [ 200, 300 ] } } ] } ]
classMaps: [ { name: r, match: { ipv4: R } } ]
policyMaps: [ { name: pm, classes: [ { class: r, set: { trafficClass: 1 } } ] } ]
servicePolicies: [ { policyMap: pm, interfaces: [ Ethernet1 ] } ]
steps:
  - { at: 2, changes: [ { acl: { name: R, rules: [ { proto: udp, dstPort: { range: [ 200, 300 ] } } ] } } ] }
)" );
   Json const r = runSim( { path, "--json" } ).report();
   auto const subrules = callsOf( r, "createIpAclSubrule" );
   EXPECT_EQ( subrules.size(), 1u + 1u + 7u + 1u )
         << "100-103 goes as one block; 200-300 is refused, then sent as seven blocks; after "
            "the fault one call takes a checker";
   EXPECT_EQ( r[ "tcam" ][ "rangeCheckers" ][ "used" ], 1 );
}

TEST( NevqosSimTest, TheTextReportIsTheDefault ) {
   SimRun const run = runSim( { example( "tcam-exhaustion.yaml" ), "--limit", "3" } );
   EXPECT_EQ( run.exitCode, 0 );
   for( char const* part :
        { "Scenario ", "Helper calls (", "more than 3; by operation:", "System log (2):",
          "mapQos input core-in  version 3  hwPrgmStatusSuccess, last error", "slice ipv4: 40 used",
          "Resources: policers 0/1024" } ) {
      EXPECT_NE( run.out.find( part ), std::string::npos ) << part << "\n" << run.out;
   }
}

TEST( NevqosSimTest, BadScenariosAreRefusedWithTheirPlace ) {
   struct Case {
      char const* text;
      char const* error;
   };
   for( Case const& c : std::vector< Case >{
              { "acls: [ { name: A\n", "bad.yaml:2:1: " },
              { "chip: { tcamSize: 5 }\n", "bad.yaml:1:9: chip: unknown key 'tcamSize'" },
              { "chip: { policers: many }\n", "bad.yaml:1:19: policers: " },
              { "classMaps: [ { name: c, match: { ipv4: NOPE } } ]\n",
                "bad.yaml:1:14: class map qos c matches access list ipv4 NOPE, which does not "
                "exist" },
        } ) {
      std::string const path = scenarioFile( "bad.yaml", c.text );
      SimRun const run = runSim( { path, "--json" } );
      EXPECT_EQ( run.exitCode, 2 ) << c.text;
      EXPECT_EQ( run.out, "" ) << c.text;
      EXPECT_NE( run.err.find( path.substr( 0, path.size() - 8 ) + c.error ), std::string::npos )
            << c.text << " gave: " << run.err;
   }
   EXPECT_EQ( runSim( { example( "counters.yaml" ), "--tcam-mode", "fast" } ).exitCode, 2 );
   SimRun const missing = runSim( { ::testing::TempDir() + "no-such.yaml" } );
   EXPECT_EQ( missing.exitCode, 2 );
   EXPECT_NE( missing.err.find( "no-such.yaml: cannot read" ), std::string::npos ) << missing.err;
}

// ---- Verification and show

TEST( NevqosSimTest, EveryExampleButTheDamagedOneVerifiesClean ) {
   namespace fs = std::filesystem;
   std::vector< std::string > names;
   for( auto const& f : fs::directory_iterator( fs::path( example( "x" ) ).parent_path() ) ) {
      if( f.path().extension() == ".yaml" ) names.push_back( f.path().filename().string() );
   }
   ASSERT_GE( names.size(), 10u );
   for( std::string const& name : names ) {
      if( name == "tcam-corruption.yaml" ) continue;
      for( char const* mode : { "synchronous", "asynchronous" } ) {
         SCOPED_TRACE( name + " " + mode );
         SimRun const run =
               runSim( { example( name ), "--json", "--verify=always", "--tcam-mode", mode } );
         ASSERT_EQ( run.exitCode, 0 ) << run.err << run.out.substr( 0, 2000 );
         Json const verify = run.report()[ "verify" ];
         EXPECT_EQ( verify[ "findings" ], Json::array() );
         EXPECT_GE( verify[ "runs" ].get< int >(), 2 ) << "at the start and at the end at least";
      }
   }
}

// The second rule's destination range already has the ACL's only checker, its source range none:
// the chip expands both, so the subrule stands as the product of its blocks, as verification
// reads it back.
TEST( NevqosSimTest, ARuleShortOfOneCheckerIsExpandedWholeAndVerifiesClean ) {
   std::string const path = scenarioFile( "mixed-ranges.yaml", R"(
chip: { rangeCheckers: 1 }
interfaces: [ Ethernet1 ]
acls:
  - name: A
    rules:
      - { proto: tcp, dstPort: { range: [ 3000, 4000 ] } }
      - { proto: tcp, srcPort: { range: [ 1000, 2000 ] }, dstPort: { range: [ 3000, 4000 ] } }
classMaps: [ { name: c, match: { ipv4: A } } ]
policyMaps: [ { name: p, classes: [ { class: c, set: { dscp: 10 } } ] } ]
servicePolicies: [ { policyMap: p, interfaces: [ Ethernet1 ] } ]
)" );
   SimRun const run = runSim( { path, "--json", "--verify" } );
   EXPECT_EQ( run.exitCode, 0 ) << run.err;
   Json const report = run.report();
   EXPECT_EQ( report[ "verify" ][ "findings" ], Json::array() );
   EXPECT_EQ( callsOf( report, "createIpAclSubrule" ).size(), 1u + 1u + 8u * 7u )
         << "rule 0 whole; rule 1 refused, then 8 source blocks by 7 destination blocks";
}

TEST( NevqosSimTest, DamagedEntriesAreFoundUntilTheMapIsProgrammedAgain ) {
   SimRun const run = runSim( { example( "tcam-corruption.yaml" ), "--json", "--verify=always" } );
   EXPECT_EQ( run.exitCode, 1 ) << run.err;
   Json const report = run.report();
   EXPECT_EQ( report[ "verify" ][ "mode" ], "always" );
   EXPECT_EQ( report[ "verify" ][ "runs" ], 6 ) << "the start, five steps' ends and the settle";
   Lines findings;
   for( Json const& f : report[ "verify" ][ "findings" ] ) {
      findings.push_back( f[ "t" ].dump() + " " + f[ "text" ].get< std::string >() );
   }
   EXPECT_EQ( findings,
              ( Lines{ "2.0 ACL MGMT sequence 30 rule 2 subrule 0 dstPort is 447-447, expected "
                       "443-443",
                       "3.0 ACL MGMT sequence 20 rule 1 subrule 0 doesn't exist",
                       "3.0 ACL MGMT sequence 30 rule 2 subrule 0 dstPort is 447-447, expected "
                       "443-443" } ) );
   // Damage is no change of the engine's: a bare --verify runs only where an engine asked, after
   // the start, the attach and the reprogramming, and so finds nothing.
   SimRun const requested = runSim( { example( "tcam-corruption.yaml" ), "--json", "--verify" } );
   EXPECT_EQ( requested.exitCode, 0 ) << requested.err;
   Json const asked = requested.report()[ "verify" ];
   EXPECT_EQ( asked[ "mode" ], "requested" );
   EXPECT_EQ( asked[ "findings" ], Json::array() );
   EXPECT_LT( asked[ "runs" ].get< int >(), 6 );
   // Without --verify the run is a plain run.
   EXPECT_EQ( runSim( { example( "tcam-corruption.yaml" ), "--json" } ).exitCode, 0 );
   // An entry that isn't there cannot be damaged.
   std::string const path = exampleUpTo( "tcam-corruption.yaml", "  - at: 3" );
   std::ofstream( path, std::ios::app )
         << "  - at: 3\n    changes:\n      - corruptTcam: { acl: MGMT, rule: 9 }\n";
   SimRun const missing = runSim( { path } );
   EXPECT_EQ( missing.exitCode, 2 );
   EXPECT_NE( missing.err.find( ":44:9: corruptTcam: no installed ACL MGMT has entry 9.0 now" ),
              std::string::npos )
         << missing.err;
}

// The engine's records beside the chip's: a list the engine committed and left out (an IPv6 list
// beside a MAC list on a chip that cannot hold both) is in the engine's view only, with no
// number; a policer above the chip's limit is held clamped; the warning is severity 4.
TEST( NevqosSimTest, TheReportShowsTheEnginesOwnRecords ) {
   std::string const path = scenarioFile( "engine-records.yaml", R"(
chip: { policeByteModeMaxRateKbps: 1000 }
interfaces: [ Ethernet1 ]
acls:
  - { name: V6, type: ipv6, rules: [ { proto: udp } ] }
  - { name: M, type: mac, rules: [ { etherType: 0x800 } ] }
classMaps:
  - { name: c6, match: { ipv6: V6 } }
  - { name: cm, match: { mac: M } }
policyMaps:
  - name: p
    classes:
      - { class: c6, police: { cir: 5000, bc: 16000, red: { drop: true } } }
      - { class: cm, set: { cos: 2 } }
servicePolicies: [ { policyMap: p, interfaces: [ Ethernet1 ] } ]
)" );
   SimRun const run = runSim( { path, "--json" } );
   ASSERT_EQ( run.exitCode, 0 ) << run.err;
   Json const report = run.report();
   ASSERT_EQ( report[ "logs" ].size(), 2u );
   EXPECT_EQ( report[ "logs" ][ 0 ][ "severityLevel" ], 4 );
   Json const& pmap = report[ "engine" ][ "policyMaps" ][ 0 ];
   EXPECT_EQ( pmap[ "id" ], "p(qos,input)" );
   std::map< std::string, Json > classes;
   for( Json const& c : pmap[ "classes" ] )
      classes[ c[ "id" ].get< std::string >() ] = c;
   Json const& c6 = classes.at( "p(qos,input)/c6/Ethernet1" );
   EXPECT_EQ( c6[ "policer" ][ "cir" ], 1000 ) << "clamped to the chip's most";
   EXPECT_EQ( c6[ "policer" ][ "cirUnit" ], "kbps" );
   EXPECT_GT( c6[ "priority" ], classes.at( "p(qos,input)/cm/Default" )[ "priority" ] );
   ASSERT_EQ( c6[ "acls" ].size(), 1u );
   EXPECT_EQ( c6[ "acls" ][ 0 ][ "key" ], "V6(ipv6)" );
   EXPECT_EQ( c6[ "acls" ][ 0 ][ "aclNumber" ], -1 ) << "never created";
   EXPECT_EQ( c6[ "acls" ][ 0 ][ "installed" ], true ) << "yet committed";
   for( Json const& acl : report[ "tcam" ][ "acls" ] )
      EXPECT_EQ( acl[ "id" ].get< std::string >().find( "V6" ), std::string::npos );
}

// --trace keeps the lines of the handles and levels asked for, in order, with their times; a
// list that cannot be read is refused before anything runs.
TEST( NevqosSimTest, TraceKeepsTheLinesAskedForInOrder ) {
   Json const report =
         reportOf( "cbf-overrides.yaml", { "--trace", "NevCbfFecMappingSm/0", "--trace", "*/9" } );
   ASSERT_TRUE( report.contains( "trace" ) );
   Json const& trace = report[ "trace" ];
   ASSERT_FALSE( trace.empty() );
   std::set< std::string > handles;
   double last = 0.0;
   for( Json const& l : trace ) {
      handles.insert( l[ "handle" ].get< std::string >() + "/" + l[ "level" ].dump() );
      EXPECT_GE( l[ "t" ].get< double >(), last );
      last = l[ "t" ].get< double >();
   }
   EXPECT_EQ( handles, std::set< std::string >{ "NevCbfFecMappingSm/0" } )
         << "no handle traces at level 9";
   EXPECT_GT( last, 0.001 ) << "steps' lines as well as the start-up's";
   EXPECT_FALSE( reportOf( "cbf-overrides.yaml" ).contains( "trace" ) );
   SimRun const bad = runSim( { example( "cbf-overrides.yaml" ), "--trace", "NevQos/x" } );
   EXPECT_EQ( bad.exitCode, 2 );
   EXPECT_EQ( bad.out, "" );
   EXPECT_NE( bad.err.find( "--trace NevQos/x: not a trace list" ), std::string::npos ) << bad.err;
}

TEST( NevqosSimTest, ShowPrintsTheTcamOfEachAclAfterTheReport ) {
   SimRun const brief = runSim( { example( "tcam-corruption.yaml" ), "--show", "--brief" } );
   ASSERT_EQ( brief.exitCode, 0 ) << brief.err;
   auto const shown = brief.out.substr( brief.out.rfind( "Policy map edge-in:" ) );
   EXPECT_EQ( shown,
              "Policy map edge-in: mapQos input, ACL group Default, unit 0, interfaces: Ethernet1 "
              "Ethernet2\n"
              "  Class mgmt\n"
              "    ACL MGMT (ip, matchOptionIpAcl): slice ipv4, 4 entries, committed\n\n" );
   SimRun const detail = runSim( { example( "tcam-corruption.yaml" ), "--show", "qos" } );
   EXPECT_NE( detail.out.find( "      seq 20  1.0  ip  action=permit  proto=6" ),
              std::string::npos )
         << detail.out;
   EXPECT_EQ( runSim( { example( "tcam-corruption.yaml" ), "--show", "bogus" } ).exitCode, 2 );
   EXPECT_EQ( runSim( { example( "tcam-corruption.yaml" ), "--show", "--json" } ).exitCode, 2 )
         << "show lines would break the JSON document";
}

}  // namespace
}  // namespace NevQosTest
