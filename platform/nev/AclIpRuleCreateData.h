// The plan of one IP rule for a TCAM: its port and IP-length conditions as ranges, each with the
// aligned value/mask blocks that replace it when no range checker is left, the TCP flag bytes of
// its variants, and its ECN conditions as (data, mask) pairs on the two ECN bits.
#pragma once

#include <array>
#include <cstdint>
#include <utility>
#include <vector>

#include "NevQos/platform/entities/AclRuleConfig.h"
#include "NevQos/platform/mirel/RangeMaskGen.h"
#include "NevQos/platform/zub/Collection.h"

namespace Nev {

// ECN conditions of a rule: ecnMask by ecnData, walked in ascending ecnData.
class AclEcnInfo {
 public:
   Zub::Collection< std::uint8_t, std::uint8_t > const& ecnRules() const { return ecnRules_; }
   void ecnRulesIs( std::uint8_t data, std::uint8_t mask ) { ecnRules_.set( data, mask ); }
   // The entries that together match `ecn`; none for a value the table does not know.
   void aclEcnRuleSplit( Acl::Ecn ecn );
   // The entries a chip is given for `ecn`: the split, or the single (0, 0) on a chip that
   // cannot match ECN.
   static AclEcnInfo of( Acl::Ecn ecn, bool qosEcnSupport );

 private:
   Zub::Collection< std::uint8_t, std::uint8_t > ecnRules_;
};

class AclIpRuleCreateData_ {
 public:
   using Range = std::pair< std::uint16_t, std::uint16_t >;
   using Entry = Mirel::RangeMaskGen< std::uint16_t >::Entry;
   // Lists run from index 1; index 0 is unused.
   static constexpr unsigned maxRanges = 11;
   static constexpr unsigned maxTcpFlags = 4;

   std::uint8_t tcpFlagCount = 0;
   std::array< std::uint8_t, maxTcpFlags + 1 > tcpFlag{};
   std::array< Range, maxRanges + 1 > srcPortRange{};
   std::array< Range, maxRanges + 1 > dstPortRange{};
   std::array< Range, maxRanges + 1 > ipLenRange{};
   std::array< std::vector< Entry >, maxRanges + 1 > srcPortMasks;
   std::array< std::vector< Entry >, maxRanges + 1 > dstPortMasks;
   std::array< std::vector< Entry >, maxRanges + 1 > ipLenMasks;
   std::uint8_t srcPortCount = 0;
   std::uint8_t dstPortCount = 0;
   std::uint8_t ipLenCount = 0;
   bool l4Rule = false;
   AclEcnInfo ecnRules;
};

// Plans `filter` into `data`, which must be freshly constructed. Every dimension without a
// condition is the one range 0..65535; a condition that matches nothing leaves its count 0, and
// the rule then makes no subrule. l4Rule: a port, IP-length, TCP-flag, "established" or ICMP
// condition. Without qosEcnSupport the ECN list is the single (0, 0); without
// establishedSupported, "established" becomes two variants, ACK set and RST set.
void createIpAclRuleData( Acl::IpFilterBase const& filter, AclIpRuleCreateData_& data,
                          bool qosEcnSupport, bool establishedSupported );

}  // namespace Nev
