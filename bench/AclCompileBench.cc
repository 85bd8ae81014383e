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
#include <cstdio>
#include <cstdlib>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "NevQos/classes/QosClassData.h"
#include "NevQos/helpers/QosAclHelper.h"
#include "NevQos/policy/QosAclSm.h"
#include "nev/AclFragMap.h"
#include "nev/AclIpRuleCreateData.h"
#include "sim/classbench/ClassBench.h"
#include "zub/ActivityManager.h"
#include "zub/Log.h"

namespace {

using Rules = std::vector< Acl::IpRuleConfig >;
using std::uint16_t;
using std::uint32_t;
using std::uint8_t;

enum class Mode { accept, expand };

char const* modeName( Mode mode ) {
   return mode == Mode::accept ? "accept" : "expand";
}

[[noreturn]] void fail( std::string const& what ) {
   std::fprintf( stderr, "AclCompileBench: %s\n", what.c_str() );
   std::abort();
}

// Parsed once per set: the reader is not what is measured.
Rules const& rulesOf( std::string const& set ) {
   static std::map< std::string, Rules > cache;
   auto it = cache.find( set );
   if( it == cache.end() ) {
      it = cache.emplace( set, Sim::readClassBench( NEVQOS_CLASSBENCH_DIR "/" + set ) ).first;
   }
   return it->second;
}

// A port field that only a range checker matches: no mask, and not the whole port space.
bool needsChecker( uint16_t mask, uint16_t low, uint16_t high ) {
   return mask == 0 && !( low == 0 && high == 0xffff );
}

struct Counts {
   std::uint64_t accepted = 0;  // subrules the chip took
   std::uint64_t refused = 0;   // first attempts refused for want of a range checker
   std::uint64_t fragments = 0;
};

// The chip: each operation the engine calls on the synchronous road, as a counter or a fixed
// answer, so that the figure is the engine's own work. The overrides are explicit so that the
// program does not lean on NEV_NOOP_AGENT.
class CountingChip : public NevHelper::QosAclHelper {
 public:
   CountingChip( Zub::Ptr< Qos::Status const > qosStatus,
                 Zub::Ptr< Qos::AclSliceHwStatus > sliceHwStatus,
                 Zub::Ptr< Acl::Config const > aclConfig, Mode mode )
       : QosAclHelper( std::move( qosStatus ), std::move( sliceHwStatus ), std::move( aclConfig ) )
       , mode_( mode ) {}

   Counts counts;

   Nev::AclCreateError createIpAclSubrule( Acl::AclType, Acl::RuleConfig const&,
                                           Acl::UniqueId const&, Nev::QosPolicyMapState const&,
                                           Nev::QosClassData const&, Nev::AclKey const&, uint32_t,
                                           uint32_t, uint16_t, uint16_t srcMask, uint16_t,
                                           uint16_t dstMask, uint16_t srcLow, uint16_t srcHigh,
                                           uint16_t dstLow, uint16_t dstHigh, uint16_t, uint16_t,
                                           uint16_t, uint16_t, uint8_t, bool, uint8_t,
                                           uint8_t ) override {
      if( mode_ == Mode::expand && ( needsChecker( srcMask, srcLow, srcHigh ) ||
                                     needsChecker( dstMask, dstLow, dstHigh ) ) ) {
         ++counts.refused;
         return Nev::aclCreateErrorTooManyL4PortRanges;
      }
      ++counts.accepted;
      return Nev::aclCreateErrorNone;
   }
   Nev::AclCreateError createIpFragRule( Nev::QosPolicyMapState const&, Nev::QosClassData const&,
                                         Nev::AclKey const&, Acl::IpRuleConfig const&,
                                         Acl::UniqueId const&, uint32_t, uint32_t, uint8_t,
                                         uint8_t ) override {
      ++counts.fragments;
      return Nev::aclCreateErrorNone;
   }
   Nev::AclCreateError createDefaultRule( Nev::QosPolicyMapState const&, Nev::QosClassData const&,
                                          Qos::ClassMapMatchOption, Nev::AclKey const& ) override {
      return Nev::aclCreateErrorNone;
   }
   Nev::AclCreateError precreateAcl( Nev::QosPolicyMapState const&, Nev::QosClassData const&,
                                     Qos::ClassMapMatchOption, Nev::AclKey const& ) override {
      return Nev::aclCreateErrorNone;
   }
   Nev::AclCreateError commitAcl( Nev::QosClassData const&, Qos::ClassMapMatchOption,
                                  Nev::AclKey const& ) override {
      return Nev::aclCreateErrorNone;
   }
   void updatePortForAcl( Nev::QosPolicyMapState const&, Nev::QosClassData const&,
                          Qos::ClassMapMatchOption, Nev::AclKey const&, Qos::IntfPairKey const&,
                          bool ) override {}
   void destroyAcl( Nev::QosPolicyMapState const&, Nev::QosClassData const&,
                    Qos::ClassMapMatchOption, Nev::AclKey const& ) override {}
   void cleanupAcl( Nev::QosPolicyMapState const&, Nev::QosClassData const&,
                    Qos::ClassMapMatchOption, Nev::AclKey const& ) override {}
   void prepareToCommit() override {}
   void batchCommitAcls( Nev::QosPolicyMapState const& ) override {}
   void batchCommitAclsIntf( Nev::QosPolicyMapState const&, Qos::IntfPairKey const&,
                             bool ) override {}
   Zub::Name aclGroup( Qos::IntfPairKey const&, Qos::ServicePolicyKey const& ) override {
      return defaultAclGroup();
   }
   bool createSmForPMap( Nev::QosPolicyMapState const& ) override { return true; }
   bool managedPrioritySupported( Qos::MapType ) override { return false; }
   bool isMacAclRuleSupportedPlatform() override { return false; }
   bool delaySviPmapSmCreation() override { return false; }
   void cleanupForPMap( Nev::QosPolicyMapKey const& ) override {}
   void hwInit() override {}
   void handleRoutedPortSubIntfAclSharing() override {}
   void updatePolicer( Zub::Name const& ) override {}
   void createAndAttachCounter( Nev::QosClassData const& ) override {}
   void destroyCounter( Nev::QosClassData const& ) override {}

 private:
   Mode const mode_;
};

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

bool operator==( Counts const& a, Counts const& b ) {
   return a.accepted == b.accepted && a.refused == b.refused && a.fragments == b.fragments;
}

std::string textOf( Counts const& c ) {
   return std::to_string( c.accepted ) + " subrules accepted, " + std::to_string( c.refused ) +
          " refused, " + std::to_string( c.fragments ) + " fragment entries";
}

// Aborts unless a compile reached the expected entries.
void checkCounts( char const* who, Counts const& got, Counts const& want, Mode mode ) {
   if( got == want ) return;
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

// An agent in miniature, built as the engine's own tests build theirs: every input entity, the
// chip, a simulated-time loop, the engine started, and "gold" published without its service
// policy.
class Agent {
 public:
   Agent( Rules const& rules, Mode mode );
   ~Agent();

   // The service policy of "gold" on Ethernet1: the engine compiles the map in the setters.
   void apply() { qosStatus_->servicePolicyStatusIs( spKey() )->intfIdsIs( ethernet1(), true ); }
   // Deletes the service policy, and the compile with it.
   void unapply() { qosStatus_->servicePolicyStatusDel( spKey() ); }
   // Lets the loop serve what the last step scheduled (status, verification).
   void settle() { loop_->runUntil( loop_->now() + 10.0 ); }
   CountingChip& chip() { return *chip_; }
   // Aborts on any system log line, or unless "gold" is reported programmed: a clean compile
   // writes no log and succeeds.
   void checkClean() const;

 private:
   static Qos::ServicePolicyKey spKey() {
      return Qos::ServicePolicyKey( Qos::mapQos_, Qos::directionInput_, Zub::Name( "gold" ) );
   }
   static Qos::IntfPairKey ethernet1() {
      return Qos::IntfPairKey( Mirel::IntfId( "Ethernet1" ), Mirel::IntfId() );
   }
   void inputsIs();
   void goldIs( Rules const& rules );

   Zub::Ptr< Zub::ActivityManager > loop_;
   Zub::Ptr< Nev::NevCommonSmData > ncsd_;
   Zub::Ptr< Qos::CounterConfig > cliCounterConfig_;
   Zub::Ptr< Zub::Dir > counterConfigDir_;
   Zub::Ptr< Qos::Status > qosStatus_;
   Zub::Ptr< Qos::HwStatus > qosHwStatus_;
   Zub::Ptr< Zub::Dir > qosSliceHwStatusDir_;
   Zub::Ptr< Qos::AclHwStatus > qosAclHwStatus_;
   Zub::Ptr< Qos::AclSliceHwStatus > qosAclSliceHwStatus_;
   Zub::Ptr< Interface::SubIntfStatusDir > subIntfStatusDir_;
   Zub::Ptr< Qos::Input::Config > pdpHwCfg_;
   Zub::Ptr< HwEpoch::Status > hwEpochStatus_;
   Zub::Ptr< Acl::Config > mainAclConfig_;
   Zub::Ptr< CountingChip > chip_;
   Zub::Ptr< Nev::QosAclSm > sm_;
   std::vector< std::string > logs_;
};

Agent::Agent( Rules const& rules, Mode mode ) {
   loop_ = Zub::ActivityManager::create( Zub::ActivityManager::TimeSource::simulated, 100.0 );
   Zub::activityManagerIs( loop_ );
   Zub::logSinkIs( [ this ]( Zub::LogRecord const& r ) {
      logs_.push_back( r.handle->name().stdString() + ": " + r.text.stdString() );
   } );
   inputsIs();
   chip_ = Zub::make< CountingChip >( qosStatus_, qosAclSliceHwStatus_, mainAclConfig_, mode );
   chip_->asyncTcamOperationsSupportedIs( false );
   sm_ = Nev::QosAclSmIs( ncsd_, cliCounterConfig_, counterConfigDir_, qosStatus_, qosHwStatus_,
                          qosSliceHwStatusDir_, qosAclHwStatus_, qosAclSliceHwStatus_,
                          subIntfStatusDir_, pdpHwCfg_, hwEpochStatus_, mainAclConfig_, chip_,
                          Zub::make< Kesh::TimerWheel >(), nullptr, nullptr, nullptr );
   loop_->runOnce();
   if( !sm_->initialized() ) fail( "the engine did not start" );
   goldIs( rules );
}

Agent::~Agent() {
   sm_->zubDoZombieReactors( true );
   sm_ = nullptr;
   Zub::logSinkIs( nullptr );
   Zub::activityManagerIs( nullptr );
}

void Agent::inputsIs() {
   ncsd_ = Zub::make< Nev::NevCommonSmData >( Zub::Name( "ncsd" ) );
   ncsd_->verifyDataIs( Zub::make< Nev::VerifyData >( Zub::Name( "verify" ) ) );
   ncsd_->intfIs( Mirel::IntfId( "Ethernet1" ), true );
   ncsd_->intfsReadyIs( true );
   cliCounterConfig_ = Zub::make< Qos::CounterConfig >( Zub::Name( "cli" ) );
   counterConfigDir_ = Zub::make< Zub::Dir >( Zub::Name( "counterConfig" ) );
   qosStatus_ = Zub::make< Qos::Status >( Zub::Name( "qos" ) );
   qosHwStatus_ = Zub::make< Qos::HwStatus >( Zub::Name( "hw" ) );
   qosSliceHwStatusDir_ = Zub::make< Zub::Dir >( Zub::Name( "slice" ) );
   auto slice = Zub::make< Qos::SliceHwStatus >( Zub::Name( "FixedSystem" ) );
   slice->maxClassesPerPolicyMapIs( 16 );
   qosSliceHwStatusDir_->entityPtrIs( Zub::Name( "FixedSystem" ), slice );
   qosAclHwStatus_ = Zub::make< Qos::AclHwStatus >( Zub::Name( "aclHw" ) );
   qosAclHwStatus_->policyQosSupportedIs( true );
   qosAclHwStatus_->policyClassMaxPrioIs( 100 );
   qosAclSliceHwStatus_ = Zub::make< Qos::AclSliceHwStatus >( Zub::Name( "aclSlice" ) );
   subIntfStatusDir_ = Zub::make< Interface::SubIntfStatusDir >( Zub::Name( "subIntf" ) );
   pdpHwCfg_ = Zub::make< Qos::Input::Config >( Zub::Name( "pdp" ) );
   hwEpochStatus_ = Zub::make< HwEpoch::Status >( Zub::Name( "epoch" ) );
   mainAclConfig_ = Zub::make< Acl::Config >( Zub::Name( "acl" ) );
}

// The list, class map c1 matching it, class c1 and class-default in "gold".
void Agent::goldIs( Rules const& rules ) {
   mainAclConfig_->configIs( Acl::ip() )
         ->aclIs( Zub::Name( aclName ) )
         ->currCfgIs( Sim::aclRuleSetOf( rules, 1 ) );
   auto cmaps = qosStatus_->cmapTypeIs( Qos::mapQos_ );
   cmaps->cmapIs( Zub::Name( "c1" ) )
         ->matchIs( Qos::matchOptionIpAcl )
         ->strValueIs( Zub::String( aclName ) );
   auto pmap = qosStatus_->pmapTypeIs( Qos::mapQos_ )->pmapIs( Zub::Name( "gold" ) );
   pmap->classPrioIs( 1, Qos::ClassPriority( Zub::Name( "c1" ) ) );
   pmap->classActionIs( Zub::Name( "c1" ) );
   // The default class has one match of no kind: it catches what c1 leaves.
   auto classDefault = cmaps->cmapIs( Zub::Name( "class-default" ) );
   classDefault->matchIs( Qos::matchOptionNone )->strValueIs( Zub::String( "" ) );
   pmap->classDefaultIs( classDefault );
   pmap->classActionDefaultIs( Zub::make< Qos::ClassAction >( Zub::Name( "class-default" ) ) );
}

void Agent::checkClean() const {
   if( !logs_.empty() ) fail( "the compile logged: " + logs_.front() );
   auto const type = qosAclSliceHwStatus_->pmapType( Qos::mapQos_ );
   auto const gold =
         type ? type->pmap( Qos::PolicyMapHwStatusKey( Qos::directionInput_, Zub::Name( "gold" ) ) )
              : nullptr;
   if( !gold || gold->prgmStatus() != Qos::hwPrgmStatusSuccess_ ) {
      fail( "the engine did not report \"gold\" programmed" );
   }
}

void engineCompile( benchmark::State& state, std::string const& set, Mode mode ) {
   Rules const& rules = rulesOf( set );
   Counts const want = expectedCounts( rules, mode );
   Agent agent( rules, mode );
   // One compile outside the timing shows that an iteration compiles every rule.
   agent.apply();
   agent.settle();
   checkCounts( "the engine", agent.chip().counts, want, mode );
   agent.checkClean();
   agent.unapply();
   agent.settle();
   agent.chip().counts = Counts();
   for( auto _ : state ) {
      agent.apply();
      state.PauseTiming();
      agent.settle();
      agent.unapply();
      agent.settle();
      state.ResumeTiming();
   }
   checkIterations( "the engine's timed iterations", state, agent.chip().counts, want, mode );
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
   auto chip = Zub::make< CountingChip >( Zub::make< Qos::Status >( Zub::Name( "qos" ) ),
                                          Zub::make< Qos::AclSliceHwStatus >( Zub::Name( "s" ) ),
                                          Zub::make< Acl::Config >( Zub::Name( "acl" ) ), mode );
   Nev::QosPolicyMapKey const pmapKey( Zub::Name( "gold" ), Qos::mapQos_, Qos::directionInput_,
                                       NevHelper::QosAclHelper::defaultAclGroup() );
   auto const pmapState = chip->pmapStateIs( pmapKey );
   auto const classData = Zub::make< Nev::QosClassData >(
         Nev::QosClassDataKey( pmapKey, Zub::Name( "c1" ), Qos::mapQos_ ) );
   Nev::AclKey const aclKey( Zub::Name( aclName ), Acl::ip() );
   // Through the base, hidden from the optimiser: a virtual call, as the engine makes it.
   NevHelper::QosAclHelper* sink = chip.ptr();
   benchmark::DoNotOptimize( sink );
   BareCompiler compiler( *sink, *pmapState, *classData, aclKey );
   compiler.compile( rules );
   checkCounts( "the baseline", chip->counts, want, mode );
   chip->counts = Counts();
   for( auto _ : state ) {
      compiler.compile( rules );
      benchmark::ClobberMemory();
   }
   checkIterations( "the baseline's timed iterations", state, chip->counts, want, mode );
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
   return true;
}();

}  // namespace
