#include "NevQos/sim/chip/ChipText.h"

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

std::string boolText( bool b ) {
   return b ? "true" : "false";
}

char const* mapTypeText( Qos::MapType type ) {
   switch( type ) {
      case Qos::mapControlPlane_:
         return "control-plane";
      case Qos::mapQos_:
         return "qos";
      case Qos::mapPdp_:
         return "pdp";
   }
   return "?";
}

std::string aclKeyText( Nev::AclKey const& aclKey ) {
   return textOf( aclKey.aclName() ) + "(" + textOf( aclKey.aclType() ) + ")";
}

// The group only where it is not the default, so that the maps of a chip without groups keep
// their names; it keeps the class data and ACLs of two groups apart.
std::string pmapText( Nev::QosPolicyMapKey const& k ) {
   std::string text =
         textOf( k.pmapName() ) + "(" + mapTypeText( k.pmapType() ) + "," + textOf( k.direction() );
   if( k.aclGroup() != Nev::QosPolicyMapKey::defaultAclGroup() ) {
      text += ",";
      text += textOf( k.aclGroup() );
   }
   return text + ")";
}

std::string queueText( Qos::TxQueue const& queue ) {
   return ( queue.type() == Qos::multicastQueue_ ? "MC" : "UC" ) + textOf( queue.id() );
}

}  // namespace Sim
