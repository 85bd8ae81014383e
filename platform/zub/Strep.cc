#include "NevQos/platform/zub/Strep.h"

#include <cstring>
#include <string>

namespace Zub {

namespace {

String quoted( std::string_view s ) {
   std::string out;
   out.reserve( s.size() + 2 );
   out += '\'';
   for( char c : s ) {
      if( c == '\'' || c == '\\' ) out += '\\';
      out += c;
   }
   out += '\'';
   return String( out );
}

[[noreturn]] void parseError( char const* what, StrepIter it, StrepIter end ) {
   throwParseException( String( what ) + " at '" +
                        String( it, static_cast< std::size_t >( end - it ) ) + "'" );
}

}  // namespace

String valueToStrep( bool v ) {
   return v ? "True" : "False";
}

String valueToStrep( double v ) {
   char buf[ 32 ];
   auto r = std::to_chars( buf, buf + sizeof buf, v );
   return String( buf, static_cast< std::size_t >( r.ptr - buf ) );
}

String valueToStrep( String const& v ) {
   return quoted( v.view() );
}

String valueToStrep( Name const& v ) {
   return quoted( v.view() );
}

void needString( StrepIter& it, StrepIter end, std::string_view literal ) {
   std::size_t left = static_cast< std::size_t >( end - it );
   if( left < literal.size() || std::memcmp( it, literal.data(), literal.size() ) != 0 ) {
      throwParseException( String( "needString: expected \"" ) + String( literal ) + "\" at '" +
                           String( it, left ) + "'" );
   }
   it += literal.size();
}

void deserializeAttr( StrepIter& it, StrepIter end, bool& out ) {
   std::string_view rest( it, static_cast< std::size_t >( end - it ) );
   if( rest.starts_with( "True" ) ) {
      out = true;
      it += 4;
   } else if( rest.starts_with( "False" ) ) {
      out = false;
      it += 5;
   } else {
      parseError( "deserializeAttr: expected True or False", it, end );
   }
}

void deserializeAttr( StrepIter& it, StrepIter end, double& out ) {
   auto r = std::from_chars( it, end, out );
   if( r.ec != std::errc() ) parseError( "deserializeAttr: expected a number", it, end );
   it = r.ptr;
}

void deserializeAttr( StrepIter& it, StrepIter end, String& out ) {
   if( it == end || *it != '\'' ) parseError( "deserializeAttr: expected a quoted text", it, end );
   std::string text;
   for( StrepIter p = it + 1; p != end; ++p ) {
      if( *p == '\\' && p + 1 != end ) {
         text += *++p;
      } else if( *p == '\'' ) {
         out = String( text );
         it = p + 1;
         return;
      } else {
         text += *p;
      }
   }
   parseError( "deserializeAttr: unterminated quoted text", it, end );
}

void deserializeAttr( StrepIter& it, StrepIter end, Name& out ) {
   String text;
   deserializeAttr( it, end, text );
   out = Name( text );
}

}  // namespace Zub
