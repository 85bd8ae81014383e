#include "NevQos/platform/nev/AclIpRuleCreateData.h"

#include <gtest/gtest.h>

#include <sstream>
#include <vector>

#include "NevQos/platform/nev/AclFragMap.h"

namespace {

using EcnList = std::vector< std::pair< unsigned, unsigned > >;
using Entry = Nev::AclIpRuleCreateData_::Entry;
using Range = Nev::AclIpRuleCreateData_::Range;

EcnList ecnListOf( Nev::AclEcnInfo const& info ) {
   EcnList list;
   for( auto it = info.ecnRules().iter(); it; ++it )
      list.emplace_back( it.key(), it.value() );
   return list;
}

Nev::AclIpRuleCreateData_ planOf( Acl::IpFilterBase const& filter, bool qosEcnSupport = true,
                                  bool establishedSupported = true ) {
   Nev::AclIpRuleCreateData_ data;
   Nev::createIpAclRuleData( filter, data, qosEcnSupport, establishedSupported );
   return data;
}

TEST( AclIpRuleCreateDataTest, EcnSplitTable ) {
   EcnList const expected[] = {
      { { 0, 0 } },            // don't care: the two bits unmasked
      { { 1, 3 }, { 2, 2 } },  // ECT or CE: 01, or 1x
      { { 0, 3 } },            // not ECT
      { { 3, 3 } },            // CE
      { { 1, 3 }, { 2, 3 } },  // ECT without CE: 01 or 10
   };
   for( unsigned ecn = 0; ecn < 7; ++ecn ) {
      Nev::AclEcnInfo info;
      info.aclEcnRuleSplit( static_cast< Acl::Ecn >( ecn ) );
      EXPECT_EQ( ecnListOf( info ), ecn < 5 ? expected[ ecn ] : EcnList() ) << ecn;
   }
}

TEST( AclIpRuleCreateDataTest, NoConditionIsOneEntryOverEverything ) {
   auto const data = planOf( Acl::IpFilterBase() );
   EXPECT_EQ( data.srcPortCount, 1 );
   EXPECT_EQ( data.dstPortCount, 1 );
   EXPECT_EQ( data.ipLenCount, 1 );
   std::vector< Entry > const whole{ { 0, 65535, 0 } };
   EXPECT_EQ( data.srcPortRange[ 1 ], Range( 0, 65535 ) );
   EXPECT_EQ( data.dstPortRange[ 1 ], Range( 0, 65535 ) );
   EXPECT_EQ( data.ipLenRange[ 1 ], Range( 0, 65535 ) );
   EXPECT_EQ( data.srcPortMasks[ 1 ], whole );
   EXPECT_EQ( data.dstPortMasks[ 1 ], whole );
   EXPECT_EQ( data.ipLenMasks[ 1 ], whole );
   EXPECT_FALSE( data.l4Rule );
   EXPECT_EQ( data.tcpFlagCount, 1 );
   EXPECT_EQ( data.tcpFlag[ 1 ], 0 );
   EXPECT_EQ( ecnListOf( data.ecnRules ), ( EcnList{ { 0, 0 } } ) );
}

TEST( AclIpRuleCreateDataTest, PortConditionsGiveTheirRangesAndBlocks ) {
   Acl::IpFilterBase f;
   f.srcPort = Acl::PortCondition::rangeOf( 80, 90 );
   f.dstPort = Acl::PortCondition( Acl::PortCondition::neq, { 80 } );
   auto const data = planOf( f );
   ASSERT_EQ( data.srcPortCount, 1 );
   EXPECT_EQ( data.srcPortRange[ 1 ], Range( 80, 90 ) );
   EXPECT_EQ(
         data.srcPortMasks[ 1 ],
         ( std::vector< Entry >{ { 80, 87, 0xfff8 }, { 88, 89, 0xfffe }, { 90, 90, 0xffff } } ) );
   ASSERT_EQ( data.dstPortCount, 2 );
   EXPECT_EQ( data.dstPortRange[ 1 ], Range( 0, 79 ) );
   EXPECT_EQ( data.dstPortRange[ 2 ], Range( 81, 65535 ) );
   EXPECT_EQ( data.dstPortMasks[ 1 ],
              ( std::vector< Entry >{ { 0, 63, 0xffc0 }, { 64, 79, 0xfff0 } } ) );
   // 81, 82-83, 84-87, ..., 32768-65535.
   ASSERT_EQ( data.dstPortMasks[ 2 ].size(), 14u );
   EXPECT_EQ( data.dstPortMasks[ 2 ].front(), ( Entry{ 81, 81, 0xffff } ) );
   EXPECT_EQ( data.dstPortMasks[ 2 ].back(), ( Entry{ 32768, 65535, 0x8000 } ) );
   // Index 0 stays unused, and so do indexes past the count.
   EXPECT_TRUE( data.dstPortMasks[ 0 ].empty() );
   EXPECT_TRUE( data.dstPortMasks[ 3 ].empty() );
   EXPECT_EQ( data.ipLenCount, 1 );
   EXPECT_TRUE( data.l4Rule );
}

TEST( AclIpRuleCreateDataTest, ConditionMatchingNothingLeavesItsCountZero ) {
   Acl::IpFilterBase f;
   f.ipLen = Acl::PortCondition( Acl::PortCondition::gt, { 65535 } );
   auto const data = planOf( f );
   EXPECT_EQ( data.ipLenCount, 0 );
   EXPECT_TRUE( data.ipLenMasks[ 1 ].empty() );
   EXPECT_EQ( data.srcPortCount, 1 );
   EXPECT_TRUE( data.l4Rule );
}

TEST( AclIpRuleCreateDataTest, EcnListFollowsTheChipSupport ) {
   Acl::IpFilterBase f;
   f.ecn = Acl::ecnEctCe;
   EXPECT_EQ( ecnListOf( planOf( f, true ).ecnRules ), ( EcnList{ { 1, 3 }, { 2, 2 } } ) );
   EXPECT_EQ( ecnListOf( planOf( f, false ).ecnRules ), ( EcnList{ { 0, 0 } } ) );
   f.ecn = Acl::ecnCe;
   EXPECT_EQ( ecnListOf( planOf( f, false ).ecnRules ), ( EcnList{ { 0, 0 } } ) );
   // ECN alone is a layer-3 condition.
   EXPECT_FALSE( planOf( f ).l4Rule );
}

TEST( AclIpRuleCreateDataTest, EstablishedBecomesAckOrRstWithoutChipSupport ) {
   Acl::IpFilterBase f;
   f.tcpFlag = Acl::TcpFlag( Acl::TcpFlag::psh_ );
   f.established = true;
   auto const variants = planOf( f, true, false );
   ASSERT_EQ( variants.tcpFlagCount, 2 );
   EXPECT_EQ( variants.tcpFlag[ 1 ], Acl::TcpFlag::psh_ | Acl::TcpFlag::ack_ );
   EXPECT_EQ( variants.tcpFlag[ 2 ], Acl::TcpFlag::psh_ | Acl::TcpFlag::rst_ );
   EXPECT_TRUE( variants.l4Rule );
   auto const native = planOf( f, true, true );
   ASSERT_EQ( native.tcpFlagCount, 1 );
   EXPECT_EQ( native.tcpFlag[ 1 ], Acl::TcpFlag::psh_ );
}

TEST( AclIpRuleCreateDataTest, LayerFourConditions ) {
   struct Case {
      char const* what;
      void ( *set )( Acl::IpFilterBase& );
      bool l4;
   } const cases[] = {
      { "tcp flag", []( Acl::IpFilterBase& f ) { f.tcpFlag = Acl::TcpFlag( 0x02 ); }, true },
      { "ip length", []( Acl::IpFilterBase& f ) { f.ipLen = Acl::PortCondition::eqOf( 64 ); },
        true },
      { "icmp type", []( Acl::IpFilterBase& f ) { f.icmpTypeValid = true; }, true },
      { "icmp code", []( Acl::IpFilterBase& f ) { f.icmpCodeValid = true; }, true },
      { "established", []( Acl::IpFilterBase& f ) { f.established = true; }, true },
      { "source port", []( Acl::IpFilterBase& f ) { f.srcPort = Acl::PortCondition::eqOf( 0 ); },
        true },
      { "dscp", []( Acl::IpFilterBase& f ) { f.dscpValid = true; }, false },
      { "vlan", []( Acl::IpFilterBase& f ) { f.vlanMask = 0xfff; }, false },
      { "fragments", []( Acl::IpFilterBase& f ) { f.fragments = true; }, false },
      { "protocol", []( Acl::IpFilterBase& f ) { f.proto = 6; }, false },
   };
   for( Case const& c : cases ) {
      Acl::IpFilterBase f;
      c.set( f );
      EXPECT_EQ( planOf( f ).l4Rule, c.l4 ) << c.what;
   }
}

Acl::IpFilter filterOf( std::uint32_t src, unsigned srcLen, std::uint32_t dst, unsigned dstLen ) {
   Acl::IpFilter f;
   f.source = Mirel::IpAddrWithMask( src, srcLen );
   f.destination = Mirel::IpAddrWithMask( dst, dstLen );
   return f;
}

TEST( AclIpRuleCreateDataTest, FragInfoIsTheLayerThreeMatch ) {
   Acl::IpFilter f = filterOf( 0x0a000000, 8, 0xc0a80100, 24 );
   f.proto = 6;
   f.dstPort = Acl::PortCondition::eqOf( 80 );
   Nev::AclFragInfo const info( f );
   EXPECT_EQ( info.srcMask(), 0xff000000u );
   EXPECT_EQ( info.dstMask(), 0xffffff00u );
   std::ostringstream os;
   os << info;
   EXPECT_EQ( os.str(), "10.0.0.0/255.0.0.0 -> 192.168.1.0/255.255.255.0 ecn 0" );
   // Protocol and ports are not part of it; addresses, lengths and ECN are.
   EXPECT_EQ( info, Nev::AclFragInfo( filterOf( 0x0a000000, 8, 0xc0a80100, 24 ) ) );
   EXPECT_NE( info, Nev::AclFragInfo( filterOf( 0x0a000000, 9, 0xc0a80100, 24 ) ) );
   Acl::IpFilter withEcn = f;
   withEcn.ecn = Acl::ecnCe;
   EXPECT_NE( info, Nev::AclFragInfo( withEcn ) );
   EXPECT_EQ( Nev::AclFragInfo( Acl::IpFilter() ), Nev::AclFragInfo() );
   // Ordered by source, then destination, then ECN: a map of them walks in that order.
   EXPECT_LT( Nev::AclFragInfo( filterOf( 0x09000000, 8, 0xffffffff, 32 ) ), info );
   EXPECT_LT( Nev::AclFragInfo( filterOf( 0x0a000000, 8, 0, 0 ) ), info );
   EXPECT_LT( info, Nev::AclFragInfo( withEcn ) );
   EXPECT_LT( info, Nev::AclFragInfo( filterOf( 0x0b000000, 8, 0, 0 ) ) );
}

}  // namespace
