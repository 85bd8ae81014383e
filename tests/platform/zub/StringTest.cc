#include <gtest/gtest.h>

#include "NevQos/platform/zub/Format.h"
#include "NevQos/platform/zub/String.h"

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

TEST( StringTest, BitReverse ) {
   EXPECT_EQ( Zub::bitReverse( 1u ), 0x80000000u );
   EXPECT_EQ( Zub::bitReverse( 0x0000000fu ), 0xf0000000u );
   EXPECT_EQ( Zub::bitReverse( 0x12345678u ), 0x1e6a2c48u );
}

}  // namespace
