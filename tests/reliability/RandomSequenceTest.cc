// Seeded random sequences of configuration changes on seeded random chips (RandomChip.h,
// RandomConfig.h), with the chip's faults switched on and off, on both TCAM modes. Each seed
// draws a chip and a configuration and runs a few dozen changes; after every change the switch
// is left to settle and must:
// - log only what the chip, its faults and the configuration explain;
// - verify clean, and hold in its chip what its status says (SwitchChecks.h);
// - hold, for every policy map it reports programmed, what a switch started afresh on the same
//   configuration holds on a roomy chip with the same capabilities: exactly, when the chip is
//   roomy and no fault has been on; otherwise the same ACLs, bound to the same interfaces (on a
//   tight chip what fits depends on the order of changes, and a fault's answer, an expansion
//   say, stays until the map is built again). A map reported failed holds nothing, and fails
//   only on a tight chip, while a fault holds or until a change rebuilds it, or where the
//   fresh switch fails it too.
//
// NEVQOS_RANDOM_SEED (the first seed), NEVQOS_RANDOM_SEEDS and NEVQOS_RANDOM_STEPS change the
// run (scripts/soak runs long ones), and NEVQOS_RANDOM_TRACE prints each step. A failure names
// its seed and step, the command that reruns it, and a scenario file with the whole history
// that nevqos-sim replays; an engine assertion names them too, on its way out.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "reliability/AbortNote.h"
#include "reliability/RandomConfig.h"
#include "reliability/SwitchImage.h"
#include "sim/checks/KnownDefects.h"
#include "sim/checks/SwitchChecks.h"
#include "sim/chip/ChipText.h"

namespace NevQosTest {
namespace {

using Lines = std::vector< std::string >;

std::uint64_t fromEnvironment( char const* name, std::uint64_t fallback ) {
   char const* value = std::getenv( name );
   return value ? std::strtoull( value, nullptr, 10 ) : fallback;
}

std::string stepText( Zub::Seconds t, std::string const& changes ) {
   return "  - at: " + std::to_string( std::int64_t( t ) ) + "\n    changes:\n" + changes;
}

// The ACLs of the policy map `pmap` ("name(type,direction)").
TcamImage onlyOf( TcamImage const& image, std::string const& pmap ) {
   TcamImage out;
   for( auto const& [ id, acl ] : image ) {
      if( Sim::pmapOfAcl( id ) == pmap ) out[ id ] = acl;
   }
   return out;
}

// What of an image does not depend on the order of changes or on a fault's answer: the ACLs,
// their slices and the interfaces they are bound to, and with `rules` the rules that have
// entries.
TcamImage skeletonOf( TcamImage const& image, bool rules ) {
   TcamImage out;
   for( auto const& [ id, acl ] : image ) {
      AclImage& s = out[ id ];
      s.slice = acl.slice;
      s.committed = acl.committed;
      s.ports = acl.ports;
      if( !rules ) continue;
      std::set< std::string > numbers;
      for( std::string const& e : acl.entries )
         numbers.insert( e.substr( 0, e.find( '.' ) ) );
      s.entries.assign( numbers.begin(), numbers.end() );
   }
   return out;
}

struct MapStatus {
   std::string status;
   std::string message;
};

// The status of every policy map, by "name(type,direction)".
std::map< std::string, MapStatus > statusOf( Sim::SimSwitch const& sw ) {
   std::map< std::string, MapStatus > out;
   for( auto t = sw.aclSliceHwStatus().pmapType().iter(); t; ++t ) {
      for( auto p = t.value()->pmap().iter(); p; ++p ) {
         out[ Sim::pmapText( t.key(), p.key().direction(), p.key().name().str().stdString() ) ] =
               MapStatus{ Sim::textOf( p.value()->prgmStatus() ),
                          p.value()->prgmStatusErrMessage().stdString() };
      }
   }
   return out;
}

bool settled( Sim::SimSwitch const& sw ) {
   if( sw.chip().pendingOperations() != 0 ) return false;
   for( auto const& [ pmap, s ] : statusOf( sw ) ) {
      if( s.status == "hwPrgmStatusInProgress" ) return false;
   }
   return true;
}

class RandomSequenceTest : public ::testing::TestWithParam< Sim::TcamMode > {
 protected:
   void SetUp() override {
      bool const sync = GetParam() == Sim::TcamMode::synchronous;
      firstSeed_ = fromEnvironment( "NEVQOS_RANDOM_SEED", sync ? 1 : 1001 );
      // The suite's share of CI time; scripts/soak runs many more.
      seeds_ = fromEnvironment( "NEVQOS_RANDOM_SEEDS", 24 );
      steps_ = fromEnvironment( "NEVQOS_RANDOM_STEPS", 25 );
      trace_ = std::getenv( "NEVQOS_RANDOM_TRACE" ) != nullptr;
   }

   std::string modeName() const {
      return GetParam() == Sim::TcamMode::synchronous ? "synchronous" : "asynchronous";
   }

   // Where a run stands, how to run it again, and the scenario that replays it, written now.
   std::string reproduction( std::size_t step, std::string const& summary ) {
      std::string const path = ::testing::TempDir() + "random-" + modeName() + "-seed-" +
                               std::to_string( seed_ ) + ".yaml";
      std::ofstream( path ) << start_ << history_;
      return "seed " + std::to_string( seed_ ) + ", step " + std::to_string( step ) + " (" +
             summary + "): NEVQOS_RANDOM_SEED=" + std::to_string( seed_ ) +
             " NEVQOS_RANDOM_SEEDS=1 NEVQOS_RANDOM_STEPS=" + std::to_string( step ) +
             " nevqos_tests --gtest_filter='Modes/RandomSequenceTest.*/" + modeName() +
             "' reruns it; nevqos-sim " + path + " --verify=always replays it";
   }

   // Whether the log line of `handle` is one the chip, its faults or the configuration explain.
   bool explained( std::string const& handle, std::string const& text, bool faultsHeld ) const {
      RandomChip const& chip = config_->chip();
      if( handle.ends_with( "_NORMAL" ) ) return true;
      if( config_->configuredLogHandles().contains( handle ) ) return true;
      if( handle == "QOS_COPP_HW_RESOURCE_FULL" &&
          text.find( "egress TCAM" ) != std::string::npos ) {
         return chip.tight( "portCpuQueuePolicers" );
      }
      if( handle == "QOS_POLICY_HW_RESOURCE_FULL" || handle == "PDP_POLICY_HW_RESOURCE_FULL" ||
          handle == "QOS_COPP_HW_RESOURCE_FULL" ) {
         return faultsHeld || !chip.roomy() || asyncFailureTolerated();
      }
      if( handle == "QOS_POLICY_POLICER_RESOURCE_FULL" ) {
         return faultsHeld || chip.tight( "policers" );
      }
      if( handle == "QOS_POLICY_COUNTER_HW_RESOURCE_FULL" ) return chip.tight( "counters" );
      if( handle == "ROUTING_CBF_HW_RESOURCE_FULL" ) return chip.tight( "cbfRules" );
      if( handle == "QOS_ECN_QUEUE_HW_FULL" ) return chip.number( "ecnProfiles" ) < 16;
      if( handle == "QOS_WRED_QUEUE_HW_FULL" ) return chip.number( "wredProfiles" ) < 16;
      if( handle == "QOS_DP_THRESHOLDS_HW_FULL" ) return chip.number( "dropThresholdProfiles" ) < 8;
      if( handle == "QOS_ECN_QUEUE_COUNTER_HW_FULL" ) return chip.number( "ecnQueueCounters" ) < 64;
      return false;
   }

   // Known defect async-map-fails-on-roomy-chip: on the asynchronous road a map may fail for
   // want of resources whatever the chip.
   bool asyncFailureTolerated() const {
      return config_->chip().asynchronous() && Sim::avoided( "async-map-fails-on-roomy-chip" );
   }

   void checkAgainstFresh( Sim::SimSwitch& sw, bool faultsHeld, std::string const& where ) {
      RandomChip const& chip = config_->chip();
      Sim::SimSwitch fresh( scenarioOf( config_->scenarioText( chip.roomyText() ) ) );
      fresh.runUntil( 0.9 );
      while( !settled( fresh ) && fresh.now() < 60.0 )
         fresh.runUntil( fresh.now() + 1.0 );
      for( Sim::LogLine const& line : fresh.logs() ) {
         EXPECT_TRUE( explained( line.handle, line.text, false ) )
               << "a fresh start logs " << line.handle << ": " << line.text << "\n"
               << where;
      }
      bool const exact = chip.roomy() && !config_->anyFaultEver();
      TcamImage const got = tcamImageOf( sw );
      TcamImage const want = tcamImageOf( fresh );
      auto const status = statusOf( sw );
      auto const freshStatus = statusOf( fresh );
      std::set< std::string > pmaps;
      for( auto const& [ pmap, s ] : status )
         pmaps.insert( pmap );
      for( auto const& [ pmap, s ] : freshStatus )
         pmaps.insert( pmap );
      for( auto const& [ id, acl ] : got )
         pmaps.insert( Sim::pmapOfAcl( id ) );
      for( auto const& [ id, acl ] : want )
         pmaps.insert( Sim::pmapOfAcl( id ) );
      for( std::string const& pmap : pmaps ) {
         auto const s = status.find( pmap );
         auto const r = freshStatus.find( pmap );
         TcamImage const mine = onlyOf( got, pmap );
         TcamImage const theirs = onlyOf( want, pmap );
         if( ( s == status.end() ) != ( r == freshStatus.end() ) ) {
            ADD_FAILURE() << pmap << " has a status here or afresh, not both\n" << where;
            continue;
         }
         if( s == status.end() ) {
            // No status kept (system-wide CoPP): only a roomy chip holds it to the fresh one.
            if( exact ) {
               EXPECT_EQ( mine, theirs ) << pmap << "\n" << where;
            }
            continue;
         }
         std::string const& here = s->second.status;
         if( here == "hwPrgmStatusFail" ) {
            bool const explainedFailure = faultsHeld || !chip.roomy() || asyncFailureTolerated() ||
                                          failedBefore_.contains( pmap ) ||
                                          r->second.status == "hwPrgmStatusFail" ||
                                          s->second.message == "Hardware commit timed out";
            EXPECT_TRUE( explainedFailure )
                  << pmap << " failed (" << s->second.message << ") on a roomy chip with no fault\n"
                  << where;
            failedBefore_.insert( pmap );
            continue;
         }
         failedBefore_.erase( pmap );
         if( here != "hwPrgmStatusSuccess" ) {
            ADD_FAILURE() << pmap << " is " << here << " after settling\n" << where;
            continue;
         }
         if( r->second.status != "hwPrgmStatusSuccess" ) {
            ADD_FAILURE() << pmap << " is programmed here, and " << r->second.status
                          << " on a roomy chip started afresh\n"
                          << where << "\nhere\n"
                          << textOf( mine );
            continue;
         }
         if( exact ) {
            EXPECT_EQ( mine, theirs ) << pmap << "\n"
                                      << where << "\nhere\n"
                                      << textOf( mine ) << "afresh\n"
                                      << textOf( theirs );
         } else {
            bool const rules = !config_->anyFaultEver();
            EXPECT_EQ( skeletonOf( mine, rules ), skeletonOf( theirs, rules ) )
                  << pmap << " holds other ACLs than afresh\n"
                  << where << "\nhere\n"
                  << textOf( mine ) << "afresh\n"
                  << textOf( theirs );
         }
      }
   }

   // Everything a step must leave true; false after the first failure.
   bool check( Sim::SimSwitch& sw, std::size_t logsBefore, bool faultsHeld,
               std::string const& where ) {
      auto const& logs = sw.logs();
      for( std::size_t i = logsBefore; i < logs.size(); ++i ) {
         EXPECT_TRUE( explained( logs[ i ].handle, logs[ i ].text, faultsHeld ) )
               << logs[ i ].handle << ": " << logs[ i ].text << "\n"
               << where;
      }
      EXPECT_EQ( sw.verify(), Lines{} ) << where;
      EXPECT_EQ( Sim::tcamMismatches( sw ), Lines{} ) << where;
      EXPECT_EQ( Sim::cbfMismatches( sw ), Lines{} ) << where;
      checkAgainstFresh( sw, faultsHeld, where );
      return !::testing::Test::HasFailure();
   }

   // Runs the switch on from a step at `t` until nothing waits, for a minute at most.
   void settle( Sim::SimSwitch& sw, Zub::Seconds t ) const {
      sw.runUntil( t + config_->chip().settleTime() );
      while( !settled( sw ) && sw.now() < t + 60.0 )
         sw.runUntil( sw.now() + 1.0 );
   }

   // Runs one seed; false after the first failure.
   bool runSeed( std::uint64_t seed ) {
      seed_ = seed;
      config_ = std::make_unique< RandomConfig >( seed, GetParam() );
      failedBefore_.clear();
      RandomChip const& chip = config_->chip();
      std::string allOff;
      for( std::string const& f : RandomChip::faultNames() )
         allOff += "      - fault: { name: " + f + ", on: false }\n";
      start_ = config_->scenarioText( chip.text( true ) ) + "steps:\n";
      history_ = stepText( 1, allOff );
      Sim::Scenario const first = scenarioOf( start_ + history_ );
      if( first.steps.size() != 1u ) return false;
      std::string where = reproduction( 0, "start" );
      AbortNote note( where );
      try {
         Sim::SimSwitch sw( first );
         sw.stepIs( first.steps[ 0 ] );
         settle( sw, 1.0 );
         if( !check( sw, 0, false, where ) ) return false;
         Zub::Seconds t = 1.0;
         for( std::size_t i = 1; i <= steps_; ++i ) {
            t = std::floor( std::max( t + 1.0, sw.now() + 1.0 ) );
            bool const faultsBefore = config_->anyFaultOn();
            std::string const before = config_->scenarioText( chip.text( true ) );
            std::string summary;
            std::string const step = stepText( t, config_->nextChanges( summary ) );
            history_ += step;
            where = reproduction( i, summary );
            AbortNote stepNote( where );
            if( trace_ ) std::cerr << "step " << i << ": " << where << std::endl;
            Sim::Scenario const one = scenarioOf( before + "steps:\n" + step );
            if( one.steps.size() != 1u ) {
               ADD_FAILURE() << where;
               return false;
            }
            std::size_t const logsBefore = sw.logs().size();
            sw.stepIs( one.steps[ 0 ] );
            settle( sw, t );
            sw.callsForget();
            ++stepsRun_;
            bool const faultsHeld = faultsBefore || config_->anyFaultOn();
            if( !check( sw, logsBefore, faultsHeld, where ) ) return false;
         }
      } catch( Zub::RunawayException const& e ) {
         ADD_FAILURE() << e.what() << "\n" << where;
         return false;
      }
      return true;
   }

   std::uint64_t firstSeed_ = 0;
   std::uint64_t seeds_ = 0;
   std::uint64_t steps_ = 0;
   bool trace_ = false;
   std::uint64_t seed_ = 0;
   std::size_t stepsRun_ = 0;
   std::unique_ptr< RandomConfig > config_;
   std::string start_;
   std::string history_;
   // Maps that stay failed until a change rebuilds them.
   std::set< std::string > failedBefore_;
};

TEST_P( RandomSequenceTest, EveryStepHoldsWhatTheChipAndTheConfigurationExplain ) {
   for( std::uint64_t seed = firstSeed_; seed < firstSeed_ + seeds_; ++seed ) {
      if( !runSeed( seed ) ) break;
   }
   RecordProperty( "stepsRun", int( stepsRun_ ) );
}

INSTANTIATE_TEST_SUITE_P( Modes, RandomSequenceTest,
                          ::testing::Values( Sim::TcamMode::synchronous,
                                             Sim::TcamMode::asynchronous ),
                          tcamModeName );

}  // namespace
}  // namespace NevQosTest
