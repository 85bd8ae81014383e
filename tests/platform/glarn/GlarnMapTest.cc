#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "NevQos/platform/entities/FecOverride.h"
#include "NevQos/platform/nev/FecIdToHwFecId.h"

namespace NevQosTest {
namespace {

using Qos::Glarn::FecOverrideConfig;
using Qos::Glarn::FecOverrideEntry;
using Qos::Glarn::OverrideKey;
using Access = FecOverrideConfig::Access;

OverrideKey key( unsigned dscp, Glarn::Fib::FecId fecId ) {
   return OverrideKey{ Mirel::ipv4, Qos::Dscp( dscp ), fecId };
}

struct Watcher : FecOverrideConfig::Notifiee {
   explicit Watcher( bool immediate = false ) : immediate_( immediate ) {}
   bool notificationImmediate() const override { return immediate_; }
   void onOverride( OverrideKey const& k ) override { heard.push_back( k ); }
   void onOverridezubImmediate() override { ++walks; }
   void onCollectionReady() override { ++readyChanges; }
   std::vector< OverrideKey > heard;
   int walks = 0;
   int readyChanges = 0;
   bool immediate_;
};

class GlarnMapTest : public ::testing::Test {
 protected:
   Zub::Ptr< FecOverrideConfig::Store > store =
         Zub::make< FecOverrideConfig::Store >( Zub::String( "/qos/cbf/config" ) );
   Zub::Ptr< FecOverrideConfig > writer = Zub::make< FecOverrideConfig >( store, Access::writer );
   Zub::Ptr< FecOverrideConfig > reader = Zub::make< FecOverrideConfig >( store, Access::readOnly );
};

TEST_F( GlarnMapTest, EveryViewSeesTheWriterAndHearsEachKey ) {
   auto keyed = Zub::make< Watcher >();
   auto immediate = Zub::make< Watcher >( true );
   keyed->notifierIs( reader );
   immediate->notifierIs( reader );
   writer->overrideIs( FecOverrideEntry{ key( 10, 100 ), 200 } );
   writer->overrideIs( FecOverrideEntry{ key( 10, 100 ), 200 } );  // unchanged: no notification
   writer->overrideIs( FecOverrideEntry{ key( 46, 100 ), 300 } );
   writer->overrideDel( key( 10, 100 ) );
   EXPECT_EQ( keyed->heard, ( std::vector{ key( 10, 100 ), key( 46, 100 ), key( 10, 100 ) } ) );
   EXPECT_EQ( immediate->walks, 3 );

   bool found = true;
   FecOverrideEntry entry;
   EXPECT_TRUE( reader->safeLookup( key( 46, 100 ), found, entry ) );
   EXPECT_EQ( entry.overridingFecId, 300u );
   // An absent key reads as the default record.
   EXPECT_FALSE( reader->safeLookup( key( 10, 100 ), found, entry ) );
   EXPECT_FALSE( found );
   EXPECT_EQ( entry, FecOverrideEntry{} );
   EXPECT_EQ( entry.key.af, Mirel::ipv4 );
   EXPECT_EQ( entry.key.dscp.value(), 64 );
   EXPECT_EQ( entry.key.fecId, 0u );

   // A reactor attached late catches up key by key.
   auto late = Zub::make< Watcher >();
   late->notifierIs( reader );
   EXPECT_EQ( late->heard, std::vector{ key( 46, 100 ) } );
}

TEST_F( GlarnMapTest, ACorruptRecordDetachesTheReaderAndIsRethrown ) {
   writer->overrideIs( FecOverrideEntry{ key( 1, 2 ), 3 } );
   writer->overrideIs( FecOverrideEntry{ key( 5, 6 ), 7 } );
   store->corrupt( key( 5, 6 ) );
   auto watcher = Zub::make< Watcher >();
   watcher->notifierIsWithoutCatchUp( reader );

   // The walk reaches the good record, then the damaged one.
   std::vector< OverrideKey > walked;
   EXPECT_THROW(
         {
            for( auto it = reader->iter( Glarn::IterHint::sequential ); it; ++it )
               walked.push_back( it.key() );
         },
         Pelto::CorruptionDetectedException );
   EXPECT_EQ( walked, std::vector{ key( 1, 2 ) } );
   EXPECT_FALSE( reader->attached() );
   EXPECT_FALSE( reader->collectionReady() );
   EXPECT_EQ( watcher->readyChanges, 1 );
   // Detached, it reads nothing and hears nothing more.
   EXPECT_FALSE( reader->has( key( 1, 2 ) ) );
   writer->overrideIs( FecOverrideEntry{ key( 8, 9 ), 1 } );
   EXPECT_EQ( watcher->heard, std::vector< OverrideKey >{} );

   // Another view finds it by lookup; a rewrite of the record mends it for the views left.
   auto other = Zub::make< FecOverrideConfig >( store, Access::readOnly );
   bool found = false;
   FecOverrideEntry entry;
   EXPECT_THROW( other->safeLookup( key( 5, 6 ), found, entry ),
                 Pelto::CorruptionDetectedException );
   writer->overrideIs( FecOverrideEntry{ key( 5, 6 ), 7 } );
   EXPECT_NO_THROW( writer->base().validate() );
}

}  // namespace
}  // namespace NevQosTest
