// An agent in miniature for tests of basic QoS: the input entities, the reference chip behind a
// recording decorator as the helper, a simulated-time loop, and a capture of the system log that
// fails the test on any line the test did not expect.
//
// The chip of a fresh fixture knows 8 traffic classes and 8 transmit queues and nothing else;
// a test sets the capabilities it needs before start().
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "NevQos/basic/QosBasicSm.h"
#include "NevQos/platform/zub/ActivityManager.h"
#include "NevQos/sim/chip/SimQosBasicHelper.h"
#include "NevQos/sim/recording/RecordingQosBasicHelper.h"

namespace NevQosTest {

class QosBasicSmFixture : public ::testing::Test {
 protected:
   void SetUp() override;
   void TearDown() override;

   // Creates the machine through the agent's entry point and runs its start-up.
   void start();

   static Qos::TxQueue uc( unsigned id ) {
      return Qos::TxQueue( Qos::TxQueueId( id ), Qos::unicastQueue_ );
   }
   // The QoS status of an interface, with unicast queues of the given ids; on a running machine
   // the queues arrive one by one after the interface.
   Zub::Ptr< Qos::IntfStatus > intfIs( char const* name, std::vector< unsigned > queues = {} );
   Zub::Ptr< Qos::TxQueueStatus > queue( char const* intf, unsigned id ) const;
   // A front-panel port in the directory of port statuses.
   Zub::Ptr< Interface::EthPhyIntfStatus > portIs( char const* name, bool active = true,
                                                   std::uint64_t speed = 10000 );
   // The record of a feature in the slice's status; created when missing, like the machine's.
   Zub::Ptr< Qos::HwProgrammingVersionAndStatus > record( Qos::FeatureName feature ) const {
      return sliceHwStatus->hwProgrammingVersionAndStatusIs( feature );
   }
   bool sliceFailed() const { return sliceHwStatus->status() == Qos::hwProgrammingFailed_; }
   // The recorded calls since the last call of this, in order, as the runner prints them.
   std::vector< std::string > takeCalls();
   // Every later call of `op` fails as a chip short of a resource fails it: the record of
   // `feature` in the slice's status goes down, and the chip is not reached; until failDel( op ).
   void failIs( char const* op, Qos::FeatureName feature );
   void failDel( char const* op ) { helper->answerDel( op ); }
   // The log lines written since the last call; the test has seen them.
   std::vector< std::string > takeLogs();

   Zub::Ptr< Zub::ActivityManager > loop;
   Zub::Ptr< Nev::NevCommonSmData > ncsd;
   Zub::Ptr< Nev::VerifyData > verifyData;
   Zub::Ptr< Qos::Status > qosStatus;
   Zub::Ptr< Qos::HwStatus > qosHwStatus;
   Zub::Ptr< Qos::SliceHwStatus > sliceHwStatus;
   Zub::Ptr< Interface::AllEthPhyIntfStatusDir > ethPhyIntfStatusDir;
   Zub::Ptr< Qos::CounterConfig > counterConfig;
   Zub::Ptr< Sim::SimQosBasicHelper > chip;
   Zub::Ptr< Sim::RecordingQosBasicHelper > helper;
   Zub::Ptr< Kesh::TimerWheel > clock;
   Zub::Ptr< Nev::QosBasicSm > sm;

 private:
   std::vector< std::string > logs_;
};

}  // namespace NevQosTest
