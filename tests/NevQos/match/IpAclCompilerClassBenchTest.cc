// A realistic list through the whole engine: the ClassBench set acl1_1k as one class, compiled
// against the reference chip without range checkers, so that every port range is expanded into
// blocks. The entries must be those worked out from the rules alone.
#include <gtest/gtest.h>

#include "NevQos/sim/classbench/ClassBench.h"
#include "support/QosAclSmFixture.h"

namespace NevQosTest {
namespace {

TEST_F( QosAclSmFixture, ClassBenchAcl1kExpandsIntoThePortBlockProduct ) {
   // A chip without range checkers: a subrule that needs one is refused, so the compiler sends
   // its blocks instead.
   Sim::ChipConfig config;
   config.rangeCheckers = 0;
   chipIs( config );
   start();
   auto const rules = Sim::readClassBench( NEVQOS_CLASSBENCH_DIR "/acl1_1k" );
   mainAclConfig->configIs( Acl::ip() )
         ->aclIs( Zub::Name( "acl1" ) )
         ->currCfgIs( Sim::aclRuleSetOf( rules, 1 ) );
   classMapIs( "c1", { { Qos::matchOptionIpAcl, "acl1" } } );
   classIs( "gold", "c1" );
   applyIs( "gold", { intf( "Ethernet1" ) } );

   std::uint64_t installed = 0;
   for( auto const& [ id, acl ] : chip->tcam().acls() )
      installed += acl.entries.size();
   std::uint64_t const fragments = helper->callsMatching( "createIpFragRule" ).size();
   std::uint64_t const entries = installed - fragments;
   EXPECT_EQ( entries, Sim::portBlockProduct( rules ) );
   EXPECT_EQ( entries, 1307u ) << "the figure of the data's README";
   std::uint64_t multiBlock = 0;
   for( auto const& rule : rules ) {
      if( Sim::portBlockProduct( { rule } ) > 1 ) ++multiBlock;
   }
   // Every subrule sent either stands in the TCAM or was refused.
   EXPECT_EQ( helper->callsMatching( "createIpAclSubrule" ).size() - entries, multiBlock )
         << "one refused attempt per rule with a port range wider than one block";
   EXPECT_EQ( fragments, Sim::fragmentEntries( rules, false ) );
   EXPECT_EQ( hwStatus( "gold" )->prgmStatus(), Qos::hwPrgmStatusSuccess_ );
}

}  // namespace
}  // namespace NevQosTest
