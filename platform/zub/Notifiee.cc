#include "NevQos/platform/zub/Notifiee.h"

#include <algorithm>

namespace Zub {

void NotifieeList::add( NotifieeBase* n, std::uint8_t depth ) {
   entries_.push_back( { n, depth } );
}

void NotifieeList::remove( NotifieeBase* n ) {
   auto it = std::find_if( entries_.begin(), entries_.end(),
                           [ n ]( Entry const& e ) { return e.notifiee == n; } );
   if( it == entries_.end() ) return;
   if( walking_ ) {
      it->notifiee = nullptr;  // the walk in progress skips the hole
      holes_ = true;
   } else {
      entries_.erase( it );
   }
}

void NotifieeList::compact() {
   std::erase_if( entries_, []( Entry const& e ) { return e.notifiee == nullptr; } );
   holes_ = false;
}

NotifieeBase::~NotifieeBase() {
   if( notifier_ ) notifier_->notifieeList()->remove( this );
}

void NotifieeBase::zubNotifierIs( Notifier const* n, std::uint8_t depth, bool catchUp ) {
   if( n == notifier_.ptr() ) return;
   if( notifier_ ) notifier_->notifieeList()->remove( this );
   notifier_ = n;
   if( !n ) return;
   n->notifieeList()->add( this, depth );
   if( catchUp ) zubCatchUp();
}

void NotifieeBase::zubCatchUp() {
   Ptr< NotifieeBase > keep( references() ? this : nullptr );
   if( zubCatchUpStopped() ) return;
   zubCatchUpValues();
   if( zubCatchUpStopped() ) return;
   zubCatchUpCollections();
}

}  // namespace Zub
