// Free lists for the runtime's small objects. The engines make and drop many objects of a few
// sizes (state machines, entities, the nodes of keyed collections); taking them from lists of
// same-size blocks carved out of larger chunks costs a fraction of a general allocation and keeps
// the objects of one kind close together. Chunks are never given back: a block freed is kept for
// the next object of its size, so memory in use stays at its peak. Each thread has its own lists,
// so no lock is taken; a block freed on another thread joins that thread's list.
//
// Under AddressSanitizer the lists are off and every block comes from the general allocator, so
// that a use after free is still caught.
#pragma once

#include <cstddef>
#include <new>

namespace Zub::Pool {

// Blocks up to this size are pooled, in steps of `granule`; larger ones go to the general
// allocator. Most small objects are multiples of 8 bytes, so steps of 16 would waste 8 bytes on
// every other one.
inline constexpr std::size_t granule = 8;
inline constexpr std::size_t largestPooled = 512;

// False under AddressSanitizer.
bool enabled();

// A block of at least `size` bytes, aligned for any object of that size: a block is aligned to
// the largest power of two, up to 16, that divides its size, and an object's size is a multiple
// of its alignment.
void* allocate( std::size_t size );
// Gives back a block of `allocate( size )`, with the same size.
void release( void* p, std::size_t size ) noexcept;

// The allocator of a standard container whose elements come from the lists: single elements
// (the nodes of a tree) are pooled, arrays go to the general allocator.
template< class T >
struct Allocator {
   using value_type = T;
   Allocator() noexcept = default;
   template< class U >
   Allocator( Allocator< U > const& ) noexcept {}
   T* allocate( std::size_t n ) {
      if( n == 1 ) return static_cast< T* >( Pool::allocate( sizeof( T ) ) );
      return static_cast< T* >( ::operator new( n * sizeof( T ) ) );
   }
   void deallocate( T* p, std::size_t n ) noexcept {
      if( n == 1 ) {
         Pool::release( p, sizeof( T ) );
      } else {
         ::operator delete( p );
      }
   }
   template< class U >
   bool operator==( Allocator< U > const& ) const noexcept {
      return true;
   }
};

}  // namespace Zub::Pool
