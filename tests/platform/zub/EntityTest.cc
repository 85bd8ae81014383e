// Generated accessors and reactors: what each attribute kind notifies, derived entities, and the
// catch-up of a reactor attached late.
#include <gtest/gtest.h>

#include "NevQos/platform/zub/Entity.h"
#include "ZubTestEntities.h"

namespace {

using namespace ZubTest;
using Zub::make;
using Zub::Ptr;

TEST( EntityTest, ValueWriteNotifiesOnceAfterStoringAndNothingWhenEqual ) {
   auto w = make< Widget >( "w1" );
   auto r = make< WidgetReactor >();
   r->notifierIsWithoutCatchUp( w );
   double seen = 0.0;
   r->hook = [ & ]( std::string const& ) { seen = w->version(); };

   w->versionIs( 1.5 );
   w->versionIs( 1.5 );
   w->labelIs( "" );  // the default: no change
   w->labelIs( "gold" );
   w->versionIs( 2.0 );
   EXPECT_EQ( r->calls, ( Calls{ "version", "label", "version" } ) );
   EXPECT_EQ( seen, 2.0 );  // the reactor reads the new value
}

TEST( EntityTest, KeyedCollectionNotifiesPerKeyOnRealChangesOnly ) {
   auto w = make< Widget >( "w1" );
   auto r = make< WidgetReactor >();
   r->notifierIsWithoutCatchUp( w );
   std::vector< bool > hadKey;
   r->hook = [ & ]( std::string const& c ) { hadKey.push_back( w->memberHas( c.back() - '0' ) ); };

   w->memberIs( 1, "a" );
   w->memberIs( 1, "a" );
   w->memberIs( 1, "b" );
   w->memberIs( 2, "c" );
   w->memberDel( 7 );  // absent
   EXPECT_EQ( w->member( 1 ), "b" );
   EXPECT_EQ( w->member( 7 ), "" );
   EXPECT_EQ( w->memberSize(), 2u );

   w->memberDelAll();
   EXPECT_EQ( r->calls, ( Calls{ "member:1", "member:1", "member:2", "member:1", "member:2" } ) );
   EXPECT_EQ( hadKey, ( std::vector< bool >{ true, true, true, false, false } ) );
   EXPECT_EQ( w->memberSize(), 0u );
}

TEST( EntityTest, ImmediateReactorHearsKeylessCallbackForCollections ) {
   auto w = make< Widget >( "w1" );
   auto r = make< WidgetReactor >();
   r->immediate = true;
   r->notifierIsWithoutCatchUp( w );
   w->memberIs( 1, "a" );
   w->memberIs( 1, "a" );
   w->memberIs( 2, "b" );
   w->memberDel( 1 );
   w->versionIs( 3.0 );
   EXPECT_EQ( r->calls, ( Calls{ "member!", "member!", "member!", "version" } ) );
}

TEST( EntityTest, ChildCollectionCreatesOnceAndTiesTheChildToItsParent ) {
   auto w = make< Widget >( "w1" );
   auto r = make< WidgetReactor >();
   r->notifierIsWithoutCatchUp( w );

   Ptr< Slot > a = w->slotIs( "a" );
   ASSERT_TRUE( a );
   a->weightIs( 4 );
   EXPECT_EQ( w->slotIs( "a" ), a );  // the existing child, unchanged
   EXPECT_EQ( a->weight(), 4 );
   EXPECT_EQ( a->parent(), w.ptr() );
   EXPECT_EQ( a->fullName(), "w1/slot/a" );
   EXPECT_FALSE( w->slot( "b" ) );

   w->slotDel( "a" );
   EXPECT_EQ( a->parent(), nullptr );
   EXPECT_EQ( a->fullName(), "a" );
   EXPECT_EQ( r->calls, ( Calls{ "slot:a", "slot:a" } ) );
}

TEST( EntityTest, DerivedEntityNotifiesByReactorType ) {
   auto g = make< Gadget >( "g1" );
   auto derived = make< GadgetReactor >();
   auto base = make< WidgetReactor >();
   derived->notifierIsWithoutCatchUp( g );
   base->notifierIsWithoutCatchUp( g );

   g->versionIs( 1.0 );
   g->speedIs( 10 );
   g->portIs( 3, true );
   g->memberIs( 4, "x" );
   EXPECT_EQ( derived->calls, ( Calls{ "version", "speed", "port:3", "member:4" } ) );
   // A reactor of the base type hears only the base's attributes.
   EXPECT_EQ( base->calls, ( Calls{ "version", "member:4" } ) );
}

// A gadget with every attribute set, members added out of order.
Ptr< Gadget > fullGadget() {
   auto g = make< Gadget >( "g1" );
   g->portIs( 5, true );
   g->memberIs( 2, "b" );
   g->speedIs( 7 );
   g->slotIs( "s" );
   g->portIs( 1, false );
   g->memberIs( 1, "a" );
   g->versionIs( 2.0 );
   return g;
}

TEST( EntityTest, CatchUpCallsValuesInDeclaredOrderThenWalksCollections ) {
   auto g = fullGadget();

   auto derived = make< GadgetReactor >();
   derived->notifierIs( g );
   EXPECT_EQ( derived->calls, ( Calls{ "version", "label", "speed", "member:1", "member:2",
                                       "slot:s", "port:1", "port:5" } ) );

   auto base = make< WidgetReactor >();
   base->notifierIs( g );
   EXPECT_EQ( base->calls, ( Calls{ "version", "label", "member:1", "member:2", "slot:s" } ) );

   // Attaching again to the same object neither re-attaches nor catches up.
   derived->notifierIs( g );
   EXPECT_EQ( derived->calls.size(), 8u );
   EXPECT_EQ( g->notifieeList()->size(), 2u );
}

TEST( EntityTest, ImmediateCatchUpCallsOncePerNonEmptyCollection ) {
   auto g = make< Gadget >( "g1" );
   g->memberIs( 1, "a" );
   g->memberIs( 2, "b" );
   auto r = make< GadgetReactor >();
   r->immediate = true;
   r->notifierIs( g );
   // No slots and no ports: a reactor attached from the start would have heard nothing of them.
   EXPECT_EQ( r->calls, ( Calls{ "version", "label", "speed", "member!" } ) );
}

TEST( EntityTest, ReactorDetachingItselfStopsItsCatchUp ) {
   auto g = fullGadget();
   auto r = make< GadgetReactor >();
   r->hook = [ &r ]( std::string const& c ) {
      if( c == "label" ) r->notifierIs( nullptr );
   };
   r->notifierIs( g );
   EXPECT_EQ( r->calls, ( Calls{ "version", "label" } ) );
   EXPECT_EQ( g->notifieeList()->size(), 0u );
}

TEST( EntityTest, DetachAndRetarget ) {
   auto w1 = make< Widget >( "w1" );
   auto w2 = make< Widget >( "w2" );
   w2->memberIs( 9, "z" );
   auto r = make< WidgetReactor >();
   r->notifierIsWithoutCatchUp( w1 );

   r->notifierIs( w2 );  // leaves w1, catches up on w2
   w1->versionIs( 1.0 );
   EXPECT_EQ( r->calls, ( Calls{ "version", "label", "member:9" } ) );
   EXPECT_EQ( w1->notifieeList()->size(), 0u );

   r->calls.clear();
   r->notifierIs( nullptr );
   EXPECT_FALSE( r->notifier() );
   w2->versionIs( 1.0 );
   EXPECT_TRUE( r->calls.empty() );
   EXPECT_EQ( w2->notifieeList()->size(), 0u );
}

}  // namespace
