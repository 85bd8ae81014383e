#include "NevQos/sim/runner/CbfReport.h"

#include <ostream>
#include <string>

#include "NevQos/sim/chip/ChipText.h"
#include "NevQos/sim/runner/Report.h"
#include "NevQos/sim/runner/TextFormat.h"

namespace Sim {

namespace {

using Json = nlohmann::ordered_json;

char const* statusText( std::uint32_t status ) {
   switch( status ) {
      case Qos::Glarn::fecOverrideProgrammed:
         return "programmed";
      case Qos::Glarn::fecOverrideOutOfResource:
         return "outOfResource";
      case Qos::Glarn::fecOverrideWaitingForHwFecId:
         return "waitingForHwFecId";
      case Qos::Glarn::fecOverrideHwNotReady:
         return "hwNotReady";
   }
   return "unknown";
}

Json ruleIdOf( Qos::Hardware::FecOverrideRuleId id ) {
   return id == Qos::Hardware::invalidFecOverrideRuleId ? Json() : Json( id );
}

}  // namespace

Json cbfOf( SimSwitch const& sw ) {
   SimCbfFecMappingHelper const& chip = sw.cbfChip();
   Json rules = Json::array();
   for( auto const& [ key, rule ] : chip.rules() ) {
      rules.push_back( Json{ { "key", textOf( key ) },
                             { "id", rule.id },
                             { "hwFecId", rule.hwFecId },
                             { "overridingHwFecId", rule.overridingHwFecId } } );
   }
   Json table = poolOf( chip.slots(), chip.rules().size() );
   table[ "rules" ] = std::move( rules );

   Json status = Json::array();
   for( auto it = sw.fecOverrideStatus().iter(); it; ++it ) {
      status.push_back( Json{ { "key", textOf( it.key() ) },
                              { "status", statusText( it.value().status ) },
                              { "hwRuleId", ruleIdOf( it.value().hwRuleId ) } } );
   }
   Json requests = Json::array();
   for( auto it = sw.hwFecIdRequest().iter(); it; ++it )
      requests.push_back( it.key() );
   Nev::CbfFecMappingSm const& sm = sw.cbfEngine();
   Json queued = Json::array();
   for( auto it = sm.policyOverrideReviewQueue().iter(); it; ++it )
      queued.push_back( textOf( it.key() ) );
   Json restarts = Json::array();
   for( CorruptionRestart const& r : sw.corruptionRestarts() )
      restarts.push_back( Json{ { "t", r.t }, { "text", r.text } } );
   return Json{ { "ruleTable", std::move( table ) },
                { "status", std::move( status ) },
                { "requests", std::move( requests ) },
                { "reviewQueue", std::move( queued ) },
                { "resourceFull", sm.resourceFull() },
                { "reviewQuantum", sm.scheduler()->workQuantum() },
                { "reviewRuns", sm.policyOverrideTask()->taskRuns() },
                { "corruptionRestarts", std::move( restarts ) } };
}

void printCbf( std::ostream& os, Json const& cbf ) {
   os << "\nClass-based forwarding rules: " << poolText( cbf[ "ruleTable" ] ) << "\n";
   for( Json const& r : cbf[ "ruleTable" ][ "rules" ] ) {
      os << "  #" << r[ "id" ] << " " << printable( r[ "key" ] ) << ": hardware FEC "
         << r[ "hwFecId" ] << " -> " << r[ "overridingHwFecId" ] << "\n";
   }
   os << "  override status:";
   if( cbf[ "status" ].empty() ) os << " none";
   os << "\n";
   for( Json const& s : cbf[ "status" ] ) {
      os << "    " << printable( s[ "key" ] ) << " " << printable( s[ "status" ] );
      if( !s[ "hwRuleId" ].is_null() ) os << " (rule " << s[ "hwRuleId" ] << ")";
      os << "\n";
   }
   os << "  FECs requested of the FEC service:";
   for( Json const& f : cbf[ "requests" ] )
      os << " " << f;
   if( cbf[ "requests" ].empty() ) os << " none";
   os << "\n  waiting for review: " << cbf[ "reviewQueue" ].size()
      << ( cbf[ "resourceFull" ].get< bool >() ? ", hardware full" : "" ) << "\n";
   os << "  review runs: " << cbf[ "reviewRuns" ] << ", " << cbf[ "reviewQuantum" ]
      << " keys a run\n";
   for( Json const& r : cbf[ "corruptionRestarts" ] ) {
      os << "  agent restarted at " << r[ "t" ] << " s: " << printable( r[ "text" ] ) << "\n";
   }
}

}  // namespace Sim
