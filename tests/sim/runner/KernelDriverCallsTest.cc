// The kernel packet driver's calls, kept in order. (PDP mode's default policy, and the kernel's
// CoPP configuration read at each start-up, have stories under tests/stories.)
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/SimProgram.h"

namespace NevQosTest {
namespace {

using Json = nlohmann::json;

TEST( KernelDriverCallsTest, ThePacketDriversCallsAreKeptInOrder ) {
   Json const report = scenarioReport( "kernel-calls", R"(
chip: { hwInitialized: false }
steps:
  - { at: 1, changes: [ { globalMaps: { cosToTc: { 5: 4 } } } ] }
  - { at: 2, changes: [ { hwInitialized: true } ] }
  - { at: 3, changes: [ { globalMaps: { dscpToTc: { 46: 5 } } } ] }
)" );
   Json const& kernel = report[ "controlPlane" ][ "kernel" ];
   Json const& calls = kernel[ "calls" ];
   ASSERT_EQ( calls.size(), kernel[ "operations" ].get< std::size_t >() );
   ASSERT_GT( calls.size(), 2u );
   // Nothing before the driver's start-up; the COS change made before it is told with the rest.
   EXPECT_EQ( calls[ 0 ][ "t" ], 2.0 );
   bool cosFiveToFour = false;
   for( std::size_t i = 0; i + 1 < calls.size(); ++i ) {
      EXPECT_LE( calls[ i ][ "t" ].get< double >(), calls[ i + 1 ][ "t" ].get< double >() );
      cosFiveToFour |= calls[ i ][ "op" ] == "cosToTcIs" &&
                       calls[ i ][ "args" ] == Json{ { "cos", 5 }, { "tc", 4 } };
   }
   EXPECT_TRUE( cosFiveToFour );
   // The step at 3 tells one slot, and last.
   Json const& last = calls.back();
   EXPECT_EQ( last[ "t" ], 3.0 );
   EXPECT_EQ( last[ "op" ], "dscpToTcIs" );
   EXPECT_EQ( last[ "args" ], ( Json{ { "dscp", 46 }, { "tc", 5 } } ) );
   EXPECT_EQ( calls[ calls.size() - 2 ][ "t" ], 2.0 );
}

}  // namespace
}  // namespace NevQosTest
