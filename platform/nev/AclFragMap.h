// Fragment bookkeeping of a compiled IP access list. A layer-4 rule cannot match a non-first
// fragment, which carries no ports, so each layer-3 match of such rules needs one entry that lets
// those fragments through; the map records which layer-3 matches have theirs.
#pragma once

#include <compare>
#include <cstdint>
#include <iosfwd>

#include "NevQos/platform/entities/AclRuleConfig.h"
#include "NevQos/platform/zub/Entity.h"

namespace Nev {

// The layer-3 part of a rule: addresses, masks and ECN condition.
class AclFragInfo {
 public:
   AclFragInfo() noexcept = default;
   explicit AclFragInfo( Acl::IpFilter const& filter ) noexcept
       : srcAddr_( filter.source.addr() )
       , srcMask_( filter.source.mask() )
       , dstAddr_( filter.destination.addr() )
       , dstMask_( filter.destination.mask() )
       , ecn_( filter.ecn ) {}

   std::uint32_t srcAddr() const noexcept { return srcAddr_; }
   std::uint32_t srcMask() const noexcept { return srcMask_; }
   std::uint32_t dstAddr() const noexcept { return dstAddr_; }
   std::uint32_t dstMask() const noexcept { return dstMask_; }
   std::uint32_t ecn() const noexcept { return ecn_; }

   bool operator==( AclFragInfo const& ) const noexcept = default;
   std::strong_ordering operator<=>( AclFragInfo const& ) const noexcept = default;

 private:
   std::uint32_t srcAddr_ = 0;
   std::uint32_t srcMask_ = 0;
   std::uint32_t dstAddr_ = 0;
   std::uint32_t dstMask_ = 0;
   std::uint32_t ecn_ = 0;
};

// "10.0.0.0/255.0.0.0 -> 0.0.0.0/0.0.0.0 ecn 0"
std::ostream& operator<<( std::ostream& os, AclFragInfo const& i );

// Per IP protocol: the layer-3 matches that have their fragment entry.
#define NEV_ACL_FRAG_MAP_ATTRS( X ) X( keyed, Info, info, Nev::AclFragInfo, bool )

ZUB_ENTITY( AclFragMap, std::uint8_t, NEV_ACL_FRAG_MAP_ATTRS );

}  // namespace Nev
