// The slice of a class's compiled data for one match option: its priority and its ACLs.
#pragma once

#include <cstdint>

#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/nev/AclData.h"
#include "NevQos/platform/zub/Entity.h"

namespace Nev {

#define NEV_QOS_CLASS_MATCH_DATA_ATTRS( X )          \
   X( value, Priority, priority, std::uint32_t, 0u ) \
   X( child, AclData, aclData, Nev::AclKey, Nev::AclData )

ZUB_ENTITY( QosClassMatchData, Qos::ClassMapMatchOption, NEV_QOS_CLASS_MATCH_DATA_ATTRS );

}  // namespace Nev
