#include "NevQos/sim/chip/SimQosAclHelper.h"

#include <algorithm>

#include "NevQos/log/QosLogHandles.h"
#include "NevQos/platform/mirel/RangeMaskGen.h"
#include "NevQos/platform/zub/Assert.h"
#include "NevQos/platform/zub/Log.h"
#include "NevQos/sim/chip/ChipText.h"
#include "NevQos/types/QosClassData.h"

namespace Sim {

namespace {

std::string sliceOf( Nev::AclKey const& aclKey ) {
   if( aclKey.aclType() == Acl::ipv6() ) return "ipv6";
   if( aclKey.aclType() == Acl::mac() ) return "mac";
   return "ipv4";
}

// A port or length field: value/mask, or a range that takes a checker.
std::string fieldText( std::uint16_t value, std::uint16_t mask, std::uint16_t low,
                       std::uint16_t high ) {
   if( mask != 0 || ( low == 0 && high == 0xffff ) ) return textOf( value ) + "/" + hexText( mask );
   return "range " + textOf( low ) + "-" + textOf( high );
}

// The protocol and addresses of an IPv4 or IPv6 filter.
template< class Filter >
void addL3Fields( TcamEntry& entry, Filter const& filter ) {
   entry.fields.emplace_back( "proto", textOf( unsigned( filter.proto ) ) );
   entry.fields.emplace_back( "src", textOf( filter.source ) );
   entry.fields.emplace_back( "dst", textOf( filter.destination ) );
   // Fields a rule may leave out take no key.
   if( filter.dscpValid ) entry.fields.emplace_back( "dscp", textOf( unsigned( filter.dscp ) ) );
   if( filter.vlanMask != 0 ) {
      entry.fields.emplace_back( "vlan", textOf( filter.vlan ) + "/" + hexText( filter.vlanMask ) );
   }
   if( filter.fragments ) entry.fields.emplace_back( "fragments", "non-first" );
}

// The ICMP type and code of a subrule. A fragment entry takes none: a non-first fragment
// carries no ICMP header to match them in.
template< class Filter >
void addIcmpFields( TcamEntry& entry, Filter const& filter ) {
   if( filter.icmpTypeValid ) {
      entry.fields.emplace_back( "icmpType", textOf( unsigned( filter.icmpType ) ) );
   }
   if( filter.icmpCodeValid ) {
      entry.fields.emplace_back( "icmpCode", textOf( unsigned( filter.icmpCode ) ) );
   }
}

// A range as the value/mask blocks that cover it.
std::vector< std::string > blockTexts( std::uint16_t low, std::uint16_t high ) {
   std::vector< Mirel::RangeMaskGen< std::uint16_t >::Entry > blocks;
   Mirel::RangeMaskGen< std::uint16_t >::run( low, high, blocks );
   std::vector< std::string > out;
   for( auto const& b : blocks )
      out.push_back( textOf( b.value ) + "/" + hexText( b.mask ) );
   return out;
}

bool needsChecker( std::uint16_t mask, std::uint16_t low, std::uint16_t high ) {
   return mask == 0 && !( low == 0 && high == 0xffff ) && !( low == 0 && high == 0 );
}

// The compiler's retry code for the dimensions the pool could not serve.
Nev::AclCreateError expandCode( std::vector< RangeNeed > const& missing ) {
   bool src = false, dst = false, len = false;
   for( RangeNeed const& n : missing ) {
      src |= n.dimension == "src";
      dst |= n.dimension == "dst";
      len |= n.dimension == "len";
   }
   if( len ) {
      if( src && dst ) return Nev::aclCreateErrorExpandAll;
      if( src ) return Nev::aclCreateErrorExpandSrcIpLen;
      if( dst ) return Nev::aclCreateErrorExpandDstIpLen;
      return Nev::aclCreateErrorExpandIpLen;
   }
   if( src && dst ) return Nev::aclCreateErrorTooManyL4PortRanges;
   return src ? Nev::aclCreateErrorExpandSrc : Nev::aclCreateErrorExpandDst;
}

}  // namespace

// Completes the asynchronous operations when their time comes; one left pending is reported so,
// and waits for ever.
class SimQosAclHelper::Completer : public Kesh::TimerWheel::NotifieeConst {
 public:
   explicit Completer( SimQosAclHelper* chip ) : chip_( chip ) {}
   void onTime() override {
      Zub::Seconds const now = notifier()->now();
      auto const due = nextDue();
      if( due == chip_->pending_.end() ) return;
      if( due->due > now ) {
         timeMinIs( due->due );
         return;
      }
      PendingOperation const op = *due;
      if( op.hangs ) {
         due->reported = true;  // stays in flight
      } else if( op.repeats ) {
         due->repeats = false;  // the echo
         due->due = now + chip_->config_.asyncDelay;
      } else {
         chip_->pending_.erase( due );
      }
      scheduleNext();
      if( op.hangs ) {
         if( chip_->leftPendingHandler_ ) chip_->leftPendingHandler_();
         return;
      }
      chip_->asyncOperationResultIs( Nev::AsyncOperationResult( Zub::String( op.message ), now ) );
   }
   void scheduleNext() {
      if( auto const due = nextDue(); due != chip_->pending_.end() ) timeMinIs( due->due );
   }

 private:
   // The first operation not reported yet.
   std::vector< PendingOperation >::iterator nextDue() {
      auto& pending = chip_->pending_;
      return std::find_if( pending.begin(), pending.end(),
                           []( PendingOperation const& op ) { return !op.reported; } );
   }

   SimQosAclHelper* chip_;
};

// Runs the chip's own checks with each verification run the verify agent starts.
class SimQosAclHelper::VerifyReactor : public Nev::VerifyData::Notifiee {
 public:
   explicit VerifyReactor( SimQosAclHelper* chip ) : chip_( chip ) {}
   void onVerify() override { chip_->verifyChip(); }

 private:
   SimQosAclHelper* chip_;
};

SimQosAclHelper::SimQosAclHelper( ChipConfig config, Zub::Ptr< Qos::Status const > qosStatus,
                                  Zub::Ptr< Qos::AclSliceHwStatus > qosAclSliceHwStatus,
                                  Zub::Ptr< Acl::Config const > mainAclConfig,
                                  Zub::Ptr< Kesh::TimerWheel > clock )
    : QosAclHelper( std::move( qosStatus ), std::move( qosAclSliceHwStatus ),
                    std::move( mainAclConfig ) )
    , config_( std::move( config ) )
    , tcam_( config_.tcamSliceEntries, config_.rangeCheckers )
    , clock_( std::move( clock ) ) {
   asyncTcamOperationsSupportedIs( async() );
   qosEcnSupportIs( config_.qosEcnSupport );
   establishedSupportedIs( config_.establishedSupported );
   supportedTcpFlagsIs( NevHelper::TcpFlag( config_.supportedTcpFlags ) );
   aclBaseNamesIs( config_.aclNames );
   faults_ = std::make_shared< ChipFaults >( config_.faults, clock_ );
   completer_ = Zub::make< Completer >( this );
   completer_->notifierIs( clock_ );
}

SimQosAclHelper::~SimQosAclHelper() = default;

// Before the first policy: the engine names its generated ACLs from these.
void SimQosAclHelper::aclBaseNamesIs( std::map< std::string, std::string > const& names ) {
   using Setter = void ( NevHelper::QosAclHelper::* )( Zub::Name const& );
   std::map< std::string_view, Setter > const setters{
      { "defaultAclName", &QosAclHelper::defaultAclNameIs },
      { "defaultIpv6AclName", &QosAclHelper::defaultIpv6AclNameIs },
      { "vlanAclName", &QosAclHelper::vlanAclNameIs },
      { "vlanIpv6AclName", &QosAclHelper::vlanIpv6AclNameIs },
      { "cosAclName", &QosAclHelper::cosAclNameIs },
      { "cosIpv6AclName", &QosAclHelper::cosIpv6AclNameIs },
      { "vlanCosAclName", &QosAclHelper::vlanCosAclNameIs },
      { "vlanCosIpv6AclName", &QosAclHelper::vlanCosIpv6AclNameIs },
      { "mplsTrafficClassAclName", &QosAclHelper::mplsTrafficClassAclNameIs },
      { "mplsTrafficClassIpv6AclName", &QosAclHelper::mplsTrafficClassIpv6AclNameIs },
      { "builtInClassAclName", &QosAclHelper::builtInClassAclNameIs },
      { "macAclName", &QosAclHelper::macAclNameIs },
      { "macIpv6AclName", &QosAclHelper::macIpv6AclNameIs },
   };
   for( auto const& [ attribute, name ] : names ) {
      auto const setter = setters.find( attribute );
      ZUB_ASSERT( setter != setters.end() );
      ( this->*setter->second )( Zub::Name( name ) );
   }
}

void SimQosAclHelper::verifyDataIs( Zub::Ptr< Nev::VerifyData > const& verifyData ) {
   verifyData_ = verifyData;
   verifyReactor_ = nullptr;
   if( !verifyData ) return;
   verifyReactor_ = Zub::make< VerifyReactor >( this );
   verifyReactor_->notifierIsWithoutCatchUp( verifyData );
}

std::string SimQosAclHelper::classKeyOf( Nev::QosClassData const& classData ) {
   Nev::QosClassDataKey const& k = classData.key();
   return pmapText( k.pmapKey() ) + "/" + textOf( k.cmapName() ) + "/" + textOf( k.policerName() );
}

std::string SimQosAclHelper::aclIdOf( Nev::QosClassData const& classData,
                                      Nev::AclKey const& aclKey ) {
   return classKeyOf( classData ) + " " + aclKeyText( aclKey );
}

void SimQosAclHelper::faultIs( std::size_t index, bool on ) {
   faults_->switchIs( index, on );
}

bool SimQosAclHelper::active( FaultConfig const& fault ) const {
   return faults_->holds( static_cast< std::size_t >( &fault - faults_->faults().data() ) );
}

bool SimQosAclHelper::faultOn( FaultConfig::Kind kind ) const {
   return faults_->on( kind );
}

std::optional< Nev::AclCreateError > SimQosAclHelper::faultFor(
      std::string const& op, Nev::QosClassData const& classData ) {
   FaultConfig const* const fault = faults_->failingCall( op );
   if( !fault ) return std::nullopt;
   // A fault that answers in the call does so whatever the mode.
   if( fault->inCall ) return fault->error;
   return answer( fault->error, classData );
}

Nev::AclCreateError SimQosAclHelper::answer( Nev::AclCreateError error,
                                             Nev::QosClassData const& classData ) {
   if( !async() || error == Nev::aclCreateErrorNone ) return error;
   // The deferred compiler takes no refusal: the operation's result carries it, and the policy
   // map's shared state says it failed.
   if( !asyncFailure_ ) asyncFailure_ = AsyncFailure{ error, classData.key().pmapKey() };
   return Nev::aclCreateErrorNone;
}

Nev::AclCreateError SimQosAclHelper::install( std::string const& aclId, TcamEntry entry ) {
   auto const acl = tcam_.acls().find( aclId );
   std::optional< std::uint32_t > limit;
   for( FaultConfig const& f : faults_->faults() ) {
      if( f.kind != FaultConfig::Kind::outOfTcam || !active( f ) ) continue;
      if( acl != tcam_.acls().end() && ( f.family.empty() || f.family == acl->second.slice ) ) {
         limit = f.atEntries;
      }
   }
   // Only what the chip accepted is written: the engine is told of a refusal, and fails the map.
   auto& kept = aclRecords_[ aclId ].written;
   if( !kept )
      return tcam_.add( aclId, std::move( entry ), limit ) ? Nev::aclCreateErrorNone
                                                           : Nev::aclCreateErrorOutOfTcam;
   if( !tcam_.add( aclId, entry, limit ) ) return Nev::aclCreateErrorOutOfTcam;
   kept->push_back( std::move( entry ) );
   return Nev::aclCreateErrorNone;
}

void SimQosAclHelper::openAcl( std::string const& aclId, std::string const& slice,
                               Nev::QosClassData const& classData, Nev::AclKey const* aclKey ) {
   tcam_.open( aclId, slice );
   AclRecord& record = aclRecords_[ aclId ];
   record = AclRecord{ Zub::Ptr< Nev::QosClassData const >( &classData ), std::nullopt, {} };
   if( aclKey ) record.aclKey = *aclKey;
}

void SimQosAclHelper::closeAcl( std::string const& aclId ) {
   tcam_.destroy( aclId );
   aclRecords_.erase( aclId );
}

Nev::AclCreateError SimQosAclHelper::createRule( std::string const& op, std::string const& aclId,
                                                 std::string const& slice,
                                                 Nev::QosClassData const& classData,
                                                 Nev::AclKey const* aclKey, TcamEntry entry ) {
   if( auto const fault = faultFor( op, classData ) ) return *fault;
   if( !tcam_.has( aclId ) ) openAcl( aclId, slice, classData, aclKey );
   return answer( install( aclId, std::move( entry ) ), classData );
}

void SimQosAclHelper::startOperation() {
   ++asyncOperations_;
   bool hang = false;
   bool repeat = false;
   for( FaultConfig const& f : faults_->faults() ) {
      if( f.nth != asyncOperations_ || !active( f ) ) continue;
      hang = hang || f.kind == FaultConfig::Kind::asyncPending;
      repeat = repeat || f.kind == FaultConfig::Kind::asyncRepeated;
   }
   std::string message;
   if( asyncFailure_ ) {
      message = Nev::aclCreateErrorText( asyncFailure_->error ).stdString();
      if( auto const state = engineHelper_->pmapState( asyncFailure_->pmap ) ) {
         state->dirtyIs( true );
      }
      asyncFailure_.reset();
   }
   // Always at least one turn later: the engine marks the operation in flight after the call.
   pending_.push_back(
         PendingOperation{ clock_->now() + config_.asyncDelay, message, hang, false, repeat } );
   completer_->scheduleNext();
}

void SimQosAclHelper::trafficIs( ChipTraffic const& traffic ) {
   traffic_.push_back( traffic );
}

// ---- ACLs and their rules

Nev::AclCreateError SimQosAclHelper::precreateAcl( Nev::QosPolicyMapState const&,
                                                   Nev::QosClassData const& classData,
                                                   Qos::ClassMapMatchOption,
                                                   Nev::AclKey const& aclKey ) {
   if( auto const fault = faultFor( "precreateAcl", classData ) ) return *fault;
   openAcl( aclIdOf( classData, aclKey ), sliceOf( aclKey ), classData, &aclKey );
   aclPorts_.erase( aclIdOf( classData, aclKey ) );
   return Nev::aclCreateErrorNone;
}

Nev::AclCreateError SimQosAclHelper::createIpAclSubrule(
      Acl::AclType aclType, Acl::RuleConfig const& rule, Acl::UniqueId const& aclId,
      Nev::QosPolicyMapState const&, Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
      std::uint32_t ruleNum, std::uint32_t subruleNum, std::uint16_t srcL4Port,
      std::uint16_t srcL4PortMask, std::uint16_t dstL4Port, std::uint16_t dstL4PortMask,
      std::uint16_t srcPortLow, std::uint16_t srcPortHigh, std::uint16_t dstPortLow,
      std::uint16_t dstPortHigh, std::uint16_t ipLen, std::uint16_t ipLenMask,
      std::uint16_t ipLenLow, std::uint16_t ipLenHigh, std::uint8_t tcpFlags, bool l4Rule,
      std::uint8_t ecnData, std::uint8_t ecnMask ) {
   if( auto const fault = faultFor( "createIpAclSubrule", classData ) ) return *fault;
   // Only permit rules take entries: a packet no permit rule matches is not in the class.
   if( rule.action != Acl::actionPermit ) return Nev::aclCreateErrorNone;
   std::string const id = aclIdOf( classData, aclKey );
   if( !tcam_.has( id ) ) openAcl( id, sliceOf( aclKey ), classData, &aclKey );
   std::vector< RangeNeed > needs;
   if( needsChecker( srcL4PortMask, srcPortLow, srcPortHigh ) ) {
      needs.push_back( RangeNeed{ "src", srcPortLow, srcPortHigh } );
   }
   if( needsChecker( dstL4PortMask, dstPortLow, dstPortHigh ) ) {
      needs.push_back( RangeNeed{ "dst", dstPortLow, dstPortHigh } );
   }
   if( needsChecker( ipLenMask, ipLenLow, ipLenHigh ) ) {
      needs.push_back( RangeNeed{ "len", ipLenLow, ipLenHigh } );
   }
   // The texts of each port and length field; a range without a checker becomes value/mask
   // blocks on the deferred road, whose compiler does not expand.
   std::vector< std::string > srcTexts{ fieldText( srcL4Port, srcL4PortMask, srcPortLow,
                                                   srcPortHigh ) };
   std::vector< std::string > dstTexts{ fieldText( dstL4Port, dstL4PortMask, dstPortLow,
                                                   dstPortHigh ) };
   std::vector< std::string > lenTexts{ fieldText( ipLen, ipLenMask, ipLenLow, ipLenHigh ) };
   if( !needs.empty() ) {
      tcam_.rangeCheckersExhaustedIs( faultOn( FaultConfig::Kind::outOfRangeCheckers ) );
      auto const missing = tcam_.acquire( id, needs );
      // Every range of the subrule is expanded, not only those left without a checker, so that
      // the subrule stands either whole or as the product of its blocks, as verification reads it.
      if( !missing.empty() && !async() ) return answer( expandCode( needs ), classData );
      for( RangeNeed const& n : missing ) {
         auto& texts = n.dimension == "src" ? srcTexts : n.dimension == "dst" ? dstTexts : lenTexts;
         texts = blockTexts( n.low, n.high );
      }
   }
   TcamEntry entry{ "ip", ruleNum, subruleNum, {}, aclId.value() };
   entry.fields.emplace_back( "action", textOf( rule.action ) );
   if( aclType == Acl::ipv6() ) {
      auto const& filter = static_cast< Acl::Ip6RuleConfig const& >( rule ).filter;
      addL3Fields( entry, filter );
      addIcmpFields( entry, filter );
   } else {
      auto const& filter = static_cast< Acl::IpRuleConfig const& >( rule ).filter;
      addL3Fields( entry, filter );
      addIcmpFields( entry, filter );
   }
   for( std::string const& src : srcTexts ) {
      for( std::string const& dst : dstTexts ) {
         for( std::string const& len : lenTexts ) {
            TcamEntry block = entry;
            block.fields.insert( block.fields.end(), { { "srcPort", src },
                                                       { "dstPort", dst },
                                                       { "ipLen", len },
                                                       { "tcpFlags", hexText( tcpFlags ) },
                                                       { "ecn", textOf( unsigned( ecnData ) ) +
                                                                      "/" + hexText( ecnMask ) },
                                                       { "l4", l4Rule ? "true" : "false" } } );
            auto const error = install( id, std::move( block ) );
            if( error != Nev::aclCreateErrorNone ) return answer( error, classData );
         }
      }
   }
   return Nev::aclCreateErrorNone;
}

Nev::AclCreateError SimQosAclHelper::createIpFragRule(
      Nev::QosPolicyMapState const&, Nev::QosClassData const& classData, Nev::AclKey const& aclKey,
      Acl::IpRuleConfig const& rule, Acl::UniqueId const& aclId, std::uint32_t ruleNum,
      std::uint32_t subRuleNum, std::uint8_t ecnData, std::uint8_t ecnMask ) {
   // A deny rule's fragment entry is written all the same: the engine counts its layer-3 match
   // as served, so a later permit rule of that match makes none of its own.
   TcamEntry entry{ "ipFrag", ruleNum, subRuleNum, {}, aclId.value() };
   entry.fields.emplace_back( "action", textOf( rule.action ) );
   addL3Fields( entry, rule.filter );
   entry.fields.emplace_back( "fragments", "non-first" );
   entry.fields.emplace_back( "ecn", textOf( unsigned( ecnData ) ) + "/" + hexText( ecnMask ) );
   return createRule( "createIpFragRule", aclIdOf( classData, aclKey ), sliceOf( aclKey ),
                      classData, &aclKey, std::move( entry ) );
}

Nev::AclCreateError SimQosAclHelper::createDefaultRule( Nev::QosPolicyMapState const&,
                                                        Nev::QosClassData const& classData,
                                                        Qos::ClassMapMatchOption,
                                                        Nev::AclKey const& aclKey ) {
   return createRule( "createDefaultRule", aclIdOf( classData, aclKey ), sliceOf( aclKey ),
                      classData, &aclKey, defaultEntry() );
}

Nev::AclCreateError SimQosAclHelper::createL2ParamsRule( Nev::QosPolicyMapState const&,
                                                         Nev::QosClassData const& classData,
                                                         Qos::ClassMapMatchOption,
                                                         Nev::AclKey const& aclKey,
                                                         std::uint32_t ruleNum ) {
   return createRule( "createL2ParamsRule", aclIdOf( classData, aclKey ), sliceOf( aclKey ),
                      classData, &aclKey, l2EntryOf( classData, ruleNum ) );
}

TcamEntry SimQosAclHelper::l2EntryOf( Nev::QosClassData const& classData, std::uint32_t ruleNum ) {
   TcamEntry entry{ "l2", ruleNum, 0, {} };
   if( auto const l2 = classData.l2ParamsValue() ) {
      if( auto const vlan = l2->vlanValue() ) {
         entry.fields.emplace_back( "vlan",
                                    textOf( vlan->vlan() ) + "/" + hexText( vlan->vlanMask() ) );
      }
      if( auto const cos = l2->cosValue() ) {
         entry.fields.emplace_back(
               "cos", textOf( unsigned( cos->cos() ) ) + "/" + hexText( cos->cosMask() ) );
      }
   }
   return entry;
}

Nev::AclCreateError SimQosAclHelper::createMplsTrafficClassRule( Nev::QosPolicyMapState const&,
                                                                 Nev::QosClassData const& classData,
                                                                 Qos::ClassMapMatchOption,
                                                                 Nev::AclKey const& aclKey,
                                                                 std::uint32_t ruleNum ) {
   return createRule( "createMplsTrafficClassRule", aclIdOf( classData, aclKey ), sliceOf( aclKey ),
                      classData, &aclKey, mplsEntryOf( classData, ruleNum ) );
}

TcamEntry SimQosAclHelper::mplsEntryOf( Nev::QosClassData const& classData,
                                        std::uint32_t ruleNum ) {
   TcamEntry entry{ "mpls", ruleNum, 0, {} };
   if( auto const tuple = classData.mplsTrafficClassTuple() ) {
      entry.fields.emplace_back( "trafficClass", textOf( tuple->mplsTrafficClassVal() ) + "/" +
                                                       textOf( tuple->mplsTrafficClassMask() ) );
   }
   return entry;
}

Nev::AclCreateError SimQosAclHelper::createDscpEcnRule( Nev::QosPolicyMapState const&,
                                                        Nev::QosClassData const& classData,
                                                        Qos::ClassMapMatchOption,
                                                        Nev::AclKey const& aclKey,
                                                        std::uint32_t ruleNum ) {
   return createRule( "createDscpEcnRule", aclIdOf( classData, aclKey ), sliceOf( aclKey ),
                      classData, &aclKey, dscpEcnEntryOf( classData, ruleNum ) );
}

TcamEntry SimQosAclHelper::dscpEcnEntryOf( Nev::QosClassData const& classData,
                                           std::uint32_t ruleNum ) {
   TcamEntry entry{ "dscpEcn", ruleNum, 0, {} };
   if( auto const value = classData.dscpEcnValue() ) {
      entry.fields.emplace_back(
            "tos", textOf( unsigned( value->tosId() ) ) + "/" + hexText( value->tosMask() ) );
   }
   return entry;
}

bool SimQosAclHelper::isSupportedMacAclRule( Acl::MacRuleConfig const& rule ) {
   return !config_.unsupportedMacEtherTypes.contains( rule.filter.etherType );
}

bool SimQosAclHelper::isMacAclRuleSupportedPlatform() {
   return config_.macAclRuleSupportedPlatform;
}

Nev::AclCreateError SimQosAclHelper::createMacAclRule( Nev::QosPolicyMapState const&,
                                                       Nev::QosClassData const& classData,
                                                       Qos::ClassMapMatchOption,
                                                       Nev::AclKey const& aclKey,
                                                       std::uint32_t ruleNum ) {
   return createRule( "createMacAclRule", aclIdOf( classData, aclKey ), sliceOf( aclKey ),
                      classData, &aclKey, macEntryOf( classData, ruleNum ) );
}

TcamEntry SimQosAclHelper::macEntryOf( Nev::QosClassData const& classData, std::uint32_t ruleNum ) {
   TcamEntry entry{ "mac", ruleNum, 0, {} };
   if( auto const mac = classData.macValue() ) {
      entry.fields.emplace_back( "etherType", hexText( mac->etherType() ) );
   }
   return entry;
}

Nev::AclCreateError SimQosAclHelper::createBuiltInClassMatchRule(
      Nev::QosPolicyMapState const&, Nev::QosClassData const& classData, Qos::ClassMapMatchOption,
      std::uint32_t ruleNum ) {
   // The built-in classes live in the IPv4 slice, under an ACL of their own per class.
   std::string const id = classKeyOf( classData ) + " built-in";
   TcamEntry entry{ "builtIn",
                    ruleNum,
                    0,
                    { { "class", textOf( classData.builtInClassMatchValue().builtInClass() ) } } };
   return createRule( "createBuiltInClassMatchRule", id, "ipv4", classData, nullptr,
                      std::move( entry ) );
}

void SimQosAclHelper::updatePortForAcl( Nev::QosPolicyMapState const&,
                                        Nev::QosClassData const& classData,
                                        Qos::ClassMapMatchOption, Nev::AclKey const& aclKey,
                                        Qos::IntfPairKey const& intfPair, bool add ) {
   bind( aclPorts_[ aclIdOf( classData, aclKey ) ], intfPair, add );
   if( async() ) startOperation();
}

void SimQosAclHelper::destroyAcl( Nev::QosPolicyMapState const&, Nev::QosClassData const& classData,
                                  Qos::ClassMapMatchOption, Nev::AclKey const& aclKey ) {
   closeAcl( aclIdOf( classData, aclKey ) );
   aclPorts_.erase( aclIdOf( classData, aclKey ) );
   if( async() ) startOperation();
}

void SimQosAclHelper::cleanupAcl( Nev::QosPolicyMapState const&, Nev::QosClassData const& classData,
                                  Qos::ClassMapMatchOption, Nev::AclKey const& aclKey ) {
   closeAcl( aclIdOf( classData, aclKey ) );
   closeAcl( classKeyOf( classData ) + " built-in" );
   aclPorts_.erase( aclIdOf( classData, aclKey ) );
}

Nev::AclCreateError SimQosAclHelper::commitAcl( Nev::QosClassData const& classData,
                                                Qos::ClassMapMatchOption,
                                                Nev::AclKey const& aclKey ) {
   std::optional< Nev::AclCreateError > const fault = faultFor( "commitAcl", classData );
   if( !fault ) {
      std::string const id = aclIdOf( classData, aclKey );
      tcam_.commit( id );
      // A new ACL serves the interfaces its class has now; later changes come one by one.
      auto& ports = aclPorts_[ id ];
      for( auto it = classData.intfId().iter(); it; ++it )
         bind( ports, it.key(), true );
   }
   if( async() ) startOperation();
   return fault.value_or( Nev::aclCreateErrorNone );
}

void SimQosAclHelper::prepareToCommit() {}

void SimQosAclHelper::batchCommitAcls( Nev::QosPolicyMapState const& pmapState ) {
   mapCommitted( pmapState );
}

void SimQosAclHelper::batchCommitAclsIntf( Nev::QosPolicyMapState const& pmapState,
                                           Qos::IntfPairKey const&, bool ) {
   mapCommitted( pmapState );
}

// What the chip does once a map's changes are in: flag the map for a recompile on interface
// changes, and report its programming status, where the chip does these.
void SimQosAclHelper::mapCommitted( Nev::QosPolicyMapState const& pmapState ) {
   if( config_.doVersionUpdate ) {
      if( auto const state = engineHelper_->pmapState( pmapState.key() ) ) {
         state->doVersionUpdateIs( true );
      }
   }
   if( !config_.selfReportedPrgmStatus ) return;
   Nev::QosPolicyMapKey const& key = pmapState.key();
   // Only a map that has a status entry to write: the engine makes it with the service policy.
   auto const typeStatus = qosAclSliceHwStatus()->pmapType( key.pmapType() );
   if( !typeStatus ||
       !typeStatus->pmap( Qos::PolicyMapHwStatusKey( key.direction(), key.pmapName() ) ) ) {
      return;
   }
   engineHelper_->qosAclStatusUpdateCallback(
         key, pmapState.dirty() ? Qos::hwPrgmStatusFail_ : Qos::hwPrgmStatusSuccess_ );
}

Zub::Name SimQosAclHelper::aclGroup( Qos::IntfPairKey const& intfPair,
                                     Qos::ServicePolicyKey const& ) {
   auto const group = config_.aclGroups.find( intfText( intfPair ) );
   if( group == config_.aclGroups.end() ) return defaultAclGroup();
   return Zub::Name( group->second );
}

bool SimQosAclHelper::managedPrioritySupported( Qos::MapType mapType ) {
   return config_.managedPriorityMapTypes.contains( mapType );
}

bool SimQosAclHelper::delaySviPmapSmCreation() {
   return config_.delaySviPmapSmCreation;
}

bool SimQosAclHelper::createSmForPMap( Nev::QosPolicyMapState const& ) {
   return config_.createSmForPMap;
}

void SimQosAclHelper::cleanupForPMap( Nev::QosPolicyMapKey const& ) {}

void SimQosAclHelper::updatePolicer( Zub::Name const& ) {}

void SimQosAclHelper::bind( std::set< std::string >& ports, Qos::IntfPairKey const& intfPair,
                            bool add ) {
   if( add ) {
      ports.insert( intfText( intfPair ) );
   } else {
      ports.erase( intfText( intfPair ) );
   }
}

void SimQosAclHelper::handlePendingOperationTimeout() {
   // The engine has given the operation up: it no longer waits on the chip.
   std::erase_if( pending_, []( PendingOperation const& op ) { return op.hangs && op.reported; } );
}

// ---- Policers, counters, CPU queues

int SimQosAclHelper::coppAllocateCpuQ( Nev::QosClassData const& classData ) {
   std::string const key = classKeyOf( classData );
   if( auto it = cpuQueues_.find( key ); it != cpuQueues_.end() ) return it->second;
   std::set< int > used;
   for( auto const& [ k, q ] : cpuQueues_ )
      used.insert( q );
   for( int q = 0; q < static_cast< int >( config_.cpuQueues ); ++q ) {
      if( used.contains( q ) ) continue;
      cpuQueues_[ key ] = q;
      return q;
   }
   return -1;
}

void SimQosAclHelper::coppDeallocateCpuQ( Nev::QosClassData const& classData ) {
   cpuQueues_.erase( classKeyOf( classData ) );
}

bool SimQosAclHelper::createAndAttachPolicer( Nev::QosClassData const& classData ) {
   return takePolicer( classData );
}

bool SimQosAclHelper::createAndAttachCoppPolicer( Nev::QosClassData const& classData ) {
   return takePolicer( classData );
}

bool SimQosAclHelper::takePolicer( Nev::QosClassData const& classData ) {
   if( faultOn( FaultConfig::Kind::policerExhaustion ) ) return false;
   if( policers_.size() >= config_.policers ) return false;
   policers_.insert( classKeyOf( classData ) );
   return true;
}

void SimQosAclHelper::destroyPolicer( Nev::QosClassData const& classData ) {
   policers_.erase( classKeyOf( classData ) );
}

void SimQosAclHelper::createAndAttachCounter( Nev::QosClassData const& classData ) {
   if( counters_.size() >= config_.counters ) {
      // The driver reports a counter it cannot make; the engine has no failure path for it.
      Zub::log( Nev::QOS_POLICY_COUNTER_HW_RESOURCE_FULL, classData.key().cmapName(),
                classData.key().pmapName(), Zub::String( "interface" ),
                classData.key().policerName() );
      refusedCounters_.insert( classKeyOf( classData ) );
      return;
   }
   counters_.insert( classKeyOf( classData ) );
}

void SimQosAclHelper::destroyCounter( Nev::QosClassData const& classData ) {
   counters_.erase( classKeyOf( classData ) );
   refusedCounters_.erase( classKeyOf( classData ) );
}

Nev::QosClassCounterData SimQosAclHelper::counterUpdateRequest( Nev::QosClassData const& classData,
                                                                Nev::AclKey const& aclKey ) {
   // A class's traffic is counted once, on its first installed ACL.
   std::string const key = classKeyOf( classData );
   for( auto const& [ id, acl ] : tcam_.acls() ) {
      if( !acl.committed || id.rfind( key + " ", 0 ) != 0 ) continue;
      if( id != aclIdOf( classData, aclKey ) ) return {};
      break;
   }
   return countersOf( classData );
}

// Drops and yellow marks are the policer's: a class without one counts hits alone. A policer
// that serves several interfaces also counts its drops per interface, with an entry for each.
Nev::QosClassCounterData SimQosAclHelper::countersOf( Nev::QosClassData const& classData ) const {
   bool const policed = classData.policerData() != nullptr;
   std::set< Mirel::IntfId > intfs;
   for( auto it = classData.intfId().iter(); it; ++it )
      intfs.insert( it.key().intfId() );
   bool const shared = policed && intfs.size() > 1;
   Nev::QosClassCounterData sum;
   if( shared ) {
      for( Mirel::IntfId const intf : intfs )
         sum.dropCountIntfSharedPolicerIs( intf, 0 );
   }
   Nev::QosClassDataKey const& k = classData.key();
   for( ChipTraffic const& t : traffic_ ) {
      if( t.servicePolicy.pmapName() != k.pmapName() || t.servicePolicy.type() != k.pmapType() ||
          t.servicePolicy.direction() != k.direction() || t.classMap != k.cmapName() ||
          !classData.intfIdHas( t.intf ) ) {
         continue;
      }
      Nev::QosClassCounterData hits;
      hits.pktHitsIs( t.hits.pktHits() );
      hits.byteHitsIs( t.hits.byteHits() );
      if( policed ) {
         hits.pktDropsIs( t.hits.pktDrops() );
         hits.byteDropsIs( t.hits.byteDrops() );
         hits.yellowPktHitsIs( t.hits.yellowPktHits() );
         hits.yellowByteHitsIs( t.hits.yellowByteHits() );
      }
      if( shared ) hits.dropCountIntfSharedPolicerIs( t.intf.intfId(), t.hits.pktDrops() );
      sum += hits;
   }
   return sum;
}

// ---- Control plane and start-up

bool SimQosAclHelper::checkUserCoppEntryExists( Nev::ModIdPortQueueKey const& ) {
   return false;
}

bool SimQosAclHelper::checkKernelCoppEntryExists( Nev::ModIdPortQueueKey const& key ) {
   return portCpuQueuePolicers_.contains( key );
}

// A queue reported saturated again keeps its one policer.
bool SimQosAclHelper::createCoppPolicerByPortQueue( Nev::ModIdPortQueueKey const& key ) {
   if( portCpuQueuePolicers_.contains( key ) ) return true;
   if( portCpuQueuePolicers_.size() >= config_.portCpuQueuePolicers ) return false;
   portCpuQueuePolicers_.insert( key );
   return true;
}

// Also called for a queue that never got its policer; there is nothing to free then.
void SimQosAclHelper::destroyCoppPolicerByPortQueue( Nev::ModIdPortQueueKey const& key ) {
   portCpuQueuePolicers_.erase( key );
}

void SimQosAclHelper::createDefaultCoppRates() {}

void SimQosAclHelper::destroyCoppPolicer( Nev::QosClassData const& classData ) {
   policers_.erase( classKeyOf( classData ) );
}

// The driver's start-up brings the chip up empty, as a restarted agent's driver finds it: what an
// earlier life of the agent programmed is gone, from the hardware and from the driver's own
// records, and operations left in flight never complete. The engine programs everything anew
// after this call; a chip that kept the old entries would keep those of a policy removed in
// between for ever, with their policers and counters. Fault switches and the counts that a
// fault's `nth` reads belong to the scenario and carry on.
void SimQosAclHelper::hwInit() {
   tcam_ = Tcam( config_.tcamSliceEntries, config_.rangeCheckers );
   aclRecords_.clear();
   aclPorts_.clear();
   policers_.clear();
   counters_.clear();
   refusedCounters_.clear();
   cpuQueues_.clear();
   portCpuQueuePolicers_.clear();
   traffic_.clear();
   pending_.clear();
   asyncFailure_.reset();
   engineHelper_->pmapStateDelAll();
   engineHelper_->unableToProgramDelAll();
}

Zub::String SimQosAclHelper::cpuQIdToClassMapName( std::uint32_t cpuQId ) {
   return Zub::String( cpuQueueClassName( cpuQId ) );
}

Zub::String SimQosAclHelper::portToIntfName( std::uint32_t modId, std::uint32_t port ) {
   return Zub::String( portName( modId, port ) );
}

// The class a control-plane policy map allocated the queue to, or a name of the queue's own.
std::string SimQosAclHelper::cpuQueueClassName( std::uint32_t cpuQId ) const {
   for( auto const& [ key, q ] : cpuQueues_ ) {
      if( q == static_cast< int >( cpuQId ) ) return key;
   }
   return "cpu-queue-" + textOf( cpuQId );
}

// One module of front-panel ports, numbered from 1.
std::string SimQosAclHelper::portName( std::uint32_t modId, std::uint32_t port ) const {
   return modId == 0 ? "Ethernet" + textOf( port )
                     : "Ethernet" + textOf( modId ) + "/" + textOf( port );
}

}  // namespace Sim
