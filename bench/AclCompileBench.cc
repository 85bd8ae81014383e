// The IP ACL compile of the policy engine beside a bare loop over the same rules. The engine
// compiles a whole ClassBench set as the one access group of class c1 of policy map "gold", on
// the synchronous road, into a chip whose every operation is a counter; the baseline makes the
// same subrule and fragment calls on the same chip straight from the rules, with no machine and
// no entity in between. So the ratio is what the engine adds to the work any compiler must do.
//
// Two chips: `accept` takes every subrule as it comes; `expand` has no range checker, so a port
// range that is not one block is refused once and comes back as the product of its blocks.
//
// What one engine iteration times: the creation of the service policy of "gold" on Ethernet1,
// which builds the map's machines and compiles every rule inside the setters. Its deletion, and
// the loop turns after each step, run with the timer paused. We chose this over bumping the
// versions, which would time the teardown of the previous compile too.
#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "NevQos/platform/nev/AclFragMap.h"
#include "NevQos/platform/nev/AclIpRuleCreateData.h"
#include "NevQos/sim/classbench/ClassBench.h"
#include "NevQos/types/QosClassData.h"
#include "bench/support/BenchAgent.h"

namespace {

using Bench::Agent;
using Bench::AgentOptions;
using Bench::CountingChip;
using Bench::Counts;
using Bench::fail;
using Bench::Mode;
using Bench::modeName;
using Rules = std::vector< Acl::IpRuleConfig >;
using std::uint16_t;
using std::uint32_t;
using std::uint8_t;

// Parsed once per set: the reader is not what is measured.
Rules const& rulesOf( std::string const& set ) {
   static std::map< std::string, Rules > cache;
   auto it = cache.find( set );
   if( it == cache.end() ) {
      it = cache.emplace( set, Sim::readClassBench( NEVQOS_CLASSBENCH_DIR "/" + set ) ).first;
   }
   return it->second;
}

// True when low..high is one aligned value/mask block: a size that is a power of two, and a low
// end on a multiple of it.
bool oneBlock( unsigned low, unsigned high ) {
   unsigned const size = high - low + 1;
   return ( size & ( size - 1 ) ) == 0 && low % size == 0;
}

// The subrules that need a range checker: each is refused once by the `expand` chip.
std::uint64_t rangeCheckerSubrules( Rules const& rules ) {
   std::uint64_t n = 0;
   for( auto const& r : rules ) {
      std::array< std::pair< uint16_t, uint16_t >, 11 > src;
      std::array< std::pair< uint16_t, uint16_t >, 11 > dst;
      unsigned const srcs = r.filter.srcPort.ranges( src );
      unsigned const dsts = r.filter.dstPort.ranges( dst );
      for( unsigned s = 0; s < srcs; ++s ) {
         for( unsigned d = 0; d < dsts; ++d ) {
            n += !oneBlock( src[ s ].first, src[ s ].second ) ||
                 !oneBlock( dst[ d ].first, dst[ d ].second );
         }
      }
   }
   return n;
}

// What a whole compile of `rules` must reach, worked out from the rules alone.
Counts expectedCounts( Rules const& rules, Mode mode ) {
   Counts c;
   // Every ClassBench rule plans to one subrule: one range per dimension, one flag variant.
   c.accepted = mode == Mode::accept ? rules.size() : Sim::portBlockProduct( rules );
   c.refused = mode == Mode::accept ? 0 : rangeCheckerSubrules( rules );
   c.fragments = Sim::fragmentEntries( rules, false );
   return c;
}

std::string textOf( Counts const& c ) {
   return std::to_string( c.accepted ) + " subrules accepted, " + std::to_string( c.refused ) +
          " refused, " + std::to_string( c.fragments ) + " fragment entries";
}

// Aborts unless a compile reached the expected entries.
void checkCounts( char const* who, Counts const& got, Counts const& want, Mode mode ) {
   if( got.accepted == want.accepted && got.refused == want.refused &&
       got.fragments == want.fragments ) {
      return;
   }
   fail( std::string( who ) + " in " + modeName( mode ) + " mode: " + textOf( got ) +
         "; expected " + textOf( want ) );
}

// Aborts unless every timed iteration compiled the whole list.
void checkIterations( char const* who, benchmark::State const& state, Counts const& got,
                      Counts const& want, Mode mode ) {
   auto const n = static_cast< std::uint64_t >( state.iterations() );
   Counts const all{ want.accepted * n, want.refused * n, want.fragments * n };
   checkCounts( who, got, all, mode );
}

// Rules and subrules per second, and the checked entries of one compile beside them.
void countersIs( benchmark::State& state, std::size_t rules, Counts const& compile ) {
   auto const iterations = static_cast< double >( state.iterations() );
   state.SetItemsProcessed( static_cast< std::int64_t >( state.iterations() * rules ) );
   state.counters[ "subrules_per_second" ] = benchmark::Counter(
         iterations * static_cast< double >( compile.accepted ), benchmark::Counter::kIsRate );
   state.counters[ "subrules" ] = static_cast< double >( compile.accepted );
   state.counters[ "refused" ] = static_cast< double >( compile.refused );
   state.counters[ "fragments" ] = static_cast< double >( compile.fragments );
}

// ---- The engine

constexpr char const* aclName = "acl1";

// "gold": class c1 matching the whole list, and class-default; its service policy on Ethernet1
// is what compiles it.
class Gold {
 public:
   Gold( Rules const& rules, Mode mode ) : agent_( AgentOptions{ .mode = mode } ) {
      agent_.ipAclIs( aclName, rules );
      agent_.classMapIs( "c1" )
            ->matchIs( Qos::matchOptionIpAcl )
            ->strValueIs( Zub::String( aclName ) );
      agent_.classIs( "gold", "c1" );
      agent_.classDefaultIs( "gold" );
   }
   // The service policy of "gold" on Ethernet1: the engine compiles the map in the setters.
   void apply() { agent_.intfIs( "gold", Agent::ethernet( 1 ), true ); }
   // Deletes the service policy, and the compile with it.
   void unapply() { agent_.servicePolicyDel( "gold" ); }
   Agent& agent() { return agent_; }

 private:
   Agent agent_;
};

void engineCompile( benchmark::State& state, std::string const& set, Mode mode ) {
   Rules const& rules = rulesOf( set );
   Counts const want = expectedCounts( rules, mode );
   Gold gold( rules, mode );
   Agent& agent = gold.agent();
   // One compile outside the timing shows that an iteration compiles every rule.
   gold.apply();
   agent.settle();
   checkCounts( "the engine", agent.chip().counts(), want, mode );
   agent.checkProgrammed( "gold" );
   gold.unapply();
   agent.settle();
   agent.chip().countsForget();
   for( auto _ : state ) {
      gold.apply();
      state.PauseTiming();
      agent.settle();
      gold.unapply();
      agent.settle();
      state.ResumeTiming();
   }
   checkIterations( "the engine's timed iterations", state, agent.chip().counts(), want, mode );
   countersIs( state, rules.size(), want );
}

// A new version of "gold" while it is applied: the engine tears the compile down and makes it
// again, inside the setters. Its baseline is the first compile of the same list.
void engineRecompile( benchmark::State& state, std::string const& set, Mode mode ) {
   Rules const& rules = rulesOf( set );
   Counts const want = expectedCounts( rules, mode );
   Gold gold( rules, mode );
   Agent& agent = gold.agent();
   gold.apply();
   agent.settle();
   agent.chip().countsForget();
   for( auto _ : state ) {
      agent.newVersionIs( "gold" );
      state.PauseTiming();
      agent.settle();
      state.ResumeTiming();
   }
   checkIterations( "the engine's recompiles", state, agent.chip().counts(), want, mode );
   agent.checkProgrammed( "gold" );
   countersIs( state, rules.size(), want );
}

// ---- The baseline

// One side of a subrule call, chosen as IpAclCompiler chooses it: a range of one block goes as
// value and mask, any other with mask 0 and its bounds.
struct Field {
   uint16_t value = 0;
   uint16_t mask = 0;
   uint16_t low = 0;
   uint16_t high = 0;
};

using Entry = Nev::AclIpRuleCreateData_::Entry;

Field fieldOf( Nev::AclIpRuleCreateData_::Range const& range, std::vector< Entry > const& masks ) {
   uint16_t const mask = masks.size() == 1 ? masks.front().mask : 0;
   return Field{ range.first, mask, range.first, range.second };
}

// The bare compiler: the rules straight from a vector, the chip's operations as the only calls.
class BareCompiler {
 public:
   BareCompiler( NevHelper::QosAclHelper& chip, Nev::QosPolicyMapState const& pmapState,
                 Nev::QosClassData const& classData, Nev::AclKey const& aclKey )
       : chip_( chip ), pmapState_( pmapState ), classData_( classData ), aclKey_( aclKey ) {}

   void compile( Rules const& rules );

 private:
   struct Target {
      Acl::IpRuleConfig const& rule;
      Acl::UniqueId id;
      uint32_t ruleNum;
      uint8_t tcpFlags;
      bool l4Rule;
      uint8_t ecnData;
      uint8_t ecnMask;
   };
   Nev::AclCreateError call( Target const& t, Field const& src, Field const& dst, Field const& len,
                             uint32_t subruleNum ) {
      return chip_.createIpAclSubrule(
            Acl::ip(), t.rule, t.id, pmapState_, classData_, aclKey_, t.ruleNum, subruleNum,
            src.value, src.mask, dst.value, dst.mask, src.low, src.high, dst.low, dst.high,
            len.value, len.mask, len.low, len.high, t.tcpFlags, t.l4Rule, t.ecnData, t.ecnMask );
   }
   uint32_t subrules( Acl::IpRuleConfig const& rule, Acl::UniqueId id, uint32_t ruleNum,
                      Nev::AclIpRuleCreateData_ const& data );
   uint32_t expanded( Target const& t, std::vector< Entry > const& srcs,
                      std::vector< Entry > const& dsts, Field const& len, uint32_t subruleNum );
   void fragments( Acl::IpRuleConfig const& rule, Acl::UniqueId id, uint32_t ruleNum,
                   uint32_t subruleNum, bool l4Rule );

   NevHelper::QosAclHelper& chip_;
   Nev::QosPolicyMapState const& pmapState_;
   Nev::QosClassData const& classData_;
   Nev::AclKey const& aclKey_;
   std::map< uint8_t, std::set< Nev::AclFragInfo > > fragMaps_;
};

void BareCompiler::compile( Rules const& rules ) {
   fragMaps_.clear();
   for( uint32_t ruleNum = 0; ruleNum < rules.size(); ++ruleNum ) {
      Acl::IpRuleConfig const& rule = rules[ ruleNum ];
      Acl::UniqueId const id( ruleNum + 1 );
      Nev::AclIpRuleCreateData_ data;
      Nev::createIpAclRuleData( rule.filter, data, false, false );
      uint32_t const next = subrules( rule, id, ruleNum, data );
      fragments( rule, id, ruleNum, next, data.l4Rule );
   }
}

// The five loops of the engine; returns the next subrule number.
uint32_t BareCompiler::subrules( Acl::IpRuleConfig const& rule, Acl::UniqueId id, uint32_t ruleNum,
                                 Nev::AclIpRuleCreateData_ const& data ) {
   uint32_t subruleNum = 0;
   for( auto ecn = data.ecnRules.ecnRules().iter(); ecn; ++ecn ) {
      for( unsigned s = 1; s <= data.srcPortCount; ++s ) {
         Field const src = fieldOf( data.srcPortRange[ s ], data.srcPortMasks[ s ] );
         for( unsigned d = 1; d <= data.dstPortCount; ++d ) {
            Field const dst = fieldOf( data.dstPortRange[ d ], data.dstPortMasks[ d ] );
            for( unsigned t = 1; t <= data.tcpFlagCount; ++t ) {
               Target const target{ rule,        id,        ruleNum,    data.tcpFlag[ t ],
                                    data.l4Rule, ecn.key(), ecn.value() };
               for( unsigned l = 1; l <= data.ipLenCount; ++l ) {
                  Field const len = fieldOf( data.ipLenRange[ l ], data.ipLenMasks[ l ] );
                  Nev::AclCreateError const error = call( target, src, dst, len, subruleNum );
                  if( error == Nev::aclCreateErrorNone ) {
                     ++subruleNum;
                  } else if( error == Nev::aclCreateErrorTooManyL4PortRanges ) {
                     subruleNum = expanded( target, data.srcPortMasks[ s ], data.dstPortMasks[ d ],
                                            len, subruleNum );
                  } else {
                     fail( "the chip refused a subrule of the baseline" );
                  }
               }
            }
         }
      }
   }
   return subruleNum;
}

// The refused subrule as source blocks times destination blocks, numbered on from it.
uint32_t BareCompiler::expanded( Target const& t, std::vector< Entry > const& srcs,
                                 std::vector< Entry > const& dsts, Field const& len,
                                 uint32_t subruleNum ) {
   for( Entry const& s : srcs ) {
      for( Entry const& d : dsts ) {
         Field const src{ s.value, s.mask, s.value, s.high };
         Field const dst{ d.value, d.mask, d.value, d.high };
         if( call( t, src, dst, len, subruleNum ) != Nev::aclCreateErrorNone ) {
            fail( "the chip refused a block of the baseline" );
         }
         ++subruleNum;
      }
   }
   return subruleNum;
}

// At most one fragment entry per layer-3 match and protocol of the layer-4 rules; a
// fragments-only rule stands in for that entry in the maps that exist.
void BareCompiler::fragments( Acl::IpRuleConfig const& rule, Acl::UniqueId id, uint32_t ruleNum,
                              uint32_t subruleNum, bool l4Rule ) {
   Acl::IpFilter const& filter = rule.filter;
   Nev::AclFragInfo const info( filter );
   if( filter.fragments ) {
      if( l4Rule ) return;
      for( auto& [ proto, infos ] : fragMaps_ ) {
         if( filter.proto == 0 || proto == filter.proto ) infos.insert( info );
      }
      return;
   }
   if( !l4Rule ) return;
   auto const map = fragMaps_.find( filter.proto );
   if( filter.vlanMask == 0 && map != fragMaps_.end() &&
       ( map->second.contains( info ) || map->second.contains( Nev::AclFragInfo() ) ) ) {
      return;
   }
   // Without ECN support the one entry is (0, 0).
   if( chip_.createIpFragRule( pmapState_, classData_, aclKey_, rule, id, ruleNum, subruleNum, 0,
                               0 ) != Nev::aclCreateErrorNone ) {
      fail( "the chip refused a fragment entry of the baseline" );
   }
   fragMaps_[ filter.proto ].insert( info );
}

void engineCompileBaseline( benchmark::State& state, std::string const& set, Mode mode ) {
   Rules const& rules = rulesOf( set );
   Counts const want = expectedCounts( rules, mode );
   auto chip = CountingChip::detached( mode );
   Nev::QosPolicyMapKey const pmapKey( Zub::Name( "gold" ), Qos::mapQos_, Qos::directionInput_,
                                       NevHelper::QosAclHelper::defaultAclGroup() );
   auto const pmapState = chip->pmapStateIs( pmapKey );
   auto const classData = Zub::make< Nev::QosClassData >(
         Nev::QosClassDataKey( pmapKey, Zub::Name( "c1" ), Qos::mapQos_ ) );
   Nev::AclKey const aclKey( Zub::Name( aclName ), Acl::ip() );
   // Through the base, hidden from the optimiser: a virtual call, as the engine makes it. The
   // pointer is const, so that the barrier only reads it: GCC at -O3 lost the pointer behind the
   // read-write form of this benchmark library's barrier.
   NevHelper::QosAclHelper* const sink = chip.ptr();
   benchmark::DoNotOptimize( sink );
   BareCompiler compiler( *sink, *pmapState, *classData, aclKey );
   compiler.compile( rules );
   checkCounts( "the baseline", chip->counts(), want, mode );
   chip->countsForget();
   for( auto _ : state ) {
      compiler.compile( rules );
      benchmark::ClobberMemory();
   }
   checkIterations( "the baseline's timed iterations", state, chip->counts(), want, mode );
   countersIs( state, rules.size(), want );
}

// BM_EngineCompile/<set>/<mode> beside BM_EngineCompileBaseline/<set>/<mode>, as the report
// pairs them.
bool const registered = [] {
   for( char const* set : { "acl1_10k", "fw1_10k", "ipc1_10k" } ) {
      for( Mode mode : { Mode::accept, Mode::expand } ) {
         std::string const args = std::string( "/" ) + set + "/" + modeName( mode );
         benchmark::RegisterBenchmark( ( "BM_EngineCompile" + args ).c_str(), engineCompile,
                                       std::string( set ), mode )
               ->Unit( benchmark::kMillisecond );
         benchmark::RegisterBenchmark( ( "BM_EngineCompileBaseline" + args ).c_str(),
                                       engineCompileBaseline, std::string( set ), mode )
               ->Unit( benchmark::kMillisecond );
      }
   }
   benchmark::RegisterBenchmark( "BM_EngineRecompile/acl1_10k/accept", engineRecompile,
                                 std::string( "acl1_10k" ), Mode::accept )
         ->Unit( benchmark::kMillisecond );
   benchmark::RegisterBenchmark( "BM_EngineRecompileBaseline/acl1_10k/accept", engineCompile,
                                 std::string( "acl1_10k" ), Mode::accept )
         ->Unit( benchmark::kMillisecond );
   return true;
}();

}  // namespace
