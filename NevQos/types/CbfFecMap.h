// The records the class-based-forwarding machine keeps per FEC and per override key.
#pragma once

#include <cstdint>

#include "NevQos/platform/entities/FecOverride.h"
#include "NevQos/platform/zub/Entity.h"
#include "NevQos/types/OverrideKeySet.h"

namespace Nev {

// The override keys that use one FEC, as the FEC overridden or as the one that takes over. The
// FEC's hardware id is wanted exactly while the set has members. The order of the members
// matters to no one: they go onto the ordered review queue.
class FecIdToOverrideKey : public Zub::PtrInterface {
 public:
   using Keys = OverrideKeySet;

   explicit FecIdToOverrideKey( Glarn::Fib::FecId fecId ) : fecId_( fecId ) {}
   Glarn::Fib::FecId fecId() const { return fecId_; }
   Keys const& mapping() const { return mapping_; }
   bool mappingHas( Qos::Glarn::OverrideKey const& key ) const { return mapping_.contains( key ); }
   void mappingIs( Qos::Glarn::OverrideKey const& key, bool ) { mapping_.insert( key ); }
   void mappingDel( Qos::Glarn::OverrideKey const& key ) { mapping_.erase( key ); }

 private:
   Glarn::Fib::FecId fecId_;
   Keys mapping_;
};

// The rule the driver receives for one override key: the hardware ids of the FEC overridden and
// of the one that takes over, 0 until both are known.
class CbfFecMapRule : public Zub::PtrInterface {
 public:
   explicit CbfFecMapRule( Qos::Glarn::OverrideKey const& key ) : key_( key ) {}
   Qos::Glarn::OverrideKey const& key() const { return key_; }
   Mirel::AddressFamily af() const { return key_.af; }
   Qos::Dscp dscp() const { return key_.dscp; }
   std::uint64_t hwFecId() const { return hwFecId_; }
   void hwFecIdIs( std::uint64_t id ) { hwFecId_ = id; }
   std::uint64_t overridingHwFecId() const { return overridingHwFecId_; }
   void overridingHwFecIdIs( std::uint64_t id ) { overridingHwFecId_ = id; }

 private:
   Qos::Glarn::OverrideKey key_;
   std::uint64_t hwFecId_ = 0;
   std::uint64_t overridingHwFecId_ = 0;
};

}  // namespace Nev
