// The programming step of basic QoS: one driver call, with its outcome filed in the slice's
// hardware status under the feature it programs.
//
// The driver gets no status back to return: the record of the feature is raised to success
// before the call, and a driver that fails lowers it while it runs. Afterwards a lowered record
// takes the step's error text, and the slice as a whole is marked failed; only a clear request
// raises the slice again, so one failure stays visible through later successes. The record's
// version is the configuration version of the attempt, failed or not, so the operator sees
// which configuration the status belongs to.
#pragma once

#include <type_traits>
#include <utility>

#include "NevQos/platform/entities/QosStatus.h"
#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/entities/SliceHwStatus.h"

namespace Nev {

// Runs `driverCall` as a step of `feature`; `errorText` is null for a feature whose failure has
// no text. A driver call that returns a bool reports by its result instead, and false lowers
// the record here. Returns whether the driver took the change.
template< class DriverCall >
bool runProgrammingStep( Qos::SliceHwStatus& slice, Qos::Status const& qosStatus,
                         Qos::FeatureName feature, char const* errorText,
                         DriverCall&& driverCall ) {
   auto record = slice.hwProgrammingVersionAndStatusIs( feature );
   record->hwProgrammingStatusIs( Qos::hwProgrammingSucceeded_ );
   if constexpr( std::is_same_v< std::invoke_result_t< DriverCall >, bool > ) {
      if( !std::forward< DriverCall >( driverCall )() ) {
         record->hwProgrammingStatusIs( Qos::hwProgrammingFailed_ );
      }
   } else {
      std::forward< DriverCall >( driverCall )();
   }
   Zub::Seconds const version = qosStatus.configVersionUpdateTime();
   bool const succeeded = record->hwProgrammingStatus() == Qos::hwProgrammingSucceeded_;
   if( !succeeded ) {
      slice.statusIs( Qos::hwProgrammingFailed_ );
      // A later success leaves the text: it tells what failed last.
      if( errorText ) record->errMessageIs( Zub::String( errorText ) );
   }
   record->versionIs( version );
   return succeeded;
}

}  // namespace Nev
