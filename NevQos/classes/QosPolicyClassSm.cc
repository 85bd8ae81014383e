#include "NevQos/classes/QosPolicyClassSm.h"

#include "NevQos/helpers/QosAclHelper.h"
#include "NevQos/log/TraceHandles.h"
#include "NevQos/platform/zub/Assert.h"
#include "NevQos/policy/QosAclSm.h"
#include "NevQos/policy/QosPolicyMapSm.h"

namespace Nev {

QosPolicyClassSm::QosPolicyClassSm( QosClassMapKey const& cmapKey, QosAclSm* qosAclSm,
                                    QosPolicyMapSm* pmapSm,
                                    Zub::Ptr< Qos::ClassMapStatus const > const& cmap,
                                    unsigned cmapPrio,
                                    Zub::Ptr< Qos::ClassAction const > const& caction,
                                    bool classDefault )
    : QosPolicyClassBaseSm( Zub::make< QosClassConfig >( cmapKey, qosAclSm, pmapSm, cmap, cmapPrio,
                                                         caction, classDefault ) ) {
   handleInitialized();
}

void QosPolicyClassSm::handleInitialized() {
   createSm();
   initialized_ = true;
}

void QosPolicyClassSm::createSm() {
   setPmapHwStatus();
   auto const hw = qosAclSm()->qosAclHwStatus();
   if( pmapSliceHwStatus() ) pmapSliceHwStatus()->cmapIs( cmapName() );
   bool const perClass = hw->perClassPolicerSupported();
   policerSmNeeded_ = caction() && caction()->policer() && !perClass;
   // A policer forces copies in every map type, a counter only in a PDP map.
   countActionSmNeeded_ =
         caction() && caction()->count() && cmapType() == Qos::mapPdp_ && !perClass;
   auto const pmapState = pmapSm()->pmapState();
   if( policerSmNeeded_ ) createPolicerActionSms();
   if( copies() ) {
      if( pmapState->activeIntfSize() == 0 ) {
         // The copies come with the first interface.
         ZUB_TRACE( nevQosTrace, 3, "Number of Intfs in Service Policy Status: 0" );
         return;
      }
      for( auto it = pmapState->activeIntf().iter(); it; ++it ) {
         if( policerSmNeeded_ ) {
            handlePolicerIntf( it.key(), true );
         } else {
            handleCountActionIntf( it.key(), true );
         }
      }
      return;
   }
   createSmCommon();
   if( !classData() ) return;  // the policy map has gone
   if( caction() ) {
      if( perClass && caction()->policer() ) {
         createPolicerData( pmapSm()->pmapName() );
      } else if( perClass && caction()->count() ) {
         classData()->countIs( true );
      }
      createClassActionSm();
   }
   for( auto it = pmapState->activeIntf().iter(); it; ++it ) {
      classData()->intfIdIs( it.key(), true );
   }
   // Last, so that the matches see class data, actions and interfaces complete.
   createClassMatchSm();
}

void QosPolicyClassSm::createPolicerActionSms() {
   policerActionSms_.classActionSm =
         Zub::make< QosClassActionSm >( cmapKey(), qosAclSm(), pmapSm(), caction() );
   policerActionSms_.yellowClassActionSm =
         Zub::make< QosYellowClassActionSm >( cmapKey(), qosAclSm(), pmapSm(), caction() );
   policerActionSms_.redClassActionSm =
         Zub::make< QosRedClassActionSm >( cmapKey(), qosAclSm(), pmapSm(), caction() );
}

void QosPolicyClassSm::deletePolicerActionSms() {
   policerActionSms_ = QosPolicerActionSms();
}

namespace {

// An interface joining or leaving a map reaches every class of it in turn: its name is made once
// for all of them.
Zub::Name intfName( Mirel::IntfId intfId ) {
   static thread_local Mirel::IntfId lastId;
   static thread_local Zub::Name lastName;
   if( lastName.empty() || lastId != intfId ) {
      lastName = Zub::Name( intfId.stringValue() );
      lastId = intfId;
   }
   return lastName;
}

}  // namespace

Zub::Name QosPolicyClassSm::copyName( Qos::IntfPairKey const& intfPair, bool policer ) const {
   // Later rules override earlier ones.
   Zub::Name name = intfName( intfPair.intfId() );
   if( policer && !!intfPair.lagIntfId() ) name = intfName( intfPair.lagIntfId() );
   if( policer && namedSharedPolicer() ) name = caction()->policer()->key();
   if( pmapSm()->sharedPolicyMap() ) name = caction()->key();
   return name;
}

namespace {

// Adds an interface to a copy, making the copy with its first interface, or removes one, letting
// the copy go with its last. True when the copy stands afterwards.
template< class Find, class Create, class Del >
bool updateCopy( Qos::IntfPairKey const& intfPair, bool add, Find find, Create create, Del del ) {
   auto const copy = find();
   if( add ) {
      if( copy ) {
         copy->handleIntf( intfPair, true );
      } else {
         create();
      }
      return true;
   }
   if( !copy ) return false;
   copy->handleIntf( intfPair, false );
   if( copy->classData() && copy->classData()->intfIdSize() != 0 ) return true;
   copy->doPrepareToDie();
   del();
   return false;
}

}  // namespace

void QosPolicyClassSm::handlePolicerIntf( Qos::IntfPairKey const& intfPair, bool add ) {
   Zub::Name const name = copyName( intfPair, true );
   bool const stands = updateCopy(
         intfPair, add, [ & ] { return policerSm( name ); },
         [ & ] { policerSmIs( name, config(), intfPair, &policerActionSms_ ); },
         [ & ] { policerSmDel( name ); } );
   if( !stands ) ZUB_TRACE( nevQosTrace, 5, " policerSm( " << name << " ) does not exist " );
}

void QosPolicyClassSm::handleCountActionIntf( Qos::IntfPairKey const& intfPair, bool add ) {
   // Per interface even on a LAG; a named policer plays no part.
   Zub::Name const name = copyName( intfPair, false );
   bool const stands = updateCopy(
         intfPair, add, [ & ] { return countActionSm( name ); },
         [ & ] { countActionSmIs( name, config(), intfPair ); },
         [ & ] { countActionSmDel( name ); } );
   if( !stands ) ZUB_TRACE( nevQosTrace, 5, " countActionSm( " << name << " ) does not exist " );
}

void QosPolicyClassSm::intfUpdated( Qos::IntfPairKey const& intfPair, bool add ) {
   // A policer wins: no counter copy is made beside it.
   if( policerSmNeeded_ ) {
      handlePolicerIntf( intfPair, add );
   } else if( countActionSmNeeded_ ) {
      handleCountActionIntf( intfPair, add );
   } else {
      QosPolicyClassBaseSm::intfUpdated( intfPair, add );
   }
}

void QosPolicyClassSm::deleteSm() {
   if( policerSmSize() == 0 && countActionSmSize() == 0 ) {
      // Matches first, then actions, then the class data.
      deleteClassMatchSm();
      deleteClassActionSm();
      QosPolicyClassBaseSm::deleteSm();
      deletePolicerActionSms();
      return;
   }
   for( auto it = policerSm().iter(); it; ++it ) {
      it.value()->doPrepareToDie();
      policerSmDel( it.key() );
   }
   for( auto it = countActionSm().iter(); it; ++it ) {
      it.value()->doPrepareToDie();
      countActionSmDel( it.key() );
   }
   deletePolicerActionSms();
}

void QosPolicyClassSm::counterUpdateRequest() {
   if( pmapSm()->pmapType() == Qos::mapPdp_ && !caction() ) return;
   if( !copies() ) {
      QosPolicyClassBaseSm::counterUpdateRequest();
      return;
   }
   for( auto it = policerSm().iter(); it; ++it )
      it.value()->counterUpdateRequest();
   for( auto it = countActionSm().iter(); it; ++it )
      it.value()->counterUpdateRequest();
}

void QosPolicyClassSm::showAcl( std::uint32_t socket, std::uint32_t unit, bool detail ) {
   qosAclSm()->qosHelper()->showAclClassHeader( socket, unit, cmapKey() );
   if( !copies() ) {
      QosPolicyClassBaseSm::showAcl( socket, unit, detail );
      return;
   }
   for( auto it = policerSm().iter(); it; ++it ) {
      it.value()->QosPolicyClassBaseSm::showAcl( socket, unit, detail );
   }
   for( auto it = countActionSm().iter(); it; ++it ) {
      it.value()->QosPolicyClassBaseSm::showAcl( socket, unit, detail );
   }
}

void QosPolicyClassSm::handleVerify() {
   if( copies() ) {
      for( auto it = policerSm().iter(); it; ++it )
         it.value()->handleVerify();
      for( auto it = countActionSm().iter(); it; ++it )
         it.value()->handleVerify();
      return;
   }
   QosPolicyClassBaseSm::handleVerify();
   if( pmapSm()->pmapType() == Qos::mapControlPlane_ &&
       !qosAclSm()->qosAclHwStatus()->intfCoppSupported() ) {
      verifyCpuQueue();
   }
}

// A class the chip gave a CPU queue holds it alone. Queue 0 is a queue like any other, and the
// classes of the system (cpuQId -1) use the system's queues, which they share.
void QosPolicyClassSm::verifyCpuQueue() const {
   auto const iClassData = classData();
   if( !iClassData ) return;
   std::int32_t const cpuQId = iClassData->cpuQId();
   if( cpuQId < 0 ) return;
   for( auto it = pmapSm()->policyClassSm().iter(); it; ++it ) {
      auto const jClassData = it.value()->classData();
      if( !jClassData ) continue;
      bool const sameQueue = jClassData->cpuQId() == cpuQId;
      ZUB_ASSERT_TEXT( !sameQueue || jClassData->key() == iClassData->key(),
                       "jClassData->cpuQId() == 0 || jClassData->key() == iClassData->key()" );
   }
}

}  // namespace Nev
