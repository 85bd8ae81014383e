#include "bench/support/BenchAgent.h"

#include <cstdio>
#include <cstdlib>

#include "NevQos/platform/zub/Log.h"
#include "NevQos/sim/classbench/ClassBench.h"

namespace Bench {

void fail( std::string const& what ) {
   std::fprintf( stderr, "benchmark failed: %s\n", what.c_str() );
   std::abort();
}

std::string named( char const* prefix, unsigned i ) {
   std::string name( prefix );
   name.append( std::to_string( i ) );
   return name;
}

void vlanMatchIs( Qos::ClassMapStatus& cmap, std::uint16_t vlan ) {
   auto value = Zub::make< Qos::ClassMapMatchVlan >( 0, 0 );
   value->vlanCollIs( Qos::VlanRange( vlan, vlan ), true );
   cmap.matchIs( Qos::matchOptionVlan )->vlanValueIs( value );
}

void cosMatchIs( Qos::ClassMapStatus& cmap, std::uint8_t cos ) {
   auto value = Zub::make< Qos::ClassMapMatchCos >( Zub::String( "cos" ) );
   value->cosCollIs( Qos::CosRange( cos, cos ), true );
   cmap.matchIs( Qos::matchOptionCos )->cosValueIs( value );
}

void dscpMatchIs( Qos::ClassMapStatus& cmap, unsigned dscp ) {
   auto value = Zub::make< Qos::ClassMapMatchDscpEcn >( Qos::DscpVal( dscp ), Acl::ecnDontCare );
   cmap.matchIs( Qos::matchOptionDscpEcn )->dscpEcnValueIs( value );
}

void aclMatchIs( Qos::ClassMapStatus& cmap, std::string const& acl ) {
   cmap.matchIs( Qos::matchOptionIpAcl )->strValueIs( Zub::String( acl ) );
}

Zub::Ptr< Qos::PolicerConfig > policerOf( std::string const& name ) {
   auto policer = Zub::make< Qos::PolicerConfig >( Zub::Name( name ) );
   policer->cirIs( 1000 );
   policer->bcIs( 10000 );
   policer->redActionIs( Qos::actionDrop_ );
   return policer;
}

void policedMapIs( Agent& agent, std::string const& pmap ) {
   constexpr unsigned rulesPerAcl = 4;
   static std::vector< Acl::IpRuleConfig > const rules =
         Sim::readClassBench( NEVQOS_CLASSBENCH_DIR "/acl1_10k" );
   for( unsigned i = 0; i < policedClasses; ++i ) {
      std::string const name = named( "c", i );
      auto cmap = agent.classMapIs( name );
      switch( i % 3 ) {
         case 0: {
            std::string const acl = named( "acl", i );
            auto const first = rules.begin() + i * rulesPerAcl;
            agent.ipAclIs( acl, { first, first + rulesPerAcl } );
            aclMatchIs( *cmap, acl );
            break;
         }
         case 1:
            vlanMatchIs( *cmap, static_cast< std::uint16_t >( 100 + i ) );
            break;
         default:
            dscpMatchIs( *cmap, i % 64 );
            break;
      }
      agent.classIs( pmap, name )->policerIs( policerOf( named( "p", i ) ) );
   }
   agent.classDefaultIs( pmap );
}

Agent::Agent( AgentOptions const& options ) {
   using Source = Zub::ActivityManager::TimeSource;
   loop_ =
         Zub::ActivityManager::create( options.realTime ? Source::real : Source::simulated, 100.0 );
   Zub::activityManagerIs( loop_ );
   Zub::logSinkIs( [ this ]( Zub::LogRecord const& r ) {
      logs_.push_back( r.handle->name().stdString() + ": " + r.text.stdString() );
   } );
   inputsIs( options );
   chip_ = Zub::make< CountingChip >( qosStatus_, qosAclSliceHwStatus_, mainAclConfig_,
                                      options.mode, options.async );
   sm_ = Nev::QosAclSmIs( ncsd_, cliCounterConfig_, counterConfigDir_, qosStatus_, qosHwStatus_,
                          qosSliceHwStatusDir_, qosAclHwStatus_, qosAclSliceHwStatus_,
                          subIntfStatusDir_, pdpHwCfg_, hwEpochStatus_, mainAclConfig_, chip_,
                          Zub::make< Kesh::TimerWheel >(), nullptr, nullptr, nullptr );
   loop_->runOnce();
   if( !sm_->initialized() ) fail( "the engine did not start" );
}

Agent::~Agent() {
   sm_->zubDoZombieReactors( true );
   sm_ = nullptr;
   chip_ = nullptr;
   Zub::logSinkIs( nullptr );
   Zub::activityManagerIs( nullptr );
}

void Agent::inputsIs( AgentOptions const& options ) {
   ncsd_ = Zub::make< Nev::NevCommonSmData >( Zub::Name( "ncsd" ) );
   ncsd_->verifyDataIs( Zub::make< Nev::VerifyData >( Zub::Name( "verify" ) ) );
   for( unsigned n = 1; n <= options.interfaces; ++n )
      ncsd_->intfIs( ethernet( n ).intfId(), true );
   ncsd_->intfsReadyIs( true );
   cliCounterConfig_ = Zub::make< Qos::CounterConfig >( Zub::Name( "cli" ) );
   counterConfigDir_ = Zub::make< Zub::Dir >( Zub::Name( "counterConfig" ) );
   qosStatus_ = Zub::make< Qos::Status >( Zub::Name( "qos" ) );
   qosHwStatus_ = Zub::make< Qos::HwStatus >( Zub::Name( "hw" ) );
   qosSliceHwStatusDir_ = Zub::make< Zub::Dir >( Zub::Name( "slice" ) );
   auto slice = Zub::make< Qos::SliceHwStatus >( Zub::Name( "FixedSystem" ) );
   slice->maxClassesPerPolicyMapIs( options.maxClassesPerPolicyMap );
   qosSliceHwStatusDir_->entityPtrIs( Zub::Name( "FixedSystem" ), slice );
   qosAclHwStatus_ = Zub::make< Qos::AclHwStatus >( Zub::Name( "aclHw" ) );
   qosAclHwStatus_->policyQosSupportedIs( true );
   qosAclHwStatus_->policyClassMaxPrioIs( options.maxClassesPerPolicyMap + 100 );
   qosAclSliceHwStatus_ = Zub::make< Qos::AclSliceHwStatus >( Zub::Name( "aclSlice" ) );
   subIntfStatusDir_ = Zub::make< Interface::SubIntfStatusDir >( Zub::Name( "subIntf" ) );
   pdpHwCfg_ = Zub::make< Qos::Input::Config >( Zub::Name( "pdp" ) );
   hwEpochStatus_ = Zub::make< HwEpoch::Status >( Zub::Name( "epoch" ) );
   mainAclConfig_ = Zub::make< Acl::Config >( Zub::Name( "acl" ) );
}

Qos::IntfPairKey Agent::ethernet( unsigned n ) {
   return Qos::IntfPairKey( Mirel::IntfId( Zub::String( "Ethernet" + std::to_string( n ) ) ),
                            Mirel::IntfId() );
}

Qos::ServicePolicyKey Agent::spKey( std::string const& pmap ) {
   return Qos::ServicePolicyKey( Qos::mapQos_, Qos::directionInput_, Zub::Name( pmap ) );
}

void Agent::ipAclIs( std::string const& name, std::vector< Acl::IpRuleConfig > const& rules ) {
   auto acl = mainAclConfig_->configIs( Acl::ip() )->aclIs( Zub::Name( name ) );
   auto set = Zub::make< Acl::AclRuleSet >( acl->version() + 1 );
   std::uint64_t id = 1;
   for( Acl::IpRuleConfig const& rule : rules ) {
      set->ruleBySequenceIs( static_cast< std::uint32_t >( 10 * id ), Acl::UniqueId( id ) );
      set->ipRuleByIdIs( Acl::UniqueId( id ), rule );
      ++id;
   }
   acl->versionIs( acl->version() + 1 );
   acl->currCfgIs( set );
}

Zub::Ptr< Qos::ClassMapStatus > Agent::classMapIs( std::string const& name ) {
   return qosStatus_->cmapTypeIs( Qos::mapQos_ )->cmapIs( Zub::Name( name ) );
}

Zub::Ptr< Qos::ClassAction > Agent::classIs( std::string const& pmap, std::string const& cmap ) {
   auto map = qosStatus_->pmapTypeIs( Qos::mapQos_ )->pmapIs( Zub::Name( pmap ) );
   auto const prio = static_cast< unsigned >( map->classPrioSize() + 1 );
   map->classPrioIs( prio, Qos::ClassPriority( Zub::Name( cmap ) ) );
   return map->classActionIs( Zub::Name( cmap ) );
}

void Agent::classDefaultIs( std::string const& pmap ) {
   auto cmap = classMapIs( "class-default" );
   cmap->matchIs( Qos::matchOptionNone )->strValueIs( Zub::String( "" ) );
   auto map = qosStatus_->pmapTypeIs( Qos::mapQos_ )->pmapIs( Zub::Name( pmap ) );
   map->classDefaultIs( cmap );
   map->classActionDefaultIs( Zub::make< Qos::ClassAction >( Zub::Name( "class-default" ) ) );
}

void Agent::intfIs( std::string const& pmap, Qos::IntfPairKey const& intf, bool applied ) {
   auto sp = qosStatus_->servicePolicyStatusIs( spKey( pmap ) );
   if( applied ) {
      sp->intfIdsIs( intf, true );
   } else {
      sp->intfIdsDel( intf );
   }
}

void Agent::servicePolicyDel( std::string const& pmap ) {
   qosStatus_->servicePolicyStatusDel( spKey( pmap ) );
}

void Agent::newVersionIs( std::string const& pmap ) {
   auto map = qosStatus_->pmapTypeIs( Qos::mapQos_ )->pmapIs( Zub::Name( pmap ) );
   map->versionIs( map->version() + 1 );
   auto sp = qosStatus_->servicePolicyStatusIs( spKey( pmap ) );
   sp->versionIs( sp->version() + 1 );
}

void Agent::counterRequestIs() {
   if( !counterClient_ ) {
      counterClient_ = Zub::make< Qos::CounterConfig >( Zub::Name( "bench" ) );
      counterConfigDir_->entityPtrIs( Zub::Name( "bench" ), counterClient_ );
   }
   counterClient_->pmapCounterUpdateRequestTimeIs( loop_->now() );
}

void Agent::checkNoLog() const {
   if( !logs_.empty() ) fail( "the engine logged: " + logs_.front() );
}

void Agent::checkProgrammed( std::string const& pmap ) const {
   checkNoLog();
   auto const type = qosAclSliceHwStatus_->pmapType( Qos::mapQos_ );
   auto const status =
         type ? type->pmap( Qos::PolicyMapHwStatusKey( Qos::directionInput_, Zub::Name( pmap ) ) )
              : nullptr;
   if( !status || status->prgmStatus() != Qos::hwPrgmStatusSuccess_ ) {
      fail( "the engine did not report \"" + pmap + "\" programmed" );
   }
}

}  // namespace Bench
