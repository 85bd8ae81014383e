// The text forms values read themselves back from: the `Value(...)` form of the keys and records,
// its fields (quoted texts, booleans, numbers, None, enumeration names, interface names), and the
// '!'-separated key texts. The first byte picks the parser, the rest is its text.
//
// Bad text throws Zub::ParseException; a well-formed text naming something outside a type's
// range (an unknown enumeration name, a number above its field's limit) throws
// Zub::RangeException, as ValueText::lookup and the number types document, for the forms that
// can name such a thing. Any other exception, or a crash, is a finding, and so is a value that
// does not read back equal from its own text.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <type_traits>

#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/mirel/IntfId.h"
#include "NevQos/platform/nev/AclKey.h"
#include "NevQos/platform/zub/Exception.h"
#include "NevQos/platform/zub/Strep.h"
#include "NevQos/policy/QosPolicyUpdateRequest.h"
#include "NevQos/types/IntfUpdateCallbackData.h"
#include "NevQos/types/L2ParamsInfo.h"
#include "NevQos/types/QosClassDataKey.h"
#include "NevQos/types/QosClassMapKey.h"
#include "NevQos/types/QosPolicyMapKey.h"
#include "NevQos/types/TcpFlag.h"

namespace {

void check( bool ok ) {
   if( !ok ) std::abort();
}

// A whole `Value(...)` text, then the same value read from its own rendering.
template< class T >
void valueForm( char const* begin, char const* end ) {
   T const value( begin, end );
   Zub::String const text = valueToStrep( value );
   check( T( text.charPtr(), text.charPtr() + text.size() ) == value );
}

// The '!' forms: a parsed key renders to a text that parses to the same key (fields that came
// out of a split hold no '!' of their own, so nothing is lost).
template< class T >
void bangForm( char const* begin, char const* end ) {
   T const value =
         T::stringToValue( Zub::String( begin, static_cast< std::size_t >( end - begin ) ) );
   check( T::stringToValue( value.valueToString() ) == value );
}

void intfName( char const* begin, char const* end ) {
   Mirel::IntfId const id( std::string_view( begin, static_cast< std::size_t >( end - begin ) ) );
   check( Mirel::IntfId( id.stringValue() ) == id );
}

template< class T >
void readBack( T const& value ) {
   Zub::String const text = Zub::valueToStrep( value );
   Zub::StrepIter it = text.charPtr();
   T again{};
   Zub::deserializeAttr( it, text.charPtr() + text.size(), again );
   check( it == text.charPtr() + text.size() );
   if constexpr( std::is_floating_point_v< T > ) {
      check( std::isnan( value ) ? std::isnan( again ) : again == value );
   } else {
      check( again == value );
   }
}

template< class T >
void readField( Zub::StrepIter& it, Zub::StrepIter end ) {
   T value{};
   Zub::deserializeAttr( it, end, value );
   readBack( value );
}

// A list of fields "x, y, ...", each read by the parser its first character suggests.
void fields( char const* begin, char const* end ) {
   Zub::StrepIter it = begin;
   for( bool first = true; it != end; first = false ) {
      if( !first ) Zub::needString( it, end, ", " );
      if( it == end ) Zub::throwParseException( "a field after ', '" );
      switch( *it ) {
         case '\'':
            readField< Zub::String >( it, end );
            break;
         case 'T':
         case 'F':
            readField< bool >( it, end );
            break;
         case 'N': {
            Zub::Ptr< Nev::QosPolicyMapClassData > p;
            Zub::deserializeAttr( it, end, p );
            check( !p );
            break;
         }
         case '-':
            readField< std::int64_t >( it, end );
            break;
         case '+':
         case '.':
         case 'i':
         case 'n':
            readField< double >( it, end );
            break;
         default:
            // Digits: small unsigned fields, like the one-byte chip and stage of an ACL key.
            if( *it % 2 ) {
               readField< std::uint8_t >( it, end );
            } else {
               readField< double >( it, end );
            }
      }
   }
}

using Parser = void ( * )( char const*, char const* );

// `rangeErrors`: the text can name an enumeration member or a number its type refuses. Forms of
// bare numbers, booleans and interface names only have ParseException to throw.
struct Target {
   Parser parse;
   bool rangeErrors;
};

constexpr Target parsers[] = {
   { valueForm< Nev::QosPolicyMapKey >, true },
   { valueForm< Nev::QosClassDataKey >, true },
   { valueForm< Nev::QosClassMapKey >, true },
   { valueForm< NevHelper::TcpFlag >, false },
   { valueForm< Nev::QosPolicyUpdateRequest >, true },
   { valueForm< Nev::IntfUpdateCallbackData >, true },
   { valueForm< Nev::L2ParamsInfo >, false },
   { valueForm< Nev::AclKey >, true },
   { valueForm< Qos::IntfPairKey >, false },
   { valueForm< Qos::TxQueue >, true },
   { valueForm< Qos::ServicePolicyKey >, true },
   { valueForm< Qos::PolicyMapHwStatusKey >, true },
   { bangForm< Nev::QosPolicyMapKey >, true },
   { bangForm< Nev::QosClassDataKey >, true },
   { intfName, false },
   { fields, false },
};
constexpr std::size_t parserCount = sizeof parsers / sizeof parsers[ 0 ];

}  // namespace

extern "C" int LLVMFuzzerTestOneInput( std::uint8_t const* data, std::size_t size ) {
   if( size == 0 ) return 0;
   char const* const text = reinterpret_cast< char const* >( data );
   Target const& target = parsers[ data[ 0 ] % parserCount ];
   try {
      target.parse( text + 1, text + size );
   } catch( Zub::ParseException const& ) {
   } catch( Zub::RangeException const& ) {
      check( target.rangeErrors );
   }
   return 0;
}
