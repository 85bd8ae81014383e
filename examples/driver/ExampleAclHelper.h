// An example chip driver's ACL helper. A real driver subclasses NevHelper::QosAclHelper and
// writes its chip through the chip's SDK; to stay short, this one takes the reference chip's
// model of a TCAM as its "SDK" by subclassing it, and changes what a driver chooses: a policer
// the chip cannot give fails the policy map. It also offers the conformance kit its resources in
// use, read from its tables.
#pragma once

#include <NevQos/sim/chip/SimQosAclHelper.h>
#include <NevQos/sim/conformance/ResourceUsage.h>
#include <NevQos/sim/runner/SimSwitch.h>

namespace ExampleDriver {

class ExampleAclHelper : public Sim::SimQosAclHelper, public Conformance::ResourceUsage {
 public:
   // Everything a helper is built on, as the agent (here the kit's switch) gives it.
   explicit ExampleAclHelper( Sim::DriverInputs const& in );

   bool errorOnPolicerExhaustion() override { return true; }
   std::map< std::string, std::uint64_t > resourcesInUse() const override;
};

}  // namespace ExampleDriver
