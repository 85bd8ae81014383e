// The flat set against an ordered set, under random adds and removals, with hashes that pile
// keys into few home slots, so that probe runs wrap around the array's end and removals move
// members back across it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <set>
#include <vector>

#include "zub/FlatSet.h"

namespace {

// A good spread, and two that crowd: every key on one home slot, and keys near the array's end.
struct SpreadHash {
   std::size_t operator()( std::uint32_t k ) const { return k * 2654435761u; }
};
struct OneHomeHash {
   std::size_t operator()( std::uint32_t ) const { return 0; }
};
struct LastSlotsHash {
   std::size_t operator()( std::uint32_t k ) const { return ~std::size_t( 0 ) - k % 3; }
};

template< class Hash >
void checkAgainstModel( unsigned seed, std::uint32_t keySpace ) {
   std::mt19937 random( seed );
   Zub::FlatSet< std::uint32_t, Hash > set;
   std::set< std::uint32_t > model;
   for( int step = 0; step < 4000; ++step ) {
      std::uint32_t const key = random() % keySpace;
      // More adds than removals early on, so that the set grows through several sizes.
      bool const add = random() % 100 < ( step < 2000 ? 70u : 40u );
      if( add ) {
         ASSERT_EQ( set.insert( key ), model.insert( key ).second ) << "step " << step;
      } else {
         ASSERT_EQ( set.erase( key ), model.erase( key ) == 1 ) << "step " << step;
      }
      ASSERT_EQ( set.size(), model.size() );
      if( step % 97 == 0 ) {
         std::vector< std::uint32_t > members( set.begin(), set.end() );
         std::sort( members.begin(), members.end() );
         ASSERT_EQ( members, std::vector< std::uint32_t >( model.begin(), model.end() ) );
         for( std::uint32_t k = 0; k < keySpace; ++k )
            ASSERT_EQ( set.contains( k ), model.count( k ) == 1 ) << "key " << k;
      }
   }
}

TEST( FlatSetTest, AgreesWithAnOrderedSetUnderAddsAndRemovals ) {
   for( unsigned seed = 1; seed <= 3; ++seed ) {
      checkAgainstModel< SpreadHash >( seed, 300 );
      checkAgainstModel< OneHomeHash >( seed, 40 );
      checkAgainstModel< LastSlotsHash >( seed, 60 );
   }
}

TEST( FlatSetTest, EmptyAndEmptiedSets ) {
   Zub::FlatSet< std::uint32_t, SpreadHash > set;
   EXPECT_FALSE( set.contains( 1 ) );
   EXPECT_FALSE( set.erase( 1 ) );
   EXPECT_TRUE( set.begin() == set.end() );
   for( std::uint32_t k = 0; k < 100; ++k )
      set.insert( k );
   for( std::uint32_t k = 0; k < 100; ++k )
      EXPECT_TRUE( set.erase( k ) );
   EXPECT_TRUE( set.empty() );
   EXPECT_TRUE( set.begin() == set.end() );
   EXPECT_TRUE( set.insert( 7 ) );
   EXPECT_FALSE( set.insert( 7 ) );
   EXPECT_EQ( *set.begin(), 7u );
}

}  // namespace
