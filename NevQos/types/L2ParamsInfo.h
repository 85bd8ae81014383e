// One VLAN and COS match tuple of a class map.
#pragma once

#include <cstdint>
#include <iosfwd>

#include "NevQos/platform/zub/Strep.h"
#include "NevQos/platform/zub/String.h"

namespace Nev {

class L2ParamsInfo {
 public:
   L2ParamsInfo() noexcept = default;
   L2ParamsInfo( std::uint16_t vlan, std::uint16_t vlanMask, std::uint8_t cos,
                 std::uint8_t cosMask ) noexcept
       : vlan_( vlan ), vlanMask_( vlanMask ), cos_( cos ), cosMask_( cosMask ) {}
   // Reads the `Value(...)` form.
   L2ParamsInfo( char const* begin, char const* end );

   std::uint16_t vlan() const noexcept { return vlan_; }
   std::uint16_t vlanMask() const noexcept { return vlanMask_; }
   std::uint8_t cos() const noexcept { return cos_; }
   std::uint8_t cosMask() const noexcept { return cosMask_; }

   bool operator==( L2ParamsInfo const& ) const noexcept = default;

 private:
   std::uint16_t vlan_ = 0;
   std::uint16_t vlanMask_ = 0;
   std::uint8_t cos_ = 0;
   std::uint8_t cosMask_ = 0;
};

Zub::String valueToStrep( L2ParamsInfo const& p );
std::ostream& operator<<( std::ostream& os, L2ParamsInfo const& p );
void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, L2ParamsInfo& out );

}  // namespace Nev
