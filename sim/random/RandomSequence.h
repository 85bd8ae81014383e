// Seeded random sequences of configuration changes on seeded random chips (RandomChip.h,
// RandomConfig.h), with the chip's faults switched on and off. Each seed draws a chip and a
// configuration and runs a number of changes; after every change the switch is left to settle
// and must:
// - log only what the chip, its faults and the configuration explain;
// - verify clean, and hold in its chip what its status says (SwitchChecks.h);
// - hold, for every policy map it reports programmed, what a switch started afresh on the same
//   configuration holds on a roomy chip with the same capabilities: exactly, when the chip is
//   roomy and no fault has been on; otherwise the same ACLs, bound to the same interfaces (on a
//   tight chip what fits depends on the order of changes, and a fault's answer, an expansion
//   say, stays until the map is built again). A map reported failed holds nothing, and fails
//   only on a tight chip, while a fault holds or until a change rebuilds it, or where the
//   fresh switch fails it too.
//
// The suite runs a few seeds of each mode; scripts/soak runs many. The conformance of a driver
// can be judged by the same sequences.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "NevQos/sim/chip/ChipConfig.h"

namespace Sim {

struct RandomSequenceOptions {
   TcamMode mode = TcamMode::synchronous;
   std::uint64_t firstSeed = 1;
   std::uint64_t seeds = 1;
   std::uint64_t steps = 25;
   // Writes where each step stands to standard error.
   bool trace = false;
   // The folder that a failing seed's replay scenario is written to.
   std::string replayDir = "/tmp/";
   // How to run a seed again up to a step, for the messages; nothing by default.
   std::function< std::string( std::uint64_t seed, std::size_t step ) > rerun;
};

struct RandomSequenceResult {
   std::size_t stepsRun = 0;
   // What the first failing step broke, each line naming the seed, the step and the scenario
   // file that replays the whole history with nevqos-sim; empty when every step held.
   std::vector< std::string > findings;
};

// Runs the seeds in order and stops at the first failing step.
RandomSequenceResult runRandomSequences( RandomSequenceOptions const& options );

}  // namespace Sim
