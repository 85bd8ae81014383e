#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "NevQos/controlplane/DynamicPerPortCoppSm.h"
#include "NevQos/platform/zub/ActivityManager.h"
#include "NevQos/platform/zub/Log.h"
#include "NevQos/sim/chip/SimQosAclHelper.h"
#include "NevQos/sim/recording/RecordingQosAclHelper.h"

namespace NevQosTest {
namespace {

using Keys = std::vector< Nev::ModIdPortQueueKey >;
using Lines = std::vector< std::string >;

constexpr char const* create = "createCoppPolicerByPortQueue";
// How the reference chip names queue 3 of port 2 of module 1, the policer of key `a`.
constexpr char const* policerOfA = "cpu-queue-3 on Ethernet1/2";

class DynamicPerPortCoppSmTest : public ::testing::Test {
 protected:
   void SetUp() override {
      loop = Zub::ActivityManager::create( Zub::ActivityManager::TimeSource::simulated, 100.0 );
      Zub::activityManagerIs( loop );
      Zub::logSinkIs( [ this ]( Zub::LogRecord const& r ) {
         logs_.push_back( r.handle->name().stdString() + ": " + r.text.stdString() );
      } );
      kernelCoppStatus = Zub::make< Nev::KernelCoPPStatus >( Zub::Name( "kernelCopp" ) );
      clock = Zub::make< Kesh::TimerWheel >();
      auto const chip = Zub::make< Sim::SimQosAclHelper >(
            Sim::ChipConfig(), Zub::make< Qos::Status >( Zub::Name( "qos" ) ),
            Zub::make< Qos::AclSliceHwStatus >( Zub::Name( "aclSlice" ) ),
            Zub::make< Acl::Config >( Zub::Name( "acl" ) ), clock );
      helper = Zub::make< Sim::RecordingQosAclHelper >( chip, clock );
      // The engine names the policer it logs about: those questions are part of what is checked.
      helper->detailRecordedIs( true );
   }
   void TearDown() override {
      if( sm ) sm->zubDoZombieReactors( true );
      sm = nullptr;
      EXPECT_EQ( takeLogs(), Lines{} ) << "log lines the test did not expect";
      Zub::logSinkIs( nullptr );
      Zub::activityManagerIs( nullptr );
   }

   void start() {
      sm = Nev::dynamicPerPortCoppSmFactory( clock, kernelCoppStatus, helper );
      ASSERT_EQ( helper->callsText(), "" ) << "nothing before the loop turns";
      loop->runOnce();
      ASSERT_TRUE( sm->initialized() );
   }
   void report( Nev::ModIdPortQueueKey const& key, Nev::KernelCoppQueueState state ) {
      kernelCoppStatus->stateIs( key, state );
   }
   // A second report of the same state, as the kernel makes it: the entry goes and comes back.
   void reportAgain( Nev::ModIdPortQueueKey const& key ) {
      Nev::KernelCoppQueueState const state = kernelCoppStatus->state( key );
      kernelCoppStatus->stateIs( key, Nev::kernelCoppQueueNoReport );
      kernelCoppStatus->stateIs( key, state );
   }
   // A full chip is scripted; otherwise the reference chip, with room to spare, answers.
   void chipFull( bool full ) {
      if( full ) {
         helper->answerIs( create, false );
      } else {
         helper->answerDel( create );
      }
   }
   Keys waiting() const {
      Keys keys;
      for( auto const& member : sm->pendingHwCopp() )
         keys.push_back( member.value );
      return keys;
   }
   Lines takeCalls() {
      Lines calls;
      for( Sim::ChipCall const& call : helper->calls() )
         calls.push_back( Sim::callText( call ) );
      helper->callsForget();
      return calls;
   }
   Lines takeLogs() { return std::exchange( logs_, {} ); }

   static std::string full( char const* policer ) {
      return std::string(
                   "QOS_COPP_HW_RESOURCE_FULL: Insufficient egress TCAM resources to "
                   "program the control plane policer for class " ) +
             policer + ".";
   }
   static std::string normal( char const* policer ) {
      return std::string( "QOS_COPP_HW_RESOURCE_NORMAL: Control plane policer for class " ) +
             policer + " is programmed in egress TCAM.";
   }

   Nev::ModIdPortQueueKey const a{ 1, 2, 3 };
   Nev::ModIdPortQueueKey const b{ 1, 5, 3 };
   Zub::Ptr< Zub::ActivityManager > loop;
   Zub::Ptr< Nev::KernelCoPPStatus > kernelCoppStatus;
   Zub::Ptr< Sim::RecordingQosAclHelper > helper;
   Zub::Ptr< Kesh::TimerWheel > clock;
   Zub::Ptr< Nev::DynamicPerPortCoppSm > sm;

 private:
   Lines logs_;
};

TEST_F( DynamicPerPortCoppSmTest, TwoSaturatedReportsWhileFullWaitTwiceAndAreProgrammedTwice ) {
   start();
   chipFull( true );
   report( a, Nev::kernelCoppQueueSaturated );
   Zub::Seconds const firstFailure = loop->now();
   loop->runUntil( firstFailure + 10.0 );
   reportAgain( a );
   EXPECT_EQ( waiting(), ( Keys{ a, a } ) );
   EXPECT_EQ( takeLogs(), ( Lines{ full( policerOfA ), full( policerOfA ) } ) );
   // The second failure does not push the retry back.
   EXPECT_EQ( sm->retryTime(), firstFailure + 60.0 );
   // Each failure asked the chip, then named the policer.
   EXPECT_EQ( helper->callsMatching( create ).size(), 2u );

   chipFull( false );
   takeCalls();
   loop->runUntil( firstFailure + 60.0 );
   EXPECT_EQ( takeCalls(),
              ( Lines{ "createCoppPolicerByPortQueue key=1/2/3", "cpuQIdToClassMapName cpuQId=3",
                       "portToIntfName modId=1 port=2", "createCoppPolicerByPortQueue key=1/2/3",
                       "cpuQIdToClassMapName cpuQId=3", "portToIntfName modId=1 port=2" } ) );
   EXPECT_EQ( takeLogs(), ( Lines{ normal( policerOfA ), normal( policerOfA ) } ) );
   EXPECT_EQ( waiting(), Keys{} );
   EXPECT_EQ( sm->pendingHwCoppMetadata().dequeued, 2u );
}

TEST_F( DynamicPerPortCoppSmTest, TimerStaysArmedUntilTheLastWaitingKeyIsReportedUnsaturated ) {
   start();
   chipFull( true );
   report( a, Nev::kernelCoppQueueSaturated );
   Zub::Seconds const retry = sm->retryTime();
   reportAgain( a );
   report( b, Nev::kernelCoppQueueSaturated );
   EXPECT_EQ( takeLogs().size(), 3u );
   takeCalls();

   // Only the first entry of a key leaves; the destroy goes to the chip all the same.
   report( a, Nev::kernelCoppQueueUnsaturated );
   EXPECT_EQ( takeCalls(), Lines{ "destroyCoppPolicerByPortQueue key=1/2/3" } );
   EXPECT_EQ( waiting(), ( Keys{ a, b } ) );
   report( b, Nev::kernelCoppQueueUnsaturated );
   EXPECT_EQ( waiting(), Keys{ a } );
   EXPECT_EQ( sm->retryTime(), retry );

   reportAgain( a );
   EXPECT_EQ( waiting(), Keys{} );
   EXPECT_EQ( sm->retryTime(), Zub::never );
   loop->runUntil( retry + 120.0 );
   EXPECT_EQ( helper->callsMatching( create ), Lines{} );
}

}  // namespace
}  // namespace NevQosTest
