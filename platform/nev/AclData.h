// The record of one compiled ACL, as the common layer keeps it for the engine and the driver.
#pragma once

#include <cstdint>

#include "NevQos/platform/nev/AclFragMap.h"
#include "NevQos/platform/nev/AclKey.h"
#include "NevQos/platform/zub/Entity.h"

namespace Nev {

// An ACL needs no work when it is installed and not dirty. aclNumber -1 means the ACL has
// never been handed to the driver. fragMap, by IP protocol, describes the rules of the current
// compile only: every compile of the list empties it first.
#define NEV_ACL_DATA_ATTRS( X )                       \
   X( value, AclNumber, aclNumber, std::int32_t, -1 ) \
   X( value, Installed, installed, bool, false )      \
   X( value, Dirty, dirty, bool, false )              \
   X( child, FragMap, fragMap, std::uint8_t, Nev::AclFragMap )

ZUB_ENTITY( AclData, AclKey, NEV_ACL_DATA_ATTRS );

}  // namespace Nev
