// An agent in miniature for tests of the policy engine: every input entity, the reference chip
// behind the recording decorator, a simulated-time loop, and a capture of the system log that
// fails the test on any line the test did not expect.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "NevQos/platform/zub/ActivityManager.h"
#include "NevQos/platform/zub/Log.h"
#include "NevQos/policy/QosAclSm.h"
#include "NevQos/policy/QosPolicyMapClassData.h"
#include "NevQos/sim/chip/SimQosAclHelper.h"
#include "NevQos/sim/recording/RecordingQosAclHelper.h"

namespace NevQosTest {

class QosAclSmFixture : public ::testing::Test {
 protected:
   void SetUp() override;
   void TearDown() override;

   // A reference chip of this configuration in place of the default one; before start().
   void chipIs( Sim::ChipConfig const& config );
   // Creates the engine and runs its start-up.
   void start();
   // A QoS policy map with `classes` classes, and its service policy on `intfs`.
   Zub::Ptr< Qos::ServicePolicyStatus > servicePolicyIs( char const* pmapName, int classes,
                                                         std::vector< char const* > intfs,
                                                         Qos::MapType type = Qos::mapQos_ );
   Zub::Ptr< Qos::PolicyMapStatus > policyMap( char const* pmapName,
                                               Qos::MapType type = Qos::mapQos_ );
   static Qos::ServicePolicyKey spKey( char const* pmapName, Qos::MapType type = Qos::mapQos_ ) {
      return Qos::ServicePolicyKey( type, Qos::directionInput_, Zub::Name( pmapName ) );
   }
   static Nev::QosPolicyMapKey pmapKey( char const* pmapName, char const* group = "Default",
                                        Qos::MapType type = Qos::mapQos_ ) {
      return Nev::QosPolicyMapKey( Zub::Name( pmapName ), type, Qos::directionInput_,
                                   Zub::Name( group ) );
   }
   static Qos::IntfPairKey intf( char const* name ) {
      return Qos::IntfPairKey( Mirel::IntfId( name ), Mirel::IntfId() );
   }
   Zub::Ptr< Qos::PolicyMapHwStatus > hwStatus( char const* pmapName,
                                                Qos::MapType type = Qos::mapQos_ ) const;
   // A request for one ACL of one class, as class matching enters it.
   Nev::QosPolicyUpdateRequest aclRequest( Nev::QosPolicyUpdateReason reason, char const* aclName,
                                           bool remove, Qos::IntfPairKey intfPair = {} );
   // ---- Configuration as the agents publish it

   // An access list with its rules in sequence order (10, 20, ...; ids 1, 2, ...).
   Zub::Ptr< Acl::AclConfig > ipAclIs( char const* name,
                                       std::vector< Acl::IpRuleConfig > const& rules );
   Zub::Ptr< Acl::AclConfig > ip6AclIs( char const* name,
                                        std::vector< Acl::Ip6RuleConfig > const& rules );
   // A class map with its matches; the text is the ACL name of an access-group match.
   using Matches = std::vector< std::pair< Qos::ClassMapMatchOption, char const* > >;
   Zub::Ptr< Qos::ClassMapStatus > classMapIs( char const* name, Matches const& matches,
                                               Qos::MapType type = Qos::mapQos_ );
   // Appends a class, with an action, to a policy map; the first class added has the top
   // priority.
   Zub::Ptr< Qos::ClassAction > classIs( char const* pmapName, char const* cmapName,
                                         Qos::MapType type = Qos::mapQos_ );
   // A single-rate policer of 1000 kbps and 10000 bytes that drops what violates, as
   // configuration gives an unnamed policer; the test adds it to a class action.
   static Zub::Ptr< Qos::PolicerConfig > policerOf( char const* name );
   // The class-default class and its action.
   void classDefaultIs( char const* pmapName, Qos::MapType type = Qos::mapQos_ );
   // The service policy of a map on interfaces; the map must stand.
   Zub::Ptr< Qos::ServicePolicyStatus > applyIs( char const* pmapName,
                                                 std::vector< Qos::IntfPairKey > const& intfs,
                                                 Qos::MapType type = Qos::mapQos_ );
   // Class maps with one match of a kind that needs no IP access list, over ranges of numbers
   // (low, high); and MAC access lists.
   using Ranges = std::vector< std::pair< unsigned, unsigned > >;
   // A VLAN (3), COS (8) or VLAN-and-COS (9) match.
   Zub::Ptr< Qos::ClassMapMatch > l2ClassMapIs( char const* name, Qos::ClassMapMatchOption option,
                                                Ranges const& vlans, Ranges const& coses = {} );
   // A DSCP and ECN match: one DSCP (64 for none) or DSCP ranges.
   Zub::Ptr< Qos::ClassMapMatch > dscpEcnClassMapIs( char const* name, unsigned dscp, Acl::Ecn ecn,
                                                     Ranges const& dscps = {} );
   Zub::Ptr< Qos::ClassMapMatch > mplsClassMapIs( char const* name, Ranges const& trafficClasses );
   Zub::Ptr< Qos::ClassMapMatch > builtInClassMapIs( char const* name, char const* builtInClass );
   // A MAC access list with its rules in sequence order (10, 20, ...; ids 1, 2, ...).
   Zub::Ptr< Acl::AclConfig > macAclIs( char const* name,
                                        std::vector< Acl::MacRuleConfig > const& rules );

   // The log lines written since the last call; the test has seen them.
   std::vector< std::string > takeLogs();

   Zub::Ptr< Zub::ActivityManager > loop;
   Zub::Ptr< Nev::NevCommonSmData > ncsd;
   Zub::Ptr< Nev::VerifyData > verifyData;
   Zub::Ptr< Qos::CounterConfig > cliCounterConfig;
   Zub::Ptr< Zub::Dir > counterConfigDir;
   Zub::Ptr< Qos::Status > qosStatus;
   Zub::Ptr< Qos::HwStatus > qosHwStatus;
   Zub::Ptr< Zub::Dir > qosSliceHwStatusDir;
   Zub::Ptr< Qos::SliceHwStatus > sliceHwStatus;
   Zub::Ptr< Qos::AclHwStatus > qosAclHwStatus;
   Zub::Ptr< Qos::AclSliceHwStatus > qosAclSliceHwStatus;
   Zub::Ptr< Interface::SubIntfStatusDir > subIntfStatusDir;
   Zub::Ptr< Qos::Input::Config > pdpHwCfg;
   Zub::Ptr< HwEpoch::Status > hwEpochStatus;
   Zub::Ptr< Acl::Config > mainAclConfig;
   // The chip, and the decorator the engine programs it through: what a test reads the calls
   // from and scripts answers on.
   Zub::Ptr< Sim::SimQosAclHelper > chip;
   Zub::Ptr< Sim::RecordingQosAclHelper > helper;
   // The helper the engine gets, when not the decorator (a test of the bare chip sets it).
   Zub::Ptr< NevHelper::QosAclHelper > engineHelper;
   Zub::Ptr< Kesh::TimerWheel > clock;
   Zub::Ptr< Nev::QosAclSm > sm;

   // Data of one class of one map, for requests built by the tests.
   Zub::Ptr< Nev::QosClassData > classData;

 private:
   std::vector< std::string > logs_;
};

}  // namespace NevQosTest
