// A service policy machine in miniature, written the way the engine's machines are: a reactor
// nested in the machine forwards to its handlers, reactors attach without catch-up while the
// machine is built, and handleInitialized() does the initial walk in the machine's own order.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "entities/QosStatus.h"
#include "zub/Attribute.h"

namespace {

using Qos::IntfPairKey;
using Qos::ServicePolicyKey;

IntfPairKey pair( char const* intf ) {
   return IntfPairKey( Mirel::IntfId( intf ), Mirel::IntfId() );
}

class MiniServicePolicySm : public Zub::PtrInterface {
 public:
   class ZubServicePolicyStatus : public Qos::ServicePolicyStatus::Notifiee {
    public:
      explicit ZubServicePolicyStatus( MiniServicePolicySm* sm ) : sm_( sm ) {}
      void onVersion() override { sm_->handleVersion(); }
      void onIntfIds( IntfPairKey const& p ) override { sm_->handleIntf( p ); }

    private:
      MiniServicePolicySm* sm_;
   };

   explicit MiniServicePolicySm( Zub::Ptr< Qos::ServicePolicyStatus > const& status ) {
      servicePolicyStatus_.is( status, this, initialized_ );
      handleInitialized();
   }

   // Start-up: the interfaces first, then the version.
   void handleInitialized() {
      initialized_ = true;
      for( auto it = servicePolicyStatus()->intfIds().iter(); it; ++it )
         handleIntf( it.key() );
      handleVersion();
   }
   void servicePolicyStatusIs( Zub::Ptr< Qos::ServicePolicyStatus > const& s ) {
      servicePolicyStatus_.is( s, this, initialized_ );
   }
   Zub::Ptr< Qos::ServicePolicyStatus > const& servicePolicyStatus() const {
      return servicePolicyStatus_.get();
   }
   void handleVersion() {
      calls.push_back( "version " + std::to_string( servicePolicyStatus()->version() ) );
   }
   void handleIntf( IntfPairKey const& p ) {
      calls.push_back( std::string( servicePolicyStatus()->intfIdsHas( p ) ? "add " : "del " ) +
                       p.intfId().stringValue().charPtr() );
   }

   std::vector< std::string > calls;

 private:
   bool initialized_ = false;
   Zub::Input< Qos::ServicePolicyStatus, ZubServicePolicyStatus > servicePolicyStatus_;
};

class ServicePolicyStatusTest : public ::testing::Test {
 protected:
   Zub::Ptr< Qos::Status > qosStatus = Zub::make< Qos::Status >( Zub::Name( "qos" ) );
   ServicePolicyKey key{ Qos::mapQos_, Qos::directionInput_, Zub::Name( "gold" ) };
};

TEST_F( ServicePolicyStatusTest, ConstructionWalksInTheMachinesOrderWithoutCatchUp ) {
   auto status = qosStatus->servicePolicyStatusIs( key );
   status->versionIs( 3 );
   status->intfIdsIs( pair( "Ethernet2" ), true );
   status->intfIdsIs( pair( "Ethernet1" ), true );
   auto sm = Zub::make< MiniServicePolicySm >( status );
   // A catch-up would have put the version first; the machine's own walk puts it last.
   EXPECT_EQ( sm->calls,
              ( std::vector< std::string >{ "add Ethernet1", "add Ethernet2", "version 3" } ) );
}

TEST_F( ServicePolicyStatusTest, LiveMachineHearsChangesAndCatchesUpOnANewInput ) {
   auto status = qosStatus->servicePolicyStatusIs( key );
   auto sm = Zub::make< MiniServicePolicySm >( status );
   sm->calls.clear();

   status->intfIdsIs( pair( "Ethernet5" ), true );
   status->intfIdsIs( pair( "Ethernet5" ), true );  // equal write: nothing
   status->versionIs( 1 );
   status->intfIdsDel( pair( "Ethernet5" ) );
   EXPECT_EQ( sm->calls,
              ( std::vector< std::string >{ "add Ethernet5", "version 1", "del Ethernet5" } ) );

   // A second status, already populated, attached to the live machine: the reactor replays the
   // value callbacks, then walks the collection.
   auto other = qosStatus->servicePolicyStatusIs(
         ServicePolicyKey( Qos::mapQos_, Qos::directionOutput_, Zub::Name( "silver" ) ) );
   other->versionIs( 7 );
   other->intfIdsIs( pair( "Ethernet9" ), true );
   sm->calls.clear();
   sm->servicePolicyStatusIs( other );
   EXPECT_EQ( sm->calls, ( std::vector< std::string >{ "version 7", "add Ethernet9" } ) );
   status->versionIs( 2 );  // the old input no longer reaches the machine
   EXPECT_EQ( sm->calls.size(), 2u );
}

}  // namespace
