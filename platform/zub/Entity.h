// Entities and the one-line attribute declarations that give them accessors and reactors.
//
// An entity type lists its attributes once, one line each, in an X-macro:
//
//    #define QOS_SERVICE_POLICY_STATUS_ATTRS( X )  (each line but the last ends in a backslash)
//       X( value, Version, version, Zub::Seconds, 0.0 )
//       X( keyed, IntfIds, intfIds, Qos::IntfPairKey, bool )
//    ZUB_ENTITY( ServicePolicyStatus, Qos::ServicePolicyKey, QOS_SERVICE_POLICY_STATUS_ATTRS )
//
// Kinds, with what each line produces:
//
//    X( value, Cap, name, Type, default )
//       name(), nameIs( v ); reactor callback onCap(). nameIs with the value held does nothing.
//    X( keyed, Cap, name, Key, Value )
//       name( k ) (the empty Value when absent), nameIs( k, v ), nameDel( k ), nameDelAll(),
//       nameHas( k ), nameSize(), name() (the collection, to iterate); callbacks onCap( k ) and,
//       for reactors declared immediate, onCapzubImmediate().
//    X( child, Cap, name, Key, Type )
//       Owned child entities: name( k ) (null when absent), nameIs( k, args... ) creates
//       Type( k, args... ) unless one exists and returns it, nameDel( k ), nameDelAll(),
//       nameHas( k ), nameSize(), name(); callbacks as for keyed.
//
// ZUB_ENTITY defines a whole entity class whose constructor parameter is its key.
// ZUB_ENTITY_BODY( Class, Base, ATTRS ) goes inside a hand-written class (one that needs its
// own constructor or operations, such as a helper) and declares the same members; it leaves the
// access at public. The generated `Class::Notifiee` derives from `Base::Notifiee`, so a reactor
// on a derived entity also hears the base's attributes.
#pragma once

#include <cstdint>
#include <limits>
#include <type_traits>
#include <utility>

#include "NevQos/platform/zub/Collection.h"
#include "NevQos/platform/zub/Notifiee.h"
#include "NevQos/platform/zub/Ptr.h"
#include "NevQos/platform/zub/Strep.h"
#include "NevQos/platform/zub/String.h"

namespace Zub {

// Every time in the system: seconds as a double. +inf means never, 0.0 not set.
using Seconds = double;
inline constexpr Seconds never = std::numeric_limits< double >::infinity();

class Entity : public Notifier {
 public:
   class Notifiee : public NotifieeBase {
    public:
      static constexpr std::uint8_t zubDepth = 0;
   };

   explicit Entity( String const& name ) { nameIs( name ); }
   ~Entity() override;
   FwkType fwkType() const override { return FwkType::entity; }

   String const& name() const { return ownFlag( namedFlag ) ? keptName() : nameFromKeyKept(); }
   // The path from the root: the parent's full name, "/", this name.
   String fullName() const;
   // A back pointer, valid while the parent lives; null for a root.
   Entity const* parent() const { return parent_; }
   Name parentAttrName() const;
   // `attrName` is the text of the attribute's name, which lives as long as the program.
   void parentIs( Entity const* parent, char const* attrName ) {
      parentIs( parent, attrNumberOf( attrName ) );
   }
   void parentIs( Entity const* parent, std::uint32_t attrNumber ) {
      parent_ = parent;
      ownFieldIs( attrNumber );
   }
   // The number under which the text of an attribute's name is kept: the entity keeps that
   // number in its flag word rather than a pointer of its own. 0 for none.
   static std::uint32_t attrNumberOf( char const* attrName );

 protected:
   // An entity named after its key: the name is built when first asked for, since most
   // entities are never asked and the text of a composite key is long.
   Entity() = default;
   virtual String nameFromKey() const { return String(); }

 private:
   // Set once the entity's name is kept. The other bits of the flag word are the derived
   // entity's.
   static constexpr std::uint32_t namedFlag = 1u;

   // Names are kept beside the entities rather than in them: most entities are never asked for
   // theirs, and a big configuration has hundreds of thousands of them.
   String const& keptName() const;
   String const& nameFromKeyKept() const { return nameIs( nameFromKey() ); }
   // Keeps `name` as the entity's and gives the kept text.
   String const& nameIs( String const& name ) const;

   Entity const* parent_ = nullptr;
};

// The name of an entity created under a key.
template< class K >
String entityNameOf( K const& key ) {
   if constexpr( std::is_convertible_v< K const&, String > ) {
      return String( key );
   } else if constexpr( std::is_same_v< K, Name > ) {
      return key.str();
   } else {
      return valueToStrep( key );
   }
}

}  // namespace Zub

// ---- generation, one expansion per attribute kind ----

#define ZUB_ATTR_CALLBACKS_value( Cap, name, Type, ... ) \
   virtual void on##Cap() {}
#define ZUB_ATTR_CALLBACKS_keyed( Cap, name, Key, ... ) \
   virtual void on##Cap( Key const& ) {}                \
   virtual void on##Cap##zubImmediate() {}
#define ZUB_ATTR_CALLBACKS_child ZUB_ATTR_CALLBACKS_keyed

#define ZUB_ATTR_CATCHUP_VALUES_value( Cap, name, ... ) \
   if( this->zubCatchUpStopped() ) return;              \
   this->on##Cap();
#define ZUB_ATTR_CATCHUP_VALUES_keyed( Cap, name, ... )
#define ZUB_ATTR_CATCHUP_VALUES_child( Cap, name, ... )

#define ZUB_ATTR_CATCHUP_COLLECTIONS_value( Cap, name, ... )
#define ZUB_ATTR_CATCHUP_COLLECTIONS_keyed( Cap, name, ... ) \
   if( this->zubCatchUpStopped() ) return;                   \
   if( this->notificationImmediate() ) {                     \
      if( !zubWatched->name().empty() ) {                    \
         this->on##Cap##zubImmediate();                      \
      }                                                      \
   } else {                                                  \
      for( auto it = zubWatched->name().iter(); it; ++it ) { \
         if( this->zubCatchUpStopped() ) return;             \
         this->on##Cap( it.key() );                          \
      }                                                      \
   }
#define ZUB_ATTR_CATCHUP_COLLECTIONS_child ZUB_ATTR_CATCHUP_COLLECTIONS_keyed

#define ZUB_ATTR_STORAGE_value( Cap, name, Type, Default ) Type zub_##name##_ = Default;
#define ZUB_ATTR_STORAGE_keyed( Cap, name, Key, Value ) \
   ::Zub::Collection< Key, Value > zub_##name##_;
#define ZUB_ATTR_STORAGE_child( Cap, name, Key, Type ) \
   ::Zub::Collection< Key, ::Zub::Ptr< Type > > zub_##name##_;

#define ZUB_ATTR_ACCESSORS_value( Cap, name, Type, Default )                      \
   Type const& name() const {                                                     \
      return zub_##name##_;                                                       \
   }                                                                              \
   void name##Is( Type const& v ) {                                               \
      if( zub_##name##_ == v ) return;                                            \
      zub_##name##_ = v;                                                          \
      this->template zubNotify< Notifiee >( []( Notifiee& n ) { n.on##Cap(); } ); \
   }

#define ZUB_ATTR_COLLECTION_COMMON( Cap, name, Key, Stored )        \
   ::Zub::Collection< Key, Stored > const& name() const {           \
      return zub_##name##_;                                         \
   }                                                                \
   bool name##Has( Key const& k ) const {                           \
      return zub_##name##_.has( k );                                \
   }                                                                \
   std::size_t name##Size() const {                                 \
      return zub_##name##_.size();                                  \
   }                                                                \
   void name##Del( Key const& k ) {                                 \
      Stored old{};                                                 \
      if( !zub_##name##_.erase( k, &old ) ) return;                 \
      zubForget##Cap( old );                                        \
      zubNotify##Cap( k );                                          \
   }                                                                \
   void name##DelAll() {                                            \
      while( Key const* first = zub_##name##_.firstKey() ) {        \
         Key k = *first;                                            \
         name##Del( k );                                            \
      }                                                             \
   }                                                                \
                                                                    \
 private:                                                           \
   void zubNotify##Cap( Key const& k ) {                            \
      this->template zubNotify< Notifiee >( [ &k ]( Notifiee& n ) { \
         if( n.notificationImmediate() ) {                          \
            n.on##Cap##zubImmediate();                              \
         } else {                                                   \
            n.on##Cap( k );                                         \
         }                                                          \
      } );                                                          \
   }                                                                \
                                                                    \
 public:

#define ZUB_ATTR_ACCESSORS_keyed( Cap, name, Key, Value ) \
   Value name( Key const& k ) const {                     \
      Value const* v = zub_##name##_.find( k );           \
      return v ? *v : Value{};                            \
   }                                                      \
   void name##Is( Key const& k, Value const& v ) {        \
      if( !zub_##name##_.set( k, v ) ) return;            \
      zubNotify##Cap( k );                                \
   }                                                      \
   static void zubForget##Cap( Value const& ) {}          \
   ZUB_ATTR_COLLECTION_COMMON( Cap, name, Key, Value )

#define ZUB_ATTR_ACCESSORS_child( Cap, name, Key, Type )                               \
   ::Zub::Ptr< Type > name( Key const& k ) const {                                     \
      ::Zub::Ptr< Type > const* v = zub_##name##_.find( k );                           \
      return v ? *v : ::Zub::Ptr< Type >();                                            \
   }                                                                                   \
   template< class... ZubArgs >                                                        \
   ::Zub::Ptr< Type > name##Is( Key const& k, ZubArgs&&... args ) {                    \
      auto const zubSpot = zub_##name##_.spot( k );                                    \
      if( zubSpot.found() ) return *zubSpot.found();                                   \
      static std::uint32_t const zubAttrNumber = ::Zub::Entity::attrNumberOf( #name ); \
      auto child = ::Zub::make< Type >( k, std::forward< ZubArgs >( args )... );       \
      child->parentIs( this, zubAttrNumber );                                          \
      zub_##name##_.insertAt( zubSpot, k, child );                                     \
      zubNotify##Cap( k );                                                             \
      return child;                                                                    \
   }                                                                                   \
   static void zubForget##Cap( ::Zub::Ptr< Type > const& c ) {                         \
      if( c ) c->parentIs( nullptr, 0u );                                              \
   }                                                                                   \
   ZUB_ATTR_COLLECTION_COMMON( Cap, name, Key, ::Zub::Ptr< Type > )

#define ZUB_X_CALLBACKS( kind, ... ) ZUB_ATTR_CALLBACKS_##kind( __VA_ARGS__ )
#define ZUB_X_CATCHUP_VALUES( kind, ... ) ZUB_ATTR_CATCHUP_VALUES_##kind( __VA_ARGS__ )
#define ZUB_X_CATCHUP_COLLECTIONS( kind, ... ) ZUB_ATTR_CATCHUP_COLLECTIONS_##kind( __VA_ARGS__ )
#define ZUB_X_STORAGE( kind, ... ) ZUB_ATTR_STORAGE_##kind( __VA_ARGS__ )
#define ZUB_X_ACCESSORS( kind, ... ) ZUB_ATTR_ACCESSORS_##kind( __VA_ARGS__ )

#define ZUB_ENTITY_BODY( Class, Base, ATTRS )                                \
 public:                                                                     \
   class Notifiee : public Base::Notifiee {                                  \
    public:                                                                  \
      static constexpr std::uint8_t zubDepth = Base::Notifiee::zubDepth + 1; \
      ::Zub::Ptr< Class const > notifier() const {                           \
         return static_cast< Class const* >( this->zubNotifier() );          \
      }                                                                      \
      void notifierIs( ::Zub::Ptr< Class const > const& n ) {                \
         this->zubNotifierIs( n.ptr(), zubDepth, true );                     \
      }                                                                      \
      void notifierIsWithoutCatchUp( ::Zub::Ptr< Class const > const& n ) {  \
         this->zubNotifierIs( n.ptr(), zubDepth, false );                    \
      }                                                                      \
      ATTRS( ZUB_X_CALLBACKS )                                               \
                                                                             \
    protected:                                                               \
      void zubCatchUpValues() override {                                     \
         Base::Notifiee::zubCatchUpValues();                                 \
         ATTRS( ZUB_X_CATCHUP_VALUES )                                       \
      }                                                                      \
      void zubCatchUpCollections() override {                                \
         Base::Notifiee::zubCatchUpCollections();                            \
         [[maybe_unused]] ::Zub::Ptr< Class const > zubWatched = notifier(); \
         ATTRS( ZUB_X_CATCHUP_COLLECTIONS )                                  \
      }                                                                      \
   };                                                                        \
   ATTRS( ZUB_X_ACCESSORS )                                                  \
                                                                             \
 private:                                                                    \
   ATTRS( ZUB_X_STORAGE )                                                    \
                                                                             \
 public:

#define ZUB_ENTITY( Class, KeyType, ATTRS )                                                 \
   class Class : public ::Zub::Entity {                                                     \
    public:                                                                                 \
      using Key = KeyType;                                                                  \
      explicit Class( Key const& key ) : zubKey_( key ) {}                                  \
      Key const& key() const { return zubKey_; }                                            \
                                                                                            \
    protected:                                                                              \
      ::Zub::String nameFromKey() const override { return ::Zub::entityNameOf( zubKey_ ); } \
                                                                                            \
    private:                                                                                \
      Key zubKey_;                                                                          \
      ZUB_ENTITY_BODY( Class, ::Zub::Entity, ATTRS )                                        \
   }

namespace Zub {

#define ZUB_DIR_ATTRS( X ) \
   X( keyed, EntityPtr, entityPtr, ::Zub::Name, ::Zub::Ptr< ::Zub::Entity > )

// A directory of entities by name. Its reactors hear onEntityPtr( name ) when a member is added,
// replaced or removed.
class Dir : public Entity {
 public:
   explicit Dir( String const& name ) : Entity( name ) {}
   explicit Dir( Name const& name ) : Entity( name.str() ) {}
   ZUB_ENTITY_BODY( Dir, Entity, ZUB_DIR_ATTRS )
};

}  // namespace Zub
