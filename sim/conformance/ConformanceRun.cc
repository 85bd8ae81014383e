#include "NevQos/sim/conformance/ConformanceRun.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <memory>
#include <set>
#include <type_traits>
#include <variant>

#include "NevQos/platform/zub/ActivityManager.h"
#include "NevQos/sim/checks/AbortNote.h"
#include "NevQos/sim/conformance/ContractWatcher.h"
#include "NevQos/sim/conformance/ResourceUsage.h"
#include "NevQos/sim/scenario/ScenarioNames.h"

namespace Conformance {

namespace {

using Usage = std::map< std::string, std::uint64_t >;

// The kind of a change aimed at the reference chip itself; null for any other.
char const* chipAimedKind( Sim::ChangeValue const& value ) {
   return std::visit(
         []( auto const& v ) -> char const* {
            using T = std::decay_t< decltype( v ) >;
            if constexpr( std::is_same_v< T, Sim::FaultSwitch > ) return "a chip fault";
            if constexpr( std::is_same_v< T, Sim::TrafficInjection > ) return "traffic";
            if constexpr( std::is_same_v< T, Sim::TcamCorruption > ) return "TCAM damage";
            return nullptr;
         },
         value );
}

bool damagesTcam( Sim::Scenario const& scenario ) {
   for( Sim::Step const& step : scenario.steps ) {
      for( Sim::Change const& change : step.changes ) {
         if( std::holds_alternative< Sim::TcamCorruption >( change.value ) ) return true;
      }
   }
   return false;
}

bool answersTwice( Sim::Scenario const& scenario ) {
   for( Sim::FaultConfig const& fault : scenario.chip.faults ) {
      if( fault.kind == Sim::FaultConfig::Kind::asyncRepeated ) return true;
   }
   return false;
}

std::string stepWhere( char const* when, std::size_t index, Zub::Seconds t ) {
   return std::string( when ) + " step " + std::to_string( index + 1 ) + " (at " +
          Sim::secondsText( t ) + " s)";
}

// The driver's helpers as the run gives them to a switch: the ACL helper behind the contract's
// watcher, and each helper that offers its usage noted. Each switch built on them gets helpers
// of its own; what is noted is the last switch's.
class WatchedDriver {
 public:
   WatchedDriver( DriverUnderTest const& driver, Zub::Seconds asyncTimeout,
                  std::shared_ptr< ContractLedger > ledger )
       : driver_( driver ), asyncTimeout_( asyncTimeout ), ledger_( std::move( ledger ) ) {}

   Sim::DriverHelpers helpers() {
      Sim::DriverHelpers out;
      out.acl = [ this ]( Zub::Ptr< Sim::SimQosAclHelper > const& chip,
                          Sim::DriverInputs const& in ) { return acl( chip, in ); };
      if( driver_.helpers.basic ) {
         out.basic = [ this ]( Zub::Ptr< Sim::SimQosBasicHelper > const& chip,
                               Sim::DriverInputs const& in ) {
            return noted( driver_.helpers.basic( chip, in ) );
         };
      }
      if( driver_.helpers.cbf ) {
         out.cbf = [ this ]( Zub::Ptr< Sim::SimCbfFecMappingHelper > const& chip,
                             Sim::DriverInputs const& in ) {
            return noted( driver_.helpers.cbf( chip, in ) );
         };
      }
      return out;
   }

   // What the next watcher made is told at once, before the switch's start-up calls reach it.
   void asyncResultsUncheckedIs( bool unchecked ) { asyncUnchecked_ = unchecked; }
   void withholdIs( bool withhold ) { withhold_ = withhold; }
   WatchingQosAclHelper* watcher() const { return watcher_; }
   bool offersUsage() const { return !usage_.empty(); }
   Usage usage() const {
      Usage out;
      for( ResourceUsage const* u : usage_ ) {
         for( auto const& [ name, count ] : u->resourcesInUse() )
            out[ name ] += count;
      }
      return out;
   }

 private:
   Zub::Ptr< NevHelper::QosAclHelper > acl( Zub::Ptr< Sim::SimQosAclHelper > const& chip,
                                            Sim::DriverInputs const& in ) {
      usage_.clear();
      // The watcher hears of an operation the driver's agent marks pending.
      Sim::DriverInputs inputs = in;
      inputs.operationLeftPending = [ this, agent = in.operationLeftPending ] {
         if( watcher_ ) watcher_->operationLeftPending();
         agent();
      };
      Zub::Ptr< NevHelper::QosAclHelper > helper( chip );
      if( driver_.helpers.acl ) {
         helper = noted( driver_.helpers.acl( chip, inputs ) );
      } else {
         chip->operationLeftPendingHandlerIs( inputs.operationLeftPending );
      }
      auto watcher = Zub::make< WatchingQosAclHelper >( helper, in.clock, ledger_, asyncTimeout_ );
      watcher->asyncResultsUncheckedIs( asyncUnchecked_ );
      watcher->withholdNextSubruleIs( withhold_ );
      watcher_ = watcher.ptr();
      return Zub::Ptr< NevHelper::QosAclHelper >( watcher );
   }

   template< class Helper >
   Zub::Ptr< Helper > noted( Zub::Ptr< Helper > helper ) {
      if( auto const* u = dynamic_cast< ResourceUsage const* >( helper.ptr() ) ) {
         usage_.push_back( u );
      }
      return helper;
   }

   DriverUnderTest const& driver_;
   Zub::Seconds asyncTimeout_;
   std::shared_ptr< ContractLedger > ledger_;
   bool asyncUnchecked_ = false;
   bool withhold_ = false;
   WatchingQosAclHelper* watcher_ = nullptr;
   std::vector< ResourceUsage const* > usage_;
};

// The scenario's starting configuration without what the teardown removes.
Sim::Scenario withoutTornDown( Sim::Scenario scenario ) {
   std::erase_if( scenario.initial, []( Sim::Change const& change ) {
      return std::holds_alternative< Sim::ServicePolicyDef >( change.value ) ||
             std::holds_alternative< Sim::FecOverrideDef >( change.value ) ||
             std::holds_alternative< Sim::KernelCoppReport >( change.value );
   } );
   scenario.steps.clear();
   return scenario;
}

// Every CPU queue of a port the scenario has the kernel report on.
std::set< Nev::ModIdPortQueueKey > reportedQueues( Sim::Scenario const& scenario ) {
   std::set< Nev::ModIdPortQueueKey > out;
   auto const note = [ &out ]( Sim::Change const& change ) {
      if( auto const* report = std::get_if< Sim::KernelCoppReport >( &change.value ) ) {
         out.insert( report->key );
      }
   };
   std::for_each( scenario.initial.begin(), scenario.initial.end(), note );
   for( Sim::Step const& step : scenario.steps )
      std::for_each( step.changes.begin(), step.changes.end(), note );
   return out;
}

// Every service policy and FEC override the switch holds removed, and every CPU queue the
// scenario reported on calm: the per-port CoPP machine keeps a queue's policer when the kernel
// stops reporting on the queue without saying it calmed down.
Sim::Step teardownStep( Sim::SimSwitch const& sw, Sim::Scenario const& scenario, Zub::Seconds t ) {
   Sim::Step step;
   step.time = t;
   for( auto const& [ key, def ] : sw.model().servicePolicies() )
      step.changes.push_back( Sim::Change{ {}, Sim::ServicePolicyRemoval{ key } } );
   for( auto const& [ key, def ] : sw.model().fecOverrides() )
      step.changes.push_back( Sim::Change{ {}, Sim::FecOverrideRemoval{ key } } );
   for( Nev::ModIdPortQueueKey const& key : reportedQueues( scenario ) ) {
      step.changes.push_back(
            Sim::Change{ {}, Sim::KernelCoppReport{ key, Nev::kernelCoppQueueUnsaturated } } );
   }
   return step;
}

class Run {
 public:
   Run( Sim::Scenario const& scenario, DriverUnderTest const& driver, ConformanceResult& result )
       : scenario_( scenario )
       , name_( std::filesystem::path( scenario.file ).filename().string() )
       , result_( result )
       , ledger_( std::make_shared< ContractLedger >() )
       , driver_( driver, driver.asyncTimeout.value_or( scenario.chip.asyncTimeout ), ledger_ )
       , verified_( !damagesTcam( scenario ) ) {
      if( !verified_ ) {
         note( "verification: not checked: the scenario damages the TCAM on purpose, for "
               "verification to find" );
      }
      if( answersTwice( scenario ) ) {
         driver_.asyncResultsUncheckedIs( true );
         note( "asynchronous results: not checked: the scenario's chip answers an operation "
               "twice on purpose" );
      }
   }

   // Plays the steps, then settles, and then tears down or looks for the subrule withheld.
   void play( Zub::Seconds settle, bool withhold ) {
      try {
         std::optional< Usage > const start = withhold ? std::nullopt : startUsage( settle );
         driver_.withholdIs( withhold );
         Sim::SimSwitch sw( scenario_, Sim::SwitchOptions{ .driver = driver_.helpers() } );
         steps( sw );
         settled( sw, settle, "after " + Sim::secondsText( settle ) + " s of settling" );
         if( withhold ) return withheldChecked();
         if( start ) tornDown( sw, settle, *start );
      } catch( Zub::RunawayException const& e ) {
         ledger_->add( "progress", std::string( "the engines never settle: " ) + e.what() );
      }
   }

   void finish() {
      for( std::string const& f : ledger_->findings )
         result_.findings.push_back( name_ + ": " + f );
      if( ledger_->dropped != 0 ) {
         result_.findings.push_back( name_ + ": and " + std::to_string( ledger_->dropped ) +
                                     " more findings" );
      }
   }

 private:
   void note( std::string const& text ) { result_.notes.push_back( name_ + ": " + text ); }

   // The usage of a switch on the scenario without what the teardown removes, settled; none when
   // the driver offers none.
   std::optional< Usage > startUsage( Zub::Seconds settle ) {
      Sim::Scenario const bare = withoutTornDown( scenario_ );
      ledger_->where = "starting without service policies";
      Sim::SimSwitch sw( bare, Sim::SwitchOptions{ .driver = driver_.helpers() } );
      if( !driver_.offersUsage() ) {
         note( "resources: not checked: the driver offers no usage (Conformance::ResourceUsage)" );
         return std::nullopt;
      }
      sw.runUntil( sw.now() + settle );
      return driver_.usage();
   }

   void steps( Sim::SimSwitch& sw ) {
      for( std::size_t i = 0; i < scenario_.steps.size(); ++i ) {
         Sim::Step const& step = scenario_.steps[ i ];
         // Up to the step, so that what the last one started has had its time.
         sw.runUntil( step.time );
         checked( sw, stepWhere( "before", i, step.time ) );
         ledger_->where = stepWhere( "during", i, step.time );
         Sim::AbortNote const abort( name_ + ": " + ledger_->where );
         sw.stepIs( step );
         ++result_.steps;
      }
   }

   void settled( Sim::SimSwitch& sw, Zub::Seconds settle, std::string const& where ) {
      ledger_->where = where;
      sw.runUntil( sw.now() + settle );
      checked( sw, where );
   }

   // What the driver must hold whenever the switch stands still.
   void checked( Sim::SimSwitch& sw, std::string const& where ) {
      ledger_->where = where;
      Sim::AbortNote const abort( name_ + ": " + where + ": verification" );
      driver_.watcher()->timeoutsCheck( sw.now() );
      if( !verified_ ) return;
      for( std::string const& finding : sw.verify() ) {
         ledger_->add( "verification",
                       "the driver does not read back what it was told: " + finding );
      }
   }

   void tornDown( Sim::SimSwitch& sw, Zub::Seconds settle, Usage const& start ) {
      Sim::Step const step = teardownStep( sw, scenario_, std::floor( sw.now() ) + 1.0 );
      sw.runUntil( step.time );
      ledger_->where = "during the teardown";
      sw.stepIs( step );
      settled( sw, settle, "after the teardown" );
      Usage const end = driver_.usage();
      Usage all = start;
      all.insert( end.begin(), end.end() );
      for( auto const& [ resource, any ] : all ) {
         std::uint64_t const before = start.contains( resource ) ? start.at( resource ) : 0;
         std::uint64_t const after = end.contains( resource ) ? end.at( resource ) : 0;
         if( before == after ) continue;
         ledger_->add( "resources", resource + ": " + std::to_string( after ) +
                                          " in use after the teardown, " +
                                          std::to_string( before ) + " at the start" );
      }
   }

   void withheldChecked() {
      auto const& withheld = driver_.watcher()->withheld();
      if( !withheld ) {
         note( "verification of what is missing: not checked: no permit IP subrule reached a "
               "driver on the synchronous road" );
         return;
      }
      // The subrule withheld is what verification must find; every finding above is its.
      if( std::erase_if( ledger_->findings, []( std::string const& f ) {
             return f.find( ": verification: " ) != std::string::npos;
          } ) != 0 ) {
         return;
      }
      ledger_->add( "verification", "the " + *withheld +
                                          ", withheld from the driver, is not found missing: "
                                          "the driver's answers do not come from its hardware" );
   }

   Sim::Scenario const& scenario_;
   std::string name_;
   ConformanceResult& result_;
   std::shared_ptr< ContractLedger > ledger_;
   WatchedDriver driver_;
   bool verified_;
};

// The scenario without what is aimed at the reference chip: its faults, and the steps' fault
// switches, traffic and TCAM damage.
Sim::Scenario withoutChipAimed( Sim::Scenario scenario ) {
   scenario.chip.faults.clear();
   scenario.faultNames.clear();
   for( Sim::Step& step : scenario.steps ) {
      std::erase_if( step.changes, []( Sim::Change const& change ) {
         return chipAimedKind( change.value ) != nullptr;
      } );
   }
   return scenario;
}

ConformanceResult runOne( Sim::Scenario const& scenario, DriverUnderTest const& driver,
                          Zub::Seconds settle, bool withhold ) {
   ConformanceResult result;
   auto const aimed =
         driver.onReferenceChip ? std::vector< std::string >{} : chipAimedChanges( scenario );
   if( aimed.empty() ) {
      Run run( scenario, driver, result );
      run.play( settle, withhold );
      run.finish();
      return result;
   }
   Sim::Scenario const played = withoutChipAimed( scenario );
   Run run( played, driver, result );
   result.notes.push_back(
         std::filesystem::path( scenario.file ).filename().string() +
         ": left out, as aimed at the reference chip: " + aimed.front() +
         ( aimed.size() > 1 ? " and " + std::to_string( aimed.size() - 1 ) + " more" : "" ) );
   run.play( settle, withhold );
   run.finish();
   return result;
}

}  // namespace

std::vector< std::string > chipAimedChanges( Sim::Scenario const& scenario ) {
   std::vector< std::string > out;
   if( !scenario.chip.faults.empty() ) out.push_back( "chip: faults" );
   for( Sim::Step const& step : scenario.steps ) {
      for( Sim::Change const& change : step.changes ) {
         if( char const* kind = chipAimedKind( change.value ) ) {
            out.push_back( "step at " + Sim::secondsText( step.time ) + ": " + kind );
         }
      }
   }
   return out;
}

ConformanceResult runConformance( Sim::Scenario const& scenario, DriverUnderTest const& driver,
                                  Zub::Seconds settle ) {
   return runOne( scenario, driver, settle, false );
}

ConformanceResult runWithheldSubrule( Sim::Scenario const& scenario, DriverUnderTest const& driver,
                                      Zub::Seconds settle ) {
   return runOne( scenario, driver, settle, true );
}

}  // namespace Conformance
