// The ACL of an IPv4 or IPv6 access-group match, and its immediate compiler: each configured rule
// becomes a numbered list of subrules, and when the chip has no range checker left for a rule, the
// ranges it names are expanded into value/mask entries and the rule is tried again.
#pragma once

#include <cstdint>

#include "NevQos/match/QosClassMatchChildSm.h"
#include "NevQos/types/AclCreateError.h"
#include "entities/AclConfig.h"

namespace Nev {

class QosClassMatchAclSm final : public QosClassMatchChildSm {
 public:
   QosClassMatchAclSm( AclKey const& key, QosAclSm* qosAclSm, QosPolicyMapSm* pmapSm,
                       Zub::Ptr< QosClassData > const& classData, QosClassMatchSm* classMatchSm,
                       Qos::ClassMapMatchOption matchOption,
                       Zub::Ptr< Acl::AclConfig const > const& aclConfig );

   Zub::Ptr< Acl::AclConfig const > const& aclConfig() const { return aclConfig_; }

   bool createAcl() override;
   AclCreateError createIpAclRule( Acl::IpRuleConfig const& rule, Acl::UniqueId const& aclId,
                                   std::uint32_t ruleNum );
   AclCreateError createIp6AclRule( Acl::Ip6RuleConfig const& rule, Acl::UniqueId const& aclId,
                                    std::uint32_t ruleNum );
   AclCreateError checkIpFragRule( Acl::IpRuleConfig const& rule, Acl::UniqueId const& aclId,
                                   std::uint32_t ruleNum, std::uint32_t subRuleNum, bool l4Rule );

 protected:
   bool cleanupAfterDestroy() const override { return true; }
   // An access group keeps its number across a teardown.
   void aclNumberAfterDestroy( AclData& aclData ) const override;

 private:
   Zub::Ptr< Acl::AclConfig const > aclConfig_;
   // The ACL's record while its rules are walked: found once, not once per rule.
   Zub::Ptr< AclData > walking_;
};

}  // namespace Nev
