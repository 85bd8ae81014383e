#include "NevQos/sim/chip/SimPktDrv.h"

namespace Sim {

// The key types hold nothing beyond the sentinel's slot, which each array has room for.

void SimPktDrv::cosToTcIs( Qos::Cos cos, Qos::TrafficClass tc ) {
   cosToTc_.at( cos ) = tc.value();
   callIs( "cosToTcIs", "cos", cos.value(), "tc", tc.value() );
}

void SimPktDrv::dscpToTcIs( Qos::Dscp dscp, Qos::TrafficClass tc ) {
   dscpToTc_.at( dscp ) = tc.value();
   callIs( "dscpToTcIs", "dscp", dscp.value(), "tc", tc.value() );
}

void SimPktDrv::tcToUcTxQueueIs( Qos::TrafficClass tc, Qos::TxQueueId txQueue ) {
   tcToUcTxQueue_.at( tc ) = txQueue.value();
   callIs( "tcToUcTxQueueIs", "tc", tc.value(), "txQueue", txQueue.value() );
}

void SimPktDrv::tcToMcTxQueueIs( Qos::TrafficClass tc, Qos::TxQueueId txQueue ) {
   tcToMcTxQueue_.at( tc ) = txQueue.value();
   callIs( "tcToMcTxQueueIs", "tc", tc.value(), "txQueue", txQueue.value() );
}

void SimPktDrv::callIs( char const* op, char const* from, unsigned key, char const* to,
                        unsigned value ) {
   calls_.push_back( Call{ now_ ? now_() : 0.0, op, { { from, key }, { to, value } } } );
}

}  // namespace Sim
