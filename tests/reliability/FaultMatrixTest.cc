// Every helper call of a compile fails in turn, on both TCAM modes: the map is reported failed
// with one log line, nothing of it stays in the chip after the deferred deletion, and the next
// change programs it exactly as a run without the fault does, verifies clean and logs the
// recovery once.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "reliability/ReliabilityTest.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;

// A policy map with IPv4 and IPv6 lists (port ranges, fragments), a DSCP match, per-interface
// policers and counters, on two ports; at 2 s a rule is added to the IPv4 list, which gives the
// map a new version.
constexpr char const* edgePolicy = R"(
chip:
  tcamSliceEntries: 256
  rangeCheckers: 4
  policers: 16
  counters: 16
  asyncTimeout: 0.5
interfaces: [ Ethernet1, Ethernet2, Ethernet3 ]
acls:
  - name: WEB
    rules:
      - { proto: tcp, dst: 10.1.0.0/16, dstPort: { range: [ 8000, 8099 ] } }
      - { proto: udp, dstPort: { eq: 53 } }
      - { src: 192.168.0.0/16 }
  - name: WEB6
    type: ipv6
    rules:
      - { proto: tcp, dstPort: { eq: 443 } }
classMaps:
  - { name: web, match: { ipv4: WEB } }
  - { name: web6, match: { ipv6: WEB6 } }
  - { name: marked, match: { dscp: [ 10, 12 ] } }
policyMaps:
  - name: edge-in
    classes:
      - class: web
        set: { dscp: 18 }
        police: { cir: 1000, bc: 10000 }
        count: true
      - { class: web6, set: { trafficClass: 3 } }
      - { class: marked, set: { cos: 3 }, count: true }
      - { class: class-default, set: { dscp: 0 } }
servicePolicies:
  - { policyMap: edge-in, interfaces: [ Ethernet1, Ethernet2 ] }
steps:
  - at: 2
    changes:
      - acl:
          name: WEB
          rules:
            - { proto: tcp, dst: 10.1.0.0/16, dstPort: { range: [ 8000, 8099 ] } }
            - { proto: udp, dstPort: { eq: 53 } }
            - { src: 192.168.0.0/16 }
            - { proto: tcp, dstPort: { eq: 22 } }
)";

constexpr Zub::Seconds faultEnds = 1.0;
constexpr Zub::Seconds settled = 3.0;

Lines const failedLog{
   "QOS_POLICY_HW_RESOURCE_FULL: Insufficient hardware resources to program the input "
   "policy-map edge-in."
};
Lines const recoveredLog{
   "QOS_POLICY_HW_RESOURCE_NORMAL: Programmed input policy-map edge-in in hardware."
};
Lines const failedStatus{ "input/edge-in: hwPrgmStatusFail (Insufficient hardware resources)" };
Lines const recoveredStatus{
   "input/edge-in: hwPrgmStatusSuccess (Insufficient hardware resources)"
};

// The operations of a compile that can fail, in the order a compile first calls them.
Lines const failingOps{ "precreateAcl",      "createIpAclSubrule", "createIpFragRule",
                        "createDscpEcnRule", "createDefaultRule",  "commitAcl" };

std::map< std::string, std::uint64_t > nothingInUse( Sim::SimSwitch const& sw ) {
   auto used = resourcesInUse( sw );
   for( auto& [ name, n ] : used )
      n = 0;
   return used;
}

class FaultMatrixTest : public ::testing::TestWithParam< Sim::TcamMode > {
 protected:
   // The scenario on this mode, with `faults` holding from the start to faultEnds.
   Sim::Scenario scenario( std::vector< Sim::FaultConfig > faults = {} ) const {
      Sim::Scenario s = scenarioOf( edgePolicy );
      s.chip.tcamMode = GetParam();
      if( GetParam() == Sim::TcamMode::asynchronous ) s.chip.asyncDelay = 0.01;
      for( Sim::FaultConfig& f : faults ) {
         f.until = faultEnds;
         s.chip.faults.push_back( f );
         s.faultNames.emplace_back();
      }
      return s;
   }

   // The switch of `s` run through the fault window.
   static std::unique_ptr< Sim::SimSwitch > started( Sim::Scenario const& s ) {
      auto sw = std::make_unique< Sim::SimSwitch >( s );
      sw->runUntil( faultEnds );
      return sw;
   }

   // The switch of `s` after the change that follows the fault.
   static void recover( Sim::SimSwitch& sw, Sim::Scenario const& s ) {
      sw.stepIs( s.steps.at( 0 ) );
      sw.runUntil( settled );
   }

   // How often the fault-free compile calls each operation before the fault window ends.
   std::map< std::string, unsigned > callsOfFirstCompile() const {
      Sim::SimSwitch sw( scenario() );
      sw.runUntil( faultEnds );
      std::map< std::string, unsigned > out;
      for( Sim::ChipCall const& c : sw.calls().kept() )
         ++out[ c.op ];
      return out;
   }

   // The chip after the recovery change in a run without faults.
   struct Reference {
      TcamImage tcam;
      std::map< std::string, std::uint64_t > resources;
   };
   Reference const& reference() {
      if( !reference_ ) {
         Sim::Scenario const s = scenario();
         auto sw = started( s );
         EXPECT_EQ( logLinesOf( *sw ), Lines{} );
         recover( *sw, s );
         reference_ = Reference{ tcamImageOf( *sw ), resourcesInUse( *sw ) };
      }
      return *reference_;
   }

   // A failed compile: one log line, the map failed, and nothing of it left in the chip.
   static void expectFailedWhole( Sim::SimSwitch const& sw, std::string const& what,
                                  Lines const& logs = failedLog ) {
      EXPECT_EQ( logLinesOf( sw ), logs ) << what;
      EXPECT_EQ( policyMapStatusOf( sw ), failedStatus ) << what;
      EXPECT_EQ( resourcesInUse( sw ), nothingInUse( sw ) ) << what << "\n"
                                                            << textOf( tcamImageOf( sw ) );
   }

   // The change after the fault programs what a run without it programs.
   void expectRecovered( Sim::SimSwitch& sw, std::size_t logsBefore, std::string const& what,
                         Lines const& logs = recoveredLog ) {
      EXPECT_EQ( logLinesOf( sw, logsBefore ), logs ) << what;
      Lines const status = policyMapStatusOf( sw );
      EXPECT_EQ( status.size(), 1u );
      EXPECT_TRUE( !status.empty() &&
                   status.front().starts_with( "input/edge-in: hwPrgmStatusSuccess" ) )
            << what;
      EXPECT_EQ( sw.verify(), Lines{} ) << what;
      TcamImage const tcam = tcamImageOf( sw );
      EXPECT_EQ( tcam, reference().tcam ) << what << "\n"
                                          << textOf( tcam ) << "expected\n"
                                          << textOf( reference().tcam );
      EXPECT_EQ( resourcesInUse( sw ), reference().resources ) << what;
   }

   // `fault` fails the first compile whole, and the change after it recovers.
   void expectFailsWholeThenRecovers( Sim::FaultConfig const& fault, std::string const& what ) {
      Sim::Scenario const s = scenario( { fault } );
      auto sw = started( s );
      expectFailedWhole( *sw, what );
      std::size_t const before = sw->logs().size();
      recover( *sw, s );
      expectRecovered( *sw, before, what );
   }

   std::optional< Reference > reference_;
};

TEST_P( FaultMatrixTest, EachFailingCallOfACompileFailsTheMapWholeAndTheNextChangeRecovers ) {
   auto const calls = callsOfFirstCompile();
   unsigned points = 0;
   for( std::string const& op : failingOps ) {
      ASSERT_GT( calls.count( op ), 0u ) << op << " is not called: the scenario lost its reach";
      for( unsigned k = 1; k <= calls.at( op ); ++k ) {
         std::string const what = op + " call " + std::to_string( k ) + " fails";
         Sim::FaultConfig fault;
         fault.kind = Sim::FaultConfig::Kind::operationError;
         fault.op = op;
         fault.nth = k;
         expectFailsWholeThenRecovers( fault, what );
         ++points;
      }
   }
   EXPECT_GE( points, 20u );
}

TEST_P( FaultMatrixTest,
        TheTcamFullAtEachEntryOfACompileFailsTheMapWholeAndTheNextChangeRecovers ) {
   Sim::SimSwitch clean( scenario() );
   clean.runUntil( faultEnds );
   std::map< std::string, unsigned > entriesPerSlice;
   for( auto const& [ id, acl ] : tcamImageOf( clean ) )
      entriesPerSlice[ acl.slice ] += static_cast< unsigned >( acl.entries.size() );
   ASSERT_EQ( entriesPerSlice.size(), 2u ) << "both IP slices take entries";
   for( auto const& [ slice, entries ] : entriesPerSlice ) {
      for( unsigned k = 0; k < entries; ++k ) {
         std::string const what = slice + " full at " + std::to_string( k ) + " entries";
         Sim::FaultConfig fault;
         fault.kind = Sim::FaultConfig::Kind::outOfTcam;
         fault.family = slice;
         fault.atEntries = k;
         expectFailsWholeThenRecovers( fault, what );
      }
   }
}

TEST_P( FaultMatrixTest, PolicersRunningOutLeaveThePoliceActionOutOrFailTheMapAsTheChipAsks ) {
   std::string const policerFull =
         "QOS_POLICY_POLICER_RESOURCE_FULL: Insufficient hardware resources to program the police "
         "action for the class-map web in the policy-map edge-in on interface ";
   auto const policerLines = []( Lines const& lines ) {
      return std::count_if( lines.begin(), lines.end(), []( std::string const& l ) {
         return l.starts_with( "QOS_POLICY_POLICER_RESOURCE_FULL: " );
      } );
   };
   // A pool too small for the two per-interface copies.
   for( unsigned pool = 0; pool < 2; ++pool ) {
      std::string const what = std::to_string( pool ) + " policers";
      Sim::Scenario s = scenario();
      s.chip.policers = pool;
      Sim::SimSwitch sw( s );
      sw.runUntil( faultEnds );
      Lines const logs = logLinesOf( sw );
      ASSERT_EQ( logs.size(), 2 - pool ) << what;
      for( std::string const& line : logs )
         EXPECT_TRUE( line.starts_with( policerFull ) ) << line;
      EXPECT_EQ( policyMapStatusOf( sw ), Lines{ "input/edge-in: hwPrgmStatusSuccess ()" } );
      EXPECT_EQ( resourcesInUse( sw ).at( "policers" ), pool ) << what;
   }
   // No policer at all until the fault ends, then a change: the map stands without the police
   // action meanwhile, or fails whole when the chip wants exhaustion to be an error.
   for( bool const errorOnExhaustion : { false, true } ) {
      std::string const what = errorOnExhaustion ? "exhaustion is an error" : "exhaustion is not";
      Sim::FaultConfig fault;
      fault.kind = Sim::FaultConfig::Kind::policerExhaustion;
      Sim::Scenario s = scenario( { fault } );
      s.chip.errorOnPolicerExhaustion = errorOnExhaustion;
      auto sw = started( s );
      Lines const logs = logLinesOf( *sw );
      if( errorOnExhaustion ) {
         // The first refusal fails the map; its other copy no longer asks the chip.
         ASSERT_EQ( logs.size(), 2u ) << what;
         EXPECT_EQ( logs[ 1 ], failedLog[ 0 ] );
         expectFailedWhole( *sw, what, logs );
      } else {
         EXPECT_EQ( logs.size(), 2u ) << what;
         EXPECT_EQ( resourcesInUse( *sw ).at( "policers" ), 0u );
      }
      EXPECT_EQ( policerLines( logs ), errorOnExhaustion ? 1 : 2 ) << what;
      std::size_t const before = sw->logs().size();
      recover( *sw, s );
      expectRecovered( *sw, before, what, errorOnExhaustion ? recoveredLog : Lines{} );
   }
}

TEST_P( FaultMatrixTest, RangeCheckersRunningOutMidRuleExpandTheRangesInstead ) {
   // One rule needs two checkers; a pool with fewer gives it none, and the compiler expands
   // both ranges into value/mask entries.
   std::string yaml = edgePolicy;
   std::string const rule = "{ proto: udp, dstPort: { eq: 53 } }";
   std::string const twoRanges =
         "{ proto: udp, srcPort: { range: [ 1000, 1999 ] }, dstPort: { range: [ 5000, 5099 ] } }";
   for( auto at = yaml.find( rule ); at != std::string::npos; at = yaml.find( rule ) )
      yaml.replace( at, rule.size(), twoRanges );
   std::map< unsigned, std::size_t > entries;
   for( unsigned pool : { 0u, 1u, 2u, 3u } ) {
      std::string const what = std::to_string( pool ) + " range checkers";
      Sim::Scenario s = scenarioOf( yaml );
      s.chip.tcamMode = GetParam();
      s.chip.asyncDelay = 0.01;
      s.chip.rangeCheckers = pool;
      Sim::SimSwitch sw( s );
      recover( sw, s );
      EXPECT_EQ( logLinesOf( sw ), Lines{} ) << what;
      EXPECT_EQ( policyMapStatusOf( sw ), Lines{ "input/edge-in: hwPrgmStatusSuccess ()" } )
            << what;
      EXPECT_EQ( sw.verify(), Lines{} ) << what;
      auto const used = resourcesInUse( sw );
      // The list's first rule takes one checker; the two-range rule needs two more.
      EXPECT_EQ( used.at( "range checkers" ), pool >= 3 ? 3u : std::min( pool, 1u ) ) << what;
      entries[ pool ] = used.at( "tcam ipv4" );
   }
   EXPECT_GT( entries[ 0 ], entries[ 1 ] ) << "without checkers every range is expanded";
   EXPECT_EQ( entries[ 1 ], entries[ 2 ] ) << "one checker left is not enough for the rule";
   EXPECT_GT( entries[ 2 ], entries[ 3 ] );
}

// Operations that complete later exist on the asynchronous mode only.
class AsyncFaultTest : public FaultMatrixTest {};

TEST_P( AsyncFaultTest, AnOperationThatNeverAnswersOrAnswersTwiceLeavesNoTrace ) {
   auto const calls = callsOfFirstCompile();
   unsigned const operations = calls.at( "commitAcl" ) + calls.at( "updatePortForAcl" );
   for( auto const kind :
        { Sim::FaultConfig::Kind::asyncPending, Sim::FaultConfig::Kind::asyncRepeated } ) {
      for( unsigned k = 1; k <= operations; ++k ) {
         std::string const what =
               std::string( kind == Sim::FaultConfig::Kind::asyncPending ? "never answers"
                                                                         : "answers twice" ) +
               ": operation " + std::to_string( k );
         Sim::FaultConfig fault;
         fault.kind = kind;
         fault.nth = k;
         Sim::Scenario const s = scenario( { fault } );
         auto sw = started( s );
         // A time-out is the engine's own error text, not a system log line.
         EXPECT_EQ( logLinesOf( *sw ), Lines{} ) << what;
         recover( *sw, s );
         expectRecovered( *sw, 0, what, Lines{} );
      }
   }
}

INSTANTIATE_TEST_SUITE_P( Modes, FaultMatrixTest,
                          ::testing::Values( Sim::TcamMode::synchronous,
                                             Sim::TcamMode::asynchronous ),
                          tcamModeName );
INSTANTIATE_TEST_SUITE_P( Modes, AsyncFaultTest, ::testing::Values( Sim::TcamMode::asynchronous ),
                          tcamModeName );

}  // namespace
}  // namespace NevQosTest
