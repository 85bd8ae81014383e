// Runs a simulated switch in short slices of virtual time and asks for verification after each,
// so that a state verification cannot take is met where it arises, not only where a step ends.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "NevQos/sim/runner/SimSwitch.h"

namespace NevQosTest {

// Runs `sw` to `until`, verifying after every slice of `slice` seconds and calling `check` there;
// the findings of all the runs.
std::vector< std::string > runVerified( Sim::SimSwitch& sw, Zub::Seconds until,
                                        std::function< void() > const& check = {},
                                        Zub::Seconds slice = 0.01 );

// The same up to the step's time, then the step, verified once more; the next run checks first
// thing, so `check` sees the state before a step and after it at the same time apart.
std::vector< std::string > stepVerified( Sim::SimSwitch& sw, Sim::Step const& step,
                                         std::function< void() > const& check = {},
                                         Zub::Seconds slice = 0.01 );

// Every step of `steps` verified, then on to `until`; the findings of all.
std::vector< std::string > stepsVerified( Sim::SimSwitch& sw, std::vector< Sim::Step > const& steps,
                                          Zub::Seconds until );

}  // namespace NevQosTest
