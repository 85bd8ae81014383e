#include "sim/chip/SimPktDrv.h"

namespace Sim {

// The key types hold nothing beyond the sentinel's slot, which each array has room for.

void SimPktDrv::cosToTcIs( Qos::Cos cos, Qos::TrafficClass tc ) {
   cosToTc_.at( cos ) = tc.value();
   ++operations_;
}

void SimPktDrv::dscpToTcIs( Qos::Dscp dscp, Qos::TrafficClass tc ) {
   dscpToTc_.at( dscp ) = tc.value();
   ++operations_;
}

void SimPktDrv::tcToUcTxQueueIs( Qos::TrafficClass tc, Qos::TxQueueId txQueue ) {
   tcToUcTxQueue_.at( tc ) = txQueue.value();
   ++operations_;
}

void SimPktDrv::tcToMcTxQueueIs( Qos::TrafficClass tc, Qos::TxQueueId txQueue ) {
   tcToMcTxQueue_.at( tc ) = txQueue.value();
   ++operations_;
}

}  // namespace Sim
