#include "NevQos/sim/chip/SimCbfFecMappingHelper.h"

#include <set>
#include <utility>

#include "NevQos/sim/chip/ChipText.h"

namespace Sim {

SimCbfFecMappingHelper::SimCbfFecMappingHelper( std::uint32_t slots, NotReady notReady )
    : CbfFecMappingHelper( Zub::Name( "cbfFecMappingHelper" ) )
    , slots_( slots )
    , notReady_( std::move( notReady ) ) {}

bool SimCbfFecMappingHelper::freeSlot( Qos::Hardware::FecOverrideRuleId& id ) const {
   std::set< Qos::Hardware::FecOverrideRuleId > used;
   for( auto const& [ key, rule ] : rules_ )
      used.insert( rule.id );
   for( id = 0; id < slots_; ++id ) {
      if( !used.contains( id ) ) return true;
   }
   return false;
}

bool SimCbfFecMappingHelper::faulted( std::string const& op ) {
   return faults_ && faults_->failingCall( op );
}

// An unchanged rule is accepted again; a changed one is rewritten in its slot.
NevHelper::CbfFecMappingUpdateStatus SimCbfFecMappingHelper::createOrUpdateMapping(
      Nev::CbfFecMapRule const& rule ) {
   if( faulted( "createOrUpdateMapping" ) ) return NevHelper::cbfMapUpdateFailed;
   if( notReady_ && notReady_() ) return NevHelper::cbfMapUpdateNotReady;
   auto it = rules_.find( rule.key() );
   if( it == rules_.end() ) {
      Qos::Hardware::FecOverrideRuleId id = 0;
      if( !freeSlot( id ) ) return NevHelper::cbfMapUpdateFailed;
      it = rules_.emplace( rule.key(), CbfRule{ id, 0, 0 } ).first;
   }
   it->second.hwFecId = rule.hwFecId();
   it->second.overridingHwFecId = rule.overridingHwFecId();
   return NevHelper::cbfMapUpdateSuccess;
}

NevHelper::CbfFecMappingUpdateStatus SimCbfFecMappingHelper::syncMapping(
      Nev::CbfFecMapRule const& rule, Qos::Hardware::FecOverrideRuleId hwRuleId ) {
   if( hwRuleId >= slots_ ) return NevHelper::cbfMapUpdateFailed;
   rules_[ rule.key() ] = CbfRule{ hwRuleId, rule.hwFecId(), rule.overridingHwFecId() };
   return NevHelper::cbfMapUpdateSuccess;
}

void SimCbfFecMappingHelper::deleteMapping( Qos::Glarn::OverrideKey const& ruleKey ) {
   if( faulted( "deleteMapping" ) ) return;
   rules_.erase( ruleKey );
}

Qos::Hardware::FecOverrideRuleId SimCbfFecMappingHelper::hwFecOverrideRuleId(
      Qos::Glarn::OverrideKey const& ruleKey ) {
   if( faulted( "hwFecOverrideRuleId" ) ) return Qos::Hardware::invalidFecOverrideRuleId;
   auto const it = rules_.find( ruleKey );
   return it == rules_.end() ? Qos::Hardware::invalidFecOverrideRuleId : it->second.id;
}

std::vector< NevHelper::CbfFecMapHwRule > SimCbfFecMappingHelper::hwFecOverrideRules() {
   std::vector< NevHelper::CbfFecMapHwRule > out;
   for( auto const& [ key, rule ] : rules_ )
      out.push_back( { key, rule.id, rule.hwFecId, rule.overridingHwFecId } );
   return out;
}

}  // namespace Sim
