#include "NevQos/sim/classbench/ClassBench.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "NevQos/platform/nev/AclIpRuleCreateData.h"
#include "NevQos/platform/zub/Exception.h"

namespace {

std::filesystem::path const dataDir( NEVQOS_CLASSBENCH_DIR );

std::string textOf( Acl::IpRuleConfig const& r ) {
   std::ostringstream os;
   os << r;
   return os.str();
}

std::vector< Acl::IpRuleConfig > parsed( std::string const& text ) {
   std::istringstream in( text );
   return Sim::parseClassBench( in, "acl1_1k" );
}

std::string parseError( std::string const& text ) {
   try {
      parsed( text );
   } catch( Zub::ParseException const& e ) {
      return e.what();
   }
   return "no error";
}

// The table of the data directory's README, copied by hand.
struct DataSet {
   char const* name;
   std::size_t rules;
   std::size_t withPortCondition;
   std::uint64_t portEntries;
};

constexpr DataSet dataSets[] = {
   { "acl1_1k", 942, 689, 1307 }, { "acl1_10k", 9774, 7030, 13300 },
   { "fw1_1k", 857, 666, 2737 },  { "fw1_10k", 9379, 7675, 31654 },
   { "ipc1_1k", 974, 600, 1289 }, { "ipc1_10k", 9518, 6009, 12738 },
};

TEST( ClassBenchTest, DataSetsGiveThePublishedCounts ) {
   for( DataSet const& set : dataSets ) {
      SCOPED_TRACE( set.name );
      auto const rules = Sim::readClassBench( dataDir / set.name );
      EXPECT_EQ( rules.size(), set.rules );
      EXPECT_EQ( Sim::rulesWithPortCondition( rules ), set.withPortCondition );
      EXPECT_EQ( Sim::portBlockProduct( rules ), set.portEntries );
   }
}

// The compiler's plan of each rule, with no range checker, reaches the same entry count.
TEST( ClassBenchTest, RulePlansAgreeWithTheBlockCount ) {
   for( DataSet const& set : dataSets ) {
      SCOPED_TRACE( set.name );
      std::uint64_t entries = 0;
      for( auto const& rule : Sim::readClassBench( dataDir / set.name ) ) {
         Nev::AclIpRuleCreateData_ data;
         Nev::createIpAclRuleData( rule.filter, data, false, false );
         std::uint64_t src = 0, dst = 0;
         for( unsigned i = 1; i <= data.srcPortCount; ++i )
            src += data.srcPortMasks[ i ].size();
         for( unsigned i = 1; i <= data.dstPortCount; ++i )
            dst += data.dstPortMasks[ i ].size();
         entries += src * dst;
      }
      EXPECT_EQ( entries, set.portEntries );
   }
}

TEST( ClassBenchTest, RulesReadAsTheirAccessListText ) {
   auto const acl = Sim::readClassBench( dataDir / "acl1_1k" );
   ASSERT_EQ( acl.size(), 942u );
   EXPECT_EQ( textOf( acl[ 0 ] ), "permit proto 6 176.19.181.33/32 90.145.23.162/32 eq 1550" );
   EXPECT_EQ( textOf( acl[ 747 ] ), "permit ip 176.19.181.33/32 90.87.246.131/32" );
   auto const fw = Sim::readClassBench( dataDir / "fw1_1k" );
   EXPECT_EQ( textOf( fw[ 13 ] ),
              "permit proto 17 186.131.64.138/32 eq 123 186.131.67.187/32 range 1024 65535" );
   EXPECT_EQ( textOf( fw[ 38 ] ), "permit proto 17 37.184.89.213/32 eq 161 any eq 21" );
   // Carriage returns and a missing final tab are accepted; the flags never reach the rule.
   auto const rules = parsed(
         "@10.1.0.0/16\t0.0.0.0/0\t0 : 1023\t0 : 65535\t0x06/0x00\t"
         "0x1000/0x1000\r\n"
         "@0.0.0.0/0\t10.0.0.1/32\t0 : 65535\t0 : 65535\t0x01/0xff\t"
         "0x0d00/0xff00\t\r\n" );
   ASSERT_EQ( rules.size(), 2u );
   EXPECT_EQ( textOf( rules[ 0 ] ), "permit ip 10.1.0.0/16 range 0 1023 any" );
   EXPECT_EQ( textOf( rules[ 1 ] ), "permit proto 1 any 10.0.0.1/32" );
}

TEST( ClassBenchTest, BadInputNamesFileLineAndProblem ) {
   std::string const good =
         "@1.2.3.4/32\t5.6.7.8/32\t0 : 65535\t80 : 80\t0x06/0xFF\t0x0000/0x0000\t\n";
   std::string sixteen;
   for( int i = 0; i < 16; ++i )
      sixteen += good;
   struct Case {
      char const* line;
      char const* error;
   } const cases[] = {
      { "@1.2.3.4/32\t5.6.7.8/40\t0 : 65535\t80 : 80\t0x06/0xFF\t0x0000/0x0000",
        "acl1_1k:17: destination prefix length 40 above 32" },
      { "@1.2.3.4/24\t5.6.7.8/32\t0 : 65535\t80 : 80\t0x06/0xFF\t0x0000/0x0000",
        "acl1_1k:17: source prefix '1.2.3.4/24' has bits set past its length" },
      { "@1.2.3.4/32\t5.6.7.8/32\t0 : 65535\t80 : 80\t0x06/0xFF",
        "acl1_1k:17: wrong field count: 5 instead of 6" },
      { "", "acl1_1k:17: wrong field count: 0 instead of 6" },
      { "1.2.3.4/32\t5.6.7.8/32\t0 : 65535\t80 : 80\t0x06/0xFF\t0x0000/0x0000",
        "acl1_1k:17: missing '@' before the source prefix" },
      { "@1.2.3.4/32\t5.6.7.8/32\t0 : 65535\t90 : 80\t0x06/0xFF\t0x0000/0x0000",
        "acl1_1k:17: destination port range 90 : 80 has low above high" },
      { "@1.2.3.4/32\t5.6.7.8/32\t0 : 65536\t80 : 80\t0x06/0xFF\t0x0000/0x0000",
        "acl1_1k:17: source port 65536 above 65535" },
      { "@1.2.3.4/32\t5.6.7.8/32\t0 : 6x\t80 : 80\t0x06/0xFF\t0x0000/0x0000",
        "acl1_1k:17: bad number '6x' in source port" },
      { "@1.2.3/32\t5.6.7.8/32\t0 : 65535\t80 : 80\t0x06/0xFF\t0x0000/0x0000",
        "acl1_1k:17: source address '1.2.3' not four octets" },
      { "@1.2.3.256/32\t5.6.7.8/32\t0 : 65535\t80 : 80\t0x06/0xFF\t0x0000/0x0000",
        "acl1_1k:17: source address octet 256 above 255" },
      { "@1.2.3.4/32\t5.6.7.8/32\t0 : 65535\t80 : 80\t0x06/0x0F\t0x0000/0x0000",
        "acl1_1k:17: protocol mask 0x0F neither 0x00 nor 0xff" },
      { "@1.2.3.4/32\t5.6.7.8/32\t0 : 65535\t80 : 80\t06/0xFF\t0x0000/0x0000",
        "acl1_1k:17: bad hex number '06' in protocol" },
      { "@1.2.3.4/32\t5.6.7.8/32\t0 : 65535\t80 : 80\t0x106/0xFF\t0x0000/0x0000",
        "acl1_1k:17: protocol 0x106 above 0xff" },
      { "@1.2.3.4/32\t5.6.7.8/32\t0 : 65535\t80 : 80\t0x06/0xFF\t0x0000",
        "acl1_1k:17: flags '0x0000' without '/mask'" },
      { "@1.2.3.4/32\t5.6.7.8/32\t0 : 65535\t80 : 80\t0x06/0xFF\t0x1200/0x0200",
        "acl1_1k:17: flags 0x1200/0x0200 set bits outside their mask" },
   };
   for( Case const& c : cases ) {
      EXPECT_EQ( parseError( sixteen + c.line + "\n" + good ), c.error );
   }
   EXPECT_EQ( parseError( sixteen ), "no error" );
   std::filesystem::path const missing = dataDir / "no_such_set";
   try {
      Sim::readClassBench( missing );
      ADD_FAILURE() << "no error for a missing file";
   } catch( Zub::ParseException const& e ) {
      EXPECT_EQ( std::string( e.what() ), missing.string() + ": cannot be opened" );
   }
}

Acl::IpRuleConfig ruleOf( std::uint32_t src, unsigned srcLen, Acl::PortCondition dstPort,
                          std::uint8_t proto = 6 ) {
   Acl::IpRuleConfig r;
   r.filter.source = Mirel::IpAddrWithMask( src, srcLen );
   r.filter.dstPort = dstPort;
   r.filter.proto = proto;
   return r;
}

TEST( ClassBenchTest, PortBlocksCountEveryRangeOfACondition ) {
   auto rule = ruleOf( 0, 0, Acl::PortCondition::rangeOf( 80, 90 ) );  // 80-87, 88-89, 90
   EXPECT_EQ( Sim::portBlockProduct( { rule } ), 3u );
   rule.filter.srcPort =
         Acl::PortCondition( Acl::PortCondition::neq, { 0 } );  // 1, 2-3, ..., 32768-65535
   EXPECT_EQ( Sim::portBlockProduct( { rule } ), 3u * 16 );
   rule.filter.srcPort = Acl::PortCondition( Acl::PortCondition::eq, { 443, 80, 443 } );
   EXPECT_EQ( Sim::portBlockProduct( { rule } ), 3u * 2 );
   rule.filter.srcPort =
         Acl::PortCondition( Acl::PortCondition::gt, { 65535 } );  // matches nothing
   EXPECT_EQ( Sim::portBlockProduct( { rule } ), 0u );
   EXPECT_EQ( Sim::portBlockProduct( { rule, ruleOf( 0, 0, {} ) } ), 1u );
   EXPECT_EQ( Sim::rulesWithPortCondition( { rule, ruleOf( 0, 0, {} ) } ), 1u );
}

TEST( ClassBenchTest, FragmentEntriesOnePerLayerThreeMatchAndProtocol ) {
   auto const port80 = Acl::PortCondition::eqOf( 80 );
   auto const a = ruleOf( 0x0a000000, 8, port80 );
   auto const b = ruleOf( 0x0b000000, 8, port80 );
   EXPECT_EQ( Sim::fragmentEntries( { ruleOf( 0x0a000000, 8, {} ) }, false ), 0u );
   EXPECT_EQ( Sim::fragmentEntries( { a, a, b }, false ), 2u );
   EXPECT_EQ( Sim::fragmentEntries( { a, ruleOf( 0x0a000000, 8, port80, 17 ) }, false ), 2u );
   // An earlier rule on any addresses covers every later match of its protocol, not others.
   auto const anyTcp = ruleOf( 0, 0, port80 );
   EXPECT_EQ( Sim::fragmentEntries( { anyTcp, a, b }, false ), 1u );
   EXPECT_EQ( Sim::fragmentEntries( { a, b, anyTcp }, false ), 3u );
   EXPECT_EQ( Sim::fragmentEntries( { anyTcp, ruleOf( 0, 0, port80, 17 ) }, false ), 2u );
   // A VLAN rule always has its own.
   auto onVlan = a;
   onVlan.filter.vlan = 10;
   onVlan.filter.vlanMask = 0xfff;
   EXPECT_EQ( Sim::fragmentEntries( { a, onVlan, onVlan }, false ), 3u );
   // ICMP and TCP-flag conditions are layer-4 conditions too.
   auto icmp = ruleOf( 0x0a000000, 8, {}, 1 );
   icmp.filter.icmpTypeValid = true;
   auto syn = ruleOf( 0x0a000000, 8, {} );
   syn.filter.tcpFlag = Acl::TcpFlag( Acl::TcpFlag::syn_ );
   EXPECT_EQ( Sim::fragmentEntries( { icmp, syn }, false ), 2u );
}

TEST( ClassBenchTest, FragmentRulesStandInForLaterEntries ) {
   auto const a = ruleOf( 0x0a000000, 8, Acl::PortCondition::eqOf( 80 ) );
   auto const b = ruleOf( 0x0b000000, 8, Acl::PortCondition::eqOf( 80 ) );
   auto fragB = ruleOf( 0x0b000000, 8, {}, 0 );
   fragB.filter.fragments = true;
   // Protocol 0 reaches every map that exists by then, and only those.
   EXPECT_EQ( Sim::fragmentEntries( { a, fragB, b }, false ), 1u );
   EXPECT_EQ( Sim::fragmentEntries( { fragB, a, b }, false ), 2u );
   auto fragBudp = fragB;
   fragBudp.filter.proto = 17;
   EXPECT_EQ( Sim::fragmentEntries( { a, fragBudp, b }, false ), 2u );
   auto fragBtcp = fragB;
   fragBtcp.filter.proto = 6;
   EXPECT_EQ( Sim::fragmentEntries( { a, fragBtcp, b }, false ), 1u );
   // A fragments rule with a port condition matches nothing and stands in for nothing.
   auto fragBport = fragBtcp;
   fragBport.filter.dstPort = Acl::PortCondition::eqOf( 80 );
   EXPECT_EQ( Sim::fragmentEntries( { a, fragBport, b }, false ), 2u );
}

TEST( ClassBenchTest, FragmentEntriesFollowTheEcnSplit ) {
   auto rule = ruleOf( 0x0a000000, 8, Acl::PortCondition::eqOf( 80 ) );
   unsigned const expected[] = { 1, 2, 1, 1, 2 };  // by Acl::Ecn value
   for( unsigned ecn = 0; ecn < 5; ++ecn ) {
      rule.filter.ecn = static_cast< Acl::Ecn >( ecn );
      EXPECT_EQ( Sim::fragmentEntries( { rule }, true ), expected[ ecn ] ) << ecn;
      EXPECT_EQ( Sim::fragmentEntries( { rule }, false ), 1u ) << ecn;
   }
   // The ECN condition is part of the layer-3 match.
   rule.filter.ecn = Acl::ecnEct;
   auto ce = rule;
   ce.filter.ecn = Acl::ecnCe;
   EXPECT_EQ( Sim::fragmentEntries( { rule, ce, rule }, true ), 3u );
}

}  // namespace
