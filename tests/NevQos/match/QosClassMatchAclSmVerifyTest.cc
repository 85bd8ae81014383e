// Verification of access groups against what the helper reads back, and the show walk: which
// subrules the engine expects, the findings it reports, the fatal forms on a simulated switch
// and for structural mismatches.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "support/LegacyQosAclSmFixture.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;

Acl::IpRuleConfig rule( std::uint8_t proto, Acl::PortCondition dst = {},
                        Acl::Action action = Acl::actionPermit ) {
   Acl::IpRuleConfig r;
   r.action = action;
   r.filter.proto = proto;
   r.filter.dstPort = dst;
   return r;
}

class QosClassMatchAclSmVerifyTest : public LegacyQosAclSmFixture {
 protected:
   // Policy map "gold" with class c4 matching the IPv4 list v4, applied to `intfName`.
   void goldIs( std::vector< Acl::IpRuleConfig > const& rules,
                char const* intfName = "Ethernet1" ) {
      start();
      ipAclIs( "v4", rules );
      classMapIs( "c4", { { Qos::matchOptionIpAcl, "v4" } } );
      classIs( "gold", "c4" );
      applyIs( "gold", { intf( intfName ) } );
      helper->clearCalls();
   }
   // One run of the chain, as the verify agent starts it; the report's lines.
   Lines verify() {
      verifyData->cliVerifyOutputDelAll();
      sm->schedulePolicyVerify();
      sm->handleVerify();
      Lines texts;
      for( auto const& text : verifyData->cliVerifyOutputTexts() )
         texts.push_back( text.stdString() );
      return texts;
   }
   // The subrule numbers the engine asked a query about, as "op ruleNum.subruleNum".
   Lines queries( char const* op ) const {
      Lines out;
      for( std::string const& line : helper->callsMatching( op ) ) {
         auto const field = [ & ]( std::string const& key ) {
            auto const at = line.find( " " + key + "=" );
            auto const from = at + key.size() + 2;
            return line.substr( from, line.find( ' ', from ) - from );
         };
         out.push_back( field( "ruleNum" ) + "." + field( "subruleNum" ) );
      }
      return out;
   }
};

TEST_F( QosClassMatchAclSmVerifyTest, OnlyPermitRulesAreExpectedAndEachMissingSubruleIsOneLine ) {
   goldIs( { rule( 17, {}, Acl::actionDeny ), rule( 17 ), rule( 6 ) } );
   helper->boolAnswerIs( "ipSubruleExists", false );
   EXPECT_EQ( verify(), ( Lines{ "ACL v4 sequence 20 rule 1 subrule 0 doesn't exist",
                                 "ACL v4 sequence 30 rule 2 subrule 0 doesn't exist" } ) )
         << "the deny rule that the helper left out is no finding";
   EXPECT_FALSE( sm->verifyPolicy() ) << "a run disarms itself";

   // A deny rule found in hardware is; the permit rules found are compared field by field.
   helper->clearCalls();
   helper->boolAnswerIs( "ipSubruleExists", true );
   helper->boolAnswerIs( "ipPortRangeSubruleExists", true );
   EXPECT_EQ( verify(), ( Lines{ "ACL v4 sequence 10 rule 0 subrule 0 exist for action 1" } ) );
   EXPECT_EQ( queries( "verifyIpRuleGeneral" ), ( Lines{ "1.0", "2.0" } ) );
   EXPECT_EQ( queries( "verifyIpRuleAction" ), ( Lines{ "1.0", "2.0" } ) );
}

TEST_F( QosClassMatchAclSmVerifyTest, AVlanRuleLeftOutOnAnSviIsNoFinding ) {
   Acl::IpRuleConfig vlan = rule( 17 );
   vlan.filter.vlan = 10;
   vlan.filter.vlanMask = 0xfff;
   goldIs( { vlan }, "Vlan10" );
   takeLogs();  // the compile's note that the rule is ignored
   helper->boolAnswerIs( "ipSubruleExists", false );
   EXPECT_EQ( verify(), Lines{} );
   EXPECT_TRUE( helper->callsMatching( "verifyAclGeneral" ).size() == 1 ) << "the list was walked";
}

TEST_F( QosClassMatchAclSmVerifyTest, AnExpandedRuleIsVerifiedEntryByEntryThenItsFragmentEntry ) {
   // Ports 80-90 are the blocks 80-87, 88-89 and 90.
   goldIs( { rule( 6, Acl::PortCondition::rangeOf( 80, 90 ) ) } );
   helper->boolAnswerIs( "ipSubruleExists", true );
   helper->boolAnswerIs( "ipPortRangeSubruleExists", false );
   EXPECT_EQ( verify(), Lines{} );
   Lines const dst = helper->callsMatching( "verifyIpRuleDstPort" );
   ASSERT_EQ( dst.size(), 4u ) << helper->callsText();
   EXPECT_NE( dst[ 0 ].find( "subruleNum=0 sequence=10 expectedLow=80 expectedHigh=87 valid=true" ),
              std::string::npos )
         << dst[ 0 ];
   EXPECT_NE( dst[ 1 ].find( "subruleNum=1 sequence=10 expectedLow=88 expectedHigh=89" ),
              std::string::npos )
         << dst[ 1 ];
   EXPECT_NE( dst[ 2 ].find( "subruleNum=2 sequence=10 expectedLow=90 expectedHigh=90" ),
              std::string::npos )
         << dst[ 2 ];
   // The fourth is the fragment entry: no port to match.
   EXPECT_NE( dst[ 3 ].find( "subruleNum=3 sequence=10 expectedLow=0 expectedHigh=65535 "
                             "valid=false" ),
              std::string::npos )
         << dst[ 3 ];
   EXPECT_EQ( queries( "ipSubruleExists" ), ( Lines{ "0.0", "0.3" } ) );
   EXPECT_EQ( queries( "verifyRulePorts" ), ( Lines{ "0.3" } ) );
}

TEST_F( QosClassMatchAclSmVerifyTest, OnASimulatedSwitchTheFirstFindingStopsTheProcess ) {
   goldIs( { rule( 17 ), rule( 6 ) } );
   helper->boolAnswerIs( "ipSubruleExists", false );
   EXPECT_DEATH(
         {
            setenv( "SIMULATION_VMID", "1", 1 );
            verify();
         },
         "Assertion `0' failed" );
}

TEST_F( QosClassMatchAclSmVerifyTest, StructuralMismatchesStopTheProcessWithTheirTexts ) {
   goldIs( { rule( 17 ) } );
   auto const pmap = sm->servicePolicySm( spKey( "gold" ) )->pmapSm( pmapKey( "gold" ) );
   auto const cls = pmap->policyClassSm( Nev::QosClassMapKey( Zub::Name( "c4" ), Qos::mapQos_ ) );
   ASSERT_TRUE( cls );
   EXPECT_DEATH(
         {
            cls->classMatchSm( Qos::matchOptionIpAcl )
                  ->aclSmDel( Nev::AclKey( Zub::Name( "v4" ), Acl::ip() ) );
            verify();
         },
         "aclSmHas\\( AclKey\\( classMatch\\(\\)->strValue\\(\\), Acl::ip\\(\\) \\) \\)" );
   EXPECT_DEATH(
         {
            pmap->policyClassSmDel( Nev::QosClassMapKey( Zub::Name( "c4" ), Qos::mapQos_ ) );
            verify();
         },
         "policyClassSm\\( cmapKey \\)" );
}

// ---- Show

class AclShowTest : public QosClassMatchAclSmVerifyTest {
 protected:
   void TearDown() override {
      if( out_ ) std::fclose( out_ );
      QosClassMatchAclSmVerifyTest::TearDown();
   }
   // The helper's show calls of one walk, by operation name.
   Lines show( bool detail ) {
      if( !out_ ) out_ = std::tmpfile();
      helper->clearCalls();
      sm->showAcls( static_cast< std::uint32_t >( fileno( out_ ) ), 0, detail, Qos::mapQos_ );
      Lines ops;
      for( std::string const& line : helper->calls() )
         ops.push_back( line.substr( 0, line.find( ' ' ) ) );
      return ops;
   }

 private:
   std::FILE* out_ = nullptr;
};

TEST_F( AclShowTest, DetailAddsTheRulesAndATrafficClassMatchShowsNothing ) {
   start();
   ipAclIs( "v4", { rule( 17 ), rule( 6 ) } );
   classMapIs( "c4", { { Qos::matchOptionIpAcl, "v4" } } );
   mplsClassMapIs( "mpls", { { 3, 3 } } );
   classIs( "gold", "c4" );
   classIs( "gold", "mpls" );
   applyIs( "gold", { intf( "Ethernet1" ) } );
   ASSERT_FALSE( helper->callsMatching( "createMplsTrafficClassRule" ).empty() );
   EXPECT_EQ( show( false ), ( Lines{ "showAclPolicyHeader", "showAclClassHeader", "showAclHeader",
                                      "showAclClassHeader" } ) )
         << "one header per ACL, none for the traffic-class match, no rules";
   EXPECT_EQ( show( true ), ( Lines{ "showAclPolicyHeader", "showAclClassHeader", "showAclHeader",
                                     "showIpAclRule", "showIpAclRule", "showAclClassHeader" } ) );
}

}  // namespace
}  // namespace NevQosTest
