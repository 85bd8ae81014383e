#include "NevQos/platform/zub/Log.h"

#include <cstdio>
#include <string>

#include "NevQos/platform/zub/ActivityManager.h"

namespace Zub {

namespace {

std::vector< LogHandle const* >& handles() {
   static auto* h = new std::vector< LogHandle const* >();
   return *h;
}

LogSink& sink() {
   static LogSink s;
   return s;
}

char const* severityName( LogSeverity s ) {
   static char const* const names[] = { "EMERG",   "ALERT",  "CRIT", "ERR",
                                        "WARNING", "NOTICE", "INFO", "DEBUG" };
   return names[ static_cast< unsigned >( s ) & 7u ];
}

}  // namespace

LogHandle::LogHandle( String const& name, LogSeverity severity, String const& format,
                      String const& explanation, String const& recommendedAction,
                      double minInterval, double burst, std::uint8_t rateLimitArgs )
    : name_( name )
    , severity_( severity )
    , format_( format )
    , explanation_( explanation )
    , recommendedAction_( recommendedAction )
    , minInterval_( minInterval )
    , burst_( burst )
    , rateLimitArgs_( rateLimitArgs )
    , idHash_( name.hash() ) {
   handles().push_back( this );
}

LogHandle::~LogHandle() {
   std::erase( handles(), this );
}

bool LogHandle::okToLog( std::uint32_t key ) {
   if( minInterval_ <= 0.0 ) return true;
   Seconds now = System::currentTime();
   auto [ it, first ] = lastEmission_.try_emplace( key, now );
   if( first ) return true;
   if( now - it->second < minInterval_ ) return false;
   it->second = now;
   return true;
}

std::vector< LogHandle const* > const& LogHandle::all() {
   return handles();
}

LogHandle const* LogHandle::find( std::string_view name ) {
   for( LogHandle const* h : handles() ) {
      if( h->name().view() == name ) return h;
   }
   return nullptr;
}

void logSinkIs( LogSink s ) {
   sink() = std::move( s );
}

String logFormat( String const& format, std::vector< String > const& args ) {
   std::string out;
   std::size_t next = 0;
   std::string_view f = format.view();
   for( std::size_t i = 0; i < f.size(); ++i ) {
      if( f[ i ] == '%' && i + 1 < f.size() ) {
         char c = f[ i + 1 ];
         if( c == 's' || c == 'd' ) {
            if( next < args.size() ) out += args[ next++ ].view();
            ++i;
            continue;
         }
         if( c == '%' ) {
            out += '%';
            ++i;
            continue;
         }
      }
      out += f[ i ];
   }
   return String( out );
}

void logEmit( LogHandle& handle, std::vector< String > const& args ) {
   std::string key;
   for( std::size_t i = 0; i < handle.rateLimitArgs() && i < args.size(); ++i ) {
      key += args[ i ].view();
   }
   if( !handle.okToLog( stringHash( key ) ^ handle.idHash() ) ) return;
   LogRecord record{ &handle, logFormat( handle.format(), args ), System::currentTime() };
   if( sink() ) {
      sink()( record );
   } else {
      std::fprintf( stderr, "%%%s-%d-%s: %s\n", severityName( handle.severity() ),
                    static_cast< int >( handle.severity() ), handle.name().charPtr(),
                    record.text.charPtr() );
   }
}

}  // namespace Zub
