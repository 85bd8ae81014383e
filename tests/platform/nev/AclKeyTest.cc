#include "nev/AclKey.h"

#include <gtest/gtest.h>

#include "support/OneAtATime.h"

namespace {

TEST( AclKeyTest, BuiltFromNameAndTypeUsesTheDefaultGroup ) {
   Nev::AclKey k( "vlan-acl-10", Acl::ipv6() );
   EXPECT_EQ( k.aclGroup(), Zub::Name( "aclGroupDefault" ) );
   EXPECT_EQ( k, Nev::AclKey( "vlan-acl-10", Acl::ipv6(), "aclGroupDefault" ) );
   EXPECT_EQ( k.index(), 0u );
   EXPECT_TRUE( !Nev::AclKey() );
   EXPECT_FALSE( !k );
}

TEST( AclKeyTest, HashFeedsTheFieldsInItsOwnOrder ) {
   Nev::AclKey k( "acl1", Acl::ipv6(), 0x01020304u, 0xaa, 0xbb, "grp" );
   std::vector< std::uint8_t > bytes;
   TypesTest::appendLe( bytes, Zub::stringHash( "acl1" ), 4 );
   TypesTest::appendLe( bytes, 1, 4 );
   bytes.push_back( 0xaa );
   bytes.push_back( 0xbb );
   TypesTest::appendLe( bytes, 0x01020304u, 4 );
   TypesTest::appendLe( bytes, Zub::stringHash( "grp" ), 4 );
   EXPECT_EQ( k.hash(), TypesTest::oneAtATime( bytes ) );
   // The two 8-bit fields are not interchangeable.
   EXPECT_NE( k.hash(), Nev::AclKey( "acl1", Acl::ipv6(), 0x01020304u, 0xbb, 0xaa, "grp" ).hash() );
}

TEST( AclKeyTest, OrderAndTextForm ) {
   Nev::AclKey a( "acl1", Acl::ipv6() ), b( "acl2", Acl::ip() );
   EXPECT_LT( a, b );
   EXPECT_LT( Nev::AclKey( "acl1", Acl::ip() ), a );
   EXPECT_LT( Nev::AclKey( "acl1", Acl::ipv6(), 0, 0, 0, "aclGroupDefault" ),
              Nev::AclKey( "acl1", Acl::ipv6(), 1, 0, 0, "a" ) );
   Nev::AclKey c( "it's", Acl::mac(), 7, 1, 2, "g" );
   Zub::String text = valueToStrep( c );
   EXPECT_EQ( text,
              "Value('Nev::AclKey', ** {'aclName': 'it\\'s', 'aclType': 'mac', 'index': 7, "
              "'chip': 1, 'stage': 2, 'aclGroup': 'g'})" );
   EXPECT_EQ( Nev::AclKey( text.begin(), text.end() ), c );
}

}  // namespace
