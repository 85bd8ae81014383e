#include "sim/runner/Expectations.h"

#include <cmath>
#include <iomanip>
#include <sstream>
#include <string>
#include <vector>

namespace Sim {

namespace {

// A helper call or a log line, in the order they happened.
struct Event {
   ChipCall const* call = nullptr;
   LogLine const* log = nullptr;
   double t() const { return call ? call->t : log->t; }
};

std::vector< Event > eventsOf( SimSwitch const& sw ) {
   std::vector< Event > events;
   auto const& calls = sw.calls();
   auto const& logs = sw.logs();
   std::size_t nextLog = 0;
   for( std::size_t i = 0; i <= calls.size(); ++i ) {
      while( nextLog < logs.size() && logs[ nextLog ].callsBefore <= i )
         events.push_back( Event{ nullptr, &logs[ nextLog++ ] } );
      if( i < calls.size() ) events.push_back( Event{ &calls[ i ], nullptr } );
   }
   return events;
}

bool matches( ExpectItem const& item, Event const& e ) {
   if( item.at && std::abs( *item.at - e.t() ) > 1e-9 ) return false;
   if( item.isCall ) {
      if( !e.call || e.call->op != item.name ) return false;
      if( !item.helper.empty() && e.call->helper != item.helper ) return false;
      for( auto const& [ name, value ] : item.args ) {
         bool found = false;
         for( auto const& [ n, v ] : e.call->args )
            found = found || ( n == name && v == value );
         if( !found ) return false;
      }
      return true;
   }
   return e.log && e.log->handle == item.name && e.log->text.find( item.text ) != std::string::npos;
}

std::string itemText( ExpectItem const& item ) {
   std::string out = item.absent ? "not " : "";
   out += item.isCall ? "call " + ( item.helper.empty() ? "" : item.helper + " " ) + item.name
                      : "log " + item.name;
   for( auto const& [ name, value ] : item.args )
      out += " " + name + "=" + value;
   if( !item.text.empty() ) out += " \"" + item.text + "\"";
   if( item.at ) {
      std::ostringstream os;
      os << " at " << *item.at;
      out += os.str();
   }
   return out;
}

std::string eventText( Event const& e ) {
   std::ostringstream os;
   os << std::fixed << std::setprecision( 3 ) << e.t() << " s: ";
   if( e.call ) return os.str() + callText( *e.call );
   return os.str() + e.log->handle + " " + e.log->text;
}

// The first of `absent` that one of events [from, to) matches, as a failure text; empty if none.
std::string brokenAbsence( std::vector< ExpectItem const* > const& absent,
                           std::vector< Event > const& events, std::size_t from, std::size_t to ) {
   for( std::size_t i = from; i < to; ++i ) {
      for( ExpectItem const* item : absent ) {
         if( matches( *item, events[ i ] ) ) {
            return "line " + std::to_string( item->where.line ) + ": " + itemText( *item ) +
                   ", but " + eventText( events[ i ] );
         }
      }
   }
   return {};
}

}  // namespace

nlohmann::ordered_json expectationsMet( Scenario const& scenario, SimSwitch const& sw ) {
   std::vector< Event > const events = eventsOf( sw );
   nlohmann::ordered_json items = nlohmann::ordered_json::array();
   std::string failure;
   std::size_t from = 0;  // the first event the next item may match
   // `not` items waiting for the next item that must come: they hold up to its match.
   std::vector< ExpectItem const* > absent;
   for( ExpectItem const& item : scenario.expect )
      items.push_back( { { "line", item.where.line }, { "expect", itemText( item ) } } );
   for( std::size_t index = 0; index < scenario.expect.size(); ++index ) {
      ExpectItem const& item = scenario.expect[ index ];
      if( item.absent ) {
         absent.push_back( &item );
         continue;
      }
      std::size_t at = from;
      while( at < events.size() && !matches( item, events[ at ] ) )
         ++at;
      if( at == events.size() ) {
         failure = "line " + std::to_string( item.where.line ) + ": " + itemText( item ) +
                   " never came" + ( from ? " after the item before it" : "" );
         break;
      }
      failure = brokenAbsence( absent, events, from, at );
      if( !failure.empty() ) break;
      absent.clear();
      items[ index ][ "t" ] = events[ at ].t();
      from = at + 1;
   }
   // `not` items at the end hold to the end of the run.
   if( failure.empty() ) failure = brokenAbsence( absent, events, from, events.size() );
   nlohmann::ordered_json out{ { "met", failure.empty() }, { "items", items } };
   if( !failure.empty() ) out[ "failure" ] = failure;
   return out;
}

void printExpectations( std::ostream& os, nlohmann::ordered_json const& expectations ) {
   bool const met = expectations[ "met" ].get< bool >();
   os << "\nExpectations (" << expectations[ "items" ].size()
      << "): " << ( met ? "met" : "NOT met" ) << "\n";
   if( !met ) os << "  " << expectations[ "failure" ].get< std::string >() << "\n";
}

}  // namespace Sim
