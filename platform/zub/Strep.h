// The `Value(...)` text form of values: rendering each field with `valueToStrep`, and reading it
// back with `needString` and `deserializeAttr`. Texts are quoted with single quotes, booleans are
// True and False, a null pointer is None.
#pragma once

#include <charconv>
#include <concepts>
#include <string_view>
#include <type_traits>

#include "NevQos/platform/zub/Exception.h"
#include "NevQos/platform/zub/Format.h"
#include "NevQos/platform/zub/Ptr.h"
#include "NevQos/platform/zub/String.h"

namespace Zub {

// A position in text being parsed.
using StrepIter = char const*;

String valueToStrep( bool v );
String valueToStrep( double v );
String valueToStrep( String const& v );
String valueToStrep( Name const& v );
template< std::integral T >
requires( !std::same_as< T, bool > ) String valueToStrep( T v ) {
   char buf[ 24 ];
   auto r = std::to_chars( buf, buf + sizeof buf, v );
   return String( buf, static_cast< std::size_t >( r.ptr - buf ) );
}
template< class T >
String valueToStrep( Ptr< T > const& p ) {
   if( !p ) return "None";
   return format( "<%p>", static_cast< void const* >( p.ptr() ) );
}
// A back pointer: rendered like an owning pointer.
template< class T >
requires( !std::is_same_v< std::remove_cv_t< T >, char > ) String valueToStrep( T* p ) {
   if( !p ) return "None";
   return format( "<%p>", static_cast< void const* >( p ) );
}

// Consumes `literal` at `it`, or throws ParseException.
void needString( StrepIter& it, StrepIter end, std::string_view literal );
void deserializeAttr( StrepIter& it, StrepIter end, bool& out );
void deserializeAttr( StrepIter& it, StrepIter end, double& out );
void deserializeAttr( StrepIter& it, StrepIter end, String& out );
void deserializeAttr( StrepIter& it, StrepIter end, Name& out );
template< std::integral T >
requires( !std::same_as< T, bool > ) void deserializeAttr( StrepIter& it, StrepIter end, T& out ) {
   auto r = std::from_chars( it, end, out );
   if( r.ec != std::errc() ) {
      throwParseException( String( "deserializeAttr: expected a number at '" ) +
                           String( it, static_cast< std::size_t >( end - it ) ) + "'" );
   }
   it = r.ptr;
}
// Only None can be read back into a pointer.
template< class T >
void deserializeAttr( StrepIter& it, StrepIter end, Ptr< T >& out ) {
   needString( it, end, "None" );
   out = nullptr;
}

// Reads `'name': ` then the value: the name and value of one field of the `Value(...)` form.
template< class T >
void deserializeField( StrepIter& it, StrepIter end, std::string_view name, T& out, bool first ) {
   if( !first ) needString( it, end, ", " );
   needString( it, end, "'" );
   needString( it, end, name );
   needString( it, end, "': " );
   deserializeAttr( it, end, out );
}

}  // namespace Zub
