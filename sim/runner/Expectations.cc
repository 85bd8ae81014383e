#include "NevQos/sim/runner/Expectations.h"
#include "NevQos/sim/runner/TextFormat.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace Sim {

namespace {

// A log line, or calls [from, to) of a run of identical calls or of the gap between the runs
// kept, in the order they happened: a log line that came between two calls of a run splits it.
// A log line stands for the one place [0, 1).
struct Event {
   CallRun const* run = nullptr;
   CallGap const* gap = nullptr;
   LogLine const* log = nullptr;
   std::uint64_t from = 0;
   std::uint64_t to = 1;
};

// A place among the events: event `event`, call `k` of its run or gap (0 for a log line).
struct Pos {
   std::size_t event = 0;
   std::uint64_t k = 0;
};

std::vector< Event > eventsOf( SimSwitch const& sw ) {
   std::vector< Event > events;
   auto const& logs = sw.logs();
   std::size_t nextLog = 0;
   // The log lines that came before call `calls` of the whole run.
   auto const logsUpTo = [ & ]( std::uint64_t calls ) {
      while( nextLog < logs.size() && logs[ nextLog ].callsBefore <= calls )
         events.push_back( Event{ .log = &logs[ nextLog++ ] } );
   };
   // Calls [start, start + count) of the whole run, as `e` covers them.
   auto const calls = [ & ]( Event e, std::uint64_t start, std::uint64_t count ) {
      for( std::uint64_t k = 0; k < count; ) {
         logsUpTo( start + k );
         std::uint64_t end = count;
         if( nextLog < logs.size() && logs[ nextLog ].callsBefore < start + count ) {
            end = logs[ nextLog ].callsBefore - start;
         }
         e.from = k;
         e.to = end;
         events.push_back( e );
         k = end;
      }
   };
   CallLog const& log = sw.calls();
   for( CallRun const& run : log.first() )
      calls( Event{ .run = &run }, run.callsBefore, run.count );
   if( log.gap() ) calls( Event{ .gap = &*log.gap() }, log.gap()->callsBefore, log.gap()->calls );
   for( CallRun const& run : log.last() )
      calls( Event{ .run = &run }, run.callsBefore, run.count );
   logsUpTo( log.size() );
   return events;
}

bool callMatches( ExpectItem const& item, ChipCall const& call ) {
   if( call.op != item.name ) return false;
   if( !item.helper.empty() && call.helper != item.helper ) return false;
   for( auto const& [ name, value ] : item.args ) {
      bool found = false;
      for( auto const& [ n, v ] : call.args )
         found = found || ( n == name && v == value );
      if( !found ) return false;
   }
   return true;
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

std::string eventText( Event const& e, Zub::Seconds t ) {
   std::string const at = timeText( t ) + " s: ";
   if( e.run ) return at + callText( e.run->call );
   return at + e.log->handle + " " + e.log->text;
}

// Where an item matches first in [from, to), with the time of that event; or, when the record
// cannot tell, why not.
struct Search {
   std::optional< Pos > found = std::nullopt;
   Zub::Seconds t = 0.0;
   std::string undecided = {};
};

std::string gapText( CallGap const& gap ) {
   return "the calls it needs were left out of the record: a gap of " +
          std::to_string( gap.calls ) + " calls in " + std::to_string( gap.runs ) + " runs from " +
          timeText( gap.from ) + " to " + timeText( gap.until ) +
          " s (a larger --keep-calls keeps them)";
}

std::string timesText( CallRun const& run ) {
   return "the times of the run of " + std::to_string( run.count ) + " calls \"" +
          callText( run.call ) + "\" from " + timeText( run.call.t ) + " to " +
          timeText( run.until ) + " s were not kept";
}

// The first call k in [lo, hi) of `run` at the item's time, or why that cannot be told.
Search atTime( CallRun const& run, Zub::Seconds at, std::uint64_t lo, std::uint64_t hi ) {
   // The times of a run never go back: one outside its span is not in it.
   if( at < run.call.t - 1e-9 || at > run.until + 1e-9 ) return {};
   auto const found = []( std::uint64_t k, Zub::Seconds t ) {
      return Search{ .found = Pos{ 0, k }, .t = t };
   };
   if( lo < run.firstCount && sameInstant( at, run.call.t ) ) return found( lo, run.call.t );
   std::uint64_t const inFrom = std::max( lo, run.firstCount );
   std::uint64_t const inTo = std::min( hi, run.untilFrom );
   for( std::uint64_t k = inFrom; k < inTo; ++k ) {
      // The calls inside came strictly after the first time and before the last.
      if( !run.timesKept ) {
         if( sameInstant( at, run.call.t ) || sameInstant( at, run.until ) ) break;
         return Search{ .undecided = timesText( run ) };
      }
      if( sameInstant( run.times[ k ], at ) ) return found( k, run.times[ k ] );
   }
   std::uint64_t const lastFrom = std::max( lo, run.untilFrom );
   if( lastFrom < hi && sameInstant( at, run.until ) ) return found( lastFrom, run.until );
   return {};
}

Search search( ExpectItem const& item, std::vector< Event > const& events, Pos from, Pos to ) {
   for( std::size_t i = from.event; i < events.size() && i <= to.event; ++i ) {
      Event const& e = events[ i ];
      std::uint64_t const lo = i == from.event ? std::max( from.k, e.from ) : e.from;
      std::uint64_t const hi = i == to.event ? std::min( to.k, e.to ) : e.to;
      if( lo >= hi ) continue;
      if( e.log ) {
         if( item.isCall || e.log->handle != item.name ||
             e.log->text.find( item.text ) == std::string::npos ||
             ( item.at && !sameInstant( *item.at, e.log->t ) ) ) {
            continue;
         }
         return Search{ .found = Pos{ i, 0 }, .t = e.log->t };
      }
      if( !item.isCall ) continue;
      if( e.gap ) {
         // A gap without a call of the operation holds none that matches.
         if( !e.gap->counts.contains( item.name ) ) continue;
         return Search{ .undecided = gapText( *e.gap ) };
      }
      CallRun const& run = *e.run;
      if( !callMatches( item, run.call ) ) continue;
      if( item.at ) {
         Search s = atTime( run, *item.at, lo, hi );
         if( s.found ) s.found->event = i;
         if( s.found || !s.undecided.empty() ) return s;
         continue;
      }
      std::optional< Zub::Seconds > const t = run.timeOf( lo );
      if( !t ) return Search{ .undecided = timesText( run ) };
      return Search{ .found = Pos{ i, lo }, .t = *t };
   }
   return {};
}

std::string undecidedText( ExpectItem const& item, std::string const& why ) {
   return "line " + std::to_string( item.where.line ) + ": " + itemText( item ) +
          " cannot be decided: " + why;
}

bool before( Pos a, Pos b ) {
   return a.event < b.event || ( a.event == b.event && a.k < b.k );
}

// The first of `absent` that one of the events in [from, to) matches, as a failure text, or the
// first whose absence the record cannot tell; empty if none.
std::string brokenAbsence( std::vector< ExpectItem const* > const& absent,
                           std::vector< Event > const& events, Pos from, Pos to ) {
   ExpectItem const* first = nullptr;
   Search earliest;
   std::string undecided = {};
   for( ExpectItem const* item : absent ) {
      Search const s = search( *item, events, from, to );
      if( s.found && ( !first || before( *s.found, *earliest.found ) ) ) {
         first = item;
         earliest = s;
      }
      if( !s.undecided.empty() && undecided.empty() ) {
         undecided = undecidedText( *item, s.undecided );
      }
   }
   if( first ) {
      return "line " + std::to_string( first->where.line ) + ": " + itemText( *first ) + ", but " +
             eventText( events[ earliest.found->event ], earliest.t );
   }
   return undecided;
}

}  // namespace

nlohmann::ordered_json expectationsMet( Scenario const& scenario, SimSwitch const& sw ) {
   std::vector< Event > const events = eventsOf( sw );
   Pos const end{ events.size(), 0 };
   nlohmann::ordered_json items = nlohmann::ordered_json::array();
   std::string failure;
   Pos from;  // the first event the next item may match
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
      Search const s = search( item, events, from, end );
      if( !s.undecided.empty() ) {
         failure = undecidedText( item, s.undecided );
         break;
      }
      if( !s.found ) {
         bool const first = from.event == 0 && from.k == 0;
         failure = "line " + std::to_string( item.where.line ) + ": " + itemText( item ) +
                   " never came" + ( first ? "" : " after the item before it" );
         break;
      }
      failure = brokenAbsence( absent, events, from, *s.found );
      if( !failure.empty() ) break;
      absent.clear();
      items[ index ][ "t" ] = s.t;
      from = Pos{ s.found->event, s.found->k + 1 };
   }
   // `not` items at the end hold to the end of the run.
   if( failure.empty() ) failure = brokenAbsence( absent, events, from, end );
   nlohmann::ordered_json out{ { "met", failure.empty() }, { "items", items } };
   if( !failure.empty() ) out[ "failure" ] = failure;
   return out;
}

void printExpectations( std::ostream& os, nlohmann::ordered_json const& expectations ) {
   bool const met = expectations[ "met" ].get< bool >();
   os << "\nExpectations (" << expectations[ "items" ].size()
      << "): " << ( met ? "met" : "NOT met" ) << "\n";
   if( !met ) os << "  " << printable( expectations[ "failure" ] ) << "\n";
}

}  // namespace Sim
