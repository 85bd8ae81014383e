// The reference chip's ACL helper: a believable implementation of the helper contract. Rules
// become value/mask entries in finite TCAM slices; port and length ranges take range checkers
// from a finite pool, and when it is empty the chip asks the compiler to expand them; policers,
// counters and CPU queues are finite pools; counters advance with the traffic a scenario
// injects. In the asynchronous mode every commit, destroy and port update completes later
// through the asynchronous result, carrying the first failure of the operation. Its start-up
// (hwInit) finds the chip empty, also when the agent restarts over it.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "NevQos/helpers/QosAclHelper.h"
#include "NevQos/platform/kesh/TimerWheel.h"
#include "NevQos/platform/nev/VerifyData.h"
#include "NevQos/sim/chip/ChipConfig.h"
#include "NevQos/sim/chip/ChipFaults.h"
#include "NevQos/sim/chip/Tcam.h"

namespace Sim {

// Packets that reach one class of a policy map on one interface.
struct ChipTraffic {
   Qos::ServicePolicyKey servicePolicy;
   Zub::Name classMap;
   Qos::IntfPairKey intf;
   Nev::QosClassCounterData hits;
};

class SimQosAclHelper : public NevHelper::QosAclHelper {
 public:
   SimQosAclHelper( ChipConfig config, Zub::Ptr< Qos::Status const > qosStatus,
                    Zub::Ptr< Qos::AclSliceHwStatus > qosAclSliceHwStatus,
                    Zub::Ptr< Acl::Config const > mainAclConfig,
                    Zub::Ptr< Kesh::TimerWheel > clock );
   ~SimQosAclHelper() override;

   ChipConfig const& config() const { return config_; }
   Tcam const& tcam() const { return tcam_; }
   // The helper the engine holds, whose base-class state (policy map states, unableToProgram)
   // the chip marks and clears: the chip itself, unless a decorator stands between them (see
   // sim/recording/RecordingQosAclHelper.h). Null means the chip itself again.
   void engineHelperIs( NevHelper::QosAclHelper* helper ) {
      engineHelper_ = helper ? helper : this;
   }
   std::uint32_t policersUsed() const { return static_cast< std::uint32_t >( policers_.size() ); }
   std::uint32_t countersUsed() const { return static_cast< std::uint32_t >( counters_.size() ); }
   std::uint32_t cpuQueuesUsed() const { return static_cast< std::uint32_t >( cpuQueues_.size() ); }
   // The control-plane policers on single CPU queues of ports, put there for the kernel.
   std::set< Nev::ModIdPortQueueKey > const& portCpuQueuePolicers() const {
      return portCpuQueuePolicers_;
   }
   // The names the chip gives a port and a CPU queue's class.
   std::string portName( std::uint32_t modId, std::uint32_t port ) const;
   std::string cpuQueueClassName( std::uint32_t cpuQId ) const;
   // The interfaces each installed ACL is bound to, by ACL id: those of its class when it was
   // committed, and then those the engine adds and removes.
   using Ports = std::map< std::string, std::set< std::string > >;
   Ports const& aclPorts() const { return aclPorts_; }
   // Asynchronous operations started and not completed yet, including those left pending.
   std::size_t pendingOperations() const { return pending_.size(); }

   // Traffic a scenario injects: the counters of every copy of the class that holds the
   // interface advance by it, on the copy's first installed ACL.
   void trafficIs( ChipTraffic const& traffic );
   // Switches fault `index` of the configuration off or on; it still holds only in its time
   // window.
   void faultIs( std::size_t index, bool on );
   // Whether a fault of `kind` holds now; the chip's other helpers ask it too.
   bool faultOn( FaultConfig::Kind kind ) const;
   // The chip's faults, which its other helpers share.
   std::shared_ptr< ChipFaults > const& faults() const { return faults_; }
   // Called when the chip reports an operation pending that it will never complete (the
   // asyncPending fault); the agent marks the engine's operation pending so that it times out.
   void operationLeftPendingHandlerIs( std::function< void() > handler ) {
      leftPendingHandler_ = std::move( handler );
   }
   // The chip's name for a class data: its key as text.
   static std::string classKeyOf( Nev::QosClassData const& classData );
   // The chip's name for one ACL of a class: the TCAM's id of it.
   static std::string aclIdOf( Nev::QosClassData const& classData, Nev::AclKey const& aclKey );
   // Where the chip reports what it finds wrong when the engine asks it to verify. Each run the
   // verify agent starts there also runs the chip's own checks (verifyChip).
   void verifyDataIs( Zub::Ptr< Nev::VerifyData > const& verifyData );
   // The chip's own checks, which no call of the engine asks for: every ACL in the TCAM must be
   // owned by a class of a policy map.
   void verifyChip();
   // The verification queries about single subrules answered so far; unlike the other calls,
   // they are not recorded one by one.
   std::uint64_t subruleQueries() const { return subruleQueries_; }
   // Damages entry (ruleNum, subruleNum) of every installed ACL named `aclName`, as a fault of
   // the hardware would: see Tcam::corrupt. The number of entries damaged.
   std::size_t corruptEntry( std::string const& aclName, std::uint32_t ruleNum,
                             std::uint32_t subruleNum, std::string const& field,
                             std::string const& value );
   // Puts `entry`, which the engine never asked for, into every installed ACL named `aclName`
   // that has no entry of its numbers: see Tcam::plant. The number of ACLs that took it.
   std::size_t plantEntry( std::string const& aclName, TcamEntry const& entry );

   // ---- The helper contract
   Nev::AclCreateError precreateAcl( Nev::QosPolicyMapState const& pmapState,
                                     Nev::QosClassData const& classData,
                                     Qos::ClassMapMatchOption matchOption,
                                     Nev::AclKey const& aclKey ) override;
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
   void destroyAcl( Nev::QosPolicyMapState const& pmapState, Nev::QosClassData const& classData,
                    Qos::ClassMapMatchOption matchOption, Nev::AclKey const& aclKey ) override;
   void cleanupAcl( Nev::QosPolicyMapState const& pmapState, Nev::QosClassData const& classData,
                    Qos::ClassMapMatchOption matchOption, Nev::AclKey const& aclKey ) override;
   Nev::AclCreateError commitAcl( Nev::QosClassData const& classData,
                                  Qos::ClassMapMatchOption matchOption,
                                  Nev::AclKey const& aclKey ) override;
   void prepareToCommit() override;
   void batchCommitAcls( Nev::QosPolicyMapState const& pmapState ) override;
   void batchCommitAclsIntf( Nev::QosPolicyMapState const& pmapState,
                             Qos::IntfPairKey const& intfPair, bool add ) override;
   bool createSmForPMap( Nev::QosPolicyMapState const& pmapState ) override;
   void cleanupForPMap( Nev::QosPolicyMapKey const& pmapKey ) override;
   void updatePolicer( Zub::Name const& policerName ) override;
   void handlePendingOperationTimeout() override;

   int coppAllocateCpuQ( Nev::QosClassData const& classData ) override;
   void coppDeallocateCpuQ( Nev::QosClassData const& classData ) override;
   bool createAndAttachPolicer( Nev::QosClassData const& classData ) override;
   void destroyPolicer( Nev::QosClassData const& classData ) override;
   bool createAndAttachCoppPolicer( Nev::QosClassData const& classData ) override;
   void createAndAttachCounter( Nev::QosClassData const& classData ) override;
   void destroyCounter( Nev::QosClassData const& classData ) override;
   Nev::QosClassCounterData counterUpdateRequest( Nev::QosClassData const& classData,
                                                  Nev::AclKey const& aclKey ) override;

   bool checkUserCoppEntryExists( Nev::ModIdPortQueueKey const& key ) override;
   bool checkKernelCoppEntryExists( Nev::ModIdPortQueueKey const& key ) override;
   bool createCoppPolicerByPortQueue( Nev::ModIdPortQueueKey const& key ) override;
   void destroyCoppPolicerByPortQueue( Nev::ModIdPortQueueKey const& key ) override;
   void createDefaultCoppRates() override;
   void destroyCoppPolicer( Nev::QosClassData const& classData ) override;
   void hwInit() override;

   // ---- Verification: each answer comes from the TCAM as it stands
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
   // Compares every entry of the ACL with the driver's record of what the engine's calls wrote.
   void verifyTcamData( Nev::QosClassData const& classData, Qos::ClassMapMatchOption matchOption,
                        Nev::AclKey const& aclKey ) override;
   void verifyAclGeneral( Nev::QosClassData const& classData, Qos::ClassMapMatchOption matchOption,
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
                            Mirel::Ip6AddrWithMask const& expected, bool valid ) override;
   void verifyIpRuleDstIp6( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                            Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                            std::uint32_t subruleNum, std::uint32_t sequence,
                            Mirel::Ip6AddrWithMask const& expected, bool valid ) override;
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
                          std::uint8_t expectedType, std::uint8_t expectedCode, bool typeValid,
                          bool codeValid ) override;
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

   // ---- Show: the TCAM as tables, to the descriptor the engine passes
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
   Zub::String cpuQIdToClassMapName( std::uint32_t cpuQId ) override;
   Zub::String portToIntfName( std::uint32_t modId, std::uint32_t port ) override;

   Zub::Name aclGroup( Qos::IntfPairKey const& intfPair,
                       Qos::ServicePolicyKey const& spKey ) override;
   bool managedPrioritySupported( Qos::MapType mapType ) override;
   bool delaySviPmapSmCreation() override;
   bool multipleActionsSupported() override { return config_.multipleActionsSupported; }
   bool errorOnPolicerExhaustion() override { return config_.errorOnPolicerExhaustion; }

 private:
   class Completer;
   class VerifyReactor;

   // The driver's record of one ACL it opened: the class data the engine opened it for, and the
   // entries the engine's calls wrote into it, as written. The TCAM's cells may change behind
   // the driver's back (corruptEntry, plantEntry); this record does not. Until they do, the TCAM
   // holds what was written, and the record keeps no copy of it: the first damage copies.
   struct AclRecord {
      Zub::Ptr< Nev::QosClassData const > classData;
      // The engine's key of the ACL; none for the ACL of the built-in classes.
      std::optional< Nev::AclKey > aclKey;
      std::optional< std::vector< TcamEntry > > written;
   };
   // The entries written into the ACL as the driver wrote them.
   std::vector< TcamEntry > const& writtenEntries( std::string const& aclId ) const;
   // Keeps the entries written into the ACL apart from its cells, before they are damaged.
   void writtenKeptApart( std::string const& aclId );

   bool async() const { return config_.tcamMode == TcamMode::asynchronous; }
   // The answer a scripted fault gives to this call of `op`, if any: in the asynchronous mode
   // none in the call (the operation's result carries it) unless the fault answers in the call.
   std::optional< Nev::AclCreateError > faultFor( std::string const& op,
                                                  Nev::QosClassData const& classData );
   void aclBaseNamesIs( std::map< std::string, std::string > const& names );
   void mapCommitted( Nev::QosPolicyMapState const& pmapState );
   bool active( FaultConfig const& fault ) const;
   // Writes one entry; a refusal is answered now, or kept for the asynchronous result.
   Nev::AclCreateError install( std::string const& aclId, TcamEntry entry );
   // Opens the ACL in the TCAM and starts its record over; `aclKey` null for the built-in ACL.
   void openAcl( std::string const& aclId, std::string const& slice,
                 Nev::QosClassData const& classData, Nev::AclKey const* aclKey );
   // Frees the ACL in the TCAM and forgets its record.
   void closeAcl( std::string const& aclId );
   // A rule operation: a scripted fault, or the entry written into
   // the ACL, opened in `slice` if need be.
   Nev::AclCreateError createRule( std::string const& op, std::string const& aclId,
                                   std::string const& slice, Nev::QosClassData const& classData,
                                   Nev::AclKey const* aclKey, TcamEntry entry );
   Nev::AclCreateError answer( Nev::AclCreateError error, Nev::QosClassData const& classData );
   void startOperation();
   bool takePolicer( Nev::QosClassData const& classData );
   static void bind( std::set< std::string >& ports, Qos::IntfPairKey const& intfPair, bool add );
   // The expected fields of the non-IP rules, as the create operations write them.
   static TcamEntry l2EntryOf( Nev::QosClassData const& classData, std::uint32_t ruleNum );
   static TcamEntry mplsEntryOf( Nev::QosClassData const& classData, std::uint32_t ruleNum );
   static TcamEntry dscpEcnEntryOf( Nev::QosClassData const& classData, std::uint32_t ruleNum );
   static TcamEntry macEntryOf( Nev::QosClassData const& classData, std::uint32_t ruleNum );

   // ---- Verification (SimQosAclHelperVerify.cc)
   // The IP entry a field check is about: null when there is none, which the engine reports.
   TcamEntry const* ipEntry( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                             std::uint32_t ruleNum, std::uint32_t subruleNum ) const;
   // Where a field check looks: one subrule of one ACL, and its rule's sequence for messages.
   struct FieldCheck {
      Nev::QosClassData const& classData;
      Nev::AclKey const& aclKey;
      std::uint32_t ruleNum;
      std::uint32_t subruleNum;
      std::uint32_t sequence;
   };
   // One field compared; `absent` is what a missing field stands for.
   void checkField( FieldCheck const& at, std::string const& name, std::string const& expected,
                    std::string const& absent = "" );
   void checkPorts( FieldCheck const& at, std::string const& name, std::uint16_t low,
                    std::uint16_t high, bool valid );
   // An entry of `kind` with the fields of `expected` must stand in the ACL.
   void checkRuleEntry( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                        TcamEntry const& expected );
   void reportMismatch( std::string const& text );
   // "ACL <name> sequence <s> rule <r> subrule <n> <field> is <actual>, expected <expected>".
   void reportFieldMismatch( FieldCheck const& at, std::string const& name,
                             std::string const& actual, std::string const& expected );
   // "ACL <name> of class <class> <what>".
   void reportAclMismatch( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                           std::string const& what );
   FieldCheck subruleQuery( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                            std::uint32_t ruleNum, std::uint32_t subruleNum,
                            std::uint32_t sequence );
   // False, after reporting it, when the ACL is not installed and committed.
   bool checkInstalled( Nev::QosClassData const& classData, Nev::AclKey const& aclKey );
   // The ACL serves exactly the interfaces of its class.
   void checkPortsBound( Nev::QosClassData const& classData, Nev::AclKey const& aclKey );
   // The entries of TCAM ACL `aclId` against the record of what was written into it.
   void compareWritten( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                        std::string const& aclId );
   // What a difference in an entry of an IP access list or of another kind is reported as.
   void reportIpEntry( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                       TcamEntry const* written, TcamEntry const* actual );
   void reportOtherEntry( Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
                          TcamEntry const* written, TcamEntry const* actual );
   // The sequence of the configured rule an IP entry comes from, by the list's rules now.
   std::uint32_t sequenceOf( Nev::AclKey const& aclKey, std::uint64_t ruleId ) const;
   // Whether a class of a policy map owns the ACL: its class data is still held by the engine,
   // not by this record alone, and still holds the ACL among its matches.
   bool owned( AclRecord const& record ) const;
   std::vector< std::string > aclIdsNamed( std::string const& aclName ) const;
   // The counters of the traffic injected so far into the class's interfaces.
   Nev::QosClassCounterData countersOf( Nev::QosClassData const& classData ) const;
   static TcamEntry defaultEntry() { return TcamEntry{ "default", 0, 0, { { "match", "any" } } }; }
   // ---- Show (SimQosAclHelperShow.cc)
   void showEntries( std::uint32_t socket, Nev::QosClassData const& classData,
                     Nev::AclKey const& aclKey, std::string const& kind );

   ChipConfig config_;
   Tcam tcam_;
   Zub::Ptr< Kesh::TimerWheel > clock_;
   Zub::Ptr< Completer > completer_;
   NevHelper::QosAclHelper* engineHelper_ = this;
   std::uint32_t asyncOperations_ = 0;
   // The first failure since the asynchronous operation began, and the map it failed.
   struct AsyncFailure {
      Nev::AclCreateError error;
      Nev::QosPolicyMapKey pmap;
   };
   std::optional< AsyncFailure > asyncFailure_;
   // The operations in flight, in order of completion.
   struct PendingOperation {
      Zub::Seconds due = 0.0;
      std::string message;
      // Reported pending when due, never completed.
      bool hangs = false;
      bool reported = false;
      // Answers twice (the asyncRepeated fault).
      bool repeats = false;
   };
   std::vector< PendingOperation > pending_;
   std::function< void() > leftPendingHandler_;
   std::shared_ptr< ChipFaults > faults_;
   std::set< std::string > policers_;
   std::set< std::string > counters_;
   // Counters the chip refused and logged: the engine has no failure path for them.
   std::set< std::string > refusedCounters_;
   std::map< std::string, int > cpuQueues_;
   std::set< Nev::ModIdPortQueueKey > portCpuQueuePolicers_;
   std::vector< ChipTraffic > traffic_;
   Ports aclPorts_;
   std::map< std::string, AclRecord > aclRecords_;
   Zub::Ptr< Nev::VerifyData > verifyData_;
   Zub::Ptr< VerifyReactor > verifyReactor_;
   std::uint64_t subruleQueries_ = 0;
};

}  // namespace Sim
