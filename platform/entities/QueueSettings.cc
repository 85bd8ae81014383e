#include "NevQos/platform/entities/QueueSettings.h"

#include <ostream>

namespace Qos {

namespace {

constexpr ValueText::Member txQueuePriorityNames[] = {
   { txQueuePriorityStrict_, "strict" },
   { txQueuePriorityRoundRobin_, "roundRobin" },
};

}  // namespace

ENUM_TEXT_DEFINE( TxQueuePriority, "Qos::TxQueuePriority", txQueuePriorityNames )

std::ostream& operator<<( std::ostream& os, ShapeRate const& r ) {
   return os << r.rate << " " << r.unit;
}

std::ostream& operator<<( std::ostream& os, GuaranteedBw const& b ) {
   return os << b.rate << " " << b.unit;
}

std::ostream& operator<<( std::ostream& os, QueueThresholds const& t ) {
   if( !t.enabled ) return os << "off";
   return os << t.minThreshold << "-" << t.maxThreshold << " bytes, " << t.maxProbability << "%";
}

std::ostream& operator<<( std::ostream& os, NonEctStatus const& s ) {
   if( !s.enabled ) return os << "off";
   return os << s.threshold << " bytes";
}

std::ostream& operator<<( std::ostream& os, EcnDelayThreshold const& t ) {
   return os << t.microseconds << " us";
}

}  // namespace Qos
