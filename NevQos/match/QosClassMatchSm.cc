#include "NevQos/match/QosClassMatchSm.h"

#include "NevQos/helpers/QosAclHelper.h"
#include "NevQos/log/TraceHandles.h"
#include "NevQos/platform/zub/Assert.h"
#include "NevQos/policy/QosAclSm.h"
#include "NevQos/policy/QosPolicyMapSm.h"

namespace Nev {

QosClassMatchSm::QosClassMatchSm( Qos::ClassMapMatchOption matchOption,
                                  Zub::Ptr< QosClassConfig const > const& config,
                                  Zub::Ptr< QosClassData > const& classData,
                                  Zub::Ptr< Qos::ClassMapMatch const > const& classMatch,
                                  std::uint32_t matchPrio )
    : config_( config )
    , classData_( classData )
    , classMatch_( classMatch )
    , matchOption_( matchOption )
    , matchPrio_( matchPrio ) {
   handleInitialized();
}

QosClassMatchSm::~QosClassMatchSm() = default;

void QosClassMatchSm::handleInitialized() {
   createSm();
   ownFlagIs( initializedFlag, true );
}

void QosClassMatchSm::createSm() {
   if( classData()->classDefault() ) {
      createClassDefaultSm();
      return;
   }
   switch( matchOption() ) {
      case Qos::matchOptionMplsTrafficClass:
         createClassMplsTrafficClassSm();
         break;
      case Qos::matchOptionVlan:
      case Qos::matchOptionDscpEcn:
      case Qos::matchOptionMac:
      case Qos::matchOptionBuiltIn:
      case Qos::matchOptionCos:
      case Qos::matchOptionVlanCos:
         createClassMatchOptionSm();
         break;
      default:
         createClassAclSm();
         break;
   }
}

Zub::Ptr< QosClassMatchData > QosClassMatchSm::createMatchData( Qos::ClassMapMatchOption option ) {
   auto const matchData = classData()->matchDataIs( option );
   matchData->priorityIs( matchPrio() );
   return matchData;
}

Zub::Ptr< Acl::AclConfig const > QosClassMatchSm::configuredAcl() const {
   if( classData()->classDefault() ) return nullptr;
   if( matchOption() != Qos::matchOptionIpAcl && matchOption() != Qos::matchOptionIpv6Acl ) {
      return nullptr;
   }
   Acl::AclType const type = matchOption() == Qos::matchOptionIpAcl ? Acl::ip() : Acl::ipv6();
   auto const acls = qosAclSm()->mainAclConfig();
   auto const typeConfig = acls ? acls->config( type ) : nullptr;
   return typeConfig ? typeConfig->acl( Zub::Name( classMatch()->strValue() ) ) : nullptr;
}

void QosClassMatchSm::createPolicyData() {
   policyData_ = Zub::make< QosPolicyMapClassData >( Zub::Ptr< QosPolicyMapSm >( pmapSm() ),
                                                     classData(), classMatch() );
   policyData_->matchOptionIs( matchOption() );
   policyData_->matchPrioIs( matchPrio() );
   policyData_->aclConfigIs( configuredAcl() );
}

void QosClassMatchSm::createClassAclSm() {
   createMatchData( matchOption() );
   switch( matchOption() ) {
      case Qos::matchOptionNone:
         break;
      case Qos::matchOptionIpAcl:
      case Qos::matchOptionIpv6Acl: {
         // A list that is not configured yet has no hardware, and no child.
         if( auto const aclConfig = configuredAcl() ) {
            Acl::AclType const type =
                  matchOption() == Qos::matchOptionIpAcl ? Acl::ip() : Acl::ipv6();
            aclSmIs( AclKey( Zub::Name( classMatch()->strValue() ), type ), this, matchOption(),
                     aclConfig );
         }
         break;
      }
      default:
         // The other options have children of their own kinds.
         ZUB_ASSERT( false );
   }
}

QosPMapAclTypes QosClassMatchSm::updatePmapAclTypes() {
   bool const v4 = pmapSm()->ipv4AccessGroupCount() != 0;
   bool const v6 = pmapSm()->ipv6AccessGroupCount() != 0;
   QosPMapAclTypes const types = v6 ? ( v4 ? ipv4v6Both : ipv6Only ) : ipv4Only;
   pmapSm()->pmapState()->pmapAclTypesIs( types );
   return types;
}

void QosClassMatchSm::createClassMatchOptionSm() {
   QosPMapAclTypes const types = updatePmapAclTypes();
   if( types != ipv6Only ) createMatchOptionSm( Acl::ip() );
   if( types != ipv4Only ) createMatchOptionSm( Acl::ipv6() );
}

void QosClassMatchSm::createMatchOptionSm( Acl::AclType aclType ) {
   createMatchData( matchOption() );
   auto& helper = *qosAclSm()->qosHelper();
   Zub::Name const name(
         QosClassMatchOptionSm::createAclName( helper, aclType, matchOption(), matchPrio() ) );
   matchOptionSmIs( AclKey( name, aclType ), this, matchOption(),
                    pmapSm()->pmapState()->pmapAclTypes() );
}

void QosClassMatchSm::createClassMplsTrafficClassSm() {
   QosPMapAclTypes const types = updatePmapAclTypes();
   if( types != ipv6Only ) createMplsTrafficClassSm( Acl::ip() );
   if( types != ipv4Only ) createMplsTrafficClassSm( Acl::ipv6() );
}

void QosClassMatchSm::createMplsTrafficClassSm( Acl::AclType aclType ) {
   createMatchData( matchOption() );
   auto& helper = *qosAclSm()->qosHelper();
   Zub::Name const name(
         QosClassMatchMplsTrafficClassSm::createAclName( helper, aclType, matchPrio() ) );
   mplsTrafficClassSmIs( AclKey( name, aclType ), this, pmapSm()->pmapState()->pmapAclTypes() );
}

void QosClassMatchSm::createClassDefaultSm() {
   auto const pmapState = pmapSm()->pmapState();
   pmapState->pmapAclTypesIs( ipv4Only );
   if( pmapSm()->ipv6AccessGroupCount() != 0 ) updatePmapAclTypes();
   QosPMapAclTypes const types = pmapState->pmapAclTypes();
   auto& helper = *qosAclSm()->qosHelper();
   // Even without an access group of its own, the class keeps its data under options 1 and 2.
   if( types != ipv6Only ) {
      createMatchData( Qos::matchOptionIpAcl );
      classDefaultSmIs( AclKey( helper.defaultAclName(), Acl::ip() ), this, types );
   }
   if( types != ipv4Only ) {
      createMatchData( Qos::matchOptionIpv6Acl );
      classDefaultSmIs( AclKey( helper.defaultIpv6AclName(), Acl::ipv6() ), this, types );
   }
}

void QosClassMatchSm::enqueueRequest( AclKey const& aclKey, Qos::ClassMapMatchOption matchOption,
                                      QosPolicyUpdateReason reasonType,
                                      Qos::IntfPairKey const& intfPair, bool remove ) {
   if( !policyData_ ) createPolicyData();
   // A default child's data lives under its own option, not the match's: the request is made
   // for the child's option, whatever the shared slot held before.
   policyData_->matchOptionIs( matchOption );
   policyData_->aclKeyIs( aclKey );
   QosPolicyUpdateRequest request( reasonType, aclKey.aclName().str(), remove );
   request.policyDataIs( policyData_ );
   request.intfPairIs( intfPair );
   request.aclKeyIs( aclKey );
   request.matchOptionIs( policyData_->matchOption() );
   qosAclSm()->enqueueRequestIs( request );
}

void QosClassMatchSm::intfUpdated( Qos::IntfPairKey const& intfPair, bool add ) {
   // The traffic-class children are left out on purpose.
   for( auto it = aclSm().iter(); it; ++it )
      it.value()->intfUpdated( intfPair, add );
   for( auto it = matchOptionSm().iter(); it; ++it )
      it.value()->intfUpdated( intfPair, add );
   for( auto it = classDefaultSm().iter(); it; ++it )
      it.value()->intfUpdated( intfPair, add );
}

bool QosClassMatchSm::sharedQosAclTypesCounterNeeded() const {
   return cmapType() == Qos::mapQos_ &&
          qosAclSm()->qosAclHwStatus()->sharedQosAclTypesCounterSupported();
}

namespace {

// Sums the children's counters; with a shared counter the first child has them all.
template< class Children >
QosClassCounterData sumCounters( Children const& children, bool stopAfterFirst ) {
   QosClassCounterData sum;
   for( auto it = children.iter(); it; ++it ) {
      sum += it.value()->counterUpdateRequest();
      if( stopAfterFirst ) break;
   }
   return sum;
}

template< class Children >
bool allDestroying( Children const& children ) {
   for( auto it = children.iter(); it; ++it ) {
      if( !it.value()->destroying() ) return false;
   }
   return true;
}

}  // namespace

QosClassCounterData QosClassMatchSm::counterUpdateRequest() {
   bool const shared = sharedQosAclTypesCounterNeeded();
   if( classData()->classDefault() ) return sumCounters( classDefaultSm(), shared );
   switch( matchOption() ) {
      case Qos::matchOptionVlan:
      case Qos::matchOptionDscpEcn:
      case Qos::matchOptionMac:
      case Qos::matchOptionBuiltIn:
      case Qos::matchOptionCos:
      case Qos::matchOptionVlanCos:
         return sumCounters( matchOptionSm(), shared );
      case Qos::matchOptionMplsTrafficClass:
         return sumCounters( mplsTrafficClassSm(), shared );
      default:
         // An access group always sums both lists.
         return sumCounters( aclSm(), false );
   }
}

bool QosClassMatchSm::allMatchOptionSmDestroying() const {
   return allDestroying( matchOptionSm() );
}

bool QosClassMatchSm::allMplsTrafficClassSmDestroying() const {
   return allDestroying( mplsTrafficClassSm() );
}

bool QosClassMatchSm::allClassDefaultSmDestroying() const {
   return allDestroying( classDefaultSm() );
}

void QosClassMatchSm::showAcl( std::uint32_t socket, std::uint32_t unit, bool detail ) {
   for( auto it = aclSm().iter(); it; ++it )
      it.value()->showAcl( socket, unit, detail );
   for( auto it = matchOptionSm().iter(); it; ++it )
      it.value()->showAcl( socket, unit, detail );
   for( auto it = classDefaultSm().iter(); it; ++it )
      it.value()->showAcl( socket, unit, detail );
}

namespace {

// Verifies the child of each family the policy map's matches cover, IPv6 first; a missing child
// is a broken invariant, stated by `ipv6Text` or `ipText`.
template< class Children, class NameOf >
void verifyFamilies( Children const& children, QosPMapAclTypes types, NameOf const& nameOf,
                     char const* ipv6Text, char const* ipText ) {
   for( Acl::AclType const type : { Acl::ipv6(), Acl::ip() } ) {
      if( type == Acl::ipv6() ? types == ipv4Only : types == ipv6Only ) continue;
      auto const sm = children.get( AclKey( Zub::Name( nameOf( type ) ), type ) );
      ZUB_ASSERT_TEXT( sm, type == Acl::ip() ? ipText : ipv6Text );
      sm->handleVerify();
   }
}

}  // namespace

void QosClassMatchSm::handleVerify() {
   auto const& h = *qosAclSm()->qosHelper();
   QosPMapAclTypes const types = pmapSm()->pmapState()->pmapAclTypes();
   if( classData()->classDefault() ) {
      verifyFamilies(
            classDefaultSm(), types,
            [ & ]( Acl::AclType type ) {
               return type == Acl::ip() ? h.defaultAclName() : h.defaultIpv6AclName();
            },
            "classDefaultSm( AclKey( h->defaultIpv6AclName(), Acl::ipv6() ) )",
            "classDefaultSm( AclKey( h->defaultAclName(), Acl::ip() ) )" );
      return;
   }
   switch( matchOption() ) {
      case Qos::matchOptionNone:
         return;
      case Qos::matchOptionIpAcl:
      case Qos::matchOptionIpv6Acl:
         verifyAccessGroup();
         return;
      case Qos::matchOptionMplsTrafficClass:
         verifyFamilies(
               mplsTrafficClassSm(), types,
               [ & ]( Acl::AclType type ) {
                  return QosClassMatchMplsTrafficClassSm::createAclName( h, type, matchPrio() );
               },
               "mplsTrafficClassSm( AclKey( aclName, Acl::ipv6() ) )",
               "mplsTrafficClassSm( AclKey( aclName, Acl::ip() ) )" );
         return;
      default:
         verifyFamilies(
               matchOptionSm(), types,
               [ & ]( Acl::AclType type ) {
                  return QosClassMatchOptionSm::createAclName( h, type, matchOption(),
                                                               matchPrio() );
               },
               "matchOptionSm( AclKey( aclName, Acl::ipv6() ) )",
               "matchOptionSm( AclKey( aclName, Acl::ip() ) )" );
         return;
   }
}

void QosClassMatchSm::verifyAccessGroup() {
   bool const v4 = matchOption() == Qos::matchOptionIpAcl;
   Acl::AclType const type = v4 ? Acl::ip() : Acl::ipv6();
   AclKey const aclKey( Zub::Name( classMatch()->strValue() ), type );
   auto const acls = qosAclSm()->mainAclConfig();
   auto const typeConfig = acls ? acls->config( type ) : nullptr;
   if( !typeConfig || !typeConfig->acl( aclKey.aclName() ) ) {
      ZUB_ASSERT_TEXT( !aclSmHas( aclKey ),
                       v4 ? "!aclSmHas( AclKey( classMatch()->strValue(), Acl::ip() ) )"
                          : "!aclSmHas( AclKey( classMatch()->strValue(), Acl::ipv6() ) )" );
      return;
   }
   ZUB_ASSERT_TEXT( aclSmHas( aclKey ),
                    v4 ? "aclSmHas( AclKey( classMatch()->strValue(), Acl::ip() ) )"
                       : "aclSmHas( AclKey( classMatch()->strValue(), Acl::ipv6() ) )" );
   aclSm( aclKey )->handleVerify();
}

void QosClassMatchSm::doPrepareToDie() {
   deleteSm();
}

void QosClassMatchSm::deleteSm() {
   for( auto it = aclSm().iter(); it; ++it ) {
      it.value()->doPrepareToDie();
      aclSmDel( it.key() );
   }
   for( auto it = matchOptionSm().iter(); it; ++it ) {
      it.value()->doPrepareToDie();
      matchOptionSmDel( it.key() );
   }
   for( auto it = classDefaultSm().iter(); it; ++it ) {
      it.value()->doPrepareToDie();
      classDefaultSmDel( it.key() );
   }
   // The traffic-class lists are in the chip like the others, and go with their match.
   for( auto it = mplsTrafficClassSm().iter(); it; ++it ) {
      it.value()->doPrepareToDie();
      mplsTrafficClassSmDel( it.key() );
   }
   // Queued requests still need the match data and policyData.
   if( qosAclSm()->qosHelper()->asyncTcamOperationsSupported() ) return;
   classData()->matchDataDel( matchOption() );
   policyData_ = nullptr;
}

}  // namespace Nev
