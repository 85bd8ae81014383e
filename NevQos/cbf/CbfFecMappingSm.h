// Class-based forwarding for one VRF: the routing side asks that traffic of an address family
// and DSCP that would use one FEC use another (the override configuration table), and this
// machine puts each override into hardware as a rule through the mapping helper, writing the
// outcome into the override status table.
//
// A rule needs the hardware ids of both FECs, which only the FEC service knows. So the machine
// keeps, for every FEC that some override uses, the set of keys that use it, and keeps the
// request table equal to those FECs: a FEC used twice is requested once, and its request goes
// with the last key. Every change that may affect a key (its configuration, or an answer of the
// service for one of its FECs) puts the key on a review queue; a cooperative task settles the
// keys: programmed (status 1), or waiting for a FEC id (3), or gone; out of room (2) and not ready
// (4) stay on the queue and are tried again, slowly while the hardware is full. One shortage is
// logged once as ROUTING_CBF_HW_RESOURCE_FULL and once as ROUTING_CBF_HW_RESOURCE_NORMAL when
// every key is settled. Start-up drops what an earlier life of the agent left for overrides no
// longer configured, and a verification run compares the status with the hardware's rules.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <unordered_map>

#include "NevQos/helpers/CbfFecMappingHelper.h"
#include "NevQos/platform/entities/FecOverride.h"
#include "NevQos/platform/kesh/TimerTask.h"
#include "NevQos/platform/nev/FecIdToHwFecId.h"
#include "NevQos/platform/nev/VerifyData.h"
#include "NevQos/platform/zub/Attribute.h"
#include "NevQos/platform/zub/Collection.h"
#include "NevQos/platform/zub/Pool.h"
#include "NevQos/types/CbfFecMap.h"

namespace Nev {

// The VRF a machine serves, by the routing side's number.
using VrfId = std::uint32_t;

class CbfFecMappingSm : public Zub::PtrInterface {
 public:
   using OverrideKey = Qos::Glarn::OverrideKey;

   // ---- reactors ----
   class ZubPolicyFecOverrideConfig : public Qos::Glarn::FecOverrideConfig::Notifiee {
    public:
      explicit ZubPolicyFecOverrideConfig( CbfFecMappingSm* sm ) : sm_( sm ) {}
      void onOverride( OverrideKey const& key ) override {
         if( !zombie() ) sm_->handlePolicyOverrideConfig( key );
      }
      void onOverridezubImmediate() override {
         if( !zombie() ) sm_->handlePolicyOverrideConfig();
      }

    private:
      CbfFecMappingSm* sm_;
   };
   class ZubHwFecIdResponse : public FecIdToHwFecIdResponse::Notifiee {
    public:
      explicit ZubHwFecIdResponse( CbfFecMappingSm* sm ) : sm_( sm ) {}
      void onHwFecId( Glarn::Fib::FecId const& fecId ) override {
         if( !zombie() ) sm_->handleHwFecIdResponse( fecId );
      }
      void onHwFecIdzubImmediate() override {
         if( !zombie() ) sm_->handleHwFecIdResponse();
      }

    private:
      CbfFecMappingSm* sm_;
   };
   class ZubVerifyData : public VerifyData::Notifiee {
    public:
      explicit ZubVerifyData( CbfFecMappingSm* sm ) : sm_( sm ) {}
      void onVerify() override {
         if( !zombie() ) sm_->handleVerify();
      }

    private:
      CbfFecMappingSm* sm_;
   };
   class ZubPolicyOverrideTask : public Kesh::Task::Notifiee {
    public:
      explicit ZubPolicyOverrideTask( CbfFecMappingSm* sm ) : sm_( sm ) {}
      void onTaskRun() override {
         if( !zombie() ) sm_->doReviewPolicyOverride();
      }

    private:
      CbfFecMappingSm* sm_;
   };

   // Stores the inputs, then starts: creates the review task and walks the configuration.
   CbfFecMappingSm( VrfId vrfId,
                    Zub::Ptr< Qos::Glarn::FecOverrideConfig const > const& policyFecOverrideConfig,
                    Zub::Ptr< Qos::Glarn::FecOverrideStatus > const& policyFecOverrideStatus,
                    Zub::Ptr< FecIdToHwFecIdRequest > const& hwFecIdRequest,
                    Zub::Ptr< FecIdToHwFecIdResponse const > const& hwFecIdResponse,
                    Zub::Ptr< Kesh::TaskScheduler > const& scheduler,
                    Zub::Ptr< NevHelper::CbfFecMappingHelper > const& mappingHelper );
   // Withdraws every FEC request first (handleDeletion); status and rules stay.
   ~CbfFecMappingSm() override;

   VrfId vrfId() const { return vrfId_; }
   Zub::Ptr< Qos::Glarn::FecOverrideConfig const > const& policyFecOverrideConfig() const {
      return policyFecOverrideConfig_.get();
   }
   Zub::Ptr< Qos::Glarn::FecOverrideStatus > const& policyFecOverrideStatus() const {
      return policyFecOverrideStatus_;
   }
   Zub::Ptr< FecIdToHwFecIdRequest > const& hwFecIdRequest() const { return hwFecIdRequest_; }
   Zub::Ptr< FecIdToHwFecIdResponse const > const& hwFecIdResponse() const {
      return hwFecIdResponse_.get();
   }
   Zub::Ptr< Kesh::TaskScheduler > const& scheduler() const { return scheduler_; }
   Zub::Ptr< NevHelper::CbfFecMappingHelper > const& mappingHelper() const {
      return mappingHelper_;
   }

   // ---- interest tracking ----
   // The configuration as last read, so that a deleted or changed entry can still be seen.
   Zub::Collection< OverrideKey, Qos::Glarn::FecOverrideEntry > const& configCache() const {
      return configCache_;
   }
   // By FEC, the keys that use it; hashed, as a walk of the configuration in key order meets the
   // FECs in turn.
   using FecUsers =
         std::unordered_map< Glarn::Fib::FecId, Zub::Ptr< FecIdToOverrideKey >,
                             std::hash< Glarn::Fib::FecId >, std::equal_to< Glarn::Fib::FecId >,
                             Zub::Pool::Allocator< std::pair< Glarn::Fib::FecId const,
                                                              Zub::Ptr< FecIdToOverrideKey > > > >;
   FecUsers const& fecIdToOverrideKey() const { return fecIdToOverrideKey_; }
   Zub::Collection< OverrideKey, Zub::Ptr< CbfFecMapRule > > const& cbfFecMapRuleCache() const {
      return cbfFecMapRuleCache_;
   }
   void handlePolicyOverrideConfig();
   void handlePolicyOverrideConfig( OverrideKey const& key );
   void updateInternalMappingAndFecRequest( Qos::Glarn::FecOverrideEntry const& entry,
                                            bool isDelete );
   // True when the FEC had keys before the change and still has some after it.
   bool updateFecIdToOverrideKey( Glarn::Fib::FecId fecId, OverrideKey const& key, bool isDelete );
   // Requests the FEC's hardware id while keys use it, and withdraws the request after the last;
   // `stillUsed` is what updateFecIdToOverrideKey said, and means the request stands already.
   void maybeUpdateFecRequest( Glarn::Fib::FecId fecId, bool stillUsed );
   void handleHwFecIdResponse();
   void handleHwFecIdResponse( Glarn::Fib::FecId fecId );

   // ---- review ----
   Zub::Collection< OverrideKey, bool > const& policyOverrideReviewQueue() const {
      return policyOverrideReviewQueue_;
   }
   // Queues `key`; the task is scheduled only when the key was not queued already.
   void policyOverrideReviewQueueIs( OverrideKey const& key, bool );
   Zub::Ptr< Kesh::TimerTask > const& policyOverrideTask() const { return policyOverrideTask_; }
   void policyOverrideTaskIs( Zub::Ptr< Kesh::TaskScheduler > const& scheduler,
                              Kesh::TaskPriority priority, Zub::String const& name );
   Zub::Seconds defaultDelay() const { return defaultDelay_; }
   Zub::Seconds longDelay() const { return longDelay_; }
   bool resourceFull() const { return resourceFull_; }
   // One run of the review task: goes on with the review under way, from the key after the last
   // one handled, or starts a new one at the first queued key. A review tries every queued key
   // once, however many runs it takes, and only its end picks when the next review comes.
   void doReviewPolicyOverride();
   // True when the key is settled and can leave the queue.
   bool processPolicyOverride( OverrideKey const& overrideKey );
   void updateResourceFullAndSyslog( bool resourceFullState );

   // ---- verification ----
   // The platform's verify agent: each run it starts compares the status with the hardware.
   Zub::Ptr< VerifyData > const& verifyData() const { return verifyData_.get(); }
   void verifyDataIs( Zub::Ptr< VerifyData > const& verifyData ) {
      verifyData_.is( verifyData, this, false );
   }
   // Every settled override whose status says programmed has its rule in the hardware, under
   // the rule id of the status and with the hardware FEC ids it was given; the hardware holds no
   // rule that no such override, nor one still under review, owns. Mismatches are reported.
   void handleVerify();

   // ---- lifecycle ----
   bool initialized() const { return initialized_; }
   void handleInitialized();
   void handleDeletion();
   void zubDoZombieReactors( bool zombie );

 private:
   // A key's configuration as it now stands: its entry, or null when it is not configured.
   void overrideConfigIs( OverrideKey const& key, Qos::Glarn::FecOverrideEntry const* configured );
   void configCacheDel( OverrideKey const& key ) { configCache_.erase( key ); }
   // The key's rule, made when missing.
   Zub::Ptr< CbfFecMapRule > cbfFecMapRuleCacheIs( OverrideKey const& key );
   void cbfFecMapRuleCacheDel( OverrideKey const& key ) { cbfFecMapRuleCache_.erase( key ); }
   // The status written for a key that is programmed, refused or waiting.
   void statusIs( OverrideKey const& key, Qos::Glarn::FecOverrideProgramStatus status,
                  Qos::Hardware::FecOverrideRuleId hwRuleId );
   // The hardware id of `fecId`, if the FEC service knows it.
   bool hwFecIdOf( Glarn::Fib::FecId fecId, std::uint64_t& hwFecId ) const;
   // Programs the rule of a key whose two FECs are known; true when it is in hardware.
   bool programRule( OverrideKey const& key, std::uint64_t hwFecId,
                     std::uint64_t overridingHwFecId );
   // At start-up: drops the status, and the rule, of overrides no longer configured, and takes
   // over a shortage that the status shows.
   void sweepStaleOverrideStatus();
   // The end of a review: the shortage is over when every key is settled; otherwise the next
   // review is due after the delay that the review's last key asks for.
   void finishReview();

   VrfId vrfId_;
   Zub::Input< Qos::Glarn::FecOverrideConfig const, ZubPolicyFecOverrideConfig >
         policyFecOverrideConfig_;
   Zub::Ptr< Qos::Glarn::FecOverrideStatus > policyFecOverrideStatus_;
   Zub::Ptr< FecIdToHwFecIdRequest > hwFecIdRequest_;
   Zub::Input< FecIdToHwFecIdResponse const, ZubHwFecIdResponse > hwFecIdResponse_;
   Zub::Ptr< Kesh::TaskScheduler > scheduler_;
   Zub::Ptr< NevHelper::CbfFecMappingHelper > mappingHelper_;
   Zub::Collection< OverrideKey, Qos::Glarn::FecOverrideEntry > configCache_;
   FecUsers fecIdToOverrideKey_;
   Zub::Collection< OverrideKey, Zub::Ptr< CbfFecMapRule > > cbfFecMapRuleCache_;
   Zub::Collection< OverrideKey, bool > policyOverrideReviewQueue_;
   Zub::Input< VerifyData, ZubVerifyData > verifyData_;
   Zub::Ptr< Kesh::TimerTask > policyOverrideTask_;
   Zub::Ptr< ZubPolicyOverrideTask > policyOverrideTaskReactor_;
   // The last key handled by a review that yielded; none between reviews.
   std::optional< OverrideKey > reviewCursor_;
   // Whether the last key handled by the review under way was settled.
   bool reviewLastSettled_ = true;
   // A key was queued behind the cursor, so the review under way does not reach it.
   bool reviewMissedKey_ = false;
   Zub::Seconds defaultDelay_ = 0.01;
   Zub::Seconds longDelay_ = 1.0;
   bool resourceFull_ = false;
   bool initialized_ = false;
};

// The agent's entry point, one per VRF, with the parameters of the constructor.
Zub::Ptr< CbfFecMappingSm > cbfFecMappingSmFactory(
      VrfId vrfId, Zub::Ptr< Qos::Glarn::FecOverrideConfig const > const& policyFecOverrideConfig,
      Zub::Ptr< Qos::Glarn::FecOverrideStatus > const& policyFecOverrideStatus,
      Zub::Ptr< FecIdToHwFecIdRequest > const& hwFecIdRequest,
      Zub::Ptr< FecIdToHwFecIdResponse const > const& hwFecIdResponse,
      Zub::Ptr< Kesh::TaskScheduler > const& scheduler,
      Zub::Ptr< NevHelper::CbfFecMappingHelper > const& mappingHelper );

}  // namespace Nev
