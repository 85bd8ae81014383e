// The recording ACL helper: a decorator that stands between the engine and any ACL helper (by
// default the reference chip), forwards every operation to it, and records each call as a
// Sim::ChipCall, the one call-record format of the runner's report and of the tests. It is what
// the scenario runner reports the calls from, and the chip the engine's unit tests drive: over the
// reference chip, with a scripted answer where a test needs a refusal or a particular answer.
//
// What is recorded. The operations that program, verify or ask about one object of the chip,
// and the subinterface notices: the same calls the runner's report has always shown, with the
// same argument texts. Questions of capability, show output, single-subrule verification
// queries, the per-rule MAC question and the names of queues and ports are forwarded unrecorded
// (they are counted in the counting mode; all but capabilities and show output are recorded on
// request, detailRecordedIs). See CallRecorder.h for the record's text, the counting mode and the
// scripted answers.
//
// Base-class state. The decorator is the helper the engine holds, so the state the engine keeps
// in its helper (policy map states, unableToProgram, unit errors, the asynchronous result it
// watches, the capability attributes it reads) is the decorator's own. The wrapped helper keeps
// base-class state of its own that the engine never sees; the two meet in three places:
//   - capabilities: the wrapped helper's value attributes (asyncTcamOperationsSupported,
//     qosEcnSupport, establishedSupported, supportedTcpFlags, the ACL base names) are copied when
//     the decorator is made, since a driver sets them in its constructor;
//   - the asynchronous result: what the wrapped helper writes into its asyncOperationResult is
//     moved into the decorator's at once (AsyncResultMirror), so the engine hears it as from the
//     chip, and the wrapped helper's goes back to "none";
//   - policy map states: a wrapped reference chip marks a failed map dirty and clears the states
//     at start-up (hwInit) in the decorator, which it is told of (engineHelperIs). Another
//     wrapped helper that writes the engine's per-map state must be told the same way.
// The inputs (qosStatus, qosAclSliceHwStatus, mainAclConfig) are the wrapped helper's.
#pragma once

#include "NevQos/helpers/QosAclHelper.h"
#include "NevQos/platform/kesh/TimerWheel.h"
#include "NevQos/sim/recording/AsyncResultMirror.h"
#include "NevQos/sim/recording/CallRecorder.h"

namespace Sim {

class RecordingQosAclHelper : public NevHelper::QosAclHelper, public CallRecorder {
 public:
   // `clock` stamps the calls; null stamps 0.
   RecordingQosAclHelper( Zub::Ptr< NevHelper::QosAclHelper > inner,
                          Zub::Ptr< Kesh::TimerWheel > clock );
   ~RecordingQosAclHelper() override;

   NevHelper::QosAclHelper& inner() const { return *inner_; }
   // Records as well the calls the runner's report leaves out for their number or for having no
   // effect on the chip, for a test about what the engine asks: the naming queries
   // (cpuQIdToClassMapName, portToIntfName), the queries and checks of one subrule (each as
   // classData, aclKey, ruleNum and subruleNum), isSupportedMacAclRule and the sub-interface
   // notices. Off by default.
   void detailRecordedIs( bool recorded ) { detailRecorded_ = recorded; }
   // The helper whose base-class state the wrapped reference chip marks and clears, through
   // any decorators of this kind between them: each decorator made over another passes itself
   // down, so the outermost, the one the engine holds, wins. Null: the chip itself.
   void engineHelperIs( NevHelper::QosAclHelper* helper );
   // Called with each asynchronous result the wrapped helper writes, before the engine hears it.
   void asyncResultHeardIs( std::function< void( Nev::AsyncOperationResult const& ) > heard ) {
      mirror_->heardIs( std::move( heard ) );
   }

   // ---- The helper contract, forwarded
   Zub::Name aclGroup( Qos::IntfPairKey const& intfPair,
                       Qos::ServicePolicyKey const& spKey ) override;
   Nev::AclCreateError createIpAclSubrule(
         Acl::AclType aclType, Acl::RuleConfig const& rule, Acl::UniqueId const& aclId,
         Nev::QosPolicyMapState const& pmapState, Nev::QosClassData const& classData,
         Nev::AclKey const& aclKey, std::uint32_t ruleNum, std::uint32_t subruleNum,
         std::uint16_t srcL4Port, std::uint16_t srcL4PortMask, std::uint16_t dstL4Port,
         std::uint16_t dstL4PortMask, std::uint16_t srcPortLow, std::uint16_t srcPortHigh,
         std::uint16_t dstPortLow, std::uint16_t dstPortHigh, std::uint16_t ipLen,
         std::uint16_t ipLenMask, std::uint16_t ipLenLow, std::uint16_t ipLenHigh,
         std::uint8_t tcpFlags, bool l4Rule, std::uint8_t ecnData, std::uint8_t ecnMask ) override;
   Nev::AclCreateError createIpFragRule( Nev::QosPolicyMapState const& pmapState,
                                         Nev::QosClassData const& classData,
                                         Nev::AclKey const& aclKey, Acl::IpRuleConfig const& rule,
                                         Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                                         std::uint32_t subRuleNum, std::uint8_t ecnData,
                                         std::uint8_t ecnMask ) override;
   Nev::AclCreateError createDefaultRule( Nev::QosPolicyMapState const& pmapState,
                                          Nev::QosClassData const& classData,
                                          Qos::ClassMapMatchOption matchOption,
                                          Nev::AclKey const& aclKey ) override;
   Nev::AclCreateError createL2ParamsRule( Nev::QosPolicyMapState const& pmapState,
                                           Nev::QosClassData const& classData,
                                           Qos::ClassMapMatchOption matchOption,
                                           Nev::AclKey const& aclKey,
                                           std::uint32_t ruleNum ) override;
   Nev::AclCreateError createMplsTrafficClassRule( Nev::QosPolicyMapState const& pmapState,
                                                   Nev::QosClassData const& classData,
                                                   Qos::ClassMapMatchOption matchOption,
                                                   Nev::AclKey const& aclKey,
                                                   std::uint32_t ruleNum ) override;
   Nev::AclCreateError createDscpEcnRule( Nev::QosPolicyMapState const& pmapState,
                                          Nev::QosClassData const& classData,
                                          Qos::ClassMapMatchOption matchOption,
                                          Nev::AclKey const& aclKey,
                                          std::uint32_t ruleNum ) override;
   bool isSupportedMacAclRule( Acl::MacRuleConfig const& rule ) override;
   bool isMacAclRuleSupportedPlatform() override;
   Nev::AclCreateError createMacAclRule( Nev::QosPolicyMapState const& pmapState,
                                         Nev::QosClassData const& classData,
                                         Qos::ClassMapMatchOption matchOption,
                                         Nev::AclKey const& aclKey,
                                         std::uint32_t ruleNum ) override;
   Nev::AclCreateError createBuiltInClassMatchRule( Nev::QosPolicyMapState const& pmapState,
                                                    Nev::QosClassData const& classData,
                                                    Qos::ClassMapMatchOption matchOption,
                                                    std::uint32_t ruleNum ) override;
   void updatePortForAcl( Nev::QosPolicyMapState const& pmapState,
                          Nev::QosClassData const& classData, Qos::ClassMapMatchOption matchOption,
                          Nev::AclKey const& aclKey, Qos::IntfPairKey const& intfPair,
                          bool add ) override;
   void updatePolicer( Zub::Name const& policerName ) override;
   Nev::AclCreateError precreateAcl( Nev::QosPolicyMapState const& pmapState,
                                     Nev::QosClassData const& classData,
                                     Qos::ClassMapMatchOption matchOption,
                                     Nev::AclKey const& aclKey ) override;
   void destroyAcl( Nev::QosPolicyMapState const& pmapState, Nev::QosClassData const& classData,
                    Qos::ClassMapMatchOption matchOption, Nev::AclKey const& aclKey ) override;
   void cleanupAcl( Nev::QosPolicyMapState const& pmapState, Nev::QosClassData const& classData,
                    Qos::ClassMapMatchOption matchOption, Nev::AclKey const& aclKey ) override;
   void prepareToCommit() override;
   Nev::AclCreateError commitAcl( Nev::QosClassData const& classData,
                                  Qos::ClassMapMatchOption matchOption,
                                  Nev::AclKey const& aclKey ) override;
   void batchCommitAcls( Nev::QosPolicyMapState const& pmapState ) override;
   void batchCommitAclsIntf( Nev::QosPolicyMapState const& pmapState,
                             Qos::IntfPairKey const& intfPair, bool add ) override;
   void handlePendingOperationTimeout() override;
   int coppAllocateCpuQ( Nev::QosClassData const& classData ) override;
   void coppDeallocateCpuQ( Nev::QosClassData const& classData ) override;
   Nev::ModIdPortQueueKey getDdeCoppModIdPortQueue( Nev::QosClassData const& classData ) override;
   Nev::ModIdQueueKey getDdeCoppModIdQueue( Nev::QosClassData const& classData ) override;
   bool checkUserCoppEntryExists( Nev::ModIdPortQueueKey const& key ) override;
   bool checkKernelCoppEntryExists( Nev::ModIdPortQueueKey const& key ) override;
   void createDefaultCoppRates() override;
   bool createAndAttachPolicer( Nev::QosClassData const& classData ) override;
   void destroyPolicer( Nev::QosClassData const& classData ) override;
   bool createAndAttachCoppPolicer( Nev::QosClassData const& classData ) override;
   void destroyCoppPolicer( Nev::QosClassData const& classData ) override;
   bool createCoppPolicerByPortQueue( Nev::ModIdPortQueueKey const& key ) override;
   void destroyCoppPolicerByPortQueue( Nev::ModIdPortQueueKey const& key ) override;
   void createAndAttachCounter( Nev::QosClassData const& classData ) override;
   void destroyCounter( Nev::QosClassData const& classData ) override;
   void showAclPolicyHeader( std::uint32_t socket, std::uint32_t unit,
                             Nev::QosPolicyMapState const& pmapState,
                             Nev::QosPolicyMapKey const& pmapKey ) override;
   void showAclClassHeader( std::uint32_t socket, std::uint32_t unit,
                            Nev::QosClassMapKey const& cmapKey ) override;
   void showAclHeader( std::uint32_t socket, std::uint32_t unit, bool detail,
                       Nev::QosClassData const& classData, Qos::ClassMapMatchOption matchOption,
                       Nev::AclKey const& aclKey ) override;
   void showIpAclRule( std::uint32_t socket, std::uint32_t unit, Nev::QosClassData const& classData,
                       Nev::AclKey const& aclKey, std::uint32_t sequence,
                       Acl::UniqueId const& id ) override;
   void showDefaultRule( std::uint32_t socket, std::uint32_t unit,
                         Nev::QosPolicyMapState const& pmapState,
                         Nev::QosClassData const& classData, Qos::ClassMapMatchOption matchOption,
                         Nev::AclKey const& aclKey ) override;
   void showL2ParamsRule( std::uint32_t socket, std::uint32_t unit,
                          Nev::QosPolicyMapState const& pmapState,
                          Nev::QosClassData const& classData, Qos::ClassMapMatchOption matchOption,
                          Nev::AclKey const& aclKey ) override;
   void showMplsTrafficClassRule( std::uint32_t socket, std::uint32_t unit,
                                  Nev::QosPolicyMapState const& pmapState,
                                  Nev::QosClassData const& classData,
                                  Qos::ClassMapMatchOption matchOption,
                                  Nev::AclKey const& aclKey ) override;
   void showDscpEcnRule( std::uint32_t socket, std::uint32_t unit,
                         Nev::QosPolicyMapState const& pmapState,
                         Nev::QosClassData const& classData, Qos::ClassMapMatchOption matchOption,
                         Nev::AclKey const& aclKey ) override;
   void showMacAclRule( std::uint32_t socket, std::uint32_t unit,
                        Nev::QosPolicyMapState const& pmapState, Nev::QosClassData const& classData,
                        Qos::ClassMapMatchOption matchOption, Nev::AclKey const& aclKey ) override;
   Nev::QosClassCounterData counterUpdateRequest( Nev::QosClassData const& classData,
                                                  Nev::AclKey const& aclKey ) override;
   bool ipSubruleExists( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                         Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                         std::uint32_t subruleNum ) override;
   bool ipPortRangeSubruleExists( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                                  Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                                  std::uint32_t subruleNum, std::uint16_t srcLow,
                                  std::uint16_t srcHigh, bool srcValid, std::uint16_t dstLow,
                                  std::uint16_t dstHigh, bool dstValid ) override;
   bool ipLenRangeSubruleExists( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                                 Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                                 std::uint32_t subruleNum, std::uint16_t ipLenLow,
                                 std::uint16_t ipLenHigh, bool ipLenValid ) override;
   bool createSmForPMap( Nev::QosPolicyMapState const& pmapState ) override;
   bool managedPrioritySupported( Qos::MapType mapType ) override;
   bool multipleActionsSupported() override;
   bool errorOnPolicerExhaustion() override;
   void cleanupForPMap( Nev::QosPolicyMapKey const& pmapKey ) override;
   void hwInit() override;
   bool policiesInStableState() override;
   void verifyTcamData( Nev::QosClassData const& classData, Qos::ClassMapMatchOption matchOption,
                        Nev::AclKey const& aclKey ) override;
   void verifyIpRuleGeneral( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                             Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                             std::uint32_t subruleNum, std::uint32_t sequence ) override;
   void verifyIpRuleAction( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                            Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                            std::uint32_t subruleNum, std::uint32_t sequence,
                            Acl::Action action ) override;
   void verifyIpRuleIpProto( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                             Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                             std::uint32_t subruleNum, std::uint32_t sequence,
                             std::uint8_t expectedProto, bool valid ) override;
   void verifyIpRuleSrcIp( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                           Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                           std::uint32_t subruleNum, std::uint32_t sequence,
                           std::uint32_t expectedAddr, std::uint32_t expectedMask,
                           bool valid ) override;
   void verifyIpRuleDstIp( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                           Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                           std::uint32_t subruleNum, std::uint32_t sequence,
                           std::uint32_t expectedAddr, std::uint32_t expectedMask,
                           bool valid ) override;
   void verifyIpRuleDscp( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                          Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                          std::uint32_t subruleNum, std::uint32_t sequence,
                          std::uint8_t expectedDscp, bool valid ) override;
   void verifyIpRuleTcIp6( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                           Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                           std::uint32_t subruleNum, std::uint32_t sequence,
                           std::uint8_t expectedDscp, bool valid ) override;
   void verifyIpRuleEcn( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                         Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                         std::uint32_t subruleNum, std::uint32_t sequence, std::uint8_t ecnData,
                         std::uint8_t ecnMask ) override;
   void verifyIpRuleEcnIp6( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                            Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                            std::uint32_t subruleNum, std::uint32_t sequence, std::uint8_t ecnData,
                            std::uint8_t ecnMask ) override;
   void verifyIpRuleSrcIp6( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                            Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                            std::uint32_t subruleNum, std::uint32_t sequence,
                            Mirel::Ip6AddrWithMask const& expectedDstAddr, bool valid ) override;
   void verifyIpRuleDstIp6( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                            Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                            std::uint32_t subruleNum, std::uint32_t sequence,
                            Mirel::Ip6AddrWithMask const& expectedDstAddr, bool valid ) override;
   void verifyIpRuleFragments( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                               Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                               std::uint32_t subruleNum, std::uint32_t sequence, bool matchHeadOnly,
                               bool matchFragmentsOnly ) override;
   void verifyIpRuleTcpFlags( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                              Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                              std::uint32_t subruleNum, std::uint32_t sequence,
                              std::uint8_t expectedTcpFlags, bool valid ) override;
   void verifyIpRuleIcmp( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                          Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                          std::uint32_t subruleNum, std::uint32_t sequence,
                          std::uint8_t expexctedIcmpType, std::uint8_t expectedIcmpCode,
                          bool icmpTypeValid, bool icmpCodeValid ) override;
   void verifyIpRuleSrcPort( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                             Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                             std::uint32_t subruleNum, std::uint32_t sequence,
                             std::uint16_t expectedLow, std::uint16_t expectedHigh,
                             bool valid ) override;
   void verifyIpRuleDstPort( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                             Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                             std::uint32_t subruleNum, std::uint32_t sequence,
                             std::uint16_t expectedLow, std::uint16_t expectedHigh,
                             bool valid ) override;
   void verifyIpRuleVlanMatch( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                               Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                               std::uint32_t subruleNum, std::uint16_t expectedVlanId,
                               std::uint16_t expectedVlanIdMask, bool valid ) override;
   void verifyAclGeneral( Nev::QosClassData const& classData, Qos::ClassMapMatchOption matchOption,
                          Nev::AclKey const& aclKey ) override;
   void verifyRulePorts( Nev::QosPolicyMapState const& pmapState,
                         Nev::QosClassData const& classData, Qos::ClassMapMatchOption matchOption,
                         Nev::AclKey const& aclKey, Acl::UniqueId const& aclId,
                         std::uint32_t ruleNum, std::uint32_t subruleNum, std::uint32_t sequence,
                         Acl::Action action ) override;
   void verifyDefaultRule( Nev::QosPolicyMapState const& pmapState,
                           Nev::QosClassData const& classData, Qos::ClassMapMatchOption matchOption,
                           Nev::AclKey const& aclKey ) override;
   void verifyL2ParamsRule( Nev::QosPolicyMapState const& pmapState,
                            Nev::QosClassData const& classData,
                            Qos::ClassMapMatchOption matchOption,
                            Nev::AclKey const& aclKey ) override;
   void verifyMplsTrafficClassRule( Nev::QosPolicyMapState const& pmapState,
                                    Nev::QosClassData const& classData,
                                    Qos::ClassMapMatchOption matchOption,
                                    Nev::AclKey const& aclKey ) override;
   void verifyDscpEcnRule( Nev::QosPolicyMapState const& pmapState,
                           Nev::QosClassData const& classData, Qos::ClassMapMatchOption matchOption,
                           Nev::AclKey const& aclKey ) override;
   void verifyMacAclRule( Nev::QosPolicyMapState const& pmapState,
                          Nev::QosClassData const& classData, Qos::ClassMapMatchOption matchOption,
                          Nev::AclKey const& aclKey ) override;
   void verifyPolicer( Nev::QosClassData const& classData ) override;
   void verifyCounter( Nev::QosClassData const& classData ) override;
   void handleRoutedPortSubIntfAclSharing() override;
   void handleSubIntfForwardingModel( Mirel::IntfId const& intfId ) override;
   void handleSubIntfDeletion( Mirel::IntfId const& intfId ) override;
   Zub::String cpuQIdToClassMapName( std::uint32_t cpuQId ) override;
   Zub::String portToIntfName( std::uint32_t modId, std::uint32_t port ) override;
   bool delaySviPmapSmCreation() override;

 private:
   Zub::Ptr< NevHelper::QosAclHelper > inner_;
   Zub::Ptr< AsyncResultMirror > mirror_;
   bool detailRecorded_ = false;

   void recordSubrule( char const* op, Nev::QosClassData const& classData,
                       Nev::AclKey const& aclKey, std::uint32_t ruleNum, std::uint32_t subruleNum );
};

}  // namespace Sim
