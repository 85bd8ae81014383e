// The runner's report of a scenario that ran: every helper call in order, the system log, the
// hardware status the engine wrote, and the chip's TCAM and resources. It is one JSON document
// (keys in docs/scenario.md); the text report renders the same document for reading.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "NevQos/sim/runner/SimSwitch.h"
#include "NevQos/sim/scenario/Scenario.h"

namespace Sim {

nlohmann::ordered_json reportOf( Scenario const& scenario, SimSwitch const& sw );
// The report with the members of `more` after its own, written as reportOf( ... ).dump( 2 )
// would write it, without holding it whole: the calls and the TCAM entries are made and written
// one by one.
void writeJsonReport( std::ostream& os, Scenario const& scenario, SimSwitch const& sw,
                      nlohmann::ordered_json const& more );
// The "trace" key: the trace lines kept, in order, and a gap entry counting those left out.
nlohmann::ordered_json tracesOf( TraceLog const& traces );

// The named parts of the report alone, in the report's order: what a summary needs of a run
// whose report may be large.
nlohmann::ordered_json reportPartsOf( Scenario const& scenario, SimSwitch const& sw,
                                      std::vector< std::string > const& keys );
// The "tcam" part without its lists: the slices and the range-checker pool.
nlohmann::ordered_json tcamPoolsOf( Tcam const& tcam );

// A finite pool of the chip: { size, used, free }, and its text "U used, F free of S".
nlohmann::ordered_json poolOf( std::uint64_t size, std::uint64_t used );
std::string poolText( nlohmann::ordered_json const& pool );

// Lists at most `limit` helper calls (then a count per operation instead) and `limit` entries
// per ACL; 0 lists everything.
void printTextReport( std::ostream& os, nlohmann::ordered_json const& report, std::size_t limit );

}  // namespace Sim
