// The times a scenario may give: decimal, exactly as the clock holds them, up to 1e9 s. (The
// refusals, with their places in a file, are in ScenarioErrorsTest.)
#include <gtest/gtest.h>

#include "NevQos/sim/scenario/TextRules.h"

namespace {

TEST( TextRulesTest, TimesAreReadAsWrittenInAnyDecimalForm ) {
   struct Case {
      char const* text;
      double value;
   };
   for( Case const& c :
        { Case{ "60", 60 }, Case{ "0.25", 0.25 }, Case{ "1.50", 1.5 }, Case{ ".5", 0.5 },
          Case{ "1e5", 1e5 }, Case{ "1E+2", 100 }, Case{ "2.5e-3", 0.0025 }, Case{ "0.1", 0.1 },
          Case{ "1e9", 1e9 }, Case{ "0", 0 }, Case{ "0.000", 0 } } ) {
      Sim::SecondsText const s = Sim::secondsOf( c.text );
      EXPECT_EQ( s.problem, "" ) << c.text;
      EXPECT_EQ( s.value, c.value ) << c.text;
   }
   for( char const* bad : { "", ".", "1e", "e5", "1.2.3", "0x10", "inf", "+1", "1 ", "1000000000.5",
                            "0.30000000000000004441" } ) {
      EXPECT_NE( Sim::secondsOf( bad ).problem, "" ) << bad;
   }
}

TEST( TextRulesTest, ATextIsPrintableUtf8 ) {
   EXPECT_EQ( Sim::textProblem( "Ethernet1/1 \xc3\xa9\xe2\x82\xac" ), std::nullopt );
   EXPECT_EQ( Sim::textProblem( "a\xc2\x9f" ), "holds a control character (U+009F at byte 2)" );
   EXPECT_EQ( Sim::textProblem( "ab\xe2\x82" ), "is not UTF-8 (byte 0xe2 at byte 3)" );
}

}  // namespace
