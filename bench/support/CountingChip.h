// A chip for the benchmarks: the recording decorator in its counting mode, over a helper that
// holds nothing and gives fixed answers, so that a figure is the engine's own work. The counts
// are the decorator's counts by operation; the wrapped helper overrides only what must answer
// otherwise than the contract's defaults, so that the programs do not lean on NEV_NOOP_AGENT.
//
// Two range modes: `accept` takes every subrule as it comes; `expand` has no range checker, so a
// port range that is not one block is refused once and comes back as the product of its blocks.
// In the asynchronous mode every commit, destroy and port update completes on the next turn of
// the loop, with success.
#pragma once

#include <cstdint>

#include "NevQos/helpers/QosAclHelper.h"
#include "NevQos/sim/recording/RecordingQosAclHelper.h"

namespace Bench {

enum class Mode { accept, expand };

char const* modeName( Mode mode );

// What the engine asked of the chip.
struct Counts {
   std::uint64_t accepted = 0;    // IP subrules the chip took
   std::uint64_t refused = 0;     // first attempts refused for want of a range checker
   std::uint64_t fragments = 0;   // fragment entries
   std::uint64_t otherRules = 0;  // default, VLAN and DSCP entries
   std::uint64_t portUpdates = 0;
   std::uint64_t policers = 0;  // live: created less destroyed
   std::uint64_t counters = 0;  // live
   std::uint64_t asyncOperations = 0;
   std::uint64_t counterQueries = 0;
   bool operator==( Counts const& ) const = default;
};

class CountingChip : public Sim::RecordingQosAclHelper {
 public:
   CountingChip( Zub::Ptr< Qos::Status const > qosStatus,
                 Zub::Ptr< Qos::AclSliceHwStatus > sliceHwStatus,
                 Zub::Ptr< Acl::Config const > aclConfig, Mode mode, bool async );
   ~CountingChip() override;
   // A synchronous chip over entities of its own, for a baseline that calls it directly.
   static Zub::Ptr< CountingChip > detached( Mode mode );

   // The counts since the chip was made or last forgotten.
   Counts counts() const;
   void countsForget();

 private:
   class Answers;
   Answers& answers() const;
   bool const async_;
};

}  // namespace Bench
