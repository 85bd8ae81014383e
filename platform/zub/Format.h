// Text formatting and the bit and hash primitives of the runtime.
#pragma once

#include <cstdint>
#include <span>

#include "NevQos/platform/zub/String.h"

namespace Zub {

// printf-style formatting into a String.
String format( char const* fmt, ... ) __attribute__( ( format( printf, 1, 2 ) ) );

// Reverses the 32 bits of a word: the last step of every hash of a value key.
constexpr std::uint32_t bitReverse( std::uint32_t v ) noexcept {
   v = ( ( v >> 1 ) & 0x55555555u ) | ( ( v & 0x55555555u ) << 1 );
   v = ( ( v >> 2 ) & 0x33333333u ) | ( ( v & 0x33333333u ) << 2 );
   v = ( ( v >> 4 ) & 0x0f0f0f0fu ) | ( ( v & 0x0f0f0f0fu ) << 4 );
   v = ( ( v >> 8 ) & 0x00ff00ffu ) | ( ( v & 0x00ff00ffu ) << 8 );
   return ( v >> 16 ) | ( v << 16 );
}

// The byte-wise one-at-a-time hash used by keys made of raw fields. Feed bytes in order with
// `add`, then read `result()`.
class ByteHash {
 public:
   constexpr ByteHash& add( std::uint8_t b ) noexcept {
      std::uint32_t t = ( h_ + b ) * 1025u;
      h_ = t ^ ( t >> 6 );
      return *this;
   }
   // Little-endian bytes of an integer of `bytes` bytes.
   constexpr ByteHash& addLe( std::uint64_t v, unsigned bytes ) noexcept {
      for( unsigned i = 0; i < bytes; ++i )
         add( static_cast< std::uint8_t >( v >> ( 8 * i ) ) );
      return *this;
   }
   constexpr std::uint32_t result() const noexcept {
      std::uint32_t t = h_ * 9u;
      t ^= t >> 11;
      return t * 32769u;
   }

 private:
   std::uint32_t h_ = 0;
};

}  // namespace Zub
