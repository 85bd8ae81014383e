#include "NevQos/platform/mirel/RangeMaskGen.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <vector>

namespace {

template< class T >
std::vector< typename Mirel::RangeMaskGen< T >::Entry > blocksOf( T low, T high ) {
   std::vector< typename Mirel::RangeMaskGen< T >::Entry > entries;
   Mirel::RangeMaskGen< T >::run( low, high, entries );
   return entries;
}

using Gen16 = Mirel::RangeMaskGen< std::uint16_t >;
using Gen8 = Mirel::RangeMaskGen< std::uint8_t >;
using Gen32 = Mirel::RangeMaskGen< std::uint32_t >;

TEST( RangeMaskGenTest, KnownCovers ) {
   EXPECT_EQ( blocksOf< std::uint16_t >( 80, 90 ),
              ( std::vector< Gen16::Entry >{
                    { 80, 87, 0xfff8 }, { 88, 89, 0xfffe }, { 90, 90, 0xffff } } ) );
   EXPECT_EQ( blocksOf< std::uint16_t >( 0, 65535 ),
              ( std::vector< Gen16::Entry >{ { 0, 65535, 0 } } ) );
   EXPECT_EQ( blocksOf< std::uint16_t >( 1234, 1234 ),
              ( std::vector< Gen16::Entry >{ { 1234, 1234, 0xffff } } ) );
   EXPECT_EQ( blocksOf< std::uint16_t >( 32768, 65535 ),
              ( std::vector< Gen16::Entry >{ { 32768, 65535, 0x8000 } } ) );
   EXPECT_TRUE( blocksOf< std::uint16_t >( 91, 90 ).empty() );
}

// The top of the type ends the walk without wrapping, whatever the width.
TEST( RangeMaskGenTest, RangesReachingTheTopOfTheType ) {
   EXPECT_EQ( blocksOf< std::uint8_t >( 0, 255 ), ( std::vector< Gen8::Entry >{ { 0, 255, 0 } } ) );
   EXPECT_EQ( blocksOf< std::uint8_t >( 200, 255 ),
              ( std::vector< Gen8::Entry >{
                    { 200, 207, 0xf8 }, { 208, 223, 0xf0 }, { 224, 255, 0xe0 } } ) );
   EXPECT_EQ( blocksOf< std::uint8_t >( 255, 255 ),
              ( std::vector< Gen8::Entry >{ { 255, 255, 0xff } } ) );
   EXPECT_EQ( blocksOf< std::uint16_t >( 65535, 65535 ),
              ( std::vector< Gen16::Entry >{ { 65535, 65535, 0xffff } } ) );
   EXPECT_EQ( blocksOf< std::uint32_t >( 0, 0xffffffff ),
              ( std::vector< Gen32::Entry >{ { 0, 0xffffffff, 0 } } ) );
   EXPECT_EQ( blocksOf< std::uint32_t >( 0xfffffffd, 0xffffffff ),
              ( std::vector< Gen32::Entry >{ { 0xfffffffd, 0xfffffffd, 0xffffffff },
                                             { 0xfffffffe, 0xffffffff, 0xfffffffe } } ) );
}

TEST( RangeMaskGenTest, AppendsToWhatTheListHolds ) {
   std::vector< Gen16::Entry > entries{ { 7, 7, 0xffff } };
   Gen16::run( 4, 5, entries );
   EXPECT_EQ( entries, ( std::vector< Gen16::Entry >{ { 7, 7, 0xffff }, { 4, 5, 0xfffe } } ) );
}

// Each block, read as a TCAM reads it (value under mask), holds exactly value..high; the blocks
// together hold every value of low..high once and nothing else, in ascending order; and none
// could be merged with its neighbour into one aligned block.
template< class T >
void checkCover( T low, T high, std::vector< std::uint32_t >& stamp, std::uint32_t pass ) {
   auto const entries = blocksOf< T >( low, high );
   ASSERT_FALSE( entries.empty() );
   std::uint64_t covered = 0;
   T next = low;
   for( auto const& e : entries ) {
      ASSERT_EQ( e.value, next ) << "blocks not ascending and adjacent";
      ASSERT_LE( e.value, e.high );
      ASSERT_LE( e.high, high );
      for( std::uint64_t v = e.value; v <= e.high; ++v ) {
         ASSERT_EQ( static_cast< T >( v & e.mask ), e.value ) << v << " outside its block";
         ASSERT_NE( stamp[ v ], pass ) << v << " covered twice";
         stamp[ v ] = pass;
         ++covered;
      }
      // Fewest blocks: the block twice the size holding this one leaves the range.
      if( e.mask != 0 ) {
         auto const parentMask = static_cast< T >( e.mask << 1 );
         auto const parentLow = static_cast< T >( e.value & parentMask );
         auto const parentHigh = static_cast< T >( parentLow | static_cast< T >( ~parentMask ) );
         EXPECT_TRUE( parentLow < low || parentHigh > high ) << "block at " << +e.value;
      }
      next = static_cast< T >( e.high + 1 );
   }
   EXPECT_EQ( entries.back().high, high );
   EXPECT_EQ( covered, std::uint64_t( high ) - low + 1 );
}

TEST( RangeMaskGenTest, EveryEightBitRangeIsCoveredExactly ) {
   std::vector< std::uint32_t > stamp( 256, 0 );
   std::uint32_t pass = 0;
   for( unsigned low = 0; low < 256; ++low ) {
      for( unsigned high = low; high < 256; ++high ) {
         SCOPED_TRACE( testing::Message() << low << ".." << high );
         checkCover< std::uint8_t >( static_cast< std::uint8_t >( low ),
                                     static_cast< std::uint8_t >( high ), stamp, ++pass );
         if( HasFatalFailure() ) return;
      }
   }
}

TEST( RangeMaskGenTest, SeededSixteenBitRangesAreCoveredExactly ) {
   std::mt19937 rng( 20240611 );
   std::uniform_int_distribution< unsigned > value( 0, 65535 );
   std::uniform_int_distribution< unsigned > shortLength( 0, 300 );
   std::vector< std::uint32_t > stamp( 65536, 0 );
   for( std::uint32_t pass = 1; pass <= 3000; ++pass ) {
      // Half short ranges anywhere, half long ones, so both ends and the middle get exercised.
      unsigned low = value( rng ), high = 0;
      if( pass % 2 ) {
         high = std::min( 65535u, low + shortLength( rng ) );
      } else {
         high = value( rng );
         if( high < low ) std::swap( low, high );
      }
      SCOPED_TRACE( testing::Message() << low << ".." << high );
      checkCover< std::uint16_t >( static_cast< std::uint16_t >( low ),
                                   static_cast< std::uint16_t >( high ), stamp, pass );
      if( HasFatalFailure() ) return;
   }
}

}  // namespace
