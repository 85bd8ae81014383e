// The set of override keys against an ordered set, under random adds and removals of keys of
// both address families, every DSCP including the sentinel 64, and a few FECs, so that groups
// fill, share FECs and empty.
#include <gtest/gtest.h>

#include <random>
#include <set>

#include "NevQos/types/OverrideKeySet.h"

namespace {

using Qos::Glarn::OverrideKey;

OverrideKey randomKey( std::mt19937& random ) {
   auto const af = random() % 2 ? Mirel::ipv4 : Mirel::ipv6;
   return OverrideKey{ af, Qos::Dscp( random() % 65 ), random() % 4 };
}

TEST( OverrideKeySetTest, AgreesWithAnOrderedSetUnderAddsAndRemovals ) {
   std::mt19937 random( 7 );
   Nev::OverrideKeySet set;
   std::set< OverrideKey > model;
   for( int step = 0; step < 6000; ++step ) {
      OverrideKey const key = randomKey( random );
      // Adds first, then mostly removals, so that the set fills and empties again.
      bool const add = random() % 100 < ( step < 3000 ? 75u : 20u );
      if( add ) {
         ASSERT_EQ( set.insert( key ), model.insert( key ).second ) << "step " << step;
      } else {
         ASSERT_EQ( set.erase( key ), model.erase( key ) == 1 ) << "step " << step;
      }
      ASSERT_EQ( set.size(), model.size() );
      OverrideKey const probe = randomKey( random );
      ASSERT_EQ( set.contains( probe ), model.contains( probe ) ) << "step " << step;
      if( step % 101 == 0 || model.empty() ) {
         std::set< OverrideKey > members;
         for( OverrideKey const& member : set )
            ASSERT_TRUE( members.insert( member ).second ) << "a member came out twice";
         ASSERT_EQ( members, model ) << "step " << step;
      }
   }
}

}  // namespace
