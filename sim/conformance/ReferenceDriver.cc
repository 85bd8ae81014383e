#include "NevQos/sim/conformance/ReferenceDriver.h"

namespace Conformance {

ReferenceChipAcl::ReferenceChipAcl( Zub::Ptr< Sim::SimQosAclHelper > const& chip,
                                    Sim::DriverInputs const& in )
    : RecordingQosAclHelper( chip, in.clock ), chip_( chip ) {
   countingIs( true );
   // The chip reports an operation it leaves pending to the driver's agent.
   chip->operationLeftPendingHandlerIs( in.operationLeftPending );
}

std::map< std::string, std::uint64_t > ReferenceChipAcl::resourcesInUse() const {
   std::map< std::string, std::uint64_t > out{
      { "range checkers", chip_->tcam().rangeCheckersUsed() },
      { "policers", chip_->policersUsed() },
      { "counters", chip_->countersUsed() },
      { "CPU queues", chip_->cpuQueuesUsed() },
      { "CPU queue policers of ports", chip_->portCpuQueuePolicers().size() },
      { "ACLs", chip_->tcam().acls().size() },
   };
   for( auto const& [ name, slice ] : chip_->tcam().slices() )
      out[ "TCAM entries " + name ] = slice.used;
   return out;
}

ReferenceChipCbf::ReferenceChipCbf( Zub::Ptr< Sim::SimCbfFecMappingHelper > const& chip,
                                    Sim::DriverInputs const& in )
    : RecordingCbfFecMappingHelper( chip, in.clock ), chip_( chip ) {
   countingIs( true );
}

std::map< std::string, std::uint64_t > ReferenceChipCbf::resourcesInUse() const {
   return { { "CBF rules", chip_->rules().size() } };
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
