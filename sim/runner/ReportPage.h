// The report as one self-contained HTML page (nevqos-sim --html): the page's script draws the
// charts and tables from the JSON report it carries, so it shows nothing the report does not
// hold, and it needs no network.
#pragma once

#include <iosfwd>
#include <string_view>

namespace Sim {

// The page with the placeholder @NEVQOS_REPORT_JSON@ where the report goes.
std::string_view reportPageTemplate();

// The page of the JSON report `reportJson`.
void writeReportPage( std::ostream& os, std::string_view reportJson );

}  // namespace Sim
