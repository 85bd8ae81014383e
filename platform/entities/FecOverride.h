// Class-based forwarding overrides: the routing side asks that traffic of one address family
// and DSCP that would use one FEC use another (FecOverrideConfig), and the QoS agent tells how
// each request fared in hardware (FecOverrideStatus). Both are shared tables of plain records.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <ostream>

#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/glarn/FecId.h"
#include "NevQos/platform/glarn/GlarnMap.h"
#include "NevQos/platform/mirel/AddressFamily.h"

namespace Qos::Hardware {

// The driver's handle of an override rule; all ones for none.
using FecOverrideRuleId = std::uint32_t;
inline constexpr FecOverrideRuleId invalidFecOverrideRuleId = 0xffffffffu;

}  // namespace Qos::Hardware

namespace Qos::Glarn {

// Traffic of `af` marked `dscp` that would use FEC `fecId`. 16 bytes.
struct OverrideKey {
   Mirel::AddressFamily af = Mirel::ipv4;
   Qos::Dscp dscp;
   ::Glarn::Fib::FecId fecId = 0;

   std::uint32_t hash() const;
   bool operator==( OverrideKey const& o ) const {
      return af == o.af && dscp.value() == o.dscp.value() && fecId == o.fecId;
   }
   // By address family, DSCP, then FEC. The first two as one number: a search of a big table
   // decides each step on one comparison of numbers instead of three branches.
   bool operator<( OverrideKey const& o ) const {
      std::uint64_t const kind = ( std::uint64_t( af ) << 8 ) | dscp.value();
      std::uint64_t const otherKind = ( std::uint64_t( o.af ) << 8 ) | o.dscp.value();
      return kind != otherKind ? kind < otherKind : fecId < o.fecId;
   }
};
static_assert( sizeof( OverrideKey ) == 16 && offsetof( OverrideKey, dscp ) == 4 &&
               offsetof( OverrideKey, fecId ) == 8 );
std::ostream& operator<<( std::ostream& os, OverrideKey const& key );

// One override the routing side wants: `overridingFecId` takes over from the key's FEC.
struct FecOverrideEntry {
   OverrideKey key;
   ::Glarn::Fib::FecId overridingFecId = 0;
   bool operator==( FecOverrideEntry const& ) const = default;
};
static_assert( offsetof( FecOverrideEntry, overridingFecId ) == 16 );

// How an override fared.
enum FecOverrideProgramStatus : std::uint32_t {
   fecOverrideProgrammed = 1,
   fecOverrideOutOfResource = 2,
   fecOverrideWaitingForHwFecId = 3,
   fecOverrideHwNotReady = 4,
};

struct FecOverrideStatusEntry {
   OverrideKey key;
   std::uint32_t status = 0;
   Qos::Hardware::FecOverrideRuleId hwRuleId = Qos::Hardware::invalidFecOverrideRuleId;
   bool operator==( FecOverrideStatusEntry const& ) const = default;
};
static_assert( offsetof( FecOverrideStatusEntry, status ) == 16 &&
               offsetof( FecOverrideStatusEntry, hwRuleId ) == 20 );

// A table of records by override key; its reactors hear onOverride( key ).
template< class Record >
class OverrideTable : public ::Glarn::GlarnMap< Record > {
 public:
   using Store = ::Glarn::GlarnStore< Record >;
   class Notifiee : public ::Glarn::GlarnMap< Record >::Notifiee {
    public:
      Zub::Ptr< OverrideTable const > notifier() const {
         return static_cast< OverrideTable const* >( this->zubNotifier() );
      }
      virtual void onOverride( OverrideKey const& ) {}
      virtual void onOverridezubImmediate() {}

    private:
      void onRecord( OverrideKey const& key ) final { onOverride( key ); }
      void onRecordzubImmediate() final { onOverridezubImmediate(); }
   };
   using ::Glarn::GlarnMap< Record >::GlarnMap;
   void overrideIs( Record const& record ) { this->write( record ); }
   void overrideDel( OverrideKey const& key ) { this->remove( key ); }
};

// The overrides wanted, by key: written by the routing side.
using FecOverrideConfig = OverrideTable< FecOverrideEntry >;
// The outcome of each override, by key: written by the QoS agent.
using FecOverrideStatus = OverrideTable< FecOverrideStatusEntry >;

}  // namespace Qos::Glarn
