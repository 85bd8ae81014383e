// How the reference chip, the scenario reader and the runner's report write values as text:
// anything with an operator<<, masks in hexadecimal, interfaces by name with a LAG member as
// "Ethernet4@Port-Channel10".
#pragma once

#include <sstream>
#include <string>

#include "entities/QosTypes.h"
#include "mirel/IntfId.h"
#include "nev/ModIdPortQueueKey.h"

namespace Sim {

template< class T >
std::string textOf( T const& v ) {
   std::ostringstream os;
   os << v;
   return os.str();
}

std::string hexText( unsigned v );
std::string intfName( Mirel::IntfId intf );
std::string intfText( Qos::IntfPairKey const& intf );
// A CPU queue of a port as "modId/port/queue".
std::string portQueueText( Nev::ModIdPortQueueKey const& key );

}  // namespace Sim
