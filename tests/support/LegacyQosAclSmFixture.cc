#include "support/LegacyQosAclSmFixture.h"

#include "NevQos/types/QosClassDataKey.h"

namespace NevQosTest {

void LegacyQosAclSmFixture::SetUp() {
   loop = Zub::ActivityManager::create( Zub::ActivityManager::TimeSource::simulated, 100.0 );
   Zub::activityManagerIs( loop );
   Zub::logSinkIs( [ this ]( Zub::LogRecord const& r ) {
      logs_.push_back( r.handle->name().stdString() + ": " + r.text.stdString() );
   } );
   ncsd = Zub::make< Nev::NevCommonSmData >( Zub::Name( "ncsd" ) );
   verifyData = Zub::make< Nev::VerifyData >( Zub::Name( "verify" ) );
   ncsd->verifyDataIs( verifyData );
   cliCounterConfig = Zub::make< Qos::CounterConfig >( Zub::Name( "cli" ) );
   counterConfigDir = Zub::make< Zub::Dir >( Zub::Name( "counterConfig" ) );
   qosStatus = Zub::make< Qos::Status >( Zub::Name( "qos" ) );
   qosHwStatus = Zub::make< Qos::HwStatus >( Zub::Name( "hw" ) );
   qosSliceHwStatusDir = Zub::make< Zub::Dir >( Zub::Name( "slice" ) );
   sliceHwStatus = Zub::make< Qos::SliceHwStatus >( Zub::Name( "FixedSystem" ) );
   sliceHwStatus->maxClassesPerPolicyMapIs( 16 );
   qosSliceHwStatusDir->entityPtrIs( Zub::Name( "FixedSystem" ), sliceHwStatus );
   qosAclHwStatus = Zub::make< Qos::AclHwStatus >( Zub::Name( "aclHw" ) );
   qosAclHwStatus->policyQosSupportedIs( true );
   qosAclHwStatus->policyClassMaxPrioIs( 100 );
   qosAclSliceHwStatus = Zub::make< Qos::AclSliceHwStatus >( Zub::Name( "aclSlice" ) );
   subIntfStatusDir = Zub::make< Interface::SubIntfStatusDir >( Zub::Name( "subIntf" ) );
   pdpHwCfg = Zub::make< Qos::Input::Config >( Zub::Name( "pdp" ) );
   hwEpochStatus = Zub::make< HwEpoch::Status >( Zub::Name( "epoch" ) );
   mainAclConfig = Zub::make< Acl::Config >( Zub::Name( "acl" ) );
   helper = Zub::make< RecordingQosAclHelper >( qosStatus, qosAclSliceHwStatus, mainAclConfig );
   clock = Zub::make< Kesh::TimerWheel >();
   ncsd->intfIs( Mirel::IntfId( "Ethernet1" ), true );
   ncsd->intfIs( Mirel::IntfId( "Ethernet2" ), true );
   ncsd->intfsReadyIs( true );
}

void LegacyQosAclSmFixture::TearDown() {
   if( sm ) sm->zubDoZombieReactors( true );
   sm = nullptr;
   EXPECT_EQ( takeLogs(), std::vector< std::string >{} ) << "log lines the test did not expect";
   Zub::logSinkIs( nullptr );
   Zub::activityManagerIs( nullptr );
}

void LegacyQosAclSmFixture::start() {
   sm = Nev::QosAclSmIs(
         ncsd, cliCounterConfig, counterConfigDir, qosStatus, qosHwStatus, qosSliceHwStatusDir,
         qosAclHwStatus, qosAclSliceHwStatus, subIntfStatusDir, pdpHwCfg, hwEpochStatus,
         mainAclConfig, engineHelper ? engineHelper : Zub::Ptr< NevHelper::QosAclHelper >( helper ),
         clock, nullptr, nullptr, nullptr );
   loop->runOnce();
   ASSERT_TRUE( sm->initialized() );
}

Zub::Ptr< Qos::PolicyMapStatus > LegacyQosAclSmFixture::policyMap( char const* pmapName,
                                                                   Qos::MapType type ) {
   return qosStatus->pmapTypeIs( type )->pmapIs( Zub::Name( pmapName ) );
}

Zub::Ptr< Qos::ServicePolicyStatus > LegacyQosAclSmFixture::servicePolicyIs(
      char const* pmapName, int classes, std::vector< char const* > intfs, Qos::MapType type ) {
   auto pmap = policyMap( pmapName, type );
   auto cmaps = qosStatus->cmapTypeIs( type );
   for( int i = 0; i < classes; ++i ) {
      Zub::Name name( std::string( pmapName ) + "-class" + std::to_string( i ) );
      cmaps->cmapIs( name );
      pmap->classActionIs( name );
      pmap->classPrioIs( static_cast< unsigned >( i + 1 ), Qos::ClassPriority( name ) );
   }
   auto status = qosStatus->servicePolicyStatusIs( spKey( pmapName, type ) );
   for( char const* i : intfs )
      status->intfIdsIs( intf( i ), true );
   return status;
}

Zub::Ptr< Qos::PolicyMapHwStatus > LegacyQosAclSmFixture::hwStatus( char const* pmapName,
                                                                    Qos::MapType type ) const {
   auto typeStatus = qosAclSliceHwStatus->pmapType( type );
   if( !typeStatus ) return nullptr;
   return typeStatus->pmap(
         Qos::PolicyMapHwStatusKey( Qos::directionInput_, Zub::Name( pmapName ) ) );
}

Nev::QosPolicyUpdateRequest LegacyQosAclSmFixture::aclRequest( Nev::QosPolicyUpdateReason reason,
                                                               char const* aclName, bool remove,
                                                               Qos::IntfPairKey intfPair ) {
   auto pmapSm = sm->servicePolicySm( spKey( "gold" ) )->pmapSm( pmapKey( "gold" ) );
   if( !classData ) {
      classData = Zub::make< Nev::QosClassData >(
            Nev::QosClassDataKey( pmapKey( "gold" ), Zub::Name( "gold-class0" ), Qos::mapQos_,
                                  Nev::QosClassDataKey::defaultPolicerName() ) );
      classData->priorityIs( 3 );
   }
   Nev::AclKey const aclKey( Zub::Name( aclName ), Acl::ip() );
   auto matchData = classData->matchDataIs( Qos::matchOptionIpAcl );
   matchData->priorityIs( 7 );
   matchData->aclDataIs( aclKey );
   auto policyData = Zub::make< Nev::QosPolicyMapClassData >( pmapSm, classData, nullptr );
   policyData->matchOptionIs( Qos::matchOptionIpAcl );
   policyData->aclKeyIs( aclKey );
   // A configured list without rules: the compile is the precreate and the commit alone.
   auto aclConfig = Zub::make< Acl::AclConfig >( Zub::Name( aclName ) );
   aclConfig->currCfgIs( Zub::make< Acl::AclRuleSet >( 1u ) );
   policyData->aclConfigIs( aclConfig );
   Nev::QosPolicyUpdateRequest request( reason, aclName, remove );
   request.policyDataIs( policyData );
   request.intfPairIs( intfPair );
   return request;
}

namespace {

template< class Rule >
Zub::Ptr< Acl::AclConfig > aclOf( Acl::Config& config, Acl::AclType type, char const* name,
                                  std::vector< Rule > const& rules ) {
   auto acl = config.configIs( type )->aclIs( Zub::Name( name ) );
   auto set = Zub::make< Acl::AclRuleSet >( acl->version() + 1 );
   std::uint64_t id = 1;
   for( Rule const& rule : rules ) {
      set->ruleBySequenceIs( static_cast< std::uint32_t >( 10 * id ), Acl::UniqueId( id ) );
      if constexpr( std::is_same_v< Rule, Acl::IpRuleConfig > ) {
         set->ipRuleByIdIs( Acl::UniqueId( id ), rule );
      } else {
         set->ip6RuleByIdIs( Acl::UniqueId( id ), rule );
      }
      ++id;
   }
   acl->versionIs( acl->version() + 1 );
   acl->currCfgIs( set );
   return acl;
}

}  // namespace

Zub::Ptr< Acl::AclConfig > LegacyQosAclSmFixture::ipAclIs(
      char const* name, std::vector< Acl::IpRuleConfig > const& rules ) {
   return aclOf( *mainAclConfig, Acl::ip(), name, rules );
}

Zub::Ptr< Acl::AclConfig > LegacyQosAclSmFixture::ip6AclIs(
      char const* name, std::vector< Acl::Ip6RuleConfig > const& rules ) {
   return aclOf( *mainAclConfig, Acl::ipv6(), name, rules );
}

Zub::Ptr< Qos::ClassMapStatus > LegacyQosAclSmFixture::classMapIs( char const* name,
                                                                   Matches const& matches,
                                                                   Qos::MapType type ) {
   auto cmap = qosStatus->cmapTypeIs( type )->cmapIs( Zub::Name( name ) );
   for( auto const& [ option, text ] : matches ) {
      cmap->matchIs( option )->strValueIs( Zub::String( text ) );
   }
   return cmap;
}

Zub::Ptr< Qos::ClassAction > LegacyQosAclSmFixture::classIs( char const* pmapName,
                                                             char const* cmapName,
                                                             Qos::MapType type ) {
   auto pmap = policyMap( pmapName, type );
   auto const prio = static_cast< unsigned >( pmap->classPrioSize() + 1 );
   pmap->classPrioIs( prio, Qos::ClassPriority( Zub::Name( cmapName ) ) );
   return pmap->classActionIs( Zub::Name( cmapName ) );
}

Zub::Ptr< Qos::PolicerConfig > LegacyQosAclSmFixture::policerOf( char const* name ) {
   auto policer = Zub::make< Qos::PolicerConfig >( Zub::Name( name ) );
   policer->cirIs( 1000 );
   policer->bcIs( 10000 );
   policer->redActionIs( Qos::actionDrop_ );
   return policer;
}

void LegacyQosAclSmFixture::classDefaultIs( char const* pmapName, Qos::MapType type ) {
   // The default class has one match of no kind: it catches what the others leave.
   auto cmap = classMapIs( "class-default", { { Qos::matchOptionNone, "" } }, type );
   auto pmap = policyMap( pmapName, type );
   pmap->classDefaultIs( cmap );
   pmap->classActionDefaultIs( Zub::make< Qos::ClassAction >( Zub::Name( "class-default" ) ) );
}

Zub::Ptr< Qos::ServicePolicyStatus > LegacyQosAclSmFixture::applyIs(
      char const* pmapName, std::vector< Qos::IntfPairKey > const& intfs, Qos::MapType type ) {
   auto status = qosStatus->servicePolicyStatusIs( spKey( pmapName, type ) );
   for( auto const& i : intfs )
      status->intfIdsIs( i, true );
   return status;
}

namespace {

// Hands each (low, high) to `add` as a range of the match's kind.
template< class Range, class Add >
void rangesIs( std::vector< std::pair< unsigned, unsigned > > const& ranges, Add const& add ) {
   using T = typename Range::ValueType;
   for( auto const& [ low, high ] : ranges )
      add( Range( static_cast< T >( low ), static_cast< T >( high ) ) );
}

}  // namespace

Zub::Ptr< Qos::ClassMapMatch > LegacyQosAclSmFixture::l2ClassMapIs( char const* name,
                                                                    Qos::ClassMapMatchOption option,
                                                                    Ranges const& vlans,
                                                                    Ranges const& coses ) {
   auto match =
         qosStatus->cmapTypeIs( Qos::mapQos_ )->cmapIs( Zub::Name( name ) )->matchIs( option );
   if( option != Qos::matchOptionCos ) {
      auto vlan = Zub::make< Qos::ClassMapMatchVlan >( 0, 0 );
      rangesIs< Qos::VlanRange >( vlans, [ & ]( auto const& r ) { vlan->vlanCollIs( r, true ); } );
      match->vlanValueIs( vlan );
   }
   if( option != Qos::matchOptionVlan ) {
      auto cos = Zub::make< Qos::ClassMapMatchCos >( Zub::String( "cos" ) );
      rangesIs< Qos::CosRange >( coses, [ & ]( auto const& r ) { cos->cosCollIs( r, true ); } );
      match->cosValueIs( cos );
   }
   return match;
}

Zub::Ptr< Qos::ClassMapMatch > LegacyQosAclSmFixture::dscpEcnClassMapIs( char const* name,
                                                                         unsigned dscp,
                                                                         Acl::Ecn ecn,
                                                                         Ranges const& dscps ) {
   auto match = qosStatus->cmapTypeIs( Qos::mapQos_ )
                      ->cmapIs( Zub::Name( name ) )
                      ->matchIs( Qos::matchOptionDscpEcn );
   auto value = Zub::make< Qos::ClassMapMatchDscpEcn >( Qos::DscpVal( dscp ), ecn );
   rangesIs< Qos::DscpRange >( dscps, [ & ]( auto const& r ) { value->dscpCollIs( r, true ); } );
   match->dscpEcnValueIs( value );
   return match;
}

Zub::Ptr< Qos::ClassMapMatch > LegacyQosAclSmFixture::mplsClassMapIs(
      char const* name, Ranges const& trafficClasses ) {
   auto match = qosStatus->cmapTypeIs( Qos::mapQos_ )
                      ->cmapIs( Zub::Name( name ) )
                      ->matchIs( Qos::matchOptionMplsTrafficClass );
   auto value = Zub::make< Qos::ClassMapMatchMplsTrafficClass >( Zub::String( "mpls" ) );
   rangesIs< Qos::MplsTrafficClassRange >(
         trafficClasses, [ & ]( auto const& r ) { value->mplsTrafficClassCollIs( r, true ); } );
   match->mplsTrafficClassValueIs( value );
   return match;
}

Zub::Ptr< Qos::ClassMapMatch > LegacyQosAclSmFixture::builtInClassMapIs(
      char const* name, char const* builtInClass ) {
   auto match = qosStatus->cmapTypeIs( Qos::mapQos_ )
                      ->cmapIs( Zub::Name( name ) )
                      ->matchIs( Qos::matchOptionBuiltIn );
   match->builtInValueIs( Qos::ClassMapMatchBuiltIn( Zub::Name( builtInClass ) ) );
   return match;
}

Zub::Ptr< Acl::AclConfig > LegacyQosAclSmFixture::macAclIs(
      char const* name, std::vector< Acl::MacRuleConfig > const& rules ) {
   auto acl = mainAclConfig->configIs( Acl::mac() )->aclIs( Zub::Name( name ) );
   auto set = Zub::make< Acl::AclRuleSet >( acl->version() + 1 );
   std::uint64_t id = 1;
   for( Acl::MacRuleConfig const& rule : rules ) {
      set->ruleBySequenceIs( static_cast< std::uint32_t >( 10 * id ), Acl::UniqueId( id ) );
      set->macRuleByIdIs( Acl::UniqueId( id ), rule );
      ++id;
   }
   acl->versionIs( acl->version() + 1 );
   acl->currCfgIs( set );
   return acl;
}

std::vector< std::string > LegacyQosAclSmFixture::takeLogs() {
   std::vector< std::string > out;
   out.swap( logs_ );
   return out;
}

}  // namespace NevQosTest
