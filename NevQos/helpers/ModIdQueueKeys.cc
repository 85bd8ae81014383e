#include "NevQos/helpers/ModIdQueueKeys.h"

#include <ostream>

#include "NevQos/platform/zub/Strep.h"

namespace Nev {

Zub::String valueToStrep( ModIdQueueKey const& k ) {
   return Zub::String( "Value('Nev::ModIdQueueKey', ** {'modId': " ) +
          Zub::valueToStrep( k.modId() ) + ", 'queue': " + Zub::valueToStrep( k.queue() ) + "})";
}

std::ostream& operator<<( std::ostream& os, ModIdQueueKey const& k ) {
   return os << valueToStrep( k );
}

}  // namespace Nev
