// Ordered collections and iterators that survive changes made while iterating.
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>
#include <vector>

#include "NevQos/platform/zub/Collection.h"
#include "ZubTestEntities.h"

namespace {

using Coll = Zub::Collection< int, int >;

std::vector< int > keysOf( Coll const& c ) {
   std::vector< int > keys;
   for( auto it = c.iter(); it; ++it )
      keys.push_back( it.key() );
   return keys;
}

TEST( CollectionTest, IteratesInAscendingKeyOrder ) {
   Coll c;
   for( int k : { 5, 1, 9, 3 } )
      c.set( k, k * 10 );
   EXPECT_EQ( keysOf( c ), ( std::vector< int >{ 1, 3, 5, 9 } ) );
   std::vector< int > values;
   for( int v : c )
      values.push_back( v );
   EXPECT_EQ( values, ( std::vector< int >{ 10, 30, 50, 90 } ) );
   EXPECT_EQ( c.iterFrom( 4 ).key(), 5 );
   EXPECT_FALSE( c.iterFrom( 10 ) );
}

TEST( CollectionTest, RemovalsWhileIteratingVisitEachRemainingMemberOnce ) {
   Coll c;
   for( int k = 1; k <= 7; ++k )
      c.set( k, 0 );
   std::vector< int > visited;
   for( auto it = c.iter(); it; ++it ) {
      visited.push_back( it.key() );
      switch( it.key() ) {
         case 2:
            c.erase( 2 );
            break;  // the current member
         case 3:
            c.erase( 4 );
            break;  // one ahead
         case 5:
            c.erase( 1 );  // one behind, and the current one
            c.erase( 5 );
            c.erase( 6 );
            break;
         default:
            break;
      }
   }
   EXPECT_EQ( visited, ( std::vector< int >{ 1, 2, 3, 5, 7 } ) );
   EXPECT_EQ( keysOf( c ), ( std::vector< int >{ 3, 7 } ) );
}

TEST( CollectionTest, InsertionsWhileIteratingAheadAreVisitedBehindAreNot ) {
   Coll c;
   for( int k : { 10, 20, 30 } )
      c.set( k, 0 );
   std::vector< int > visited;
   for( auto it = c.iter(); it; ++it ) {
      visited.push_back( it.key() );
      if( it.key() == 20 ) {
         c.set( 5, 0 );
         c.set( 25, 0 );
         c.erase( 20 );
         c.set( 20, 1 );  // removed and put back: not visited again
      }
   }
   EXPECT_EQ( visited, ( std::vector< int >{ 10, 20, 25, 30 } ) );
}

TEST( CollectionTest, InsertAddsOnlyWhenAbsentAndGivesTheMember ) {
   Coll c;
   auto [ added, isNew ] = c.insert( 4, 40 );
   EXPECT_TRUE( isNew );
   *added = 41;
   auto [ held, isNewAgain ] = c.insert( 4, 99 );
   EXPECT_FALSE( isNewAgain );
   EXPECT_EQ( *held, 41 );
   EXPECT_EQ( *c.find( 4 ), 41 );
}

// A spot taken before other members came or went (its own neighbour too) still puts its key in
// order, in an array and in a tree, and overwrites a member made under the same key meanwhile.
TEST( CollectionTest, InsertAtASpotKeepsOrderWhateverChangedSinceTheSearch ) {
   for( int const size : { 4, 100 } ) {
      Coll c;
      std::map< int, int > model;
      auto const set = [ & ]( int k, int v ) {
         c.set( k, v );
         model[ k ] = v;
      };
      for( int k = 0; k <= size; ++k )
         set( 2 * k, 0 );
      ASSERT_NE( c.spot( 2 ).found(), nullptr );
      auto const untouched = c.spot( 5 );
      EXPECT_EQ( untouched.found(), nullptr );
      EXPECT_EQ( c.insertAt( untouched, 5, 50 ), 50 );
      model[ 5 ] = 50;
      auto const stale = c.spot( 7 );
      c.erase( 8 );  // the member the spot stands before
      model.erase( 8 );
      set( 9, 0 );
      c.insertAt( stale, 7, 70 );
      model[ 7 ] = 70;
      auto const taken = c.spot( 11 );
      set( 11, 1 );
      c.insertAt( taken, 11, 110 );
      model[ 11 ] = 110;
      std::vector< std::pair< int, int > > held;
      for( auto it = c.iter(); it; ++it )
         held.emplace_back( it.key(), it.value() );
      EXPECT_EQ( held, ( std::vector< std::pair< int, int > >( model.begin(), model.end() ) ) )
            << size;
   }
}

// A walk that removes what it settles, also when the member or another one went meanwhile.
TEST( CollectionTest, EraseAtGoesOnAfterTheRemovedMember ) {
   Coll c;
   for( int k = 1; k <= 6; ++k )
      c.set( k, 0 );
   std::vector< int > visited;
   for( auto it = c.iter(); it; ) {
      int const key = it.key();
      visited.push_back( key );
      if( key == 3 ) c.erase( 5 );  // another member goes: the iterator is stale
      if( key == 4 ) c.erase( 4 );  // its own member goes first
      it = key % 2 == 0 || key == 3 ? c.eraseAt( it ) : ++it;
   }
   EXPECT_EQ( visited, ( std::vector< int >{ 1, 2, 3, 4, 6 } ) );
   EXPECT_EQ( keysOf( c ), ( std::vector< int >{ 1 } ) );
   EXPECT_FALSE( c.eraseAt( c.iterFrom( 2 ) ) );
}

TEST( CollectionTest, IteratorValueOutlivesRemovalOfItsMember ) {
   Zub::Collection< int, Zub::Ptr< ZubTest::Slot > > c;
   c.set( 1, Zub::make< ZubTest::Slot >( "a" ) );
   c.set( 2, Zub::make< ZubTest::Slot >( "b" ) );
   std::vector< std::string > names;
   for( auto it = c.iter(); it; ++it ) {
      c.erase( it.key() );
      names.push_back( it.value()->name().stdString() );  // the last reference is the iterator's
   }
   EXPECT_EQ( names, ( std::vector< std::string >{ "a", "b" } ) );
   EXPECT_TRUE( c.empty() );
}

// Against an ordered map, through sizes where the members sit in an array and where in a tree,
// with walks that add and remove at random as they go: a walk visits keys in ascending order,
// each at most once, each present when visited, and every key that stood throughout.
// Sizes for an array, a tree and chunks; the last grows past the chunks' threshold.
TEST( CollectionTest, BehavesAsAnOrderedMapInArrayTreeAndChunks ) {
   std::mt19937 random( 7 );
   for( int const range : { 6, 40, 300, 12000 } ) {
      Coll c;
      std::map< int, int > model;
      auto const anyKey = [ & ] { return static_cast< int >( random() % range ); };
      auto const mutate = [ & ]( std::set< int >& touched ) {
         int const k = anyKey();
         touched.insert( k );
         if( random() % 3 == 0 ) {
            EXPECT_EQ( c.erase( k ), model.erase( k ) == 1 );
         } else {
            int const v = static_cast< int >( random() % 5 );
            bool const changed = model.count( k ) == 0 || model[ k ] != v;
            model[ k ] = v;
            EXPECT_EQ( c.set( k, v ), changed );
         }
      };
      for( int round = 0; round < ( range > 1000 ? 30 : 200 ); ++round ) {
         std::set< int > touched;
         for( int i = 0; i < range / 2; ++i )
            mutate( touched );
         ASSERT_EQ( c.size(), model.size() );
         std::vector< std::pair< int, int > > held;
         for( auto it = c.iter(); it; ++it )
            held.emplace_back( it.key(), it.value() );
         ASSERT_EQ( held, ( std::vector< std::pair< int, int > >( model.begin(), model.end() ) ) );
         int const probe = anyKey();
         EXPECT_EQ( c.has( probe ), model.count( probe ) == 1 );
         auto const from = c.iterFrom( probe );
         auto const expected = model.lower_bound( probe );
         ASSERT_EQ( !!from, expected != model.end() );
         if( from ) {
            EXPECT_EQ( from.key(), expected->first );
         }
         // Lookups in ascending order through a hint, by short and long steps, and now and
         // then one anywhere.
         Coll::Hint hint;
         for( int k = anyKey() % 8; k < range; k += 1 + static_cast< int >( random() % 3 ) * 5 ) {
            int const anywhere = anyKey();
            bool const jump = random() % 7 == 0;
            int const* found = c.find( jump ? anywhere : k, hint );
            if( jump ) {
               ASSERT_EQ( found != nullptr, model.count( anywhere ) == 1 ) << anywhere;
               continue;
            }
            ASSERT_EQ( found != nullptr, model.count( k ) == 1 ) << k;
            if( found ) {
               ASSERT_EQ( *found, model[ k ] );
            }
         }

         std::map< int, int > const before = model;
         std::vector< int > visited;
         touched.clear();
         for( auto it = c.iter(); it; ) {
            EXPECT_TRUE( visited.empty() || visited.back() < it.key() );
            EXPECT_EQ( model.count( it.key() ), 1u );
            visited.push_back( it.key() );
            if( random() % 4 == 0 ) mutate( touched );
            if( random() % 5 == 0 ) {
               touched.insert( it.key() );
               model.erase( it.key() );
               it = c.eraseAt( it );
            } else {
               ++it;
            }
         }
         for( auto const& [ k, v ] : before ) {
            if( touched.count( k ) ) continue;
            EXPECT_TRUE( std::binary_search( visited.begin(), visited.end(), k ) ) << k;
         }
      }
      // Emptied by a walk that removes every member.
      std::size_t removed = 0;
      for( auto it = c.iter(); it; ++removed )
         it = c.eraseAt( it );
      EXPECT_EQ( removed, model.size() );
      EXPECT_TRUE( c.empty() );
   }
}

}  // namespace
