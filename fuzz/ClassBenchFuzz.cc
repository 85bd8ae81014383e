// ClassBench sets: any text either parses or throws Zub::ParseException, as the reader
// documents. A set that parses is also run through the entry counts, whose port blocks must
// agree with the chip's own range expansion.
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "NevQos/platform/mirel/RangeMaskGen.h"
#include "NevQos/platform/zub/Exception.h"
#include "NevQos/sim/classbench/ClassBench.h"

namespace {

std::uint64_t rangeMaskBlocks( Acl::PortCondition const& condition ) {
   std::array< std::pair< std::uint16_t, std::uint16_t >, 11 > ranges;
   unsigned const n = condition.ranges( ranges );
   std::vector< Mirel::RangeMaskGen< std::uint16_t >::Entry > entries;
   for( unsigned i = 0; i < n; ++i ) {
      Mirel::RangeMaskGen< std::uint16_t >::run( ranges[ i ].first, ranges[ i ].second, entries );
   }
   return entries.size();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput( std::uint8_t const* data, std::size_t size ) {
   std::istringstream in( std::string( reinterpret_cast< char const* >( data ), size ) );
   std::vector< Acl::IpRuleConfig > rules;
   try {
      rules = Sim::parseClassBench( in, "fuzz.cb" );
   } catch( Zub::ParseException const& ) {
      return 0;
   }
   std::uint64_t expected = 0;
   for( auto const& r : rules ) {
      expected += rangeMaskBlocks( r.filter.srcPort ) * rangeMaskBlocks( r.filter.dstPort );
   }
   if( Sim::portBlockProduct( rules ) != expected ) std::abort();
   if( Sim::rulesWithPortCondition( rules ) > rules.size() ) std::abort();
   Sim::fragmentEntries( rules, true );
   Sim::aclRuleSetOf( rules, 1 );
   return 0;
}
