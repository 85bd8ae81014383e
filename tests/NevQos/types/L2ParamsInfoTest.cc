#include "NevQos/types/L2ParamsInfo.h"

#include <gtest/gtest.h>

#include <string>

#include "NevQos/platform/zub/Exception.h"

namespace {

using Nev::L2ParamsInfo;

TEST( L2ParamsInfoTest, ValueFormRoundTrips ) {
   L2ParamsInfo p( 4094, 0xffff, 255, 7 );
   Zub::String text = valueToStrep( p );
   EXPECT_EQ( text,
              "Value('Nev::L2ParamsInfo', ** {'vlan': 4094, 'vlanMask': 65535, 'cos': 255, "
              "'cosMask': 7})" );
   EXPECT_EQ( L2ParamsInfo( text.begin(), text.end() ), p );
   std::string tooWide =
         "Value('Nev::L2ParamsInfo', ** {'vlan': 1, 'vlanMask': 2, 'cos': 256, 'cosMask': 7})";
   EXPECT_THROW( L2ParamsInfo( tooWide.data(), tooWide.data() + tooWide.size() ),
                 Zub::ParseException );
}

}  // namespace
