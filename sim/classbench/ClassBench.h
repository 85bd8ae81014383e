// ClassBench filter sets as IPv4 permit rules, for tests and benchmarks that need large, realistic
// access lists, and the entry counts a compile of such a list should reach, worked out from the
// rules alone so that they check the compiler rather than repeat it.
//
// A line of a set, tab separated:
//    @SRC_PREFIX  DST_PREFIX  SRC_LO : SRC_HI  DST_LO : DST_HI  0xPROTO/0xMASK  0xFLAGS/0xMASK
#pragma once

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <string>
#include <vector>

#include "NevQos/platform/entities/AclConfig.h"
#include "NevQos/platform/entities/AclRuleConfig.h"
#include "NevQos/platform/zub/Ptr.h"

namespace Sim {

// One permit rule per line, in file order. Throws Zub::ParseException on the first bad line, its
// what() being "<fileName>:<line>: <problem>"; nothing is skipped.
std::vector< Acl::IpRuleConfig > parseClassBench( std::istream& in, std::string const& fileName );
// The same for a file, named in messages as `path` is written; an unreadable file throws too.
std::vector< Acl::IpRuleConfig > readClassBench( std::filesystem::path const& path );

// The rules as one published version of a list: sequence numbers 10, 20, 30, ... and ids 1, 2,
// 3, ... in the order given.
Zub::Ptr< Acl::AclRuleSet > aclRuleSetOf( std::vector< Acl::IpRuleConfig > const& rules,
                                          unsigned version );

// The sum over rules of the aligned value/mask blocks covering the source port condition times
// those covering the destination port condition: the entries of a compile that spends no range
// checker. The whole port space is one block.
std::uint64_t portBlockProduct( std::vector< Acl::IpRuleConfig > const& rules );

// The rules with a source or destination port condition.
std::size_t rulesWithPortCondition( std::vector< Acl::IpRuleConfig > const& rules );

// The fragment-permit entries a compile adds: one set per layer-3 match (addresses, masks, ECN)
// and protocol of the layer-4 rules, unless an earlier rule of that protocol already lets the
// fragments of that match, or of every match, through. Each set has one entry per ECN entry of
// the rule.
std::uint64_t fragmentEntries( std::vector< Acl::IpRuleConfig > const& rules, bool qosEcnSupport );

}  // namespace Sim
