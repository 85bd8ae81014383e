#include "NevQos/platform/entities/QosUnits.h"

#include <ostream>

namespace Qos {

namespace {

constexpr ValueText::Member rateUnitNames[] = {
   { rateUnitPps_, "pps" },
   { rateUnitBps_, "bps" },
   { rateUnitKbps_, "kbps" },
   { rateUnitMbps_, "mbps" },
};

constexpr ValueText::Member burstUnitNames[] = {
   { burstUnitBytes_, "bytes" },
   { burstUnitKbytes_, "kbytes" },
   { burstUnitMbytes_, "mbytes" },
   { burstUnitPackets_, "packets" },
};

constexpr ValueText::Member shapeRateUnitNames[] = {
   { shapeRateUnitKbps_, "kbps" },
   { shapeRateUnitPps_, "pps" },
};

constexpr ValueText::Member guaranteedBwUnitNames[] = {
   { guaranteedBwUnitKbps_, "kbps" },
   { guaranteedBwUnitPps_, "pps" },
   { guaranteedBwUnitPercent_, "percent" },
};

}  // namespace

ENUM_TEXT_DEFINE( RateUnit, "Qos::RateUnit", rateUnitNames )
ENUM_TEXT_DEFINE( BurstUnit, "Qos::BurstUnit", burstUnitNames )
ENUM_TEXT_DEFINE( ShapeRateUnit, "Qos::ShapeRateUnit", shapeRateUnitNames )
ENUM_TEXT_DEFINE( GuaranteedBwUnit, "Qos::GuaranteedBwUnit", guaranteedBwUnitNames )

}  // namespace Qos
