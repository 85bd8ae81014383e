// What the reliability tests share: the switch images of sim/checks, a scenario read from text,
// and the name of a test run on a TCAM mode.
#pragma once

#include <string>

#include <gtest/gtest.h>

#include "NevQos/sim/checks/SwitchImage.h"
#include "NevQos/sim/scenario/Scenario.h"

namespace NevQosTest {

using Sim::AclImage;
using Sim::aclsOfPolicyMap;
using Sim::logLinesOf;
using Sim::policyMapStatusOf;
using Sim::resourcesInUse;
using Sim::TcamImage;
using Sim::tcamImageOf;
using Sim::textOf;

// The name of a test run on `mode`.
std::string tcamModeName( ::testing::TestParamInfo< Sim::TcamMode > const& mode );

// A scenario from YAML text; the test fails (and the scenario is empty) when it can't be read.
Sim::Scenario scenarioOf( std::string const& yaml );

}  // namespace NevQosTest
