// Shared pieces of the text forms of values.
//
// Enumerations: every enumeration of the type library offers the same
// five operations: `stringValue(e)` gives the member's name, `valueToStrep(e)` the quoted name,
// `operator<<` the name, `XInstance(text)` the member of a name, and `deserializeAttr` reads the
// quoted name back inside a `Value(...)` text. They are declared with ENUM_TEXT_DECLARE in the
// enumeration's namespace, so that argument-dependent lookup finds them, and defined from one
// table of names with ENUM_TEXT_DEFINE.
#pragma once

#include <compare>
#include <cstdint>
#include <iosfwd>
#include <span>
#include <string_view>

#include "NevQos/platform/zub/Strep.h"
#include "NevQos/platform/zub/String.h"

namespace ValueText {

struct Member {
   std::uint32_t value;
   std::string_view name;
};

// The name of `value`, or "<typeName>(<value>)" for a number outside the table.
Zub::String name( std::span< Member const > table, char const* typeName, std::uint32_t value );
// The member called `text`; throws Zub::RangeException for an unknown name.
std::uint32_t lookup( std::span< Member const > table, char const* typeName,
                      std::string_view text );
std::ostream& print( std::ostream& os, std::span< Member const > table, char const* typeName,
                     std::uint32_t value );

// Keys order their enumeration fields as signed 32-bit numbers.
template< class E >
constexpr std::strong_ordering compareEnum( E a, E b ) noexcept {
   return static_cast< std::int32_t >( a ) <=> static_cast< std::int32_t >( b );
}

// A parsing constructor reads a whole text: anything left after the value is an error.
void needEnd( Zub::StrepIter it, Zub::StrepIter end );

}  // namespace ValueText

#define ENUM_TEXT_DECLARE( E )                        \
   Zub::String stringValue( E e );                    \
   Zub::String valueToStrep( E e );                   \
   std::ostream& operator<<( std::ostream& os, E e ); \
   E E##Instance( std::string_view text );            \
   inline E E##Instance( Zub::String const& text ) {  \
      return E##Instance( text.view() );              \
   }                                                  \
   inline E E##Instance( char const* text ) {         \
      return E##Instance( std::string_view( text ) ); \
   }                                                  \
   void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, E& out )

// `table` is an array of ValueText::Member; `typeName` the qualified name used in errors.
#define ENUM_TEXT_DEFINE( E, typeName, table )                                           \
   Zub::String stringValue( E e ) {                                                      \
      return ValueText::name( table, typeName, static_cast< std::uint32_t >( e ) );      \
   }                                                                                     \
   Zub::String valueToStrep( E e ) {                                                     \
      return Zub::valueToStrep( stringValue( e ) );                                      \
   }                                                                                     \
   std::ostream& operator<<( std::ostream& os, E e ) {                                   \
      return ValueText::print( os, table, typeName, static_cast< std::uint32_t >( e ) ); \
   }                                                                                     \
   E E##Instance( std::string_view text ) {                                              \
      return static_cast< E >( ValueText::lookup( table, typeName, text ) );             \
   }                                                                                     \
   void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, E& out ) {              \
      Zub::String text;                                                                  \
      Zub::deserializeAttr( it, end, text );                                             \
      out = E##Instance( text.view() );                                                  \
   }
