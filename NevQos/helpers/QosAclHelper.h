// The ACL helper: the one boundary between the policy engine and a chip. The engine decides what
// is programmed and in which order; every touch of the hardware goes through a virtual operation
// here. A chip driver subclasses it, overrides what its silicon needs, sets the capability
// attributes in its constructor, and hands the object to the engine.
//
// The default bodies fall in four groups, which tell a driver what it must write:
//   - succeed and do nothing;
//   - state a fixed capability answer (a driver may override);
//   - unimplemented: stop the process with a message, unless the environment variable
//     NEV_NOOP_AGENT exists (whatever its value, read on every call), in which case they return
//     a neutral value: success, false, -1 or the empty string. A driver must override these;
//   - concrete logic, inherited as it is (the non-virtual operations).
// Nothing here throws for a hardware failure: creating operations answer an AclCreateError (0 is
// success) or false when a resource is exhausted.
#pragma once

#include <cstdint>

#include "NevQos/helpers/ModIdQueueKeys.h"
#include "NevQos/platform/entities/AclConfig.h"
#include "NevQos/platform/entities/AclRuleConfig.h"
#include "NevQos/platform/entities/AclSliceHwStatus.h"
#include "NevQos/platform/entities/AclTypes.h"
#include "NevQos/platform/entities/QosStatus.h"
#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/entities/QosUnits.h"
#include "NevQos/platform/mirel/IntfId.h"
#include "NevQos/platform/mirel/Ip6AddrWithMask.h"
#include "NevQos/platform/nev/AclKey.h"
#include "NevQos/platform/nev/NevBaseHelper.h"
#include "NevQos/platform/zub/Entity.h"
#include "NevQos/platform/zub/String.h"
#include "NevQos/types/AclCreateError.h"
#include "NevQos/types/IntfUpdateCallbackData.h"
#include "NevQos/types/QosClassCounterData.h"
#include "NevQos/types/QosClassMapKey.h"
#include "NevQos/types/QosPolicyMapKey.h"
#include "NevQos/types/QosPolicyMapState.h"
#include "NevQos/types/TcpFlag.h"

namespace Nev {
class QosClassData;
}  // namespace Nev

namespace NevHelper {

// Attributes after those of the bases, in declared order. The constants (defaultAclGroup,
// dscpEcnAclName, dscpEcnIpv6AclName, allTcpFlags) and the three inputs given to the constructor
// are plain accessors below.
//
// pmapState: the per-policy-map state shared with the engine; pmapStateIs( key ) creates it.
// unableToProgram: the driver's record of service policies it cannot program.
// The thirteen base names of generated ACLs: a driver may rename them before the first policy.
// qosEcnSupport, establishedSupported: the chip can match ECN, and TCP "established".
// supportedTcpFlags: the TCP flags the chip can match; the compiler drops the others.
// cliWaiting: watched by the engine.
// unitError: the driver's record of errors per hardware unit.
// intfUpdateCallbackData: see intfUpdateCallback; empty between calls.
// reprogramAllPMapsRequestTime: a driver writes the time to have every policy map programmed anew.
#define NEVHELPER_QOS_ACL_HELPER_ATTRS( X )                                                        \
   X( child, PmapState, pmapState, Nev::QosPolicyMapKey, Nev::QosPolicyMapState )                  \
   X( keyed, UnableToProgram, unableToProgram, Qos::ServicePolicyKey, bool )                       \
   X( value, DefaultAclName, defaultAclName, Zub::Name, Zub::Name( "acl-default" ) )               \
   X( value, DefaultIpv6AclName, defaultIpv6AclName, Zub::Name, Zub::Name( "acl-default-ipv6" ) )  \
   X( value, VlanAclName, vlanAclName, Zub::Name, Zub::Name( "vlan-acl" ) )                        \
   X( value, VlanIpv6AclName, vlanIpv6AclName, Zub::Name, Zub::Name( "vlan-acl-ipv6" ) )           \
   X( value, CosAclName, cosAclName, Zub::Name, Zub::Name( "cos-acl" ) )                           \
   X( value, CosIpv6AclName, cosIpv6AclName, Zub::Name, Zub::Name( "cos-acl-ipv6" ) )              \
   X( value, VlanCosAclName, vlanCosAclName, Zub::Name, Zub::Name( "vlan-cos-acl" ) )              \
   X( value, VlanCosIpv6AclName, vlanCosIpv6AclName, Zub::Name, Zub::Name( "vlan-cos-acl-ipv6" ) ) \
   X( value, MplsTrafficClassAclName, mplsTrafficClassAclName, Zub::Name,                          \
      Zub::Name( "mpls-traffic-class-acl" ) )                                                      \
   X( value, MplsTrafficClassIpv6AclName, mplsTrafficClassIpv6AclName, Zub::Name,                  \
      Zub::Name( "mpls-traffic-class-acl-ipv6" ) )                                                 \
   X( value, BuiltInClassAclName, builtInClassAclName, Zub::Name,                                  \
      Zub::Name( "built-in-class-acl" ) )                                                          \
   X( value, MacAclName, macAclName, Zub::Name, Zub::Name( "mac-acl" ) )                           \
   X( value, MacIpv6AclName, macIpv6AclName, Zub::Name, Zub::Name( "mac-acl-ipv6" ) )              \
   X( value, QosEcnSupport, qosEcnSupport, bool, false )                                           \
   X( value, EstablishedSupported, establishedSupported, bool, false )                             \
   X( value, SupportedTcpFlags, supportedTcpFlags, NevHelper::TcpFlag,                             \
      NevHelper::TcpFlag( NevHelper::TcpFlag::maxValue ) )                                         \
   X( value, CliWaiting, cliWaiting, bool, false )                                                 \
   X( keyed, UnitError, unitError, Zub::String, Nev::AclCreateError )                              \
   X( keyed, IntfUpdateCallbackData, intfUpdateCallbackData, Nev::IntfUpdateCallbackData, bool )   \
   X( value, ReprogramAllPMapsRequestTime, reprogramAllPMapsRequestTime, Zub::Seconds, 0.0 )

class QosAclHelper : public Nev::NevAsyncBaseHelper {
 public:
   using TcpFlag = NevHelper::TcpFlag;

   QosAclHelper( Zub::Ptr< Qos::Status const > qosStatus,
                 Zub::Ptr< Qos::AclSliceHwStatus > qosAclSliceHwStatus,
                 Zub::Ptr< Acl::Config const > mainAclConfig );

   ZUB_ENTITY_BODY( QosAclHelper, Nev::NevAsyncBaseHelper, NEVHELPER_QOS_ACL_HELPER_ATTRS )

   Zub::Ptr< Qos::Status const > const& qosStatus() const { return qosStatus_; }
   Zub::Ptr< Qos::AclSliceHwStatus > const& qosAclSliceHwStatus() const {
      return qosAclSliceHwStatus_;
   }
   Zub::Ptr< Acl::Config const > const& mainAclConfig() const { return mainAclConfig_; }

   // The ACL group of every policy unless aclGroup says otherwise: "Default".
   static Zub::Name const& defaultAclGroup();
   // Base names of the DSCP and ECN match ACLs; unlike the others they cannot be renamed.
   static Zub::Name const& dscpEcnAclName();
   static Zub::Name const& dscpEcnIpv6AclName();
   static TcpFlag allTcpFlags() { return TcpFlag( TcpFlag::maxValue ); }

   // ---- Rule creation and removal

   // The ACL group that an interface of a service policy joins. Interfaces of one service policy
   // in the same group share one compiled policy map.
   virtual Zub::Name aclGroup( Qos::IntfPairKey const& intfPair,
                               Qos::ServicePolicyKey const& spKey );
   virtual Nev::AclCreateError createIpAclSubrule(
         Acl::AclType aclType, Acl::RuleConfig const& rule, Acl::UniqueId const& aclId,
         Nev::QosPolicyMapState const& pmapState, Nev::QosClassData const& classData,
         Nev::AclKey const& aclKey, std::uint32_t ruleNum, std::uint32_t subruleNum,
         std::uint16_t srcL4Port, std::uint16_t srcL4PortMask, std::uint16_t dstL4Port,
         std::uint16_t dstL4PortMask, std::uint16_t srcPortLow, std::uint16_t srcPortHigh,
         std::uint16_t dstPortLow, std::uint16_t dstPortHigh, std::uint16_t ipLen,
         std::uint16_t ipLenMask, std::uint16_t ipLenLow, std::uint16_t ipLenHigh,
         std::uint8_t tcpFlags, bool l4Rule, std::uint8_t ecnData, std::uint8_t ecnMask );
   virtual Nev::AclCreateError createIpFragRule( Nev::QosPolicyMapState const& pmapState,
                                                 Nev::QosClassData const& classData,
                                                 Nev::AclKey const& aclKey,
                                                 Acl::IpRuleConfig const& rule,
                                                 Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                                                 std::uint32_t subRuleNum, std::uint8_t ecnData,
                                                 std::uint8_t ecnMask );
   virtual Nev::AclCreateError createDefaultRule( Nev::QosPolicyMapState const& pmapState,
                                                  Nev::QosClassData const& classData,
                                                  Qos::ClassMapMatchOption matchOption,
                                                  Nev::AclKey const& aclKey );
   virtual Nev::AclCreateError createL2ParamsRule( Nev::QosPolicyMapState const& pmapState,
                                                   Nev::QosClassData const& classData,
                                                   Qos::ClassMapMatchOption matchOption,
                                                   Nev::AclKey const& aclKey,
                                                   std::uint32_t ruleNum );
   virtual Nev::AclCreateError createMplsTrafficClassRule( Nev::QosPolicyMapState const& pmapState,
                                                           Nev::QosClassData const& classData,
                                                           Qos::ClassMapMatchOption matchOption,
                                                           Nev::AclKey const& aclKey,
                                                           std::uint32_t ruleNum );
   virtual Nev::AclCreateError createDscpEcnRule( Nev::QosPolicyMapState const& pmapState,
                                                  Nev::QosClassData const& classData,
                                                  Qos::ClassMapMatchOption matchOption,
                                                  Nev::AclKey const& aclKey,
                                                  std::uint32_t ruleNum );
   virtual bool isSupportedMacAclRule( Acl::MacRuleConfig const& rule );
   // A chip without MAC rules must keep the default false: createMacAclRule succeeds anyway.
   virtual bool isMacAclRuleSupportedPlatform();
   virtual Nev::AclCreateError createMacAclRule( Nev::QosPolicyMapState const& pmapState,
                                                 Nev::QosClassData const& classData,
                                                 Qos::ClassMapMatchOption matchOption,
                                                 Nev::AclKey const& aclKey, std::uint32_t ruleNum );
   virtual Nev::AclCreateError createBuiltInClassMatchRule( Nev::QosPolicyMapState const& pmapState,
                                                            Nev::QosClassData const& classData,
                                                            Qos::ClassMapMatchOption matchOption,
                                                            std::uint32_t ruleNum );
   virtual void updatePortForAcl( Nev::QosPolicyMapState const& pmapState,
                                  Nev::QosClassData const& classData,
                                  Qos::ClassMapMatchOption matchOption, Nev::AclKey const& aclKey,
                                  Qos::IntfPairKey const& intfPair, bool add );
   virtual void updatePolicer( Zub::Name const& policerName );
   virtual Nev::AclCreateError precreateAcl( Nev::QosPolicyMapState const& pmapState,
                                             Nev::QosClassData const& classData,
                                             Qos::ClassMapMatchOption matchOption,
                                             Nev::AclKey const& aclKey );
   virtual void destroyAcl( Nev::QosPolicyMapState const& pmapState,
                            Nev::QosClassData const& classData,
                            Qos::ClassMapMatchOption matchOption, Nev::AclKey const& aclKey );
   virtual void cleanupAcl( Nev::QosPolicyMapState const& pmapState,
                            Nev::QosClassData const& classData,
                            Qos::ClassMapMatchOption matchOption, Nev::AclKey const& aclKey );

   // ---- Commit and asynchronous operation

   virtual void prepareToCommit();
   virtual Nev::AclCreateError commitAcl( Nev::QosClassData const& classData,
                                          Qos::ClassMapMatchOption matchOption,
                                          Nev::AclKey const& aclKey );
   virtual void batchCommitAcls( Nev::QosPolicyMapState const& pmapState );
   // Defaults to a plain batchCommitAcls( pmapState ), so a chip that batches per map only
   // needs nothing more.
   virtual void batchCommitAclsIntf( Nev::QosPolicyMapState const& pmapState,
                                     Qos::IntfPairKey const& intfPair, bool add );
   virtual void handlePendingOperationTimeout();

   // ---- CoPP

   virtual int coppAllocateCpuQ( Nev::QosClassData const& classData );
   virtual void coppDeallocateCpuQ( Nev::QosClassData const& classData );
   // These two fail an assertion even on a no-op agent.
   virtual Nev::ModIdPortQueueKey getDdeCoppModIdPortQueue( Nev::QosClassData const& classData );
   virtual Nev::ModIdQueueKey getDdeCoppModIdQueue( Nev::QosClassData const& classData );
   virtual bool checkUserCoppEntryExists( Nev::ModIdPortQueueKey const& classData );
   virtual bool checkKernelCoppEntryExists( Nev::ModIdPortQueueKey const& classData );
   virtual void createDefaultCoppRates();

   // ---- Policers and counters

   // False: the chip has no policer left.
   virtual bool createAndAttachPolicer( Nev::QosClassData const& classData );
   virtual void destroyPolicer( Nev::QosClassData const& classData );
   virtual bool createAndAttachCoppPolicer( Nev::QosClassData const& classData );
   virtual void destroyCoppPolicer( Nev::QosClassData const& classData );
   virtual bool createCoppPolicerByPortQueue( Nev::ModIdPortQueueKey const& key );
   virtual void destroyCoppPolicerByPortQueue( Nev::ModIdPortQueueKey const& key );
   virtual void createAndAttachCounter( Nev::QosClassData const& classData );
   virtual void destroyCounter( Nev::QosClassData const& classData );

   // ---- Show

   virtual void showAclPolicyHeader( std::uint32_t socket, std::uint32_t unit,
                                     Nev::QosPolicyMapState const& pmapState,
                                     Nev::QosPolicyMapKey const& pmapKey );
   virtual void showAclClassHeader( std::uint32_t socket, std::uint32_t unit,
                                    Nev::QosClassMapKey const& cmapKey );
   virtual void showAclHeader( std::uint32_t socket, std::uint32_t unit, bool detail,
                               Nev::QosClassData const& classData,
                               Qos::ClassMapMatchOption matchOption, Nev::AclKey const& aclKey );
   virtual void showIpAclRule( std::uint32_t socket, std::uint32_t unit,
                               Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                               std::uint32_t sequence, Acl::UniqueId const& id );
   virtual void showDefaultRule( std::uint32_t socket, std::uint32_t unit,
                                 Nev::QosPolicyMapState const& pmapState,
                                 Nev::QosClassData const& classData,
                                 Qos::ClassMapMatchOption matchOption, Nev::AclKey const& aclKey );
   virtual void showL2ParamsRule( std::uint32_t socket, std::uint32_t unit,
                                  Nev::QosPolicyMapState const& pmapState,
                                  Nev::QosClassData const& classData,
                                  Qos::ClassMapMatchOption matchOption, Nev::AclKey const& aclKey );
   virtual void showMplsTrafficClassRule( std::uint32_t socket, std::uint32_t unit,
                                          Nev::QosPolicyMapState const& pmapState,
                                          Nev::QosClassData const& classData,
                                          Qos::ClassMapMatchOption matchOption,
                                          Nev::AclKey const& aclKey );
   virtual void showDscpEcnRule( std::uint32_t socket, std::uint32_t unit,
                                 Nev::QosPolicyMapState const& pmapState,
                                 Nev::QosClassData const& classData,
                                 Qos::ClassMapMatchOption matchOption, Nev::AclKey const& aclKey );
   virtual void showMacAclRule( std::uint32_t socket, std::uint32_t unit,
                                Nev::QosPolicyMapState const& pmapState,
                                Nev::QosClassData const& classData,
                                Qos::ClassMapMatchOption matchOption, Nev::AclKey const& aclKey );

   // ---- Queries and capabilities

   // Absolute counts of one ACL; the default record means no counters.
   virtual Nev::QosClassCounterData counterUpdateRequest( Nev::QosClassData const& classData,
                                                          Nev::AclKey const& aclKey );
   virtual bool ipSubruleExists( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                                 Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                                 std::uint32_t subruleNum );
   virtual bool ipPortRangeSubruleExists( Nev::QosClassData const& classData,
                                          Nev::AclKey const& aclKey, Acl::UniqueId const& aclId,
                                          std::uint32_t ruleNum, std::uint32_t subruleNum,
                                          std::uint16_t srcLow, std::uint16_t srcHigh,
                                          bool srcValid, std::uint16_t dstLow,
                                          std::uint16_t dstHigh, bool dstValid );
   // True when the subrule stands as one entry holding its IP length range whole, false when the
   // range was expanded into value/mask blocks. Asked only of a range that takes more than one
   // block. Unimplemented: a chip that verifies must answer it.
   virtual bool ipLenRangeSubruleExists( Nev::QosClassData const& classData,
                                         Nev::AclKey const& aclKey, Acl::UniqueId const& aclId,
                                         std::uint32_t ruleNum, std::uint32_t subruleNum,
                                         std::uint16_t ipLenLow, std::uint16_t ipLenHigh,
                                         bool ipLenValid );
   virtual bool createSmForPMap( Nev::QosPolicyMapState const& pmapState );
   virtual bool managedPrioritySupported( Qos::MapType mapType );
   virtual bool multipleActionsSupported();
   virtual bool errorOnPolicerExhaustion();
   virtual void cleanupForPMap( Nev::QosPolicyMapKey const& pmapKey );
   // Called once at the start of the engine, before the first policy map.
   virtual void hwInit();
   virtual bool policiesInStableState();

   // ---- Verification: compare the hardware with what the engine expects

   virtual void verifyTcamData( Nev::QosClassData const& classData,
                                Qos::ClassMapMatchOption matchOption, Nev::AclKey const& aclKey );
   virtual void verifyIpRuleGeneral( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                                     Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                                     std::uint32_t subruleNum, std::uint32_t sequence );
   virtual void verifyIpRuleAction( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                                    Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                                    std::uint32_t subruleNum, std::uint32_t sequence,
                                    Acl::Action action );
   virtual void verifyIpRuleIpProto( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                                     Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                                     std::uint32_t subruleNum, std::uint32_t sequence,
                                     std::uint8_t expectedProto, bool valid );
   virtual void verifyIpRuleSrcIp( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                                   Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                                   std::uint32_t subruleNum, std::uint32_t sequence,
                                   std::uint32_t expectedAddr, std::uint32_t expectedMask,
                                   bool valid );
   virtual void verifyIpRuleDstIp( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                                   Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                                   std::uint32_t subruleNum, std::uint32_t sequence,
                                   std::uint32_t expectedAddr, std::uint32_t expectedMask,
                                   bool valid );
   virtual void verifyIpRuleDscp( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                                  Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                                  std::uint32_t subruleNum, std::uint32_t sequence,
                                  std::uint8_t expectedDscp, bool valid );
   virtual void verifyIpRuleTcIp6( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                                   Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                                   std::uint32_t subruleNum, std::uint32_t sequence,
                                   std::uint8_t expectedDscp, bool valid );
   virtual void verifyIpRuleEcn( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                                 Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                                 std::uint32_t subruleNum, std::uint32_t sequence,
                                 std::uint8_t ecnData, std::uint8_t ecnMask );
   virtual void verifyIpRuleEcnIp6( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                                    Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                                    std::uint32_t subruleNum, std::uint32_t sequence,
                                    std::uint8_t ecnData, std::uint8_t ecnMask );
   virtual void verifyIpRuleSrcIp6( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                                    Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                                    std::uint32_t subruleNum, std::uint32_t sequence,
                                    Mirel::Ip6AddrWithMask const& expectedDstAddr, bool valid );
   virtual void verifyIpRuleDstIp6( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                                    Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                                    std::uint32_t subruleNum, std::uint32_t sequence,
                                    Mirel::Ip6AddrWithMask const& expectedDstAddr, bool valid );
   virtual void verifyIpRuleFragments( Nev::QosClassData const& classData,
                                       Nev::AclKey const& aclKey, Acl::UniqueId const& aclId,
                                       std::uint32_t ruleNum, std::uint32_t subruleNum,
                                       std::uint32_t sequence, bool matchHeadOnly,
                                       bool matchFragmentsOnly );
   virtual void verifyIpRuleTcpFlags( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                                      Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                                      std::uint32_t subruleNum, std::uint32_t sequence,
                                      std::uint8_t expectedTcpFlags, bool valid );
   virtual void verifyIpRuleIcmp( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                                  Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                                  std::uint32_t subruleNum, std::uint32_t sequence,
                                  std::uint8_t expexctedIcmpType, std::uint8_t expectedIcmpCode,
                                  bool icmpTypeValid, bool icmpCodeValid );
   virtual void verifyIpRuleSrcPort( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                                     Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                                     std::uint32_t subruleNum, std::uint32_t sequence,
                                     std::uint16_t expectedLow, std::uint16_t expectedHigh,
                                     bool valid );
   virtual void verifyIpRuleDstPort( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                                     Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                                     std::uint32_t subruleNum, std::uint32_t sequence,
                                     std::uint16_t expectedLow, std::uint16_t expectedHigh,
                                     bool valid );
   virtual void verifyIpRuleVlanMatch( Nev::QosClassData const& classData,
                                       Nev::AclKey const& aclKey, Acl::UniqueId const& aclId,
                                       std::uint32_t ruleNum, std::uint32_t subruleNum,
                                       std::uint16_t expectedVlanId,
                                       std::uint16_t expectedVlanIdMask, bool valid );
   virtual void verifyAclGeneral( Nev::QosClassData const& classData,
                                  Qos::ClassMapMatchOption matchOption, Nev::AclKey const& aclKey );
   virtual void verifyRulePorts( Nev::QosPolicyMapState const& pmapState,
                                 Nev::QosClassData const& classData,
                                 Qos::ClassMapMatchOption matchOption, Nev::AclKey const& aclKey,
                                 Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                                 std::uint32_t subruleNum, std::uint32_t sequence,
                                 Acl::Action action );
   virtual void verifyDefaultRule( Nev::QosPolicyMapState const& pmapState,
                                   Nev::QosClassData const& classData,
                                   Qos::ClassMapMatchOption matchOption,
                                   Nev::AclKey const& aclKey );
   virtual void verifyL2ParamsRule( Nev::QosPolicyMapState const& pmapState,
                                    Nev::QosClassData const& classData,
                                    Qos::ClassMapMatchOption matchOption,
                                    Nev::AclKey const& aclKey );
   virtual void verifyMplsTrafficClassRule( Nev::QosPolicyMapState const& pmapState,
                                            Nev::QosClassData const& classData,
                                            Qos::ClassMapMatchOption matchOption,
                                            Nev::AclKey const& aclKey );
   virtual void verifyDscpEcnRule( Nev::QosPolicyMapState const& pmapState,
                                   Nev::QosClassData const& classData,
                                   Qos::ClassMapMatchOption matchOption,
                                   Nev::AclKey const& aclKey );
   virtual void verifyMacAclRule( Nev::QosPolicyMapState const& pmapState,
                                  Nev::QosClassData const& classData,
                                  Qos::ClassMapMatchOption matchOption, Nev::AclKey const& aclKey );
   virtual void verifyPolicer( Nev::QosClassData const& classData );
   virtual void verifyCounter( Nev::QosClassData const& classData );

   // ---- Interfaces and names

   virtual void handleRoutedPortSubIntfAclSharing();
   virtual void handleSubIntfForwardingModel( Mirel::IntfId const& intfId );
   virtual void handleSubIntfDeletion( Mirel::IntfId const& intfId );
   virtual Zub::String cpuQIdToClassMapName( std::uint32_t cpuQId );
   virtual Zub::String portToIntfName( std::uint32_t modId, std::uint32_t port );
   virtual bool delaySviPmapSmCreation();

   // ---- Concrete operations

   std::uint64_t getRateParamInKbps( Qos::RateUnit rateUnit, std::uint64_t value ) const;
   std::uint64_t getBurstParamInKbits( Qos::BurstUnit burstUnit, std::uint64_t value ) const;
   std::uint64_t getBurstParamInBytes( Qos::BurstUnit burstUnit, std::uint64_t value ) const;
   // "<base name>-<matchPrio>", the base name chosen by the type and the match option; an option
   // without a base name of its own gives "-<matchPrio>". The type must be ip or ipv6.
   Zub::String createAclName( Acl::AclType aclType, Qos::ClassMapMatchOption matchOpt,
                              std::uint32_t matchPrio ) const;
   // A driver that reports programming results itself writes a policy map's result here. Only
   // the status changes: no log, no unableToProgram, no readyToVerify.
   void qosAclStatusUpdateCallback( Nev::QosPolicyMapKey const& pmapKey,
                                    Qos::PolicyMapHwPrgmStatus status );
   // Asks the engine to reprogram an interface in one direction: the entry lives only for the
   // length of the notification.
   void intfUpdateCallback( Qos::IntfPairKey const& intfPair, Qos::Direction direction );

 protected:
   // The default of an operation that a chip must implement: returns on a no-op agent, so that
   // the caller answers its neutral value; otherwise stops the process with `message`.
   void unimplemented( char const* message ) const;

 private:
   Zub::Ptr< Qos::Status const > const qosStatus_;
   Zub::Ptr< Qos::AclSliceHwStatus > const qosAclSliceHwStatus_;
   Zub::Ptr< Acl::Config const > const mainAclConfig_;
};

}  // namespace NevHelper
