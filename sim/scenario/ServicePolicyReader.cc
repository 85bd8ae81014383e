#include "NevQos/sim/scenario/ServicePolicyReader.h"

#include "NevQos/platform/zub/Exception.h"

namespace Sim {

ServicePolicyDef ServicePolicyReader::servicePolicy( YAML::Node const& node ) const {
   yaml_.checkMapping( node, "service policy", { "policyMap", "type", "direction", "interfaces" } );
   ServicePolicyDef sp;
   sp.key = key( node );
   if( auto const i = node[ "interfaces" ] ) sp.interfaces = intfPairs( i, "interfaces" );
   return sp;
}

Qos::ServicePolicyKey ServicePolicyReader::key( YAML::Node const& node ) const {
   std::string const pmap = yaml_.text( yaml_.required( node, "policyMap" ), "policyMap" );
   Qos::MapType type = Qos::mapQos_;
   if( auto const t = node[ "type" ] ) type = yaml_.choice( t, "type", mapTypeNames() );
   Qos::Direction direction = Qos::directionInput_;
   if( auto const d = node[ "direction" ] ) {
      direction = yaml_.choice( d, "direction", directionNames() );
   }
   return Qos::ServicePolicyKey( type, direction, Zub::Name( pmap ) );
}

std::vector< Mirel::IntfId > ServicePolicyReader::intfIds( YAML::Node const& node,
                                                           std::string const& what ) const {
   yaml_.checkSequence( node, what );
   std::vector< Mirel::IntfId > out;
   for( YAML::Node const& item : node ) {
      std::string const text = yaml_.text( item, what );
      out.push_back( intfId( item, what, text ) );
   }
   return out;
}

std::vector< Qos::IntfPairKey > ServicePolicyReader::intfPairs( YAML::Node const& node,
                                                                std::string const& what ) const {
   yaml_.checkSequence( node, what );
   std::vector< Qos::IntfPairKey > out;
   for( YAML::Node const& item : node )
      out.push_back( intfPair( item, what ) );
   return out;
}

Qos::IntfPairKey ServicePolicyReader::intfPair( YAML::Node const& node,
                                                std::string const& what ) const {
   std::string const text = yaml_.text( node, what );
   std::size_t const at = text.find( '@' );
   if( at == std::string::npos ) return Qos::IntfPairKey( intfId( node, what, text ) );
   Mirel::IntfId const member = intfId( node, what, text.substr( 0, at ) );
   Mirel::IntfId const lag = intfId( node, what, text.substr( at + 1 ) );
   if( !member.isEthernet() || member.isSubIntf() || !lag.isLag() || lag.isSubIntf() ) {
      yaml_.fail( node, what + ": '" + text +
                              "' is not an Ethernet port and its port-channel, "
                              "as in Ethernet1@Port-Channel10" );
   }
   return Qos::IntfPairKey( member, lag );
}

Mirel::IntfId ServicePolicyReader::intfId( YAML::Node const& node, std::string const& what,
                                           std::string const& text ) const {
   try {
      return Mirel::IntfId( std::string_view( text ) );
   } catch( Zub::Exception const& ) {
      yaml_.fail( node, what + ": '" + text + "' is not an interface name" );
   }
}

}  // namespace Sim
