// The chip objects a class holds beside its entries (counters, policers, CPU queues) through a
// failure of the map, its recovery and its removal: each is given back once for each time the
// chip gave it, never for one the engine did not get, and a chip out of CPU queues fails the map
// rather than the engine.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "reliability/ReliabilityTest.h"
#include "reliability/VerifiedRun.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;

// The calls of `op` per class of the chip, since the `from`th call.
std::map< std::string, unsigned > perClass( Sim::SimSwitch const& sw, std::string const& op,
                                            std::size_t from = 0 ) {
   std::map< std::string, unsigned > out;
   auto const calls = sw.calls().kept();
   for( std::size_t i = from; i < calls.size(); ++i ) {
      if( calls[ i ].op != op ) continue;
      for( auto const& [ name, value ] : calls[ i ].args ) {
         if( name == "classData" ) ++out[ value ];
      }
   }
   return out;
}

// No class has been given back an object more often than it was given one.
void expectNoFreeWithoutTake( Sim::SimSwitch const& sw, char const* take, char const* give,
                              std::string const& what ) {
   auto const taken = perClass( sw, take );
   for( auto const& [ key, n ] : perClass( sw, give ) ) {
      auto const it = taken.find( key );
      ASSERT_LE( n, it == taken.end() ? 0u : it->second )
            << what << ": " << give << " of " << key << " at " << sw.now();
   }
}

// A counting PDP class and a policed QoS class on two ports each, both failed at the start by a
// TCAM that is full until 1 s, programmed by a new version at 2 s and removed at 3 s.
std::string const countedAndPoliced = R"(
chip: { pdpSupported: true, faults: [ { kind: outOfTcam, until: 1 } ] }
interfaces: [ Ethernet1, Ethernet2 ]
acls: [ { name: A, rules: [ { proto: tcp, dstPort: { eq: 22 } } ] } ]
classMaps: [ { name: pc, type: pdp, match: { ipv4: A } }, { name: qc, match: { ipv4: A } } ]
policyMaps:
  - { name: pd, type: pdp, classes: [ { class: pc, count: true } ] }
  - { name: qd, classes: [ { class: qc, police: { cir: 1000, bc: 10000 } } ] }
servicePolicies:
  - { policyMap: pd, type: pdp, interfaces: [ Ethernet1, Ethernet2 ] }
  - { policyMap: qd, interfaces: [ Ethernet1, Ethernet2 ] }
steps:
  - at: 2
    changes:
      - policyMap: { name: pd, type: pdp, classes: [ { class: pc, count: true, drop: true } ] }
      - policyMap: { name: qd, classes: [ { class: qc, police: { cir: 2000, bc: 10000 } } ] }
  - at: 3
    changes:
      - removeServicePolicy: { policyMap: pd, type: pdp }
      - removeServicePolicy: qd
)";

class ChipObjectLifetimeTest : public ::testing::TestWithParam< Sim::TcamMode > {};

TEST_P( ChipObjectLifetimeTest, CountersAndPolicersOfAFailedMapAreGivenBackOnlyIfTaken ) {
   Sim::Scenario s = scenarioOf( countedAndPoliced );
   s.chip.tcamMode = GetParam();
   if( GetParam() == Sim::TcamMode::asynchronous ) s.chip.asyncDelay = 0.01;
   Sim::SimSwitch sw( s );
   auto const balanced = [ & ] {
      expectNoFreeWithoutTake( sw, "createAndAttachCounter", "destroyCounter", "counters" );
      expectNoFreeWithoutTake( sw, "createAndAttachPolicer", "destroyPolicer", "policers" );
   };
   Lines findings;
   for( Sim::Step const& step : s.steps ) {
      for( std::string& f : stepVerified( sw, step, balanced ) )
         findings.push_back( std::move( f ) );
      if( step.time == 2.0 ) {
         for( std::string& f : runVerified( sw, 2.9, balanced ) )
            findings.push_back( std::move( f ) );
         EXPECT_EQ( resourcesInUse( sw ).at( "counters" ), 2u );
         EXPECT_EQ( resourcesInUse( sw ).at( "policers" ), 2u );
      }
   }
   for( std::string& f : runVerified( sw, 4.0, balanced ) )
      findings.push_back( std::move( f ) );
   EXPECT_EQ( findings, Lines{} );
   EXPECT_EQ( perClass( sw, "destroyCounter" ), perClass( sw, "createAndAttachCounter" ) );
   EXPECT_EQ( resourcesInUse( sw ).at( "counters" ), 0u );
   EXPECT_EQ( resourcesInUse( sw ).at( "policers" ), 0u );
   EXPECT_EQ( logLinesOf( sw ).size(), 4u ) << "each map failed and recovered once";
}

INSTANTIATE_TEST_SUITE_P( TcamModes, ChipObjectLifetimeTest,
                          ::testing::Values( Sim::TcamMode::synchronous,
                                             Sim::TcamMode::asynchronous ),
                          tcamModeName );

// The system-wide control-plane policy (served on the synchronous road only) with two classes of
// the operator's on a chip with one CPU queue, then with one class, then removed.
std::string const twoQueuesOnOne = R"(
chip: { coppSupported: true, coppDynamicClassSupported: true, cpuQueues: 1 }
interfaces: [ Ethernet1 ]
acls: [ { name: A, rules: [ { proto: tcp, dstPort: { eq: 22 } } ] }, { name: B, rules: [ { proto: udp } ] } ]
classMaps:
  - { name: c1, type: control-plane, match: { ipv4: A } }
  - { name: c2, type: control-plane, match: { ipv4: B } }
policyMaps:
  - { name: copp-system-policy, type: control-plane, classes: [ { class: c1 }, { class: c2 } ] }
servicePolicies:
  - { policyMap: copp-system-policy, type: control-plane, interfaces: [ Ethernet1 ] }
steps:
  - at: 1
    changes:
      - policyMap: { name: copp-system-policy, type: control-plane, classes: [ { class: c2 } ] }
  - { at: 2, changes: [ { removeServicePolicy: { policyMap: copp-system-policy, type: control-plane } } ] }
)";

TEST( ChipObjectLifetimeTest, AChipOutOfCpuQueuesFailsTheMapAndGetsBackOnlyWhatItGave ) {
   Sim::Scenario const s = scenarioOf( twoQueuesOnOne );
   Sim::SimSwitch sw( s );
   std::string const c1 = "copp-system-policy(control-plane,input)/c1/Default";
   std::string const c2 = "copp-system-policy(control-plane,input)/c2/Default";
   EXPECT_EQ( runVerified( sw, 0.5 ), Lines{} );
   Lines const full{
      "QOS_COPP_HW_RESOURCE_FULL: Insufficient TCAM resources to program the "
      "policy map copp-system-policy."
   };
   EXPECT_EQ( logLinesOf( sw ), full );
   EXPECT_EQ( tcamImageOf( sw ), TcamImage{} ) << "the map is removed whole";
   EXPECT_EQ( resourcesInUse( sw ).at( "cpu queues" ), 0u );
   using Counts = std::map< std::string, unsigned >;
   EXPECT_EQ( perClass( sw, "coppAllocateCpuQ" ), ( Counts{ { c1, 1 }, { c2, 1 } } ) );
   EXPECT_EQ( perClass( sw, "coppDeallocateCpuQ" ), ( Counts{ { c1, 1 } } ) )
         << "the queue c2 never had is not given back";

   std::size_t const before = sw.calls().size();
   EXPECT_EQ( stepVerified( sw, s.steps.at( 0 ) ), Lines{} );
   EXPECT_EQ( resourcesInUse( sw ).at( "cpu queues" ), 1u );
   EXPECT_EQ( logLinesOf( sw, full.size() ),
              Lines{ "QOS_COPP_HW_RESOURCE_NORMAL: Policy map copp-system-policy is programmed "
                     "in TCAM." } );
   EXPECT_EQ( stepVerified( sw, s.steps.at( 1 ) ), Lines{} );
   EXPECT_EQ( resourcesInUse( sw ).at( "cpu queues" ), 0u );
   EXPECT_EQ( perClass( sw, "coppDeallocateCpuQ", before ), ( Counts{ { c2, 1 } } ) );
}

}  // namespace
}  // namespace NevQosTest
