// The conformance run's watcher of a driver's ACL helper: a recording decorator (counting only)
// between the engine and the driver that forwards every call and checks, as the calls go by,
// what the contract promises on each side:
// - call sequence: a rule is created only in an ACL the driver has open (its precreateAcl
//   answered 0, and it is neither committed nor destroyed since); an ACL is committed once;
//   updatePortForAcl only for a committed one (or one whose rules failed, on its way out);
//   destroyAcl only for one the driver created or committed; destroyPolicer only for a
//   policer the driver gave;
// - asynchronous results: on the asynchronous road, each operation the engine starts
//   (commitAcl, destroyAcl, updatePortForAcl) gets exactly one result, not inside the call, and
//   within the time-out the driver declares, unless its agent marks it pending;
// - capabilities: a capability answers the same each time it is asked; an expansion code
//   comes only for a subrule with a range that needs a checker (the blocks an expansion makes
//   are taken); on the asynchronous road every rule operation answers 0, the refusal going to
//   the operation's result; every answer is one of the codes the contract knows.
// A rule operation on the asynchronous road that answers otherwise is reported and answered 0
// to the engine, which would stop on its assertion: the run goes on to find the rest.
#pragma once

#include <cstddef>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "NevQos/sim/recording/RecordingQosAclHelper.h"

namespace Conformance {

// Where the run stands and what it found, shared by the run and its watchers.
struct ContractLedger {
   // Findings kept at most: a broken driver breaks a point on every call.
   static constexpr std::size_t limit = 50;
   // "during step N (at T s)", or wherever the run stands; set by the run.
   std::string where = "at the start";
   // "<where>: <contract point>: <what>", in the order found.
   std::vector< std::string > findings;
   std::size_t dropped = 0;

   void add( std::string const& point, std::string const& what );
};

class WatchingQosAclHelper : public Sim::RecordingQosAclHelper {
 public:
   // `asyncTimeout` is how long the driver declares an operation may wait for its result.
   WatchingQosAclHelper( Zub::Ptr< NevHelper::QosAclHelper > driver,
                         Zub::Ptr< Kesh::TimerWheel > clock,
                         std::shared_ptr< ContractLedger > ledger, Zub::Seconds asyncTimeout );

   // The driver's agent marked the operation under way pending: it is answered so.
   void operationLeftPending();
   // Reports each operation waiting longer than the declared time-out, once.
   void timeoutsCheck( Zub::Seconds now );
   // The asynchronous results are not checked: the scenario makes the chip answer twice on
   // purpose.
   void asyncResultsUncheckedIs( bool unchecked ) { asyncUnchecked_ = unchecked; }
   // The next permit IP subrule (synchronous road) is answered 0 without reaching the driver,
   // so that verification must find it missing; what was withheld, once done.
   void withholdNextSubruleIs( bool withhold ) { withhold_ = withhold; }
   std::optional< std::string > const& withheld() const { return withheld_; }

   // ---- The operations watched, each forwarded through the recording decorator
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
   Nev::AclCreateError createMacAclRule( Nev::QosPolicyMapState const& pmapState,
                                         Nev::QosClassData const& classData,
                                         Qos::ClassMapMatchOption matchOption,
                                         Nev::AclKey const& aclKey,
                                         std::uint32_t ruleNum ) override;
   Nev::AclCreateError createBuiltInClassMatchRule( Nev::QosPolicyMapState const& pmapState,
                                                    Nev::QosClassData const& classData,
                                                    Qos::ClassMapMatchOption matchOption,
                                                    std::uint32_t ruleNum ) override;
   Nev::AclCreateError precreateAcl( Nev::QosPolicyMapState const& pmapState,
                                     Nev::QosClassData const& classData,
                                     Qos::ClassMapMatchOption matchOption,
                                     Nev::AclKey const& aclKey ) override;
   Nev::AclCreateError commitAcl( Nev::QosClassData const& classData,
                                  Qos::ClassMapMatchOption matchOption,
                                  Nev::AclKey const& aclKey ) override;
   void destroyAcl( Nev::QosPolicyMapState const& pmapState, Nev::QosClassData const& classData,
                    Qos::ClassMapMatchOption matchOption, Nev::AclKey const& aclKey ) override;
   void updatePortForAcl( Nev::QosPolicyMapState const& pmapState,
                          Nev::QosClassData const& classData, Qos::ClassMapMatchOption matchOption,
                          Nev::AclKey const& aclKey, Qos::IntfPairKey const& intfPair,
                          bool add ) override;
   bool createAndAttachPolicer( Nev::QosClassData const& classData ) override;
   void destroyPolicer( Nev::QosClassData const& classData ) override;
   bool managedPrioritySupported( Qos::MapType mapType ) override;
   bool multipleActionsSupported() override;
   bool errorOnPolicerExhaustion() override;
   bool isMacAclRuleSupportedPlatform() override;
   bool delaySviPmapSmCreation() override;
   void hwInit() override;

 private:
   // Open: precreated; failed: open, with a rule refused; empty: committed with nothing made.
   enum class AclState { open, failed, committed, empty };
   struct Operation {
      Zub::Seconds started = 0.0;
      std::string what;
      bool late = false;  // reported past the time-out
   };

   bool async() const { return asyncTcamOperationsSupported(); }
   // The answer of a rule operation of ACL `acl`, checked; what the engine is to hear.
   Nev::AclCreateError ruleAnswered( char const* op, std::string const& acl,
                                     Nev::AclCreateError answer );
   void ruleInOpenAcl( char const* op, std::string const& acl );
   bool known( Nev::AclCreateError answer ) const;
   void operationStarted( std::string what );
   void resultHeard( Nev::AsyncOperationResult const& result );
   bool capability( std::string const& name, bool answer );

   std::shared_ptr< ContractLedger > ledger_;
   Zub::Ptr< Kesh::TimerWheel > clock_;
   Zub::Seconds asyncTimeout_;
   std::map< std::string, AclState > acls_;
   std::map< std::string, std::size_t > policers_;
   std::deque< Operation > waiting_;
   // Operations under way inside their call: an answer now is one inside the call.
   bool inCall_ = false;
   bool asyncUnchecked_ = false;
   bool withhold_ = false;
   std::optional< std::string > withheld_;
   std::map< std::string, bool > capabilities_;
};

}  // namespace Conformance
