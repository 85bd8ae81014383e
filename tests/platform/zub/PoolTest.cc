// The free lists of the runtime's small objects: a freed block serves the next object of its
// size, sizes do not mix, large blocks and arrays bypass the lists, and runtime objects and
// collection nodes take their blocks from them.
#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <vector>

#include "NevQos/platform/zub/Collection.h"
#include "NevQos/platform/zub/Pool.h"
#include "NevQos/platform/zub/Ptr.h"

namespace {

using Zub::Pool::allocate;
using Zub::Pool::release;

#define SKIP_WITHOUT_POOL() \
   if( !Zub::Pool::enabled() ) GTEST_SKIP() << "the lists are off under a sanitizer"

TEST( PoolTest, AFreedBlockServesTheNextObjectOfItsSizeClass ) {
   SKIP_WITHOUT_POOL();
   void* const a = allocate( 44 );
   release( a, 44 );
   // 41..48 bytes share a class.
   void* const b = allocate( 48 );
   EXPECT_EQ( a, b );
   // Another class does not take it, not even the one below.
   release( b, 48 );
   void* const c = allocate( 40 );
   EXPECT_NE( c, b );
   EXPECT_EQ( allocate( 41 ), b );
   release( c, 40 );
   release( b, 41 );
}

TEST( PoolTest, BlocksAreDistinctAlignedAndHoldTheirBytes ) {
   std::vector< void* > blocks;
   std::set< void* > distinct;
   // Several chunks' worth of several sizes, each block filled with its own pattern. A size
   // that is a multiple of 16 may be an object aligned to 16, so its blocks must be.
   for( std::size_t i = 0; i < 5000; ++i ) {
      std::size_t const size = 200 + ( i % 5 ) * 56;
      void* const p = allocate( size );
      std::size_t const alignment = size % 16 == 0 ? 16 : Zub::Pool::granule;
      EXPECT_EQ( reinterpret_cast< std::uintptr_t >( p ) % alignment, 0u ) << size;
      std::memset( p, static_cast< int >( i % 251 ), size );
      blocks.push_back( p );
      distinct.insert( p );
   }
   EXPECT_EQ( distinct.size(), blocks.size() );
   for( std::size_t i = 0; i < blocks.size(); ++i ) {
      std::size_t const size = 200 + ( i % 5 ) * 56;
      auto const* bytes = static_cast< unsigned char const* >( blocks[ i ] );
      EXPECT_EQ( bytes[ 0 ], i % 251 );
      EXPECT_EQ( bytes[ size - 1 ], i % 251 );
      release( blocks[ i ], size );
   }
}

TEST( PoolTest, LargeBlocksAndArraysGoToTheGeneralAllocator ) {
   SKIP_WITHOUT_POOL();
   // A large block given back is not kept on a list: the next small one does not land in it.
   void* const big = allocate( Zub::Pool::largestPooled + 1 );
   release( big, Zub::Pool::largestPooled + 1 );
   void* const small = allocate( Zub::Pool::largestPooled );
   EXPECT_NE( small, big );
   release( small, Zub::Pool::largestPooled );

   Zub::Pool::Allocator< std::uint64_t > alloc;
   std::uint64_t* const one = alloc.allocate( 1 );
   alloc.deallocate( one, 1 );
   EXPECT_EQ( allocate( sizeof( std::uint64_t ) ), one );
   release( one, sizeof( std::uint64_t ) );
   std::uint64_t* const many = alloc.allocate( 4 );
   many[ 3 ] = 7;
   alloc.deallocate( many, 4 );
}

struct Object : Zub::PtrInterface {
   explicit Object( int v ) : value( v ) {}
   int value;
   char padding[ 100 ] = {};
};

TEST( PoolTest, RuntimeObjectsAndCollectionNodesComeFromTheLists ) {
   SKIP_WITHOUT_POOL();
   Object* first = nullptr;
   {
      auto const o = Zub::make< Object >( 1 );
      first = o.ptr();
   }
   // The dropped object's block, given back with its own size, serves the next one.
   auto const again = Zub::make< Object >( 2 );
   EXPECT_EQ( again.ptr(), first );
   EXPECT_EQ( again->value, 2 );

   Zub::Collection< int, Zub::Ptr< Object > > objects;
   for( int i = 0; i < 1000; ++i )
      objects.set( i, Zub::make< Object >( i ) );
   for( int i = 0; i < 1000; i += 2 )
      objects.erase( i );
   for( int i = 0; i < 1000; i += 2 )
      objects.set( i, Zub::make< Object >( -i ) );
   ASSERT_EQ( objects.size(), 1000u );
   for( int i = 0; i < 1000; ++i )
      EXPECT_EQ( ( *objects.find( i ) )->value, i % 2 ? i : -i );
}

}  // namespace
