// The system log: operator messages declared once as global LogHandle objects.
//
// `Zub::log( handle, args... )` substitutes the arguments for the %s and %d of the handle's
// format in order, asks the handle whether this emission may go out, and hands the text to the
// sink (standard error by default, a list in tests and in the simulator).
//
// Rate limit: the first `rateLimitArgs()` arguments (0, 1 or 2) form the key; their texts are
// concatenated and hashed, XORed with `idHash()`, and `okToLog` admits the emission unless the
// same key went out less than `minInterval` seconds ago. A minInterval of 0.0 admits every
// emission.
#pragma once

#include <concepts>
#include <cstdint>
#include <functional>
#include <map>
#include <vector>

#include "NevQos/platform/zub/Entity.h"
#include "NevQos/platform/zub/Strep.h"
#include "NevQos/platform/zub/String.h"

namespace Zub {

enum class LogSeverity : std::uint8_t {
   emergency = 0,
   alert = 1,
   critical = 2,
   error = 3,
   warning = 4,
   notice = 5,
   info = 6,
   debug = 7,
};

// The platform's text for "no action is required of the operator". A constant array, not a
// String, so that log handles built at load in any file find it already set.
inline constexpr char NoActionRequired[] = "No action is required.";

class LogHandle {
 public:
   LogHandle( String const& name, LogSeverity severity, String const& format,
              String const& explanation, String const& recommendedAction, double minInterval,
              double burst, std::uint8_t rateLimitArgs );
   LogHandle( LogHandle const& ) = delete;
   LogHandle& operator=( LogHandle const& ) = delete;
   ~LogHandle();

   String const& name() const { return name_; }
   LogSeverity severity() const { return severity_; }
   String const& format() const { return format_; }
   String const& explanation() const { return explanation_; }
   String const& recommendedAction() const { return recommendedAction_; }
   double minInterval() const { return minInterval_; }
   double burst() const { return burst_; }
   std::uint8_t rateLimitArgs() const { return rateLimitArgs_; }
   std::uint32_t idHash() const { return idHash_; }

   // Whether an emission with rate-limit key `key` (already XORed with idHash) may go out now.
   bool okToLog( std::uint32_t key );

   // Every handle built so far, in order of construction.
   static std::vector< LogHandle const* > const& all();
   static LogHandle const* find( std::string_view name );

 private:
   String name_;
   LogSeverity severity_;
   String format_;
   String explanation_;
   String recommendedAction_;
   double minInterval_;
   double burst_;
   std::uint8_t rateLimitArgs_;
   std::uint32_t idHash_;
   std::map< std::uint32_t, Seconds > lastEmission_;
};

struct LogRecord {
   LogHandle const* handle;
   String text;
   Seconds time;
};
using LogSink = std::function< void( LogRecord const& ) >;
// Replaces where messages go; an empty sink restores standard error.
void logSinkIs( LogSink sink );

// Texts of log arguments.
inline String logArgText( char const* s ) {
   return String( s );
}
inline String logArgText( String const& s ) {
   return s;
}
inline String logArgText( Name const& n ) {
   return n.str();
}
template< std::integral T >
String logArgText( T v ) {
   return valueToStrep( v );
}
// Enumerations log their member name.
template< class T >
requires requires( T const& t ) {
   stringValue( t );
}
String logArgText( T const& v ) {
   return String( stringValue( v ) );
}

// Substitutes `args` for the %s and %d of `format`, in order; %% is a percent sign.
String logFormat( String const& format, std::vector< String > const& args );
void logEmit( LogHandle& handle, std::vector< String > const& args );

template< class... Args >
void log( LogHandle& handle, Args const&... args ) {
   static_assert( sizeof...( Args ) <= 5, "a log message takes at most five arguments" );
   logEmit( handle, std::vector< String >{ logArgText( args )... } );
}

}  // namespace Zub
