// From configuration entities to the helper's calls: how IPv4 and IPv6 access groups compile
// into subrules on both roads, how the compiler expands ranges when the chip asks, and how
// fragment entries are made.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "support/QosAclSmFixture.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;

// The value of argument `name` of a recorded call; empty when it has none.
std::string argOf( Sim::ChipCall const& call, std::string const& name ) {
   for( auto const& [ n, v ] : call.args ) {
      if( n == name ) return v;
   }
   return "";
}

[[maybe_unused]] Mirel::IpAddrWithMask v4( std::uint32_t a, std::uint32_t b, std::uint32_t c,
                                           std::uint32_t d, unsigned len ) {
   return Mirel::IpAddrWithMask( a << 24 | b << 16 | c << 8 | d, len );
}

Acl::IpRuleConfig ipRule( std::uint8_t proto, Acl::PortCondition dst = {},
                          Acl::PortCondition src = {} ) {
   Acl::IpRuleConfig r;
   r.filter.proto = proto;
   r.filter.dstPort = dst;
   r.filter.srcPort = src;
   return r;
}

Acl::Ip6RuleConfig ip6Rule( std::uint8_t proto, Acl::PortCondition dst = {} ) {
   Acl::Ip6RuleConfig r;
   r.filter.proto = proto;
   r.filter.dstPort = dst;
   return r;
}

class QosClassMatchAclSmTest : public QosAclSmFixture {
 protected:
   // A chip on the deferred road completes its operations later.
   static Sim::ChipConfig roadConfig( bool deferred ) {
      Sim::ChipConfig c;
      if( deferred ) {
         c.tcamMode = Sim::TcamMode::asynchronous;
         c.asyncDelay = 0.5;
      }
      return c;
   }
   // The compile calls in a compact form that shows what the tests check:
   //    "sub v4(ip) r0.1 src=0/0x0[0-65535] dst=80/0xfff8[80-87] len=0/0x0[0-65535] tcp=0x0 l4
   //    ecn=1/0x3", "frag v4(ip) r0.2 ecn=0/0x0", "pre v4(ip)", "commit v4(ip)",
   //    "default acl-default(ip)"
   // A fragment entry's numbers are those of the entry the chip holds for it, the ACL's
   // fragment entries taken in the order they were written.
   Lines compileCalls( std::string const& op = "" ) const {
      Lines out;
      std::map< std::string, std::size_t > fragsSeen;
      for( Sim::ChipCall const& call : helper->calls() ) {
         if( !op.empty() && call.op != op ) continue;
         auto const f = [ & ]( char const* name ) { return argOf( call, name ); };
         std::string const aclKey = f( "aclKey" );
         if( call.op == "createIpAclSubrule" ) {
            out.push_back( "sub " + aclKey + " r" + f( "ruleNum" ) + "." + f( "subruleNum" ) +
                           " src=" + f( "srcL4Port" ) + "/" + f( "srcL4PortMask" ) + "[" +
                           f( "srcPortLow" ) + "-" + f( "srcPortHigh" ) +
                           "] dst=" + f( "dstL4Port" ) + "/" + f( "dstL4PortMask" ) + "[" +
                           f( "dstPortLow" ) + "-" + f( "dstPortHigh" ) + "] len=" + f( "ipLen" ) +
                           "/" + f( "ipLenMask" ) + "[" + f( "ipLenLow" ) + "-" + f( "ipLenHigh" ) +
                           "] tcp=" + f( "tcpFlags" ) + ( f( "l4Rule" ) == "true" ? " l4" : "" ) +
                           " ecn=" + f( "ecnData" ) + "/" + f( "ecnMask" ) );
         } else if( call.op == "createIpFragRule" ) {
            std::string const aclId = f( "classData" ) + " " + aclKey;
            std::size_t const nth = fragsSeen[ aclId ]++;
            out.push_back( "frag " + aclKey + " " + fragEntry( aclId, nth ) );
         } else if( call.op == "precreateAcl" ) {
            out.push_back( "pre " + aclKey );
         } else if( call.op == "commitAcl" ) {
            out.push_back( "commit " + aclKey );
         } else if( call.op == "createDefaultRule" ) {
            out.push_back( "default " + aclKey );
         } else if( call.op == "destroyAcl" || call.op == "cleanupAcl" ) {
            out.push_back( ( call.op == "destroyAcl" ? "destroy " : "cleanup " ) + aclKey );
         }
      }
      return out;
   }
   // "r<rule>.<subrule> ecn=<ecn>" of the `nth` fragment entry of a chip ACL; "-" for none.
   std::string fragEntry( std::string const& aclId, std::size_t nth ) const {
      auto const acl = chip->tcam().acls().find( aclId );
      if( acl == chip->tcam().acls().end() ) return "-";
      for( Sim::TcamEntry const& e : acl->second.entries ) {
         if( e.kind != "ipFrag" || nth-- != 0 ) continue;
         std::string const* ecn = e.field( "ecn" );
         return "r" + std::to_string( e.ruleNum ) + "." + std::to_string( e.subruleNum ) +
                " ecn=" + ( ecn ? *ecn : "-" );
      }
      return "-";
   }
   // "gold": class c4 matching the IPv4 list v4, class c6 matching the IPv6 list v6, and the
   // default class, applied to Ethernet1.
   void goldIs() {
      classMapIs( "c4", { { Qos::matchOptionIpAcl, "v4" } } );
      classMapIs( "c6", { { Qos::matchOptionIpv6Acl, "v6" } } );
      classIs( "gold", "c4" );
      classIs( "gold", "c6" );
      classDefaultIs( "gold" );
      applyIs( "gold", { intf( "Ethernet1" ) } );
   }
   // Serves the deferred road to the end, the chip completing every operation.
   void drain() {
      for( int turns = 0; turns < 1000; ++turns ) {
         loop->runUntil( loop->now() + 1.0 );
         if( sm->asyncState() != Nev::asyncInProgress && sm->pendingPolicyUpdate().empty() ) {
            return;
         }
      }
      FAIL() << "the queue did not drain";
   }
   Nev::QosPolicyMapSm* goldSm() {
      return sm->servicePolicySm( spKey( "gold" ) )->pmapSm( pmapKey( "gold" ) ).ptr();
   }
};

// Three IPv4 rules: a port range that needs a range checker, an ECN rule that takes two
// passes, and a rule whose layer-3 match already has its fragment entry.
Lines const v4Stream = {
   "pre v4(ip)",
   "sub v4(ip) r0.0 src=0/0x0[0-65535] dst=80/0x0[80-90] len=0/0x0[0-65535] tcp=0x0 l4 ecn=0/0x0",
   "frag v4(ip) r0.1 ecn=0/0x0",
   "sub v4(ip) r1.0 src=0/0x0[0-65535] dst=53/0xffff[53-53] len=0/0x0[0-65535] tcp=0x0 l4 "
   "ecn=1/0x3",
   "sub v4(ip) r1.1 src=0/0x0[0-65535] dst=53/0xffff[53-53] len=0/0x0[0-65535] tcp=0x0 l4 "
   "ecn=2/0x2",
   "frag v4(ip) r1.2 ecn=1/0x3",
   "frag v4(ip) r1.3 ecn=2/0x2",
   "sub v4(ip) r2.0 src=0/0x0[0-65535] dst=443/0xffff[443-443] len=0/0x0[0-65535] tcp=0x0 l4 "
   "ecn=0/0x0",
   "commit v4(ip)",
};
Lines const v6Stream = {
   "pre v6(ipv6)",
   "sub v6(ipv6) r0.0 src=0/0x0[0-65535] dst=443/0xffff[443-443] len=0/0x0[0-65535] tcp=0x0 l4 "
   "ecn=0/0x0",
   "commit v6(ipv6)",
};

class QosClassMatchAclSmRoadTest : public QosClassMatchAclSmTest,
                                   public ::testing::WithParamInterface< bool > {};

TEST_P( QosClassMatchAclSmRoadTest, AccessGroupsCompileIntoTheSameSubrulesOnBothRoads ) {
   bool const deferred = GetParam();
   Sim::ChipConfig c = roadConfig( deferred );
   c.qosEcnSupport = true;
   chipIs( c );
   start();
   ASSERT_EQ( helper->asyncTcamOperationsSupported(), deferred );
   Acl::IpRuleConfig udp = ipRule( 17, Acl::PortCondition::eqOf( 53 ) );
   udp.filter.ecn = Acl::ecnEctCe;
   ipAclIs( "v4", { ipRule( 6, Acl::PortCondition::rangeOf( 80, 90 ) ), udp,
                    ipRule( 6, Acl::PortCondition::eqOf( 443 ) ) } );
   ip6AclIs( "v6", { ip6Rule( 6, Acl::PortCondition::eqOf( 443 ) ) } );
   helper->callsForget();
   goldIs();
   if( deferred ) drain();

   Lines expected = v4Stream;
   expected.insert( expected.end(), v6Stream.begin(), v6Stream.end() );
   Lines calls = compileCalls();
   ASSERT_GE( calls.size(), expected.size() );
   EXPECT_EQ( Lines( calls.begin(), calls.begin() + long( expected.size() ) ), expected );
   // The default class follows, one list per family of the map. On the deferred road both
   // families share one slot of the match; each request is served with its own list.
   Lines const rest( calls.begin() + long( expected.size() ), calls.end() );
   EXPECT_EQ( rest,
              ( Lines{ "pre acl-default(ip)", "default acl-default(ip)", "commit acl-default(ip)",
                       "pre acl-default-ipv6(ipv6)", "default acl-default-ipv6(ipv6)",
                       "commit acl-default-ipv6(ipv6)" } ) );
   auto const classSm =
         goldSm()->policyClassSm( Nev::QosClassMapKey( Zub::Name( "c4" ), Qos::mapQos_ ) );
   ASSERT_TRUE( classSm );
   auto const aclData = classSm->classData()
                              ->matchData( Qos::matchOptionIpAcl )
                              ->aclData( Nev::AclKey( Zub::Name( "v4" ), Acl::ip() ) );
   EXPECT_EQ( aclData->aclNumber(), ( 100 << 23 ) | ( 7 << 20 ) ) << "class 100, match 7";
   EXPECT_EQ( hwStatus( "gold" )->prgmStatus(), Qos::hwPrgmStatusSuccess_ );
}

INSTANTIATE_TEST_SUITE_P( Roads, QosClassMatchAclSmRoadTest, ::testing::Values( false, true ),
                          []( auto const& param ) {
                             return param.param ? "Deferred" : "Immediate";
                          } );

TEST_F( QosClassMatchAclSmTest, ARetryCodeExpandsOnlyTheDimensionsItNames ) {
   start();
   // Source 80..90 needs three blocks, destination 1000..1999 a range checker.
   ipAclIs( "v4", { ipRule( 6, Acl::PortCondition::rangeOf( 1000, 1999 ),
                            Acl::PortCondition::rangeOf( 80, 90 ) ),
                    ipRule( 6, Acl::PortCondition::eqOf( 53 ),
                            Acl::PortCondition::rangeOf( 80, 90 ) ) } );
   classMapIs( "c4", { { Qos::matchOptionIpAcl, "v4" } } );
   classIs( "gold", "c4" );
   // The refusals are scripted; the expanded blocks between them reach the chip.
   helper->answerEnq( "createIpAclSubrule", Nev::aclCreateErrorExpandSrc );
   helper->forwardEnq( "createIpAclSubrule" );
   helper->forwardEnq( "createIpAclSubrule" );
   helper->forwardEnq( "createIpAclSubrule" );
   helper->answerEnq( "createIpAclSubrule", Nev::aclCreateErrorTooManyL4PortRanges );
   helper->callsForget();
   applyIs( "gold", { intf( "Ethernet1" ) } );
   EXPECT_EQ( compileCalls( "createIpAclSubrule" ),
              ( Lines{
                    // Refused with "expand source": the failed attempt used number 0.
                    "sub v4(ip) r0.0 src=80/0x0[80-90] dst=1000/0x0[1000-1999] len=0/0x0[0-65535] "
                    "tcp=0x0 l4 ecn=0/0x0",
                    "sub v4(ip) r0.0 src=80/0xfff8[80-87] dst=1000/0x0[1000-1999] "
                    "len=0/0x0[0-65535] tcp=0x0 l4 ecn=0/0x0",
                    "sub v4(ip) r0.1 src=88/0xfffe[88-89] dst=1000/0x0[1000-1999] "
                    "len=0/0x0[0-65535] tcp=0x0 l4 ecn=0/0x0",
                    "sub v4(ip) r0.2 src=90/0xffff[90-90] dst=1000/0x0[1000-1999] "
                    "len=0/0x0[0-65535] tcp=0x0 l4 ecn=0/0x0",
                    // "Too many ranges" with a destination of one block: the source list alone.
                    "sub v4(ip) r1.0 src=80/0x0[80-90] dst=53/0xffff[53-53] len=0/0x0[0-65535] "
                    "tcp=0x0 l4 ecn=0/0x0",
                    "sub v4(ip) r1.0 src=80/0xfff8[80-87] dst=53/0xffff[53-53] len=0/0x0[0-65535] "
                    "tcp=0x0 l4 ecn=0/0x0",
                    "sub v4(ip) r1.1 src=88/0xfffe[88-89] dst=53/0xffff[53-53] len=0/0x0[0-65535] "
                    "tcp=0x0 l4 ecn=0/0x0",
                    "sub v4(ip) r1.2 src=90/0xffff[90-90] dst=53/0xffff[53-53] len=0/0x0[0-65535] "
                    "tcp=0x0 l4 ecn=0/0x0",
              } ) );
   // The fragment entry counts on from the expanded subrules.
   EXPECT_EQ( compileCalls( "createIpFragRule" ), Lines{ "frag v4(ip) r0.3 ecn=0/0x0" } );
   EXPECT_EQ( hwStatus( "gold" )->prgmStatus(), Qos::hwPrgmStatusSuccess_ );
}

// "Expand all" expands both ports, "expand destination" the destination alone: source 80..90
// takes three blocks and destination 88..90 two.
TEST_F( QosClassMatchAclSmTest, ExpandAllAndExpandDestinationExpandWhatTheyName ) {
   start();
   auto const rule =
         ipRule( 6, Acl::PortCondition::rangeOf( 88, 90 ), Acl::PortCondition::rangeOf( 80, 90 ) );
   ipAclIs( "a", { rule } );
   ipAclIs( "b", { rule } );
   classMapIs( "ca", { { Qos::matchOptionIpAcl, "a" } } );
   classMapIs( "cb", { { Qos::matchOptionIpAcl, "b" } } );
   classIs( "gold", "ca" );
   classIs( "gold", "cb" );
   helper->answerEnq( "createIpAclSubrule", Nev::aclCreateErrorExpandAll );
   for( int block = 0; block < 6; ++block )
      helper->forwardEnq( "createIpAclSubrule" );
   helper->answerEnq( "createIpAclSubrule", Nev::aclCreateErrorExpandDst );
   helper->callsForget();
   applyIs( "gold", { intf( "Ethernet1" ) } );
   std::map< std::string, unsigned > perList;
   for( std::string const& call : compileCalls( "createIpAclSubrule" ) )
      ++perList[ call.substr( 0, 9 ) ];
   EXPECT_EQ( perList, ( std::map< std::string, unsigned >{ { "sub a(ip)", 1 + 3 * 2 },
                                                            { "sub b(ip)", 1 + 2 } } ) );
   EXPECT_EQ( hwStatus( "gold" )->prgmStatus(), Qos::hwPrgmStatusSuccess_ );
}

TEST_F( QosClassMatchAclSmTest, ASecondRefusalEndsTheListAndFailsTheMap ) {
   start();
   ipAclIs( "v4", { ipRule( 6, {}, Acl::PortCondition::rangeOf( 80, 90 ) ),
                    ipRule( 6, Acl::PortCondition::eqOf( 22 ) ) } );
   ip6AclIs( "v6", { ip6Rule( 6, Acl::PortCondition::eqOf( 22 ) ) } );
   classMapIs( "c4", { { Qos::matchOptionIpAcl, "v4" } } );
   classMapIs( "c6", { { Qos::matchOptionIpv6Acl, "v6" } } );
   classIs( "gold", "c4" );
   classIs( "gold", "c6" );
   helper->answerEnq( "createIpAclSubrule", Nev::aclCreateErrorExpandSrc );
   helper->forwardEnq( "createIpAclSubrule" );
   helper->answerEnq( "createIpAclSubrule", Nev::aclCreateErrorOutOfTcam );
   // IPv6 never expands IP lengths: the code ends the list.
   helper->answerEnq( "createIpAclSubrule", Nev::aclCreateErrorExpandIpLen );
   helper->callsForget();
   applyIs( "gold", { intf( "Ethernet1" ) } );
   Lines const calls = compileCalls();
   EXPECT_EQ( calls, ( Lines{ "pre v4(ip)",
                              "sub v4(ip) r0.0 src=80/0x0[80-90] dst=0/0x0[0-65535] "
                              "len=0/0x0[0-65535] tcp=0x0 l4 ecn=0/0x0",
                              "sub v4(ip) r0.0 src=80/0xfff8[80-87] dst=0/0x0[0-65535] "
                              "len=0/0x0[0-65535] tcp=0x0 l4 ecn=0/0x0",
                              "sub v4(ip) r0.1 src=88/0xfffe[88-89] dst=0/0x0[0-65535] "
                              "len=0/0x0[0-65535] tcp=0x0 l4 ecn=0/0x0",
                              "pre v6(ipv6)",
                              "sub v6(ipv6) r0.0 src=0/0x0[0-65535] dst=22/0xffff[22-22] "
                              "len=0/0x0[0-65535] tcp=0x0 l4 ecn=0/0x0" } ) )
         << "no commit of a failed list, and the next rule is not tried";
   EXPECT_TRUE( helper->pmapState( pmapKey( "gold" ) )->dirty() );
   EXPECT_EQ( takeLogs(), Lines{ "QOS_POLICY_HW_RESOURCE_FULL: Insufficient hardware resources to "
                                 "program the input policy-map gold." } );
   loop->runOnce();
   EXPECT_EQ( hwStatus( "gold" )->prgmStatus(), Qos::hwPrgmStatusFail_ );
}

TEST_F( QosClassMatchAclSmTest, FragmentEntriesOncePerLayerThreeMatch ) {
   Sim::ChipConfig c;
   c.qosEcnSupport = false;
   chipIs( c );
   start();
   auto tcp = []( std::uint32_t net, std::uint16_t port ) {
      Acl::IpRuleConfig r = ipRule( 6, Acl::PortCondition::eqOf( port ) );
      r.filter.source = Mirel::IpAddrWithMask( net << 24, net ? 8 : 0 );
      return r;
   };
   Acl::IpRuleConfig fragmentsOnly = ipRule( 6 );
   fragmentsOnly.filter.fragments = true;
   fragmentsOnly.filter.source = Mirel::IpAddrWithMask( 10u << 24, 8 );
   Acl::IpRuleConfig ect = tcp( 10, 81 );
   ect.filter.ecn = Acl::ecnEctCe;  // without ECN support: one entry of (0, 0)
   Acl::IpRuleConfig vlan = tcp( 10, 82 );
   vlan.filter.vlan = 10;
   vlan.filter.vlanMask = 0xfff;
   Acl::IpRuleConfig laterFragments = fragmentsOnly;
   laterFragments.filter.source = Mirel::IpAddrWithMask( 30u << 24, 8 );
   ipAclIs( "v4", { fragmentsOnly, tcp( 10, 80 ), tcp( 10, 80 ), ect, vlan, tcp( 20, 83 ),
                    laterFragments, tcp( 30, 84 ), ipRule( 17 ), tcp( 0, 85 ), tcp( 40, 86 ) } );
   classMapIs( "c4", { { Qos::matchOptionIpAcl, "v4" } } );
   classIs( "gold", "c4" );
   helper->callsForget();
   applyIs( "gold", { intf( "Ethernet1" ) } );
   EXPECT_EQ( compileCalls( "createIpFragRule" ),
              ( Lines{ "frag v4(ip) r1.1 ecn=0/0x0",  // the fragments-only rule before found no map
                       "frag v4(ip) r3.1 ecn=0/0x0",  // a new ECN condition is a new layer-3 match
                       "frag v4(ip) r4.1 ecn=0/0x0",  // a VLAN rule always makes its own
                       "frag v4(ip) r5.1 ecn=0/0x0",  // another source
                       // r7 is covered by the fragments-only rule r6, r8 has no layer 4
                       "frag v4(ip) r9.1 ecn=0/0x0" } ) )
         << "r10 is covered by the entry of r9, which matches any address";
   EXPECT_EQ( helper->callsMatching( "createIpAclSubrule" ).size(), 11u )
         << "every rule has its one subrule, the fragments-only ones included";
}

}  // namespace
}  // namespace NevQosTest
