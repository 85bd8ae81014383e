#include "NevQos/platform/zub/Trace.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

namespace Zub {

namespace {

struct Rule {
   std::string handle;  // "*" for all
   std::uint32_t levels;
};

struct Registry {
   std::vector< TraceHandle* > handles;
   std::vector< Rule > rules;
   TraceSink sink;
};

Registry& registry() {
   static auto* r = new Registry();  // handles outlive static destruction order
   return *r;
}

std::optional< std::uint32_t > parseLevels( std::string_view text ) {
   if( text == "*" ) return 0xffffffffu;
   auto number = []( std::string_view s ) -> std::optional< int > {
      if( s.empty() || s.size() > 2 ) return std::nullopt;
      int v = 0;
      for( char c : s ) {
         if( c < '0' || c > '9' ) return std::nullopt;
         v = v * 10 + ( c - '0' );
      }
      return v < 32 ? std::optional< int >( v ) : std::nullopt;
   };
   auto dash = text.find( '-' );
   auto lo = number( text.substr( 0, dash ) );
   auto hi = dash == std::string_view::npos ? lo : number( text.substr( dash + 1 ) );
   if( !lo || !hi || *lo > *hi ) return std::nullopt;
   std::uint32_t mask = 0;
   for( int l = *lo; l <= *hi; ++l )
      mask |= 1u << l;
   return mask;
}

std::optional< std::vector< Rule > > parseEnableList( std::string_view enableList ) {
   std::vector< Rule > rules;
   while( !enableList.empty() ) {
      auto comma = enableList.find( ',' );
      std::string_view item = enableList.substr( 0, comma );
      enableList =
            comma == std::string_view::npos ? std::string_view() : enableList.substr( comma + 1 );
      if( item.empty() ) continue;
      auto slash = item.find( '/' );
      std::string_view name = item.substr( 0, slash );
      auto levels = slash == std::string_view::npos ? std::optional< std::uint32_t >( 0xffffffffu )
                                                    : parseLevels( item.substr( slash + 1 ) );
      if( name.empty() || !levels ) return std::nullopt;
      rules.push_back( { std::string( name ), *levels } );
   }
   return rules;
}

void applyRules( TraceHandle& h, std::vector< Rule > const& rules ) {
   for( Rule const& r : rules ) {
      if( r.handle == "*" || r.handle == h.name().view() ) h.levelsIs( h.levels() | r.levels );
   }
}

void defaultSink( TraceRecord const& r ) {
   std::fprintf( stderr, "%s/%d %s: %s\n", r.handle.charPtr(), r.level, r.function,
                 r.message.charPtr() );
}

}  // namespace

TraceHandle::TraceHandle( String const& name, bool allLevelsOn )
    : name_( name ), levels_( allLevelsOn ? 0xffffffffu : 0u ) {
   Registry& reg = registry();
   reg.handles.push_back( this );
   static bool const envRead = [] {
      if( char const* env = std::getenv( "ZUB_TRACE" ) ) {
         if( auto rules = parseEnableList( env ) ) registry().rules = *rules;
      }
      return true;
   }();
   (void)envRead;
   applyRules( *this, reg.rules );
}

TraceHandle::~TraceHandle() {
   std::erase( registry().handles, this );
}

bool traceEnable( std::string_view enableList ) {
   auto rules = parseEnableList( enableList );
   if( !rules ) return false;
   Registry& reg = registry();
   reg.rules.insert( reg.rules.end(), rules->begin(), rules->end() );
   for( TraceHandle* h : reg.handles )
      applyRules( *h, *rules );
   return true;
}

bool traceListValid( std::string_view enableList ) {
   return parseEnableList( enableList ).has_value();
}

void traceDisableAll() {
   Registry& reg = registry();
   reg.rules.clear();
   for( TraceHandle* h : reg.handles )
      h->levelsIs( 0 );
}

void traceSinkIs( TraceSink sink ) {
   registry().sink = std::move( sink );
}

TraceHelper* TraceHelper::createIfEnabled( TraceHandle const& handle, int level,
                                           std::optional< TraceHelper >& buffer ) {
   if( !handle.enabled( level ) ) return nullptr;
   buffer.emplace( handle, level );
   return &*buffer;
}

void TraceHelper::trace( char const* file, int line, char const* function ) {
   TraceRecord record{ handle_.name(), level_, file, line, function, String( out_.str() ) };
   Registry& reg = registry();
   if( reg.sink ) {
      reg.sink( record );
   } else {
      defaultSink( record );
   }
}

}  // namespace Zub
