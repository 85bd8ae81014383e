// The random sequences of sim/random on both TCAM modes, a few seeds each: the suite's share of
// CI time. NEVQOS_RANDOM_SEED (the first seed), NEVQOS_RANDOM_SEEDS and NEVQOS_RANDOM_STEPS change
// the run (scripts/soak runs long ones), and NEVQOS_RANDOM_TRACE prints each step. A failure
// names its seed and step, the command that reruns it, and a scenario file with the whole history
// that nevqos-sim replays; an engine assertion names them too, on its way out.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "NevQos/sim/random/RandomSequence.h"
#include "reliability/ReliabilityTest.h"

namespace NevQosTest {
namespace {

std::uint64_t fromEnvironment( char const* name, std::uint64_t fallback ) {
   char const* value = std::getenv( name );
   return value ? std::strtoull( value, nullptr, 10 ) : fallback;
}

class RandomSequenceTest : public ::testing::TestWithParam< Sim::TcamMode > {};

TEST_P( RandomSequenceTest, EveryStepHoldsWhatTheChipAndTheConfigurationExplain ) {
   Sim::RandomSequenceOptions options;
   options.mode = GetParam();
   bool const sync = options.mode == Sim::TcamMode::synchronous;
   options.firstSeed = fromEnvironment( "NEVQOS_RANDOM_SEED", sync ? 1 : 1001 );
   options.seeds = fromEnvironment( "NEVQOS_RANDOM_SEEDS", 24 );
   options.steps = fromEnvironment( "NEVQOS_RANDOM_STEPS", 25 );
   options.trace = std::getenv( "NEVQOS_RANDOM_TRACE" ) != nullptr;
   options.replayDir = ::testing::TempDir();
   std::string const mode = sync ? "synchronous" : "asynchronous";
   options.rerun = [ mode ]( std::uint64_t seed, std::size_t step ) {
      return "NEVQOS_RANDOM_SEED=" + std::to_string( seed ) +
             " NEVQOS_RANDOM_SEEDS=1 NEVQOS_RANDOM_STEPS=" + std::to_string( step ) +
             " nevqos_tests --gtest_filter='Modes/RandomSequenceTest.*/" + mode + "'";
   };
   Sim::RandomSequenceResult const result = Sim::runRandomSequences( options );
   for( std::string const& finding : result.findings )
      ADD_FAILURE() << finding;
   EXPECT_GT( result.stepsRun, 0u );
   RecordProperty( "stepsRun", int( result.stepsRun ) );
}

INSTANTIATE_TEST_SUITE_P( Modes, RandomSequenceTest,
                          ::testing::Values( Sim::TcamMode::synchronous,
                                             Sim::TcamMode::asynchronous ),
                          tcamModeName );

}  // namespace
}  // namespace NevQosTest
