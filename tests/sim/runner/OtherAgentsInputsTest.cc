// What other agents publish reaches the engine. The subinterfaces: the engine hands each change
// to the chip's helper (a forwarding model set or changed, a subinterface gone, the routed port's
// ACL sharing switched). The next-hop groups: the engine notes each change in its trace. A step
// that writes what stands tells the engine nothing.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/SimProgram.h"

namespace NevQosTest {
namespace {

using Json = nlohmann::json;

std::vector< std::string > subIntfCalls( Json const& report ) {
   std::vector< std::string > out;
   for( Json const& c : report[ "calls" ] ) {
      std::string const op = c[ "op" ];
      if( op.find( "SubIntf" ) == std::string::npos ) continue;
      std::string line = std::to_string( int( c[ "t" ].get< double >() ) ) + " " + op;
      if( c[ "args" ].contains( "intfId" ) )
         line += " " + c[ "args" ][ "intfId" ].get< std::string >();
      out.push_back( line );
   }
   return out;
}

TEST( OtherAgentsInputsTest, EachChangeOfASubinterfaceReachesTheChip ) {
   std::string const path = scenarioFile( "subintf.yaml", R"(
interfaces: [ Ethernet1 ]
subInterfaces:
  - { interface: Ethernet1.100, forwardingModel: routed }
steps:
  - at: 1
    changes:
      - subInterface: { interface: Ethernet1.100, forwardingModel: routed }
  - at: 2
    changes:
      - subInterface: { interface: Ethernet1.100, forwardingModel: bridged }
      - subInterface: { interface: Ethernet1.200, forwardingModel: unknown }
  - at: 3
    changes:
      - routedPortSubIntfQosAclSharing: true
  - at: 4
    changes:
      - routedPortSubIntfQosAclSharing: true
      - removeSubInterface: Ethernet1.100
)" );
   SimRun const run = runSim( { path, "--json" } );
   ASSERT_EQ( run.exitCode, 0 ) << run.err;
   EXPECT_EQ( subIntfCalls( run.report() ), ( std::vector< std::string >{
                                                  "0 handleSubIntfForwardingModel Ethernet1.100",
                                                  "2 handleSubIntfForwardingModel Ethernet1.100",
                                                  "2 handleSubIntfForwardingModel Ethernet1.200",
                                                  "3 handleRoutedPortSubIntfAclSharing",
                                                  "4 handleSubIntfDeletion Ethernet1.100",
                                            } ) );
}

TEST( OtherAgentsInputsTest, EachChangeOfANexthopGroupIsTraced ) {
   std::string const path = scenarioFile( "nexthop.yaml", R"(
nexthopGroups:
  - { name: g1, index: 7 }
trace: [ NevQos/3 ]
steps:
  - at: 1
    changes:
      - nexthopGroup: { name: g1, index: 7 }
      - nexthopGroup: { name: g2, index: 9 }
  - at: 2
    changes:
      - nexthopGroup: { name: g2, index: 10 }
      - removeNexthopGroup: g1
)" );
   SimRun const run = runSim( { path, "--json" } );
   ASSERT_EQ( run.exitCode, 0 ) << run.err;
   Json const report = run.report();
   std::vector< std::string > seen;
   for( Json const& line : report[ "trace" ] ) {
      if( line[ "function" ] != "handleNexthopGroupIndex" ) continue;
      seen.push_back( std::to_string( int( line[ "t" ].get< double >() ) ) + " " +
                      line[ "text" ].get< std::string >() );
   }
   EXPECT_EQ( seen, ( std::vector< std::string >{ "1 handleNexthopGroupIndex g2",
                                                  "2 handleNexthopGroupIndex g1",
                                                  "2 handleNexthopGroupIndex g2" } ) );
}

}  // namespace
}  // namespace NevQosTest
