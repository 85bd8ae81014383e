#include "support/ScenarioErrorOf.h"

#include "NevQos/sim/scenario/ScenarioError.h"
#include "NevQos/sim/scenario/ScenarioLoader.h"

namespace NevQosTest {

std::string errorOf( std::string const& text ) {
   try {
      Sim::loadScenarioText( text, "bad.yaml" );
   } catch( Sim::ScenarioError const& e ) {
      return e.what();
   }
   return "no error";
}

}  // namespace NevQosTest
