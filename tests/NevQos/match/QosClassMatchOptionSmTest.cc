// From class maps that match without an IP access list (VLAN, COS, DSCP/ECN, MPLS traffic
// class, MAC access group, built-in class) to the helper's rule calls, on both roads, with the
// entry the reference chip writes for each rule from the class data as it stands during the call.
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

// The fields of a chip entry as "name=value,...": what the rule call wrote, read from the class
// data during the call. "-" for none.
std::string valuesOf( Sim::TcamEntry const* entry ) {
   if( !entry ) return "-";
   std::string out;
   for( auto const& [ name, value ] : entry->fields )
      out += ( out.empty() ? "" : "," ) + name + "=" + value;
   return out.empty() ? "-" : out;
}

Acl::MacRuleConfig macRule( std::uint16_t etherType ) {
   Acl::MacRuleConfig r;
   r.filter.etherType = etherType;
   return r;
}

class QosClassMatchOptionSmTest : public QosAclSmFixture {
 protected:
   void chipMatchesIs( bool supported ) {
      qosAclHwStatus->vlanClassMatchSupportedIs( supported );
      qosAclHwStatus->cosClassMatchSupportedIs( supported );
      qosAclHwStatus->dscpEcnClassMatchSupportedIs( supported );
   }
   // The deferred road is a chip that completes its operations later; before start().
   void deferredIs( bool deferred ) {
      Sim::ChipConfig c;
      if( deferred ) {
         c.tcamMode = Sim::TcamMode::asynchronous;
         c.asyncDelay = 0.5;
      }
      chipIs( c );
   }
   // Classes named after their class maps, in this order, in "gold" on Ethernet1.
   void goldIs( std::vector< char const* > const& cmaps ) {
      for( char const* c : cmaps )
         classIs( "gold", c );
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
   // The compile calls in a compact form, each rule with the entry the chip holds for it:
   // "rule vlan-acl-7(ip) r0 vlan=1/0xfff", "pre cos-acl-7(ip)", "commit cos-acl-7(ip)",
   // "builtIn r0 class=bfd". A rule the chip holds no entry for shows "-".
   Lines compileCalls( std::string const& op = "" ) const {
      static std::map< std::string, std::string > const ruleOps = {
         { "createL2ParamsRule", "rule" },
         { "createDscpEcnRule", "rule" },
         { "createMplsTrafficClassRule", "rule" },
         { "createMacAclRule", "rule" },
      };
      Lines out;
      for( Sim::ChipCall const& call : helper->calls() ) {
         if( !op.empty() && call.op != op ) continue;
         std::string const aclKey = argOf( call, "aclKey" );
         std::string const aclId = argOf( call, "classData" ) + " " + aclKey;
         if( auto it = ruleOps.find( call.op ); it != ruleOps.end() ) {
            auto const ruleNum =
                  static_cast< std::uint32_t >( std::stoul( argOf( call, "ruleNum" ) ) );
            out.push_back( it->second + " " + aclKey + " r" + argOf( call, "ruleNum" ) + " " +
                           valuesOf( chip->tcam().entry( aclId, ruleNum, 0 ) ) );
         } else if( call.op == "createBuiltInClassMatchRule" ) {
            // The chip keeps a class's built-in rules in an ACL of their own.
            auto const acl = chip->tcam().acls().find( argOf( call, "classData" ) + " built-in" );
            Sim::TcamEntry const* entry = nullptr;
            if( acl != chip->tcam().acls().end() && !acl->second.entries.empty() ) {
               entry = &acl->second.entries.front();
            }
            out.push_back( "builtIn " +
                           ( entry ? "r" + std::to_string( entry->ruleNum ) + " " : "" ) +
                           valuesOf( entry ) );
         } else if( call.op == "isSupportedMacAclRule" ) {
            out.push_back( "supported?" );
         } else if( call.op == "precreateAcl" ) {
            out.push_back( "pre " + aclKey );
         } else if( call.op == "commitAcl" ) {
            out.push_back( "commit " + aclKey );
         } else if( call.op == "destroyAcl" ) {
            out.push_back( "destroy " + aclKey );
         }
      }
      return out;
   }
   Zub::Ptr< Nev::QosClassMatchSm > classMatchSm( char const* cmapName,
                                                  Qos::ClassMapMatchOption option ) {
      auto const pmapSm = sm->servicePolicySm( spKey( "gold" ) )->pmapSm( pmapKey( "gold" ) );
      auto const classSm =
            pmapSm->policyClassSm( Nev::QosClassMapKey( Zub::Name( cmapName ), Qos::mapQos_ ) );
      return classSm ? classSm->classMatchSm( option ) : nullptr;
   }
};

// The same rules on both roads: the immediate road compiles inside the machines, the deferred
// one from the copies that updateClassData makes when a request is served.
class QosClassMatchOptionSmRoadTest : public QosClassMatchOptionSmTest,
                                      public ::testing::WithParamInterface< bool > {
 protected:
   void startOnRoad() {
      deferredIs( GetParam() );
      chipMatchesIs( true );
      start();
      ASSERT_EQ( helper->asyncTcamOperationsSupported(), GetParam() );
      helper->callsForget();
   }
   void settle() {
      if( GetParam() ) drain();
   }
};

TEST_P( QosClassMatchOptionSmRoadTest, VlanAndCosRangesBecomeValueMaskBlocks ) {
   startOnRoad();
   l2ClassMapIs( "vlan", Qos::matchOptionVlan, { { 1, 3 } } );
   // A VLAN with its mask given takes it as it stands, whatever ranges it has.
   auto const masked = Zub::make< Qos::ClassMapMatchVlan >( 100, 0xff0 );
   masked->maskValidIs( true );
   masked->vlanCollIs( Qos::VlanRange( 1, 3 ), true );
   l2ClassMapIs( "masked", Qos::matchOptionVlan, {} )->vlanValueIs( masked );
   l2ClassMapIs( "cos", Qos::matchOptionCos, {}, { { 0, 7 } } );
   l2ClassMapIs( "both", Qos::matchOptionVlanCos, { { 1, 3 } }, { { 2, 5 } } );
   goldIs( { "vlan", "masked", "cos", "both" } );
   settle();
   EXPECT_EQ( compileCalls(), ( Lines{
                                    "pre vlan-acl-7(ip)",
                                    "rule vlan-acl-7(ip) r0 vlan=1/0xfff",
                                    "rule vlan-acl-7(ip) r1 vlan=2/0xffe",
                                    "commit vlan-acl-7(ip)",
                                    "pre vlan-acl-7(ip)",
                                    "rule vlan-acl-7(ip) r0 vlan=100/0xff0",
                                    "commit vlan-acl-7(ip)",
                                    // The whole COS space is one block without a condition.
                                    "pre cos-acl-7(ip)",
                                    "rule cos-acl-7(ip) r0 cos=0/0x0",
                                    "commit cos-acl-7(ip)",
                                    // COS outside, VLAN inside.
                                    "pre vlan-cos-acl-7(ip)",
                                    "rule vlan-cos-acl-7(ip) r0 vlan=1/0xfff,cos=2/0x6",
                                    "rule vlan-cos-acl-7(ip) r1 vlan=2/0xffe,cos=2/0x6",
                                    "rule vlan-cos-acl-7(ip) r2 vlan=1/0xfff,cos=4/0x6",
                                    "rule vlan-cos-acl-7(ip) r3 vlan=2/0xffe,cos=4/0x6",
                                    "commit vlan-cos-acl-7(ip)",
                              } ) );
   EXPECT_EQ( hwStatus( "gold" )->prgmStatus(), Qos::hwPrgmStatusSuccess_ );
}

TEST_P( QosClassMatchOptionSmRoadTest, DscpAndEcnBecomeTosValuesAndMasks ) {
   startOnRoad();
   dscpEcnClassMapIs( "ef", 46, Acl::ecnDontCare );
   dscpEcnClassMapIs( "efEct", 46, Acl::ecnEctCe );
   dscpEcnClassMapIs( "ce", 64, Acl::ecnCe );
   dscpEcnClassMapIs( "af11", 10, Acl::ecnNonEct );
   // DSCP 8 to 15 is one block; the ECT condition keeps its own order of entries.
   dscpEcnClassMapIs( "cs1", 64, Acl::ecnEct, { { 8, 15 } } );
   goldIs( { "ef", "efEct", "ce", "af11", "cs1" } );
   settle();
   Lines rules;
   for( auto const& line : compileCalls( "createDscpEcnRule" ) )
      rules.push_back( line.substr( line.find( " r" ) + 1 ) );
   EXPECT_EQ( rules, ( Lines{ "r0 tos=184/0xfc",  // 46
                              "r0 tos=185/0xff", "r1 tos=186/0xfe",
                              "r0 tos=3/0x3",  // no DSCP: the ECN bits alone
                              "r0 tos=40/0xff", "r0 tos=34/0xe3", "r1 tos=33/0xe3" } ) );
   EXPECT_EQ( helper->callsMatching( "commitAcl" ).size(), 5u );
}

TEST_P( QosClassMatchOptionSmRoadTest, MplsTrafficClassRangesBecomeRulesAndGoOnTeardown ) {
   startOnRoad();
   mplsClassMapIs( "two", { { 1, 2 } } );
   mplsClassMapIs( "all", { { 0, 7 } } );
   mplsClassMapIs( "none", {} );
   goldIs( { "two", "all", "none" } );
   settle();
   EXPECT_EQ(
         compileCalls(),
         ( Lines{ "pre mpls-traffic-class-acl-7(ip)",
                  "rule mpls-traffic-class-acl-7(ip) r0 trafficClass=1/7",
                  "rule mpls-traffic-class-acl-7(ip) r1 trafficClass=2/7",
                  "commit mpls-traffic-class-acl-7(ip)", "pre mpls-traffic-class-acl-7(ip)",
                  "rule mpls-traffic-class-acl-7(ip) r0 trafficClass=0/0",
                  "commit mpls-traffic-class-acl-7(ip)",
                  // An empty match makes its ACL and no rule.
                  "pre mpls-traffic-class-acl-7(ip)", "commit mpls-traffic-class-acl-7(ip)" } ) );
   // Each traffic-class list goes with its class, the empty one too.
   helper->callsForget();
   qosStatus->servicePolicyStatusDel( spKey( "gold" ) );
   settle();
   EXPECT_EQ( helper->callsMatching( "destroyAcl" ).size(), 3u );
   EXPECT_EQ( helper->callsMatching( "cleanupAcl" ).size(), 3u );
}

TEST_P( QosClassMatchOptionSmRoadTest, MacRulesTheChipLacksAreLeftOutWithoutANumber ) {
   startOnRoad();
   macAclIs( "m", { macRule( 0x800 ), macRule( 0x806 ), macRule( 0x86dd ) } );
   helper->answerEnq( "isSupportedMacAclRule", true );
   helper->answerEnq( "isSupportedMacAclRule", false );
   helper->answerEnq( "isSupportedMacAclRule", true );
   helper->detailRecordedIs( true );
   classMapIs( "mac", { { Qos::matchOptionMac, "m" } } );
   builtInClassMapIs( "builtin", "bfd" );
   goldIs( { "mac", "builtin" } );
   settle();
   // Each rule is asked about before it is made; the rule the chip lacks takes no number: the
   // third rule is r1.
   EXPECT_EQ( compileCalls(),
              ( Lines{ "pre mac-acl-7(ip)", "supported?", "rule mac-acl-7(ip) r0 etherType=0x800",
                       "supported?", "supported?", "rule mac-acl-7(ip) r1 etherType=0x86dd",
                       "commit mac-acl-7(ip)",
                       // The built-in class is one rule that the chip fills in.
                       "pre -7(ip)", "builtIn r0 class=bfd", "commit -7(ip)" } ) );
   EXPECT_EQ( takeLogs(), Lines{} );
}

INSTANTIATE_TEST_SUITE_P( Roads, QosClassMatchOptionSmRoadTest, ::testing::Values( false, true ),
                          []( auto const& param ) {
                             return param.param ? "Deferred" : "Immediate";
                          } );

TEST_F( QosClassMatchOptionSmTest, ARefusedVlanOrDscpRuleEndsItsAclAndFailsTheMap ) {
   chipMatchesIs( true );
   start();
   l2ClassMapIs( "vlan", Qos::matchOptionVlan, { { 1, 3 } } );
   dscpEcnClassMapIs( "efEct", 46, Acl::ecnEctCe );
   helper->answerEnq( "createL2ParamsRule", Nev::aclCreateErrorOutOfTcam );
   helper->forwardEnq( "createDscpEcnRule" );
   helper->answerEnq( "createDscpEcnRule", Nev::aclCreateErrorTooManyAcls );
   helper->callsForget();
   goldIs( { "vlan", "efEct" } );
   // A refused rule leaves no entry in the chip: "-".
   EXPECT_EQ( compileCalls(),
              ( Lines{ "pre vlan-acl-7(ip)", "rule vlan-acl-7(ip) r0 -", "pre dscpecn-acl-7(ip)",
                       "rule dscpecn-acl-7(ip) r0 tos=185/0xff", "rule dscpecn-acl-7(ip) r1 -" } ) )
         << "the second VLAN rule is not tried, and neither ACL is committed";
   auto const vlan = classMatchSm( "vlan", Qos::matchOptionVlan );
   ASSERT_TRUE( vlan );
   EXPECT_TRUE( vlan->classData()
                      ->matchData( Qos::matchOptionVlan )
                      ->aclData( Nev::AclKey( Zub::Name( "vlan-acl-7" ), Acl::ip() ) )
                      ->dirty() );
   EXPECT_EQ( takeLogs(), Lines{ "QOS_POLICY_HW_RESOURCE_FULL: Insufficient hardware resources to "
                                 "program the input policy-map gold." } );
   loop->runOnce();
   EXPECT_EQ( hwStatus( "gold" )->prgmStatus(), Qos::hwPrgmStatusFail_ );
}

TEST_F( QosClassMatchOptionSmTest, TheDefaultClassHasARulePerFamilyUnderTheAccessGroupOptions ) {
   start();
   ipAclIs( "v4", {} );
   ip6AclIs( "v6", {} );
   classMapIs( "both", { { Qos::matchOptionIpAcl, "v4" }, { Qos::matchOptionIpv6Acl, "v6" } } );
   classIs( "gold", "both" );
   classDefaultIs( "gold" );
   helper->callsForget();
   applyIs( "gold", { intf( "Ethernet1" ) } );
   EXPECT_EQ( helper->callsMatching( "createDefaultRule" ),
              ( Lines{ "createDefaultRule classData=gold(qos,input)/class-default/Default "
                       "aclKey=acl-default(ip)",
                       "createDefaultRule classData=gold(qos,input)/class-default/Default "
                       "aclKey=acl-default-ipv6(ipv6)" } ) );
}

}  // namespace
}  // namespace NevQosTest
