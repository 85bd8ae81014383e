#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>

#include "NevQos/helpers/CbfFecMappingHelper.h"

namespace NevQosTest {
namespace {

using testing::HasSubstr;

// Each test starts without NEV_NOOP_AGENT and leaves the environment as it found it.
class CbfFecMappingHelperTest : public ::testing::Test {
 protected:
   void SetUp() override {
      if( char const* v = std::getenv( "NEV_NOOP_AGENT" ) ) saved_ = v;
      unsetenv( "NEV_NOOP_AGENT" );
   }
   void TearDown() override {
      if( saved_ ) {
         setenv( "NEV_NOOP_AGENT", saved_->c_str(), 1 );
      } else {
         unsetenv( "NEV_NOOP_AGENT" );
      }
   }

   Zub::Ptr< NevHelper::CbfFecMappingHelper > helper =
         Zub::make< NevHelper::CbfFecMappingHelper >( Zub::Name( "cbf" ) );
   Qos::Glarn::OverrideKey const key{ Mirel::ipv6, Qos::Dscp( 46 ), 12 };
   Nev::CbfFecMapRule const rule{ key };

 private:
   std::optional< std::string > saved_;
};

TEST_F( CbfFecMappingHelperTest, WithoutADriverEveryOperationStopsTheProcess ) {
   std::string const text = "This function must be implemented by derived class\n";
   EXPECT_DEATH( helper->createOrUpdateMapping( rule ), HasSubstr( text ) );
   EXPECT_DEATH( helper->syncMapping( rule, 5 ), HasSubstr( text ) );
   EXPECT_DEATH( helper->deleteMapping( key ), HasSubstr( text ) );
   EXPECT_DEATH( helper->hwFecOverrideRuleId( key ), HasSubstr( text ) );
   EXPECT_DEATH( helper->hwFecOverrideRules(), HasSubstr( text ) );
}

TEST_F( CbfFecMappingHelperTest, OnANoopAgentProgrammingFailsAndNoRuleExists ) {
   setenv( "NEV_NOOP_AGENT", "", 1 );
   EXPECT_EQ( helper->createOrUpdateMapping( rule ), NevHelper::cbfMapUpdateFailed );
   EXPECT_EQ( helper->syncMapping( rule, 5 ), NevHelper::cbfMapUpdateFailed );
   helper->deleteMapping( key );
   EXPECT_EQ( helper->hwFecOverrideRuleId( key ), 0xffffffffu );
   EXPECT_TRUE( helper->hwFecOverrideRules().empty() );
   EXPECT_FALSE( helper->hasBackupSupport() );
}

}  // namespace
}  // namespace NevQosTest
