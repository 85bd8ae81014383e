// The ACL configuration of the switch, as the ACL agent publishes it: per ACL type, the access
// lists by name.
#pragma once

#include "entities/AclTypes.h"
#include "zub/Entity.h"

namespace Acl {

// One access list. Its rules, and the current rule set the compiler walks, arrive with the ACL
// compiler.
// clang-format off
#define ACL_ACL_CONFIG_ATTRS( X )                                      \
   /* Moves on each change of the list. */                             \
   X( value, Version, version, unsigned int, 0u )                      \
   /* A list that the system defines and the operator can't change. */ \
   X( value, Readonly, readonly, bool, false )
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
