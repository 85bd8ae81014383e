// A second, deliberately plain writing of the byte-wise hash, to check the keys against.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <vector>

namespace TypesTest {

inline std::uint32_t oneAtATime( std::vector< std::uint8_t > const& bytes ) {
   std::uint32_t h = 0;
   for( std::uint8_t b : bytes ) {
      std::uint32_t t = ( h + b ) * 1025u;
      h = t ^ ( t >> 6 );
   }
   std::uint32_t t = h * 9u;
   t ^= t >> 11;
   return t * 32769u;
}

// Appends the `n` low bytes of `v`, least significant first.
inline void appendLe( std::vector< std::uint8_t >& out, std::uint64_t v, int n ) {
   for( int i = 0; i < n; ++i )
      out.push_back( static_cast< std::uint8_t >( ( v >> ( 8 * i ) ) & 0xff ) );
}

}  // namespace TypesTest
