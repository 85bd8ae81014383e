// Units of the rates and bursts that the configuration gives for policers, shapers and
// guaranteed bandwidth. Values are stored as 32-bit unsigned numbers; a number outside the
// members can still be held (and is refused where a conversion needs a known unit).
//
// Each unit type offers `stringValue` (its text), `valueToStrep` (the quoted text of the
// `Value(...)` form), stream insertion of the text, `deserializeAttr` for the `Value(...)` form,
// and `<Type>Instance( text )`, which throws Zub::RangeException on an unknown text.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string_view>

#include "zub/Strep.h"
#include "zub/String.h"

namespace Qos {

// Policer rate: packets per second (packet mode) or bits per second (byte mode).
enum RateUnit : std::uint32_t {
   rateUnitPps_ = 0,   // "pps"
   rateUnitBps_ = 1,   // "bps"
   rateUnitKbps_ = 2,  // "kbps"
   rateUnitMbps_ = 3,  // "mbps"
};

// Policer burst: bytes (byte mode) or packets (packet mode).
enum BurstUnit : std::uint32_t {
   burstUnitBytes_ = 0,    // "bytes"
   burstUnitKbytes_ = 1,   // "kbytes"
   burstUnitMbytes_ = 2,   // "mbytes"
   burstUnitPackets_ = 3,  // "packets"
};

// Shape rate of an interface or a queue.
enum ShapeRateUnit : std::uint32_t {
   shapeRateUnitKbps_ = 0,  // "kbps"
   shapeRateUnitPps_ = 1,   // "pps"
};

// Guaranteed bandwidth of a queue.
enum GuaranteedBwUnit : std::uint32_t {
   guaranteedBwUnitKbps_ = 0,     // "kbps"
   guaranteedBwUnitPps_ = 1,      // "pps"
   guaranteedBwUnitPercent_ = 2,  // "percent"
};

// The text of a member; a number that is no member gives its decimal digits.
Zub::String stringValue( RateUnit unit );
Zub::String stringValue( BurstUnit unit );
Zub::String stringValue( ShapeRateUnit unit );
Zub::String stringValue( GuaranteedBwUnit unit );

Zub::String valueToStrep( RateUnit unit );
Zub::String valueToStrep( BurstUnit unit );
Zub::String valueToStrep( ShapeRateUnit unit );
Zub::String valueToStrep( GuaranteedBwUnit unit );

std::ostream& operator<<( std::ostream& os, RateUnit unit );
std::ostream& operator<<( std::ostream& os, BurstUnit unit );
std::ostream& operator<<( std::ostream& os, ShapeRateUnit unit );
std::ostream& operator<<( std::ostream& os, GuaranteedBwUnit unit );

RateUnit RateUnitInstance( std::string_view text );
BurstUnit BurstUnitInstance( std::string_view text );
ShapeRateUnit ShapeRateUnitInstance( std::string_view text );
GuaranteedBwUnit GuaranteedBwUnitInstance( std::string_view text );

void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, RateUnit& out );
void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, BurstUnit& out );
void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, ShapeRateUnit& out );
void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, GuaranteedBwUnit& out );

}  // namespace Qos
