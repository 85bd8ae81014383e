#include "bench/support/CountingChip.h"

#include <utility>

#include "nev/AsyncOperation.h"
#include "zub/ActivityManager.h"

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

// Answers the operations started, one per turn, as a chip's completion interrupt would.
class CountingChip::Completer : public Zub::Clock::NotifieeConst {
 public:
   explicit Completer( CountingChip* chip ) : chip_( chip ) {}
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
   CountingChip* chip_;
   unsigned pending_ = 0;
};

CountingChip::CountingChip( Zub::Ptr< Qos::Status const > qosStatus,
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

CountingChip::~CountingChip() = default;

Zub::Ptr< CountingChip > CountingChip::detached( Mode mode ) {
   return Zub::make< CountingChip >( Zub::make< Qos::Status >( Zub::Name( "qos" ) ),
                                     Zub::make< Qos::AclSliceHwStatus >( Zub::Name( "s" ) ),
                                     Zub::make< Acl::Config >( Zub::Name( "acl" ) ), mode, false );
}

void CountingChip::startOperation() {
   if( !completer_ ) return;
   ++counts.asyncOperations;
   completer_->started();
}

Nev::AclCreateError CountingChip::createIpAclSubrule(
      Acl::AclType, Acl::RuleConfig const&, Acl::UniqueId const&, Nev::QosPolicyMapState const&,
      Nev::QosClassData const&, Nev::AclKey const&, std::uint32_t, std::uint32_t, std::uint16_t,
      std::uint16_t srcMask, std::uint16_t, std::uint16_t dstMask, std::uint16_t srcLow,
      std::uint16_t srcHigh, std::uint16_t dstLow, std::uint16_t dstHigh, std::uint16_t,
      std::uint16_t, std::uint16_t, std::uint16_t, std::uint8_t, bool, std::uint8_t,
      std::uint8_t ) {
   if( mode_ == Mode::expand &&
       ( needsChecker( srcMask, srcLow, srcHigh ) || needsChecker( dstMask, dstLow, dstHigh ) ) ) {
      ++counts.refused;
      return Nev::aclCreateErrorTooManyL4PortRanges;
   }
   ++counts.accepted;
   return Nev::aclCreateErrorNone;
}

Nev::AclCreateError CountingChip::createIpFragRule( Nev::QosPolicyMapState const&,
                                                    Nev::QosClassData const&, Nev::AclKey const&,
                                                    Acl::IpRuleConfig const&, Acl::UniqueId const&,
                                                    std::uint32_t, std::uint32_t, std::uint8_t,
                                                    std::uint8_t ) {
   ++counts.fragments;
   return Nev::aclCreateErrorNone;
}

Nev::AclCreateError CountingChip::createDefaultRule( Nev::QosPolicyMapState const&,
                                                     Nev::QosClassData const&,
                                                     Qos::ClassMapMatchOption,
                                                     Nev::AclKey const& ) {
   ++counts.otherRules;
   return Nev::aclCreateErrorNone;
}

Nev::AclCreateError CountingChip::createL2ParamsRule( Nev::QosPolicyMapState const&,
                                                      Nev::QosClassData const&,
                                                      Qos::ClassMapMatchOption, Nev::AclKey const&,
                                                      std::uint32_t ) {
   ++counts.otherRules;
   return Nev::aclCreateErrorNone;
}

Nev::AclCreateError CountingChip::createDscpEcnRule( Nev::QosPolicyMapState const&,
                                                     Nev::QosClassData const&,
                                                     Qos::ClassMapMatchOption, Nev::AclKey const&,
                                                     std::uint32_t ) {
   ++counts.otherRules;
   return Nev::aclCreateErrorNone;
}

Nev::AclCreateError CountingChip::precreateAcl( Nev::QosPolicyMapState const&,
                                                Nev::QosClassData const&, Qos::ClassMapMatchOption,
                                                Nev::AclKey const& ) {
   return Nev::aclCreateErrorNone;
}

Nev::AclCreateError CountingChip::commitAcl( Nev::QosClassData const&, Qos::ClassMapMatchOption,
                                             Nev::AclKey const& ) {
   startOperation();
   return Nev::aclCreateErrorNone;
}

void CountingChip::updatePortForAcl( Nev::QosPolicyMapState const&, Nev::QosClassData const&,
                                     Qos::ClassMapMatchOption, Nev::AclKey const&,
                                     Qos::IntfPairKey const&, bool ) {
   ++counts.portUpdates;
   startOperation();
}

void CountingChip::destroyAcl( Nev::QosPolicyMapState const&, Nev::QosClassData const&,
                               Qos::ClassMapMatchOption, Nev::AclKey const& ) {
   startOperation();
}

bool CountingChip::createAndAttachPolicer( Nev::QosClassData const& ) {
   ++counts.policers;
   return true;
}

void CountingChip::destroyPolicer( Nev::QosClassData const& ) {
   --counts.policers;
}

void CountingChip::createAndAttachCounter( Nev::QosClassData const& ) {
   ++counts.counters;
}

void CountingChip::destroyCounter( Nev::QosClassData const& ) {
   --counts.counters;
}

Nev::QosClassCounterData CountingChip::counterUpdateRequest( Nev::QosClassData const&,
                                                             Nev::AclKey const& ) {
   ++counts.counterQueries;
   Nev::QosClassCounterData data;
   data.pktHitsIs( counts.counterQueries );
   data.byteHitsIs( 64 * counts.counterQueries );
   return data;
}

}  // namespace Bench
