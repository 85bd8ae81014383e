// The deferred compiler of QosAclSm: on the asynchronous road a queued request refreshes its
// class's data, and the ACL's rules are sent to the helper in one pass. The helper must accept
// every call; the real outcome of the operation comes back through the asynchronous result, and
// ranges are never expanded here.
#include "NevQos/log/QosLogHandles.h"
#include "NevQos/log/TraceHandles.h"
#include "NevQos/match/IpAclCompiler.h"
#include "NevQos/match/QosPolicyMapClassData.h"
#include "NevQos/policy/QosAclSm.h"
#include "NevQos/policy/QosPolicyMapSm.h"
#include "nev/AclData.h"
#include "zub/Assert.h"
#include "zub/Log.h"

namespace Nev {

namespace {

Zub::Ptr< AclData > aclDataOf( QosPolicyMapClassData const& policyData ) {
   auto const matchData = policyData.curClassData()->matchData( policyData.matchOption() );
   return matchData ? matchData->aclData( policyData.aclKey() ) : nullptr;
}

// The helper calls of one rule of the request's list.
IpRuleTarget targetOf( QosAclSm const& sm, QosPolicyMapClassData const& policyData,
                       Acl::UniqueId const& aclId, std::uint32_t ruleNum ) {
   return IpRuleTarget{ *sm.qosHelper(),
                        *policyData.pmapSm()->pmapState(),
                        *policyData.curClassData(),
                        policyData.aclKey(),
                        aclId,
                        ruleNum };
}

// Only a helper with asynchronous operations takes the deferred compile, and only for a list
// whose record stands.
void assertDeferredRoad( QosAclSm const& sm, QosPolicyMapClassData const& policyData ) {
   ZUB_ASSERT_TEXT( aclDataOf( policyData ), "aclData" );
   ZUB_ASSERT_TEXT( sm.qosHelper()->asyncTcamOperationsSupported(),
                    "qosHelper()->asyncTcamOperationsSupported()" );
}

// The walk over a list's rules calls back into the deferred variants with the request's data.
struct DeferredRuleCompiler {
   QosAclSm& sm;
   Zub::Ptr< QosPolicyMapClassData > const& policyData;
   AclCreateError createIpAclRule( Acl::IpRuleConfig const& rule, Acl::UniqueId const& id,
                                   std::uint32_t ruleNum ) {
      return sm.createIpAclRule( policyData, rule, id, ruleNum );
   }
   AclCreateError createIp6AclRule( Acl::Ip6RuleConfig const& rule, Acl::UniqueId const& id,
                                    std::uint32_t ruleNum ) {
      return sm.createIp6AclRule( policyData, rule, id, ruleNum );
   }
};

}  // namespace

bool QosAclSm::updateClassData( Zub::Ptr< QosPolicyMapClassData > const& policyData ) {
   Zub::Ptr< QosClassData > const classData = policyData->curClassData();
   Zub::Ptr< QosClassMatchData > const matchData =
         classData->matchData( policyData->matchOption() );
   if( !matchData ) return true;
   Zub::Ptr< AclData > const aclData = matchData->aclData( policyData->aclKey() );
   ZUB_ASSERT( aclData && "no acl data" );
   auto number =
         static_cast< std::int32_t >( ( classData->priority() << 8 ) | matchData->priority() );
   if( !aclData->dirty() && aclData->installed() ) return true;
   if( classData->classDefault() ) {
      if( aclData->aclNumber() == -1 ) aclData->aclNumberIs( number );
      return false;
   }
   QosPolicyMapSm const& pmapSm = *policyData->pmapSm();
   switch( policyData->matchOption() ) {
      case Qos::matchOptionIpAcl:
      case Qos::matchOptionIpv6Acl: {
         aclData->fragMapDelAll();
         auto const& aclConfig = policyData->aclConfig();
         if( !aclConfig || !aclConfig->currCfg() ) {
            aclData->dirtyIs( false );
            return true;
         }
         if( policyData->aclKey().aclType() == Acl::ipv6() && pmapSm.macAccessRuleCount() != 0 &&
             !qosHelper()->isMacAclRuleSupportedPlatform() ) {
            // Logged, and the list is compiled all the same.
            Zub::log( QOS_MAC_ACL_RULE_IPV6_MISMATCH, pmapSm.pmapName(),
                      classData->key().cmapName() );
         }
         number = static_cast< std::int32_t >( ( classData->priority() << 23 ) |
                                               ( matchData->priority() << 20 ) );
         break;
      }
      default:
         // The working copies of the other match kinds' values are refreshed here.
         break;
   }
   if( aclData->aclNumber() == -1 ) aclData->aclNumberIs( number );
   return false;
}

void QosAclSm::createAclRules( Zub::Ptr< QosPolicyMapClassData > const& policyData ) {
   Zub::Ptr< QosClassData > const classData = policyData->curClassData();
   QosPolicyMapSm const& pmapSm = *policyData->pmapSm();
   if( classData->classDefault() ) {
      ZUB_TRACE( nevQosTrace, 5,
                 "printing matchoption for class default " << policyData->matchOption() );
      AclCreateError const aclError = qosHelper()->createDefaultRule(
            *pmapSm.pmapState(), *classData, policyData->matchOption(), policyData->aclKey() );
      ZUB_ASSERT_TEXT( aclError == aclCreateErrorNone, "aclError == aclCreateErrorNone()" );
      return;
   }
   switch( policyData->matchOption() ) {
      case Qos::matchOptionIpAcl:
      case Qos::matchOptionIpv6Acl:
         break;
      default:
         // The deferred compiles of the other match kinds plug in here.
         return;
   }
   auto const rules = policyData->aclConfig()->currCfg();
   Acl::AclType const aclType = policyData->aclKey().aclType();
   DeferredRuleCompiler compiler{ *this, policyData };
   AclRuleWalk const walk =
         walkAclRules( *rules, aclType, qosHelper()->supportedTcpFlags().value(), compiler );
   reportAclRuleWalk( walk, aclType, policyData->aclKey().aclName(), classData->key().cmapName() );
}

AclCreateError QosAclSm::createIpAclRule( Zub::Ptr< QosPolicyMapClassData > const& policyData,
                                          Acl::IpRuleConfig const& rule, Acl::UniqueId const& aclId,
                                          std::uint32_t ruleNum ) {
   assertDeferredRoad( *this, *policyData );
   if( unsupportedRulePresent( policyData, rule ) ) return aclCreateErrorRuleIgnored;
   std::uint32_t subruleNum = 0;
   bool l4Rule = false;
   planIpSubrules( targetOf( *this, *policyData, aclId, ruleNum ), rule, rule.filter, Acl::ip(),
                   IpRuleAnswers::mustSucceed, subruleNum, l4Rule );
   AclCreateError const error =
         checkIpFragRule( policyData, rule, aclId, ruleNum, subruleNum, l4Rule );
   ZUB_ASSERT_TEXT( error == aclCreateErrorNone, "error == aclCreateErrorNone()" );
   return error;
}

AclCreateError QosAclSm::createIp6AclRule( Zub::Ptr< QosPolicyMapClassData > const& policyData,
                                           Acl::Ip6RuleConfig const& rule,
                                           Acl::UniqueId const& aclId, std::uint32_t ruleNum ) {
   assertDeferredRoad( *this, *policyData );
   if( unsupportedRulePresent( policyData, rule ) ) return aclCreateErrorRuleIgnored;
   std::uint32_t subruleNum = 0;
   bool l4Rule = false;
   return planIpSubrules( targetOf( *this, *policyData, aclId, ruleNum ), rule, rule.filter,
                          Acl::ipv6(), IpRuleAnswers::mustSucceed, subruleNum, l4Rule );
}

AclCreateError QosAclSm::checkIpFragRule( Zub::Ptr< QosPolicyMapClassData > const& policyData,
                                          Acl::IpRuleConfig const& rule, Acl::UniqueId const& aclId,
                                          std::uint32_t ruleNum, std::uint32_t subRuleNum,
                                          bool l4Rule ) {
   return createIpFragEntries( targetOf( *this, *policyData, aclId, ruleNum ), rule,
                               *aclDataOf( *policyData ), qosHelper()->qosEcnSupport(), subRuleNum,
                               l4Rule );
}

bool QosAclSm::unsupportedRulePresent( Zub::Ptr< QosPolicyMapClassData > const& policyData,
                                       Acl::IpRuleConfig const& rule ) const {
   QosPolicyMapSm const& pmapSm = *policyData->pmapSm();
   return unsupportedIpRule( *pmapSm.pmapState(), pmapSm.pmapType(), rule.filter );
}

bool QosAclSm::unsupportedRulePresent( Zub::Ptr< QosPolicyMapClassData > const& policyData,
                                       Acl::Ip6RuleConfig const& rule ) const {
   QosPolicyMapSm const& pmapSm = *policyData->pmapSm();
   return unsupportedIpRule( *pmapSm.pmapState(), pmapSm.pmapType(), rule.filter );
}

}  // namespace Nev
