// Keyed tables of fixed-size plain records with one writer and any number of readers, each
// reader seeing changes through a notification per key.
//
// A table's records live in a `GlarnStore`, which stands for the shared memory: every view of
// the table opened on the same store sees the same records, and each view notifies its own
// reactors when a record is written or removed. A view opened for writing writes through a
// `GlarnBaseWriter`; one opened read-only holds a `GlarnBaseDummy`, whose every operation
// refuses with Pelto::NoPermissionException.
//
// Reading. `safeLookup( key, found, out )` copies a record; iteration visits the records in
// key order and survives writes made meanwhile. A record that reads inconsistent (torn by a
// writer; `GlarnStore::corrupt` makes one for tests) raises Pelto::CorruptionDetectedException,
// which the view catches in its lookup and iteration paths: it traces, detaches from the store,
// marks its collection not ready and notifies, then rethrows.
//
// Reactors derive from the named table's Notifiee (onOverride, onHwFecId, ...). A reactor
// declared immediate hears the keyless form and walks the table itself.
#pragma once

#include <cstdint>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

#include "NevQos/platform/pelto/PeltoException.h"
#include "NevQos/platform/zub/Collection.h"
#include "NevQos/platform/zub/Notifiee.h"
#include "NevQos/platform/zub/String.h"
#include "NevQos/platform/zub/Trace.h"

namespace Glarn {

// How a reader means to walk a table. Every walk here is in key order; the hint is kept for the
// interface's sake.
enum class IterHint : std::uint8_t { none = 0, sequential = 1 };

// How a view is opened.
enum class Access : std::uint8_t { readOnly, writer };

// The library's own diagnostics.
extern Zub::TraceHandle glarnTrace;

template< class Record >
class GlarnMap;

// The records of one table, shared by all its views.
template< class Record >
class GlarnStore : public Zub::PtrInterface {
 public:
   using Key = std::remove_cvref_t< decltype( Record::key ) >;
   static_assert( std::is_trivially_copyable_v< Record > && std::is_standard_layout_v< Record >,
                  "a shared table holds plain, fixed-size records" );

   explicit GlarnStore( Zub::String path ) : path_( std::move( path ) ) {}
   Zub::String const& path() const { return path_; }

   // The record of `key`, or null. Throws CorruptionDetectedException for a torn record.
   Record const* read( Key const& key ) const {
      Record const* r = records_.find( key );
      if( r && torn_.has( key ) ) throw corruption();
      return r;
   }
   // read( key ), starting from where the last read through `hint` ended.
   Record const* read( Key const& key, typename Zub::Collection< Key, Record >::Hint& hint ) const {
      Record const* r = records_.find( key, hint );
      if( r && torn_.has( key ) ) throw corruption();
      return r;
   }
   Zub::Collection< Key, Record > const& records() const { return records_; }
   bool torn( Key const& key ) const { return torn_.has( key ); }
   Pelto::CorruptionDetectedException corruption() const {
      return Pelto::CorruptionDetectedException( "inconsistent record in " + path_.stdString() );
   }

   void write( Record const& record ) {
      torn_.erase( record.key );
      if( records_.set( record.key, record ) ) notify( record.key );
   }
   void remove( Key const& key ) {
      torn_.erase( key );
      if( records_.erase( key ) ) notify( key );
   }
   void removeAll() {
      while( Key const* first = records_.firstKey() )
         remove( Key( *first ) );
   }
   // Damages the record of `key` as a torn write would; readers of it detect the corruption.
   void corrupt( Key const& key ) {
      if( records_.has( key ) ) torn_.set( key, true );
   }

 private:
   friend class GlarnMap< Record >;
   void notify( Key const& key ) {
      // Most tables have one view, often the writer's own: no copy to make.
      if( views_.size() == 1 ) {
         views_.front()->recordChanged( key );
         return;
      }
      // A view may detach while it is told; walk a copy.
      std::vector< GlarnMap< Record >* > const views = views_;
      for( GlarnMap< Record >* v : views )
         v->recordChanged( key );
   }

   Zub::String path_;
   Zub::Collection< Key, Record > records_;
   Zub::Collection< Key, bool > torn_;
   std::vector< GlarnMap< Record >* > views_;
};

// What a view writes through.
template< class Record >
class GlarnBase {
 public:
   using Key = typename GlarnStore< Record >::Key;
   virtual ~GlarnBase() = default;
   virtual void write( Record const& record ) = 0;
   virtual void directWrite( Record const& record ) = 0;
   virtual void directUpdate( Record const& record ) = 0;
   virtual void directCommit() = 0;
   virtual void remove( Key const& key ) = 0;
   virtual void cleanup() = 0;
   virtual void validateFiles() = 0;
   virtual void validate() = 0;
};

// The writer of a table. In one process the direct forms are plain writes: there is no
// separate commit to wait for.
template< class Record >
class GlarnBaseWriter : public GlarnBase< Record > {
 public:
   using Key = typename GlarnBase< Record >::Key;
   explicit GlarnBaseWriter( Zub::Ptr< GlarnStore< Record > > store )
       : store_( std::move( store ) ) {}
   void write( Record const& record ) override { store_->write( record ); }
   void directWrite( Record const& record ) override { store_->write( record ); }
   void directUpdate( Record const& record ) override { store_->write( record ); }
   void directCommit() override {}
   void remove( Key const& key ) override { store_->remove( key ); }
   void cleanup() override { store_->removeAll(); }
   void validateFiles() override {}
   // Reads every record, so that a damaged one raises CorruptionDetectedException.
   void validate() override {
      for( auto it = store_->records().iter(); it; ++it )
         store_->read( it.key() );
   }

 private:
   Zub::Ptr< GlarnStore< Record > > store_;
};

// The refusal texts of a read-only view, by operation.
[[noreturn]] void refuseWrite();
[[noreturn]] void refuseRemove();
[[noreturn]] void refuseCleanup();
[[noreturn]] void refuseValidateFiles();
[[noreturn]] void refuseValidate();

// Stands in for the writer of a view opened read-only.
template< class Record >
class GlarnBaseDummy : public GlarnBase< Record > {
 public:
   using Key = typename GlarnBase< Record >::Key;
   void write( Record const& ) override { refuseWrite(); }
   void directWrite( Record const& ) override { refuseWrite(); }
   void directUpdate( Record const& ) override { refuseWrite(); }
   void directCommit() override { refuseWrite(); }
   void remove( Key const& ) override { refuseRemove(); }
   void cleanup() override { refuseCleanup(); }
   void validateFiles() override { refuseValidateFiles(); }
   void validate() override { refuseValidate(); }
};

void traceCorruptionDetected( Zub::String const& path, char const* message );
void traceDetach( Zub::String const& path );
void traceCollectionReady( bool ready, bool notifying );

// One view of a table.
template< class Record >
class GlarnMap : public Zub::Notifier {
 public:
   using Key = typename GlarnStore< Record >::Key;
   using Access = Glarn::Access;

   class Notifiee : public Zub::NotifieeBase {
    public:
      static constexpr std::uint8_t zubDepth = 1;
      Zub::Ptr< GlarnMap const > notifier() const {
         return static_cast< GlarnMap const* >( this->zubNotifier() );
      }
      void notifierIs( Zub::Ptr< GlarnMap const > const& n ) {
         this->zubNotifierIs( n.ptr(), zubDepth, true );
      }
      void notifierIsWithoutCatchUp( Zub::Ptr< GlarnMap const > const& n ) {
         this->zubNotifierIs( n.ptr(), zubDepth, false );
      }
      // The named tables turn these into their own callbacks.
      virtual void onRecord( Key const& ) {}
      virtual void onRecordzubImmediate() {}
      virtual void onCollectionReady() {}

    protected:
      void zubCatchUpCollections() override {
         Zub::Ptr< GlarnMap const > const map = notifier();
         if( !map || map->records().empty() ) return;
         if( this->notificationImmediate() ) {
            onRecordzubImmediate();
            return;
         }
         for( auto it = map->records().iter(); it; ++it ) {
            if( this->zubCatchUpStopped() ) return;
            onRecord( it.key() );
         }
      }
   };

   GlarnMap( Zub::Ptr< GlarnStore< Record > > const& store, Access access )
       : store_( store ), path_( store->path() ) {
      if( access == Access::writer ) {
         base_ = std::make_unique< GlarnBaseWriter< Record > >( store );
      } else {
         base_ = std::make_unique< GlarnBaseDummy< Record > >();
      }
      store_->views_.push_back( this );
   }
   ~GlarnMap() override { detach(); }
   GlarnMap( GlarnMap const& ) = delete;
   GlarnMap& operator=( GlarnMap const& ) = delete;

   Zub::String const& path() const { return path_; }
   bool collectionReady() const { return collectionReady_; }
   bool attached() const { return bool( store_ ); }
   // The records as they stand, not checked for damage; empty once detached.
   Zub::Collection< Key, Record > const& records() const {
      return store_ ? store_->records() : empty_;
   }
   std::size_t size() const { return records().size(); }

   // Whether `key` has a record, and a copy of it in `out` (the default record when not).
   bool safeLookup( Key const& key, bool& found, Record& out ) const {
      found = false;
      out = Record();
      if( !store_ ) return false;
      try {
         if( Record const* r = store_->read( key, hintFor( key ) ) ) {
            out = *r;
            found = true;
         }
      } catch( Pelto::CorruptionDetectedException const& e ) {
         const_cast< GlarnMap* >( this )->corruptionDetected( e );
      }
      return found;
   }
   bool has( Key const& key ) const {
      bool found = false;
      Record r;
      safeLookup( key, found, r );
      return found;
   }

   // Walks the records in key order; a damaged one ends the walk in corruptionDetected.
   class Iterator {
    public:
      explicit operator bool() const { return bool( it_ ); }
      Key const& key() const { return it_.key(); }
      Record const& value() const { return it_.value(); }
      Iterator& operator++() {
         ++it_;
         check();
         return *this;
      }

    private:
      friend class GlarnMap;
      Iterator( GlarnMap const* map, typename Zub::Collection< Key, Record >::Iterator it )
          : map_( map ), it_( it ) {
         check();
      }
      void check() {
         if( !it_ || !map_->store_ || !map_->store_->torn( it_.key() ) ) return;
         const_cast< GlarnMap* >( map_ )->corruptionDetected( map_->store_->corruption() );
      }
      GlarnMap const* map_;
      typename Zub::Collection< Key, Record >::Iterator it_;
   };
   Iterator iter( IterHint = IterHint::none ) const { return Iterator( this, records().iter() ); }

   // Writes through the view's writer; a read-only view refuses.
   void write( Record const& record ) { base_->write( record ); }
   void remove( Key const& key ) { base_->remove( key ); }
   void cleanup() { base_->cleanup(); }
   GlarnBase< Record >& base() { return *base_; }

 private:
   friend class GlarnStore< Record >;
   void recordChanged( Key const& key ) {
      this->template zubNotify< Notifiee >( [ &key ]( Notifiee& n ) {
         if( n.notificationImmediate() ) {
            n.onRecordzubImmediate();
         } else {
            n.onRecord( key );
         }
      } );
   }
   [[noreturn]] void corruptionDetected( Pelto::CorruptionDetectedException const& e ) {
      traceCorruptionDetected( path_, e.what() );
      detach();
      collectionReadyIs( false, true );
      throw e;
   }
   void detach() {
      if( !store_ ) return;
      traceDetach( path_ );
      auto& views = store_->views_;
      for( auto it = views.begin(); it != views.end(); ++it ) {
         if( *it == this ) {
            views.erase( it );
            break;
         }
      }
      store_ = nullptr;
   }
   void collectionReadyIs( bool ready, bool notifying ) {
      traceCollectionReady( ready, notifying );
      collectionReady_ = ready;
      if( notifying ) {
         this->template zubNotify< Notifiee >( []( Notifiee& n ) { n.onCollectionReady(); } );
      }
   }

   Zub::Ptr< GlarnStore< Record > > store_;
   using Hint = typename Zub::Collection< Key, Record >::Hint;
   // Readers often look keys up in ascending order, or in two such sequences by turns (a review
   // of a queue of override keys, and the FECs of each key): a lookup starts where the nearest
   // lookup below it ended, or takes the place of the older one.
   Hint& hintFor( Key const& key ) const {
      Hint* nearest = nullptr;
      for( Hint& hint : lookupHints_ ) {
         if( hint.precedes( key ) && ( !nearest || nearest->key() < hint.key() ) ) nearest = &hint;
      }
      if( !nearest ) nearest = &lookupHints_[ olderHint_ ];
      olderHint_ = nearest == &lookupHints_[ 0 ] ? 1 : 0;
      return *nearest;
   }
   mutable Hint lookupHints_[ 2 ];
   mutable std::uint8_t olderHint_ = 0;
   std::unique_ptr< GlarnBase< Record > > base_;
   Zub::String path_;
   bool collectionReady_ = true;
   static inline Zub::Collection< Key, Record > const empty_{};
};

}  // namespace Glarn
