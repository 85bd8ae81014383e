// Keyed collections. They iterate in ascending key order, so every run of the same input visits
// members in the same order, and their iterators survive any insertion or removal made while
// iterating, including removal of the member under the iterator: the next step goes to the
// first member after the last key visited, so no member is visited twice.
#pragma once

#include <cstdint>
#include <map>
#include <utility>

#include "zub/Pool.h"

namespace Zub {

template< class K, class V >
class Collection {
   // Nodes from the runtime's free lists: members come and go by the thousand.
   using Map = std::map< K, V, std::less< K >, Pool::Allocator< std::pair< K const, V > > >;

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
         if( c_->erasures_ == erasures_ ) {
            ++at_;
         } else {
            at_ = c_->map_.upper_bound( key_ );
         }
         load();
         return *this;
      }
      // Range-for support: compares against the end sentinel only.
      bool operator!=( std::nullptr_t ) const { return c_ != nullptr; }

    private:
      friend class Collection;
      Iterator( Collection const* c, typename Map::const_iterator at ) : c_( c ), at_( at ) {
         load();
      }
      void load() {
         if( at_ == c_->map_.end() ) {
            c_ = nullptr;
            return;
         }
         key_ = at_->first;
         value_ = at_->second;
         erasures_ = c_->erasures_;
      }
      Collection const* c_ = nullptr;
      typename Map::const_iterator at_;
      K key_{};
      V value_{};
      std::uint64_t erasures_ = 0;
   };

   // Range-for over members: `for( auto const& v : coll )` gives values through an Iterator.
   struct Range {
      Collection const* c;
      Iterator begin() const { return c->iter(); }
      std::nullptr_t end() const { return nullptr; }
   };

   Iterator iter() const { return Iterator( this, map_.begin() ); }
   // First member with a key not below `k`.
   Iterator iterFrom( K const& k ) const { return Iterator( this, map_.lower_bound( k ) ); }
   Iterator begin() const { return iter(); }
   std::nullptr_t end() const { return nullptr; }

   std::size_t size() const { return map_.size(); }
   bool empty() const { return map_.empty(); }
   bool has( K const& k ) const { return map_.find( k ) != map_.end(); }
   V const* find( K const& k ) const {
      auto it = map_.find( k );
      return it == map_.end() ? nullptr : &it->second;
   }
   V* find( K const& k ) {
      auto it = map_.find( k );
      return it == map_.end() ? nullptr : &it->second;
   }
   // Inserts or overwrites; false when the value held was equal already.
   bool set( K const& k, V const& v ) {
      if( beyondLast( k ) ) {
         map_.emplace_hint( map_.end(), k, v );
         return true;
      }
      auto [ it, inserted ] = map_.try_emplace( k, v );
      if( inserted ) return true;
      if( it->second == v ) return false;
      it->second = v;
      return true;
   }
   // The member of `k`, added as `v` when absent; the flag says whether it was added. One
   // search where find() and set() would take two.
   std::pair< V*, bool > insert( K const& k, V const& v ) {
      if( beyondLast( k ) ) return { &map_.emplace_hint( map_.end(), k, v )->second, true };
      auto [ it, inserted ] = map_.try_emplace( k, v );
      return { &it->second, inserted };
   }
   // Removes `k`; false when it was absent. The removed value is moved into `out`, if given,
   // so that its destruction can wait until the caller is done notifying.
   bool erase( K const& k, V* out = nullptr ) {
      auto it = map_.find( k );
      if( it == map_.end() ) return false;
      if( out ) *out = std::move( it->second );
      map_.erase( it );
      ++erasures_;
      return true;
   }
   // Removes the member `it` stands on and returns an iterator on the next one: a walk that
   // removes as it goes needs no search per step. An iterator that no longer stands on a member
   // (its member or another went since) falls back on the search.
   Iterator eraseAt( Iterator const& it ) {
      if( !it.c_ ) return it;
      if( it.c_ != this || it.erasures_ != erasures_ ) {
         K const key = it.key_;
         erase( key );
         return Iterator( this, map_.upper_bound( key ) );
      }
      auto const next = map_.erase( it.at_ );
      ++erasures_;
      return Iterator( this, next );
   }
   K const* firstKey() const { return map_.empty() ? nullptr : &map_.begin()->first; }

 private:
   // A key above every member's: walks that fill a collection in key order (a table read from
   // its start, a review settling keys one after another) add at the end without a search.
   bool beyondLast( K const& k ) const { return map_.empty() || map_.rbegin()->first < k; }

   Map map_;
   std::uint64_t erasures_ = 0;
};

}  // namespace Zub
