// The flat map against an ordered map, under random adds, updates and removals, with hashes that
// pile keys into few home slots, so that probe runs wrap around the array's end and removals
// move members back across it.
#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <random>

#include "NevQos/platform/zub/FlatMap.h"

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
   Zub::FlatMap< std::uint32_t, std::uint64_t, Hash > map;
   std::map< std::uint32_t, std::uint64_t > model;
   for( int step = 0; step < 4000; ++step ) {
      std::uint32_t const key = random() % keySpace;
      // More adds than removals early on, so that the map grows through several sizes.
      bool const add = random() % 100 < ( step < 2000 ? 70u : 40u );
      if( add ) {
         auto const [ value, added ] = map.insert( key );
         auto const [ modelled, modelAdded ] = model.try_emplace( key, 0 );
         ASSERT_EQ( added, modelAdded ) << "step " << step;
         ASSERT_EQ( *value, modelled->second ) << "step " << step;
         *value += step;
         modelled->second += step;
      } else {
         ASSERT_EQ( map.erase( key ), model.erase( key ) == 1 ) << "step " << step;
      }
      ASSERT_EQ( map.size(), model.size() );
      if( step % 97 == 0 ) {
         std::map< std::uint32_t, std::uint64_t > members;
         for( auto it = map.begin(); it != map.end(); ++it )
            ASSERT_TRUE( members.emplace( it.key(), it.value() ).second );
         ASSERT_EQ( members, model );
         for( std::uint32_t k = 0; k < keySpace; ++k ) {
            auto const found = model.find( k );
            std::uint64_t const* value = map.find( k );
            ASSERT_EQ( value != nullptr, found != model.end() ) << "key " << k;
            if( value ) {
               ASSERT_EQ( *value, found->second ) << "key " << k;
            }
         }
      }
   }
}

TEST( FlatMapTest, AgreesWithAnOrderedMapUnderAddsUpdatesAndRemovals ) {
   for( unsigned seed = 1; seed <= 3; ++seed ) {
      checkAgainstModel< SpreadHash >( seed, 300 );
      checkAgainstModel< OneHomeHash >( seed, 40 );
      checkAgainstModel< LastSlotsHash >( seed, 60 );
   }
}

TEST( FlatMapTest, EmptyAndEmptiedMaps ) {
   Zub::FlatMap< std::uint32_t, int, SpreadHash > map;
   EXPECT_EQ( map.find( 1 ), nullptr );
   EXPECT_FALSE( map.erase( 1 ) );
   EXPECT_TRUE( map.begin() == map.end() );
   for( std::uint32_t k = 0; k < 100; ++k )
      map.insert( k );
   for( std::uint32_t k = 0; k < 100; ++k )
      EXPECT_TRUE( map.erase( k ) );
   EXPECT_TRUE( map.empty() );
   EXPECT_TRUE( map.begin() == map.end() );
   EXPECT_TRUE( map.insert( 7 ).second );
   EXPECT_FALSE( map.insert( 7 ).second );
   EXPECT_EQ( map.begin().key(), 7u );
}

}  // namespace
