#include "NevQos/sim/chip/Tcam.h"

#include <algorithm>
#include <stdexcept>
#include <tuple>
#include <utility>

namespace Sim {

Tcam::Tcam( std::uint32_t sliceEntries, std::uint32_t rangeCheckers )
    : rangeCheckers_( rangeCheckers ) {
   for( char const* name : { "ipv4", "ipv6", "mac" } )
      slices_[ name ] = Slice{ sliceEntries, 0 };
}

void Tcam::open( AclId const& id, std::string const& slice ) {
   if( !slices_.contains( slice ) ) throw std::invalid_argument( "no TCAM slice " + slice );
   destroy( id );
   acls_[ id ].slice = slice;
}

bool Tcam::add( AclId const& id, TcamEntry entry, std::optional< std::uint32_t > limit ) {
   auto it = acls_.find( id );
   if( it == acls_.end() ) throw std::logic_error( "entry for an ACL not open: " + id );
   Slice& slice = slices_.at( it->second.slice );
   if( slice.used >= slice.size ) return false;
   if( limit && slice.used >= *limit ) return false;
   ++slice.used;
   auto& entries = it->second.entries;
   if( !entries.empty() && std::tie( entry.ruleNum, entry.subruleNum ) <
                                 std::tie( entries.back().ruleNum, entries.back().subruleNum ) ) {
      it->second.ordered = false;
   }
   entries.push_back( std::move( entry ) );
   return true;
}

void Tcam::commit( AclId const& id ) {
   auto it = acls_.find( id );
   if( it != acls_.end() ) it->second.committed = true;
}

void Tcam::release( Acl& acl ) {
   slices_.at( acl.slice ).used -= static_cast< std::uint32_t >( acl.entries.size() );
   acl.entries.clear();
   for( RangeNeed const& need : acl.checkers ) {
      auto ref = checkerRefs_.find( need );
      if( ref != checkerRefs_.end() && --ref->second == 0 ) checkerRefs_.erase( ref );
   }
   acl.checkers.clear();
}

void Tcam::destroy( AclId const& id ) {
   auto it = acls_.find( id );
   if( it == acls_.end() ) return;
   release( it->second );
   acls_.erase( it );
}

std::vector< RangeNeed > Tcam::acquire( AclId const& id, std::vector< RangeNeed > const& needs ) {
   Acl& acl = acls_.at( id );
   std::vector< RangeNeed > fresh;
   std::uint32_t newCheckers = 0;
   for( RangeNeed const& need : needs ) {
      if( std::find( acl.checkers.begin(), acl.checkers.end(), need ) != acl.checkers.end() ) {
         continue;
      }
      fresh.push_back( need );
      if( !checkerRefs_.contains( need ) ) ++newCheckers;
   }
   if( checkersExhausted_ && newCheckers > 0 ) return fresh;
   if( rangeCheckersUsed() + newCheckers > rangeCheckers_ ) return fresh;
   for( RangeNeed const& need : fresh ) {
      ++checkerRefs_[ need ];
      acl.checkers.push_back( need );
   }
   return {};
}

std::string const* TcamEntry::field( std::string const& name ) const {
   for( TcamField const& f : fields ) {
      if( f.first == name ) return &f.second;
   }
   return nullptr;
}

TcamEntry const* Tcam::entry( AclId const& id, std::uint32_t ruleNum,
                              std::uint32_t subruleNum ) const {
   auto const acl = acls_.find( id );
   if( acl == acls_.end() ) return nullptr;
   auto const& entries = acl->second.entries;
   auto const matches = [ & ]( TcamEntry const& e ) {
      return e.ruleNum == ruleNum && e.subruleNum == subruleNum;
   };
   if( !acl->second.ordered ) {
      auto const e = std::find_if( entries.begin(), entries.end(), matches );
      return e == entries.end() ? nullptr : &*e;
   }
   auto const e = std::lower_bound(
         entries.begin(), entries.end(), std::make_pair( ruleNum, subruleNum ),
         []( TcamEntry const& x, std::pair< std::uint32_t, std::uint32_t > k ) {
            return std::tie( x.ruleNum, x.subruleNum ) < std::tie( k.first, k.second );
         } );
   return e != entries.end() && matches( *e ) ? &*e : nullptr;
}

bool Tcam::corrupt( AclId const& id, std::uint32_t ruleNum, std::uint32_t subruleNum,
                    std::string const& name, std::string const& value ) {
   auto const acl = acls_.find( id );
   if( acl == acls_.end() ) return false;
   auto& entries = acl->second.entries;
   auto const e = std::find_if( entries.begin(), entries.end(), [ & ]( TcamEntry const& x ) {
      return x.ruleNum == ruleNum && x.subruleNum == subruleNum;
   } );
   if( e == entries.end() ) return false;
   if( name.empty() ) {
      entries.erase( e );
      --slices_.at( acl->second.slice ).used;
      return true;
   }
   for( TcamField& f : e->fields ) {
      if( f.first == name ) {
         f.second = value;
         return true;
      }
   }
   e->fields.emplace_back( name, value );
   return true;
}

bool Tcam::plant( AclId const& id, TcamEntry entry ) {
   auto const acl = acls_.find( id );
   if( acl == acls_.end() || this->entry( id, entry.ruleNum, entry.subruleNum ) ) return false;
   Slice& slice = slices_.at( acl->second.slice );
   if( slice.used >= slice.size ) return false;
   ++slice.used;
   auto& entries = acl->second.entries;
   // It passes for an entry of the rule whose number it bears, if that rule has entries.
   for( TcamEntry const& e : entries ) {
      if( e.ruleNum == entry.ruleNum && e.ruleId != 0 ) entry.ruleId = e.ruleId;
   }
   // Behind the last entry of lower numbers, so that an ordered ACL stays ordered.
   auto const at = std::find_if( entries.begin(), entries.end(), [ & ]( TcamEntry const& x ) {
      return std::tie( x.ruleNum, x.subruleNum ) > std::tie( entry.ruleNum, entry.subruleNum );
   } );
   entries.insert( at, std::move( entry ) );
   return true;
}

}  // namespace Sim
