// The basic QoS part of a scenario: the global maps, named DSCP rewrite maps and COS-to-TC
// profiles, the QoS of each interface and its transmit queues, ECN queue counters, and the state
// of each Ethernet link. Plain values, as ScenarioLoader reads them; numbers are already within
// the ranges of their types.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/entities/QueueSettings.h"
#include "NevQos/platform/mirel/IntfId.h"

namespace Sim {

// Entries of the global maps and switches; a global-maps change sets what it gives and leaves
// the rest. A map entry of the sentinel value (16 for a traffic class, ...) is the chip's default
// again.
struct GlobalMapsDef {
   std::map< unsigned, unsigned > cosToTc, dscpToTc, dscpToDp, expToTc, tcToCos, tcToDscp, tcToExp,
         tcToTxQueue, tcToMcTxQueue;
   std::optional< bool > cosRewrite, dscpRewrite;
   std::optional< Qos::EcnStatus > globalEcn;
   std::optional< Qos::EcnDelayThreshold > ecnDelayThreshold;
   bool operator==( GlobalMapsDef const& ) const = default;
};

// The global maps: scenario key, highest number mapped from, highest number mapped to (the
// sentinel, which gives the slot back to the chip's default).
struct GlobalMap {
   std::string_view key;
   std::map< unsigned, unsigned > GlobalMapsDef::*member;
   unsigned keyMax;
   unsigned valueMax;
   // Values are DSCPs, which may go by name.
   bool dscpValues = false;
};

inline constexpr GlobalMap globalMapFields[] = {
   { "cosToTc", &GlobalMapsDef::cosToTc, 7, 16 },
   { "dscpToTc", &GlobalMapsDef::dscpToTc, 63, 16 },
   { "dscpToDp", &GlobalMapsDef::dscpToDp, 63, 4 },
   { "expToTc", &GlobalMapsDef::expToTc, 7, 16 },
   { "tcToCos", &GlobalMapsDef::tcToCos, 15, 8 },
   { "tcToDscp", &GlobalMapsDef::tcToDscp, 15, 64, true },
   { "tcToExp", &GlobalMapsDef::tcToExp, 15, 8 },
   { "tcToTxQueue", &GlobalMapsDef::tcToTxQueue, 15, 16 },
   { "tcToMcTxQueue", &GlobalMapsDef::tcToMcTxQueue, 15, 16 },
};

// A named DSCP rewrite map: the DSCP written for each traffic class.
struct DscpRewriteMapDef {
   std::string name;
   std::map< unsigned, unsigned > tcToDscp;
   bool operator==( DscpRewriteMapDef const& ) const = default;
};
struct DscpRewriteMapRemoval {
   std::string name;
};

// A named COS-to-TC profile.
struct CosToTcProfileDef {
   std::string name;
   std::map< unsigned, unsigned > cosToTc;
   bool operator==( CosToTcProfileDef const& ) const = default;
};
struct CosToTcProfileRemoval {
   std::string name;
};

struct QueueDef {
   Qos::TxQueue queue;
   Qos::TxQueuePriority priority = Qos::txQueuePriorityRoundRobin_;
   Qos::ShapeRate shapeRate;
   Qos::GuaranteedBw guaranteedBw;
   Qos::EcnStatus ecn;
   Qos::NonEctStatus nonEct;
   bool delayEcn = false;
   Qos::EcnDelayThreshold ecnDelayThreshold;
   Qos::WredStatus wred;
   // Bytes by drop precedence, 0 to 3.
   std::map< unsigned, std::uint32_t > dropThresholds;
   bool operator==( QueueDef const& ) const = default;
};

// The QoS of one interface, given whole: a change replaces what stood.
struct IntfQosDef {
   Mirel::IntfId intf;
   Qos::TrustMode trust = Qos::trustCos_;
   Qos::Cos defaultCos;    // the sentinel: the chip's default
   Qos::Dscp defaultDscp;  // likewise
   Qos::ShapeRate shapeRate;
   std::string dscpRewriteMap;  // empty for none
   std::string cosToTcProfile;  // empty for none
   std::vector< QueueDef > queues;
   bool operator==( IntfQosDef const& ) const = default;
};
struct IntfQosRemoval {
   Mirel::IntfId intf;
};

// The queues of one interface whose ECN counters are wanted, given whole.
struct EcnCountersDef {
   Mirel::IntfId intf;
   std::set< unsigned > queues;
   bool operator==( EcnCountersDef const& ) const = default;
};
struct EcnCountersRemoval {
   Mirel::IntfId intf;
};

// The state of an Ethernet port's link; what is not given stays.
struct LinkDef {
   Mirel::IntfId intf;
   std::optional< std::uint64_t > speedMbps;
   std::optional< bool > active;
   bool operator==( LinkDef const& ) const = default;
};

}  // namespace Sim
