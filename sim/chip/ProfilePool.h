// A finite pool of hardware profiles that users (transmit queues) share: users with equal
// settings point at one profile, counted by its users, and a profile is free again when its last
// user leaves. Settings are compared as text, which is also what a report shows.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>

namespace Sim {

class ProfilePool {
 public:
   struct Profile {
      std::string settings;
      std::set< std::string > users;
   };

   explicit ProfilePool( std::uint32_t size ) : size_( size ) {}

   std::uint32_t size() const { return size_; }
   std::uint32_t used() const { return static_cast< std::uint32_t >( profiles_.size() ); }
   // The profiles in use, by id (0 to size - 1).
   std::map< std::uint32_t, Profile > const& profiles() const { return profiles_; }
   std::optional< std::uint32_t > profileOf( std::string const& user ) const;

   // Points `user` at a profile holding `settings`: one with equal settings, the user's own
   // rewritten when nobody else uses it, or the free profile of the lowest id. False when a new
   // profile is needed and none is free; the user then keeps the profile it had.
   bool assign( std::string const& user, std::string const& settings );
   void release( std::string const& user );
   void clear() {
      profiles_.clear();
      users_.clear();
   }

 private:
   std::uint32_t size_;
   std::map< std::uint32_t, Profile > profiles_;
   std::map< std::string, std::uint32_t > users_;
};

}  // namespace Sim
