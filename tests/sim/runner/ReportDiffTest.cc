// nevqos-sim diff on pairs of reports that differ and pairs that do not: the TCAM compared as
// sets, the status by name, the log and the calls in order, times only when asked for.
#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "NevQos/sim/runner/ReportDiff.h"
#include "support/SimProgram.h"

namespace NevQosTest {
namespace {

using Json = nlohmann::ordered_json;

// The report of `args`, written to `name` for the diff to read.
std::string reportFile( std::string const& name, std::vector< std::string > args ) {
   std::string const path = ::testing::TempDir() + name;
   args.insert( args.end(), { "--json", "-o", path } );
   SimRun const run = runSim( args );
   EXPECT_TRUE( run.exitCode == 0 || run.exitCode == 1 ) << run.err;
   return path;
}

Json reportIn( std::string const& path ) {
   return Json::parse( std::ifstream( path ) );
}

Sim::PartDiff const& partOf( std::vector< Sim::PartDiff > const& diff, std::string const& name ) {
   for( Sim::PartDiff const& part : diff ) {
      if( part.part == name ) return part;
   }
   throw std::logic_error( "no part " + name );
}

// The asynchronous road's chip expands a range itself, into blocks of the rule's one subrule;
// the synchronous road's engine numbers its blocks: the same entries.
TEST( ReportDiffTest, TheTwoTcamModesHoldTheSameTcam ) {
   for( char const* name : { "edge-policy.yaml", "range-checkers.yaml", "tcam-exhaustion.yaml" } ) {
      SCOPED_TRACE( name );
      std::string const sync =
            reportFile( "sync.json", { example( name ), "--tcam-mode", "synchronous" } );
      std::string const async =
            reportFile( "async.json", { example( name ), "--tcam-mode", "asynchronous" } );
      SimRun const tcam = runSim( { "diff", sync, async, "--only", "tcam" } );
      EXPECT_EQ( tcam.exitCode, 0 ) << tcam.out << tcam.err;
      EXPECT_NE( tcam.out.find( "): same\n" ), std::string::npos ) << tcam.out;
      EXPECT_EQ( tcam.out.find( "calls" ), std::string::npos );
      bool const expands = std::string( name ) == "range-checkers.yaml";
      EXPECT_EQ( runSim( { "diff", sync, async, "--only", "tcam", "--subrules" } ).exitCode,
                 expands ? 1 : 0 );

      SimRun const same = runSim( { "diff", sync, sync, "--times", "--subrules" } );
      EXPECT_EQ( same.exitCode, 0 ) << same.out;
      for( char const* part : Sim::diffParts )
         EXPECT_NE( same.out.find( std::string( part ) + " (" ), std::string::npos ) << part;
   }
}

TEST( ReportDiffTest, EachPartNamesWhatDiffers ) {
   Json const a = reportIn( reportFile( "a.json", { example( "tcam-exhaustion.yaml" ) } ) );
   Json b = a;
   // One entry changed in place, one ACL gone, a map failed, a log line and a call changed.
   Json& acls = b[ "tcam" ][ "acls" ];
   std::string const changedAcl = acls[ 0 ][ "id" ];
   std::string const goneAcl = acls[ 1 ][ "id" ];
   acls[ 0 ][ "entries" ][ 0 ][ "ruleNum" ] = 99;
   acls.erase( 1 );
   b[ "status" ][ "policyMaps" ][ 0 ][ "prgmStatus" ] = "hwPrgmStatusFail";
   b[ "logs" ][ 0 ][ "text" ] = "another text";
   b[ "calls" ][ 3 ][ "op" ] = "anotherOp";
   std::string const name = a[ "status" ][ "policyMaps" ][ 0 ][ "name" ];

   auto const diff = Sim::diffReports( a, b, {} );
   auto const& tcam = partOf( diff, "tcam" ).differences;
   ASSERT_EQ( tcam.size(), 3u );
   EXPECT_EQ( tcam[ 0 ].rfind( "ACL " + changedAcl + ": entry only in A:", 0 ), 0u ) << tcam[ 0 ];
   EXPECT_NE( tcam[ 1 ].find( "\"ruleNum\":99" ), std::string::npos ) << tcam[ 1 ];
   EXPECT_EQ( tcam[ 2 ].rfind( "ACL " + goneAcl + " only in A", 0 ), 0u ) << tcam[ 2 ];
   EXPECT_EQ( partOf( diff, "status" ).differences,
              std::vector< std::string >{ "status.policyMaps[mapQos/input/" + name +
                                          "].prgmStatus: \"hwPrgmStatusSuccess\" -> "
                                          "\"hwPrgmStatusFail\"" } );
   auto const& logs = partOf( diff, "logs" ).differences;
   ASSERT_EQ( logs.size(), 2u );
   EXPECT_EQ( logs[ 0 ].rfind( "- [A 1] QOS_POLICY_HW_RESOURCE_FULL error: Insufficient", 0 ), 0u )
         << logs[ 0 ];
   EXPECT_EQ( logs[ 1 ], "+ [B 1] QOS_POLICY_HW_RESOURCE_FULL error: another text" );
   auto const& calls = partOf( diff, "calls" ).differences;
   ASSERT_EQ( calls.size(), 2u );
   EXPECT_EQ( calls[ 0 ].rfind( "- [A 4] acl ", 0 ), 0u ) << calls[ 0 ];
   EXPECT_EQ( calls[ 1 ].rfind( "+ [B 4] acl anotherOp ", 0 ), 0u ) << calls[ 1 ];

   // The entries of an ACL compare as a set: their order is the chip's affair.
   Json c = a;
   Json& entries = c[ "tcam" ][ "acls" ][ 0 ][ "entries" ];
   ASSERT_GE( entries.size(), 2u );
   std::swap( entries[ 0 ], entries[ 1 ] );
   EXPECT_TRUE( partOf( Sim::diffReports( a, c, {} ), "tcam" ).differences.empty() );
}

TEST( ReportDiffTest, TimesCountOnlyWhenAskedFor ) {
   Json const a = reportIn( reportFile( "times.json", { example( "edge-policy.yaml" ) } ) );
   Json b = a;
   b[ "calls" ][ 5 ][ "t" ] = 7.5;
   b[ "status" ][ "configVersionUpdateTime" ] = 9.0;
   for( Sim::PartDiff const& part : Sim::diffReports( a, b, {} ) )
      EXPECT_TRUE( part.differences.empty() ) << part.part;
   auto const timed = Sim::diffReports( a, b, { .times = true } );
   EXPECT_EQ( partOf( timed, "status" ).differences.size(), 1u );
   EXPECT_EQ( partOf( timed, "calls" ).differences.size(), 2u );
}

TEST( ReportDiffTest, ThePartsThatDifferAreListedAndTheExitSaysSo ) {
   std::string const a = reportFile( "edge.json", { example( "edge-policy.yaml" ) } );
   std::string const b = reportFile( "exhaustion.json", { example( "tcam-exhaustion.yaml" ) } );
   SimRun const run = runSim( { "diff", a, b, "--limit", "1" } );
   EXPECT_EQ( run.exitCode, 1 ) << run.err;
   EXPECT_NE( run.out.find( "status (1 policy maps in A, 1 in B): " ), std::string::npos )
         << run.out;
   // One difference listed per part, the rest counted.
   std::size_t counted = 0;
   for( std::size_t at = 0; ( at = run.out.find( "  ... and ", at ) ) != std::string::npos; ++at )
      ++counted;
   EXPECT_EQ( counted, 4u ) << run.out;
}

TEST( ReportDiffTest, WhatIsNotAReportIsRefusedByName ) {
   std::string const good = reportFile( "good.json", { example( "edge-policy.yaml" ) } );
   std::string const notJson = scenarioFile( "not.json", "{ \"formatVersion\": " );
   std::string const notReport = scenarioFile( "other.json", "{ \"formatVersion\": 2 }" );
   struct Case {
      std::string file;
      std::string message;
   };
   for( Case const& c : { Case{ notJson, notJson + ": not JSON: " },
                          Case{ notReport, notReport + ": the report has no \"tcam\"" },
                          Case{ "/nonexistent.json", "/nonexistent.json: cannot open it" } } ) {
      SimRun const run = runSim( { "diff", good, c.file } );
      EXPECT_EQ( run.exitCode, 2 ) << c.file;
      EXPECT_NE( run.err.find( c.message ), std::string::npos ) << run.err;
   }
   EXPECT_EQ( runSim( { "diff", good, good, "--only", "colours" } ).exitCode, 2 );

   // A report whose parts are not of a report's shape: an ACL without its entries, a call
   // without its arguments.
   for( char const* part : { "tcam", "calls" } ) {
      Json broken = reportIn( good );
      if( std::string( part ) == "tcam" ) {
         broken[ "tcam" ][ "acls" ][ 0 ].erase( "entries" );
      } else {
         broken[ "calls" ][ 0 ].erase( "args" );
      }
      std::string const file = scenarioFile( "broken.json", broken.dump() );
      SimRun const run = runSim( { "diff", good, file } );
      EXPECT_EQ( run.exitCode, 2 ) << part;
      EXPECT_NE( run.err.find( file + ": a part is not of a report's shape: " ), std::string::npos )
            << run.err;
   }
}

}  // namespace
}  // namespace NevQosTest
