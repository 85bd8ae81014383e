// The system log: message formatting, the sink, and the per-key rate limit in simulated time.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "NevQos/platform/zub/ActivityManager.h"
#include "NevQos/platform/zub/Log.h"

namespace {

class LogTest : public ::testing::Test {
 protected:
   void SetUp() override {
      previous_ = Zub::activityManager();
      Zub::activityManagerIs( loop );
      Zub::logSinkIs( [ this ]( Zub::LogRecord const& r ) {
         lines.push_back( r.handle->name().stdString() + ": " + r.text.stdString() );
         times.push_back( r.time );
      } );
   }
   void TearDown() override {
      Zub::logSinkIs( nullptr );
      Zub::activityManagerIs( previous_ );
   }
   Zub::Ptr< Zub::ActivityManager > loop =
         Zub::ActivityManager::create( Zub::ActivityManager::TimeSource::simulated, 100.0 );
   std::vector< std::string > lines;
   std::vector< Zub::Seconds > times;

 private:
   Zub::Ptr< Zub::ActivityManager > previous_;
};

#define TEST_LOG_HANDLE( var, name, format, minInterval, rateLimitArgs )     \
   Zub::LogHandle var( name, Zub::LogSeverity::error, format, "explanation", \
                       Zub::NoActionRequired, minInterval, 1.0, rateLimitArgs )

TEST_F( LogTest, ArgumentsReplacePlaceholdersInOrder ) {
   TEST_LOG_HANDLE( h, "ZUBTEST_POLICY_FAILED", "Policy %s on %s failed with %d (100%%)", 0.0, 0 );
   Zub::log( h, "pm1", Zub::String( "Et1" ), 42 );
   Zub::log( h, Zub::Name( "pm2" ), "Et2", -1 );
   EXPECT_EQ( lines, ( std::vector< std::string >{
                           "ZUBTEST_POLICY_FAILED: Policy pm1 on Et1 failed with 42 (100%)",
                           "ZUBTEST_POLICY_FAILED: Policy pm2 on Et2 failed with -1 (100%)" } ) );
   EXPECT_EQ( times, ( std::vector< Zub::Seconds >{ 100.0, 100.0 } ) );
   EXPECT_EQ( Zub::LogHandle::find( "ZUBTEST_POLICY_FAILED" ), &h );
}

TEST_F( LogTest, RateLimitIsPerKeyOfLeadingArguments ) {
   TEST_LOG_HANDLE( h, "ZUBTEST_ONE_KEY", "%s %s", 10.0, 1 );
   Zub::log( h, "Et1", "a" );
   Zub::log( h, "Et1", "b" );  // same key: limited
   Zub::log( h, "Et2", "c" );  // another key passes
   loop->timeIs( 109.0 );
   Zub::log( h, "Et1", "d" );  // still within ten seconds of the first
   loop->timeIs( 110.0 );
   Zub::log( h, "Et1", "e" );
   Zub::log( h, "Et1", "f" );
   EXPECT_EQ( lines,
              ( std::vector< std::string >{ "ZUBTEST_ONE_KEY: Et1 a", "ZUBTEST_ONE_KEY: Et2 c",
                                            "ZUBTEST_ONE_KEY: Et1 e" } ) );
}

TEST_F( LogTest, RateLimitKeyWidth ) {
   TEST_LOG_HANDLE( none, "ZUBTEST_NO_KEY", "%s %s", 5.0, 0 );
   TEST_LOG_HANDLE( two, "ZUBTEST_TWO_KEYS", "%s %s", 5.0, 2 );
   TEST_LOG_HANDLE( unlimited, "ZUBTEST_UNLIMITED", "%s", 0.0, 1 );
   Zub::log( none, "a", "x" );
   Zub::log( none, "b", "y" );  // every emission shares the one key
   Zub::log( two, "a", "x" );
   Zub::log( two, "a", "y" );  // the second argument is part of the key
   Zub::log( two, "a", "x" );
   Zub::log( unlimited, "a" );
   Zub::log( unlimited, "a" );
   EXPECT_EQ( lines, ( std::vector< std::string >{ "ZUBTEST_NO_KEY: a x", "ZUBTEST_TWO_KEYS: a x",
                                                   "ZUBTEST_TWO_KEYS: a y", "ZUBTEST_UNLIMITED: a",
                                                   "ZUBTEST_UNLIMITED: a" } ) );
}

}  // namespace
