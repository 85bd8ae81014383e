// How the reference chip, the recording decorators, the scenario reader and the runner's report
// write values as text: anything with an operator<<, masks in hexadecimal, interfaces by name with
// a LAG member as "Ethernet4@Port-Channel10", policy maps as "gold(qos,input)", ACL keys as
// "acl-1(ip)", queues as "UC3".
#pragma once

#include <sstream>
#include <string>

#include "NevQos/types/QosPolicyMapKey.h"
#include "entities/QosTypes.h"
#include "mirel/IntfId.h"
#include "nev/AclKey.h"
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
std::string boolText( bool b );
std::string aclKeyText( Nev::AclKey const& aclKey );
// "qos", "control-plane", "pdp".
char const* mapTypeText( Qos::MapType type );
// "gold(qos,input)", or "gold(qos,input,uplinks)" in ACL group "uplinks".
std::string pmapText( Nev::QosPolicyMapKey const& k );
// "UC3", "MC0".
std::string queueText( Qos::TxQueue const& queue );

}  // namespace Sim
