// Verification of a whole switch against its chip: it expects what the engine decided (ranges
// expanded for want of checkers, policers and counters the chip refused), sees every entry on both
// TCAM modes, and finds what no class owns, without finding anything in maps still in flight.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "NevQos/sim/chip/SimQosAclHelper.h"
#include "NevQos/sim/runner/SimSwitch.h"
#include "NevQos/sim/scenario/ScenarioLoader.h"
#include "support/QosAclSmFixture.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;
using Sim::TcamMode;

Sim::Scenario scenarioIn( TcamMode mode, std::string const& yaml ) {
   Sim::Scenario s = Sim::loadScenarioText( yaml, "test.yaml" );
   s.chip.tcamMode = mode;
   return s;
}

char const* modeName( TcamMode mode ) {
   return mode == TcamMode::synchronous ? "synchronous" : "asynchronous";
}

class HardwareVerificationTest : public ::testing::TestWithParam< TcamMode > {};

INSTANTIATE_TEST_SUITE_P( Modes, HardwareVerificationTest,
                          ::testing::Values( TcamMode::synchronous, TcamMode::asynchronous ),
                          []( auto const& mode ) { return modeName( mode.param ); } );

// Length 100-300 is seven blocks. With no checker the synchronous compile expands it, for the
// second rule together with its destination range; the asynchronous chip expands it itself
// under one subrule number. A damaged block is found at its own number.
TEST_P( HardwareVerificationTest, LengthRangesExpandedForWantOfCheckersVerifyBlockByBlock ) {
   bool const sync = GetParam() == TcamMode::synchronous;
   Sim::Scenario const s = scenarioIn( GetParam(), std::string( R"(
chip: { rangeCheckers: 0 }
interfaces: [ Ethernet1 ]
acls:
  - name: LEN
    rules:
      - { proto: udp, ipLength: { range: [ 100, 300 ] } }
      - { proto: tcp, dstPort: { range: [ 1000, 1100 ] }, ipLength: { range: [ 100, 300 ] } }
      - { proto: tcp, dstPort: { eq: 22 } }
classMaps: [ { name: c, match: { ipv4: LEN } } ]
policyMaps: [ { name: p, classes: [ { class: c, set: { dscp: 10 } } ] } ]
servicePolicies: [ { policyMap: p, interfaces: [ Ethernet1 ] } ]
steps:
  - at: 1
    changes:
      - corruptTcam: { acl: LEN, rule: 0, subrule: )" ) + ( sync ? "5" : "0" ) +
                                                         R"(, field: proto, value: "6" }
)" );
   Sim::SimSwitch sw( s );
   sw.runUntil( 0.5 );
   EXPECT_EQ( sw.verify(), Lines{} );
   sw.stepIs( s.steps[ 0 ] );
   EXPECT_EQ( sw.verify(), ( Lines{ std::string( "ACL LEN sequence 10 rule 0 subrule " ) +
                                    ( sync ? "5" : "0" ) + " proto is 6, expected 17" } ) );
}

// A policer or counter the chip refused, which the engine went on without, is no finding.
TEST_P( HardwareVerificationTest, PolicersAndCountersTheChipRefusedAreNoFinding ) {
   Sim::Scenario const s = scenarioIn( GetParam(), R"(
chip: { policers: 1, counters: 1, pdpSupported: true }
interfaces: [ Ethernet1, Ethernet2 ]
acls:
  - name: SSH
    rules:
      - { proto: tcp, dstPort: { eq: 22 } }
classMaps:
  - { name: ssh, match: { ipv4: SSH } }
  - { name: ssh, type: pdp, match: { ipv4: SSH } }
policyMaps:
  - name: p
    classes:
      - { class: ssh, police: { cir: 100, cirUnit: mbps, bc: 1, bcUnit: mbytes } }
  - name: pdp-in
    type: pdp
    classes:
      - { class: ssh, count: true }
servicePolicies:
  - { policyMap: p, interfaces: [ Ethernet1, Ethernet2 ] }
  - { policyMap: pdp-in, type: pdp, interfaces: [ Ethernet1, Ethernet2 ] }
)" );
   Sim::SimSwitch sw( s );
   sw.runUntil( 1.0 );
   ASSERT_EQ( sw.logs().size(), 2u ) << "one policer and one counter refused";
   EXPECT_EQ( sw.chip().policersUsed(), 1u );
   EXPECT_EQ( sw.chip().countersUsed(), 1u );
   EXPECT_EQ( sw.verify(), Lines{} );
}

// A match the chip cannot classify on programs nothing on the immediate road, and the deferred
// road programs it all the same: neither is a finding, at the start nor after a change.
TEST_P( HardwareVerificationTest, MatchesTheChipCannotClassifyOnAreNoFinding ) {
   struct Case {
      char const* flag;
      char const* match;
   };
   std::vector< Case > const cases = {
      { "dscpEcnClassMatchSupported", "{ dscp: cs1 }" },
      { "vlanClassMatchSupported", "{ vlan: [ 1-3 ] }" },
      { "cosClassMatchSupported", "{ cos: [ 5 ] }" },
      { "cosClassMatchSupported", "{ vlanCos: { vlan: [ 10 ], cos: [ 1 ] } }" },
   };
   for( Case const& c : cases ) {
      SCOPED_TRACE( std::string( c.flag ) + " " + c.match );
      Sim::Scenario const s = scenarioIn( GetParam(), std::string( "chip: { " ) + c.flag +
                                                            R"(: false }
interfaces: [ Ethernet1, Ethernet2 ]
classMaps:
  - { name: low, match: )" + c.match + R"( }
policyMaps:
  - { name: p, classes: [ { class: low, set: { trafficClass: 1 } } ] }
servicePolicies:
  - { policyMap: p, interfaces: [ Ethernet1 ] }
steps:
  - at: 60
    changes:
      - attach: { policyMap: p, interfaces: [ Ethernet2 ] }
)" );
      Sim::SimSwitch sw( s );
      sw.runUntil( 1.0 );
      EXPECT_EQ( sw.verify(), Lines{} );
      sw.stepIs( s.steps[ 0 ] );
      sw.runUntil( 61.0 );
      EXPECT_EQ( sw.verify(), Lines{} );
   }
}

// While operations are in flight on the asynchronous road, an ACL whose request is still queued
// has nothing in hardware yet, nor an interface whose port update waits; a map being torn down
// holds ACLs its classes still own. None of it is a finding before the map's last result.
TEST( HardwareVerificationInFlightTest, AclsWithRequestsOutstandingAreNotComparedYet ) {
   Sim::Scenario const s = scenarioIn( TcamMode::asynchronous, R"(
chip: { asyncDelay: 0.5 }
interfaces: [ Ethernet1, Ethernet2, Ethernet3 ]
acls:
  - name: WEB
    rules:
      - { proto: tcp, dstPort: { eq: 80 } }
  - name: SSH
    rules:
      - { proto: tcp, dstPort: { eq: 22 } }
  - name: DNS
    rules:
      - { proto: udp, dstPort: { eq: 53 } }
classMaps:
  - { name: web, match: { ipv4: WEB } }
  - { name: ssh, match: { ipv4: SSH } }
  - { name: dns, match: { ipv4: DNS } }
  - { name: af11, match: { dscp: af11 } }
policyMaps:
  - name: a
    classes:
      - { class: web, set: { dscp: 10 } }
      - { class: ssh, set: { dscp: 12 } }
      - { class: dns, set: { dscp: 14 } }
      - { class: af11, set: { trafficClass: 2 } }
      - { class: class-default, set: { dscp: 0 } }
  - name: b
    classes:
      - { class: web, set: { dscp: 20 } }
servicePolicies:
  - { policyMap: a, interfaces: [ Ethernet1 ] }
steps:
  - at: 10
    changes:
      - attach: { policyMap: a, interfaces: [ Ethernet2 ] }
  - at: 20
    changes:
      - removeServicePolicy: a
      - servicePolicy: { policyMap: b, interfaces: [ Ethernet3 ] }
)" );
   Sim::SimSwitch sw( s );
   auto const verifyUntil = [ & ]( Zub::Seconds end ) {
      for( Zub::Seconds t = sw.now() + 0.25; t < end; t += 0.5 ) {
         sw.runUntil( t );
         EXPECT_EQ( sw.verify(), Lines{} ) << "at " << t;
      }
   };
   sw.runUntil( 0.6 );
   ASSERT_EQ( sw.aclSliceHwStatus()
                    .pmapType( Qos::mapQos_ )
                    ->pmap( Qos::PolicyMapHwStatusKey( Qos::directionInput_, Zub::Name( "a" ) ) )
                    ->prgmStatus(),
              Qos::hwPrgmStatusInProgress_ );
   EXPECT_GT( sw.chip().pendingOperations(), 0u ) << "map a is still being built";
   verifyUntil( 5.0 );
   for( Sim::Step const& step : s.steps ) {
      sw.stepIs( step );
      EXPECT_EQ( sw.verify(), Lines{} ) << "at " << step.time;
      verifyUntil( step.time + 5.0 );
   }
   EXPECT_EQ( sw.chip().pendingOperations(), 0u );
}

// ---- The chip under the engine, where a test can act behind the engine's back

class ChipVerificationTest : public QosAclSmFixture {
 protected:
   void startWith( Sim::ChipConfig const& config ) {
      chipIs( config );
      qosAclHwStatus->dscpEcnClassMatchSupportedIs( true );
      start();
   }
   // "gold" with class c1 matching v4, a DSCP class and the default class, on Ethernet1.
   void goldIs() {
      Acl::IpRuleConfig rule;
      rule.filter.proto = 6;
      ipAclIs( "v4", { rule } );
      classMapIs( "c1", { { Qos::matchOptionIpAcl, "v4" } } );
      dscpEcnClassMapIs( "d1", 10, Acl::Ecn( 0 ) );
      classIs( "gold", "c1" );
      classIs( "gold", "d1" );
      classDefaultIs( "gold" );
      applyIs( "gold", { intf( "Ethernet1" ) } );
      loop->runUntil( loop->now() + 5.0 );
      ASSERT_EQ( hwStatus( "gold" )->prgmStatus(), Qos::hwPrgmStatusSuccess_ );
   }
   // One run, as the verify agent starts it: the engine's chain and the chip's own checks.
   Lines verify() {
      verifyData->cliVerifyOutputDelAll();
      sm->schedulePolicyVerify();
      verifyData->doVerify();
      Lines texts;
      for( auto const& text : verifyData->cliVerifyOutputTexts() )
         texts.push_back( text.stdString() );
      return texts;
   }
   Zub::Ptr< Nev::QosClassData > classDataOf( char const* cmapName ) {
      auto const pmap = sm->servicePolicySm( spKey( "gold" ) )->pmapSm( pmapKey( "gold" ) );
      return pmap->policyClassSm( Nev::QosClassMapKey( Zub::Name( cmapName ), Qos::mapQos_ ) )
            ->classData();
   }
   // Opens, fills and commits a default-rule ACL for `classData` as the engine would.
   void aclLeftIs( Nev::QosClassData const& cd, char const* aclName ) {
      Nev::AclKey const key( Zub::Name( aclName ), Acl::ip() );
      auto const state = helper->pmapState( pmapKey( "gold" ) );
      chip->precreateAcl( *state, cd, Qos::matchOptionIpAcl, key );
      chip->createDefaultRule( *state, cd, Qos::matchOptionIpAcl, key );
      chip->commitAcl( cd, Qos::matchOptionIpAcl, key );
   }
};

// The default and DSCP classes on the asynchronous road are compared with what was written too.
TEST_F( ChipVerificationTest, TheOtherMatchesOnTheAsynchronousRoadAreComparedEntryByEntry ) {
   Sim::ChipConfig config;
   config.tcamMode = TcamMode::asynchronous;
   startWith( config );
   goldIs();
   EXPECT_EQ( verify(), Lines{} );
   ASSERT_EQ( chip->corruptEntry( "acl-default", 0, 0, "match", "none" ), 1u );
   ASSERT_EQ( chip->corruptEntry( "dscpecn-acl-7", 0, 0, "", "" ), 1u );
   EXPECT_EQ( verify(),
              ( Lines{ "ACL dscpecn-acl-7 of class gold(qos,input)/d1/Default has no dscpEcn "
                       "entry tos=40/0xfc",
                       "ACL acl-default of class gold(qos,input)/class-default/Default has no "
                       "default entry match=any" } ) );
}

// An ACL the chip holds that no class owns: one whose class data the engine let go, and one
// that a class's data does not list among its matches.
TEST_F( ChipVerificationTest, AnAclNoClassOwnsIsAFinding ) {
   startWith( Sim::ChipConfig() );
   goldIs();
   EXPECT_EQ( verify(), Lines{} );
   {
      auto const orphan = Zub::make< Nev::QosClassData >( Nev::QosClassDataKey(
            pmapKey( "gold" ), Zub::Name( "gone" ), Qos::mapQos_, Zub::Name( "Default" ) ) );
      aclLeftIs( *orphan, "old" );
   }
   aclLeftIs( *classDataOf( "c1" ), "stale" );
   EXPECT_EQ( verify(), ( Lines{ "ACL gold(qos,input)/c1/Default stale(ip) is in the TCAM, but "
                                 "no class of a policy map owns it",
                                 "ACL gold(qos,input)/gone/Default old(ip) is in the TCAM, but no "
                                 "class of a policy map owns it" } ) );
}

// verifyPolicer compares the chip with what the engine believes: the policer data's createdInHw.
TEST_F( ChipVerificationTest, APolicerIsExpectedWhereTheEngineBelievesItStands ) {
   startWith( Sim::ChipConfig() );
   struct Case {
      bool createdInHw;
      bool held;
      char const* finding;
   };
   std::vector< Case > const cases = {
      { true, true, nullptr },
      { false, false, nullptr },
      { true, false, "policer of class gold(qos,input)/c1/p is not in hardware" },
      { false, true,
        "policer of class gold(qos,input)/c1/p is in hardware, but the engine went on without "
        "it" },
   };
   for( Case const& c : cases ) {
      SCOPED_TRACE( std::to_string( c.createdInHw ) + std::to_string( c.held ) );
      auto const cd = Zub::make< Nev::QosClassData >( Nev::QosClassDataKey(
            pmapKey( "gold" ), Zub::Name( "c1" ), Qos::mapQos_, Zub::Name( "p" ) ) );
      cd->policerDataIs( Zub::Name( "p" ), 1000, 10000, 0, 0 )->createdInHwIs( c.createdInHw );
      if( c.held ) {
         ASSERT_TRUE( chip->createAndAttachPolicer( *cd ) );
      }
      verifyData->cliVerifyOutputDelAll();
      chip->verifyPolicer( *cd );
      Lines const expected = c.finding ? Lines{ c.finding } : Lines{};
      Lines seen;
      for( auto const& text : verifyData->cliVerifyOutputTexts() )
         seen.push_back( text.stdString() );
      EXPECT_EQ( seen, expected );
      if( c.held ) chip->destroyPolicer( *cd );
   }
}

}  // namespace
}  // namespace NevQosTest
