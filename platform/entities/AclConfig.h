// The ACL configuration of the switch, as the ACL agent publishes it.
#pragma once

#include "entities/AclTypes.h"
#include "zub/Entity.h"

namespace Acl {

#define ACL_CONFIG_ATTRS( X ) X( value, Version, version, unsigned int, 0u )

ZUB_ENTITY( Config, Zub::Name, ACL_CONFIG_ATTRS );

}  // namespace Acl
