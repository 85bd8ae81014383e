// A realistic list through the whole engine: the ClassBench set acl1_1k as one class, compiled
// against a chip without range checkers, so that every port range is expanded into blocks. The
// entries must be those worked out from the rules alone.
#include <gtest/gtest.h>

#include "sim/classbench/ClassBench.h"
#include "support/QosAclSmFixture.h"

namespace NevQosTest {
namespace {

// A chip that has no range checker: a subrule that needs one is refused with "too many L4 port
// ranges", so the compiler sends its blocks instead.
class NoRangeCheckerHelper : public RecordingQosAclHelper {
 public:
   using RecordingQosAclHelper::RecordingQosAclHelper;
   Nev::AclCreateError createIpAclSubrule(
         Acl::AclType, Acl::RuleConfig const&, Acl::UniqueId const&, Nev::QosPolicyMapState const&,
         Nev::QosClassData const&, Nev::AclKey const&, std::uint32_t, std::uint32_t, std::uint16_t,
         std::uint16_t srcMask, std::uint16_t, std::uint16_t dstMask, std::uint16_t srcLow,
         std::uint16_t srcHigh, std::uint16_t dstLow, std::uint16_t dstHigh, std::uint16_t,
         std::uint16_t, std::uint16_t, std::uint16_t, std::uint8_t, bool, std::uint8_t,
         std::uint8_t ) override {
      auto needsChecker = []( std::uint16_t mask, std::uint16_t low, std::uint16_t high ) {
         return mask == 0 && !( low == 0 && high == 0xffff );
      };
      if( needsChecker( srcMask, srcLow, srcHigh ) || needsChecker( dstMask, dstLow, dstHigh ) ) {
         ++refused;
         return Nev::aclCreateErrorTooManyL4PortRanges;
      }
      ++entries;
      return Nev::aclCreateErrorNone;
   }
   Nev::AclCreateError createIpFragRule( Nev::QosPolicyMapState const&, Nev::QosClassData const&,
                                         Nev::AclKey const&, Acl::IpRuleConfig const&,
                                         Acl::UniqueId const&, std::uint32_t, std::uint32_t,
                                         std::uint8_t, std::uint8_t ) override {
      ++fragments;
      return Nev::aclCreateErrorNone;
   }
   std::uint64_t entries = 0;
   std::uint64_t refused = 0;
   std::uint64_t fragments = 0;
};

TEST_F( QosAclSmFixture, ClassBenchAcl1kExpandsIntoThePortBlockProduct ) {
   auto chip = Zub::make< NoRangeCheckerHelper >( qosStatus, qosAclSliceHwStatus, mainAclConfig );
   helper = chip;
   start();
   auto const rules = Sim::readClassBench( NEVQOS_CLASSBENCH_DIR "/acl1_1k" );
   mainAclConfig->configIs( Acl::ip() )
         ->aclIs( Zub::Name( "acl1" ) )
         ->currCfgIs( Sim::aclRuleSetOf( rules, 1 ) );
   classMapIs( "c1", { { Qos::matchOptionIpAcl, "acl1" } } );
   classIs( "gold", "c1" );
   applyIs( "gold", { intf( "Ethernet1" ) } );

   EXPECT_EQ( chip->entries, Sim::portBlockProduct( rules ) );
   EXPECT_EQ( chip->entries, 1307u ) << "the figure of the data's README";
   std::uint64_t multiBlock = 0;
   for( auto const& rule : rules ) {
      if( Sim::portBlockProduct( { rule } ) > 1 ) ++multiBlock;
   }
   EXPECT_EQ( chip->refused, multiBlock )
         << "one refused attempt per rule with a port range wider than one block";
   EXPECT_EQ( chip->fragments, Sim::fragmentEntries( rules, false ) );
   EXPECT_EQ( hwStatus( "gold" )->prgmStatus(), Qos::hwPrgmStatusSuccess_ );
}

}  // namespace
}  // namespace NevQosTest
