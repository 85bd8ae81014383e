#include "NevQos/match/QosClassMatchChildSm.h"

#include "NevQos/helpers/QosAclHelper.h"
#include "NevQos/log/TraceHandles.h"
#include "NevQos/match/QosClassMatchSm.h"
#include "NevQos/platform/zub/Assert.h"
#include "NevQos/platform/zub/Format.h"
#include "NevQos/policy/QosAclSm.h"
#include "NevQos/policy/QosPolicyMapSm.h"

namespace Nev {

QosClassMatchChildSm::QosClassMatchChildSm( AclKey const& key, QosClassMatchSm* classMatchSm,
                                            Qos::ClassMapMatchOption matchOption )
    : key_( key ), classMatchSm_( classMatchSm ) {
   matchOptionIs( matchOption );
   ZUB_ASSERT( classMatchSm_ );
}

QosClassMatchChildSm::~QosClassMatchChildSm() = default;

QosAclSm* QosClassMatchChildSm::qosAclSm() const {
   return classMatchSm_->qosAclSm();
}

QosPolicyMapSm* QosClassMatchChildSm::pmapSm() const {
   return classMatchSm_->pmapSm();
}

Zub::Ptr< QosClassData > const& QosClassMatchChildSm::classData() const {
   return classMatchSm_->classData();
}

NevHelper::QosAclHelper& QosClassMatchChildSm::helper() const {
   return *qosAclSm()->qosHelper();
}

QosPolicyMapState& QosClassMatchChildSm::pmapState() const {
   return *pmapSm()->pmapState();
}

Zub::Ptr< QosClassMatchData > QosClassMatchChildSm::matchData() const {
   return classData()->matchData( matchOption() );
}

Zub::Ptr< AclData > QosClassMatchChildSm::aclData() const {
   auto const md = matchData();
   return md ? md->aclData( key() ) : nullptr;
}

std::int32_t QosClassMatchChildSm::optionAclNumber() const {
   auto const md = matchData();
   ZUB_ASSERT( md );
   return static_cast< std::int32_t >( ( classData()->priority() << 8 ) | md->priority() );
}

std::int32_t QosClassMatchChildSm::accessGroupAclNumber() const {
   auto const md = matchData();
   ZUB_ASSERT( md );
   return static_cast< std::int32_t >( ( classData()->priority() << 23 ) |
                                       ( md->priority() << 20 ) );
}

void QosClassMatchChildSm::handleInitialized() {
   prepareInitialized();
   auto const md = matchData();
   ZUB_ASSERT( md );
   md->aclDataIs( key() );
   if( !helper().asyncTcamOperationsSupported() ) {
      createAcl();
      commitAcl();
   } else {
      enqueueRequest( updateReasonAclChange, Qos::IntfPairKey(), false );
   }
   ownFlagIs( initializedFlag, true );
}

void QosClassMatchChildSm::intfUpdated( Qos::IntfPairKey const& intfPair, bool add ) {
   if( !helper().asyncTcamOperationsSupported() ) {
      helper().updatePortForAcl( pmapState(), *classData(), matchOption(), key(), intfPair, add );
   } else {
      enqueueRequest( updateReasonIntfChange, intfPair, !add );
   }
}

QosClassCounterData QosClassMatchChildSm::counterUpdateRequest() {
   return helper().counterUpdateRequest( *classData(), key() );
}

void QosClassMatchChildSm::showAcl( std::uint32_t socket, std::uint32_t unit, bool detail ) {
   helper().showAclHeader( socket, unit, detail, *classData(), matchOption(), key() );
}

VerifyData* QosClassMatchChildSm::verifyReport() const {
   return qosAclSm()->verifyReport();
}

void QosClassMatchChildSm::reportIfDestroying() const {
   if( !destroying() ) return;
   NEV_VERIFY_FAILURE( verifyReport(), Zub::format( "ACL %s set to destroying but still exists",
                                                    aclName().charPtr() ) );
}

void QosClassMatchChildSm::destroyAcl() {
   auto const data = aclData();
   if( !data || data->aclNumber() == -1 ) return;  // never reached the helper
   ownFlagIs( destroyingFlag, true );
   helper().destroyAcl( pmapState(), *classData(), matchOption(), key() );
   if( cleanupAfterDestroy() ) {
      helper().cleanupAcl( pmapState(), *classData(), matchOption(), key() );
   }
   aclNumberAfterDestroy( *data );
   data->dirtyIs( true );
   data->installedIs( false );
}

void QosClassMatchChildSm::aclNumberAfterDestroy( AclData& aclData ) const {
   aclData.aclNumberIs( -1 );
}

void QosClassMatchChildSm::commitAcl() {
   auto const data = aclData();
   if( !data || data->dirty() || destroying() ) return;
   AclCreateError const result = helper().commitAcl( *classData(), matchOption(), key() );
   qosAclSm()->updatePolicyMapErrorState( result, pmapSm()->key(), data );
   data->installedIs( true );
}

void QosClassMatchChildSm::enqueueRequest( QosPolicyUpdateReason reasonType,
                                           Qos::IntfPairKey const& intfPair, bool remove ) {
   classMatchSm()->enqueueRequest( key(), matchOption(), reasonType, intfPair, remove );
}

void QosClassMatchChildSm::doPrepareToDie() {
   if( !helper().asyncTcamOperationsSupported() ) {
      destroyAcl();
      if( auto const md = matchData() ) md->aclDataDel( key() );
   } else {
      enqueueRequest( updateReasonAclChange, Qos::IntfPairKey(), true );
   }
}

}  // namespace Nev
