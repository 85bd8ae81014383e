// A chip for tests of the engine: an ACL helper that records every call it receives, in order,
// as one text line, and answers what the test told it to.
//
// Line format. The operation's name, then one `field=value` per argument, in argument order,
// separated by single blanks:
//
//    precreateAcl pmap=gold option=matchOptionIpAcl aclKey=acl-1
//    batchCommitAclsIntf pmap=gold:output@grp1 intf=Ethernet1 add=true
//    createCoppPolicerByPortQueue key=1/2/3
//
// Fields take the argument's name, except for these:
//    pmap=     a policy map state, or the key of cleanupForPMap, as
//              "<pmapName>[:<mapType>][:output][@<aclGroup>]", leaving out the map type when it
//              is mapQos, the direction when input, the group when "Default"
//              (showAclPolicyHeader's key argument shows the same way as pmapKey=)
//    class=    the class data, only once classDataTextIs() gave a way to describe it
//    option=   the match option's name, e.g. matchOptionVlan
//    aclKey=   "<aclName>[:<aclType>][@<aclGroup>]", leaving out the type when ip and the group
//              when it is the key's default group
//    intf=     an interface pair: "<intfId>" or "<intfId>(<lagIntfId>)"
// Other values: numbers in decimal, bools as true/false, enumerations by name (ipv6, mapQos,
// permit), a service policy key like a policy map without a group, a class map key as
// "<cmapName>[:<cmapType>]" (type left out for mapQos), a CPU queue key as "modId/port/queue",
// an IPv6 prefix in its usual text. Rule records are left out: aclId and ruleNum name them.
//
// Answers. Each operation answers, in this order of preference: the next of the answers queued
// for it (the ...Enq setters), then its standing answer (the ...Is setters), then its default.
// The default is the base class's answer where the base has one. Where the base would stop the
// process the recorder succeeds instead: 0 for an AclCreateError, true for the creating bools,
// nothing for void; except that checkUserCoppEntryExists and checkKernelCoppEntryExists answer
// false, coppAllocateCpuQ hands out 0, 1, 2, ..., cpuQIdToClassMapName and portToIntfName give
// "cpu-queue-<cpuQId>" and "port-<modId>/<port>", the getDdeCopp... queries the empty key, and
// ipLenRangeSubruleExists true (the length range stands whole).
// Naming an operation that gives no answer of that kind throws std::invalid_argument, so a
// misspelt name cannot pass unnoticed.
//
// The base's concrete behaviour stays: batchCommitAclsIntf is recorded and then reaches
// batchCommitAcls (recorded too), unless batchCommitAclsIntfAloneIs( true ) says otherwise.
// Capabilities are the helper's own attributes: asyncTcamOperationsSupportedIs( true ),
// qosEcnSupportIs, establishedSupportedIs, supportedTcpFlagsIs.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "NevQos/helpers/QosAclHelper.h"

namespace NevQosTest {

class RecordingQosAclHelper : public NevHelper::QosAclHelper {
 public:
   // Fresh, empty inputs of its own.
   RecordingQosAclHelper();
   RecordingQosAclHelper( Zub::Ptr< Qos::Status const > qosStatus,
                          Zub::Ptr< Qos::AclSliceHwStatus > qosAclSliceHwStatus,
                          Zub::Ptr< Acl::Config const > mainAclConfig );

   // ---- The record

   std::vector< std::string > const& calls() const { return calls_; }
   void clearCalls() { calls_.clear(); }
   // The lines that begin with `prefix`, in order. A bare operation name matches that operation
   // only, not one whose name merely starts with it.
   std::vector< std::string > callsMatching( std::string_view prefix ) const;
   // All lines, each ended by a line break: readable in a failed comparison.
   std::string callsText() const;

   // ---- Answers

   void aclCreateErrorIs( std::string_view op, Nev::AclCreateError answer );
   void aclCreateErrorEnq( std::string_view op, Nev::AclCreateError answer );
   void boolAnswerIs( std::string_view op, bool answer );
   void boolAnswerEnq( std::string_view op, bool answer );
   // Answers of coppAllocateCpuQ.
   void cpuQueueIs( int answer );
   void cpuQueueEnq( int answer );
   void aclGroupIs( Qos::IntfPairKey const& intfPair, Zub::Name const& group );
   void counterDataIs( Nev::AclKey const& aclKey, Nev::QosClassCounterData const& data );
   void classMapNameIs( std::uint32_t cpuQId, Zub::String const& name );
   void intfNameIs( std::uint32_t modId, std::uint32_t port, Zub::String const& name );
   // batchCommitAclsIntf records itself only, as a chip that batches per interface would.
   void batchCommitAclsIntfAloneIs( bool alone ) { batchCommitAclsIntfAlone_ = alone; }
   // How a class data shows in the record; without it the class is left out.
   void classDataTextIs( std::function< std::string( Nev::QosClassData const& ) > text ) {
      classDataText_ = std::move( text );
   }

   // Ends the asynchronous operation in flight: writes asyncOperationResult with `message` and
   // the loop's current time.
   void completeAsync( Zub::String const& message = Zub::String() );

   // ---- The operations, recorded

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
   bool checkUserCoppEntryExists( Nev::ModIdPortQueueKey const& classData ) override;
   bool checkKernelCoppEntryExists( Nev::ModIdPortQueueKey const& classData ) override;
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
   class Line;
   template< class T >
   struct Answers {
      std::deque< T > next;
      std::optional< T > standing;
   };

   void record( Line const& line );
   Line line( char const* op ) const;
   Nev::AclCreateError errorAnswer( char const* op );
   bool boolAnswer( char const* op, bool byDefault );
   Answers< Nev::AclCreateError >& errorAnswers( std::string_view op );
   Answers< bool >& boolAnswers( std::string_view op );

   std::vector< std::string > calls_;
   std::map< std::string, Answers< Nev::AclCreateError >, std::less<> > errorAnswers_;
   std::map< std::string, Answers< bool >, std::less<> > boolAnswers_;
   Answers< int > cpuQueueAnswers_;
   int nextCpuQueue_ = 0;
   std::map< Qos::IntfPairKey, Zub::Name > aclGroups_;
   std::map< Nev::AclKey, Nev::QosClassCounterData > counterData_;
   std::map< std::uint32_t, Zub::String > classMapNames_;
   std::map< std::pair< std::uint32_t, std::uint32_t >, Zub::String > intfNames_;
   bool batchCommitAclsIntfAlone_ = false;
   std::function< std::string( Nev::QosClassData const& ) > classDataText_;
};

}  // namespace NevQosTest
