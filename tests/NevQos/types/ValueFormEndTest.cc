// Every value type read from its value form takes the whole text: text after the value is
// refused, quoting it, rather than left unread.
#include <gtest/gtest.h>

#include <string>

#include "NevQos/platform/zub/Exception.h"
#include "NevQos/types/IntfUpdateCallbackData.h"
#include "NevQos/types/L2ParamsInfo.h"
#include "NevQos/types/QosClassDataKey.h"
#include "NevQos/types/QosClassMapKey.h"
#include "NevQos/types/QosPolicyMapKey.h"
#include "NevQos/types/TcpFlag.h"

namespace {

// What reading the value form of `value` followed by `tail` refuses, or "read back" when the
// text reads back as the value.
template< class T >
std::string readingOf( T const& value, std::string const& tail ) {
   std::string const text = valueToStrep( value ).stdString() + tail;
   try {
      return T( text.data(), text.data() + text.size() ) == value ? "read back" : "another value";
   } catch( Zub::ParseException const& e ) {
      return e.what();
   }
}

template< class T >
void expectWholeTextTaken( T const& value ) {
   EXPECT_EQ( readingOf( value, "" ), "read back" );
   EXPECT_EQ( readingOf( value, ", 7" ), "unexpected text after the value at ', 7'" );
}

TEST( ValueFormEndTest, TextAfterTheValueIsRefused ) {
   Nev::QosPolicyMapKey const pmap( "p", Qos::mapQos_, Qos::directionInput_, "g" );
   expectWholeTextTaken( pmap );
   expectWholeTextTaken( Nev::QosClassMapKey( Zub::Name( "c" ), Qos::mapPdp_ ) );
   expectWholeTextTaken( Nev::QosClassDataKey( pmap, "c", Qos::mapQos_, "pol" ) );
   expectWholeTextTaken( Nev::L2ParamsInfo( 100, 0xfff, 5, 7 ) );
   NevHelper::TcpFlag flags;
   flags.valueIs( 0x12 );
   expectWholeTextTaken( flags );
   expectWholeTextTaken( Nev::IntfUpdateCallbackData(
         Qos::IntfPairKey( Mirel::IntfId( "Ethernet1" ) ), Qos::directionOutput_ ) );
}

}  // namespace
