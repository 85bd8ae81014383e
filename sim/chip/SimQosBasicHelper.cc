#include "NevQos/sim/chip/SimQosBasicHelper.h"

#include "NevQos/log/QosLogHandles.h"
#include "NevQos/platform/zub/Log.h"
#include "NevQos/sim/chip/ChipText.h"

namespace Sim {

namespace {

// What goes into each kind of profile; empty when the queue needs none.
std::string ecnSettings( BasicQueueSettings const& q ) {
   std::string out;
   auto const add = [ &out ]( std::string const& part ) {
      out += ( out.empty() ? "" : "; " ) + part;
   };
   if( q.ecn.enabled ) add( "ecn " + textOf( q.ecn ) );
   if( q.nonEct.enabled ) add( "non-ECT " + textOf( q.nonEct ) );
   if( q.delayEcnEnabled ) add( "delay " + textOf( q.ecnDelayThreshold ) );
   return out;
}

std::string wredSettings( BasicQueueSettings const& q ) {
   return q.wred.enabled ? textOf( q.wred ) : std::string();
}

std::string dropThresholdSettings( BasicQueueSettings const& q ) {
   std::string out;
   for( auto const& [ dp, bytes ] : q.dropThresholds ) {
      out += ( out.empty() ? "dp" : ", dp" ) + textOf( dp ) + " " + textOf( bytes ) + " bytes";
   }
   return out;
}

bool ppsUnit( Qos::ShapeRate const& shape ) {
   return shape.unit == Qos::shapeRateUnitPps_;
}

bool ppsUnit( Qos::GuaranteedBw const& bw ) {
   return bw.unit == Qos::guaranteedBwUnitPps_;
}

}  // namespace

SimQosBasicHelper::SimQosBasicHelper(
      ChipConfig config, Zub::Ptr< Qos::Status const > qosStatus,
      Zub::Ptr< Qos::HwStatus > qosHwStatus, Zub::Ptr< Qos::SliceHwStatus > qosSliceHwStatus,
      Zub::Ptr< Interface::AllEthPhyIntfStatusDir const > ethPhyIntfStatusDir )
    : QosBasicHelper( std::move( qosStatus ), std::move( qosHwStatus ),
                      std::move( qosSliceHwStatus ) )
    , config_( std::move( config ) )
    , ethPhyIntfStatusDir_( std::move( ethPhyIntfStatusDir ) )
    , ecnProfiles_( config_.ecnProfiles )
    , wredProfiles_( config_.wredProfiles )
    , dropThresholdProfiles_( config_.dropThresholdProfiles )
    , faults_( std::make_shared< ChipFaults >( config_.faults, nullptr ) ) {}

SimQosBasicHelper::~SimQosBasicHelper() = default;

std::string SimQosBasicHelper::queueName( Mirel::IntfId intf, Qos::TxQueue const& queue ) {
   return intfName( intf ) + " " + queueText( queue );
}

BasicPortSettings SimQosBasicHelper::portDefaults() const {
   BasicPortSettings port;
   port.trustMode = qosHwStatus()->defaultTrustMode();
   port.defaultCos = qosHwStatus()->defaultCos();
   port.defaultDscp = qosHwStatus()->defaultDscp();
   return port;
}

BasicPortSettings& SimQosBasicHelper::port( Mirel::IntfId intf ) {
   return ports_.try_emplace( intf, portDefaults() ).first->second;
}

BasicQueueSettings& SimQosBasicHelper::queue( Mirel::IntfId intf, Qos::TxQueue const& txQueue ) {
   return queues_[ BasicQueueKey{ intf, txQueue } ];
}

void SimQosBasicHelper::fail( Qos::FeatureName feature, Zub::LogHandle& handle,
                              std::vector< Zub::String > const& args ) {
   auto const status = qosSliceHwStatus()->hwProgrammingVersionAndStatusIs( feature );
   status->hwProgrammingStatusIs( Qos::hwProgrammingFailed_ );
   status->errMessageIs( Zub::logFormat( handle.format(), args ) );
   Zub::logEmit( handle, args );
}

bool SimQosBasicHelper::faulted( std::string const& op, std::optional< Qos::FeatureName > feature,
                                 Zub::LogHandle& handle, std::vector< Zub::String > const& args ) {
   if( !faults_->failingCall( op ) ) return false;
   if( feature ) {
      fail( *feature, handle, args );
   } else {
      Zub::logEmit( handle, args );
   }
   return true;
}

bool SimQosBasicHelper::tcamFaulted( std::string const& op,
                                     std::optional< Qos::FeatureName > feature,
                                     std::string const& what,
                                     std::optional< Mirel::IntfId > const& intf ) {
   return faulted( op, feature, Nev::QOS_HW_RESOURCE_FULL,
                   { Zub::String( what ), intf ? intf->stringValue() : Zub::String( "all" ) } );
}

bool SimQosBasicHelper::queueFaulted( std::string const& op, Qos::FeatureName feature,
                                      Zub::LogHandle& handle, Mirel::IntfId intf,
                                      Qos::TxQueue const& txQueue ) {
   return faulted( op, feature, handle,
                   { Zub::String( queueText( txQueue ) ), intf.stringValue() } );
}

// ---- Start-up and verification

void SimQosBasicHelper::initializationComplete() {}

void SimQosBasicHelper::handleEthPhyIntfStatusActive( Mirel::IntfId const& intfId ) {
   // The link speed is known now: percent guarantees of the port are taken of it again.
   for( auto& [ key, q ] : queues_ ) {
      if( key.intf != intfId || q.guaranteedBw.unit != Qos::guaranteedBwUnitPercent_ ) continue;
      if( q.guaranteedBw.rate == Qos::GuaranteedBw::invalidRate ) continue;
      q.guaranteedRate = guaranteedRateOf( intfId, q.guaranteedBw );
   }
}

void SimQosBasicHelper::hwInit() {
   // The chip comes up with its default maps and nothing else programmed.
   Qos::HwStatus const& hw = *qosHwStatus();
   globals_ = BasicGlobalTables();
   for( std::uint8_t cos = 0; cos < Qos::Cos::invalid; ++cos ) {
      globals_.cosToTc[ cos ] = hw.defaultCosToTcMap( cos );
   }
   for( std::uint8_t dscp = 0; dscp < Qos::Dscp::invalid; ++dscp ) {
      globals_.dscpToTc[ dscp ] = hw.defaultDscpToTcMap( dscp );
      globals_.dscpToDp[ dscp ] = hw.defaultDropPrecedence();
   }
   for( std::uint8_t exp = 0; exp < Qos::Exp::invalid; ++exp ) {
      globals_.expToTc[ exp ] = hw.defaultExpToTcMap( exp );
   }
   for( std::uint8_t tc = 0; tc < Qos::TrafficClass::invalid; ++tc ) {
      globals_.tcToCos[ tc ] = hw.defaultTcToCosMap( tc );
      globals_.tcToDscp[ tc ] = hw.defaultTcToDscpMap( tc );
      globals_.tcToExp[ tc ] = hw.defaultTcToExpMap( tc );
      globals_.tcToUcTxQueue[ tc ] = hw.defaultTcToTxQueueMap( tc );
      globals_.tcToMcTxQueue[ tc ] = hw.defaultTcToMcTxQueueMap( tc );
   }
   ports_.clear();
   queues_.clear();
   dscpRewriteMaps_.clear();
   cosToTcProfiles_.clear();
   ecnProfiles_.clear();
   wredProfiles_.clear();
   dropThresholdProfiles_.clear();
   ecnCounters_.clear();
   resetsHalfDone_.clear();
}

void SimQosBasicHelper::handleQosVerify() {}

void SimQosBasicHelper::handleServicePolicyDP1Status() {}

// ---- Global maps

void SimQosBasicHelper::programCosToTcMap( Qos::Cos cos ) {
   if( tcamFaulted( "programCosToTcMap", Qos::featureGlobalMaps_, "COS to traffic class map" ) )
      return;
   globals_.cosToTc.at( cos ) = cosToTc( cos );
   // Profiles follow the global map in the slots their configuration leaves out.
   for( auto& [ name, table ] : cosToTcProfiles_ )
      table.at( cos ) = cosToTcSlot( name, cos );
}

void SimQosBasicHelper::programDscpToTcMap( Qos::Dscp dscp ) {
   if( tcamFaulted( "programDscpToTcMap", Qos::featureGlobalMaps_, "DSCP to traffic class map" ) )
      return;
   globals_.dscpToTc.at( dscp ) = dscpToTc( dscp );
}

void SimQosBasicHelper::programDscpToDpMap( Qos::Dscp dscp ) {
   if( tcamFaulted( "programDscpToDpMap", Qos::featureGlobalMaps_, "DSCP to drop precedence map" ) )
      return;
   globals_.dscpToDp.at( dscp ) = dscpToDp( dscp );
}

void SimQosBasicHelper::programExpToTcMap( Qos::Exp exp ) {
   if( tcamFaulted( "programExpToTcMap", Qos::featureGlobalMaps_, "EXP to traffic class map" ) )
      return;
   globals_.expToTc.at( exp ) = expToTc( exp );
}

void SimQosBasicHelper::programTcToCosMap( Qos::TrafficClass tc ) {
   if( tcamFaulted( "programTcToCosMap", Qos::featureGlobalMaps_, "traffic class to COS map" ) )
      return;
   globals_.tcToCos.at( tc ) = tcToCos( tc );
}

void SimQosBasicHelper::programTcToDscpMap( Qos::TrafficClass tc ) {
   if( tcamFaulted( "programTcToDscpMap", Qos::featureGlobalMaps_, "traffic class to DSCP map" ) )
      return;
   globals_.tcToDscp.at( tc ) = tcToDscp( tc );
   for( auto& [ name, table ] : dscpRewriteMaps_ )
      table.at( tc ) = dscpRewriteSlot( name, tc );
}

void SimQosBasicHelper::programTcToExpMap( Qos::TrafficClass tc ) {
   if( tcamFaulted( "programTcToExpMap", Qos::featureGlobalMaps_, "traffic class to EXP map" ) )
      return;
   globals_.tcToExp.at( tc ) = tcToExp( tc );
}

void SimQosBasicHelper::programCosRewriteEnabled() {
   if( tcamFaulted( "programCosRewriteEnabled", Qos::featureCosRewriteEnable_, "COS rewrite" ) ) {
      return;
   }
   globals_.cosRewriteEnabled = cosRewriteEnabled();
}

void SimQosBasicHelper::programDscpRewriteEnabled() {
   if( tcamFaulted( "programDscpRewriteEnabled", Qos::featureDscpRewriteEnable_,
                    "DSCP rewrite" ) ) {
      return;
   }
   globals_.dscpRewriteEnabled = dscpRewriteEnabled();
}

void SimQosBasicHelper::programTcToUcTxQueueMap( Qos::TrafficClass tc ) {
   if( tcamFaulted( "programTcToUcTxQueueMap", Qos::featureGlobalMaps_,
                    "traffic class to unicast queue map" ) )
      return;
   globals_.tcToUcTxQueue.at( tc ) = tcToUcTxQueue( tc );
}

void SimQosBasicHelper::programTcToMcTxQueueMap( Qos::TrafficClass tc ) {
   if( tcamFaulted( "programTcToMcTxQueueMap", Qos::featureGlobalMaps_,
                    "traffic class to multicast queue map" ) )
      return;
   globals_.tcToMcTxQueue.at( tc ) = tcToMcTxQueue( tc );
}

void SimQosBasicHelper::programGlobalEcn() {
   // Global ECN goes into every queue's ECN profile.
   if( faulted( "programGlobalEcn", Qos::featureEcnStatus_, Nev::QOS_ECN_QUEUE_HW_FULL,
                { Zub::String( "all" ), Zub::String( "all" ) } ) ) {
      return;
   }
   globals_.ecn = qosStatus()->globalEcnStatus();
}

// ---- Ports

void SimQosBasicHelper::programIntfTrustModeCos( Qos::IntfStatus const& intfStatus ) {
   if( tcamFaulted( "programIntfTrustModeCos", Qos::featureTrustMode_, "trust mode cos",
                    intfStatus.key() ) )
      return;
   port( intfStatus.key() ).trustMode = Qos::trustCos_;
}

void SimQosBasicHelper::programIntfTrustModeDscp( Qos::IntfStatus const& intfStatus ) {
   if( tcamFaulted( "programIntfTrustModeDscp", Qos::featureTrustMode_, "trust mode dscp",
                    intfStatus.key() ) )
      return;
   port( intfStatus.key() ).trustMode = Qos::trustDscp_;
}

void SimQosBasicHelper::programIntfTrustModeUntrusted( Qos::IntfStatus const& intfStatus ) {
   if( tcamFaulted( "programIntfTrustModeUntrusted", Qos::featureTrustMode_, "trust mode untrusted",
                    intfStatus.key() ) )
      return;
   port( intfStatus.key() ).trustMode = Qos::untrusted_;
}

void SimQosBasicHelper::programIntfDefaultCos( Qos::IntfStatus const& intfStatus ) {
   if( tcamFaulted( "programIntfDefaultCos", Qos::featureDefaultCos_, "default COS",
                    intfStatus.key() ) )
      return;
   port( intfStatus.key() ).defaultCos = defaultCos( &intfStatus );
}

void SimQosBasicHelper::programIntfDefaultDscp( Qos::IntfStatus const& intfStatus ) {
   if( tcamFaulted( "programIntfDefaultDscp", Qos::featureDefaultDscp_, "default DSCP",
                    intfStatus.key() ) )
      return;
   port( intfStatus.key() ).defaultDscp = defaultDscp( &intfStatus );
}

void SimQosBasicHelper::programIntfShapeRate( Qos::IntfStatus const& intfStatus ) {
   if( tcamFaulted( "programIntfShapeRate", std::nullopt, "shape rate", intfStatus.key() ) ) return;
   port( intfStatus.key() ).shapeRate = intfStatus.shapeRate();
}

void SimQosBasicHelper::programIntfDefaults( Qos::IntfStatus const& intfStatus ) {
   if( tcamFaulted( "programIntfDefaults", Qos::featureTrustMode_, "port defaults",
                    intfStatus.key() ) )
      return;
   port( intfStatus.key() ) = portDefaults();
   qosSliceHwStatus()->intfToCosToTcProfileDel( intfStatus.key() );
}

// ---- Queues

void SimQosBasicHelper::programIntfTxQueuePriority( Qos::IntfStatus const& intfStatus,
                                                    Qos::TxQueueStatus const& txQueueStatus ) {
   if( tcamFaulted( "programIntfTxQueuePriority", std::nullopt,
                    "priority of queue " + queueText( txQueueStatus.key() ), intfStatus.key() ) ) {
      return;
   }
   queue( intfStatus.key(), txQueueStatus.key() ).priority = txQueueStatus.priority();
}

void SimQosBasicHelper::programIntfTxQueueShapeRate( Qos::IntfStatus const& intfStatus,
                                                     Qos::TxQueueStatus const& txQueueStatus ) {
   if( tcamFaulted( "programIntfTxQueueShapeRate", std::nullopt,
                    "shape rate of queue " + queueText( txQueueStatus.key() ),
                    intfStatus.key() ) ) {
      return;
   }
   BasicQueueSettings& q = queue( intfStatus.key(), txQueueStatus.key() );
   q.shapeRate = txQueueStatus.shapeRate();
   // The hardware holds a guarantee only in the shape rate's unit.
   if( q.guaranteedBw.rate != Qos::GuaranteedBw::invalidRate || q.guaranteedBwUnitMismatch ) {
      guaranteeIs( intfStatus.key(), txQueueStatus, q, false );
   }
}

void SimQosBasicHelper::programIntfTxQueueGuaranteedBw( Qos::IntfStatus const& intfStatus,
                                                        Qos::TxQueueStatus const& txQueueStatus ) {
   if( tcamFaulted( "programIntfTxQueueGuaranteedBw", std::nullopt,
                    "bandwidth guaranteed of queue " + queueText( txQueueStatus.key() ),
                    intfStatus.key() ) ) {
      return;
   }
   guaranteeIs( intfStatus.key(), txQueueStatus, queue( intfStatus.key(), txQueueStatus.key() ),
                true );
}

void SimQosBasicHelper::guaranteeIs( Mirel::IntfId intf, Qos::TxQueueStatus const& txQueueStatus,
                                     BasicQueueSettings& q, bool asked ) {
   Qos::GuaranteedBw const bw = txQueueStatus.guaranteedBw();
   Qos::ShapeRate const shape = txQueueStatus.shapeRate();
   bool const none = bw.rate == Qos::GuaranteedBw::invalidRate;
   // A percent is of the link speed, so it counts as kbps.
   if( !none && shape.rate != 0 && ppsUnit( shape ) != ppsUnit( bw ) ) {
      if( asked || q.guaranteedBw.rate != Qos::GuaranteedBw::invalidRate ) {
         Zub::log( Nev::QOS_SCH_SHP_UNIT_MISMATCH, shapeRateUnitToStr( shape.unit ),
                   guaranteedBwUnitToStr( bw.unit ),
                   Zub::String( queueText( txQueueStatus.key() ) ), intf.stringValue(),
                   "bandwidth guaranteed" );
      }
      q.guaranteedBw = Qos::GuaranteedBw();
      q.guaranteedRate = 0;
      q.guaranteedBwUnitMismatch = true;
      return;
   }
   q.guaranteedBwUnitMismatch = false;
   q.guaranteedBw = none ? Qos::GuaranteedBw() : bw;
   q.guaranteedRate = none ? 0 : guaranteedRateOf( intf, bw );
}

std::uint64_t SimQosBasicHelper::guaranteedRateOf( Mirel::IntfId intf,
                                                   Qos::GuaranteedBw const& bw ) const {
   if( bw.unit != Qos::guaranteedBwUnitPercent_ ) return bw.rate;
   std::uint64_t speedMbps = 0;
   if( ethPhyIntfStatusDir_ ) {
      if( auto const phy = ethPhyIntfStatusDir_->intfStatus( intf ) ) speedMbps = phy->speed();
   }
   // Mbps * 1000 / 100 per percent.
   return speedMbps * 10 * bw.rate;
}

bool SimQosBasicHelper::ecnProfileIs( Mirel::IntfId intf, Qos::TxQueue const& txQueue,
                                      BasicQueueSettings const& wanted, Qos::FeatureName feature ) {
   std::string const user = queueName( intf, txQueue );
   std::string const settings = ecnSettings( wanted );
   if( settings.empty() ) {
      ecnProfiles_.release( user );
      return true;
   }
   if( ecnProfiles_.assign( user, settings ) ) return true;
   fail( feature, Nev::QOS_ECN_QUEUE_HW_FULL,
         { Zub::String( queueText( txQueue ) ), intf.stringValue() } );
   return false;
}

void SimQosBasicHelper::programIntfTxQueueEcn( Qos::IntfStatus const& intfStatus,
                                               Qos::TxQueueStatus const& txQueueStatus ) {
   if( queueFaulted( "programIntfTxQueueEcn", Qos::featureEcnStatus_, Nev::QOS_ECN_QUEUE_HW_FULL,
                     intfStatus.key(), txQueueStatus.key() ) ) {
      return;
   }
   BasicQueueSettings& q = queue( intfStatus.key(), txQueueStatus.key() );
   BasicQueueSettings wanted = q;
   wanted.ecn = txQueueStatus.ecnStatus();
   if( ecnProfileIs( intfStatus.key(), txQueueStatus.key(), wanted, Qos::featureEcnStatus_ ) ) {
      q.ecn = wanted.ecn;
   }
}

void SimQosBasicHelper::programIntfTxQueueNonEct( Qos::IntfStatus const& intfStatus,
                                                  Qos::TxQueueStatus const& txQueueStatus ) {
   if( queueFaulted( "programIntfTxQueueNonEct", Qos::featureEcnStatus_, Nev::QOS_ECN_QUEUE_HW_FULL,
                     intfStatus.key(), txQueueStatus.key() ) ) {
      return;
   }
   BasicQueueSettings& q = queue( intfStatus.key(), txQueueStatus.key() );
   BasicQueueSettings wanted = q;
   wanted.nonEct = txQueueStatus.nonEctStatus();
   if( ecnProfileIs( intfStatus.key(), txQueueStatus.key(), wanted, Qos::featureEcnStatus_ ) ) {
      q.nonEct = wanted.nonEct;
   }
}

void SimQosBasicHelper::programIntfTxQueueEcnDelayThreshold(
      Qos::IntfStatus const& intfStatus, Qos::TxQueue const& txQueueId, bool delayEcnEnabled,
      Qos::EcnDelayThreshold ecnDelayThreshold ) {
   if( queueFaulted( "programIntfTxQueueEcnDelayThreshold", Qos::featureEcnDelayThreshold_,
                     Nev::QOS_ECN_QUEUE_HW_FULL, intfStatus.key(), txQueueId ) ) {
      return;
   }
   BasicQueueSettings& q = queue( intfStatus.key(), txQueueId );
   BasicQueueSettings wanted = q;
   wanted.delayEcnEnabled = delayEcnEnabled;
   wanted.ecnDelayThreshold = ecnDelayThreshold;
   if( ecnProfileIs( intfStatus.key(), txQueueId, wanted, Qos::featureEcnDelayThreshold_ ) ) {
      q.delayEcnEnabled = delayEcnEnabled;
      q.ecnDelayThreshold = ecnDelayThreshold;
   }
}

bool SimQosBasicHelper::programIntfTxQueueEcnCount( Mirel::IntfId const& intfId,
                                                    Qos::TxQueueId txQueueId, bool enable ) {
   auto const key = std::make_pair( intfId, std::uint32_t( txQueueId ) );
   // This call reports by its result: the engine lowers the record.
   if( faulted( "programIntfTxQueueEcnCount", std::nullopt, Nev::QOS_ECN_QUEUE_COUNTER_HW_FULL,
                { intfId.stringValue(), Zub::String( textOf( std::uint32_t( txQueueId ) ) ) } ) ) {
      return false;
   }
   if( !enable ) {
      ecnCounters_.erase( key );
      return true;
   }
   if( ecnCounters_.contains( key ) ) return true;
   if( ecnCounters_.size() >= config_.ecnQueueCounters ) {
      Zub::log( Nev::QOS_ECN_QUEUE_COUNTER_HW_FULL, intfId.stringValue(),
                std::uint32_t( txQueueId ) );
      return false;
   }
   ecnCounters_.insert( key );
   return true;
}

void SimQosBasicHelper::programIntfTxQueueWred( Qos::IntfStatus const& intfStatus,
                                                Qos::TxQueueStatus const& txQueueStatus ) {
   if( queueFaulted( "programIntfTxQueueWred", Qos::featureWred_, Nev::QOS_WRED_QUEUE_HW_FULL,
                     intfStatus.key(), txQueueStatus.key() ) ) {
      return;
   }
   BasicQueueSettings& q = queue( intfStatus.key(), txQueueStatus.key() );
   BasicQueueSettings wanted = q;
   wanted.wred = txQueueStatus.wredStatus();
   std::string const user = queueName( intfStatus.key(), txQueueStatus.key() );
   std::string const settings = wredSettings( wanted );
   if( settings.empty() ) {
      wredProfiles_.release( user );
   } else if( !wredProfiles_.assign( user, settings ) ) {
      fail( Qos::featureWred_, Nev::QOS_WRED_QUEUE_HW_FULL,
            { Zub::String( queueText( txQueueStatus.key() ) ), intfStatus.key().stringValue() } );
      return;
   }
   q.wred = wanted.wred;
}

void SimQosBasicHelper::programIntfTxQueueDropThresholdForDp(
      Qos::IntfStatus const& intfStatus, Qos::TxQueueStatus const& txQueueStatus,
      Qos::DropPrecedence dp ) {
   if( queueFaulted( "programIntfTxQueueDropThresholdForDp", Qos::featureDropThresholds_,
                     Nev::QOS_DP_THRESHOLDS_HW_FULL, intfStatus.key(), txQueueStatus.key() ) ) {
      return;
   }
   BasicQueueSettings& q = queue( intfStatus.key(), txQueueStatus.key() );
   BasicQueueSettings wanted = q;
   if( txQueueStatus.dropThresholdsHas( dp ) ) {
      wanted.dropThresholds[ dp ] = txQueueStatus.dropThresholds( dp );
   } else {
      wanted.dropThresholds.erase( dp );
   }
   std::string const user = queueName( intfStatus.key(), txQueueStatus.key() );
   std::string const settings = dropThresholdSettings( wanted );
   if( settings.empty() ) {
      dropThresholdProfiles_.release( user );
   } else if( !dropThresholdProfiles_.assign( user, settings ) ) {
      fail( Qos::featureDropThresholds_, Nev::QOS_DP_THRESHOLDS_HW_FULL,
            { Zub::String( queueText( txQueueStatus.key() ) ), intfStatus.key().stringValue() } );
      return;
   }
   q.dropThresholds = wanted.dropThresholds;
}

void SimQosBasicHelper::programIntfTxQueueDropThresholdDefaults(
      Qos::IntfStatus const& intfStatus, Qos::TxQueueStatus const& txQueueStatus ) {
   if( queueFaulted( "programIntfTxQueueDropThresholdDefaults", Qos::featureDropThresholds_,
                     Nev::QOS_DP_THRESHOLDS_HW_FULL, intfStatus.key(), txQueueStatus.key() ) ) {
      return;
   }
   auto const q = queues_.find( BasicQueueKey{ intfStatus.key(), txQueueStatus.key() } );
   if( q != queues_.end() ) q->second.dropThresholds.clear();
   dropThresholdProfiles_.release( queueName( intfStatus.key(), txQueueStatus.key() ) );
}

void SimQosBasicHelper::programIntfTxQueueDefaults( Qos::IntfStatus const& intfStatus,
                                                    Qos::TxQueueStatus const& txQueueStatus ) {
   // The engine resets a queue with two calls in a row, the first under the ECN record and the
   // second under the WRED record; a failure is filed under the record of its half.
   BasicQueueKey const key{ intfStatus.key(), txQueueStatus.key() };
   bool const wredHalf = resetsHalfDone_.erase( key ) > 0;
   if( !wredHalf ) resetsHalfDone_.insert( key );
   if( queueFaulted( "programIntfTxQueueDefaults",
                     wredHalf ? Qos::featureWred_ : Qos::featureEcnStatus_,
                     wredHalf ? Nev::QOS_WRED_QUEUE_HW_FULL : Nev::QOS_ECN_QUEUE_HW_FULL,
                     intfStatus.key(), txQueueStatus.key() ) ) {
      return;
   }
   std::string const user = queueName( intfStatus.key(), txQueueStatus.key() );
   ecnProfiles_.release( user );
   wredProfiles_.release( user );
   dropThresholdProfiles_.release( user );
   queues_.erase( key );
}

// ---- DSCP rewrite maps and COS-to-TC profiles

Qos::Dscp SimQosBasicHelper::dscpRewriteSlot( Zub::Name const& mapName,
                                              Qos::TrafficClass tc ) const {
   auto const map = qosStatus()->dscpRewriteMap( mapName );
   Qos::Dscp const dscp = map ? map->tcToDscpMap( tc ) : Qos::Dscp();
   return dscp.isValid() ? dscp : tcToDscp( tc );
}

Qos::TrafficClass SimQosBasicHelper::cosToTcSlot( Zub::Name const& profileName,
                                                  Qos::Cos cos ) const {
   auto const profile = qosStatus()->cosToTcProfile( profileName );
   Qos::TrafficClass const tc = profile ? profile->cosToTcMap( cos ) : Qos::TrafficClass();
   return tc.isValid() ? tc : cosToTc( cos );
}

bool SimQosBasicHelper::loadDscpRewriteMap( Zub::Name const& mapName ) {
   if( !qosStatus()->dscpRewriteMapHas( mapName ) ) return false;
   DscpRewriteTable& table = dscpRewriteMaps_[ mapName ];
   for( std::uint8_t tc = 0; tc < Qos::TrafficClass::invalid; ++tc )
      table[ tc ] = dscpRewriteSlot( mapName, tc );
   return true;
}

bool SimQosBasicHelper::loadCosToTcProfile( Zub::Name const& profileName ) {
   if( !qosStatus()->cosToTcProfileHas( profileName ) ) return false;
   CosToTcTable& table = cosToTcProfiles_[ profileName ];
   for( std::uint8_t cos = 0; cos < Qos::Cos::invalid; ++cos )
      table[ cos ] = cosToTcSlot( profileName, cos );
   return true;
}

void SimQosBasicHelper::programDscpMap( Zub::Name const& mapName ) {
   if( tcamFaulted( "programDscpMap", Qos::featureDscpRewriteEnable_,
                    "DSCP rewrite map " + textOf( mapName ) ) ) {
      return;
   }
   loadDscpRewriteMap( mapName );
}

void SimQosBasicHelper::deleteDscpMap( Zub::Name const& mapName ) {
   if( tcamFaulted( "deleteDscpMap", Qos::featureDscpRewriteEnable_,
                    "DSCP rewrite map " + textOf( mapName ) ) ) {
      return;
   }
   dscpRewriteMaps_.erase( mapName );
   // Ports of the map go back to the global one.
   for( auto& [ intf, p ] : ports_ ) {
      if( p.dscpRewriteMap == mapName ) p.dscpRewriteMap = Zub::Name();
   }
}

void SimQosBasicHelper::programIntfToDscpRewriteMap( Qos::IntfStatus const& intfStatus ) {
   if( tcamFaulted( "programIntfToDscpRewriteMap", Qos::featureDscpRewriteEnable_,
                    "DSCP rewrite map " + textOf( intfStatus.dscpRewriteMapName() ),
                    intfStatus.key() ) ) {
      return;
   }
   Zub::Name name = intfStatus.dscpRewriteMapName();
   // A map the chip does not hold yet is written first; one nobody configured binds nothing.
   if( !name.empty() && !dscpRewriteMaps_.contains( name ) && !loadDscpRewriteMap( name ) ) {
      name = Zub::Name();
   }
   port( intfStatus.key() ).dscpRewriteMap = name;
}

void SimQosBasicHelper::updateTcToDscpMapping( Zub::Name const& mapName, Qos::TrafficClass tc ) {
   if( tcamFaulted( "updateTcToDscpMapping", Qos::featureDscpRewriteEnable_,
                    "DSCP rewrite map " + textOf( mapName ) ) ) {
      return;
   }
   auto const table = dscpRewriteMaps_.find( mapName );
   if( table == dscpRewriteMaps_.end() ) {
      loadDscpRewriteMap( mapName );
      return;
   }
   table->second.at( tc ) = dscpRewriteSlot( mapName, tc );
}

void SimQosBasicHelper::addCosToTcProfile( Zub::Name const& profileName ) {
   if( tcamFaulted( "addCosToTcProfile", Qos::featureGlobalMaps_,
                    "COS to traffic class profile " + textOf( profileName ) ) ) {
      return;
   }
   loadCosToTcProfile( profileName );
}

void SimQosBasicHelper::removeCosToTcProfile( Zub::Name const& profileName ) {
   if( tcamFaulted( "removeCosToTcProfile", Qos::featureGlobalMaps_,
                    "COS to traffic class profile " + textOf( profileName ) ) ) {
      return;
   }
   cosToTcProfiles_.erase( profileName );
   for( auto& [ intf, p ] : ports_ ) {
      if( p.cosToTcProfile != profileName ) continue;
      p.cosToTcProfile = Zub::Name();
      qosSliceHwStatus()->intfToCosToTcProfileDel( intf );
   }
}

void SimQosBasicHelper::handleIntfToCosToTcProfile( Mirel::IntfId const& intfId, bool ) {
   auto const intfStatus = qosStatus()->intfStatus( intfId );
   Zub::Name name = intfStatus ? intfStatus->cosToTcProfileName() : Zub::Name();
   if( tcamFaulted( "handleIntfToCosToTcProfile", Qos::featureGlobalMaps_,
                    "COS to traffic class profile " + textOf( name ), intfId ) ) {
      return;
   }
   if( !name.empty() && !cosToTcProfiles_.contains( name ) && !loadCosToTcProfile( name ) ) {
      name = Zub::Name();
   }
   if( name.empty() ) {
      if( auto const p = ports_.find( intfId ); p != ports_.end() ) {
         p->second.cosToTcProfile = Zub::Name();
      }
      qosSliceHwStatus()->intfToCosToTcProfileDel( intfId );
      return;
   }
   port( intfId ).cosToTcProfile = name;
   qosSliceHwStatus()->intfToCosToTcProfileIs( intfId, name );
}

void SimQosBasicHelper::updateCosToTcProfileMapping( Zub::Name const& profileName, Qos::Cos cos ) {
   if( tcamFaulted( "updateCosToTcProfileMapping", Qos::featureGlobalMaps_,
                    "COS to traffic class profile " + textOf( profileName ) ) ) {
      return;
   }
   auto const table = cosToTcProfiles_.find( profileName );
   if( table == cosToTcProfiles_.end() ) {
      loadCosToTcProfile( profileName );
      return;
   }
   table->second.at( cos ) = cosToTcSlot( profileName, cos );
}

}  // namespace Sim
