// The kernel's packet driver of the reference chip: it keeps the maps it is told, so that the
// report shows what packets sent by the CPU would get. A slot the driver was never told stays
// empty.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "NevQos/platform/nev/PktDrvInterface.h"
#include "NevQos/platform/zub/Entity.h"

namespace Sim {

class SimPktDrv : public Nev::PktDrvInterface {
 public:
   // Traffic classes and queues as the driver holds them; the sentinel's slot, 16, is kept too,
   // since the driver is told it like any other.
   using Slot = std::optional< unsigned >;
   using CosMap = std::array< Slot, Qos::Cos::max + 1 >;
   using DscpMap = std::array< Slot, Qos::Dscp::max + 1 >;
   using QueueMap = std::array< Slot, Qos::TrafficClass::invalid + 1 >;

   void cosToTcIs( Qos::Cos cos, Qos::TrafficClass tc ) override;
   void dscpToTcIs( Qos::Dscp dscp, Qos::TrafficClass tc ) override;
   void tcToUcTxQueueIs( Qos::TrafficClass tc, Qos::TxQueueId txQueue ) override;
   void tcToMcTxQueueIs( Qos::TrafficClass tc, Qos::TxQueueId txQueue ) override;

   CosMap const& cosToTc() const { return cosToTc_; }
   DscpMap const& dscpToTc() const { return dscpToTc_; }
   QueueMap const& tcToUcTxQueue() const { return tcToUcTxQueue_; }
   QueueMap const& tcToMcTxQueue() const { return tcToMcTxQueue_; }
   // How many times the driver was told something.
   std::uint64_t operations() const { return calls_.size(); }

   // One thing the driver was told: when, the operation, and its arguments by name.
   struct Call {
      Zub::Seconds t = 0.0;
      std::string op;
      std::vector< std::pair< std::string, unsigned > > args;
   };
   // Every call, in order: the final maps alone do not show what the driver went through.
   std::vector< Call > const& calls() const { return calls_; }
   // Where the driver reads the time of a call; 0 without one.
   void clockIs( std::function< Zub::Seconds() > now ) { now_ = std::move( now ); }

 private:
   void callIs( char const* op, char const* from, unsigned key, char const* to, unsigned value );

   CosMap cosToTc_{};
   DscpMap dscpToTc_{};
   QueueMap tcToUcTxQueue_{};
   QueueMap tcToMcTxQueue_{};
   std::vector< Call > calls_;
   std::function< Zub::Seconds() > now_;
};

}  // namespace Sim
