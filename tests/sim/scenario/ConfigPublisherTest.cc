// Publishing a scenario into fresh input entities: what each entity holds afterwards, which
// versions a step moves, the stamps of a step, and a bad step that writes nothing.
#include "NevQos/sim/scenario/ConfigPublisher.h"

#include <gtest/gtest.h>

#include <string>

#include "NevQos/platform/entities/CounterConfig.h"
#include "NevQos/sim/scenario/ScenarioLoader.h"

namespace {

// Two policy maps on two lists, each applied to one port, and a policy map of each kind of
// class, for the steps of each test to change.
std::string const baseScenario = R"(
chip:
  faults: [ { kind: policerExhaustion } ]
interfaces: [ Ethernet1, Ethernet2 ]
acls:
  - { name: A, rules: [ { proto: tcp, dstPort: { eq: 80 } }, { seq: 25, dscp: 10 } ] }
  - { name: B, rules: [ { proto: udp } ] }
  - { name: M, type: mac, rules: [ { etherType: 0x8847 } ] }
classMaps:
  - { name: ca, match: { ipv4: A } }
  - { name: cb, match: { ipv4: B, mac: M } }
  - { name: cv, match: { vlan: { value: 100, mask: 0xff0 }, dscp: { ranges: [ 8-15 ], ecn: ce } } }
namedPolicers:
  - { name: np, cir: 1000, bc: 20000 }
policyMaps:
  - name: pa
    classes:
      - { class: ca, set: { dscp: 46, cos: 5 }, count: true }
      - { class: cv, police: { named: np, red: { drop: true } } }
      - { class: class-default, drop: true }
  - name: pb
    classes:
      - { class: cb, police: { cir: 2, cirUnit: mbps, bc: 4, bcUnit: kbytes,
                               yellow: { set: { dscp: 10 } } } }
servicePolicies:
  - { policyMap: pa, interfaces: [ Ethernet1, Ethernet3@Port-Channel5 ] }
  - { policyMap: pb, interfaces: [ Ethernet2 ] }
)";

class ConfigPublisherTest : public ::testing::Test {
 protected:
   Sim::EngineInputs inputs{ Zub::make< Qos::Status >( Zub::Name( "qos" ) ),
                             Zub::make< Acl::Config >( Zub::Name( "acl" ) ),
                             Zub::make< Qos::AclHwStatus >( Zub::Name( "aclHw" ) ),
                             Zub::make< Qos::HwStatus >( Zub::Name( "hw" ) ),
                             Zub::make< Zub::Dir >( Zub::Name( "counterConfig" ) ),
                             Zub::make< Nev::NevCommonSmData >( Zub::Name( "ncsd" ) ) };
   Sim::ConfigPublisher publisher{ inputs, "test.yaml" };

   // The base scenario with `steps` appended, its chip and starting configuration published.
   Sim::Scenario startWith( std::string const& steps ) {
      auto scenario = Sim::loadScenarioText( baseScenario + steps, "test.yaml" );
      publisher.chipIs( scenario.chip );
      publisher.initialIs( scenario.initial );
      return scenario;
   }
   Zub::Ptr< Qos::PolicyMapStatus > pmap( char const* name ) const {
      return inputs.qosStatus->pmapType( Qos::mapQos_ )->pmap( Zub::Name( name ) );
   }
   Zub::Ptr< Qos::ServicePolicyStatus > servicePolicy( char const* pmapName ) const {
      return inputs.qosStatus->servicePolicyStatus(
            Qos::ServicePolicyKey( Qos::mapQos_, Qos::directionInput_, Zub::Name( pmapName ) ) );
   }
   Zub::Ptr< Acl::AclConfig > acl( char const* name, Acl::AclType type = Acl::ip() ) const {
      auto const types = inputs.aclConfig->config( type );
      return types ? types->acl( Zub::Name( name ) ) : nullptr;
   }
   Zub::Ptr< Qos::ClassMapMatch > match( char const* cmap, Qos::ClassMapMatchOption option ) const {
      auto const c = inputs.qosStatus->cmapType( Qos::mapQos_ )->cmap( Zub::Name( cmap ) );
      return c ? c->match( option ) : nullptr;
   }
   // pa, its service policy, pb, its service policy.
   std::vector< unsigned > versions() const {
      return { pmap( "pa" )->version(), servicePolicy( "pa" )->version(), pmap( "pb" )->version(),
               servicePolicy( "pb" )->version() };
   }
};

// What the examples leave out: a MAC list beside an IPv4 one in a class, a masked VLAN, DSCP
// ranges with ECN, a port-channel member, and the named policer's rates in the class.
TEST_F( ConfigPublisherTest, TheStartingConfigurationReachesEveryEntity ) {
   startWith( "" );
   EXPECT_EQ( match( "cb", Qos::matchOptionIpAcl )->strValue(), "B" );
   EXPECT_EQ( match( "cb", Qos::matchOptionMac )->strValue(), "M" );
   auto const vlan = match( "cv", Qos::matchOptionVlan )->vlanValue();
   ASSERT_TRUE( vlan );
   EXPECT_TRUE( vlan->maskValid() );
   EXPECT_EQ( vlan->vlanMask(), 0xff0 );
   auto const dscp = match( "cv", Qos::matchOptionDscpEcn )->dscpEcnValue();
   ASSERT_TRUE( dscp );
   EXPECT_FALSE( dscp->dscp().isValid() );
   EXPECT_EQ( dscp->ecn(), Acl::ecnCe );
   EXPECT_TRUE( dscp->dscpCollHas( Qos::DscpRange( 8, 15 ) ) );
   auto const named = pmap( "pa" )->classAction( Zub::Name( "cv" ) )->policer();
   ASSERT_TRUE( named );
   EXPECT_EQ( named->name(), "np" );
   EXPECT_EQ( named->cir(), 1000u ) << "the named policer's rates";
   EXPECT_TRUE( named->redAction( Qos::actionDrop_ ) );
   EXPECT_TRUE( servicePolicy( "pa" )->intfIds(
         Qos::IntfPairKey( Mirel::IntfId( "Ethernet3" ), Mirel::IntfId( "Port-Channel5" ) ) ) );
}

TEST_F( ConfigPublisherTest, AStepMovesTheVersionsOfWhatItChangedAndNothingElse ) {
   auto const s = startWith( R"(
steps:
  - at: 1
    changes:
      - acl: { name: A, rules: [ { proto: tcp, dstPort: { eq: 8080 } } ] }
  - at: 2
    changes:
      - acl: { name: A, rules: [ { proto: tcp, dstPort: { eq: 8080 } } ] }
  - at: 3
    changes:
      - acl: { name: M, type: mac, rules: [ { etherType: 0x0800 } ] }
  - at: 4
    changes:
      - namedPolicer: { name: np, cir: 5000, bc: 20000 }
  - at: 5
    changes:
      - namedPolicer: { name: np, shared: true, cir: 5000, bc: 20000 }
)" );
   EXPECT_EQ( versions(), ( std::vector< unsigned >{ 1, 0, 1, 0 } ) );

   publisher.stepIs( s.steps[ 0 ] );
   EXPECT_EQ( versions(), ( std::vector< unsigned >{ 2, 1, 1, 0 } ) )
         << "pa uses the list through its class map; pb does not";
   EXPECT_EQ( acl( "A" )->version(), 2u );
   EXPECT_EQ( acl( "B" )->version(), 1u );
   EXPECT_EQ( inputs.qosStatus->configVersionUpdateTime(), 1.0 );

   publisher.stepIs( s.steps[ 1 ] );
   EXPECT_EQ( versions(), ( std::vector< unsigned >{ 2, 1, 1, 0 } ) ) << "the same list again";
   EXPECT_EQ( acl( "A" )->version(), 2u );
   EXPECT_EQ( inputs.qosStatus->configVersionUpdateTime(), 2.0 );

   publisher.stepIs( s.steps[ 2 ] );
   EXPECT_EQ( versions(), ( std::vector< unsigned >{ 2, 1, 2, 1 } ) );

   auto const np = inputs.qosStatus->namedPolicer( Zub::Name( "np" ) );
   publisher.stepIs( s.steps[ 3 ] );
   EXPECT_EQ( versions(), ( std::vector< unsigned >{ 2, 1, 2, 1 } ) )
         << "new rates are applied in place";
   EXPECT_EQ( np->paramChangeVersion(), 1u );
   EXPECT_EQ( np->cir(), 5000u );

   publisher.stepIs( s.steps[ 4 ] );
   EXPECT_EQ( versions(), ( std::vector< unsigned >{ 3, 2, 2, 1 } ) )
         << "sharing decides the policer copies of the classes";
   EXPECT_EQ( np->paramChangeVersion(), 1u );
   EXPECT_EQ( pmap( "pa" )->classAction( Zub::Name( "cv" ) )->policer()->cir(), 5000u );
}

TEST_F( ConfigPublisherTest, InterfacesJoinAndLeaveWithoutNewVersions ) {
   auto const s = startWith( R"(
steps:
  - at: 1
    changes:
      - addInterfaces: [ Ethernet3, Ethernet4 ]
      - attach: { policyMap: pa, interfaces: [ Ethernet4 ] }
      - detach: { policyMap: pa, interfaces: [ Ethernet1, Ethernet3@Port-Channel5 ] }
      - removeInterfaces: [ Ethernet1 ]
  - at: 2
    changes:
      - servicePolicy: { policyMap: pb, interfaces: [ Ethernet3 ] }
)" );
   publisher.stepIs( s.steps[ 0 ] );
   auto const sp = servicePolicy( "pa" );
   EXPECT_EQ( sp->intfIdsSize(), 1u );
   EXPECT_TRUE( sp->intfIds( Qos::IntfPairKey( Mirel::IntfId( "Ethernet4" ) ) ) );
   EXPECT_EQ( versions(), ( std::vector< unsigned >{ 1, 0, 1, 0 } ) );
   EXPECT_FALSE( inputs.ncsd->intfHas( Mirel::IntfId( "Ethernet1" ) ) );
   EXPECT_TRUE( inputs.ncsd->intf( Mirel::IntfId( "Ethernet3" ) ) );

   publisher.stepIs( s.steps[ 1 ] );
   auto const pb = servicePolicy( "pb" );
   EXPECT_EQ( pb->intfIdsSize(), 1u ) << "a service policy given anew replaces its interfaces";
   EXPECT_TRUE( pb->intfIds( Qos::IntfPairKey( Mirel::IntfId( "Ethernet3" ) ) ) );
}

TEST_F( ConfigPublisherTest, RemovalsTakeTheEntitiesAway ) {
   auto const s = startWith( R"(
steps:
  - at: 1
    changes:
      - removeServicePolicy: pb
      - removePolicyMap: pb
      - removeClassMap: cb
      - removeAcl: B
      - removeAcl: { name: M, type: mac }
      - policyMap: { name: pa, classes: [ { class: ca } ] }
      - removeNamedPolicer: np
)" );
   publisher.stepIs( s.steps[ 0 ] );
   EXPECT_FALSE( servicePolicy( "pb" ) );
   EXPECT_FALSE( pmap( "pb" ) );
   EXPECT_FALSE( inputs.qosStatus->cmapType( Qos::mapQos_ )->cmapHas( Zub::Name( "cb" ) ) );
   EXPECT_FALSE( acl( "B" ) );
   EXPECT_FALSE( acl( "M", Acl::mac() ) );
   EXPECT_FALSE( inputs.qosStatus->namedPolicerHas( Zub::Name( "np" ) ) );
   auto const pa = pmap( "pa" );
   EXPECT_EQ( pa->version(), 2u );
   EXPECT_EQ( pa->classPrioSize(), 1u );
   EXPECT_FALSE( pa->classActionHas( Zub::Name( "cv" ) ) );
   EXPECT_FALSE( pa->classDefault() );
   EXPECT_FALSE( pa->classActionDefault() );
}

TEST_F( ConfigPublisherTest, ABadStepWritesNothing ) {
   auto s = startWith( R"(
steps:
  - at: 1
    changes:
      - acl: { name: A, rules: [ { proto: udp } ] }
      - requestCounters: snmp
  - at: 2
    changes: []
)" );
   // A step built in code: the loader would have refused it.
   Sim::Step bad = s.steps[ 0 ];
   bad.changes.push_back( { Sim::Where{ 9, 7 }, Sim::AclRemoval{ Sim::AclFamily::ipv4, "A" } } );
   try {
      publisher.stepIs( bad );
      ADD_FAILURE() << "no error";
   } catch( Sim::ScenarioError const& e ) {
      EXPECT_EQ( std::string( e.what() ),
                 "test.yaml:9:7: access list ipv4 A is still used by class map qos ca" );
   }
   EXPECT_EQ( acl( "A" )->version(), 1u );
   EXPECT_EQ( versions(), ( std::vector< unsigned >{ 1, 0, 1, 0 } ) );
   EXPECT_EQ( inputs.counterConfigDir->entityPtrSize(), 0u );
   EXPECT_EQ( inputs.qosStatus->configVersionUpdateTime(), 0.0 );
   EXPECT_EQ( publisher.model().acls().at( { Sim::AclFamily::ipv4, "A" } ).ipv4Rules.size(), 2u );

   publisher.stepIs( s.steps[ 1 ] );
   EXPECT_THROW( publisher.stepIs( s.steps[ 0 ] ), Sim::ScenarioError ) << "not after step 2";
   EXPECT_EQ( acl( "A" )->version(), 1u );

   Sim::Step requests{ 3.0, {}, { { {}, Sim::ClearRequest{} } } };
   EXPECT_THROW( publisher.initialIs( requests.changes ), Sim::ScenarioError );
   EXPECT_EQ( inputs.qosStatus->clearHwStatusErrorRequestTime(), 0.0 );
}

TEST_F( ConfigPublisherTest, RequestsAreStampedWithTheStepsTime ) {
   auto const s = startWith( R"(
steps:
  - at: 1.5
    changes:
      - requestCounters: snmp
      - clearErrors: true
      - traffic: { policyMap: pa, class: ca, interface: Ethernet1, packets: 3, bytes: 300 }
      - fault: { index: 0, on: false }
  - at: 2.5
    changes:
      - requestCounters: snmp
      - requestCounters: cli
)" );
   publisher.stepIs( s.steps[ 0 ] );
   auto const snmp = Zub::dynamicPtrCast< Qos::CounterConfig >(
         inputs.counterConfigDir->entityPtr( Zub::Name( "snmp" ) ) );
   ASSERT_TRUE( snmp );
   EXPECT_EQ( snmp->pmapCounterUpdateRequestTime(), 1.5 );
   EXPECT_EQ( inputs.qosStatus->clearHwStatusErrorRequestTime(), 1.5 );
   EXPECT_EQ( versions(), ( std::vector< unsigned >{ 1, 0, 1, 0 } ) );

   publisher.stepIs( s.steps[ 1 ] );
   EXPECT_EQ( inputs.counterConfigDir->entityPtr( Zub::Name( "snmp" ) ), snmp )
         << "one configuration per client";
   EXPECT_EQ( snmp->pmapCounterUpdateRequestTime(), 2.5 );
   EXPECT_EQ( inputs.counterConfigDir->entityPtrSize(), 2u );
   EXPECT_EQ( inputs.qosStatus->clearHwStatusErrorRequestTime(), 1.5 );
}

TEST_F( ConfigPublisherTest, ACounterClientNameTakenByAnotherEntityIsRefused ) {
   auto const s = startWith( "steps: [ { at: 1, changes: [ { requestCounters: snmp } ] } ]\n" );
   inputs.counterConfigDir->entityPtrIs( Zub::Name( "snmp" ),
                                         Zub::make< Qos::Status >( Zub::Name( "snmp" ) ) );
   EXPECT_THROW( publisher.stepIs( s.steps[ 0 ] ), Sim::ScenarioError );
   EXPECT_EQ( inputs.qosStatus->configVersionUpdateTime(), 0.0 );
}

TEST_F( ConfigPublisherTest, StaticControlPlaneClassesTakeTheStaticOrder ) {
   auto const s = Sim::loadScenarioText( R"(
classMaps:
  - { name: bgp, type: control-plane, cpType: static }
  - { name: mine, type: control-plane, match: { dscp: 48 } }
policyMaps:
  - name: copp-system-policy
    type: control-plane
    classes: [ { class: mine }, { class: bgp } ]
)",
                                         "test.yaml" );
   publisher.initialIs( s.initial );
   auto const cmaps = inputs.qosStatus->cmapType( Qos::mapControlPlane_ );
   EXPECT_EQ( cmaps->cpType( Zub::Name( "bgp" ) ), Qos::cmapCpStatic_ );
   EXPECT_FALSE( cmaps->cpTypeHas( Zub::Name( "mine" ) ) );
   EXPECT_EQ( cmaps->cmap( Zub::Name( "mine" ) )->cpType(), Qos::cmapCpDynamic_ );
   auto const pmap = inputs.qosStatus->pmapType( Qos::mapControlPlane_ )
                           ->pmap( Zub::Name( "copp-system-policy" ) );
   EXPECT_EQ( pmap->classPrio( 1 ), Qos::ClassPriority( Zub::Name( "mine" ) ) );
   EXPECT_EQ( pmap->coppStaticClassPrio( 1 ), Qos::ClassPriority( Zub::Name( "bgp" ) ) );
   EXPECT_EQ( pmap->classPrioSize(), 1u );
}

}  // namespace
