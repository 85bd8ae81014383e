#include "NevQos/sim/runner/ReportPage.h"

#include <ostream>
#include <stdexcept>

namespace Sim {

namespace {

constexpr std::string_view placeholder = "@NEVQOS_REPORT_JSON@";

// The report inside the page's script element: every "<" is written "\u003c", the same
// character to JSON (it only stands in strings), so that no text of the report (a description, a
// log line) can end the element or, with "<!--<script>", keep its end from ending it.
void writeEmbedded( std::ostream& os, std::string_view json ) {
   std::size_t from = 0;
   for( std::size_t at; ( at = json.find( '<', from ) ) != std::string_view::npos; from = at + 1 )
      os << json.substr( from, at - from ) << "\\u003c";
   os << json.substr( from );
}

}  // namespace

void writeReportPage( std::ostream& os, std::string_view reportJson ) {
   std::string_view const page = reportPageTemplate();
   std::size_t const at = page.find( placeholder );
   // The build makes the page from the tree's template; one without its placeholder is a fault
   // of the tree that the page's test finds.
   if( at == std::string_view::npos )
      throw std::logic_error( "the report page lacks its placeholder" );
   os << page.substr( 0, at );
   writeEmbedded( os, reportJson );
   os << page.substr( at + placeholder.size() );
}

}  // namespace Sim
