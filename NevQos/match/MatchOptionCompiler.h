// The compiles of the class matches that need no IP access list: VLAN, COS, VLAN and COS, DSCP
// and ECN, MPLS traffic class, a MAC access group and a built-in class. Each turns its match
// into the rules of a generated ACL. The helper's rule operations take no values of their own:
// the compiler writes a rule's values into the class's data just before the call, and the helper
// reads them during it.
//
// Both roads share the lists and the rule loops here. The immediate compiles
// (createClassMatch...Acl, and QosClassMatchMplsTrafficClassSm) hear each answer at once; the
// deferred compiler (QosAclSm::createAclRules) works on the copies that updateClassData made and
// needs the helper to take every rule, since the outcome arrives with the asynchronous result.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "NevQos/platform/entities/AclRuleConfig.h"
#include "NevQos/platform/entities/ClassMapMatchValues.h"
#include "NevQos/platform/entities/ClassMapStatus.h"
#include "NevQos/platform/nev/AclData.h"
#include "NevQos/platform/nev/AclKey.h"
#include "NevQos/platform/zub/Ptr.h"
#include "NevQos/types/AclCreateError.h"
#include "NevQos/types/L2ParamsInfo.h"
#include "NevQos/types/QosClassData.h"

namespace Nev {

class QosAclSm;
class QosPolicyMapSm;

// What every helper call for one generated ACL shares.
struct MatchOptionTarget {
   QosAclSm& qosAclSm;
   // Its state and key, and for a MAC match its name and access-group counts.
   QosPolicyMapSm const& pmapSm;
   Zub::Ptr< QosClassData > const& classData;
   AclKey const& aclKey;
   Qos::ClassMapMatchOption matchOption;
   // The ACL's record, for updatePolicyMapErrorState; the deferred road needs none.
   Zub::Ptr< AclData > aclData;
   // The number of the ACL's first rule.
   std::uint32_t ruleNum = 0;
};

// How a compile takes the helper's answer to one rule.
enum class OptionRuleAnswers {
   // updatePolicyMapErrorState takes each answer; one that it counts as a failure ends the ACL.
   reported,
   // The deferred road: the helper must take every rule.
   mustSucceed,
};

// How a rule loop ended: the last answer, and whether that answer ended the ACL as a failure.
struct OptionRuleLoop {
   AclCreateError last = aclCreateErrorNone;
   bool failed = false;
};

// ---- Lists of rules

// The VLAN and COS tuples of the class's l2ParamsValue, one per rule: VLAN blocks for options
// 3 and 9, COS blocks for 8 and 9, and for 9 their product with the VLAN changing fastest. A
// COS of 8 (the invalid COS) with mask 0 means no COS condition; a VLAN of 4095 with mask 0 no
// VLAN condition.
void populateL2ParamsInfoVector( std::vector< L2ParamsInfo >& out, QosClassData const& classData,
                                 Qos::ClassMapMatchOption matchOption );

// Appends the TOS byte value and mask of a DSCP value and mask under an ECN condition: the
// DSCP takes the six high bits, the ECN condition the two low ones. T is an 8-bit type, so the
// shift drops what does not fit.
template< class T >
void effectiveTosIdMask( Acl::Ecn ecn, T tosId, T tosMask, std::vector< std::pair< T, T > >& out );

// The (TOS value, TOS mask) of each rule of a DSCP/ECN match: its DSCP ranges, or its one DSCP,
// as blocks, each split by the ECN condition. A match without a DSCP matches any.
std::vector< std::pair< std::uint8_t, std::uint8_t > > dscpEcnTosPairs(
      Qos::ClassMapMatchDscpEcn const& value );

// The (value, mask) of each rule of an MPLS traffic-class match.
std::vector< std::pair< std::uint8_t, std::uint8_t > > mplsTrafficClassPairs(
      Qos::ClassMapMatchMplsTrafficClass const& value );

// ---- Working copies in the class data, made fresh for each compile

void copyDscpEcnValue( Qos::ClassMapMatch const& classMatch, QosClassData& classData );
// Also makes the tuple that carries each rule's value and mask.
void copyMplsTrafficClassValue( Qos::ClassMapMatch const& classMatch, QosClassData& classData );
void copyMacValue( Qos::ClassMapMatch const& classMatch, QosClassData& classData );

// ---- Rule loops, over the working copies, with ruleNum counting from target.ruleNum

OptionRuleLoop createL2ParamsRules( MatchOptionTarget const& target, OptionRuleAnswers answers );
OptionRuleLoop createDscpEcnRules( MatchOptionTarget const& target, OptionRuleAnswers answers );
OptionRuleLoop createMplsTrafficClassRules( MatchOptionTarget const& target,
                                            OptionRuleAnswers answers );
// The rules of the MAC list that the match names, in sequence order; a rule the chip does not
// support is left out without a number.
OptionRuleLoop createMacAclRules( MatchOptionTarget const& target, OptionRuleAnswers answers );
OptionRuleLoop createBuiltInClassMatchRules( MatchOptionTarget const& target,
                                             OptionRuleAnswers answers );

// ---- The immediate compiles; each returns true when the ACL stands

bool createClassMatchL2ParamsAcl( MatchOptionTarget const& target,
                                  Zub::Ptr< Qos::ClassMapMatch const > const& classMatch );
bool createClassMatchDscpEcnAcl( MatchOptionTarget const& target,
                                 Zub::Ptr< Qos::ClassMapMatch const > const& classMatch );
bool createClassMatchMplsTrafficClassAcl( MatchOptionTarget const& target,
                                          Zub::Ptr< Qos::ClassMapMatch const > const& classMatch );
// Whether a MAC list of the target's map is left unprogrammed: the map has an IPv6 access group and
// the chip cannot hold MAC lists beside IPv6 ones.
bool macRulesIgnoredBesideIpv6( MatchOptionTarget const& target );
// Whether the chip takes a rule of the target's MAC list (isSupportedMacAclRule): a list it takes
// none of is committed with no rule, and has none to verify.
bool macListTakesARule( MatchOptionTarget const& target );
// Reports a refused rule only by its result: dirty stays as it was.
bool createClassMatchMacAcl( MatchOptionTarget const& target,
                             Zub::Ptr< Qos::ClassMapMatch const > const& classMatch );
bool createBuiltInClassMatchAcl( MatchOptionTarget const& target,
                                 Zub::Ptr< Qos::ClassMapMatch const > const& classMatch );

template< class T >
void effectiveTosIdMask( Acl::Ecn ecn, T tosId, T tosMask, std::vector< std::pair< T, T > >& out ) {
   auto const v = static_cast< T >( tosId << 2 );
   auto const m = static_cast< T >( tosMask << 2 );
   // The ECN bits go below the DSCP's, which the shift left clear.
   auto add = [ & ]( unsigned ecnData, unsigned ecnMask ) {
      out.emplace_back( static_cast< T >( v | ecnData ), static_cast< T >( m | ecnMask ) );
   };
   switch( ecn ) {
      case Acl::ecnEctCe:
         add( 1, 3 );
         add( 2, 2 );
         break;
      case Acl::ecnNonEct:
         add( 0, 3 );
         break;
      case Acl::ecnCe:
         add( 3, 3 );
         break;
      case Acl::ecnEct:
         // The opposite order to the split of an IP rule's condition. Drivers see the entries
         // in this order, so it stays.
         add( 2, 3 );
         add( 1, 3 );
         break;
      default:
         add( 0, 0 );
         break;
   }
}

}  // namespace Nev
