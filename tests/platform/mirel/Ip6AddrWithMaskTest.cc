#include <gtest/gtest.h>

#include <sstream>

#include "NevQos/platform/mirel/Ip6AddrWithMask.h"
#include "NevQos/platform/zub/Exception.h"

namespace {

using Mirel::Ip6AddrWithMask;

Ip6AddrWithMask prefix( std::initializer_list< unsigned > groups, unsigned len ) {
   Ip6AddrWithMask::Bytes b{};
   unsigned i = 0;
   for( unsigned g : groups ) {
      b[ i++ ] = static_cast< std::uint8_t >( g >> 8 );
      b[ i++ ] = static_cast< std::uint8_t >( g );
   }
   return Ip6AddrWithMask( b, len );
}

TEST( Ip6AddrWithMaskTest, TextCompressesTheLongestRunOfZeroGroups ) {
   EXPECT_EQ( stringValue( Ip6AddrWithMask() ), "::/0" );
   EXPECT_EQ( stringValue( prefix( { 0x2001, 0xdb8, 0, 0, 0, 0, 0, 1 }, 128 ) ),
              "2001:db8::1/128" );
   // The longer of two runs, and the first of two equal ones.
   EXPECT_EQ( stringValue( prefix( { 1, 0, 0, 2, 0, 0, 0, 3 }, 64 ) ), "1:0:0:2::3/64" );
   EXPECT_EQ( stringValue( prefix( { 1, 0, 0, 2, 0, 0, 3, 4 }, 64 ) ), "1::2:0:0:3:4/64" );
   // A single zero group is not compressed; a run at the end is.
   EXPECT_EQ( stringValue( prefix( { 1, 0, 2, 3, 4, 5, 6, 7 }, 16 ) ), "1:0:2:3:4:5:6:7/16" );
   EXPECT_EQ( stringValue( prefix( { 0xfe80, 0, 0, 0, 0, 0, 0, 0 }, 10 ) ), "fe80::/10" );
   std::ostringstream os;
   os << prefix( { 0xabcd }, 16 );
   EXPECT_EQ( os.str(), "abcd::/16" );
}

TEST( Ip6AddrWithMaskTest, MaskAndLimits ) {
   auto m = prefix( {}, 12 ).mask();
   EXPECT_EQ( m[ 0 ], 0xff );
   EXPECT_EQ( m[ 1 ], 0xf0 );
   EXPECT_EQ( m[ 2 ], 0x00 );
   EXPECT_EQ( prefix( {}, 128 ).mask()[ 15 ], 0xff );
   EXPECT_EQ( prefix( {}, 0 ).mask()[ 0 ], 0x00 );
   EXPECT_THROW( prefix( {}, 129 ), Zub::RangeException );
   // Equal addresses with different lengths are different values.
   EXPECT_NE( prefix( { 1 }, 16 ), prefix( { 1 }, 17 ) );
   EXPECT_LT( prefix( { 1 }, 16 ), prefix( { 2 }, 0 ) );
}

}  // namespace
