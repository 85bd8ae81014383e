// Delivery rules: order, skipped reactors, nested setters, and reactors or the watched object
// going away in the middle of a delivery.
#include <gtest/gtest.h>

#include "NevQos/platform/zub/Entity.h"
#include "ZubTestEntities.h"

namespace {

using namespace ZubTest;
using Zub::make;
using Zub::Ptr;

class NotifieeTest : public ::testing::Test {
 protected:
   Ptr< WidgetReactor > attach( std::string const& tag ) {
      auto r = make< WidgetReactor >( &journal, tag );
      r->notifierIsWithoutCatchUp( w );
      return r;
   }
   Ptr< Widget > w = make< Widget >( "w1" );
   Calls journal;
};

TEST_F( NotifieeTest, AttachOrderAndSkippedReactors ) {
   auto r1 = attach( "1:" ), r2 = attach( "2:" ), r3 = attach( "3:" );
   r2->zombieIs( true );
   r3->hasNotificationActiveIs( false );
   w->versionIs( 1.0 );
   w->memberIs( 1, "a" );
   EXPECT_EQ( journal, ( Calls{ "1:version", "1:member:1" } ) );

   journal.clear();
   r2->zombieIs( false );
   r3->hasNotificationActiveIs( true );
   w->versionIs( 2.0 );
   EXPECT_EQ( journal, ( Calls{ "1:version", "2:version", "3:version" } ) );
}

TEST_F( NotifieeTest, SetterInsideHandlerDeliversSynchronously ) {
   auto r1 = attach( "1:" ), r2 = attach( "2:" );
   r1->hook = [ this ]( std::string const& c ) {
      if( c == "version" ) w->labelIs( "changed" );
   };
   w->versionIs( 1.0 );
   EXPECT_EQ( journal, ( Calls{ "1:version", "1:label", "2:label", "2:version" } ) );
}

TEST_F( NotifieeTest, ZombieMarkSetDuringDeliveryStopsLaterCalls ) {
   auto r1 = attach( "1:" ), r2 = attach( "2:" );
   r1->hook = [ &r2 ]( std::string const& ) { r2->zombieIs( true ); };
   w->versionIs( 1.0 );
   EXPECT_EQ( journal, ( Calls{ "1:version" } ) );
}

TEST_F( NotifieeTest, ReactorDestroyingItselfFinishesAndOthersStillHear ) {
   auto r1 = attach( "1:" ), r2 = attach( "2:" );
   r1->hook = [ &r1 ]( std::string const& ) {
      r1 = nullptr;  // the last reference
   };
   w->versionIs( 1.0 );
   EXPECT_FALSE( r1 );
   EXPECT_EQ( journal, ( Calls{ "1:version", "2:version" } ) );
   EXPECT_EQ( w->notifieeList()->size(), 1u );

   w->versionIs( 2.0 );
   EXPECT_EQ( journal.back(), "2:version" );
   EXPECT_EQ( journal.size(), 3u );
}

TEST_F( NotifieeTest, ReactorDestroyingOthersSkipsThoseNotYetCalled ) {
   auto r1 = attach( "1:" ), r2 = attach( "2:" ), r3 = attach( "3:" ), r4 = attach( "4:" );
   r2->hook = [ & ]( std::string const& ) {
      r1 = nullptr;  // already called
      r3 = nullptr;  // not yet called
   };
   w->versionIs( 1.0 );
   EXPECT_EQ( journal, ( Calls{ "1:version", "2:version", "4:version" } ) );

   journal.clear();
   w->labelIs( "x" );
   EXPECT_EQ( journal, ( Calls{ "2:label", "4:label" } ) );
   EXPECT_EQ( w->notifieeList()->size(), 2u );
}

TEST_F( NotifieeTest, WatchedObjectLosingItsLastReferenceDuringDelivery ) {
   bool destroyed = false;
   struct Doomed : Widget {
      explicit Doomed( bool* flag ) : Widget( "doomed" ), flag_( flag ) {}
      ~Doomed() override { *flag_ = true; }
      bool* flag_;
   };
   w = make< Doomed >( &destroyed );
   Widget* raw = w.ptr();
   auto r1 = attach( "1:" ), r2 = attach( "2:" );
   bool aliveInHandler = false;
   r1->hook = [ & ]( std::string const& ) {
      // Drop every reference: the test's, and the reactors' (by destroying them).
      w = nullptr;
      r2 = nullptr;
      r1 = nullptr;
      aliveInHandler = !destroyed;
   };
   raw->versionIs( 1.0 );
   EXPECT_TRUE( aliveInHandler );  // kept until the delivery is over
   EXPECT_TRUE( destroyed );
   EXPECT_EQ( journal, ( Calls{ "1:version" } ) );
}

TEST_F( NotifieeTest, ReactorsDetachingDuringDelivery ) {
   auto r1 = attach( "1:" ), r2 = attach( "2:" ), r3 = attach( "3:" );
   r1->hook = [ & ]( std::string const& ) {
      r1->notifierIs( nullptr );
      r2->notifierIs( nullptr );
   };
   w->versionIs( 1.0 );
   EXPECT_EQ( journal, ( Calls{ "1:version", "3:version" } ) );
   EXPECT_EQ( w->notifieeList()->size(), 1u );
}

TEST_F( NotifieeTest, ReactorAttachedDuringDeliveryHearsOnlyLaterChanges ) {
   auto r1 = attach( "1:" );
   Ptr< WidgetReactor > late;
   r1->hook = [ & ]( std::string const& c ) {
      if( c != "version" || late ) return;
      late = make< WidgetReactor >( &journal, "late:" );
      late->notifierIsWithoutCatchUp( w );
   };
   w->versionIs( 1.0 );
   EXPECT_EQ( journal, ( Calls{ "1:version" } ) );
   w->versionIs( 2.0 );
   EXPECT_EQ( journal, ( Calls{ "1:version", "1:version", "late:version" } ) );
}

}  // namespace
