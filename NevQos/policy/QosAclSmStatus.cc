// How QosAclSm reports the outcome of compiling a policy map: the programming status the command
// line reads, the unableToProgram mark of the service policy, and at the edges of trouble the
// system log.
#include "NevQos/log/QosLogHandles.h"
#include "NevQos/log/TraceHandles.h"
#include "NevQos/platform/nev/AclData.h"
#include "NevQos/platform/zub/Assert.h"
#include "NevQos/platform/zub/Format.h"
#include "NevQos/platform/zub/Log.h"
#include "NevQos/policy/QosAclSm.h"
#include "NevQos/policy/QosPolicyMapClassData.h"
#include "NevQos/policy/QosPolicyMapSm.h"

namespace Nev {

bool QosAclSm::updatePolicyMapErrorState( AclCreateError error, QosPolicyMapKey const& key,
                                          Zub::Ptr< AclData > const& aclData ) {
   if( error == aclCreateErrorRuleIgnored || error == aclCreateErrorIgnored ) {
      if( aclData ) aclData->dirtyIs( false );
      return false;
   }
   if( aclData ) aclData->dirtyIs( error != aclCreateErrorNone );
   if( error == aclCreateErrorNone ) return false;
   ZUB_TRACE( nevQosTrace, 3,
              "updatePolicyMapErrorState"
                    << " errorOccurred " << aclCreateErrorText( error ) );
   qosHelper()->dirtyIs( true );
   // The state's reactor starts the resource-full cycle of the policy map.
   if( auto pmapState = qosHelper()->pmapState( key ) ) pmapState->dirtyIs( true );
   return true;
}

void QosAclSm::setPolicyMapHwPrgmStatus( QosPolicyMapKey const& key ) {
   ZUB_TRACE( nevQosTrace, 3, "setPolicyMapHwPrgmStatus " << key );
   Qos::ServicePolicyKey const spKey( key.pmapType(), key.direction(), key.pmapName() );
   Zub::Ptr< Qos::PolicyMapHwStatus > hwStatus;
   if( auto typeStatus = qosAclSliceHwStatus()->pmapType( key.pmapType() ) ) {
      hwStatus = typeStatus->pmap( Qos::PolicyMapHwStatusKey( key.direction(), key.pmapName() ) );
   }
   bool const wasUnable = qosHelper()->unableToProgram( spKey );

   // The status is per service policy, over all of its ACL groups. A group that did not fit
   // fails it at once; success waits until no group has requests still to be answered.
   bool anyDirty = false;
   bool anyFailed = false;
   bool anyPending = false;
   bool cleanLast = false;
   for( auto it = qosHelper()->pmapState().iter(); it; ++it ) {
      QosPolicyMapKey const& k = it.key();
      if( k.pmapName() != key.pmapName() || k.pmapType() != key.pmapType() ||
          k.direction() != key.direction() ) {
         continue;
      }
      QosPolicyMapState& state = *it.value();
      bool const dirty = state.dirty();
      bool const pending = state.pendingRequests() != 0;
      anyDirty = anyDirty || dirty;
      anyFailed = anyFailed || dirty || state.classBudgetExceeded();
      anyPending = anyPending || pending;
      cleanLast = !dirty;
      if( !dirty && !pending ) state.readyToVerifyIs( true );
   }
   ZUB_TRACE( nevQosTrace, 3, anyDirty << "," << wasUnable );

   if( hwStatus ) {
      if( anyFailed ) {
         // No log here: handleDirty() has written it, and a map over its class budget has none.
         hwStatus->prgmStatusIs( Qos::hwPrgmStatusFail_ );
         hwStatus->prgmStatusErrMessageIs( "Insufficient hardware resources" );
         return;
      }
      if( anyPending ) return;
      hwStatus->prgmStatusIs( Qos::hwPrgmStatusSuccess_ );
      if( !( cleanLast && wasUnable ) ) return;
   } else if( !( cleanLast && wasUnable && !anyFailed && !anyPending ) ) {
      return;
   }

   Zub::String const text = Zub::format( "Policy map %s", key.pmapName().charPtr() );
   switch( key.pmapType() ) {
      case Qos::mapQos_:
         Zub::log( QOS_POLICY_HW_RESOURCE_NORMAL, key.direction(), key.pmapName() );
         break;
      case Qos::mapControlPlane_:
         Zub::log( QOS_COPP_HW_RESOURCE_NORMAL, text, "TCAM" );
         break;
      case Qos::mapPdp_:
         Zub::log( PDP_POLICY_HW_RESOURCE_NORMAL, key.direction(), key.pmapName() );
         break;
      default:
         break;
   }
   qosHelper()->unableToProgramDel( spKey );
}

}  // namespace Nev
