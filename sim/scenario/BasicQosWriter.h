// The basic QoS configuration written into the engine's input entities: each function makes
// the entities hold exactly what the model says, writing only what differs (a write of the value
// that stands notifies nobody).
#pragma once

#include "NevQos/platform/entities/CounterConfig.h"
#include "NevQos/platform/entities/EthPhyIntfStatus.h"
#include "NevQos/platform/entities/QosStatus.h"
#include "NevQos/sim/scenario/ConfigModel.h"

namespace Sim {

void globalMapsIs( Qos::Status& status, GlobalMapsDef const& maps );
void dscpRewriteMapIs( Qos::Status& status, DscpRewriteMapDef const& map );
void cosToTcProfileIs( Qos::Status& status, CosToTcProfileDef const& profile );
void intfQosIs( Qos::Status& status, IntfQosDef const& qos );
void ecnCountersIs( Qos::CounterConfig& config, EcnCountersDef const& counters );
void linkIs( Interface::AllEthPhyIntfStatusDir& dir, LinkDef const& link );

}  // namespace Sim
