// The policy update queue of QosAclSm: on a chip with asynchronous TCAM operations every change
// that must reach the hardware becomes a request here, and one request at a time is turned into
// helper calls.
#include "NevQos/log/TraceHandles.h"
#include "NevQos/platform/nev/AclData.h"
#include "NevQos/platform/zub/Assert.h"
#include "NevQos/platform/zub/Fleelog.h"
#include "NevQos/policy/QosAclSm.h"
#include "NevQos/policy/QosPolicyMapClassData.h"
#include "NevQos/policy/QosPolicyMapSm.h"

namespace Nev {

namespace {

Zub::Seconds now() {
   return Zub::System::currentTime();
}

}  // namespace

// The setter has dropped a request equal to the last one entered, however long ago.
void QosAclSm::handleEnqueueRequest() {
   QosPolicyUpdateRequest const& request = enqueueRequest();
   if( request.reasonType() > updateReasonConfigVersionUpdateTime ) {
      ZUB_ASSERT( request.policyData() );
   }
   if( auto const& policyData = request.policyData(); policyData && policyData->pmapSm() ) {
      policyData->pmapSm()->requestEntered();
   }
   // Only the move out of idle arms the clock; otherwise finishOperation wakes the loop.
   if( pendingPolicyUpdate_.empty() && asyncState() == asyncNone ) {
      tcamRequestClock()->timeMinIs( now() );
   }
   pendingPolicyUpdate_.enq( request );
}

void QosAclSm::schedulePolicyUpdate() {
   ZUB_ASSERT( qosHelper()->asyncTcamOperationsSupported() );
   if( !pendingPolicyUpdate_.empty() ) tcamRequestClock()->timeMinIs( now() );
}

void QosAclSm::processTcamRequestQueue() {
   if( !initialized() ) return;
   ZUB_ASSERT( qosHelper()->asyncTcamOperationsSupported() );
   Zub::Seconds const deadline = now() + policyQueueReviewPeriod;
   while( !pendingPolicyUpdate_.empty() && now() < deadline ) {
      processPolicyUpdate();
      if( asyncState() == asyncInProgress ) {
         // The result re-arms the clock; a request served earlier in this pass (a config
         // version) may have armed it, and it must not fire while the operation is in flight.
         tcamRequestClock()->timeMinIs( Zub::never );
         return;
      }
   }
   // The pass budget ran out: let other reactors run before the drain goes on.
   if( !pendingPolicyUpdate_.empty() && asyncState() != asyncInProgress ) {
      tcamRequestClock()->timeMinIs( now() );
   }
}

// The match's slot may hold the key and option of a later request of the other family: the
// request is served with its own. A request made without a key is served with the slot's.
void QosAclSm::restoreMatchSlot( QosPolicyUpdateRequest const& request ) {
   if( !request.aclKey() ) return;
   request.policyData()->aclKeyIs( request.aclKey() );
   request.policyData()->matchOptionIs( request.matchOption() );
}

void QosAclSm::processPolicyUpdate() {
   ZUB_ASSERT( asyncState() == asyncNone );
   if( pendingPolicyUpdate_.empty() ) return;
   errorIs( "" );
   QosPolicyUpdateRequest const request = pendingPolicyUpdate_.deq();
   asyncRequestIs( request );

   switch( request.reasonType() ) {
      case updateReasonConfigVersionUpdateTime: {
         // Read now, not when asked: the status claims a version only once every request queued
         // ahead of this one has been served.
         Zub::Seconds version = qosHelper()->qosStatus()->configVersionUpdateTime();
         qosHelper()->qosAclSliceHwStatus()->configVersionUpdateTimeIs( version );
         ZUB_TRACE( nevQosTrace, 2,
                    "processPolicyUpdate"
                          << " Config Version:" << version << " applied." );
         FLEELOG( "QosSm::", "processPolicyUpdate", " Config Version:", version, " applied." );
         schedulePolicyUpdate();
         return;
      }
      case updateReasonPolicyChange:
         // The map left its service policy when it was torn down, and the removals queued ahead
         // of this request, which held it, have all been served: the chip no longer has it.
         ZUB_ASSERT( request.remove() );
         schedulePolicyVerify();
         finishOperation( request );
         return;
      case updateReasonAclChange:
      case updateReasonIntfChange:
         break;
   }

   Zub::Ptr< QosPolicyMapClassData > const policyData = request.policyData();
   restoreMatchSlot( request );
   Zub::Ptr< QosClassData > const classData = policyData->curClassData();
   Qos::ClassMapMatchOption const matchOption = policyData->matchOption();
   Zub::Ptr< QosClassMatchData > const matchData = classData->matchData( matchOption );
   Zub::Ptr< QosPolicyMapState > const pmapState = policyData->pmapSm()->pmapState();
   AclKey const aclKey = policyData->aclKey();
   ZUB_TRACE( nevQosTrace, 5,
              "processing policy update for Aclkey " << aclKey << " reasonType "
                                                     << request.reasonType() << " removal "
                                                     << request.remove() );

   if( request.reasonType() == updateReasonAclChange ) {
      if( request.remove() ) {
         Zub::Ptr< AclData > aclData = matchData ? matchData->aclData( aclKey ) : nullptr;
         ZUB_ASSERT( aclData );
         ZUB_TRACE( nevQosTrace, 5, "Destroy acl in async mode" );
         if( aclData->aclNumber() == -1 ) {
            // The ACL never reached the hardware.
            finishOperation( request );
            return;
         }
         qosHelper()->destroyAcl( *pmapState, *classData, matchOption, aclKey );
         asyncStateIs( asyncInProgress );
      } else {
         if( updateClassData( policyData ) ) {
            finishOperation( request );
            return;
         }
         // Failures come back through the asynchronous result, not these return codes.
         qosHelper()->precreateAcl( *pmapState, *classData, matchOption, aclKey );
         createAclRules( policyData );
         qosHelper()->commitAcl( *classData, matchOption, aclKey );
         asyncStateIs( asyncInProgress );
      }
   } else {
      ZUB_TRACE( nevQosTrace, 5,
                 "processPolicyUpdate"
                       << " Intf update" );
      qosHelper()->updatePortForAcl( *pmapState, *classData, matchOption, aclKey,
                                     request.intfPair(), !request.remove() );
      asyncStateIs( asyncInProgress );
   }

   if( asyncState() == asyncInProgress ) {
      pendingOperationTimeoutClock()->timeMinIs( now() + pendingOperationTimeout() );
   } else {
      finishOperation( request );
   }
}

void QosAclSm::handleAsyncOperationResult() {
   AsyncOperationResult const result = qosHelper()->asyncOperationResult();
   if( result.time() == 0.0 ) return;  // the echo of the clearing write below
   qosHelper()->asyncOperationResultIs( AsyncOperationResult( "", 0.0 ) );
   if( asyncState() == asyncPending || asyncState() == asyncInProgress ) {
      pendingOperationTimeoutClock()->timeMinIs( Zub::never );
      errorIs( result.message() );
      finishOperation( asyncRequest() );
   } else {
      ZUB_TRACE( nevQosTrace, 3, "Async state is not correct " << asyncState() );
   }
}

// An operation in progress is not abandoned by the clock: it stays in flight until its result
// arrives, and the queue waits.
void QosAclSm::handlePendingOperationTimeout() {
   if( !initialized() || asyncState() != asyncPending ) return;
   qosHelper()->handlePendingOperationTimeout();
   errorIs( "Hardware commit timed out" );
   finishOperation( asyncRequest() );
}

void QosAclSm::finishOperation( QosPolicyUpdateRequest const& request ) {
   ZUB_ASSERT( !!request );
   asyncStateIs( asyncNone );
   Zub::Ptr< QosPolicyMapClassData > const policyData = request.policyData();
   Zub::Ptr< QosPolicyMapSm > const pmapSm = policyData ? policyData->pmapSm() : nullptr;
   if( pmapSm ) pmapSm->requestFinished();
   if( request.remove() && request.reasonType() == updateReasonAclChange ) {
      // A list's removal is always queued with the class that owns the list.
      ZUB_ASSERT( policyData );
      restoreMatchSlot( request );
      AclKey const aclKey = policyData->aclKey();
      Zub::Ptr< QosClassData > const classData = policyData->curClassData();
      Qos::ClassMapMatchOption const matchOption = policyData->matchOption();
      Zub::Ptr< QosClassMatchData > const matchData = classData->matchData( matchOption );
      Zub::Ptr< AclData > const aclData = matchData->aclData( aclKey );
      Zub::Ptr< QosPolicyMapState > const pmapState = policyData->pmapSm()->pmapState();
      qosHelper()->cleanupAcl( *pmapState, *classData, matchOption, aclKey );
      aclData->aclNumberIs( -1 );
      aclData->dirtyIs( true );
      aclData->installedIs( false );
      matchData->aclDataDel( aclKey );
      // A match of both families (class-default, DSCP/ECN) holds an IPv4 and an IPv6 list, each
      // removed by a request of its own: the match goes with its last list, or the second
      // removal would find its list gone.
      if( matchData->aclData().empty() ) classData->matchDataDel( matchOption );
   }
   // Where a map's status moves on the asynchronous road: after each of its requests, removals
   // too, since the last one may be a removal. A map that has left its service policy reports
   // nothing: the status is its successor's.
   if( pmapSm && !pmapSm->retired() ) setPolicyMapHwPrgmStatus( pmapSm->key() );
   schedulePolicyUpdate();
}

}  // namespace Nev
