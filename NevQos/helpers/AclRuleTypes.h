// The ACL rule vocabulary that the ACL helper's operations name. The rule records themselves come
// with the ACL compiler; the helper only passes them through, so a declaration is enough here.
#pragma once

#include <compare>
#include <cstdint>
#include <iosfwd>

#include "entities/ValueText.h"
#include "zub/String.h"

namespace Acl {

class RuleConfig;
class IpRuleConfig;
class MacRuleConfig;

// The identity of one configured rule, stable across edits of the list it belongs to.
class UniqueId {
 public:
   constexpr UniqueId() noexcept = default;
   constexpr explicit UniqueId( std::uint64_t value ) noexcept : value_( value ) {}

   constexpr std::uint64_t value() const noexcept { return value_; }
   std::uint32_t hash() const noexcept;

   constexpr bool operator==( UniqueId const& ) const noexcept = default;
   constexpr std::strong_ordering operator<=>( UniqueId const& ) const noexcept = default;
   constexpr bool operator!() const noexcept { return value_ == 0; }

 private:
   std::uint64_t value_ = 0;
};

Zub::String valueToStrep( UniqueId id );
std::ostream& operator<<( std::ostream& os, UniqueId id );

// What a rule does with a matching packet. Only permit rules reach QoS hardware.
enum Action : std::uint32_t {
   actionPermit = 0,
   actionDeny = 1,
};
ENUM_TEXT_DECLARE( Action );

}  // namespace Acl
