#include "NevQos/sim/chip/ProfilePool.h"

namespace Sim {

std::optional< std::uint32_t > ProfilePool::profileOf( std::string const& user ) const {
   auto const it = users_.find( user );
   if( it == users_.end() ) return std::nullopt;
   return it->second;
}

bool ProfilePool::assign( std::string const& user, std::string const& settings ) {
   std::optional< std::uint32_t > const held = profileOf( user );
   if( held && profiles_.at( *held ).settings == settings ) return true;
   for( auto& [ id, profile ] : profiles_ ) {
      if( profile.settings != settings ) continue;
      release( user );
      profile.users.insert( user );
      users_[ user ] = id;
      return true;
   }
   if( held && profiles_.at( *held ).users.size() == 1 ) {
      profiles_.at( *held ).settings = settings;
      return true;
   }
   for( std::uint32_t id = 0; id < size_; ++id ) {
      if( profiles_.contains( id ) ) continue;
      release( user );
      profiles_[ id ] = Profile{ settings, { user } };
      users_[ user ] = id;
      return true;
   }
   return false;
}

void ProfilePool::release( std::string const& user ) {
   auto const it = users_.find( user );
   if( it == users_.end() ) return;
   auto const profile = profiles_.find( it->second );
   profile->second.users.erase( user );
   if( profile->second.users.empty() ) profiles_.erase( profile );
   users_.erase( it );
}

}  // namespace Sim
