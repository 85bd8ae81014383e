// Covers a range of unsigned values with aligned value/mask blocks, the form in which a TCAM
// matches a range when no range checker is spent on it.
#pragma once

#include <limits>
#include <type_traits>
#include <vector>

#include "NevQos/platform/zub/Assert.h"

namespace Mirel {

template< class T >
class RangeMaskGen {
   static_assert( std::is_unsigned_v< T > && sizeof( T ) < sizeof( unsigned long long ) );

 public:
   // One block: the values from `value` to `high`; `mask` has a one for every bit fixed in the
   // block, so all ones is a single value and zero is the whole space.
   struct Entry {
      T value;
      T high;
      T mask;
      bool operator==( Entry const& ) const = default;
   };

   // Appends the blocks that cover low..high, from low to high. Nothing for low above high.
   static void run( T low, T high, std::vector< Entry >& entries ) {
      constexpr unsigned width = 8 * sizeof( T );
      constexpr T top = std::numeric_limits< T >::max();
      unsigned long long cur = low;
      while( cur <= high ) {
         unsigned mask = 0;  // the number of low bits left free in the block
         while( mask < width && cur % ( 2ull << mask ) == 0 &&
                cur + ( 2ull << mask ) - 1 <= high ) {
            ++mask;
         }
         ZUB_ASSERT( mask <= 8 * sizeof( T ) );
         unsigned long long const end = cur + ( 1ull << mask ) - 1;
         entries.push_back( Entry{ static_cast< T >( cur ), static_cast< T >( end ),
                                   static_cast< T >( ~( ( 1ull << mask ) - 1 ) ) } );
         if( end == top ) break;
         cur = end + 1;
      }
   }
};

}  // namespace Mirel
