// Every example on chips at the edges of what a chip may be, on both TCAM modes: a tiny TCAM, no
// range checkers, policers or counters, a budget of one class, each capability flag turned the
// other way, and so on. Each runs as `nevqos-sim --verify=always` runs it (CheckedRun.h): it must
// end, without an engine assertion, with verification clean (but where the example damages the TCAM
// on purpose) and with the chip holding what the status says. A failure writes the scenario with
// its chip to a file that nevqos-sim replays.
#include <gtest/gtest.h>
#include <yaml-cpp/yaml.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <type_traits>
#include <variant>
#include <vector>

#include "NevQos/sim/checks/AbortNote.h"
#include "NevQos/sim/checks/CheckedRun.h"
#include "NevQos/sim/scenario/ScenarioError.h"
#include "NevQos/sim/scenario/ScenarioLoader.h"

namespace NevQosTest {
namespace {

// What a chip key reaches: policy maps and their TCAM, basic QoS, the control plane (per-port
// CoPP and the kernel's packet driver), class-based forwarding; a profile runs on the examples
// that have something it reaches.
enum Reach : unsigned { policy = 1, basic = 2, controlPlane = 4, cbf = 8, all = 15 };

// Chip keys set over the example's own, as a YAML flow mapping.
struct Profile {
   std::string name;
   unsigned reach;
   std::string chip;
};

// The limits at their edges, one or a few at a time.
std::vector< Profile > const limitProfiles{
   { "tcam-1", policy, "{ tcamSliceEntries: 1 }" },
   { "tcam-2", policy, "{ tcamSliceEntries: 2 }" },
   { "tcam-5", policy, "{ tcamSliceEntries: 5 }" },
   { "no-range-checkers", policy, "{ rangeCheckers: 0 }" },
   { "one-range-checker", policy, "{ rangeCheckers: 1 }" },
   { "no-policers", policy, "{ policers: 0 }" },
   { "one-policer", policy, "{ policers: 1 }" },
   { "one-policer-is-an-error", policy, "{ policers: 1, errorOnPolicerExhaustion: true }" },
   { "no-counters", policy, "{ counters: 0 }" },
   { "one-counter", policy, "{ counters: 1 }" },
   { "no-cpu-queues", policy | controlPlane, "{ cpuQueues: 0 }" },
   { "no-cbf-rules", cbf, "{ cbfRules: 0 }" },
   { "one-cbf-rule", cbf, "{ cbfRules: 1 }" },
   { "no-port-cpu-queue-policers", controlPlane, "{ portCpuQueuePolicers: 0 }" },
   { "one-class", policy, "{ maxClassesPerPolicyMap: 1 }" },
   { "two-classes", policy, "{ maxClassesPerPolicyMap: 2 }" },
   { "priority-1", policy, "{ policyClassMaxPrio: 1 }" },
   { "priority-2", policy, "{ policyClassMaxPrio: 2 }" },
   { "no-tcp-flags", policy, "{ supportedTcpFlags: 0 }" },
   { "no-queue-profiles", basic,
     "{ ecnProfiles: 0, wredProfiles: 0, dropThresholdProfiles: 0, ecnQueueCounters: 0 }" },
   { "one-traffic-class", basic | controlPlane, "{ numTcSupported: 1, numTxQueueSupported: 1 }" },
   { "no-traffic-classes", basic | controlPlane, "{ numTcSupported: 0, numTxQueueSupported: 0 }" },
   { "multicast-queues", basic | controlPlane,
     "{ numMulticastQueueSupported: 16, mcTxQueueMapSupported: true }" },
   { "one-police-rate", policy,
     "{ policeByteModeMinRateKbps: 1000, policeByteModeMaxRateKbps: 1000, "
     "policeByteModeMinBurstBytes: 0, policeByteModeMaxBurstBytes: 1, "
     "policePacketModeMinRatePps: 5, policePacketModeMaxRatePps: 5, "
     "policePacketModeMinBurstPackets: 0, policePacketModeMaxBurstPackets: 1 }" },
   { "shaping-limits", basic,
     "{ minPortShapeRate: 0, minTxQueueShapeRate: 400000000, maxShapeRateKbps: 1, "
     "maxShapeRatePps: 1, minGuaranteedBwKbps: 0, maxGuaranteedBwKbps: 1, minGuaranteedBwPps: 0, "
     "maxGuaranteedBwPps: 1 }" },
   { "slow-async", policy, "{ asyncDelay: 0.7, asyncTimeout: 0.8 }" },
   { "everything-small", all,
     "{ tcamSliceEntries: 3, rangeCheckers: 1, policers: 1, counters: 1, cpuQueues: 1, "
     "cbfRules: 1, portCpuQueuePolicers: 1, maxClassesPerPolicyMap: 2, policyClassMaxPrio: 3, "
     "ecnProfiles: 1, wredProfiles: 1, dropThresholdProfiles: 1, ecnQueueCounters: 1 }" },
};

struct Flag {
   std::string name;
   unsigned reach;
   // As the chip section documents it.
   bool defaultOn;
};

// Every capability flag of the chip; each is turned against the example's own setting.
std::vector< Flag > const flags{
   { "policyQosSupported", policy, true },
   { "pdpSupported", policy | basic, false },
   { "coppSupported", policy, false },
   { "coppDynamicClassSupported", policy, false },
   { "intfCoppSupported", policy, false },
   { "perClassPolicerSupported", policy, false },
   { "sharedQosAclTypesCounterSupported", policy, false },
   { "vlanClassMatchSupported", policy, true },
   { "cosClassMatchSupported", policy, true },
   { "dscpEcnClassMatchSupported", policy, true },
   { "multipleActionsSupported", policy, true },
   { "errorOnPolicerExhaustion", policy, false },
   { "createSmForPMap", policy, true },
   { "isFabricSlice", basic, false },
   { "hwInitialized", basic | controlPlane, true },
   { "mcTxQueueMapSupported", basic | controlPlane, false },
   { "dscpRewriteSupported", basic, true },
   { "dscpToDpMapSupported", basic, false },
   { "dscpRewritePerInterfaceSupported", basic, false },
   { "cosToTcPerInterfaceSupported", basic, false },
   { "ecnSupported", basic, true },
   { "ecnQueueCounterSupported", basic, false },
   { "ecnDelaySupported", basic, false },
   { "nonEctThdSupported", basic, false },
   { "wredSupported", basic, true },
   { "dropPrecedenceThresholdSupported", basic, false },
   { "guaranteedBwSupported", basic, true },
   { "macAclRuleSupportedPlatform", policy, false },
   { "qosEcnSupport", policy, true },
   { "establishedSupported", policy, false },
};

std::string const examplesDir = NEVQOS_EXAMPLES_DIR;

YAML::Node loaded( std::string const& example ) {
   return YAML::LoadFile( examplesDir + "/" + example + ".yaml" );
}

// The example's text with the chip keys of `chip` set over its own, on `mode`.
std::string withChip( YAML::Node const& example, YAML::Node const& chip, char const* mode ) {
   YAML::Node out = YAML::Clone( example );
   YAML::Node c =
         example[ "chip" ] ? YAML::Clone( example[ "chip" ] ) : YAML::Node( YAML::NodeType::Map );
   for( auto const& kv : chip )
      c[ kv.first.as< std::string >() ] = kv.second;
   c[ "tcamMode" ] = mode;
   out[ "chip" ] = c;
   YAML::Emitter emitter;
   emitter << out;
   return std::string( emitter.c_str() ) + "\n";
}

// A flag of the example's chip section, or `fallback` where it has none.
bool flagOf( YAML::Node const& example, std::string const& flag, bool fallback ) {
   YAML::Node const chip = example[ "chip" ];
   if( !chip || !chip.IsMap() ) return fallback;
   for( auto const& kv : chip ) {
      if( kv.first.as< std::string >() == flag ) return kv.second.as< bool >();
   }
   return fallback;
}

// What an example configures, as the reach of chip keys.
unsigned reachOf( Sim::Scenario const& s ) {
   unsigned reach = 0;
   auto add = [ & ]( Sim::Change const& c ) {
      std::visit(
            [ & ]< class T >( T const& ) {
               if constexpr( std::is_same_v< T, Sim::PolicyMapDef > ) reach |= policy;
               if constexpr( std::is_same_v< T, Sim::GlobalMapsDef > ||
                             std::is_same_v< T, Sim::IntfQosDef > ||
                             std::is_same_v< T, Sim::EcnCountersDef > ||
                             std::is_same_v< T, Sim::DscpRewriteMapDef > ||
                             std::is_same_v< T, Sim::CosToTcProfileDef > ) {
                  reach |= basic;
               }
               if constexpr( std::is_same_v< T, Sim::KernelCoppReport > ||
                             std::is_same_v< T, Sim::HwInitialization > ) {
                  reach |= controlPlane;
               }
               if constexpr( std::is_same_v< T, Sim::FecOverrideDef > ) reach |= cbf;
            },
            c.value );
   };
   for( Sim::Change const& c : s.initial )
      add( c );
   for( Sim::Step const& step : s.steps ) {
      for( Sim::Change const& c : step.changes )
         add( c );
   }
   return reach;
}

// The profiles for one example: the limits, then each flag turned, of what it configures.
std::vector< std::pair< std::string, YAML::Node > > profilesOf( YAML::Node const& example,
                                                                unsigned reach ) {
   std::vector< std::pair< std::string, YAML::Node > > out;
   for( Profile const& p : limitProfiles ) {
      if( p.reach & reach ) out.emplace_back( p.name, YAML::Load( p.chip ) );
   }
   for( Flag const& flag : flags ) {
      if( !( flag.reach & reach ) ) continue;
      bool const on = flagOf( example, flag.name, flag.defaultOn );
      YAML::Node chip( YAML::NodeType::Map );
      chip[ flag.name ] = !on;
      out.emplace_back( flag.name + ( on ? "-off" : "-on" ), chip );
   }
   return out;
}

class ExampleProfilesTest : public ::testing::TestWithParam< char const* > {};

TEST_P( ExampleProfilesTest, EndsCleanOnEveryBoundaryChip ) {
   std::string const name = GetParam();
   YAML::Node const example = loaded( name );
   unsigned const reach = reachOf( Sim::loadScenario( examplesDir + "/" + name + ".yaml" ) );
   std::size_t runs = 0;
   for( char const* mode : { "synchronous", "asynchronous" } ) {
      for( auto const& [ profile, chip ] : profilesOf( example, reach ) ) {
         std::string const text = withChip( example, chip, mode );
         std::string const where = name + " on " + mode + " " + profile;
         Sim::Scenario scenario;
         try {
            scenario = Sim::loadScenarioText( text, examplesDir + "/" + name + ".yaml" );
         } catch( Sim::ScenarioError const& e ) {
            ADD_FAILURE() << where << ": " << e.what();
            continue;
         }
         std::string const path =
               ::testing::TempDir() + "example-" + name + "-" + mode + "-" + profile + ".yaml";
         Sim::AbortNote const note( where + "; nevqos-sim " + path +
                                    " --verify=always replays it" );
         std::ofstream( path ) << text;
         Sim::CheckedRun const run = Sim::checkedRun( scenario );
         ++runs;
         EXPECT_EQ( run.problems, std::vector< std::string >{} )
               << where << "; nevqos-sim " << path << " --verify=always replays it";
         if( run.problems.empty() ) std::filesystem::remove( path );
      }
   }
   RecordProperty( "runs", int( runs ) );
}

INSTANTIATE_TEST_SUITE_P( Examples, ExampleProfilesTest,
                          ::testing::Values( "edge-policy", "tcam-exhaustion", "range-checkers",
                                             "async-timeout", "counters", "ecn-profiles",
                                             "copp-exhaustion", "cbf-overrides", "tcam-corruption",
                                             "restart-reconciliation", "basic-faults",
                                             "traffic-colours", "traces", "pdp-default-policy",
                                             "kernel-copp" ) );

}  // namespace
}  // namespace NevQosTest
