// Queue indices: handed out in order, never given twice while held, and the full index space.
#include <gtest/gtest.h>

#include <cstdint>
#include <set>

#include "NevQos/platform/zub/LinkQueue.h"
#include "NevQos/platform/zub/String.h"

namespace {

using Queue = Zub::LinkQueue< Zub::String >;

std::vector< unsigned > indicesOf( Queue const& q ) {
   std::vector< unsigned > out;
   for( auto const& m : q )
      out.push_back( m.index );
   return out;
}

TEST( LinkQueueTest, FifoWithIndicesAndEmptyValueFromEmptyQueue ) {
   Queue q;
   EXPECT_EQ( q.deq(), "" );
   EXPECT_EQ( q.enq( "a" ), 0u );
   EXPECT_EQ( q.enq( "b" ), 1u );
   EXPECT_EQ( q.enq( "c" ), 2u );
   EXPECT_EQ( q.get( 1 ), "b" );
   EXPECT_EQ( q.find( 7 ), nullptr );
   q.set( 1, "B" );
   EXPECT_EQ( q.size(), 3u );
   EXPECT_EQ( q.deq(), "a" );
   EXPECT_EQ( q.headIndex(), 1u );
   EXPECT_EQ( q.deq(), "B" );
   EXPECT_EQ( q.deq(), "c" );
   EXPECT_EQ( q.deq(), "" );
   EXPECT_TRUE( q.empty() );
}

TEST( LinkQueueTest, IndicesAreNotReusedAfterRemovals ) {
   Queue q;
   q.enq( "a" );
   q.enq( "b" );
   q.enq( "c" );
   q.del( 2 );  // the tail
   EXPECT_EQ( q.enq( "d" ), 3u );
   q.deq();
   q.deq();
   q.deq();
   ASSERT_TRUE( q.empty() );
   EXPECT_EQ( q.enq( "e" ), 4u );
   q.delAll();
   EXPECT_EQ( q.enq( "f" ), 5u );
}

TEST( LinkQueueTest, EnqAfterSetOfHigherIndexContinuesAfterIt ) {
   Queue q;
   q.enq( "a" );
   q.set( 10, "j" );
   EXPECT_EQ( q.enq( "k" ), 11u );
   EXPECT_EQ( indicesOf( q ), ( std::vector< unsigned >{ 0, 10, 11 } ) );

   // The same on a queue emptied by deq.
   Queue e;
   e.enq( "a" );
   e.enq( "b" );
   e.deq();
   e.deq();
   e.set( 7, "x" );
   EXPECT_EQ( e.enq( "y" ), 8u );
   EXPECT_EQ( e.enq( "z" ), 9u );
   EXPECT_EQ( e.deq(), "x" );
   EXPECT_EQ( e.deq(), "y" );
}

TEST( LinkQueueTest, SmallIndexSpaceFillsAndWraps ) {
   Zub::LinkQueue< int, std::uint8_t > q;
   for( int i = 0; i < 255; ++i )
      q.enq( i );
   EXPECT_EQ( q.size(), 255u );
   try {
      q.enq( 255 );
      FAIL() << "enq into a full index space";
   } catch( Zub::RangeException const& e ) {
      EXPECT_STREQ( e.what(), "linkqueue index space full" );
   }
   EXPECT_EQ( q.size(), 255u );

   EXPECT_EQ( q.deq(), 0 );
   EXPECT_EQ( q.enq( 255 ), 255u );
   EXPECT_THROW( q.enq( 256 ), Zub::RangeException );
   q.deq();
   EXPECT_EQ( q.enq( 256 ), 0u );  // wrapped
   EXPECT_EQ( q.get( 0 ), 256 );
   EXPECT_EQ( q.get( 255 ), 255 );

   std::set< unsigned > held;
   for( auto const& m : q )
      held.insert( m.index );
   EXPECT_EQ( held.size(), q.size() );
}

}  // namespace
