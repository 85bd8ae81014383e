// The stories the conformance kit plays on a driver: the example scenarios, and scenarios
// generated from seeds (a random chip and configuration, then random changes, as the random
// sequences draw them, without the chip's faults, which only the reference chip has).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "NevQos/sim/chip/ChipConfig.h"
#include "NevQos/sim/scenario/Scenario.h"

namespace Conformance {

// The paths of the scenarios (`*.yaml`) of `dir`, in name order.
std::vector< std::string > exampleStories( std::string const& dir );

// The generated story of `seed` on `mode`, `steps` steps, as scenario text that nevqos-sim runs
// ("generated-<mode>-seed-<seed>.yaml" names it in findings).
std::string generatedStoryText( Sim::TcamMode mode, std::uint64_t seed, std::size_t steps );
Sim::Scenario generatedStory( Sim::TcamMode mode, std::uint64_t seed, std::size_t steps );

}  // namespace Conformance
