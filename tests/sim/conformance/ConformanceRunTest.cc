// The conformance kit passes the reference chip through every example and generated stories of
// both TCAM modes, and fails each of five broken drivers, decorators of the reference chip, with
// the message of the contract point it breaks.

#include <gtest/gtest.h>

#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "NevQos/platform/kesh/TimerWheel.h"
#include "NevQos/sim/conformance/ConformanceSuite.h"
#include "NevQos/sim/conformance/ContractWatcher.h"
#include "NevQos/sim/conformance/ReferenceDriver.h"
#include "NevQos/sim/scenario/ScenarioLoader.h"
#include "NevQos/types/QosClassData.h"
#include "support/QosAclSmFixture.h"

NEVQOS_CONFORMANCE_SUITE( ReferenceChip, Conformance::referenceDriver )

namespace NevQosTest {
namespace {

Sim::Scenario example( std::string const& name ) {
   return Sim::loadScenario( NEVQOS_CONFORMANCE_EXAMPLES "/" + name );
}

// The first finding of `result`, which must begin with `prefix`.
void expectFirstFinding( Conformance::ConformanceResult const& result, std::string const& prefix ) {
   ASSERT_FALSE( result.findings.empty() ) << "no finding; expected " << prefix;
   // The message a driver author would read, in the test's output.
   std::cout << "[ FINDING  ] " << result.findings.front() << "\n";
   EXPECT_EQ( result.findings.front().substr( 0, prefix.size() ), prefix )
         << result.findings.front();
}

TEST( BrokenDriverTest, OneThatDropsEveryThirdSubruleFailsVerification ) {
   auto const driver = Conformance::referenceDriver( {}, []( Conformance::ReferenceChipAcl& acl ) {
      for( int i = 0; i < 1000; ++i ) {
         acl.forwardEnq( "createIpAclSubrule" );
         acl.forwardEnq( "createIpAclSubrule" );
         acl.answerEnq( "createIpAclSubrule", Nev::aclCreateErrorNone );
      }
   } );
   expectFirstFinding( Conformance::runConformance( example( "edge-policy.yaml" ), driver ),
                       "edge-policy.yaml: before step 1 (at 1 s): verification: the driver does "
                       "not read back what it was told: " );
}

TEST( BrokenDriverTest, OneThatAnswersVerificationFromWhatItWasToldIsFound ) {
   Sim::Scenario const scenario = example( "edge-policy.yaml" );
   // The honest chip finds the subrule withheld from it.
   Conformance::ConformanceResult const honest =
         Conformance::runWithheldSubrule( scenario, Conformance::referenceDriver() );
   EXPECT_EQ( honest.findings, std::vector< std::string >{} );
   EXPECT_EQ( honest.notes, std::vector< std::string >{} );
   auto const driver = Conformance::referenceDriver( {}, []( Conformance::ReferenceChipAcl& acl ) {
      acl.answerIs( "ipSubruleExists", true );
   } );
   expectFirstFinding( Conformance::runWithheldSubrule( scenario, driver ),
                       "edge-policy.yaml: after 60 s of settling: verification: the subrule " );
}

TEST( BrokenDriverTest, OneThatLeaksPolicersFailsTheResourceCheck ) {
   auto const driver = Conformance::referenceDriver( {}, []( Conformance::ReferenceChipAcl& acl ) {
      acl.actionIs( "destroyPolicer", [] {} );
   } );
   Conformance::ConformanceResult const result =
         Conformance::runConformance( example( "edge-policy.yaml" ), driver );
   expectFirstFinding( result, "edge-policy.yaml: after the teardown: resources: policers: " );
   EXPECT_NE( result.findings.front().find( " in use after the teardown, 0 at the start" ),
              std::string::npos )
         << result.findings.front();
}

// Writes the first result its chip gives a second time, a second later.
class AnswersTwice : public Conformance::ReferenceChipAcl {
 public:
   AnswersTwice( Zub::Ptr< Sim::SimQosAclHelper > const& chip, Sim::DriverInputs const& in )
       : ReferenceChipAcl( chip, in ), echo_( Zub::make< Echo >( this ) ) {
      echo_->notifierIs( in.clock );
      asyncResultHeardIs( [ this, clock = in.clock ]( Nev::AsyncOperationResult const& r ) {
         if( echo_->result ) return;
         echo_->result = r;
         echo_->timeMinIs( clock->now() + 1.0 );
      } );
   }

 private:
   struct Echo : Kesh::TimerWheel::NotifieeConst {
      explicit Echo( AnswersTwice* owner ) : helper( owner ) {}
      void onTime() override { helper->asyncOperationResultIs( *result ); }
      AnswersTwice* helper;
      std::optional< Nev::AsyncOperationResult > result;
   };
   Zub::Ptr< Echo > echo_;
};

TEST( BrokenDriverTest, OneThatAnswersAnOperationTwiceFailsTheAsynchronousCheck ) {
   auto const driver = Conformance::referenceDriver(
         []( Zub::Ptr< Sim::SimQosAclHelper > const& chip, Sim::DriverInputs const& in ) {
            return Zub::Ptr< Conformance::ReferenceChipAcl >(
                  Zub::make< AnswersTwice >( chip, in ) );
         } );
   Sim::Scenario const scenario = Conformance::generatedStory( Sim::TcamMode::asynchronous, 1, 3 );
   Conformance::ConformanceResult const result = Conformance::runConformance( scenario, driver );
   expectFirstFinding( result, "generated-asynchronous-seed-1.yaml: " );
   EXPECT_NE( result.findings.front().find( ": asynchronous results: a result (" ),
              std::string::npos )
         << result.findings.front();
   EXPECT_NE( result.findings.front().find(
                    ") came with no operation waiting for one: an operation answered twice" ),
              std::string::npos )
         << result.findings.front();
}

TEST( BrokenDriverTest, OneThatReportsSuccessForAFailedCommitFailsVerification ) {
   auto const driver = Conformance::referenceDriver( {}, []( Conformance::ReferenceChipAcl& acl ) {
      acl.answerIs( "commitAcl", Nev::aclCreateErrorNone );
   } );
   Conformance::ConformanceResult const result =
         Conformance::runConformance( example( "edge-policy.yaml" ), driver );
   expectFirstFinding( result,
                       "edge-policy.yaml: before step 1 (at 1 s): verification: the "
                       "driver does not read back what it was told: " );
   EXPECT_NE( result.findings.front().find( "is not committed" ), std::string::npos )
         << result.findings.front();
}

// The first finding of `result` that holds `text`, or none.
std::string findingWith( Conformance::ConformanceResult const& result, std::string const& text ) {
   for( std::string const& f : result.findings ) {
      if( f.find( text ) != std::string::npos ) return f;
   }
   return "";
}

TEST( BrokenDriverTest, CapabilityAnswersThatContradictBehaviourAreFound ) {
   // Expansion asked for again of the blocks an expansion made, and a capability that changes.
   auto const expands = Conformance::referenceDriver( {}, []( Conformance::ReferenceChipAcl& acl ) {
      acl.answerIs( "createIpAclSubrule", Nev::aclCreateErrorExpandSrc );
      acl.answerEnq( "multipleActionsSupported", false );
   } );
   auto const sync = Conformance::runConformance( example( "edge-policy.yaml" ), expands );
   EXPECT_NE( findingWith( sync,
                           "capabilities: createIpAclSubrule answered "
                           "aclCreateErrorExpandSrc to subrule " ),
              "" );
   EXPECT_NE( findingWith( sync,
                           ", which has no range to expand: the blocks of an expansion "
                           "must be taken" ),
              "" );
   EXPECT_NE( findingWith( sync,
                           "capabilities: multipleActionsSupported answered true after "
                           "false: a capability answers the same each time" ),
              "" );
   // A refusal in the call on the asynchronous road: found, and the engine goes on.
   auto const refuses = Conformance::referenceDriver( {}, []( Conformance::ReferenceChipAcl& acl ) {
      acl.answerEnq( "createIpAclSubrule", Nev::aclCreateErrorOutOfTcam );
   } );
   Sim::Scenario queued = example( "edge-policy.yaml" );
   queued.chip.tcamMode = Sim::TcamMode::asynchronous;
   auto const async = Conformance::runConformance( queued, refuses );
   EXPECT_EQ( async.steps, queued.steps.size() );
   EXPECT_NE( findingWith( async,
                           "answered aclCreateErrorOutOfTcam on the asynchronous road, "
                           "where every rule operation answers 0" ),
              "" )
         << ::testing::PrintToString( async.findings );
}

// The engine keeps the call sequence it promises, so a break of it is shown by calling the watcher
// as an engine that broke it would.
class ContractWatcherTest : public QosAclSmFixture {};

TEST_F( ContractWatcherTest, ADestroyOfAPolicerTheDriverNeverGaveIsACallSequenceFinding ) {
   auto const ledger = std::make_shared< Conformance::ContractLedger >();
   auto const watcher = Zub::make< Conformance::WatchingQosAclHelper >( chip, clock, ledger, 10.0 );
   auto const gold = Zub::make< Nev::QosClassData >(
         Nev::QosClassDataKey( pmapKey( "gold" ), Zub::Name( "c1" ), Qos::mapQos_,
                               Nev::QosClassDataKey::defaultPolicerName() ) );
   watcher->destroyPolicer( *gold );
   EXPECT_EQ( ledger->findings,
              std::vector< std::string >{ "at the start: call sequence: destroyPolicer of "
                                          "gold(qos,input)/c1/Default, which the driver refused "
                                          "or never made" } );
}

TEST( ConformanceRunTest, ChangesAimedAtTheReferenceChipAreLeftOutForAnotherDriver ) {
   Conformance::DriverUnderTest driver = Conformance::referenceDriver();
   driver.onReferenceChip = false;
   Conformance::ConformanceResult const result =
         Conformance::runConformance( example( "basic-faults.yaml" ), driver );
   EXPECT_EQ( result.findings, std::vector< std::string >{} );
   EXPECT_EQ( result.steps, example( "basic-faults.yaml" ).steps.size() );
   // The chip's faults and a step's fault switch.
   EXPECT_EQ( result.notes, std::vector< std::string >{ "basic-faults.yaml: left out, as aimed "
                                                        "at the reference chip: chip: faults and "
                                                        "1 more" } );
   // Damage to the TCAM is there for verification to find: the rest is checked.
   Conformance::ConformanceResult const damage = Conformance::runConformance(
         example( "tcam-corruption.yaml" ), Conformance::referenceDriver() );
   EXPECT_EQ( damage.findings, std::vector< std::string >{} );
   EXPECT_EQ( damage.notes.front(),
              "tcam-corruption.yaml: verification: not checked: the scenario damages the TCAM on "
              "purpose, for verification to find" );
}

}  // namespace
}  // namespace NevQosTest
