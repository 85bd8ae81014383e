#include "NevQos/match/QosClassMatchAclSm.h"

#include "NevQos/helpers/QosAclHelper.h"
#include "NevQos/log/QosLogHandles.h"
#include "NevQos/match/IpAclCompiler.h"
#include "NevQos/match/QosClassMatchSm.h"
#include "NevQos/platform/zub/Log.h"
#include "NevQos/policy/QosAclSm.h"
#include "NevQos/policy/QosPolicyMapSm.h"

namespace Nev {

QosClassMatchAclSm::QosClassMatchAclSm( AclKey const& key, QosClassMatchSm* classMatchSm,
                                        Qos::ClassMapMatchOption matchOption,
                                        Zub::Ptr< Acl::AclConfig const > const& aclConfig )
    : QosClassMatchChildSm( key, classMatchSm, matchOption ), aclConfig_( aclConfig ) {
   handleInitialized();
}

bool QosClassMatchAclSm::createAcl() {
   auto const data = aclData();
   if( !data->dirty() && data->installed() ) return true;
   if( destroying() ) return true;
   data->fragMapDelAll();
   leftOutByChip_.clear();
   walkEnd_ = noSubruleLeftOut;
   auto const rules = aclConfig()->currCfg();
   if( !rules ) {
      data->dirtyIs( false );
      return true;
   }
   rulesIgnoredBesideOtherFamilyIs( aclType() == Acl::ipv6() &&
                                    pmapSm()->macAccessRuleCount() != 0 &&
                                    !helper().isMacAclRuleSupportedPlatform() );
   if( rulesIgnoredBesideOtherFamily() ) {
      // No rule of this list is programmed beside a MAC access group.
      Zub::log( QOS_MAC_ACL_RULE_IPV6_MISMATCH, pmapSm()->pmapName(), classMatchSm()->cmapName() );
      return false;
   }
   if( data->aclNumber() == -1 ) data->aclNumberIs( accessGroupAclNumber() );
   AclCreateError result = helper().precreateAcl( pmapState(), *classData(), matchOption(), key() );
   if( result == aclCreateErrorNone ) {
      walking_ = data;
      AclRuleWalk const walk =
            walkAclRules( *rules, aclType(), helper().supportedTcpFlags().value(), *this );
      walking_ = nullptr;
      if( walk.result == aclCreateErrorIgnored ) walkEnd_ = walk.ruleNum;
      reportAclRuleWalk( walk, aclType(), aclName(), classMatchSm()->cmapName() );
      result = walk.result;
   }
   return !qosAclSm()->updatePolicyMapErrorState( result, pmapSm()->key(), data );
}

AclCreateError QosClassMatchAclSm::createIpAclRule( Acl::IpRuleConfig const& rule,
                                                    Acl::UniqueId const& aclId,
                                                    std::uint32_t ruleNum ) {
   if( unsupportedIpRule( pmapState(), pmapSm()->pmapType(), rule.filter ) ) {
      return aclCreateErrorRuleIgnored;
   }
   IpRuleTarget const target{ helper(), pmapState(), *classData(), key(), aclId, ruleNum };
   std::uint32_t subruleNum = 0;
   bool l4Rule = false;
   AclCreateError error = planIpSubrules( target, rule, rule.filter, Acl::ip(),
                                          IpRuleAnswers::retryExpanded, subruleNum, l4Rule );
   if( error == aclCreateErrorNone ) {
      error = checkIpFragRule( rule, aclId, ruleNum, subruleNum, l4Rule );
   }
   noteLeftOutByChip( ruleNum, subruleNum, error );
   return error;
}

AclCreateError QosClassMatchAclSm::createIp6AclRule( Acl::Ip6RuleConfig const& rule,
                                                     Acl::UniqueId const& aclId,
                                                     std::uint32_t ruleNum ) {
   if( unsupportedIpRule( pmapState(), pmapSm()->pmapType(), rule.filter ) ) {
      return aclCreateErrorRuleIgnored;
   }
   IpRuleTarget const target{ helper(), pmapState(), *classData(), key(), aclId, ruleNum };
   std::uint32_t subruleNum = 0;
   bool l4Rule = false;
   // IPv6 has no fragment entries.
   AclCreateError const error = planIpSubrules( target, rule, rule.filter, Acl::ipv6(),
                                                IpRuleAnswers::retryExpanded, subruleNum, l4Rule );
   noteLeftOutByChip( ruleNum, subruleNum, error );
   return error;
}

AclCreateError QosClassMatchAclSm::checkIpFragRule( Acl::IpRuleConfig const& rule,
                                                    Acl::UniqueId const& aclId,
                                                    std::uint32_t ruleNum, std::uint32_t subRuleNum,
                                                    bool l4Rule ) {
   IpRuleTarget const target{ helper(), pmapState(), *classData(), key(), aclId, ruleNum };
   Zub::Ptr< AclData > const data = walking_ ? walking_ : aclData();
   return createIpFragEntries( target, rule, *data, helper().qosEcnSupport(), subRuleNum, l4Rule );
}

// The subrules before `subruleNum` stand; the map is not failed for these answers, so only this
// record tells verification that the rest, fragment entry included, was never made.
void QosClassMatchAclSm::noteLeftOutByChip( std::uint32_t ruleNum, std::uint32_t subruleNum,
                                            AclCreateError error ) {
   if( error != aclCreateErrorRuleIgnored && error != aclCreateErrorIgnored ) return;
   leftOutByChip_[ ruleNum ] = subruleNum;
}

std::uint32_t QosClassMatchAclSm::chipTakenEnd( std::uint32_t ruleNum ) const {
   if( ruleNum >= walkEnd_ ) return 0;
   auto const it = leftOutByChip_.find( ruleNum );
   return it == leftOutByChip_.end() ? noSubruleLeftOut : it->second;
}

void QosClassMatchAclSm::aclNumberAfterDestroy( AclData& aclData ) const {
   if( aclData.aclNumber() == -1 ) aclData.aclNumberIs( accessGroupAclNumber() );
}

}  // namespace Nev
