// The kernel's packet driver, as the QoS layer sees it: where it learns which traffic class a
// COS or DSCP value maps to and which transmit queue a traffic class uses, so that packets the
// CPU sends are treated like those the hardware forwards. The driver's operations give no
// result.
#pragma once

#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/zub/Ptr.h"

namespace Nev {

class PktDrvInterface : public Zub::PtrInterface {
 public:
   virtual void cosToTcIs( Qos::Cos cos, Qos::TrafficClass tc ) = 0;
   virtual void dscpToTcIs( Qos::Dscp dscp, Qos::TrafficClass tc ) = 0;
   virtual void tcToUcTxQueueIs( Qos::TrafficClass tc, Qos::TxQueueId txQueue ) = 0;
   virtual void tcToMcTxQueueIs( Qos::TrafficClass tc, Qos::TxQueueId txQueue ) = 0;
};

}  // namespace Nev
