// nevqos-sim run as a user runs it: the same outcome on both TCAM modes,
// verification and --show, the engine's records, and bad scenarios and flags refused with their
// place and exit code 2. (Chip faults have stories under tests/stories.)
#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "NevQos/sim/chip/ChipText.h"
#include "NevQos/sim/runner/SimSwitch.h"
#include "NevQos/sim/runner/Version.h"
#include "NevQos/sim/scenario/ScenarioLoader.h"
#include "support/SimProgram.h"

namespace NevQosTest {
namespace {

using Json = nlohmann::json;
using Lines = std::vector< std::string >;

// Runs an example with --json; the report, after checking that the run went well. On the TCAM
// road the example does not take, its `expect` list, told in the times of its own road, may not
// be met; that alone is no fault of the run.
Json reportOf( char const* name, std::vector< std::string > flags = {} ) {
   flags.insert( flags.begin(), { example( name ), "--json" } );
   SimRun const run = runSim( flags );
   bool const otherRoad = std::find( flags.begin(), flags.end(), "--tcam-mode" ) != flags.end();
   if( run.exitCode == 1 && otherRoad && !run.report()[ "expect" ][ "met" ].get< bool >() ) {
      return run.report();
   }
   EXPECT_EQ( run.exitCode, 0 ) << run.err;
   return run.exitCode == 0 ? run.report() : Json::object();
}

// An example cut off before the line `marker`, written to a file of its own.
std::string exampleUpTo( std::string const& name, std::string const& marker ) {
   std::ifstream in( example( name ) );
   std::string const text( ( std::istreambuf_iterator< char >( in ) ), {} );
   return scenarioFile( "upto-" + name, text.substr( 0, text.find( marker ) ) );
}

std::vector< Json > callsOf( Json const& report, std::string const& op ) {
   std::vector< Json > out;
   for( Json const& c : report[ "calls" ] ) {
      if( c[ "op" ] == op ) out.push_back( c );
   }
   return out;
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

TEST( NevqosSimTest, GivesTheProjectsVersionEverywhere ) {
   std::string const version = Sim::projectVersion();
   EXPECT_TRUE( std::regex_match( version, std::regex( R"(\d+\.\d+\.\d+)" ) ) ) << version;
   SimRun const run = runSim( { "--version" } );
   EXPECT_EQ( run.exitCode, 0 );
   EXPECT_EQ( run.out, "nevqos-sim " + version + "\n" );
   SimRun const help = runSim( { "--help" } );
   EXPECT_EQ( help.exitCode, 0 );
   for( char const* flag : { "--version", "-o,--output FILE", "--summary" } )
      EXPECT_NE( help.out.find( flag ), std::string::npos ) << flag << " in " << help.out;
   Json const report = reportOf( "edge-policy.yaml" );
   EXPECT_EQ( report[ "version" ], version );
   EXPECT_EQ( report[ "formatVersion" ], Sim::reportFormatVersion );
   // A new version says in the changelog what it brought.
   std::ifstream in( std::string( NEVQOS_SOURCE_DIR ) + "/CHANGELOG.md" );
   std::string const changelog( ( std::istreambuf_iterator< char >( in ) ), {} );
   EXPECT_NE( changelog.find( "\n## [" + version + "]" ), std::string::npos );
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
   // A trace list that cannot be read is refused before anything runs.
   SimRun const bad = runSim( { example( "cbf-overrides.yaml" ), "--trace", "NevQos/x" } );
   EXPECT_EQ( bad.exitCode, 2 );
   EXPECT_EQ( bad.out, "" );
   EXPECT_NE( bad.err.find( "--trace NevQos/x: not a trace list" ), std::string::npos ) << bad.err;
   // The settle time is read as a scenario's times are.
   for( auto const& [ settle, problem ] : std::vector< std::pair< char const*, char const* > >{
              { "nan", "--settle nan: is not a number of seconds" },
              { "-1", "--settle -1: takes no sign" },
              { "1e12", "--settle 1e12: is above 1e9 s" },
              { "60.000000000000000001", "has more digits than the virtual clock holds" } } ) {
      SimRun const run = runSim( { example( "counters.yaml" ), "--settle", settle } );
      EXPECT_EQ( run.exitCode, 2 ) << settle;
      EXPECT_EQ( run.out, "" );
      EXPECT_NE( run.err.find( problem ), std::string::npos ) << run.err;
   }
}

// The JSON report types a call's arguments, and the text report, made from it, writes each call
// back as the recorders wrote it: masks in hexadecimal, rates with their units.
TEST( NevqosSimTest, CallArgumentsAreTypedAndReadBackAsRecorded ) {
   Json const report = reportOf( "edge-policy.yaml" );
   Json const subrule = callsOf( report, "createIpAclSubrule" ).at( 0 )[ "args" ];
   EXPECT_TRUE( subrule[ "ruleNum" ].is_number_unsigned() );
   EXPECT_TRUE( subrule[ "dstL4PortMask" ].is_number_unsigned() );
   EXPECT_TRUE( subrule[ "l4Rule" ].is_boolean() );
   EXPECT_TRUE( subrule[ "classData" ].is_string() );
   Json const policer = callsOf( report, "createAndAttachPolicer" ).at( 0 )[ "args" ];
   EXPECT_TRUE( policer[ "cir" ].is_number_unsigned() );
   EXPECT_EQ( policer[ "cirUnit" ], "kbps" );
   EXPECT_EQ( callsOf( report, "programCosToTcMap" ).at( 0 )[ "args" ][ "cos" ], 0 );

   Sim::Scenario const scenario = Sim::loadScenario( example( "edge-policy.yaml" ) );
   Sim::SimSwitch sw( scenario );
   for( Sim::Step const& step : scenario.steps )
      sw.stepIs( step );
   sw.runFor( 60.0, [] {} );
   ASSERT_FALSE( sw.calls().gap() );
   Lines recorded;
   for( Sim::CallRun const& run : sw.calls().first() )
      recorded.push_back( Sim::callText( run.call ) );
   for( Sim::CallRun const& run : sw.calls().last() )
      recorded.push_back( Sim::callText( run.call ) );
   SimRun const text = runSim( { example( "edge-policy.yaml" ), "--limit", "0" } );
   std::string const calls = text.out.substr( text.out.find( "Helper calls (" ) );
   Lines printed;
   std::regex const line( R"(^ *[0-9.]+  (.*?)(  x[0-9]+ until [0-9.]+)?$)" );
   std::istringstream in( calls.substr( 0, calls.find( "\n\n" ) ) );
   std::string l;
   std::getline( in, l );  // the heading
   for( std::smatch m; std::getline( in, l ); ) {
      if( std::regex_match( l, m, line ) ) printed.push_back( m[ 1 ] );
   }
   EXPECT_EQ( printed, recorded );
}

// The basic QoS part types its values too (defaults a number or null, rates a number and a unit,
// thresholds an object or null), and the text report writes each queue back as the chip's
// records print.
TEST( NevqosSimTest, BasicQosIsTypedAndReadBackAsTheChipHoldsIt ) {
   Json const basic = reportOf( "ecn-profiles.yaml" )[ "basic" ];
   Json const& port = basic[ "ports" ].at( 0 );
   EXPECT_TRUE( port[ "defaultCos" ].is_number_unsigned() ) << port;
   EXPECT_TRUE( port[ "shapeRate" ].is_number_unsigned() ) << port;
   EXPECT_EQ( port[ "shapeRateUnit" ], "kbps" );
   Json const& queue = basic[ "queues" ].at( 0 );
   EXPECT_EQ( queue[ "guaranteedBw" ], 20 );
   EXPECT_EQ( queue[ "guaranteedBwUnit" ], "percent" );
   EXPECT_EQ( queue[ "ecn" ], ( Json{ { "minThreshold", 30000 },
                                      { "maxThreshold", 40000 },
                                      { "maxProbability", 100 } } ) );
   EXPECT_TRUE( queue[ "wred" ].is_null() );
   EXPECT_TRUE( queue[ "nonEct" ].is_null() );

   Sim::Scenario const scenario = Sim::loadScenario( example( "ecn-profiles.yaml" ) );
   Sim::SimSwitch sw( scenario );
   for( Sim::Step const& step : scenario.steps )
      sw.stepIs( step );
   sw.runFor( 60.0, [] {} );
   Lines held;
   for( auto const& [ key, q ] : sw.basicChip().queues() ) {
      bool const guaranteed = q.guaranteedBw.rate != Qos::GuaranteedBw::invalidRate;
      held.push_back( "  queue " + Sim::SimQosBasicHelper::queueName( key.intf, key.queue ) + ": " +
                      Sim::textOf( q.priority ) + ", shape " + Sim::textOf( q.shapeRate ) +
                      ", guaranteed " + ( guaranteed ? Sim::textOf( q.guaranteedBw ) : "none" ) +
                      ( q.guaranteedBwUnitMismatch ? " (held back: units differ)" : "" ) +
                      ", ECN " + Sim::textOf( q.ecn ) + ", WRED " + Sim::textOf( q.wred ) );
   }
   ASSERT_GE( held.size(), 2u );
   SimRun const text = runSim( { example( "ecn-profiles.yaml" ) } );
   Lines printed;
   std::istringstream in( text.out );
   for( std::string l; std::getline( in, l ); ) {
      if( l.rfind( "  queue ", 0 ) == 0 ) printed.push_back( l );
   }
   EXPECT_EQ( printed, held );
}

// ---- Where the report goes

// Runs nevqos-sim with its standard output on a pipe whose reading end is already closed; the
// exit code, and standard error in `err`.
int runIntoClosedPipe( std::vector< std::string > args, std::string& err ) {
   int ends[ 2 ];
   if( pipe( ends ) != 0 ) return -1;
   close( ends[ 0 ] );
   std::string const errFile = ::testing::TempDir() + "closed-pipe.err";
   posix_spawn_file_actions_t actions;
   posix_spawn_file_actions_init( &actions );
   posix_spawn_file_actions_adddup2( &actions, ends[ 1 ], STDOUT_FILENO );
   posix_spawn_file_actions_addopen( &actions, STDERR_FILENO, errFile.c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0644 );
   args.insert( args.begin(), NEVQOS_SIM_PROGRAM );
   std::vector< char* > argv;
   for( std::string& a : args )
      argv.push_back( a.data() );
   argv.push_back( nullptr );
   pid_t pid = 0;
   int const spawned = posix_spawn( &pid, argv[ 0 ], &actions, nullptr, argv.data(), environ );
   posix_spawn_file_actions_destroy( &actions );
   close( ends[ 1 ] );
   if( spawned != 0 ) return -1;
   int status = 0;
   waitpid( pid, &status, 0 );
   std::ifstream in( errFile );
   err.assign( std::istreambuf_iterator< char >( in ), {} );
   return WIFEXITED( status ) ? WEXITSTATUS( status ) : -1;
}

TEST( NevqosSimTest, WritesTheReportToAFileAndTheSummaryOnTheScreen ) {
   std::string const file = ::testing::TempDir() + "report.json";
   SimRun const toFile = runSim(
         { example( "tcam-exhaustion.yaml" ), "--json", "-o", file, "--summary", "--verify" } );
   EXPECT_EQ( toFile.exitCode, 0 ) << toFile.err;
   std::ifstream in( file );
   Json const report = Json::parse( in );
   EXPECT_EQ( report[ "tcam" ][ "slices" ][ 0 ][ "used" ], 40 );
   // One screen, from the report's own figures.
   std::size_t const lines =
         std::size_t( std::count( toFile.out.begin(), toFile.out.end(), '\n' ) );
   EXPECT_LE( lines, 24u ) << toFile.out;
   for( std::string const& part : std::vector< std::string >{
              "tcam-exhaustion.yaml", "; the report is in " + file, "Policy maps (",
              "mapQos input core-in  version 3  hwPrgmStatusSuccess",
              "TCAM: ipv4 40/" + report[ "tcam" ][ "slices" ][ 0 ][ "size" ].dump(),
              "Log lines by handle (2):",
              "Verification: " + report[ "verify" ][ "runs" ].dump() +
                    " runs, the chip holds what the engine programmed" } ) {
      EXPECT_NE( toFile.out.find( part ), std::string::npos ) << part << " in " << toFile.out;
   }
   // Without -o the summary is all; the JSON report would have nowhere to go.
   SimRun const alone = runSim( { example( "tcam-exhaustion.yaml" ), "--summary" } );
   EXPECT_EQ( alone.exitCode, 0 );
   EXPECT_EQ( alone.out.find( "Helper calls (" ), std::string::npos );
   EXPECT_NE( alone.out.find( "Verification: not run" ), std::string::npos );
   SimRun const clash = runSim( { example( "tcam-exhaustion.yaml" ), "--summary", "--json" } );
   EXPECT_EQ( clash.exitCode, 2 );
   EXPECT_NE( clash.err.find( "--json with --summary needs -o FILE" ), std::string::npos );
}

TEST( NevqosSimTest, AReportThatCannotBeWrittenEndsWithExitCode3 ) {
   SimRun const full = runSim( { example( "counters.yaml" ), "--json", "-o", "/dev/full" } );
   EXPECT_EQ( full.exitCode, 3 );
   EXPECT_NE( full.err.find( "cannot write the report to /dev/full: No space left on device" ),
              std::string::npos )
         << full.err;
   SimRun const nowhere = runSim( { example( "counters.yaml" ), "-o", "/no/such/dir/r.txt" } );
   EXPECT_EQ( nowhere.exitCode, 3 );
   EXPECT_NE( nowhere.err.find( "cannot open /no/such/dir/r.txt: No such file or directory" ),
              std::string::npos )
         << nowhere.err;
   // A refused scenario leaves the file alone.
   std::string const kept = scenarioFile( "kept.txt", "kept" );
   EXPECT_EQ( runSim( { scenarioFile( "bad.yaml", "chips: {}\n" ), "-o", kept } ).exitCode, 2 );
   std::ifstream in( kept );
   EXPECT_EQ( std::string( std::istreambuf_iterator< char >( in ), {} ), "kept" );
   for( std::vector< std::string > const& flags :
        std::vector< std::vector< std::string > >{ { "--json" }, { "--summary" }, { "--show" } } ) {
      std::vector< std::string > args{ example( "counters.yaml" ) };
      args.insert( args.end(), flags.begin(), flags.end() );
      std::string err;
      EXPECT_EQ( runIntoClosedPipe( args, err ), 3 ) << flags[ 0 ];
      EXPECT_NE( err.find( "standard output: Broken pipe" ), std::string::npos ) << err;
   }
}

// ---- Verification and show

TEST( NevqosSimTest, EveryExampleButTheDamagedOneVerifiesClean ) {
   std::vector< std::string > const names = scenarioNamesIn( NEVQOS_EXAMPLES_DIR );
   ASSERT_GE( names.size(), 10u );
   for( std::string const& stem : names ) {
      std::string const name = stem + ".yaml";
      if( name == "tcam-corruption.yaml" ) continue;
      for( char const* mode : { "synchronous", "asynchronous" } ) {
         SCOPED_TRACE( name + " " + mode );
         SimRun const run =
               runSim( { example( name ), "--json", "--verify=always", "--tcam-mode", mode } );
         // On the other road an example's `expect` list, told in the times of its own, may
         // not be met (exit 1 too); the findings say whether verification was clean.
         ASSERT_TRUE( run.exitCode == 0 || run.exitCode == 1 ) << run.err;
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
