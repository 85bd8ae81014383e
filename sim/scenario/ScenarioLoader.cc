#include "NevQos/sim/scenario/ScenarioLoader.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <optional>
#include <set>
#include <sstream>

#include <yaml-cpp/depthguard.h>
#include <yaml-cpp/eventhandler.h>

#include "NevQos/platform/zub/Trace.h"
#include "NevQos/sim/scenario/ChipReader.h"
#include "NevQos/sim/scenario/ConfigModel.h"
#include "NevQos/sim/scenario/ExpectReader.h"
#include "NevQos/sim/scenario/StepReader.h"
#include "NevQos/sim/scenario/TextRules.h"

namespace Sim {

namespace {

std::vector< std::string_view > const topKeys = {
   "description",
   "chip",
   "interfaces",
   "acls",
   "classMaps",
   "namedPolicers",
   "policyMaps",
   "servicePolicies",
   "globalMaps",
   "dscpRewriteMaps",
   "cosToTcProfiles",
   "interfaceQos",
   "ecnCounters",
   "links",
   "kernelCopp",
   "fecOverrides",
   "fecService",
   "steps",
   "trace",
   "kernelCoppConfig",
   "interfacesReady",
   "subInterfaces",
   "routedPortSubIntfQosAclSharing",
   "nexthopGroups",
   "expect",
};

// Where each document of a text starts; nothing else is kept.
class DocumentStarts : public YAML::EventHandler {
 public:
   std::optional< YAML::Mark > last;
   bool stuck = false;

   void OnDocumentStart( YAML::Mark const& mark ) override {
      stuck = last && last->pos == mark.pos;
      last = mark;
   }
   void OnDocumentEnd() override {}
   void OnNull( YAML::Mark const&, YAML::anchor_t ) override {}
   void OnAlias( YAML::Mark const&, YAML::anchor_t ) override {}
   void OnScalar( YAML::Mark const&, std::string const&, YAML::anchor_t,
                  std::string const& ) override {}
   void OnSequenceStart( YAML::Mark const&, std::string const&, YAML::anchor_t,
                         YAML::EmitterStyle::value ) override {}
   void OnSequenceEnd() override {}
   void OnMapStart( YAML::Mark const&, std::string const&, YAML::anchor_t,
                    YAML::EmitterStyle::value ) override {}
   void OnMapEnd() override {}
};

// yaml-cpp's parser can start a new, empty document at a token it does not consume (a stray ','
// after a top-level node), so YAML::LoadAll would collect documents forever. A walk of the
// documents first stops where one starts at the place of the last.
void checkDocumentsEnd( std::string const& text, YamlReader const& yaml ) {
   std::istringstream in( text );
   YAML::Parser parser( in );
   DocumentStarts starts;
   while( parser.HandleNextDocument( starts ) ) {
      if( starts.stuck ) {
         YAML::Mark const& at = *starts.last;
         yaml.fail( Where{ at.line + 1, at.column + 1 },
                    "unexpected '" + text.substr( std::size_t( at.pos ), 1 ) + "'" );
      }
   }
}

// Every string of the scenario reaches the JSON report, which holds UTF-8 only: refuse other
// text where it stands rather than fail after the run.
void checkUtf8( std::string const& text, YamlReader const& yaml ) {
   Where at{ 1, 1 };
   for( std::size_t i = 0; i < text.size(); ) {
      std::size_t const n = utf8SequenceAt( text, i );
      if( n == 0 ) {
         char hex[ 8 ];
         std::snprintf( hex, sizeof hex, "0x%02x",
                        unsigned( static_cast< unsigned char >( text[ i ] ) ) );
         yaml.fail( at, std::string( "the text is not UTF-8 (byte " ) + hex + ")" );
      }
      if( text[ i ] == '\n' ) {
         ++at.line;
         at.column = 1;
      } else {
         ++at.column;
      }
      i += n;
   }
}

// Every scalar, keys too, after the parser has turned escapes ("\x01", "\ud800") into text: a
// name or a text must be one printable piece in every report. A collection an alias repeats is
// walked once.
void checkTexts( YAML::Node const& node, YamlReader const& yaml, std::set< int >& walked ) {
   if( node.IsScalar() ) {
      if( auto const problem = textProblem( node.Scalar() ) ) {
         yaml.fail( node, "a name or text " + *problem +
                                "; names and texts are printable UTF-8 on one line" );
      }
      return;
   }
   if( !node.IsMap() && !node.IsSequence() ) return;
   if( !walked.insert( node.Mark().pos ).second ) return;
   if( node.IsSequence() ) {
      for( YAML::Node const& item : node )
         checkTexts( item, yaml, walked );
      return;
   }
   for( auto const& entry : node ) {
      checkTexts( entry.first, yaml, walked );
      checkTexts( entry.second, yaml, walked );
   }
}

// The one document of the text.
YAML::Node documentOf( std::string const& text, YamlReader const& yaml ) {
   checkUtf8( text, yaml );
   std::vector< YAML::Node > docs;
   try {
      checkDocumentsEnd( text, yaml );
      docs = YAML::LoadAll( text );
   } catch( YAML::DeepRecursion const& e ) {
      // The parser's own message is "bad file", and its place the start.
      yaml.fail( Where{}, "collections are nested " + std::to_string( e.depth() ) +
                                " deep or more; the YAML reader follows " +
                                std::to_string( e.depth() - 1 ) + " levels at most" );
   } catch( YAML::Exception const& e ) {
      yaml.fail( Where{ e.mark.line + 1, e.mark.column + 1 }, e.msg );
   }
   if( docs.size() > 1 ) yaml.fail( docs[ 1 ], "one YAML document per scenario" );
   if( docs.empty() || docs[ 0 ].IsNull() ) yaml.fail( Where{ 1, 1 }, "the scenario is empty" );
   std::set< int > walked;
   checkTexts( docs[ 0 ], yaml, walked );
   return docs[ 0 ];
}

// Reads the items of one list of the starting configuration as changes; no two may have the
// same key.
template< class Read, class KeyOf >
void initialList( YAML::Node const& doc, char const* key, YamlReader const& yaml, Read const& read,
                  KeyOf const& keyOf, std::vector< Change >& out ) {
   auto const list = doc[ key ];
   if( !list ) return;
   yaml.checkSequence( list, key );
   std::set< std::string > seen;
   for( YAML::Node const& item : list ) {
      auto def = read( item );
      std::string const text = keyOf( def );
      if( !seen.insert( text ).second )
         yaml.fail( item, key + std::string( ": " ) + text + " given twice" );
      out.push_back( { YamlReader::whereOf( item ), std::move( def ) } );
   }
}

// Basic QoS: the global maps, then the named maps and profiles the interfaces name, the
// interfaces, their ECN counters and links.
void readInitialBasicQos( YAML::Node const& doc, YamlReader const& yaml,
                          BasicQosReader const& reader, std::vector< Change >& out ) {
   if( auto const maps = doc[ "globalMaps" ] ) {
      out.push_back( { YamlReader::whereOf( maps ), reader.globalMaps( maps ) } );
   }
   initialList(
         doc, "dscpRewriteMaps", yaml,
         [ & ]( auto const& n ) { return reader.dscpRewriteMap( n ); },
         []( DscpRewriteMapDef const& m ) { return m.name; }, out );
   initialList(
         doc, "cosToTcProfiles", yaml,
         [ & ]( auto const& n ) { return reader.cosToTcProfile( n ); },
         []( CosToTcProfileDef const& p ) { return p.name; }, out );
   initialList(
         doc, "interfaceQos", yaml, [ & ]( auto const& n ) { return reader.intfQos( n ); },
         [ & ]( IntfQosDef const& q ) { return intfName( q.intf ); }, out );
   initialList(
         doc, "ecnCounters", yaml, [ & ]( auto const& n ) { return reader.ecnCounters( n ); },
         [ & ]( EcnCountersDef const& c ) { return intfName( c.intf ); }, out );
   initialList(
         doc, "links", yaml, [ & ]( auto const& n ) { return reader.link( n ); },
         [ & ]( LinkDef const& l ) { return intfName( l.intf ); }, out );
}

void readInitial( YAML::Node const& doc, YamlReader const& yaml, StepReader const& reader,
                  std::vector< Change >& out ) {
   if( auto const intfs = doc[ "interfaces" ] ) {
      out.push_back( { YamlReader::whereOf( intfs ),
                       InterfacePresence{ reader.servicePolicies().intfIds( intfs, "interfaces" ),
                                          true } } );
   }
   if( auto const ready = doc[ "interfacesReady" ] ) {
      out.push_back( { YamlReader::whereOf( ready ),
                       InterfacesReadiness{ yaml.flag( ready, "interfacesReady" ) } } );
   }
   initialList(
         doc, "subInterfaces", yaml, [ & ]( auto const& n ) { return reader.subInterface( n ); },
         []( SubIntfDef const& s ) { return intfName( s.intf ); }, out );
   initialList(
         doc, "nexthopGroups", yaml, [ & ]( auto const& n ) { return reader.nexthopGroup( n ); },
         []( NexthopGroupDef const& g ) { return g.name; }, out );
   if( auto const sharing = doc[ "routedPortSubIntfQosAclSharing" ] ) {
      out.push_back(
            { YamlReader::whereOf( sharing ),
              SubIntfAclSharing{ yaml.flag( sharing, "routedPortSubIntfQosAclSharing" ) } } );
   }
   initialList(
         doc, "acls", yaml, [ & ]( auto const& n ) { return reader.acls().acl( n ); },
         []( AclDef const& a ) { return aclText( a.family, a.name ); }, out );
   initialList(
         doc, "classMaps", yaml,
         [ & ]( auto const& n ) { return reader.classMaps().classMap( n ); },
         []( ClassMapDef const& c ) { return classMapText( c.type, c.name ); }, out );
   initialList(
         doc, "namedPolicers", yaml,
         [ & ]( auto const& n ) { return reader.policies().namedPolicer( n ); },
         []( NamedPolicerDef const& p ) { return namedPolicerText( p.name ); }, out );
   initialList(
         doc, "policyMaps", yaml,
         [ & ]( auto const& n ) { return reader.policies().policyMap( n ); },
         []( PolicyMapDef const& p ) { return policyMapText( p.type, p.name ); }, out );
   initialList(
         doc, "servicePolicies", yaml,
         [ & ]( auto const& n ) { return reader.servicePolicies().servicePolicy( n ); },
         []( ServicePolicyDef const& s ) { return servicePolicyText( s.key ); }, out );
   readInitialBasicQos( doc, yaml, reader.basicQos(), out );
   // Reports the kernel made before the switch's agent started.
   initialList(
         doc, "kernelCopp", yaml, [ & ]( auto const& n ) { return reader.kernelCoppReport( n ); },
         []( KernelCoppReport const& r ) { return "queue " + portQueueText( r.key ); }, out );
   initialList(
         doc, "fecOverrides", yaml, [ & ]( auto const& n ) { return reader.fecOverride( n ); },
         []( FecOverrideDef const& o ) { return "override " + textOf( o.key ); }, out );
   initialList(
         doc, "fecService", yaml, [ & ]( auto const& n ) { return reader.fecService( n ); },
         []( FecServiceDef const& f ) { return "FEC " + std::to_string( f.fec ); }, out );
}

void readSteps( YAML::Node const& doc, YamlReader const& yaml, StepReader const& reader,
                std::vector< Step >& out ) {
   auto const steps = doc[ "steps" ];
   if( !steps ) return;
   yaml.checkSequence( steps, "steps" );
   Zub::Seconds after = switchStartTime;
   for( YAML::Node const& s : steps ) {
      out.push_back( reader.step( s, after ) );
      after = out.back().time;
   }
}

// Runs every change through a model in time order: the first that names what doesn't exist,
// or removes what is still used, fails at its place.
void checkChanges( Scenario const& scenario ) {
   ConfigModel model( scenario.chip.faults.size() );
   model.pdpIs( scenario.chip.pdpMode, scenario.chip.namedPolicers );
   auto const apply = [ & ]( Change const& change ) {
      try {
         model.apply( change.value );
      } catch( ConfigModel::Refusal const& r ) {
         throw ScenarioError( scenario.file, change.where, r.what() );
      }
   };
   for( Change const& change : scenario.initial )
      apply( change );
   for( Step const& step : scenario.steps ) {
      for( Change const& change : step.changes )
         apply( change );
   }
}

// The trace lists a scenario asks for, as --trace takes them.
std::vector< std::string > traceLists( YAML::Node const& node, YamlReader const& yaml ) {
   yaml.checkSequence( node, "trace" );
   std::vector< std::string > lists;
   for( YAML::Node const& item : node ) {
      std::string list = yaml.text( item, "trace" );
      if( !Zub::traceListValid( list ) ) {
         yaml.fail( item,
                    "trace: '" + list +
                          "' is not a trace list (HANDLE/LEVELS, such as NevQos/0-3 or */0)" );
      }
      lists.push_back( std::move( list ) );
   }
   return lists;
}

// In PDP mode the engine applies the default PDP policy as it starts, and stops on one whose
// policy map type has nothing in it: the starting configuration must hold the policy map.
void checkDefaultPdpPolicy( YAML::Node const& doc, YamlReader const& yaml,
                            Scenario const& scenario ) {
   if( !scenario.chip.pdpMode ) return;
   for( Change const& change : scenario.initial ) {
      auto const* pmap = std::get_if< PolicyMapDef >( &change.value );
      if( pmap && ConfigModel::MapKey{ pmap->type, pmap->name } == ConfigModel::defaultPdpPolicy() )
         return;
   }
   yaml.fail( doc[ "chip" ][ "pdpMode" ],
              "pdpMode: the starting policyMaps need the default PDP policy's map (name: " +
                    ConfigModel::defaultPdpPolicy().second + ", type: pdp)" );
}

Scenario scenarioOf( YAML::Node const& doc, YamlReader const& yaml,
                     std::filesystem::path const& dir ) {
   yaml.checkMapping( doc, "scenario", topKeys );
   Scenario scenario;
   scenario.file = yaml.file();
   if( auto const d = doc[ "description" ] ) scenario.description = yaml.text( d, "description" );
   if( auto const chip = doc[ "chip" ] ) {
      ChipReader( yaml ).chip( chip, scenario.chip, scenario.faultNames );
   }
   // The kernel's CoPP configuration holds nothing the engine reads: it is there or not.
   if( auto const k = doc[ "kernelCoppConfig" ] ) {
      scenario.kernelCoppConfig = yaml.flag( k, "kernelCoppConfig" );
   }
   StepReader const reader( yaml, dir, scenario.faultNames );
   readInitial( doc, yaml, reader, scenario.initial );
   readSteps( doc, yaml, reader, scenario.steps );
   checkDefaultPdpPolicy( doc, yaml, scenario );
   checkChanges( scenario );
   if( auto const t = doc[ "trace" ] ) scenario.traces = traceLists( t, yaml );
   if( auto const e = doc[ "expect" ] ) scenario.expect = expectationsOf( e, yaml );
   return scenario;
}

}  // namespace

Scenario loadScenario( std::string const& path ) {
   // The reports name the file.
   if( auto const problem = textProblem( path ) ) {
      throw ScenarioError( path, Where{}, "the file's name " + *problem );
   }
   std::ifstream in( path, std::ios::binary );
   std::ostringstream text;
   if( in ) text << in.rdbuf();
   if( !in || in.bad() ) {
      throw ScenarioError( path, Where{}, std::string( "cannot read: " ) + std::strerror( errno ) );
   }
   return loadScenarioText( text.str(), path );
}

Scenario loadScenarioText( std::string const& text, std::string const& pretendPath ) {
   YamlReader const yaml( pretendPath );
   YAML::Node const doc = documentOf( text, yaml );
   try {
      return scenarioOf( doc, yaml, std::filesystem::path( pretendPath ).parent_path() );
   } catch( YAML::Exception const& e ) {
      // Reading a well-formed document should not throw; if it does, say where.
      yaml.fail( Where{ e.mark.line + 1, e.mark.column + 1 }, e.msg );
   }
}

}  // namespace Sim
