// An agent in miniature for the benchmarks, built as the engine's own tests build theirs: every
// input entity, the counting chip, an event loop, the policy engine started, and the system log
// kept so that a benchmark can refuse a run that logged. A policy map is configured through the
// few operations below, written as the configuration agents write them.
#pragma once

#include <string>
#include <vector>

#include "NevQos/platform/entities/AclRuleConfig.h"
#include "NevQos/platform/zub/ActivityManager.h"
#include "NevQos/policy/QosAclSm.h"
#include "bench/support/CountingChip.h"

namespace Bench {

// Aborts the program with `what`: a benchmark whose work went wrong has no figure to give.
[[noreturn]] void fail( std::string const& what );

struct AgentOptions {
   Mode mode = Mode::accept;
   bool async = false;
   // Real time, for a benchmark of the pass budget; otherwise simulated time.
   bool realTime = false;
   // Ethernet1 to EthernetN exist.
   unsigned interfaces = 1;
   unsigned maxClassesPerPolicyMap = 16;
};

// "c7" and the like. Built by appending: GCC's optimiser misreads `"c" + std::to_string( i )`.
std::string named( char const* prefix, unsigned i );

// Matches of a class map on one VLAN, one COS, one DSCP, or an IP access list by name.
void vlanMatchIs( Qos::ClassMapStatus& cmap, std::uint16_t vlan );
void cosMatchIs( Qos::ClassMapStatus& cmap, std::uint8_t cos );
void dscpMatchIs( Qos::ClassMapStatus& cmap, unsigned dscp );
void aclMatchIs( Qos::ClassMapStatus& cmap, std::string const& acl );
// A single-rate policer of 1000 kbps and 10000 bytes that drops what violates.
Zub::Ptr< Qos::PolicerConfig > policerOf( std::string const& name );

class Agent;

// The policy map of the interface churn: 63 classes and class-default, class i matching access
// list i (four ClassBench rules), VLAN 100 + i or DSCP i mod 64 by turns, each with a policer of
// its own on every interface.
constexpr unsigned policedClasses = 63;
void policedMapIs( Agent& agent, std::string const& pmap );

class Agent {
 public:
   explicit Agent( AgentOptions const& options );
   ~Agent();
   Agent( Agent const& ) = delete;
   Agent& operator=( Agent const& ) = delete;

   static Qos::IntfPairKey ethernet( unsigned n );
   static Qos::ServicePolicyKey spKey( std::string const& pmap );

   // ---- Configuration

   // An IP access list with the rules in order, sequence 10, 20, ...
   void ipAclIs( std::string const& name, std::vector< Acl::IpRuleConfig > const& rules );
   // A class map; the caller adds its matches.
   Zub::Ptr< Qos::ClassMapStatus > classMapIs( std::string const& name );
   // Appends class `cmap` to the policy map, below the classes it has.
   Zub::Ptr< Qos::ClassAction > classIs( std::string const& pmap, std::string const& cmap );
   // The class-default class, with one match of no kind, and its action.
   void classDefaultIs( std::string const& pmap );
   // The service policy of `pmap` on the interface, or off it.
   void intfIs( std::string const& pmap, Qos::IntfPairKey const& intf, bool applied );
   void servicePolicyDel( std::string const& pmap );
   // A new version of the policy map: the engine recompiles it.
   void newVersionIs( std::string const& pmap );
   // A counter request of a client, at the loop's time.
   void counterRequestIs();

   // ---- Running

   // Runs the loop until nothing is scheduled.
   void settle() { loop_->runUntilIdle(); }
   Zub::ActivityManager& loop() { return *loop_; }
   CountingChip& chip() { return *chip_; }
   Nev::QosAclSm& engine() { return *sm_; }
   Qos::AclSliceHwStatus const& aclSliceHwStatus() const { return *qosAclSliceHwStatus_; }
   // Aborts on any system log line, or unless `pmap` is reported programmed.
   void checkProgrammed( std::string const& pmap ) const;
   void checkNoLog() const;

 private:
   void inputsIs( AgentOptions const& options );

   Zub::Ptr< Zub::ActivityManager > loop_;
   Zub::Ptr< Nev::NevCommonSmData > ncsd_;
   Zub::Ptr< Qos::CounterConfig > cliCounterConfig_;
   Zub::Ptr< Zub::Dir > counterConfigDir_;
   Zub::Ptr< Qos::CounterConfig > counterClient_;
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

}  // namespace Bench
