// From class maps that match without an IP access list (VLAN, COS, DSCP/ECN, MPLS traffic
// class, MAC access group, built-in class) to the helper's rule calls, on both roads, with the
// values that each rule writes into the class data as the helper sees them during its call.
#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "support/LegacyQosAclSmFixture.h"
#include "zub/Format.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;

std::string hex( unsigned v ) {
   return Zub::format( "0x%x", v ).stdString();
}

// The values of the rule being made, as the class data holds them: "vlan=1/0xfff,cos=8/0".
std::string ruleValues( Nev::QosClassData const& cd ) {
   Lines parts;
   if( auto const l2 = cd.l2ParamsValue() ) {
      if( auto const v = l2->vlanValue() ) {
         parts.push_back( "vlan=" + std::to_string( v->vlan() ) + "/" + hex( v->vlanMask() ) );
      }
      if( auto const c = l2->cosValue() ) {
         parts.push_back( "cos=" + std::to_string( c->cos() ) + "/" +
                          std::to_string( c->cosMask() ) );
      }
   }
   if( auto const d = cd.dscpEcnValue() ) {
      parts.push_back( "tos=" + std::to_string( d->tosId() ) + "/" + hex( d->tosMask() ) );
   }
   if( auto const t = cd.mplsTrafficClassTuple() ) {
      parts.push_back( "tc=" + std::to_string( t->mplsTrafficClassVal().value() ) + "/" +
                       std::to_string( t->mplsTrafficClassMask().value() ) );
   }
   if( auto const m = cd.macValue() ) {
      parts.push_back( "mac=" + m->aclName().str().stdString() + "/" + hex( m->etherType() ) );
   }
   if( !cd.builtInClassMatchValue().builtInClass().empty() ) {
      parts.push_back( "builtIn=" + cd.builtInClassMatchValue().builtInClass().str().stdString() );
   }
   std::string out;
   for( auto const& p : parts )
      out += ( out.empty() ? "" : "," ) + p;
   return out.empty() ? "-" : out;
}

std::map< std::string, std::string > fieldsOf( std::string const& line ) {
   std::map< std::string, std::string > out;
   std::istringstream in( line );
   std::string word;
   in >> word;
   out[ "op" ] = word;
   while( in >> word ) {
      auto const eq = word.find( '=' );
      if( eq != std::string::npos ) out[ word.substr( 0, eq ) ] = word.substr( eq + 1 );
   }
   return out;
}

// The compile calls in a compact form: "rule vlan-acl-7 r0 vlan=1/0xfff", "pre cos-acl-7",
// "commit cos-acl-7", "supported?", "builtIn r0 builtIn=bfd".
Lines compileCalls( Lines const& calls ) {
   static std::map< std::string, std::string > const ruleOps = {
      { "createL2ParamsRule", "rule" },
      { "createDscpEcnRule", "rule" },
      { "createMplsTrafficClassRule", "rule" },
      { "createMacAclRule", "rule" },
      { "createBuiltInClassMatchRule", "builtIn" },
   };
   Lines out;
   for( auto const& line : calls ) {
      auto f = fieldsOf( line );
      std::string const& op = f[ "op" ];
      if( auto it = ruleOps.find( op ); it != ruleOps.end() ) {
         std::string const key = f.count( "aclKey" ) ? " " + f[ "aclKey" ] : "";
         out.push_back( it->second + key + " r" + f[ "ruleNum" ] + " " + f[ "class" ] );
      } else if( op == "precreateAcl" ) {
         out.push_back( "pre " + f[ "aclKey" ] );
      } else if( op == "commitAcl" ) {
         out.push_back( "commit " + f[ "aclKey" ] );
      } else if( op == "isSupportedMacAclRule" ) {
         out.push_back( "supported?" );
      } else if( op == "destroyAcl" ) {
         out.push_back( "destroy " + f[ "aclKey" ] );
      }
   }
   return out;
}

Acl::MacRuleConfig macRule( std::uint16_t etherType ) {
   Acl::MacRuleConfig r;
   r.filter.etherType = etherType;
   return r;
}

class QosClassMatchOptionSmTest : public LegacyQosAclSmFixture {
 protected:
   void SetUp() override {
      LegacyQosAclSmFixture::SetUp();
      helper->classDataTextIs( ruleValues );
   }
   void chipMatchesIs( bool supported ) {
      qosAclHwStatus->vlanClassMatchSupportedIs( supported );
      qosAclHwStatus->cosClassMatchSupportedIs( supported );
      qosAclHwStatus->dscpEcnClassMatchSupportedIs( supported );
   }
   // Classes named after their class maps, in this order, in "gold" on Ethernet1.
   void goldIs( std::vector< char const* > const& cmaps ) {
      for( char const* c : cmaps )
         classIs( "gold", c );
      applyIs( "gold", { intf( "Ethernet1" ) } );
   }
   // Serves the deferred road to the end, completing every operation.
   void drain() {
      for( int turns = 0; turns < 1000; ++turns ) {
         loop->runOnce();
         if( sm->asyncState() == Nev::asyncInProgress ) {
            helper->completeAsync();
         } else if( sm->pendingPolicyUpdate().empty() ) {
            return;
         }
      }
      FAIL() << "the queue did not drain";
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
      helper->asyncTcamOperationsSupportedIs( GetParam() );
      chipMatchesIs( true );
      start();
      helper->clearCalls();
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
   EXPECT_EQ( compileCalls( helper->calls() ),
              ( Lines{
                    "pre vlan-acl-7",
                    "rule vlan-acl-7 r0 vlan=1/0xfff",
                    "rule vlan-acl-7 r1 vlan=2/0xffe",
                    "commit vlan-acl-7",
                    "pre vlan-acl-7",
                    "rule vlan-acl-7 r0 vlan=100/0xff0",
                    "commit vlan-acl-7",
                    // The whole COS space is one block without a condition.
                    "pre cos-acl-7",
                    "rule cos-acl-7 r0 cos=0/0",
                    "commit cos-acl-7",
                    // COS outside, VLAN inside.
                    "pre vlan-cos-acl-7",
                    "rule vlan-cos-acl-7 r0 vlan=1/0xfff,cos=2/6",
                    "rule vlan-cos-acl-7 r1 vlan=2/0xffe,cos=2/6",
                    "rule vlan-cos-acl-7 r2 vlan=1/0xfff,cos=4/6",
                    "rule vlan-cos-acl-7 r3 vlan=2/0xffe,cos=4/6",
                    "commit vlan-cos-acl-7",
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
   for( auto const& line : compileCalls( helper->callsMatching( "createDscpEcnRule" ) ) )
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
   EXPECT_EQ( compileCalls( helper->calls() ),
              ( Lines{ "pre mpls-traffic-class-acl-7", "rule mpls-traffic-class-acl-7 r0 tc=1/7",
                       "rule mpls-traffic-class-acl-7 r1 tc=2/7", "commit mpls-traffic-class-acl-7",
                       "pre mpls-traffic-class-acl-7", "rule mpls-traffic-class-acl-7 r0 tc=0/0",
                       "commit mpls-traffic-class-acl-7",
                       // An empty match makes its ACL and no rule.
                       "pre mpls-traffic-class-acl-7", "commit mpls-traffic-class-acl-7" } ) );
   // Each traffic-class list goes with its class, the empty one too.
   helper->clearCalls();
   qosStatus->servicePolicyStatusDel( spKey( "gold" ) );
   settle();
   EXPECT_EQ( helper->callsMatching( "destroyAcl" ).size(), 3u );
   EXPECT_EQ( helper->callsMatching( "cleanupAcl" ).size(), 3u );
}

TEST_P( QosClassMatchOptionSmRoadTest, MacRulesTheChipLacksAreLeftOutWithoutANumber ) {
   startOnRoad();
   macAclIs( "m", { macRule( 0x800 ), macRule( 0x806 ), macRule( 0x86dd ) } );
   helper->boolAnswerEnq( "isSupportedMacAclRule", true );
   helper->boolAnswerEnq( "isSupportedMacAclRule", false );
   helper->boolAnswerEnq( "isSupportedMacAclRule", true );
   classMapIs( "mac", { { Qos::matchOptionMac, "m" } } );
   builtInClassMapIs( "builtin", "bfd" );
   goldIs( { "mac", "builtin" } );
   settle();
   EXPECT_EQ( compileCalls( helper->calls() ),
              ( Lines{ "pre mac-acl-7", "supported?", "rule mac-acl-7 r0 mac=m/0x800", "supported?",
                       "supported?", "rule mac-acl-7 r1 mac=m/0x86dd", "commit mac-acl-7",
                       // The built-in class is one rule that the chip fills in.
                       "pre -7", "builtIn r0 builtIn=bfd", "commit -7" } ) );
   EXPECT_EQ( takeLogs(), Lines{} );
}

INSTANTIATE_TEST_SUITE_P( Roads, QosClassMatchOptionSmRoadTest, ::testing::Values( false, true ),
                          []( auto const& param ) {
                             return param.param ? "Deferred" : "Immediate";
                          } );

TEST_F( QosClassMatchOptionSmTest, MatchesTheChipCannotMakeAreLeftOutOnlyOnTheImmediateRoad ) {
   for( bool deferred : { false, true } ) {
      SCOPED_TRACE( deferred ? "deferred" : "immediate" );
      TearDown();
      SetUp();
      helper->asyncTcamOperationsSupportedIs( deferred );
      chipMatchesIs( false );
      start();
      l2ClassMapIs( "vlan", Qos::matchOptionVlan, { { 10, 10 } } );
      l2ClassMapIs( "cos", Qos::matchOptionCos, {}, { { 5, 5 } } );
      dscpEcnClassMapIs( "ef", 46, Acl::ecnDontCare );
      helper->clearCalls();
      goldIs( { "vlan", "cos", "ef" } );
      if( deferred ) drain();
      Lines const calls = compileCalls( helper->calls() );
      if( !deferred ) {
         EXPECT_EQ( calls,
                    ( Lines{ "commit vlan-acl-7", "commit cos-acl-7", "commit dscpecn-acl-7" } ) )
               << "nothing programmed; the empty ACLs are committed";
      } else {
         // The deferred compile tests no capability: the chip that queues takes what it gets.
         EXPECT_EQ( helper->callsMatching( "createL2ParamsRule" ).size(), 2u );
         EXPECT_EQ( helper->callsMatching( "createDscpEcnRule" ).size(), 1u );
      }
      EXPECT_EQ( hwStatus( "gold" )->prgmStatus(), Qos::hwPrgmStatusSuccess_ );
   }
}

TEST_F( QosClassMatchOptionSmTest, ARefusedVlanOrDscpRuleEndsItsAclAndFailsTheMap ) {
   chipMatchesIs( true );
   start();
   l2ClassMapIs( "vlan", Qos::matchOptionVlan, { { 1, 3 } } );
   dscpEcnClassMapIs( "efEct", 46, Acl::ecnEctCe );
   helper->aclCreateErrorEnq( "createL2ParamsRule", Nev::aclCreateErrorOutOfTcam );
   helper->aclCreateErrorEnq( "createDscpEcnRule", Nev::aclCreateErrorNone );
   helper->aclCreateErrorEnq( "createDscpEcnRule", Nev::aclCreateErrorTooManyAcls );
   helper->clearCalls();
   goldIs( { "vlan", "efEct" } );
   EXPECT_EQ(
         compileCalls( helper->calls() ),
         ( Lines{ "pre vlan-acl-7", "rule vlan-acl-7 r0 vlan=1/0xfff", "pre dscpecn-acl-7",
                  "rule dscpecn-acl-7 r0 tos=185/0xff", "rule dscpecn-acl-7 r1 tos=186/0xfe" } ) )
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

TEST_F( QosClassMatchOptionSmTest, ARefusedMacRuleFailsTheMapAndAnIgnoredOneDoesNot ) {
   helper->boolAnswerIs( "isSupportedMacAclRule", true );
   start();
   macAclIs( "m", { macRule( 0x800 ), macRule( 0x806 ), macRule( 0x86dd ) } );
   classMapIs( "mac", { { Qos::matchOptionMac, "m" } } );
   helper->aclCreateErrorEnq( "createMacAclRule", Nev::aclCreateErrorRuleIgnored );
   helper->aclCreateErrorEnq( "createMacAclRule", Nev::aclCreateErrorOutOfTcam );
   helper->clearCalls();
   goldIs( { "mac" } );
   // The ignored rule is no failure; the refused one ends the list, which is not committed.
   EXPECT_EQ( compileCalls( helper->callsMatching( "createMacAclRule" ) ),
              ( Lines{ "rule mac-acl-7 r0 mac=m/0x800", "rule mac-acl-7 r1 mac=m/0x806" } ) );
   EXPECT_EQ( helper->callsMatching( "commitAcl" ), Lines{} );
   auto const match = classMatchSm( "mac", Qos::matchOptionMac );
   ASSERT_TRUE( match );
   auto const child = match->matchOptionSm().iter().value();
   EXPECT_TRUE(
         match->classData()->matchData( Qos::matchOptionMac )->aclData( child->key() )->dirty() );
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
   helper->clearCalls();
   applyIs( "gold", { intf( "Ethernet1" ) } );
   EXPECT_EQ( helper->callsMatching( "createDefaultRule" ),
              ( Lines{ "createDefaultRule pmap=gold class=- option=matchOptionIpAcl "
                       "aclKey=acl-default",
                       "createDefaultRule pmap=gold class=- option=matchOptionIpv6Acl "
                       "aclKey=acl-default-ipv6:ipv6" } ) );
}

}  // namespace
}  // namespace NevQosTest
