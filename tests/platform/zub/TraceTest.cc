// Trace handles: what a disabled trace costs, the enable list, and the captured records.
#include <gtest/gtest.h>

#include <vector>

#include "NevQos/platform/zub/Trace.h"

namespace {

class TraceTest : public ::testing::Test {
 protected:
   void SetUp() override {
      Zub::traceDisableAll();
      Zub::traceSinkIs( [ this ]( Zub::TraceRecord const& r ) { records.push_back( r ); } );
   }
   void TearDown() override {
      Zub::traceDisableAll();
      Zub::traceSinkIs( nullptr );
   }
   std::vector< Zub::TraceRecord > records;
};

int evaluations = 0;
int counted() {
   return ++evaluations;
}

TEST_F( TraceTest, DisabledTraceEvaluatesNothing ) {
   Zub::TraceHandle h( "ZubTestTrace" );
   evaluations = 0;
   ZUB_TRACE( h, 3, "value " << counted() );
   EXPECT_EQ( evaluations, 0 );
   EXPECT_TRUE( records.empty() );

   ASSERT_TRUE( Zub::traceEnable( "ZubTestTrace/3" ) );
   ZUB_TRACE( h, 3, "value " << counted() );
   ZUB_TRACE( h, 4, "value " << counted() );
   EXPECT_EQ( evaluations, 1 );
   ASSERT_EQ( records.size(), 1u );
   EXPECT_EQ( records[ 0 ].handle, "ZubTestTrace" );
   EXPECT_EQ( records[ 0 ].level, 3 );
   EXPECT_EQ( records[ 0 ].message, "value 1" );
   EXPECT_STREQ( records[ 0 ].function, "TestBody" );
}

TEST_F( TraceTest, EnableListSelectsHandlesAndLevels ) {
   Zub::TraceHandle a( "ZubTestA" ), b( "ZubTestB" );
   ASSERT_TRUE( Zub::traceEnable( "ZubTestA/2-4,,ZubTestB/7" ) );
   EXPECT_EQ( a.levels(), 0b11100u );
   EXPECT_EQ( b.levels(), 1u << 7 );

   ASSERT_TRUE( Zub::traceEnable( "*/0" ) );
   EXPECT_EQ( a.levels(), 0b11101u );
   EXPECT_TRUE( b.enabled( 0 ) );

   ASSERT_TRUE( Zub::traceEnable( "ZubTestB/*" ) );
   EXPECT_TRUE( b.enabled( 31 ) );
   EXPECT_FALSE( b.enabled( 32 ) );

   // A handle built later gets what was asked before.
   Zub::TraceHandle c( "ZubTestA" );
   EXPECT_EQ( c.levels(), 0b11101u );

   Zub::traceDisableAll();
   EXPECT_EQ( a.levels(), 0u );
   EXPECT_EQ( b.levels(), 0u );
}

TEST_F( TraceTest, BadEnableListChangesNothing ) {
   Zub::TraceHandle a( "ZubTestA" );
   for( char const* bad :
        { "ZubTestA/5-2", "ZubTestA/x", "/3", "ZubTestA/32", "ZubTestA/3-", "*/1,ZubTestA/-1" } ) {
      EXPECT_FALSE( Zub::traceEnable( bad ) ) << bad;
   }
   EXPECT_EQ( a.levels(), 0u );
   ASSERT_TRUE( Zub::traceEnable( "ZubTestA" ) );  // no levels: all of them
   EXPECT_TRUE( a.enabled( 0 ) && a.enabled( 9 ) );
}

TEST_F( TraceTest, CreateIfEnabledBuildsAHelperOnlyWhenEnabled ) {
   Zub::TraceHandle h( "ZubTestTrace" );
   std::optional< Zub::TraceHelper > buffer;
   EXPECT_EQ( Zub::TraceHelper::createIfEnabled( h, 5, buffer ), nullptr );
   EXPECT_FALSE( buffer );

   h.levelsIs( 1u << 5 );
   Zub::TraceHelper* t = Zub::TraceHelper::createIfEnabled( h, 5, buffer );
   ASSERT_NE( t, nullptr );
   *t << "policy " << Zub::String( "pm1" ) << " v" << 2;
   t->trace( "file.cc", 12, "fn" );
   ASSERT_EQ( records.size(), 1u );
   EXPECT_EQ( records[ 0 ].message, "policy pm1 v2" );
   EXPECT_EQ( records[ 0 ].line, 12 );
}

}  // namespace
