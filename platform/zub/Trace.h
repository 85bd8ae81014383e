// Named trace sources with levels. A handle is off unless enabled, and a disabled trace costs one
// test of a bit. Handles are enabled by the environment variable ZUB_TRACE, read when a handle
// is built, or by `traceEnable`, with a list such as "NevQos/0-5,NevCbfFecMappingSm/*,*/0":
// handle name (or * for all) and levels (a number, a range, or * for all).
//
// Levels in use: 0 notable events, 2 entry of coarse handlers, 3 ordinary handler entry,
// 5 detail, 8 and 9 value conversions and function entry.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <sstream>
#include <string_view>

#include "NevQos/platform/zub/String.h"

namespace Zub {

class TraceHandle {
 public:
   // Built at load time, as a global object; registers itself by name.
   explicit TraceHandle( String const& name, bool allLevelsOn = false );
   ~TraceHandle();
   TraceHandle( TraceHandle const& ) = delete;
   TraceHandle& operator=( TraceHandle const& ) = delete;

   bool enabled( int level ) const { return level >= 0 && level < 32 && ( levels_ >> level ) & 1u; }
   String const& name() const { return name_; }
   std::uint32_t levels() const { return levels_; }
   void levelsIs( std::uint32_t mask ) { levels_ = mask; }

 private:
   String name_;
   std::uint32_t levels_ = 0;
};

// Enables levels on handles by name, now and for handles built later. Returns false, changing
// nothing, when the text is not a valid list.
bool traceEnable( std::string_view enableList );
// Whether traceEnable would take the list, without enabling anything.
bool traceListValid( std::string_view enableList );
// Switches every handle off and forgets what traceEnable asked.
void traceDisableAll();

struct TraceRecord {
   String handle;
   int level;
   char const* file;
   int line;
   char const* function;
   String message;
};
using TraceSink = std::function< void( TraceRecord const& ) >;
// Replaces where trace lines go; an empty sink restores standard error.
void traceSinkIs( TraceSink sink );

// Collects one trace message and hands it to the sink.
class TraceHelper {
 public:
   TraceHelper( TraceHandle const& handle, int level ) : handle_( handle ), level_( level ) {}
   // A helper built in `buffer` if `handle` is enabled for `level`, else null.
   static TraceHelper* createIfEnabled( TraceHandle const& handle, int level,
                                        std::optional< TraceHelper >& buffer );
   template< class T >
   TraceHelper& operator<<( T const& v ) {
      out_ << v;
      return *this;
   }
   std::ostream& stream() { return out_; }
   void trace( char const* file, int line, char const* function );

 private:
   TraceHandle const& handle_;
   int level_;
   std::ostringstream out_;
};

}  // namespace Zub

// ZUB_TRACE( handle, level, "text " << value << ... );
#define ZUB_TRACE( handle, level, msg )                          \
   do {                                                          \
      if( ( handle ).enabled( level ) ) {                        \
         ::Zub::TraceHelper zubTraceHelper( ( handle ), level ); \
         zubTraceHelper.stream() << msg;                         \
         zubTraceHelper.trace( __FILE__, __LINE__, __func__ );   \
      }                                                          \
   } while( 0 )
