#include "NevQos/platform/entities/ClassMapMatchValues.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "NevQos/platform/entities/AclConfig.h"
#include "NevQos/platform/zub/Exception.h"

namespace {

std::string rangeErrorText( std::function< void() > const& f ) {
   try {
      f();
   } catch( Zub::RangeException const& e ) {
      return e.what();
   }
   return "";
}

TEST( ClassMapMatchValuesTest, MplsLabelsOfAMacRuleAreTwentyBits ) {
   Acl::MacRuleConfig rule;
   rule.filter.mplsLabelIs( 0xfffff );
   rule.filter.mplsInnerLabelIs( 0 );
   EXPECT_EQ( rangeErrorText( [ & ] { rule.filter.mplsLabelIs( 0x100000 ); } ),
              "MacFilter::mplsLabel < 0 or > 0xFFFFF not allowed" );
   EXPECT_EQ( rangeErrorText( [ & ] { rule.filter.mplsInnerLabelIs( -1 ); } ),
              "MacFilter::mplsInnerLabel < 0 or > 0xFFFFF not allowed" );
   EXPECT_EQ( rule.filter.mplsLabel(), 0xfffffu ) << "a refused label leaves the old one";
}

TEST( ClassMapMatchValuesTest, RangesAreWalkedByLowThenHigh ) {
   Qos::ClassMapMatchVlan vlan( 0, 0 );
   vlan.vlanCollIs( Qos::VlanRange( 100, 200 ), true );
   vlan.vlanCollIs( Qos::VlanRange( 5, 9 ), true );
   vlan.vlanCollIs( Qos::VlanRange( 5, 6 ), true );
   std::vector< Qos::VlanRange > order;
   for( auto it = vlan.vlanColl().iter(); it; ++it )
      order.push_back( it.key() );
   EXPECT_EQ( order, ( std::vector< Qos::VlanRange >{ { 5, 6 }, { 5, 9 }, { 100, 200 } } ) );
}

}  // namespace
