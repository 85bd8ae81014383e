// The reference chip's basic QoS helper driven through the contract as the engine drives it:
// map tables from configuration and defaults, port settings, profiles shared and running out,
// ECN counters running out, unit mismatches, and calls a scripted fault fails.
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "NevQos/log/QosLogHandles.h"
#include "NevQos/platform/zub/ActivityManager.h"
#include "NevQos/platform/zub/Log.h"
#include "NevQos/sim/chip/SimQosBasicHelper.h"

namespace {

using Lines = std::vector< std::string >;
using Users = std::set< std::string >;

Qos::QueueThresholds thresholds( std::uint32_t min, std::uint32_t max ) {
   return Qos::QueueThresholds{ true, min, max, 100 };
}

class SimQosBasicHelperTest : public ::testing::Test {
 protected:
   void SetUp() override {
      loop = Zub::ActivityManager::create( Zub::ActivityManager::TimeSource::simulated, 100.0 );
      Zub::activityManagerIs( loop );
      Zub::logSinkIs( [ this ]( Zub::LogRecord const& r ) {
         logs_.push_back( r.handle->name().stdString() + ": " + r.text.stdString() );
      } );
      build( Sim::ChipConfig() );
   }
   void TearDown() override {
      EXPECT_EQ( takeLogs(), Lines{} ) << "log lines the test did not expect";
      Zub::logSinkIs( nullptr );
      Zub::activityManagerIs( nullptr );
   }
   void build( Sim::ChipConfig const& config ) {
      chip = Zub::make< Sim::SimQosBasicHelper >( config, status, hw, slice, phys );
   }
   Lines takeLogs() {
      Lines out;
      out.swap( logs_ );
      return out;
   }
   Qos::IntfStatus& intf( char const* name = "Ethernet1" ) {
      return *status->intfStatusIs( Mirel::IntfId( name ) );
   }
   Qos::TxQueueStatus& txq( unsigned id, char const* name = "Ethernet1" ) {
      return *intf( name ).txQueueStatusIs( Qos::TxQueue( id, Qos::unicastQueue_ ) );
   }
   Sim::BasicQueueSettings const& inHw( unsigned id, char const* name = "Ethernet1" ) const {
      return chip->queues().at(
            Sim::BasicQueueKey{ Mirel::IntfId( name ), Qos::TxQueue( id, Qos::unicastQueue_ ) } );
   }
   Qos::HwProgrammingStatus feature( Qos::FeatureName f ) const {
      auto const record = slice->hwProgrammingVersionAndStatus( f );
      return record ? record->hwProgrammingStatus() : Qos::hwProgrammingSucceeded_;
   }
   // Users of each profile in use, by id.
   static std::vector< Users > usersOf( Sim::ProfilePool const& pool ) {
      std::vector< Users > out;
      for( auto const& [ id, profile ] : pool.profiles() )
         out.push_back( profile.users );
      return out;
   }
   void ecnIs( unsigned id, Qos::EcnStatus const& ecn ) {
      txq( id ).ecnStatusIs( ecn );
      chip->programIntfTxQueueEcn( intf(), txq( id ) );
   }

   Zub::Ptr< Zub::ActivityManager > loop;
   Zub::Ptr< Qos::Status > status = Zub::make< Qos::Status >( Zub::Name( "qos" ) );
   Zub::Ptr< Qos::HwStatus > hw = Zub::make< Qos::HwStatus >( Zub::Name( "hw" ) );
   Zub::Ptr< Qos::SliceHwStatus > slice =
         Zub::make< Qos::SliceHwStatus >( Zub::Name( "FixedSystem" ) );
   Zub::Ptr< Interface::AllEthPhyIntfStatusDir > phys =
         Zub::make< Interface::AllEthPhyIntfStatusDir >( Zub::Name( "phy" ) );
   Zub::Ptr< Sim::SimQosBasicHelper > chip;

 private:
   Lines logs_;
};

TEST_F( SimQosBasicHelperTest, MapTablesFollowConfigurationAndFallBackToDefaults ) {
   hw->defaultCosToTcMapIs( Qos::Cos( 5 ), Qos::TrafficClass( 5 ) );
   hw->defaultDropPrecedenceIs( Qos::DropPrecedence( 1 ) );
   chip->hwInit();
   EXPECT_EQ( chip->globals().cosToTc[ 5 ], 5 ) << "the chip comes up with its default maps";

   status->cosToTcMapIs( Qos::Cos( 5 ), Qos::TrafficClass( 7 ) );
   status->dscpToDpMapIs( Qos::Dscp( 10 ), Qos::DropPrecedence( 2 ) );
   EXPECT_EQ( chip->globals().cosToTc[ 5 ], 5 ) << "nothing changes before the engine programs";
   chip->programCosToTcMap( Qos::Cos( 5 ) );
   chip->programDscpToDpMap( Qos::Dscp( 10 ) );
   EXPECT_EQ( chip->globals().cosToTc[ 5 ], 7 );
   EXPECT_EQ( chip->globals().dscpToDp[ 10 ], 2 );

   // A profile takes the global map's value in the slots it leaves out, and follows it.
   status->cosToTcProfileIs( Zub::Name( "p" ) )
         ->cosToTcMapIs( Qos::Cos( 1 ), Qos::TrafficClass( 3 ) );
   chip->addCosToTcProfile( Zub::Name( "p" ) );
   EXPECT_EQ( chip->cosToTcProfiles().at( Zub::Name( "p" ) )[ 1 ], 3 );
   EXPECT_EQ( chip->cosToTcProfiles().at( Zub::Name( "p" ) )[ 5 ], 7 );

   status->cosToTcMapDel( Qos::Cos( 5 ) );
   status->dscpToDpMapDel( Qos::Dscp( 10 ) );
   chip->programCosToTcMap( Qos::Cos( 5 ) );
   chip->programDscpToDpMap( Qos::Dscp( 10 ) );
   EXPECT_EQ( chip->globals().cosToTc[ 5 ], 5 ) << "an unconfigured slot reads the default";
   EXPECT_EQ( chip->globals().dscpToDp[ 10 ], 1 );
   EXPECT_EQ( chip->cosToTcProfiles().at( Zub::Name( "p" ) )[ 5 ], 5 );
   EXPECT_EQ( chip->cosToTcProfiles().at( Zub::Name( "p" ) )[ 1 ], 3 );
}

TEST_F( SimQosBasicHelperTest, PortSettingsBindingsAndTheirDefaults ) {
   hw->defaultCosIs( Qos::Cos( 2 ) );
   hw->defaultTrustModeIs( Qos::trustCos_ );
   Mirel::IntfId const e1( "Ethernet1" );
   intf().trustModeIs( Qos::trustDscp_ );
   intf().cosToTcProfileNameIs( Zub::Name( "p" ) );
   intf().dscpRewriteMapNameIs( Zub::Name( "m" ) );
   status->cosToTcProfileIs( Zub::Name( "p" ) );
   status->dscpRewriteMapIs( Zub::Name( "m" ) )
         ->tcToDscpMapIs( Qos::TrafficClass( 1 ), Qos::Dscp( 8 ) );
   chip->programIntfTrustModeDscp( intf() );
   chip->programIntfDefaultCos( intf() );
   chip->handleIntfToCosToTcProfile( e1, false );
   chip->programIntfToDscpRewriteMap( intf() );
   Sim::BasicPortSettings const& port = chip->ports().at( e1 );
   EXPECT_EQ( port.trustMode, Qos::trustDscp_ );
   EXPECT_EQ( port.defaultCos, 2 ) << "the port's sentinel is the chip's default";
   EXPECT_EQ( port.cosToTcProfile, Zub::Name( "p" ) );
   EXPECT_EQ( slice->intfToCosToTcProfile( e1 ), Zub::Name( "p" ) );
   EXPECT_EQ( port.dscpRewriteMap, Zub::Name( "m" ) );
   EXPECT_EQ( chip->dscpRewriteMaps().at( Zub::Name( "m" ) )[ 1 ], 8 )
         << "a map bound before it was programmed is written from configuration";

   chip->removeCosToTcProfile( Zub::Name( "p" ) );
   EXPECT_TRUE( port.cosToTcProfile.empty() );
   EXPECT_FALSE( slice->intfToCosToTcProfileHas( e1 ) );

   chip->handleIntfToCosToTcProfile( e1, true );
   EXPECT_EQ( slice->intfToCosToTcProfile( e1 ), Zub::Name( "p" ) );
   chip->programIntfDefaults( intf() );
   EXPECT_EQ( port.trustMode, Qos::trustCos_ );
   EXPECT_TRUE( port.dscpRewriteMap.empty() );
   EXPECT_TRUE( port.cosToTcProfile.empty() );
   EXPECT_FALSE( slice->intfToCosToTcProfileHas( e1 ) );
}

TEST_F( SimQosBasicHelperTest, EcnProfilesAreSharedRunOutAndComeBack ) {
   Sim::ChipConfig config;
   config.ecnProfiles = 2;
   build( config );
   ecnIs( 0, thresholds( 100, 200 ) );
   ecnIs( 1, thresholds( 100, 200 ) );
   ecnIs( 2, thresholds( 300, 400 ) );
   EXPECT_EQ(
         usersOf( chip->ecnProfiles() ),
         ( std::vector< Users >{ { "Ethernet1 UC0", "Ethernet1 UC1" }, { "Ethernet1 UC2" } } ) );

   Lines const full{
      "QOS_ECN_QUEUE_HW_FULL: Hardware resources insufficient to program tx-queue "
      "ECN on queue UC3 for port Ethernet1"
   };
   ecnIs( 3, thresholds( 500, 600 ) );
   EXPECT_EQ( takeLogs(), full );
   EXPECT_FALSE( inHw( 3 ).ecn.enabled ) << "the queue keeps what it had";

   // A queue alone on its profile rewrites it; one sharing has to find another.
   ecnIs( 2, thresholds( 700, 800 ) );
   EXPECT_EQ( chip->ecnProfiles().used(), 2u );
   ecnIs( 1, thresholds( 900, 1000 ) );
   EXPECT_EQ( takeLogs().size(), 1u );
   EXPECT_EQ( inHw( 1 ).ecn, thresholds( 100, 200 ) );

   // Non-ECT and delay marking share the queue's profile; a failing delay is its own feature.
   txq( 0 ).nonEctStatusIs( Qos::NonEctStatus{ true, 5000 } );
   chip->programIntfTxQueueNonEct( intf(), txq( 0 ) );
   EXPECT_EQ( takeLogs().size(), 1u ) << "the second queue of the profile needs a new one";
   chip->programIntfTxQueueEcnDelayThreshold( intf(), txq( 2 ).key(), true,
                                              Qos::EcnDelayThreshold{ 50 } );
   EXPECT_TRUE( inHw( 2 ).delayEcnEnabled ) << "alone on its profile";
   EXPECT_EQ( feature( Qos::featureEcnDelayThreshold_ ), Qos::hwProgrammingSucceeded_ );
   chip->programIntfTxQueueEcnDelayThreshold( intf(), txq( 1 ).key(), true,
                                              Qos::EcnDelayThreshold{ 60 } );
   EXPECT_EQ( takeLogs().size(), 1u );
   EXPECT_EQ( feature( Qos::featureEcnDelayThreshold_ ), Qos::hwProgrammingFailed_ );

   chip->programIntfTxQueueDefaults( intf(), txq( 2 ) );
   EXPECT_FALSE( chip->queues().contains(
         Sim::BasicQueueKey{ Mirel::IntfId( "Ethernet1" ), txq( 2 ).key() } ) );
   EXPECT_EQ( chip->ecnProfiles().used(), 1u );
   chip->programIntfTxQueueEcn( intf(), txq( 3 ) );
   EXPECT_EQ( inHw( 3 ).ecn, thresholds( 500, 600 ) ) << "a released profile serves again";
   EXPECT_EQ( chip->ecnProfiles().profileOf( "Ethernet1 UC3" ), 1u );
}

TEST_F( SimQosBasicHelperTest, WredAndDropThresholdProfilesRunOutAndComeBack ) {
   Sim::ChipConfig config;
   config.wredProfiles = 1;
   config.dropThresholdProfiles = 1;
   build( config );
   for( unsigned id : { 0u, 1u } ) {
      txq( id ).wredStatusIs( thresholds( 1000 * ( id + 1 ), 9000 ) );
      txq( id ).dropThresholdsIs( Qos::DropPrecedence( 1 ), 2000 * ( id + 1 ) );
      chip->programIntfTxQueueWred( intf(), txq( id ) );
      chip->programIntfTxQueueDropThresholdForDp( intf(), txq( id ), Qos::DropPrecedence( 1 ) );
   }
   EXPECT_EQ( takeLogs(), ( Lines{ "QOS_WRED_QUEUE_HW_FULL: Hardware resources insufficient to "
                                   "program tx-queue WRED on queue UC1 for port Ethernet1",
                                   "QOS_DP_THRESHOLDS_HW_FULL: Hardware resources insufficient "
                                   "to program tx-queue DropThresholds on tc UC1 for port "
                                   "Ethernet1" } ) );
   EXPECT_EQ( feature( Qos::featureWred_ ), Qos::hwProgrammingFailed_ );
   EXPECT_EQ( feature( Qos::featureDropThresholds_ ), Qos::hwProgrammingFailed_ );
   EXPECT_EQ( feature( Qos::featureEcnStatus_ ), Qos::hwProgrammingSucceeded_ );
   EXPECT_TRUE( inHw( 1 ).dropThresholds.empty() );
   EXPECT_EQ( inHw( 0 ).dropThresholds,
              ( std::map< std::uint32_t, std::uint32_t >{ { 1, 2000 } } ) );

   // Equal settings share even a full pool.
   txq( 1 ).dropThresholdsIs( Qos::DropPrecedence( 1 ), 2000 );
   chip->programIntfTxQueueDropThresholdForDp( intf(), txq( 1 ), Qos::DropPrecedence( 1 ) );
   EXPECT_EQ( chip->dropThresholdProfiles().profiles().at( 0 ).users.size(), 2u );

   chip->programIntfTxQueueDropThresholdDefaults( intf(), txq( 0 ) );
   chip->programIntfTxQueueDropThresholdDefaults( intf(), txq( 1 ) );
   EXPECT_EQ( chip->dropThresholdProfiles().used(), 0u );
   txq( 0 ).wredStatusIs( Qos::WredStatus() );
   chip->programIntfTxQueueWred( intf(), txq( 0 ) );
   chip->programIntfTxQueueWred( intf(), txq( 1 ) );
   EXPECT_EQ( inHw( 1 ).wred, thresholds( 2000, 9000 ) ) << "WRED off frees the profile";
   EXPECT_EQ( usersOf( chip->wredProfiles() ), ( std::vector< Users >{ { "Ethernet1 UC1" } } ) );
}

TEST_F( SimQosBasicHelperTest, EcnCountersRunOutAndComeBack ) {
   Sim::ChipConfig config;
   config.ecnQueueCounters = 1;
   build( config );
   Mirel::IntfId const e1( "Ethernet1" );
   EXPECT_TRUE( chip->programIntfTxQueueEcnCount( e1, Qos::TxQueueId( 1 ), true ) );
   EXPECT_TRUE( chip->programIntfTxQueueEcnCount( e1, Qos::TxQueueId( 1 ), true ) )
         << "a queue counting already keeps its counter";
   EXPECT_FALSE( chip->programIntfTxQueueEcnCount( e1, Qos::TxQueueId( 2 ), true ) );
   EXPECT_EQ( takeLogs(), ( Lines{ "QOS_ECN_QUEUE_COUNTER_HW_FULL: Hardware resources insufficient "
                                   "for ECN queue counters for Ethernet1 queue 2" } ) );
   EXPECT_TRUE( chip->programIntfTxQueueEcnCount( e1, Qos::TxQueueId( 1 ), false ) );
   EXPECT_TRUE( chip->programIntfTxQueueEcnCount( e1, Qos::TxQueueId( 2 ), true ) );
   EXPECT_EQ( chip->ecnCounters(),
              ( std::set< std::pair< Mirel::IntfId, std::uint32_t > >{ { e1, 2 } } ) );
}

TEST_F( SimQosBasicHelperTest, AGuaranteeInAnotherUnitThanTheShapeRateIsHeldBack ) {
   txq( 1 ).shapeRateIs( Qos::ShapeRate{ 10000, Qos::shapeRateUnitKbps_ } );
   txq( 1 ).guaranteedBwIs( Qos::GuaranteedBw{ 500, Qos::guaranteedBwUnitPps_ } );
   chip->programIntfTxQueueShapeRate( intf(), txq( 1 ) );
   chip->programIntfTxQueueGuaranteedBw( intf(), txq( 1 ) );
   EXPECT_EQ( takeLogs(),
              ( Lines{ "QOS_SCH_SHP_UNIT_MISMATCH: Shape rate is in kbps and Bandwidth guaranteed "
                       "is in pps causing unit mismatch for queue UC1 on port Ethernet1. Not "
                       "programming bandwidth guaranteed " } ) );
   EXPECT_EQ( inHw( 1 ).guaranteedRate, 0u );
   EXPECT_TRUE( inHw( 1 ).guaranteedBwUnitMismatch );

   // The units agree again: the guarantee goes in with the shape rate.
   txq( 1 ).shapeRateIs( Qos::ShapeRate{ 1000, Qos::shapeRateUnitPps_ } );
   chip->programIntfTxQueueShapeRate( intf(), txq( 1 ) );
   EXPECT_EQ( inHw( 1 ).guaranteedRate, 500u );
   EXPECT_FALSE( inHw( 1 ).guaranteedBwUnitMismatch );

   // A percent counts as kbps.
   txq( 1 ).guaranteedBwIs( Qos::GuaranteedBw{ 10, Qos::guaranteedBwUnitPercent_ } );
   chip->programIntfTxQueueGuaranteedBw( intf(), txq( 1 ) );
   EXPECT_EQ( takeLogs().size(), 1u );
   txq( 1 ).shapeRateIs( Qos::ShapeRate{ 20000, Qos::shapeRateUnitKbps_ } );
   chip->programIntfTxQueueShapeRate( intf(), txq( 1 ) );
   EXPECT_EQ( inHw( 1 ).guaranteedBw.unit, Qos::guaranteedBwUnitPercent_ );
}

// ---- Calls a scripted operationError fails

Sim::FaultConfig operationFault( std::string op, std::uint32_t nth ) {
   Sim::FaultConfig fault;
   fault.kind = Sim::FaultConfig::Kind::operationError;
   fault.op = std::move( op );
   fault.nth = nth;
   return fault;
}

class SimQosBasicFaultTest : public SimQosBasicHelperTest {
 protected:
   // A chip whose faults are these, on a fresh slice status.
   void buildWith( std::vector< Sim::FaultConfig > faults ) {
      slice = Zub::make< Qos::SliceHwStatus >( Zub::Name( "FixedSystem" ) );
      Sim::ChipConfig config;
      config.faults = std::move( faults );
      build( config );
      chip->hwInit();
   }
   std::vector< unsigned > failedFeatures() const {
      std::vector< unsigned > out;
      for( auto it = slice->hwProgrammingVersionAndStatus().iter(); it; ++it ) {
         if( it.value()->hwProgrammingStatus() == Qos::hwProgrammingFailed_ ) {
            out.push_back( unsigned( it.key() ) );
         }
      }
      return out;
   }
   std::string errMessage( Qos::FeatureName f ) const {
      return slice->hwProgrammingVersionAndStatus( f )->errMessage().stdString();
   }
   Sim::BasicQueueSettings const* queueIn( unsigned id ) const {
      auto const q = chip->queues().find( Sim::BasicQueueKey{
            Mirel::IntfId( "Ethernet1" ), Qos::TxQueue( id, Qos::unicastQueue_ ) } );
      return q == chip->queues().end() ? nullptr : &q->second;
   }
};

TEST_F( SimQosBasicFaultTest, AFailedEcnCounterCallAnswersFalseAndLeavesTheRecordToTheEngine ) {
   buildWith( { operationFault( "programIntfTxQueueEcnCount", 2 ) } );
   Mirel::IntfId const e1( "Ethernet1" );
   EXPECT_TRUE( chip->programIntfTxQueueEcnCount( e1, Qos::TxQueueId( 1 ), true ) );
   EXPECT_FALSE( chip->programIntfTxQueueEcnCount( e1, Qos::TxQueueId( 1 ), false ) )
         << "the second call fails, whatever it asks";
   EXPECT_EQ( takeLogs(), ( Lines{ "QOS_ECN_QUEUE_COUNTER_HW_FULL: Hardware resources insufficient "
                                   "for ECN queue counters for Ethernet1 queue 1" } ) );
   EXPECT_TRUE( chip->ecnCounters().contains( { e1, 1 } ) ) << "the counter stays on";
   EXPECT_EQ( failedFeatures(), std::vector< unsigned >{} );
}

// The engine resets a queue with two programIntfTxQueueDefaults calls, under the ECN record and
// then under the WRED record; `nth` picks the half that fails.
TEST_F( SimQosBasicFaultTest, AQueueResetFailsUnderTheRecordOfItsHalf ) {
   struct Case {
      std::uint32_t nth;
      std::vector< unsigned > failed;
      Lines logs;
      bool queueKept;
   };
   std::string const ecn =
         "QOS_ECN_QUEUE_HW_FULL: Hardware resources insufficient to program "
         "tx-queue ECN on queue UC1 for port Ethernet1";
   std::string const wred =
         "QOS_WRED_QUEUE_HW_FULL: Hardware resources insufficient to program "
         "tx-queue WRED on queue UC1 for port Ethernet1";
   for( Case const& c : { Case{ 0, { 3, 5 }, { ecn, wred }, true },
                          Case{ 1, { 3 }, { ecn }, false }, Case{ 2, { 5 }, { wred }, false } } ) {
      SCOPED_TRACE( c.nth );
      buildWith( { operationFault( "programIntfTxQueueDefaults", c.nth ) } );
      txq( 1 ).wredStatusIs( thresholds( 1000, 9000 ) );
      chip->programIntfTxQueueWred( intf(), txq( 1 ) );
      chip->programIntfTxQueueDefaults( intf(), txq( 1 ) );
      chip->programIntfTxQueueDefaults( intf(), txq( 1 ) );
      EXPECT_EQ( failedFeatures(), c.failed );
      EXPECT_EQ( takeLogs(), c.logs );
      EXPECT_EQ( queueIn( 1 ) != nullptr, c.queueKept );
      EXPECT_EQ( chip->wredProfiles().used(), c.queueKept ? 1u : 0u );
   }
}

// Every operation the loader lets a fault name is one the chip fails: a name it checks under
// another spelling, or forgets to check, would be a fault that silently does nothing.
TEST_F( SimQosBasicFaultTest, EveryOperationAFaultCanNameFails ) {
   Mirel::IntfId const e1( "Ethernet1" );
   Zub::Name const name( "n" );
   auto const q = [ this ] { return std::ref( txq( 1 ) ); };
   std::map< std::string, std::function< void() > > const calls{
      { "programCosToTcMap", [ & ] { chip->programCosToTcMap( Qos::Cos( 1 ) ); } },
      { "programDscpToTcMap", [ & ] { chip->programDscpToTcMap( Qos::Dscp( 1 ) ); } },
      { "programDscpToDpMap", [ & ] { chip->programDscpToDpMap( Qos::Dscp( 1 ) ); } },
      { "programExpToTcMap", [ & ] { chip->programExpToTcMap( Qos::Exp( 1 ) ); } },
      { "programTcToCosMap", [ & ] { chip->programTcToCosMap( Qos::TrafficClass( 1 ) ); } },
      { "programTcToDscpMap", [ & ] { chip->programTcToDscpMap( Qos::TrafficClass( 1 ) ); } },
      { "programTcToExpMap", [ & ] { chip->programTcToExpMap( Qos::TrafficClass( 1 ) ); } },
      { "programCosRewriteEnabled", [ & ] { chip->programCosRewriteEnabled(); } },
      { "programDscpRewriteEnabled", [ & ] { chip->programDscpRewriteEnabled(); } },
      { "programTcToUcTxQueueMap",
        [ & ] { chip->programTcToUcTxQueueMap( Qos::TrafficClass( 1 ) ); } },
      { "programTcToMcTxQueueMap",
        [ & ] { chip->programTcToMcTxQueueMap( Qos::TrafficClass( 1 ) ); } },
      { "programGlobalEcn", [ & ] { chip->programGlobalEcn(); } },
      { "programIntfTrustModeCos", [ & ] { chip->programIntfTrustModeCos( intf() ); } },
      { "programIntfTrustModeDscp", [ & ] { chip->programIntfTrustModeDscp( intf() ); } },
      { "programIntfTrustModeUntrusted", [ & ] { chip->programIntfTrustModeUntrusted( intf() ); } },
      { "programIntfDefaultCos", [ & ] { chip->programIntfDefaultCos( intf() ); } },
      { "programIntfDefaultDscp", [ & ] { chip->programIntfDefaultDscp( intf() ); } },
      { "programIntfShapeRate", [ & ] { chip->programIntfShapeRate( intf() ); } },
      { "programIntfDefaults", [ & ] { chip->programIntfDefaults( intf() ); } },
      { "programIntfTxQueuePriority", [ & ] { chip->programIntfTxQueuePriority( intf(), q() ); } },
      { "programIntfTxQueueShapeRate",
        [ & ] { chip->programIntfTxQueueShapeRate( intf(), q() ); } },
      { "programIntfTxQueueGuaranteedBw",
        [ & ] { chip->programIntfTxQueueGuaranteedBw( intf(), q() ); } },
      { "programIntfTxQueueEcn", [ & ] { chip->programIntfTxQueueEcn( intf(), q() ); } },
      { "programIntfTxQueueNonEct", [ & ] { chip->programIntfTxQueueNonEct( intf(), q() ); } },
      { "programIntfTxQueueEcnDelayThreshold",
        [ & ] {
           chip->programIntfTxQueueEcnDelayThreshold( intf(), txq( 1 ).key(), true,
                                                      Qos::EcnDelayThreshold() );
        } },
      { "programIntfTxQueueEcnCount",
        [ & ] { chip->programIntfTxQueueEcnCount( e1, Qos::TxQueueId( 1 ), true ); } },
      { "programIntfTxQueueWred", [ & ] { chip->programIntfTxQueueWred( intf(), q() ); } },
      { "programIntfTxQueueDropThresholdForDp",
        [ & ] {
           chip->programIntfTxQueueDropThresholdForDp( intf(), q(), Qos::DropPrecedence( 1 ) );
        } },
      { "programIntfTxQueueDropThresholdDefaults",
        [ & ] { chip->programIntfTxQueueDropThresholdDefaults( intf(), q() ); } },
      { "programIntfTxQueueDefaults", [ & ] { chip->programIntfTxQueueDefaults( intf(), q() ); } },
      { "programDscpMap", [ & ] { chip->programDscpMap( name ); } },
      { "deleteDscpMap", [ & ] { chip->deleteDscpMap( name ); } },
      { "programIntfToDscpRewriteMap", [ & ] { chip->programIntfToDscpRewriteMap( intf() ); } },
      { "updateTcToDscpMapping",
        [ & ] { chip->updateTcToDscpMapping( name, Qos::TrafficClass( 1 ) ); } },
      { "addCosToTcProfile", [ & ] { chip->addCosToTcProfile( name ); } },
      { "removeCosToTcProfile", [ & ] { chip->removeCosToTcProfile( name ); } },
      { "handleIntfToCosToTcProfile", [ & ] { chip->handleIntfToCosToTcProfile( e1, false ); } },
      { "updateCosToTcProfileMapping",
        [ & ] { chip->updateCosToTcProfileMapping( name, Qos::Cos( 1 ) ); } },
   };
   EXPECT_EQ( calls.size(), Sim::basicFaultOperations.size() );
   for( std::string_view const op : Sim::basicFaultOperations ) {
      SCOPED_TRACE( op );
      auto const call = calls.find( std::string( op ) );
      ASSERT_NE( call, calls.end() ) << "no call for this operation";
      buildWith( { operationFault( std::string( op ), 0 ) } );
      call->second();
      Lines const logs = takeLogs();
      ASSERT_EQ( logs.size(), 1u );
      // The record the failure lowers, if any, tells what the log tells.
      std::vector< unsigned > const failed = failedFeatures();
      ASSERT_LE( failed.size(), 1u );
      if( !failed.empty() ) {
         EXPECT_EQ( logs[ 0 ].substr( logs[ 0 ].find( ": " ) + 2 ),
                    errMessage( Qos::FeatureName( failed[ 0 ] ) ) );
      }
   }
}

}  // namespace
