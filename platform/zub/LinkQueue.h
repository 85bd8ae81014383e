// A FIFO queue whose members carry an index that stays theirs while they are queued.
//
// `enq( v )` gives the new member the index max( nextIndex, tailIndex + 1 ) in the arithmetic of
// the index type, so an index that a member still holds is never given again, also after the
// queue has been emptied. When the next index plus one would equal the head's index the index
// space is full and `enq` throws RangeException "linkqueue index space full". `deq()` removes
// the head and returns its value, or the empty value on an empty queue.
#pragma once

#include <cstdint>
#include <deque>
#include <type_traits>
#include <utility>

#include "NevQos/platform/zub/Exception.h"

namespace Zub {

template< class Value, class Index = unsigned int >
class LinkQueue {
   static_assert( std::is_unsigned_v< Index > );

 public:
   struct Member {
      Index index;
      Value value;
   };

   std::size_t size() const { return members_.size(); }
   bool empty() const { return members_.empty(); }
   // Bumped by every change; lets a reader notice that the queue moved under it.
   std::uint64_t changes() const { return changes_; }
   Index headIndex() const { return members_.empty() ? nextIndex_ : members_.front().index; }
   Index nextIndex() const { return nextIndex_; }

   Index enq( Value v ) {
      Index index = nextIndex_;
      if( !members_.empty() ) {
         Index afterTail = static_cast< Index >( members_.back().index + 1 );
         // "max" in queue order: measured from the head, so wrapped indices compare right.
         if( offset( afterTail ) > offset( index ) ) index = afterTail;
         if( static_cast< Index >( index + 1 ) == members_.front().index ) {
            throwRangeException( "linkqueue index space full" );
         }
      }
      members_.push_back( { index, std::move( v ) } );
      nextIndex_ = static_cast< Index >( index + 1 );
      ++changes_;
      return index;
   }

   Value deq() {
      if( members_.empty() ) return Value{};
      Value v = std::move( members_.front().value );
      members_.pop_front();
      ++changes_;
      return v;
   }

   Value const* head() const { return members_.empty() ? nullptr : &members_.front().value; }

   // The member with `index`, or null.
   Value const* find( Index index ) const {
      auto it = locate( index );
      return it == members_.end() || it->index != index ? nullptr : &it->value;
   }
   Value get( Index index ) const {
      Value const* v = find( index );
      return v ? *v : Value{};
   }
   // Overwrites the member with `index`; an index not queued is inserted at its place in
   // queue order.
   void set( Index index, Value v ) {
      auto it = locate( index );
      if( it != members_.end() && it->index == index ) {
         it->value = std::move( v );
      } else {
         // Compared before inserting: into an empty queue the new member becomes the head,
         // which would move the origin of the comparison and leave nextIndex behind it.
         bool const advances = offset( index ) >= offset( nextIndex_ );
         members_.insert( it, { index, std::move( v ) } );
         if( advances ) nextIndex_ = static_cast< Index >( index + 1 );
      }
      ++changes_;
   }
   void del( Index index ) {
      auto it = locate( index );
      if( it == members_.end() || it->index != index ) return;
      members_.erase( it );
      ++changes_;
   }
   void delAll() {
      members_.clear();
      ++changes_;
   }

   auto begin() const { return members_.begin(); }
   auto end() const { return members_.end(); }

 private:
   // Distance from the head in queue order.
   Index offset( Index index ) const { return static_cast< Index >( index - headIndex() ); }
   auto locate( Index index ) const {
      Index const want = offset( index );
      auto it = members_.begin();
      // Indices grow along the queue, so a binary search on the offset finds the place.
      std::size_t lo = 0, hi = members_.size();
      while( lo < hi ) {
         std::size_t mid = ( lo + hi ) / 2;
         if( offset( members_[ mid ].index ) < want ) {
            lo = mid + 1;
         } else {
            hi = mid;
         }
      }
      return it + static_cast< std::ptrdiff_t >( lo );
   }
   auto locate( Index index ) {
      auto cit = std::as_const( *this ).locate( index );
      return members_.begin() + ( cit - members_.cbegin() );
   }

   std::deque< Member > members_;
   Index nextIndex_ = 0;
   std::uint64_t changes_ = 0;
};

}  // namespace Zub
