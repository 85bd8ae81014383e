// The six TCP flags a QoS rule can match. The ACL helper exposes this type as its nested TcpFlag,
// which is the name the text form carries.
#pragma once

#include <cstdint>
#include <iosfwd>

#include "NevQos/platform/zub/Strep.h"
#include "NevQos/platform/zub/String.h"

namespace NevHelper {

class TcpFlag {
 public:
   static constexpr std::uint32_t fin_ = 0x01;
   static constexpr std::uint32_t syn_ = 0x02;
   static constexpr std::uint32_t rst_ = 0x04;
   static constexpr std::uint32_t psh_ = 0x08;
   static constexpr std::uint32_t ack_ = 0x10;
   static constexpr std::uint32_t urg_ = 0x20;
   static constexpr std::uint32_t maxValue = 0x3f;

   TcpFlag() noexcept = default;
   // Throws Zub::RangeException for a value above 0x3f.
   explicit TcpFlag( std::uint32_t value ) { valueIs( value ); }
   // Reads the `Value(...)` form.
   TcpFlag( char const* begin, char const* end );

   std::uint32_t value() const noexcept { return value_; }
   void valueIs( std::uint32_t v );

   bool fin() const noexcept { return value_ & fin_; }
   void finIs( bool on ) noexcept { bitIs( fin_, on ); }
   bool syn() const noexcept { return value_ & syn_; }
   void synIs( bool on ) noexcept { bitIs( syn_, on ); }
   bool rst() const noexcept { return value_ & rst_; }
   void rstIs( bool on ) noexcept { bitIs( rst_, on ); }
   bool psh() const noexcept { return value_ & psh_; }
   void pshIs( bool on ) noexcept { bitIs( psh_, on ); }
   bool ack() const noexcept { return value_ & ack_; }
   void ackIs( bool on ) noexcept { bitIs( ack_, on ); }
   bool urg() const noexcept { return value_ & urg_; }
   void urgIs( bool on ) noexcept { bitIs( urg_, on ); }

   bool operator==( TcpFlag const& ) const noexcept = default;

 private:
   void bitIs( std::uint32_t bit, bool on ) noexcept { value_ = on ? value_ | bit : value_ & ~bit; }
   std::uint32_t value_ = 0;
};

Zub::String valueToStrep( TcpFlag const& f );
std::ostream& operator<<( std::ostream& os, TcpFlag const& f );
void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, TcpFlag& out );

}  // namespace NevHelper
