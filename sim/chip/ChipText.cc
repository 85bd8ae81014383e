#include "sim/chip/ChipText.h"

namespace Sim {

std::string hexText( unsigned v ) {
   std::ostringstream os;
   os << "0x" << std::hex << v;
   return os.str();
}

std::string intfName( Mirel::IntfId intf ) {
   return intf.stringValue().stdString();
}

std::string intfText( Qos::IntfPairKey const& intf ) {
   // A stream: the optimiser warns of overlaps that cannot happen in "@" + name.
   std::ostringstream os;
   os << intf.intfId().stringValue();
   if( !intf.lagIntfId().empty() ) os << '@' << intf.lagIntfId().stringValue();
   return os.str();
}

std::string portQueueText( Nev::ModIdPortQueueKey const& key ) {
   std::ostringstream os;
   os << key.modId() << "/" << key.port() << "/" << key.queue();
   return os.str();
}

}  // namespace Sim
