// The values that a class-map match carries when it matches without an IP access list: VLAN,
// COS, DSCP and ECN, MPLS traffic class, a MAC access group, a built-in class. The compiler
// also uses these entities as working copies in a class's data, rewriting the fields that
// describe one rule just before that rule goes to the chip.
#pragma once

#include <compare>
#include <cstdint>
#include <iosfwd>
#include <ostream>
#include <utility>

#include "NevQos/platform/entities/AclRuleConfig.h"
#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/zub/Entity.h"
#include "NevQos/platform/zub/String.h"

namespace Qos {

// ---- Numbers and ranges

struct DscpValTraits {
   static constexpr char const* name = "DscpVal";
   static constexpr std::uint8_t invalid = 64;
};
struct MplsTrafficClassValTraits {
   static constexpr char const* name = "MplsTrafficClassVal";
   static constexpr std::uint8_t invalid = 8;
};

// The DSCP of a match; 64 means that the match names no DSCP.
using DscpVal = SentinelNumber< DscpValTraits >;
// The three traffic-class bits of an MPLS label, or 8 for none.
using MplsTrafficClassVal = SentinelNumber< MplsTrafficClassValTraits >;

// The numbers from low to high, both included: the key of a match's collection of ranges, so
// ranges are walked by their low end, then their high end. The tag keeps the kinds apart.
template< class T, class Tag >
class NumberRange {
 public:
   using ValueType = T;
   constexpr NumberRange() noexcept = default;
   constexpr NumberRange( T low, T high ) noexcept : low_( low ), high_( high ) {}

   constexpr T low() const noexcept { return low_; }
   constexpr T high() const noexcept { return high_; }

   constexpr bool operator==( NumberRange const& ) const noexcept = default;
   constexpr std::strong_ordering operator<=>( NumberRange const& ) const noexcept = default;

   // "low-high".
   friend std::ostream& operator<<( std::ostream& os, NumberRange const& r ) {
      return os << unsigned( r.low_ ) << '-' << unsigned( r.high_ );
   }

 private:
   T low_ = 0;
   T high_ = 0;
};

using VlanRange = NumberRange< std::uint16_t, struct VlanRangeTag >;
using CosRange = NumberRange< std::uint8_t, struct CosRangeTag >;
using DscpRange = NumberRange< std::uint8_t, struct DscpRangeTag >;
using MplsTrafficClassRange = NumberRange< std::uint8_t, struct MplsTrafficClassRangeTag >;

// The built-in class that a match names. What it matches is the chip's business: the match
// compiles into a single rule that the driver fills in.
class ClassMapMatchBuiltIn {
 public:
   ClassMapMatchBuiltIn() = default;
   explicit ClassMapMatchBuiltIn( Zub::Name builtInClass )
       : builtInClass_( std::move( builtInClass ) ) {}

   Zub::Name const& builtInClass() const noexcept { return builtInClass_; }
   bool operator==( ClassMapMatchBuiltIn const& ) const noexcept = default;

 private:
   Zub::Name builtInClass_;
};

// ---- Match values

// A VLAN match: either one value and mask taken as they stand (maskValid), or ranges that the
// compiler covers with value/mask blocks. The compiler's working copy carries the rule's value
// and mask in vlan and vlanMask.
// clang-format off
#define QOS_CLASS_MAP_MATCH_VLAN_ATTRS( X )             \
   X( value, Vlan, vlan, std::uint16_t, 0 )             \
   X( value, VlanMask, vlanMask, std::uint16_t, 0 )     \
   X( value, MaskValid, maskValid, bool, false )        \
   X( keyed, VlanColl, vlanColl, Qos::VlanRange, bool )
// clang-format on

class ClassMapMatchVlan : public Zub::Entity {
 public:
   ClassMapMatchVlan( std::uint16_t vlan, std::uint16_t vlanMask ) : Zub::Entity( "vlan" ) {
      vlanIs( vlan );
      vlanMaskIs( vlanMask );
   }
   ZUB_ENTITY_BODY( ClassMapMatchVlan, Zub::Entity, QOS_CLASS_MAP_MATCH_VLAN_ATTRS )
};

// A COS match: the COS ranges it takes.
#define QOS_CLASS_MAP_MATCH_COS_ATTRS( X ) X( keyed, CosColl, cosColl, Qos::CosRange, bool )

ZUB_ENTITY( ClassMapMatchCos, Zub::String, QOS_CLASS_MAP_MATCH_COS_ATTRS );

// A DSCP and ECN match: one DSCP (or none) or DSCP ranges, and an ECN condition. The
// compiler's working copy carries the rule's TOS byte value and mask in tosId and tosMask.
// clang-format off
#define QOS_CLASS_MAP_MATCH_DSCP_ECN_ATTRS( X )                                \
   X( value, Dscp, dscp, Qos::DscpVal, Qos::DscpVal() )                        \
   X( value, Ecn, ecn, Acl::Ecn, Acl::ecnDontCare )                            \
   /* The DSCP was configured by its name (ef, af41, ...), not as a number. */ \
   X( value, DscpNameValid, dscpNameValid, bool, false )                       \
   X( value, TosId, tosId, std::uint8_t, 0 )                                   \
   X( value, TosMask, tosMask, std::uint8_t, 0 )                               \
   X( keyed, DscpColl, dscpColl, Qos::DscpRange, bool )
// clang-format on

class ClassMapMatchDscpEcn : public Zub::Entity {
 public:
   ClassMapMatchDscpEcn( DscpVal dscp, Acl::Ecn ecn ) : Zub::Entity( "dscpEcn" ) {
      dscpIs( dscp );
      ecnIs( ecn );
   }
   ZUB_ENTITY_BODY( ClassMapMatchDscpEcn, Zub::Entity, QOS_CLASS_MAP_MATCH_DSCP_ECN_ATTRS )
};

// A MAC access-group match as the compiler sees it: the list's name, and the Ethernet type of
// the rule being compiled.
// clang-format off
#define QOS_CLASS_MAP_MATCH_MAC_ATTRS( X )               \
   X( value, AclName, aclName, Zub::Name, Zub::Name() )  \
   X( value, EtherType, etherType, std::uint16_t, 0 )
// clang-format on

ZUB_ENTITY( ClassMapMatchMac, Zub::String, QOS_CLASS_MAP_MATCH_MAC_ATTRS );

// An MPLS traffic-class match: the traffic-class ranges it takes.
// clang-format off
#define QOS_CLASS_MAP_MATCH_MPLS_TRAFFIC_CLASS_ATTRS( X )                                  \
   X( keyed, MplsTrafficClassColl, mplsTrafficClassColl, Qos::MplsTrafficClassRange, bool )
// clang-format on

ZUB_ENTITY( ClassMapMatchMplsTrafficClass, Zub::String,
            QOS_CLASS_MAP_MATCH_MPLS_TRAFFIC_CLASS_ATTRS );

// The traffic-class value and mask of one compiled rule.
// clang-format off
#define QOS_MPLS_TRAFFIC_CLASS_TUPLE_ATTRS( X )                                                 \
   X( value, MplsTrafficClassVal, mplsTrafficClassVal, Qos::MplsTrafficClassVal,                \
      Qos::MplsTrafficClassVal() )                                                              \
   X( value, MplsTrafficClassMask, mplsTrafficClassMask, Qos::MplsTrafficClassVal,              \
      Qos::MplsTrafficClassVal() )
// clang-format on

ZUB_ENTITY( MplsTrafficClassTuple, Zub::String, QOS_MPLS_TRAFFIC_CLASS_TUPLE_ATTRS );

}  // namespace Qos
