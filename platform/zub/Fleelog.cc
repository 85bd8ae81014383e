#include "NevQos/platform/zub/Fleelog.h"

#include <cstring>

#include "NevQos/platform/zub/Strep.h"

namespace Fleelog {

namespace {

std::vector< MsgDesc const* >& sites() {
   static auto* s = new std::vector< MsgDesc const* >{ nullptr };  // id 0 means unregistered
   return *s;
}

RingBuf*& defaultFile() {
   static RingBuf* file = nullptr;
   return file;
}

// Appends raw bytes; resize and copy rather than a range insert, which some optimisers
// misjudge as writing out of bounds.
void appendBytes( std::vector< std::uint8_t >& out, void const* data, std::size_t size ) {
   std::size_t at = out.size();
   out.resize( at + size );
   if( size ) std::memcpy( out.data() + at, data, size );
}

template< class T >
void append( std::vector< std::uint8_t >& out, T const& v ) {
   appendBytes( out, &v, sizeof( T ) );
}

template< class T >
T take( std::uint8_t const*& p ) {
   T v;
   std::memcpy( &v, p, sizeof( T ) );
   p += sizeof( T );
   return v;
}

}  // namespace

std::string MsgDesc::formatChars() const {
   std::string f;
   for( Piece const& p : pieces_ ) {
      if( p.format ) f += p.format;
   }
   return f;
}

void MsgDesc::registerSite() {
   sites().push_back( this );
   id_ = static_cast< std::uint32_t >( sites().size() - 1 );
}

RingBuf::RingBuf( std::size_t capacityBytes ) : capacity_( capacityBytes ) {}

void RingBuf::startMsg( MsgDesc const& desc ) {
   current_.clear();
   append( current_, desc.id() );
}

void RingBuf::put( double v ) {
   append( current_, v );
}

void RingBuf::put( std::int64_t v ) {
   append( current_, v );
}

void RingBuf::put( std::uint64_t v ) {
   append( current_, v );
}

void RingBuf::put( bool v ) {
   append( current_, static_cast< std::uint8_t >( v ) );
}

void RingBuf::put( std::string_view v ) {
   append( current_, static_cast< std::uint32_t >( v.size() ) );
   appendBytes( current_, v.data(), v.size() );
}

void RingBuf::endMsg() {
   if( current_.size() > capacity_ ) return;  // a message larger than the ring is lost
   while( !starts_.empty() && bytes_.size() - starts_.front() + current_.size() > capacity_ ) {
      dropOldest();
   }
   starts_.push_back( bytes_.size() );
   appendBytes( bytes_, current_.data(), current_.size() );
}

void RingBuf::dropOldest() {
   std::size_t cut = starts_.size() > 1 ? starts_[ 1 ] : bytes_.size();
   bytes_.erase( bytes_.begin(), bytes_.begin() + static_cast< std::ptrdiff_t >( cut ) );
   starts_.erase( starts_.begin() );
   for( std::size_t& s : starts_ )
      s -= cut;
}

std::vector< std::string > RingBuf::messages() const {
   std::vector< std::string > out;
   for( std::size_t start : starts_ ) {
      std::uint8_t const* p = bytes_.data() + start;
      MsgDesc const* desc = sites().at( take< std::uint32_t >( p ) );
      std::string text;
      for( MsgDesc::Piece const& piece : desc->pieces() ) {
         switch( piece.format ) {
            case 0:
               text += piece.literal;
               break;
            case 'd':
               text += Zub::valueToStrep( take< double >( p ) ).view();
               break;
            case 'i':
               text += std::to_string( take< std::int64_t >( p ) );
               break;
            case 'u':
               text += std::to_string( take< std::uint64_t >( p ) );
               break;
            case 'b':
               text += take< std::uint8_t >( p ) ? "1" : "0";
               break;
            default: {
               auto len = take< std::uint32_t >( p );
               text.append( reinterpret_cast< char const* >( p ), len );
               p += len;
            }
         }
      }
      out.push_back( std::move( text ) );
   }
   return out;
}

void RingBuf::clear() {
   bytes_.clear();
   starts_.clear();
}

RingBuf* defaultFleelogFile() {
   return defaultFile();
}

void defaultFleelogFileIs( RingBuf* buf ) {
   defaultFile() = buf;
}

}  // namespace Fleelog
