// The few behaviours of the input and status entities that the engine relies on beyond the
// declarations themselves. Every entity header is included, so that a declaration no user
// includes yet still has to compile.
#include <gtest/gtest.h>

#include <vector>

#include "NevQos/platform/entities/AclConfig.h"
#include "NevQos/platform/entities/AclHwStatus.h"
#include "NevQos/platform/entities/AclSliceHwStatus.h"
#include "NevQos/platform/entities/CounterConfig.h"
#include "NevQos/platform/entities/EthPhyIntfStatus.h"
#include "NevQos/platform/entities/HwEpochStatus.h"
#include "NevQos/platform/entities/HwStatus.h"
#include "NevQos/platform/entities/InputConfig.h"
#include "NevQos/platform/entities/QosStatus.h"
#include "NevQos/platform/entities/SliceHwStatus.h"
#include "NevQos/platform/entities/SubIntfStatus.h"
#include "NevQos/platform/nev/KernelCoPPConfig.h"
#include "NevQos/platform/nev/KernelCoPPStatus.h"
#include "NevQos/platform/nev/NexthopGroupStatus.h"

namespace {

// A global map slot without configuration reads as its type's sentinel, which tells the
// reader to fall back to the chip's default; writing the sentinel back unconfigures it.
TEST( StatusEntitiesTest, UnconfiguredMapSlotReadsAsSentinel ) {
   auto status = Zub::make< Qos::Status >( Zub::Name( "qos" ) );
   EXPECT_FALSE( status->cosToTcMap( Qos::Cos( 3 ) ).isValid() );
   EXPECT_EQ( status->tcToTxQueueMap( Qos::TrafficClass( 16 ) ).value(), 16 );
   EXPECT_EQ( status->tcToDscpMap( Qos::TrafficClass( 0 ) ).value(), 64 );
   status->cosToTcMapIs( Qos::Cos( 3 ), Qos::TrafficClass( 5 ) );
   EXPECT_EQ( status->cosToTcMap( Qos::Cos( 3 ) ).value(), 5 );
   status->cosToTcMapIs( Qos::Cos( 3 ), Qos::TrafficClass() );
   EXPECT_FALSE( status->cosToTcMap( Qos::Cos( 3 ) ).isValid() );

   // The chip's own defaults are real values, not sentinels.
   auto hw = Zub::make< Qos::HwStatus >( Zub::Name( "hw" ) );
   EXPECT_TRUE( hw->defaultDropPrecedence().isValid() );
   EXPECT_TRUE( hw->defaultCos().isValid() );
   EXPECT_TRUE( hw->defaultDscp().isValid() );
}

}  // namespace
