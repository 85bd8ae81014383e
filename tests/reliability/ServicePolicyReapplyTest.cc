// A service policy, or the last interface of its group, that goes and comes back while the
// removal of what it had still waits in the update queue: on both TCAM modes the new one is
// programmed when the queue reaches it, nothing of the old one stays in the chip, and a
// successful status always stands for what the chip holds.
#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "reliability/ReliabilityTest.h"
#include "reliability/VerifiedRun.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;

std::string const configuration = R"(
interfaces: [ Ethernet1, Ethernet2 ]
acls:
  - { name: A, rules: [ { proto: tcp, dstPort: { eq: 22 } } ] }
  - { name: B, rules: [ { proto: udp } ] }
classMaps: [ { name: c1, match: { ipv4: A } }, { name: c2, match: { ipv4: B } } ]
policyMaps:
  - { name: p, classes: [ { class: c1, set: { dscp: cs2 } }, { class: c2, drop: true } ] }
)";

struct Reapply {
   char const* what;
   // The steps, at 5 s and 0.1 s apart.
   std::vector< char const* > changes;
   // The interfaces of p after each step, the last of them the end.
   std::vector< char const* > interfaces;
};

std::vector< Reapply > const reapplies{
   { "removed and given again on another interface",
     { "{ removeServicePolicy: p }",
       "{ servicePolicy: { policyMap: p, interfaces: [ Ethernet2 ] } }" },
     { "", "Ethernet2" } },
   { "the last interface detached and attached again",
     { "{ detach: { policyMap: p, interfaces: [ Ethernet1 ] } }",
       "{ attach: { policyMap: p, interfaces: [ Ethernet1 ] } }" },
     { "", "Ethernet1" } },
   { "removed and given again twice",
     { "{ removeServicePolicy: p }",
       "{ servicePolicy: { policyMap: p, interfaces: [ Ethernet1 ] } }",
       "{ removeServicePolicy: p }",
       "{ servicePolicy: { policyMap: p, interfaces: [ Ethernet1, Ethernet2 ] } }" },
     { "", "Ethernet1", "", "Ethernet1, Ethernet2" } },
};

std::string servicePolicyOn( char const* interfaces ) {
   return std::string( "servicePolicies: [ { policyMap: p, interfaces: [ " ) + interfaces +
          " ] } ]\n";
}

class ServicePolicyReapplyTest : public ::testing::TestWithParam< Sim::TcamMode > {
 protected:
   Sim::Scenario scenario( std::string const& yaml ) const {
      Sim::Scenario s = scenarioOf( yaml );
      s.chip.tcamMode = GetParam();
      if( GetParam() == Sim::TcamMode::asynchronous ) s.chip.asyncDelay = 0.5;
      return s;
   }
   // What a switch started afresh with p on `interfaces` holds once it has settled.
   struct Fresh {
      TcamImage tcam;
      std::map< std::string, std::uint64_t > resources;
   };
   Fresh fresh( char const* interfaces ) const {
      Sim::SimSwitch sw( scenario( configuration + servicePolicyOn( interfaces ) ) );
      sw.runUntil( 10.0 );
      return { tcamImageOf( sw ), resourcesInUse( sw ) };
   }
};

TEST_P( ServicePolicyReapplyTest,
        TheNewPolicyIsProgrammedWhenTheQueueReachesItAndNothingOldStays ) {
   for( Reapply const& r : reapplies ) {
      std::string yaml = configuration + servicePolicyOn( "Ethernet1" ) + "steps:\n";
      Zub::Seconds at = 5.0;
      for( char const* change : r.changes ) {
         yaml += "  - { at: " + std::to_string( at ) + ", changes: [ " + change + " ] }\n";
         at += 0.1;
      }
      Sim::Scenario const s = scenario( yaml );
      Sim::SimSwitch sw( s );
      // A successful status stands for every list of the policy as it is configured now.
      std::vector< Fresh > expected{ fresh( "Ethernet1" ) };
      for( char const* interfaces : r.interfaces )
         expected.push_back( fresh( interfaces ) );
      // A tenth of the chip's delay: every operation is seen under way.
      Zub::Seconds const slice = 0.05;
      std::size_t made = 0;
      auto const truthful = [ & ] {
         if( policyMapStatusOf( sw ) != Lines{ "input/p: hwPrgmStatusSuccess ()" } ) return;
         TcamImage const tcam = tcamImageOf( sw );
         for( auto const& [ id, acl ] : expected[ made ].tcam ) {
            ASSERT_TRUE( tcam.contains( id ) && tcam.at( id ) == acl )
                  << r.what << ": " << id << " at " << sw.now() << "\n"
                  << textOf( tcam );
         }
      };
      Lines findings;
      for( Sim::Step const& step : s.steps ) {
         for( std::string& f : stepVerified( sw, step, truthful, slice ) )
            findings.push_back( std::move( f ) );
         ++made;
      }
      for( std::string& f : runVerified( sw, at + 20.0, truthful, slice ) )
         findings.push_back( std::move( f ) );
      EXPECT_EQ( findings, Lines{} ) << r.what;
      EXPECT_EQ( policyMapStatusOf( sw ), Lines{ "input/p: hwPrgmStatusSuccess ()" } ) << r.what;
      EXPECT_EQ( tcamImageOf( sw ), expected.back().tcam ) << r.what;
      EXPECT_EQ( resourcesInUse( sw ), expected.back().resources ) << r.what;
      EXPECT_EQ( logLinesOf( sw ), Lines{} ) << r.what;
   }
}

INSTANTIATE_TEST_SUITE_P( TcamModes, ServicePolicyReapplyTest,
                          ::testing::Values( Sim::TcamMode::synchronous,
                                             Sim::TcamMode::asynchronous ),
                          tcamModeName );

}  // namespace
}  // namespace NevQosTest
