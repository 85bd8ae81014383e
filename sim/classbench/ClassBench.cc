#include "NevQos/sim/classbench/ClassBench.h"

#include <charconv>
#include <fstream>
#include <istream>
#include <map>
#include <set>
#include <string_view>
#include <tuple>
#include <utility>

#include "NevQos/platform/zub/Exception.h"

namespace Sim {

namespace {

constexpr std::size_t fieldCount = 6;

std::string_view trimmed( std::string_view s ) {
   while( !s.empty() && s.front() == ' ' )
      s.remove_prefix( 1 );
   while( !s.empty() && s.back() == ' ' )
      s.remove_suffix( 1 );
   return s;
}

// The tab-separated fields of a line; the tab that ends every line of the published sets does
// not open a seventh field.
std::vector< std::string_view > fieldsOf( std::string_view line ) {
   if( !line.empty() && line.back() == '\r' ) line.remove_suffix( 1 );
   if( !line.empty() && line.back() == '\t' ) line.remove_suffix( 1 );
   std::vector< std::string_view > fields;
   if( line.empty() ) return fields;
   for( std::size_t tab; ( tab = line.find( '\t' ) ) != std::string_view::npos; ) {
      fields.push_back( trimmed( line.substr( 0, tab ) ) );
      line.remove_prefix( tab + 1 );
   }
   fields.push_back( trimmed( line ) );
   return fields;
}

// One line being read: every error names its file and line.
class LineReader {
 public:
   LineReader( std::string const& fileName, std::size_t lineNo )
       : fileName_( fileName ), lineNo_( lineNo ) {}

   Acl::IpRuleConfig rule( std::string_view line ) const;

 private:
   [[noreturn]] void fail( std::string const& problem ) const {
      Zub::throwParseException( fileName_ + ":" + std::to_string( lineNo_ ) + ": " + problem );
   }
   unsigned number( std::string_view text, int base, unsigned max, std::string const& what ) const;
   std::pair< std::string_view, std::string_view > valueAndMask( std::string_view text,
                                                                 std::string const& what ) const;
   Mirel::IpAddrWithMask prefix( std::string_view text, std::string const& what ) const;
   Acl::PortCondition portRange( std::string_view text, std::string const& what ) const;
   std::uint8_t protocol( std::string_view text ) const;
   void checkFlags( std::string_view text ) const;

   std::string const& fileName_;
   std::size_t lineNo_;
};

// A number that is all of `text`: decimal, or for base 16 "0x" and hex digits.
unsigned LineReader::number( std::string_view text, int base, unsigned max,
                             std::string const& what ) const {
   std::string_view digits = text;
   bool const prefixed = digits.starts_with( "0x" ) || digits.starts_with( "0X" );
   if( base == 16 && prefixed ) digits.remove_prefix( 2 );
   unsigned long long v = 0;
   auto const [ end, ec ] =
         std::from_chars( digits.data(), digits.data() + digits.size(), v, base );
   bool const whole = !digits.empty() && end == digits.data() + digits.size();
   if( !whole || ec == std::errc::invalid_argument || ( base == 16 && !prefixed ) ) {
      fail( std::string( base == 16 ? "bad hex number '" : "bad number '" ) + std::string( text ) +
            "' in " + what );
   }
   if( ec == std::errc::result_out_of_range || v > max ) {
      std::string const maxText =
            base == 16 ? Zub::format( "0x%x", max ).stdString() : std::to_string( max );
      fail( what + " " + std::string( text ) + " above " + maxText );
   }
   return static_cast< unsigned >( v );
}

// "value/mask" as its two halves.
std::pair< std::string_view, std::string_view > LineReader::valueAndMask(
      std::string_view text, std::string const& what ) const {
   std::size_t const slash = text.find( '/' );
   if( slash == std::string_view::npos ) {
      fail( what + " '" + std::string( text ) + "' without '/mask'" );
   }
   return { text.substr( 0, slash ), text.substr( slash + 1 ) };
}

// "a.b.c.d/len".
Mirel::IpAddrWithMask LineReader::prefix( std::string_view text, std::string const& what ) const {
   std::size_t const slash = text.find( '/' );
   if( slash == std::string_view::npos ) {
      fail( what + " prefix '" + std::string( text ) + "' without '/length'" );
   }
   std::string_view addrText = text.substr( 0, slash );
   std::uint32_t addr = 0;
   for( unsigned octet = 0; octet < 4; ++octet ) {
      std::size_t const dot = octet < 3 ? addrText.find( '.' ) : addrText.size();
      if( dot == std::string_view::npos ) {
         fail( what + " address '" + std::string( text.substr( 0, slash ) ) + "' not four octets" );
      }
      addr = ( addr << 8 ) | number( addrText.substr( 0, dot ), 10, 255, what + " address octet" );
      addrText.remove_prefix( dot == addrText.size() ? dot : dot + 1 );
   }
   unsigned const len = number( text.substr( slash + 1 ), 10, Mirel::IpAddrWithMask::maxLen,
                                what + " prefix length" );
   // As the scenario reader: the rule would match what the address without them says.
   std::uint32_t const hostBits = len == 32 ? 0 : 0xffffffffu >> len;
   if( ( addr & hostBits ) != 0 ) {
      fail( what + " prefix '" + std::string( text ) + "' has bits set past its length" );
   }
   return Mirel::IpAddrWithMask( addr, len );
}

// "lo : hi": the whole space is no condition, one value an equality, anything else a range.
Acl::PortCondition LineReader::portRange( std::string_view text, std::string const& what ) const {
   std::size_t const colon = text.find( ':' );
   if( colon == std::string_view::npos ) {
      fail( what + " port range '" + std::string( text ) + "' without ':'" );
   }
   unsigned const low = number( trimmed( text.substr( 0, colon ) ), 10, 0xffff, what + " port" );
   unsigned const high = number( trimmed( text.substr( colon + 1 ) ), 10, 0xffff, what + " port" );
   if( low > high ) {
      fail( what + " port range " + std::to_string( low ) + " : " + std::to_string( high ) +
            " has low above high" );
   }
   if( low == 0 && high == 0xffff ) return Acl::PortCondition();
   if( low == high ) return Acl::PortCondition::eqOf( static_cast< std::uint16_t >( low ) );
   return Acl::PortCondition::rangeOf( static_cast< std::uint16_t >( low ),
                                       static_cast< std::uint16_t >( high ) );
}

// "0xNN/0xFF" is protocol NN, "0xNN/0x00" any protocol. Other masks, and protocol 0 itself
// (which the rule model reads as any), have no rule form.
std::uint8_t LineReader::protocol( std::string_view text ) const {
   auto const [ valueText, maskText ] = valueAndMask( text, "protocol" );
   unsigned const value = number( valueText, 16, 0xff, "protocol" );
   unsigned const mask = number( maskText, 16, 0xff, "protocol mask" );
   if( mask == 0 ) return 0;
   if( mask != 0xff ) {
      fail( "protocol mask " + std::string( maskText ) + " neither 0x00 nor 0xff" );
   }
   if( value == 0 ) fail( "protocol 0 with mask 0xff has no rule form" );
   return static_cast< std::uint8_t >( value );
}

// The flags field is checked but not mapped: its high byte holds TCP flag bits for TCP rules but
// the ICMP type for ICMP rules, and many of its conditions require a flag to be clear, which a
// rule (flags that must be set) cannot say. The published entry counts leave it out too.
void LineReader::checkFlags( std::string_view text ) const {
   auto const [ valueText, maskText ] = valueAndMask( text, "flags" );
   unsigned const value = number( valueText, 16, 0xffff, "flags" );
   unsigned const mask = number( maskText, 16, 0xffff, "flags mask" );
   if( value & ~mask ) fail( "flags " + std::string( text ) + " set bits outside their mask" );
}

Acl::IpRuleConfig LineReader::rule( std::string_view line ) const {
   std::vector< std::string_view > const fields = fieldsOf( line );
   if( fields.size() != fieldCount ) {
      fail( "wrong field count: " + std::to_string( fields.size() ) + " instead of " +
            std::to_string( fieldCount ) );
   }
   if( !fields[ 0 ].starts_with( '@' ) ) fail( "missing '@' before the source prefix" );
   Acl::IpRuleConfig r;
   r.action = Acl::actionPermit;
   r.filter.source = prefix( fields[ 0 ].substr( 1 ), "source" );
   r.filter.destination = prefix( fields[ 1 ], "destination" );
   r.filter.srcPort = portRange( fields[ 2 ], "source" );
   r.filter.dstPort = portRange( fields[ 3 ], "destination" );
   r.filter.proto = protocol( fields[ 4 ] );
   checkFlags( fields[ 5 ] );
   return r;
}

// The aligned blocks inside low..high, counted on the binary tree of the port space: a node
// inside the range is one block, a node outside none, a node across an end splits in two. This
// is not the greedy walk of Mirel::RangeMaskGen, so the two check each other.
std::uint64_t blocksIn( unsigned low, unsigned high, unsigned nodeLow, unsigned nodeSize ) {
   unsigned const nodeHigh = nodeLow + nodeSize - 1;
   if( nodeHigh < low || nodeLow > high ) return 0;
   if( low <= nodeLow && nodeHigh <= high ) return 1;
   unsigned const half = nodeSize / 2;
   return blocksIn( low, high, nodeLow, half ) + blocksIn( low, high, nodeLow + half, half );
}

std::uint64_t portBlocks( Acl::PortCondition const& condition ) {
   std::array< std::pair< std::uint16_t, std::uint16_t >, 11 > ranges;
   unsigned const n = condition.ranges( ranges );
   std::uint64_t blocks = 0;
   for( unsigned i = 0; i < n; ++i ) {
      blocks += blocksIn( ranges[ i ].first, ranges[ i ].second, 0, 0x10000 );
   }
   return blocks;
}

// Written out here rather than taken from the compiler's plan, for the same reason.
bool isL4Rule( Acl::IpFilter const& f ) {
   return !f.srcPort.isAny() || !f.dstPort.isAny() || !f.ipLen.isAny() || f.tcpFlag.value() != 0 ||
          f.established || f.icmpTypeValid || f.icmpCodeValid;
}

unsigned ecnEntries( Acl::Ecn ecn, bool qosEcnSupport ) {
   if( !qosEcnSupport ) return 1;
   switch( ecn ) {
      case Acl::ecnDontCare:
      case Acl::ecnNonEct:
      case Acl::ecnCe:
         return 1;
      case Acl::ecnEctCe:
      case Acl::ecnEct:
         return 2;
   }
   return 0;
}

// srcAddr, srcMask, dstAddr, dstMask, ecn.
using FragKey = std::tuple< std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t, unsigned >;
using FragMaps = std::map< std::uint8_t, std::set< FragKey > >;

FragKey fragKeyOf( Acl::IpFilter const& f ) {
   return { f.source.addr(), f.source.mask(), f.destination.addr(), f.destination.mask(), f.ecn };
}

// A layer-4 rule needs no entry of its own when an earlier one lets the same fragments, or all
// of them, through; a VLAN rule always does, the earlier entry not being on its VLAN.
bool needsFragmentEntry( FragMaps const& maps, Acl::IpFilter const& f ) {
   if( f.vlanMask != 0 ) return true;
   auto const map = maps.find( f.proto );
   if( map == maps.end() ) return true;
   return !map->second.contains( fragKeyOf( f ) ) && !map->second.contains( FragKey() );
}

// A rule matching fragments itself takes the place of the entries of its layer-3 match.
void noteFragmentRule( FragMaps& maps, Acl::IpFilter const& f ) {
   if( f.proto == 0 ) {
      for( auto& [ proto, keys ] : maps )
         keys.insert( fragKeyOf( f ) );
      return;
   }
   auto const map = maps.find( f.proto );
   if( map != maps.end() ) map->second.insert( fragKeyOf( f ) );
}

}  // namespace

std::vector< Acl::IpRuleConfig > parseClassBench( std::istream& in, std::string const& fileName ) {
   std::vector< Acl::IpRuleConfig > rules;
   std::string line;
   for( std::size_t lineNo = 1; std::getline( in, line ); ++lineNo ) {
      rules.push_back( LineReader( fileName, lineNo ).rule( line ) );
   }
   if( in.bad() ) Zub::throwParseException( fileName + ": read error" );
   return rules;
}

std::vector< Acl::IpRuleConfig > readClassBench( std::filesystem::path const& path ) {
   std::ifstream in( path );
   if( !in ) Zub::throwParseException( path.string() + ": cannot be opened" );
   return parseClassBench( in, path.string() );
}

Zub::Ptr< Acl::AclRuleSet > aclRuleSetOf( std::vector< Acl::IpRuleConfig > const& rules,
                                          unsigned version ) {
   auto set = Zub::make< Acl::AclRuleSet >( version );
   for( std::size_t i = 0; i < rules.size(); ++i ) {
      Acl::UniqueId const id( i + 1 );
      set->ruleBySequenceIs( static_cast< std::uint32_t >( 10 * ( i + 1 ) ), id );
      set->ipRuleByIdIs( id, rules[ i ] );
   }
   return set;
}

std::uint64_t portBlockProduct( std::vector< Acl::IpRuleConfig > const& rules ) {
   std::uint64_t entries = 0;
   for( auto const& r : rules )
      entries += portBlocks( r.filter.srcPort ) * portBlocks( r.filter.dstPort );
   return entries;
}

std::size_t rulesWithPortCondition( std::vector< Acl::IpRuleConfig > const& rules ) {
   std::size_t n = 0;
   for( auto const& r : rules )
      n += !r.filter.srcPort.isAny() || !r.filter.dstPort.isAny();
   return n;
}

// Rules in order. A fragments rule with a layer-4 condition can match nothing (a non-first
// fragment has no layer-4 header) and neither adds entries nor stands in for any.
std::uint64_t fragmentEntries( std::vector< Acl::IpRuleConfig > const& rules, bool qosEcnSupport ) {
   FragMaps maps;
   std::uint64_t entries = 0;
   for( auto const& r : rules ) {
      Acl::IpFilter const& f = r.filter;
      bool const l4 = isL4Rule( f );
      if( f.fragments ) {
         if( !l4 ) noteFragmentRule( maps, f );
      } else if( l4 && needsFragmentEntry( maps, f ) ) {
         entries += ecnEntries( f.ecn, qosEcnSupport );
         maps[ f.proto ].insert( fragKeyOf( f ) );
      }
   }
   return entries;
}

}  // namespace Sim
