#include "NevQos/sim/runner/ReportDiff.h"

#include <algorithm>
#include <map>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>

namespace Sim {

namespace {

using Json = nlohmann::ordered_json;

// Texts joined by appending: gcc 12 at -O3 warns falsely (-Wrestrict) on chains of + that start
// with a literal.
template< class... Parts >
std::string cat( Parts const&... parts ) {
   std::string out;
   ( out.append( std::string_view( parts ) ), ... );
   return out;
}

// ---- Sequences: the log and the calls

// The lines of `a` and `b` that the other lacks, in order, as "- [A n] line" and "+ [B n] line"
// (n counts from 1). A longest common subsequence of what lies between the common head and tail;
// when that middle is too large to align, it is listed whole.
std::vector< std::string > sequenceDiff( std::vector< std::string > const& a,
                                         std::vector< std::string > const& b ) {
   std::size_t head = 0;
   while( head < a.size() && head < b.size() && a[ head ] == b[ head ] )
      ++head;
   std::size_t tail = 0;
   while( tail < a.size() - head && tail < b.size() - head &&
          a[ a.size() - 1 - tail ] == b[ b.size() - 1 - tail ] ) {
      ++tail;
   }
   std::size_t const n = a.size() - head - tail;
   std::size_t const m = b.size() - head - tail;
   auto const onlyA = [ & ]( std::size_t i ) {
      return cat( "- [A ", std::to_string( head + i + 1 ), "] ", a[ head + i ] );
   };
   auto const onlyB = [ & ]( std::size_t j ) {
      return cat( "+ [B ", std::to_string( head + j + 1 ), "] ", b[ head + j ] );
   };
   std::vector< std::string > out;
   constexpr std::size_t mostCells = 16u << 20;
   if( n != 0 && m != 0 && ( n + 1 ) * ( m + 1 ) <= mostCells ) {
      // lcs[ i ][ j ]: the longest common subsequence of the middles from i and from j on.
      std::vector< std::uint32_t > lcs( ( n + 1 ) * ( m + 1 ), 0 );
      auto at = [ & ]( std::size_t i, std::size_t j ) -> std::uint32_t& {
         return lcs[ i * ( m + 1 ) + j ];
      };
      for( std::size_t i = n; i-- > 0; ) {
         for( std::size_t j = m; j-- > 0; ) {
            at( i, j ) = a[ head + i ] == b[ head + j ]
                               ? at( i + 1, j + 1 ) + 1
                               : std::max( at( i + 1, j ), at( i, j + 1 ) );
         }
      }
      std::size_t i = 0, j = 0;
      while( i < n && j < m ) {
         if( a[ head + i ] == b[ head + j ] ) {
            ++i, ++j;
         } else if( at( i + 1, j ) >= at( i, j + 1 ) ) {
            out.push_back( onlyA( i++ ) );
         } else {
            out.push_back( onlyB( j++ ) );
         }
      }
      for( ; i < n; ++i )
         out.push_back( onlyA( i ) );
      for( ; j < m; ++j )
         out.push_back( onlyB( j ) );
      return out;
   }
   for( std::size_t i = 0; i < n; ++i )
      out.push_back( onlyA( i ) );
   for( std::size_t j = 0; j < m; ++j )
      out.push_back( onlyB( j ) );
   return out;
}

std::string timeText( Json const& t ) {
   return cat( " at ", t.dump(), " s" );
}

std::vector< std::string > logLines( Json const& logs, bool times ) {
   std::vector< std::string > out;
   for( Json const& l : logs ) {
      std::string line = cat( l.value( "handle", "" ), " ", l.value( "severity", "" ), ": ",
                              l.value( "text", "" ) );
      if( times ) line += timeText( l.at( "t" ) );
      out.push_back( std::move( line ) );
   }
   return out;
}

std::vector< std::string > callLines( Json const& calls, bool times ) {
   std::vector< std::string > out;
   for( Json const& c : calls ) {
      if( c.contains( "gap" ) ) {
         Json const& gap = c.at( "gap" );
         std::string line =
               cat( "(", gap.at( "calls" ).dump(),
                    " calls left out of the record: ", gap.at( "counts" ).dump(), ")" );
         if( times )
            line += cat( " from ", gap.at( "from" ).dump(), " s until ", gap.at( "until" ).dump(),
                         " s" );
         out.push_back( std::move( line ) );
         continue;
      }
      std::string line =
            c.value( "helper", "" ) + " " + c.value( "op", "" ) + " " + c.at( "args" ).dump();
      if( c.contains( "count" ) ) line += cat( " x", c.at( "count" ).dump() );
      if( times ) line += timeText( c.at( "t" ) );
      out.push_back( std::move( line ) );
   }
   return out;
}

// ---- Values: the status

bool isTime( std::string const& key ) {
   return key == "t" || key.ends_with( "Time" );
}

// What names an element of a list of objects: its type, direction and name, or its feature, or
// else its place in the list.
std::string elementName( Json const& e, std::size_t index ) {
   if( !e.is_object() ) return std::to_string( index );
   std::string name;
   for( char const* key : { "type", "direction", "name", "feature" } ) {
      if( !e.contains( key ) ) continue;
      if( !name.empty() ) name += "/";
      name += e[ key ].is_string() ? e[ key ].get< std::string >() : e[ key ].dump();
   }
   return name.empty() ? std::to_string( index ) : name;
}

// Every leaf value of `value` by its path, times left out unless asked for.
void flatten( Json const& value, std::string const& path, bool times,
              std::map< std::string, std::string >& out ) {
   if( value.is_object() && !value.empty() ) {
      for( auto const& [ key, member ] : value.items() ) {
         if( !times && isTime( key ) ) continue;
         flatten( member, path + "." + key, times, out );
      }
   } else if( value.is_array() && !value.empty() ) {
      for( std::size_t i = 0; i < value.size(); ++i )
         flatten( value[ i ], path + "[" + elementName( value[ i ], i ) + "]", times, out );
   } else {
      out[ path ] = value.dump();
   }
}

std::vector< std::string > valueDiff( std::map< std::string, std::string > const& a,
                                      std::map< std::string, std::string > const& b ) {
   std::vector< std::string > out;
   for( auto const& [ path, value ] : a ) {
      auto const other = b.find( path );
      if( other == b.end() ) {
         out.push_back( path + ": " + value + " only in A" );
      } else if( other->second != value ) {
         out.push_back( path + ": " + value + " -> " + other->second );
      }
   }
   for( auto const& [ path, value ] : b ) {
      if( !a.contains( path ) ) out.push_back( path + ": " + value + " only in B" );
   }
   return out;
}

// ---- Sets: the TCAM

struct AclContents {
   std::string head;  // slice, committed, interfaces and range checkers, sorted
   std::multiset< std::string > entries;
};

std::string sortedDump( Json list ) {
   if( list.is_array() ) {
      std::vector< std::string > items;
      for( Json const& item : list )
         items.push_back( item.dump() );
      std::sort( items.begin(), items.end() );
      std::string out = "[";
      for( std::string const& item : items )
         out += ( out.size() > 1 ? "," : "" ) + item;
      return out + "]";
   }
   return list.dump();
}

std::map< std::string, AclContents > tcamContents( Json const& tcam, bool subrules,
                                                   std::size_t& entries ) {
   std::map< std::string, AclContents > out;
   entries = 0;
   for( Json const& acl : tcam.at( "acls" ) ) {
      AclContents& contents = out[ acl.at( "id" ).get< std::string >() ];
      contents.head =
            cat( "slice ", acl.at( "slice" ).dump(), ", committed ", acl.at( "committed" ).dump(),
                 ", interfaces ", sortedDump( acl.at( "interfaces" ) ), ", range checkers ",
                 sortedDump( acl.at( "rangeCheckers" ) ) );
      for( Json e : acl.at( "entries" ) ) {
         if( !subrules ) e.erase( "subruleNum" );
         contents.entries.insert( e.dump() );
      }
      entries += acl.at( "entries" ).size();
   }
   return out;
}

void entriesDiff( std::string const& id, AclContents const& a, AclContents const& b,
                  std::vector< std::string >& out ) {
   if( a.head != b.head ) out.push_back( cat( "ACL ", id, ": ", a.head, " -> ", b.head ) );
   std::vector< std::string > onlyA, onlyB;
   std::set_difference( a.entries.begin(), a.entries.end(), b.entries.begin(), b.entries.end(),
                        std::back_inserter( onlyA ) );
   std::set_difference( b.entries.begin(), b.entries.end(), a.entries.begin(), a.entries.end(),
                        std::back_inserter( onlyB ) );
   for( std::string const& e : onlyA )
      out.push_back( cat( "ACL ", id, ": entry only in A: ", e ) );
   for( std::string const& e : onlyB )
      out.push_back( cat( "ACL ", id, ": entry only in B: ", e ) );
}

PartDiff tcamDiff( Json const& a, Json const& b, bool subrules ) {
   std::size_t entriesA = 0, entriesB = 0;
   auto const aclsA = tcamContents( a.at( "tcam" ), subrules, entriesA );
   auto const aclsB = tcamContents( b.at( "tcam" ), subrules, entriesB );
   PartDiff out{ "tcam",
                 std::to_string( aclsA.size() ) + " ACLs and " + std::to_string( entriesA ) +
                       " entries in A, " + std::to_string( aclsB.size() ) + " and " +
                       std::to_string( entriesB ) + " in B",
                 {} };
   for( auto const& [ id, contents ] : aclsA ) {
      auto const other = aclsB.find( id );
      if( other == aclsB.end() ) {
         out.differences.push_back( cat( "ACL ", id, " only in A (",
                                         std::to_string( contents.entries.size() ), " entries)" ) );
      } else {
         entriesDiff( id, contents, other->second, out.differences );
      }
   }
   for( auto const& [ id, contents ] : aclsB ) {
      if( !aclsA.contains( id ) ) {
         out.differences.push_back( cat( "ACL ", id, " only in B (",
                                         std::to_string( contents.entries.size() ), " entries)" ) );
      }
   }
   return out;
}

PartDiff statusDiff( Json const& a, Json const& b, bool times ) {
   std::map< std::string, std::string > valuesA, valuesB;
   flatten( a.at( "status" ), "status", times, valuesA );
   flatten( b.at( "status" ), "status", times, valuesB );
   return { "status",
            std::to_string( a.at( "status" ).at( "policyMaps" ).size() ) + " policy maps in A, " +
                  std::to_string( b.at( "status" ).at( "policyMaps" ).size() ) + " in B",
            valueDiff( valuesA, valuesB ) };
}

PartDiff sequencePartDiff( std::string const& part, std::string const& what,
                           std::vector< std::string > const& a,
                           std::vector< std::string > const& b ) {
   return { part,
            std::to_string( a.size() ) + " " + what + " in A, " + std::to_string( b.size() ) +
                  " in B",
            sequenceDiff( a, b ) };
}

}  // namespace

std::string notAReport( Json const& report ) {
   if( !report.is_object() || !report.contains( "formatVersion" ) )
      return "not a report of nevqos-sim --json (it has no \"formatVersion\")";
   for( char const* key : { "tcam", "status", "logs", "calls" } ) {
      if( !report.contains( key ) ) return cat( "the report has no \"", key, "\"" );
   }
   if( !report.at( "tcam" ).contains( "acls" ) ) return "the report's \"tcam\" has no \"acls\"";
   return {};
}

std::vector< PartDiff > diffReports( Json const& a, Json const& b, DiffOptions const& options ) {
   auto const wanted = [ & ]( char const* part ) {
      return options.parts.empty() || options.parts.contains( part );
   };
   std::vector< PartDiff > out;
   if( wanted( "tcam" ) ) out.push_back( tcamDiff( a, b, options.subrules ) );
   if( wanted( "status" ) ) out.push_back( statusDiff( a, b, options.times ) );
   if( wanted( "logs" ) ) {
      out.push_back( sequencePartDiff( "logs", "log lines",
                                       logLines( a.at( "logs" ), options.times ),
                                       logLines( b.at( "logs" ), options.times ) ) );
   }
   if( wanted( "calls" ) ) {
      out.push_back( sequencePartDiff( "calls", "call records",
                                       callLines( a.at( "calls" ), options.times ),
                                       callLines( b.at( "calls" ), options.times ) ) );
   }
   return out;
}

bool printDiff( std::ostream& os, std::vector< PartDiff > const& diff,
                DiffOptions const& options ) {
   bool differ = false;
   for( PartDiff const& part : diff ) {
      os << part.part << " (" << part.summary << "): ";
      if( part.differences.empty() ) {
         os << "same\n";
         continue;
      }
      differ = true;
      os << part.differences.size() << " difference" << ( part.differences.size() == 1 ? "" : "s" )
         << "\n";
      std::size_t const shown = options.limit == 0
                                      ? part.differences.size()
                                      : std::min( options.limit, part.differences.size() );
      for( std::size_t i = 0; i < shown; ++i )
         os << "  " << part.differences[ i ] << "\n";
      if( shown < part.differences.size() )
         os << "  ... and " << part.differences.size() - shown << " more\n";
   }
   return differ;
}

}  // namespace Sim
