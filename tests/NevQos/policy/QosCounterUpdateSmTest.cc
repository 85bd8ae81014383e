// Counter requests: a client's request time pulls the counters of every class into the hardware
// status, once per time, with the time stamp written after the last counter.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/LegacyQosAclSmFixture.h"

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

class QosCounterUpdateSmTest : public LegacyQosAclSmFixture {
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
   static Nev::AclKey v4Key() { return Nev::AclKey( Zub::Name( "v4" ), Acl::ip() ); }
   static Nev::AclKey v6Key() { return Nev::AclKey( Zub::Name( "v6" ), Acl::ipv6() ); }
};

TEST_F( QosCounterUpdateSmTest, EachRequestTimeIsServedOnceAndStampedAfterTheLastCounter ) {
   start();
   ipAclIs( "v4", {} );
   classMapIs( "c1", { { Qos::matchOptionIpAcl, "v4" } } );
   classIs( "gold", "c1" );
   applyIs( "gold", { intf( "Ethernet1" ) } );
   helper->counterDataIs( v4Key(), hits( 10, 1000 ) );
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
   helper->counterDataIs( v4Key(), hits( 20, 2000 ) );
   helper->clearCalls();
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

TEST_F( QosCounterUpdateSmTest, PolicerCopiesFillTheirOwnStatusAndLeaveTheClassAtZero ) {
   start();
   ipAclIs( "v4", {} );
   classMapIs( "c1", { { Qos::matchOptionIpAcl, "v4" } } );
   classIs( "gold", "c1" )->policerIs( policerOf( "p1" ) );
   applyIs( "gold", { intf( "Ethernet1" ), intf( "Ethernet2" ) } );
   Nev::QosClassCounterData data = hits( 10, 1000 );
   data.pktDropsIs( 2 );
   data.yellowPktHitsIs( 3 );
   helper->counterDataIs( v4Key(), data );
   clientIs( "cli" )->pmapCounterUpdateRequestTimeIs( 1.0 );
   for( char const* name : { "Ethernet1", "Ethernet2" } ) {
      auto policer = cmapStatus()->policerHwStatus( Zub::Name( name ) );
      EXPECT_EQ( policer->pktInCount(), 10u ) << name;
      EXPECT_EQ( policer->byteInCount(), 1000u ) << name;
      EXPECT_EQ( policer->pktDropCount(), 2u ) << name;
      EXPECT_EQ( policer->yellowPktInCount(), 3u ) << name;
   }
   EXPECT_EQ( cmapStatus()->outCount(), 0u );
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
   helper->counterDataIs( v4Key(), v4 );
   helper->counterDataIs( v6Key(), v6 );
   clientIs( "cli" )->pmapCounterUpdateRequestTimeIs( 1.0 );
   EXPECT_EQ( cmapStatus()->outCount(), 3u );
   EXPECT_EQ( cmapStatus()->policerHwStatus( Zub::Name( "Ethernet1" ) )->pktDropCount(), 7u );
   EXPECT_EQ( cmapStatus()->policerHwStatus( Zub::Name( "Ethernet2" ) )->pktDropCount(), 5u );
}

}  // namespace
}  // namespace NevQosTest
