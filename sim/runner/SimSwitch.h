// A switch in miniature for one scenario: every input and status entity the engines need, the
// reference chip as their helpers and as the kernel's packet driver, the policy engine, the basic
// QoS engine, the two control-plane machines (per-port CoPP and the kernel mirror) and the FEC
// override machine of one VRF, and the
// publisher that plays the configuration agents and the kernel, all on one event loop in
// virtual time. It keeps the system
// log with the time of each line. One runs at a time per thread: it installs its loop and log sink
// when built and again whenever it is driven, so that a second switch (a reference run beside
// it) may come and go in between.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "NevQos/basic/QosBasicSm.h"
#include "NevQos/cbf/CbfFecMappingSm.h"
#include "NevQos/controlplane/DynamicPerPortCoppSm.h"
#include "NevQos/controlplane/QosKernelStatusSm.h"
#include "NevQos/platform/entities/AclHwStatus.h"
#include "NevQos/platform/entities/AclSliceHwStatus.h"
#include "NevQos/platform/nev/KernelCoPPConfig.h"
#include "NevQos/platform/zub/ActivityManager.h"
#include "NevQos/policy/QosAclSm.h"
#include "NevQos/sim/chip/SimCbfFecMappingHelper.h"
#include "NevQos/sim/chip/SimPktDrv.h"
#include "NevQos/sim/chip/SimQosAclHelper.h"
#include "NevQos/sim/chip/SimQosBasicHelper.h"
#include "NevQos/sim/recording/CallLog.h"
#include "NevQos/sim/recording/RecordingCbfFecMappingHelper.h"
#include "NevQos/sim/recording/RecordingQosAclHelper.h"
#include "NevQos/sim/recording/RecordingQosBasicHelper.h"
#include "NevQos/sim/runner/TraceLog.h"
#include "NevQos/sim/scenario/ConfigPublisher.h"
#include "NevQos/sim/scenario/Scenario.h"

namespace Sim {

// One line of the system log.
struct LogLine {
   Zub::Seconds t = 0.0;
   std::string handle;
   std::string severity;
   // The catalogue's number of the severity: 0 emergency to 7 debug.
   int severityLevel = 0;
   std::string text;
   // How many helper calls came before it: where it stands among the calls.
   std::size_t callsBefore = 0;
};

// The agent restarted because an engine read a damaged record of a shared table.
struct CorruptionRestart {
   Zub::Seconds t = 0.0;
   std::string text;
};

// What a driver's helper is built on: the scenario's chip section (what the reference chip is
// told it can do), the entities the helpers' bases and the reference chip take, the clock of
// asynchronous answers, the verify agent's record, and the agent's hook for an operation the
// driver says it left pending (the asynchronous road's time-out starts there; it holds the switch
// and may be called while the switch lives).
struct DriverInputs {
   ChipConfig const* chip = nullptr;
   Zub::Ptr< Qos::Status > qosStatus;
   Zub::Ptr< Qos::HwStatus > hwStatus;
   Zub::Ptr< Qos::SliceHwStatus > sliceHwStatus;
   Zub::Ptr< Qos::AclSliceHwStatus > aclSliceHwStatus;
   Zub::Ptr< Acl::Config > aclConfig;
   Zub::Ptr< Interface::AllEthPhyIntfStatusDir > ethPhyIntfStatusDir;
   Zub::Ptr< Kesh::TimerWheel > clock;
   Zub::Ptr< Nev::VerifyData > verifyData;
   std::function< void() > operationLeftPending;
};

// The helpers the engines drive, one factory per kind. Each gets the reference chip's helper of
// its kind, built as always (to decorate, or to leave idle beside the driver's own), and the
// inputs; it returns the helper the engines are to use. An empty factory leaves the reference
// chip. Scenario changes aimed at the chip (faults, traffic, TCAM damage) still reach the
// reference chip alone.
struct DriverHelpers {
   std::function< Zub::Ptr< NevHelper::QosAclHelper >( Zub::Ptr< SimQosAclHelper > const&,
                                                       DriverInputs const& ) >
         acl;
   std::function< Zub::Ptr< NevHelper::QosBasicHelper >( Zub::Ptr< SimQosBasicHelper > const&,
                                                         DriverInputs const& ) >
         basic;
   std::function< Zub::Ptr< NevHelper::CbfFecMappingHelper >(
         Zub::Ptr< SimCbfFecMappingHelper > const&, DriverInputs const& ) >
         cbf;
};

// How a switch runs, beside its scenario.
struct SwitchOptions {
   // Turns within one second of virtual time past which a run is taken for one that never
   // settles: far more than any scenario's engines take, and cut within seconds.
   static constexpr std::size_t defaultRunawayTurns = 10000;
   std::size_t runawayTurns = defaultRunawayTurns;
   // The verify agent wants the engines to ask for a run after each change they make
   // (verifyRequested(), requestedVerify()).
   bool verifyOnRequest = false;
   // The lines of the trace handles enabled (Zub::traceEnable) are kept, in order, rather than
   // written to standard error.
   bool keepTraces = false;
   // The first and the last runs of identical helper calls kept in the record each; the runs
   // between them are only counted.
   std::size_t keepCalls = CallLog::defaultKeep;
   // The times of calls inside those runs kept at most, for expectations about them.
   std::size_t keepCallTimes = CallLog::defaultTimes;
   // The first and the last trace lines kept each; those between are only counted.
   std::size_t keepTraceLines = TraceLog::defaultKeep;
   // The driver under test, if not the reference chip.
   DriverHelpers driver = {};
};

class SimSwitch {
 public:
   static constexpr std::size_t defaultRunawayTurns = SwitchOptions::defaultRunawayTurns;

   // Publishes the chip's capabilities and the starting configuration, then starts the engines
   // and runs every turn due at the start, without moving time on. Throws ScenarioError for a
   // configuration the publisher refuses. Whatever runs the loop throws Zub::RunawayException
   // once `runawayTurns` turns are taken within one second of virtual time (0 for no limit).
   explicit SimSwitch( Scenario const& scenario, SwitchOptions const& options = {} );
   ~SimSwitch();
   SimSwitch( SimSwitch const& ) = delete;
   SimSwitch& operator=( SimSwitch const& ) = delete;

   // Runs the loop to the step's time, gives the step's traffic and fault switches to the chip,
   // publishes the step, and runs every turn due at that moment; a timer due later waits for
   // the next step or the settling time. Throws ScenarioError for a step the
   // publisher refuses; a step of a loaded scenario has been checked already.
   void stepIs( Step const& step );
   // The agent restarts now: after the turns due at this moment, every engine stops without a
   // call on the chip, and new ones start over the same entities, status and chip, whose start-up
   // runs at once. A step with a restart mark does the same where its mark stands.
   void restart();
   // Runs the loop until virtual time `t`.
   void runUntil( Zub::Seconds t );
   // Runs the loop `span` seconds on, in slices, calling `afterSlice` after each, so that a long
   // settle can show its progress. The same timers run in the same order whatever the slices.
   // At most ten thousand slices of at least a second, and none that the clock's precision
   // would make empty at a large virtual time.
   void runFor( Zub::Seconds span, std::function< void() > const& afterSlice );
   // Compares everything programmed with the chip's TCAM, as the platform's verify agent would
   // ask: the findings of this run, in the order they were raised.
   std::vector< std::string > verify();
   // Whether an engine has asked for a run since the last one.
   bool verifyRequested() const;
   // The run an engine asked for: only what the engines marked for it is compared.
   std::vector< std::string > requestedVerify();
   // Prints what the chip holds for the policy maps of `type` to the descriptor `fd`.
   void show( int fd, Qos::MapType type, bool detail );
   // The map types the engine has a machine for, in order.
   std::vector< Qos::MapType > mapTypes() const;
   Zub::Seconds now() const { return loop_->now(); }

   SimQosAclHelper const& chip() const { return *chip_; }
   Nev::QosAclSm const& engine() const { return *engine_; }
   SimQosBasicHelper const& basicChip() const { return *basicChip_; }
   // Every call of the engines on the chip, in order, as the recording decorators took them:
   // runs of identical calls, the first and the last kept, the number of all exact.
   CallLog const& calls() const { return calls_; }
   // Drops the calls recorded so far, so that a long run keeps its memory flat.
   void callsForget() { calls_.clear(); }
   SimPktDrv const& pktDrv() const { return *pktDrv_; }
   // Whether the kernel's CoPP configuration was given, which the engine's start-up reads.
   bool kernelCoppConfig() const { return static_cast< bool >( kernelCoppConfig_ ); }
   Nev::DynamicPerPortCoppSm const& coppEngine() const { return *coppEngine_; }
   Qos::HwStatus const& hwStatus() const { return *hwStatus_; }
   Qos::Status const& qosStatus() const { return *qosStatus_; }
   SimCbfFecMappingHelper const& cbfChip() const { return *cbfChip_; }
   Nev::CbfFecMappingSm const& cbfEngine() const { return *cbfEngine_; }
   Qos::Glarn::FecOverrideStatus const& fecOverrideStatus() const { return *fecOverrideStatus_; }
   Nev::FecIdToHwFecIdRequest const& hwFecIdRequest() const { return *hwFecIdRequest_; }
   Qos::SliceHwStatus const& sliceHwStatus() const { return *sliceHwStatus_; }
   Qos::AclSliceHwStatus const& aclSliceHwStatus() const { return *aclSliceHwStatus_; }
   Qos::AclHwStatus const& aclHwStatus() const { return *aclHwStatus_; }
   ConfigModel const& model() const { return publisher_->model(); }
   std::vector< LogLine > const& logs() const { return logs_; }
   // With keepTraces, or trace lists in the scenario: the trace lines so far, the first and the
   // last kept.
   TraceLog const& traces() const { return traces_; }
   // The restarts that damaged shared tables of class-based forwarding caused, in order.
   std::vector< CorruptionRestart > const& corruptionRestarts() const {
      return corruptionRestarts_;
   }

 private:
   // Makes this switch's loop and log sink the thread's.
   void enter();
   void entitiesIs( ChipConfig const& chip, DriverHelpers const& driver );
   void engineIs();
   void enginesStop();
   // The driver left an operation pending: the engine waiting for it marks it so.
   void operationLeftPending();
   DriverInputs driverInputs( ChipConfig const& chip );
   // Starts the run asked for and collects its findings.
   std::vector< std::string > verifyRun();
   void chipChangesIs( std::vector< Change > const& changes );
   // The step's cliWaiting and reprogramAllPolicyMaps, written on the helper the engine holds.
   void driverInputsIs( Step const& step );
   // Damages the TCAM as the change says; a change that finds nothing to damage stops the run.
   void tcamDamageIs( TcamCorruption const& damage, Where const& where );
   void cbfTablesIs( ChipConfig const& chip, DriverHelpers const& driver );
   // Under DLP, tells basic QoS of each port whose link became active or inactive in a step.
   void dlpFlowIs( std::map< Mirel::IntfId, LinkDef > const& linksBefore );
   // Runs the loop until `t`. A damaged shared-table record that an engine reads ends the agent
   // as it would on the switch: the agent restarts, and runs on.
   void settle( Zub::Seconds t );
   void corruptionRestartIs( Pelto::CorruptionDetectedException const& e );
   // The engine's read-only views of the routing side's and the FEC service's tables; a view
   // that detected damage has detached, so a restarted engine opens new ones.
   void cbfViewsIs();
   void fecTableDamageIs( FecTableDamage const& damage );
   // The removals of overrides that stood neither before nor after the step: the table tells the
   // engine of the key all the same, as it tells of a record written and removed between two of
   // the engine's reads.
   void unseenFecOverrideRemovalsIs(
         Step const& step,
         std::map< Qos::Glarn::OverrideKey, FecOverrideDef > const& overridesBefore );
   // Merges the system's own service policy configuration into the status; runs the engine's
   // turns again when that changed anything.
   void pdpConfigMerge();
   // Makes one merged service policy's interfaces those of its configuration; whether any moved.
   bool pdpIntfsMerge( Qos::ServicePolicyConfig const& config );

   // The scenario file, for messages.
   std::string file_;
   CallLog calls_;
   Zub::Ptr< Zub::ActivityManager > loop_;
   Zub::Ptr< Nev::NevCommonSmData > ncsd_;
   Zub::Ptr< Qos::CounterConfig > cliCounterConfig_;
   Zub::Ptr< Zub::Dir > counterConfigDir_;
   Zub::Ptr< Qos::Status > qosStatus_;
   Zub::Ptr< Qos::HwStatus > hwStatus_;
   Zub::Ptr< Zub::Dir > sliceHwStatusDir_;
   Zub::Ptr< Qos::SliceHwStatus > sliceHwStatus_;
   Zub::Ptr< Interface::AllEthPhyIntfStatusDir > ethPhyIntfStatusDir_;
   Zub::Ptr< Qos::AclHwStatus > aclHwStatus_;
   Zub::Ptr< Qos::AclSliceHwStatus > aclSliceHwStatus_;
   Zub::Ptr< Interface::SubIntfStatusDir > subIntfStatusDir_;
   Zub::Ptr< Nev::NexthopGroupStatus > nexthopGroupStatus_;
   Zub::Ptr< Qos::Input::Config > pdpHwCfg_;
   Zub::Ptr< HwEpoch::Status > hwEpochStatus_;
   // Service policies merged from pdpHwCfg_, which the merge may take away again.
   std::set< Qos::ServicePolicyKey > pdpMerged_;
   // Null unless the scenario gives the kernel's CoPP configuration.
   Zub::Ptr< Nev::KernelCoPPConfig > kernelCoppConfig_;
   Zub::Ptr< Acl::Config > aclConfig_;
   Zub::Ptr< Kesh::TimerWheel > clock_;
   Zub::Ptr< SimQosAclHelper > chip_;
   Zub::Ptr< RecordingQosAclHelper > aclRecorder_;
   Zub::Ptr< Nev::QosAclSm > engine_;
   Zub::Ptr< SimQosBasicHelper > basicChip_;
   Zub::Ptr< RecordingQosBasicHelper > basicRecorder_;
   Zub::Ptr< Nev::QosBasicSm > basicEngine_;
   Zub::Ptr< Nev::KernelCoPPStatus > kernelCoppStatus_;
   Zub::Ptr< Nev::DynamicPerPortCoppSm > coppEngine_;
   Zub::Ptr< SimPktDrv > pktDrv_;
   Zub::Ptr< Nev::QosKernelStatusSm > kernelEngine_;
   // Class-based forwarding: the routing side's and the FEC service's writer views, the engine's
   // views and tables, and the rule table.
   Zub::Ptr< Qos::Glarn::FecOverrideConfig::Store > fecOverrideConfigStore_;
   Zub::Ptr< Nev::FecIdToHwFecIdResponse::Store > fecServiceStore_;
   Zub::Ptr< Qos::Glarn::FecOverrideConfig > fecOverrideConfig_;
   Zub::Ptr< Qos::Glarn::FecOverrideConfig > fecOverrideConfigView_;
   Zub::Ptr< Qos::Glarn::FecOverrideStatus > fecOverrideStatus_;
   Zub::Ptr< Nev::FecIdToHwFecIdRequest > hwFecIdRequest_;
   Zub::Ptr< Nev::FecIdToHwFecIdResponse > fecService_;
   Zub::Ptr< Nev::FecIdToHwFecIdResponse > fecServiceView_;
   Zub::Ptr< Kesh::TaskScheduler > taskScheduler_;
   Zub::Ptr< SimCbfFecMappingHelper > cbfChip_;
   Zub::Ptr< RecordingCbfFecMappingHelper > cbfRecorder_;
   Zub::Ptr< Nev::CbfFecMappingSm > cbfEngine_;
   std::unique_ptr< ConfigPublisher > publisher_;
   std::vector< LogLine > logs_;
   bool keepTraces_ = false;
   bool ownTraceLists_ = false;
   TraceLog traces_;
   std::vector< CorruptionRestart > corruptionRestarts_;
};

}  // namespace Sim
