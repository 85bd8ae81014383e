#include "NevQos/sim/recording/RecordingQosAclHelper.h"

#include "NevQos/sim/chip/ChipText.h"
#include "NevQos/sim/chip/SimQosAclHelper.h"
#include "NevQos/types/QosClassData.h"

namespace Sim {

namespace {

CallRecorder::Operations const& operations() {
   static CallRecorder::Operations const table{
      { "aclGroup", typeid( Zub::Name ) },
      { "createIpAclSubrule", typeid( Nev::AclCreateError ) },
      { "createIpFragRule", typeid( Nev::AclCreateError ) },
      { "createDefaultRule", typeid( Nev::AclCreateError ) },
      { "createL2ParamsRule", typeid( Nev::AclCreateError ) },
      { "createMplsTrafficClassRule", typeid( Nev::AclCreateError ) },
      { "createDscpEcnRule", typeid( Nev::AclCreateError ) },
      { "isSupportedMacAclRule", typeid( bool ) },
      { "isMacAclRuleSupportedPlatform", typeid( bool ) },
      { "createMacAclRule", typeid( Nev::AclCreateError ) },
      { "createBuiltInClassMatchRule", typeid( Nev::AclCreateError ) },
      { "updatePortForAcl", typeid( void ) },
      { "updatePolicer", typeid( void ) },
      { "precreateAcl", typeid( Nev::AclCreateError ) },
      { "destroyAcl", typeid( void ) },
      { "cleanupAcl", typeid( void ) },
      { "prepareToCommit", typeid( void ) },
      { "commitAcl", typeid( Nev::AclCreateError ) },
      { "batchCommitAcls", typeid( void ) },
      { "batchCommitAclsIntf", typeid( void ) },
      { "handlePendingOperationTimeout", typeid( void ) },
      { "coppAllocateCpuQ", typeid( int ) },
      { "coppDeallocateCpuQ", typeid( void ) },
      { "getDdeCoppModIdPortQueue", typeid( Nev::ModIdPortQueueKey ) },
      { "getDdeCoppModIdQueue", typeid( Nev::ModIdQueueKey ) },
      { "checkUserCoppEntryExists", typeid( bool ) },
      { "checkKernelCoppEntryExists", typeid( bool ) },
      { "createDefaultCoppRates", typeid( void ) },
      { "createAndAttachPolicer", typeid( bool ) },
      { "destroyPolicer", typeid( void ) },
      { "createAndAttachCoppPolicer", typeid( bool ) },
      { "destroyCoppPolicer", typeid( void ) },
      { "createCoppPolicerByPortQueue", typeid( bool ) },
      { "destroyCoppPolicerByPortQueue", typeid( void ) },
      { "createAndAttachCounter", typeid( void ) },
      { "destroyCounter", typeid( void ) },
      { "showAclPolicyHeader", typeid( void ) },
      { "showAclClassHeader", typeid( void ) },
      { "showAclHeader", typeid( void ) },
      { "showIpAclRule", typeid( void ) },
      { "showDefaultRule", typeid( void ) },
      { "showL2ParamsRule", typeid( void ) },
      { "showMplsTrafficClassRule", typeid( void ) },
      { "showDscpEcnRule", typeid( void ) },
      { "showMacAclRule", typeid( void ) },
      { "counterUpdateRequest", typeid( Nev::QosClassCounterData ) },
      { "ipSubruleExists", typeid( bool ) },
      { "ipPortRangeSubruleExists", typeid( bool ) },
      { "ipLenRangeSubruleExists", typeid( bool ) },
      { "createSmForPMap", typeid( bool ) },
      { "managedPrioritySupported", typeid( bool ) },
      { "multipleActionsSupported", typeid( bool ) },
      { "errorOnPolicerExhaustion", typeid( bool ) },
      { "cleanupForPMap", typeid( void ) },
      { "hwInit", typeid( void ) },
      { "policiesInStableState", typeid( bool ) },
      { "verifyTcamData", typeid( void ) },
      { "verifyIpRuleGeneral", typeid( void ) },
      { "verifyIpRuleAction", typeid( void ) },
      { "verifyIpRuleIpProto", typeid( void ) },
      { "verifyIpRuleSrcIp", typeid( void ) },
      { "verifyIpRuleDstIp", typeid( void ) },
      { "verifyIpRuleDscp", typeid( void ) },
      { "verifyIpRuleTcIp6", typeid( void ) },
      { "verifyIpRuleEcn", typeid( void ) },
      { "verifyIpRuleEcnIp6", typeid( void ) },
      { "verifyIpRuleSrcIp6", typeid( void ) },
      { "verifyIpRuleDstIp6", typeid( void ) },
      { "verifyIpRuleFragments", typeid( void ) },
      { "verifyIpRuleTcpFlags", typeid( void ) },
      { "verifyIpRuleIcmp", typeid( void ) },
      { "verifyIpRuleSrcPort", typeid( void ) },
      { "verifyIpRuleDstPort", typeid( void ) },
      { "verifyIpRuleVlanMatch", typeid( void ) },
      { "verifyAclGeneral", typeid( void ) },
      { "verifyRulePorts", typeid( void ) },
      { "verifyDefaultRule", typeid( void ) },
      { "verifyL2ParamsRule", typeid( void ) },
      { "verifyMplsTrafficClassRule", typeid( void ) },
      { "verifyDscpEcnRule", typeid( void ) },
      { "verifyMacAclRule", typeid( void ) },
      { "verifyPolicer", typeid( void ) },
      { "verifyCounter", typeid( void ) },
      { "handleRoutedPortSubIntfAclSharing", typeid( void ) },
      { "handleSubIntfForwardingModel", typeid( void ) },
      { "handleSubIntfDeletion", typeid( void ) },
      { "cpuQIdToClassMapName", typeid( Zub::String ) },
      { "portToIntfName", typeid( Zub::String ) },
      { "delaySviPmapSmCreation", typeid( bool ) },
   };
   return table;
}

// A class by the reference chip's name for it: "<pmap>(<type>,<direction>)/<class>/<policer>".
std::string classText( Nev::QosClassData const& classData ) {
   return SimQosAclHelper::classKeyOf( classData );
}

CallRecorder::Args policerArgs( Nev::QosClassData const& classData ) {
   CallRecorder::Args args{ { "classData", classText( classData ) } };
   if( auto const p = classData.policerData() ) {
      args.emplace_back( "cir", rateArg( p->cir(), p->cirUnit() ) );
      args.emplace_back( "bc", rateArg( p->bc(), p->bcUnit() ) );
   }
   return args;
}

}  // namespace

void RecordingQosAclHelper::recordSubrule( char const* op, Nev::QosClassData const& classData,
                                           Nev::AclKey const& aclKey, std::uint32_t ruleNum,
                                           std::uint32_t subruleNum ) {
   record( op, { { "classData", classText( classData ) },
                 { "aclKey", aclKeyText( aclKey ) },
                 { "ruleNum", argOf( ruleNum ) },
                 { "subruleNum", argOf( subruleNum ) } } );
}

#define SIM_RECORDING_COPY_value( Cap, name, ... ) name##Is( inner_->name() );
#define SIM_RECORDING_COPY_keyed( ... )
#define SIM_RECORDING_COPY_child( ... )
#define SIM_RECORDING_COPY( kind, ... ) SIM_RECORDING_COPY_##kind( __VA_ARGS__ )

RecordingQosAclHelper::RecordingQosAclHelper( Zub::Ptr< NevHelper::QosAclHelper > inner,
                                              Zub::Ptr< Kesh::TimerWheel > clock )
    : QosAclHelper( inner->qosStatus(), inner->qosAclSliceHwStatus(), inner->mainAclConfig() )
    , CallRecorder( "acl", operations(), std::move( clock ) )
    , inner_( std::move( inner ) ) {
   NEVHELPER_QOS_ACL_HELPER_ATTRS( SIM_RECORDING_COPY )
   asyncTcamOperationsSupportedIs( inner_->asyncTcamOperationsSupported() );
   mirror_ = Zub::make< AsyncResultMirror >( inner_, this );
   engineHelperIs( this );
}

RecordingQosAclHelper::~RecordingQosAclHelper() {
   engineHelperIs( nullptr );
}

void RecordingQosAclHelper::engineHelperIs( NevHelper::QosAclHelper* helper ) {
   if( auto* const chip = dynamic_cast< SimQosAclHelper* >( inner_.ptr() ) ) {
      chip->engineHelperIs( helper );
   } else if( auto* const decorator = dynamic_cast< RecordingQosAclHelper* >( inner_.ptr() ) ) {
      decorator->engineHelperIs( helper );
   }
}

Zub::Name RecordingQosAclHelper::aclGroup( Qos::IntfPairKey const& intfPair,
                                           Qos::ServicePolicyKey const& spKey ) {
   taking( "aclGroup" );
   if( auto const answer = scripted< Zub::Name >( "aclGroup" ) ) return *answer;
   return inner_->aclGroup( intfPair, spKey );
}

Nev::AclCreateError RecordingQosAclHelper::createIpAclSubrule(
      Acl::AclType aclType, Acl::RuleConfig const& rule, Acl::UniqueId const& aclId,
      Nev::QosPolicyMapState const& pmapState, Nev::QosClassData const& classData,
      Nev::AclKey const& aclKey, std::uint32_t ruleNum, std::uint32_t subruleNum,
      std::uint16_t srcL4Port, std::uint16_t srcL4PortMask, std::uint16_t dstL4Port,
      std::uint16_t dstL4PortMask, std::uint16_t srcPortLow, std::uint16_t srcPortHigh,
      std::uint16_t dstPortLow, std::uint16_t dstPortHigh, std::uint16_t ipLen,
      std::uint16_t ipLenMask, std::uint16_t ipLenLow, std::uint16_t ipLenHigh,
      std::uint8_t tcpFlags, bool l4Rule, std::uint8_t ecnData, std::uint8_t ecnMask ) {
   if( taking( "createIpAclSubrule" ) ) {
      record( "createIpAclSubrule", { { "classData", classText( classData ) },
                                      { "aclKey", aclKeyText( aclKey ) },
                                      { "aclType", argOf( aclType ) },
                                      { "ruleNum", argOf( ruleNum ) },
                                      { "subruleNum", argOf( subruleNum ) },
                                      { "srcL4Port", argOf( srcL4Port ) },
                                      { "srcL4PortMask", hexArg( srcL4PortMask ) },
                                      { "dstL4Port", argOf( dstL4Port ) },
                                      { "dstL4PortMask", hexArg( dstL4PortMask ) },
                                      { "srcPortLow", argOf( srcPortLow ) },
                                      { "srcPortHigh", argOf( srcPortHigh ) },
                                      { "dstPortLow", argOf( dstPortLow ) },
                                      { "dstPortHigh", argOf( dstPortHigh ) },
                                      { "ipLen", argOf( ipLen ) },
                                      { "ipLenMask", hexArg( ipLenMask ) },
                                      { "ipLenLow", argOf( ipLenLow ) },
                                      { "ipLenHigh", argOf( ipLenHigh ) },
                                      { "tcpFlags", hexArg( tcpFlags ) },
                                      { "l4Rule", argOf( l4Rule ) },
                                      { "ecnData", argOf( unsigned( ecnData ) ) },
                                      { "ecnMask", hexArg( ecnMask ) } } );
   }
   if( auto const answer = scripted< Nev::AclCreateError >( "createIpAclSubrule" ) ) return *answer;
   return inner_->createIpAclSubrule(
         aclType, rule, aclId, pmapState, classData, aclKey, ruleNum, subruleNum, srcL4Port,
         srcL4PortMask, dstL4Port, dstL4PortMask, srcPortLow, srcPortHigh, dstPortLow, dstPortHigh,
         ipLen, ipLenMask, ipLenLow, ipLenHigh, tcpFlags, l4Rule, ecnData, ecnMask );
}

Nev::AclCreateError RecordingQosAclHelper::createIpFragRule(
      Nev::QosPolicyMapState const& pmapState, Nev::QosClassData const& classData,
      Nev::AclKey const& aclKey, Acl::IpRuleConfig const& rule, Acl::UniqueId const& aclId,
      std::uint32_t ruleNum, std::uint32_t subRuleNum, std::uint8_t ecnData,
      std::uint8_t ecnMask ) {
   if( taking( "createIpFragRule" ) ) {
      record( "createIpFragRule",
              { { "classData", classText( classData ) }, { "aclKey", aclKeyText( aclKey ) } } );
   }
   if( auto const answer = scripted< Nev::AclCreateError >( "createIpFragRule" ) ) return *answer;
   return inner_->createIpFragRule( pmapState, classData, aclKey, rule, aclId, ruleNum, subRuleNum,
                                    ecnData, ecnMask );
}

Nev::AclCreateError RecordingQosAclHelper::createDefaultRule(
      Nev::QosPolicyMapState const& pmapState, Nev::QosClassData const& classData,
      Qos::ClassMapMatchOption matchOption, Nev::AclKey const& aclKey ) {
   if( taking( "createDefaultRule" ) ) {
      record( "createDefaultRule",
              { { "classData", classText( classData ) }, { "aclKey", aclKeyText( aclKey ) } } );
   }
   if( auto const answer = scripted< Nev::AclCreateError >( "createDefaultRule" ) ) return *answer;
   return inner_->createDefaultRule( pmapState, classData, matchOption, aclKey );
}

Nev::AclCreateError RecordingQosAclHelper::createL2ParamsRule(
      Nev::QosPolicyMapState const& pmapState, Nev::QosClassData const& classData,
      Qos::ClassMapMatchOption matchOption, Nev::AclKey const& aclKey, std::uint32_t ruleNum ) {
   if( taking( "createL2ParamsRule" ) ) {
      record( "createL2ParamsRule", { { "classData", classText( classData ) },
                                      { "aclKey", aclKeyText( aclKey ) },
                                      { "ruleNum", argOf( ruleNum ) } } );
   }
   if( auto const answer = scripted< Nev::AclCreateError >( "createL2ParamsRule" ) ) return *answer;
   return inner_->createL2ParamsRule( pmapState, classData, matchOption, aclKey, ruleNum );
}

Nev::AclCreateError RecordingQosAclHelper::createMplsTrafficClassRule(
      Nev::QosPolicyMapState const& pmapState, Nev::QosClassData const& classData,
      Qos::ClassMapMatchOption matchOption, Nev::AclKey const& aclKey, std::uint32_t ruleNum ) {
   if( taking( "createMplsTrafficClassRule" ) ) {
      record( "createMplsTrafficClassRule", { { "classData", classText( classData ) },
                                              { "aclKey", aclKeyText( aclKey ) },
                                              { "ruleNum", argOf( ruleNum ) } } );
   }
   if( auto const answer = scripted< Nev::AclCreateError >( "createMplsTrafficClassRule" ) ) {
      return *answer;
   }
   return inner_->createMplsTrafficClassRule( pmapState, classData, matchOption, aclKey, ruleNum );
}

Nev::AclCreateError RecordingQosAclHelper::createDscpEcnRule(
      Nev::QosPolicyMapState const& pmapState, Nev::QosClassData const& classData,
      Qos::ClassMapMatchOption matchOption, Nev::AclKey const& aclKey, std::uint32_t ruleNum ) {
   if( taking( "createDscpEcnRule" ) ) {
      record( "createDscpEcnRule", { { "classData", classText( classData ) },
                                     { "aclKey", aclKeyText( aclKey ) },
                                     { "ruleNum", argOf( ruleNum ) } } );
   }
   if( auto const answer = scripted< Nev::AclCreateError >( "createDscpEcnRule" ) ) return *answer;
   return inner_->createDscpEcnRule( pmapState, classData, matchOption, aclKey, ruleNum );
}

bool RecordingQosAclHelper::isSupportedMacAclRule( Acl::MacRuleConfig const& rule ) {
   if( taking( "isSupportedMacAclRule" ) && detailRecorded_ ) record( "isSupportedMacAclRule", {} );
   if( auto const answer = scripted< bool >( "isSupportedMacAclRule" ) ) return *answer;
   return inner_->isSupportedMacAclRule( rule );
}

bool RecordingQosAclHelper::isMacAclRuleSupportedPlatform() {
   taking( "isMacAclRuleSupportedPlatform" );
   if( auto const answer = scripted< bool >( "isMacAclRuleSupportedPlatform" ) ) return *answer;
   return inner_->isMacAclRuleSupportedPlatform();
}

Nev::AclCreateError RecordingQosAclHelper::createMacAclRule(
      Nev::QosPolicyMapState const& pmapState, Nev::QosClassData const& classData,
      Qos::ClassMapMatchOption matchOption, Nev::AclKey const& aclKey, std::uint32_t ruleNum ) {
   if( taking( "createMacAclRule" ) ) {
      record( "createMacAclRule", { { "classData", classText( classData ) },
                                    { "aclKey", aclKeyText( aclKey ) },
                                    { "ruleNum", argOf( ruleNum ) } } );
   }
   if( auto const answer = scripted< Nev::AclCreateError >( "createMacAclRule" ) ) return *answer;
   return inner_->createMacAclRule( pmapState, classData, matchOption, aclKey, ruleNum );
}

Nev::AclCreateError RecordingQosAclHelper::createBuiltInClassMatchRule(
      Nev::QosPolicyMapState const& pmapState, Nev::QosClassData const& classData,
      Qos::ClassMapMatchOption matchOption, std::uint32_t ruleNum ) {
   if( taking( "createBuiltInClassMatchRule" ) ) {
      record( "createBuiltInClassMatchRule", { { "classData", classText( classData ) } } );
   }
   if( auto const answer = scripted< Nev::AclCreateError >( "createBuiltInClassMatchRule" ) ) {
      return *answer;
   }
   return inner_->createBuiltInClassMatchRule( pmapState, classData, matchOption, ruleNum );
}

void RecordingQosAclHelper::updatePortForAcl( Nev::QosPolicyMapState const& pmapState,
                                              Nev::QosClassData const& classData,
                                              Qos::ClassMapMatchOption matchOption,
                                              Nev::AclKey const& aclKey,
                                              Qos::IntfPairKey const& intfPair, bool add ) {
   if( taking( "updatePortForAcl" ) ) {
      record( "updatePortForAcl", { { "classData", classText( classData ) },
                                    { "aclKey", aclKeyText( aclKey ) },
                                    { "intfPair", intfText( intfPair ) },
                                    { "add", argOf( add ) } } );
   }
   if( acted( "updatePortForAcl" ) ) return;
   inner_->updatePortForAcl( pmapState, classData, matchOption, aclKey, intfPair, add );
}

void RecordingQosAclHelper::updatePolicer( Zub::Name const& policerName ) {
   if( taking( "updatePolicer" ) ) {
      record( "updatePolicer", { { "policerName", argOf( policerName ) } } );
   }
   if( acted( "updatePolicer" ) ) return;
   inner_->updatePolicer( policerName );
}

Nev::AclCreateError RecordingQosAclHelper::precreateAcl( Nev::QosPolicyMapState const& pmapState,
                                                         Nev::QosClassData const& classData,
                                                         Qos::ClassMapMatchOption matchOption,
                                                         Nev::AclKey const& aclKey ) {
   if( taking( "precreateAcl" ) ) {
      record( "precreateAcl", { { "classData", classText( classData ) },
                                { "aclKey", aclKeyText( aclKey ) },
                                { "matchOption", argOf( matchOption ) } } );
   }
   if( auto const answer = scripted< Nev::AclCreateError >( "precreateAcl" ) ) return *answer;
   return inner_->precreateAcl( pmapState, classData, matchOption, aclKey );
}

void RecordingQosAclHelper::destroyAcl( Nev::QosPolicyMapState const& pmapState,
                                        Nev::QosClassData const& classData,
                                        Qos::ClassMapMatchOption matchOption,
                                        Nev::AclKey const& aclKey ) {
   if( taking( "destroyAcl" ) ) {
      record( "destroyAcl",
              { { "classData", classText( classData ) }, { "aclKey", aclKeyText( aclKey ) } } );
   }
   if( acted( "destroyAcl" ) ) return;
   inner_->destroyAcl( pmapState, classData, matchOption, aclKey );
}

void RecordingQosAclHelper::cleanupAcl( Nev::QosPolicyMapState const& pmapState,
                                        Nev::QosClassData const& classData,
                                        Qos::ClassMapMatchOption matchOption,
                                        Nev::AclKey const& aclKey ) {
   if( taking( "cleanupAcl" ) ) {
      record( "cleanupAcl",
              { { "classData", classText( classData ) }, { "aclKey", aclKeyText( aclKey ) } } );
   }
   if( acted( "cleanupAcl" ) ) return;
   inner_->cleanupAcl( pmapState, classData, matchOption, aclKey );
}

void RecordingQosAclHelper::prepareToCommit() {
   if( taking( "prepareToCommit" ) ) record( "prepareToCommit", {} );
   if( acted( "prepareToCommit" ) ) return;
   inner_->prepareToCommit();
}

Nev::AclCreateError RecordingQosAclHelper::commitAcl( Nev::QosClassData const& classData,
                                                      Qos::ClassMapMatchOption matchOption,
                                                      Nev::AclKey const& aclKey ) {
   if( taking( "commitAcl" ) ) {
      record( "commitAcl",
              { { "classData", classText( classData ) }, { "aclKey", aclKeyText( aclKey ) } } );
   }
   if( auto const answer = scripted< Nev::AclCreateError >( "commitAcl" ) ) return *answer;
   return inner_->commitAcl( classData, matchOption, aclKey );
}

void RecordingQosAclHelper::batchCommitAcls( Nev::QosPolicyMapState const& pmapState ) {
   if( taking( "batchCommitAcls" ) ) {
      record( "batchCommitAcls", { { "pmapState", pmapText( pmapState.key() ) } } );
   }
   if( acted( "batchCommitAcls" ) ) return;
   inner_->batchCommitAcls( pmapState );
}

void RecordingQosAclHelper::batchCommitAclsIntf( Nev::QosPolicyMapState const& pmapState,
                                                 Qos::IntfPairKey const& intfPair, bool add ) {
   if( taking( "batchCommitAclsIntf" ) ) {
      record( "batchCommitAclsIntf", { { "pmapState", pmapText( pmapState.key() ) },
                                       { "intfPair", intfText( intfPair ) },
                                       { "add", argOf( add ) } } );
   }
   if( acted( "batchCommitAclsIntf" ) ) return;
   inner_->batchCommitAclsIntf( pmapState, intfPair, add );
}

void RecordingQosAclHelper::handlePendingOperationTimeout() {
   if( taking( "handlePendingOperationTimeout" ) ) record( "handlePendingOperationTimeout", {} );
   if( acted( "handlePendingOperationTimeout" ) ) return;
   inner_->handlePendingOperationTimeout();
}

int RecordingQosAclHelper::coppAllocateCpuQ( Nev::QosClassData const& classData ) {
   if( taking( "coppAllocateCpuQ" ) ) {
      record( "coppAllocateCpuQ", { { "classData", classText( classData ) } } );
   }
   if( auto const answer = scripted< int >( "coppAllocateCpuQ" ) ) return *answer;
   return inner_->coppAllocateCpuQ( classData );
}

void RecordingQosAclHelper::coppDeallocateCpuQ( Nev::QosClassData const& classData ) {
   if( taking( "coppDeallocateCpuQ" ) ) {
      record( "coppDeallocateCpuQ", { { "classData", classText( classData ) } } );
   }
   if( acted( "coppDeallocateCpuQ" ) ) return;
   inner_->coppDeallocateCpuQ( classData );
}

Nev::ModIdPortQueueKey RecordingQosAclHelper::getDdeCoppModIdPortQueue(
      Nev::QosClassData const& classData ) {
   taking( "getDdeCoppModIdPortQueue" );
   if( auto const answer = scripted< Nev::ModIdPortQueueKey >( "getDdeCoppModIdPortQueue" ) ) {
      return *answer;
   }
   return inner_->getDdeCoppModIdPortQueue( classData );
}

Nev::ModIdQueueKey RecordingQosAclHelper::getDdeCoppModIdQueue(
      Nev::QosClassData const& classData ) {
   taking( "getDdeCoppModIdQueue" );
   if( auto const answer = scripted< Nev::ModIdQueueKey >( "getDdeCoppModIdQueue" ) ) {
      return *answer;
   }
   return inner_->getDdeCoppModIdQueue( classData );
}

bool RecordingQosAclHelper::checkUserCoppEntryExists( Nev::ModIdPortQueueKey const& key ) {
   if( taking( "checkUserCoppEntryExists" ) ) {
      record( "checkUserCoppEntryExists", { { "key", portQueueText( key ) } } );
   }
   if( auto const answer = scripted< bool >( "checkUserCoppEntryExists" ) ) return *answer;
   return inner_->checkUserCoppEntryExists( key );
}

bool RecordingQosAclHelper::checkKernelCoppEntryExists( Nev::ModIdPortQueueKey const& key ) {
   if( taking( "checkKernelCoppEntryExists" ) ) {
      record( "checkKernelCoppEntryExists", { { "key", portQueueText( key ) } } );
   }
   if( auto const answer = scripted< bool >( "checkKernelCoppEntryExists" ) ) return *answer;
   return inner_->checkKernelCoppEntryExists( key );
}

void RecordingQosAclHelper::createDefaultCoppRates() {
   if( taking( "createDefaultCoppRates" ) ) record( "createDefaultCoppRates", {} );
   if( acted( "createDefaultCoppRates" ) ) return;
   inner_->createDefaultCoppRates();
}

bool RecordingQosAclHelper::createAndAttachPolicer( Nev::QosClassData const& classData ) {
   if( taking( "createAndAttachPolicer" ) ) {
      record( "createAndAttachPolicer", policerArgs( classData ) );
   }
   if( auto const answer = scripted< bool >( "createAndAttachPolicer" ) ) return *answer;
   return inner_->createAndAttachPolicer( classData );
}

void RecordingQosAclHelper::destroyPolicer( Nev::QosClassData const& classData ) {
   if( taking( "destroyPolicer" ) ) {
      record( "destroyPolicer", { { "classData", classText( classData ) } } );
   }
   if( acted( "destroyPolicer" ) ) return;
   inner_->destroyPolicer( classData );
}

bool RecordingQosAclHelper::createAndAttachCoppPolicer( Nev::QosClassData const& classData ) {
   if( taking( "createAndAttachCoppPolicer" ) ) {
      record( "createAndAttachCoppPolicer", { { "classData", classText( classData ) } } );
   }
   if( auto const answer = scripted< bool >( "createAndAttachCoppPolicer" ) ) return *answer;
   return inner_->createAndAttachCoppPolicer( classData );
}

void RecordingQosAclHelper::destroyCoppPolicer( Nev::QosClassData const& classData ) {
   if( taking( "destroyCoppPolicer" ) ) {
      record( "destroyCoppPolicer", { { "classData", classText( classData ) } } );
   }
   if( acted( "destroyCoppPolicer" ) ) return;
   inner_->destroyCoppPolicer( classData );
}

bool RecordingQosAclHelper::createCoppPolicerByPortQueue( Nev::ModIdPortQueueKey const& key ) {
   if( taking( "createCoppPolicerByPortQueue" ) ) {
      record( "createCoppPolicerByPortQueue", { { "key", portQueueText( key ) } } );
   }
   if( auto const answer = scripted< bool >( "createCoppPolicerByPortQueue" ) ) return *answer;
   return inner_->createCoppPolicerByPortQueue( key );
}

void RecordingQosAclHelper::destroyCoppPolicerByPortQueue( Nev::ModIdPortQueueKey const& key ) {
   if( taking( "destroyCoppPolicerByPortQueue" ) ) {
      record( "destroyCoppPolicerByPortQueue", { { "key", portQueueText( key ) } } );
   }
   if( acted( "destroyCoppPolicerByPortQueue" ) ) return;
   inner_->destroyCoppPolicerByPortQueue( key );
}

void RecordingQosAclHelper::createAndAttachCounter( Nev::QosClassData const& classData ) {
   if( taking( "createAndAttachCounter" ) ) {
      record( "createAndAttachCounter", { { "classData", classText( classData ) } } );
   }
   if( acted( "createAndAttachCounter" ) ) return;
   inner_->createAndAttachCounter( classData );
}

void RecordingQosAclHelper::destroyCounter( Nev::QosClassData const& classData ) {
   if( taking( "destroyCounter" ) ) {
      record( "destroyCounter", { { "classData", classText( classData ) } } );
   }
   if( acted( "destroyCounter" ) ) return;
   inner_->destroyCounter( classData );
}

void RecordingQosAclHelper::showAclPolicyHeader( std::uint32_t socket, std::uint32_t unit,
                                                 Nev::QosPolicyMapState const& pmapState,
                                                 Nev::QosPolicyMapKey const& pmapKey ) {
   taking( "showAclPolicyHeader" );
   if( acted( "showAclPolicyHeader" ) ) return;
   inner_->showAclPolicyHeader( socket, unit, pmapState, pmapKey );
}

void RecordingQosAclHelper::showAclClassHeader( std::uint32_t socket, std::uint32_t unit,
                                                Nev::QosClassMapKey const& cmapKey ) {
   taking( "showAclClassHeader" );
   if( acted( "showAclClassHeader" ) ) return;
   inner_->showAclClassHeader( socket, unit, cmapKey );
}

void RecordingQosAclHelper::showAclHeader( std::uint32_t socket, std::uint32_t unit, bool detail,
                                           Nev::QosClassData const& classData,
                                           Qos::ClassMapMatchOption matchOption,
                                           Nev::AclKey const& aclKey ) {
   taking( "showAclHeader" );
   if( acted( "showAclHeader" ) ) return;
   inner_->showAclHeader( socket, unit, detail, classData, matchOption, aclKey );
}

void RecordingQosAclHelper::showIpAclRule( std::uint32_t socket, std::uint32_t unit,
                                           Nev::QosClassData const& classData,
                                           Nev::AclKey const& aclKey, std::uint32_t sequence,
                                           Acl::UniqueId const& id ) {
   taking( "showIpAclRule" );
   if( acted( "showIpAclRule" ) ) return;
   inner_->showIpAclRule( socket, unit, classData, aclKey, sequence, id );
}

void RecordingQosAclHelper::showDefaultRule( std::uint32_t socket, std::uint32_t unit,
                                             Nev::QosPolicyMapState const& pmapState,
                                             Nev::QosClassData const& classData,
                                             Qos::ClassMapMatchOption matchOption,
                                             Nev::AclKey const& aclKey ) {
   taking( "showDefaultRule" );
   if( acted( "showDefaultRule" ) ) return;
   inner_->showDefaultRule( socket, unit, pmapState, classData, matchOption, aclKey );
}

void RecordingQosAclHelper::showL2ParamsRule( std::uint32_t socket, std::uint32_t unit,
                                              Nev::QosPolicyMapState const& pmapState,
                                              Nev::QosClassData const& classData,
                                              Qos::ClassMapMatchOption matchOption,
                                              Nev::AclKey const& aclKey ) {
   taking( "showL2ParamsRule" );
   if( acted( "showL2ParamsRule" ) ) return;
   inner_->showL2ParamsRule( socket, unit, pmapState, classData, matchOption, aclKey );
}

void RecordingQosAclHelper::showMplsTrafficClassRule( std::uint32_t socket, std::uint32_t unit,
                                                      Nev::QosPolicyMapState const& pmapState,
                                                      Nev::QosClassData const& classData,
                                                      Qos::ClassMapMatchOption matchOption,
                                                      Nev::AclKey const& aclKey ) {
   taking( "showMplsTrafficClassRule" );
   if( acted( "showMplsTrafficClassRule" ) ) return;
   inner_->showMplsTrafficClassRule( socket, unit, pmapState, classData, matchOption, aclKey );
}

void RecordingQosAclHelper::showDscpEcnRule( std::uint32_t socket, std::uint32_t unit,
                                             Nev::QosPolicyMapState const& pmapState,
                                             Nev::QosClassData const& classData,
                                             Qos::ClassMapMatchOption matchOption,
                                             Nev::AclKey const& aclKey ) {
   taking( "showDscpEcnRule" );
   if( acted( "showDscpEcnRule" ) ) return;
   inner_->showDscpEcnRule( socket, unit, pmapState, classData, matchOption, aclKey );
}

void RecordingQosAclHelper::showMacAclRule( std::uint32_t socket, std::uint32_t unit,
                                            Nev::QosPolicyMapState const& pmapState,
                                            Nev::QosClassData const& classData,
                                            Qos::ClassMapMatchOption matchOption,
                                            Nev::AclKey const& aclKey ) {
   taking( "showMacAclRule" );
   if( acted( "showMacAclRule" ) ) return;
   inner_->showMacAclRule( socket, unit, pmapState, classData, matchOption, aclKey );
}

Nev::QosClassCounterData RecordingQosAclHelper::counterUpdateRequest(
      Nev::QosClassData const& classData, Nev::AclKey const& aclKey ) {
   if( taking( "counterUpdateRequest" ) ) {
      record( "counterUpdateRequest",
              { { "classData", classText( classData ) }, { "aclKey", aclKeyText( aclKey ) } } );
   }
   if( auto const answer = scripted< Nev::QosClassCounterData >( "counterUpdateRequest" ) ) {
      return *answer;
   }
   return inner_->counterUpdateRequest( classData, aclKey );
}

bool RecordingQosAclHelper::ipSubruleExists( Nev::QosClassData const& classData,
                                             Nev::AclKey const& aclKey, Acl::UniqueId const& aclId,
                                             std::uint32_t ruleNum, std::uint32_t subruleNum ) {
   if( taking( "ipSubruleExists" ) && detailRecorded_ ) {
      recordSubrule( "ipSubruleExists", classData, aclKey, ruleNum, subruleNum );
   }
   if( auto const answer = scripted< bool >( "ipSubruleExists" ) ) return *answer;
   return inner_->ipSubruleExists( classData, aclKey, aclId, ruleNum, subruleNum );
}

bool RecordingQosAclHelper::ipPortRangeSubruleExists(
      Nev::QosClassData const& classData, Nev::AclKey const& aclKey, Acl::UniqueId const& aclId,
      std::uint32_t ruleNum, std::uint32_t subruleNum, std::uint16_t srcLow, std::uint16_t srcHigh,
      bool srcValid, std::uint16_t dstLow, std::uint16_t dstHigh, bool dstValid ) {
   if( taking( "ipPortRangeSubruleExists" ) && detailRecorded_ ) {
      recordSubrule( "ipPortRangeSubruleExists", classData, aclKey, ruleNum, subruleNum );
   }
   if( auto const answer = scripted< bool >( "ipPortRangeSubruleExists" ) ) return *answer;
   return inner_->ipPortRangeSubruleExists( classData, aclKey, aclId, ruleNum, subruleNum, srcLow,
                                            srcHigh, srcValid, dstLow, dstHigh, dstValid );
}

bool RecordingQosAclHelper::ipLenRangeSubruleExists(
      Nev::QosClassData const& classData, Nev::AclKey const& aclKey, Acl::UniqueId const& aclId,
      std::uint32_t ruleNum, std::uint32_t subruleNum, std::uint16_t ipLenLow,
      std::uint16_t ipLenHigh, bool ipLenValid ) {
   if( taking( "ipLenRangeSubruleExists" ) && detailRecorded_ ) {
      recordSubrule( "ipLenRangeSubruleExists", classData, aclKey, ruleNum, subruleNum );
   }
   if( auto const answer = scripted< bool >( "ipLenRangeSubruleExists" ) ) return *answer;
   return inner_->ipLenRangeSubruleExists( classData, aclKey, aclId, ruleNum, subruleNum, ipLenLow,
                                           ipLenHigh, ipLenValid );
}

bool RecordingQosAclHelper::createSmForPMap( Nev::QosPolicyMapState const& pmapState ) {
   if( taking( "createSmForPMap" ) ) {
      record( "createSmForPMap", { { "pmapState", pmapText( pmapState.key() ) } } );
   }
   if( auto const answer = scripted< bool >( "createSmForPMap" ) ) return *answer;
   return inner_->createSmForPMap( pmapState );
}

bool RecordingQosAclHelper::managedPrioritySupported( Qos::MapType mapType ) {
   taking( "managedPrioritySupported" );
   if( auto const answer = scripted< bool >( "managedPrioritySupported" ) ) return *answer;
   return inner_->managedPrioritySupported( mapType );
}

bool RecordingQosAclHelper::multipleActionsSupported() {
   taking( "multipleActionsSupported" );
   if( auto const answer = scripted< bool >( "multipleActionsSupported" ) ) return *answer;
   return inner_->multipleActionsSupported();
}

bool RecordingQosAclHelper::errorOnPolicerExhaustion() {
   taking( "errorOnPolicerExhaustion" );
   if( auto const answer = scripted< bool >( "errorOnPolicerExhaustion" ) ) return *answer;
   return inner_->errorOnPolicerExhaustion();
}

void RecordingQosAclHelper::cleanupForPMap( Nev::QosPolicyMapKey const& pmapKey ) {
   if( taking( "cleanupForPMap" ) ) {
      record( "cleanupForPMap", { { "pmapKey", pmapText( pmapKey ) } } );
   }
   if( acted( "cleanupForPMap" ) ) return;
   inner_->cleanupForPMap( pmapKey );
}

void RecordingQosAclHelper::hwInit() {
   if( taking( "hwInit" ) ) record( "hwInit", {} );
   if( acted( "hwInit" ) ) return;
   inner_->hwInit();
}

bool RecordingQosAclHelper::policiesInStableState() {
   taking( "policiesInStableState" );
   if( auto const answer = scripted< bool >( "policiesInStableState" ) ) return *answer;
   return inner_->policiesInStableState();
}

void RecordingQosAclHelper::verifyTcamData( Nev::QosClassData const& classData,
                                            Qos::ClassMapMatchOption matchOption,
                                            Nev::AclKey const& aclKey ) {
   if( taking( "verifyTcamData" ) ) {
      record( "verifyTcamData",
              { { "classData", classText( classData ) }, { "aclKey", aclKeyText( aclKey ) } } );
   }
   if( acted( "verifyTcamData" ) ) return;
   inner_->verifyTcamData( classData, matchOption, aclKey );
}

void RecordingQosAclHelper::verifyIpRuleGeneral( Nev::QosClassData const& classData,
                                                 Nev::AclKey const& aclKey,
                                                 Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                                                 std::uint32_t subruleNum,
                                                 std::uint32_t sequence ) {
   if( taking( "verifyIpRuleGeneral" ) && detailRecorded_ ) {
      recordSubrule( "verifyIpRuleGeneral", classData, aclKey, ruleNum, subruleNum );
   }
   if( acted( "verifyIpRuleGeneral" ) ) return;
   inner_->verifyIpRuleGeneral( classData, aclKey, aclId, ruleNum, subruleNum, sequence );
}

void RecordingQosAclHelper::verifyIpRuleAction( Nev::QosClassData const& classData,
                                                Nev::AclKey const& aclKey,
                                                Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                                                std::uint32_t subruleNum, std::uint32_t sequence,
                                                Acl::Action action ) {
   if( taking( "verifyIpRuleAction" ) && detailRecorded_ ) {
      recordSubrule( "verifyIpRuleAction", classData, aclKey, ruleNum, subruleNum );
   }
   if( acted( "verifyIpRuleAction" ) ) return;
   inner_->verifyIpRuleAction( classData, aclKey, aclId, ruleNum, subruleNum, sequence, action );
}

void RecordingQosAclHelper::verifyIpRuleIpProto( Nev::QosClassData const& classData,
                                                 Nev::AclKey const& aclKey,
                                                 Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                                                 std::uint32_t subruleNum, std::uint32_t sequence,
                                                 std::uint8_t expectedProto, bool valid ) {
   if( taking( "verifyIpRuleIpProto" ) && detailRecorded_ ) {
      recordSubrule( "verifyIpRuleIpProto", classData, aclKey, ruleNum, subruleNum );
   }
   if( acted( "verifyIpRuleIpProto" ) ) return;
   inner_->verifyIpRuleIpProto( classData, aclKey, aclId, ruleNum, subruleNum, sequence,
                                expectedProto, valid );
}

void RecordingQosAclHelper::verifyIpRuleSrcIp( Nev::QosClassData const& classData,
                                               Nev::AclKey const& aclKey,
                                               Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                                               std::uint32_t subruleNum, std::uint32_t sequence,
                                               std::uint32_t expectedAddr,
                                               std::uint32_t expectedMask, bool valid ) {
   if( taking( "verifyIpRuleSrcIp" ) && detailRecorded_ ) {
      recordSubrule( "verifyIpRuleSrcIp", classData, aclKey, ruleNum, subruleNum );
   }
   if( acted( "verifyIpRuleSrcIp" ) ) return;
   inner_->verifyIpRuleSrcIp( classData, aclKey, aclId, ruleNum, subruleNum, sequence, expectedAddr,
                              expectedMask, valid );
}

void RecordingQosAclHelper::verifyIpRuleDstIp( Nev::QosClassData const& classData,
                                               Nev::AclKey const& aclKey,
                                               Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                                               std::uint32_t subruleNum, std::uint32_t sequence,
                                               std::uint32_t expectedAddr,
                                               std::uint32_t expectedMask, bool valid ) {
   if( taking( "verifyIpRuleDstIp" ) && detailRecorded_ ) {
      recordSubrule( "verifyIpRuleDstIp", classData, aclKey, ruleNum, subruleNum );
   }
   if( acted( "verifyIpRuleDstIp" ) ) return;
   inner_->verifyIpRuleDstIp( classData, aclKey, aclId, ruleNum, subruleNum, sequence, expectedAddr,
                              expectedMask, valid );
}

void RecordingQosAclHelper::verifyIpRuleDscp( Nev::QosClassData const& classData,
                                              Nev::AclKey const& aclKey, Acl::UniqueId const& aclId,
                                              std::uint32_t ruleNum, std::uint32_t subruleNum,
                                              std::uint32_t sequence, std::uint8_t expectedDscp,
                                              bool valid ) {
   if( taking( "verifyIpRuleDscp" ) && detailRecorded_ ) {
      recordSubrule( "verifyIpRuleDscp", classData, aclKey, ruleNum, subruleNum );
   }
   if( acted( "verifyIpRuleDscp" ) ) return;
   inner_->verifyIpRuleDscp( classData, aclKey, aclId, ruleNum, subruleNum, sequence, expectedDscp,
                             valid );
}

void RecordingQosAclHelper::verifyIpRuleTcIp6( Nev::QosClassData const& classData,
                                               Nev::AclKey const& aclKey,
                                               Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                                               std::uint32_t subruleNum, std::uint32_t sequence,
                                               std::uint8_t expectedDscp, bool valid ) {
   if( taking( "verifyIpRuleTcIp6" ) && detailRecorded_ ) {
      recordSubrule( "verifyIpRuleTcIp6", classData, aclKey, ruleNum, subruleNum );
   }
   if( acted( "verifyIpRuleTcIp6" ) ) return;
   inner_->verifyIpRuleTcIp6( classData, aclKey, aclId, ruleNum, subruleNum, sequence, expectedDscp,
                              valid );
}

void RecordingQosAclHelper::verifyIpRuleEcn( Nev::QosClassData const& classData,
                                             Nev::AclKey const& aclKey, Acl::UniqueId const& aclId,
                                             std::uint32_t ruleNum, std::uint32_t subruleNum,
                                             std::uint32_t sequence, std::uint8_t ecnData,
                                             std::uint8_t ecnMask ) {
   if( taking( "verifyIpRuleEcn" ) && detailRecorded_ ) {
      recordSubrule( "verifyIpRuleEcn", classData, aclKey, ruleNum, subruleNum );
   }
   if( acted( "verifyIpRuleEcn" ) ) return;
   inner_->verifyIpRuleEcn( classData, aclKey, aclId, ruleNum, subruleNum, sequence, ecnData,
                            ecnMask );
}

void RecordingQosAclHelper::verifyIpRuleEcnIp6( Nev::QosClassData const& classData,
                                                Nev::AclKey const& aclKey,
                                                Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                                                std::uint32_t subruleNum, std::uint32_t sequence,
                                                std::uint8_t ecnData, std::uint8_t ecnMask ) {
   if( taking( "verifyIpRuleEcnIp6" ) && detailRecorded_ ) {
      recordSubrule( "verifyIpRuleEcnIp6", classData, aclKey, ruleNum, subruleNum );
   }
   if( acted( "verifyIpRuleEcnIp6" ) ) return;
   inner_->verifyIpRuleEcnIp6( classData, aclKey, aclId, ruleNum, subruleNum, sequence, ecnData,
                               ecnMask );
}

void RecordingQosAclHelper::verifyIpRuleSrcIp6( Nev::QosClassData const& classData,
                                                Nev::AclKey const& aclKey,
                                                Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                                                std::uint32_t subruleNum, std::uint32_t sequence,
                                                Mirel::Ip6AddrWithMask const& expectedDstAddr,
                                                bool valid ) {
   if( taking( "verifyIpRuleSrcIp6" ) && detailRecorded_ ) {
      recordSubrule( "verifyIpRuleSrcIp6", classData, aclKey, ruleNum, subruleNum );
   }
   if( acted( "verifyIpRuleSrcIp6" ) ) return;
   inner_->verifyIpRuleSrcIp6( classData, aclKey, aclId, ruleNum, subruleNum, sequence,
                               expectedDstAddr, valid );
}

void RecordingQosAclHelper::verifyIpRuleDstIp6( Nev::QosClassData const& classData,
                                                Nev::AclKey const& aclKey,
                                                Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                                                std::uint32_t subruleNum, std::uint32_t sequence,
                                                Mirel::Ip6AddrWithMask const& expectedDstAddr,
                                                bool valid ) {
   if( taking( "verifyIpRuleDstIp6" ) && detailRecorded_ ) {
      recordSubrule( "verifyIpRuleDstIp6", classData, aclKey, ruleNum, subruleNum );
   }
   if( acted( "verifyIpRuleDstIp6" ) ) return;
   inner_->verifyIpRuleDstIp6( classData, aclKey, aclId, ruleNum, subruleNum, sequence,
                               expectedDstAddr, valid );
}

void RecordingQosAclHelper::verifyIpRuleFragments( Nev::QosClassData const& classData,
                                                   Nev::AclKey const& aclKey,
                                                   Acl::UniqueId const& aclId,
                                                   std::uint32_t ruleNum, std::uint32_t subruleNum,
                                                   std::uint32_t sequence, bool matchHeadOnly,
                                                   bool matchFragmentsOnly ) {
   if( taking( "verifyIpRuleFragments" ) && detailRecorded_ ) {
      recordSubrule( "verifyIpRuleFragments", classData, aclKey, ruleNum, subruleNum );
   }
   if( acted( "verifyIpRuleFragments" ) ) return;
   inner_->verifyIpRuleFragments( classData, aclKey, aclId, ruleNum, subruleNum, sequence,
                                  matchHeadOnly, matchFragmentsOnly );
}

void RecordingQosAclHelper::verifyIpRuleTcpFlags( Nev::QosClassData const& classData,
                                                  Nev::AclKey const& aclKey,
                                                  Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                                                  std::uint32_t subruleNum, std::uint32_t sequence,
                                                  std::uint8_t expectedTcpFlags, bool valid ) {
   if( taking( "verifyIpRuleTcpFlags" ) && detailRecorded_ ) {
      recordSubrule( "verifyIpRuleTcpFlags", classData, aclKey, ruleNum, subruleNum );
   }
   if( acted( "verifyIpRuleTcpFlags" ) ) return;
   inner_->verifyIpRuleTcpFlags( classData, aclKey, aclId, ruleNum, subruleNum, sequence,
                                 expectedTcpFlags, valid );
}

void RecordingQosAclHelper::verifyIpRuleIcmp( Nev::QosClassData const& classData,
                                              Nev::AclKey const& aclKey, Acl::UniqueId const& aclId,
                                              std::uint32_t ruleNum, std::uint32_t subruleNum,
                                              std::uint32_t sequence,
                                              std::uint8_t expexctedIcmpType,
                                              std::uint8_t expectedIcmpCode, bool icmpTypeValid,
                                              bool icmpCodeValid ) {
   if( taking( "verifyIpRuleIcmp" ) && detailRecorded_ ) {
      recordSubrule( "verifyIpRuleIcmp", classData, aclKey, ruleNum, subruleNum );
   }
   if( acted( "verifyIpRuleIcmp" ) ) return;
   inner_->verifyIpRuleIcmp( classData, aclKey, aclId, ruleNum, subruleNum, sequence,
                             expexctedIcmpType, expectedIcmpCode, icmpTypeValid, icmpCodeValid );
}

void RecordingQosAclHelper::verifyIpRuleSrcPort( Nev::QosClassData const& classData,
                                                 Nev::AclKey const& aclKey,
                                                 Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                                                 std::uint32_t subruleNum, std::uint32_t sequence,
                                                 std::uint16_t expectedLow,
                                                 std::uint16_t expectedHigh, bool valid ) {
   if( taking( "verifyIpRuleSrcPort" ) && detailRecorded_ ) {
      recordSubrule( "verifyIpRuleSrcPort", classData, aclKey, ruleNum, subruleNum );
   }
   if( acted( "verifyIpRuleSrcPort" ) ) return;
   inner_->verifyIpRuleSrcPort( classData, aclKey, aclId, ruleNum, subruleNum, sequence,
                                expectedLow, expectedHigh, valid );
}

void RecordingQosAclHelper::verifyIpRuleDstPort( Nev::QosClassData const& classData,
                                                 Nev::AclKey const& aclKey,
                                                 Acl::UniqueId const& aclId, std::uint32_t ruleNum,
                                                 std::uint32_t subruleNum, std::uint32_t sequence,
                                                 std::uint16_t expectedLow,
                                                 std::uint16_t expectedHigh, bool valid ) {
   if( taking( "verifyIpRuleDstPort" ) && detailRecorded_ ) {
      recordSubrule( "verifyIpRuleDstPort", classData, aclKey, ruleNum, subruleNum );
   }
   if( acted( "verifyIpRuleDstPort" ) ) return;
   inner_->verifyIpRuleDstPort( classData, aclKey, aclId, ruleNum, subruleNum, sequence,
                                expectedLow, expectedHigh, valid );
}

void RecordingQosAclHelper::verifyIpRuleVlanMatch( Nev::QosClassData const& classData,
                                                   Nev::AclKey const& aclKey,
                                                   Acl::UniqueId const& aclId,
                                                   std::uint32_t ruleNum, std::uint32_t subruleNum,
                                                   std::uint16_t expectedVlanId,
                                                   std::uint16_t expectedVlanIdMask, bool valid ) {
   if( taking( "verifyIpRuleVlanMatch" ) && detailRecorded_ ) {
      recordSubrule( "verifyIpRuleVlanMatch", classData, aclKey, ruleNum, subruleNum );
   }
   if( acted( "verifyIpRuleVlanMatch" ) ) return;
   inner_->verifyIpRuleVlanMatch( classData, aclKey, aclId, ruleNum, subruleNum, expectedVlanId,
                                  expectedVlanIdMask, valid );
}

void RecordingQosAclHelper::verifyAclGeneral( Nev::QosClassData const& classData,
                                              Qos::ClassMapMatchOption matchOption,
                                              Nev::AclKey const& aclKey ) {
   if( taking( "verifyAclGeneral" ) ) {
      record( "verifyAclGeneral",
              { { "classData", classText( classData ) }, { "aclKey", aclKeyText( aclKey ) } } );
   }
   if( acted( "verifyAclGeneral" ) ) return;
   inner_->verifyAclGeneral( classData, matchOption, aclKey );
}

void RecordingQosAclHelper::verifyRulePorts( Nev::QosPolicyMapState const& pmapState,
                                             Nev::QosClassData const& classData,
                                             Qos::ClassMapMatchOption matchOption,
                                             Nev::AclKey const& aclKey, Acl::UniqueId const& aclId,
                                             std::uint32_t ruleNum, std::uint32_t subruleNum,
                                             std::uint32_t sequence, Acl::Action action ) {
   if( taking( "verifyRulePorts" ) && detailRecorded_ ) {
      recordSubrule( "verifyRulePorts", classData, aclKey, ruleNum, subruleNum );
   }
   if( acted( "verifyRulePorts" ) ) return;
   inner_->verifyRulePorts( pmapState, classData, matchOption, aclKey, aclId, ruleNum, subruleNum,
                            sequence, action );
}

void RecordingQosAclHelper::verifyDefaultRule( Nev::QosPolicyMapState const& pmapState,
                                               Nev::QosClassData const& classData,
                                               Qos::ClassMapMatchOption matchOption,
                                               Nev::AclKey const& aclKey ) {
   if( taking( "verifyDefaultRule" ) ) {
      record( "verifyDefaultRule",
              { { "classData", classText( classData ) }, { "aclKey", aclKeyText( aclKey ) } } );
   }
   if( acted( "verifyDefaultRule" ) ) return;
   inner_->verifyDefaultRule( pmapState, classData, matchOption, aclKey );
}

void RecordingQosAclHelper::verifyL2ParamsRule( Nev::QosPolicyMapState const& pmapState,
                                                Nev::QosClassData const& classData,
                                                Qos::ClassMapMatchOption matchOption,
                                                Nev::AclKey const& aclKey ) {
   if( taking( "verifyL2ParamsRule" ) ) {
      record( "verifyL2ParamsRule",
              { { "classData", classText( classData ) }, { "aclKey", aclKeyText( aclKey ) } } );
   }
   if( acted( "verifyL2ParamsRule" ) ) return;
   inner_->verifyL2ParamsRule( pmapState, classData, matchOption, aclKey );
}

void RecordingQosAclHelper::verifyMplsTrafficClassRule( Nev::QosPolicyMapState const& pmapState,
                                                        Nev::QosClassData const& classData,
                                                        Qos::ClassMapMatchOption matchOption,
                                                        Nev::AclKey const& aclKey ) {
   if( taking( "verifyMplsTrafficClassRule" ) ) {
      record( "verifyMplsTrafficClassRule",
              { { "classData", classText( classData ) }, { "aclKey", aclKeyText( aclKey ) } } );
   }
   if( acted( "verifyMplsTrafficClassRule" ) ) return;
   inner_->verifyMplsTrafficClassRule( pmapState, classData, matchOption, aclKey );
}

void RecordingQosAclHelper::verifyDscpEcnRule( Nev::QosPolicyMapState const& pmapState,
                                               Nev::QosClassData const& classData,
                                               Qos::ClassMapMatchOption matchOption,
                                               Nev::AclKey const& aclKey ) {
   if( taking( "verifyDscpEcnRule" ) ) {
      record( "verifyDscpEcnRule",
              { { "classData", classText( classData ) }, { "aclKey", aclKeyText( aclKey ) } } );
   }
   if( acted( "verifyDscpEcnRule" ) ) return;
   inner_->verifyDscpEcnRule( pmapState, classData, matchOption, aclKey );
}

void RecordingQosAclHelper::verifyMacAclRule( Nev::QosPolicyMapState const& pmapState,
                                              Nev::QosClassData const& classData,
                                              Qos::ClassMapMatchOption matchOption,
                                              Nev::AclKey const& aclKey ) {
   if( taking( "verifyMacAclRule" ) ) {
      record( "verifyMacAclRule",
              { { "classData", classText( classData ) }, { "aclKey", aclKeyText( aclKey ) } } );
   }
   if( acted( "verifyMacAclRule" ) ) return;
   inner_->verifyMacAclRule( pmapState, classData, matchOption, aclKey );
}

void RecordingQosAclHelper::verifyPolicer( Nev::QosClassData const& classData ) {
   if( taking( "verifyPolicer" ) ) {
      record( "verifyPolicer", { { "classData", classText( classData ) } } );
   }
   if( acted( "verifyPolicer" ) ) return;
   inner_->verifyPolicer( classData );
}

void RecordingQosAclHelper::verifyCounter( Nev::QosClassData const& classData ) {
   if( taking( "verifyCounter" ) ) {
      record( "verifyCounter", { { "classData", classText( classData ) } } );
   }
   if( acted( "verifyCounter" ) ) return;
   inner_->verifyCounter( classData );
}

void RecordingQosAclHelper::handleRoutedPortSubIntfAclSharing() {
   if( taking( "handleRoutedPortSubIntfAclSharing" ) )
      record( "handleRoutedPortSubIntfAclSharing", {} );
   if( acted( "handleRoutedPortSubIntfAclSharing" ) ) return;
   inner_->handleRoutedPortSubIntfAclSharing();
}

void RecordingQosAclHelper::handleSubIntfForwardingModel( Mirel::IntfId const& intfId ) {
   if( taking( "handleSubIntfForwardingModel" ) ) {
      record( "handleSubIntfForwardingModel", { { "intfId", intfName( intfId ) } } );
   }
   if( acted( "handleSubIntfForwardingModel" ) ) return;
   inner_->handleSubIntfForwardingModel( intfId );
}

void RecordingQosAclHelper::handleSubIntfDeletion( Mirel::IntfId const& intfId ) {
   if( taking( "handleSubIntfDeletion" ) ) {
      record( "handleSubIntfDeletion", { { "intfId", intfName( intfId ) } } );
   }
   if( acted( "handleSubIntfDeletion" ) ) return;
   inner_->handleSubIntfDeletion( intfId );
}

Zub::String RecordingQosAclHelper::cpuQIdToClassMapName( std::uint32_t cpuQId ) {
   if( taking( "cpuQIdToClassMapName" ) && detailRecorded_ ) {
      record( "cpuQIdToClassMapName", { { "cpuQId", argOf( cpuQId ) } } );
   }
   if( auto const answer = scripted< Zub::String >( "cpuQIdToClassMapName" ) ) return *answer;
   return inner_->cpuQIdToClassMapName( cpuQId );
}

Zub::String RecordingQosAclHelper::portToIntfName( std::uint32_t modId, std::uint32_t port ) {
   if( taking( "portToIntfName" ) && detailRecorded_ ) {
      record( "portToIntfName", { { "modId", argOf( modId ) }, { "port", argOf( port ) } } );
   }
   if( auto const answer = scripted< Zub::String >( "portToIntfName" ) ) return *answer;
   return inner_->portToIntfName( modId, port );
}

bool RecordingQosAclHelper::delaySviPmapSmCreation() {
   taking( "delaySviPmapSmCreation" );
   if( auto const answer = scripted< bool >( "delaySviPmapSmCreation" ) ) return *answer;
   return inner_->delaySviPmapSmCreation();
}

}  // namespace Sim
