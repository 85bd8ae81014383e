#include "NevQos/platform/zub/Entity.h"

#include <cstring>
#include <mutex>
#include <unordered_map>
#include <vector>

#include "NevQos/platform/zub/Assert.h"

namespace Zub {

namespace {

// The texts of the attributes that hold children, by number; number 0 is none. A program has a
// few dozen, each registered once by the accessor that makes its children.
struct AttrNames {
   std::mutex lock;
   std::vector< char const* > texts{ nullptr };
};

AttrNames& attrNames() {
   static auto* const names = new AttrNames();
   return *names;
}

// The names of the entities that were given one or asked for theirs.
struct KeptNames {
   std::mutex lock;
   std::unordered_map< Entity const*, String > byEntity;
};

KeptNames& keptNames() {
   static auto* const names = new KeptNames();
   return *names;
}

}  // namespace

Entity::~Entity() {
   if( !ownFlag( namedFlag ) ) return;
   KeptNames& names = keptNames();
   std::lock_guard const hold( names.lock );
   names.byEntity.erase( this );
}

String const& Entity::keptName() const {
   KeptNames& names = keptNames();
   std::lock_guard const hold( names.lock );
   return names.byEntity.find( this )->second;
}

String const& Entity::nameIs( String const& name ) const {
   KeptNames& names = keptNames();
   std::lock_guard const hold( names.lock );
   String const& kept = names.byEntity.insert_or_assign( this, name ).first->second;
   ownFlagIs( namedFlag, true );
   return kept;
}

std::uint32_t Entity::attrNumberOf( char const* attrName ) {
   if( !attrName ) return 0;
   AttrNames& names = attrNames();
   std::lock_guard const hold( names.lock );
   for( std::size_t i = 1; i < names.texts.size(); ++i ) {
      if( std::strcmp( names.texts[ i ], attrName ) == 0 ) return static_cast< std::uint32_t >( i );
   }
   ZUB_ASSERT_TEXT( names.texts.size() <= ownFieldLimit, "attribute names fit the flag word" );
   names.texts.push_back( attrName );
   return static_cast< std::uint32_t >( names.texts.size() - 1 );
}

Name Entity::parentAttrName() const {
   std::uint32_t const number = ownField();
   if( number == 0 ) return Name( "" );
   AttrNames& names = attrNames();
   std::lock_guard const hold( names.lock );
   return Name( names.texts[ number ] );
}

String Entity::fullName() const {
   if( !parent_ ) return name();
   return parent_->fullName() + "/" + parentAttrName().str() + "/" + name();
}

}  // namespace Zub
