// The kernel's packet driver of the reference chip: it keeps the maps it is told, so that the
// report shows what packets sent by the CPU would get. A slot the driver was never told stays
// empty.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "nev/PktDrvInterface.h"

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
   std::uint64_t operations() const { return operations_; }

 private:
   CosMap cosToTc_{};
   DscpMap dscpToTc_{};
   QueueMap tcToUcTxQueue_{};
   QueueMap tcToMcTxQueue_{};
   std::uint64_t operations_ = 0;
};

}  // namespace Sim
