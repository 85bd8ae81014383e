// The reference chip's show output: what its TCAM holds for each policy map, class and ACL, one
// line per entry, written to the descriptor the engine passes.
#include <cstdio>

#include "NevQos/classes/QosClassData.h"
#include "sim/chip/ChipText.h"
#include "sim/chip/SimQosAclHelper.h"

namespace Sim {

namespace {

void print( std::uint32_t socket, std::string const& line ) {
   dprintf( static_cast< int >( socket ), "%s\n", line.c_str() );
}

std::string entryLine( TcamEntry const& e, std::string const& lead ) {
   std::string line = lead + textOf( e.ruleNum ) + "." + textOf( e.subruleNum ) + "  " + e.kind;
   for( auto const& [ name, value ] : e.fields )
      line += "  " + name + "=" + value;
   return line;
}

}  // namespace

void SimQosAclHelper::showAclPolicyHeader( std::uint32_t socket, std::uint32_t unit,
                                           Nev::QosPolicyMapState const& pmapState,
                                           Nev::QosPolicyMapKey const& pmapKey ) {
   std::string intfs;
   for( auto it = pmapState.activeIntf().iter(); it; ++it )
      intfs += " " + intfText( it.key() );
   print( socket, "Policy map " + textOf( pmapKey.pmapName() ) + ": " +
                        textOf( pmapKey.pmapType() ) + " " + textOf( pmapKey.direction() ) +
                        ", ACL group " + textOf( pmapKey.aclGroup() ) + ", unit " + textOf( unit ) +
                        ", interfaces:" + ( intfs.empty() ? std::string( " none" ) : intfs ) );
}

void SimQosAclHelper::showAclClassHeader( std::uint32_t socket, std::uint32_t,
                                          Nev::QosClassMapKey const& cmapKey ) {
   print( socket, "  Class " + textOf( cmapKey.cmapName() ) );
}

void SimQosAclHelper::showAclHeader( std::uint32_t socket, std::uint32_t, bool,
                                     Nev::QosClassData const& classData,
                                     Qos::ClassMapMatchOption matchOption,
                                     Nev::AclKey const& aclKey ) {
   std::string head = "    ACL " + textOf( aclKey.aclName() ) + " (" + textOf( aclKey.aclType() ) +
                      ", " + textOf( matchOption ) + ")";
   // A class copied per policer or interface shows which copy the ACL belongs to.
   Zub::Name const& copy = classData.key().policerName();
   if( copy != Zub::Name( "Default" ) ) head += " of copy " + textOf( copy );
   auto const acl = tcam_.acls().find( aclIdOf( classData, aclKey ) );
   if( acl == tcam_.acls().end() ) {
      print( socket, head + ": not in the TCAM" );
      return;
   }
   print( socket, head + ": slice " + acl->second.slice + ", " +
                        textOf( acl->second.entries.size() ) + " entries, " +
                        ( acl->second.committed ? "committed" : "not committed" ) );
}

void SimQosAclHelper::showIpAclRule( std::uint32_t socket, std::uint32_t,
                                     Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                                     std::uint32_t sequence, Acl::UniqueId const& id ) {
   std::string const lead = "      seq " + textOf( sequence ) + "  ";
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
   if( !any ) print( socket, lead + "no entry" );
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
