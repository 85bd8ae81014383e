#include "NevQos/types/OverrideKeySet.h"

#include <bit>

namespace Nev {

std::size_t OverrideKeySet::GroupHash::operator()( Group const& group ) const noexcept {
   // Every input bit reaches the low bits that pick a slot.
   std::uint64_t x =
         group.fecId ^ ( std::uint64_t( group.block ) << 56 ) ^ ( std::uint64_t( group.af ) << 48 );
   x = ( x ^ ( x >> 33 ) ) * 0xff51afd7ed558ccdULL;
   x = ( x ^ ( x >> 33 ) ) * 0xc4ceb9fe1a85ec53ULL;
   return static_cast< std::size_t >( x ^ ( x >> 33 ) );
}

OverrideKeySet::Group OverrideKeySet::groupOf( Key const& key ) {
   return Group{ key.fecId, key.af, std::uint32_t( key.dscp.value() / 64 ) };
}

std::uint64_t OverrideKeySet::bitOf( Key const& key ) {
   return std::uint64_t( 1 ) << ( key.dscp.value() % 64 );
}

bool OverrideKeySet::contains( Key const& key ) const {
   std::uint64_t const* bits = groups_.find( groupOf( key ) );
   return bits && ( *bits & bitOf( key ) );
}

bool OverrideKeySet::insert( Key const& key ) {
   std::uint64_t& bits = *groups_.insert( groupOf( key ) ).first;
   if( bits & bitOf( key ) ) return false;
   bits |= bitOf( key );
   ++size_;
   return true;
}

bool OverrideKeySet::erase( Key const& key ) {
   Group const group = groupOf( key );
   std::uint64_t* bits = groups_.find( group );
   if( !bits || !( *bits & bitOf( key ) ) ) return false;
   *bits &= ~bitOf( key );
   --size_;
   // A group stands only while it has members, so that a set emptied holds nothing.
   if( !*bits ) groups_.erase( group );
   return true;
}

OverrideKeySet::Iterator::Iterator( Groups::Iterator group, Groups::Iterator end )
    : group_( group ), end_( end ) {
   if( group_ != end_ ) bits_ = group_.value();
}

OverrideKeySet::Key OverrideKeySet::Iterator::operator*() const {
   Group const& group = group_.key();
   auto const dscp = group.block * 64 + unsigned( std::countr_zero( bits_ ) );
   return Key{ group.af, Qos::Dscp( dscp ), group.fecId };
}

OverrideKeySet::Iterator& OverrideKeySet::Iterator::operator++() {
   bits_ &= bits_ - 1;
   if( bits_ ) return *this;
   ++group_;
   if( group_ != end_ ) bits_ = group_.value();
   return *this;
}

}  // namespace Nev
