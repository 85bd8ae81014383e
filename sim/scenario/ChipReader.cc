#include "sim/scenario/ChipReader.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace Sim {

namespace {

struct FlagField {
   std::string_view key;
   bool ChipSpec::*member;
};

constexpr FlagField flagFields[] = {
   { "policyQosSupported", &ChipSpec::policyQosSupported },
   { "pdpSupported", &ChipSpec::pdpSupported },
   { "coppSupported", &ChipSpec::coppSupported },
   { "coppDynamicClassSupported", &ChipSpec::coppDynamicClassSupported },
   { "intfCoppSupported", &ChipSpec::intfCoppSupported },
   { "perClassPolicerSupported", &ChipSpec::perClassPolicerSupported },
   { "sharedQosAclTypesCounterSupported", &ChipSpec::sharedQosAclTypesCounterSupported },
   { "vlanClassMatchSupported", &ChipSpec::vlanClassMatchSupported },
   { "cosClassMatchSupported", &ChipSpec::cosClassMatchSupported },
   { "dscpEcnClassMatchSupported", &ChipSpec::dscpEcnClassMatchSupported },
   { "multipleActionsSupported", &ChipSpec::multipleActionsSupported },
   { "errorOnPolicerExhaustion", &ChipSpec::errorOnPolicerExhaustion },
   { "macAclRuleSupportedPlatform", &ChipSpec::macAclRuleSupportedPlatform },
   { "qosEcnSupport", &ChipSpec::qosEcnSupport },
   { "establishedSupported", &ChipSpec::establishedSupported },
};

struct CountField {
   std::string_view key;
   std::uint32_t ChipSpec::*member;
   std::uint32_t min;
};

constexpr CountField countFields[] = {
   { "tcamSliceEntries", &ChipSpec::tcamSliceEntries, 1 },
   { "rangeCheckers", &ChipSpec::rangeCheckers, 0 },
   { "policers", &ChipSpec::policers, 0 },
   { "counters", &ChipSpec::counters, 0 },
   { "cpuQueues", &ChipSpec::cpuQueues, 0 },
   { "policeByteModeMinRateKbps", &ChipSpec::policeByteModeMinRateKbps, 0 },
   { "policeByteModeMaxRateKbps", &ChipSpec::policeByteModeMaxRateKbps, 1 },
   { "policeByteModeMinBurstBytes", &ChipSpec::policeByteModeMinBurstBytes, 0 },
   { "policeByteModeMaxBurstBytes", &ChipSpec::policeByteModeMaxBurstBytes, 1 },
   { "policePacketModeMinRatePps", &ChipSpec::policePacketModeMinRatePps, 0 },
   { "policePacketModeMaxRatePps", &ChipSpec::policePacketModeMaxRatePps, 1 },
   { "policePacketModeMinBurstPackets", &ChipSpec::policePacketModeMinBurstPackets, 0 },
   { "policePacketModeMaxBurstPackets", &ChipSpec::policePacketModeMaxBurstPackets, 1 },
};

// The police limits that come as a least and a most.
struct LimitPair {
   std::string_view least;
   std::string_view most;
   std::uint32_t ChipSpec::*low;
   std::uint32_t ChipSpec::*high;
};

constexpr LimitPair limitPairs[] = {
   { "policeByteModeMinRateKbps", "policeByteModeMaxRateKbps", &ChipSpec::policeByteModeMinRateKbps,
     &ChipSpec::policeByteModeMaxRateKbps },
   { "policeByteModeMinBurstBytes", "policeByteModeMaxBurstBytes",
     &ChipSpec::policeByteModeMinBurstBytes, &ChipSpec::policeByteModeMaxBurstBytes },
   { "policePacketModeMinRatePps", "policePacketModeMaxRatePps",
     &ChipSpec::policePacketModeMinRatePps, &ChipSpec::policePacketModeMaxRatePps },
   { "policePacketModeMinBurstPackets", "policePacketModeMaxBurstPackets",
     &ChipSpec::policePacketModeMinBurstPackets, &ChipSpec::policePacketModeMaxBurstPackets },
};

constexpr std::pair< std::string_view, TcamMode > tcamModes[] = {
   { "synchronous", TcamMode::synchronous },
   { "asynchronous", TcamMode::asynchronous },
};

constexpr std::pair< std::string_view, FaultSpec::Kind > faultKinds[] = {
   { "outOfTcam", FaultSpec::Kind::outOfTcam },
   { "outOfRangeCheckers", FaultSpec::Kind::outOfRangeCheckers },
   { "policerExhaustion", FaultSpec::Kind::policerExhaustion },
   { "operationError", FaultSpec::Kind::operationError },
   { "asyncPending", FaultSpec::Kind::asyncPending },
};

constexpr std::pair< std::string_view, std::string_view > tcamFamilies[] = {
   { "ipv4", "ipv4" }, { "ipv6", "ipv6" }, { "mac", "mac" }, { "l2", "l2" }
};

constexpr std::pair< std::string_view, Nev::AclCreateError > errorNames[] = {
   { "outOfTcam", Nev::aclCreateErrorOutOfTcam },
   { "tooManyL4PortRanges", Nev::aclCreateErrorTooManyL4PortRanges },
   { "expandIpLen", Nev::aclCreateErrorExpandIpLen },
   { "expandAll", Nev::aclCreateErrorExpandAll },
   { "expandSrcIpLen", Nev::aclCreateErrorExpandSrcIpLen },
   { "expandDstIpLen", Nev::aclCreateErrorExpandDstIpLen },
   { "expandSrc", Nev::aclCreateErrorExpandSrc },
   { "expandDst", Nev::aclCreateErrorExpandDst },
   { "tooManyAcls", Nev::aclCreateErrorTooManyAcls },
   { "unsupportedAction", Nev::aclCreateErrorUnsupportedAction },
   { "ruleIgnored", Nev::aclCreateErrorRuleIgnored },
   { "policerExhausted", Nev::aclCreateErrorPolicerExhausted },
   { "ignored", Nev::aclCreateErrorIgnored },
};

std::vector< std::string_view > chipKeys() {
   std::vector< std::string_view > keys{ "tcamMode", "asyncDelay", "supportedTcpFlags",
                                         "policyClassMaxPrio", "faults" };
   for( auto const& f : flagFields )
      keys.push_back( f.key );
   for( auto const& f : countFields )
      keys.push_back( f.key );
   return keys;
}

// The keys a fault of each kind takes beside name, kind, from and until.
std::vector< std::string_view > faultKeys( FaultSpec::Kind kind ) {
   std::vector< std::string_view > keys{ "name", "kind", "from", "until" };
   switch( kind ) {
      case FaultSpec::Kind::outOfTcam:
         keys.insert( keys.end(), { "family", "atEntries" } );
         break;
      case FaultSpec::Kind::operationError:
         keys.insert( keys.end(), { "op", "nth", "error" } );
         break;
      case FaultSpec::Kind::asyncPending:
         keys.push_back( "nth" );
         break;
      case FaultSpec::Kind::outOfRangeCheckers:
      case FaultSpec::Kind::policerExhaustion:
         break;
   }
   return keys;
}

}  // namespace

void ChipReader::chip( YAML::Node const& node, ChipSpec& chip,
                       std::vector< std::string >& faultNames ) const {
   yaml_.checkMapping( node, "chip", chipKeys() );
   if( auto const m = node[ "tcamMode" ] ) {
      chip.tcamMode = yaml_.choice( m, "tcamMode", NameTable< TcamMode >( tcamModes ) );
   }
   if( auto const d = node[ "asyncDelay" ] ) chip.asyncDelay = yaml_.seconds( d, "asyncDelay", 0 );
   for( auto const& f : flagFields ) {
      if( auto const v = node[ std::string( f.key ) ] ) {
         chip.*f.member = yaml_.flag( v, std::string( f.key ) );
      }
   }
   for( auto const& f : countFields ) {
      if( auto const v = node[ std::string( f.key ) ] ) {
         chip.*f.member =
               std::uint32_t( yaml_.integer( v, std::string( f.key ), f.min, UINT32_MAX ) );
      }
   }
   for( auto const& limit : limitPairs ) {
      if( chip.*limit.low > chip.*limit.high ) {
         yaml_.fail( node, "chip: " + std::string( limit.least ) + " is above " +
                                 std::string( limit.most ) );
      }
   }
   if( auto const f = node[ "supportedTcpFlags" ] ) {
      chip.supportedTcpFlags = std::uint16_t( yaml_.integer( f, "supportedTcpFlags", 0, 0x1ff ) );
   }
   if( auto const p = node[ "policyClassMaxPrio" ] ) {
      chip.policyClassMaxPrio =
            std::uint16_t( yaml_.integer( p, "policyClassMaxPrio", 1, 0xffff ) );
   }
   auto const faults = node[ "faults" ];
   if( !faults ) return;
   yaml_.checkSequence( faults, "faults" );
   for( YAML::Node const& f : faults ) {
      std::string name;
      chip.faults.push_back( fault( f, name ) );
      if( !name.empty() &&
          std::find( faultNames.begin(), faultNames.end(), name ) != faultNames.end() ) {
         yaml_.fail( f[ "name" ], "name: a second fault called '" + name + "'" );
      }
      faultNames.push_back( name );
   }
}

FaultSpec ChipReader::fault( YAML::Node const& node, std::string& name ) const {
   if( !node.IsMap() ) yaml_.fail( node, "fault: expected a mapping, found " + kindOf( node ) );
   FaultSpec fault;
   fault.kind = yaml_.choice( yaml_.required( node, "kind" ), "kind",
                              NameTable< FaultSpec::Kind >( faultKinds ) );
   yaml_.checkMapping( node, "fault", faultKeys( fault.kind ) );
   if( auto const n = node[ "name" ] ) name = yaml_.text( n, "name" );
   if( auto const f = node[ "from" ] ) fault.from = yaml_.seconds( f, "from", 0 );
   if( auto const u = node[ "until" ] ) {
      fault.until = yaml_.seconds( u, "until", 0 );
      if( fault.from && *fault.from > *fault.until ) yaml_.fail( u, "until: before from" );
   }
   faultDetails( node, fault );
   return fault;
}

void ChipReader::faultDetails( YAML::Node const& node, FaultSpec& fault ) const {
   if( auto const f = node[ "family" ] ) {
      fault.family = yaml_.choice( f, "family", NameTable< std::string_view >( tcamFamilies ) );
   }
   if( auto const a = node[ "atEntries" ] ) {
      fault.atEntries = std::uint32_t( yaml_.integer( a, "atEntries", 0, UINT32_MAX ) );
   }
   if( fault.kind == FaultSpec::Kind::operationError ) {
      fault.op = yaml_.text( yaml_.required( node, "op" ), "op" );
   }
   if( auto const n = node[ "nth" ] ) {
      std::int64_t const least = fault.kind == FaultSpec::Kind::asyncPending ? 1 : 0;
      fault.nth = std::uint32_t( yaml_.integer( n, "nth", least, UINT32_MAX ) );
   } else if( fault.kind == FaultSpec::Kind::asyncPending ) {
      fault.nth = 1;
   }
   if( auto const e = node[ "error" ] ) {
      fault.error = yaml_.choice( e, "error", NameTable< Nev::AclCreateError >( errorNames ) );
   }
}

}  // namespace Sim
