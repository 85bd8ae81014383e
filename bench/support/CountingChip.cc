#include "bench/support/CountingChip.h"

#include <utility>

#include "NevQos/platform/nev/AsyncOperation.h"
#include "NevQos/platform/zub/ActivityManager.h"
#include "NevQos/platform/zub/Clock.h"

namespace Bench {

char const* modeName( Mode mode ) {
   return mode == Mode::accept ? "accept" : "expand";
}

namespace {

// A port field that only a range checker matches: no mask, and not the whole port space.
bool needsChecker( std::uint16_t mask, std::uint16_t low, std::uint16_t high ) {
   return mask == 0 && !( low == 0 && high == 0xffff );
}

}  // namespace

// The helper behind the counting decorator: the answers a chip that holds nothing gives where
// the contract's defaults would stop the process or answer otherwise.
class CountingChip::Answers : public NevHelper::QosAclHelper {
 public:
   Answers( Zub::Ptr< Qos::Status const > qosStatus,
            Zub::Ptr< Qos::AclSliceHwStatus > sliceHwStatus,
            Zub::Ptr< Acl::Config const > aclConfig, Mode mode, bool async )
       : QosAclHelper( std::move( qosStatus ), std::move( sliceHwStatus ), std::move( aclConfig ) )
       , mode_( mode ) {
      asyncTcamOperationsSupportedIs( async );
      if( async ) {
         completer_ = Zub::make< Completer >( this );
         completer_->notifierIs( Zub::activityManager()->clock() );
      }
   }

   // The refusals of the expand mode, which the count of calls cannot tell.
   std::uint64_t refused = 0;
   // The counter queries answered, which the answers count up.
   std::uint64_t queries = 0;

   Nev::AclCreateError createIpAclSubrule(
         Acl::AclType, Acl::RuleConfig const&, Acl::UniqueId const&, Nev::QosPolicyMapState const&,
         Nev::QosClassData const&, Nev::AclKey const&, std::uint32_t, std::uint32_t, std::uint16_t,
         std::uint16_t srcMask, std::uint16_t, std::uint16_t dstMask, std::uint16_t srcLow,
         std::uint16_t srcHigh, std::uint16_t dstLow, std::uint16_t dstHigh, std::uint16_t,
         std::uint16_t, std::uint16_t, std::uint16_t, std::uint8_t, bool, std::uint8_t,
         std::uint8_t ) override {
      if( mode_ == Mode::expand && ( needsChecker( srcMask, srcLow, srcHigh ) ||
                                     needsChecker( dstMask, dstLow, dstHigh ) ) ) {
         ++refused;
         return Nev::aclCreateErrorTooManyL4PortRanges;
      }
      return Nev::aclCreateErrorNone;
   }
   Nev::AclCreateError createIpFragRule( Nev::QosPolicyMapState const&, Nev::QosClassData const&,
                                         Nev::AclKey const&, Acl::IpRuleConfig const&,
                                         Acl::UniqueId const&, std::uint32_t, std::uint32_t,
                                         std::uint8_t, std::uint8_t ) override {
      return Nev::aclCreateErrorNone;
   }
   Nev::AclCreateError createDefaultRule( Nev::QosPolicyMapState const&, Nev::QosClassData const&,
                                          Qos::ClassMapMatchOption, Nev::AclKey const& ) override {
      return Nev::aclCreateErrorNone;
   }
   Nev::AclCreateError createL2ParamsRule( Nev::QosPolicyMapState const&, Nev::QosClassData const&,
                                           Qos::ClassMapMatchOption, Nev::AclKey const&,
                                           std::uint32_t ) override {
      return Nev::aclCreateErrorNone;
   }
   Nev::AclCreateError createDscpEcnRule( Nev::QosPolicyMapState const&, Nev::QosClassData const&,
                                          Qos::ClassMapMatchOption, Nev::AclKey const&,
                                          std::uint32_t ) override {
      return Nev::aclCreateErrorNone;
   }
   Nev::AclCreateError commitAcl( Nev::QosClassData const&, Qos::ClassMapMatchOption,
                                  Nev::AclKey const& ) override {
      startOperation();
      return Nev::aclCreateErrorNone;
   }
   void updatePortForAcl( Nev::QosPolicyMapState const&, Nev::QosClassData const&,
                          Qos::ClassMapMatchOption, Nev::AclKey const&, Qos::IntfPairKey const&,
                          bool ) override {
      startOperation();
   }
   void destroyAcl( Nev::QosPolicyMapState const&, Nev::QosClassData const&,
                    Qos::ClassMapMatchOption, Nev::AclKey const& ) override {
      startOperation();
   }
   void cleanupAcl( Nev::QosPolicyMapState const&, Nev::QosClassData const&,
                    Qos::ClassMapMatchOption, Nev::AclKey const& ) override {}
   bool createAndAttachPolicer( Nev::QosClassData const& ) override { return true; }
   void destroyPolicer( Nev::QosClassData const& ) override {}
   void hwInit() override {}
   Nev::QosClassCounterData counterUpdateRequest( Nev::QosClassData const&,
                                                  Nev::AclKey const& ) override {
      ++queries;
      Nev::QosClassCounterData data;
      data.pktHitsIs( queries );
      data.byteHitsIs( 64 * queries );
      return data;
   }

 private:
   // Answers the operations started, one per turn, as a chip's completion interrupt would.
   class Completer : public Zub::Clock::NotifieeConst {
    public:
      explicit Completer( Answers* chip ) : chip_( chip ) {}
      void started() {
         ++pending_;
         timeMinIs( Zub::activityManager()->now() );
      }
      void onTime() override {
         if( pending_ == 0 ) return;
         --pending_;
         Zub::Seconds const now = Zub::activityManager()->now();
         chip_->asyncOperationResultIs( Nev::AsyncOperationResult( Zub::String( "" ), now ) );
         if( pending_ > 0 ) timeMinIs( now );
      }

    private:
      Answers* chip_;
      unsigned pending_ = 0;
   };
   void startOperation() {
      if( completer_ ) completer_->started();
   }

   Mode const mode_;
   Zub::Ptr< Completer > completer_;
};

CountingChip::CountingChip( Zub::Ptr< Qos::Status const > qosStatus,
                            Zub::Ptr< Qos::AclSliceHwStatus > sliceHwStatus,
                            Zub::Ptr< Acl::Config const > aclConfig, Mode mode, bool async )
    : RecordingQosAclHelper(
            Zub::make< Answers >( std::move( qosStatus ), std::move( sliceHwStatus ),
                                  std::move( aclConfig ), mode, async ),
            nullptr )
    , async_( async ) {
   countingIs( true );
}

CountingChip::~CountingChip() = default;

Zub::Ptr< CountingChip > CountingChip::detached( Mode mode ) {
   return Zub::make< CountingChip >( Zub::make< Qos::Status >( Zub::Name( "qos" ) ),
                                     Zub::make< Qos::AclSliceHwStatus >( Zub::Name( "s" ) ),
                                     Zub::make< Acl::Config >( Zub::Name( "acl" ) ), mode, false );
}

CountingChip::Answers& CountingChip::answers() const {
   return static_cast< Answers& >( inner() );
}

Counts CountingChip::counts() const {
   Counts c;
   c.refused = answers().refused;
   c.accepted = callCount( "createIpAclSubrule" ) - c.refused;
   c.fragments = callCount( "createIpFragRule" );
   c.otherRules = callCount( "createDefaultRule" ) + callCount( "createL2ParamsRule" ) +
                  callCount( "createDscpEcnRule" );
   c.portUpdates = callCount( "updatePortForAcl" );
   c.policers = callCount( "createAndAttachPolicer" ) - callCount( "destroyPolicer" );
   c.counters = callCount( "createAndAttachCounter" ) - callCount( "destroyCounter" );
   if( async_ ) {
      c.asyncOperations =
            callCount( "commitAcl" ) + callCount( "updatePortForAcl" ) + callCount( "destroyAcl" );
   }
   c.counterQueries = callCount( "counterUpdateRequest" );
   return c;
}

void CountingChip::countsForget() {
   callCountsForget();
   answers().refused = 0;
   answers().queries = 0;
}

}  // namespace Bench
