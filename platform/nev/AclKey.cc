#include "NevQos/platform/nev/AclKey.h"

#include <ostream>
#include <utility>

#include "NevQos/platform/zub/Assert.h"
#include "NevQos/platform/zub/Format.h"

namespace Nev {

Zub::Name const& AclKey::defaultAclGroup() {
   static Zub::Name const group( "aclGroupDefault" );
   return group;
}

AclKey::AclKey( Zub::Name aclName, Acl::AclType aclType )
    : AclKey( std::move( aclName ), aclType, 0, 0, 0, defaultAclGroup() ) {}

AclKey::AclKey( Zub::Name aclName, Acl::AclType aclType, Zub::Name aclGroup )
    : AclKey( std::move( aclName ), aclType, 0, 0, 0, std::move( aclGroup ) ) {}

AclKey::AclKey( Zub::Name aclName, Acl::AclType aclType, std::uint32_t index, std::uint8_t chip,
                std::uint8_t stage, Zub::Name aclGroup )
    : aclName_( std::move( aclName ) )
    , aclGroup_( std::move( aclGroup ) )
    , index_( index )
    , aclType_( static_cast< std::uint8_t >( aclType ) )
    , chip_( chip )
    , stage_( stage ) {
   ZUB_ASSERT( aclType_ == aclType );
}

AclKey::AclKey( char const* begin, char const* end ) : AclKey() {
   Zub::StrepIter it = begin;
   deserializeAttr( it, end, *this );
   ValueText::needEnd( it, end );
}

std::uint32_t AclKey::hash() const noexcept {
   return Zub::ByteHash()
         .addLe( aclName_.hash(), 4 )
         .addLe( aclType_, 4 )
         .addLe( chip_, 1 )
         .addLe( stage_, 1 )
         .addLe( index_, 4 )
         .addLe( aclGroup_.hash(), 4 )
         .result();
}

std::strong_ordering AclKey::operator<=>( AclKey const& o ) const noexcept {
   if( auto c = aclName_ <=> o.aclName_; c != 0 ) return c;
   if( auto c = ValueText::compareEnum( aclType(), o.aclType() ); c != 0 ) return c;
   if( auto c = index_ <=> o.index_; c != 0 ) return c;
   if( auto c = chip_ <=> o.chip_; c != 0 ) return c;
   if( auto c = stage_ <=> o.stage_; c != 0 ) return c;
   return aclGroup_ <=> o.aclGroup_;
}

Zub::String valueToStrep( AclKey const& k ) {
   return Zub::String( "Value('Nev::AclKey', ** {'aclName': " ) + Zub::valueToStrep( k.aclName() ) +
          ", 'aclType': " + valueToStrep( k.aclType() ) +
          ", 'index': " + Zub::valueToStrep( k.index() ) +
          ", 'chip': " + Zub::valueToStrep( k.chip() ) +
          ", 'stage': " + Zub::valueToStrep( k.stage() ) +
          ", 'aclGroup': " + Zub::valueToStrep( k.aclGroup() ) + "})";
}

std::ostream& operator<<( std::ostream& os, AclKey const& k ) {
   return os << valueToStrep( k );
}

void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, AclKey& out ) {
   Zub::Name aclName, aclGroup;
   Acl::AclType aclType = Acl::ip();
   std::uint32_t index = 0;
   std::uint8_t chip = 0, stage = 0;
   Zub::needString( it, end, "Value('Nev::AclKey', ** {" );
   Zub::deserializeField( it, end, "aclName", aclName, true );
   Zub::deserializeField( it, end, "aclType", aclType, false );
   Zub::deserializeField( it, end, "index", index, false );
   Zub::deserializeField( it, end, "chip", chip, false );
   Zub::deserializeField( it, end, "stage", stage, false );
   Zub::deserializeField( it, end, "aclGroup", aclGroup, false );
   Zub::needString( it, end, "})" );
   out = AclKey( aclName, aclType, index, chip, stage, aclGroup );
}

}  // namespace Nev
