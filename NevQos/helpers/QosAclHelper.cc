#include "NevQos/helpers/QosAclHelper.h"

#include <utility>

#include "NevQos/platform/nev/NevAssert.h"
#include "NevQos/platform/zub/Assert.h"
#include "NevQos/platform/zub/Format.h"
#include "NevQos/types/Rates.h"

namespace NevHelper {

using Nev::AclCreateError;
using Nev::AclKey;
using Nev::QosClassData;
using Nev::QosPolicyMapState;
using Qos::ClassMapMatchOption;
using std::uint16_t;
using std::uint32_t;
using std::uint8_t;

QosAclHelper::QosAclHelper( Zub::Ptr< Qos::Status const > qosStatus,
                            Zub::Ptr< Qos::AclSliceHwStatus > qosAclSliceHwStatus,
                            Zub::Ptr< Acl::Config const > mainAclConfig )
    : Nev::NevAsyncBaseHelper( Zub::Name( "qosAclHelper" ) )
    , qosStatus_( std::move( qosStatus ) )
    , qosAclSliceHwStatus_( std::move( qosAclSliceHwStatus ) )
    , mainAclConfig_( std::move( mainAclConfig ) ) {}

Zub::Name const& QosAclHelper::defaultAclGroup() {
   return Nev::QosPolicyMapKey::defaultAclGroup();
}

Zub::Name const& QosAclHelper::dscpEcnAclName() {
   static Zub::Name const name( "dscpecn-acl" );
   return name;
}

Zub::Name const& QosAclHelper::dscpEcnIpv6AclName() {
   static Zub::Name const name( "dscpecn-acl-ipv6" );
   return name;
}

void QosAclHelper::unimplemented( char const* message ) const {
   Zub::String const text( message );
   if( Nev::noopAgent() ) return;
   this->nevAssert( text );
}

// ---- Rule creation and removal

Zub::Name QosAclHelper::aclGroup( Qos::IntfPairKey const&, Qos::ServicePolicyKey const& ) {
   return defaultAclGroup();
}

AclCreateError QosAclHelper::createIpAclSubrule( Acl::AclType, Acl::RuleConfig const&,
                                                 Acl::UniqueId const&, QosPolicyMapState const&,
                                                 QosClassData const&, AclKey const&, uint32_t,
                                                 uint32_t, uint16_t, uint16_t, uint16_t, uint16_t,
                                                 uint16_t, uint16_t, uint16_t, uint16_t, uint16_t,
                                                 uint16_t, uint16_t, uint16_t, uint8_t, bool,
                                                 uint8_t, uint8_t ) {
   unimplemented( "Call to unimplemented function QosSm::createIpAclSubrule" );
   return Nev::aclCreateErrorNone;
}

AclCreateError QosAclHelper::createIpFragRule( QosPolicyMapState const&, QosClassData const&,
                                               AclKey const&, Acl::IpRuleConfig const&,
                                               Acl::UniqueId const&, uint32_t, uint32_t, uint8_t,
                                               uint8_t ) {
   unimplemented( "Call to unimplemented function QosSm::createIpFragRule" );
   return Nev::aclCreateErrorNone;
}

AclCreateError QosAclHelper::createDefaultRule( QosPolicyMapState const&, QosClassData const&,
                                                ClassMapMatchOption, AclKey const& ) {
   unimplemented( "Call to unimplemented function QosSm::createDefaultRule" );
   return Nev::aclCreateErrorNone;
}

AclCreateError QosAclHelper::createL2ParamsRule( QosPolicyMapState const&, QosClassData const&,
                                                 ClassMapMatchOption, AclKey const&, uint32_t ) {
   unimplemented( "Call to unimplemented function QosSm::createL2ParamsRule" );
   return Nev::aclCreateErrorNone;
}

AclCreateError QosAclHelper::createMplsTrafficClassRule( QosPolicyMapState const&,
                                                         QosClassData const&, ClassMapMatchOption,
                                                         AclKey const&, uint32_t ) {
   unimplemented( "Call to unimplemented function QosSm::createMplsTrafficClassRule" );
   return Nev::aclCreateErrorNone;
}

AclCreateError QosAclHelper::createDscpEcnRule( QosPolicyMapState const&, QosClassData const&,
                                                ClassMapMatchOption, AclKey const&, uint32_t ) {
   unimplemented( "Call to unimplemented function QosSm::createDscpEcnRule" );
   return Nev::aclCreateErrorNone;
}

bool QosAclHelper::isSupportedMacAclRule( Acl::MacRuleConfig const& ) {
   return false;
}

bool QosAclHelper::isMacAclRuleSupportedPlatform() {
   return false;
}

AclCreateError QosAclHelper::createMacAclRule( QosPolicyMapState const&, QosClassData const&,
                                               ClassMapMatchOption, AclKey const&, uint32_t ) {
   return Nev::aclCreateErrorNone;
}

AclCreateError QosAclHelper::createBuiltInClassMatchRule( QosPolicyMapState const&,
                                                          QosClassData const&, ClassMapMatchOption,
                                                          uint32_t ) {
   return Nev::aclCreateErrorNone;
}

// The message names the operation as drivers' logs have always shown it.
void QosAclHelper::updatePortForAcl( QosPolicyMapState const&, QosClassData const&,
                                     ClassMapMatchOption, AclKey const&, Qos::IntfPairKey const&,
                                     bool ) {
   unimplemented( "Call to unimplemented function QosSm::updatePortFromAcl" );
}

void QosAclHelper::updatePolicer( Zub::Name const& ) {}

AclCreateError QosAclHelper::precreateAcl( QosPolicyMapState const&, QosClassData const&,
                                           ClassMapMatchOption, AclKey const& ) {
   return Nev::aclCreateErrorNone;
}

void QosAclHelper::destroyAcl( QosPolicyMapState const&, QosClassData const&, ClassMapMatchOption,
                               AclKey const& ) {
   unimplemented( "Call to unimplemented function QosSm::destroyAcl" );
}

// Reports with destroyAcl's message.
void QosAclHelper::cleanupAcl( QosPolicyMapState const&, QosClassData const&, ClassMapMatchOption,
                               AclKey const& ) {
   unimplemented( "Call to unimplemented function QosSm::destroyAcl" );
}

// ---- Commit and asynchronous operation

void QosAclHelper::prepareToCommit() {}

AclCreateError QosAclHelper::commitAcl( QosClassData const&, ClassMapMatchOption, AclKey const& ) {
   unimplemented( "Call to unimplemented function QosSm::commitAcl" );
   return Nev::aclCreateErrorNone;
}

void QosAclHelper::batchCommitAcls( QosPolicyMapState const& ) {}

void QosAclHelper::batchCommitAclsIntf( QosPolicyMapState const& pmapState, Qos::IntfPairKey const&,
                                        bool ) {
   batchCommitAcls( pmapState );
}

void QosAclHelper::handlePendingOperationTimeout() {}

// ---- CoPP

int QosAclHelper::coppAllocateCpuQ( QosClassData const& ) {
   unimplemented( "Call to unimplemented function QosSm::coppAllocateCpuQ" );
   return -1;
}

// The message keeps its established spelling.
void QosAclHelper::coppDeallocateCpuQ( QosClassData const& ) {
   unimplemented( "Call to unimplemented function QosSm::coppDellocateCpuQ" );
}

Nev::ModIdPortQueueKey QosAclHelper::getDdeCoppModIdPortQueue( QosClassData const& ) {
   ZUB_ASSERT( false && "Call to unimplemented function QosSm::getDdeCoppModIdPortQueue" );
   return Nev::ModIdPortQueueKey();
}

Nev::ModIdQueueKey QosAclHelper::getDdeCoppModIdQueue( QosClassData const& ) {
   ZUB_ASSERT( false && "Call to unimplemented function QosSm::getDdeCoppModIdQueue" );
   return Nev::ModIdQueueKey();
}

bool QosAclHelper::checkUserCoppEntryExists( Nev::ModIdPortQueueKey const& ) {
   unimplemented( "Call to unimplemented function QosSm::checkUserCoppEntryExists" );
   return false;
}

bool QosAclHelper::checkKernelCoppEntryExists( Nev::ModIdPortQueueKey const& ) {
   unimplemented(
         "Call to unimplemented function \n            "
         "QosSm::checkKernelCoppEntryExists" );
   return false;
}

void QosAclHelper::createDefaultCoppRates() {
   unimplemented( "Call to unimplemented function QosSm::createDefaultCoppRates" );
}

// ---- Policers and counters

bool QosAclHelper::createAndAttachPolicer( QosClassData const& ) {
   unimplemented( "Call to unimplemented function QosSm::createAndAttachPolicer" );
   return false;
}

void QosAclHelper::destroyPolicer( QosClassData const& ) {
   unimplemented( "Call to unimplemented function QosSm::destroyPolicer" );
}

bool QosAclHelper::createAndAttachCoppPolicer( QosClassData const& ) {
   unimplemented(
         "Call to unimplemented function \n            "
         "QosSm::createAndAttachCoppPolicer" );
   return false;
}

void QosAclHelper::destroyCoppPolicer( QosClassData const& ) {
   unimplemented( "Call to unimplemented function QosSm::destroyCoppPolicer" );
}

bool QosAclHelper::createCoppPolicerByPortQueue( Nev::ModIdPortQueueKey const& ) {
   unimplemented(
         "Call to unimplemented function \n            "
         "QosSm::createCoppPolicerByPortQueue" );
   return false;
}

void QosAclHelper::destroyCoppPolicerByPortQueue( Nev::ModIdPortQueueKey const& ) {
   unimplemented(
         "Call to unimplemented function \n            "
         "QosSm::destroyCoppPolicerByPortQueue" );
}

void QosAclHelper::createAndAttachCounter( QosClassData const& ) {}

void QosAclHelper::destroyCounter( QosClassData const& ) {}

// ---- Show

void QosAclHelper::showAclPolicyHeader( uint32_t, uint32_t, QosPolicyMapState const&,
                                        Nev::QosPolicyMapKey const& ) {}

void QosAclHelper::showAclClassHeader( uint32_t, uint32_t, Nev::QosClassMapKey const& ) {}

void QosAclHelper::showAclHeader( uint32_t, uint32_t, bool, QosClassData const&,
                                  ClassMapMatchOption, AclKey const& ) {}

void QosAclHelper::showIpAclRule( uint32_t, uint32_t, QosClassData const&, AclKey const&, uint32_t,
                                  Acl::UniqueId const& ) {}

void QosAclHelper::showDefaultRule( uint32_t, uint32_t, QosPolicyMapState const&,
                                    QosClassData const&, ClassMapMatchOption, AclKey const& ) {}

void QosAclHelper::showL2ParamsRule( uint32_t, uint32_t, QosPolicyMapState const&,
                                     QosClassData const&, ClassMapMatchOption, AclKey const& ) {}

void QosAclHelper::showMplsTrafficClassRule( uint32_t, uint32_t, QosPolicyMapState const&,
                                             QosClassData const&, ClassMapMatchOption,
                                             AclKey const& ) {}

void QosAclHelper::showDscpEcnRule( uint32_t, uint32_t, QosPolicyMapState const&,
                                    QosClassData const&, ClassMapMatchOption, AclKey const& ) {}

void QosAclHelper::showMacAclRule( uint32_t, uint32_t, QosPolicyMapState const&,
                                   QosClassData const&, ClassMapMatchOption, AclKey const& ) {}

// ---- Queries and capabilities

Nev::QosClassCounterData QosAclHelper::counterUpdateRequest( QosClassData const&, AclKey const& ) {
   return Nev::QosClassCounterData();
}

bool QosAclHelper::ipSubruleExists( QosClassData const&, AclKey const&, Acl::UniqueId const&,
                                    uint32_t, uint32_t ) {
   return false;
}

bool QosAclHelper::ipPortRangeSubruleExists( QosClassData const&, AclKey const&,
                                             Acl::UniqueId const&, uint32_t, uint32_t, uint16_t,
                                             uint16_t, bool, uint16_t, uint16_t, bool ) {
   return false;
}

bool QosAclHelper::ipLenRangeSubruleExists( QosClassData const&, AclKey const&,
                                            Acl::UniqueId const&, uint32_t, uint32_t, uint16_t,
                                            uint16_t, bool ) {
   unimplemented( "Unimplemented function QosAclHelper::ipLenRangeSubruleExists()" );
   return false;
}

bool QosAclHelper::createSmForPMap( QosPolicyMapState const& ) {
   return true;
}

bool QosAclHelper::managedPrioritySupported( Qos::MapType ) {
   return false;
}

bool QosAclHelper::multipleActionsSupported() {
   return true;
}

bool QosAclHelper::errorOnPolicerExhaustion() {
   return false;
}

void QosAclHelper::cleanupForPMap( Nev::QosPolicyMapKey const& ) {}

void QosAclHelper::hwInit() {
   unimplemented( "Unimplemented function QosAclHelper::hwInit()" );
}

bool QosAclHelper::policiesInStableState() {
   return true;
}

// ---- Verification

void QosAclHelper::verifyTcamData( QosClassData const&, ClassMapMatchOption, AclKey const& ) {}

void QosAclHelper::verifyIpRuleGeneral( QosClassData const&, AclKey const&, Acl::UniqueId const&,
                                        uint32_t, uint32_t, uint32_t ) {}

void QosAclHelper::verifyIpRuleAction( QosClassData const&, AclKey const&, Acl::UniqueId const&,
                                       uint32_t, uint32_t, uint32_t, Acl::Action ) {}

void QosAclHelper::verifyIpRuleIpProto( QosClassData const&, AclKey const&, Acl::UniqueId const&,
                                        uint32_t, uint32_t, uint32_t, uint8_t, bool ) {}

void QosAclHelper::verifyIpRuleSrcIp( QosClassData const&, AclKey const&, Acl::UniqueId const&,
                                      uint32_t, uint32_t, uint32_t, uint32_t, uint32_t, bool ) {}

void QosAclHelper::verifyIpRuleDstIp( QosClassData const&, AclKey const&, Acl::UniqueId const&,
                                      uint32_t, uint32_t, uint32_t, uint32_t, uint32_t, bool ) {}

void QosAclHelper::verifyIpRuleDscp( QosClassData const&, AclKey const&, Acl::UniqueId const&,
                                     uint32_t, uint32_t, uint32_t, uint8_t, bool ) {}

void QosAclHelper::verifyIpRuleTcIp6( QosClassData const&, AclKey const&, Acl::UniqueId const&,
                                      uint32_t, uint32_t, uint32_t, uint8_t, bool ) {}

void QosAclHelper::verifyIpRuleEcn( QosClassData const&, AclKey const&, Acl::UniqueId const&,
                                    uint32_t, uint32_t, uint32_t, uint8_t, uint8_t ) {}

void QosAclHelper::verifyIpRuleEcnIp6( QosClassData const&, AclKey const&, Acl::UniqueId const&,
                                       uint32_t, uint32_t, uint32_t, uint8_t, uint8_t ) {}

void QosAclHelper::verifyIpRuleSrcIp6( QosClassData const&, AclKey const&, Acl::UniqueId const&,
                                       uint32_t, uint32_t, uint32_t, Mirel::Ip6AddrWithMask const&,
                                       bool ) {}

void QosAclHelper::verifyIpRuleDstIp6( QosClassData const&, AclKey const&, Acl::UniqueId const&,
                                       uint32_t, uint32_t, uint32_t, Mirel::Ip6AddrWithMask const&,
                                       bool ) {}

void QosAclHelper::verifyIpRuleFragments( QosClassData const&, AclKey const&, Acl::UniqueId const&,
                                          uint32_t, uint32_t, uint32_t, bool, bool ) {}

void QosAclHelper::verifyIpRuleTcpFlags( QosClassData const&, AclKey const&, Acl::UniqueId const&,
                                         uint32_t, uint32_t, uint32_t, uint8_t, bool ) {}

void QosAclHelper::verifyIpRuleIcmp( QosClassData const&, AclKey const&, Acl::UniqueId const&,
                                     uint32_t, uint32_t, uint32_t, uint8_t, uint8_t, bool, bool ) {}

void QosAclHelper::verifyIpRuleSrcPort( QosClassData const&, AclKey const&, Acl::UniqueId const&,
                                        uint32_t, uint32_t, uint32_t, uint16_t, uint16_t, bool ) {}

void QosAclHelper::verifyIpRuleDstPort( QosClassData const&, AclKey const&, Acl::UniqueId const&,
                                        uint32_t, uint32_t, uint32_t, uint16_t, uint16_t, bool ) {}

void QosAclHelper::verifyIpRuleVlanMatch( QosClassData const&, AclKey const&, Acl::UniqueId const&,
                                          uint32_t, uint32_t, uint16_t, uint16_t, bool ) {}

void QosAclHelper::verifyAclGeneral( QosClassData const&, ClassMapMatchOption, AclKey const& ) {}

void QosAclHelper::verifyRulePorts( QosPolicyMapState const&, QosClassData const&,
                                    ClassMapMatchOption, AclKey const&, Acl::UniqueId const&,
                                    uint32_t, uint32_t, uint32_t, Acl::Action ) {}

void QosAclHelper::verifyDefaultRule( QosPolicyMapState const&, QosClassData const&,
                                      ClassMapMatchOption, AclKey const& ) {}

void QosAclHelper::verifyL2ParamsRule( QosPolicyMapState const&, QosClassData const&,
                                       ClassMapMatchOption, AclKey const& ) {}

void QosAclHelper::verifyMplsTrafficClassRule( QosPolicyMapState const&, QosClassData const&,
                                               ClassMapMatchOption, AclKey const& ) {}

void QosAclHelper::verifyDscpEcnRule( QosPolicyMapState const&, QosClassData const&,
                                      ClassMapMatchOption, AclKey const& ) {}

void QosAclHelper::verifyMacAclRule( QosPolicyMapState const&, QosClassData const&,
                                     ClassMapMatchOption, AclKey const& ) {}

void QosAclHelper::verifyPolicer( QosClassData const& ) {
   unimplemented( "Unimplemented function QosAclHelper::verifyPolicer()" );
}

void QosAclHelper::verifyCounter( QosClassData const& ) {}

// ---- Interfaces and names

void QosAclHelper::handleRoutedPortSubIntfAclSharing() {}

void QosAclHelper::handleSubIntfForwardingModel( Mirel::IntfId const& ) {}

void QosAclHelper::handleSubIntfDeletion( Mirel::IntfId const& ) {}

Zub::String QosAclHelper::cpuQIdToClassMapName( uint32_t ) {
   unimplemented( "Unimplemented function QosAclHelper::cpuQIdToClassMapName" );
   return Zub::String();
}

Zub::String QosAclHelper::portToIntfName( uint32_t, uint32_t ) {
   unimplemented( "Unimplemented function QosAclHelper::portToIntfName" );
   return Zub::String();
}

bool QosAclHelper::delaySviPmapSmCreation() {
   return false;
}

// ---- Concrete operations

std::uint64_t QosAclHelper::getRateParamInKbps( Qos::RateUnit rateUnit,
                                                std::uint64_t value ) const {
   return NevHelper::getRateParamInKbps( rateUnit, value );
}

std::uint64_t QosAclHelper::getBurstParamInKbits( Qos::BurstUnit burstUnit,
                                                  std::uint64_t value ) const {
   return NevHelper::getBurstParamInKbits( burstUnit, value );
}

std::uint64_t QosAclHelper::getBurstParamInBytes( Qos::BurstUnit burstUnit,
                                                  std::uint64_t value ) const {
   return NevHelper::getBurstParamInBytes( burstUnit, value );
}

Zub::String QosAclHelper::createAclName( Acl::AclType aclType, ClassMapMatchOption matchOpt,
                                         uint32_t matchPrio ) const {
   bool const ipType = aclType == Acl::ip() || aclType == Acl::ipv6();
   ZUB_ASSERT( ipType );
   bool const v6 = aclType == Acl::ipv6();
   Zub::Name base;
   switch( matchOpt ) {
      case Qos::matchOptionVlan:
         base = v6 ? vlanIpv6AclName() : vlanAclName();
         break;
      case Qos::matchOptionCos:
         base = v6 ? cosIpv6AclName() : cosAclName();
         break;
      case Qos::matchOptionVlanCos:
         base = v6 ? vlanCosIpv6AclName() : vlanCosAclName();
         break;
      case Qos::matchOptionDscpEcn:
         base = v6 ? dscpEcnIpv6AclName() : dscpEcnAclName();
         break;
      case Qos::matchOptionMac:
         base = v6 ? macIpv6AclName() : macAclName();
         break;
      default:
         // Left empty: the name then begins with the hyphen.
         break;
   }
   return Zub::format( "%s-%u", base.charPtr(), matchPrio );
}

void QosAclHelper::qosAclStatusUpdateCallback( Nev::QosPolicyMapKey const& pmapKey,
                                               Qos::PolicyMapHwPrgmStatus status ) {
   auto pmapHwStatusType = qosAclSliceHwStatus()->pmapType( pmapKey.pmapType() );
   ZUB_ASSERT( pmapHwStatusType );
   auto pmapHwStatus = pmapHwStatusType->pmap(
         Qos::PolicyMapHwStatusKey( pmapKey.direction(), pmapKey.pmapName() ) );
   ZUB_ASSERT( pmapHwStatus );
   pmapHwStatus->prgmStatusIs( status );
}

void QosAclHelper::intfUpdateCallback( Qos::IntfPairKey const& intfPair,
                                       Qos::Direction direction ) {
   Nev::IntfUpdateCallbackData const data( intfPair, direction );
   intfUpdateCallbackDataIs( data, true );
   intfUpdateCallbackDataDel( data );
}

}  // namespace NevHelper
