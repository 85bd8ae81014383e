// Every include under platform/, NevQos/ and sim/ against the table of layers in docs/design.md:
// a folder includes its own files, the folders its row stands on, and the upward includes the
// second table names, through the files it names. The build stops most upward includes between
// its targets; this test holds the order inside them, and keeps the document true.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

struct UpwardInclude {
   std::string from;
   std::string to;
   std::set< std::string > through;
   bool used = false;
};

struct LayerTable {
   std::map< std::string, int > rowOf;
   std::map< int, std::set< int > > standsOn;
   std::vector< UpwardInclude > upward;
   std::vector< std::string > errors;
};

struct Include {
   std::string file;  // from the top of the tree
   int line;
   std::string header;  // as written
};

std::vector< std::string > cellsOf( std::string const& line ) {
   std::vector< std::string > cells;
   std::stringstream in( line );
   std::string cell;
   std::getline( in, cell, '|' );  // before the first bar
   while( std::getline( in, cell, '|' ) ) {
      auto const first = cell.find_first_not_of( " " );
      auto const last = cell.find_last_not_of( " " );
      cells.push_back( first == std::string::npos ? "" : cell.substr( first, last - first + 1 ) );
   }
   return cells;
}

std::vector< std::string > backquoted( std::string const& cell ) {
   std::vector< std::string > out;
   static std::regex const code( "`([^`]+)`" );
   for( std::sregex_iterator i( cell.begin(), cell.end(), code ), end; i != end; ++i ) {
      out.push_back( ( *i )[ 1 ] );
   }
   return out;
}

// "1-7, 9" -> { 1, ..., 7, 9 }
bool readRows( std::string const& cell, std::set< int >& rows ) {
   static std::regex const item( R"(^\s*(\d+)(?:\s*-\s*(\d+))?\s*$)" );
   std::stringstream in( cell );
   std::string part;
   while( std::getline( in, part, ',' ) ) {
      std::smatch m;
      if( !std::regex_match( part, m, item ) ) return false;
      int const low = std::stoi( m[ 1 ] );
      int const high = m[ 2 ].matched ? std::stoi( m[ 2 ] ) : low;
      for( int r = low; r <= high; ++r )
         rows.insert( r );
   }
   return true;
}

// The two tables of the "## Layers" section: rows (Row | Folder | What | Stands on), then the
// upward includes (From | To | Through | Why).
LayerTable readLayerTable( std::istream& doc ) {
   LayerTable table;
   std::string line;
   bool inSection = false;
   int tableNumber = 0;
   bool inTable = false;
   int lineNumber = 0;
   while( std::getline( doc, line ) ) {
      ++lineNumber;
      if( line.rfind( "## ", 0 ) == 0 ) {
         inSection = line == "## Layers";
         continue;
      }
      if( !inSection ) continue;
      bool const tableLine = line.rfind( "|", 0 ) == 0;
      if( tableLine && !inTable ) {
         ++tableNumber;
         inTable = true;
         continue;  // the heading
      }
      inTable = tableLine;
      if( !tableLine || line.find( "---" ) != std::string::npos ) continue;
      auto const cells = cellsOf( line );
      std::string const where = "docs/design.md:" + std::to_string( lineNumber ) + ": ";
      if( tableNumber == 1 && cells.size() >= 4 ) {
         auto const folder = backquoted( cells[ 1 ] );
         std::set< int > rows;
         bool const numbered = !cells[ 0 ].empty() &&
                               std::all_of( cells[ 0 ].begin(), cells[ 0 ].end(),
                                            []( unsigned char c ) { return std::isdigit( c ); } );
         if( folder.size() != 1 || !numbered || !readRows( cells[ 3 ], rows ) ) {
            table.errors.push_back( where + "cannot read the row" );
            continue;
         }
         int const row = std::stoi( cells[ 0 ] );
         table.rowOf[ folder[ 0 ] ] = row;
         table.standsOn[ row ] = rows;
      } else if( tableNumber == 2 && cells.size() >= 4 ) {
         auto const from = backquoted( cells[ 0 ] );
         auto const to = backquoted( cells[ 1 ] );
         auto const through = backquoted( cells[ 2 ] );
         if( from.size() != 1 || to.size() != 1 || through.empty() ) {
            table.errors.push_back( where + "cannot read the upward include" );
            continue;
         }
         table.upward.push_back(
               { from[ 0 ], to[ 0 ], std::set< std::string >( through.begin(), through.end() ) } );
      }
   }
   if( table.rowOf.empty() ) table.errors.push_back( "docs/design.md: no table of layers" );
   return table;
}

// The folder a quoted include names: the platform's and the simulator's folders are included
// under the prefix NevQos/ (NevQos/platform/zub/..., NevQos/sim/chip/...), the library's own by
// their path.
std::string folderOfInclude( std::string const& header ) {
   std::string const folder = fs::path( header ).parent_path().generic_string();
   for( std::string const prefixed : { "NevQos/platform/", "NevQos/sim/" } ) {
      if( folder.rfind( prefixed, 0 ) == 0 )
         return folder.substr( std::string( "NevQos/" ).size() );
   }
   return folder;
}

// Every finding of the includes against the table, as "file:line: text" lines.
std::vector< std::string > checkIncludes( LayerTable& table,
                                          std::vector< Include > const& includes ) {
   std::vector< std::string > findings = table.errors;
   for( Include const& inc : includes ) {
      std::string const from = fs::path( inc.file ).parent_path().generic_string();
      std::string const to = folderOfInclude( inc.header );
      std::string const where = inc.file + ":" + std::to_string( inc.line ) + ": ";
      if( from == to ) continue;
      auto const fromRow = table.rowOf.find( from );
      if( fromRow == table.rowOf.end() ) {
         findings.push_back( where + from + " has no row in the table of layers" );
         continue;
      }
      auto const toRow = table.rowOf.find( to );
      if( toRow == table.rowOf.end() ) {
         findings.push_back( where + "includes " + inc.header + ": " + to +
                             " has no row in the table of layers" );
         continue;
      }
      if( table.standsOn[ fromRow->second ].count( toRow->second ) ) continue;
      std::string const file = fs::path( inc.header ).filename().string();
      auto const upward =
            std::find_if( table.upward.begin(), table.upward.end(), [ & ]( auto const& u ) {
               return u.from == from && u.to == to && u.through.count( file );
            } );
      if( upward != table.upward.end() ) {
         upward->used = true;
         continue;
      }
      findings.push_back( where + "includes " + inc.header + ": " + from + " (row " +
                          std::to_string( fromRow->second ) + ") may not include " + to + " (row " +
                          std::to_string( toRow->second ) + ")" );
   }
   for( UpwardInclude const& u : table.upward ) {
      if( !u.used ) {
         findings.push_back( "docs/design.md: the upward include " + u.from + " -> " + u.to +
                             " is not in the tree any more: take it out of the table" );
      }
   }
   return findings;
}

std::vector< Include > includesUnder( fs::path const& top,
                                      std::vector< std::string > const& roots ) {
   std::vector< Include > includes;
   static std::regex const quoted( R"re(^\s*#\s*include\s*"([^"]+)")re" );
   for( std::string const& root : roots ) {
      for( auto const& entry : fs::recursive_directory_iterator( top / root ) ) {
         auto const ext = entry.path().extension();
         if( !entry.is_regular_file() || ( ext != ".h" && ext != ".cc" ) ) continue;
         std::string const file = fs::relative( entry.path(), top ).generic_string();
         std::ifstream in( entry.path() );
         std::string line;
         int number = 0;
         while( std::getline( in, line ) ) {
            ++number;
            std::smatch m;
            if( std::regex_search( line, m, quoted ) )
               includes.push_back( { file, number, m[ 1 ] } );
         }
      }
   }
   return includes;
}

std::string joined( std::vector< std::string > const& lines ) {
   std::string out;
   for( auto const& l : lines )
      out += l + "\n";
   return out;
}

TEST( LayersTest, EveryIncludeOfTheTreeKeepsToTheTableOfLayers ) {
   fs::path const top = NEVQOS_SOURCE_DIR;
   std::ifstream doc( top / "docs/design.md" );
   ASSERT_TRUE( doc ) << "cannot read docs/design.md";
   LayerTable table = readLayerTable( doc );
   auto const includes = includesUnder( top, { "platform", "NevQos", "sim" } );
   ASSERT_GT( includes.size(), 500u );  // the walk found the tree
   EXPECT_EQ( joined( checkIncludes( table, includes ) ), "" );
}

// The checker itself, on a small table: the findings it must give and the ones it must not.
TEST( LayersTest, TheCheckerFindsUpwardIncludesAndStaleExceptions ) {
   std::istringstream doc( R"(# Notes
## Layers
| Row | Folder | What | Stands on |
|---:|---|---|---|
| 1 | `platform/zub` | base | |
| 2 | `NevQos/types` | values | 1 |
| 3 | `NevQos/helpers` | contract | 1-2 |
| 4 | `NevQos/policy` | engine | 1-3 |

| From | To | Through | Why |
|---|---|---|---|
| `NevQos/types` | `NevQos/policy` | `Queue.h` | back-pointer |
| `NevQos/helpers` | `NevQos/policy` | `Gone.h` | no longer true |
## Next section
| 9 | `NevQos/other` | not a row of the layers | |
)" );
   LayerTable table = readLayerTable( doc );
   EXPECT_EQ( table.rowOf.size(), 4u );
   std::vector< Include > const includes = {
      { "NevQos/policy/A.cc", 1, "NevQos/helpers/H.h" },       // downward: fine
      { "NevQos/policy/A.cc", 2, "NevQos/policy/A.h" },        // own folder: fine
      { "NevQos/types/T.h", 3, "NevQos/platform/zub/Ptr.h" },  // the platform: fine
      { "NevQos/types/T.cc", 4, "NevQos/policy/Queue.h" },     // named upward include: fine
      { "NevQos/types/T.cc", 5, "NevQos/policy/Other.h" },     // not through the named file
      { "NevQos/helpers/H.h", 6, "NevQos/policy/A.h" },        // upward
      { "NevQos/helpers/H.h", 7, "NevQos/other/O.h" },         // no row
      { "sim/chip/C.cc", 8, "NevQos/types/T.h" },              // no row for the source's folder
      { "NevQos/types/T.h", 9, "zub/Ptr.h" },                  // not under the prefix: no row
   };
   EXPECT_EQ( joined( checkIncludes( table, includes ) ),
              "NevQos/types/T.cc:5: includes NevQos/policy/Other.h: NevQos/types (row 2) may not "
              "include NevQos/policy (row 4)\n"
              "NevQos/helpers/H.h:6: includes NevQos/policy/A.h: NevQos/helpers (row 3) may not "
              "include NevQos/policy (row 4)\n"
              "NevQos/helpers/H.h:7: includes NevQos/other/O.h: NevQos/other has no row in the "
              "table of layers\n"
              "sim/chip/C.cc:8: sim/chip has no row in the table of layers\n"
              "NevQos/types/T.h:9: includes zub/Ptr.h: zub has no row in the table of layers\n"
              "docs/design.md: the upward include NevQos/helpers -> NevQos/policy is not in the "
              "tree any more: take it out of the table\n" );
}

TEST( LayersTest, AnUnreadableRowIsAFinding ) {
   std::istringstream doc(
         "## Layers\n| Row | Folder | What | Stands on |\n|---|---|---|---|\n"
         "| 1 | `platform/zub` | base | one |\n" );
   LayerTable table = readLayerTable( doc );
   auto const findings = checkIncludes( table, {} );
   ASSERT_EQ( findings.size(), 2u );
   EXPECT_EQ( findings[ 0 ], "docs/design.md:4: cannot read the row" );
   EXPECT_EQ( findings[ 1 ], "docs/design.md: no table of layers" );
}

}  // namespace
