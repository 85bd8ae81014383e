#include "NevQos/sim/scenario/StepReader.h"

#include <algorithm>
#include <optional>
#include <variant>

namespace Sim {

namespace {

std::vector< std::string_view > const changeKinds = {
   "acl",
   "removeAcl",
   "classMap",
   "removeClassMap",
   "namedPolicer",
   "removeNamedPolicer",
   "policyMap",
   "removePolicyMap",
   "servicePolicy",
   "removeServicePolicy",
   "attach",
   "detach",
   "addInterfaces",
   "removeInterfaces",
   "requestCounters",
   "traffic",
   "clearErrors",
   "fault",
   "globalMaps",
   "dscpRewriteMap",
   "removeDscpRewriteMap",
   "cosToTcProfile",
   "removeCosToTcProfile",
   "interfaceQos",
   "removeInterfaceQos",
   "ecnCounters",
   "removeEcnCounters",
   "link",
   "kernelCopp",
   "hwInitialized",
   "fecOverride",
   "removeFecOverride",
   "fecService",
   "removeFecService",
   "corruptTcam",
   "restart",
   "removeCounterClient",
   "intfUpdateCallback",
   "servicePolicyDP1",
   "corruptFecOverride",
   "corruptFecService",
   "interfacesReady",
   "cliWaiting",
   "reprogramAllPolicyMaps",
   "subInterface",
   "removeSubInterface",
   "routedPortSubIntfQosAclSharing",
   "nexthopGroup",
   "removeNexthopGroup",
};

constexpr std::pair< std::string_view, Interface::ForwardingModel > forwardingModels[] = {
   { "routed", Interface::forwardingModelRouted },
   { "bridged", Interface::forwardingModelBridged },
   { "unknown", Interface::forwardingModelUnknown },
};

constexpr std::pair< std::string_view, Mirel::AddressFamily > overrideFamilies[] = {
   { "ipv4", Mirel::ipv4 },
   { "ipv6", Mirel::ipv6 },
};

}  // namespace

StepReader::StepReader( YamlReader const& yaml, std::filesystem::path const& scenarioDir,
                        std::vector< std::string > const& faultNames )
    : yaml_( yaml )
    , acls_( yaml, scenarioDir )
    , classMaps_( yaml )
    , policies_( yaml )
    , servicePolicies_( yaml )
    , basicQos_( yaml, servicePolicies_ )
    , faultNames_( faultNames ) {}

Step StepReader::step( YAML::Node const& node, Zub::Seconds after ) const {
   yaml_.checkMapping( node, "step", { "at", "changes" } );
   Step step;
   step.where = YamlReader::whereOf( node );
   auto const at = yaml_.required( node, "at" );
   step.time = yaml_.seconds( at, "at", 0 );
   if( step.time <= after ) {
      yaml_.fail( at, "at: steps come in increasing time after the start at " +
                            secondsText( switchStartTime ) + " s; this one is not after " +
                            secondsText( after ) );
   }
   auto const changes = node[ "changes" ];
   if( !changes ) return step;
   yaml_.checkSequence( changes, "changes" );
   bool restarted = false;
   for( YAML::Node const& c : changes ) {
      step.changes.push_back( change( c ) );
      if( !std::holds_alternative< AgentRestart >( step.changes.back().value ) ) continue;
      // The changes after the mark are those made while the engines are down: one mark says
      // which they are.
      if( restarted ) yaml_.fail( c, "restart: one per step" );
      restarted = true;
   }
   return step;
}

Change StepReader::change( YAML::Node const& node ) const {
   yaml_.checkMapping( node, "change", changeKinds );
   if( node.size() != 1 ) yaml_.fail( node, "change: one kind of change per list item" );
   auto const entry = *node.begin();
   std::string const kind = entry.first.Scalar();
   return { YamlReader::whereOf( node ), value( kind, entry.second ), kind };
}

ChangeValue StepReader::value( std::string const& kind, YAML::Node const& node ) const {
   if( kind == "acl" ) return acls_.acl( node );
   if( kind == "classMap" ) return classMaps_.classMap( node );
   if( kind == "namedPolicer" ) return policies_.namedPolicer( node );
   if( kind == "policyMap" ) return policies_.policyMap( node );
   if( kind == "servicePolicy" ) return servicePolicies_.servicePolicy( node );
   if( kind == "attach" || kind == "detach" ) return attachment( node, kind == "attach" );
   if( kind == "addInterfaces" || kind == "removeInterfaces" ) {
      return InterfacePresence{ servicePolicies_.intfIds( node, kind ), kind == "addInterfaces" };
   }
   if( kind == "requestCounters" ) return CounterRequest{ yaml_.text( node, kind ) };
   if( kind == "removeCounterClient" ) return CounterClientRemoval{ yaml_.text( node, kind ) };
   if( kind == "intfUpdateCallback" ) return intfUpdateCallback( node );
   if( kind == "traffic" ) return traffic( node );
   if( kind == "clearErrors" ) {
      if( !yaml_.flag( node, kind ) )
         yaml_.fail( node, "clearErrors: write true, or leave it out" );
      return ClearRequest{};
   }
   if( kind == "fault" ) return faultSwitch( node );
   if( kind == "restart" ) {
      if( !yaml_.flag( node, kind ) ) yaml_.fail( node, "restart: write true, or leave it out" );
      return AgentRestart{};
   }
   if( kind == "corruptTcam" ) return tcamCorruption( node );
   if( kind == "kernelCopp" ) return kernelCoppReport( node );
   if( kind == "hwInitialized" ) return HwInitialization{ yaml_.flag( node, kind ) };
   if( kind == "interfacesReady" ) return InterfacesReadiness{ yaml_.flag( node, kind ) };
   if( kind == "cliWaiting" ) return CliWaiting{ yaml_.flag( node, kind ) };
   if( kind == "subInterface" ) return subInterface( node );
   if( kind == "nexthopGroup" ) return nexthopGroup( node );
   if( kind == "removeNexthopGroup" ) return NexthopGroupRemoval{ yaml_.text( node, kind ) };
   if( kind == "removeSubInterface" ) {
      return SubIntfRemoval{ subIntfIdOf( node, kind ) };
   }
   if( kind == "routedPortSubIntfQosAclSharing" ) {
      return SubIntfAclSharing{ yaml_.flag( node, kind ) };
   }
   if( kind == "reprogramAllPolicyMaps" ) {
      if( !yaml_.flag( node, kind ) ) {
         yaml_.fail( node, "reprogramAllPolicyMaps: write true, or leave it out" );
      }
      return PolicyMapsReprogramRequest{};
   }
   if( kind == "fecOverride" ) return fecOverride( node );
   if( kind == "removeFecOverride" ) {
      return FecOverrideRemoval{ overrideKey( node, kind, { "af", "dscp", "fec" } ) };
   }
   if( kind == "fecService" ) return fecService( node );
   if( kind == "servicePolicyDP1" ) return servicePolicyDP1( node );
   if( kind == "corruptFecOverride" ) {
      return FecTableDamage{ false, overrideKey( node, kind, { "af", "dscp", "fec" } ) };
   }
   if( kind == "corruptFecService" ) {
      FecTableDamage damage;
      damage.service = true;
      damage.fec = yaml_.unsignedInteger( node, kind, UINT64_MAX );
      return damage;
   }
   if( kind == "removeFecService" ) {
      return FecServiceRemoval{ yaml_.unsignedInteger( node, kind, UINT64_MAX ) };
   }
   if( auto basic = basicQosValue( kind, node ) ) return std::move( *basic );
   return removal( kind, node );
}

std::optional< ChangeValue > StepReader::basicQosValue( std::string const& kind,
                                                        YAML::Node const& node ) const {
   if( kind == "globalMaps" ) return basicQos_.globalMaps( node );
   if( kind == "dscpRewriteMap" ) return basicQos_.dscpRewriteMap( node );
   if( kind == "removeDscpRewriteMap" ) return DscpRewriteMapRemoval{ yaml_.text( node, kind ) };
   if( kind == "cosToTcProfile" ) return basicQos_.cosToTcProfile( node );
   if( kind == "removeCosToTcProfile" ) return CosToTcProfileRemoval{ yaml_.text( node, kind ) };
   if( kind == "interfaceQos" ) return basicQos_.intfQos( node );
   if( kind == "removeInterfaceQos" ) {
      return IntfQosRemoval{ servicePolicies_.intfIdOf( node, kind ) };
   }
   if( kind == "ecnCounters" ) return basicQos_.ecnCounters( node );
   if( kind == "removeEcnCounters" ) {
      return EcnCountersRemoval{ servicePolicies_.intfIdOf( node, kind ) };
   }
   if( kind == "link" ) return basicQos_.link( node );
   return std::nullopt;
}

// A removal names what it removes by name alone, for the default type (ipv4 access list, qos
// map, input service policy), or by a mapping.
ChangeValue StepReader::removal( std::string const& kind, YAML::Node const& node ) const {
   if( kind == "removeNamedPolicer" ) return NamedPolicerRemoval{ yaml_.text( node, kind ) };
   if( kind == "removeServicePolicy" ) {
      if( node.IsScalar() ) {
         return ServicePolicyRemoval{ Qos::ServicePolicyKey(
               Qos::mapQos_, Qos::directionInput_, Zub::Name( yaml_.text( node, kind ) ) ) };
      }
      yaml_.checkMapping( node, kind, { "policyMap", "type", "direction" } );
      return ServicePolicyRemoval{ servicePolicies_.key( node ) };
   }
   std::string name;
   std::optional< YAML::Node > type;
   if( node.IsScalar() ) {
      name = yaml_.text( node, kind );
   } else {
      yaml_.checkMapping( node, kind, { "name", "type" } );
      name = yaml_.text( yaml_.required( node, "name" ), "name" );
      if( auto const t = node[ "type" ] ) type = t;
   }
   if( kind == "removeAcl" ) {
      return AclRemoval{ type ? yaml_.choice( *type, "type", aclFamilyNames() ) : AclFamily::ipv4,
                         name };
   }
   Qos::MapType const mapType = type ? yaml_.choice( *type, "type", mapTypeNames() ) : Qos::mapQos_;
   if( kind == "removeClassMap" ) return ClassMapRemoval{ mapType, name };
   return PolicyMapRemoval{ mapType, name };
}

Attachment StepReader::attachment( YAML::Node const& node, bool attach ) const {
   std::string const what = attach ? "attach" : "detach";
   yaml_.checkMapping( node, what, { "policyMap", "type", "direction", "interfaces" } );
   Attachment a;
   a.key = servicePolicies_.key( node );
   a.interfaces = servicePolicies_.intfPairs( yaml_.required( node, "interfaces" ), "interfaces" );
   a.attach = attach;
   return a;
}

SubIntfDef StepReader::subInterface( YAML::Node const& node ) const {
   yaml_.checkMapping( node, "subinterface", { "interface", "forwardingModel" } );
   SubIntfDef def;
   def.intf = subIntfIdOf( yaml_.required( node, "interface" ), "interface" );
   def.forwardingModel =
         yaml_.choice( yaml_.required( node, "forwardingModel" ), "forwardingModel",
                       NameTable< Interface::ForwardingModel >( forwardingModels ) );
   return def;
}

NexthopGroupDef StepReader::nexthopGroup( YAML::Node const& node ) const {
   yaml_.checkMapping( node, "next-hop group", { "name", "index" } );
   NexthopGroupDef def;
   def.name = yaml_.text( yaml_.required( node, "name" ), "name" );
   def.index =
         std::uint32_t( yaml_.integer( yaml_.required( node, "index" ), "index", 0, UINT32_MAX ) );
   return def;
}

Mirel::IntfId StepReader::subIntfIdOf( YAML::Node const& node, std::string const& what ) const {
   Mirel::IntfId const intf = servicePolicies_.intfIdOf( node, what );
   if( !intf.isSubIntf() ) {
      yaml_.fail( node, what + ": '" + yaml_.text( node, what ) +
                              "' is not a subinterface, as in Ethernet1.100" );
   }
   return intf;
}

IntfUpdateCallback StepReader::intfUpdateCallback( YAML::Node const& node ) const {
   yaml_.checkMapping( node, "intfUpdateCallback", { "interface", "direction" } );
   IntfUpdateCallback callback;
   callback.intf = servicePolicies_.intfPair( yaml_.required( node, "interface" ), "interface" );
   if( auto const d = node[ "direction" ] ) {
      callback.direction = yaml_.choice( d, "direction", directionNames() );
   }
   return callback;
}

TrafficInjection StepReader::traffic( YAML::Node const& node ) const {
   yaml_.checkMapping( node, "traffic",
                       { "policyMap", "type", "direction", "class", "interface", "packets", "bytes",
                         "droppedPackets", "droppedBytes", "yellowPackets", "yellowBytes" } );
   TrafficInjection t;
   t.servicePolicy = servicePolicies_.key( node );
   t.classMap = yaml_.text( yaml_.required( node, "class" ), "class" );
   t.intf = servicePolicies_.intfPair( yaml_.required( node, "interface" ), "interface" );
   t.packets = yaml_.unsignedInteger( yaml_.required( node, "packets" ), "packets", UINT64_MAX );
   t.bytes = yaml_.unsignedInteger( yaml_.required( node, "bytes" ), "bytes", UINT64_MAX );
   t.droppedPackets = partOf( node, "droppedPackets", t.packets, "packets" );
   t.droppedBytes = partOf( node, "droppedBytes", t.bytes, "bytes" );
   t.yellowPackets = partOf( node, "yellowPackets", t.packets, "packets" );
   t.yellowBytes = partOf( node, "yellowBytes", t.bytes, "bytes" );
   return t;
}

// A share of the traffic's `total`, 0 when left out.
std::uint64_t StepReader::partOf( YAML::Node const& node, char const* key, std::uint64_t total,
                                  char const* totalKey ) const {
   auto const part = node[ key ];
   if( !part ) return 0;
   std::uint64_t const n = yaml_.unsignedInteger( part, key, UINT64_MAX );
   if( n > total ) {
      yaml_.fail( part, std::string( key ) + ": " + std::to_string( n ) + " is more than the " +
                              std::to_string( total ) + " " + totalKey + " of the traffic" );
   }
   return n;
}

FaultSwitch StepReader::faultSwitch( YAML::Node const& node ) const {
   yaml_.checkMapping( node, "fault", { "name", "index", "on" } );
   auto const name = node[ "name" ];
   auto const index = node[ "index" ];
   if( bool( name ) == bool( index ) ) yaml_.fail( node, "fault: give a name or an index" );
   FaultSwitch f;
   f.on = yaml_.flag( yaml_.required( node, "on" ), "on" );
   if( index ) {
      f.fault = std::size_t( yaml_.integer( index, "index", 0, INT32_MAX ) );
      return f;
   }
   std::string const text = yaml_.text( name, "name" );
   auto const it = std::find( faultNames_.begin(), faultNames_.end(), text );
   if( it == faultNames_.end() ) yaml_.fail( name, "name: the chip has no fault '" + text + "'" );
   f.fault = std::size_t( it - faultNames_.begin() );
   return f;
}

TcamCorruption StepReader::tcamCorruption( YAML::Node const& node ) const {
   yaml_.checkMapping( node, "corruptTcam",
                       { "acl", "rule", "subrule", "field", "value", "add", "fields" } );
   TcamCorruption c;
   c.acl = yaml_.text( yaml_.required( node, "acl" ), "acl" );
   auto const number = [ & ]( char const* key ) {
      auto const n = node[ key ];
      return n ? std::uint32_t( yaml_.integer( n, key, 0, UINT32_MAX ) ) : 0u;
   };
   c.rule = number( "rule" );
   c.subrule = number( "subrule" );
   auto const field = node[ "field" ];
   auto const value = node[ "value" ];
   if( auto const add = node[ "add" ] ) c.add = yaml_.flag( add, "add" );
   if( c.add ) {
      if( field || value ) {
         yaml_.fail( field ? field : value,
                     "corruptTcam: an added entry takes its fields from fields, not field and "
                     "value" );
      }
      if( auto const fields = node[ "fields" ] ) c.fields = entryFields( fields );
      return c;
   }
   if( auto const fields = node[ "fields" ] ) {
      yaml_.fail( fields, "corruptTcam: fields are for an added entry (add: true)" );
   }
   if( bool( field ) != bool( value ) ) {
      yaml_.fail( node,
                  "corruptTcam: give field and value together, or neither to lose the entry" );
   }
   if( field ) {
      c.field = yaml_.text( field, "field" );
      c.value = yaml_.text( value, "value" );
   }
   return c;
}

// The fields of an added entry, in the order written, each a name and its text.
std::vector< std::pair< std::string, std::string > > StepReader::entryFields(
      YAML::Node const& node ) const {
   if( !node.IsMap() ) yaml_.fail( node, "fields: expected a mapping, found " + kindOf( node ) );
   std::vector< std::pair< std::string, std::string > > fields;
   for( auto const& f : node ) {
      std::string const name = yaml_.text( f.first, "fields" );
      for( auto const& [ seen, text ] : fields ) {
         if( seen == name ) yaml_.fail( f.first, "fields: " + name + " is given twice" );
      }
      fields.emplace_back( name, yaml_.text( f.second, name ) );
   }
   return fields;
}

KernelCoppReport StepReader::kernelCoppReport( YAML::Node const& node ) const {
   yaml_.checkMapping( node, "kernelCopp", { "modId", "port", "queue", "state" } );
   auto const number = [ & ]( char const* key ) {
      return std::uint32_t( yaml_.integer( yaml_.required( node, key ), key, 0, UINT32_MAX ) );
   };
   KernelCoppReport report;
   std::uint32_t const modId = node[ "modId" ] ? number( "modId" ) : 0;
   report.key = Nev::ModIdPortQueueKey( modId, number( "port" ), number( "queue" ) );
   report.state = yaml_.choice( yaml_.required( node, "state" ), "state", kernelCoppStateNames() );
   return report;
}

Qos::Glarn::OverrideKey StepReader::overrideKey(
      YAML::Node const& node, std::string const& what,
      std::vector< std::string_view > const& keys ) const {
   yaml_.checkMapping( node, what, keys );
   Qos::Glarn::OverrideKey key;
   if( auto const af = node[ "af" ] ) {
      key.af = yaml_.choice( af, "af", NameTable< Mirel::AddressFamily >( overrideFamilies ) );
   }
   key.dscp = Qos::Dscp( yaml_.dscp( yaml_.required( node, "dscp" ), "dscp" ) );
   key.fecId = yaml_.unsignedInteger( yaml_.required( node, "fec" ), "fec", UINT64_MAX );
   return key;
}

FecOverrideDef StepReader::fecOverride( YAML::Node const& node ) const {
   FecOverrideDef def;
   def.key = overrideKey( node, "fecOverride", { "af", "dscp", "fec", "overridingFec" } );
   def.overridingFec = yaml_.unsignedInteger( yaml_.required( node, "overridingFec" ),
                                              "overridingFec", UINT64_MAX );
   return def;
}

FecServiceDef StepReader::fecService( YAML::Node const& node ) const {
   yaml_.checkMapping( node, "fecService", { "fec", "hwFecId" } );
   FecServiceDef def;
   def.fec = yaml_.unsignedInteger( yaml_.required( node, "fec" ), "fec", UINT64_MAX );
   def.hwFecId = yaml_.unsignedInteger( yaml_.required( node, "hwFecId" ), "hwFecId", UINT64_MAX );
   return def;
}

Dp1Policy StepReader::servicePolicyDP1( YAML::Node const& node ) const {
   yaml_.checkMapping( node, "servicePolicyDP1", { "policyMap", "type", "direction", "on" } );
   Dp1Policy dp1{ servicePolicies_.key( node ) };
   if( auto const on = node[ "on" ] ) dp1.on = yaml_.flag( on, "on" );
   return dp1;
}

}  // namespace Sim
