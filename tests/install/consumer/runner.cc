// Runs a scenario on the installed runner's libraries: the engine on the reference chip, then the
// chip's TCAM and the report's summary.
#include <NevQos/sim/runner/Report.h>
#include <NevQos/sim/runner/SimSwitch.h>
#include <NevQos/sim/runner/Summary.h>
#include <NevQos/sim/scenario/ScenarioLoader.h>

#include <cstdint>
#include <cstdio>
#include <iostream>

namespace {

char const* const scenarioText = R"(
description: one policy map on one port
interfaces: [ Ethernet1 ]
acls:
  - name: WEB
    rules: [ { proto: tcp, dstPort: { eq: [ 80 ] } } ]
classMaps:
  - { name: web, match: { ipv4: WEB } }
policyMaps:
  - name: edge
    classes: [ { class: web, set: { trafficClass: 3 } } ]
servicePolicies:
  - { policyMap: edge, interfaces: [ Ethernet1 ] }
)";

}  // namespace

int main() {
   Sim::Scenario const scenario = Sim::loadScenarioText( scenarioText, "consumer.yaml" );
   Sim::SimSwitch sw( scenario );
   sw.runUntil( 5.0 );
   std::uint32_t entries = 0;
   for( auto const& [ name, slice ] : sw.chip().tcam().slices() )
      entries += slice.used;
   if( entries == 0 ) {
      std::printf( "the scenario left the TCAM empty\n" );
      return 1;
   }
   Sim::printSummary( std::cout, Sim::summaryOf( scenario, sw, nlohmann::ordered_json::object() ),
                      "" );
   std::printf( "installed runner works: %u TCAM entries\n", entries );
   return 0;
}
