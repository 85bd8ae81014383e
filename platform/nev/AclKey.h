// The key of a compiled access list.
#pragma once

#include <compare>
#include <cstdint>
#include <iosfwd>

#include "NevQos/platform/entities/AclTypes.h"
#include "NevQos/platform/zub/Strep.h"
#include "NevQos/platform/zub/String.h"

namespace Nev {

// Fields in stored order: the list's name, its type, a 32-bit index, two 8-bit selectors (chip
// and stage) and the group name. The QoS logic builds keys from a name and a type only; it
// copies the other fields and feeds them to the hash.
class AclKey {
 public:
   // The empty name, type ip, zero numbers, group "aclGroupDefault".
   AclKey() : AclKey( Zub::Name(), Acl::ip() ) {}
   AclKey( Zub::Name aclName, Acl::AclType aclType );
   AclKey( Zub::Name aclName, Acl::AclType aclType, Zub::Name aclGroup );
   AclKey( Zub::Name aclName, Acl::AclType aclType, std::uint32_t index, std::uint8_t chip,
           std::uint8_t stage, Zub::Name aclGroup );
   // Reads the `Value(...)` form.
   AclKey( char const* begin, char const* end );

   // The group of keys built from a name and a type alone.
   static Zub::Name const& defaultAclGroup();

   Zub::Name const& aclName() const noexcept { return aclName_; }
   Acl::AclType aclType() const noexcept { return static_cast< Acl::AclType >( aclType_ ); }
   std::uint32_t index() const noexcept { return index_; }
   std::uint8_t chip() const noexcept { return chip_; }
   std::uint8_t stage() const noexcept { return stage_; }
   Zub::Name const& aclGroup() const noexcept { return aclGroup_; }

   // The byte-wise hash over H(aclName), the type, chip, stage, index and H(aclGroup), each
   // least significant byte first.
   std::uint32_t hash() const noexcept;

   bool operator==( AclKey const& ) const noexcept = default;
   std::strong_ordering operator<=>( AclKey const& o ) const noexcept;
   bool operator!() const { return *this == AclKey(); }

 private:
   // Three words: a class copy holds its ACL's key four times. The type is one of the three
   // kinds of list, which a byte holds.
   Zub::Name aclName_;
   Zub::Name aclGroup_;
   std::uint32_t index_ = 0;
   std::uint8_t aclType_;
   std::uint8_t chip_ = 0;
   std::uint8_t stage_ = 0;
};

Zub::String valueToStrep( AclKey const& k );
std::ostream& operator<<( std::ostream& os, AclKey const& k );
void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, AclKey& out );

}  // namespace Nev
