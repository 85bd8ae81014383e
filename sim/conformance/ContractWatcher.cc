#include "NevQos/sim/conformance/ContractWatcher.h"

#include "NevQos/sim/chip/ChipText.h"
#include "NevQos/sim/chip/SimQosAclHelper.h"
#include "NevQos/sim/scenario/ScenarioNames.h"

namespace Conformance {

namespace {

char const* const sequence = "call sequence";
char const* const results = "asynchronous results";
char const* const capabilities = "capabilities";

// A range given whole (mask 0) that is neither a single value nor every value: one that takes a
// range checker, or the expansion into blocks.
bool rangeNeedsChecker( std::uint16_t mask, std::uint16_t low, std::uint16_t high ) {
   return mask == 0 && low < high && !( low == 0 && high == 0xffff );
}

bool expansion( Nev::AclCreateError answer ) {
   return answer >= Nev::aclCreateErrorTooManyL4PortRanges &&
          answer <= Nev::aclCreateErrorExpandDst;
}

std::string errorName( Nev::AclCreateError answer ) {
   return Sim::textOf( answer );
}

std::string aclOf( Nev::QosClassData const& classData, Nev::AclKey const& aclKey ) {
   return Sim::SimQosAclHelper::aclIdOf( classData, aclKey );
}

}  // namespace

void ContractLedger::add( std::string const& point, std::string const& what ) {
   if( findings.size() >= limit ) {
      ++dropped;
      return;
   }
   findings.push_back( where + ": " + point + ": " + what );
}

WatchingQosAclHelper::WatchingQosAclHelper( Zub::Ptr< NevHelper::QosAclHelper > driver,
                                            Zub::Ptr< Kesh::TimerWheel > clock,
                                            std::shared_ptr< ContractLedger > ledger,
                                            Zub::Seconds asyncTimeout )
    : RecordingQosAclHelper( std::move( driver ), clock )
    , ledger_( std::move( ledger ) )
    , clock_( std::move( clock ) )
    , asyncTimeout_( asyncTimeout ) {
   // Counts only: the switch's own recorder keeps the record.
   countingIs( true );
   asyncResultHeardIs( [ this ]( Nev::AsyncOperationResult const& r ) { resultHeard( r ); } );
}

// ---- Asynchronous results

void WatchingQosAclHelper::operationStarted( std::string what ) {
   waiting_.push_back( Operation{ clock_->now(), std::move( what ) } );
}

void WatchingQosAclHelper::resultHeard( Nev::AsyncOperationResult const& result ) {
   if( asyncUnchecked_ ) return;
   // Built by appending: the compiler's overlap warning misreads a quote prepended to a text.
   std::string message = "\"";
   message += result.message().stdString();
   message += '"';
   if( waiting_.empty() ) {
      ledger_->add( results, "a result (" + message +
                                   ") came with no operation waiting for one: an operation "
                                   "answered twice, or one never started" );
      return;
   }
   if( inCall_ ) {
      ledger_->add( results, waiting_.front().what + " was answered (" + message +
                                   ") inside the call: answer at least one loop turn later" );
   }
   waiting_.pop_front();
}

void WatchingQosAclHelper::operationLeftPending() {
   if( !waiting_.empty() ) waiting_.pop_front();
}

void WatchingQosAclHelper::timeoutsCheck( Zub::Seconds now ) {
   if( asyncUnchecked_ ) return;
   for( Operation& op : waiting_ ) {
      if( op.late || now - op.started <= asyncTimeout_ ) continue;
      op.late = true;
      ledger_->add( results, op.what + ", started at " + Sim::secondsText( op.started ) +
                                   " s, has no result after " + Sim::secondsText( asyncTimeout_ ) +
                                   " s, the time-out the driver declares" );
   }
}

// The driver starts afresh: what was under way for an engine gone gets no result.
void WatchingQosAclHelper::hwInit() {
   waiting_.clear();
   RecordingQosAclHelper::hwInit();
}

// ---- Rules

// A code outside the contract's table prints as its number in brackets.
bool WatchingQosAclHelper::known( Nev::AclCreateError answer ) const {
   return errorName( answer ).find( '(' ) == std::string::npos;
}

void WatchingQosAclHelper::ruleInOpenAcl( char const* op, std::string const& acl ) {
   auto const it = acls_.find( acl );
   if( it == acls_.end() || it->second == AclState::empty ) {
      ledger_->add( sequence, std::string( op ) + " in " + acl +
                                    ", which is not open: no precreateAcl answered 0 for it" );
   } else if( it->second == AclState::committed ) {
      ledger_->add( sequence, std::string( op ) + " in " + acl + ", which is committed already" );
   }
}

Nev::AclCreateError WatchingQosAclHelper::ruleAnswered( char const* op, std::string const& acl,
                                                        Nev::AclCreateError answer ) {
   bool const refused = answer != Nev::aclCreateErrorNone && !expansion( answer ) &&
                        answer != Nev::aclCreateErrorRuleIgnored &&
                        answer != Nev::aclCreateErrorIgnored;
   if( refused && acls_.contains( acl ) ) acls_[ acl ] = AclState::failed;
   if( !known( answer ) ) {
      ledger_->add( capabilities, std::string( op ) + " in " + acl + " answered " +
                                        std::to_string( unsigned( answer ) ) +
                                        ", a code the contract does not know" );
   }
   if( async() && answer != Nev::aclCreateErrorNone ) {
      ledger_->add( capabilities, std::string( op ) + " in " + acl + " answered " +
                                        errorName( answer ) +
                                        " on the asynchronous road, where every rule operation "
                                        "answers 0 and the operation's result carries a refusal" );
      return Nev::aclCreateErrorNone;
   }
   return answer;
}

Nev::AclCreateError WatchingQosAclHelper::createIpAclSubrule(
      Acl::AclType aclType, Acl::RuleConfig const& rule, Acl::UniqueId const& aclId,
      Nev::QosPolicyMapState const& pmapState, Nev::QosClassData const& classData,
      Nev::AclKey const& aclKey, std::uint32_t ruleNum, std::uint32_t subruleNum,
      std::uint16_t srcL4Port, std::uint16_t srcL4PortMask, std::uint16_t dstL4Port,
      std::uint16_t dstL4PortMask, std::uint16_t srcPortLow, std::uint16_t srcPortHigh,
      std::uint16_t dstPortLow, std::uint16_t dstPortHigh, std::uint16_t ipLen,
      std::uint16_t ipLenMask, std::uint16_t ipLenLow, std::uint16_t ipLenHigh,
      std::uint8_t tcpFlags, bool l4Rule, std::uint8_t ecnData, std::uint8_t ecnMask ) {
   std::string const acl = aclOf( classData, aclKey );
   ruleInOpenAcl( "createIpAclSubrule", acl );
   std::string const subrule =
         "subrule " + std::to_string( ruleNum ) + "." + std::to_string( subruleNum );
   if( withhold_ && !async() && rule.action == Acl::actionPermit ) {
      withhold_ = false;
      withheld_ = subrule + " of " + acl;
      return Nev::aclCreateErrorNone;
   }
   Nev::AclCreateError const answer = RecordingQosAclHelper::createIpAclSubrule(
         aclType, rule, aclId, pmapState, classData, aclKey, ruleNum, subruleNum, srcL4Port,
         srcL4PortMask, dstL4Port, dstL4PortMask, srcPortLow, srcPortHigh, dstPortLow, dstPortHigh,
         ipLen, ipLenMask, ipLenLow, ipLenHigh, tcpFlags, l4Rule, ecnData, ecnMask );
   bool const ranges = rangeNeedsChecker( srcL4PortMask, srcPortLow, srcPortHigh ) ||
                       rangeNeedsChecker( dstL4PortMask, dstPortLow, dstPortHigh ) ||
                       rangeNeedsChecker( ipLenMask, ipLenLow, ipLenHigh );
   if( expansion( answer ) && !ranges ) {
      ledger_->add( capabilities, "createIpAclSubrule answered " + errorName( answer ) + " to " +
                                        subrule + " of " + acl +
                                        ", which has no range to expand: the blocks of an "
                                        "expansion must be taken" );
   }
   return ruleAnswered( "createIpAclSubrule", acl, answer );
}

Nev::AclCreateError WatchingQosAclHelper::createIpFragRule(
      Nev::QosPolicyMapState const& pmapState, Nev::QosClassData const& classData,
      Nev::AclKey const& aclKey, Acl::IpRuleConfig const& rule, Acl::UniqueId const& aclId,
      std::uint32_t ruleNum, std::uint32_t subRuleNum, std::uint8_t ecnData,
      std::uint8_t ecnMask ) {
   std::string const acl = aclOf( classData, aclKey );
   ruleInOpenAcl( "createIpFragRule", acl );
   return ruleAnswered(
         "createIpFragRule", acl,
         RecordingQosAclHelper::createIpFragRule( pmapState, classData, aclKey, rule, aclId,
                                                  ruleNum, subRuleNum, ecnData, ecnMask ) );
}

Nev::AclCreateError WatchingQosAclHelper::createDefaultRule(
      Nev::QosPolicyMapState const& pmapState, Nev::QosClassData const& classData,
      Qos::ClassMapMatchOption matchOption, Nev::AclKey const& aclKey ) {
   std::string const acl = aclOf( classData, aclKey );
   ruleInOpenAcl( "createDefaultRule", acl );
   return ruleAnswered(
         "createDefaultRule", acl,
         RecordingQosAclHelper::createDefaultRule( pmapState, classData, matchOption, aclKey ) );
}

Nev::AclCreateError WatchingQosAclHelper::createL2ParamsRule(
      Nev::QosPolicyMapState const& pmapState, Nev::QosClassData const& classData,
      Qos::ClassMapMatchOption matchOption, Nev::AclKey const& aclKey, std::uint32_t ruleNum ) {
   std::string const acl = aclOf( classData, aclKey );
   ruleInOpenAcl( "createL2ParamsRule", acl );
   return ruleAnswered( "createL2ParamsRule", acl,
                        RecordingQosAclHelper::createL2ParamsRule( pmapState, classData,
                                                                   matchOption, aclKey, ruleNum ) );
}

Nev::AclCreateError WatchingQosAclHelper::createMplsTrafficClassRule(
      Nev::QosPolicyMapState const& pmapState, Nev::QosClassData const& classData,
      Qos::ClassMapMatchOption matchOption, Nev::AclKey const& aclKey, std::uint32_t ruleNum ) {
   std::string const acl = aclOf( classData, aclKey );
   ruleInOpenAcl( "createMplsTrafficClassRule", acl );
   return ruleAnswered( "createMplsTrafficClassRule", acl,
                        RecordingQosAclHelper::createMplsTrafficClassRule(
                              pmapState, classData, matchOption, aclKey, ruleNum ) );
}

Nev::AclCreateError WatchingQosAclHelper::createDscpEcnRule(
      Nev::QosPolicyMapState const& pmapState, Nev::QosClassData const& classData,
      Qos::ClassMapMatchOption matchOption, Nev::AclKey const& aclKey, std::uint32_t ruleNum ) {
   std::string const acl = aclOf( classData, aclKey );
   ruleInOpenAcl( "createDscpEcnRule", acl );
   return ruleAnswered( "createDscpEcnRule", acl,
                        RecordingQosAclHelper::createDscpEcnRule( pmapState, classData, matchOption,
                                                                  aclKey, ruleNum ) );
}

Nev::AclCreateError WatchingQosAclHelper::createMacAclRule( Nev::QosPolicyMapState const& pmapState,
                                                            Nev::QosClassData const& classData,
                                                            Qos::ClassMapMatchOption matchOption,
                                                            Nev::AclKey const& aclKey,
                                                            std::uint32_t ruleNum ) {
   std::string const acl = aclOf( classData, aclKey );
   ruleInOpenAcl( "createMacAclRule", acl );
   return ruleAnswered( "createMacAclRule", acl,
                        RecordingQosAclHelper::createMacAclRule( pmapState, classData, matchOption,
                                                                 aclKey, ruleNum ) );
}

Nev::AclCreateError WatchingQosAclHelper::createBuiltInClassMatchRule(
      Nev::QosPolicyMapState const& pmapState, Nev::QosClassData const& classData,
      Qos::ClassMapMatchOption matchOption, std::uint32_t ruleNum ) {
   return ruleAnswered( "createBuiltInClassMatchRule",
                        Sim::SimQosAclHelper::classKeyOf( classData ),
                        RecordingQosAclHelper::createBuiltInClassMatchRule(
                              pmapState, classData, matchOption, ruleNum ) );
}

// ---- ACLs

Nev::AclCreateError WatchingQosAclHelper::precreateAcl( Nev::QosPolicyMapState const& pmapState,
                                                        Nev::QosClassData const& classData,
                                                        Qos::ClassMapMatchOption matchOption,
                                                        Nev::AclKey const& aclKey ) {
   Nev::AclCreateError const answer =
         RecordingQosAclHelper::precreateAcl( pmapState, classData, matchOption, aclKey );
   // The asynchronous road takes no answer of it: a refusal comes with the result.
   if( answer == Nev::aclCreateErrorNone || async() ) {
      acls_[ aclOf( classData, aclKey ) ] = AclState::open;
   }
   return answer;
}

// A match that compiles to nothing (a class match the chip cannot classify on, a list whose
// rules all fall away) has its ACL committed, bound and destroyed without a precreateAcl, and
// committed again on each compile: the driver takes all of them.
Nev::AclCreateError WatchingQosAclHelper::commitAcl( Nev::QosClassData const& classData,
                                                     Qos::ClassMapMatchOption matchOption,
                                                     Nev::AclKey const& aclKey ) {
   std::string const acl = aclOf( classData, aclKey );
   auto const it = acls_.find( acl );
   if( it != acls_.end() && it->second == AclState::committed ) {
      ledger_->add( sequence, "commitAcl of " + acl + ", which is committed already" );
   }
   if( async() ) operationStarted( "commitAcl of " + acl );
   inCall_ = true;
   Nev::AclCreateError const answer =
         RecordingQosAclHelper::commitAcl( classData, matchOption, aclKey );
   inCall_ = false;
   if( it == acls_.end() || it->second == AclState::empty ) {
      acls_[ acl ] = AclState::empty;
   } else if( answer == Nev::aclCreateErrorNone || async() ) {
      acls_[ acl ] = AclState::committed;
   }
   return answer;
}

void WatchingQosAclHelper::destroyAcl( Nev::QosPolicyMapState const& pmapState,
                                       Nev::QosClassData const& classData,
                                       Qos::ClassMapMatchOption matchOption,
                                       Nev::AclKey const& aclKey ) {
   std::string const acl = aclOf( classData, aclKey );
   if( acls_.erase( acl ) == 0 ) {
      ledger_->add( sequence, "destroyAcl of " + acl + ", which the driver never created" );
   }
   if( async() ) operationStarted( "destroyAcl of " + acl );
   inCall_ = true;
   RecordingQosAclHelper::destroyAcl( pmapState, classData, matchOption, aclKey );
   inCall_ = false;
}

void WatchingQosAclHelper::updatePortForAcl( Nev::QosPolicyMapState const& pmapState,
                                             Nev::QosClassData const& classData,
                                             Qos::ClassMapMatchOption matchOption,
                                             Nev::AclKey const& aclKey,
                                             Qos::IntfPairKey const& intfPair, bool add ) {
   std::string const acl = aclOf( classData, aclKey );
   // An ACL whose rules failed may still be bound on its way out: its map is torn down next.
   auto const it = acls_.find( acl );
   if( it == acls_.end() || it->second == AclState::open ) {
      ledger_->add( sequence, "updatePortForAcl of " + acl + ", which is not committed" );
   }
   if( async() ) operationStarted( "updatePortForAcl of " + acl );
   inCall_ = true;
   RecordingQosAclHelper::updatePortForAcl( pmapState, classData, matchOption, aclKey, intfPair,
                                            add );
   inCall_ = false;
}

// ---- Policers

bool WatchingQosAclHelper::createAndAttachPolicer( Nev::QosClassData const& classData ) {
   bool const made = RecordingQosAclHelper::createAndAttachPolicer( classData );
   if( made ) ++policers_[ Sim::SimQosAclHelper::classKeyOf( classData ) ];
   return made;
}

void WatchingQosAclHelper::destroyPolicer( Nev::QosClassData const& classData ) {
   std::string const key = Sim::SimQosAclHelper::classKeyOf( classData );
   auto const it = policers_.find( key );
   if( it == policers_.end() ) {
      ledger_->add( sequence,
                    "destroyPolicer of " + key + ", which the driver refused or never made" );
   } else if( --it->second == 0 ) {
      policers_.erase( it );
   }
   RecordingQosAclHelper::destroyPolicer( classData );
}

// ---- Capabilities

bool WatchingQosAclHelper::capability( std::string const& name, bool answer ) {
   auto const [ it, first ] = capabilities_.emplace( name, answer );
   if( !first && it->second != answer ) {
      ledger_->add( capabilities, name + " answered " + ( answer ? "true" : "false" ) + " after " +
                                        ( it->second ? "true" : "false" ) +
                                        ": a capability answers the same each time" );
      it->second = answer;
   }
   return answer;
}

bool WatchingQosAclHelper::managedPrioritySupported( Qos::MapType mapType ) {
   return capability( "managedPrioritySupported(" + Sim::textOf( mapType ) + ")",
                      RecordingQosAclHelper::managedPrioritySupported( mapType ) );
}

bool WatchingQosAclHelper::multipleActionsSupported() {
   return capability( "multipleActionsSupported",
                      RecordingQosAclHelper::multipleActionsSupported() );
}

bool WatchingQosAclHelper::errorOnPolicerExhaustion() {
   return capability( "errorOnPolicerExhaustion",
                      RecordingQosAclHelper::errorOnPolicerExhaustion() );
}

bool WatchingQosAclHelper::isMacAclRuleSupportedPlatform() {
   return capability( "isMacAclRuleSupportedPlatform",
                      RecordingQosAclHelper::isMacAclRuleSupportedPlatform() );
}

bool WatchingQosAclHelper::delaySviPmapSmCreation() {
   return capability( "delaySviPmapSmCreation", RecordingQosAclHelper::delaySviPmapSmCreation() );
}

}  // namespace Conformance
