// The reference chip's answers to the engine's verification: every answer is read from the TCAM
// as it stands, so that an entry damaged or lost behind the engine's back is found. The engine
// decides whether a subrule should exist; the chip compares the fields of the entries it has, or,
// where the engine replays no rule (verifyTcamData), every entry with the driver's record of what
// was written. The chip's own checks find what no class of the engine owns.
#include <algorithm>
#include <bit>
#include <cstdio>
#include <map>
#include <optional>
#include <sstream>
#include <utility>

#include "NevQos/platform/mirel/IpAddrWithMask.h"
#include "NevQos/platform/zub/Format.h"
#include "NevQos/sim/chip/ChipText.h"
#include "NevQos/sim/chip/SimQosAclHelper.h"
#include "NevQos/types/QosClassData.h"

namespace Sim {

namespace {

using Range = std::pair< unsigned, unsigned >;

constexpr Range fullRange{ 0, 0xffff };

// The ports a stored field matches: "range 1000-2000", or value/mask ("80/0xffff"); a field the
// entry lacks matches every port.
Range rangeOfText( std::string const* text ) {
   if( !text ) return fullRange;
   unsigned a = 0, b = 0;
   if( std::sscanf( text->c_str(), "range %u-%u", &a, &b ) == 2 ) return { a, b };
   if( std::sscanf( text->c_str(), "%u/%x", &a, &b ) == 2 ) {
      unsigned const low = a & b & 0xffff;
      return { low, low | ( ~b & 0xffff ) };
   }
   return { 1, 0 };  // unreadable: matches nothing the engine can expect
}

// An address and mask as a rule's filter writes them.
std::string addressText( std::uint32_t addr, std::uint32_t mask ) {
   return textOf( Mirel::IpAddrWithMask( addr, static_cast< unsigned >( std::popcount( mask ) ) ) );
}

std::string rangeText( Range r ) {
   return textOf( r.first ) + "-" + textOf( r.second );
}

// A field as a difference names it: ports and lengths as the range they match, as the checks of
// single fields do; "absent" for a field the entry lacks.
std::string fieldValueText( std::string const& name, std::string const* value ) {
   if( !value ) return "absent";
   if( name == "srcPort" || name == "dstPort" || name == "ipLen" ) {
      return rangeText( rangeOfText( value ) );
   }
   return *value;
}

bool sameEntry( TcamEntry const& a, TcamEntry const& b ) {
   return a.kind == b.kind && a.fields == b.fields;
}

bool ipKind( TcamEntry const& e ) {
   return e.kind == "ip" || e.kind == "ipFrag";
}

std::string fieldsText( TcamEntry const& e ) {
   std::string out;
   for( auto const& [ name, value ] : e.fields )
      out += " " + name + "=" + value;
   return out;
}

}  // namespace

void SimQosAclHelper::reportMismatch( std::string const& text ) {
   NEV_VERIFY_FAILURE( verifyData_.ptr(), Zub::String( text ) );
}

void SimQosAclHelper::reportFieldMismatch( FieldCheck const& at, std::string const& name,
                                           std::string const& actual,
                                           std::string const& expected ) {
   std::ostringstream text;
   text << "ACL " << at.aclKey.aclName() << " sequence " << at.sequence << " rule " << at.ruleNum
        << " subrule " << at.subruleNum << " " << name << " is " << actual << ", expected "
        << expected;
   reportMismatch( text.str() );
}

void SimQosAclHelper::reportAclMismatch( Nev::QosClassData const& classData,
                                         Nev::AclKey const& aclKey, std::string const& what ) {
   std::ostringstream text;
   text << "ACL " << aclKey.aclName() << " of class " << classKeyOf( classData ) << " " << what;
   reportMismatch( text.str() );
}

TcamEntry const* SimQosAclHelper::ipEntry( Nev::QosClassData const& classData,
                                           Nev::AclKey const& aclKey, std::uint32_t ruleNum,
                                           std::uint32_t subruleNum ) const {
   return tcam_.entry( aclIdOf( classData, aclKey ), ruleNum, subruleNum );
}

void SimQosAclHelper::checkField( FieldCheck const& at, std::string const& name,
                                  std::string const& expected, std::string const& absent ) {
   TcamEntry const* const entry = ipEntry( at.classData, at.aclKey, at.ruleNum, at.subruleNum );
   if( !entry ) return;
   std::string const* const stored = entry->field( name );
   std::string const actual = stored ? *stored : absent;
   if( actual == expected ) return;
   reportFieldMismatch( at, name, actual.empty() ? "absent" : actual,
                        expected.empty() ? "absent" : expected );
}

void SimQosAclHelper::checkPorts( FieldCheck const& at, std::string const& name, std::uint16_t low,
                                  std::uint16_t high, bool valid ) {
   TcamEntry const* const entry = ipEntry( at.classData, at.aclKey, at.ruleNum, at.subruleNum );
   if( !entry ) return;
   Range const expected = valid ? Range{ low, high } : fullRange;
   Range const actual = rangeOfText( entry->field( name ) );
   if( actual == expected ) return;
   reportFieldMismatch( at, name, rangeText( actual ), rangeText( expected ) );
}

// A verification query about one subrule. These are counted rather than listed: a list of ten
// thousand rules asks a million of them.
SimQosAclHelper::FieldCheck SimQosAclHelper::subruleQuery( Nev::QosClassData const& classData,
                                                           Nev::AclKey const& aclKey,
                                                           std::uint32_t ruleNum,
                                                           std::uint32_t subruleNum,
                                                           std::uint32_t sequence ) {
   ++subruleQueries_;
   return FieldCheck{ classData, aclKey, ruleNum, subruleNum, sequence };
}

bool SimQosAclHelper::ipSubruleExists( Nev::QosClassData const& classData,
                                       Nev::AclKey const& aclKey, Acl::UniqueId const&,
                                       std::uint32_t ruleNum, std::uint32_t subruleNum ) {
   subruleQuery( classData, aclKey, ruleNum, subruleNum, 0 );
   return ipEntry( classData, aclKey, ruleNum, subruleNum ) != nullptr;
}

// True when the subrule stands as one entry holding the two ranges whole: not expanded.
bool SimQosAclHelper::ipPortRangeSubruleExists( Nev::QosClassData const& classData,
                                                Nev::AclKey const& aclKey, Acl::UniqueId const&,
                                                std::uint32_t ruleNum, std::uint32_t subruleNum,
                                                std::uint16_t srcLow, std::uint16_t srcHigh,
                                                bool srcValid, std::uint16_t dstLow,
                                                std::uint16_t dstHigh, bool dstValid ) {
   subruleQuery( classData, aclKey, ruleNum, subruleNum, 0 );
   TcamEntry const* const entry = ipEntry( classData, aclKey, ruleNum, subruleNum );
   if( !entry ) return false;
   Range const src = srcValid ? Range{ srcLow, srcHigh } : fullRange;
   Range const dst = dstValid ? Range{ dstLow, dstHigh } : fullRange;
   return rangeOfText( entry->field( "srcPort" ) ) == src &&
          rangeOfText( entry->field( "dstPort" ) ) == dst;
}

// True when the subrule stands as one entry holding the length range whole: not expanded.
bool SimQosAclHelper::ipLenRangeSubruleExists( Nev::QosClassData const& classData,
                                               Nev::AclKey const& aclKey, Acl::UniqueId const&,
                                               std::uint32_t ruleNum, std::uint32_t subruleNum,
                                               std::uint16_t ipLenLow, std::uint16_t ipLenHigh,
                                               bool ipLenValid ) {
   subruleQuery( classData, aclKey, ruleNum, subruleNum, 0 );
   TcamEntry const* const entry = ipEntry( classData, aclKey, ruleNum, subruleNum );
   if( !entry ) return false;
   Range const len = ipLenValid ? Range{ ipLenLow, ipLenHigh } : fullRange;
   return rangeOfText( entry->field( "ipLen" ) ) == len;
}

// ---- The ACL as a whole

bool SimQosAclHelper::checkInstalled( Nev::QosClassData const& classData,
                                      Nev::AclKey const& aclKey ) {
   auto const acl = tcam_.acls().find( aclIdOf( classData, aclKey ) );
   if( acl == tcam_.acls().end() ) {
      reportAclMismatch( classData, aclKey, "is not in the TCAM" );
      return false;
   }
   if( !acl->second.committed ) {
      reportAclMismatch( classData, aclKey, "is not committed" );
      return false;
   }
   return true;
}

void SimQosAclHelper::checkPortsBound( Nev::QosClassData const& classData,
                                       Nev::AclKey const& aclKey ) {
   std::set< std::string > expected;
   for( auto it = classData.intfId().iter(); it; ++it )
      expected.insert( intfText( it.key() ) );
   auto const bound = aclPorts_.find( aclIdOf( classData, aclKey ) );
   std::set< std::string > const actual =
         bound == aclPorts_.end() ? std::set< std::string >() : bound->second;
   if( actual == expected ) return;
   auto const list = []( std::set< std::string > const& names ) {
      std::string out;
      for( std::string const& n : names )
         out += ( out.empty() ? "" : " " ) + n;
      return out.empty() ? std::string( "none" ) : out;
   };
   reportAclMismatch( classData, aclKey,
                      "is bound to " + list( actual ) + ", expected " + list( expected ) );
}

void SimQosAclHelper::verifyAclGeneral( Nev::QosClassData const& classData,
                                        Qos::ClassMapMatchOption, Nev::AclKey const& aclKey ) {
   if( checkInstalled( classData, aclKey ) ) checkPortsBound( classData, aclKey );
}

void SimQosAclHelper::verifyTcamData( Nev::QosClassData const& classData,
                                      Qos::ClassMapMatchOption matchOption,
                                      Nev::AclKey const& aclKey ) {
   compareWritten( classData, aclKey, aclIdOf( classData, aclKey ) );
   // The built-in classes keep their entries in an ACL of the class's own.
   if( matchOption == Qos::matchOptionBuiltIn ) {
      compareWritten( classData, aclKey, classKeyOf( classData ) + " built-in" );
   }
}

// Entries equal to one written are paired first, among those of the same rule and subrule
// numbers (an expanded subrule has several); the rest are paired in order and compared field by
// field, and what is left on either side is missing or should not be there.
void SimQosAclHelper::compareWritten( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                                      std::string const& aclId ) {
   auto const acl = tcam_.acls().find( aclId );
   std::vector< TcamEntry > const none;
   auto const& written = writtenEntries( aclId );
   auto const& actual = acl == tcam_.acls().end() ? none : acl->second.entries;
   using Numbers = std::pair< std::uint32_t, std::uint32_t >;
   struct Group {
      std::vector< TcamEntry const* > written;
      std::vector< TcamEntry const* > actual;
   };
   std::map< Numbers, Group > groups;
   for( TcamEntry const& e : written )
      groups[ { e.ruleNum, e.subruleNum } ].written.push_back( &e );
   for( TcamEntry const& e : actual )
      groups[ { e.ruleNum, e.subruleNum } ].actual.push_back( &e );
   auto const report = [ & ]( TcamEntry const* w, TcamEntry const* a ) {
      if( ipKind( w ? *w : *a ) ) {
         reportIpEntry( classData, aclKey, w, a );
      } else {
         reportOtherEntry( classData, aclKey, w, a );
      }
   };
   for( auto& [ numbers, group ] : groups ) {
      std::vector< TcamEntry const* > left;
      for( TcamEntry const* w : group.written ) {
         auto const same =
               std::find_if( group.actual.begin(), group.actual.end(),
                             [ & ]( TcamEntry const* a ) { return sameEntry( *w, *a ); } );
         if( same == group.actual.end() ) {
            left.push_back( w );
         } else {
            group.actual.erase( same );
         }
      }
      std::size_t const paired = std::min( left.size(), group.actual.size() );
      for( std::size_t i = 0; i < paired; ++i )
         report( left[ i ], group.actual[ i ] );
      for( std::size_t i = paired; i < left.size(); ++i )
         report( left[ i ], nullptr );
      for( std::size_t i = paired; i < group.actual.size(); ++i )
         report( nullptr, group.actual[ i ] );
   }
}

// In the words of the engine's findings about a subrule, and of the chip's about one field.
void SimQosAclHelper::reportIpEntry( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                                     TcamEntry const* written, TcamEntry const* actual ) {
   TcamEntry const& e = written ? *written : *actual;
   std::uint32_t const sequence = sequenceOf( aclKey, e.ruleId );
   if( !written || !actual ) {
      reportMismatch(
            Zub::format( written ? "ACL %s sequence %d rule %d subrule %d doesn't exist"
                                 : "ACL %s sequence %d rule %d subrule %d should not exist",
                         aclKey.aclName().charPtr(), static_cast< int >( sequence ),
                         static_cast< int >( e.ruleNum ), static_cast< int >( e.subruleNum ) )
                  .stdString() );
      return;
   }
   FieldCheck const at{ classData, aclKey, e.ruleNum, e.subruleNum, sequence };
   for( auto const& [ name, value ] : written->fields ) {
      std::string const* const stored = actual->field( name );
      if( stored && *stored == value ) continue;
      reportFieldMismatch( at, name, fieldValueText( name, stored ),
                           fieldValueText( name, &value ) );
   }
   for( auto const& [ name, value ] : actual->fields ) {
      if( written->field( name ) ) continue;
      reportFieldMismatch( at, name, fieldValueText( name, &value ), "absent" );
   }
}

// In the words of the checks of single rules of these kinds.
void SimQosAclHelper::reportOtherEntry( Nev::QosClassData const& classData,
                                        Nev::AclKey const& aclKey, TcamEntry const* written,
                                        TcamEntry const* actual ) {
   if( written ) {
      reportAclMismatch( classData, aclKey,
                         "has no " + written->kind + " entry" + fieldsText( *written ) );
      return;
   }
   reportAclMismatch( classData, aclKey,
                      "has an entry it was not given: " + actual->kind + fieldsText( *actual ) );
}

std::uint32_t SimQosAclHelper::sequenceOf( Nev::AclKey const& aclKey, std::uint64_t ruleId ) const {
   auto const type = mainAclConfig()->config( aclKey.aclType() );
   auto const list = type ? type->acl( aclKey.aclName() ) : nullptr;
   auto const rules = list ? list->currCfg() : nullptr;
   if( !rules ) return 0;
   for( auto it = rules->ruleBySequence().iter(); it; ++it ) {
      if( it.value().value() == ruleId ) return it.key();
   }
   return 0;
}

void SimQosAclHelper::verifyRulePorts( Nev::QosPolicyMapState const&,
                                       Nev::QosClassData const& classData, Qos::ClassMapMatchOption,
                                       Nev::AclKey const& aclKey, Acl::UniqueId const&,
                                       std::uint32_t ruleNum, std::uint32_t subruleNum,
                                       std::uint32_t sequence, Acl::Action ) {
   subruleQuery( classData, aclKey, ruleNum, subruleNum, sequence );
   checkPortsBound( classData, aclKey );
}

// ---- The fields of one IP entry

void SimQosAclHelper::verifyIpRuleGeneral( Nev::QosClassData const& classData,
                                           Nev::AclKey const& aclKey, Acl::UniqueId const&,
                                           std::uint32_t ruleNum, std::uint32_t subruleNum,
                                           std::uint32_t sequence ) {
   subruleQuery( classData, aclKey, ruleNum, subruleNum, sequence );
}

void SimQosAclHelper::verifyIpRuleAction( Nev::QosClassData const& classData,
                                          Nev::AclKey const& aclKey, Acl::UniqueId const&,
                                          std::uint32_t ruleNum, std::uint32_t subruleNum,
                                          std::uint32_t sequence, Acl::Action action ) {
   auto const at = subruleQuery( classData, aclKey, ruleNum, subruleNum, sequence );
   checkField( at, "action", textOf( action ) );
}

void SimQosAclHelper::verifyIpRuleIpProto( Nev::QosClassData const& classData,
                                           Nev::AclKey const& aclKey, Acl::UniqueId const&,
                                           std::uint32_t ruleNum, std::uint32_t subruleNum,
                                           std::uint32_t sequence, std::uint8_t expectedProto,
                                           bool ) {
   auto const at = subruleQuery( classData, aclKey, ruleNum, subruleNum, sequence );
   checkField( at, "proto", textOf( unsigned( expectedProto ) ) );
}

void SimQosAclHelper::verifyIpRuleSrcIp( Nev::QosClassData const& classData,
                                         Nev::AclKey const& aclKey, Acl::UniqueId const&,
                                         std::uint32_t ruleNum, std::uint32_t subruleNum,
                                         std::uint32_t sequence, std::uint32_t expectedAddr,
                                         std::uint32_t expectedMask, bool ) {
   auto const at = subruleQuery( classData, aclKey, ruleNum, subruleNum, sequence );
   checkField( at, "src", addressText( expectedAddr, expectedMask ) );
}

void SimQosAclHelper::verifyIpRuleDstIp( Nev::QosClassData const& classData,
                                         Nev::AclKey const& aclKey, Acl::UniqueId const&,
                                         std::uint32_t ruleNum, std::uint32_t subruleNum,
                                         std::uint32_t sequence, std::uint32_t expectedAddr,
                                         std::uint32_t expectedMask, bool ) {
   auto const at = subruleQuery( classData, aclKey, ruleNum, subruleNum, sequence );
   checkField( at, "dst", addressText( expectedAddr, expectedMask ) );
}

void SimQosAclHelper::verifyIpRuleSrcIp6( Nev::QosClassData const& classData,
                                          Nev::AclKey const& aclKey, Acl::UniqueId const&,
                                          std::uint32_t ruleNum, std::uint32_t subruleNum,
                                          std::uint32_t sequence,
                                          Mirel::Ip6AddrWithMask const& expected, bool ) {
   auto const at = subruleQuery( classData, aclKey, ruleNum, subruleNum, sequence );
   checkField( at, "src", textOf( expected ) );
}

void SimQosAclHelper::verifyIpRuleDstIp6( Nev::QosClassData const& classData,
                                          Nev::AclKey const& aclKey, Acl::UniqueId const&,
                                          std::uint32_t ruleNum, std::uint32_t subruleNum,
                                          std::uint32_t sequence,
                                          Mirel::Ip6AddrWithMask const& expected, bool ) {
   auto const at = subruleQuery( classData, aclKey, ruleNum, subruleNum, sequence );
   checkField( at, "dst", textOf( expected ) );
}

void SimQosAclHelper::verifyIpRuleDscp( Nev::QosClassData const& classData,
                                        Nev::AclKey const& aclKey, Acl::UniqueId const&,
                                        std::uint32_t ruleNum, std::uint32_t subruleNum,
                                        std::uint32_t sequence, std::uint8_t expectedDscp,
                                        bool valid ) {
   auto const at = subruleQuery( classData, aclKey, ruleNum, subruleNum, sequence );
   checkField( at, "dscp", valid ? textOf( unsigned( expectedDscp ) ) : "" );
}

// The chip keeps an IPv6 rule's traffic class and ECN in the fields of the IPv4 DSCP and ECN.
void SimQosAclHelper::verifyIpRuleTcIp6( Nev::QosClassData const& classData,
                                         Nev::AclKey const& aclKey, Acl::UniqueId const& aclId,
                                         std::uint32_t ruleNum, std::uint32_t subruleNum,
                                         std::uint32_t sequence, std::uint8_t expectedDscp,
                                         bool valid ) {
   verifyIpRuleDscp( classData, aclKey, aclId, ruleNum, subruleNum, sequence, expectedDscp, valid );
}

void SimQosAclHelper::verifyIpRuleEcn( Nev::QosClassData const& classData,
                                       Nev::AclKey const& aclKey, Acl::UniqueId const&,
                                       std::uint32_t ruleNum, std::uint32_t subruleNum,
                                       std::uint32_t sequence, std::uint8_t ecnData,
                                       std::uint8_t ecnMask ) {
   auto const at = subruleQuery( classData, aclKey, ruleNum, subruleNum, sequence );
   checkField( at, "ecn", textOf( unsigned( ecnData ) ) + "/" + hexText( ecnMask ) );
}

void SimQosAclHelper::verifyIpRuleEcnIp6( Nev::QosClassData const& classData,
                                          Nev::AclKey const& aclKey, Acl::UniqueId const& aclId,
                                          std::uint32_t ruleNum, std::uint32_t subruleNum,
                                          std::uint32_t sequence, std::uint8_t ecnData,
                                          std::uint8_t ecnMask ) {
   verifyIpRuleEcn( classData, aclKey, aclId, ruleNum, subruleNum, sequence, ecnData, ecnMask );
}

void SimQosAclHelper::verifyIpRuleFragments( Nev::QosClassData const& classData,
                                             Nev::AclKey const& aclKey, Acl::UniqueId const&,
                                             std::uint32_t ruleNum, std::uint32_t subruleNum,
                                             std::uint32_t sequence, bool matchHeadOnly,
                                             bool matchFragmentsOnly ) {
   auto const at = subruleQuery( classData, aclKey, ruleNum, subruleNum, sequence );
   checkField( at, "l4", matchHeadOnly ? "true" : "false", "false" );
   checkField( at, "fragments", matchFragmentsOnly ? "non-first" : "" );
}

void SimQosAclHelper::verifyIpRuleTcpFlags( Nev::QosClassData const& classData,
                                            Nev::AclKey const& aclKey, Acl::UniqueId const&,
                                            std::uint32_t ruleNum, std::uint32_t subruleNum,
                                            std::uint32_t sequence, std::uint8_t expectedTcpFlags,
                                            bool ) {
   auto const at = subruleQuery( classData, aclKey, ruleNum, subruleNum, sequence );
   checkField( at, "tcpFlags", hexText( expectedTcpFlags ), hexText( 0 ) );
}

void SimQosAclHelper::verifyIpRuleIcmp( Nev::QosClassData const& classData,
                                        Nev::AclKey const& aclKey, Acl::UniqueId const&,
                                        std::uint32_t ruleNum, std::uint32_t subruleNum,
                                        std::uint32_t sequence, std::uint8_t expectedType,
                                        std::uint8_t expectedCode, bool typeValid,
                                        bool codeValid ) {
   auto const at = subruleQuery( classData, aclKey, ruleNum, subruleNum, sequence );
   checkField( at, "icmpType", typeValid ? textOf( unsigned( expectedType ) ) : "" );
   checkField( at, "icmpCode", codeValid ? textOf( unsigned( expectedCode ) ) : "" );
}

void SimQosAclHelper::verifyIpRuleSrcPort( Nev::QosClassData const& classData,
                                           Nev::AclKey const& aclKey, Acl::UniqueId const&,
                                           std::uint32_t ruleNum, std::uint32_t subruleNum,
                                           std::uint32_t sequence, std::uint16_t expectedLow,
                                           std::uint16_t expectedHigh, bool valid ) {
   auto const at = subruleQuery( classData, aclKey, ruleNum, subruleNum, sequence );
   checkPorts( at, "srcPort", expectedLow, expectedHigh, valid );
}

void SimQosAclHelper::verifyIpRuleDstPort( Nev::QosClassData const& classData,
                                           Nev::AclKey const& aclKey, Acl::UniqueId const&,
                                           std::uint32_t ruleNum, std::uint32_t subruleNum,
                                           std::uint32_t sequence, std::uint16_t expectedLow,
                                           std::uint16_t expectedHigh, bool valid ) {
   auto const at = subruleQuery( classData, aclKey, ruleNum, subruleNum, sequence );
   checkPorts( at, "dstPort", expectedLow, expectedHigh, valid );
}

void SimQosAclHelper::verifyIpRuleVlanMatch( Nev::QosClassData const& classData,
                                             Nev::AclKey const& aclKey, Acl::UniqueId const&,
                                             std::uint32_t ruleNum, std::uint32_t subruleNum,
                                             std::uint16_t expectedVlanId,
                                             std::uint16_t expectedVlanIdMask, bool valid ) {
   auto const at = subruleQuery( classData, aclKey, ruleNum, subruleNum, 0 );
   checkField( at, "vlan",
               valid ? textOf( expectedVlanId ) + "/" + hexText( expectedVlanIdMask ) : "" );
}

// ---- Rules of the other kinds

void SimQosAclHelper::checkRuleEntry( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                                      TcamEntry const& expected ) {
   auto const acl = tcam_.acls().find( aclIdOf( classData, aclKey ) );
   if( acl != tcam_.acls().end() ) {
      for( TcamEntry const& e : acl->second.entries ) {
         if( e.kind == expected.kind && e.fields == expected.fields ) return;
      }
   }
   std::ostringstream what;
   what << "has no " << expected.kind << " entry";
   for( auto const& [ name, value ] : expected.fields )
      what << " " << name << "=" << value;
   reportAclMismatch( classData, aclKey, what.str() );
}

void SimQosAclHelper::verifyDefaultRule( Nev::QosPolicyMapState const&,
                                         Nev::QosClassData const& classData,
                                         Qos::ClassMapMatchOption, Nev::AclKey const& aclKey ) {
   checkRuleEntry( classData, aclKey, defaultEntry() );
}

void SimQosAclHelper::verifyL2ParamsRule( Nev::QosPolicyMapState const&,
                                          Nev::QosClassData const& classData,
                                          Qos::ClassMapMatchOption, Nev::AclKey const& aclKey ) {
   checkRuleEntry( classData, aclKey, l2EntryOf( classData, 0 ) );
}

void SimQosAclHelper::verifyMplsTrafficClassRule( Nev::QosPolicyMapState const&,
                                                  Nev::QosClassData const& classData,
                                                  Qos::ClassMapMatchOption,
                                                  Nev::AclKey const& aclKey ) {
   // A class map with no traffic class gets its list without a rule: there is nothing to hold.
   auto const ranges = classData.mplsTrafficClassVal();
   if( !ranges || !ranges->mplsTrafficClassColl().iter() ) {
      auto const acl = tcam_.acls().find( aclIdOf( classData, aclKey ) );
      if( acl == tcam_.acls().end() ) return;
      for( TcamEntry const& e : acl->second.entries ) {
         if( e.kind == "mpls" ) {
            reportAclMismatch( classData, aclKey, "holds an mpls entry, but its class has none" );
            return;
         }
      }
      return;
   }
   checkRuleEntry( classData, aclKey, mplsEntryOf( classData, 0 ) );
}

void SimQosAclHelper::verifyDscpEcnRule( Nev::QosPolicyMapState const&,
                                         Nev::QosClassData const& classData,
                                         Qos::ClassMapMatchOption, Nev::AclKey const& aclKey ) {
   checkRuleEntry( classData, aclKey, dscpEcnEntryOf( classData, 0 ) );
}

void SimQosAclHelper::verifyMacAclRule( Nev::QosPolicyMapState const&,
                                        Nev::QosClassData const& classData,
                                        Qos::ClassMapMatchOption, Nev::AclKey const& aclKey ) {
   checkRuleEntry( classData, aclKey, macEntryOf( classData, 0 ) );
}

// ---- Policers and counters

// The engine's belief is the policer data's createdInHw: a policer the chip refused, which the
// engine went on without, is expected absent.
void SimQosAclHelper::verifyPolicer( Nev::QosClassData const& classData ) {
   auto const policer = classData.policerData();
   if( !policer ) return;
   bool const held = policers_.contains( classKeyOf( classData ) );
   if( held == policer->createdInHw() ) return;
   reportMismatch(
         "policer of class " + classKeyOf( classData ) +
         ( held ? " is in hardware, but the engine went on without it" : " is not in hardware" ) );
}

// The engine learns nothing of a counter the chip refused: the chip logged it, and expects it
// absent.
void SimQosAclHelper::verifyCounter( Nev::QosClassData const& classData ) {
   std::string const key = classKeyOf( classData );
   if( counters_.contains( key ) || refusedCounters_.contains( key ) ) return;
   reportMismatch( "counter of class " + key + " is not in hardware" );
}

// ---- The chip's own checks

void SimQosAclHelper::verifyChip() {
   for( auto const& [ id, acl ] : tcam_.acls() ) {
      auto const record = aclRecords_.find( id );
      if( record != aclRecords_.end() && owned( record->second ) ) continue;
      std::ostringstream text;
      text << "ACL " << id << " is in the TCAM, but no class of a policy map owns it";
      reportMismatch( text.str() );
   }
}

bool SimQosAclHelper::owned( AclRecord const& record ) const {
   Nev::QosClassData const* const classData = record.classData.ptr();
   std::uint32_t held = 0;
   for( auto const& [ id, r ] : aclRecords_ )
      held += r.classData.ptr() == classData ? 1 : 0;
   if( classData->references() <= held ) return false;
   if( !record.aclKey ) return !!classData->matchData( Qos::matchOptionBuiltIn );
   for( auto it = classData->matchData().iter(); it; ++it ) {
      if( it.value()->aclData( *record.aclKey ) ) return true;
   }
   return false;
}

// ---- Damage

// The ids of the installed ACLs of that name, in every class that holds one.
std::vector< std::string > SimQosAclHelper::aclIdsNamed( std::string const& aclName ) const {
   std::vector< std::string > ids;
   for( auto const& [ id, acl ] : tcam_.acls() ) {
      // An id is "<class> <name>(<family>)".
      auto const space = id.rfind( ' ' );
      auto const paren = id.rfind( '(' );
      if( space == std::string::npos || paren == std::string::npos || paren < space ) continue;
      if( id.substr( space + 1, paren - space - 1 ) == aclName ) ids.push_back( id );
   }
   return ids;
}

std::vector< TcamEntry > const& SimQosAclHelper::writtenEntries( std::string const& aclId ) const {
   static std::vector< TcamEntry > const none;
   auto const record = aclRecords_.find( aclId );
   if( record == aclRecords_.end() ) return none;
   if( record->second.written ) return *record->second.written;
   auto const acl = tcam_.acls().find( aclId );
   return acl == tcam_.acls().end() ? none : acl->second.entries;
}

void SimQosAclHelper::writtenKeptApart( std::string const& aclId ) {
   auto const record = aclRecords_.find( aclId );
   if( record == aclRecords_.end() || record->second.written ) return;
   record->second.written = writtenEntries( aclId );
}

std::size_t SimQosAclHelper::corruptEntry( std::string const& aclName, std::uint32_t ruleNum,
                                           std::uint32_t subruleNum, std::string const& field,
                                           std::string const& value ) {
   std::size_t damaged = 0;
   for( std::string const& id : aclIdsNamed( aclName ) ) {
      writtenKeptApart( id );
      damaged += tcam_.corrupt( id, ruleNum, subruleNum, field, value ) ? 1 : 0;
   }
   return damaged;
}

std::size_t SimQosAclHelper::plantEntry( std::string const& aclName, TcamEntry const& entry ) {
   std::size_t planted = 0;
   for( std::string const& id : aclIdsNamed( aclName ) ) {
      writtenKeptApart( id );
      planted += tcam_.plant( id, entry ) ? 1 : 0;
   }
   return planted;
}

}  // namespace Sim
