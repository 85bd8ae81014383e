#include "NevQos/platform/mirel/IntfId.h"

#include <gtest/gtest.h>

#include <string>

#include "NevQos/platform/zub/Exception.h"

namespace {

using Mirel::IntfId;

TEST( IntfIdTest, TextRoundTripsAndKinds ) {
   struct Case {
      char const* text;
      bool ethernet, lag, vlan, vxlan, sub;
   } const cases[] = {
      { "Ethernet1", true, false, false, false, false },
      { "Ethernet3/1/4", true, false, false, false, false },
      { "Ethernet65535/255/255.16777215", true, false, false, false, true },
      { "Ethernet1.100", true, false, false, false, true },
      { "Port-Channel10", false, true, false, false, false },
      { "Port-Channel10.5", false, true, false, false, true },
      { "Vlan4094", false, false, true, false, false },
      { "Vxlan1", false, false, false, true, false },
   };
   for( auto const& c : cases ) {
      SCOPED_TRACE( c.text );
      IntfId id( c.text );
      EXPECT_EQ( id.stringValue(), c.text );
      EXPECT_FALSE( !id );
      EXPECT_EQ( id.isEthernet(), c.ethernet );
      EXPECT_EQ( id.isLag(), c.lag );
      EXPECT_EQ( id.isVlan(), c.vlan );
      EXPECT_EQ( id.isVxlan(), c.vxlan );
      EXPECT_EQ( id.isSubIntf(), c.sub );
      EXPECT_EQ( IntfId::fromValue( id.value() ), id );
   }
   IntfId none( "" );
   EXPECT_TRUE( !none );
   EXPECT_EQ( none, IntfId() );
   EXPECT_EQ( none.stringValue(), "" );
   EXPECT_FALSE( none.isEthernet() || none.isLag() || none.isVlan() || none.isVxlan() );
}

TEST( IntfIdTest, BadNamesAreParseErrors ) {
   for( char const* bad :
        { "Ethernet", "Ethernet0", "Ethernet01", "Ethernet1/", "Ethernet1/0", "Ethernet1/2/3/4",
          "Ethernet1.", "Ethernet1.0", "Ethernet65536", "Ethernet1/256", "ethernet1", "Vlan0",
          "Vlan4095", "Vlan1.5", "Vxlan1/1", "Port-Channel1/2", "Loopback0", " Ethernet1",
          "Ethernet1 " } ) {
      EXPECT_THROW( IntfId{ bad }, Zub::ParseException ) << bad;
   }
}

TEST( IntfIdTest, BuildersMatchTheTextForm ) {
   EXPECT_EQ( IntfId::ethernet( 3, 1 ), IntfId( "Ethernet3/1" ) );
   EXPECT_EQ( IntfId::portChannel( 7 ), IntfId( "Port-Channel7" ) );
   EXPECT_EQ( IntfId::vlan( 100 ), IntfId( "Vlan100" ) );
   EXPECT_EQ( IntfId::vxlan( 2 ), IntfId( "Vxlan2" ) );
   IntfId sub = IntfId::subIntf( IntfId( "Ethernet2/1" ), 42 );
   EXPECT_EQ( sub, IntfId( "Ethernet2/1.42" ) );
   EXPECT_EQ( sub.subIntfNumber(), 42u );
   EXPECT_EQ( sub.parent(), IntfId( "Ethernet2/1" ) );
   EXPECT_EQ( sub.number(), 2u );
   EXPECT_THROW( IntfId::vlan( 4095 ), Zub::RangeException );
   EXPECT_THROW( IntfId::subIntf( IntfId( "Vlan5" ), 1 ), Zub::RangeException );
   EXPECT_THROW( IntfId::subIntf( sub, 1 ), Zub::RangeException );
   EXPECT_THROW( IntfId::ethernet( 1, 0, 2 ), Zub::RangeException );
}

// A fabric slice's link to the line cards is an interface of its own kind, not a front-panel
// port.
TEST( IntfIdTest, TheFabricInterface ) {
   IntfId const fabric = Mirel::fabricIntfId();
   EXPECT_EQ( fabric, IntfId( "Fabric1" ) );
   EXPECT_EQ( fabric.stringValue(), "Fabric1" );
   EXPECT_TRUE( Mirel::isFabricInterface( fabric ) );
   EXPECT_FALSE( fabric.isEthernet() );
   EXPECT_FALSE( Mirel::isFabricInterface( IntfId( "Ethernet1" ) ) );
   EXPECT_THROW( IntfId{ "Fabric1.2" }, Zub::ParseException );
}

TEST( IntfIdTest, OrdersByKindThenNumerically ) {
   EXPECT_LT( IntfId( "Ethernet2" ), IntfId( "Ethernet10" ) );
   EXPECT_LT( IntfId( "Ethernet1" ), IntfId( "Ethernet1.5" ) );
   EXPECT_LT( IntfId( "Ethernet1/2" ), IntfId( "Ethernet1/10" ) );
   EXPECT_LT( IntfId( "Ethernet99" ), IntfId( "Port-Channel1" ) );
   EXPECT_LT( IntfId(), IntfId( "Ethernet1" ) );
}

}  // namespace
