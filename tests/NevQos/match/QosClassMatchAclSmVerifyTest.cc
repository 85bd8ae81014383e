// Verification of access groups against what the helper reads back, and the show walk: which
// subrules the engine expects, the findings it reports, the fatal forms on a simulated switch
// and for structural mismatches.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "support/QosAclSmFixture.h"

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

class QosClassMatchAclSmVerifyTest : public QosAclSmFixture {
 protected:
   // Policy map "gold" with class c4 matching the IPv4 list v4, applied to `intfName`.
   void goldIs( std::vector< Acl::IpRuleConfig > const& rules,
                char const* intfName = "Ethernet1" ) {
      start();
      ipAclIs( "v4", rules );
      classMapIs( "c4", { { Qos::matchOptionIpAcl, "v4" } } );
      classIs( "gold", "c4" );
      applyIs( "gold", { intf( intfName ) } );
      helper->callsForget();
   }
   // One run of the chain, as the verify agent starts it; the report's lines, the engine's and
   // the chip's. The decorator records the run's calls, the checks of single subrules among them.
   Lines verify() {
      verifyData->cliVerifyOutputDelAll();
      helper->callsForget();
      helper->detailRecordedIs( true );
      sm->schedulePolicyVerify();
      sm->handleVerify();
      helper->detailRecordedIs( false );
      Lines texts;
      for( auto const& text : verifyData->cliVerifyOutputTexts() )
         texts.push_back( text.stdString() );
      return texts;
   }
   // The subrules the last run asked `op` about, as "ruleNum.subruleNum", in order.
   Lines queries( char const* op ) const {
      Lines out;
      for( Sim::ChipCall const& call : helper->calls() ) {
         if( call.op != op ) continue;
         std::string rule, subrule;
         for( auto const& [ name, value ] : call.args ) {
            if( name == "ruleNum" ) rule = value;
            if( name == "subruleNum" ) subrule = value;
         }
         out.push_back( rule + "." + subrule );
      }
      return out;
   }
   // Damages field `field` of entry (ruleNum, subruleNum) of v4 in the chip, so that the run
   // reports the entry, with what the engine expected of it, if and only if it checks the field.
   void damage( std::uint32_t ruleNum, std::uint32_t subruleNum, char const* field,
                char const* value ) {
      ASSERT_EQ( chip->corruptEntry( "v4", ruleNum, subruleNum, field, value ), 1u );
   }
   // Loses entry (ruleNum, subruleNum) of v4 in the chip.
   void lose( std::uint32_t ruleNum, std::uint32_t subruleNum ) {
      ASSERT_EQ( chip->corruptEntry( "v4", ruleNum, subruleNum, "", "" ), 1u );
   }
};

TEST_F( QosClassMatchAclSmVerifyTest, OnlyPermitRulesAreExpectedAndEachMissingSubruleIsOneLine ) {
   goldIs( { rule( 17, {}, Acl::actionDeny ), rule( 17 ), rule( 6 ) } );
   // A chip that has lost every entry.
   helper->answerIs( "ipSubruleExists", false );
   EXPECT_EQ( verify(), ( Lines{ "ACL v4 sequence 20 rule 1 subrule 0 doesn't exist",
                                 "ACL v4 sequence 30 rule 2 subrule 0 doesn't exist" } ) )
         << "the deny rule that the helper left out is no finding";
   EXPECT_FALSE( sm->verifyPolicy() ) << "a run disarms itself";

   // A deny rule found in hardware is; the permit rules found are compared field by field, as
   // their damaged actions show.
   helper->answerIs( "ipSubruleExists", true );
   helper->answerIs( "ipPortRangeSubruleExists", true );
   damage( 1, 0, "action", "deny" );
   damage( 2, 0, "action", "deny" );
   EXPECT_EQ( verify(),
              ( Lines{ "ACL v4 sequence 10 rule 0 subrule 0 exist for action 1",
                       "ACL v4 sequence 20 rule 1 subrule 0 action is deny, expected permit",
                       "ACL v4 sequence 30 rule 2 subrule 0 action is deny, expected permit" } ) );
   EXPECT_EQ( queries( "verifyIpRuleGeneral" ), ( Lines{ "1.0", "2.0" } ) );
   EXPECT_EQ( queries( "verifyIpRuleAction" ), ( Lines{ "1.0", "2.0" } ) );
}

TEST_F( QosClassMatchAclSmVerifyTest, AnExpandedRuleIsVerifiedEntryByEntryThenItsFragmentEntry ) {
   // Without range checkers the chip has ports 80-90 expanded into the blocks 80-87, 88-89 and
   // 90.
   Sim::ChipConfig c;
   c.rangeCheckers = 0;
   chipIs( c );
   goldIs( { rule( 6, Acl::PortCondition::rangeOf( 80, 90 ) ) } );
   EXPECT_EQ( verify(), Lines{} ) << "the engine expects what it wrote";
   // Each entry with a wrong port shows the range the engine expects of it. The fourth is the
   // fragment entry: no port to match.
   damage( 0, 0, "dstPort", "1/0xffff" );
   damage( 0, 1, "dstPort", "1/0xffff" );
   damage( 0, 2, "dstPort", "1/0xffff" );
   damage( 0, 3, "dstPort", "1/0xffff" );
   EXPECT_EQ( verify(),
              ( Lines{ "ACL v4 sequence 10 rule 0 subrule 0 dstPort is 1-1, expected 80-87",
                       "ACL v4 sequence 10 rule 0 subrule 1 dstPort is 1-1, expected 88-89",
                       "ACL v4 sequence 10 rule 0 subrule 2 dstPort is 1-1, expected 90-90",
                       "ACL v4 sequence 10 rule 0 subrule 3 dstPort is 1-1, expected "
                       "0-65535" } ) );
   EXPECT_EQ( queries( "verifyIpRuleDstPort" ), ( Lines{ "0.0", "0.1", "0.2", "0.3" } ) );
   // Existence is asked of the first entry and of the fragment entry; the ports of the fragment
   // entry alone.
   EXPECT_EQ( queries( "ipSubruleExists" ), ( Lines{ "0.0", "0.3" } ) );
   EXPECT_EQ( queries( "verifyRulePorts" ), Lines{ "0.3" } );
}

TEST_F( QosClassMatchAclSmVerifyTest, OnASimulatedSwitchTheFirstFindingStopsTheProcess ) {
   goldIs( { rule( 17 ), rule( 6 ) } );
   lose( 0, 0 );
   lose( 1, 0 );
   EXPECT_DEATH(
         {
            setenv( "SIMULATION_VMID", "1", 1 );
            verify();
         },
         "Assertion `0' failed" );
}

// ---- Show

class AclShowTest : public QosClassMatchAclSmVerifyTest {
 protected:
   void TearDown() override {
      if( out_ ) std::fclose( out_ );
      QosClassMatchAclSmVerifyTest::TearDown();
   }
   // The helper's show calls of one walk, by operation name. The show operations are not
   // recorded: each is taken in the chip's place and noted in order.
   Lines show( bool detail ) {
      if( !out_ ) out_ = std::tmpfile();
      Lines ops;
      for( char const* op : { "showAclPolicyHeader", "showAclClassHeader", "showAclHeader",
                              "showIpAclRule", "showDefaultRule", "showL2ParamsRule",
                              "showMplsTrafficClassRule", "showDscpEcnRule", "showMacAclRule" } ) {
         helper->actionIs( op, [ &ops, op ] { ops.push_back( op ); } );
      }
      sm->showAcls( static_cast< std::uint32_t >( fileno( out_ ) ), 0, detail, Qos::mapQos_ );
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
