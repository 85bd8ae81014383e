// Policer rate and burst units: conversions, and clamping of the configured parameters to what
// the chip's ACL hardware supports.
//
// Clamping is silent: a value outside the chip's range is replaced by the nearest limit, the
// replacement is traced, and the unit changes with it where the limit is in another unit. The
// same functions run again during verification, so they must be deterministic in their inputs.
//
// A policer is validated in the order cir, bc, pir, be: the peak rate is checked against the
// already clamped cir. Packet and byte mode must not be mixed between cir and pir; a byte-mode
// pir with a packet-mode cir fails an assertion.
#pragma once

#include <cstdint>

#include "NevQos/platform/entities/AclHwStatus.h"
#include "NevQos/platform/entities/PolicyMapStatus.h"
#include "NevQos/platform/entities/QosUnits.h"
#include "NevQos/platform/zub/Ptr.h"

namespace Nev {

// A byte-mode rate in kbps (truncated). Any other unit fails an assertion.
std::uint64_t irToKbps( std::uint64_t rate, Qos::RateUnit unit );
// A byte-mode burst in bytes. Any other unit fails an assertion.
std::uint64_t bsToBytes( std::uint64_t burst, Qos::BurstUnit unit );

// Committed rate: clamped to the packet-mode limits (unit kept), or to the byte-mode limits in
// kbps (unit becomes kbps when clamped).
void validateAndUpdateCir( Zub::Ptr< Qos::AclHwStatus const > const& hw, std::uint64_t& cir,
                           Qos::RateUnit& cirUnit );
// Committed burst: clamped to the packet-mode limits (unit kept), or to the byte-mode limits in
// bytes (unit becomes bytes when clamped).
void validateAndUpdateBc( Zub::Ptr< Qos::AclHwStatus const > const& hw, std::uint32_t& bc,
                          Qos::BurstUnit& bcUnit );
// Peak rate of a two-rate policer, given the validated cir. The limits apply to the excess
// pir - cir, computed unsigned: a pir below cir wraps to a huge excess and becomes
// cir + maximum. A pir of 0 means a single-rate policer and is left alone.
void validateAndUpdatePir( Zub::Ptr< Qos::AclHwStatus const > const& hw, std::uint64_t cir,
                           Qos::RateUnit cirUnit, std::uint64_t& pir, Qos::RateUnit& pirUnit );
// Excess burst of a two-rate policer, clamped like bc. With pir 0 (single rate) be is not
// looked at.
void validateAndUpdateBe( Zub::Ptr< Qos::AclHwStatus const > const& hw, std::uint64_t pir,
                          std::uint32_t& be, Qos::BurstUnit& beUnit );

// A configured policer's parameters after the four checks above, in their order.
struct PolicerParams {
   std::uint64_t cir = 0;
   Qos::RateUnit cirUnit = Qos::rateUnitKbps_;
   std::uint32_t bc = 0;
   Qos::BurstUnit bcUnit = Qos::burstUnitBytes_;
   std::uint64_t pir = 0;
   Qos::RateUnit pirUnit = Qos::rateUnitKbps_;
   std::uint32_t be = 0;
   Qos::BurstUnit beUnit = Qos::burstUnitBytes_;
};
PolicerParams validatedPolicerParams( Zub::Ptr< Qos::AclHwStatus const > const& hw,
                                      Qos::PolicerConfig const& cfg );

}  // namespace Nev

namespace NevHelper {

// Conversions offered to chip drivers. Packet-mode units fail an assertion.
std::uint64_t getRateParamInKbps( Qos::RateUnit rateUnit, std::uint64_t value );
// Bytes are converted as ( value * 8 ) / 1000, the product wrapping at 64 bits.
std::uint64_t getBurstParamInKbits( Qos::BurstUnit burstUnit, std::uint64_t value );
std::uint64_t getBurstParamInBytes( Qos::BurstUnit burstUnit, std::uint64_t value );

}  // namespace NevHelper
