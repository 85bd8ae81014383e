#include "NevQos/classes/QosPolicyClassBaseSm.h"

#include <iostream>

#include "NevQos/helpers/QosAclHelper.h"
#include "NevQos/log/TraceHandles.h"
#include "NevQos/platform/zub/Assert.h"
#include "NevQos/policy/QosAclSm.h"
#include "NevQos/policy/QosPolicyMapSm.h"
#include "NevQos/types/Rates.h"

namespace Nev {

QosPolicyClassBaseSm::QosPolicyClassBaseSm( Zub::Ptr< QosClassConfig const > config )
    : config_( std::move( config ) ) {
   ZUB_ASSERT( config_ );
}

QosPolicyClassBaseSm::~QosPolicyClassBaseSm() = default;

// The system-wide control-plane policy has no entry; its classes do without.
void QosPolicyClassBaseSm::setPmapHwStatus() {
   pmapSliceHwStatus_ = pmapSm()->pmapSliceHwStatus();
   ZUB_ASSERT_TEXT( pmapSliceHwStatus() || !pmapSm()->hasHwStatus(), "pmapSliceHwStatus()" );
}

void QosPolicyClassBaseSm::createSmCommon() {
   auto const typeStatus = qosAclSm()->qosStatus()->pmapType( pmapSm()->pmapType() );
   if( !typeStatus || !typeStatus->pmap( pmapSm()->pmapName() ) ) return;
   // The copies replace the policer name "Default" with their own.
   QosClassDataKey const key( pmapSm()->key(), cmapName(), cmapType(),
                              QosClassDataKey::defaultPolicerName() );
   if( classData_ ) {
      classData_->policerNameIs( key.policerName() );
   } else {
      classData_ = Zub::make< QosClassData >( key );
   }
   classData_->priorityIs( cmapPrio() );
   classData_->classDefaultIs( classDefault() );
}

void QosPolicyClassBaseSm::classDataPolicerNameIs( Zub::Name const& name ) {
   classData_->policerNameIs( name );
}

void QosPolicyClassBaseSm::createClassActionSm() {
   classActionSmIs( cmapKey(), qosAclSm(), pmapSm(), caction() )->applyTo( *classData() );
}

void QosPolicyClassBaseSm::createClassMatchSm() {
   std::uint32_t matchPrio = 7;
   for( auto it = cmap()->match().iter(); it; ++it ) {
      classMatchSmIs( it.key(), config(), classData(),
                      Zub::Ptr< Qos::ClassMapMatch const >( it.value() ), matchPrio );
      --matchPrio;
   }
}

void QosPolicyClassBaseSm::deleteClassActionSm() {
   for( auto it = classActionSm().iter(); it; ++it ) {
      if( classData() ) it.value()->removeFrom( *classData() );
      it.value()->doPrepareToDie();
      classActionSmDel( it.key() );
   }
}

void QosPolicyClassBaseSm::deleteClassMatchSm() {
   for( auto it = classMatchSm().iter(); it; ++it ) {
      it.value()->doPrepareToDie();
      classMatchSmDel( it.key() );
   }
}

bool QosPolicyClassBaseSm::namedSharedPolicer() const {
   if( !caction() || !caction()->policer() || !caction()->policer()->named() ) return false;
   auto const named = qosAclSm()->qosStatus()->namedPolicer( caction()->policer()->key() );
   return named && named->shared();
}

void QosPolicyClassBaseSm::createPolicerData( Zub::Name const& name ) {
   if( !caction() || !caction()->policer() ) {
      std::cerr << "Failed(caction() && caction()->policer()) Policer action not present"
                << std::endl;
   }
   ZUB_ASSERT_TEXT( caction() && caction()->policer(), "caction() && caction()->policer()" );
   PolicerParams const p =
         validatedPolicerParams( qosAclSm()->qosAclHwStatus(), *caction()->policer() );
   auto const data = classData()->policerDataIs( name, p.cir, p.bc, p.pir, p.be );
   data->cirUnitIs( p.cirUnit );
   data->bcUnitIs( p.bcUnit );
   data->pirUnitIs( p.pirUnit );
   data->beUnitIs( p.beUnit );
}

void QosPolicyClassBaseSm::deleteSm() {
   classData_ = nullptr;
}

void QosPolicyClassBaseSm::intfUpdated( Qos::IntfPairKey const& intfPair, bool add ) {
   if( !classData() ) {
      ZUB_TRACE( nevQosTrace, 3, "classData() is null " );
      return;
   }
   if( add ) {
      classData()->intfIdIs( intfPair, true );
   } else {
      classData()->intfIdDel( intfPair );
   }
   for( auto it = classMatchSm().iter(); it; ++it )
      it.value()->intfUpdated( intfPair, add );
}

void QosPolicyClassBaseSm::counterUpdateRequest() {
   if( !pmapSliceHwStatus() ) return;
   auto const status = pmapSliceHwStatus()->cmap( cmapName() );
   if( !status ) return;
   // The status was cleared before the request: several copies add to one class.
   QosClassCounterData sum;
   sum.pktHitsIs( status->outCount() );
   sum.pktDropsIs( status->dropCount() );
   sum.byteHitsIs( status->outBytes() );
   sum.byteDropsIs( status->dropBytes() );
   for( auto it = classMatchSm().iter(); it; ++it )
      sum += it.value()->counterUpdateRequest();
   status->outCountIs( sum.pktHits() );
   status->outBytesIs( sum.byteHits() );
   status->dropCountIs( sum.pktDrops() );
   status->dropBytesIs( sum.byteDrops() );
   for( auto const& [ intfId, drops ] : sum.dropCountIntfSharedPolicer() ) {
      ZUB_TRACE( nevQosTrace, 5, "counterUpdateRequest::policerHwStatusIs " << intfId );
      status->policerHwStatusIs( Zub::Name( intfId.stringValue() ) )->pktDropCountIs( drops );
   }
}

void QosPolicyClassBaseSm::showAcl( std::uint32_t socket, std::uint32_t unit, bool detail ) {
   for( auto it = classMatchSm().iter(); it; ++it )
      it.value()->showAcl( socket, unit, detail );
}

void QosPolicyClassBaseSm::handleVerify() {
   auto const typeStatus = qosAclSm()->qosStatus()->pmapType( pmapSm()->pmapType() );
   auto const pmap = typeStatus ? typeStatus->pmap( pmapSm()->pmapName() ) : nullptr;
   if( !pmap ) return;
   auto const action =
         classDefault() ? pmap->classActionDefault() : pmap->classAction( cmapName() );
   QosClassActionSm* const classAction = appliedClassActionSm();
   if( action ) {
      ZUB_ASSERT_TEXT( classAction, "classActionSmHas( cmapKey() )" );
      classAction->handleVerify( *classData() );
   } else {
      ZUB_ASSERT_TEXT( !classAction, "!classActionSmHas( cmapKey() )" );
   }
   for( auto it = cmap()->match().iter(); it; ++it ) {
      ZUB_ASSERT_TEXT( classMatchSmHas( it.key() ), "classMatchSmHas( cmapKey() )" );
      classMatchSm( it.key() )->handleVerify();
   }
}

QosClassActionSm* QosPolicyClassBaseSm::appliedClassActionSm() const {
   return classActionSm( cmapKey() ).ptr();
}

void QosPolicyClassBaseSm::doPrepareToDie() {
   deleteSm();
}

}  // namespace Nev
