// Reactors and the objects they watch.
//
// Rules of delivery, which every state machine relies on:
//
// - Single thread. A setter that really changes an attribute calls the reactors of its owner
//   synchronously, inside the setter, one at a time, in the order they attached. A write of the
//   value already held calls nothing.
// - A reactor with the zombie mark set, or with notification switched off, is skipped.
// - A reactor may detach, attach others, or drop the last reference to itself or to the watched
//   object while being called: the call in progress finishes safely, and a reactor attached
//   during a notification first hears the next change.
// - Catch-up. `notifierIs( p )` on a reactor attaches it and then calls every `onX()` of the
//   watched type in declared order (base class first), then walks each watched collection with
//   `onX( key )` per member (a reactor declared immediate: one `onXzubImmediate()` per
//   collection that has members), testing the zombie mark between steps and stopping when it
//   is set or when a handler detached the reactor. A reactor attached late thus sees the calls
//   it would have seen from the start.
// - While a state machine is being constructed, its reactors attach WITHOUT catch-up
//   (`notifierIsWithoutCatchUp`): the machine's `handleInitialized()` performs the initial walk
//   itself, in the order that machine fixes. Only reactors attached to a live machine catch up.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "NevQos/platform/zub/Ptr.h"

namespace Zub {

class Notifier;
class NotifieeBase;

// The reactors attached to one object.
class NotifieeList {
 public:
   static void* operator new( std::size_t size ) { return Pool::allocate( size ); }
   static void operator delete( void* p, std::size_t size ) noexcept { Pool::release( p, size ); }

   void add( NotifieeBase* n, std::uint8_t depth );
   void remove( NotifieeBase* n );
   std::size_t size() const { return entries_.size(); }

   // Calls f( notifiee ) for each live, active reactor whose depth is at least `depth`.
   template< class F >
   void forEach( std::uint8_t depth, F&& f );

 private:
   struct Entry {
      NotifieeBase* notifiee;
      std::uint8_t depth;
   };
   void compact();
   std::vector< Entry > entries_;
   int walking_ = 0;
   bool holes_ = false;
};

// Base of every reactor. A reactor holds a reference to what it watches.
class NotifieeBase : public PtrInterface {
 public:
   NotifieeBase() = default;
   ~NotifieeBase() override;

   void hasNotificationActiveIs( bool active ) override { active_ = active; }
   bool hasNotificationActive() const { return active_; }
   FwkType fwkType() const override { return FwkType::reactor; }

   // A reactor declared immediate hears the keyless `onXzubImmediate()` for a collection in
   // place of the keyed `onX( key )`.
   virtual bool notificationImmediate() const { return false; }

   // Level of the watched type in its class hierarchy, 0 for Zub::Entity.
   static constexpr std::uint8_t zubDepth = 0;

 protected:
   Notifier const* zubNotifier() const { return notifier_.ptr(); }
   // Attaches to `n`, replacing the current object; a null `n` only detaches.
   void zubNotifierIs( Notifier const* n, std::uint8_t depth, bool catchUp );
   void zubCatchUp();
   // A catch-up ends at the zombie mark, and when a handler detached the reactor.
   bool zubCatchUpStopped() const { return zombie() || !notifier_; }
   // Generated per watched type: the value callbacks in order, then the collection walks.
   virtual void zubCatchUpValues() {}
   virtual void zubCatchUpCollections() {}

 private:
   Ptr< Notifier const > notifier_;
   bool active_ = true;
};

// Anything that reactors can watch.
class Notifier : public PtrInterface {
 public:
   // Made with the first reactor: most objects are never watched.
   NotifieeList* notifieeList() const override {
      if( !notifiees_ ) notifiees_ = std::make_unique< NotifieeList >();
      return notifiees_.get();
   }

 protected:
   // Calls f( N& ) on each reactor of type N (or a derived type) attached here. The object and
   // each reactor are kept alive across the call.
   template< class N, class F >
   void zubNotify( F&& f ) const;

 private:
   mutable std::unique_ptr< NotifieeList > notifiees_;
};

template< class F >
void NotifieeList::forEach( std::uint8_t depth, F&& f ) {
   ++walking_;
   std::size_t const n = entries_.size();  // reactors attached meanwhile wait for the next change
   for( std::size_t i = 0; i < n; ++i ) {
      NotifieeBase* r = entries_[ i ].notifiee;
      if( !r || entries_[ i ].depth < depth || r->zombie() || !r->hasNotificationActive() ) {
         continue;
      }
      if( r->references() ) {
         Ptr< NotifieeBase > keep( r );
         f( r );
      } else {
         f( r );
      }
   }
   if( --walking_ == 0 && holes_ ) compact();
}

template< class N, class F >
void Notifier::zubNotify( F&& f ) const {
   if( !notifiees_ || notifiees_->size() == 0 ) return;
   Ptr< Notifier const > keep( references() ? this : nullptr );
   notifiees_->forEach( N::zubDepth, [ &f ]( NotifieeBase* r ) { f( *static_cast< N* >( r ) ); } );
}

}  // namespace Zub
