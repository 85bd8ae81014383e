#include "NevQos/platform/zub/ValueText.h"

#include <ostream>

#include "NevQos/platform/zub/Exception.h"
#include "NevQos/platform/zub/Format.h"

namespace ValueText {

namespace {

Member const* find( std::span< Member const > table, std::uint32_t value ) {
   for( auto const& m : table ) {
      if( m.value == value ) return &m;
   }
   return nullptr;
}

}  // namespace

Zub::String name( std::span< Member const > table, char const* typeName, std::uint32_t value ) {
   if( auto const* m = find( table, value ) ) return Zub::String( m->name );
   return Zub::format( "%s(%u)", typeName, value );
}

std::uint32_t lookup( std::span< Member const > table, char const* typeName,
                      std::string_view text ) {
   for( auto const& m : table ) {
      if( m.name == text ) return m.value;
   }
   Zub::throwRangeException( Zub::String( "'" ) + Zub::String( text ) + "' is not a value of " +
                             typeName );
}

std::ostream& print( std::ostream& os, std::span< Member const > table, char const* typeName,
                     std::uint32_t value ) {
   if( auto const* m = find( table, value ) ) return os << m->name;
   return os << typeName << '(' << value << ')';
}

void needEnd( Zub::StrepIter it, Zub::StrepIter end ) {
   if( it != end ) {
      Zub::throwParseException( Zub::String( "unexpected text after the value at '" ) +
                                Zub::String( it, static_cast< std::size_t >( end - it ) ) + "'" );
   }
}

}  // namespace ValueText
