#include "NevQos/sim/conformance/ReferenceDriver.h"

#include "NevQos/sim/checks/SwitchImage.h"

namespace Conformance {

ReferenceChipAcl::ReferenceChipAcl( Zub::Ptr< Sim::SimQosAclHelper > const& chip,
                                    Sim::DriverInputs const& in )
    : RecordingQosAclHelper( chip, in.clock ), chip_( chip ) {
   countingIs( true );
   // The chip reports an operation it leaves pending to the driver's agent.
   chip->operationLeftPendingHandlerIs( in.operationLeftPending );
}

std::map< std::string, std::uint64_t > ReferenceChipAcl::resourcesInUse() const {
   return Sim::aclResourcesInUse( *chip_ );
}

ReferenceChipCbf::ReferenceChipCbf( Zub::Ptr< Sim::SimCbfFecMappingHelper > const& chip,
                                    Sim::DriverInputs const& in )
    : RecordingCbfFecMappingHelper( chip, in.clock ), chip_( chip ) {
   countingIs( true );
}

std::map< std::string, std::uint64_t > ReferenceChipCbf::resourcesInUse() const {
   return { { "cbf rules", chip_->rules().size() } };
}

DriverUnderTest referenceDriver( ReferenceAclFactory acl,
                                 std::function< void( ReferenceChipAcl& ) > script ) {
   DriverUnderTest driver{ .name = "reference chip", .onReferenceChip = true };
   if( !acl ) {
      acl = []( Zub::Ptr< Sim::SimQosAclHelper > const& chip, Sim::DriverInputs const& in ) {
         return Zub::make< ReferenceChipAcl >( chip, in );
      };
   }
   driver.helpers.acl = [ acl, script ]( Zub::Ptr< Sim::SimQosAclHelper > const& chip,
                                         Sim::DriverInputs const& in ) {
      Zub::Ptr< ReferenceChipAcl > helper = acl( chip, in );
      if( script ) script( *helper );
      return Zub::Ptr< NevHelper::QosAclHelper >( helper );
   };
   driver.helpers.cbf = []( Zub::Ptr< Sim::SimCbfFecMappingHelper > const& chip,
                            Sim::DriverInputs const& in ) {
      return Zub::Ptr< NevHelper::CbfFecMappingHelper >(
            Zub::make< ReferenceChipCbf >( chip, in ) );
   };
   return driver;
}

}  // namespace Conformance
