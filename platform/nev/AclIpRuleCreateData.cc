#include "NevQos/platform/nev/AclIpRuleCreateData.h"

namespace Nev {

void AclEcnInfo::aclEcnRuleSplit( Acl::Ecn ecn ) {
   switch( ecn ) {
      case Acl::ecnDontCare:
         ecnRulesIs( 0, 0 );
         break;
      case Acl::ecnEctCe:
         ecnRulesIs( 1, 3 );
         ecnRulesIs( 2, 2 );
         break;
      case Acl::ecnNonEct:
         ecnRulesIs( 0, 3 );
         break;
      case Acl::ecnCe:
         ecnRulesIs( 3, 3 );
         break;
      case Acl::ecnEct:
         ecnRulesIs( 1, 3 );
         ecnRulesIs( 2, 3 );
         break;
   }
}

AclEcnInfo AclEcnInfo::of( Acl::Ecn ecn, bool qosEcnSupport ) {
   AclEcnInfo info;
   if( qosEcnSupport ) {
      info.aclEcnRuleSplit( ecn );
   } else {
      info.ecnRulesIs( 0, 0 );
   }
   return info;
}

namespace {

using Ranges = std::array< AclIpRuleCreateData_::Range, AclIpRuleCreateData_::maxRanges + 1 >;
using Masks =
      std::array< std::vector< AclIpRuleCreateData_::Entry >, AclIpRuleCreateData_::maxRanges + 1 >;

// Fills one dimension from index 1 and returns its count.
std::uint8_t planDimension( Acl::PortCondition const& condition, Ranges& ranges, Masks& masks ) {
   std::array< AclIpRuleCreateData_::Range, AclIpRuleCreateData_::maxRanges > found;
   unsigned const n = condition.ranges( found );
   for( unsigned i = 0; i < n; ++i ) {
      ranges[ i + 1 ] = found[ i ];
      Mirel::RangeMaskGen< std::uint16_t >::run( found[ i ].first, found[ i ].second,
                                                 masks[ i + 1 ] );
   }
   return static_cast< std::uint8_t >( n );
}

}  // namespace

void createIpAclRuleData( Acl::IpFilterBase const& filter, AclIpRuleCreateData_& data,
                          bool qosEcnSupport, bool establishedSupported ) {
   data.srcPortCount = planDimension( filter.srcPort, data.srcPortRange, data.srcPortMasks );
   data.dstPortCount = planDimension( filter.dstPort, data.dstPortRange, data.dstPortMasks );
   data.ipLenCount = planDimension( filter.ipLen, data.ipLenRange, data.ipLenMasks );

   auto const flags = static_cast< std::uint8_t >( filter.tcpFlag.value() & 0xff );
   if( filter.established && !establishedSupported ) {
      data.tcpFlagCount = 2;
      data.tcpFlag[ 1 ] = static_cast< std::uint8_t >( flags | Acl::TcpFlag::ack_ );
      data.tcpFlag[ 2 ] = static_cast< std::uint8_t >( flags | Acl::TcpFlag::rst_ );
   } else {
      data.tcpFlagCount = 1;
      data.tcpFlag[ 1 ] = flags;
   }

   data.ecnRules = AclEcnInfo::of( filter.ecn, qosEcnSupport );

   data.l4Rule = !filter.srcPort.isAny() || !filter.dstPort.isAny() || !filter.ipLen.isAny() ||
                 filter.tcpFlag.value() != 0 || filter.established || filter.icmpTypeValid ||
                 filter.icmpCodeValid;
}

}  // namespace Nev
