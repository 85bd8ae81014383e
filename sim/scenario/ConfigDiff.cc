#include "NevQos/sim/scenario/ConfigDiff.h"

#include <algorithm>
#include <iterator>

namespace Sim {

namespace {

// Keys of `after` that `before` lacks or holds with another value.
template< class Map >
std::vector< typename Map::key_type > changedKeys( Map const& before, Map const& after ) {
   std::vector< typename Map::key_type > keys;
   for( auto const& [ key, value ] : after ) {
      auto const it = before.find( key );
      if( it == before.end() || !( it->second == value ) ) keys.push_back( key );
   }
   return keys;
}

template< class Map >
std::vector< typename Map::key_type > removedKeys( Map const& before, Map const& after ) {
   std::vector< typename Map::key_type > keys;
   for( auto const& [ key, value ] : before ) {
      if( !after.contains( key ) ) keys.push_back( key );
   }
   return keys;
}

template< class T >
void addAll( std::vector< T >& into, std::vector< T > const& from ) {
   for( T const& v : from ) {
      if( std::find( into.begin(), into.end(), v ) == into.end() ) into.push_back( v );
   }
}

// The class maps whose compile changes: changed themselves, or matching a changed list.
std::vector< ConfigModel::MapKey > recompiledClassMaps( ConfigModel const& after,
                                                        ConfigDiff const& diff ) {
   auto cmaps = diff.classMaps;
   for( auto const& acl : diff.acls )
      addAll( cmaps, after.classMapsUsing( acl ) );
   return cmaps;
}

// Named policers whose sharing changed: it decides how many copies a class has.
std::vector< std::string > resharedPolicers( ConfigModel const& before, ConfigModel const& after ) {
   std::vector< std::string > names;
   for( auto const& [ name, policer ] : after.namedPolicers() ) {
      auto const it = before.namedPolicers().find( name );
      if( it != before.namedPolicers().end() && it->second.shared != policer.shared ) {
         names.push_back( name );
      }
   }
   return names;
}

std::vector< std::string > movedParams( ConfigModel const& before, ConfigModel const& after ) {
   std::vector< std::string > names;
   for( auto const& [ name, policer ] : after.namedPolicers() ) {
      auto const it = before.namedPolicers().find( name );
      if( it != before.namedPolicers().end() && !( it->second.rates == policer.rates ) ) {
         names.push_back( name );
      }
   }
   return names;
}

}  // namespace

ConfigDiff diffOf( ConfigModel const& before, ConfigModel const& after ) {
   ConfigDiff diff;
   diff.acls = changedKeys( before.acls(), after.acls() );
   diff.classMaps = changedKeys( before.classMaps(), after.classMaps() );
   diff.namedPolicers = changedKeys( before.namedPolicers(), after.namedPolicers() );
   diff.policerParamsMoved = movedParams( before, after );
   diff.policyMaps = changedKeys( before.policyMaps(), after.policyMaps() );
   for( auto const& cmap : recompiledClassMaps( after, diff ) )
      addAll( diff.policyMaps, after.policyMapsUsingClassMap( cmap ) );
   for( auto const& name : resharedPolicers( before, after ) )
      addAll( diff.policyMaps, after.policyMapsUsingPolicer( name ) );
   std::sort( diff.policyMaps.begin(), diff.policyMaps.end() );

   std::set_difference( after.interfaces().begin(), after.interfaces().end(),
                        before.interfaces().begin(), before.interfaces().end(),
                        std::back_inserter( diff.interfacesAdded ) );
   std::set_difference( before.interfaces().begin(), before.interfaces().end(),
                        after.interfaces().begin(), after.interfaces().end(),
                        std::back_inserter( diff.interfacesRemoved ) );
   diff.aclsRemoved = removedKeys( before.acls(), after.acls() );
   diff.classMapsRemoved = removedKeys( before.classMaps(), after.classMaps() );
   diff.namedPolicersRemoved = removedKeys( before.namedPolicers(), after.namedPolicers() );
   diff.policyMapsRemoved = removedKeys( before.policyMaps(), after.policyMaps() );
   diff.servicePoliciesRemoved = removedKeys( before.servicePolicies(), after.servicePolicies() );
   return diff;
}

}  // namespace Sim
