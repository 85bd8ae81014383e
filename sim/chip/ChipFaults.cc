#include "NevQos/sim/chip/ChipFaults.h"

#include <algorithm>
#include <utility>

#include "NevQos/platform/zub/Assert.h"

namespace Sim {

bool isAclFaultOperation( std::string_view op ) {
   return std::ranges::find( aclFaultOperations, op ) != aclFaultOperations.end();
}

bool isBasicFaultOperation( std::string_view op ) {
   return std::ranges::find( basicFaultOperations, op ) != basicFaultOperations.end();
}

bool isCbfFaultOperation( std::string_view op ) {
   return std::ranges::find( cbfFaultOperations, op ) != cbfFaultOperations.end();
}

ChipFaults::ChipFaults( std::vector< FaultConfig > faults, Zub::Ptr< Kesh::TimerWheel > clock )
    : faults_( std::move( faults ) )
    , clock_( std::move( clock ) )
    , switchedOff_( faults_.size(), false ) {}

void ChipFaults::switchIs( std::size_t index, bool on ) {
   ZUB_ASSERT_TEXT( index < switchedOff_.size(), "the chip has no such fault" );
   switchedOff_[ index ] = !on;
}

bool ChipFaults::holds( std::size_t index ) const {
   if( switchedOff_[ index ] ) return false;
   FaultConfig const& fault = faults_[ index ];
   Zub::Seconds const now = clock_ ? clock_->now() : 0.0;
   return !( fault.from && now < *fault.from ) && !( fault.until && now > *fault.until );
}

bool ChipFaults::on( FaultConfig::Kind kind ) const {
   for( std::size_t i = 0; i < faults_.size(); ++i ) {
      if( faults_[ i ].kind == kind && holds( i ) ) return true;
   }
   return false;
}

FaultConfig const* ChipFaults::failingCall( std::string const& op ) {
   std::uint32_t const n = ++calls_[ op ];
   for( std::size_t i = 0; i < faults_.size(); ++i ) {
      FaultConfig const& f = faults_[ i ];
      if( f.kind != FaultConfig::Kind::operationError || f.op != op || !holds( i ) ) continue;
      if( f.nth == 0 || f.nth == n ) return &f;
   }
   return nullptr;
}

}  // namespace Sim
