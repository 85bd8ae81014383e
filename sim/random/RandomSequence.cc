#include "NevQos/sim/random/RandomSequence.h"

#include <cmath>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <set>

#include "NevQos/sim/checks/AbortNote.h"
#include "NevQos/sim/checks/KnownDefects.h"
#include "NevQos/sim/checks/SwitchChecks.h"
#include "NevQos/sim/checks/SwitchImage.h"
#include "NevQos/sim/chip/ChipText.h"
#include "NevQos/sim/random/RandomConfig.h"
#include "NevQos/sim/scenario/ScenarioError.h"
#include "NevQos/sim/scenario/ScenarioLoader.h"

namespace Sim {

namespace {

std::string stepText( Zub::Seconds t, std::string const& changes ) {
   return "  - at: " + std::to_string( std::int64_t( t ) ) + "\n    changes:\n" + changes;
}

std::string modeName( TcamMode mode ) {
   return mode == TcamMode::synchronous ? "synchronous" : "asynchronous";
}

// The ACLs of the policy map `pmap` ("name(type,direction)").
TcamImage onlyOf( TcamImage const& image, std::string const& pmap ) {
   TcamImage out;
   for( auto const& [ id, acl ] : image ) {
      if( pmapOfAcl( id ) == pmap ) out[ id ] = acl;
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

bool settled( SimSwitch const& sw ) {
   if( sw.chip().pendingOperations() != 0 ) return false;
   for( auto const& [ pmap, s ] : mapStatuses( sw ) ) {
      if( s.status == Qos::hwPrgmStatusInProgress_ ) return false;
   }
   return true;
}

// One seed's run: its configuration, the history written so far, and what went wrong.
class SeedRun {
 public:
   SeedRun( RandomSequenceOptions const& options, std::uint64_t seed,
            std::vector< std::string >& findings )
       : options_( options ), seed_( seed ), config_( seed, options.mode ), findings_( findings ) {}

   // False after the first failing step.
   bool run( std::size_t& stepsRun );

 private:
   RandomChip const& chip() const { return config_.chip(); }
   void fail( std::string const& what ) { findings_.push_back( what + "\n" + where_ ); }
   std::string reproduction( std::size_t step, std::string const& summary ) const;
   bool explained( std::string const& handle, std::string const& text, bool faultsHeld ) const;
   bool asyncFailureTolerated() const;
   bool scenarioFrom( std::string const& yaml, std::size_t steps, Scenario& out );
   void checkMap( std::string const& pmap, TcamImage const& mine, TcamImage const& theirs,
                  MapStatus const* here, MapStatus const* afresh, bool faultsHeld );
   void checkAgainstFresh( SimSwitch& sw, bool faultsHeld );
   bool check( SimSwitch& sw, std::size_t logsBefore, bool faultsHeld );
   void settle( SimSwitch& sw, Zub::Seconds t ) const;

   RandomSequenceOptions const& options_;
   std::uint64_t seed_;
   RandomConfig config_;
   std::vector< std::string >& findings_;
   std::string start_;
   std::string history_;
   std::string where_;
   // Maps that stay failed until a change rebuilds them.
   std::set< std::string > failedBefore_;
};

// Where a run stands, how to run it again, and the scenario that replays it, written now.
std::string SeedRun::reproduction( std::size_t step, std::string const& summary ) const {
   std::string const path = options_.replayDir + "random-" + modeName( options_.mode ) + "-seed-" +
                            std::to_string( seed_ ) + ".yaml";
   std::ofstream( path ) << start_ << history_;
   std::string out = "seed " + std::to_string( seed_ ) + ", step " + std::to_string( step ) + " (" +
                     summary + "): ";
   if( options_.rerun ) out += options_.rerun( seed_, step ) + " reruns it; ";
   return out + "nevqos-sim " + path + " --verify=always replays it";
}

// Whether the log line of `handle` is one the chip, its faults or the configuration explain.
bool SeedRun::explained( std::string const& handle, std::string const& text,
                         bool faultsHeld ) const {
   if( handle.ends_with( "_NORMAL" ) ) return true;
   if( config_.configuredLogHandles().contains( handle ) ) return true;
   if( handle == "QOS_COPP_HW_RESOURCE_FULL" && text.find( "egress TCAM" ) != std::string::npos ) {
      return chip().tight( "portCpuQueuePolicers" );
   }
   if( handle == "QOS_POLICY_HW_RESOURCE_FULL" || handle == "PDP_POLICY_HW_RESOURCE_FULL" ||
       handle == "QOS_COPP_HW_RESOURCE_FULL" ) {
      return faultsHeld || !chip().roomy() || asyncFailureTolerated();
   }
   if( handle == "QOS_POLICY_POLICER_RESOURCE_FULL" ) {
      return faultsHeld || chip().tight( "policers" );
   }
   if( handle == "QOS_POLICY_COUNTER_HW_RESOURCE_FULL" ) return chip().tight( "counters" );
   if( handle == "ROUTING_CBF_HW_RESOURCE_FULL" ) return chip().tight( "cbfRules" );
   if( handle == "QOS_ECN_QUEUE_HW_FULL" ) return chip().number( "ecnProfiles" ) < 16;
   if( handle == "QOS_WRED_QUEUE_HW_FULL" ) return chip().number( "wredProfiles" ) < 16;
   if( handle == "QOS_DP_THRESHOLDS_HW_FULL" ) return chip().number( "dropThresholdProfiles" ) < 8;
   if( handle == "QOS_ECN_QUEUE_COUNTER_HW_FULL" ) return chip().number( "ecnQueueCounters" ) < 64;
   return false;
}

// Known defect async-map-fails-on-roomy-chip: on the asynchronous road a map may fail for want
// of resources whatever the chip.
bool SeedRun::asyncFailureTolerated() const {
   return chip().asynchronous() && avoided( "async-map-fails-on-roomy-chip" );
}

// A generated scenario of `steps` steps; false, with a finding, when it is anything else.
bool SeedRun::scenarioFrom( std::string const& yaml, std::size_t steps, Scenario& out ) {
   try {
      out = loadScenarioText( yaml, "random.yaml" );
   } catch( ScenarioError const& e ) {
      fail( std::string( "the generated scenario does not load: " ) + e.what() + "\n" + yaml );
      return false;
   }
   if( out.steps.size() == steps ) return true;
   fail( "the generated scenario has " + std::to_string( out.steps.size() ) + " steps, not " +
         std::to_string( steps ) );
   return false;
}

// One policy map here against the same map on a roomy chip started afresh.
void SeedRun::checkMap( std::string const& pmap, TcamImage const& mine, TcamImage const& theirs,
                        MapStatus const* here, MapStatus const* afresh, bool faultsHeld ) {
   bool const exact = chip().roomy() && !config_.anyFaultEver();
   auto const differ = [ & ]( std::string const& what ) {
      fail( pmap + what + "\nhere\n" + textOf( mine ) + "afresh\n" + textOf( theirs ) );
   };
   if( ( here == nullptr ) != ( afresh == nullptr ) ) {
      fail( pmap + " has a status here or afresh, not both" );
      return;
   }
   if( here == nullptr ) {
      // No status kept (system-wide CoPP): only a roomy chip holds it to the fresh one.
      if( exact && mine != theirs ) differ( " holds other entries than afresh" );
      return;
   }
   if( here->status == Qos::hwPrgmStatusFail_ ) {
      bool const explainedFailure = faultsHeld || !chip().roomy() || asyncFailureTolerated() ||
                                    failedBefore_.contains( pmap ) ||
                                    afresh->status == Qos::hwPrgmStatusFail_ ||
                                    here->message == "Hardware commit timed out";
      if( !explainedFailure ) {
         fail( pmap + " failed (" + here->message + ") on a roomy chip with no fault" );
      }
      failedBefore_.insert( pmap );
      return;
   }
   failedBefore_.erase( pmap );
   if( here->status != Qos::hwPrgmStatusSuccess_ ) {
      fail( pmap + " is " + textOf( here->status ) + " after settling" );
   } else if( afresh->status != Qos::hwPrgmStatusSuccess_ ) {
      differ( " is programmed here, and " + textOf( afresh->status ) +
              " on a roomy chip started afresh" );
   } else if( exact ) {
      if( mine != theirs ) differ( " holds other entries than afresh" );
   } else {
      bool const rules = !config_.anyFaultEver();
      if( skeletonOf( mine, rules ) != skeletonOf( theirs, rules ) ) {
         differ( " holds other ACLs than afresh" );
      }
   }
}

void SeedRun::checkAgainstFresh( SimSwitch& sw, bool faultsHeld ) {
   Scenario fresh;
   if( !scenarioFrom( config_.scenarioText( chip().roomyText() ), 0, fresh ) ) return;
   SimSwitch freshSwitch( fresh );
   freshSwitch.runUntil( 0.9 );
   while( !settled( freshSwitch ) && freshSwitch.now() < 60.0 )
      freshSwitch.runUntil( freshSwitch.now() + 1.0 );
   for( LogLine const& line : freshSwitch.logs() ) {
      if( !explained( line.handle, line.text, false ) ) {
         fail( "a fresh start logs " + line.handle + ": " + line.text );
      }
   }
   TcamImage const got = tcamImageOf( sw );
   TcamImage const want = tcamImageOf( freshSwitch );
   auto const status = mapStatuses( sw );
   auto const freshStatus = mapStatuses( freshSwitch );
   std::set< std::string > pmaps;
   for( auto const& [ pmap, s ] : status )
      pmaps.insert( pmap );
   for( auto const& [ pmap, s ] : freshStatus )
      pmaps.insert( pmap );
   for( auto const& [ id, acl ] : got )
      pmaps.insert( pmapOfAcl( id ) );
   for( auto const& [ id, acl ] : want )
      pmaps.insert( pmapOfAcl( id ) );
   for( std::string const& pmap : pmaps ) {
      auto const s = status.find( pmap );
      auto const r = freshStatus.find( pmap );
      checkMap( pmap, onlyOf( got, pmap ), onlyOf( want, pmap ),
                s == status.end() ? nullptr : &s->second,
                r == freshStatus.end() ? nullptr : &r->second, faultsHeld );
   }
}

// Everything a step must leave true; false when something failed.
bool SeedRun::check( SimSwitch& sw, std::size_t logsBefore, bool faultsHeld ) {
   std::size_t const before = findings_.size();
   auto const& logs = sw.logs();
   for( std::size_t i = logsBefore; i < logs.size(); ++i ) {
      if( !explained( logs[ i ].handle, logs[ i ].text, faultsHeld ) ) {
         fail( "unexplained log line " + logs[ i ].handle + ": " + logs[ i ].text );
      }
   }
   for( std::string const& finding : sw.verify() )
      fail( "verification: " + finding );
   for( std::string const& finding : tcamMismatches( sw ) )
      fail( "the TCAM against the status: " + finding );
   for( std::string const& finding : cbfMismatches( sw ) )
      fail( "the CBF rules against the status: " + finding );
   checkAgainstFresh( sw, faultsHeld );
   return findings_.size() == before;
}

// Runs the switch on from a step at `t` until nothing waits, for a minute at most.
void SeedRun::settle( SimSwitch& sw, Zub::Seconds t ) const {
   sw.runUntil( t + chip().settleTime() );
   while( !settled( sw ) && sw.now() < t + 60.0 )
      sw.runUntil( sw.now() + 1.0 );
}

bool SeedRun::run( std::size_t& stepsRun ) {
   std::string allOff;
   for( std::string const& f : RandomChip::faultNames() )
      allOff += "      - fault: { name: " + f + ", on: false }\n";
   start_ = config_.scenarioText( chip().text( true ) ) + "steps:\n";
   history_ = stepText( 1, allOff );
   where_ = reproduction( 0, "start" );
   Scenario first;
   if( !scenarioFrom( start_ + history_, 1, first ) ) return false;
   AbortNote note( where_ );
   try {
      SimSwitch sw( first );
      sw.stepIs( first.steps[ 0 ] );
      settle( sw, 1.0 );
      if( !check( sw, 0, false ) ) return false;
      Zub::Seconds t = 1.0;
      for( std::size_t i = 1; i <= options_.steps; ++i ) {
         t = std::floor( std::max( t + 1.0, sw.now() + 1.0 ) );
         bool const faultsBefore = config_.anyFaultOn();
         std::string const before = config_.scenarioText( chip().text( true ) );
         std::string summary;
         std::string const step = stepText( t, config_.nextChanges( summary ) );
         history_ += step;
         where_ = reproduction( i, summary );
         AbortNote stepNote( where_ );
         if( options_.trace ) std::cerr << "step " << i << ": " << where_ << std::endl;
         Scenario one;
         if( !scenarioFrom( before + "steps:\n" + step, 1, one ) ) return false;
         std::size_t const logsBefore = sw.logs().size();
         sw.stepIs( one.steps[ 0 ] );
         settle( sw, t );
         sw.callsForget();
         ++stepsRun;
         if( !check( sw, logsBefore, faultsBefore || config_.anyFaultOn() ) ) return false;
      }
   } catch( Zub::RunawayException const& e ) {
      fail( e.what() );
      return false;
   }
   return true;
}

}  // namespace

RandomSequenceResult runRandomSequences( RandomSequenceOptions const& options ) {
   RandomSequenceResult result;
   for( std::uint64_t seed = options.firstSeed; seed < options.firstSeed + options.seeds; ++seed ) {
      if( !SeedRun( options, seed, result.findings ).run( result.stepsRun ) ) break;
   }
   return result;
}

}  // namespace Sim
