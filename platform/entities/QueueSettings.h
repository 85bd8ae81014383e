// Values of the per-interface and per-queue QoS settings: rates with their units, the ECN, WRED
// and non-ECT settings of a queue, its scheduling priority and its ECN delay threshold. Plain
// values compared whole: an attribute that holds one changes when any field does.
#pragma once

#include <cstdint>
#include <iosfwd>

#include "NevQos/platform/entities/QosUnits.h"
#include "NevQos/platform/zub/ValueText.h"

namespace Qos {

// Shaping of a port or a queue; rate 0 is no shaping.
struct ShapeRate {
   std::uint32_t rate = 0;
   ShapeRateUnit unit = shapeRateUnitKbps_;
   bool operator==( ShapeRate const& ) const = default;
};
std::ostream& operator<<( std::ostream& os, ShapeRate const& r );

// Bandwidth a queue is guaranteed; a percent of the link speed, or an absolute rate.
struct GuaranteedBw {
   // The rate of a queue without a guarantee.
   static constexpr std::uint32_t invalidRate = 150000001;
   std::uint32_t rate = invalidRate;
   GuaranteedBwUnit unit = guaranteedBwUnitKbps_;
   bool operator==( GuaranteedBw const& ) const = default;
};
std::ostream& operator<<( std::ostream& os, GuaranteedBw const& b );

// How a queue is served against the others of its port.
enum TxQueuePriority : std::uint32_t {
   txQueuePriorityStrict_ = 0,
   txQueuePriorityRoundRobin_ = 1,
};
ENUM_TEXT_DECLARE( TxQueuePriority );

// Marking (ECN) or dropping (WRED) by queue depth: off, or on between a least and a most depth in
// bytes, up to a greatest probability in percent at the most depth.
struct QueueThresholds {
   bool enabled = false;
   std::uint32_t minThreshold = 0;
   std::uint32_t maxThreshold = 0;
   std::uint32_t maxProbability = 100;
   bool operator==( QueueThresholds const& ) const = default;
};
std::ostream& operator<<( std::ostream& os, QueueThresholds const& t );
using EcnStatus = QueueThresholds;
using WredStatus = QueueThresholds;

// Dropping of packets that can't be marked (not ECN-capable) above a depth in bytes.
struct NonEctStatus {
   bool enabled = false;
   std::uint32_t threshold = 0;
   bool operator==( NonEctStatus const& ) const = default;
};
std::ostream& operator<<( std::ostream& os, NonEctStatus const& s );

// Marking by the time a packet waited in the queue, in microseconds.
struct EcnDelayThreshold {
   std::uint32_t microseconds = 0;
   bool operator==( EcnDelayThreshold const& ) const = default;
};
std::ostream& operator<<( std::ostream& os, EcnDelayThreshold const& t );

}  // namespace Qos
