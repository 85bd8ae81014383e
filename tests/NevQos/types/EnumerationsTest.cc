#include <gtest/gtest.h>

#include <sstream>

#include "NevQos/platform/zub/Exception.h"
#include "NevQos/types/AclCreateError.h"
#include "NevQos/types/CbfFecMappingUpdateStatus.h"
#include "NevQos/types/QosPMapAclTypes.h"

namespace {

TEST( EnumerationsTest, AclCreateErrorTexts ) {
   struct Case {
      Nev::AclCreateError error;
      char const* text;
   } const cases[] = {
      { Nev::aclCreateErrorNone, "Succeeded" },
      { Nev::aclCreateErrorOutOfTcam, "Out of TCAM entries" },
      { Nev::aclCreateErrorTooManyL4PortRanges, "Too many L4 port ranges" },
      { Nev::aclCreateErrorExpandIpLen, "Unknown error" },
      { Nev::aclCreateErrorExpandDst, "Unknown error" },
      { Nev::aclCreateErrorTooManyAcls, "Too many ACLs" },
      { Nev::aclCreateErrorUnsupportedAction, "Unsupported Acl action" },
      { Nev::aclCreateErrorPolicerExhausted, "Unknown error" },
      { static_cast< Nev::AclCreateError >( 1 ), "Unknown error" },
      { static_cast< Nev::AclCreateError >( 99 ), "Unknown error" },
   };
   for( auto const& c : cases ) {
      EXPECT_EQ( Nev::aclCreateErrorText( c.error ), c.text ) << unsigned( c.error );
   }
   EXPECT_EQ( Nev::AclCreateErrorInstance( stringValue( Nev::aclCreateErrorRuleIgnored ) ),
              Nev::aclCreateErrorRuleIgnored );
}

TEST( EnumerationsTest, NamesRoundTripAndStream ) {
   for( auto t : { Nev::ipv4Only, Nev::ipv6Only, Nev::ipv4v6Both } ) {
      EXPECT_EQ( Nev::QosPMapAclTypesInstance( stringValue( t ) ), t );
   }
   for( auto s : { NevHelper::cbfMapUpdateSuccess, NevHelper::cbfMapUpdateNotReady,
                   NevHelper::cbfMapUpdateFailed } ) {
      EXPECT_EQ( NevHelper::CbfFecMappingUpdateStatusInstance( stringValue( s ) ), s );
   }
   std::ostringstream os;
   os << Nev::ipv4v6Both << ' ' << NevHelper::cbfMapUpdateNotReady;
   EXPECT_EQ( os.str(), "ipv4v6Both cbfMapUpdateNotReady" );
   EXPECT_EQ( valueToStrep( Nev::ipv6Only ), "'ipv6Only'" );
   EXPECT_THROW( Nev::QosPMapAclTypesInstance( "ipv4only" ), Zub::RangeException );
}

}  // namespace
