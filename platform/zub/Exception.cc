#include "NevQos/platform/zub/Exception.h"

namespace Zub {

void throwRangeException( String const& what ) {
   throw RangeException( what );
}

void throwParseException( String const& what ) {
   throw ParseException( what );
}

void throwNameInUseException( String const& param, String const& newValue,
                              String const& oldValue ) {
   throw NameInUseException(
         String( "Reinstantiating the pointer interface where constructor parameter attribute _" ) +
         param + " has a different value of " + newValue + " than the current value of " +
         oldValue + " not allowed" );
}

void throwNullParameterException( String const& param, String const& attribute ) {
   // The closing quote belongs to the text as the platform has always written it.
   throw NullParameterException( String( "null _" ) + param + " parameter to mutator for " +
                                 attribute + " not allowed\"" );
}

}  // namespace Zub
