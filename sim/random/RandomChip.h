// A chip drawn from a seed: every capability flag and every limit of the reference chip's
// section, with the boundaries (0, 1, 2, a least limit equal to its most) drawn often, the
// asynchronous delay and time-out, the helper's own answers (refused MAC rules, ACL groups,
// managed priority, self-reported status), and the faults the random sequences switch on and off.
// One chip in three is roomy (every pool of the TCAM side large), so that the sequences can hold it
// to what a switch started afresh programs.
#pragma once

#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "NevQos/sim/chip/ChipConfig.h"

namespace Sim {

class RandomChip {
 public:
   // Names of the faults the chip declares, in order; all start switched off.
   static std::vector< std::string > const& faultNames();

   RandomChip( std::mt19937_64& random, TcamMode mode );

   // The chip section as a flow mapping: every key, with the faults or without.
   std::string text( bool withFaults ) const;
   // The same chip with every pool of the TCAM side large and no faults: what a switch started
   // afresh is compared with. It keeps the chip's mode, since the two roads serve different
   // policies (the asynchronous one no control-plane policy).
   std::string roomyText() const;

   // A key's value as drawn.
   std::uint64_t number( std::string const& key ) const;
   bool flag( std::string const& key ) const;
   bool asynchronous() const { return mode_ == TcamMode::asynchronous; }
   // Every pool of the TCAM side is large: no order of changes runs it out.
   bool roomy() const;
   // Whether the TCAM's slices, range checkers, policers, counters, CPU queues, CBF rules or
   // per-port CoPP policers may run out.
   bool tight( std::string const& key ) const;
   // The step time by which the asynchronous operations of one change have finished.
   double settleTime() const;

 private:
   TcamMode mode_;
   // Key to value as scenario text, in the order written.
   std::vector< std::pair< std::string, std::string > > settings_;
   std::map< std::string, std::string > byKey_;
   std::string faults_;
};

}  // namespace Sim
