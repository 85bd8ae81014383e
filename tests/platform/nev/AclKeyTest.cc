#include "NevQos/platform/nev/AclKey.h"

#include <gtest/gtest.h>

namespace {

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
