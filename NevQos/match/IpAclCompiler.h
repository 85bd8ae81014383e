// The loops that turn one IP rule into helper calls, shared by the two compilers: the immediate
// one in QosClassMatchAclSm, which may expand ranges into masks when the chip asks, and the
// deferred one in QosAclSm, where every call must be accepted and the real outcome arrives later.
#pragma once

#include <cstdint>

#include "NevQos/platform/entities/AclConfig.h"
#include "NevQos/platform/entities/AclRuleConfig.h"
#include "NevQos/platform/nev/AclData.h"
#include "NevQos/platform/nev/AclIpRuleCreateData.h"
#include "NevQos/platform/nev/AclKey.h"
#include "NevQos/platform/zub/String.h"
#include "NevQos/types/AclCreateError.h"
#include "NevQos/types/QosClassData.h"
#include "NevQos/types/QosPolicyMapState.h"

namespace NevHelper {
class QosAclHelper;
}  // namespace NevHelper

namespace Nev {

// What every helper call made for one rule shares.
struct IpRuleTarget {
   NevHelper::QosAclHelper& helper;
   QosPolicyMapState const& pmapState;
   QosClassData const& classData;
   AclKey const& aclKey;
   Acl::UniqueId aclId;
   std::uint32_t ruleNum;
};

// How a compiler takes a non-zero answer of the helper.
enum class IpRuleAnswers {
   retryExpanded,  // a retry code replaces the subrule by masks; any other ends the rule
   mustSucceed,    // every call must answer 0: the outcome comes through the asynchronous result
};

// The five nested loops over ECN entries, source ranges, destination ranges, TCP flag variants
// and IP length ranges, one createIpAclSubrule per innermost pass; subruleNum counts on from its
// value. Returns 0, or the answer that ended the rule.
AclCreateError createIpSubrules( IpRuleTarget const& target, Acl::RuleConfig const& rule,
                                 Acl::AclType aclType, AclIpRuleCreateData_ const& data,
                                 IpRuleAnswers answers, std::uint32_t& subruleNum );

// Plans `rule` with the helper's capabilities and makes its subrules as above; `l4Rule` tells
// the caller whether the rule's fragments need an entry.
AclCreateError planIpSubrules( IpRuleTarget const& target, Acl::RuleConfig const& rule,
                               Acl::IpFilterBase const& filter, Acl::AclType aclType,
                               IpRuleAnswers answers, std::uint32_t& subruleNum, bool& l4Rule );

// The entries that let non-first fragments of a layer-4 rule's layer-3 match through, at most one
// set per layer-3 match, recorded in aclData.fragMap; and an explicit fragments-only rule, which
// counts as that entry for the maps that exist.
AclCreateError createIpFragEntries( IpRuleTarget const& target, Acl::IpRuleConfig const& rule,
                                    AclData& aclData, bool qosEcnSupport, std::uint32_t subRuleNum,
                                    bool l4Rule );

// The outcome of a walk over the rules of one list.
struct AclRuleWalk {
   AclCreateError result = aclCreateErrorNone;
   bool tcpFlagsDropped = false;  // a rule lost flags the chip cannot match
   bool ruleIgnored = false;      // a rule was left out (a VLAN rule on a VLAN interface)
   std::uint32_t ruleNum = 0;     // the number of rules compiled
};

// Walks the rules in sequence order with ruleNum from 0, narrows each rule's TCP flags to what
// the chip supports, and hands a copy to `compiler.createIpAclRule` or
// `compiler.createIp6AclRule` by the list's type. Stops at the first answer that is neither 0
// nor "rule ignored".
template< class Compiler >
AclRuleWalk walkAclRules( Acl::AclRuleSet const& rules, Acl::AclType aclType,
                          std::uint32_t supportedTcpFlags, Compiler& compiler );

// The trace and logs a walk owes: TCP flags dropped, VLAN rules ignored.
void reportAclRuleWalk( AclRuleWalk const& walk, Acl::AclType aclType, Zub::Name const& aclName,
                        Zub::Name const& cmapName );

// True when the rule matches on a VLAN in a QoS policy map applied to a VLAN interface: the chip
// cannot match a VLAN tag there, so the rule is left out.
bool unsupportedIpRule( QosPolicyMapState const& pmapState, Qos::MapType pmapType,
                        Acl::IpFilterBase const& filter );

namespace detail {

// Keeps the flags the chip can match; true when some were dropped.
bool narrowTcpFlags( Acl::IpFilterBase& filter, std::uint32_t supportedTcpFlags );
[[noreturn]] void unknownAclType();

}  // namespace detail

template< class Compiler >
AclRuleWalk walkAclRules( Acl::AclRuleSet const& rules, Acl::AclType aclType,
                          std::uint32_t supportedTcpFlags, Compiler& compiler ) {
   AclRuleWalk walk;
   for( auto it = rules.ruleBySequence().iter(); it; ++it ) {
      Acl::UniqueId const id = it.value();
      AclCreateError result;
      if( aclType == Acl::ip() ) {
         Acl::IpRuleConfig rule = rules.ipRuleById( id );
         walk.tcpFlagsDropped |= detail::narrowTcpFlags( rule.filter, supportedTcpFlags );
         result = compiler.createIpAclRule( rule, id, walk.ruleNum );
      } else if( aclType == Acl::ipv6() ) {
         Acl::Ip6RuleConfig rule = rules.ip6RuleById( id );
         walk.tcpFlagsDropped |= detail::narrowTcpFlags( rule.filter, supportedTcpFlags );
         result = compiler.createIp6AclRule( rule, id, walk.ruleNum );
      } else {
         detail::unknownAclType();
      }
      ++walk.ruleNum;
      walk.result = result;
      if( result == aclCreateErrorRuleIgnored ) {
         walk.ruleIgnored = true;
         continue;
      }
      if( result != aclCreateErrorNone ) break;
   }
   return walk;
}

}  // namespace Nev
