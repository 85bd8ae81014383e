// The example driver through the conformance kit: every example scenario, generated stories of
// both TCAM modes, and the check that its verification reads its hardware. The basic QoS and
// class-based-forwarding helpers are left to the reference chip.

#include <NevQos/sim/conformance/ConformanceSuite.h>

#include "ExampleAclHelper.h"

namespace {

Conformance::DriverUnderTest exampleDriver() {
   Conformance::DriverUnderTest driver{ .name = "example driver" };
   driver.helpers.acl = []( Zub::Ptr< Sim::SimQosAclHelper > const&, Sim::DriverInputs const& in ) {
      return Zub::Ptr< NevHelper::QosAclHelper >(
            Zub::make< ExampleDriver::ExampleAclHelper >( in ) );
   };
   // How long its asynchronous operations may take to answer is the scenario's asyncTimeout;
   // a driver with a bound of its own sets driver.asyncTimeout.
   return driver;
}

}  // namespace

NEVQOS_CONFORMANCE_SUITE( ExampleDriver, exampleDriver )
