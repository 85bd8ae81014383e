// The binary ring-buffer trace that stays on in production, and the adapter by which one call
// reaches both it and a trace handle.
//
// A message site registers once (a MsgDesc: its literal pieces and one format character per
// value: d double, i signed, u unsigned, b bool, s text); each emission then writes only the
// site's id and the raw values into the ring buffer. Reading decodes the messages back to text,
// oldest first. When the buffer is full the oldest messages are dropped.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "NevQos/platform/zub/String.h"
#include "NevQos/platform/zub/Trace.h"

namespace Fleelog {

class MsgDesc {
 public:
   MsgDesc( char const* file, int line ) : file_( file ), line_( line ) {}
   bool registered() const { return id_ != 0; }
   std::uint32_t id() const { return id_; }
   // Pieces in order; a value piece is empty text with its format character.
   struct Piece {
      std::string literal;
      char format;  // 0 for a literal
   };
   std::vector< Piece > const& pieces() const { return pieces_; }
   std::string formatChars() const;

   void literalAdd( std::string_view text ) { pieces_.push_back( { std::string( text ), 0 } ); }
   void valueAdd( char format ) { pieces_.push_back( { {}, format } ); }
   void registerSite();

 private:
   char const* file_;
   int line_;
   std::uint32_t id_ = 0;
   std::vector< Piece > pieces_;
};

class RingBuf {
 public:
   explicit RingBuf( std::size_t capacityBytes = 1 << 20 );

   void startMsg( MsgDesc const& desc );
   void put( double v );
   void put( std::int64_t v );
   void put( std::uint64_t v );
   void put( bool v );
   void put( std::string_view v );
   void endMsg();

   // The messages held, decoded, oldest first.
   std::vector< std::string > messages() const;
   std::size_t messageCount() const { return starts_.size(); }
   void clear();

 private:
   void dropOldest();
   std::size_t capacity_;
   std::vector< std::uint8_t > current_;
   // Whole messages, oldest first; a message is its site id and then its raw values.
   std::vector< std::uint8_t > bytes_;
   std::vector< std::size_t > starts_;
};

// The process's ring buffer, or null when binary tracing is off; then nothing is written.
RingBuf* defaultFleelogFile();
void defaultFleelogFileIs( RingBuf* buf );

}  // namespace Fleelog

namespace Pairlog {

namespace detail {

template< class T >
constexpr bool isLiteral = std::is_array_v< std::remove_reference_t< T > >;

template< class T >
char formatChar() {
   using U = std::remove_cvref_t< T >;
   if constexpr( std::is_same_v< U, bool > )
      return 'b';
   else if constexpr( std::is_floating_point_v< U > )
      return 'd';
   else if constexpr( std::is_integral_v< U > && std::is_signed_v< U > )
      return 'i';
   else if constexpr( std::is_integral_v< U > )
      return 'u';
   else
      return 's';
}

template< class T >
void putValue( Fleelog::RingBuf& buf, T const& v ) {
   using U = std::remove_cvref_t< T >;
   if constexpr( std::is_same_v< U, bool > )
      buf.put( v );
   else if constexpr( std::is_floating_point_v< U > )
      buf.put( static_cast< double >( v ) );
   else if constexpr( std::is_integral_v< U > && std::is_signed_v< U > ) {
      buf.put( static_cast< std::int64_t >( v ) );
   } else if constexpr( std::is_integral_v< U > ) {
      buf.put( static_cast< std::uint64_t >( v ) );
   } else if constexpr( std::is_convertible_v< T const&, std::string_view > ) {
      buf.put( std::string_view( v ) );
   } else if constexpr( requires { v.view(); } ) {
      buf.put( v.view() );
   } else {
      std::ostringstream os;
      os << v;
      buf.put( std::string_view( os.str() ) );
   }
}

}  // namespace detail

// Writes one message, made of string literals (kept once, in the site's description) and values
// (written raw), to the binary trace, and to `handle` at `level` if that is enabled.
class FleelogConverter {
 public:
   template< class... Args >
   static void log( Fleelog::MsgDesc& desc, Zub::TraceHandle const* handle, int level,
                    char const* file, int line, char const* function, Args&&... args ) {
      if( !desc.registered() ) {
         ( describe< Args >( desc, args ), ... );
         desc.registerSite();
      }
      if( Fleelog::RingBuf* buf = Fleelog::defaultFleelogFile() ) {
         buf->startMsg( desc );
         ( put< Args >( *buf, args ), ... );
         buf->endMsg();
      }
      if( handle && handle->enabled( level ) ) {
         Zub::TraceHelper helper( *handle, level );
         ( helper.stream() << ... << args );
         helper.trace( file, line, function );
      }
   }

 private:
   template< class A, class T >
   static void describe( Fleelog::MsgDesc& desc, T const& v ) {
      if constexpr( detail::isLiteral< A > ) {
         desc.literalAdd( v );
      } else {
         desc.valueAdd( detail::formatChar< A >() );
      }
   }
   template< class A, class T >
   static void put( Fleelog::RingBuf& buf, T const& v ) {
      if constexpr( !detail::isLiteral< A > ) detail::putValue( buf, v );
   }
};

}  // namespace Pairlog

// FLEELOG( "QosSm::", "processPolicyUpdate", " Config Version:", version, " applied." );
#define FLEELOG( ... )                                                                        \
   do {                                                                                       \
      static ::Fleelog::MsgDesc zubMsgDesc( __FILE__, __LINE__ );                             \
      ::Pairlog::FleelogConverter::log( zubMsgDesc, nullptr, 0, __FILE__, __LINE__, __func__, \
                                        __VA_ARGS__ );                                        \
   } while( 0 )

// The same message to the binary trace and to trace handle `handle` at `level`.
#define PAIRLOG( handle, level, ... )                                                       \
   do {                                                                                     \
      static ::Fleelog::MsgDesc zubMsgDesc( __FILE__, __LINE__ );                           \
      ::Pairlog::FleelogConverter::log( zubMsgDesc, &( handle ), level, __FILE__, __LINE__, \
                                        __func__, __VA_ARGS__ );                            \
   } while( 0 )
