#include "entities/QosUnits.h"

#include <array>
#include <ostream>

#include "zub/Exception.h"

namespace Qos {

namespace {

// The texts of one unit type, indexed by value.
template <class E, std::size_t N>
struct UnitTexts {
   char const* typeName;
   std::array<std::string_view, N> texts;

   Zub::String text( E unit ) const {
      auto v = static_cast<std::uint32_t>( unit );
      if ( v < N ) return Zub::String( texts[v] );
      return Zub::valueToStrep( v );
   }

   E instance( std::string_view t ) const {
      for ( std::size_t i = 0; i < N; ++i ) {
         if ( texts[i] == t ) return static_cast<E>( i );
      }
      Zub::throwRangeException( Zub::String( typeName ) + "Instance: unknown text '" +
                                Zub::String( t ) + "'" );
   }

   void read( Zub::StrepIter& it, Zub::StrepIter end, E& out ) const {
      Zub::String t;
      Zub::deserializeAttr( it, end, t );
      out = instance( t.view() );
   }
};

constexpr UnitTexts<RateUnit, 4> rateUnitTexts{ "RateUnit", { "pps", "bps", "kbps", "mbps" } };
constexpr UnitTexts<BurstUnit, 4> burstUnitTexts{ "BurstUnit",
                                                  { "bytes", "kbytes", "mbytes", "packets" } };
constexpr UnitTexts<ShapeRateUnit, 2> shapeRateUnitTexts{ "ShapeRateUnit", { "kbps", "pps" } };
constexpr UnitTexts<GuaranteedBwUnit, 3> guaranteedBwUnitTexts{ "GuaranteedBwUnit",
                                                                { "kbps", "pps", "percent" } };

}  // namespace

Zub::String stringValue( RateUnit unit ) {
   return rateUnitTexts.text( unit );
}
Zub::String stringValue( BurstUnit unit ) {
   return burstUnitTexts.text( unit );
}
Zub::String stringValue( ShapeRateUnit unit ) {
   return shapeRateUnitTexts.text( unit );
}
Zub::String stringValue( GuaranteedBwUnit unit ) {
   return guaranteedBwUnitTexts.text( unit );
}

Zub::String valueToStrep( RateUnit unit ) {
   return Zub::valueToStrep( stringValue( unit ) );
}
Zub::String valueToStrep( BurstUnit unit ) {
   return Zub::valueToStrep( stringValue( unit ) );
}
Zub::String valueToStrep( ShapeRateUnit unit ) {
   return Zub::valueToStrep( stringValue( unit ) );
}
Zub::String valueToStrep( GuaranteedBwUnit unit ) {
   return Zub::valueToStrep( stringValue( unit ) );
}

std::ostream& operator<<( std::ostream& os, RateUnit unit ) {
   return os << stringValue( unit );
}
std::ostream& operator<<( std::ostream& os, BurstUnit unit ) {
   return os << stringValue( unit );
}
std::ostream& operator<<( std::ostream& os, ShapeRateUnit unit ) {
   return os << stringValue( unit );
}
std::ostream& operator<<( std::ostream& os, GuaranteedBwUnit unit ) {
   return os << stringValue( unit );
}

RateUnit RateUnitInstance( std::string_view text ) {
   return rateUnitTexts.instance( text );
}
BurstUnit BurstUnitInstance( std::string_view text ) {
   return burstUnitTexts.instance( text );
}
ShapeRateUnit ShapeRateUnitInstance( std::string_view text ) {
   return shapeRateUnitTexts.instance( text );
}
GuaranteedBwUnit GuaranteedBwUnitInstance( std::string_view text ) {
   return guaranteedBwUnitTexts.instance( text );
}

void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, RateUnit& out ) {
   rateUnitTexts.read( it, end, out );
}
void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, BurstUnit& out ) {
   burstUnitTexts.read( it, end, out );
}
void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, ShapeRateUnit& out ) {
   shapeRateUnitTexts.read( it, end, out );
}
void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, GuaranteedBwUnit& out ) {
   guaranteedBwUnitTexts.read( it, end, out );
}

}  // namespace Qos
