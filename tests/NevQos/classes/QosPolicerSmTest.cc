// A policer copy of a class: its clamped parameters, its yellow and red actions, when it reaches
// the chip and when it leaves it, exhaustion, and where a named policer's status comes from.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "support/QosAclSmFixture.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;

class QosPolicerSmTest : public QosAclSmFixture {
 protected:
   void SetUp() override {
      QosAclSmFixture::SetUp();
      // The chip polices 100 kbps to 10 Mbps with bursts of 1000 to 100000 bytes.
      qosAclHwStatus->policeByteModeMinRateKbpsIs( 100 );
      qosAclHwStatus->policeByteModeMaxRateKbpsIs( 10000 );
      qosAclHwStatus->policeByteModeMinBurstBytesIs( 1000 );
      qosAclHwStatus->policeByteModeMaxBurstBytesIs( 100000 );
   }
   // `pmap` with class c1 policing through `policer`, matching the IPv4 list v4.
   Zub::Ptr< Qos::PolicerConfig > policedClassIs( char const* policer, char const* pmap = "gold",
                                                  Qos::MapType type = Qos::mapQos_ ) {
      ipAclIs( "v4", { Acl::IpRuleConfig() } );
      classMapIs( "c1", { { Qos::matchOptionIpAcl, "v4" } }, type );
      auto action = classIs( pmap, "c1", type );
      action->policerIs( policerOf( policer ) );
      return action->policer();
   }
   Zub::Ptr< Nev::QosPolicyClassSm > classSm( char const* pmap = "gold",
                                              Qos::MapType type = Qos::mapQos_ ) {
      auto spSm = sm->servicePolicySm( spKey( pmap, type ) );
      auto pmapSm = spSm ? spSm->pmapSm( pmapKey( pmap, "Default", type ) ) : nullptr;
      return pmapSm ? pmapSm->policyClassSm( Nev::QosClassMapKey( Zub::Name( "c1" ), type ) )
                    : nullptr;
   }
   Zub::Ptr< Nev::QosPolicerSm > copy( char const* name, char const* pmap = "gold",
                                       Qos::MapType type = Qos::mapQos_ ) {
      auto cls = classSm( pmap, type );
      return cls ? cls->policerSm( Zub::Name( name ) ) : nullptr;
   }
   Zub::Ptr< Qos::PolicerHwStatus > policerStatus( char const* name ) {
      return hwStatus( "gold" )->cmap( Zub::Name( "c1" ) )->policerHwStatus( Zub::Name( name ) );
   }
   static std::string resourceFullLog( char const* copyName ) {
      return std::string(
                   "QOS_POLICY_POLICER_RESOURCE_FULL: Insufficient hardware resources to "
                   "program the police action for the class-map c1 in the policy-map "
                   "gold on interface " ) +
             copyName + ".";
   }
};

TEST_F( QosPolicerSmTest, ClampedParametersReachTheChipAndThePolicerData ) {
   start();
   auto policer = policedClassIs( "p1" );
   policer->cirIs( 50 );      // below the minimum
   policer->bcIs( 1000000 );  // above the maximum
   policer->yellowActionIs( Qos::actionSetDscp_ )->valueIs( 10 );
   applyIs( "gold", { intf( "Ethernet1" ) } );
   EXPECT_EQ( helper->callsMatching( "createAndAttachPolicer" ),
              Lines{ "createAndAttachPolicer classData=gold(qos,input)/c1/Ethernet1 cir=100kbps "
                     "bc=100000bytes" } );
   auto data = copy( "Ethernet1" )->classData()->policerData();
   EXPECT_EQ( data->cir(), 100u );
   EXPECT_EQ( data->bc(), 100000u );
   EXPECT_EQ( data->pir(), 0u ) << "single rate";
   EXPECT_TRUE( data->createdInHw() );
   EXPECT_FALSE( data->named() );
   EXPECT_FALSE( data->namedPolicerStatus() );

   // The policer's actions land in the policer data and the status entry.
   EXPECT_EQ( data->yellowActionData( Qos::actionSetDscp_ )->val(), 10u );
   EXPECT_TRUE( data->redActionDataHas( Qos::actionDrop_ ) );
   auto status = policerStatus( "Ethernet1" );
   EXPECT_TRUE( status->policerPrgmd() );
   EXPECT_TRUE( status->yellowActionStatus( Qos::actionSetDscp_ ) );
   EXPECT_TRUE( status->redActionStatus( Qos::actionDrop_ ) );
   classSm()->handleVerify();
   EXPECT_EQ( helper->callsMatching( "verifyPolicer" ).size(), 1u );

   // The copy goes with its interface, the chip's policer with it.
   applyIs( "gold", {} );
   qosStatus->servicePolicyStatus( spKey( "gold" ) )->intfIdsDel( intf( "Ethernet1" ) );
   EXPECT_EQ( helper->callsMatching( "destroyPolicer" ),
              Lines{ "destroyPolicer classData=gold(qos,input)/c1/Ethernet1" } );
   EXPECT_EQ( data->yellowActionDataSize() + data->redActionDataSize(), 0u );
   EXPECT_FALSE( hwStatus( "gold" )
                       ->cmap( Zub::Name( "c1" ) )
                       ->policerHwStatusHas( Zub::Name( "Ethernet1" ) ) );
}

// The copies apply the class's action machines to their own data: one leaving takes its own
// actions with it and no other copy's.
TEST_F( QosPolicerSmTest, EachCopyHoldsTheClassActionsAndLosesOnlyItsOwn ) {
   start();
   auto policer = policedClassIs( "p1" );
   classIs( "gold", "c1" )->actionIs( Qos::actionSetDscp_ )->valueIs( 46 );
   policer->yellowActionIs( Qos::actionSetDscp_ )->valueIs( 10 );
   auto sp = applyIs( "gold", { intf( "Ethernet1" ), intf( "Ethernet2" ) } );
   auto const second = copy( "Ethernet2" )->classData();
   for( char const* name : { "Ethernet1", "Ethernet2" } ) {
      auto const data = copy( name )->classData();
      EXPECT_EQ( data->actionData( Qos::actionSetDscp_ )->val(), 46u ) << name;
      EXPECT_EQ( data->policerData()->yellowActionData( Qos::actionSetDscp_ )->val(), 10u );
      EXPECT_TRUE( policerStatus( name )->redActionStatus( Qos::actionDrop_ ) ) << name;
   }

   sp->intfIdsDel( intf( "Ethernet1" ) );
   EXPECT_FALSE( copy( "Ethernet1" ) );
   EXPECT_EQ( second->actionData( Qos::actionSetDscp_ )->val(), 46u );
   EXPECT_TRUE( second->policerData()->yellowActionDataHas( Qos::actionSetDscp_ ) );
   EXPECT_TRUE( second->policerData()->redActionDataHas( Qos::actionDrop_ ) );
   EXPECT_TRUE( policerStatus( "Ethernet2" )->yellowActionStatus( Qos::actionSetDscp_ ) );
   classSm()->handleVerify();

   sp->intfIdsDel( intf( "Ethernet2" ) );
   EXPECT_EQ( second->actionDataSize(), 0u );
   EXPECT_FALSE( second->policerData() );
}

TEST_F( QosPolicerSmTest, ACopyMadeOnAFailedMapNeverReachesTheChip ) {
   start();
   policedClassIs( "p1" );
   helper->answerIs( "createIpAclSubrule", Nev::aclCreateErrorOutOfTcam );
   applyIs( "gold", { intf( "Ethernet1" ) } );
   EXPECT_TRUE( helper->pmapState( pmapKey( "gold" ) )->dirty() );
   EXPECT_EQ( takeLogs(), Lines{ "QOS_POLICY_HW_RESOURCE_FULL: Insufficient hardware resources to "
                                 "program the input policy-map gold." } );
   ASSERT_TRUE( copy( "Ethernet1" ) );
   EXPECT_FALSE( copy( "Ethernet1" )->classData()->policerData()->createdInHw() );
   EXPECT_FALSE( policerStatus( "Ethernet1" )->policerPrgmd() );
   qosStatus->servicePolicyStatusDel( spKey( "gold" ) );
   loop->runOnce();
   EXPECT_EQ( helper->callsMatching( "createAndAttachPolicer" ).size() +
                    helper->callsMatching( "destroyPolicer" ).size(),
              0u );
}

TEST_F( QosPolicerSmTest, LagMembersShareOneChipPolicerThatGoesWithTheLastMember ) {
   start();
   policedClassIs( "p1" );
   Qos::IntfPairKey const m1( Mirel::IntfId( "Ethernet1" ), Mirel::IntfId( "Port-Channel10" ) );
   Qos::IntfPairKey const m2( Mirel::IntfId( "Ethernet2" ), Mirel::IntfId( "Port-Channel10" ) );
   auto status = applyIs( "gold", { m1, m2 } );
   EXPECT_EQ( helper->callsMatching( "createAndAttachPolicer" ),
              Lines{ "createAndAttachPolicer classData=gold(qos,input)/c1/Port-Channel10 "
                     "cir=1000kbps bc=10000bytes" } );
   status->intfIdsDel( m1 );
   EXPECT_EQ( helper->callsMatching( "destroyPolicer" ).size(), 0u );
   EXPECT_EQ( chip->policersUsed(), 1u );
   status->intfIdsDel( m2 );
   EXPECT_EQ( helper->callsMatching( "destroyPolicer" ),
              Lines{ "destroyPolicer classData=gold(qos,input)/c1/Port-Channel10" } );
   EXPECT_EQ( chip->policersUsed(), 0u );
}

TEST_F( QosPolicerSmTest, ASharedNamedPolicerIsOneCopyWhoseMatchesHearEveryInterface ) {
   start();
   auto named = qosStatus->namedPolicerIs( Zub::Name( "np" ) );
   named->sharedIs( true );
   policedClassIs( "np" )->namedIs( true );
   auto status = applyIs( "gold", { intf( "Ethernet1" ) } );
   helper->callsForget();
   status->intfIdsIs( intf( "Ethernet2" ), true );
   auto np = copy( "np" );
   ASSERT_TRUE( np );
   EXPECT_EQ( np->classData()->intfIdSize(), 2u );
   EXPECT_EQ( helper->callsMatching( "updatePortForAcl" ).size(), 1u )
         << "the match is told of the second interface";
   EXPECT_EQ( helper->callsMatching( "createAndAttachPolicer" ).size(), 0u );
   EXPECT_TRUE( np->classData()->policerData()->named() );
   EXPECT_EQ( np->classData()->policerData()->namedPolicerStatus(), named );
}

TEST_F( QosPolicerSmTest, ExhaustionIsLoggedAndFailsTheMapOnlyWhenTheChipSaysSo ) {
   start();
   policedClassIs( "p1" );
   helper->answerIs( "createAndAttachPolicer", false );
   applyIs( "gold", { intf( "Ethernet1" ) } );
   loop->runOnce();
   EXPECT_EQ( takeLogs(), Lines{ resourceFullLog( "Ethernet1" ) } );
   EXPECT_FALSE( policerStatus( "Ethernet1" )->policerPrgmd() );
   EXPECT_EQ( hwStatus( "gold" )->prgmStatus(), Qos::hwPrgmStatusSuccess_ )
         << "the policy stands without its police action";

   helper->answerIs( "errorOnPolicerExhaustion", true );
   policyMap( "gold" )->versionIs( 2 );
   qosStatus->servicePolicyStatus( spKey( "gold" ) )->versionIs( 2 );
   loop->runOnce();
   EXPECT_EQ( takeLogs(),
              ( Lines{ resourceFullLog( "Ethernet1" ),
                       "QOS_POLICY_HW_RESOURCE_FULL: Insufficient hardware resources to program "
                       "the input policy-map gold." } ) );
   EXPECT_EQ( hwStatus( "gold" )->prgmStatus(), Qos::hwPrgmStatusFail_ );
   EXPECT_EQ( helper->callsMatching( "destroyPolicer" ).size(), 0u )
         << "a policer the chip refused is not destroyed";
}

}  // namespace
}  // namespace NevQosTest
