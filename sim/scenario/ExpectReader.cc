#include "NevQos/sim/scenario/ExpectReader.h"

#include <string>
#include <string_view>
#include <utility>

#include "NevQos/sim/scenario/ScenarioNames.h"

namespace Sim {

namespace {

constexpr std::pair< std::string_view, char const* > helperNames[] = { { "acl", "acl" },
                                                                       { "basic", "basic" },
                                                                       { "cbf", "cbf" } };

// `{ call: OP, helper, args, at }` or `{ log: HANDLE, text, at }`.
ExpectItem eventOf( YAML::Node const& node, YamlReader const& yaml, std::string const& what ) {
   yaml.checkMapping( node, what, { "call", "log", "helper", "args", "text", "at" } );
   ExpectItem item;
   item.where = YamlReader::whereOf( node );
   auto const call = node[ "call" ];
   auto const log = node[ "log" ];
   if( bool( call ) == bool( log ) ) yaml.fail( node, what + ": give call or log, one of them" );
   item.isCall = bool( call );
   item.name = yaml.text( item.isCall ? call : log, item.isCall ? "call" : "log" );
   if( auto const helper = node[ "helper" ] ) {
      if( !item.isCall ) yaml.fail( helper, "helper: a log line has none" );
      item.helper = yaml.choice( helper, "helper", NameTable< char const* >( helperNames ) );
   }
   if( auto const args = node[ "args" ] ) {
      if( !item.isCall ) yaml.fail( args, "args: a log line has none; give text" );
      if( !args.IsMap() ) yaml.fail( args, "args: expected a mapping of argument names to texts" );
      for( auto const& arg : args ) {
         item.args.emplace_back( arg.first.Scalar(), yaml.text( arg.second, arg.first.Scalar() ) );
      }
   }
   if( auto const text = node[ "text" ] ) {
      if( item.isCall ) yaml.fail( text, "text: a call has none; give args" );
      item.text = yaml.text( text, "text" );
   }
   if( auto const at = node[ "at" ] ) item.at = yaml.seconds( at, "at", 0.0 );
   return item;
}

}  // namespace

std::vector< ExpectItem > expectationsOf( YAML::Node const& list, YamlReader const& yaml ) {
   yaml.checkSequence( list, "expect" );
   std::vector< ExpectItem > items;
   for( YAML::Node const& node : list ) {
      if( node.IsMap() && node[ "not" ] ) {
         yaml.checkMapping( node, "expect item", { "not" } );
         ExpectItem item = eventOf( node[ "not" ], yaml, "not" );
         item.absent = true;
         item.where = YamlReader::whereOf( node );
         items.push_back( item );
         continue;
      }
      items.push_back( eventOf( node, yaml, "expect item" ) );
   }
   return items;
}

}  // namespace Sim
