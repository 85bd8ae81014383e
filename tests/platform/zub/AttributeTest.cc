// State-machine attributes: input pointers with nested reactors, owned children, watched
// collections, action attributes, and the start-up rule of machines under construction.
#include <gtest/gtest.h>

#include <tuple>

#include "NevQos/platform/zub/Attribute.h"
#include "NevQos/platform/zub/Entity.h"
#include "ZubTestEntities.h"

namespace {

using namespace ZubTest;
using Zub::make;
using Zub::Ptr;

// A machine watching a Widget the way the library's machines watch their inputs.
class WidgetSm : public Zub::PtrInterface {
 public:
   class ZubWidget : public Widget::Notifiee {
    public:
      explicit ZubWidget( WidgetSm* sm ) : sm_( sm ) {}
      void onVersion() override {
         if( zombie() ) return;
         sm_->handleVersion();
      }
      void onMember( int const& k ) override {
         if( zombie() ) return;
         sm_->handleMember( k );
      }

    private:
      WidgetSm* sm_;
   };

   explicit WidgetSm( Ptr< Widget > const& w ) {
      widget_.is( w, this, false );
      handleInitialized();
   }
   void widgetIs( Ptr< Widget > const& w ) { widget_.is( w, this, initialized() ); }
   Ptr< Widget > const& widget() const { return widget_.get(); }
   Ptr< ZubWidget > const& widgetReactor() const { return widget_.reactor(); }

   // Start-up walks the members before the version: this machine's own order.
   void handleInitialized() {
      if( Ptr< Widget > w = widget() ) {
         for( auto it = w->member().iter(); it; ++it )
            handleMember( it.key() );
         handleVersion();
      }
      initializedIs( true );
   }
   void handleVersion() {
      calls.push_back( "version" );
      if( widget()->version() < 0 ) zubDoZombieReactors( true );  // a withdrawn input
   }
   void handleMember( int k ) { calls.push_back( "member:" + std::to_string( k ) ); }
   void zubDoZombieReactors( bool z ) {
      if( zombie() == z ) return;
      zombieIs( z );
      if( widgetReactor() ) widgetReactor()->zombieIs( z );
   }

   ZUB_SM_FIELD( initialized, bool, false )
   ZUB_SM_ACTION( request, Request, int, 0 )
   void handleRequest() { calls.push_back( "request:" + std::to_string( request() ) ); }

   Calls calls;

 private:
   Zub::Input< Widget, ZubWidget > widget_;
};

Ptr< Widget > widgetWithMembers( std::string const& name ) {
   auto w = make< Widget >( name );
   w->memberIs( 2, "b" );
   w->memberIs( 1, "a" );
   w->versionIs( 3.0 );
   return w;
}

TEST( AttributeTest, MachineUnderConstructionDoesItsOwnInitialWalk ) {
   auto sm = make< WidgetSm >( widgetWithMembers( "w1" ) );
   // Each handler once, in handleInitialized's order: the reactor did not catch up as well.
   EXPECT_EQ( sm->calls, ( Calls{ "member:1", "member:2", "version" } ) );
   sm->widget()->memberIs( 3, "c" );
   EXPECT_EQ( sm->calls.back(), "member:3" );
}

TEST( AttributeTest, LiveMachineInputCatchesUp ) {
   auto sm = make< WidgetSm >( nullptr );
   ASSERT_TRUE( sm->initialized() );
   auto w = widgetWithMembers( "w1" );
   sm->widgetIs( w );
   EXPECT_EQ( sm->calls, ( Calls{ "version", "member:1", "member:2" } ) );

   sm->calls.clear();
   sm->widgetIs( w );  // same input: nothing
   EXPECT_TRUE( sm->calls.empty() );

   auto w2 = make< Widget >( "w2" );
   sm->widgetIs( w2 );  // the old input is no longer heard
   w->versionIs( 4.0 );
   EXPECT_EQ( sm->calls, ( Calls{ "version" } ) );

   sm->widgetIs( nullptr );
   EXPECT_FALSE( sm->widgetReactor() );
   EXPECT_EQ( w2->notifieeList()->size(), 0u );
}

TEST( AttributeTest, CatchUpStopsAtZombieMarkSetByAHandler ) {
   auto sm = make< WidgetSm >( nullptr );
   auto w = widgetWithMembers( "w1" );
   w->versionIs( -1.0 );
   sm->widgetIs( w );
   EXPECT_EQ( sm->calls, ( Calls{ "version" } ) );  // no member walk after the mark
   w->memberIs( 5, "e" );
   EXPECT_EQ( sm->calls.size(), 1u );
}

TEST( AttributeTest, ActionAttributeCallsItsHandlerOnRealChange ) {
   auto sm = make< WidgetSm >( nullptr );
   sm->requestIs( 0 );
   sm->requestIs( 4 );
   sm->requestIs( 4 );
   sm->requestIs( 5 );
   EXPECT_EQ( sm->calls, ( Calls{ "request:4", "request:5" } ) );
}

class OwnerSm;

// A child describing its constructor parameters for the re-instantiation check.
class SliceSm : public Zub::PtrInterface {
 public:
   SliceSm( Zub::String const& name, OwnerSm* qosAclSm, int priority )
       : name_( name ), qosAclSm_( qosAclSm ), priority_( priority ) {}
   auto zubCtorParams() const {
      return std::make_tuple( Zub::ctorParam( "name", name_ ),
                              Zub::ctorParam( "qosAclSm", qosAclSm_ ),
                              Zub::ctorParam( "priority", priority_ ) );
   }
   int priority() const { return priority_; }

 private:
   Zub::String name_;
   OwnerSm* qosAclSm_;
   int priority_;
};

class OwnerSm : public Zub::PtrInterface {
   ZUB_SM_CHILDREN( slice, Zub::String, SliceSm )
};

std::string nameInUseText( Ptr< OwnerSm > const& owner, Zub::String const& key, OwnerSm* param,
                           int priority ) {
   try {
      owner->sliceIs( key, param, priority );
   } catch( Zub::NameInUseException const& e ) {
      return e.what();
   }
   return "no exception";
}

TEST( AttributeTest, ChildReinstantiationWithSameParamsReturnsTheChild ) {
   auto owner = make< OwnerSm >();
   auto other = make< OwnerSm >();
   Ptr< SliceSm > s = owner->sliceIs( "s1", owner.ptr(), 5 );
   EXPECT_EQ( owner->sliceIs( "s1", owner.ptr(), 5 ), s );
   EXPECT_EQ( owner->sliceSize(), 1u );

   EXPECT_EQ( nameInUseText( owner, "s1", other.ptr(), 5 ),
              "Reinstantiating the pointer interface where constructor parameter attribute "
              "_qosAclSm has a different value of " +
                    Zub::valueToStrep( other.ptr() ).stdString() + " than the current value of " +
                    Zub::valueToStrep( owner.ptr() ).stdString() + " not allowed" );
   EXPECT_EQ( nameInUseText( owner, "s1", owner.ptr(), 7 ),
              "Reinstantiating the pointer interface where constructor parameter attribute "
              "_priority has a different value of 7 than the current value of 5 not allowed" );
   EXPECT_EQ( owner->slice( "s1" ), s );
   EXPECT_EQ( s->priority(), 5 );

   owner->sliceIs( "s2", owner.ptr(), 7 );
   std::vector< std::string > keys;
   for( auto it = owner->slice().iter(); it; ++it ) {
      keys.push_back( it.key().stdString() );
      owner->sliceDel( it.key() );
   }
   EXPECT_EQ( keys, ( std::vector< std::string >{ "s1", "s2" } ) );
   EXPECT_EQ( owner->sliceSize(), 0u );
}

// One reactor per member of a widget's slots, as a machine watches an external collection.
class SlotWatcher : public Slot::Notifiee {
 public:
   explicit SlotWatcher( Calls* calls ) : calls_( calls ) {}
   void onWeight() override { calls_->push_back( notifier()->name().stdString() ); }

 private:
   Calls* calls_;
};

TEST( AttributeTest, WatchedCollectionReleasesReactorsOfRemovedMembers ) {
   auto w = make< Widget >( "w1" );
   Calls calls;
   Zub::WatchedCollection< Zub::String, SlotWatcher > watched;
   for( char const* k : { "a", "b" } ) {
      auto r = make< SlotWatcher >( &calls );
      r->notifierIsWithoutCatchUp( w->slotIs( k ) );
      watched.is( k, r );
   }
   w->slot( "a" )->weightIs( 1 );
   w->slot( "b" )->weightIs( 1 );
   watched.del( "a" );
   w->slot( "a" )->weightIs( 2 );
   w->slot( "b" )->weightIs( 2 );
   EXPECT_EQ( calls, ( Calls{ "a", "b", "b" } ) );
   EXPECT_EQ( w->slot( "a" )->notifieeList()->size(), 0u );
   watched.delAll();
   EXPECT_EQ( w->slot( "b" )->notifieeList()->size(), 0u );
}

}  // namespace
