// The basic QoS sections of a scenario, published: a step changes the global maps, named maps and
// profiles, interface and queue settings, ECN counters and links it gives, and nothing else.
#include <gtest/gtest.h>

#include <string>

#include "NevQos/sim/scenario/ConfigPublisher.h"
#include "NevQos/sim/scenario/ScenarioLoader.h"

namespace {

std::string const scenarioText = R"(
interfaces: [ Ethernet1, Ethernet2 ]
globalMaps:
  cosToTc: { 5: 6 }
  dscpToDp: { 10: 2 }
  tcToTxQueue: { 7: 3 }
  cosRewrite: true
  globalEcn: { min: 1000, max: 5000, probability: 20 }
dscpRewriteMaps: [ { name: edge, tcToDscp: { 5: ef } } ]
cosToTcProfiles: [ { name: voice, cosToTc: { 5: 5, 6: 6 } } ]
interfaceQos:
  - interface: Ethernet1
    trust: dscp
    defaultDscp: af11
    shapeRate: { rate: 5000000 }
    dscpRewriteMap: edge
    cosToTcProfile: voice
    queues:
      - { queue: 1, priority: strict, guaranteedBw: { rate: 10, unit: percent },
          ecn: { min: 100, max: 200 }, dropThresholds: { 0: 4000, 3: 1000 } }
      - { queue: 2, type: multicast, wred: { min: 10, max: 20, probability: 5 } }
ecnCounters: [ { interface: Ethernet1, queues: [ 1-2 ] } ]
links: [ { interface: Ethernet1, speed: 100000, active: true } ]
steps:
  - at: 1
    changes:
      - globalMaps: { cosToTc: { 5: 16, 4: 1 } }
      - interfaceQos: { interface: Ethernet1, cosToTcProfile: voice, queues: [ { queue: 1 } ] }
      - removeDscpRewriteMap: edge
      - ecnCounters: { interface: Ethernet1, queues: 2 }
      - link: { interface: Ethernet1, active: false }
)";

class BasicQosScenarioTest : public ::testing::Test {
 protected:
   void SetUp() override {
      scenario = Sim::loadScenarioText( scenarioText, "basic.yaml" );
      Sim::EngineInputs inputs{ status,
                                Zub::make< Acl::Config >( Zub::Name( "acl" ) ),
                                Zub::make< Qos::AclHwStatus >( Zub::Name( "aclHw" ) ),
                                Zub::make< Qos::HwStatus >( Zub::Name( "hw" ) ),
                                Zub::make< Zub::Dir >( Zub::Name( "counters" ) ),
                                Zub::make< Nev::NevCommonSmData >( Zub::Name( "ncsd" ) ),
                                counters,
                                links };
      publisher.emplace( inputs, scenario.file );
      publisher->chipIs( scenario.chip );
      publisher->initialIs( scenario.initial );
   }
   Zub::Ptr< Qos::IntfStatus > eth1() const {
      return status->intfStatus( Mirel::IntfId( "Ethernet1" ) );
   }
   Zub::Ptr< Qos::TxQueueStatus > queue( unsigned id, Qos::TxQueueType type ) const {
      return eth1()->txQueueStatus( Qos::TxQueue( Qos::TxQueueId( id ), type ) );
   }

   Sim::Scenario scenario;
   Zub::Ptr< Qos::Status > status = Zub::make< Qos::Status >( Zub::Name( "qos" ) );
   Zub::Ptr< Qos::CounterConfig > counters = Zub::make< Qos::CounterConfig >( Zub::Name( "c" ) );
   Zub::Ptr< Interface::AllEthPhyIntfStatusDir > links =
         Zub::make< Interface::AllEthPhyIntfStatusDir >( Zub::Name( "links" ) );
   std::optional< Sim::ConfigPublisher > publisher;
};

TEST_F( BasicQosScenarioTest, AStepChangesOnlyWhatItGives ) {
   publisher->stepIs( scenario.steps.at( 0 ) );
   EXPECT_FALSE( status->cosToTcMap( Qos::Cos( 5 ) ).isValid() ) << "back to the default";
   EXPECT_EQ( status->cosToTcMap( Qos::Cos( 4 ) ), 1 );
   EXPECT_EQ( status->dscpToDpMap( Qos::Dscp( 10 ) ), 2 ) << "not given, kept";
   EXPECT_FALSE( status->dscpRewriteMap( Zub::Name( "edge" ) ) );
   EXPECT_EQ( eth1()->trustMode(), Qos::trustCos_ ) << "an interface is given whole";
   EXPECT_EQ( eth1()->dscpRewriteMapName(), Zub::Name() );
   EXPECT_FALSE( queue( 2, Qos::multicastQueue_ ) );
   EXPECT_EQ( queue( 1, Qos::unicastQueue_ )->dropThresholdsSize(), 0u );
   auto const ecn = counters->ecnIntfCounterConfig( Mirel::IntfId( "Ethernet1" ) );
   EXPECT_FALSE( ecn->ecnTxQueueCounterConfigHas( Qos::TxQueueId( 1 ) ) );
   EXPECT_TRUE( ecn->ecnTxQueueCounterConfigHas( Qos::TxQueueId( 2 ) ) );
   auto const link = links->intfStatus( Mirel::IntfId( "Ethernet1" ) );
   EXPECT_FALSE( link->active() );
   EXPECT_EQ( link->speed(), 100000u ) << "not given, kept";
}

}  // namespace
