// Keyed collections. They iterate in ascending key order, so every run of the same input visits
// members in the same order, and their iterators survive any insertion or removal made while
// iterating, including removal of the member under the iterator: the next step goes to the
// first member after the last key visited, so no member is visited twice.
//
// Most collections of the runtime hold none or a few members (the children of one entity, the
// actions of one class), and there are hundreds of thousands of them. So a collection is one
// pointer, null while it is empty; up to `arrayLimit` members sit in one sorted array, and past
// that in a balanced tree. Both live in one block from the runtime's free lists. A few are big
// (the shared tables of a hundred thousand FEC overrides): past `chunkFrom` members they are
// sorted chunks of members, found through a sorted array with a key per chunk. A tree's nodes lie
// where the free lists had blocks when each key came, so a walk in key order misses the caches
// on every member; a chunk's members lie side by side, and a walk reads memory in order.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <iterator>
#include <map>
#include <new>
#include <tuple>
#include <utility>
#include <vector>

#include "NevQos/platform/zub/Pool.h"

namespace Zub {

namespace CollectionDetail {

// Every insertion or removal in any collection takes a new stamp: an iterator that sees its
// collection's stamp unchanged may step on by position, otherwise it searches for its key.
inline std::atomic< std::uint64_t > lastStamp{ 0 };
inline std::uint64_t nextStamp() {
   return lastStamp.fetch_add( 1, std::memory_order_relaxed ) + 1;
}

}  // namespace CollectionDetail

template< class K, class V >
class Collection {
   // Nodes from the runtime's free lists: members come and go by the thousand.
   using Map = std::map< K, V, std::less< K >, Pool::Allocator< std::pair< K const, V > > >;
   using Entry = std::pair< K, V >;
   static constexpr std::uint32_t arrayLimit = 32;
   static constexpr std::uint32_t treeMode = 0;
   static constexpr std::uint32_t chunkMode = 255;
   static constexpr std::size_t chunkFrom = 4096;
   // About a kilobyte of members a chunk: a few cache lines read in order per step of a walk.
   static constexpr std::uint32_t chunkCapacity =
         std::max< std::uint32_t >( 8, std::uint32_t( 1024 / sizeof( Entry ) ) );
   // The members are the slots from `start` on: a queue worked off from its front loses its
   // first member without moving the others. `low` is the chunk's key in the index.
   struct Chunk {
      K low{};
      std::uint32_t start = 0;
      std::uint32_t size = 0;
      alignas( Entry ) unsigned char bytes[ chunkCapacity * sizeof( Entry ) ];
      Entry* slots() { return reinterpret_cast< Entry* >( bytes ); }
      Entry* entries() { return slots() + start; }
      Entry& at( std::uint32_t i ) { return entries()[ i ]; }
   };
   // The chunks in key order, by a key at or below each chunk's first member (see chunkOf()).
   // Untyped, so that one vector serves every kind of collection: each instantiates the chunk
   // code of its own, and a second tree type each would double the compile time of their users.
   using Index = std::vector< void* >;
   using ChunkAt = std::uint32_t;  // a place in the index
   struct Chunks {
      Index index;
      std::size_t count = 0;
      Chunk& operator[]( ChunkAt at ) const { return *static_cast< Chunk* >( index[ at ] ); }
      ChunkAt end() const { return ChunkAt( index.size() ); }
   };

   // One word: most blocks hold one or two members, so the header is a good part of them. The
   // stamp keeps its low 48 bits, which an iterator compares whole; an iterator would have to
   // wait out 2^48 insertions and removals to be fooled.
   struct Header {
      std::uint64_t stamp : 48;
      std::uint64_t size : 8;      // of the array; a tree counts its own
      std::uint64_t capacity : 8;  // of the array; treeMode for a tree
   };
   static constexpr std::uint64_t stampMask = ( std::uint64_t{ 1 } << 48 ) - 1;
   static_assert( sizeof( Header ) == 8 && arrayLimit < 256 );
   static_assert( alignof( Entry ) <= sizeof( Header ) && alignof( Map ) <= sizeof( Header ) &&
                  alignof( Chunks ) <= sizeof( Header ) );

 public:
   class Iterator {
    public:
      Iterator() = default;
      explicit operator bool() const { return c_ != nullptr; }
      K const& key() const { return key_; }
      // The value when the iterator reached the member; a copy, so it outlives a removal.
      V const& value() const { return value_; }
      V const& operator*() const { return value_; }
      V const* operator->() const { return &value_; }
      Iterator& operator++() {
         if( !c_ ) return *this;
         if( c_->stamp() == stamp_ ) {
            if( c_->isTree() ) {
               ++at_;
            } else {
               ++index_;
            }
         } else {
            c_->seekAbove( key_, *this );
         }
         load();
         return *this;
      }
      // Range-for support: compares against the end sentinel only.
      bool operator!=( std::nullptr_t ) const { return c_ != nullptr; }

    private:
      friend class Collection;
      explicit Iterator( Collection const* c ) : c_( c ) {}
      void load() {
         if( !c_->h_ ) {
            c_ = nullptr;
            return;
         }
         if( c_->isChunked() ) {
            Chunks const& chunks = c_->chunks();
            while( chunkAt_ != chunks.end() && index_ >= chunks[ chunkAt_ ].size ) {
               ++chunkAt_;
               index_ = 0;
            }
            if( chunkAt_ == chunks.end() ) {
               c_ = nullptr;
               return;
            }
            Entry const& e = chunks[ chunkAt_ ].at( index_ );
            key_ = e.first;
            value_ = e.second;
         } else if( c_->isTree() ) {
            if( at_ == c_->tree().end() ) {
               c_ = nullptr;
               return;
            }
            key_ = at_->first;
            value_ = at_->second;
         } else {
            if( index_ >= c_->h_->size ) {
               c_ = nullptr;
               return;
            }
            Entry const& e = c_->entries()[ index_ ];
            key_ = e.first;
            value_ = e.second;
         }
         stamp_ = c_->stamp();
      }
      Collection const* c_ = nullptr;
      std::uint32_t index_ = 0;  // in the array, or in the chunk
      typename Map::const_iterator at_;
      ChunkAt chunkAt_ = 0;
      K key_{};
      V value_{};
      std::uint64_t stamp_ = 0;
   };

   // Range-for over members: `for( auto const& v : coll )` gives values through an Iterator.
   struct Range {
      Collection const* c;
      Iterator begin() const { return c->iter(); }
      std::nullptr_t end() const { return nullptr; }
   };

   Collection() = default;
   Collection( Collection const& other ) {
      for( auto it = other.iter(); it; ++it )
         set( it.key(), it.value() );
   }
   Collection( Collection&& other ) noexcept : h_( std::exchange( other.h_, nullptr ) ) {}
   Collection& operator=( Collection const& other ) {
      if( this != &other ) {
         Collection copy( other );
         std::swap( h_, copy.h_ );
      }
      return *this;
   }
   Collection& operator=( Collection&& other ) noexcept {
      std::swap( h_, other.h_ );
      return *this;
   }
   ~Collection() { release(); }

   Iterator iter() const {
      Iterator it( this );
      if( h_ ) {
         if( isTree() ) {
            it.at_ = tree().begin();
         }
      }
      it.load();
      return it;
   }
   // First member with a key not below `k`.
   Iterator iterFrom( K const& k ) const {
      Iterator it( this );
      if( h_ ) {
         if( isChunked() ) {
            it.chunkAt_ = chunkOf( k );
            it.index_ = lowerIn( chunks()[ it.chunkAt_ ], k );
         } else if( isTree() ) {
            it.at_ = tree().lower_bound( k );
         } else {
            it.index_ = lowerIndex( k );
         }
      }
      it.load();
      return it;
   }
   Iterator begin() const { return iter(); }
   std::nullptr_t end() const { return nullptr; }

   std::size_t size() const {
      if( !h_ ) return 0;
      if( isChunked() ) return chunks().count;
      return isTree() ? tree().size() : h_->size;
   }
   bool empty() const { return !h_; }
   bool has( K const& k ) const { return find( k ) != nullptr; }
   // The member's value; valid until the next insertion or removal.
   V const* find( K const& k ) const { return const_cast< Collection* >( this )->find( k ); }
   V* find( K const& k ) {
      if( !h_ ) return nullptr;
      if( isChunked() ) {
         Chunk& c = chunks()[ chunkOf( k ) ];
         std::uint32_t const i = lowerIn( c, k );
         return i < c.size && !( k < c.at( i ).first ) ? &c.at( i ).second : nullptr;
      }
      if( isTree() ) {
         auto it = tree().find( k );
         return it == tree().end() ? nullptr : &it->second;
      }
      std::uint32_t const i = lowerIndex( k );
      return i < h_->size && !( k < entries()[ i ].first ) ? &entries()[ i ].second : nullptr;
   }
   // Where a lookup ended, so that the next one through the same hint can start from there:
   // the first member not below the key looked up (in a tree, its node; in chunks, its chunk
   // and place). Good while the collection's stamp stays.
   class Hint {
    public:
      // Whether a lookup of `k` may start from here: the hint was set, and `k` is not below it.
      bool precedes( K const& k ) const { return c_ && !( k < key_ ); }
      K const& key() const { return key_; }

    private:
      friend class Collection;
      Collection const* c_ = nullptr;
      std::uint64_t stamp_ = 0;
      K key_{};
      typename Map::iterator at_{};
      ChunkAt chunkAt_ = 0;
      std::uint32_t index_ = 0;
   };
   // find( k ), for a reader that looks keys up in ascending order (a review of a queue against
   // a table): a key at most two members past the last one, or in the chunk of the last one or
   // the next, is found from there without a search.
   V const* find( K const& k, Hint& hint ) const {
      if( !h_ || !( isTree() || isChunked() ) ) return find( k );
      bool const usable = hint.c_ == this && hint.stamp_ == stamp() && !( k < hint.key_ );
      hint.c_ = this;
      hint.stamp_ = stamp();
      hint.key_ = k;
      return isTree() ? findInTree( k, hint, usable ) : findInChunks( k, hint, usable );
   }
   // Inserts or overwrites; false when the value held was equal already.
   bool set( K const& k, V const& v ) {
      auto [ held, inserted ] = insert( k, v );
      if( inserted ) return true;
      if( *held == v ) return false;
      *held = v;
      return true;
   }
   // The member of `k`, added as `v` when absent; the flag says whether it was added. One
   // search where find() and set() would take two. The pointer is valid until the next
   // insertion or removal.
   std::pair< V*, bool > insert( K const& k, V const& v ) {
      if( h_ && isTree() && tree().size() >= chunkFrom ) toChunks();
      if( h_ && isChunked() ) {
         ChunkAt const at = chunkOf( k );
         Chunk& c = chunks()[ at ];
         std::uint32_t const i = lowerIn( c, k );
         if( i < c.size && !( k < c.at( i ).first ) ) return { &c.at( i ).second, false };
         return { &chunkInsert( at, i, Entry( k, v ) ), true };
      }
      if( h_ && isTree() ) {
         auto& map = tree();
         if( map.rbegin()->first < k ) {
            touch();
            return { &map.emplace_hint( map.end(), k, v )->second, true };
         }
         auto [ it, inserted ] = map.try_emplace( k, v );
         if( inserted ) touch();
         return { &it->second, inserted };
      }
      std::uint32_t const i = h_ ? lowerIndex( k ) : 0;
      if( h_ && i < h_->size && !( k < entries()[ i ].first ) ) {
         return { &entries()[ i ].second, false };
      }
      // Made before the array moves: `k` or `v` may be a member's.
      Entry made( k, v );
      if( h_ && h_->size == arrayLimit ) {
         toTree();
         auto const added = tree().emplace( std::move( made ) ).first;
         return { &added->second, true };
      }
      if( !h_ || h_->size == h_->capacity ) grow();
      return { &insertAt( i, std::move( made ) ), true };
   }
   // Where `k` is, or where it would go: a search that finds nothing lets the insertion that
   // follows it skip its own, so that making a member for a missing key (a child made on first
   // use) searches a big collection once. A spot outlives changes to the collection; an
   // insertion through a spot the collection has changed since searches again.
   class Spot {
    public:
      V* found() const { return found_; }

    private:
      friend class Collection;
      V* found_ = nullptr;
      std::uint64_t stamp_ = 0;
      bool inTree_ = false;
      typename Map::iterator at_{};
   };
   Spot spot( K const& k ) {
      Spot s;
      s.stamp_ = stamp();
      if( !h_ ) return s;
      if( !isTree() ) {
         s.found_ = find( k );
         return s;
      }
      auto& map = tree();
      s.inTree_ = true;
      s.at_ = map.lower_bound( k );
      if( s.at_ != map.end() && !( k < s.at_->first ) ) s.found_ = &s.at_->second;
      return s;
   }
   // Sets `k` to `v` where a spot of `k` with nothing found says it goes.
   V& insertAt( Spot const& s, K const& k, V const& v ) {
      if( s.inTree_ && h_ && s.stamp_ == stamp() && !s.found_ ) {
         touch();
         return tree().emplace_hint( s.at_, k, v )->second;
      }
      auto [ held, inserted ] = insert( k, v );
      if( !inserted ) *held = v;
      return *held;
   }
   // Removes `k`; false when it was absent. The removed value is moved into `out`, if given,
   // so that its destruction can wait until the caller is done notifying.
   bool erase( K const& k, V* out = nullptr ) {
      if( !h_ ) return false;
      if( isChunked() ) {
         ChunkAt const at = chunkOf( k );
         Chunk& c = chunks()[ at ];
         std::uint32_t const i = lowerIn( c, k );
         if( i >= c.size || k < c.at( i ).first ) return false;
         if( out ) *out = std::move( c.at( i ).second );
         chunkErase( at, i );
         return true;
      }
      if( isTree() ) {
         auto& map = tree();
         auto it = map.find( k );
         if( it == map.end() ) return false;
         if( out ) *out = std::move( it->second );
         map.erase( it );
         afterTreeErase();
         return true;
      }
      std::uint32_t const i = lowerIndex( k );
      if( i >= h_->size || k < entries()[ i ].first ) return false;
      if( out ) *out = std::move( entries()[ i ].second );
      eraseIndex( i );
      return true;
   }
   // Removes the member `it` stands on and returns an iterator on the next one: a walk that
   // removes as it goes needs no search per step. An iterator that no longer stands on a member
   // (its member or another went since) falls back on the search.
   Iterator eraseAt( Iterator const& it ) {
      if( !it.c_ ) return it;
      if( it.c_ != this || it.stamp_ != stamp() ) {
         K const key = it.key_;
         erase( key );
         return iterAbove( key );
      }
      Iterator next( this );
      if( isChunked() ) {
         std::tie( next.chunkAt_, next.index_ ) = chunkErase( it.chunkAt_, it.index_ );
         if( !h_ ) return Iterator();
      } else if( isTree() ) {
         auto& map = tree();
         next.at_ = map.erase( it.at_ );
         afterTreeErase();
      } else {
         eraseIndex( it.index_ );
         next.index_ = it.index_;
      }
      next.load();
      return next;
   }
   K const* firstKey() const {
      if( !h_ ) return nullptr;
      if( isChunked() ) return &chunks()[ 0 ].at( 0 ).first;
      return isTree() ? &tree().begin()->first : &entries()[ 0 ].first;
   }

 private:
   bool isTree() const { return h_->capacity == treeMode; }
   bool isChunked() const { return h_->capacity == chunkMode; }
   std::uint64_t stamp() const { return h_ ? std::uint64_t{ h_->stamp } : 0; }
   void touch() { h_->stamp = CollectionDetail::nextStamp() & stampMask; }
   Entry* entries() const {
      return reinterpret_cast< Entry* >( reinterpret_cast< char* >( h_ ) + sizeof( Header ) );
   }
   Map& tree() const {
      return *reinterpret_cast< Map* >( reinterpret_cast< char* >( h_ ) + sizeof( Header ) );
   }
   static std::size_t arrayBytes( std::uint32_t capacity ) {
      return sizeof( Header ) + capacity * sizeof( Entry );
   }
   static constexpr std::size_t treeBytes = sizeof( Header ) + sizeof( Map );
   static constexpr std::size_t chunksBytes = sizeof( Header ) + sizeof( Chunks );
   Chunks& chunks() const {
      return *reinterpret_cast< Chunks* >( reinterpret_cast< char* >( h_ ) + sizeof( Header ) );
   }

   std::uint32_t lowerIndex( K const& k ) const {
      Entry const* const first = entries();
      Entry const* const last = first + h_->size;
      // Appending in key order is the common case: the search is skipped.
      if( first != last && last[ -1 ].first < k ) return h_->size;
      auto const at = std::lower_bound(
            first, last, k, []( Entry const& e, K const& key ) { return e.first < key; } );
      return static_cast< std::uint32_t >( at - first );
   }
   Iterator iterAbove( K const& k ) const {
      Iterator it( this );
      seekAbove( k, it );
      it.load();
      return it;
   }
   // Places `it` on the first member with a key above `k`.
   void seekAbove( K const& k, Iterator& it ) const {
      if( !h_ ) return;
      if( isChunked() ) {
         it.chunkAt_ = chunkOf( k );
         Chunk& c = chunks()[ it.chunkAt_ ];
         std::uint32_t i = lowerIn( c, k );
         if( i < c.size && !( k < c.at( i ).first ) ) ++i;
         it.index_ = i;
         return;
      }
      if( isTree() ) {
         it.at_ = tree().upper_bound( k );
         return;
      }
      std::uint32_t i = lowerIndex( k );
      if( i < h_->size && !( k < entries()[ i ].first ) ) ++i;
      it.index_ = i;
   }

   // Room for one more member in the array: the first block, or one half as large again (a
   // collection of one member per interface of a class would leave a third of a doubled block
   // empty on average).
   void grow() {
      std::uint32_t const held = h_ ? static_cast< std::uint32_t >( h_->capacity ) : 0;
      std::uint32_t const capacity =
            held == 0 ? 1 : std::min( arrayLimit, held + std::max( held / 2, 1u ) );
      auto* const block = static_cast< Header* >( Pool::allocate( arrayBytes( capacity ) ) );
      block->stamp = 0;
      block->size = 0;
      block->capacity = capacity;
      if( h_ ) {
         Entry* const to = reinterpret_cast< Entry* >( block + 1 );
         for( std::uint32_t i = 0; i < h_->size; ++i ) {
            new( to + i ) Entry( std::move( entries()[ i ] ) );
            entries()[ i ].~Entry();
         }
         block->size = h_->size;
         block->stamp = h_->stamp;
         Pool::release( h_, arrayBytes( h_->capacity ) );
      }
      h_ = block;
   }
   // Puts `made` at `i` of the `n` sorted members from `e`, moving the later ones up a slot.
   static V& insertSorted( Entry* e, std::uint32_t n, std::uint32_t i, Entry&& made ) {
      if( i == n ) {
         new( e + n ) Entry( std::move( made ) );
      } else {
         new( e + n ) Entry( std::move( e[ n - 1 ] ) );
         std::move_backward( e + i, e + n - 1, e + n );
         e[ i ] = std::move( made );
      }
      return e[ i ].second;
   }
   V& insertAt( std::uint32_t i, Entry&& made ) {
      V& added = insertSorted( entries(), h_->size, i, std::move( made ) );
      ++h_->size;
      touch();
      return added;
   }
   void eraseIndex( std::uint32_t i ) {
      Entry* const e = entries();
      std::uint32_t const n = h_->size;
      std::move( e + i + 1, e + n, e + i );
      e[ n - 1 ].~Entry();
      if( --h_->size == 0 ) {
         release();
         return;
      }
      touch();
   }
   void afterTreeErase() {
      if( tree().empty() ) {
         release();
         return;
      }
      touch();
   }
   // The full array moves into a tree.
   void toTree() {
      auto* const block = static_cast< Header* >( Pool::allocate( treeBytes ) );
      block->size = 0;
      block->capacity = treeMode;
      Map* const map = new( block + 1 ) Map();
      for( std::uint32_t i = 0; i < h_->size; ++i )
         map->emplace_hint( map->end(), std::move( entries()[ i ] ) );
      release();
      h_ = block;
      touch();
   }
   // The members before the hint's are all below its key, so below `k` too.
   V* findInTree( K const& k, Hint& hint, bool usable ) const {
      Map& map = tree();
      if( usable ) {
         auto at = hint.at_;
         for( int step = 0; step < 3 && at != map.end(); ++step, ++at ) {
            if( at->first < k ) continue;
            hint.at_ = at;
            return k < at->first ? nullptr : &at->second;
         }
      }
      hint.at_ = map.lower_bound( k );
      return hint.at_ != map.end() && !( k < hint.at_->first ) ? &hint.at_->second : nullptr;
   }
   V* findInChunks( K const& k, Hint& hint, bool usable ) const {
      Chunks const& all = chunks();
      if( usable ) {
         ChunkAt at = hint.chunkAt_;
         std::uint32_t from = hint.index_;
         if( from >= all[ at ].size || all[ at ].at( all[ at ].size - 1 ).first < k ) {
            ++at;
            from = 0;
         }
         if( at != all.end() && !( all[ at ].at( all[ at ].size - 1 ).first < k ) ) {
            return foundIn( at, lowerIn( all[ at ], k, from ), k, hint );
         }
      }
      ChunkAt const at = chunkOf( k );
      return foundIn( at, lowerIn( all[ at ], k ), k, hint );
   }
   // ---- chunks ----
   // The chunk that holds `k` or would take it: the last whose index key is not above `k`, or
   // the first. A chunk's index key lies above every member of the chunks before it and at or
   // below its own members (the first chunk's may be anything): it need not change when the
   // chunk's first member goes or a smaller one comes. Keys in ascending order mostly go to the
   // last chunk: its search is skipped.
   ChunkAt chunkOf( K const& k ) const {
      Chunks const& all = chunks();
      ChunkAt const last = all.end() - 1;
      if( !( k < all[ last ].low ) ) return last;
      auto const above = std::upper_bound(
            all.index.begin(), all.index.begin() + last, k,
            []( K const& key, void* c ) { return key < static_cast< Chunk* >( c )->low; } );
      return above == all.index.begin() ? 0 : ChunkAt( above - all.index.begin() - 1 );
   }
   // The first member of `c` from `from` on that is not below `k`.
   static std::uint32_t lowerIn( Chunk& c, K const& k, std::uint32_t from = 0 ) {
      Entry* const first = c.entries();
      Entry* const last = first + c.size;
      if( first != last && last[ -1 ].first < k ) return c.size;
      // A lookup through a hint mostly wants the member where the last one ended, or the next.
      for( std::uint32_t i = from; i < from + 2 && i < c.size; ++i ) {
         if( !( first[ i ].first < k ) ) return i;
      }
      auto const at = std::lower_bound(
            first + from, last, k, []( Entry const& e, K const& key ) { return e.first < key; } );
      return static_cast< std::uint32_t >( at - first );
   }
   V* foundIn( ChunkAt at, std::uint32_t i, K const& k, Hint& hint ) const {
      hint.chunkAt_ = at;
      hint.index_ = i;
      Chunk& c = chunks()[ at ];
      return i < c.size && !( k < c.at( i ).first ) ? &c.at( i ).second : nullptr;
   }
   static Chunk* newChunk() { return new( Pool::allocate( sizeof( Chunk ) ) ) Chunk; }
   static void freeChunk( Chunk* c ) noexcept {
      for( std::uint32_t i = 0; i < c->size; ++i )
         c->at( i ).~Entry();
      c->~Chunk();
      Pool::release( c, sizeof( Chunk ) );
   }
   // Moves the members to the first slots.
   static void compact( Chunk& c ) {
      if( c.start == 0 ) return;
      for( std::uint32_t j = 0; j < c.size; ++j ) {
         new( c.slots() + j ) Entry( std::move( c.at( j ) ) );
         c.at( j ).~Entry();
      }
      c.start = 0;
   }
   // Moves the members of `from` from `i` on to the end of `to`.
   static void moveTail( Chunk& from, std::uint32_t i, Chunk& to ) {
      if( to.start + to.size + ( from.size - i ) > chunkCapacity ) compact( to );
      for( std::uint32_t j = i; j < from.size; ++j ) {
         new( to.entries() + to.size++ ) Entry( std::move( from.at( j ) ) );
         from.at( j ).~Entry();
      }
      from.size = i;
   }
   V& chunkInsert( ChunkAt at, std::uint32_t i, Entry&& made ) {
      Chunk* c = &chunks()[ at ];
      Chunk* fresh = nullptr;
      if( c->size == chunkCapacity ) {
         // A member past the end of the last chunk starts a new one, so that a table filled in
         // key order leaves its chunks full; elsewhere the chunk splits in halves.
         bool const appending = i == c->size && at + 1 == chunks().end();
         std::uint32_t const keep = appending ? c->size : c->size / 2;
         fresh = newChunk();
         moveTail( *c, keep, *fresh );
         if( i >= keep ) {
            i -= keep;
            c = fresh;
         }
      }
      V& added = insertIn( *c, i, std::move( made ) );
      if( fresh ) {
         fresh->low = fresh->at( 0 ).first;
         chunks().index.insert( chunks().index.begin() + at + 1, fresh );
      }
      ++chunks().count;
      touch();
      return added;
   }
   static V& insertIn( Chunk& c, std::uint32_t i, Entry&& made ) {
      if( c.start + c.size == chunkCapacity ) compact( c );
      V& added = insertSorted( c.entries(), c.size, i, std::move( made ) );
      ++c.size;
      return added;
   }
   // Removes member `i` of the chunk at `at`; where the next member now is.
   std::pair< ChunkAt, std::uint32_t > chunkErase( ChunkAt at, std::uint32_t i ) {
      Chunk* const c = &chunks()[ at ];
      Entry* const e = c->entries();
      // The shorter side moves.
      if( i < c->size / 2 ) {
         std::move_backward( e, e + i, e + i + 1 );
         e[ 0 ].~Entry();
         ++c->start;
      } else {
         std::move( e + i + 1, e + c->size, e + i );
         e[ c->size - 1 ].~Entry();
      }
      --c->size;
      if( --chunks().count == 0 ) {
         release();
         return { 0, 0 };
      }
      touch();
      Chunks& all = chunks();
      if( c->size == 0 ) {
         freeChunk( c );
         all.index.erase( all.index.begin() + at );
         return { at, 0 };
      }
      // A chunk a quarter full takes in the next one when both fit in three quarters of one, so
      // that removals do not leave memory behind in nearly empty chunks.
      ChunkAt const next = at + 1;
      if( c->size < chunkCapacity / 4 && next != all.end() &&
          c->size + all[ next ].size <= chunkCapacity * 3 / 4 ) {
         moveTail( all[ next ], 0, *c );
         freeChunk( &all[ next ] );
         all.index.erase( all.index.begin() + next );
      }
      return { at, i };
   }
   // The big tree becomes chunks, each filled.
   void toChunks() {
      auto* const block = static_cast< Header* >( Pool::allocate( chunksBytes ) );
      block->size = 0;
      block->capacity = chunkMode;
      Chunks* const made = new( block + 1 ) Chunks();
      Chunk* c = nullptr;
      for( auto& [ k, v ] : tree() ) {
         if( !c || c->size == chunkCapacity ) {
            c = newChunk();
            c->low = k;
            made->index.push_back( c );
         }
         new( c->entries() + c->size++ ) Entry( k, std::move( v ) );
         ++made->count;
      }
      release();
      h_ = block;
      touch();
   }

   void release() noexcept {
      if( !h_ ) return;
      if( isChunked() ) {
         for( void* chunk : chunks().index )
            freeChunk( static_cast< Chunk* >( chunk ) );
         chunks().~Chunks();
         Pool::release( h_, chunksBytes );
      } else if( isTree() ) {
         tree().~Map();
         Pool::release( h_, treeBytes );
      } else {
         for( std::uint32_t i = 0; i < h_->size; ++i )
            entries()[ i ].~Entry();
         Pool::release( h_, arrayBytes( h_->capacity ) );
      }
      h_ = nullptr;
   }

   Header* h_ = nullptr;
};

}  // namespace Zub
