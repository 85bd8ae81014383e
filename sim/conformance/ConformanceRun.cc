#include "NevQos/sim/conformance/ConformanceRun.h"

#include <filesystem>
#include <type_traits>
#include <variant>

#include "NevQos/sim/scenario/ScenarioNames.h"

namespace Conformance {

namespace {

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

class Run {
 public:
   Run( Sim::Scenario const& scenario, ConformanceResult& result )
       : name_( std::filesystem::path( scenario.file ).filename().string() ), result_( result ) {}

   // The engine's verification, through the driver.
   void verify( Sim::SimSwitch& sw, std::string const& where ) {
      for( std::string const& finding : sw.verify() )
         add( where, "verification", "the driver does not read back what it was told: " + finding );
   }

 private:
   void add( std::string const& where, char const* point, std::string const& what ) {
      result_.findings.push_back( name_ + ": " + where + ": " + point + ": " + what );
   }

   std::string name_;
   ConformanceResult& result_;
};

bool damagesTcam( Sim::Scenario const& scenario ) {
   for( Sim::Step const& step : scenario.steps ) {
      for( Sim::Change const& change : step.changes ) {
         if( std::holds_alternative< Sim::TcamCorruption >( change.value ) ) return true;
      }
   }
   return false;
}

std::string stepWhere( std::size_t index, Sim::Step const& step ) {
   return "before step " + std::to_string( index + 1 ) + " (at " + Sim::secondsText( step.time ) +
          " s)";
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
   ConformanceResult result;
   if( damagesTcam( scenario ) ) {
      result.skipped = "damages the TCAM on purpose, for verification to find";
      return result;
   }
   if( !driver.onReferenceChip ) {
      auto const aimed = chipAimedChanges( scenario );
      if( !aimed.empty() ) {
         result.skipped = "aimed at the reference chip (" + aimed.front() + ")";
         return result;
      }
   }
   Run run( scenario, result );
   Sim::SimSwitch sw( scenario, Sim::SwitchOptions{ .driver = driver.helpers } );
   for( std::size_t i = 0; i < scenario.steps.size(); ++i ) {
      Sim::Step const& step = scenario.steps[ i ];
      // Up to the step, so that what the last one started has had its time.
      sw.runUntil( step.time );
      run.verify( sw, stepWhere( i, step ) );
      sw.stepIs( step );
      ++result.steps;
   }
   sw.runUntil( sw.now() + settle );
   run.verify( sw, "after " + Sim::secondsText( settle ) + " s of settling" );
   return result;
}

}  // namespace Conformance
