// The binary ring-buffer trace and the adapter that also feeds a trace handle.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "NevQos/platform/zub/Fleelog.h"

namespace {

class FleelogTest : public ::testing::Test {
 protected:
   void SetUp() override {
      previous_ = Fleelog::defaultFleelogFile();
      Fleelog::defaultFleelogFileIs( &ring );
      Zub::traceSinkIs(
            [ this ]( Zub::TraceRecord const& r ) { traced.push_back( r.message.stdString() ); } );
   }
   void TearDown() override {
      Fleelog::defaultFleelogFileIs( previous_ );
      Zub::traceSinkIs( nullptr );
   }
   Fleelog::RingBuf ring;
   std::vector< std::string > traced;

 private:
   Fleelog::RingBuf* previous_ = nullptr;
};

using Texts = std::vector< std::string >;

TEST_F( FleelogTest, MessageDecodesToTheJoinedText ) {
   double version = 5.5;
   FLEELOG( "QosSm::", "processPolicyUpdate", " Config Version:", version, " applied." );
   EXPECT_EQ( ring.messages(),
              ( Texts{ "QosSm::processPolicyUpdate Config Version:5.5 applied." } ) );
}

TEST_F( FleelogTest, LiteralsAreDescribedOnceAndValuesWrittenRaw ) {
   Fleelog::MsgDesc desc( __FILE__, __LINE__ );
   std::string const longLiteral( 200, '-' );
   char const* intf = "Et1";
   auto emit = [ & ]( int a, unsigned b, bool c ) {
      Pairlog::FleelogConverter::log( desc, nullptr, 0, __FILE__, __LINE__, __func__, "n=", a,
                                      " u=", b, " b=", c, " s=", intf, " z=", Zub::String( "q" ),
                                      " std=", std::string( "r" ) );
   };
   emit( -3, 7u, true );
   std::uint32_t const id = desc.id();
   emit( 4, 8u, false );
   EXPECT_EQ( desc.id(), id );
   EXPECT_EQ( desc.pieces().size(), 12u );
   EXPECT_EQ( desc.formatChars(), "iubsss" );
   EXPECT_EQ( ring.messages(),
              ( Texts{ "n=-3 u=7 b=1 s=Et1 z=q std=r", "n=4 u=8 b=0 s=Et1 z=q std=r" } ) );

   // A long literal costs nothing in the ring: only the site id and the value are written.
   Fleelog::RingBuf small( 32 );
   Fleelog::defaultFleelogFileIs( &small );
   Fleelog::MsgDesc wide( __FILE__, __LINE__ );
   Pairlog::FleelogConverter::log( wide, nullptr, 0, __FILE__, __LINE__, __func__,
                                   "----------------------------------------------------------"
                                   "----------------------------------------------------------",
                                   1.0 );
   EXPECT_EQ( small.messageCount(), 1u );
   Fleelog::defaultFleelogFileIs( &ring );
}

TEST_F( FleelogTest, FullRingDropsTheOldestMessages ) {
   Fleelog::RingBuf small( 40 );  // room for three messages of one id and one 8-byte value
   Fleelog::defaultFleelogFileIs( &small );
   for( std::int64_t i = 1; i <= 5; ++i )
      FLEELOG( "m", i );
   EXPECT_EQ( small.messages(), ( Texts{ "m3", "m4", "m5" } ) );
   small.clear();
   EXPECT_EQ( small.messageCount(), 0u );
   FLEELOG( "m", std::int64_t( 6 ) );
   EXPECT_EQ( small.messages(), ( Texts{ "m6" } ) );
   Fleelog::defaultFleelogFileIs( &ring );
}

TEST_F( FleelogTest, NullDefaultFileWritesNothing ) {
   for( int i = 0; i < 3; ++i ) {
      if( i == 1 ) Fleelog::defaultFleelogFileIs( nullptr );
      if( i == 2 ) Fleelog::defaultFleelogFileIs( &ring );
      FLEELOG( "pass ", i );
   }
   EXPECT_EQ( ring.messages(), ( Texts{ "pass 0", "pass 2" } ) );
}

TEST_F( FleelogTest, PairlogReachesTheTraceHandleOnlyWhenEnabled ) {
   Zub::TraceHandle h( "ZubTestPairlog" );
   for( int level : { 2, 3 } ) {
      PAIRLOG( h, level, "QosSm::", "processPolicyUpdate", " Config Version:", 5.5, " applied." );
      h.levelsIs( 1u << 3 );
   }
   EXPECT_EQ( traced, ( Texts{ "QosSm::processPolicyUpdate Config Version:5.5 applied." } ) );
   EXPECT_EQ( ring.messageCount(), 2u );  // the binary side is always on
}

}  // namespace
