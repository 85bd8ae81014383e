#include "NevQos/platform/entities/AclRuleConfig.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "NevQos/platform/zub/Exception.h"

namespace {

using Acl::PortCondition;
using Range = std::pair< std::uint16_t, std::uint16_t >;

std::vector< Range > rangesOf( PortCondition const& p ) {
   std::array< Range, 11 > out;
   unsigned const n = p.ranges( out );
   return std::vector< Range >( out.begin(), out.begin() + n );
}

template< class T >
std::string textOf( T const& v ) {
   std::ostringstream os;
   os << v;
   return os.str();
}

TEST( AclRuleConfigTest, PortConditionRangesOfEachOperator ) {
   EXPECT_EQ( rangesOf( PortCondition() ), ( std::vector< Range >{ { 0, 65535 } } ) );
   // eq: one range per distinct value, ascending.
   EXPECT_EQ( rangesOf( PortCondition( PortCondition::eq, { 443, 22, 443, 80 } ) ),
              ( std::vector< Range >{ { 22, 22 }, { 80, 80 }, { 443, 443 } } ) );
   EXPECT_EQ( rangesOf( PortCondition( PortCondition::gt, { 1023 } ) ),
              ( std::vector< Range >{ { 1024, 65535 } } ) );
   EXPECT_EQ( rangesOf( PortCondition( PortCondition::lt, { 1024 } ) ),
              ( std::vector< Range >{ { 0, 1023 } } ) );
   EXPECT_EQ( rangesOf( PortCondition::rangeOf( 7, 7 ) ), ( std::vector< Range >{ { 7, 7 } } ) );
   // Conditions nothing can meet.
   EXPECT_TRUE( rangesOf( PortCondition( PortCondition::gt, { 65535 } ) ).empty() );
   EXPECT_TRUE( rangesOf( PortCondition( PortCondition::lt, { 0 } ) ).empty() );
   EXPECT_TRUE( rangesOf( PortCondition::rangeOf( 9, 8 ) ).empty() );
}

TEST( AclRuleConfigTest, PortConditionNeqIsTheComplement ) {
   EXPECT_EQ( rangesOf( PortCondition( PortCondition::neq, { 80, 22, 80 } ) ),
              ( std::vector< Range >{ { 0, 21 }, { 23, 79 }, { 81, 65535 } } ) );
   EXPECT_EQ( rangesOf( PortCondition( PortCondition::neq, { 0 } ) ),
              ( std::vector< Range >{ { 1, 65535 } } ) );
   EXPECT_EQ( rangesOf( PortCondition( PortCondition::neq, { 65535 } ) ),
              ( std::vector< Range >{ { 0, 65534 } } ) );
   EXPECT_EQ( rangesOf( PortCondition( PortCondition::neq, { 65534 } ) ),
              ( std::vector< Range >{ { 0, 65533 }, { 65535, 65535 } } ) );
   // Neighbouring excluded values leave no empty gap between them.
   EXPECT_EQ( rangesOf( PortCondition( PortCondition::neq, { 0, 1, 65534, 65535 } ) ),
              ( std::vector< Range >{ { 2, 65533 } } ) );
   // Ten values in the middle leave eleven gaps, the most a condition can have.
   auto const ten = rangesOf(
         PortCondition( PortCondition::neq, { 100, 10, 20, 30, 40, 50, 60, 70, 80, 90 } ) );
   ASSERT_EQ( ten.size(), 11u );
   EXPECT_EQ( ten.front(), Range( 0, 9 ) );
   EXPECT_EQ( ten[ 5 ], Range( 51, 59 ) );
   EXPECT_EQ( ten.back(), Range( 101, 65535 ) );
}

TEST( AclRuleConfigTest, PortConditionRefusesValuesTheOperatorCannotTake ) {
   EXPECT_THROW( PortCondition( PortCondition::eq, { 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11 } ),
                 Zub::RangeException );
   EXPECT_THROW( PortCondition( PortCondition::range, { 1 } ), Zub::RangeException );
   EXPECT_THROW( PortCondition( PortCondition::gt, { 1, 2 } ), Zub::RangeException );
   EXPECT_THROW( PortCondition( PortCondition::lt, {} ), Zub::RangeException );
   EXPECT_THROW( PortCondition( PortCondition::eq, {} ), Zub::RangeException );
   EXPECT_THROW( PortCondition( PortCondition::any, { 1 } ), Zub::RangeException );
   PortCondition const full( PortCondition::neq, { 1, 2, 3, 4, 5, 6, 7, 8, 9, 10 } );
   EXPECT_EQ( full.count(), 10u );
   EXPECT_EQ( textOf( full ), "neq 1 2 3 4 5 6 7 8 9 10" );
}

TEST( AclRuleConfigTest, IpAddrWithMaskMaskAndText ) {
   EXPECT_EQ( Mirel::IpAddrWithMask( 0, 0 ).mask(), 0u );
   EXPECT_EQ( Mirel::IpAddrWithMask( 0x0a000000, 8 ).mask(), 0xff000000u );
   EXPECT_EQ( Mirel::IpAddrWithMask( 0x0a000000, 31 ).mask(), 0xfffffffeu );
   EXPECT_EQ( Mirel::IpAddrWithMask( 0x0a000001, 32 ).mask(), 0xffffffffu );
   EXPECT_THROW( Mirel::IpAddrWithMask( 0, 33 ), Zub::RangeException );
   // Host bits stay as configured.
   EXPECT_EQ( textOf( Mirel::IpAddrWithMask( 0x0a010203, 16 ) ), "10.1.2.3/16" );
   EXPECT_EQ( textOf( Mirel::IpAddrWithMask( 0xffffffff, 32 ) ), "255.255.255.255/32" );
   EXPECT_TRUE( !Mirel::IpAddrWithMask( 0, 0 ) );
   EXPECT_FALSE( !Mirel::IpAddrWithMask( 0, 1 ) );
}

TEST( AclRuleConfigTest, RuleTextInAccessListForm ) {
   Acl::IpRuleConfig r;
   EXPECT_EQ( textOf( r ), "permit ip any any" );
   r.action = Acl::actionDeny;
   r.filter.proto = 6;
   r.filter.source = Mirel::IpAddrWithMask( 0x0a000000, 8 );
   r.filter.srcPort = PortCondition::rangeOf( 1, 1023 );
   r.filter.dstPort = PortCondition( PortCondition::eq, { 80, 443 } );
   r.filter.ipLen = PortCondition( PortCondition::gt, { 100 } );
   r.filter.tcpFlag = Acl::TcpFlag( Acl::TcpFlag::syn_ | Acl::TcpFlag::ack_ );
   r.filter.established = true;
   r.filter.dscp = 46;
   r.filter.dscpValid = true;
   r.filter.ecn = Acl::ecnCe;
   r.filter.vlan = 10;
   r.filter.vlanMask = 0xfff;
   EXPECT_EQ( textOf( r ),
              "deny proto 6 10.0.0.0/8 range 1 1023 any eq 80 443 ip-length gt 100 tcp-flags 0x12 "
              "established dscp 46 ecn ecnCe vlan 10 0xfff" );
   Acl::IpRuleConfig icmp;
   icmp.filter.proto = 1;
   icmp.filter.icmpType = 3;
   icmp.filter.icmpTypeValid = true;
   icmp.filter.icmpCode = 0;
   icmp.filter.icmpCodeValid = true;
   icmp.filter.fragments = true;
   EXPECT_EQ( textOf( icmp ), "permit proto 1 any any icmp-type 3 icmp-code 0 fragments" );
}

}  // namespace
