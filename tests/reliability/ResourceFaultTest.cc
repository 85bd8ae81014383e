// Shared pools running out at every point: class-based forwarding rule slots, a rule table that
// is not ready, and the ECN profiles of basic QoS. Each shortage is logged once, what fits is
// programmed, and freeing the pool brings the rest in with one recovery line.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "NevQos/sim/runner/Report.h"
#include "reliability/ReliabilityTest.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;
using Json = nlohmann::ordered_json;

// Four overrides whose FECs the service has answered, on a chip with `slots` rule slots; at 2 s
// the routing side removes the last `removed` of them.
std::string overrides( unsigned slots, unsigned removed ) {
   std::string yaml = "chip: { cbfRules: " + std::to_string( slots ) + " }\n" + "fecOverrides:\n";
   for( unsigned d = 0; d < 4; ++d )
      yaml += "  - { dscp: " + std::to_string( 10 + d ) + ", fec: 10, overridingFec: 20 }\n";
   yaml += "fecService:\n  - { fec: 10, hwFecId: 5010 }\n  - { fec: 20, hwFecId: 5020 }\n";
   if( removed == 0 ) return yaml;
   yaml += "steps:\n  - at: 2\n    changes:\n";
   for( unsigned d = 4 - removed; d < 4; ++d )
      yaml += "      - removeFecOverride: { dscp: " + std::to_string( 10 + d ) + ", fec: 10 }\n";
   return yaml;
}

// Override key to its status.
std::map< std::string, std::string > cbfStatusOf( Sim::Scenario const& s, Sim::SimSwitch& sw ) {
   std::map< std::string, std::string > out;
   Json const report = Sim::reportOf( s, sw );
   for( Json const& st : report[ "cbf" ][ "status" ] )
      out[ st[ "key" ].get< std::string >() ] = st[ "status" ].get< std::string >();
   return out;
}

std::size_t countOf( std::map< std::string, std::string > const& status, std::string const& st ) {
   std::size_t n = 0;
   for( auto const& [ key, value ] : status )
      n += value == st;
   return n;
}

Lines const cbfFull{
   "ROUTING_CBF_HW_RESOURCE_FULL: Hardware resources are insufficient to program "
   "all class based forwarding FEC override mappings."
};
Lines const cbfNormal{
   "ROUTING_CBF_HW_RESOURCE_NORMAL: All class based forwarding FEC override "
   "mappings are programmed in hardware."
};

TEST( ResourceFaultTest, CbfRuleSlotsRunningOutAtEachOverrideAreLoggedOnceAndRecoverOnce ) {
   for( unsigned slots = 0; slots < 4; ++slots ) {
      std::string const what = std::to_string( slots ) + " rule slots";
      Sim::Scenario const s = scenarioOf( overrides( slots, 4 - slots ) );
      Sim::SimSwitch sw( s );
      sw.runUntil( 1.5 );
      EXPECT_EQ( logLinesOf( sw ), cbfFull ) << what << ": retries do not log again";
      auto status = cbfStatusOf( s, sw );
      EXPECT_EQ( countOf( status, "programmed" ), slots ) << what;
      EXPECT_EQ( countOf( status, "outOfResource" ), 4 - slots ) << what;
      EXPECT_EQ( resourcesInUse( sw ).at( "cbf rules" ), slots );

      std::size_t const before = sw.logs().size();
      sw.stepIs( s.steps.at( 0 ) );
      sw.runUntil( 4.0 );
      EXPECT_EQ( logLinesOf( sw, before ), cbfNormal ) << what;
      status = cbfStatusOf( s, sw );
      EXPECT_EQ( status.size(), slots );
      EXPECT_EQ( countOf( status, "programmed" ), slots ) << what;
      EXPECT_EQ( resourcesInUse( sw ).at( "cbf rules" ), slots );
   }
}

TEST( ResourceFaultTest, ARuleTableNotReadyIsRetriedUntilItIsWithoutALogLine ) {
   Sim::Scenario s = scenarioOf( overrides( 8, 0 ) );
   Sim::FaultConfig notReady;
   notReady.kind = Sim::FaultConfig::Kind::cbfNotReady;
   notReady.until = 1.0;
   s.chip.faults.push_back( notReady );
   s.faultNames.emplace_back();
   Sim::SimSwitch sw( s );
   sw.runUntil( 0.5 );
   EXPECT_EQ( countOf( cbfStatusOf( s, sw ), "hwNotReady" ), 4u );
   EXPECT_EQ( resourcesInUse( sw ).at( "cbf rules" ), 0u );
   sw.runUntil( 1.5 );
   EXPECT_EQ( countOf( cbfStatusOf( s, sw ), "programmed" ), 4u );
   EXPECT_EQ( resourcesInUse( sw ).at( "cbf rules" ), 4u );
   EXPECT_EQ( logLinesOf( sw ), Lines{} );
}

// Three ports asking for three different ECN settings of one queue.
std::string ecnPorts( unsigned profiles ) {
   std::string yaml = "chip: { ecnProfiles: " + std::to_string( profiles ) + " }\n" +
                      "interfaces: [ Ethernet1, Ethernet2, Ethernet3 ]\n" + "interfaceQos:\n";
   for( unsigned p = 1; p <= 3; ++p ) {
      yaml += "  - { interface: Ethernet" + std::to_string( p ) +
              ", trust: dscp, queues: [ { queue: 1, ecn: { min: " + std::to_string( p * 10000 ) +
              ", max: " + std::to_string( p * 10000 + 5000 ) + " } } ] }\n";
   }
   yaml += "steps:\n  - at: 2\n    changes:\n";
   for( unsigned p = 1; p <= 3; ++p )
      yaml += "      - removeInterfaceQos: Ethernet" + std::to_string( p ) + "\n";
   return yaml;
}

TEST( ResourceFaultTest, EcnProfilesRunningOutAtEachPortFailThoseQueuesAndComeBackToZero ) {
   for( unsigned profiles = 0; profiles < 3; ++profiles ) {
      Sim::Scenario const s = scenarioOf( ecnPorts( profiles ) );
      Sim::SimSwitch sw( s );
      sw.runUntil( 1.0 );
      Lines expected;
      for( unsigned p = profiles + 1; p <= 3; ++p ) {
         expected.push_back(
               "QOS_ECN_QUEUE_HW_FULL: Hardware resources insufficient to program "
               "tx-queue ECN on queue UC1 for port Ethernet" +
               std::to_string( p ) );
      }
      EXPECT_EQ( logLinesOf( sw ), expected ) << profiles << " profiles";
      EXPECT_EQ( resourcesInUse( sw ).at( "ecn profiles" ), profiles );
      std::size_t const before = sw.logs().size();
      sw.stepIs( s.steps.at( 0 ) );
      sw.runUntil( 3.0 );
      EXPECT_EQ( logLinesOf( sw, before ), Lines{} );
      EXPECT_EQ( resourcesInUse( sw ).at( "ecn profiles" ), 0u ) << profiles << " profiles";
   }
}

}  // namespace
}  // namespace NevQosTest
