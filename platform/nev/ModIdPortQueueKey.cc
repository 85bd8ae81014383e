#include "NevQos/platform/nev/ModIdPortQueueKey.h"

#include <ostream>

#include "NevQos/platform/zub/Strep.h"

namespace Nev {

Zub::String valueToStrep( ModIdPortQueueKey const& k ) {
   return Zub::String( "Value('Nev::ModIdPortQueueKey', ** {'modId': " ) +
          Zub::valueToStrep( k.modId() ) + ", 'port': " + Zub::valueToStrep( k.port() ) +
          ", 'queue': " + Zub::valueToStrep( k.queue() ) + "})";
}

std::ostream& operator<<( std::ostream& os, ModIdPortQueueKey const& k ) {
   return os << valueToStrep( k );
}

}  // namespace Nev
