#include "NevQos/types/TcpFlag.h"

#include <gtest/gtest.h>

#include <string>

#include "NevQos/platform/zub/Exception.h"

namespace {

using NevHelper::TcpFlag;

TEST( TcpFlagTest, ValuesAboveSixBitsAreRefused ) {
   try {
      TcpFlag f( 0x40 );
      ADD_FAILURE() << "no range error for " << f.value();
   } catch( Zub::RangeException const& e ) {
      EXPECT_STREQ( e.what(), "TcpFlag::value > 0x3f not allowed" );
   }
   TcpFlag f( TcpFlag::syn_ );
   EXPECT_THROW( f.valueIs( 0x1ff ), Zub::RangeException );
   EXPECT_EQ( f.value(), TcpFlag::syn_ );
}

TEST( TcpFlagTest, ValueFormRoundTrips ) {
   TcpFlag f( TcpFlag::syn_ | TcpFlag::ack_ | TcpFlag::urg_ );
   Zub::String text = valueToStrep( f );
   EXPECT_EQ( text,
              "Value('NevHelper::QosAclHelper::TcpFlag', ** {'fin': False, 'syn': True, "
              "'rst': False, 'psh': False, 'ack': True, 'urg': True})" );
   EXPECT_EQ( TcpFlag( text.begin(), text.end() ), f );
   std::string bad = text.stdString();
   bad.replace( bad.find( "'rst': False" ), 12, "'rst': 1" );
   EXPECT_THROW( TcpFlag( bad.data(), bad.data() + bad.size() ), Zub::ParseException );
}

}  // namespace
