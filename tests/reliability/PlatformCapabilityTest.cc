// Chips without some policy feature, on both TCAM modes: what the chip does not support is left
// alone and verification does not look for it, and the system-wide control-plane policy of a
// chip without per-interface CoPP is programmed, changed and torn down without a hardware status
// entry of its own.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "reliability/ReliabilityTest.h"
#include "reliability/VerifiedRun.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;

class PlatformCapabilityTest : public ::testing::TestWithParam< Sim::TcamMode > {
 protected:
   Sim::Scenario scenario( std::string const& yaml ) const {
      Sim::Scenario s = scenarioOf( yaml );
      s.chip.tcamMode = GetParam();
      if( GetParam() == Sim::TcamMode::asynchronous ) s.chip.asyncDelay = 0.05;
      return s;
   }
   // Runs every step of `s`, verifying all along and calling `check` after each slice with the
   // number of steps made.
   static Lines runAll( Sim::SimSwitch& sw, Sim::Scenario const& s,
                        std::function< void( std::size_t ) > const& check ) {
      Lines findings;
      std::size_t made = 0;
      auto const checkMade = [ & ] { check( made ); };
      for( Sim::Step const& step : s.steps ) {
         for( std::string& f : stepVerified( sw, step, checkMade ) )
            findings.push_back( std::move( f ) );
         ++made;
      }
      for( std::string& f : runVerified( sw, s.steps.back().time + 1.0, checkMade ) )
         findings.push_back( std::move( f ) );
      return findings;
   }
};

// A QoS map and the control-plane policy, changed, counted and removed.
std::string const policies = R"(
interfaces: [ Ethernet1, Ethernet2 ]
acls: [ { name: A, rules: [ { proto: tcp, dstPort: { eq: 22 } } ] } ]
classMaps:
  - { name: c1, match: { ipv4: A } }
  - { name: cp1, type: control-plane, match: { ipv4: A } }
policyMaps:
  - { name: p, classes: [ { class: c1, set: { dscp: cs2 } } ] }
  - { name: copp-system-policy, type: control-plane, classes: [ { class: cp1 } ] }
servicePolicies:
  - { policyMap: p, interfaces: [ Ethernet1 ] }
  - { policyMap: copp-system-policy, type: control-plane, interfaces: [ Ethernet1 ] }
steps:
  - { at: 1, changes: [ { policyMap: { name: p, classes: [ { class: c1, set: { dscp: cs3 } } ] } } ] }
  - { at: 2, changes: [ { attach: { policyMap: p, interfaces: [ Ethernet2 ] } } ] }
  - { at: 3, changes: [ { requestCounters: cli } ] }
  - { at: 4, changes: [ { removeServicePolicy: p } ] }
)";

TEST_P( PlatformCapabilityTest, PoliciesOfAFeatureTheChipLacksAreLeftAloneAndNotVerified ) {
   // Without QoS policies; and with system-wide CoPP alone, which serves no policy here.
   for( std::string const chip :
        { "chip: { policyQosSupported: false }\n",
          "chip: { policyQosSupported: false, coppSupported: true }\n" } ) {
      Sim::Scenario const s = scenario( chip + policies );
      Sim::SimSwitch sw( s );
      auto const nothing = [ & ]( std::size_t ) {
         ASSERT_EQ( tcamImageOf( sw ), TcamImage{} ) << chip << "at " << sw.now();
         ASSERT_EQ( policyMapStatusOf( sw ), Lines{} ) << chip << "at " << sw.now();
      };
      EXPECT_EQ( runAll( sw, s, nothing ), Lines{} ) << chip;
      EXPECT_EQ( logLinesOf( sw ), Lines{} ) << chip;
   }
}

// The system-wide control-plane policy: two classes of the operator's, each with a list and a
// CPU queue, and two of the system's.
std::string const systemCopp = R"(
chip: { coppSupported: true, coppDynamicClassSupported: true }
interfaces: [ Ethernet1, Ethernet2 ]
acls: [ { name: A, rules: [ { proto: tcp, dstPort: { eq: 22 } } ] }, { name: B, rules: [ { proto: udp } ] } ]
classMaps:
  - { name: c1, type: control-plane, match: { ipv4: A } }
  - { name: c2, type: control-plane, match: { ipv4: B } }
  - { name: s1, type: control-plane, cpType: static }
  - { name: s2, type: control-plane, cpType: static }
policyMaps:
  - name: copp-system-policy
    type: control-plane
    classes: [ { class: c1 }, { class: c2 }, { class: s1 }, { class: s2 } ]
servicePolicies:
  - { policyMap: copp-system-policy, type: control-plane, interfaces: [ Ethernet1 ] }
steps:
  - at: 1
    changes:
      - policyMap:
          name: copp-system-policy
          type: control-plane
          classes: [ { class: c2 }, { class: s1 }, { class: s2 } ]
  - { at: 2, changes: [ { attach: { policyMap: copp-system-policy, type: control-plane, interfaces: [ Ethernet2 ] } } ] }
  - { at: 3, changes: [ { detach: { policyMap: copp-system-policy, type: control-plane, interfaces: [ Ethernet1 ] } } ] }
  - { at: 4, changes: [ { requestCounters: cli } ] }
  - { at: 5, changes: [ { removeServicePolicy: { policyMap: copp-system-policy, type: control-plane } } ] }
)";

TEST_P( PlatformCapabilityTest, TheSystemControlPlanePolicyLivesWithoutAHardwareStatusEntry ) {
   Sim::Scenario const s = scenario( systemCopp );
   Sim::SimSwitch sw( s );
   bool const served = GetParam() == Sim::TcamMode::synchronous;
   // The lists and CPU queues of the operator's classes; the system's classes have neither.
   auto const programmed = [ & ]() -> std::pair< Lines, std::uint64_t > {
      Lines acls;
      for( auto const& [ id, acl ] : tcamImageOf( sw ) )
         acls.push_back( id );
      return { acls, resourcesInUse( sw ).at( "cpu queues" ) };
   };
   using Programmed = std::pair< Lines, std::uint64_t >;
   Programmed const both{ { "copp-system-policy(control-plane,input)/c1/Default A(ip)",
                            "copp-system-policy(control-plane,input)/c2/Default B(ip)" },
                          2u };
   Programmed const second{ { "copp-system-policy(control-plane,input)/c2/Default B(ip)" }, 1u };
   // The first step drops c1, the last removes the policy.
   auto const expected = [ & ]( std::size_t made ) -> Programmed {
      if( !served || made == s.steps.size() ) return {};
      return made == 0 ? both : second;
   };
   auto const asExpected = [ & ]( std::size_t made ) {
      ASSERT_EQ( programmed(), expected( made ) ) << "at " << sw.now();
      ASSERT_EQ( policyMapStatusOf( sw ), Lines{} ) << "at " << sw.now();
   };
   EXPECT_EQ( runAll( sw, s, asExpected ), Lines{} );
   EXPECT_EQ( logLinesOf( sw ), Lines{} );
   EXPECT_EQ( resourcesInUse( sw ).at( "cpu queues" ), 0u );
}

INSTANTIATE_TEST_SUITE_P( TcamModes, PlatformCapabilityTest,
                          ::testing::Values( Sim::TcamMode::synchronous,
                                             Sim::TcamMode::asynchronous ),
                          tcamModeName );

}  // namespace
}  // namespace NevQosTest
