// The text report's writing of names and times: nothing breaks a line, nothing is rounded.
#include <gtest/gtest.h>

#include "NevQos/sim/runner/TextFormat.h"

namespace {

TEST( TextFormatTest, ControlCharactersAreEscapedAndTheRestKept ) {
   EXPECT_EQ( Sim::printableText( "a\nb\tc\rd" ), "a\\nb\\tc\\rd" );
   EXPECT_EQ( Sim::printableText( std::string( "\x01x\x7f", 3 ) ), "\\x01x\\x7f" );
   EXPECT_EQ( Sim::printableText( std::string( "\0", 1 ) ), "\\x00" );
   // C1 controls are two bytes of UTF-8; other letters of those bytes stay.
   EXPECT_EQ( Sim::printableText( "\xc2\x85|\xc2\xa0|\xc3\xa9 \xe2\x82\xac \xf0\x9f\x93\xa1" ),
              "\\u0085|\xc2\xa0|\xc3\xa9 \xe2\x82\xac \xf0\x9f\x93\xa1" );
   EXPECT_EQ( Sim::printableText( "\xff" ), "\\xff" );
   EXPECT_EQ( Sim::printable( nlohmann::ordered_json( "Ethernet1\n" ) ), "Ethernet1\\n" );
}

TEST( TextFormatTest, TimesKeepEveryDigitTheyHave ) {
   EXPECT_EQ( Sim::timeText( 4.0 ), "4.000" );
   EXPECT_EQ( Sim::timeText( 0.001 ), "0.001" );
   EXPECT_EQ( Sim::timeText( 0.0005 ), "0.0005" );
   EXPECT_EQ( Sim::timeText( 12.3456789 ), "12.3456789" );
   EXPECT_EQ( Sim::timeText( 0.1 + 0.2 ), "0.30000000000000004" );
   EXPECT_EQ( Sim::timeText( 1e9 ), "1000000000.000" );
   EXPECT_EQ( Sim::timeColumn( 1.5 ), "    1.500" );
   EXPECT_EQ( Sim::timeColumn( 123456.25 ), "123456.250" );
}

}  // namespace
