// Units of the rates and bursts that the configuration gives for policers, shapers and
// guaranteed bandwidth. Values are stored as 32-bit unsigned numbers; a number outside the
// members can still be held, and is refused where a conversion needs a known unit.
//
// The text of a member is the unit's name ("kbps", "bytes", ...); see ValueText.h for the text
// operations every unit type offers.
#pragma once

#include <cstdint>

#include "NevQos/platform/zub/ValueText.h"

namespace Qos {

// Policer rate: packets per second (packet mode) or bits per second (byte mode).
enum RateUnit : std::uint32_t {
   rateUnitPps_ = 0,
   rateUnitBps_ = 1,
   rateUnitKbps_ = 2,
   rateUnitMbps_ = 3,
};
ENUM_TEXT_DECLARE( RateUnit );

// Policer burst: bytes (byte mode) or packets (packet mode).
enum BurstUnit : std::uint32_t {
   burstUnitBytes_ = 0,
   burstUnitKbytes_ = 1,
   burstUnitMbytes_ = 2,
   burstUnitPackets_ = 3,
};
ENUM_TEXT_DECLARE( BurstUnit );

// Shape rate of an interface or a queue.
enum ShapeRateUnit : std::uint32_t {
   shapeRateUnitKbps_ = 0,
   shapeRateUnitPps_ = 1,
};
ENUM_TEXT_DECLARE( ShapeRateUnit );

// Guaranteed bandwidth of a queue.
enum GuaranteedBwUnit : std::uint32_t {
   guaranteedBwUnitKbps_ = 0,
   guaranteedBwUnitPps_ = 1,
   guaranteedBwUnitPercent_ = 2,
};
ENUM_TEXT_DECLARE( GuaranteedBwUnit );

}  // namespace Qos
