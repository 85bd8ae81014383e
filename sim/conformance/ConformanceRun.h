// The conformance run of a chip driver: a scenario played on the real engines with the driver's
// helpers in the reference chip's place (SwitchOptions::driver), and what the driver must hold
// checked on the way, each finding naming the contract point broken and where:
// - verification: before each step and after the settling time, the engine's verification of
//   the driver is clean: the driver reads back what it was told;
// - call sequence, asynchronous results, capabilities: as the calls go by (ContractWatcher.h);
// - resources: when the driver offers its usage (ResourceUsage.h), what it reports in use after
//   a teardown step (every service policy and FEC override removed, every CPU queue the kernel
//   reported on calm) is what a switch started on the scenario without them reports.
// Changes aimed at the reference chip itself (faults, traffic, TCAM damage) mean nothing to
// another driver: they are left out, with a note, unless the driver is built on the reference
// chip (`onReferenceChip`). Where a scenario breaks a point on purpose (TCAM damage is there for
// verification to find, a chip that answers twice), that point is not checked, with a note.
#pragma once

#include <cstddef>
#include <optional>
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
   // How long an asynchronous operation of the driver may wait for its result; unset, the
   // scenario chip's `asyncTimeout`.
   std::optional< Zub::Seconds > asyncTimeout = {};
};

struct ConformanceResult {
   // "<scenario>: <where>: <contract point>: <what>", in the order found.
   std::vector< std::string > findings;
   // The checks not made, and why.
   std::vector< std::string > notes;
   std::size_t steps = 0;
};

// The changes of `scenario` aimed at the reference chip itself, as "step at <t>: <kind>" lines.
std::vector< std::string > chipAimedChanges( Sim::Scenario const& scenario );

ConformanceResult runConformance( Sim::Scenario const& scenario, DriverUnderTest const& driver,
                                  Zub::Seconds settle = 60.0 );

// Whether the driver's verification answers come from its hardware: the first permit IP subrule
// is answered 0 to the engine without reaching the driver, and verification must then find it
// missing. For a driver on the synchronous road and a scenario that programs a permit IP rule;
// otherwise a note says the check was not made.
ConformanceResult runWithheldSubrule( Sim::Scenario const& scenario, DriverUnderTest const& driver,
                                      Zub::Seconds settle = 60.0 );

}  // namespace Conformance
