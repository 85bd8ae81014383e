#include "NevQos/sim/runner/Report.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <utility>

#include "NevQos/sim/chip/ChipText.h"
#include "NevQos/sim/runner/BasicReport.h"
#include "NevQos/sim/runner/CbfReport.h"
#include "NevQos/sim/runner/ControlPlaneReport.h"
#include "NevQos/sim/runner/EngineReport.h"
#include "NevQos/sim/runner/Fit.h"
#include "NevQos/sim/runner/TextFormat.h"
#include "NevQos/sim/runner/Version.h"

namespace Sim {

namespace {

using Json = nlohmann::ordered_json;

// An object with room for `members`. An ordered object is a vector of pairs whose keys are
// const, so growing it copies every member held: the room is made first, and the parts are
// moved in member by member, since a brace list of pairs would copy each part too.
Json objectWithRoom( std::size_t members ) {
   Json object = Json::object();
   object.get_ref< Json::object_t& >().reserve( members );
   return object;
}

std::string name( Zub::Name const& n ) {
   return n.charPtr();
}

// ---- The JSON document

// A whole number in decimal, or 0x and hexadecimal digits.
std::optional< std::uint64_t > wholeOf( std::string_view text ) {
   bool const hex = text.starts_with( "0x" );
   std::string_view const digits = hex ? text.substr( 2 ) : text;
   std::uint64_t value = 0;
   auto const [ end, ec ] =
         std::from_chars( digits.data(), digits.data() + digits.size(), value, hex ? 16 : 10 );
   if( digits.empty() || ec != std::errc() || end != digits.data() + digits.size() ) return {};
   return value;
}

// An entry's field as what its text reads as: a number ("6", "0x800"), a value and a mask
// ("80/0xffff"), a range that takes a checker ("range 1000-2000"), a flag, or else the text (an
// address, a name, or what a damaged entry holds).
Json fieldOf( std::string const& text ) {
   std::string_view const t = text;
   if( t == "true" || t == "false" ) return t == "true";
   if( auto const v = wholeOf( t ) ) return *v;
   if( t.starts_with( "range " ) ) {
      std::size_t const dash = t.find( '-', 6 );
      auto const low = wholeOf( t.substr( 6, dash - 6 ) );
      auto const high =
            dash == std::string_view::npos ? std::nullopt : wholeOf( t.substr( dash + 1 ) );
      if( low && high ) return Json{ { "low", *low }, { "high", *high } };
   }
   if( std::size_t const slash = t.find( "/0x" ); slash != std::string_view::npos ) {
      auto const value = wholeOf( t.substr( 0, slash ) );
      auto const mask = wholeOf( t.substr( slash + 1 ) );
      if( value && mask ) return Json{ { "value", *value }, { "mask", *mask } };
   }
   return text;
}

Json fieldsOf( std::vector< TcamField > const& fields ) {
   Json out = objectWithRoom( fields.size() );
   for( auto const& [ name, text ] : fields )
      out[ name ] = fieldOf( text );
   return out;
}

// A whole number, negative or not; the text itself if it is none (a recorder that marked a text
// wrongly shows it rather than losing it).
Json numberOf( std::string_view text ) {
   if( !text.starts_with( '-' ) ) {
      if( auto const v = wholeOf( text ) ) return *v;
   } else if( auto const v = wholeOf( text.substr( 1 ) ); v && *v <= std::uint64_t( INT64_MAX ) ) {
      return -std::int64_t( *v );
   }
   return std::string( text );
}

// A call's arguments, each as its kind says: a rate as its number, with its unit in a member
// "<name>Unit" beside it.
Json argsOf( std::vector< std::pair< std::string, TypedText > > const& args ) {
   Json out = objectWithRoom( args.size() + 2 );
   for( auto const& [ name, text ] : args ) {
      switch( text.kind ) {
         case JsonKind::text:
            out[ name ] = static_cast< std::string const& >( text );
            break;
         case JsonKind::number:
            out[ name ] = numberOf( text );
            break;
         case JsonKind::flag:
            out[ name ] = text == "true";
            break;
         case JsonKind::rate: {
            std::size_t const digits =
                  std::min( text.find_first_not_of( "0123456789" ), text.size() );
            out[ name ] = numberOf( std::string_view( text ).substr( 0, digits ) );
            out[ name + "Unit" ] = text.substr( digits );
            break;
         }
      }
   }
   return out;
}

// A run of one call is the call alone, as every call was before runs were counted.
Json runOf( CallRun const& run ) {
   Json c = objectWithRoom( 6 );
   c[ "t" ] = run.call.t;
   c[ "helper" ] = run.call.helper;
   c[ "op" ] = run.call.op;
   c[ "args" ] = argsOf( run.call.args );
   if( run.count > 1 ) {
      c[ "count" ] = run.count;
      c[ "until" ] = run.until;
   }
   return c;
}

Json gapOf( CallGap const& gap ) {
   return Json{ { "gap", Json{ { "calls", gap.calls },
                               { "runs", gap.runs },
                               { "from", gap.from },
                               { "until", gap.until },
                               { "counts", gap.counts } } } };
}

// Entry `i` of the record: the first runs, the gap, the last runs.
Json callEntryOf( CallLog const& calls, std::size_t i ) {
   if( i < calls.first().size() ) return runOf( calls.first()[ i ] );
   i -= calls.first().size();
   if( calls.gap() ) {
      if( i == 0 ) return gapOf( *calls.gap() );
      --i;
   }
   return runOf( calls.last()[ i ] );
}

std::size_t callEntries( CallLog const& calls ) {
   return calls.runs() + ( calls.gap() ? 1 : 0 );
}

Json callsOf( CallLog const& calls ) {
   Json out = Json::array();
   for( std::size_t i = 0; i < callEntries( calls ); ++i )
      out.push_back( callEntryOf( calls, i ) );
   return out;
}

Json logsOf( std::vector< LogLine > const& logs ) {
   Json out = Json::array();
   for( LogLine const& l : logs ) {
      out.push_back( Json{ { "t", l.t },
                           { "handle", l.handle },
                           { "severity", l.severity },
                           { "severityLevel", l.severityLevel },
                           { "text", l.text } } );
   }
   return out;
}

}  // namespace

Json tracesOf( TraceLog const& traces ) {
   Json out = Json::array();
   auto const add = [ &out ]( TraceLine const& l ) {
      out.push_back( Json{ { "t", l.t },
                           { "handle", l.handle },
                           { "level", l.level },
                           { "function", l.function },
                           { "text", l.text } } );
   };
   for( TraceLine const& l : traces.first() )
      add( l );
   if( traces.gap() ) {
      TraceGap const& gap = *traces.gap();
      out.push_back( Json{
            { "gap",
              Json{ { "lines", gap.lines }, { "from", gap.from }, { "until", gap.until } } } } );
   }
   for( TraceLine const& l : traces.last() )
      add( l );
   return out;
}

namespace {

// The action types of one colour whose status is set.
template< class Collection >
Json actionsOf( Collection const& actions ) {
   std::map< std::string, bool > sorted;
   for( auto it = actions.iter(); it; ++it )
      sorted[ textOf( it.key() ) ] = it.value();
   Json out = Json::object();
   for( auto const& [ name, on ] : sorted )
      out[ name ] = on;
   return out;
}

Json policerOf( Qos::PolicerHwStatus const& p ) {
   return Json{ { "name", name( p.key() ) },
                { "policerPrgmd", p.policerPrgmd() },
                { "greenActionStatus", actionsOf( p.greenActionStatus() ) },
                { "yellowActionStatus", actionsOf( p.yellowActionStatus() ) },
                { "redActionStatus", actionsOf( p.redActionStatus() ) },
                { "pktInCount", p.pktInCount() },
                { "byteInCount", p.byteInCount() },
                { "pktDropCount", p.pktDropCount() },
                { "byteDropCount", p.byteDropCount() },
                { "yellowPktInCount", p.yellowPktInCount() },
                { "yellowByteInCount", p.yellowByteInCount() } };
}

Json classMapOf( Qos::ClassMapHwStatus const& c ) {
   std::map< std::string, Json > policers;
   for( auto it = c.policerHwStatus().iter(); it; ++it )
      policers[ name( it.key() ) ] = policerOf( *it.value() );
   Json out{ { "name", name( c.key() ) },    { "cosPrgmd", c.cosPrgmd() },
             { "dscpPrgmd", c.dscpPrgmd() }, { "tcPrgmd", c.tcPrgmd() },
             { "dropPrgmd", c.dropPrgmd() }, { "dropPrecedencePrgmd", c.dropPrecedencePrgmd() },
             { "outCount", c.outCount() },   { "outBytes", c.outBytes() },
             { "dropCount", c.dropCount() }, { "dropBytes", c.dropBytes() },
             { "policers", Json::array() } };
   for( auto& [ name, p ] : policers )
      out[ "policers" ].push_back( std::move( p ) );
   return out;
}

Json policyMapOf( Qos::MapType type, Qos::PolicyMapHwStatus const& p ) {
   std::map< std::string, Json > cmaps;
   for( auto it = p.cmap().iter(); it; ++it )
      cmaps[ name( it.key() ) ] = classMapOf( *it.value() );
   Json out{ { "type", textOf( type ) },
             { "direction", textOf( p.key().direction() ) },
             { "name", name( p.key().name() ) },
             { "prgmStatus", textOf( p.prgmStatus() ) },
             { "errMessage", p.prgmStatusErrMessage().stdString() },
             { "version", p.version() },
             { "classMaps", Json::array() } };
   for( auto& [ name, c ] : cmaps )
      out[ "classMaps" ].push_back( std::move( c ) );
   return out;
}

Json namedPolicersOf( Qos::AclHwStatus const& hw ) {
   std::map< std::string, Json > sorted;
   for( auto it = hw.namedPolicerStatus().iter(); it; ++it ) {
      auto const& n = *it.value();
      sorted[ name( it.key() ) ] = Json{ { "name", name( it.key() ) },
                                         { "shared", n.shared() },
                                         { "paramChangeVersion", n.paramChangeVersion() },
                                         { "cir", n.cir() },
                                         { "cirUnit", textOf( n.cirUnit() ) },
                                         { "bc", n.bc() },
                                         { "bcUnit", textOf( n.bcUnit() ) },
                                         { "pir", n.pir() },
                                         { "pirUnit", textOf( n.pirUnit() ) },
                                         { "be", n.be() },
                                         { "beUnit", textOf( n.beUnit() ) } };
   }
   Json out = Json::array();
   for( auto& [ name, n ] : sorted )
      out.push_back( std::move( n ) );
   return out;
}

Json statusOf( SimSwitch const& sw ) {
   auto const& slice = sw.aclSliceHwStatus();
   std::map< std::string, Json > pmaps;
   for( auto t = slice.pmapType().iter(); t; ++t ) {
      for( auto p = t.value()->pmap().iter(); p; ++p )
         pmaps[ textOf( t.key() ) + " " + textOf( p.key() ) ] = policyMapOf( t.key(), *p.value() );
   }
   Json out{ { "status", textOf( slice.status() ) },
             { "configVersionUpdateTime", slice.configVersionUpdateTime() },
             { "pmapCounterUpdateTime", slice.pmapCounterUpdateTime() },
             { "policyMaps", Json::array() },
             { "namedPolicers", namedPolicersOf( sw.aclHwStatus() ) } };
   for( auto& [ key, p ] : pmaps )
      out[ "policyMaps" ].push_back( std::move( p ) );
   addFeatures( out, sw.sliceHwStatus() );
   return out;
}

Json entryOf( TcamEntry const& e ) {
   Json entry = objectWithRoom( 4 );
   entry[ "kind" ] = e.kind;
   entry[ "ruleNum" ] = e.ruleNum;
   entry[ "subruleNum" ] = e.subruleNum;
   entry[ "fields" ] = fieldsOf( e.fields );
   return entry;
}

}  // namespace

// The members of "tcam" before its lists.
Json tcamPoolsOf( Tcam const& tcam ) {
   Json slices = Json::array();
   for( auto const& [ name, s ] : tcam.slices() ) {
      Json slice{ { "name", name } };
      slice.update( poolOf( s.size, s.used ) );
      slices.push_back( std::move( slice ) );
   }
   Json out = objectWithRoom( 3 );
   out[ "slices" ] = std::move( slices );
   out[ "rangeCheckers" ] = poolOf( tcam.rangeCheckers(), tcam.rangeCheckersUsed() );
   return out;
}

namespace {

// A list of the TCAM without its entries, which come last.
Json aclHeadOf( SimQosAclHelper const& chip, std::string const& id, Tcam::Acl const& acl ) {
   Json checkers = Json::array();
   for( RangeNeed const& n : acl.checkers ) {
      checkers.push_back(
            Json{ { "dimension", n.dimension }, { "low", n.low }, { "high", n.high } } );
   }
   Json ports = Json::array();
   if( auto const it = chip.aclPorts().find( id ); it != chip.aclPorts().end() ) {
      for( std::string const& p : it->second )
         ports.push_back( p );
   }
   Json out = objectWithRoom( 6 );
   out[ "id" ] = id;
   out[ "slice" ] = acl.slice;
   out[ "committed" ] = acl.committed;
   out[ "interfaces" ] = std::move( ports );
   out[ "rangeCheckers" ] = std::move( checkers );
   return out;
}

Json tcamOf( SimQosAclHelper const& chip ) {
   Json acls = Json::array();
   for( auto const& [ id, acl ] : chip.tcam().acls() ) {
      Json entries = Json::array();
      for( TcamEntry const& e : acl.entries )
         entries.push_back( entryOf( e ) );
      Json& out = acls.emplace_back( aclHeadOf( chip, id, acl ) );
      out[ "entries" ] = std::move( entries );
   }
   Json out = tcamPoolsOf( chip.tcam() );
   out[ "acls" ] = std::move( acls );
   return out;
}

Json resourcesOf( SimQosAclHelper const& chip ) {
   ChipConfig const& c = chip.config();
   return Json{ { "policers", poolOf( c.policers, chip.policersUsed() ) },
                { "counters", poolOf( c.counters, chip.countersUsed() ) },
                { "cpuQueues", poolOf( c.cpuQueues, chip.cpuQueuesUsed() ) },
                { "pendingOperations", chip.pendingOperations() } };
}

// ---- The text rendering

std::string seconds( Json const& t ) {
   return timeColumn( t.get< double >() );
}

// Without the column's padding.
std::string plainSeconds( Json const& t ) {
   return timeText( t.get< double >() );
}

std::string hexOf( Json const& n ) {
   return hexText( unsigned( n.get< std::uint64_t >() ) );
}

// A number as the recorders and the chip write it: masks, TCP flags and ether types in
// hexadecimal, the rest in decimal.
std::string numberText( std::string const& name, Json const& value ) {
   bool const hex = name.ends_with( "Mask" ) || name == "tcpFlags" || name == "etherType";
   return hex && value.is_number_unsigned() ? hexOf( value ) : value.dump();
}

// A field of an entry as the chip writes it.
std::string fieldText( std::string const& name, Json const& value ) {
   if( value.is_string() ) return printable( value );
   if( value.is_object() && value.contains( "mask" ) ) {
      return value[ "value" ].dump() + "/" + hexOf( value[ "mask" ] );
   }
   if( value.is_object() ) return "range " + value[ "low" ].dump() + "-" + value[ "high" ].dump();
   return numberText( name, value );
}

// A call's arguments as name=value, as the recorders write them: masks in hexadecimal, a rate
// with its unit after the number.
void printArgs( std::ostream& os, Json const& args ) {
   for( auto const& [ name, value ] : args.items() ) {
      bool const unit =
            name.ends_with( "Unit" ) && args.contains( name.substr( 0, name.size() - 4 ) );
      if( unit ) continue;
      os << " " << name << "="
         << ( value.is_string() ? printable( value ) : numberText( name, value ) );
      if( args.contains( name + "Unit" ) ) os << printable( args[ name + "Unit" ] );
   }
}

void printCalls( std::ostream& os, Json const& calls, std::size_t limit ) {
   // Counted from the entries: a run stands for `count` calls, the gap for those left out.
   std::uint64_t total = 0;
   std::map< std::string, std::uint64_t > counts;
   for( Json const& c : calls ) {
      if( c.contains( "gap" ) ) {
         total += c[ "gap" ][ "calls" ].get< std::uint64_t >();
         for( auto const& [ op, n ] : c[ "gap" ][ "counts" ].items() )
            counts[ op ] += n.get< std::uint64_t >();
         continue;
      }
      std::uint64_t const n = c.value( "count", std::uint64_t{ 1 } );
      total += n;
      counts[ printable( c[ "op" ] ) ] += n;
   }
   os << "\nHelper calls (" << total << "):\n";
   if( limit != 0 && calls.size() > limit ) {
      os << "  more than " << limit << "; by operation:\n";
      for( auto const& [ op, n ] : counts )
         os << "  " << n << "  " << op << "\n";
      return;
   }
   for( Json const& c : calls ) {
      if( c.contains( "gap" ) ) {
         Json const& gap = c[ "gap" ];
         os << "  ... " << gap[ "calls" ].get< std::uint64_t >() << " calls in "
            << gap[ "runs" ].get< std::uint64_t >() << " runs left out, from "
            << plainSeconds( gap[ "from" ] ) << " to " << plainSeconds( gap[ "until" ] ) << " s\n";
         continue;
      }
      os << seconds( c[ "t" ] ) << "  ";
      if( c[ "helper" ] != "acl" ) os << printable( c[ "helper" ] ) << " ";
      os << printable( c[ "op" ] );
      printArgs( os, c[ "args" ] );
      if( c.contains( "count" ) ) {
         os << "  x" << c[ "count" ].get< std::uint64_t >() << " until "
            << plainSeconds( c[ "until" ] );
      }
      os << "\n";
   }
}

void printLogs( std::ostream& os, Json const& logs ) {
   os << "\nSystem log (" << logs.size() << "):\n";
   for( Json const& l : logs ) {
      os << seconds( l[ "t" ] ) << "  " << printable( l[ "severity" ] ) << "("
         << l[ "severityLevel" ].get< int >() << ") " << printable( l[ "handle" ] ) << ": "
         << printable( l[ "text" ] ) << "\n";
   }
}

void printTraces( std::ostream& os, Json const& traces ) {
   std::uint64_t lines = 0;
   for( Json const& l : traces )
      lines += l.contains( "gap" ) ? l[ "gap" ][ "lines" ].get< std::uint64_t >() : 1;
   os << "\nTrace (" << lines << "):\n";
   for( Json const& l : traces ) {
      if( l.contains( "gap" ) ) {
         Json const& gap = l[ "gap" ];
         os << "  ... " << gap[ "lines" ].get< std::uint64_t >() << " lines left out, from "
            << plainSeconds( gap[ "from" ] ) << " to " << plainSeconds( gap[ "until" ] ) << " s\n";
         continue;
      }
      os << seconds( l[ "t" ] ) << "  " << printable( l[ "handle" ] ) << "/"
         << l[ "level" ].get< int >() << " " << printable( l[ "function" ] ) << ": "
         << printable( l[ "text" ] ) << "\n";
   }
}

// The names of the actions whose status is set.
std::string actionsText( Json const& actions ) {
   std::string out;
   for( auto const& [ name, on ] : actions.items() ) {
      if( !on.get< bool >() ) continue;
      out += ( out.empty() ? "" : "," ) + name;
   }
   return out.empty() ? "-" : out;
}

// The action flags of a class map's status, and their names in the text.
constexpr std::pair< char const*, char const* > actionFlags[] = {
   { "cosPrgmd", "cos" },
   { "dscpPrgmd", "dscp" },
   { "tcPrgmd", "trafficClass" },
   { "dropPrgmd", "drop" },
   { "dropPrecedencePrgmd", "dropPrecedence" },
};

void printStatus( std::ostream& os, Json const& status ) {
   os << "\nPolicy maps (" << status[ "policyMaps" ].size() << "), slice status "
      << printable( status[ "status" ] ) << ":\n";
   for( Json const& p : status[ "policyMaps" ] ) {
      os << "  " << printable( p[ "type" ] ) << " " << printable( p[ "direction" ] ) << " "
         << printable( p[ "name" ] ) << "  version " << p[ "version" ] << "  "
         << printable( p[ "prgmStatus" ] );
      // The message of the last failure stays after a success.
      if( !printable( p[ "errMessage" ] ).empty() ) {
         bool const failed = printable( p[ "prgmStatus" ] ) != "hwPrgmStatusSuccess";
         os << ( failed ? " \"" : ", last error \"" ) << printable( p[ "errMessage" ] ) << "\"";
      }
      os << "\n";
      for( Json const& c : p[ "classMaps" ] ) {
         os << "    class " << printable( c[ "name" ] ) << ": programmed";
         for( auto const& [ flag, label ] : actionFlags ) {
            if( c[ flag ].get< bool >() ) os << " " << label;
         }
         os << "; out " << c[ "outCount" ] << " pkts " << c[ "outBytes" ] << " bytes, dropped "
            << c[ "dropCount" ] << " pkts " << c[ "dropBytes" ] << " bytes\n";
         for( Json const& pol : c[ "policers" ] ) {
            os << "      policer " << printable( pol[ "name" ] ) << ": "
               << ( pol[ "policerPrgmd" ].get< bool >() ? "programmed" : "not programmed" )
               << "; yellow " << actionsText( pol[ "yellowActionStatus" ] ) << ", red "
               << actionsText( pol[ "redActionStatus" ] ) << "; in " << pol[ "pktInCount" ]
               << " pkts " << pol[ "byteInCount" ] << " bytes, yellow " << pol[ "yellowPktInCount" ]
               << " pkts " << pol[ "yellowByteInCount" ] << " bytes, dropped "
               << pol[ "pktDropCount" ] << " pkts " << pol[ "byteDropCount" ] << " bytes\n";
         }
      }
   }
   for( Json const& n : status[ "namedPolicers" ] ) {
      os << "  named policer " << printable( n[ "name" ] )
         << ( n[ "shared" ].get< bool >() ? " (shared)" : "" ) << ": cir " << n[ "cir" ] << " "
         << printable( n[ "cirUnit" ] ) << ", bc " << n[ "bc" ] << " " << printable( n[ "bcUnit" ] )
         << "\n";
   }
}

void printTcam( std::ostream& os, Json const& tcam, Json const& resources, std::size_t limit ) {
   os << "\nTCAM:\n";
   for( Json const& s : tcam[ "slices" ] ) {
      os << "  slice " << printable( s[ "name" ] ) << ": " << poolText( s ) << "\n";
   }
   os << "  range checkers: " << poolText( tcam[ "rangeCheckers" ] ) << "\n";
   for( Json const& a : tcam[ "acls" ] ) {
      os << "  ACL " << printable( a[ "id" ] ) << " (" << printable( a[ "slice" ] )
         << ( a[ "committed" ].get< bool >() ? ", committed" : ", not committed" ) << ") on";
      if( a[ "interfaces" ].empty() ) os << " no interface";
      for( Json const& i : a[ "interfaces" ] )
         os << " " << printable( i );
      os << ": " << a[ "entries" ].size() << " entries\n";
      std::size_t shown = 0;
      for( Json const& e : a[ "entries" ] ) {
         if( limit != 0 && shown++ == limit ) {
            os << "      ...\n";
            break;
         }
         os << "      " << e[ "ruleNum" ] << "." << e[ "subruleNum" ] << " "
            << printable( e[ "kind" ] );
         for( auto const& [ name, value ] : e[ "fields" ].items() )
            os << " " << name << "=" << fieldText( name, value );
         os << "\n";
      }
   }
   os << "\nResources:";
   for( char const* pool : { "policers", "counters", "cpuQueues" } ) {
      os << " " << pool << " " << resources[ pool ][ "used" ] << "/" << resources[ pool ][ "size" ]
         << ";";
   }
   os << " pending operations " << resources[ "pendingOperations" ] << "\n";
}

}  // namespace

Json poolOf( std::uint64_t size, std::uint64_t used ) {
   return Json{ { "size", size }, { "used", used }, { "free", size - used } };
}

std::string poolText( Json const& pool ) {
   return pool[ "used" ].dump() + " used, " + pool[ "free" ].dump() + " free of " +
          pool[ "size" ].dump();
}

namespace {

// ---- Streaming: the text dump( 2 ) gives, written part by part

// `v` as dump( 2 ) writes it where it stands `indent` spaces in.
void writeIndented( std::ostream& os, Json const& v, std::size_t indent ) {
   std::string const text = v.dump( 2 );
   std::string const pad( indent, ' ' );
   std::size_t from = 0;
   for( std::size_t line = text.find( '\n' ); line != std::string::npos;
        line = text.find( '\n', from ) ) {
      os.write( text.data() + from, static_cast< std::streamsize >( line + 1 - from ) );
      os << pad;
      from = line + 1;
   }
   os.write( text.data() + from, static_cast< std::streamsize >( text.size() - from ) );
}

// An array or object of `count` members, `indent` spaces in; `member( i, indent )` writes
// member i (with its key, in an object) at the members' indent.
template< class Member >
void writeContainer( std::ostream& os, char const* brackets, std::size_t count, std::size_t indent,
                     Member&& member ) {
   os << brackets[ 0 ];
   if( count != 0 ) {
      os << '\n';
      for( std::size_t i = 0; i < count; ++i ) {
         if( i != 0 ) os << ",\n";
         os << std::string( indent + 2, ' ' );
         member( i, indent + 2 );
      }
      os << '\n' << std::string( indent, ' ' );
   }
   os << brackets[ 1 ];
}

// A member of an object being written: its key, and what writes its value at an indent.
struct Member {
   std::string key;
   std::function< void( std::size_t indent ) > write;
};
using Members = std::vector< Member >;

void writeObject( std::ostream& os, Members const& members, std::size_t indent ) {
   writeContainer( os, "{}", members.size(), indent, [ & ]( std::size_t i, std::size_t in ) {
      os << Json( members[ i ].key ).dump() << ": ";
      members[ i ].write( in );
   } );
}

// The members of `object`, which must outlive them, written as they stand.
Members membersOf( std::ostream& os, Json const& object ) {
   Members out;
   for( auto const& [ key, value ] : object.items() ) {
      Json const* v = &value;
      out.push_back( { key, [ &os, v ]( std::size_t in ) { writeIndented( os, *v, in ); } } );
   }
   return out;
}

template< class T, class Of >
void writeArray( std::ostream& os, std::vector< T > const& items, std::size_t indent, Of&& of ) {
   writeContainer( os, "[]", items.size(), indent, [ & ]( std::size_t i, std::size_t in ) {
      writeIndented( os, of( items[ i ] ), in );
   } );
}

// One list of the TCAM: its head, then its entries one by one.
void writeAcl( std::ostream& os, SimQosAclHelper const& chip, std::string const& id,
               Tcam::Acl const& acl, std::size_t indent ) {
   Json const head = aclHeadOf( chip, id, acl );
   Members members = membersOf( os, head );
   members.push_back(
         { "entries", [ & ]( std::size_t in ) { writeArray( os, acl.entries, in, entryOf ); } } );
   writeObject( os, members, indent );
}

void writeTcam( std::ostream& os, SimQosAclHelper const& chip, std::size_t indent ) {
   std::vector< std::pair< std::string const*, Tcam::Acl const* > > acls;
   for( auto const& [ id, acl ] : chip.tcam().acls() )
      acls.emplace_back( &id, &acl );
   Json const pools = tcamPoolsOf( chip.tcam() );
   Members members = membersOf( os, pools );
   members.push_back(
         { "acls", [ & ]( std::size_t in ) {
             writeContainer( os, "[]", acls.size(), in, [ & ]( std::size_t a, std::size_t aclIn ) {
                writeAcl( os, chip, *acls[ a ].first, *acls[ a ].second, aclIn );
             } );
          } } );
   writeObject( os, members, indent );
}

// The members of the report in order, each made when asked for; the calls and the TCAM, most
// of a large run's report, are also written piece by piece without being made whole.
struct Part {
   char const* key;
   std::function< Json() > make;
   std::function< void( std::ostream&, std::size_t indent ) > stream = {};
};

std::vector< Part > partsOf( Scenario const& scenario, SimSwitch const& sw ) {
   return {
      { "version", [] { return Json( projectVersion() ); } },
      { "formatVersion", [] { return Json( reportFormatVersion ); } },
      { "scenario",
        [ & ] {
           return Json{ { "file", scenario.file }, { "description", scenario.description } };
        } },
      { "time", [ & ] { return Json( sw.now() ); } },
      { "calls", [ & ] { return callsOf( sw.calls() ); },
        [ & ]( std::ostream& os, std::size_t in ) {
           writeContainer( os, "[]", callEntries( sw.calls() ), in,
                           [ & ]( std::size_t i, std::size_t entryIn ) {
                              writeIndented( os, callEntryOf( sw.calls(), i ), entryIn );
                           } );
        } },
      { "logs", [ & ] { return logsOf( sw.logs() ); } },
      { "status", [ & ] { return statusOf( sw ); } },
      { "basic", [ & ] { return basicOf( sw.basicChip() ); } },
      { "controlPlane", [ & ] { return controlPlaneOf( sw ); } },
      { "cbf", [ & ] { return cbfOf( sw ); } },
      { "tcam", [ & ] { return tcamOf( sw.chip() ); },
        [ & ]( std::ostream& os, std::size_t in ) { writeTcam( os, sw.chip(), in ); } },
      { "resources", [ & ] { return resourcesOf( sw.chip() ); } },
      { "engine", [ & ] { return engineOf( sw.engine() ); } },
      { "fit", [ & ] { return fitOf( sw ); } },
   };
}

}  // namespace

Json reportPartsOf( Scenario const& scenario, SimSwitch const& sw,
                    std::vector< std::string > const& keys ) {
   Json out = objectWithRoom( keys.size() );
   for( Part const& part : partsOf( scenario, sw ) ) {
      if( std::find( keys.begin(), keys.end(), part.key ) != keys.end() ) {
         out[ part.key ] = part.make();
      }
   }
   return out;
}

// The parts are moved in: an ordered object copies its members when it grows.
Json reportOf( Scenario const& scenario, SimSwitch const& sw ) {
   // Room for the parts below and for those the runner adds: steps, verify, trace, expect.
   Json report = objectWithRoom( 18 );
   for( Part const& part : partsOf( scenario, sw ) )
      report[ part.key ] = part.make();
   return report;
}

void writeJsonReport( std::ostream& os, Scenario const& scenario, SimSwitch const& sw,
                      Json const& more ) {
   Members members;
   for( Part const& part : partsOf( scenario, sw ) ) {
      members.push_back( { part.key, [ &os, part ]( std::size_t in ) {
                             if( part.stream ) {
                                part.stream( os, in );
                             } else {
                                writeIndented( os, part.make(), in );
                             }
                          } } );
   }
   for( Member& m : membersOf( os, more ) )
      members.push_back( std::move( m ) );
   writeObject( os, members, 0 );
}

namespace {

// The findings of --verify, or that there were none.
void printVerify( std::ostream& os, Json const& verify ) {
   Json const& findings = verify[ "findings" ];
   os << "\nVerification (" << verify[ "runs" ].get< std::size_t >() << " runs, "
      << verify[ "subruleQueries" ].get< std::uint64_t >() << " subrule queries): ";
   if( findings.empty() ) {
      os << "the chip holds what the engine programmed.\n";
      return;
   }
   os << findings.size() << " mismatches\n";
   for( Json const& f : findings )
      os << "  " << seconds( f[ "t" ] ) << " s  " << printable( f[ "text" ] ) << "\n";
}

}  // namespace

void printTextReport( std::ostream& os, Json const& report, std::size_t limit ) {
   Json const& s = report[ "scenario" ];
   os << "Scenario " << printable( s[ "file" ] );
   if( !printable( s[ "description" ] ).empty() ) {
      os << ": " << printable( s[ "description" ] );
   }
   os << "\nRan to " << seconds( report[ "time" ] ) << " s of virtual time.\n";
   printCalls( os, report[ "calls" ], limit );
   printLogs( os, report[ "logs" ] );
   if( report.contains( "trace" ) ) printTraces( os, report[ "trace" ] );
   printStatus( os, report[ "status" ] );
   printTcam( os, report[ "tcam" ], report[ "resources" ], limit );
   printEngine( os, report[ "engine" ] );
   printFit( os, report[ "fit" ] );
   printFeatures( os, report[ "status" ] );
   printBasic( os, report[ "basic" ] );
   printControlPlane( os, report[ "controlPlane" ] );
   printCbf( os, report[ "cbf" ] );
   if( report.contains( "verify" ) ) printVerify( os, report[ "verify" ] );
}

}  // namespace Sim
