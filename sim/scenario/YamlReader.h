// Typed values out of a parsed YAML document. Every failure is a ScenarioError that names the
// file, the line and column of the node at fault, and the problem; `what` in each call is the
// name the message gives the value (a key, mostly).
#pragma once

#include <yaml-cpp/yaml.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "NevQos/sim/scenario/Scenario.h"
#include "NevQos/sim/scenario/ScenarioNames.h"

namespace Sim {

class YamlReader {
 public:
   explicit YamlReader( std::string file ) : file_( std::move( file ) ) {}

   std::string const& file() const { return file_; }
   // 1-based; line 0 for a node that was not read from the text.
   static Where whereOf( YAML::Node const& node );
   [[noreturn]] void fail( YAML::Node const& at, std::string const& problem ) const;
   [[noreturn]] void fail( Where where, std::string const& problem ) const;

   // A mapping whose keys are scalars, each once, each one of `known`.
   void checkMapping( YAML::Node const& node, std::string const& what,
                      std::vector< std::string_view > const& known ) const;
   void checkSequence( YAML::Node const& node, std::string const& what ) const;
   // The value under `key` of a checked mapping; a missing key fails at the mapping.
   YAML::Node required( YAML::Node const& mapping, char const* key ) const;

   // A scalar of at least one character.
   std::string text( YAML::Node const& node, std::string const& what ) const;
   // A whole number, decimal or 0x hexadecimal, from `min` to `max`.
   std::int64_t integer( YAML::Node const& node, std::string const& what, std::int64_t min,
                         std::int64_t max ) const;
   std::uint64_t unsignedInteger( YAML::Node const& node, std::string const& what,
                                  std::uint64_t max ) const;
   // A number of seconds, at least `min`.
   double seconds( YAML::Node const& node, std::string const& what, double min ) const;
   // true or false.
   bool flag( YAML::Node const& node, std::string const& what ) const;

   // One of the names of `table`.
   template< class E >
   E choice( YAML::Node const& node, std::string const& what, NameTable< E > table ) const {
      std::string const name = text( node, what );
      for( auto const& [ n, value ] : table )
         if( n == name ) return value;
      fail( node, what + ": '" + name + "' is not one of " + namesOf( table ) );
   }
   // A DSCP, 0 to 63, or its name: default, ef, cs0 to cs7, af11 to af43. `byName` tells which.
   unsigned dscp( YAML::Node const& node, std::string const& what, bool* byName = nullptr ) const;
   // Numbers and "low-high" ranges within [min, max]: a single scalar or a sequence of them.
   std::vector< Span > spans( YAML::Node const& node, std::string const& what, unsigned min,
                              unsigned max ) const;

 private:
   template< class E >
   static std::string namesOf( NameTable< E > table ) {
      std::string names;
      for( auto const& [ n, value ] : table )
         names += ( names.empty() ? "" : ", " ) + std::string( n );
      return names;
   }
   std::string scalar( YAML::Node const& node, std::string const& what,
                       char const* expected ) const;
   Span span( YAML::Node const& node, std::string const& what, unsigned min, unsigned max ) const;

   std::string file_;
};

// "a mapping", "a sequence", "a scalar", "nothing": for messages about a node of the wrong kind.
std::string kindOf( YAML::Node const& node );

}  // namespace Sim
