// The deferred compiler of QosAclSm: on the asynchronous road a queued request refreshes its
// class's data, and the ACL's rules are sent to the helper in one pass. The helper must accept
// every call; the real outcome of the operation comes back through the asynchronous result, and
// ranges are never expanded here.
#include "NevQos/log/QosLogHandles.h"
#include "NevQos/log/TraceHandles.h"
#include "NevQos/match/IpAclCompiler.h"
#include "NevQos/match/MatchOptionCompiler.h"
#include "NevQos/platform/nev/AclData.h"
#include "NevQos/platform/zub/Assert.h"
#include "NevQos/platform/zub/Log.h"
#include "NevQos/policy/QosAclSm.h"
#include "NevQos/policy/QosPolicyMapClassData.h"
#include "NevQos/policy/QosPolicyMapSm.h"

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

// The match whose values a refresh copies; every match but an access group's carries one.
Qos::ClassMapMatch const& classMatchOf( QosPolicyMapClassData const& policyData ) {
   auto const& classMatch = policyData.curClassMatch();
   ZUB_ASSERT( classMatch );
   return *classMatch;
}

// The deferred forms of the matches without an IP access list, on the copies that
// updateClassData made.
void createMatchOptionRules( QosAclSm& sm, QosPolicyMapClassData const& policyData ) {
   MatchOptionTarget const target{ sm,
                                   *policyData.pmapSm(),
                                   policyData.curClassData(),
                                   policyData.aclKey(),
                                   policyData.matchOption(),
                                   nullptr };
   OptionRuleAnswers const answers = OptionRuleAnswers::mustSucceed;
   switch( policyData.matchOption() ) {
      case Qos::matchOptionVlan:
      case Qos::matchOptionCos:
      case Qos::matchOptionVlanCos:
         createL2ParamsRules( target, answers );
         break;
      case Qos::matchOptionDscpEcn:
         createDscpEcnRules( target, answers );
         break;
      case Qos::matchOptionMplsTrafficClass:
         createMplsTrafficClassRules( target, answers );
         break;
      case Qos::matchOptionMac:
         createMacAclRules( target, answers );
         break;
      case Qos::matchOptionBuiltIn:
         createBuiltInClassMatchRules( target, answers );
         break;
      default:
         break;
   }
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
      case Qos::matchOptionVlan:
      case Qos::matchOptionCos:
      case Qos::matchOptionVlanCos:
         createClassDataL2ParamsValue( policyData->curClassMatch(), classData );
         break;
      case Qos::matchOptionDscpEcn:
         copyDscpEcnValue( classMatchOf( *policyData ), *classData );
         break;
      case Qos::matchOptionMplsTrafficClass:
         copyMplsTrafficClassValue( classMatchOf( *policyData ), *classData );
         break;
      case Qos::matchOptionMac:
         copyMacValue( classMatchOf( *policyData ), *classData );
         if( pmapSm.ipv6AccessGroupCount() != 0 && !qosHelper()->isMacAclRuleSupportedPlatform() ) {
            // Logged, and the list is compiled all the same.
            Zub::log( QOS_MAC_ACL_RULE_IPV6_MISMATCH, pmapSm.pmapName(),
                      classData->key().cmapName() );
         }
         break;
      case Qos::matchOptionBuiltIn:
         classData->builtInClassMatchValueIs( classMatchOf( *policyData ).builtInValue() );
         break;
      default:
         break;
   }
   if( aclData->aclNumber() == -1 ) aclData->aclNumberIs( number );
   return false;
}

void QosAclSm::createClassDataL2ParamsValue( Zub::Ptr< Qos::ClassMapMatch const > const& cMatch,
                                             Zub::Ptr< QosClassData > const& classData ) {
   ZUB_ASSERT( cMatch );
   auto const l2 = Zub::make< ClassMapMatchL2Params >( Zub::String( " " ) );
   classData->l2ParamsValueIs( l2 );
   if( auto const vlan = cMatch->vlanValue() ) {
      auto const copy = Zub::make< Qos::ClassMapMatchVlan >( vlan->vlan(), vlan->vlanMask() );
      copy->maskValidIs( vlan->maskValid() );
      for( auto it = vlan->vlanColl().iter(); it; ++it )
         copy->vlanCollIs( it.key(), it.value() );
      l2->vlanValueIs( copy );
   }
   if( auto const cos = cMatch->cosValue() ) {
      auto const copy = Zub::make< ClassMapMatchCos >( Zub::String( " " ) );
      for( auto it = cos->cosColl().iter(); it; ++it )
         copy->cosCollIs( it.key(), it.value() );
      l2->cosValueIs( copy );
   }
}

void QosAclSm::populateClassDataL2ParamsValue( Zub::Ptr< QosClassData > const& classData,
                                               L2ParamsInfo const& l2ParamsInfo ) {
   auto const l2 = classData->l2ParamsValue();
   ZUB_ASSERT( l2 );
   if( auto const vlan = l2->vlanValue() ) {
      vlan->vlanIs( l2ParamsInfo.vlan() );
      vlan->vlanMaskIs( l2ParamsInfo.vlanMask() );
   }
   if( auto const cos = l2->cosValue() ) {
      cos->cosIs( l2ParamsInfo.cos() );
      cos->cosMaskIs( l2ParamsInfo.cosMask() );
   }
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
         createMatchOptionRules( *this, *policyData );
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
