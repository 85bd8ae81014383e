#include "NevQos/sim/scenario/YamlReader.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <set>

#include "NevQos/sim/scenario/ScenarioError.h"
#include "NevQos/sim/scenario/TextRules.h"

namespace Sim {

namespace {

// The magnitude of a whole number written in decimal or as 0x and hexadecimal digits; none for
// anything else, or for a number beyond 64 bits.
std::optional< std::uint64_t > magnitudeOf( std::string_view text ) {
   int base = 10;
   if( text.starts_with( "0x" ) || text.starts_with( "0X" ) ) {
      base = 16;
      text.remove_prefix( 2 );
   }
   std::uint64_t value = 0;
   auto const [ end, ec ] = std::from_chars( text.data(), text.data() + text.size(), value, base );
   if( text.empty() || ec != std::errc() || end != text.data() + text.size() ) return std::nullopt;
   return value;
}

// The code point of a DSCP name.
std::optional< unsigned > dscpNamed( std::string_view name ) {
   if( name == "default" ) return 0;
   if( name == "ef" ) return 46;
   if( name.size() == 3 && name.starts_with( "cs" ) && name[ 2 ] >= '0' && name[ 2 ] <= '7' ) {
      return 8u * unsigned( name[ 2 ] - '0' );
   }
   bool const af = name.size() == 4 && name.starts_with( "af" ) && name[ 2 ] >= '1' &&
                   name[ 2 ] <= '4' && name[ 3 ] >= '1' && name[ 3 ] <= '3';
   if( af ) return 8u * unsigned( name[ 2 ] - '0' ) + 2u * unsigned( name[ 3 ] - '0' );
   return std::nullopt;
}

std::string knownKeys( std::vector< std::string_view > const& known ) {
   std::string names;
   for( std::string_view k : known )
      names += ( names.empty() ? "" : ", " ) + std::string( k );
   return names;
}

}  // namespace

std::string kindOf( YAML::Node const& node ) {
   switch( node.Type() ) {
      case YAML::NodeType::Map:
         return "a mapping";
      case YAML::NodeType::Sequence:
         return "a sequence";
      case YAML::NodeType::Scalar:
         return "'" + node.Scalar() + "'";
      default:
         return "nothing";
   }
}

Where YamlReader::whereOf( YAML::Node const& node ) {
   YAML::Mark const mark = node.Mark();
   if( mark.is_null() ) return {};
   return { mark.line + 1, mark.column + 1 };
}

void YamlReader::fail( YAML::Node const& at, std::string const& problem ) const {
   fail( whereOf( at ), problem );
}

void YamlReader::fail( Where where, std::string const& problem ) const {
   throw ScenarioError( file_, where, problem );
}

void YamlReader::checkMapping( YAML::Node const& node, std::string const& what,
                               std::vector< std::string_view > const& known ) const {
   if( !node.IsMap() ) fail( node, what + ": expected a mapping, found " + kindOf( node ) );
   std::set< std::string > seen;
   for( auto const& entry : node ) {
      YAML::Node const& key = entry.first;
      if( !key.IsScalar() ) fail( key, what + ": a key must be a plain name" );
      std::string const name = key.Scalar();
      if( std::find( known.begin(), known.end(), name ) == known.end() ) {
         fail( key, what + ": unknown key '" + name + "' (known: " + knownKeys( known ) + ")" );
      }
      if( !seen.insert( name ).second ) fail( key, what + ": key '" + name + "' given twice" );
   }
}

void YamlReader::checkSequence( YAML::Node const& node, std::string const& what ) const {
   if( !node.IsSequence() ) fail( node, what + ": expected a sequence, found " + kindOf( node ) );
}

YAML::Node YamlReader::required( YAML::Node const& mapping, char const* key ) const {
   YAML::Node const value = mapping[ key ];
   if( !value ) fail( mapping, std::string( "missing key '" ) + key + "'" );
   return value;
}

std::string YamlReader::scalar( YAML::Node const& node, std::string const& what,
                                char const* expected ) const {
   if( !node.IsScalar() ) {
      fail( node, what + ": expected " + expected + ", found " + kindOf( node ) );
   }
   return node.Scalar();
}

std::string YamlReader::text( YAML::Node const& node, std::string const& what ) const {
   std::string const value = scalar( node, what, "a name" );
   if( value.empty() ) fail( node, what + ": expected a name, found an empty text" );
   return value;
}

std::int64_t YamlReader::integer( YAML::Node const& node, std::string const& what, std::int64_t min,
                                  std::int64_t max ) const {
   std::string const written = scalar( node, what, "a whole number" );
   std::string_view text = written;
   bool const negative = text.starts_with( '-' );
   if( negative ) text.remove_prefix( 1 );
   auto const magnitude = magnitudeOf( text );
   if( !magnitude ) fail( node, what + ": '" + node.Scalar() + "' is not a whole number" );
   // -0x10 would read; a sign belongs to decimal numbers alone, so none is taken for a mask.
   if( negative && ( text.starts_with( "0x" ) || text.starts_with( "0X" ) ) ) {
      fail( node, what + ": '" + node.Scalar() + "': a hexadecimal number takes no sign" );
   }
   bool const tooBig = *magnitude > std::uint64_t( INT64_MAX );
   std::int64_t const value =
         tooBig ? 0 : ( negative ? -std::int64_t( *magnitude ) : std::int64_t( *magnitude ) );
   if( tooBig || value < min || value > max ) {
      fail( node, what + ": " + node.Scalar() + " is out of range " + std::to_string( min ) + ".." +
                        std::to_string( max ) );
   }
   return value;
}

std::uint64_t YamlReader::unsignedInteger( YAML::Node const& node, std::string const& what,
                                           std::uint64_t max ) const {
   std::string const text = scalar( node, what, "a whole number" );
   auto const value = magnitudeOf( text );
   if( !value ) fail( node, what + ": '" + text + "' is not a whole number" );
   if( *value > max ) {
      fail( node, what + ": " + text + " is out of range 0.." + std::to_string( max ) );
   }
   return *value;
}

double YamlReader::seconds( YAML::Node const& node, std::string const& what, double min ) const {
   std::string const text = scalar( node, what, "a number of seconds" );
   SecondsText const seconds = secondsOf( text );
   if( !seconds.problem.empty() ) fail( node, what + ": '" + text + "' " + seconds.problem );
   if( seconds.value < min ) fail( node, what + ": " + text + " is below " + secondsText( min ) );
   return seconds.value;
}

bool YamlReader::flag( YAML::Node const& node, std::string const& what ) const {
   std::string const text = scalar( node, what, "true or false" );
   if( text == "true" ) return true;
   if( text == "false" ) return false;
   fail( node, what + ": expected true or false, found '" + text + "'" );
}

unsigned YamlReader::dscp( YAML::Node const& node, std::string const& what, bool* byName ) const {
   std::string const text = scalar( node, what, "a DSCP" );
   auto const named = dscpNamed( text );
   if( byName ) *byName = named.has_value();
   if( named ) return *named;
   if( !magnitudeOf( text ) ) {
      fail( node, what + ": '" + text +
                        "' is neither a number 0..63 nor a DSCP name (default, ef, cs0..cs7, "
                        "af11..af43)" );
   }
   return unsigned( integer( node, what, 0, 63 ) );
}

Span YamlReader::span( YAML::Node const& node, std::string const& what, unsigned min,
                       unsigned max ) const {
   std::string const text = scalar( node, what, "a number or a range low-high" );
   std::size_t const dash = text.find( '-' );
   if( dash == std::string::npos ) {
      auto const v = unsigned( integer( node, what, min, max ) );
      return { v, v };
   }
   auto const low = magnitudeOf( std::string_view( text ).substr( 0, dash ) );
   auto const high = magnitudeOf( std::string_view( text ).substr( dash + 1 ) );
   if( !low || !high ) fail( node, what + ": '" + text + "' is not a range low-high" );
   if( *low < min || *high > max || *low > *high ) {
      fail( node, what + ": range " + text + " is not within " + std::to_string( min ) + ".." +
                        std::to_string( max ) + " with low <= high" );
   }
   return { unsigned( *low ), unsigned( *high ) };
}

std::vector< Span > YamlReader::spans( YAML::Node const& node, std::string const& what,
                                       unsigned min, unsigned max ) const {
   if( !node.IsSequence() ) return { span( node, what, min, max ) };
   if( node.size() == 0 ) fail( node, what + ": expected at least one number or range" );
   std::vector< Span > out;
   for( YAML::Node const& item : node )
      out.push_back( span( item, what, min, max ) );
   return out;
}

}  // namespace Sim
