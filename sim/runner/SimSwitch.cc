#include "NevQos/sim/runner/SimSwitch.h"

#include <algorithm>
#include <string>
#include <type_traits>

#include "NevQos/platform/entities/SliceHwStatus.h"
#include "NevQos/platform/zub/Log.h"
#include "NevQos/platform/zub/Trace.h"
#include "NevQos/sim/scenario/ScenarioError.h"

namespace Sim {

namespace {

char const* severityText( Zub::LogSeverity s ) {
   switch( s ) {
      case Zub::LogSeverity::emergency:
         return "emergency";
      case Zub::LogSeverity::alert:
         return "alert";
      case Zub::LogSeverity::critical:
         return "critical";
      case Zub::LogSeverity::error:
         return "error";
      case Zub::LogSeverity::warning:
         return "warning";
      case Zub::LogSeverity::notice:
         return "notice";
      case Zub::LogSeverity::info:
         return "info";
      case Zub::LogSeverity::debug:
         return "debug";
   }
   return "unknown";
}

}  // namespace

SimSwitch::SimSwitch( Scenario const& scenario, SwitchOptions const& options )
    : file_( scenario.file )
    , calls_( options.keepCalls, options.keepCalls, options.keepCallTimes )
    , keepTraces_( options.keepTraces || !scenario.traces.empty() )
    , ownTraceLists_( !scenario.traces.empty() )
    , traces_( options.keepTraceLines, options.keepTraceLines ) {
   // The loader has checked the lists.
   for( std::string const& list : scenario.traces )
      Zub::traceEnable( list );
   loop_ = Zub::ActivityManager::create( Zub::ActivityManager::TimeSource::simulated,
                                         switchStartTime );
   loop_->runawayLimitIs( options.runawayTurns );
   enter();
   entitiesIs( scenario.chip, options.driver );
   if( scenario.kernelCoppConfig ) {
      kernelCoppConfig_ = Zub::make< Nev::KernelCoPPConfig >( Zub::Name( "kernelCoppConfig" ) );
   }
   ncsd_->verifyData()->verifyRequiredIs( options.verifyOnRequest );
   publisher_ = std::make_unique< ConfigPublisher >(
         EngineInputs{ qosStatus_, aclConfig_, aclHwStatus_, hwStatus_, counterConfigDir_, ncsd_,
                       cliCounterConfig_, ethPhyIntfStatusDir_, kernelCoppStatus_,
                       fecOverrideConfig_, fecService_, subIntfStatusDir_, nexthopGroupStatus_ },
         scenario.file );
   publisher_->chipIs( scenario.chip );
   publisher_->initialIs( scenario.initial );
   engineIs();
}

void SimSwitch::enter() {
   Zub::activityManagerIs( loop_ );
   Zub::logSinkIs( [ this ]( Zub::LogRecord const& r ) {
      logs_.push_back( LogLine{
            r.time, r.handle->name().stdString(), severityText( r.handle->severity() ),
            static_cast< int >( r.handle->severity() ), r.text.stdString(), calls_.size() } );
   } );
   if( !keepTraces_ ) return;
   Zub::traceSinkIs( [ this ]( Zub::TraceRecord const& r ) {
      traces_.append( TraceLine{ loop_->now(), r.handle.stdString(), r.level,
                                 r.function ? r.function : "", r.message.stdString() } );
   } );
}

SimSwitch::~SimSwitch() {
   enginesStop();
   Zub::logSinkIs( nullptr );
   if( keepTraces_ ) Zub::traceSinkIs( nullptr );
   // A scenario's lists are for its own run, not for a switch built after it.
   if( ownTraceLists_ ) Zub::traceDisableAll();
   Zub::activityManagerIs( nullptr );
}

void SimSwitch::entitiesIs( ChipConfig const& chip, DriverHelpers const& driver ) {
   ncsd_ = Zub::make< Nev::NevCommonSmData >( Zub::Name( "ncsd" ) );
   ncsd_->verifyDataIs( Zub::make< Nev::VerifyData >( Zub::Name( "verify" ) ) );
   cliCounterConfig_ = Zub::make< Qos::CounterConfig >( Zub::Name( "cli" ) );
   counterConfigDir_ = Zub::make< Zub::Dir >( Zub::Name( "counterConfig" ) );
   qosStatus_ = Zub::make< Qos::Status >( Zub::Name( "qos" ) );
   hwStatus_ = Zub::make< Qos::HwStatus >( Zub::Name( "hw" ) );
   sliceHwStatusDir_ = Zub::make< Zub::Dir >( Zub::Name( "slice" ) );
   sliceHwStatus_ = Zub::make< Qos::SliceHwStatus >( Zub::Name( "FixedSystem" ) );
   sliceHwStatus_->maxClassesPerPolicyMapIs( chip.maxClassesPerPolicyMap );
   sliceHwStatusDir_->entityPtrIs( Zub::Name( "FixedSystem" ), sliceHwStatus_ );
   ethPhyIntfStatusDir_ = Zub::make< Interface::AllEthPhyIntfStatusDir >( Zub::Name( "ethPhy" ) );
   aclHwStatus_ = Zub::make< Qos::AclHwStatus >( Zub::Name( "aclHw" ) );
   aclSliceHwStatus_ = Zub::make< Qos::AclSliceHwStatus >( Zub::Name( "aclSlice" ) );
   subIntfStatusDir_ = Zub::make< Interface::SubIntfStatusDir >( Zub::Name( "subIntf" ) );
   nexthopGroupStatus_ = Zub::make< Nev::NexthopGroupStatus >( Zub::Name( "nexthopGroup" ) );
   pdpHwCfg_ = Zub::make< Qos::Input::Config >( Zub::Name( "pdp" ) );
   hwEpochStatus_ = Zub::make< HwEpoch::Status >( Zub::Name( "epoch" ) );
   hwEpochStatus_->pdpModeEnabledIs( chip.pdpMode );
   aclConfig_ = Zub::make< Acl::Config >( Zub::Name( "acl" ) );
   clock_ = Zub::make< Kesh::TimerWheel >();
   chip_ = Zub::make< SimQosAclHelper >( chip, qosStatus_, aclSliceHwStatus_, aclConfig_, clock_ );
   chip_->verifyDataIs( ncsd_->verifyData() );
   // The agent marks pending the operation the chip says it left so; a driver built on the chip
   // may take the report on its way (DriverInputs::operationLeftPending).
   chip_->operationLeftPendingHandlerIs( [ this ] { operationLeftPending(); } );
   // The engines hold the chips, or the driver's helpers, through the recording decorators,
   // which write every call into the one log in order.
   aclRecorder_ = Zub::make< RecordingQosAclHelper >(
         driver.acl ? driver.acl( chip_, driverInputs( chip ) )
                    : Zub::Ptr< NevHelper::QosAclHelper >( chip_ ),
         clock_ );
   aclRecorder_->callLogIs( &calls_ );
   basicChip_ = Zub::make< SimQosBasicHelper >( chip, qosStatus_, hwStatus_, sliceHwStatus_,
                                                ethPhyIntfStatusDir_ );
   // One set of faults for the whole chip: a fault switch and the call counts reach both helpers.
   basicChip_->faultsIs( chip_->faults() );
   basicRecorder_ = Zub::make< RecordingQosBasicHelper >(
         driver.basic ? driver.basic( basicChip_, driverInputs( chip ) )
                      : Zub::Ptr< NevHelper::QosBasicHelper >( basicChip_ ),
         clock_ );
   basicRecorder_->callLogIs( &calls_ );
   kernelCoppStatus_ = Zub::make< Nev::KernelCoPPStatus >( Zub::Name( "kernelCopp" ) );
   pktDrv_ = Zub::make< SimPktDrv >();
   pktDrv_->clockIs( [ loop = loop_.ptr() ] { return loop->now(); } );
   cbfTablesIs( chip, driver );
}

DriverInputs SimSwitch::driverInputs( ChipConfig const& chip ) {
   return DriverInputs{ &chip,
                        qosStatus_,
                        hwStatus_,
                        sliceHwStatus_,
                        aclSliceHwStatus_,
                        aclConfig_,
                        ethPhyIntfStatusDir_,
                        clock_,
                        ncsd_->verifyData(),
                        [ this ] { operationLeftPending(); } };
}

void SimSwitch::cbfTablesIs( ChipConfig const& chip, DriverHelpers const& driver ) {
   using Access = Glarn::Access;
   fecOverrideConfigStore_ = Zub::make< Qos::Glarn::FecOverrideConfig::Store >(
         Zub::String( "cbf/fecOverrideConfig" ) );
   fecOverrideConfig_ =
         Zub::make< Qos::Glarn::FecOverrideConfig >( fecOverrideConfigStore_, Access::writer );
   fecOverrideStatus_ = Zub::make< Qos::Glarn::FecOverrideStatus >(
         Zub::make< Qos::Glarn::FecOverrideStatus::Store >(
               Zub::String( "cbf/fecOverrideStatus" ) ),
         Access::writer );
   hwFecIdRequest_ = Zub::make< Nev::FecIdToHwFecIdRequest >(
         Zub::make< Nev::FecIdToHwFecIdRequest::Store >( Zub::String( "fec/hwFecIdRequest" ) ),
         Access::writer );
   fecServiceStore_ =
         Zub::make< Nev::FecIdToHwFecIdResponse::Store >( Zub::String( "fec/hwFecIdResponse" ) );
   fecService_ = Zub::make< Nev::FecIdToHwFecIdResponse >( fecServiceStore_, Access::writer );
   cbfViewsIs();
   taskScheduler_ = Zub::make< Kesh::TaskScheduler >();
   taskScheduler_->workQuantumIs( chip.cbfReviewQuantum );
   cbfChip_ = Zub::make< SimCbfFecMappingHelper >( chip.cbfRules, [ acl = chip_.ptr() ] {
      return acl->faultOn( FaultConfig::Kind::cbfNotReady );
   } );
   cbfChip_->faultsIs( chip_->faults() );
   cbfRecorder_ = Zub::make< RecordingCbfFecMappingHelper >(
         driver.cbf ? driver.cbf( cbfChip_, driverInputs( chip ) )
                    : Zub::Ptr< NevHelper::CbfFecMappingHelper >( cbfChip_ ),
         clock_ );
   cbfRecorder_->callLogIs( &calls_ );
}

void SimSwitch::cbfViewsIs() {
   fecOverrideConfigView_ = Zub::make< Qos::Glarn::FecOverrideConfig >( fecOverrideConfigStore_,
                                                                        Glarn::Access::readOnly );
   fecServiceView_ =
         Zub::make< Nev::FecIdToHwFecIdResponse >( fecServiceStore_, Glarn::Access::readOnly );
}

void SimSwitch::engineIs() {
   engine_ = Nev::QosAclSmIs( ncsd_, cliCounterConfig_, counterConfigDir_, qosStatus_, hwStatus_,
                              sliceHwStatusDir_, aclHwStatus_, aclSliceHwStatus_, subIntfStatusDir_,
                              pdpHwCfg_, hwEpochStatus_, aclConfig_,
                              Zub::Ptr< NevHelper::QosAclHelper >( aclRecorder_ ), clock_,
                              kernelCoppStatus_, kernelCoppConfig_, nexthopGroupStatus_ );
   // The agent's part of the asynchronous road: how long an operation may stay pending.
   engine_->pendingOperationTimeoutIs( chip_->config().asyncTimeout );
   basicEngine_ =
         Nev::qosBasicSmFactory( ncsd_, qosStatus_, hwStatus_, sliceHwStatus_, basicRecorder_,
                                 ethPhyIntfStatusDir_, cliCounterConfig_, clock_ );
   // The per-port CoPP machine shares the policy engine's helper.
   coppEngine_ = Nev::dynamicPerPortCoppSmFactory(
         clock_, kernelCoppStatus_, Zub::Ptr< NevHelper::QosAclHelper >( aclRecorder_ ) );
   kernelEngine_ = Nev::qosKernelStatusSmFactory( pktDrv_, qosStatus_, hwStatus_ );
   // The rule table comes up empty with the driver, as the chip's other tables do at hwInit();
   // the engine has no start-up call for it, so it is cleared here.
   cbfChip_->rulesDelAll();
   // One VRF; the machine starts at once, over the overrides published so far, and so may read
   // a damaged record at once.
   try {
      cbfEngine_ = Nev::cbfFecMappingSmFactory( 1, fecOverrideConfigView_, fecOverrideStatus_,
                                                hwFecIdRequest_, fecServiceView_, taskScheduler_,
                                                cbfRecorder_ );
   } catch( Pelto::CorruptionDetectedException const& e ) {
      corruptionRestartIs( e );
      return;
   }
   cbfEngine_->verifyDataIs( ncsd_->verifyData() );
   settle( loop_->now() );
   pdpConfigMerge();
}

void SimSwitch::settle( Zub::Seconds t ) {
   try {
      loop_->runUntil( t );
   } catch( Pelto::CorruptionDetectedException const& e ) {
      corruptionRestartIs( e );
      settle( t );
   }
}

// The torn read is over once the agent is down: the table's writer has finished its write, so
// the new engines read whole records.
void SimSwitch::corruptionRestartIs( Pelto::CorruptionDetectedException const& e ) {
   corruptionRestarts_.push_back( CorruptionRestart{ loop_->now(), e.what() } );
   for( auto it = fecOverrideConfigStore_->records().iter(); it; ++it ) {
      if( fecOverrideConfigStore_->torn( it.key() ) ) fecOverrideConfigStore_->write( it.value() );
   }
   for( auto it = fecServiceStore_->records().iter(); it; ++it ) {
      if( fecServiceStore_->torn( it.key() ) ) fecServiceStore_->write( it.value() );
   }
   enginesStop();
   cbfViewsIs();
   engineIs();
}

// The configuration agent's merge of the system's own service policies (the engine's default
// PDP policy) into the status the engine reads: a service policy per configuration, with its
// interfaces. It runs once the engine has had its turns, as a separate agent would, so the engine
// never hears its own write inside the handler that made it; then the engine's turns run again.
void SimSwitch::pdpConfigMerge() {
   bool changed = false;
   for( auto key = pdpMerged_.begin(); key != pdpMerged_.end(); ) {
      if( pdpHwCfg_->servicePolicyConfig( *key ) ) {
         ++key;
         continue;
      }
      qosStatus_->servicePolicyStatusDel( *key );
      key = pdpMerged_.erase( key );
      changed = true;
   }
   for( auto it = pdpHwCfg_->servicePolicyConfig().iter(); it; ++it ) {
      pdpMerged_.insert( it.key() );
      changed |= pdpIntfsMerge( *it.value() );
   }
   if( changed ) settle( loop_->now() );
}

bool SimSwitch::pdpIntfsMerge( Qos::ServicePolicyConfig const& config ) {
   bool changed = !qosStatus_->servicePolicyStatus( config.key() );
   auto status = qosStatus_->servicePolicyStatusIs( config.key() );
   std::vector< Qos::IntfPairKey > gone;
   for( auto it = status->intfIds().iter(); it; ++it ) {
      if( !config.intfIds( it.key().intfId() ) ) gone.push_back( it.key() );
   }
   for( Qos::IntfPairKey const& intf : gone )
      status->intfIdsDel( intf );
   for( auto it = config.intfIds().iter(); it; ++it ) {
      Qos::IntfPairKey const intf( it.key() );
      if( !it.value() || status->intfIds( intf ) ) continue;
      status->intfIdsIs( intf, true );
      changed = true;
   }
   return changed || !gone.empty();
}

void SimSwitch::operationLeftPending() {
   if( engine_ && engine_->asyncState() == Nev::asyncInProgress ) {
      engine_->asyncStateIs( Nev::asyncPending );
   }
}

// The engines stop as the agent's process would: their reactors fall silent and the machines go,
// and nothing is asked of the chip. Entities, status, the chip and the kernel's packet driver
// stay; the next start-up's hwInit() and stale sweeps deal with what the old engines left.
void SimSwitch::enginesStop() {
   // The chip's report of an operation left pending stays wired (a driver may have taken it on
   // its way): it finds no engine until the next starts, whose hwInit() drops what the chip had
   // under way.
   if( engine_ ) engine_->zubDoZombieReactors( true );
   engine_ = nullptr;
   if( basicEngine_ ) basicEngine_->zubDoZombieReactors( true );
   basicEngine_ = nullptr;
   if( coppEngine_ ) coppEngine_->zubDoZombieReactors( true );
   coppEngine_ = nullptr;
   if( kernelEngine_ ) kernelEngine_->zubDoZombieReactors( true );
   kernelEngine_ = nullptr;
   cbfEngine_ = nullptr;
}

void SimSwitch::restart() {
   enter();
   settle( loop_->now() );
   enginesStop();
   engineIs();
}

void SimSwitch::stepIs( Step const& step ) {
   enter();
   runUntil( step.time );
   // Traffic first, so that a counter request of the same step sees it. The loader has checked
   // every step against the configuration, so the publisher does not refuse it after this.
   chipChangesIs( step.changes );
   std::map< Mirel::IntfId, LinkDef > const linksBefore = publisher_->model().links();
   auto const overridesBefore = publisher_->model().fecOverrides();
   // At a restart mark the old engines finish the turns due now and stop; the new ones start
   // once the changes made while they were down are written.
   publisher_->stepIs( step, [ this ] {
      settle( loop_->now() );
      enginesStop();
   } );
   if( !engine_ ) engineIs();
   unseenFecOverrideRemovalsIs( step, overridesBefore );
   driverInputsIs( step );
   settle( loop_->now() );
   pdpConfigMerge();
   dlpFlowIs( linksBefore );
}

void SimSwitch::unseenFecOverrideRemovalsIs(
      Step const& step,
      std::map< Qos::Glarn::OverrideKey, FecOverrideDef > const& overridesBefore ) {
   auto const& overridesAfter = publisher_->model().fecOverrides();
   for( Change const& change : step.changes ) {
      auto const* removal = std::get_if< FecOverrideRemoval >( &change.value );
      if( !removal || overridesBefore.contains( removal->key ) ||
          overridesAfter.contains( removal->key ) ) {
         continue;
      }
      cbfEngine_->handlePolicyOverrideConfig( removal->key );
   }
}

// The platform's DLP flow owns the ports of a slice: basic QoS hears from it, not from the
// port's status, that a port became active or inactive, and reprograms an active one.
void SimSwitch::dlpFlowIs( std::map< Mirel::IntfId, LinkDef > const& linksBefore ) {
   if( !ncsd_->dlpEnabled() ) return;
   for( auto const& [ intf, link ] : publisher_->model().links() ) {
      bool const active = link.active.value_or( false );
      auto const before = linksBefore.find( intf );
      bool const wasActive = before != linksBefore.end() && before->second.active.value_or( false );
      if( active == wasActive ) continue;
      if( auto const reactor = basicEngine_->status( intf ) ) {
         reactor->handleEthPhyIntfStatusActiveDlp( intf, active );
      }
   }
   settle( loop_->now() );
}

// What the chip's driver writes on the helper the engine watches, once the step's configuration
// is in.
void SimSwitch::driverInputsIs( Step const& step ) {
   for( Change const& change : step.changes ) {
      if( auto const* waiting = std::get_if< CliWaiting >( &change.value ) ) {
         aclRecorder_->cliWaitingIs( waiting->waiting );
      } else if( std::holds_alternative< PolicyMapsReprogramRequest >( change.value ) ) {
         aclRecorder_->reprogramAllPMapsRequestTimeIs( step.time );
      }
   }
}

void SimSwitch::runUntil( Zub::Seconds t ) {
   enter();
   if( t > loop_->now() ) settle( t );
}

void SimSwitch::runFor( Zub::Seconds span, std::function< void() > const& afterSlice ) {
   constexpr Zub::Seconds shortestSlice = 1.0;
   constexpr double mostSlices = 10000.0;
   Zub::Seconds const end = now() + span;
   Zub::Seconds const slice = std::max( shortestSlice, span / mostSlices );
   while( now() < end ) {
      Zub::Seconds const next = std::min( end, now() + slice );
      runUntil( next > now() ? next : end );
      afterSlice();
   }
}

std::vector< std::string > SimSwitch::verify() {
   enter();
   auto const data = ncsd_->verifyData();
   data->cliVerifyOutputDelAll();
   // A run compares everything, not only what changed since the last one.
   engine_->schedulePolicyVerify();
   basicEngine_->scheduleQosVerify();
   return verifyRun();
}

bool SimSwitch::verifyRequested() const {
   return ncsd_->verifyData()->verifyRequested();
}

std::vector< std::string > SimSwitch::requestedVerify() {
   enter();
   ncsd_->verifyData()->cliVerifyOutputDelAll();
   return verifyRun();
}

std::vector< std::string > SimSwitch::verifyRun() {
   auto const data = ncsd_->verifyData();
   data->doVerify();
   settle( loop_->now() );
   std::vector< std::string > findings;
   for( Zub::String const& text : data->cliVerifyOutputTexts() )
      findings.push_back( text.stdString() );
   return findings;
}

void SimSwitch::show( int fd, Qos::MapType type, bool detail ) {
   enter();
   engine_->showAcls( static_cast< std::uint32_t >( fd ), 0, detail, type );
}

std::vector< Qos::MapType > SimSwitch::mapTypes() const {
   std::vector< Qos::MapType > types;
   for( auto it = engine_->pmapTypeSm().iter(); it; ++it )
      types.push_back( it.key() );
   return types;
}

void SimSwitch::chipChangesIs( std::vector< Change > const& changes ) {
   for( Change const& change : changes ) {
      if( auto const* traffic = std::get_if< TrafficInjection >( &change.value ) ) {
         Nev::QosClassCounterData hits;
         hits.pktHitsIs( traffic->packets );
         hits.byteHitsIs( traffic->bytes );
         hits.pktDropsIs( traffic->droppedPackets );
         hits.byteDropsIs( traffic->droppedBytes );
         hits.yellowPktHitsIs( traffic->yellowPackets );
         hits.yellowByteHitsIs( traffic->yellowBytes );
         chip_->trafficIs( ChipTraffic{ traffic->servicePolicy, Zub::Name( traffic->classMap ),
                                        traffic->intf, hits } );
      } else if( auto const* fault = std::get_if< FaultSwitch >( &change.value ) ) {
         chip_->faultIs( fault->fault, fault->on );
      } else if( auto const* damage = std::get_if< TcamCorruption >( &change.value ) ) {
         tcamDamageIs( *damage, change.where );
      } else if( auto const* callback = std::get_if< IntfUpdateCallback >( &change.value ) ) {
         // The engine watches the helper it was given, the recorder in front of the chip.
         aclRecorder_->intfUpdateCallback( callback->intf, callback->direction );
      } else if( auto const* torn = std::get_if< FecTableDamage >( &change.value ) ) {
         fecTableDamageIs( *torn );
      }
   }
}

void SimSwitch::tcamDamageIs( TcamCorruption const& damage, Where const& where ) {
   std::string const entry = std::to_string( damage.rule ) + "." + std::to_string( damage.subrule );
   if( damage.add ) {
      if( chip_->plantEntry(
                damage.acl, TcamEntry{ "ip", damage.rule, damage.subrule, damage.fields } ) == 0 ) {
         throw ScenarioError( file_, where,
                              "corruptTcam: no installed ACL " + damage.acl +
                                    " can take an added entry " + entry +
                                    " now (it has one already, or its slice is full)" );
      }
      return;
   }
   if( chip_->corruptEntry( damage.acl, damage.rule, damage.subrule, damage.field, damage.value ) ==
       0 ) {
      throw ScenarioError(
            file_, where,
            "corruptTcam: no installed ACL " + damage.acl + " has entry " + entry + " now" );
   }
}

void SimSwitch::fecTableDamageIs( FecTableDamage const& damage ) {
   if( damage.service ) {
      fecServiceStore_->corrupt( damage.fec );
   } else {
      fecOverrideConfigStore_->corrupt( damage.key );
   }
}

}  // namespace Sim
