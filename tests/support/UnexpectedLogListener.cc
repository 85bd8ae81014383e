// Every test starts with a system log that fails it on any line: a test that expects log lines
// captures them itself (the fixtures and the simulated switch install their own sink and check
// what they caught), so a line that reaches this sink is one nobody said would come.
#include <gtest/gtest.h>

#include "NevQos/platform/zub/Log.h"

namespace NevQosTest {
namespace {

class UnexpectedLogListener : public ::testing::EmptyTestEventListener {
   void OnTestStart( ::testing::TestInfo const& ) override {
      Zub::logSinkIs( []( Zub::LogRecord const& r ) {
         ADD_FAILURE() << "unexpected log line " << r.handle->name().stdString() << ": "
                       << r.text.stdString();
      } );
   }
   void OnTestEnd( ::testing::TestInfo const& ) override { Zub::logSinkIs( nullptr ); }
};

[[maybe_unused]] bool const installed = [] {
   ::testing::UnitTest::GetInstance()->listeners().Append( new UnexpectedLogListener );
   return true;
}();

}  // namespace
}  // namespace NevQosTest
