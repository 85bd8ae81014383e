// Attribute kinds of state machines: input pointers with their reactors, owned children,
// watched collections. A state machine declares each with one line of the macros at the end.
#pragma once

#include <algorithm>
#include <cstddef>
#include <tuple>
#include <utility>

#include "NevQos/platform/zub/Collection.h"
#include "NevQos/platform/zub/Exception.h"
#include "NevQos/platform/zub/Ptr.h"
#include "NevQos/platform/zub/Strep.h"

namespace Zub {

// One constructor parameter of a state machine, named for the re-instantiation check.
template< class T >
struct CtorParam {
   char const* name;
   T value;
};
template< class T >
CtorParam< T > ctorParam( char const* name, T const& value ) {
   return { name, value };
}

namespace detail {

template< class T >
concept DescribesCtorParams = requires( T const& t ) {
   t.zubCtorParams();
};

template< class Param, class Arg >
void checkOneParam( Param const& param, Arg const& arg ) {
   using P = std::remove_cvref_t< decltype( param.value ) >;
   P const given( arg );
   if( given == param.value ) return;
   throwNameInUseException( param.name, valueToStrep( given ), valueToStrep( param.value ) );
}

template< class Tuple, class... Args, std::size_t... I >
void checkParams( Tuple const& params, std::tuple< Args const&... > const& args,
                  std::index_sequence< I... > ) {
   ( checkOneParam( std::get< I >( params ), std::get< I >( args ) ), ... );
}

}  // namespace detail

// Children owned by a state machine, by key. `is( key, params... )` constructs T( key, params... )
// unless a child has the key; then all parameters must be equal to the child's, or the call
// throws NameInUseException naming the first that differs. A child describes its parameters
// with `auto zubCtorParams() const { return std::make_tuple( Zub::ctorParam( "key", key() ),
// ... ); }`, in constructor order.
template< class K, class T >
class ChildCollection {
 public:
   Ptr< T > get( K const& k ) const {
      Ptr< T > const* v = children_.find( k );
      return v ? *v : Ptr< T >();
   }
   template< class... A >
   Ptr< T > is( K const& k, A const&... args ) {
      auto const spot = children_.spot( k );
      if( Ptr< T > const* v = spot.found() ) {
         if constexpr( detail::DescribesCtorParams< T > ) {
            auto params = ( *v )->zubCtorParams();
            constexpr std::size_t n =
                  std::min( std::tuple_size_v< decltype( params ) >, sizeof...( A ) + 1 );
            detail::checkParams( params, std::tuple< K const&, A const&... >( k, args... ),
                                 std::make_index_sequence< n >() );
         }
         return *v;
      }
      Ptr< T > child = make< T >( k, args... );
      children_.insertAt( spot, k, child );
      return child;
   }
   // A child of a class derived from T, for collections whose members differ in kind.
   template< class D, class... A >
   Ptr< T > isOf( K const& k, A const&... args ) {
      auto const spot = children_.spot( k );
      if( Ptr< T > const* v = spot.found() ) return *v;
      Ptr< T > child = make< D >( k, args... );
      children_.insertAt( spot, k, child );
      return child;
   }
   // The child is released after it left the collection.
   void del( K const& k ) {
      Ptr< T > old;
      children_.erase( k, &old );
   }
   void delAll() {
      while( K const* first = children_.firstKey() ) {
         K k = *first;
         del( k );
      }
   }
   bool has( K const& k ) const { return children_.has( k ); }
   std::size_t size() const { return children_.size(); }
   auto iter() const { return children_.iter(); }
   auto begin() const { return children_.begin(); }
   std::nullptr_t end() const { return nullptr; }

 private:
   Collection< K, Ptr< T > > children_;
};

// One reactor per member of some external collection.
template< class K, class R >
class WatchedCollection {
 public:
   Ptr< R > get( K const& k ) const {
      Ptr< R > const* v = reactors_.find( k );
      return v ? *v : Ptr< R >();
   }
   void is( K const& k, Ptr< R > const& reactor ) { reactors_.set( k, reactor ); }
   void del( K const& k ) {
      Ptr< R > old;
      reactors_.erase( k, &old );
   }
   void delAll() {
      while( K const* first = reactors_.firstKey() ) {
         K k = *first;
         del( k );
      }
   }
   bool has( K const& k ) const { return reactors_.has( k ); }
   std::size_t size() const { return reactors_.size(); }
   auto iter() const { return reactors_.iter(); }
   auto begin() const { return reactors_.begin(); }
   std::nullptr_t end() const { return nullptr; }

 private:
   Collection< K, Ptr< R > > reactors_;
};

// An input pointer and the reactor R that watches it. R is constructed from the owner.
template< class E, class R >
class Input {
 public:
   Ptr< E > const& get() const { return value_; }
   Ptr< R > const& reactor() const { return reactor_; }

   // Watches `p` in place of the old value. With `catchUp` the reactor runs its catch-up;
   // a machine under construction passes false (see zub/Notifiee.h).
   template< class Owner >
   void is( Ptr< E > const& p, Owner* owner, bool catchUp ) {
      if( p == value_ ) return;
      value_ = p;
      if( !p ) {
         reactor_ = nullptr;
         return;
      }
      if( !reactor_ ) reactor_ = make< R >( owner );
      if( catchUp ) {
         reactor_->notifierIs( p );
      } else {
         reactor_->notifierIsWithoutCatchUp( p );
      }
   }
   void del() {
      reactor_ = nullptr;
      value_ = nullptr;
   }
   // Passes the owner's zombie mark on to the reactor, if there is one.
   void zombieIs( bool zombie ) {
      if( reactor_ ) reactor_->zombieIs( zombie );
   }

 private:
   Ptr< E > value_;
   Ptr< R > reactor_;
};

}  // namespace Zub

// One-line declarations of state-machine attributes. Each leaves the access at public.

// Owned children: name( k ), nameIs( k, params... ), nameIsOf< Derived >( k, params... ),
// nameDel( k ), nameDelAll(), nameSize(),
// name() (the collection, to iterate).
#define ZUB_SM_CHILDREN( name, Key, Type )                                 \
 public:                                                                   \
   ::Zub::Ptr< Type > name( Key const& k ) const {                         \
      return zub_##name##_.get( k );                                       \
   }                                                                       \
   auto const& name() const {                                              \
      return zub_##name##_;                                                \
   }                                                                       \
   template< class... ZubArgs >                                            \
   ::Zub::Ptr< Type > name##Is( Key const& k, ZubArgs const&... args ) {   \
      return zub_##name##_.is( k, args... );                               \
   }                                                                       \
   template< class ZubDerived, class... ZubArgs >                          \
   ::Zub::Ptr< Type > name##IsOf( Key const& k, ZubArgs const&... args ) { \
      return zub_##name##_.template isOf< ZubDerived >( k, args... );      \
   }                                                                       \
   void name##Del( Key const& k ) {                                        \
      zub_##name##_.del( k );                                              \
   }                                                                       \
   void name##DelAll() {                                                   \
      zub_##name##_.delAll();                                              \
   }                                                                       \
   bool name##Has( Key const& k ) const {                                  \
      return zub_##name##_.has( k );                                       \
   }                                                                       \
   std::size_t name##Size() const {                                        \
      return zub_##name##_.size();                                         \
   }                                                                       \
                                                                           \
 private:                                                                  \
   ::Zub::ChildCollection< Key, Type > zub_##name##_;                      \
                                                                           \
 public:

// A plain field: name(), nameIs( v ). A bare store, for fields no reactor watches.
#define ZUB_SM_FIELD( name, Type, Default ) \
 public:                                    \
   Type const& name() const {               \
      return zub_##name##_;                 \
   }                                        \
   void name##Is( Type const& v ) {         \
      zub_##name##_ = v;                    \
   }                                        \
                                            \
 private:                                   \
   Type zub_##name##_ = Default;            \
                                            \
 public:

// An action attribute: after a real change the setter calls handleCap() directly.
#define ZUB_SM_ACTION( name, Cap, Type, Default ) \
 public:                                          \
   Type const& name() const {                     \
      return zub_##name##_;                       \
   }                                              \
   void name##Is( Type const& v ) {               \
      if( zub_##name##_ == v ) return;            \
      zub_##name##_ = v;                          \
      handle##Cap();                              \
   }                                              \
                                                  \
 private:                                         \
   Type zub_##name##_ = Default;                  \
                                                  \
 public:
