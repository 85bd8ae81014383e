// The reference chip as a driver under test: each of its helpers behind a forwarding recording
// decorator, the ACL and class-based-forwarding ones reporting the chip's resources in use. A
// test may change the ACL decorator's answers (its scripted answers, or an override in a
// subclass made by `acl`) to make a broken driver of it.
#pragma once

#include <functional>

#include "NevQos/sim/conformance/ConformanceRun.h"
#include "NevQos/sim/conformance/ResourceUsage.h"
#include "NevQos/sim/recording/RecordingCbfFecMappingHelper.h"
#include "NevQos/sim/recording/RecordingQosAclHelper.h"

namespace Conformance {

// The reference chip's ACL helper, forwarded, with its resources in use.
class ReferenceChipAcl : public Sim::RecordingQosAclHelper, public ResourceUsage {
 public:
   ReferenceChipAcl( Zub::Ptr< Sim::SimQosAclHelper > const& chip, Sim::DriverInputs const& in );
   Sim::SimQosAclHelper const& chip() const { return *chip_; }
   std::map< std::string, std::uint64_t > resourcesInUse() const override;

 private:
   Zub::Ptr< Sim::SimQosAclHelper > chip_;
};

class ReferenceChipCbf : public Sim::RecordingCbfFecMappingHelper, public ResourceUsage {
 public:
   ReferenceChipCbf( Zub::Ptr< Sim::SimCbfFecMappingHelper > const& chip,
                     Sim::DriverInputs const& in );
   std::map< std::string, std::uint64_t > resourcesInUse() const override;

 private:
   Zub::Ptr< Sim::SimCbfFecMappingHelper > chip_;
};

// Makes the ACL helper of the driver, given the reference chip's and the inputs.
using ReferenceAclFactory = std::function< Zub::Ptr< ReferenceChipAcl >(
      Zub::Ptr< Sim::SimQosAclHelper > const&, Sim::DriverInputs const& ) >;

// The reference chip as a driver; `acl`, when given, makes its ACL helper (a subclass of
// ReferenceChipAcl), and `script` then changes that helper's answers.
DriverUnderTest referenceDriver( ReferenceAclFactory acl = {},
                                 std::function< void( ReferenceChipAcl& ) > script = {} );

}  // namespace Conformance
