// The reference chip's show output: what its TCAM holds for each policy map, class and ACL, one
// line per entry, written to the descriptor the engine passes.
#include <cstdio>
#include <sstream>

#include "NevQos/sim/chip/ChipText.h"
#include "NevQos/sim/chip/SimQosAclHelper.h"
#include "NevQos/types/QosClassData.h"

namespace Sim {

namespace {

void print( std::uint32_t socket, std::string const& line ) {
   dprintf( static_cast< int >( socket ), "%s\n", line.c_str() );
}

std::string entryLine( TcamEntry const& e, std::string const& lead ) {
   std::ostringstream line;
   line << lead << e.ruleNum << "." << e.subruleNum << "  " << e.kind;
   for( auto const& [ name, value ] : e.fields )
      line << "  " << name << "=" << value;
   return line.str();
}

}  // namespace

void SimQosAclHelper::showAclPolicyHeader( std::uint32_t socket, std::uint32_t unit,
                                           Nev::QosPolicyMapState const& pmapState,
                                           Nev::QosPolicyMapKey const& pmapKey ) {
   std::ostringstream line;
   line << "Policy map " << pmapKey.pmapName() << ": " << pmapKey.pmapType() << " "
        << pmapKey.direction() << ", ACL group " << pmapKey.aclGroup() << ", unit " << unit
        << ", interfaces:";
   if( pmapState.activeIntfSize() == 0 ) line << " none";
   for( auto it = pmapState.activeIntf().iter(); it; ++it )
      line << " " << intfText( it.key() );
   print( socket, line.str() );
}

void SimQosAclHelper::showAclClassHeader( std::uint32_t socket, std::uint32_t,
                                          Nev::QosClassMapKey const& cmapKey ) {
   print( socket, "  Class " + textOf( cmapKey.cmapName() ) );
}

void SimQosAclHelper::showAclHeader( std::uint32_t socket, std::uint32_t, bool,
                                     Nev::QosClassData const& classData,
                                     Qos::ClassMapMatchOption matchOption,
                                     Nev::AclKey const& aclKey ) {
   std::ostringstream line;
   line << "    ACL " << aclKey.aclName() << " (" << aclKey.aclType() << ", " << matchOption << ")";
   // A class copied per policer or interface shows which copy the ACL belongs to.
   Zub::Name const& copy = classData.key().policerName();
   if( copy != Zub::Name( "Default" ) ) line << " of copy " << copy;
   auto const acl = tcam_.acls().find( aclIdOf( classData, aclKey ) );
   if( acl == tcam_.acls().end() ) {
      line << ": not in the TCAM";
   } else {
      line << ": slice " << acl->second.slice << ", " << acl->second.entries.size() << " entries, "
           << ( acl->second.committed ? "committed" : "not committed" );
   }
   print( socket, line.str() );
}

void SimQosAclHelper::showIpAclRule( std::uint32_t socket, std::uint32_t,
                                     Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                                     std::uint32_t sequence, Acl::UniqueId const& id ) {
   std::ostringstream leadText;
   leadText << "      seq " << sequence << "  ";
   std::string const lead = leadText.str();
   auto const acl = tcam_.acls().find( aclIdOf( classData, aclKey ) );
   bool any = false;
   if( acl != tcam_.acls().end() ) {
      for( TcamEntry const& e : acl->second.entries ) {
         if( e.ruleId != id.value() ) continue;
         print( socket, entryLine( e, lead ) );
         any = true;
      }
   }
   // A deny rule, or one left out, takes no entry.
   if( !any ) print( socket, leadText.str() + "no entry" );
}

void SimQosAclHelper::showEntries( std::uint32_t socket, Nev::QosClassData const& classData,
                                   Nev::AclKey const& aclKey, std::string const& kind ) {
   auto const acl = tcam_.acls().find( aclIdOf( classData, aclKey ) );
   if( acl == tcam_.acls().end() ) return;
   for( TcamEntry const& e : acl->second.entries ) {
      if( e.kind == kind ) print( socket, entryLine( e, "      " ) );
   }
}

void SimQosAclHelper::showDefaultRule( std::uint32_t socket, std::uint32_t,
                                       Nev::QosPolicyMapState const&,
                                       Nev::QosClassData const& classData, Qos::ClassMapMatchOption,
                                       Nev::AclKey const& aclKey ) {
   showEntries( socket, classData, aclKey, "default" );
}

void SimQosAclHelper::showL2ParamsRule( std::uint32_t socket, std::uint32_t,
                                        Nev::QosPolicyMapState const&,
                                        Nev::QosClassData const& classData,
                                        Qos::ClassMapMatchOption, Nev::AclKey const& aclKey ) {
   showEntries( socket, classData, aclKey, "l2" );
}

void SimQosAclHelper::showMplsTrafficClassRule( std::uint32_t socket, std::uint32_t,
                                                Nev::QosPolicyMapState const&,
                                                Nev::QosClassData const& classData,
                                                Qos::ClassMapMatchOption,
                                                Nev::AclKey const& aclKey ) {
   showEntries( socket, classData, aclKey, "mpls" );
}

void SimQosAclHelper::showDscpEcnRule( std::uint32_t socket, std::uint32_t,
                                       Nev::QosPolicyMapState const&,
                                       Nev::QosClassData const& classData, Qos::ClassMapMatchOption,
                                       Nev::AclKey const& aclKey ) {
   showEntries( socket, classData, aclKey, "dscpEcn" );
}

void SimQosAclHelper::showMacAclRule( std::uint32_t socket, std::uint32_t,
                                      Nev::QosPolicyMapState const&,
                                      Nev::QosClassData const& classData, Qos::ClassMapMatchOption,
                                      Nev::AclKey const& aclKey ) {
   showEntries( socket, classData, aclKey, "mac" );
}

}  // namespace Sim
