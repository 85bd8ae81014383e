#include "NevQos/sim/scenario/EntityWriter.h"

#include "NevQos/platform/zub/Assert.h"

namespace Sim {

namespace {

Acl::AclType aclTypeOf( AclFamily family ) {
   switch( family ) {
      case AclFamily::ipv6:
         return Acl::ipv6();
      case AclFamily::mac:
         return Acl::mac();
      case AclFamily::ipv4:
         break;
   }
   return Acl::ip();
}

template< class Rule, class Put >
void rulesIs( Acl::AclRuleSet& set, std::vector< SequencedRule< Rule > > const& rules,
              Put const& put ) {
   std::uint64_t id = 1;
   for( SequencedRule< Rule > const& r : rules ) {
      set.ruleBySequenceIs( r.sequence, Acl::UniqueId( id ) );
      put( set, Acl::UniqueId( id ), r.rule );
      ++id;
   }
}

// Hands each span to `add` as a range of the match's kind.
template< class Range, class Add >
void rangesIs( std::vector< Span > const& spans, Add const& add ) {
   using T = typename Range::ValueType;
   for( Span const& s : spans )
      add( Range( static_cast< T >( s.low ), static_cast< T >( s.high ) ) );
}

Zub::Ptr< Qos::ClassMapMatchVlan > vlanValueOf( MatchDef const& match ) {
   if( match.vlanMasked ) {
      auto value = Zub::make< Qos::ClassMapMatchVlan >( match.vlan, match.vlanMask );
      value->maskValidIs( true );
      return value;
   }
   auto value = Zub::make< Qos::ClassMapMatchVlan >( 0, 0 );
   rangesIs< Qos::VlanRange >( match.vlans,
                               [ & ]( auto const& r ) { value->vlanCollIs( r, true ); } );
   return value;
}

Zub::Ptr< Qos::ClassMapMatchCos > cosValueOf( MatchDef const& match ) {
   auto value = Zub::make< Qos::ClassMapMatchCos >( Zub::String( "cos" ) );
   rangesIs< Qos::CosRange >( match.coses,
                              [ & ]( auto const& r ) { value->cosCollIs( r, true ); } );
   return value;
}

Zub::Ptr< Qos::ClassMapMatchDscpEcn > dscpEcnValueOf( MatchDef const& match ) {
   auto value = Zub::make< Qos::ClassMapMatchDscpEcn >( Qos::DscpVal( match.dscp ), match.ecn );
   value->dscpNameValidIs( match.dscpByName );
   rangesIs< Qos::DscpRange >( match.dscps,
                               [ & ]( auto const& r ) { value->dscpCollIs( r, true ); } );
   return value;
}

Zub::Ptr< Qos::ClassMapMatchMplsTrafficClass > mplsValueOf( MatchDef const& match ) {
   auto value = Zub::make< Qos::ClassMapMatchMplsTrafficClass >( Zub::String( "mpls" ) );
   rangesIs< Qos::MplsTrafficClassRange >( match.trafficClasses, [ & ]( auto const& r ) {
      value->mplsTrafficClassCollIs( r, true );
   } );
   return value;
}

void matchIs( Qos::ClassMapMatch& m, MatchDef const& match ) {
   switch( match.option ) {
      case Qos::matchOptionIpAcl:
      case Qos::matchOptionIpv6Acl:
      case Qos::matchOptionMac:
         m.strValueIs( Zub::String( match.acl ) );
         break;
      case Qos::matchOptionVlan:
         m.vlanValueIs( vlanValueOf( match ) );
         break;
      case Qos::matchOptionCos:
         m.cosValueIs( cosValueOf( match ) );
         break;
      case Qos::matchOptionVlanCos:
         m.vlanValueIs( vlanValueOf( match ) );
         m.cosValueIs( cosValueOf( match ) );
         break;
      case Qos::matchOptionDscpEcn:
         m.dscpEcnValueIs( dscpEcnValueOf( match ) );
         break;
      case Qos::matchOptionMplsTrafficClass:
         m.mplsTrafficClassValueIs( mplsValueOf( match ) );
         break;
      case Qos::matchOptionBuiltIn:
         m.builtInValueIs( Qos::ClassMapMatchBuiltIn( Zub::Name( match.builtIn ) ) );
         break;
      case Qos::matchOptionNone:
         break;
   }
}

template< class Entity >
void ratesIs( Entity& e, PolicerRates const& r ) {
   e.cirIs( r.cir );
   e.cirUnitIs( r.cirUnit );
   e.bcIs( r.bc );
   e.bcUnitIs( r.bcUnit );
   e.pirIs( r.pir );
   e.pirUnitIs( r.pirUnit );
   e.beIs( r.be );
   e.beUnitIs( r.beUnit );
}

Zub::Ptr< Qos::PolicerConfig > policerOf( ClassDef const& cls, ConfigModel const& config,
                                          ConfigModel::MapKey const& pmap ) {
   PoliceDef const& police = *cls.police;
   bool const named = !police.named.empty();
   auto policer =
         Zub::make< Qos::PolicerConfig >( Zub::Name( named ? police.named : cls.classMap ) );
   policer->namedIs( named );
   if( named ) {
      PolicerRates const* rates = config.namedPolicerRates( pmap, police.named );
      ZUB_ASSERT( rates );
      ratesIs( *policer, *rates );
   } else {
      ratesIs( *policer, police.rates );
   }
   for( auto const& [ type, value ] : police.yellow )
      policer->yellowActionIs( type )->valueIs( value );
   for( auto const& [ type, value ] : police.red )
      policer->redActionIs( type )->valueIs( value );
   return policer;
}

void classActionIs( Qos::ClassAction& action, ClassDef const& cls, ConfigModel const& config,
                    PolicyMapDef const& pmap ) {
   for( auto const& [ type, value ] : cls.actions )
      action.actionIs( type )->valueIs( value );
   action.countIs( cls.count );
   if( cls.police ) action.policerIs( policerOf( cls, config, { pmap.type, pmap.name } ) );
}

bool isStaticClass( PolicyMapDef const& pmap, ClassDef const& cls, ConfigModel const& config ) {
   if( pmap.type != Qos::mapControlPlane_ ) return false;
   auto const it = config.classMaps().find( { pmap.type, cls.classMap } );
   return it != config.classMaps().end() && it->second.cpType == Qos::cmapCpStatic_;
}

}  // namespace

void capabilitiesIs( Qos::AclHwStatus& aclHw, Qos::HwStatus& hw, ChipConfig const& chip ) {
   aclHw.policeByteModeMinRateKbpsIs( chip.policeByteModeMinRateKbps );
   aclHw.policeByteModeMaxRateKbpsIs( chip.policeByteModeMaxRateKbps );
   aclHw.policeByteModeMinBurstBytesIs( chip.policeByteModeMinBurstBytes );
   aclHw.policeByteModeMaxBurstBytesIs( chip.policeByteModeMaxBurstBytes );
   aclHw.policePacketModeMinRatePpsIs( chip.policePacketModeMinRatePps );
   aclHw.policePacketModeMaxRatePpsIs( chip.policePacketModeMaxRatePps );
   aclHw.policePacketModeMinBurstPacketsIs( chip.policePacketModeMinBurstPackets );
   aclHw.policePacketModeMaxBurstPacketsIs( chip.policePacketModeMaxBurstPackets );
   aclHw.coppSupportedIs( chip.coppSupported );
   aclHw.coppDynamicClassSupportedIs( chip.coppDynamicClassSupported );
   aclHw.intfCoppSupportedIs( chip.intfCoppSupported );
   aclHw.policyQosSupportedIs( chip.policyQosSupported );
   aclHw.policyClassMaxPrioIs( chip.policyClassMaxPrio );
   aclHw.sharedQosAclTypesCounterSupportedIs( chip.sharedQosAclTypesCounterSupported );
   aclHw.vlanClassMatchSupportedIs( chip.vlanClassMatchSupported );
   aclHw.cosClassMatchSupportedIs( chip.cosClassMatchSupported );
   aclHw.dscpEcnClassMatchSupportedIs( chip.dscpEcnClassMatchSupported );
   aclHw.perClassPolicerSupportedIs( chip.perClassPolicerSupported );
   aclHw.selfReportedPrgmStatusIs( chip.selfReportedPrgmStatus );
   hw.pdpSupportedIs( chip.pdpSupported );
   basicCapabilitiesIs( hw, chip );
   for( NamedPolicerDef const& p : chip.namedPolicers ) {
      auto status = aclHw.namedPolicerStatusIs( Zub::Name( p.name ) );
      status->sharedIs( p.shared );
      ratesIs( *status, p.rates );
   }
}

void basicCapabilitiesIs( Qos::HwStatus& hw, ChipConfig const& chip ) {
   hw.numTcSupportedIs( chip.numTcSupported );
   hw.numTxQueueSupportedIs( chip.numTxQueueSupported );
   hw.numMulticastQueueSupportedIs( chip.numMulticastQueueSupported );
   hw.mcTxQueueMapSupportedIs( chip.mcTxQueueMapSupported );
   hw.hwInitializedIs( chip.hwInitialized );
   hw.dscpRewriteSupportedIs( chip.dscpRewriteSupported );
   hw.dscpToDpMapSupportedIs( chip.dscpToDpMapSupported );
   hw.dscpRewritePerInterfaceSupportedIs( chip.dscpRewritePerInterfaceSupported );
   hw.cosToTcPerInterfaceSupportedIs( chip.cosToTcPerInterfaceSupported );
   hw.ecnSupportedIs( chip.ecnSupported );
   hw.ecnQueueCounterSupportedIs( chip.ecnQueueCounterSupported );
   hw.ecnDelaySupportedIs( chip.ecnDelaySupported );
   hw.nonEctThdSupportedIs( chip.nonEctThdSupported );
   hw.wredSupportedIs( chip.wredSupported );
   hw.dropPrecedenceThresholdSupportedIs( chip.dropPrecedenceThresholdSupported );
   hw.guaranteedBwSupportedIs( chip.guaranteedBwSupported );
   hw.minPortShapeRateIs( chip.minPortShapeRate );
   hw.minTxQueueShapeRateIs( chip.minTxQueueShapeRate );
   hw.maxShapeRateKbpsIs( chip.maxShapeRateKbps );
   hw.maxShapeRatePpsIs( chip.maxShapeRatePps );
   hw.minGuaranteedBwKbpsIs( chip.minGuaranteedBwKbps );
   hw.maxGuaranteedBwKbpsIs( chip.maxGuaranteedBwKbps );
   hw.minGuaranteedBwPpsIs( chip.minGuaranteedBwPps );
   hw.maxGuaranteedBwPpsIs( chip.maxGuaranteedBwPps );
   // The chip's fixed defaults.
   for( unsigned n = 0; n < 8; ++n ) {
      hw.defaultCosToTcMapIs( Qos::Cos( n ), Qos::TrafficClass( n ) );
      hw.defaultExpToTcMapIs( Qos::Exp( n ), Qos::TrafficClass( n ) );
   }
   for( unsigned d = 0; d < 64; ++d )
      hw.defaultDscpToTcMapIs( Qos::Dscp( d ), Qos::TrafficClass( d / 8 ) );
   for( unsigned t = 0; t < 16; ++t ) {
      unsigned const low = t < 8 ? t : 7;
      hw.defaultTcToCosMapIs( Qos::TrafficClass( t ), Qos::Cos( low ) );
      hw.defaultTcToExpMapIs( Qos::TrafficClass( t ), Qos::Exp( low ) );
      hw.defaultTcToDscpMapIs( Qos::TrafficClass( t ), Qos::Dscp( 8 * low ) );
      hw.defaultTcToTxQueueMapIs( Qos::TrafficClass( t ), Qos::TxQueueId( t ) );
      hw.defaultTcToMcTxQueueMapIs( Qos::TrafficClass( t ), Qos::TxQueueId( t ) );
   }
}

void aclIs( Acl::Config& config, AclDef const& def ) {
   auto acl = config.configIs( aclTypeOf( def.family ) )->aclIs( Zub::Name( def.name ) );
   unsigned const version = acl->version() + 1;
   auto set = Zub::make< Acl::AclRuleSet >( version );
   rulesIs( *set, def.ipv4Rules,
            []( auto& s, auto id, auto const& r ) { s.ipRuleByIdIs( id, r ); } );
   rulesIs( *set, def.ipv6Rules,
            []( auto& s, auto id, auto const& r ) { s.ip6RuleByIdIs( id, r ); } );
   rulesIs( *set, def.macRules,
            []( auto& s, auto id, auto const& r ) { s.macRuleByIdIs( id, r ); } );
   acl->versionIs( version );
   acl->currCfgIs( set );
}

void aclDel( Acl::Config& config, AclFamily family, std::string const& name ) {
   if( auto type = config.config( aclTypeOf( family ) ) ) type->aclDel( Zub::Name( name ) );
}

void classMapIs( Qos::Status& status, ClassMapDef const& def ) {
   auto types = status.cmapTypeIs( def.type );
   Zub::Name const name( def.name );
   auto cmap = types->cmapIs( name );
   cmap->matchDelAll();
   for( MatchDef const& match : def.matches )
      matchIs( *cmap->matchIs( match.option ), match );
   if( def.type != Qos::mapControlPlane_ ) return;
   cmap->cpTypeIs( def.cpType );
   if( def.cpType == Qos::cmapCpStatic_ ) {
      types->cpTypeIs( name, Qos::cmapCpStatic_ );
   } else {
      types->cpTypeDel( name );
   }
}

void classMapDel( Qos::Status& status, Qos::MapType type, std::string const& name ) {
   auto types = status.cmapType( type );
   if( !types ) return;
   types->cmapDel( Zub::Name( name ) );
   types->cpTypeDel( Zub::Name( name ) );
}

void classDefaultMapIs( Qos::Status& status, Qos::MapType type ) {
   auto cmap = status.cmapTypeIs( type )->cmapIs( Zub::Name( classDefaultName ) );
   cmap->matchIs( Qos::matchOptionNone );
}

void namedPolicerIs( Qos::Status& status, NamedPolicerDef const& def, bool moveVersion ) {
   auto policer = status.namedPolicerIs( Zub::Name( def.name ) );
   policer->sharedIs( def.shared );
   ratesIs( *policer, def.rates );
   if( moveVersion ) policer->paramChangeVersionIs( policer->paramChangeVersion() + 1 );
}

void policyMapIs( Qos::Status& status, PolicyMapDef const& def, ConfigModel const& config ) {
   auto pmap = status.pmapTypeIs( def.type )->pmapIs( Zub::Name( def.name ) );
   pmap->sharedIs( def.shared );
   pmap->classPrioDelAll();
   pmap->coppStaticClassPrioDelAll();
   pmap->classActionDelAll();
   pmap->classDefaultIs( nullptr );
   pmap->classActionDefaultIs( nullptr );
   unsigned prio = 0;
   unsigned staticPrio = 0;
   for( ClassDef const& cls : def.classes ) {
      Zub::Name const name( cls.classMap );
      if( isStaticClass( def, cls, config ) ) {
         pmap->coppStaticClassPrioIs( ++staticPrio, Qos::ClassPriority( name ) );
      } else {
         pmap->classPrioIs( ++prio, Qos::ClassPriority( name ) );
      }
      classActionIs( *pmap->classActionIs( name ), cls, config, def );
   }
   if( !def.classDefault ) return;
   classDefaultMapIs( status, def.type );
   Zub::Name const defaultName( classDefaultName );
   auto const cmaps = status.cmapType( def.type );
   ZUB_ASSERT( cmaps );
   pmap->classDefaultIs( cmaps->cmap( defaultName ) );
   auto action = Zub::make< Qos::ClassAction >( defaultName );
   classActionIs( *action, *def.classDefault, config, def );
   pmap->classActionDefaultIs( action );
}

}  // namespace Sim
