#include "NevQos/platform/zub/Pool.h"
#include "NevQos/platform/zub/PoolUsage.h"

#include <array>
#include <mutex>
#include <vector>

namespace Zub::Pool {

namespace {

#if defined( __SANITIZE_ADDRESS__ )
constexpr bool pooling = false;
#elif defined( __has_feature )
#if __has_feature( address_sanitizer )
constexpr bool pooling = false;
#else
constexpr bool pooling = true;
#endif
#else
constexpr bool pooling = true;
#endif

// The size of a chunk carved into blocks. Large enough that the objects of a big configuration
// (tens of thousands of class copies) sit on few pages: with 4 KB chunks, each spanning two
// pages, an interface joining a map at 1024 interfaces took a third longer. A size class used a
// little holds at most one chunk idle.
constexpr std::size_t chunkBytes = 65536;

// Chunks come aligned for any object; a block of a size class sits at a multiple of its size.
static_assert( alignof( std::max_align_t ) <= 2 * granule );
static_assert( largestPooled % granule == 0 && chunkBytes >= largestPooled );

constexpr std::size_t classes = largestPooled / granule;

struct FreeBlock {
   FreeBlock* next;
};

std::size_t classOf( std::size_t size ) {
   return size == 0 ? 0 : ( size - 1 ) / granule;
}

class Lists {
 public:
   void* take( std::size_t sizeClass ) {
      FreeBlock*& head = free_[ sizeClass ];
      if( !head ) carve( sizeClass );
      FreeBlock* const block = head;
      head = block->next;
      // Blocks given back in a big configuration's churn lie far apart and out of the caches:
      // the next take of the class finds its block on the way in.
      if( head ) __builtin_prefetch( head, 1 );
      ++usage_.blocks;
      usage_.blockBytes += ( sizeClass + 1 ) * granule;
      return block;
   }
   void give( void* p, std::size_t sizeClass ) noexcept {
      --usage_.blocks;
      usage_.blockBytes -= ( sizeClass + 1 ) * granule;
      push( p, sizeClass );
   }
   Usage const& usage() const { return usage_; }

 private:
   void push( void* p, std::size_t sizeClass ) noexcept {
      auto* const block = static_cast< FreeBlock* >( p );
      block->next = free_[ sizeClass ];
      free_[ sizeClass ] = block;
   }

   // A new chunk, cut into blocks of the class, all put on its list. Out of line, so that the
   // common path of take() stays a few instructions.
   [[gnu::noinline]] void carve( std::size_t sizeClass ) {
      std::size_t const blockBytes = ( sizeClass + 1 ) * granule;
      auto* const chunk = static_cast< unsigned char* >( ::operator new( chunkBytes ) );
      {
         static std::mutex chunksLock;
         std::lock_guard const hold( chunksLock );
         chunks().push_back( chunk );
      }
      std::size_t const blocks = chunkBytes / blockBytes;
      // Handed out in address order: objects made one after another sit side by side.
      for( std::size_t i = blocks; i-- > 0; )
         push( chunk + i * blockBytes, sizeClass );
      usage_.chunkBytes += chunkBytes;
   }
   // Every chunk of every thread, so that none is lost to a leak checker at exit.
   static std::vector< void* >& chunks() {
      static auto* const all = new std::vector< void* >();
      return *all;
   }
   std::array< FreeBlock*, classes > free_{};
   Usage usage_;
};

// Constant-initialised and without a destructor: reaching a thread's lists takes no guard.
constinit thread_local Lists threadLists;

Lists& lists() {
   return threadLists;
}

}  // namespace

bool enabled() {
   return pooling;
}

Usage usage() {
   return lists().usage();
}

void* allocate( std::size_t size ) {
   if( !pooling || size > largestPooled ) return ::operator new( size );
   return lists().take( classOf( size ) );
}

void release( void* p, std::size_t size ) noexcept {
   if( !p ) return;
   if( !pooling || size > largestPooled ) {
      ::operator delete( p );
      return;
   }
   lists().give( p, classOf( size ) );
}

}  // namespace Zub::Pool
