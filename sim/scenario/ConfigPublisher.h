// Publishes a scenario's configuration into the engine's input entities the way the switch's
// configuration agents would: the chip's capabilities first, then the starting configuration,
// then each step. A step is checked whole against the configuration it changes before any
// entity is written, so a bad step leaves every entity as it was. Then what the step changed is
// written in an order in which every name in use stands: interfaces that appear, access lists,
// class maps, named policers, policy maps, service policies, removals, interfaces that vanish,
// counter and clear requests, and last configVersionUpdateTime. Basic QoS (global maps, named
// maps and profiles, interface and queue settings, ECN counters, links) is written after the
// interfaces that appear; the kernel's reports on CPU queues and the chip driver's start-up, then
// the FEC overrides and the FEC service's answers, come last.
//
// A policy map whose configuration changed (itself, a class map it uses, an access list one of
// those uses, or the sharing of a named policer it uses) gets a new version, and so does every
// service policy that already applied it; a named policer whose parameters changed gets a new
// paramChangeVersion, which the engine applies in place. Traffic and fault switches are for the
// chip and write nothing here.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "NevQos/platform/entities/AclConfig.h"
#include "NevQos/platform/entities/AclHwStatus.h"
#include "NevQos/platform/entities/CounterConfig.h"
#include "NevQos/platform/entities/EthPhyIntfStatus.h"
#include "NevQos/platform/entities/FecOverride.h"
#include "NevQos/platform/entities/HwStatus.h"
#include "NevQos/platform/entities/QosStatus.h"
#include "NevQos/platform/entities/SubIntfStatus.h"
#include "NevQos/platform/nev/FecIdToHwFecId.h"
#include "NevQos/platform/nev/KernelCoPPStatus.h"
#include "NevQos/platform/nev/NevCommonSmData.h"
#include "NevQos/platform/nev/NexthopGroupStatus.h"
#include "NevQos/platform/zub/Entity.h"
#include "NevQos/sim/scenario/ConfigModel.h"

namespace Sim {

struct ConfigDiff;

// The inputs of the engine that configuration reaches.
struct EngineInputs {
   Zub::Ptr< Qos::Status > qosStatus;
   Zub::Ptr< Acl::Config > aclConfig;
   Zub::Ptr< Qos::AclHwStatus > aclHwStatus;
   Zub::Ptr< Qos::HwStatus > hwStatus;
   // Of Qos::CounterConfig, by client name.
   Zub::Ptr< Zub::Dir > counterConfigDir;
   // Its interface list.
   Zub::Ptr< Nev::NevCommonSmData > ncsd;
   // Basic QoS: the counter configuration that holds the ECN queue counters, and the Ethernet
   // ports' links. Either may be null when nothing reads it.
   Zub::Ptr< Qos::CounterConfig > ecnCounterConfig = {};
   Zub::Ptr< Interface::AllEthPhyIntfStatusDir > ethPhyIntfStatusDir = {};
   // The kernel's reports on the CPU queues of ports; may be null when nothing reads it.
   Zub::Ptr< Nev::KernelCoPPStatus > kernelCoppStatus = {};
   // Class-based forwarding, as the routing side and the FEC service write them: the override
   // configuration and the service's answers. Writer views; either may be null.
   Zub::Ptr< Qos::Glarn::FecOverrideConfig > fecOverrideConfig = {};
   Zub::Ptr< Nev::FecIdToHwFecIdResponse > fecService = {};
   // The subinterfaces as the interface agent publishes them; may be null.
   Zub::Ptr< Interface::SubIntfStatusDir > subIntfStatusDir = {};
   // The next-hop groups as the routing agent publishes them; may be null.
   Zub::Ptr< Nev::NexthopGroupStatus > nexthopGroupStatus = {};
};

class ConfigPublisher {
 public:
   // `file` names the scenario in messages.
   ConfigPublisher( EngineInputs inputs, std::string file );

   // The capabilities and police limits, as the chip's driver publishes them; the number of
   // faults a fault switch may name.
   void chipIs( ChipConfig const& chip );
   // The starting configuration, before any step; it may hold no requests. The interface list
   // is then complete (intfsReady), unless the configuration says it is not.
   void initialIs( std::vector< Change > const& changes );
   // One step, stamped with its time. Throws ScenarioError, having written nothing, for a step
   // that is not later than the last or has a change the configuration refuses. A step with a
   // restart mark is written in two parts: the changes before the mark, then `restart` is
   // called (the agent stops its engines), then the changes after it, made while the engines
   // are down; configVersionUpdateTime is stamped last, for the engines that start next.
   void stepIs( Step const& step, std::function< void() > const& restart = {} );

   // The configuration as published so far.
   ConfigModel const& model() const { return model_; }

 private:
   // `base` with `changes` applied, or a ScenarioError for the first it refuses.
   ConfigModel checked( ConfigModel base, std::vector< Change > const& changes ) const;
   void checkCounterClient( Change const& change ) const;
   // Makes `after` the published configuration.
   void publish( ConfigModel after );
   void definitionsIs( ConfigDiff const& diff );
   void servicePoliciesIs( ConfigModel const& before,
                           std::vector< ConfigModel::MapKey > const& changedPmaps );
   void removalsIs( ConfigDiff const& diff );
   // Basic QoS, made to match the model: maps and profiles before the interfaces that name
   // them, removals the other way round.
   void basicQosIs( ConfigModel const& before );
   // The kernel's reports and the driver's start-up, made to match the model.
   void controlPlaneIs( ConfigModel const& before );
   // The FEC overrides and the FEC service's answers, made to match the model.
   void cbfIs( ConfigModel const& before );
   void subInterfacesIs( ConfigModel const& before );
   void nexthopGroupsIs( ConfigModel const& before );
   void requestsIs( std::vector< Change > const& changes, Zub::Seconds time );

   EngineInputs in_;
   std::string file_;
   ConfigModel model_;
   Zub::Seconds lastTime_ = 0.0;
};

}  // namespace Sim
