// Seeded random sequences of configuration changes, with chip faults switched on and off, on
// both TCAM modes. After every step the switch must verify clean, log only what the step can
// explain, and hold in its TCAM exactly what a switch started afresh on the same configuration
// holds, for every policy map that is programmed; a map reported failed holds nothing.
//
// NEVQOS_RANDOM_STEPS and NEVQOS_RANDOM_SEED change the run (scripts/soak runs long ones), and
// NEVQOS_RANDOM_TRACE prints each step. A failure names its seed and step and writes the
// scenario up to that step to a file that nevqos-sim runs.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "reliability/RandomConfig.h"
#include "reliability/SwitchImage.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;

std::uint64_t fromEnvironment( char const* name, std::uint64_t fallback ) {
   char const* value = std::getenv( name );
   return value ? std::strtoull( value, nullptr, 10 ) : fallback;
}

// Enough range checkers that no rule is expanded: which rules get one depends on the order they
// came in, and running out is the fault matrix's.
constexpr char const* chipCommon = "tcamSliceEntries: 2048, rangeCheckers: 64, asyncDelay: 0.01";

std::string chipSettings( Sim::TcamMode mode, bool withFaults ) {
   std::string out = std::string( "{ " ) + chipCommon + ", tcamMode: " +
                     ( mode == Sim::TcamMode::synchronous ? "synchronous" : "asynchronous" );
   if( withFaults ) {
      // They hold from before the first step, which switches them all off.
      out += ", faults: [ { name: tcam-full, kind: outOfTcam, family: ipv4, atEntries: 40, "
             "from: 0.5 }, { name: commit-fails, kind: operationError, op: commitAcl, from: 0.5 "
             "}, { name: no-policers, kind: policerExhaustion, from: 0.5 } ], "
             "errorOnPolicerExhaustion: true";
   }
   return out + " }";
}

std::string stepText( Zub::Seconds t, std::string const& changes ) {
   return "  - at: " + std::to_string( int( t ) ) + "\n    changes:\n" + changes;
}

// The ACLs of the policy maps named in `pmaps`.
TcamImage onlyOf( TcamImage const& image, std::string const& pmap ) {
   TcamImage out;
   for( std::string const& id : aclsOfPolicyMap( image, pmap ) )
      out[ id ] = image.at( id );
   return out;
}

class RandomSequenceTest : public ::testing::TestWithParam< Sim::TcamMode > {
 protected:
   void SetUp() override {
      seed_ = fromEnvironment( "NEVQOS_RANDOM_SEED",
                               GetParam() == Sim::TcamMode::synchronous ? 1 : 2 );
      steps_ = fromEnvironment( "NEVQOS_RANDOM_STEPS", 1000 );
      config_ = std::make_unique< RandomConfig >( seed_ );
      trace_ = std::getenv( "NEVQOS_RANDOM_TRACE" ) != nullptr;
   }

   // Where a failure happened, and how to run it again.
   std::string reproduction( std::size_t step, std::string const& summary ) {
      std::string const path =
            ::testing::TempDir() + "random-seed-" + std::to_string( seed_ ) + ".yaml";
      std::ofstream( path ) << start_ << history_;
      return "seed " + std::to_string( seed_ ) + ", step " + std::to_string( step ) + " (" +
             summary + "): NEVQOS_RANDOM_SEED=" + std::to_string( seed_ ) +
             " NEVQOS_RANDOM_STEPS=" + std::to_string( step ) + " reruns it; nevqos-sim " + path +
             " --verify replays it";
   }

   // Everything a step must leave true; false after the first failure.
   bool check( Sim::SimSwitch& sw, std::size_t logsBefore, bool faultsHeld,
               std::string const& where ) {
      for( std::string const& line : logLinesOf( sw, logsBefore ) ) {
         bool const full = line.starts_with( "QOS_POLICY_HW_RESOURCE_FULL: " ) ||
                           line.starts_with( "QOS_POLICY_POLICER_RESOURCE_FULL: " );
         bool const normal = line.starts_with( "QOS_POLICY_HW_RESOURCE_NORMAL: " );
         EXPECT_TRUE( normal || ( full && faultsHeld ) ) << line << "\n" << where;
      }
      EXPECT_EQ( sw.verify(), Lines{} ) << where;

      Sim::SimSwitch fresh(
            scenarioOf( config_->scenarioText( chipSettings( GetParam(), false ) ) ) );
      fresh.runUntil( 0.9 );
      EXPECT_EQ( logLinesOf( fresh ), Lines{} ) << where;
      TcamImage const got = tcamImageOf( sw );
      TcamImage const want = tcamImageOf( fresh );
      Lines const status = policyMapStatusOf( sw );
      Lines const freshStatus = policyMapStatusOf( fresh );
      EXPECT_EQ( status.size(), freshStatus.size() ) << where;
      std::size_t mapsSeen = 0;
      for( std::string const pmap : { "p1", "p2" } ) {
         bool failed = false;
         for( std::string const& s : status ) {
            if( s.starts_with( "input/" + pmap + ": hwPrgmStatusFail" ) ) failed = true;
         }
         EXPECT_TRUE( !failed || faultsHeld || failedBefore_.contains( pmap ) )
               << pmap << " failed with no fault\n"
               << where;
         if( failed ) {
            failedBefore_.insert( pmap );
            EXPECT_EQ( onlyOf( got, pmap ), TcamImage{} ) << pmap << " failed\n" << where;
         } else {
            failedBefore_.erase( pmap );
            EXPECT_EQ( onlyOf( got, pmap ), onlyOf( want, pmap ) )
                  << pmap << "\n"
                  << where << "\ngot\n"
                  << textOf( onlyOf( got, pmap ) ) << "a fresh start has\n"
                  << textOf( onlyOf( want, pmap ) );
         }
         mapsSeen += aclsOfPolicyMap( got, pmap ).size();
      }
      EXPECT_EQ( mapsSeen, got.size() ) << "ACLs of no policy map\n" << textOf( got ) << where;
      return !::testing::Test::HasFailure();
   }

   std::uint64_t seed_ = 0;
   std::uint64_t steps_ = 0;
   bool trace_ = false;
   std::unique_ptr< RandomConfig > config_;
   std::string start_;
   std::string history_;
   // Maps that stay failed until a change rebuilds them.
   std::set< std::string > failedBefore_;
};

TEST_P( RandomSequenceTest, EveryStepVerifiesAndMatchesAFreshStart ) {
   std::string allOff;
   for( std::string const& f : RandomConfig::faultNames() )
      allOff += "      - fault: { name: " + f + ", on: false }\n";
   start_ = config_->scenarioText( chipSettings( GetParam(), true ) ) + "steps:\n";
   history_ = stepText( 1, allOff );
   Sim::Scenario const first = scenarioOf( start_ + history_ );
   ASSERT_EQ( first.steps.size(), 1u );
   Sim::SimSwitch sw( first );
   sw.stepIs( first.steps[ 0 ] );
   sw.runUntil( 1.9 );
   ASSERT_TRUE( check( sw, 0, false, reproduction( 0, "start" ) ) );

   for( std::size_t i = 1; i <= steps_; ++i ) {
      Zub::Seconds const t = 1.0 + double( i );
      bool const faultsBefore = config_->anyFaultOn();
      std::string const before = config_->scenarioText( chipSettings( GetParam(), true ) );
      std::string summary;
      std::string const step = stepText( t, config_->nextChanges( summary ) );
      history_ += step;
      // An engine assertion ends the process before any message: this names the step.
      if( trace_ )
         std::cerr << "step " << i << ": " << summary << "; " << reproduction( i, summary )
                   << std::endl;
      Sim::Scenario const one = scenarioOf( before + "steps:\n" + step );
      ASSERT_EQ( one.steps.size(), 1u ) << reproduction( i, summary );
      std::size_t const logsBefore = sw.logs().size();
      sw.stepIs( one.steps[ 0 ] );
      sw.runUntil( t + 0.9 );
      sw.callsForget();
      bool const faultsHeld = faultsBefore || config_->anyFaultOn();
      ASSERT_TRUE( check( sw, logsBefore, faultsHeld, reproduction( i, summary ) ) );
   }
   RecordProperty( "cleanSteps", int( steps_ ) );
}

INSTANTIATE_TEST_SUITE_P( Modes, RandomSequenceTest,
                          ::testing::Values( Sim::TcamMode::synchronous,
                                             Sim::TcamMode::asynchronous ),
                          tcamModeName );

}  // namespace
}  // namespace NevQosTest
