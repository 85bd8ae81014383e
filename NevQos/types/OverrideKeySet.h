// A set of override keys held as DSCP bits: the keys of one address family and FEC that differ
// only in DSCP share one word of a flat hash map. The keys that use one FEC are mostly of that
// kind (its own keys differ only in DSCP, and the keys of another FEC that it takes over mostly
// do too), so adding a key sets a bit in a word that the set already holds. A walk of the
// configuration in key order meets thousands of FECs by turns: a slot per key, at a place of its
// own in an array per FEC, missed the caches on almost every key. The members come out grouped,
// in slot order: the same on every run for the same operations.
#pragma once

#include <cstddef>
#include <cstdint>

#include "NevQos/platform/entities/FecOverride.h"
#include "NevQos/platform/zub/FlatMap.h"

namespace Nev {

class OverrideKeySet {
   using Key = Qos::Glarn::OverrideKey;
   // The DSCPs 0 to 63 are the bits of block 0; the sentinel 64 is bit 0 of block 1.
   struct Group {
      Glarn::Fib::FecId fecId = 0;
      Mirel::AddressFamily af = Mirel::ipunknown;
      std::uint32_t block = 0;
      bool operator==( Group const& ) const = default;
   };
   struct GroupHash {
      std::size_t operator()( Group const& group ) const noexcept;
   };
   using Groups = Zub::FlatMap< Group, std::uint64_t, GroupHash >;

 public:
   class Iterator {
    public:
      Key operator*() const;
      Iterator& operator++();
      bool operator==( Iterator const& o ) const { return group_ == o.group_ && bits_ == o.bits_; }

    private:
      friend class OverrideKeySet;
      Iterator( Groups::Iterator group, Groups::Iterator end );
      Groups::Iterator group_;
      Groups::Iterator end_;
      // The members of the group not visited yet.
      std::uint64_t bits_ = 0;
   };

   std::size_t size() const { return size_; }
   bool empty() const { return size_ == 0; }
   Iterator begin() const { return Iterator( groups_.begin(), groups_.end() ); }
   Iterator end() const { return Iterator( groups_.end(), groups_.end() ); }
   bool contains( Key const& key ) const;
   // True when the key was not a member.
   bool insert( Key const& key );
   // True when the key was a member.
   bool erase( Key const& key );

 private:
   static Group groupOf( Key const& key );
   static std::uint64_t bitOf( Key const& key );

   Groups groups_;
   std::size_t size_ = 0;
};

}  // namespace Nev
