// The reference chip's TCAM: one slice per ACL family, each of a fixed number of entries, holding
// the value/mask entries of the ACLs installed in it; and the pool of range checkers that port
// and length ranges take when they do not fit one value/mask pair. Entries take their slot when
// written, so a full slice refuses the entry that does not fit; an ACL's slots and checkers come
// free together when the ACL is destroyed.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace Sim {

// One field of an entry, as text: "proto" = "6", "dstPort" = "80/0xffff", "dstPort" =
// "range 1000-2000 (checker 3)".
using TcamField = std::pair< std::string, std::string >;

struct TcamEntry {
   std::string kind;  // "ip", "ipFrag", "default", "l2", "dscpEcn", "mpls", "mac", "builtIn"
   std::uint32_t ruleNum = 0;
   std::uint32_t subruleNum = 0;
   std::vector< TcamField > fields;
   // The configured rule an IP entry comes from (its unique id); 0 for the others.
   std::uint64_t ruleId = 0;

   // The text of field `name`, null when the entry has no such field.
   std::string const* field( std::string const& name ) const;
};

// A port or length range that needs a checker: the dimension and its bounds.
struct RangeNeed {
   std::string dimension;  // "src", "dst", "len"
   std::uint16_t low = 0;
   std::uint16_t high = 0;
   auto operator<=>( RangeNeed const& ) const = default;
};

class Tcam {
 public:
   using AclId = std::string;  // the owner class and the ACL key, as text

   struct Acl {
      std::string slice;
      std::vector< TcamEntry > entries;
      std::vector< RangeNeed > checkers;  // held, one reference each
      bool committed = false;
      // Entries came in ascending (ruleNum, subruleNum), as compiles write them: lookups search.
      bool ordered = true;
   };
   struct Slice {
      std::uint32_t size = 0;
      std::uint32_t used = 0;
   };

   Tcam( std::uint32_t sliceEntries, std::uint32_t rangeCheckers );

   // Opens the ACL in its slice; an ACL opened again starts over, its entries freed.
   void open( AclId const& id, std::string const& slice );
   bool has( AclId const& id ) const { return acls_.contains( id ); }
   // False when the slice is full, or when `limit` entries are already used in it.
   bool add( AclId const& id, TcamEntry entry, std::optional< std::uint32_t > limit = {} );
   void commit( AclId const& id );
   // Frees the ACL's entries and checkers; nothing for an ACL not open.
   void destroy( AclId const& id );
   // The first entry of the ACL with these numbers, or null.
   TcamEntry const* entry( AclId const& id, std::uint32_t ruleNum, std::uint32_t subruleNum ) const;
   // Damages an entry behind its owner's back: field `name` takes `value` (a field the entry
   // lacks is added), or, without a name, the entry is lost with its slot. False when there is no
   // such entry.
   bool corrupt( AclId const& id, std::uint32_t ruleNum, std::uint32_t subruleNum,
                 std::string const& name, std::string const& value );
   // Puts an entry its owner never wrote into the ACL, as a fault of the hardware would, in the
   // place its numbers give it, passing for an entry of the rule of its number; it takes a slot.
   // False when there is no such ACL, when it holds an entry of those numbers already, or when the
   // slice is full.
   bool plant( AclId const& id, TcamEntry entry );

   // Takes a checker for each need the ACL does not hold yet, sharing a checker with any ACL
   // holding the same range. Nothing is taken unless all fit: the needs without a checker are
   // returned.
   std::vector< RangeNeed > acquire( AclId const& id, std::vector< RangeNeed > const& needs );
   // Empties the pool: later needs find no checker (a fault).
   void rangeCheckersExhaustedIs( bool exhausted ) { checkersExhausted_ = exhausted; }

   std::map< AclId, Acl > const& acls() const { return acls_; }
   std::map< std::string, Slice > const& slices() const { return slices_; }
   std::uint32_t rangeCheckers() const { return rangeCheckers_; }
   std::uint32_t rangeCheckersUsed() const {
      return static_cast< std::uint32_t >( checkerRefs_.size() );
   }

 private:
   void release( Acl& acl );

   std::map< std::string, Slice > slices_;
   std::map< AclId, Acl > acls_;
   std::uint32_t rangeCheckers_;
   std::map< RangeNeed, std::uint32_t > checkerRefs_;
   bool checkersExhausted_ = false;
};

}  // namespace Sim
