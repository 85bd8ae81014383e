#include "NevQos/sim/runner/Progress.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

TEST( ProgressTest, NothingWhenNotATerminal ) {
   std::ostringstream out;
   Sim::Progress progress( out, false, 3 );
   progress.update( 1.5, 1, 10 );
   progress.update( 2.5, 3, 20 );
   progress.finish();
   EXPECT_EQ( out.str(), "" );
}

TEST( ProgressTest, OnATerminalShowsWhereTheRunIsAndClearsTheLine ) {
   std::ostringstream out;
   Sim::Progress progress( out, true, 3 );
   progress.update( 1.5, 1, 10 );
   EXPECT_EQ( out.str(), "\r\033[Kt=1.500 step 1/3 calls 10" );
   progress.finish();
   EXPECT_EQ( out.str(), "\r\033[Kt=1.500 step 1/3 calls 10\r\033[K" );
   // Cleared once: a second finish adds nothing.
   progress.finish();
   EXPECT_EQ( out.str(), "\r\033[Kt=1.500 step 1/3 calls 10\r\033[K" );
}

TEST( ProgressTest, FinishWithoutAnUpdateLeavesNoTrace ) {
   std::ostringstream out;
   Sim::Progress progress( out, true, 0 );
   progress.finish();
   EXPECT_EQ( out.str(), "" );
}

}  // namespace
