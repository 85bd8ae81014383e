#include "NevQos/log/QosLogHandles.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "NevQos/platform/entities/QosUnits.h"

namespace {

using namespace Nev;

// Each handle with the identifier it is declared under.
#define ENTRY( h ) \
   { &h, #h }
struct Entry {
   Zub::LogHandle* handle;
   char const* identifier;
};
Entry const catalogue[] = {
   ENTRY( QOS_SCH_SHP_UNIT_MISMATCH ),      ENTRY( QOS_HW_RESOURCE_FULL ),
   ENTRY( QOS_HW_RESOURCE_NORMAL ),         ENTRY( QOS_ECN_QUEUE_HW_FULL ),
   ENTRY( QOS_ECN_QUEUE_COUNTER_HW_FULL ),  ENTRY( QOS_WRED_QUEUE_HW_FULL ),
   ENTRY( QOS_DP_THRESHOLDS_HW_FULL ),      ENTRY( QOS_COPP_HW_RESOURCE_FULL ),
   ENTRY( QOS_COPP_HW_RESOURCE_NORMAL ),    ENTRY( QOS_POLICY_HW_RESOURCE_FULL ),
   ENTRY( QOS_POLICY_HW_RESOURCE_NORMAL ),  ENTRY( QOS_POLICY_COUNTER_HW_RESOURCE_FULL ),
   ENTRY( PDP_POLICY_HW_RESOURCE_FULL ),    ENTRY( PDP_POLICY_HW_RESOURCE_NORMAL ),
   ENTRY( QOS_POLICY_MULTIPLE_ACTIONS ),    ENTRY( QOS_POLICY_POLICER_RESOURCE_FULL ),
   ENTRY( QOS_VLAN_ACL_RULE_SVI_MISMATCH ), ENTRY( QOS_EGRESS_PMAP_ACTION_UNSUPPORTED ),
   ENTRY( QOS_MAC_ACL_RULE_IPV6_MISMATCH ), ENTRY( QOS_PMAP_FIELD_NOT_SUPPORTED ),
   ENTRY( ROUTING_CBF_HW_RESOURCE_FULL ),   ENTRY( ROUTING_CBF_HW_RESOURCE_NORMAL ),
};
#undef ENTRY

std::set< std::string > namesWhere( bool ( *pred )( Zub::LogHandle const& ) ) {
   std::set< std::string > names;
   for( auto const& e : catalogue ) {
      if( pred( *e.handle ) ) names.insert( e.identifier );
   }
   return names;
}

TEST( QosLogHandlesTest, EveryHandleIsRegisteredUnderItsName ) {
   for( auto const& e : catalogue ) {
      SCOPED_TRACE( e.identifier );
      EXPECT_EQ( e.handle->name(), e.identifier );
      EXPECT_EQ( Zub::LogHandle::find( e.identifier ), e.handle );
      EXPECT_EQ( e.handle->minInterval(), 0.0 );
      EXPECT_EQ( e.handle->burst(), 1.0 );
      EXPECT_EQ( e.handle->rateLimitArgs(), 0 );
   }
}

// The handles are built at load in another file than the platform text they copy: this catches
// an action left empty by the order of static initialisation.
TEST( QosLogHandlesTest, HandlesWithoutActionCarryThePlatformText ) {
   EXPECT_EQ(
         namesWhere( []( Zub::LogHandle const& h ) {
            return h.recommendedAction() == Zub::NoActionRequired;
         } ),
         ( std::set< std::string >{
               "QOS_HW_RESOURCE_NORMAL", "QOS_ECN_QUEUE_HW_FULL", "QOS_ECN_QUEUE_COUNTER_HW_FULL",
               "QOS_WRED_QUEUE_HW_FULL", "QOS_DP_THRESHOLDS_HW_FULL", "QOS_COPP_HW_RESOURCE_NORMAL",
               "QOS_POLICY_HW_RESOURCE_NORMAL", "PDP_POLICY_HW_RESOURCE_NORMAL",
               "QOS_POLICY_POLICER_RESOURCE_FULL", "QOS_VLAN_ACL_RULE_SVI_MISMATCH",
               "QOS_EGRESS_PMAP_ACTION_UNSUPPORTED", "QOS_MAC_ACL_RULE_IPV6_MISMATCH",
               "QOS_PMAP_FIELD_NOT_SUPPORTED", "ROUTING_CBF_HW_RESOURCE_NORMAL" } ) );
}

TEST( QosLogHandlesTest, MessagesAreFormattedWithTheirArguments ) {
   std::vector< Zub::LogRecord > records;
   Zub::logSinkIs( [ &records ]( Zub::LogRecord const& r ) { records.push_back( r ); } );
   Zub::log( QOS_POLICY_POLICER_RESOURCE_FULL, Zub::Name( "gold" ), Zub::String( "pm1" ),
             "interface", "Ethernet1" );
   Zub::log( QOS_SCH_SHP_UNIT_MISMATCH, Qos::shapeRateUnitPps_, Qos::guaranteedBwUnitPercent_, 3,
             "Ethernet2", "bandwidth" );
   Zub::log( QOS_ECN_QUEUE_COUNTER_HW_FULL, "Ethernet3", 7 );
   Zub::logSinkIs( {} );

   ASSERT_EQ( records.size(), 3u );
   EXPECT_EQ( records[ 0 ].handle, &QOS_POLICY_POLICER_RESOURCE_FULL );
   EXPECT_EQ( records[ 0 ].text,
              "Insufficient hardware resources to program the police action for the class-map "
              "gold in the policy-map pm1 on interface Ethernet1." );
   EXPECT_EQ( records[ 1 ].text,
              "Shape rate is in pps and Bandwidth guaranteed is in percent causing unit mismatch "
              "for queue 3 on port Ethernet2. Not programming bandwidth " );
   EXPECT_EQ( records[ 2 ].text,
              "Hardware resources insufficient for ECN queue counters for Ethernet3 queue 7" );
}

}  // namespace
