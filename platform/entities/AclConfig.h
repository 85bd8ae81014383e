// The ACL configuration of the switch, as the ACL agent publishes it: per ACL type, the access
// lists by name.
#pragma once

#include <cstdint>

#include "NevQos/platform/entities/AclRuleConfig.h"
#include "NevQos/platform/entities/AclTypes.h"
#include "NevQos/platform/zub/Entity.h"

namespace Acl {

// The rules of one version of an access list. The sequence numbers give the order in which the
// rules match; the rules themselves are found by their ids, which survive renumbering.
// clang-format off
#define ACL_ACL_RULE_SET_ATTRS( X )                                              \
   X( keyed, RuleBySequence, ruleBySequence, std::uint32_t, Acl::UniqueId )      \
   X( keyed, IpRuleById, ipRuleById, Acl::UniqueId, Acl::IpRuleConfig )          \
   X( keyed, Ip6RuleById, ip6RuleById, Acl::UniqueId, Acl::Ip6RuleConfig )       \
   X( keyed, MacRuleById, macRuleById, Acl::UniqueId, Acl::MacRuleConfig )
// clang-format on

// Keyed by the version of the list it belongs to.
ZUB_ENTITY( AclRuleSet, unsigned int, ACL_ACL_RULE_SET_ATTRS );

// One access list. A change of its rules publishes a new rule set as currCfg.
// clang-format off
#define ACL_ACL_CONFIG_ATTRS( X )                                                 \
   /* Moves on each change of the list. */                                        \
   X( value, Version, version, unsigned int, 0u )                                 \
   /* A list that the system defines and the operator can't change. */            \
   X( value, Readonly, readonly, bool, false )                                    \
   /* The rules in force; null while the list has none published. */             \
   X( value, CurrCfg, currCfg, Zub::Ptr< Acl::AclRuleSet const >,                  \
      Zub::Ptr< Acl::AclRuleSet const >() )
// clang-format on

ZUB_ENTITY( AclConfig, Zub::Name, ACL_ACL_CONFIG_ATTRS );

// The access lists of one type.
#define ACL_ACL_TYPE_CONFIG_ATTRS( X ) X( child, Acl, acl, Zub::Name, Acl::AclConfig )

ZUB_ENTITY( AclTypeConfig, AclType, ACL_ACL_TYPE_CONFIG_ATTRS );

// clang-format off
#define ACL_CONFIG_ATTRS( X )                                                                \
   X( value, Version, version, unsigned int, 0u )                                            \
   /* config( type )->acl( name ) finds a list under the type of the match that names it. */ \
   X( child, Config, config, Acl::AclType, Acl::AclTypeConfig )
// clang-format on

ZUB_ENTITY( Config, Zub::Name, ACL_CONFIG_ATTRS );

}  // namespace Acl
