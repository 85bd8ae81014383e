#include "NevQos/sim/scenario/AclReader.h"

#include <arpa/inet.h>

#include <cctype>
#include <utility>

#include "NevQos/platform/zub/Exception.h"
#include "NevQos/sim/classbench/ClassBench.h"

namespace Sim {

namespace {

constexpr std::uint8_t protoIcmp = 1;
constexpr std::uint8_t protoTcp = 6;
constexpr std::uint8_t protoUdp = 17;
constexpr std::uint8_t protoIcmpv6 = 58;
constexpr std::uint8_t protoSctp = 132;

std::vector< std::string_view > const ipRuleKeys = {
   "seq",  "action", "proto",    "src",         "dst",       "srcPort",  "dstPort",  "ipLength",
   "dscp", "ecn",    "tcpFlags", "established", "fragments", "icmpType", "icmpCode", "vlan",
};
std::vector< std::string_view > const macRuleKeys = {
   "seq", "action", "etherType", "mplsLabel", "mplsInnerLabel",
};

constexpr std::pair< std::string_view, Acl::Action > actionNames[] = {
   { "permit", Acl::actionPermit },
   { "deny", Acl::actionDeny },
};

constexpr std::pair< std::string_view, std::uint32_t > tcpFlagNames[] = {
   { "fin", 0x01 }, { "syn", 0x02 }, { "rst", 0x04 }, { "psh", 0x08 }, { "ack", 0x10 },
   { "urg", 0x20 }, { "ece", 0x40 }, { "cwr", 0x80 }, { "ns", 0x100 },
};

constexpr std::pair< std::string_view, Acl::PortCondition::Oper > portOpers[] = {
   { "eq", Acl::PortCondition::eq },       { "neq", Acl::PortCondition::neq },
   { "gt", Acl::PortCondition::gt },       { "lt", Acl::PortCondition::lt },
   { "range", Acl::PortCondition::range },
};

// A port condition of N values: PortCondition takes its values as an initializer list only.
template< std::size_t N >
Acl::PortCondition portConditionOf( Acl::PortCondition::Oper oper,
                                    std::vector< std::uint16_t > const& v ) {
   return [ & ]< std::size_t... I >( std::index_sequence< I... > ) {
      return Acl::PortCondition( oper, { v[ I ]... } );
   }
   ( std::make_index_sequence< N >() );
}

Acl::PortCondition portConditionOf( Acl::PortCondition::Oper oper,
                                    std::vector< std::uint16_t > const& v ) {
   using Make =
         Acl::PortCondition ( * )( Acl::PortCondition::Oper, std::vector< std::uint16_t > const& );
   static constexpr Make makers[] = {
      portConditionOf< 1 >, portConditionOf< 2 >,  portConditionOf< 3 >, portConditionOf< 4 >,
      portConditionOf< 5 >, portConditionOf< 6 >,  portConditionOf< 7 >, portConditionOf< 8 >,
      portConditionOf< 9 >, portConditionOf< 10 >,
   };
   return makers[ v.size() - 1 ]( oper, v );
}

// "address/length", or a bare address for the whole length: the address as inet_pton reads it,
// the length in plain decimal digits, and no bit of the address set past the length, since the
// list would match what the address with those bits clear says. The problem, or empty.
template< class Bytes >
std::string prefixProblem( std::string const& text, int af, unsigned maxLen, Bytes& addr,
                           unsigned& len ) {
   std::size_t const slash = text.find( '/' );
   std::string const addrText = text.substr( 0, slash );
   if( inet_pton( af, addrText.c_str(), &addr ) != 1 ) return "is not an address or prefix";
   len = maxLen;
   if( slash == std::string::npos ) return {};
   std::string const lenText = text.substr( slash + 1 );
   bool const digits = !lenText.empty() && lenText.size() <= 3 &&
                       lenText.find_first_not_of( "0123456789" ) == std::string::npos;
   if( !digits || std::stoul( lenText ) > maxLen ) {
      return "has no prefix length 0.." + std::to_string( maxLen ) + " after the '/'";
   }
   len = unsigned( std::stoul( lenText ) );
   auto* const bytes = reinterpret_cast< unsigned char* >( &addr );
   bool hostBits = false;
   for( unsigned bit = len; bit < maxLen; ++bit ) {
      unsigned char const mask = static_cast< unsigned char >( 0x80u >> ( bit % 8 ) );
      hostBits = hostBits || ( bytes[ bit / 8 ] & mask ) != 0;
      bytes[ bit / 8 ] = static_cast< unsigned char >( bytes[ bit / 8 ] & ~mask );
   }
   if( !hostBits ) return {};
   char network[ INET6_ADDRSTRLEN ];
   inet_ntop( af, &addr, network, sizeof network );
   return "has bits set past its length: the prefix is " + std::string( network ) + "/" + lenText;
}

}  // namespace

AclDef AclReader::acl( YAML::Node const& node ) const {
   yaml_.checkMapping( node, "access list",
                       { "name", "type", "configured", "rules", "classbench" } );
   AclDef acl;
   acl.name = yaml_.text( yaml_.required( node, "name" ), "name" );
   if( auto const type = node[ "type" ] ) {
      acl.family = yaml_.choice( type, "type", aclFamilyNames() );
   }
   auto const rules = node[ "rules" ];
   auto const classBench = node[ "classbench" ];
   if( rules && classBench ) yaml_.fail( classBench, "give rules or classbench, not both" );
   if( auto const configured = node[ "configured" ] ) {
      acl.configured = yaml_.flag( configured, "configured" );
      if( !acl.configured && ( rules || classBench ) ) {
         yaml_.fail( rules ? rules : classBench,
                     "an access list that is not configured has no rules" );
      }
   }
   if( rules ) rulesOf( rules, acl );
   if( classBench ) classBenchOf( classBench, acl );
   return acl;
}

void AclReader::rulesOf( YAML::Node const& rules, AclDef& acl ) const {
   yaml_.checkSequence( rules, "rules" );
   std::uint32_t sequence = 0;
   for( YAML::Node const& node : rules ) {
      yaml_.checkMapping( node, "rule", acl.family == AclFamily::mac ? macRuleKeys : ipRuleKeys );
      std::uint32_t const previous = sequence;
      auto const seq = node[ "seq" ];
      sequence = seq ? std::uint32_t( yaml_.integer( seq, "seq", 1, UINT32_MAX ) ) : previous + 10;
      if( sequence <= previous ) {
         yaml_.fail( seq ? seq : node, "seq: " + std::to_string( sequence ) + " does not follow " +
                                             std::to_string( previous ) +
                                             "; sequence numbers ascend" );
      }
      switch( acl.family ) {
         case AclFamily::ipv4:
            acl.ipv4Rules.push_back( { sequence, ipv4Rule( node ) } );
            break;
         case AclFamily::ipv6:
            acl.ipv6Rules.push_back( { sequence, ipv6Rule( node ) } );
            break;
         case AclFamily::mac:
            acl.macRules.push_back( { sequence, macRule( node ) } );
            break;
      }
   }
}

// ---- ClassBench sets

std::filesystem::path AclReader::classBenchPath( YAML::Node const& file ) const {
   std::filesystem::path const name = yaml_.text( file, "file" );
   if( name.is_absolute() ) return name;
   std::vector< std::filesystem::path > dirs{ scenarioDir_ };
   if( char const* env = std::getenv( "NEVQOS_CLASSBENCH_DIR" ) ) dirs.emplace_back( env );
   dirs.emplace_back( NEVQOS_CLASSBENCH_DIR );
   for( auto const& dir : dirs ) {
      std::error_code ec;
      if( std::filesystem::is_regular_file( dir / name, ec ) ) return dir / name;
   }
   yaml_.fail( file, "file: '" + name.string() + "' is neither beside the scenario nor in " +
                           std::string( NEVQOS_CLASSBENCH_DIR ) );
}

void AclReader::classBenchOf( YAML::Node const& node, AclDef& acl ) const {
   yaml_.checkMapping( node, "classbench", { "file", "limit" } );
   if( acl.family != AclFamily::ipv4 ) {
      yaml_.fail( node, "classbench: the sets hold IPv4 rules only" );
   }
   auto const file = yaml_.required( node, "file" );
   std::size_t limit = SIZE_MAX;
   if( auto const l = node[ "limit" ] ) {
      limit = std::size_t( yaml_.integer( l, "limit", 1, INT32_MAX ) );
   }
   std::vector< Acl::IpRuleConfig > rules;
   try {
      rules = readClassBench( classBenchPath( file ) );
   } catch( Zub::Exception const& e ) {
      yaml_.fail( file, std::string( "classbench: " ) + e.what() );
   }
   if( rules.size() > limit ) rules.resize( limit );
   // The numbering aclRuleSetOf gives the sets elsewhere.
   std::uint32_t sequence = 10;
   for( Acl::IpRuleConfig const& rule : rules ) {
      acl.ipv4Rules.push_back( { sequence, rule } );
      sequence += 10;
   }
}

// ---- Rules

Acl::IpRuleConfig AclReader::ipv4Rule( YAML::Node const& node ) const {
   Acl::IpRuleConfig rule;
   if( auto const a = node[ "action" ] )
      rule.action = yaml_.choice( a, "action", NameTable< Acl::Action >( actionNames ) );
   if( auto const src = node[ "src" ] ) rule.filter.source = ipv4Prefix( src, "src" );
   if( auto const dst = node[ "dst" ] ) rule.filter.destination = ipv4Prefix( dst, "dst" );
   filterOf( node, AclFamily::ipv4, rule.filter );
   return rule;
}

Acl::Ip6RuleConfig AclReader::ipv6Rule( YAML::Node const& node ) const {
   Acl::Ip6RuleConfig rule;
   if( auto const a = node[ "action" ] )
      rule.action = yaml_.choice( a, "action", NameTable< Acl::Action >( actionNames ) );
   if( auto const src = node[ "src" ] ) rule.filter.source = ipv6Prefix( src, "src" );
   if( auto const dst = node[ "dst" ] ) rule.filter.destination = ipv6Prefix( dst, "dst" );
   filterOf( node, AclFamily::ipv6, rule.filter );
   return rule;
}

Acl::MacRuleConfig AclReader::macRule( YAML::Node const& node ) const {
   Acl::MacRuleConfig rule;
   if( auto const a = node[ "action" ] )
      rule.action = yaml_.choice( a, "action", NameTable< Acl::Action >( actionNames ) );
   if( auto const t = node[ "etherType" ] ) {
      rule.filter.etherType = std::uint16_t( yaml_.integer( t, "etherType", 0, 0xffff ) );
   }
   std::int64_t const maxLabel = Acl::MacFilter::maxMplsLabel;
   if( auto const l = node[ "mplsLabel" ] ) {
      rule.filter.mplsLabelIs( yaml_.integer( l, "mplsLabel", 0, maxLabel ) );
   }
   if( auto const l = node[ "mplsInnerLabel" ] ) {
      rule.filter.mplsInnerLabelIs( yaml_.integer( l, "mplsInnerLabel", 0, maxLabel ) );
   }
   return rule;
}

void AclReader::filterOf( YAML::Node const& node, AclFamily family,
                          Acl::IpFilterBase& filter ) const {
   if( auto const p = node[ "proto" ] ) filter.proto = protocol( p, family );
   if( auto const p = node[ "srcPort" ] ) filter.srcPort = portCondition( p, "srcPort" );
   if( auto const p = node[ "dstPort" ] ) filter.dstPort = portCondition( p, "dstPort" );
   if( auto const l = node[ "ipLength" ] ) filter.ipLen = portCondition( l, "ipLength" );
   if( auto const d = node[ "dscp" ] ) {
      filter.dscp = std::uint8_t( yaml_.dscp( d, "dscp" ) );
      filter.dscpValid = true;
   }
   if( auto const e = node[ "ecn" ] ) filter.ecn = yaml_.choice( e, "ecn", ecnNames() );
   if( auto const f = node[ "tcpFlags" ] ) filter.tcpFlag = tcpFlags( f );
   if( auto const e = node[ "established" ] ) filter.established = yaml_.flag( e, "established" );
   if( auto const f = node[ "fragments" ] ) filter.fragments = yaml_.flag( f, "fragments" );
   if( auto const t = node[ "icmpType" ] ) {
      filter.icmpType = std::uint8_t( yaml_.integer( t, "icmpType", 0, 255 ) );
      filter.icmpTypeValid = true;
   }
   if( auto const c = node[ "icmpCode" ] ) {
      filter.icmpCode = std::uint8_t( yaml_.integer( c, "icmpCode", 0, 255 ) );
      filter.icmpCodeValid = true;
   }
   if( auto const v = node[ "vlan" ] ) {
      yaml_.checkMapping( v, "vlan", { "value", "mask" } );
      filter.vlan =
            std::uint16_t( yaml_.integer( yaml_.required( v, "value" ), "value", 0, 4095 ) );
      filter.vlanMask = 0xfff;
      if( auto const m = v[ "mask" ] ) {
         filter.vlanMask = std::uint16_t( yaml_.integer( m, "mask", 1, 0xfff ) );
      }
   }
   checkLayer4( node, family, filter );
}

// Conditions that only some protocols, or only whole packets, can meet.
void AclReader::checkLayer4( YAML::Node const& node, AclFamily family,
                             Acl::IpFilterBase const& f ) const {
   bool const ports = !f.srcPort.isAny() || !f.dstPort.isAny();
   bool const tcp = f.tcpFlag.value() != 0 || f.established;
   bool const icmp = f.icmpTypeValid || f.icmpCodeValid;
   std::uint8_t const icmpProto = family == AclFamily::ipv4 ? protoIcmp : protoIcmpv6;
   if( ports && f.proto != protoTcp && f.proto != protoUdp && f.proto != protoSctp ) {
      yaml_.fail( node, "rule: port conditions need proto tcp, udp or sctp" );
   }
   if( tcp && f.proto != protoTcp ) yaml_.fail( node, "rule: TCP flags need proto tcp" );
   if( icmp && f.proto != icmpProto )
      yaml_.fail( node, "rule: ICMP type and code need proto icmp" );
   if( f.icmpCodeValid && !f.icmpTypeValid ) yaml_.fail( node, "rule: icmpCode needs icmpType" );
   if( f.fragments && ( ports || tcp || icmp ) ) {
      yaml_.fail( node, "rule: non-first fragments carry no layer-4 header to match" );
   }
}

std::uint8_t AclReader::protocol( YAML::Node const& node, AclFamily family ) const {
   std::uint8_t const icmp = family == AclFamily::ipv4 ? protoIcmp : protoIcmpv6;
   std::pair< std::string_view, std::uint8_t > const names[] = {
      { "any", 0 },        { "icmp", icmp }, { "tcp", protoTcp },
      { "udp", protoUdp }, { "gre", 47 },    { "sctp", protoSctp },
   };
   if( node.IsScalar() && !node.Scalar().empty() &&
       std::isdigit( static_cast< unsigned char >( node.Scalar()[ 0 ] ) ) ) {
      return std::uint8_t( yaml_.integer( node, "proto", 0, 255 ) );
   }
   return yaml_.choice( node, "proto",
                        NameTable< std::uint8_t >( std::begin( names ), std::end( names ) ) );
}

// { eq: 80 }, { eq: [ 80, 443 ] }, { neq: ... }, { gt: 1023 }, { lt: 1024 },
// { range: [ 1000, 2000 ] }.
Acl::PortCondition AclReader::portCondition( YAML::Node const& node,
                                             std::string const& what ) const {
   yaml_.checkMapping( node, what, { "eq", "neq", "gt", "lt", "range" } );
   if( node.size() != 1 ) yaml_.fail( node, what + ": give exactly one of eq, neq, gt, lt, range" );
   auto const entry = *node.begin();
   auto const oper =
         yaml_.choice( entry.first, what, NameTable< Acl::PortCondition::Oper >( portOpers ) );
   std::vector< std::uint16_t > values;
   auto const add = [ & ]( YAML::Node const& v ) {
      values.push_back( std::uint16_t( yaml_.integer( v, what, 0, 0xffff ) ) );
   };
   if( entry.second.IsSequence() ) {
      for( YAML::Node const& v : entry.second )
         add( v );
   } else {
      add( entry.second );
   }
   bool const fits = oper == Acl::PortCondition::range ? values.size() == 2
                     : oper == Acl::PortCondition::gt || oper == Acl::PortCondition::lt
                           ? values.size() == 1
                           : !values.empty() && values.size() <= Acl::PortCondition::maxValues;
   if( !fits ) {
      yaml_.fail( entry.second, what + ": range takes two values, gt and lt one, eq and neq one "
                                       "to ten" );
   }
   if( oper == Acl::PortCondition::range && values[ 0 ] > values[ 1 ] ) {
      yaml_.fail( entry.second, what + ": a range goes from low to high" );
   }
   return portConditionOf( oper, values );
}

Acl::TcpFlag AclReader::tcpFlags( YAML::Node const& node ) const {
   std::uint32_t flags = 0;
   auto const add = [ & ]( YAML::Node const& name ) {
      flags |= yaml_.choice( name, "tcpFlags", NameTable< std::uint32_t >( tcpFlagNames ) );
   };
   if( node.IsSequence() ) {
      for( YAML::Node const& name : node )
         add( name );
   } else {
      add( node );
   }
   return Acl::TcpFlag( flags );
}

Mirel::IpAddrWithMask AclReader::ipv4Prefix( YAML::Node const& node,
                                             std::string const& what ) const {
   std::string const text = yaml_.text( node, what );
   if( text == "any" ) return {};
   in_addr addr{};
   unsigned len = 0;
   std::string const problem =
         prefixProblem( text, AF_INET, Mirel::IpAddrWithMask::maxLen, addr, len );
   if( !problem.empty() ) yaml_.fail( node, what + ": IPv4 '" + text + "' " + problem );
   return Mirel::IpAddrWithMask( ntohl( addr.s_addr ), len );
}

Mirel::Ip6AddrWithMask AclReader::ipv6Prefix( YAML::Node const& node,
                                              std::string const& what ) const {
   std::string const text = yaml_.text( node, what );
   if( text == "any" ) return {};
   Mirel::Ip6AddrWithMask::Bytes addr{};
   unsigned len = 0;
   std::string const problem =
         prefixProblem( text, AF_INET6, Mirel::Ip6AddrWithMask::maxLen, addr, len );
   if( !problem.empty() ) yaml_.fail( node, what + ": IPv6 '" + text + "' " + problem );
   return Mirel::Ip6AddrWithMask( addr, len );
}

}  // namespace Sim
