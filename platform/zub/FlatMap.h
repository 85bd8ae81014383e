// A map of small keys to small values held in one array (open addressing with linear probing).
// Adding, finding or removing a key reads one or two cache lines of the array, where a
// node-based map reads a bucket and several scattered nodes: for many small maps touched by
// turns (the keys of each of thousands of FECs, filled as a walk meets them) that difference is
// most of the cost. Members come out in slot order, which is the same on every run for the same
// operations. The array does not shrink: an owner drops a map that empties.
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace Zub {

template< class Key, class Value, class Hash >
class FlatMap {
   struct Slot {
      Key key{};
      Value value{};
      bool used = false;
   };

 public:
   class Iterator {
    public:
      Iterator() = default;
      Key const& key() const { return slot_->key; }
      Value const& value() const { return slot_->value; }
      Iterator& operator++() {
         ++slot_;
         skipFree();
         return *this;
      }
      bool operator==( Iterator const& o ) const { return slot_ == o.slot_; }

    private:
      friend class FlatMap;
      Iterator( Slot const* slot, Slot const* end ) : slot_( slot ), end_( end ) { skipFree(); }
      void skipFree() {
         while( slot_ != end_ && !slot_->used )
            ++slot_;
      }
      Slot const* slot_ = nullptr;
      Slot const* end_ = nullptr;
   };

   std::size_t size() const { return size_; }
   bool empty() const { return size_ == 0; }
   Iterator begin() const { return Iterator( slots_.data(), slots_.data() + slots_.size() ); }
   Iterator end() const {
      return Iterator( slots_.data() + slots_.size(), slots_.data() + slots_.size() );
   }

   // The key's value, or null. Good until the next insertion or removal.
   Value* find( Key const& key ) {
      if( slots_.empty() ) return nullptr;
      Slot& slot = slots_[ slotOf( key ) ];
      return slot.used ? &slot.value : nullptr;
   }
   Value const* find( Key const& key ) const { return const_cast< FlatMap* >( this )->find( key ); }

   // The key's value, made with Value{} when missing, and whether it was made.
   std::pair< Value*, bool > insert( Key const& key ) {
      // At most seven slots in ten used, so that probes stay short.
      if( ( size_ + 1 ) * 10 > slots_.size() * 7 ) grow();
      Slot& slot = slots_[ slotOf( key ) ];
      if( slot.used ) return { &slot.value, false };
      slot.key = key;
      slot.used = true;
      ++size_;
      return { &slot.value, true };
   }

   // True when the key was a member.
   bool erase( Key const& key ) {
      if( slots_.empty() ) return false;
      std::size_t hole = slotOf( key );
      if( !slots_[ hole ].used ) return false;
      // Later members of the probe run move back into the hole unless their home slot lies
      // after it, so that every member stays reachable from its home without markers.
      for( std::size_t next = ( hole + 1 ) & mask(); slots_[ next ].used;
           next = ( next + 1 ) & mask() ) {
         std::size_t const home = homeOf( slots_[ next ].key );
         bool const staysAfterHole =
               hole <= next ? ( hole < home && home <= next ) : ( hole < home || home <= next );
         if( staysAfterHole ) continue;
         slots_[ hole ] = std::move( slots_[ next ] );
         hole = next;
      }
      slots_[ hole ] = Slot{};
      --size_;
      return true;
   }

 private:
   std::size_t mask() const { return slots_.size() - 1; }
   std::size_t homeOf( Key const& key ) const {
      Hash const hash;
      return hash( key ) & mask();
   }
   // The key's slot, or the free slot where it would go.
   std::size_t slotOf( Key const& key ) const {
      std::size_t i = homeOf( key );
      while( slots_[ i ].used && !( slots_[ i ].key == key ) )
         i = ( i + 1 ) & mask();
      return i;
   }
   void grow() {
      std::vector< Slot > old =
            std::exchange( slots_, std::vector< Slot >( slots_.empty() ? 4 : slots_.size() * 2 ) );
      for( Slot& slot : old ) {
         if( slot.used ) slots_[ slotOf( slot.key ) ] = std::move( slot );
      }
   }

   std::vector< Slot > slots_;
   std::size_t size_ = 0;
};

}  // namespace Zub
