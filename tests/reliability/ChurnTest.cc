// Ten thousand cycles of a configuration that takes one of everything the chip has (TCAM entries
// and a range checker, per-interface policers, PDP counters, a CPU queue with its control-plane
// policer, a port CPU queue policer, queue profiles, an ECN counter, a class-based forwarding
// rule) and gives it all back: every pool is empty again at the end, nothing is logged, and the
// sanitizer build finds no leak.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "reliability/ReliabilityTest.h"

namespace NevQosTest {
namespace {

constexpr char const* everything = R"(
chip: { pdpSupported: true, coppSupported: true, coppDynamicClassSupported: true,
        intfCoppSupported: true }
interfaces: [ Ethernet1, Ethernet2 ]
acls:
  - name: WEB
    rules:
      - { proto: tcp, dstPort: { range: [ 8000, 8099 ] } }
      - { proto: udp, dstPort: { eq: 53 } }
  - name: MGMT
    rules:
      - { proto: tcp, dstPort: { eq: 22 } }
classMaps:
  - { name: web, match: { ipv4: WEB } }
  - { name: web, type: pdp, match: { ipv4: WEB } }
  - { name: mgmt, type: control-plane, match: { ipv4: MGMT } }
policyMaps:
  - name: edge-in
    classes:
      - { class: web, set: { dscp: 18 }, police: { cir: 1000, bc: 10000 } }
      - { class: class-default, set: { dscp: 0 } }
  - name: pdp-in
    type: pdp
    classes:
      - { class: web, count: true }
  - name: copp
    type: control-plane
    classes:
      - { class: mgmt, police: { cir: 100, cirUnit: pps, bc: 10 } }
fecService:
  - { fec: 10, hwFecId: 5010 }
  - { fec: 20, hwFecId: 5020 }
steps:
  - at: 1
    changes:
      - servicePolicy: { policyMap: edge-in, interfaces: [ Ethernet1, Ethernet2 ] }
      - servicePolicy: { policyMap: pdp-in, type: pdp, interfaces: [ Ethernet1, Ethernet2 ] }
      - servicePolicy: { policyMap: copp, type: control-plane, interfaces: [ Ethernet1 ] }
      - interfaceQos:
          interface: Ethernet1
          queues:
            - { queue: 1, ecn: { min: 1000, max: 2000 }, wred: { min: 3000, max: 4000 },
                dropThresholds: { 0: 5000 } }
      - ecnCounters: { interface: Ethernet1, queues: 1 }
      - fecOverride: { dscp: 10, fec: 10, overridingFec: 20 }
      - kernelCopp: { port: 1, queue: 4, state: saturated }
  - at: 2
    changes:
      - removeServicePolicy: edge-in
      - removeServicePolicy: { policyMap: pdp-in, type: pdp }
      - removeServicePolicy: { policyMap: copp, type: control-plane }
      - removeInterfaceQos: Ethernet1
      - removeEcnCounters: Ethernet1
      - removeFecOverride: { dscp: 10, fec: 10 }
      - kernelCopp: { port: 1, queue: 4, state: unsaturated }
)";

constexpr unsigned cycles = 10000;

TEST( ChurnTest, TenThousandCyclesGiveEveryChipResourceBack ) {
   Sim::Scenario const s = scenarioOf( everything );
   ASSERT_EQ( s.steps.size(), 2u );
   Sim::SimSwitch sw( s );
   auto const none = resourcesInUse( sw );
   std::map< std::string, std::uint64_t > taken;
   for( unsigned i = 0; i < cycles; ++i ) {
      for( unsigned half = 0; half < 2; ++half ) {
         Sim::Step step = s.steps[ half ];
         step.time = 1.0 + 2.0 * i + half;
         sw.stepIs( step );
         sw.runUntil( step.time + 0.5 );
         if( i == 0 && half == 0 ) taken = resourcesInUse( sw );
      }
      sw.callsForget();
   }
   // Every pool the cycle is meant to exercise was in use while applied.
   for( auto const& [ name, used ] : taken ) {
      if( name == "pending operations" || name == "tcam ipv6" || name == "tcam mac" ) continue;
      EXPECT_GT( used, 0u ) << name << " was never taken";
   }
   EXPECT_EQ( resourcesInUse( sw ), none );
   EXPECT_EQ( tcamImageOf( sw ), TcamImage{} );
   EXPECT_EQ( logLinesOf( sw ), std::vector< std::string >{} );
   EXPECT_EQ( sw.verify(), std::vector< std::string >{} );
}

}  // namespace
}  // namespace NevQosTest
