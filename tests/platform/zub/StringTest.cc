#include <gtest/gtest.h>

#include "zub/Format.h"
#include "zub/String.h"

namespace {

TEST( StringTest, NamesAreInternedAndCompareAsText ) {
   Zub::Name a( "gold" ), b( std::string( "go" ) + "ld" ), c( "silver" ), unset;
   EXPECT_EQ( a, b );
   EXPECT_TRUE( a.str().sameBuffer( b.str() ) );
   EXPECT_LT( a, c );
   EXPECT_EQ( unset, Zub::Name( "" ) );
   EXPECT_EQ( unset.hash(), 0u );
   EXPECT_EQ( a.hash(), Zub::stringHash( "gold" ) );
}

TEST( StringTest, TextOperations ) {
   Zub::String s( "pmap!qos!input!grp" );
   EXPECT_EQ( s.pos( '!' ), 4 );
   EXPECT_EQ( s.lastPosOf( '!' ), 14 );
   EXPECT_EQ( s.pos( Zub::String( "input" ) ), 9 );
   EXPECT_EQ( s.pos( 'x' ), -1 );
   EXPECT_EQ( s.substr( 15 ), "grp" );
   EXPECT_EQ( s.substr( 99 ), "" );
   Zub::String t = Zub::String( "a" ) + "b";
   t += "c";
   EXPECT_EQ( t, "abc" );
   EXPECT_EQ( Zub::format( "%s-%d", "x", 7 ), "x-7" );
}

TEST( StringTest, BitReverse ) {
   EXPECT_EQ( Zub::bitReverse( 1u ), 0x80000000u );
   EXPECT_EQ( Zub::bitReverse( 0x0000000fu ), 0xf0000000u );
   EXPECT_EQ( Zub::bitReverse( 0x12345678u ), 0x1e6a2c48u );
}

}  // namespace
