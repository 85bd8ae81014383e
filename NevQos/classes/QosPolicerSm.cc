#include "NevQos/classes/QosPolicerSm.h"

#include "NevQos/log/TraceHandles.h"
#include "NevQos/policy/QosAclSm.h"
#include "NevQos/policy/QosPolicyMapSm.h"

namespace Nev {

QosPolicerSm::QosPolicerSm( Zub::Name const& name, QosClassMapKey const& cmapKey,
                            QosAclSm* qosAclSm, QosPolicyMapSm* pmapSm,
                            Zub::Ptr< Qos::ClassMapStatus const > const& cmap, unsigned cmapPrio,
                            Zub::Ptr< Qos::ClassAction const > const& caction, bool classDefault,
                            Qos::IntfPairKey const& intfPair )
    : QosPolicyClassBaseSm( cmapKey, qosAclSm, pmapSm, cmap, cmapPrio, caction, classDefault )
    , intfPair_( intfPair )
    , name_( name ) {
   handleInitialized();
}

void QosPolicerSm::handleInitialized() {
   createSm();
   initialized_ = true;
}

void QosPolicerSm::createSm() {
   createSmCommon();
   if( !classData() ) return;  // the policy map has gone
   classData()->intfIdIs( intfPair(), true );
   setPmapHwStatus();
   // The status entry stands even when no policer is configured.
   if( auto const status = pmapSliceHwStatus()->cmap( cmapName() ) ) {
      status->policerHwStatusIs( name() );
   }
   if( !caction() || !caction()->policer() ) return;
   // The policer data with its validated parameters plugs in here.
   classDataPolicerNameIs( name() );
   createClassActionSm();
   // The yellow and red class actions plug in here.
   createClassMatchSm();
   // The chip's policer is created and attached here.
}

bool QosPolicerSm::shared() const {
   return pmapSm()->sharedPolicyMap() || namedSharedPolicer();
}

void QosPolicerSm::handleIntf( Qos::IntfPairKey const& intfId, bool add ) {
   if( !classData() ) return;
   if( add ) {
      classData()->intfIdIs( intfId, true );
   } else {
      classData()->intfIdDel( intfId );
   }
   // A copy for one plain interface holds that interface from its creation.
   if( !intfId.lagIntfId() && !shared() ) return;
   for( auto it = classMatchSm().iter(); it; ++it )
      it.value()->intfUpdated( intfId, add );
}

void QosPolicerSm::deleteSm() {
   // The chip's policer is destroyed here, before the matches.
   deleteClassMatchSm();
   // The red, then the yellow class action leave here.
   deleteClassActionSm();
   if( pmapSliceHwStatus() ) {
      if( auto const status = pmapSliceHwStatus()->cmap( cmapName() ) ) {
         status->policerHwStatusDel( name() );
      }
   }
   QosPolicyClassBaseSm::deleteSm();
}

void QosPolicerSm::counterUpdateRequest() {
   // The policer's own counters are pulled here.
   ZUB_TRACE( nevQosTrace, 5, "counterUpdateRequest " << name() );
}

}  // namespace Nev
