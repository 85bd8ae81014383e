#include "NevQos/sim/scenario/ChipReader.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "NevQos/sim/chip/ChipFaults.h"
#include "NevQos/sim/chip/ChipText.h"
#include "NevQos/sim/scenario/PolicyReader.h"
#include "NevQos/sim/scenario/ScenarioNames.h"
#include "NevQos/sim/scenario/ServicePolicyReader.h"
#include "NevQos/types/TcpFlag.h"

namespace Sim {

namespace {

struct FlagField {
   std::string_view key;
   bool ChipConfig::*member;
};

constexpr FlagField flagFields[] = {
   { "policyQosSupported", &ChipConfig::policyQosSupported },
   { "pdpSupported", &ChipConfig::pdpSupported },
   { "coppSupported", &ChipConfig::coppSupported },
   { "coppDynamicClassSupported", &ChipConfig::coppDynamicClassSupported },
   { "intfCoppSupported", &ChipConfig::intfCoppSupported },
   { "perClassPolicerSupported", &ChipConfig::perClassPolicerSupported },
   { "sharedQosAclTypesCounterSupported", &ChipConfig::sharedQosAclTypesCounterSupported },
   { "vlanClassMatchSupported", &ChipConfig::vlanClassMatchSupported },
   { "cosClassMatchSupported", &ChipConfig::cosClassMatchSupported },
   { "dscpEcnClassMatchSupported", &ChipConfig::dscpEcnClassMatchSupported },
   { "multipleActionsSupported", &ChipConfig::multipleActionsSupported },
   { "errorOnPolicerExhaustion", &ChipConfig::errorOnPolicerExhaustion },
   { "createSmForPMap", &ChipConfig::createSmForPMap },
   { "isFabricSlice", &ChipConfig::isFabricSlice },
   { "hwInitialized", &ChipConfig::hwInitialized },
   { "mcTxQueueMapSupported", &ChipConfig::mcTxQueueMapSupported },
   { "dscpRewriteSupported", &ChipConfig::dscpRewriteSupported },
   { "dscpToDpMapSupported", &ChipConfig::dscpToDpMapSupported },
   { "dscpRewritePerInterfaceSupported", &ChipConfig::dscpRewritePerInterfaceSupported },
   { "cosToTcPerInterfaceSupported", &ChipConfig::cosToTcPerInterfaceSupported },
   { "ecnSupported", &ChipConfig::ecnSupported },
   { "ecnQueueCounterSupported", &ChipConfig::ecnQueueCounterSupported },
   { "ecnDelaySupported", &ChipConfig::ecnDelaySupported },
   { "nonEctThdSupported", &ChipConfig::nonEctThdSupported },
   { "wredSupported", &ChipConfig::wredSupported },
   { "dropPrecedenceThresholdSupported", &ChipConfig::dropPrecedenceThresholdSupported },
   { "guaranteedBwSupported", &ChipConfig::guaranteedBwSupported },
   { "macAclRuleSupportedPlatform", &ChipConfig::macAclRuleSupportedPlatform },
   { "qosEcnSupport", &ChipConfig::qosEcnSupport },
   { "establishedSupported", &ChipConfig::establishedSupported },
   { "dlpEnabled", &ChipConfig::dlpEnabled },
   { "pdpMode", &ChipConfig::pdpMode },
   { "doVersionUpdate", &ChipConfig::doVersionUpdate },
   { "delaySviPmapSmCreation", &ChipConfig::delaySviPmapSmCreation },
   { "selfReportedPrgmStatus", &ChipConfig::selfReportedPrgmStatus },
};

struct CountField {
   std::string_view key;
   std::uint32_t ChipConfig::*member;
   std::uint32_t min;
   std::uint32_t max = UINT32_MAX;
};

constexpr CountField countFields[] = {
   { "tcamSliceEntries", &ChipConfig::tcamSliceEntries, 1 },
   { "rangeCheckers", &ChipConfig::rangeCheckers, 0 },
   { "policers", &ChipConfig::policers, 0 },
   { "counters", &ChipConfig::counters, 0 },
   { "cpuQueues", &ChipConfig::cpuQueues, 0 },
   { "cbfRules", &ChipConfig::cbfRules, 0 },
   { "portCpuQueuePolicers", &ChipConfig::portCpuQueuePolicers, 0 },
   { "maxClassesPerPolicyMap", &ChipConfig::maxClassesPerPolicyMap, 1 },
   // Traffic classes and queues number up to 16.
   { "numTcSupported", &ChipConfig::numTcSupported, 0, 16 },
   { "numTxQueueSupported", &ChipConfig::numTxQueueSupported, 0, 16 },
   { "numMulticastQueueSupported", &ChipConfig::numMulticastQueueSupported, 0, 16 },
   { "ecnProfiles", &ChipConfig::ecnProfiles, 0 },
   { "wredProfiles", &ChipConfig::wredProfiles, 0 },
   { "dropThresholdProfiles", &ChipConfig::dropThresholdProfiles, 0 },
   { "ecnQueueCounters", &ChipConfig::ecnQueueCounters, 0 },
   { "minPortShapeRate", &ChipConfig::minPortShapeRate, 0 },
   { "minTxQueueShapeRate", &ChipConfig::minTxQueueShapeRate, 0 },
   { "maxShapeRateKbps", &ChipConfig::maxShapeRateKbps, 0 },
   { "maxShapeRatePps", &ChipConfig::maxShapeRatePps, 0 },
   { "minGuaranteedBwKbps", &ChipConfig::minGuaranteedBwKbps, 0 },
   { "maxGuaranteedBwKbps", &ChipConfig::maxGuaranteedBwKbps, 0 },
   { "minGuaranteedBwPps", &ChipConfig::minGuaranteedBwPps, 0 },
   { "maxGuaranteedBwPps", &ChipConfig::maxGuaranteedBwPps, 0 },
   { "policeByteModeMinRateKbps", &ChipConfig::policeByteModeMinRateKbps, 0 },
   { "policeByteModeMaxRateKbps", &ChipConfig::policeByteModeMaxRateKbps, 1 },
   { "policeByteModeMinBurstBytes", &ChipConfig::policeByteModeMinBurstBytes, 0 },
   { "policeByteModeMaxBurstBytes", &ChipConfig::policeByteModeMaxBurstBytes, 1 },
   { "policePacketModeMinRatePps", &ChipConfig::policePacketModeMinRatePps, 0 },
   { "policePacketModeMaxRatePps", &ChipConfig::policePacketModeMaxRatePps, 1 },
   { "policePacketModeMinBurstPackets", &ChipConfig::policePacketModeMinBurstPackets, 0 },
   { "policePacketModeMaxBurstPackets", &ChipConfig::policePacketModeMaxBurstPackets, 1 },
   { "cbfReviewQuantum", &ChipConfig::cbfReviewQuantum, 1 },
};

// The police limits that come as a least and a most.
struct LimitPair {
   std::string_view least;
   std::string_view most;
   std::uint32_t ChipConfig::*low;
   std::uint32_t ChipConfig::*high;
};

constexpr LimitPair limitPairs[] = {
   { "policeByteModeMinRateKbps", "policeByteModeMaxRateKbps",
     &ChipConfig::policeByteModeMinRateKbps, &ChipConfig::policeByteModeMaxRateKbps },
   { "policeByteModeMinBurstBytes", "policeByteModeMaxBurstBytes",
     &ChipConfig::policeByteModeMinBurstBytes, &ChipConfig::policeByteModeMaxBurstBytes },
   { "policePacketModeMinRatePps", "policePacketModeMaxRatePps",
     &ChipConfig::policePacketModeMinRatePps, &ChipConfig::policePacketModeMaxRatePps },
   { "policePacketModeMinBurstPackets", "policePacketModeMaxBurstPackets",
     &ChipConfig::policePacketModeMinBurstPackets, &ChipConfig::policePacketModeMaxBurstPackets },
};

constexpr std::pair< std::string_view, TcamMode > tcamModes[] = {
   { "synchronous", TcamMode::synchronous },
   { "asynchronous", TcamMode::asynchronous },
};

constexpr std::pair< std::string_view, FaultConfig::Kind > faultKinds[] = {
   { "outOfTcam", FaultConfig::Kind::outOfTcam },
   { "outOfRangeCheckers", FaultConfig::Kind::outOfRangeCheckers },
   { "policerExhaustion", FaultConfig::Kind::policerExhaustion },
   { "operationError", FaultConfig::Kind::operationError },
   { "asyncPending", FaultConfig::Kind::asyncPending },
   { "asyncRepeated", FaultConfig::Kind::asyncRepeated },
   { "cbfNotReady", FaultConfig::Kind::cbfNotReady },
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
   std::vector< std::string_view > keys{ "tcamMode",          "asyncDelay",         "asyncTimeout",
                                         "supportedTcpFlags", "policyClassMaxPrio", "faults" };
   for( auto const& f : flagFields )
      keys.push_back( f.key );
   for( auto const& f : countFields )
      keys.push_back( f.key );
   keys.push_back( "namedPolicers" );
   keys.insert( keys.end(), { "unsupportedMacEtherTypes", "managedPrioritySupported", "aclGroups",
                              "aclNames" } );
   return keys;
}

// The keys a fault of each kind takes beside name, kind, from and until.
std::vector< std::string_view > faultKeys( FaultConfig::Kind kind ) {
   std::vector< std::string_view > keys{ "name", "kind", "from", "until" };
   switch( kind ) {
      case FaultConfig::Kind::outOfTcam:
         keys.insert( keys.end(), { "family", "atEntries" } );
         break;
      case FaultConfig::Kind::operationError:
         keys.insert( keys.end(), { "op", "nth", "error", "inCall" } );
         break;
      case FaultConfig::Kind::asyncPending:
      case FaultConfig::Kind::asyncRepeated:
         keys.push_back( "nth" );
         break;
      case FaultConfig::Kind::outOfRangeCheckers:
      case FaultConfig::Kind::policerExhaustion:
      case FaultConfig::Kind::cbfNotReady:
         break;
   }
   return keys;
}

}  // namespace

void ChipReader::chip( YAML::Node const& node, ChipConfig& chip,
                       std::vector< std::string >& faultNames ) const {
   yaml_.checkMapping( node, "chip", chipKeys() );
   if( auto const m = node[ "tcamMode" ] ) {
      chip.tcamMode = yaml_.choice( m, "tcamMode", NameTable< TcamMode >( tcamModes ) );
   }
   if( auto const d = node[ "asyncDelay" ] ) chip.asyncDelay = yaml_.seconds( d, "asyncDelay", 0 );
   auto const timeout = node[ "asyncTimeout" ];
   if( timeout ) chip.asyncTimeout = yaml_.seconds( timeout, "asyncTimeout", 0 );
   // An operation is reported pending after asyncDelay; a time-out before that finds it still
   // in progress and gives up nothing.
   if( chip.asyncTimeout <= chip.asyncDelay ) {
      yaml_.fail( timeout ? timeout : node, "asyncTimeout: " + secondsText( chip.asyncTimeout ) +
                                                  " is not above asyncDelay" );
   }
   for( auto const& f : flagFields ) {
      if( auto const v = node[ std::string( f.key ) ] ) {
         chip.*f.member = yaml_.flag( v, std::string( f.key ) );
      }
   }
   for( auto const& f : countFields ) {
      if( auto const v = node[ std::string( f.key ) ] ) {
         chip.*f.member = std::uint32_t( yaml_.integer( v, std::string( f.key ), f.min, f.max ) );
      }
   }
   for( auto const& limit : limitPairs ) {
      if( chip.*limit.low > chip.*limit.high ) {
         yaml_.fail( node, "chip: " + std::string( limit.least ) + " is above " +
                                 std::string( limit.most ) );
      }
   }
   // The helper's flag set holds the six flags a QoS rule can match.
   if( auto const f = node[ "supportedTcpFlags" ] ) {
      chip.supportedTcpFlags = std::uint16_t(
            yaml_.integer( f, "supportedTcpFlags", 0, NevHelper::TcpFlag::maxValue ) );
   }
   if( auto const p = node[ "policyClassMaxPrio" ] ) {
      chip.policyClassMaxPrio =
            std::uint16_t( yaml_.integer( p, "policyClassMaxPrio", 1, 0xffff ) );
   }
   pdp( node, chip );
   helperAnswers( node, chip );
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

// The driver's named policers are written as the configuration's are. PDP mode on a chip
// without PDP policy maps is a chip at an edge, not an error: the engine configures the default
// PDP policy and programs nothing of it.
void ChipReader::pdp( YAML::Node const& node, ChipConfig& chip ) const {
   auto const policers = node[ "namedPolicers" ];
   if( !policers ) return;
   yaml_.checkSequence( policers, "namedPolicers" );
   for( YAML::Node const& p : policers ) {
      NamedPolicerDef const def = PolicyReader( yaml_ ).namedPolicer( p );
      // A driver's table holds each name once.
      for( NamedPolicerDef const& other : chip.namedPolicers ) {
         if( other.name == def.name ) {
            yaml_.fail( p, "namedPolicers: " + namedPolicerText( def.name ) + " given twice" );
         }
      }
      chip.namedPolicers.push_back( def );
   }
}

FaultConfig ChipReader::fault( YAML::Node const& node, std::string& name ) const {
   if( !node.IsMap() ) yaml_.fail( node, "fault: expected a mapping, found " + kindOf( node ) );
   FaultConfig fault;
   fault.kind = yaml_.choice( yaml_.required( node, "kind" ), "kind",
                              NameTable< FaultConfig::Kind >( faultKinds ) );
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

void ChipReader::faultDetails( YAML::Node const& node, FaultConfig& fault ) const {
   if( auto const f = node[ "family" ] ) {
      fault.family = yaml_.choice( f, "family", NameTable< std::string_view >( tcamFamilies ) );
   }
   if( auto const a = node[ "atEntries" ] ) {
      fault.atEntries = std::uint32_t( yaml_.integer( a, "atEntries", 0, UINT32_MAX ) );
   }
   if( fault.kind == FaultConfig::Kind::operationError ) operation( node, fault );
   // An asynchronous fault names an operation, the first by default; 0 means none.
   bool const async = fault.kind == FaultConfig::Kind::asyncPending ||
                      fault.kind == FaultConfig::Kind::asyncRepeated;
   if( auto const n = node[ "nth" ] ) {
      fault.nth = std::uint32_t( yaml_.integer( n, "nth", async ? 1 : 0, UINT32_MAX ) );
   } else if( async ) {
      fault.nth = 1;
   }
   if( auto const e = node[ "error" ] ) {
      fault.error = yaml_.choice( e, "error", NameTable< Nev::AclCreateError >( errorNames ) );
   }
   if( auto const c = node[ "inCall" ] ) {
      fault.inCall = yaml_.flag( c, "inCall" );
      if( fault.inCall && isBasicFaultOperation( fault.op ) ) {
         yaml_.fail( c, "inCall: does not apply to basic QoS operation " + fault.op );
      }
   }
}

// The answers of the ACL helper's questions that no status carries.
void ChipReader::helperAnswers( YAML::Node const& node, ChipConfig& chip ) const {
   if( auto const types = node[ "unsupportedMacEtherTypes" ] ) {
      for( Span const& span : yaml_.spans( types, "unsupportedMacEtherTypes", 0, 0xffff ) ) {
         for( unsigned t = span.low; t <= span.high; ++t )
            chip.unsupportedMacEtherTypes.insert( std::uint16_t( t ) );
      }
   }
   if( auto const types = node[ "managedPrioritySupported" ] ) {
      yaml_.checkSequence( types, "managedPrioritySupported" );
      for( YAML::Node const& t : types ) {
         chip.managedPriorityMapTypes.insert(
               yaml_.choice( t, "managedPrioritySupported", mapTypeNames() ) );
      }
   }
   if( auto const groups = node[ "aclGroups" ] ) aclGroups( groups, chip );
   if( auto const names = node[ "aclNames" ] ) aclNames( names, chip );
}

// Interface to group; an interface is written as in a service policy.
void ChipReader::aclGroups( YAML::Node const& node, ChipConfig& chip ) const {
   if( !node.IsMap() ) {
      yaml_.fail( node, "aclGroups: expected a mapping, found " + kindOf( node ) );
   }
   ServicePolicyReader const intfs( yaml_ );
   for( auto const& entry : node ) {
      std::string const intf = intfText( intfs.intfPair( entry.first, "aclGroups" ) );
      if( chip.aclGroups.contains( intf ) ) {
         yaml_.fail( entry.first, "aclGroups: " + intf + " is given twice" );
      }
      std::string const group = yaml_.text( entry.second, "aclGroups" );
      chip.aclGroups[ intf ] = group;
   }
}

// The helper's attribute to its new base name. Every generated ACL's name must stay its own, so
// the names, renamed or not, differ from each other and from the two that can't be renamed.
void ChipReader::aclNames( YAML::Node const& node, ChipConfig& chip ) const {
   std::vector< std::string_view > attributes;
   for( AclBaseName const& b : aclBaseNames )
      attributes.push_back( b.attribute );
   yaml_.checkMapping( node, "aclNames", attributes );
   std::map< std::string, std::string > owner;
   for( std::string_view const fixed : fixedAclBaseNames )
      owner[ std::string( fixed ) ] = "the DSCP and ECN lists";
   for( AclBaseName const& b : aclBaseNames ) {
      std::string const attribute( b.attribute );
      auto const given = node[ attribute ];
      std::string const name =
            given ? yaml_.text( given, attribute ) : std::string( b.defaultName );
      if( auto const other = owner.find( name ); other != owner.end() ) {
         yaml_.fail( given ? given : node,
                     attribute + ": '" + name + "' is the base name of " + other->second );
      }
      owner[ name ] = attribute;
      if( given ) chip.aclNames[ attribute ] = name;
   }
}

// The operation must be one the chip's helpers fail on request; an ACL operation answers an
// error, a basic QoS operation fails as its feature does and takes none, and so does an
// operation of the class-based-forwarding rule table, which fails as its driver would.
void ChipReader::operation( YAML::Node const& node, FaultConfig& fault ) const {
   YAML::Node const op = yaml_.required( node, "op" );
   fault.op = yaml_.text( op, "op" );
   bool const basic = isBasicFaultOperation( fault.op );
   bool const cbf = isCbfFaultOperation( fault.op );
   if( !basic && !cbf && !isAclFaultOperation( fault.op ) ) {
      yaml_.fail( op, "op: '" + fault.op +
                            "' is no operation of the ACL, basic QoS or class-based-forwarding "
                            "helper that a fault can fail" );
   }
   if( basic && node[ "error" ] ) {
      yaml_.fail( node[ "error" ], "error: does not apply to basic QoS operation " + fault.op +
                                         ", which fails as its feature does" );
   }
   if( cbf && node[ "error" ] ) {
      yaml_.fail( node[ "error" ], "error: does not apply to class-based-forwarding operation " +
                                         fault.op + ", which fails as its driver does" );
   }
}

}  // namespace Sim
