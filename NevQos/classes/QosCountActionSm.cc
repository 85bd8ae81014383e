#include "NevQos/classes/QosCountActionSm.h"

#include "NevQos/helpers/QosAclHelper.h"
#include "NevQos/platform/zub/Assert.h"
#include "NevQos/policy/QosAclSm.h"
#include "NevQos/policy/QosPolicyMapSm.h"

namespace Nev {

QosCountActionSm::QosCountActionSm( Zub::Name const& name,
                                    Zub::Ptr< QosClassConfig const > const& config,
                                    Qos::IntfPairKey const& intfPair )
    : QosPolicyClassBaseSm( config ), intfPair_( intfPair ), name_( name ) {
   handleInitialized();
}

void QosCountActionSm::handleInitialized() {
   createSm();
   initialized_ = true;
}

void QosCountActionSm::createSm() {
   createSmCommon();
   if( !classData() ) return;  // the policy map has gone
   classData()->intfIdIs( intfPair(), true );
   setPmapHwStatus();
   if( !caction() || !caction()->count() ) return;
   classDataPolicerNameIs( name() );
   classData()->countIs( true );
   createClassMatchSm();
   // A map that failed is rebuilt as a whole: its copies reach the chip then.
   if( pmapSm()->pmapState()->dirty() ) return;
   qosAclSm()->qosHelper()->createAndAttachCounter( *classData() );
   counterCreated_ = true;
}

void QosCountActionSm::handleIntf( Qos::IntfPairKey const& intfId, bool add ) {
   if( !classData() ) return;
   if( add ) {
      classData()->intfIdIs( intfId, true );
   } else {
      classData()->intfIdDel( intfId );
   }
   if( !pmapSm()->sharedPolicyMap() ) return;
   for( auto it = classMatchSm().iter(); it; ++it )
      it.value()->intfUpdated( intfId, add );
}

void QosCountActionSm::deleteSm() {
   if( counterCreated_ ) qosAclSm()->qosHelper()->destroyCounter( *classData() );
   counterCreated_ = false;
   deleteClassMatchSm();
   QosPolicyClassBaseSm::deleteSm();
}

void QosCountActionSm::counterUpdateRequest() {
   auto const cmapSliceHwStatus = pmapSliceHwStatus()->cmap( cmapName() );
   ZUB_ASSERT_TEXT( cmapSliceHwStatus, "cmapSliceHwStatus" );
   QosClassCounterData sum;
   sum.pktHitsIs( cmapSliceHwStatus->outCount() );
   sum.pktDropsIs( cmapSliceHwStatus->dropCount() );
   if( cmapType() == Qos::mapPdp_ ) {
      for( auto it = classMatchSm().iter(); it; ++it )
         sum += it.value()->counterUpdateRequest();
   }
   // Packets only: a count copy reports no bytes.
   cmapSliceHwStatus->outCountIs( sum.pktHits() );
   cmapSliceHwStatus->dropCountIs( sum.pktDrops() );
}

void QosCountActionSm::handleVerify() {
   ZUB_ASSERT_TEXT( classData()->count(), "classData()->count()" );
   ZUB_ASSERT_TEXT( !classActionSmHas( cmapKey() ), "!classActionSmHas( cmapKey() )" );
   for( auto it = cmap()->match().iter(); it; ++it ) {
      ZUB_ASSERT_TEXT( classMatchSmHas( it.key() ), "classMatchSmHas( cmapKey() )" );
      classMatchSm( it.key() )->handleVerify();
   }
   qosAclSm()->qosHelper()->verifyCounter( *classData() );
}

}  // namespace Nev
