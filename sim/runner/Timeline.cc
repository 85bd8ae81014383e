#include "NevQos/sim/runner/Timeline.h"

#include <string>
#include <type_traits>
#include <utility>
#include <variant>

#include "NevQos/sim/runner/Report.h"

namespace Sim {

namespace {

using Json = nlohmann::ordered_json;

std::string changeText( Scenario const& scenario, Change const& change ) {
   std::string text = change.kind.empty() ? std::string( "change" ) : change.kind;
   std::visit(
         [ & ]( auto const& value ) {
            using Value = std::decay_t< decltype( value ) >;
            if constexpr( std::is_same_v< Value, FaultSwitch > ) {
               std::string const name = value.fault < scenario.faultNames.size()
                                              ? scenario.faultNames[ value.fault ]
                                              : std::string();
               text += " " + ( name.empty() ? std::to_string( value.fault ) : name );
               text += value.on ? " on" : " off";
            } else if constexpr( requires { value.name.empty(); } ) {
               if( !value.name.empty() ) text += " " + value.name;
            }
         },
         change.value );
   return text;
}

// The faults of the chip that hold now, by name (by number where unnamed).
Json faultsOn( Scenario const& scenario, SimSwitch const& sw ) {
   Json out = Json::array();
   auto const& faults = sw.chip().faults();
   if( !faults ) return out;
   for( std::size_t i = 0; i < faults->faults().size(); ++i ) {
      if( !faults->holds( i ) ) continue;
      bool const named = i < scenario.faultNames.size() && !scenario.faultNames[ i ].empty();
      out.push_back( named ? scenario.faultNames[ i ] : std::to_string( i ) );
   }
   return out;
}

Json poolsUse( SimSwitch const& sw ) {
   SimQosAclHelper const& chip = sw.chip();
   ChipConfig const& c = chip.config();
   return Json{ { "policers", poolOf( c.policers, chip.policersUsed() ) },
                { "counters", poolOf( c.counters, chip.countersUsed() ) },
                { "cpuQueues", poolOf( c.cpuQueues, chip.cpuQueuesUsed() ) },
                { "coppPolicers",
                  poolOf( c.portCpuQueuePolicers, chip.portCpuQueuePolicers().size() ) },
                { "cbfRules", poolOf( sw.cbfChip().slots(), sw.cbfChip().rules().size() ) } };
}

}  // namespace

std::vector< std::string > changeTexts( Scenario const& scenario,
                                        std::vector< Change > const& changes ) {
   std::vector< std::string > out;
   out.reserve( changes.size() );
   for( Change const& change : changes )
      out.push_back( changeText( scenario, change ) );
   return out;
}

void Timeline::startIs( SimSwitch const& sw ) {
   sampleIs( sw, 0, "start", { "the configuration the switch starts with" } );
}

void Timeline::stepIs( SimSwitch const& sw, std::size_t index ) {
   sampleIs( sw, index, "step " + std::to_string( index ),
             changeTexts( scenario_, scenario_.steps.at( index - 1 ).changes ) );
}

void Timeline::settledIs( SimSwitch const& sw ) {
   sampleIs( sw, scenario_.steps.size() + 1, "settle", {} );
}

// The calls by operation since the last sample. The call log counts every call, kept in its
// record or not, so the counts are exact however long the run; the runner never clears it.
Json Timeline::callsSince( SimSwitch const& sw ) {
   Json out = Json::object();
   for( auto const& [ op, count ] : sw.calls().counts() ) {
      auto const before = callsBefore_.find( op );
      std::uint64_t const made = count - ( before == callsBefore_.end() ? 0 : before->second );
      if( made != 0 ) out[ op ] = made;
   }
   callsBefore_ = sw.calls().counts();
   return out;
}

void Timeline::sampleIs( SimSwitch const& sw, std::size_t index, std::string const& label,
                         std::vector< std::string > changes ) {
   std::size_t const logs = sw.logs().size();
   Json sample{ { "step", index },
                { "label", label },
                { "t", sw.now() },
                { "changes", std::move( changes ) },
                { "faults", faultsOn( scenario_, sw ) },
                { "tcam", tcamPoolsOf( sw.chip().tcam() ) },
                { "pools", poolsUse( sw ) },
                { "pendingOperations", sw.chip().pendingOperations() },
                { "calls", callsSince( sw ) },
                { "logs", logs - logsBefore_ } };
   logsBefore_ = logs;
   samples_.push_back( std::move( sample ) );
}

}  // namespace Sim
