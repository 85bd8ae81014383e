#include "NevQos/helpers/AclRuleTypes.h"

#include <ostream>

#include "zub/Format.h"

namespace Acl {

std::uint32_t UniqueId::hash() const noexcept {
   return Zub::ByteHash().addLe( value_, 8 ).result();
}

Zub::String valueToStrep( UniqueId id ) {
   return Zub::valueToStrep( id.value() );
}

std::ostream& operator<<( std::ostream& os, UniqueId id ) {
   return os << id.value();
}

namespace {

constexpr ValueText::Member actionNames[] = {
   { actionPermit, "permit" },
   { actionDeny, "deny" },
};

}  // namespace

ENUM_TEXT_DEFINE( Action, "Acl::Action", actionNames )

}  // namespace Acl
