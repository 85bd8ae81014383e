// Counter requests: a client's request time pulls the counters of every class into the hardware
// status, once per time, with the time stamp written after the last counter.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/QosAclSmFixture.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;

// Notes the class's counter at the moment the served time moves.
class TimeStampWatch : public Qos::AclSliceHwStatus::Notifiee {
 public:
   explicit TimeStampWatch( Zub::Ptr< Qos::ClassMapHwStatus > cmap ) : cmap_( std::move( cmap ) ) {}
   void onPmapCounterUpdateTime() override { seen.push_back( cmap_->outCount() ); }
   std::vector< std::uint64_t > seen;

 private:
   Zub::Ptr< Qos::ClassMapHwStatus > cmap_;
};

class QosCounterUpdateSmTest : public QosAclSmFixture {
 protected:
   // A client's counter configuration in the directory the engine watches.
   Zub::Ptr< Qos::CounterConfig > clientIs( char const* name ) {
      auto config = Zub::make< Qos::CounterConfig >( Zub::Name( name ) );
      counterConfigDir->entityPtrIs( Zub::Name( name ), config );
      return config;
   }
   static Nev::QosClassCounterData hits( std::uint64_t pkts, std::uint64_t bytes ) {
      Nev::QosClassCounterData d;
      d.pktHitsIs( pkts );
      d.byteHitsIs( bytes );
      return d;
   }
   Zub::Ptr< Qos::ClassMapHwStatus > cmapStatus() {
      return hwStatus( "gold" )->cmap( Zub::Name( "c1" ) );
   }
   // Packets of class c1 of gold arriving on `intfName`: the chip's counters advance.
   void trafficIs( char const* intfName, Nev::QosClassCounterData const& data ) {
      chip->trafficIs(
            Sim::ChipTraffic{ spKey( "gold" ), Zub::Name( "c1" ), intf( intfName ), data } );
   }
};

TEST_F( QosCounterUpdateSmTest, EachRequestTimeIsServedOnceAndStampedAfterTheLastCounter ) {
   start();
   ipAclIs( "v4", {} );
   classMapIs( "c1", { { Qos::matchOptionIpAcl, "v4" } } );
   classIs( "gold", "c1" );
   applyIs( "gold", { intf( "Ethernet1" ) } );
   trafficIs( "Ethernet1", hits( 10, 1000 ) );
   auto client = clientIs( "cli" );
   ASSERT_TRUE( sm->counterUpdateSmHas( Zub::Name( "cli" ) ) );
   auto watch = Zub::make< TimeStampWatch >( cmapStatus() );
   watch->notifierIsWithoutCatchUp( qosAclSliceHwStatus );
   cmapStatus()->outCountIs( 99 );  // a stale number, cleared first

   client->pmapCounterUpdateRequestTimeIs( 5.0 );
   EXPECT_EQ( cmapStatus()->outCount(), 10u );
   EXPECT_EQ( cmapStatus()->outBytes(), 1000u );
   EXPECT_EQ( qosAclSliceHwStatus->pmapCounterUpdateTime(), 5.0 );
   EXPECT_EQ( watch->seen, std::vector< std::uint64_t >{ 10u } ) << "stamped after the counters";

   // A time not later than the one served does nothing.
   trafficIs( "Ethernet1", hits( 10, 1000 ) );  // 20 packets in all
   helper->callsForget();
   qosAclSliceHwStatus->pmapCounterUpdateTimeIs( 7.0 );
   client->pmapCounterUpdateRequestTimeIs( 7.0 );
   client->pmapCounterUpdateRequestTimeIs( 6.0 );
   EXPECT_EQ( helper->callsMatching( "counterUpdateRequest" ).size(), 0u );
   EXPECT_EQ( cmapStatus()->outCount(), 10u );
   client->pmapCounterUpdateRequestTimeIs( 8.0 );
   EXPECT_EQ( cmapStatus()->outCount(), 20u );

   // The client leaving takes its machine along.
   counterConfigDir->entityPtrDel( Zub::Name( "cli" ) );
   EXPECT_FALSE( sm->counterUpdateSmHas( Zub::Name( "cli" ) ) );
}

TEST_F( QosCounterUpdateSmTest, SharedPolicerDropsOfOneInterfaceAddUpAcrossMatches ) {
   start();
   ipAclIs( "v4", {} );
   ip6AclIs( "v6", {} );
   classMapIs( "c1", { { Qos::matchOptionIpAcl, "v4" }, { Qos::matchOptionIpv6Acl, "v6" } } );
   classIs( "gold", "c1" );
   applyIs( "gold", { intf( "Ethernet1" ) } );
   Nev::QosClassCounterData v4 = hits( 1, 100 );
   v4.dropCountIntfSharedPolicerIs( Mirel::IntfId( "Ethernet1" ), 3 );
   Nev::QosClassCounterData v6 = hits( 2, 200 );
   v6.dropCountIntfSharedPolicerIs( Mirel::IntfId( "Ethernet1" ), 4 );
   v6.dropCountIntfSharedPolicerIs( Mirel::IntfId( "Ethernet2" ), 5 );
   // The chip counts a class once; per-list figures, as a chip with a counter per list gives
   // them, are scripted in the order the engine asks: the IPv4 list first.
   helper->answerEnq( "counterUpdateRequest", v4 );
   helper->answerEnq( "counterUpdateRequest", v6 );
   clientIs( "cli" )->pmapCounterUpdateRequestTimeIs( 1.0 );
   // The scripted figures went to the lists they were meant for.
   ASSERT_EQ(
         helper->callsMatching( "counterUpdateRequest" ),
         ( Lines{ "counterUpdateRequest classData=gold(qos,input)/c1/Default aclKey=v4(ip)",
                  "counterUpdateRequest classData=gold(qos,input)/c1/Default aclKey=v6(ipv6)" } ) );
   EXPECT_EQ( cmapStatus()->outCount(), 3u );
   EXPECT_EQ( cmapStatus()->policerHwStatus( Zub::Name( "Ethernet1" ) )->pktDropCount(), 7u );
   EXPECT_EQ( cmapStatus()->policerHwStatus( Zub::Name( "Ethernet2" ) )->pktDropCount(), 5u );
}

}  // namespace
}  // namespace NevQosTest
