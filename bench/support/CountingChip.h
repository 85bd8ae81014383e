// A chip for the benchmarks: each operation the engine calls is a counter or a fixed answer, so
// that a figure is the engine's own work. The overrides are explicit so that the programs do not
// lean on NEV_NOOP_AGENT.
//
// Two range modes: `accept` takes every subrule as it comes; `expand` has no range checker, so a
// port range that is not one block is refused once and comes back as the product of its blocks.
// In the asynchronous mode every commit, destroy and port update completes on the next turn of
// the loop, with success.
#pragma once

#include <cstdint>

#include "NevQos/helpers/QosAclHelper.h"
#include "zub/Clock.h"

namespace Bench {

enum class Mode { accept, expand };

char const* modeName( Mode mode );

// What the engine asked of the chip.
struct Counts {
   std::uint64_t accepted = 0;    // IP subrules the chip took
   std::uint64_t refused = 0;     // first attempts refused for want of a range checker
   std::uint64_t fragments = 0;   // fragment entries
   std::uint64_t otherRules = 0;  // default, VLAN and DSCP entries
   std::uint64_t portUpdates = 0;
   std::uint64_t policers = 0;  // live: created less destroyed
   std::uint64_t counters = 0;  // live
   std::uint64_t asyncOperations = 0;
   std::uint64_t counterQueries = 0;
   bool operator==( Counts const& ) const = default;
};

class CountingChip : public NevHelper::QosAclHelper {
 public:
   CountingChip( Zub::Ptr< Qos::Status const > qosStatus,
                 Zub::Ptr< Qos::AclSliceHwStatus > sliceHwStatus,
                 Zub::Ptr< Acl::Config const > aclConfig, Mode mode, bool async );
   ~CountingChip() override;
   // A synchronous chip over entities of its own, for a baseline that calls it directly.
   static Zub::Ptr< CountingChip > detached( Mode mode );

   Counts counts;

   Nev::AclCreateError createIpAclSubrule(
         Acl::AclType, Acl::RuleConfig const&, Acl::UniqueId const&, Nev::QosPolicyMapState const&,
         Nev::QosClassData const&, Nev::AclKey const&, std::uint32_t, std::uint32_t, std::uint16_t,
         std::uint16_t srcMask, std::uint16_t, std::uint16_t dstMask, std::uint16_t srcLow,
         std::uint16_t srcHigh, std::uint16_t dstLow, std::uint16_t dstHigh, std::uint16_t,
         std::uint16_t, std::uint16_t, std::uint16_t, std::uint8_t, bool, std::uint8_t,
         std::uint8_t ) override;
   Nev::AclCreateError createIpFragRule( Nev::QosPolicyMapState const&, Nev::QosClassData const&,
                                         Nev::AclKey const&, Acl::IpRuleConfig const&,
                                         Acl::UniqueId const&, std::uint32_t, std::uint32_t,
                                         std::uint8_t, std::uint8_t ) override;
   Nev::AclCreateError createDefaultRule( Nev::QosPolicyMapState const&, Nev::QosClassData const&,
                                          Qos::ClassMapMatchOption, Nev::AclKey const& ) override;
   Nev::AclCreateError createL2ParamsRule( Nev::QosPolicyMapState const&, Nev::QosClassData const&,
                                           Qos::ClassMapMatchOption, Nev::AclKey const&,
                                           std::uint32_t ) override;
   Nev::AclCreateError createDscpEcnRule( Nev::QosPolicyMapState const&, Nev::QosClassData const&,
                                          Qos::ClassMapMatchOption, Nev::AclKey const&,
                                          std::uint32_t ) override;
   Nev::AclCreateError precreateAcl( Nev::QosPolicyMapState const&, Nev::QosClassData const&,
                                     Qos::ClassMapMatchOption, Nev::AclKey const& ) override;
   Nev::AclCreateError commitAcl( Nev::QosClassData const&, Qos::ClassMapMatchOption,
                                  Nev::AclKey const& ) override;
   void updatePortForAcl( Nev::QosPolicyMapState const&, Nev::QosClassData const&,
                          Qos::ClassMapMatchOption, Nev::AclKey const&, Qos::IntfPairKey const&,
                          bool ) override;
   void destroyAcl( Nev::QosPolicyMapState const&, Nev::QosClassData const&,
                    Qos::ClassMapMatchOption, Nev::AclKey const& ) override;
   void cleanupAcl( Nev::QosPolicyMapState const&, Nev::QosClassData const&,
                    Qos::ClassMapMatchOption, Nev::AclKey const& ) override {}
   void prepareToCommit() override {}
   void batchCommitAcls( Nev::QosPolicyMapState const& ) override {}
   void batchCommitAclsIntf( Nev::QosPolicyMapState const&, Qos::IntfPairKey const&,
                             bool ) override {}
   Zub::Name aclGroup( Qos::IntfPairKey const&, Qos::ServicePolicyKey const& ) override {
      return defaultAclGroup();
   }
   bool createSmForPMap( Nev::QosPolicyMapState const& ) override { return true; }
   bool managedPrioritySupported( Qos::MapType ) override { return false; }
   bool isMacAclRuleSupportedPlatform() override { return false; }
   bool delaySviPmapSmCreation() override { return false; }
   void cleanupForPMap( Nev::QosPolicyMapKey const& ) override {}
   void hwInit() override {}
   void handleRoutedPortSubIntfAclSharing() override {}
   void updatePolicer( Zub::Name const& ) override {}
   bool createAndAttachPolicer( Nev::QosClassData const& ) override;
   void destroyPolicer( Nev::QosClassData const& ) override;
   void createAndAttachCounter( Nev::QosClassData const& ) override;
   void destroyCounter( Nev::QosClassData const& ) override;
   Nev::QosClassCounterData counterUpdateRequest( Nev::QosClassData const&,
                                                  Nev::AclKey const& ) override;

 private:
   class Completer;
   // An operation of the asynchronous road: its result comes on the next turn.
   void startOperation();

   Mode const mode_;
   Zub::Ptr< Completer > completer_;
};

}  // namespace Bench
