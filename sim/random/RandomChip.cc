#include "NevQos/sim/random/RandomChip.h"

#include <sstream>
#include <stdexcept>

#include "NevQos/sim/checks/KnownDefects.h"

namespace Sim {

namespace {

// A pool of the TCAM side, its roomy size and the small sizes drawn for it.
struct Pool {
   char const* key;
   std::uint64_t roomy;
   std::vector< std::uint64_t > small;
};

std::vector< Pool > const pools{
   { "tcamSliceEntries", 4096, { 1, 2, 3, 6, 12, 40 } },
   { "rangeCheckers", 64, { 0, 1, 2, 4 } },
   { "policers", 1024, { 0, 1, 2, 5 } },
   { "counters", 1024, { 0, 1, 2, 5 } },
   { "cpuQueues", 32, { 0, 1, 2 } },
   { "cbfRules", 64, { 0, 1, 2, 3 } },
   { "portCpuQueuePolicers", 16, { 0, 1, 2 } },
};

// Flags and the chance, in percent, that one is drawn against its default.
struct Flag {
   char const* key;
   bool defaultOn;
};

std::vector< Flag > const flags{
   { "policyQosSupported", true },
   { "pdpSupported", false },
   { "coppSupported", false },
   { "coppDynamicClassSupported", false },
   { "intfCoppSupported", false },
   { "perClassPolicerSupported", false },
   { "sharedQosAclTypesCounterSupported", false },
   { "vlanClassMatchSupported", true },
   { "cosClassMatchSupported", true },
   { "dscpEcnClassMatchSupported", true },
   { "multipleActionsSupported", true },
   { "errorOnPolicerExhaustion", false },
   { "createSmForPMap", true },
   { "isFabricSlice", false },
   { "hwInitialized", true },
   { "mcTxQueueMapSupported", false },
   { "dscpRewriteSupported", true },
   { "dscpToDpMapSupported", false },
   { "dscpRewritePerInterfaceSupported", false },
   { "cosToTcPerInterfaceSupported", false },
   { "ecnSupported", true },
   { "ecnQueueCounterSupported", false },
   { "ecnDelaySupported", false },
   { "nonEctThdSupported", false },
   { "wredSupported", true },
   { "dropPrecedenceThresholdSupported", false },
   { "guaranteedBwSupported", true },
   { "macAclRuleSupportedPlatform", false },
   { "qosEcnSupport", true },
   { "establishedSupported", false },
   { "dlpEnabled", false },
};

// Least and most limits drawn together: the chip's own pair, one value for both, or the
// smallest that the section takes.
struct LimitPair {
   char const* least;
   char const* most;
   std::uint64_t low;
   std::uint64_t high;
};

std::vector< LimitPair > const limitPairs{
   { "policeByteModeMinRateKbps", "policeByteModeMaxRateKbps", 8, 400000000 },
   { "policeByteModeMinBurstBytes", "policeByteModeMaxBurstBytes", 1000, 128000000 },
   { "policePacketModeMinRatePps", "policePacketModeMaxRatePps", 1, 100000000 },
   { "policePacketModeMinBurstPackets", "policePacketModeMaxBurstPackets", 1, 1000000 },
   { "minGuaranteedBwKbps", "maxGuaranteedBwKbps", 8, 400000000 },
   { "minGuaranteedBwPps", "maxGuaranteedBwPps", 1, 100000000 },
};

// Basic QoS sizes and their draws.
std::vector< Pool > const basicLimits{
   { "ecnProfiles", 16, { 0, 1, 2 } },
   { "wredProfiles", 16, { 0, 1, 2 } },
   { "dropThresholdProfiles", 8, { 0, 1, 2 } },
   { "ecnQueueCounters", 64, { 0, 1, 2 } },
   { "numTcSupported", 8, { 0, 1, 2, 16 } },
   { "numTxQueueSupported", 8, { 0, 1, 2, 16 } },
   { "numMulticastQueueSupported", 0, { 1, 8, 16 } },
   { "minPortShapeRate", 8, { 0, 1000000 } },
   { "minTxQueueShapeRate", 8, { 0, 1000000 } },
   { "maxShapeRateKbps", 400000000, { 1, 1000 } },
   { "maxShapeRatePps", 100000000, { 1, 1000 } },
};

std::vector< std::string > const rangeErrors{ "outOfTcam",   "tooManyL4PortRanges",
                                              "expandSrc",   "expandDst",
                                              "tooManyAcls", "unsupportedAction",
                                              "ruleIgnored", "ignored" };
// Answers that ask for an IP-length range to be expanded.
std::vector< std::string > const lengthErrors{ "expandIpLen", "expandAll", "expandSrcIpLen",
                                               "expandDstIpLen" };

std::string secondsText( double s ) {
   std::ostringstream os;
   os << s;
   return os.str();
}

}  // namespace

std::vector< std::string > const& RandomChip::faultNames() {
   static std::vector< std::string > const names{ "tcam-full",   "commit-fails", "rule-refused",
                                                  "no-policers", "no-checkers",  "cbf-not-ready",
                                                  "async-stuck", "async-twice" };
   return names;
}

RandomChip::RandomChip( std::mt19937_64& random, TcamMode mode ) : mode_( mode ) {
   auto pick = [ & ]( std::size_t n ) {
      return std::size_t( std::uniform_int_distribution< std::size_t >( 0, n - 1 )( random ) );
   };
   auto chance = [ & ]( unsigned percent ) { return pick( 100 ) < percent; };
   auto set = [ & ]( std::string const& key, std::string const& value ) {
      settings_.emplace_back( key, value );
      byKey_[ key ] = value;
   };
   auto drawn = [ & ]( Pool const& p, unsigned smallPercent ) {
      return chance( smallPercent ) ? p.small[ pick( p.small.size() ) ] : p.roomy;
   };

   set( "tcamMode", asynchronous() ? "asynchronous" : "synchronous" );
   // In milliseconds, so that each time's text is as short as it reads.
   unsigned const delays[] = { 0, 1, 50, 300 };
   unsigned const delay = delays[ pick( 4 ) ];
   unsigned const timeouts[] = { delay + 10, delay + 500, 10000 };
   set( "asyncDelay", secondsText( delay / 1000.0 ) );
   set( "asyncTimeout", secondsText( timeouts[ pick( 3 ) ] / 1000.0 ) );

   bool const roomyChip = chance( 35 );
   for( Pool const& p : pools )
      set( p.key, std::to_string( roomyChip ? p.roomy : drawn( p, 50 ) ) );
   std::uint64_t const classLimits[] = { 1, 2, 3, 5, 256 };
   set( "maxClassesPerPolicyMap", std::to_string( classLimits[ pick( 5 ) ] ) );
   std::uint64_t const priorities[] = { 1, 2, 3, 65535 };
   set( "policyClassMaxPrio", std::to_string( priorities[ pick( 4 ) ] ) );
   std::uint64_t const tcpFlags[] = { 0, 0x02, 0x12, 0x3f, 0x3f };
   set( "supportedTcpFlags", std::to_string( tcpFlags[ pick( 5 ) ] ) );

   for( Flag const& f : flags ) {
      bool const on = chance( 25 ) ? !f.defaultOn : f.defaultOn;
      set( f.key, on ? "true" : "false" );
   }
   for( LimitPair const& l : limitPairs ) {
      switch( pick( 4 ) ) {
         case 0: {
            std::uint64_t const one = chance( 50 ) ? l.low : l.high;
            set( l.least, std::to_string( one ) );
            set( l.most, std::to_string( one ) );
            break;
         }
         case 1:
            set( l.least, "0" );
            set( l.most, "1" );
            break;
         default:
            set( l.least, std::to_string( l.low ) );
            set( l.most, std::to_string( l.high ) );
      }
   }
   for( Pool const& p : basicLimits )
      set( p.key, std::to_string( drawn( p, 30 ) ) );
   // Keys a review of class-based forwarding takes before it yields: small ones cut a review
   // into many runs.
   std::uint64_t const reviewQuanta[] = { 1, 2, 3, 100 };
   set( "cbfReviewQuantum", std::to_string( reviewQuanta[ pick( 4 ) ] ) );

   // The faults hold from before the first step, which switches them all off.
   std::vector< std::string > errors = rangeErrors;
   errors.insert( errors.end(), lengthErrors.begin(), lengthErrors.end() );
   char const* const families[] = { "ipv4", "ipv6", "mac" };
   unsigned const atEntries[] = { 0, 3, 20 };
   unsigned const nths[] = { 0, 1, 3 };
   faults_ =
         "[ { name: tcam-full, kind: outOfTcam, family: " + std::string( families[ pick( 3 ) ] ) +
         ", atEntries: " + std::to_string( atEntries[ pick( 3 ) ] ) +
         ", from: 0.5 }, { name: commit-fails, kind: operationError, op: commitAcl, from: 0.5 "
         "}, { name: rule-refused, kind: operationError, op: createIpAclSubrule, nth: " +
         std::to_string( nths[ pick( 3 ) ] ) + ", error: " + errors[ pick( errors.size() ) ] +
         ", from: 0.5 }, { name: no-policers, kind: policerExhaustion, from: 0.5 }, { name: "
         "no-checkers, kind: outOfRangeCheckers, from: 0.5 }, { name: cbf-not-ready, kind: "
         "cbfNotReady, from: 0.5 }, { name: async-stuck, kind: asyncPending, nth: " +
         std::to_string( 1 + pick( 60 ) ) +
         ", from: 0.5 }, { name: async-twice, kind: asyncRepeated, nth: " +
         std::to_string( 1 + pick( 60 ) ) + ", from: 0.5 } ]";

   // The helper's own answers, drawn last so that the draws above stay as they were; a list
   // left at none is left out.
   char const* const etherTypes[] = { "[ 0x800 ]", "[ 0x806 ]", "[ 0x86dd ]" };
   if( chance( 25 ) ) set( "unsupportedMacEtherTypes", etherTypes[ pick( 3 ) ] );
   char const* const managedTypes[] = { "[ qos ]", "[ qos, pdp, control-plane ]" };
   if( chance( 25 ) ) set( "managedPrioritySupported", managedTypes[ pick( 2 ) ] );
   for( char const* key :
        { "doVersionUpdate", "delaySviPmapSmCreation", "selfReportedPrgmStatus" } )
      set( key, chance( 25 ) ? "true" : "false" );
   char const* const groups[] = { "{ Ethernet2: g1 }", "{ Ethernet1: g1, Ethernet3: g2 }" };
   if( chance( 20 ) ) {
      char const* const group = groups[ pick( 2 ) ];
      if( !avoided( "policer-status-shared-by-acl-groups" ) ) set( "aclGroups", group );
   }
}

std::string RandomChip::text( bool withFaults ) const {
   std::string out = "{ ";
   for( auto const& [ key, value ] : settings_ )
      out += key + ": " + value + ", ";
   if( withFaults ) return out + "faults: " + faults_ + " }";
   return out.substr( 0, out.size() - 2 ) + " }";
}

std::string RandomChip::roomyText() const {
   std::string out = "{ ";
   for( auto const& [ key, value ] : settings_ ) {
      std::string v = value;
      for( Pool const& p : pools ) {
         if( key == p.key ) v = std::to_string( p.roomy );
      }
      out += key + ": " + v + ", ";
   }
   return out.substr( 0, out.size() - 2 ) + " }";
}

std::uint64_t RandomChip::number( std::string const& key ) const {
   return std::stoull( byKey_.at( key ) );
}

bool RandomChip::flag( std::string const& key ) const {
   return byKey_.at( key ) == "true";
}

bool RandomChip::roomy() const {
   for( Pool const& p : pools ) {
      if( tight( p.key ) ) return false;
   }
   return true;
}

bool RandomChip::tight( std::string const& key ) const {
   for( Pool const& p : pools ) {
      if( key == p.key ) return number( key ) < p.roomy;
   }
   throw std::logic_error( "no pool " + key );
}

double RandomChip::settleTime() const {
   return 0.9;
}

}  // namespace Sim
