#include "NevQos/platform/entities/FecOverride.h"

#include "NevQos/platform/zub/Format.h"

namespace Qos::Glarn {

std::uint32_t OverrideKey::hash() const {
   return Zub::ByteHash().addLe( af, 4 ).addLe( dscp.value(), 1 ).addLe( fecId, 8 ).result();
}

std::ostream& operator<<( std::ostream& os, OverrideKey const& key ) {
   return os << key.af << "/" << key.dscp << "/" << key.fecId;
}

}  // namespace Qos::Glarn
