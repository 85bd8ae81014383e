// Reference counting: the base of every shared object of the runtime, and its smart pointer.
#pragma once

#include <atomic>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <utility>

#include "NevQos/platform/zub/Pool.h"

namespace Zub {

class NotifieeList;

// Selects atomic count updates. Off, the runtime is single-threaded and counts are plain.
extern bool threadSafePointers;

// What kind of runtime object this is; used only for diagnostics.
enum class FwkType : std::uint8_t { object, entity, reactor, stateMachine };

class PtrInterface {
 public:
   PtrInterface() = default;
   PtrInterface( PtrInterface const& ) = delete;
   PtrInterface& operator=( PtrInterface const& ) = delete;

   // Virtual operations, in slot order.
   virtual NotifieeList* notifieeList() const { return nullptr; }
   virtual void hasNotificationActiveIs( bool ) {}
   virtual void zeroReferencesIs( bool ) {}
   virtual FwkType fwkType() const { return FwkType::object; }
   virtual ~PtrInterface() = default;

   // Objects of the runtime come from its free lists; the size given back is the object's own,
   // since the destructor is virtual.
   static void* operator new( std::size_t size ) { return Pool::allocate( size ); }
   static void operator delete( void* p, std::size_t size ) noexcept { Pool::release( p, size ); }

   std::uint32_t references() const { return refCount_; }
   // Inline: every copy of a pointer takes a reference.
   void newRef() const {
      if( threadSafePointers ) {
         std::atomic_ref< std::uint32_t >( refCount_ ).fetch_add( 1, std::memory_order_relaxed );
      } else {
         ++refCount_;
      }
   }
   void delRef() const;

   // The zombie mark is the sign bit of the flag word: a dying object whose reactors must
   // ignore every callback from now on.
   bool zombie() const { return flags_ < 0; }
   void zombieIs( bool z );

 protected:
   // Destroys the object when its last reference goes. No exception may escape from here.
   virtual void handleZeroRef() const noexcept;
   // The low bits of the flag word are the derived class's, which saves it a member of its own
   // (and the padding after it).
   static constexpr std::uint32_t ownFlagBits = 0xffu;
   bool ownFlag( std::uint32_t bit ) const {
      return ( static_cast< std::uint32_t >( flags_ ) & bit & ownFlagBits ) != 0;
   }
   void ownFlagIs( std::uint32_t bit, bool on ) const;
   // Bits 8 to 23 of the flag word hold a small number of the derived class's.
   static constexpr std::uint32_t ownFieldLimit = 0xffffu;
   std::uint32_t ownField() const {
      return ( static_cast< std::uint32_t >( flags_ ) >> ownFieldShift ) & ownFieldLimit;
   }
   void ownFieldIs( std::uint32_t value ) const;

 private:
   static constexpr std::uint32_t ownFieldShift = 8;

   mutable std::uint32_t refCount_ = 0;
   mutable std::int32_t flags_ = 0;
};

// The owning smart pointer. Null is a legal value.
template< class T >
class Ptr {
 public:
   using element_type = T;

   Ptr() noexcept = default;
   Ptr( std::nullptr_t ) noexcept {}
   Ptr( T* p ) noexcept : p_( p ) { acquire(); }
   Ptr( Ptr const& o ) noexcept : p_( o.p_ ) { acquire(); }
   Ptr( Ptr&& o ) noexcept : p_( std::exchange( o.p_, nullptr ) ) {}
   template< class U >
   requires std::is_convertible_v< U*, T* > Ptr( Ptr< U > const& o )
   noexcept : p_( o.ptr() ) { acquire(); }
   ~Ptr() { release(); }

   Ptr& operator=( Ptr o ) noexcept {
      std::swap( p_, o.p_ );
      return *this;
   }

   T* ptr() const noexcept { return p_; }
   T* operator->() const noexcept { return p_; }
   T& operator*() const noexcept { return *p_; }
   explicit operator bool() const noexcept { return p_ != nullptr; }
   bool operator!() const noexcept { return p_ == nullptr; }

   template< class U >
   bool operator==( Ptr< U > const& o ) const noexcept {
      return p_ == o.ptr();
   }
   bool operator==( std::nullptr_t ) const noexcept { return p_ == nullptr; }
   template< class U >
   auto operator<=>( Ptr< U > const& o ) const noexcept {
      return std::compare_three_way()( static_cast< void const* >( p_ ),
                                       static_cast< void const* >( o.ptr() ) );
   }

 private:
   void acquire() const noexcept {
      if( p_ ) static_cast< PtrInterface const* >( p_ )->newRef();
   }
   void release() noexcept {
      if( p_ ) static_cast< PtrInterface const* >( std::exchange( p_, nullptr ) )->delRef();
   }
   T* p_ = nullptr;
};

template< class T, class... Args >
Ptr< T > make( Args&&... args ) {
   return Ptr< T >( new T( std::forward< Args >( args )... ) );
}

template< class T, class U >
Ptr< T > ptrCast( Ptr< U > const& p ) {
   return Ptr< T >( static_cast< T* >( p.ptr() ) );
}

template< class T, class U >
Ptr< T > dynamicPtrCast( Ptr< U > const& p ) {
   return Ptr< T >( dynamic_cast< T* >( p.ptr() ) );
}

}  // namespace Zub

template< class T >
struct std::hash< Zub::Ptr< T > > {
   std::size_t operator()( Zub::Ptr< T > const& p ) const noexcept {
      return std::hash< void const* >()( p.ptr() );
   }
};
