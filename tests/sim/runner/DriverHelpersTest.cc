// A driver's helpers take the reference chip's place in the switch: the engines call them, and
// verify through them.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "NevQos/sim/recording/ChipCall.h"
#include "NevQos/sim/recording/RecordingCbfFecMappingHelper.h"
#include "NevQos/sim/recording/RecordingQosAclHelper.h"
#include "NevQos/sim/recording/RecordingQosBasicHelper.h"
#include "NevQos/sim/runner/SimSwitch.h"
#include "NevQos/sim/scenario/ScenarioLoader.h"

namespace NevQosTest {
namespace {

std::vector< std::string > callLines( Sim::CallLog const& log ) {
   std::vector< std::string > lines;
   auto const add = [ & ]( auto const& runs ) {
      for( Sim::CallRun const& run : runs )
         lines.push_back( Sim::callText( run.call ) + " x" + std::to_string( run.count ) );
   };
   add( log.first() );
   add( log.last() );
   return lines;
}

// A driver's factory of a recording decorator of the reference chip's helper, which records into
// `log` and notes `kind` in `built` when it is called.
template< class Recorder, class Helper >
auto recordingInto( Sim::CallLog& log, std::vector< std::string >& built, char const* kind ) {
   return [ &log, &built, kind ]( auto const& reference, Sim::DriverInputs const& in ) {
      built.push_back( kind );
      auto helper = Zub::make< Recorder >( reference, in.clock );
      helper->callLogIs( &log );
      return Zub::Ptr< Helper >( helper );
   };
}

// Each helper of the driver here is a recording decorator of the reference chip with a log of its
// own: it must see every call the engines make, in their order, and the engine's verification
// must read the chip back through it.
TEST( DriverHelpersTest, TheEnginesDriveAndVerifyTheDriversHelpers ) {
   Sim::Scenario const scenario = Sim::loadScenario( NEVQOS_EXAMPLES_DIR "/edge-policy.yaml" );
   Sim::CallLog driverCalls;
   std::vector< std::string > built;
   Sim::SwitchOptions options;
   auto const acl = recordingInto< Sim::RecordingQosAclHelper, NevHelper::QosAclHelper >(
         driverCalls, built, "acl" );
   options.driver.acl = [ & ]( Zub::Ptr< Sim::SimQosAclHelper > const& reference,
                               Sim::DriverInputs const& in ) {
      EXPECT_EQ( in.chip->tcamSliceEntries, scenario.chip.tcamSliceEntries );
      return acl( reference, in );
   };
   options.driver.basic = recordingInto< Sim::RecordingQosBasicHelper, NevHelper::QosBasicHelper >(
         driverCalls, built, "basic" );
   options.driver.cbf =
         recordingInto< Sim::RecordingCbfFecMappingHelper, NevHelper::CbfFecMappingHelper >(
               driverCalls, built, "cbf" );
   Sim::SimSwitch sw( scenario, options );
   for( Sim::Step const& step : scenario.steps )
      sw.stepIs( step );
   sw.runFor( 60.0, [] {} );

   EXPECT_EQ( built, ( std::vector< std::string >{ "acl", "basic", "cbf" } ) );
   ASSERT_GT( driverCalls.size(), 100u );
   EXPECT_EQ( driverCalls.size(), sw.calls().size() );
   EXPECT_EQ( callLines( driverCalls ), callLines( sw.calls() ) );
   EXPECT_EQ( sw.verify(), std::vector< std::string >{} );
}

}  // namespace
}  // namespace NevQosTest
