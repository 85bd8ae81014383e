// The report's fit summary against runs with that many more interfaces: the room it promises
// programs clean, and one interface more runs a pool out. Once with the TCAM slice as the limit,
// once with the policers.
#include <gtest/gtest.h>

#include <string>

#include "support/SimProgram.h"

namespace NevQosTest {
namespace {

// A map with a class policed per interface (its list copied per interface) beside a shared one,
// on the first `attached` of 80 interfaces.
std::string scenarioOf( std::string const& chip, unsigned attached ) {
   std::string all, some;
   for( unsigned i = 1; i <= 80; ++i ) {
      std::string const name = "Ethernet" + std::to_string( i );
      all += ( i > 1 ? ", " : "" ) + name;
      if( i <= attached ) some += ( i > 1 ? ", " : "" ) + name;
   }
   return "chip: " + chip + "\ninterfaces: [ " + all +
          " ]\n"
          "acls:\n"
          "  - { name: VOICE, rules: [ { proto: udp, dst: 10.0.0.0/8 }, { proto: udp, dscp: ef } ] "
          "}\n"
          "  - { name: BULK, rules: [ { proto: tcp, dst: 10.1.0.0/16 }, { proto: tcp } ] }\n"
          "classMaps:\n"
          "  - { name: voice, match: { ipv4: VOICE } }\n"
          "  - { name: bulk, match: { ipv4: BULK } }\n"
          "policyMaps:\n"
          "  - name: edge\n"
          "    classes:\n"
          "      - { class: voice, police: { cir: 2000, bc: 16000 } }\n"
          "      - { class: bulk, set: { dscp: 10 } }\n"
          "      - { class: class-default }\n"
          "servicePolicies: [ { policyMap: edge, interfaces: [ " +
          some + " ] } ]\n";
}

nlohmann::json reportOf( std::string const& chip, unsigned attached ) {
   SimRun const run =
         runSim( { scenarioFile( "fit.yaml", scenarioOf( chip, attached ) ), "--json" } );
   EXPECT_EQ( run.exitCode, 0 ) << run.err;
   return run.exitCode == 0 ? run.report() : nlohmann::json();
}

bool runOutOfAPool( nlohmann::json const& report ) {
   for( nlohmann::json const& line : report[ "logs" ] ) {
      std::string const handle = line[ "handle" ];
      if( handle.ends_with( "_RESOURCE_FULL" ) ) return true;
   }
   return false;
}

nlohmann::json const* poolIn( nlohmann::json const& fit, std::string const& name ) {
   for( nlohmann::json const& pool : fit[ "pools" ] ) {
      if( pool[ "pool" ] == name ) return &pool;
   }
   return nullptr;
}

TEST( FitTest, TheRoomItGivesFitsAndNoMore ) {
   struct Case {
      std::string chip;
      std::string limit;
   };
   for( Case const& c : { Case{ "{ tcamSliceEntries: 64 }", "ipv4" },
                          Case{ "{ tcamSliceEntries: 64, policers: 5 }", "policers" } } ) {
      SCOPED_TRACE( c.chip );
      unsigned const attached = 2;
      nlohmann::json const before = reportOf( c.chip, attached );
      ASSERT_EQ( before[ "fit" ].size(), 1u );
      nlohmann::json const& fit = before[ "fit" ][ 0 ];
      EXPECT_EQ( fit[ "policyMap" ], "edge(qos,input)" );
      EXPECT_EQ( fit[ "interfaces" ], attached );
      ASSERT_EQ( fit[ "limitedBy" ], c.limit );
      unsigned const more = fit[ "moreInterfaces" ];
      ASSERT_GT( more, 0u );
      nlohmann::json const* const limit = poolIn( fit, c.limit );
      ASSERT_NE( limit, nullptr );
      unsigned const perInterface = ( *limit )[ "perInterface" ];

      // What the map holds grows by what the summary says each interface takes.
      nlohmann::json const full = reportOf( c.chip, attached + more );
      EXPECT_FALSE( runOutOfAPool( full ) ) << full[ "logs" ];
      ASSERT_EQ( full[ "fit" ].size(), 1u );
      EXPECT_EQ( full[ "fit" ][ 0 ][ "moreInterfaces" ], 0 );
      nlohmann::json const* const filled = poolIn( full[ "fit" ][ 0 ], c.limit );
      ASSERT_NE( filled, nullptr );
      EXPECT_EQ( ( *filled )[ "used" ],
                 ( *limit )[ "used" ].get< unsigned >() + more * perInterface );
      EXPECT_LT( ( *filled )[ "free" ], perInterface );

      EXPECT_TRUE( runOutOfAPool( reportOf( c.chip, attached + more + 1 ) ) );
   }
}

// The text report says the same.
TEST( FitTest, TheTextReportGivesTheRoom ) {
   SimRun const run =
         runSim( { scenarioFile( "fit.yaml", scenarioOf( "{ tcamSliceEntries: 64 }", 2 ) ) } );
   ASSERT_EQ( run.exitCode, 0 ) << run.err;
   EXPECT_NE( run.out.find( "edge(qos,input) on 2 interfaces: 28 more (limited by ipv4)" ),
              std::string::npos )
         << run.out;
   EXPECT_NE( run.out.find( "ipv4: 7 used, 2 per interface, 57 free: room for 28" ),
              std::string::npos );
}

}  // namespace
}  // namespace NevQosTest
