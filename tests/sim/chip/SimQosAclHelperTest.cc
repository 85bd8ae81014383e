// The reference chip under the engine: entries installed and freed, a range checker shared, and
// counters from traffic. (Checkers, TCAM and policers running out, and the asynchronous mode,
// are the examples' and the stories'.)
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "NevQos/sim/chip/SimQosAclHelper.h"
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

}  // namespace
}  // namespace NevQosTest
