// A published scenario drives the engine: what the publisher writes is what the engine needs to
// program a policy, recompile it on a new version, follow its interfaces and pull counters.
#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>

#include "sim/scenario/ConfigPublisher.h"
#include "sim/scenario/ScenarioLoader.h"
#include "support/QosAclSmFixture.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;

std::string const scenarioText = R"(
interfaces: [ Ethernet1, Ethernet2 ]
acls:
  - { name: WEB, rules: [ { proto: tcp, dstPort: { eq: 80 } } ] }
  - { name: DNS, rules: [ { proto: udp, dstPort: { eq: 53 } } ] }
classMaps:
  - { name: web, match: { ipv4: WEB } }
  - { name: dns, match: { ipv4: DNS } }
policyMaps:
  - { name: gold, classes: [ { class: web, set: { dscp: 10 } }, { class: class-default } ] }
  - { name: silver, classes: [ { class: dns, set: { trafficClass: 2 } } ] }
servicePolicies:
  - { policyMap: gold, interfaces: [ Ethernet1, Ethernet2 ] }
  - { policyMap: silver, interfaces: [ Ethernet2 ] }
steps:
  - at: 101
    changes:
      - acl: { name: WEB, rules: [ { proto: tcp, dstPort: { eq: 443 } } ] }
  - at: 102
    changes:
      - detach: { policyMap: gold, interfaces: [ Ethernet2 ] }
      - requestCounters: snmp
)";

class ScenarioEngineTest : public QosAclSmFixture {
 protected:
   void SetUp() override {
      QosAclSmFixture::SetUp();
      scenario = Sim::loadScenarioText( scenarioText, "engine.yaml" );
      // The fixture makes the entities in SetUp.
      publisher.emplace( Sim::EngineInputs{ qosStatus, mainAclConfig, qosAclHwStatus, qosHwStatus,
                                            counterConfigDir, ncsd },
                         scenario.file );
      publisher->chipIs( scenario.chip );
      publisher->initialIs( scenario.initial );
      start();
   }
   Sim::Scenario scenario;
   std::optional< Sim::ConfigPublisher > publisher;
};

// The lines of one operation that name `what` (a policy map, an ACL, an interface).
Lines callsOf( Sim::RecordingQosAclHelper const& helper, char const* op, std::string const& what ) {
   Lines out;
   for( auto const& line : helper.callsMatching( op ) ) {
      if( line.find( what ) != std::string::npos ) out.push_back( line );
   }
   return out;
}

TEST_F( ScenarioEngineTest, TheStartingConfigurationIsProgrammed ) {
   ASSERT_TRUE( hwStatus( "gold" ) && hwStatus( "silver" ) );
   EXPECT_EQ( hwStatus( "gold" )->prgmStatus(), Qos::hwPrgmStatusSuccess_ );
   EXPECT_EQ( hwStatus( "silver" )->prgmStatus(), Qos::hwPrgmStatusSuccess_ );
   EXPECT_EQ( helper->callsMatching( "precreateAcl" ),
              ( Lines{ "precreateAcl classData=gold(qos,input)/web/Default aclKey=WEB(ip) "
                       "matchOption=matchOptionIpAcl",
                       "precreateAcl classData=gold(qos,input)/class-default/Default "
                       "aclKey=acl-default(ip) matchOption=matchOptionIpAcl",
                       "precreateAcl classData=silver(qos,input)/dns/Default aclKey=DNS(ip) "
                       "matchOption=matchOptionIpAcl" } ) );
   EXPECT_EQ( callsOf( *helper, "createIpAclSubrule", "dstL4Port=80 " ).size(), 1u );
   EXPECT_EQ( callsOf( *helper, "batchCommitAclsIntf", "pmapState=gold(" ).size(), 2u );
}

TEST_F( ScenarioEngineTest, AChangedListRecompilesOnlyTheMapThatUsesIt ) {
   helper->callsForget();
   publisher->stepIs( scenario.steps.at( 0 ) );
   loop->runOnce();
   EXPECT_EQ( callsOf( *helper, "createIpAclSubrule", "classData=gold(" ).size(), 1u );
   EXPECT_EQ( callsOf( *helper, "createIpAclSubrule", "dstL4Port=443 " ).size(), 1u );
   EXPECT_EQ( callsOf( *helper, "precreateAcl", "classData=silver(" ), Lines{} );
   EXPECT_EQ( hwStatus( "gold" )->version(), 2u );
   EXPECT_EQ( hwStatus( "silver" )->version(), 1u );
   EXPECT_EQ( hwStatus( "gold" )->prgmStatus(), Qos::hwPrgmStatusSuccess_ );
   EXPECT_EQ( qosAclSliceHwStatus->configVersionUpdateTime(), 101.0 );
}

TEST_F( ScenarioEngineTest, ADetachedPortLeavesAndCountersArePulled ) {
   publisher->stepIs( scenario.steps.at( 0 ) );
   Nev::QosClassCounterData hits;
   hits.pktHitsIs( 10 );
   hits.byteHitsIs( 1000 );
   chip->trafficIs(
         Sim::ChipTraffic{ spKey( "gold" ), Zub::Name( "web" ), intf( "Ethernet1" ), hits } );
   helper->callsForget();
   publisher->stepIs( scenario.steps.at( 1 ) );
   loop->runOnce();
   EXPECT_EQ(
         callsOf( *helper, "batchCommitAclsIntf", "pmapState=gold(" ),
         Lines{ "batchCommitAclsIntf pmapState=gold(qos,input) intfPair=Ethernet2 add=false" } );
   EXPECT_EQ( callsOf( *helper, "precreateAcl", "" ), Lines{} ) << "no recompile";
   auto const web = hwStatus( "gold" )->cmap( Zub::Name( "web" ) );
   ASSERT_TRUE( web );
   EXPECT_EQ( web->outCount(), 10u );
   EXPECT_EQ( web->outBytes(), 1000u );
   EXPECT_EQ( qosAclSliceHwStatus->pmapCounterUpdateTime(), 102.0 );
   EXPECT_EQ( qosAclSliceHwStatus->configVersionUpdateTime(), 102.0 );
}

// Every example, published step by step into the engine on a chip that accepts everything,
// programs each of its policy maps.
class ExampleEngineTest : public QosAclSmFixture,
                          public ::testing::WithParamInterface< char const* > {};

TEST_P( ExampleEngineTest, EveryStepLeavesEveryMapProgrammed ) {
   auto const path = std::filesystem::path( NEVQOS_EXAMPLES_DIR ) / GetParam();
   auto const s = Sim::loadScenario( path.string() );
   Sim::ConfigPublisher publisher( Sim::EngineInputs{ qosStatus, mainAclConfig, qosAclHwStatus,
                                                      qosHwStatus, counterConfigDir, ncsd },
                                   s.file );
   publisher.chipIs( s.chip );
   publisher.initialIs( s.initial );
   start();
   for( auto const& step : s.steps ) {
      SCOPED_TRACE( step.time );
      loop->runUntil( step.time );
      publisher.stepIs( step );
      loop->runOnce();
      for( auto const& [ key, sp ] : publisher.model().servicePolicies() ) {
         auto const status = hwStatus( key.pmapName().charPtr() );
         ASSERT_TRUE( status ) << key;
         EXPECT_EQ( status->prgmStatus(), Qos::hwPrgmStatusSuccess_ ) << key;
         EXPECT_EQ( status->version(), policyMap( key.pmapName().charPtr() )->version() ) << key;
      }
   }
   EXPECT_EQ( qosAclSliceHwStatus->configVersionUpdateTime(), s.steps.back().time );
}

INSTANTIATE_TEST_SUITE_P( Examples, ExampleEngineTest,
                          ::testing::Values( "edge-policy.yaml", "tcam-exhaustion.yaml",
                                             "range-checkers.yaml" ) );

}  // namespace
}  // namespace NevQosTest
