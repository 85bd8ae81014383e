// The reference chip under the engine: entries installed and freed, range checkers shared and
// running out, TCAM and policers running out, the asynchronous mode, and counters from traffic.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "sim/chip/SimQosAclHelper.h"
#include "support/QosAclSmFixture.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;

Acl::IpRuleConfig tcpTo( std::uint16_t low, std::uint16_t high ) {
   Acl::IpRuleConfig r;
   r.filter.proto = 6;
   r.filter.dstPort = Acl::PortCondition::rangeOf( low, high );
   return r;
}

class SimQosAclHelperTest : public QosAclSmFixture {
 protected:
   void startWith( Sim::ChipConfig const& config ) {
      chipIs( config );
      start();
   }
   // "gold": class c1 matching `rules`, applied to `intfs`.
   void goldIs( std::vector< Acl::IpRuleConfig > const& rules,
                std::vector< char const* > intfs = { "Ethernet1" } ) {
      ipAclIs( "v4", rules );
      classMapIs( "c1", { { Qos::matchOptionIpAcl, "v4" } } );
      classIs( "gold", "c1" );
      std::vector< Qos::IntfPairKey > pairs;
      for( char const* i : intfs )
         pairs.push_back( intf( i ) );
      applyIs( "gold", pairs );
      loop->runOnce();
   }
   std::uint32_t used( char const* slice ) const { return chip->tcam().slices().at( slice ).used; }
   // The destination-port fields of the installed IPv4 entries.
   Lines dstPorts() const {
      Lines out;
      for( auto const& [ id, acl ] : chip->tcam().acls() ) {
         for( auto const& e : acl.entries ) {
            for( auto const& [ name, value ] : e.fields )
               if( name == "dstPort" ) out.push_back( value );
         }
      }
      return out;
   }
};

TEST_F( SimQosAclHelperTest, RulesTakeEntriesAndCheckersAndGiveThemBack ) {
   Sim::ChipConfig config;
   config.rangeCheckers = 1;
   startWith( config );
   goldIs( { tcpTo( 1000, 2000 ), tcpTo( 1000, 2000 ), tcpTo( 80, 80 ) } );
   EXPECT_EQ( hwStatus( "gold" )->prgmStatus(), Qos::hwPrgmStatusSuccess_ );
   EXPECT_EQ( dstPorts(), ( Lines{ "range 1000-2000", "range 1000-2000", "80/0xffff" } ) );
   EXPECT_EQ( chip->tcam().rangeCheckersUsed(), 1u ) << "one checker serves the same range twice";
   EXPECT_EQ( used( "ipv4" ), 4u ) << "and one entry for the non-first fragments";

   qosStatus->servicePolicyStatusDel( spKey( "gold" ) );
   loop->runOnce();
   EXPECT_EQ( used( "ipv4" ), 0u );
   EXPECT_EQ( chip->tcam().rangeCheckersUsed(), 0u );
   EXPECT_TRUE( chip->tcam().acls().empty() );
}

TEST_F( SimQosAclHelperTest, WithoutCheckersTheCompilerExpandsThePorts ) {
   Sim::ChipConfig config;
   config.rangeCheckers = 0;
   startWith( config );
   goldIs( { tcpTo( 1000, 1003 ), tcpTo( 5, 6 ) } );
   EXPECT_EQ( hwStatus( "gold" )->prgmStatus(), Qos::hwPrgmStatusSuccess_ );
   EXPECT_EQ( dstPorts(), ( Lines{ "1000/0xfffc", "5/0xffff", "6/0xffff" } ) );
   EXPECT_EQ( chip->tcam().rangeCheckersUsed(), 0u );
}

TEST_F( SimQosAclHelperTest, AFullSliceFailsTheMapAndItsRemovalFreesWhatItTook ) {
   Sim::ChipConfig config;
   config.tcamSliceEntries = 2;
   startWith( config );
   goldIs( { tcpTo( 80, 80 ), tcpTo( 81, 81 ), tcpTo( 82, 82 ) } );
   EXPECT_EQ( hwStatus( "gold" )->prgmStatus(), Qos::hwPrgmStatusFail_ );
   EXPECT_EQ( takeLogs(), Lines{ "QOS_POLICY_HW_RESOURCE_FULL: Insufficient hardware resources to "
                                 "program the input policy-map gold." } );
   qosStatus->servicePolicyStatusDel( spKey( "gold" ) );
   loop->runOnce();
   EXPECT_EQ( used( "ipv4" ), 0u );
}

TEST_F( SimQosAclHelperTest, PolicersRunOutAtThePoolSize ) {
   Sim::ChipConfig config;
   config.policers = 1;
   startWith( config );
   ipAclIs( "v4", { tcpTo( 80, 80 ) } );
   classMapIs( "c1", { { Qos::matchOptionIpAcl, "v4" } } );
   classIs( "gold", "c1" )->policerIs( policerOf( "p1" ) );
   applyIs( "gold", { intf( "Ethernet1" ), intf( "Ethernet2" ) } );
   loop->runOnce();
   EXPECT_EQ( chip->policersUsed(), 1u );
   EXPECT_EQ( takeLogs(), Lines{ "QOS_POLICY_POLICER_RESOURCE_FULL: Insufficient hardware "
                                 "resources to program the police action for the class-map c1 "
                                 "in the policy-map gold on interface Ethernet2." } );
   qosStatus->servicePolicyStatusDel( spKey( "gold" ) );
   loop->runOnce();
   EXPECT_EQ( chip->policersUsed(), 0u );
}

TEST_F( SimQosAclHelperTest, TrafficShowsInTheCountersOnce ) {
   startWith( Sim::ChipConfig() );
   ip6AclIs( "v6", {} );
   ipAclIs( "v4", { tcpTo( 80, 80 ) } );
   classMapIs( "c1", { { Qos::matchOptionIpAcl, "v4" }, { Qos::matchOptionIpv6Acl, "v6" } } );
   classIs( "gold", "c1" );
   applyIs( "gold", { intf( "Ethernet1" ) } );
   loop->runOnce();
   Nev::QosClassCounterData hits;
   hits.pktHitsIs( 5 );
   hits.byteHitsIs( 500 );
   Sim::ChipTraffic const traffic{ spKey( "gold" ), Zub::Name( "c1" ), intf( "Ethernet1" ), hits };
   chip->trafficIs( traffic );
   chip->trafficIs( traffic );
   chip->trafficIs(
         Sim::ChipTraffic{ spKey( "gold" ), Zub::Name( "c1" ), intf( "Ethernet9" ), hits } );
   sm->servicePolicySm( spKey( "gold" ) )->counterUpdateRequest();
   auto const cmap = hwStatus( "gold" )->cmap( Zub::Name( "c1" ) );
   EXPECT_EQ( cmap->outCount(), 10u )
         << "counted on one of the class's two lists, not for another interface";
   EXPECT_EQ( cmap->outBytes(), 1000u );
}

TEST_F( SimQosAclHelperTest, AnAsynchronousChipAnswersLaterAndCarriesItsFailure ) {
   Sim::ChipConfig config;
   config.tcamMode = Sim::TcamMode::asynchronous;
   config.asyncDelay = 0.25;
   config.tcamSliceEntries = 1;
   startWith( config );
   goldIs( { tcpTo( 80, 80 ), tcpTo( 81, 81 ) } );
   EXPECT_EQ( chip->pendingOperations(), 1u );
   loop->runUntil( loop->now() + 5.0 );
   EXPECT_EQ( chip->pendingOperations(), 0u );
   EXPECT_EQ( hwStatus( "gold" )->prgmStatus(), Qos::hwPrgmStatusFail_ );
   EXPECT_EQ( hwStatus( "gold" )->prgmStatusErrMessage(), "Insufficient hardware resources" );
   EXPECT_EQ( takeLogs(), Lines{ "QOS_POLICY_HW_RESOURCE_FULL: Insufficient hardware resources to "
                                 "program the input policy-map gold." } );
}

}  // namespace
}  // namespace NevQosTest
