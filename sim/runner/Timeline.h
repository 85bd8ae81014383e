// The report's "steps": the chip's pools and what the switch did, sampled at the start, after
// each step of the scenario and after the settle time, so that a reader sees how the run came to
// its end (where the TCAM filled up, which step made which calls) and not only the end.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "NevQos/sim/runner/SimSwitch.h"
#include "NevQos/sim/scenario/Scenario.h"

namespace Sim {

class Timeline {
 public:
   explicit Timeline( Scenario const& scenario ) : scenario_( scenario ) {}

   // The sample of the start, before any step.
   void startIs( SimSwitch const& sw );
   // The sample after step `index` (1 the first) of the scenario.
   void stepIs( SimSwitch const& sw, std::size_t index );
   // The sample after the settle time.
   void settledIs( SimSwitch const& sw );

   nlohmann::ordered_json const& json() const { return samples_; }

 private:
   void sampleIs( SimSwitch const& sw, std::size_t index, std::string const& label,
                  std::vector< std::string > changes );
   nlohmann::ordered_json callsSince( SimSwitch const& sw );

   Scenario const& scenario_;
   nlohmann::ordered_json samples_ = nlohmann::ordered_json::array();
   std::map< std::string, std::uint64_t > callsBefore_;
   std::size_t logsBefore_ = 0;
};

// What a step changes, one short text per change: its kind, and the name or fault it is about
// ("acl VOICE", "fault slice-full off", "attach edge-in").
std::vector< std::string > changeTexts( Scenario const& scenario,
                                        std::vector< Change > const& changes );

}  // namespace Sim
