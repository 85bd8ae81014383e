// The ACL of an IPv4 or IPv6 access-group match, and its immediate compiler: each configured rule
// becomes a numbered list of subrules, and when the chip has no range checker left for a rule, the
// ranges it names are expanded into value/mask entries and the rule is tried again.
#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <utility>
#include <vector>

#include "NevQos/match/QosClassMatchChildSm.h"
#include "NevQos/platform/entities/AclConfig.h"
#include "NevQos/platform/mirel/RangeMaskGen.h"
#include "NevQos/types/AclCreateError.h"

namespace Nev {

class QosClassMatchAclSm final : public QosClassMatchChildSm {
 public:
   QosClassMatchAclSm( AclKey const& key, QosClassMatchSm* classMatchSm,
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

   void showAcl( std::uint32_t socket, std::uint32_t unit, bool detail ) override;
   void handleVerify() override;
   // Replays the compile of one rule and asks the helper what stands at each subrule.
   void verifyIpRule( std::uint32_t ruleNum, Acl::UniqueId const& aclId, std::uint32_t sequence );

 protected:
   bool cleanupAfterDestroy() const override { return true; }
   // An access group keeps its number across a teardown.
   void aclNumberAfterDestroy( AclData& aclData ) const override;

 private:
   // What every check of one rule's subrules shares.
   struct RuleCheck {
      Acl::UniqueId aclId;
      std::uint32_t ruleNum = 0;
      std::uint32_t sequence = 0;
      Acl::Action action = Acl::actionPermit;
      bool l4Rule = false;
      bool leftOut = false;     // a VLAN rule the compile left out on an SVI
      bool portAbsent = false;  // a per-port control-plane policy whose port is absent
      // The chip left the rule out from this subrule on, its fragment entry with it.
      std::uint32_t chipTakenEnd = noSubruleLeftOut;
      bool permit() const { return action == Acl::actionPermit; }
      bool chipLeftOut() const { return chipTakenEnd != noSubruleLeftOut; }
   };
   using PortRange = std::pair< std::uint16_t, std::uint16_t >;
   using Blocks = std::vector< Mirel::RangeMaskGen< std::uint16_t >::Entry >;
   // One pass of the compile's loops, before any expansion.
   struct SubrulePlan {
      PortRange src;
      PortRange dst;
      PortRange len;
      Blocks const& srcMasks;
      Blocks const& dstMasks;
      Blocks const& lenMasks;
      std::uint8_t tcpFlag;
      std::uint8_t ecnData;
      std::uint8_t ecnMask;
   };
   template< class Rule >
   void verifyRuleSubrules( Rule const& rule, RuleCheck check );
   // The findings and field checks of one pass; subruleNum moves past what it covered.
   template< class Rule >
   void verifySubrule( Rule const& rule, RuleCheck const& check, SubrulePlan const& plan,
                       std::uint32_t& subruleNum );
   void verifyIpRuleCommon( Acl::IpRuleConfig const& rule, RuleCheck const& check,
                            std::uint32_t subruleNum, std::uint8_t tcpFlag, std::uint8_t ecnData,
                            std::uint8_t ecnMask );
   void verifyIp6RuleCommon( Acl::Ip6RuleConfig const& rule, RuleCheck const& check,
                             std::uint32_t subruleNum, std::uint8_t tcpFlag, std::uint8_t ecnData,
                             std::uint8_t ecnMask );
   // From the general check to the DSCP or traffic class: a subrule's and a fragment entry's.
   void verifyL3Fields( Acl::IpFilter const& filter, RuleCheck const& check,
                        std::uint32_t subruleNum );
   void verifyL3Fields( Acl::Ip6Filter const& filter, RuleCheck const& check,
                        std::uint32_t subruleNum );
   // The checks after the ECN one, which both families make alike.
   void verifyRuleFieldsTail( Acl::IpFilterBase const& filter, RuleCheck const& check,
                              std::uint32_t subruleNum, std::uint8_t tcpFlag );
   // The layer-4 checks of a fragment entry, the action and the ports.
   void verifyFragEntryTail( RuleCheck const& check, std::uint32_t subruleNum );
   void verifyPorts( RuleCheck const& check, std::uint32_t subruleNum, PortRange src,
                     PortRange dst );
   // Whether the subrule holds its IP length range whole rather than expanded into blocks.
   bool lenRangeWhole( RuleCheck const& check, SubrulePlan const& plan, std::uint32_t subruleNum );
   void verifyAction( RuleCheck const& check, std::uint32_t subruleNum );
   void verifyIpFragRule( Acl::IpRuleConfig const& rule, std::uint32_t ruleNum, bool l4Rule );
   // A per-port control-plane policy whose port is absent has nothing in hardware.
   bool ownerPortAbsent() const;
   // Notes an answer by which the chip left a rule out from `subruleNum` on without failing it.
   void noteLeftOutByChip( std::uint32_t ruleNum, std::uint32_t subruleNum, AclCreateError error );
   // The first subrule of the rule that the last compile did not make because of the chip's
   // answer; noSubruleLeftOut when it made them all.
   std::uint32_t chipTakenEnd( std::uint32_t ruleNum ) const;
   static constexpr std::uint32_t noSubruleLeftOut = std::numeric_limits< std::uint32_t >::max();

   Zub::Ptr< Acl::AclConfig const > aclConfig_;
   // The ACL's record while its rules are walked: found once, not once per rule.
   Zub::Ptr< AclData > walking_;
   // Of the last compile: by ruleNum, the first subrule the chip left out of a rule it answered
   // "rule ignored" or "ignored"; and the first rule the walk never reached, as "ignored" stops
   // it without a failure.
   std::map< std::uint32_t, std::uint32_t > leftOutByChip_;
   std::uint32_t walkEnd_ = noSubruleLeftOut;
};

}  // namespace Nev
