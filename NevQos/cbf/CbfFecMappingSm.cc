#include "NevQos/cbf/CbfFecMappingSm.h"

#include <map>
#include <sstream>
#include <utility>

#include "NevQos/log/QosLogHandles.h"
#include "NevQos/log/TraceHandles.h"
#include "NevQos/platform/zub/Assert.h"
#include "NevQos/platform/zub/Fleelog.h"
#include "NevQos/platform/zub/Log.h"

namespace Nev {

namespace {

using Qos::Glarn::FecOverrideEntry;
using Qos::Glarn::FecOverrideStatusEntry;
using Qos::Glarn::OverrideKey;

unsigned afOf( OverrideKey const& key ) {
   return unsigned( key.af );
}

unsigned dscpOf( OverrideKey const& key ) {
   return key.dscp.value();
}

}  // namespace

CbfFecMappingSm::CbfFecMappingSm(
      VrfId vrfId, Zub::Ptr< Qos::Glarn::FecOverrideConfig const > const& policyFecOverrideConfig,
      Zub::Ptr< Qos::Glarn::FecOverrideStatus > const& policyFecOverrideStatus,
      Zub::Ptr< FecIdToHwFecIdRequest > const& hwFecIdRequest,
      Zub::Ptr< FecIdToHwFecIdResponse const > const& hwFecIdResponse,
      Zub::Ptr< Kesh::TaskScheduler > const& scheduler,
      Zub::Ptr< NevHelper::CbfFecMappingHelper > const& mappingHelper )
    : vrfId_( vrfId )
    , policyFecOverrideStatus_( policyFecOverrideStatus )
    , hwFecIdRequest_( hwFecIdRequest )
    , scheduler_( scheduler )
    , mappingHelper_( mappingHelper ) {
   // handleInitialized() walks the configuration itself.
   constexpr bool catchUp = false;
   policyFecOverrideConfig_.is( policyFecOverrideConfig, this, catchUp );
   hwFecIdResponse_.is( hwFecIdResponse, this, catchUp );
   handleInitialized();
}

CbfFecMappingSm::~CbfFecMappingSm() {
   handleDeletion();
   zubDoZombieReactors( true );
}

// ---- lifecycle ----

void CbfFecMappingSm::handleInitialized() {
   ZUB_TRACE( nevCbfFecMappingSmTrace, 0, "handleInitialized vrf " << vrfId() );
   policyOverrideTaskIs( scheduler(), Kesh::TaskPriority::high, "policyOverrideTask" );
   sweepStaleOverrideStatus();
   initialized_ = true;
   handlePolicyOverrideConfig();
   // A shortage that stood when the agent went down ends, once every key is settled, with the
   // NORMAL that its FULL is owed, even with nothing configured.
   if( resourceFull() ) policyOverrideTask()->scheduleTask();
}

// Left-overs of an earlier life of the agent: the status of an override removed while it was
// down goes, and its rule with it if the status says programmed (a driver may have kept its rules
// across the restart). A configured override keeps its status until its review.
void CbfFecMappingSm::sweepStaleOverrideStatus() {
   for( auto it = policyFecOverrideStatus()->iter( Glarn::IterHint::sequential ); it; ++it ) {
      FecOverrideStatusEntry const status = it.value();
      if( status.status == Qos::Glarn::fecOverrideOutOfResource ) resourceFull_ = true;
      if( policyFecOverrideConfig()->has( status.key ) ) continue;
      ZUB_TRACE( nevCbfFecMappingSmTrace, 2, " deleting stale fecOverrideStatus " << status.key );
      if( status.status == Qos::Glarn::fecOverrideProgrammed ) {
         mappingHelper()->deleteMapping( status.key );
      }
      policyFecOverrideStatus()->overrideDel( status.key );
   }
}

void CbfFecMappingSm::handleDeletion() {
   ZUB_TRACE( nevCbfFecMappingSmTrace, 0, "handleDeletion vrf " << vrfId() );
   initialized_ = false;
   // The FEC service stops tracking ids for a VRF that went away. Status and rules stay.
   if( hwFecIdRequest() ) hwFecIdRequest()->hwFecIdRequestDelAll();
}

void CbfFecMappingSm::zubDoZombieReactors( bool zombie ) {
   if( this->zombie() == zombie ) return;
   zombieIs( zombie );
   policyFecOverrideConfig_.zombieIs( zombie );
   hwFecIdResponse_.zombieIs( zombie );
   verifyData_.zombieIs( zombie );
   if( policyOverrideTaskReactor_ ) policyOverrideTaskReactor_->zombieIs( zombie );
}

// ---- interest tracking ----

void CbfFecMappingSm::handlePolicyOverrideConfig() {
   ZUB_TRACE( nevCbfFecMappingSmTrace, 0, "handlePolicyOverrideConfig" );
   if( !initialized() ) return;
   // The walk holds each entry already: no lookup per key.
   for( auto it = policyFecOverrideConfig()->iter( Glarn::IterHint::sequential ); it; ++it ) {
      OverrideKey const& key = it.key();
      PAIRLOG( nevCbfFecMappingSmTrace, 0, "handlePolicyOverrideConfig", " af: ", afOf( key ),
               " dscp: ", dscpOf( key ), " fecId: ", key.fecId );
      overrideConfigIs( key, &it.value() );
   }
}

void CbfFecMappingSm::handlePolicyOverrideConfig( OverrideKey const& key ) {
   if( !initialized() ) return;
   PAIRLOG( nevCbfFecMappingSmTrace, 0, "handlePolicyOverrideConfig", " af: ", afOf( key ),
            " dscp: ", dscpOf( key ), " fecId: ", key.fecId );
   bool found = false;
   FecOverrideEntry entry;
   policyFecOverrideConfig()->safeLookup( key, found, entry );
   overrideConfigIs( key, found ? &entry : nullptr );
}

void CbfFecMappingSm::overrideConfigIs( OverrideKey const& key,
                                        FecOverrideEntry const* configured ) {
   FecOverrideEntry entry = configured ? *configured : FecOverrideEntry{};
   bool const isDelete = !configured;
   if( isDelete ) {
      // Without a cached copy the default entry stands in: its FECs are not the key's, so
      // no FEC's interest changes, and the key is still reviewed.
      FecOverrideEntry const* cached = configCache().find( key );
      entry = cached ? *cached : FecOverrideEntry{};
   }
   updateInternalMappingAndFecRequest( entry, isDelete );
   policyOverrideReviewQueueIs( key, true );
}

void CbfFecMappingSm::updateInternalMappingAndFecRequest( FecOverrideEntry const& entry,
                                                          bool isDelete ) {
   OverrideKey const& key = entry.key;
   PAIRLOG( nevCbfFecMappingSmTrace, 0, "af: ", afOf( key ), " dscp: ", dscpOf( key ),
            " fecId: ", key.fecId, " overriding fecId: ", entry.overridingFecId,
            " isDelete: ", isDelete );
   if( isDelete ) {
      configCacheDel( key );
      cbfFecMapRuleCacheDel( key );
   } else {
      // The driver's rule is made when the key is first programmed.
      auto const [ cached, added ] = configCache_.insert( key, entry );
      if( !added ) {
         // The FEC that took over until now loses the key.
         Glarn::Fib::FecId const oldOverridingFecId = cached->overridingFecId;
         *cached = entry;
         if( oldOverridingFecId != entry.overridingFecId ) {
            bool const stillUsed = updateFecIdToOverrideKey( oldOverridingFecId, key, true );
            maybeUpdateFecRequest( oldOverridingFecId, stillUsed );
         }
      }
   }
   bool const fecStillUsed = updateFecIdToOverrideKey( key.fecId, key, isDelete );
   bool const overridingStillUsed =
         updateFecIdToOverrideKey( entry.overridingFecId, key, isDelete );
   maybeUpdateFecRequest( key.fecId, fecStillUsed );
   maybeUpdateFecRequest( entry.overridingFecId, overridingStillUsed );
}

bool CbfFecMappingSm::updateFecIdToOverrideKey( Glarn::Fib::FecId fecId, OverrideKey const& key,
                                                bool isDelete ) {
   if( !isDelete ) {
      auto const [ users, added ] = fecIdToOverrideKey_.try_emplace( fecId );
      if( added ) users->second = Zub::make< FecIdToOverrideKey >( fecId );
      users->second->mappingIs( key, true );
      return !added;
   }
   auto const found = fecIdToOverrideKey_.find( fecId );
   if( found == fecIdToOverrideKey_.end() ) return false;
   found->second->mappingDel( key );
   if( !found->second->mapping().empty() ) return true;
   fecIdToOverrideKey_.erase( found );
   return false;
}

void CbfFecMappingSm::maybeUpdateFecRequest( Glarn::Fib::FecId fecId, bool stillUsed ) {
   ZUB_TRACE( nevCbfFecMappingSmTrace, 0, "maybeUpdateFecRequest fecId " << fecId );
   // A FEC that had keys before this change and still has them was requested with its first key.
   if( stillUsed ) return;
   if( fecIdToOverrideKey().contains( fecId ) ) {
      if( hwFecIdRequest()->has( fecId ) ) return;
      PAIRLOG( nevCbfFecMappingSmTrace, 0, " Adding request for fecId ", fecId );
      hwFecIdRequest()->hwFecIdRequestIs( HwFecIdRequest{ fecId } );
      return;
   }
   PAIRLOG( nevCbfFecMappingSmTrace, 0, " Removing request for fecId ", fecId );
   hwFecIdRequest()->hwFecIdRequestDel( fecId );
}

void CbfFecMappingSm::handleHwFecIdResponse() {
   ZUB_TRACE( nevCbfFecMappingSmTrace, 0, "handleHwFecIdResponse" );
   for( auto it = hwFecIdResponse()->iter( Glarn::IterHint::sequential ); it; ++it )
      handleHwFecIdResponse( it.key() );
}

// A FEC that appears, changes its hardware id or vanishes: every key that uses it is reviewed.
void CbfFecMappingSm::handleHwFecIdResponse( Glarn::Fib::FecId fecId ) {
   ZUB_TRACE( nevCbfFecMappingSmTrace, 0, " fecId: " << fecId );
   if( !initialized() ) return;
   auto const users = fecIdToOverrideKey().find( fecId );
   if( users == fecIdToOverrideKey().end() ) return;
   // A copy: reviews do not change the set, but the walk must not depend on that.
   Zub::Ptr< FecIdToOverrideKey > const keep = users->second;
   for( OverrideKey const& key : keep->mapping() )
      policyOverrideReviewQueueIs( key, true );
}

Zub::Ptr< CbfFecMapRule > CbfFecMappingSm::cbfFecMapRuleCacheIs( OverrideKey const& key ) {
   auto const [ rule, added ] = cbfFecMapRuleCache_.insert( key, nullptr );
   if( added ) *rule = Zub::make< CbfFecMapRule >( key );
   return *rule;
}

// ---- review ----

void CbfFecMappingSm::policyOverrideTaskIs( Zub::Ptr< Kesh::TaskScheduler > const& scheduler,
                                            Kesh::TaskPriority priority, Zub::String const& name ) {
   policyOverrideTask_ = Zub::make< Kesh::TimerTask >( scheduler, priority, name );
   policyOverrideTaskReactor_ = Zub::make< ZubPolicyOverrideTask >( this );
   policyOverrideTaskReactor_->notifierIsWithoutCatchUp( policyOverrideTask_ );
}

void CbfFecMappingSm::policyOverrideReviewQueueIs( OverrideKey const& key, bool ) {
   // Queued already: set() finds the same value and says so.
   if( !policyOverrideReviewQueue_.set( key, true ) ) return;
   if( reviewCursor_ && !( *reviewCursor_ < key ) ) reviewMissedKey_ = true;
   policyOverrideTask()->scheduleTask();
}

void CbfFecMappingSm::doReviewPolicyOverride() {
   ZUB_TRACE( nevCbfFecMappingSmTrace, 0,
              "doReviewPolicyOverride, " << policyOverrideReviewQueue().size() << " queued" );
   if( !initialized() ) return;
   Kesh::TimerTask& task = *policyOverrideTask();
   auto it = policyOverrideReviewQueue().iter();
   if( reviewCursor_ ) {
      // The cursor's key may have left the queue meanwhile; the walk goes on after it either way.
      it = policyOverrideReviewQueue().iterFrom( *reviewCursor_ );
      if( it && it.key() == *reviewCursor_ ) ++it;
      reviewCursor_.reset();
   } else {
      reviewLastSettled_ = true;
   }
   while( it ) {
      OverrideKey const key = it.key();
      reviewLastSettled_ = processPolicyOverride( key );
      task.taskWorkCountInc( 1 );
      if( reviewLastSettled_ ) {
         it = policyOverrideReviewQueue_.eraseAt( it );
      } else {
         ++it;
      }
      if( it && task.taskShouldYield() ) {
         // The next run goes on after this key, so that every key is tried once per review.
         reviewCursor_ = key;
         task.scheduleTask();
         return;
      }
   }
   finishReview();
}

void CbfFecMappingSm::finishReview() {
   bool const missedKey = std::exchange( reviewMissedKey_, false );
   if( policyOverrideReviewQueue().empty() ) {
      // The shortage is over only once every key is settled.
      updateResourceFullAndSyslog( false );
      return;
   }
   if( missedKey ) {
      // A key queued behind a review that had yielded is due now, as it would have been had
      // the review not yielded.
      policyOverrideTask()->scheduleTask();
      return;
   }
   // Only the last key of the review decides how soon the next one comes.
   Zub::Seconds delay = defaultDelay();
   if( !reviewLastSettled_ && resourceFull() ) {
      delay = longDelay();
      PAIRLOG( nevCbfFecMappingSmTrace, 2,
               "Entry remaining in review queue, reschedule review after ", delay, " seconds" );
   }
   policyOverrideTask()->scheduleTaskDelay( delay );
}

bool CbfFecMappingSm::processPolicyOverride( OverrideKey const& overrideKey ) {
   ZUB_ASSERT( initialized() );
   PAIRLOG( nevCbfFecMappingSmTrace, 0, "processPolicyOverride", " af: ", afOf( overrideKey ),
            " dscp: ", dscpOf( overrideKey ), " fecId: ", overrideKey.fecId );
   bool configured = false;
   FecOverrideEntry entry;
   policyFecOverrideConfig()->safeLookup( overrideKey, configured, entry );
   if( configured ) {
      std::uint64_t hwFecId = 0;
      std::uint64_t overridingHwFecId = 0;
      bool const fecKnown = hwFecIdOf( overrideKey.fecId, hwFecId );
      if( !fecKnown ) {
         ZUB_TRACE( nevCbfFecMappingSmTrace, 1,
                    " Fec not found for fecId to override: " << overrideKey.fecId );
         FLEELOG( " Fec not found for fecId to override" );
      }
      if( !hwFecIdOf( entry.overridingFecId, overridingHwFecId ) ) {
         PAIRLOG( nevCbfFecMappingSmTrace, 1,
                  " Fec not found for overriding fecId: ", entry.overridingFecId );
      } else if( fecKnown ) {
         return programRule( overrideKey, hwFecId, overridingHwFecId );
      }
   }
   // Not programmable, or not wanted any more: a rule in hardware must go.
   bool found = false;
   FecOverrideStatusEntry status;
   policyFecOverrideStatus()->safeLookup( overrideKey, found, status );
   if( found && status.status == Qos::Glarn::fecOverrideProgrammed ) {
      mappingHelper()->deleteMapping( overrideKey );
      PAIRLOG( nevCbfFecMappingSmTrace, 1, " mapping not programmed in hardware" );
   }
   if( configured ) {
      statusIs( overrideKey, Qos::Glarn::fecOverrideWaitingForHwFecId,
                Qos::Hardware::invalidFecOverrideRuleId );
   } else {
      policyFecOverrideStatus()->overrideDel( overrideKey );
   }
   // Settled: an answer for its FEC brings a waiting key back.
   return true;
}

bool CbfFecMappingSm::programRule( OverrideKey const& key, std::uint64_t hwFecId,
                                   std::uint64_t overridingHwFecId ) {
   Zub::Ptr< CbfFecMapRule > const rule = cbfFecMapRuleCacheIs( key );
   rule->hwFecIdIs( hwFecId );
   rule->overridingHwFecIdIs( overridingHwFecId );
   switch( mappingHelper()->createOrUpdateMapping( *rule ) ) {
      case NevHelper::cbfMapUpdateSuccess:
         PAIRLOG( nevCbfFecMappingSmTrace, 1, " Programming success" );
         statusIs( key, Qos::Glarn::fecOverrideProgrammed,
                   mappingHelper()->hwFecOverrideRuleId( key ) );
         return true;
      case NevHelper::cbfMapUpdateNotReady:
         PAIRLOG( nevCbfFecMappingSmTrace, 1, " Hardware not ready, retry later" );
         statusIs( key, Qos::Glarn::fecOverrideHwNotReady,
                   Qos::Hardware::invalidFecOverrideRuleId );
         return false;
      case NevHelper::cbfMapUpdateFailed:
         PAIRLOG( nevCbfFecMappingSmTrace, 1, " Programming failed, out of resource in hardware" );
         updateResourceFullAndSyslog( true );
         statusIs( key, Qos::Glarn::fecOverrideOutOfResource,
                   Qos::Hardware::invalidFecOverrideRuleId );
         return false;
   }
   ZUB_ASSERT_TEXT( false, "false" );
   return false;
}

void CbfFecMappingSm::statusIs( OverrideKey const& key, Qos::Glarn::FecOverrideProgramStatus status,
                                Qos::Hardware::FecOverrideRuleId hwRuleId ) {
   policyFecOverrideStatus()->overrideIs( FecOverrideStatusEntry{ key, status, hwRuleId } );
}

bool CbfFecMappingSm::hwFecIdOf( Glarn::Fib::FecId fecId, std::uint64_t& hwFecId ) const {
   bool found = false;
   FecToHwFecId response;
   hwFecIdResponse()->safeLookup( fecId, found, response );
   hwFecId = response.hwFecId;
   return found;
}

void CbfFecMappingSm::updateResourceFullAndSyslog( bool resourceFullState ) {
   ZUB_TRACE( nevCbfFecMappingSmTrace, 0, "updateResourceFullAndSyslog " << resourceFullState );
   if( resourceFullState == resourceFull() ) return;
   resourceFull_ = resourceFullState;
   if( resourceFullState ) {
      Zub::log( ROUTING_CBF_HW_RESOURCE_FULL );
   } else {
      Zub::log( ROUTING_CBF_HW_RESOURCE_NORMAL );
   }
}

// ---- verification ----

void CbfFecMappingSm::handleVerify() {
   ZUB_TRACE( nevCbfFecMappingSmTrace, 3, "handleVerify" );
   if( !initialized() ) return;
   VerifyData* const report = verifyData().ptr();
   std::map< OverrideKey, NevHelper::CbfFecMapHwRule > unowned;
   for( NevHelper::CbfFecMapHwRule const& rule : mappingHelper()->hwFecOverrideRules() )
      unowned[ rule.key ] = rule;
   for( auto it = policyFecOverrideStatus()->iter( Glarn::IterHint::sequential ); it; ++it ) {
      OverrideKey const& key = it.key();
      auto const held = unowned.find( key );
      bool const inHardware = held != unowned.end();
      NevHelper::CbfFecMapHwRule const rule =
            inHardware ? held->second : NevHelper::CbfFecMapHwRule{};
      // A key under review may hold a rule whatever its status says; the review settles it.
      bool const reviewing = policyOverrideReviewQueue().has( key );
      if( reviewing || it.value().status != Qos::Glarn::fecOverrideProgrammed ) {
         if( reviewing && inHardware ) unowned.erase( held );
         continue;
      }
      Qos::Hardware::FecOverrideRuleId const hwRuleId = it.value().hwRuleId;
      std::ostringstream text;
      text << "FEC override " << key << " is programmed as rule " << hwRuleId;
      if( !inHardware ) {
         text << " but the hardware holds no rule for it";
         NEV_VERIFY_FAILURE( report, Zub::String( text.str() ) );
         continue;
      }
      unowned.erase( held );
      auto const* given = cbfFecMapRuleCache().find( key );
      if( rule.hwRuleId != hwRuleId ) {
         text << " but the hardware holds it as rule " << rule.hwRuleId;
      } else if( !given ) {
         text << " but is not configured";
      } else if( rule.hwFecId != ( *given )->hwFecId() ||
                 rule.overridingHwFecId != ( *given )->overridingHwFecId() ) {
         text << " but the hardware FECs are " << rule.hwFecId << " -> " << rule.overridingHwFecId
              << ", expected " << ( *given )->hwFecId() << " -> "
              << ( *given )->overridingHwFecId();
      } else {
         continue;
      }
      NEV_VERIFY_FAILURE( report, Zub::String( text.str() ) );
   }
   for( auto const& [ key, rule ] : unowned ) {
      std::ostringstream text;
      text << "FEC override " << key << " has rule " << rule.hwRuleId
           << " in the hardware but is not programmed";
      NEV_VERIFY_FAILURE( report, Zub::String( text.str() ) );
   }
}

Zub::Ptr< CbfFecMappingSm > cbfFecMappingSmFactory(
      VrfId vrfId, Zub::Ptr< Qos::Glarn::FecOverrideConfig const > const& policyFecOverrideConfig,
      Zub::Ptr< Qos::Glarn::FecOverrideStatus > const& policyFecOverrideStatus,
      Zub::Ptr< FecIdToHwFecIdRequest > const& hwFecIdRequest,
      Zub::Ptr< FecIdToHwFecIdResponse const > const& hwFecIdResponse,
      Zub::Ptr< Kesh::TaskScheduler > const& scheduler,
      Zub::Ptr< NevHelper::CbfFecMappingHelper > const& mappingHelper ) {
   return Zub::make< CbfFecMappingSm >( vrfId, policyFecOverrideConfig, policyFecOverrideStatus,
                                        hwFecIdRequest, hwFecIdResponse, scheduler, mappingHelper );
}

}  // namespace Nev
