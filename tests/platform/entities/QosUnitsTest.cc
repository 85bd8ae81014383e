#include "entities/QosUnits.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "zub/Exception.h"

namespace {

// Every member's text reads back as the member, in every form.
template< class E, class Lookup >
void expectTexts( std::initializer_list< char const* > texts, Lookup instance ) {
   std::uint32_t value = 0;
   for( char const* text : texts ) {
      SCOPED_TRACE( text );
      auto const unit = static_cast< E >( value++ );
      EXPECT_EQ( stringValue( unit ), text );
      EXPECT_EQ( instance( text ), unit );
      std::ostringstream os;
      os << unit;
      EXPECT_EQ( os.str(), text );

      Zub::String const strep = valueToStrep( unit );
      EXPECT_EQ( strep, Zub::String( "'" ) + text + "'" );
      E back{};
      Zub::StrepIter it = strep.begin();
      deserializeAttr( it, strep.end(), back );
      EXPECT_EQ( back, unit );
      EXPECT_EQ( it, strep.end() );
   }
   EXPECT_THROW( instance( "furlongs" ), Zub::RangeException );
   EXPECT_THROW( instance( "" ), Zub::RangeException );
}

TEST( QosUnitsTest, TextsRoundTrip ) {
   expectTexts< Qos::RateUnit >( { "pps", "bps", "kbps", "mbps" },
                                 []( auto t ) { return Qos::RateUnitInstance( t ); } );
   expectTexts< Qos::BurstUnit >( { "bytes", "kbytes", "mbytes", "packets" },
                                  []( auto t ) { return Qos::BurstUnitInstance( t ); } );
   expectTexts< Qos::ShapeRateUnit >( { "kbps", "pps" },
                                      []( auto t ) { return Qos::ShapeRateUnitInstance( t ); } );
   expectTexts< Qos::GuaranteedBwUnit >( { "kbps", "pps", "percent" }, []( auto t ) {
      return Qos::GuaranteedBwUnitInstance( t );
   } );
   // The percent unit of guaranteed bandwidth has no shape-rate counterpart.
   EXPECT_THROW( Qos::ShapeRateUnitInstance( "percent" ), Zub::RangeException );
}

}  // namespace
