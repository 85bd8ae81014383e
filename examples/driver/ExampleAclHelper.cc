#include "ExampleAclHelper.h"

namespace ExampleDriver {

ExampleAclHelper::ExampleAclHelper( Sim::DriverInputs const& in )
    : SimQosAclHelper( *in.chip, in.qosStatus, in.aclSliceHwStatus, in.aclConfig, in.clock ) {
   // Where verification findings go, and the agent's hook for an operation left pending.
   verifyDataIs( in.verifyData );
   operationLeftPendingHandlerIs( in.operationLeftPending );
}

std::map< std::string, std::uint64_t > ExampleAclHelper::resourcesInUse() const {
   std::map< std::string, std::uint64_t > out{
      { "range checkers", tcam().rangeCheckersUsed() },
      { "policers", policersUsed() },
      { "counters", countersUsed() },
      { "CPU queues", cpuQueuesUsed() },
   };
   for( auto const& [ name, slice ] : tcam().slices() )
      out[ "TCAM entries " + name ] = slice.used;
   return out;
}

}  // namespace ExampleDriver
