// What a class's actions leave in the class data and the class-map status: one action or all of
// them by the chip, the flags by direction, and the CPU queue of a control-plane class.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "support/QosAclSmFixture.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;

class QosClassActionSmTest : public QosAclSmFixture {
 protected:
   // "gold" with class c1 matching the IPv4 list v4, applied to Ethernet1 in `direction`.
   Zub::Ptr< Qos::ClassAction > actionClassIs(
         std::vector< std::pair< Qos::ActionType, unsigned > > actions,
         Qos::Direction direction = Qos::directionInput_ ) {
      ipAclIs( "v4", {} );
      classMapIs( "c1", { { Qos::matchOptionIpAcl, "v4" } } );
      auto action = classIs( "gold", "c1" );
      for( auto const& [ type, value ] : actions )
         action->actionIs( type )->valueIs( value );
      Qos::ServicePolicyKey const key( Qos::mapQos_, direction, Zub::Name( "gold" ) );
      qosStatus->servicePolicyStatusIs( key )->intfIdsIs( intf( "Ethernet1" ), true );
      loop->runOnce();
      return action;
   }
   Zub::Ptr< Nev::QosPolicyClassSm > classSm( Qos::Direction direction = Qos::directionInput_,
                                              Qos::MapType type = Qos::mapQos_,
                                              char const* pmap = "gold", char const* cmap = "c1" ) {
      auto spSm =
            sm->servicePolicySm( Qos::ServicePolicyKey( type, direction, Zub::Name( pmap ) ) );
      if( !spSm ) return nullptr;
      auto pmapSm = spSm->pmapSm(
            Nev::QosPolicyMapKey( Zub::Name( pmap ), type, direction, Zub::Name( "Default" ) ) );
      return pmapSm ? pmapSm->policyClassSm( Nev::QosClassMapKey( Zub::Name( cmap ), type ) )
                    : nullptr;
   }
   // The action data of c1 as "type=val".
   Lines actionData( Qos::Direction direction = Qos::directionInput_ ) {
      Lines out;
      for( auto it = classSm( direction )->classData()->actionData().iter(); it; ++it ) {
         std::ostringstream line;
         line << it.key() << "=" << it.value()->val();
         out.push_back( line.str() );
      }
      return out;
   }
   Zub::Ptr< Qos::ClassMapHwStatus > cmapStatus( Qos::Direction direction ) {
      auto typeStatus = qosAclSliceHwStatus->pmapType( Qos::mapQos_ );
      auto pmap = typeStatus->pmap( Qos::PolicyMapHwStatusKey( direction, Zub::Name( "gold" ) ) );
      return pmap->cmap( Zub::Name( "c1" ) );
   }
   static std::string multipleActionsLog() {
      return "QOS_POLICY_MULTIPLE_ACTIONS: Multiple actions are attached to the class-map c1 in "
             "the policy-map gold.";
   }
};

TEST_F( QosClassActionSmTest, ASingleActionChipTakesDscpOverCosOverTrafficClassAndSaysSo ) {
   start();
   helper->answerIs( "multipleActionsSupported", false );
   actionClassIs( { { Qos::actionSetTc_, 5 }, { Qos::actionSetDscp_, 46 } } );
   EXPECT_EQ( actionData(), Lines{ "actionSetDscp=46" } );
   auto status = cmapStatus( Qos::directionInput_ );
   EXPECT_TRUE( status->dscpPrgmd() );
   EXPECT_FALSE( status->tcPrgmd() );
   EXPECT_EQ( takeLogs(), Lines{ multipleActionsLog() } );
   classSm()->handleVerify();

   // COS wins over the traffic class.
   auto action = classIs( "gold", "c1" );
   action->actionDel( Qos::actionSetDscp_ );
   action->actionIs( Qos::actionSetCos_ )->valueIs( 3 );
   policyMap( "gold" )->versionIs( 2 );
   qosStatus->servicePolicyStatus( spKey( "gold" ) )->versionIs( 2 );
   loop->runOnce();
   EXPECT_EQ( actionData(), Lines{ "actionSetCos=3" } );
   EXPECT_EQ( takeLogs(), Lines{ multipleActionsLog() } ) << "logged once per class action";
}

TEST_F( QosClassActionSmTest, OneActionIsNeverLoggedAndAMultiActionChipTakesThemAll ) {
   start();
   helper->answerIs( "multipleActionsSupported", false );
   actionClassIs( { { Qos::actionSetTc_, 5 } } );
   EXPECT_EQ( actionData(), Lines{ "actionSetTc=5" } );
   EXPECT_TRUE( cmapStatus( Qos::directionInput_ )->tcPrgmd() );

   helper->answerIs( "multipleActionsSupported", true );
   auto action = classIs( "gold", "c1" );
   action->actionIs( Qos::actionDrop_ );
   action->actionIs( Qos::actionSetDropPrecedence_ )->valueIs( 1 );
   action->actionIs( Qos::actionSetCos_ )->valueIs( 2 );
   policyMap( "gold" )->versionIs( 2 );
   qosStatus->servicePolicyStatus( spKey( "gold" ) )->versionIs( 2 );
   loop->runOnce();
   EXPECT_EQ( actionData(), ( Lines{ "actionSetCos=2", "actionSetTc=5", "actionDrop=0",
                                     "actionSetDropPrecedence=1" } ) );
   auto status = cmapStatus( Qos::directionInput_ );
   EXPECT_TRUE( status->cosPrgmd() && status->tcPrgmd() && status->dropPrgmd() &&
                status->dropPrecedencePrgmd() );
   EXPECT_FALSE( status->dscpPrgmd() );
   classSm()->handleVerify();
}

TEST_F( QosClassActionSmTest, AnOutputPolicyStoresTheTrafficClassWithoutClaimingIt ) {
   start();
   helper->answerIs( "multipleActionsSupported", true );
   actionClassIs( { { Qos::actionSetTc_, 6 }, { Qos::actionDrop_, 0 }, { Qos::actionSetCos_, 1 } },
                  Qos::directionOutput_ );
   EXPECT_EQ( actionData( Qos::directionOutput_ ),
              ( Lines{ "actionSetCos=1", "actionSetTc=6", "actionDrop=0" } ) );
   auto status = cmapStatus( Qos::directionOutput_ );
   EXPECT_TRUE( status->cosPrgmd() );
   EXPECT_FALSE( status->tcPrgmd() || status->dropPrgmd() );
   classSm( Qos::directionOutput_ )->handleVerify();  // demands neither flag
}

TEST_F( QosClassActionSmTest, DeletionTakesTheActionDataAndLeavesTheFlagsToTheStatusEntry ) {
   start();
   actionClassIs( { { Qos::actionSetDscp_, 10 } } );
   auto data = classSm()->classData();
   auto status = cmapStatus( Qos::directionInput_ );
   qosStatus->servicePolicyStatusDel( spKey( "gold" ) );
   loop->runOnce();
   EXPECT_EQ( data->actionDataSize(), 0u );
   EXPECT_TRUE( status->dscpPrgmd() );
}

TEST_F( QosClassActionSmTest, ASingleActionChipTakesADropOrADropPrecedenceWhenNothingElseIsSet ) {
   struct Case {
      std::vector< std::pair< Qos::ActionType, unsigned > > actions;
      Lines taken;
      bool logged;
   };
   std::vector< Case > const cases{
      { { { Qos::actionDrop_, 0 } }, { "actionDrop=0" }, false },
      { { { Qos::actionSetDropPrecedence_, 2 } }, { "actionSetDropPrecedence=2" }, false },
      { { { Qos::actionSetDropPrecedence_, 2 }, { Qos::actionDrop_, 0 } },
        { "actionDrop=0" },
        true },
   };
   start();
   helper->answerIs( "multipleActionsSupported", false );
   actionClassIs( {} );
   auto const action = policyMap( "gold" )->classAction( Zub::Name( "c1" ) );
   unsigned version = 1;
   for( Case const& c : cases ) {
      action->actionDelAll();
      for( auto const& [ type, value ] : c.actions )
         action->actionIs( type )->valueIs( value );
      policyMap( "gold" )->versionIs( ++version );
      qosStatus->servicePolicyStatus( spKey( "gold" ) )->versionIs( version );
      loop->runOnce();
      EXPECT_EQ( actionData(), c.taken );
      EXPECT_EQ( takeLogs(), c.logged ? Lines{ multipleActionsLog() } : Lines{} );
      classSm()->handleVerify();
   }
}

// ---- control-plane classes and their CPU queues ----

class QosControlPlaneClassTest : public QosClassActionSmTest {
 protected:
   void SetUp() override {
      QosClassActionSmTest::SetUp();
      qosAclHwStatus->intfCoppSupportedIs( true );
   }
   // A per-port control-plane map with the classes `dynamic` (made by the operator) and
   // `static` (the system's).
   void controlPlaneIs() {
      ipAclIs( "v4", {} );
      classMapIs( "dynamic", { { Qos::matchOptionIpAcl, "v4" } }, Qos::mapControlPlane_ )
            ->cpTypeIs( Qos::cmapCpDynamic_ );
      classMapIs( "static", { { Qos::matchOptionIpAcl, "v4" } }, Qos::mapControlPlane_ );
      classIs( "copp-port", "dynamic", Qos::mapControlPlane_ );
      classIs( "copp-port", "static", Qos::mapControlPlane_ );
      applyIs( "copp-port", { intf( "Ethernet1" ) }, Qos::mapControlPlane_ );
      loop->runOnce();
   }
   Zub::Ptr< Nev::QosPolicyClassSm > cpClass( char const* cmap ) {
      return classSm( Qos::directionInput_, Qos::mapControlPlane_, "copp-port", cmap );
   }
};

TEST_F( QosControlPlaneClassTest, ADynamicClassHoldsAQueueUntilItGoesAndAStaticOneNever ) {
   start();
   helper->answerIs( "coppAllocateCpuQ", 7 );
   controlPlaneIs();
   ASSERT_TRUE( cpClass( "dynamic" ) && cpClass( "static" ) );
   EXPECT_EQ( cpClass( "dynamic" )->classData()->cpuQId(), 7 );
   EXPECT_EQ( cpClass( "static" )->classData()->cpuQId(), -1 );
   EXPECT_EQ( helper->callsMatching( "coppAllocateCpuQ" ).size(), 1u );
   EXPECT_EQ(
         cpClass( "dynamic" )->classActionSm( cpClass( "dynamic" )->cmapKey() )->actionSmSize(),
         0u )
         << "a control-plane class takes no action machines";

   auto dynamicData = cpClass( "dynamic" )->classData();
   helper->callsForget();
   qosStatus->servicePolicyStatusDel( spKey( "copp-port", Qos::mapControlPlane_ ) );
   loop->runOnce();
   EXPECT_EQ( helper->callsMatching( "coppDeallocateCpuQ" ).size(), 1u )
         << "given back once, and not for the static class";
   EXPECT_EQ( dynamicData->cpuQId(), -1 );
}

TEST_F( QosControlPlaneClassTest, AChipOutOfCpuQueuesFailsTheMapAndIsGivenNothingBack ) {
   start();
   helper->answerIs( "coppAllocateCpuQ", -1 );
   controlPlaneIs();
   EXPECT_EQ( takeLogs(), Lines{ "QOS_COPP_HW_RESOURCE_FULL: Insufficient TCAM resources to "
                                 "program the policy map copp-port." } );
   EXPECT_EQ( hwStatus( "copp-port", Qos::mapControlPlane_ )->prgmStatus(),
              Qos::hwPrgmStatusFail_ );
   loop->runUntilIdle();
   EXPECT_FALSE( cpClass( "dynamic" ) ) << "the map is removed whole";
   EXPECT_TRUE( helper->callsMatching( "coppDeallocateCpuQ" ).empty() );
}

}  // namespace
}  // namespace NevQosTest
