// The conformance run of a chip driver: a scenario played on the real engines with the driver's
// helpers in the reference chip's place (SwitchOptions::driver), and what the driver must hold
// checked on the way, each finding naming the contract point broken and where:
// - verification: before each step and after the settling time, the engine's verification of
//   the driver is clean: the driver reads back what it was told.
// Changes aimed at the reference chip itself (faults, traffic, TCAM damage) mean nothing to
// another driver; a scenario with them is run only where the driver is built on the reference
// chip (`onReferenceChip`), and one that damages the TCAM not at all: its findings are its point.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "NevQos/sim/runner/SimSwitch.h"
#include "NevQos/sim/scenario/Scenario.h"

namespace Conformance {

struct DriverUnderTest {
   std::string name;
   Sim::DriverHelpers helpers = {};
   // Whether the driver decorates the reference chip, so that faults, traffic and damage aimed
   // at the chip reach it.
   bool onReferenceChip = false;
};

struct ConformanceResult {
   // "<scenario>: <where>: <contract point>: <what>", in the order found.
   std::vector< std::string > findings;
   std::size_t steps = 0;
   // Why the scenario was not run; empty when it was.
   std::string skipped;
};

// The changes of `scenario` aimed at the reference chip itself, as "step at <t>: <kind>" lines.
std::vector< std::string > chipAimedChanges( Sim::Scenario const& scenario );

ConformanceResult runConformance( Sim::Scenario const& scenario, DriverUnderTest const& driver,
                                  Zub::Seconds settle = 60.0 );

}  // namespace Conformance
